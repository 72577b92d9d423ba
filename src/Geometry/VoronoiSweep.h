#pragma once

/** @file
 *  The sweep line on its way up over the sites. */

#include "Geometry/VoronoiBeach.h"
#include "Geometry/VoronoiInternal.h"
#include "Geometry/VoronoiQueue.h"

namespace Zvl
{

/** Draws the edges of a diagram whose sites and box are there. */
class VoronoiSweep
{
public:
    VoronoiSweep(VoronoiInternal& diagram, VoronoiQueue& events, VoronoiBeachRun** tableMemory)
        : internal(diagram), queue(events), beach(diagram.arena, tableMemory)
    {
    }

    /** Meets all sites and circle events, and finishes the edges. There is at least one site. */
    void Run();

private:
    void MeetSite(VoronoiSite& site);
    void MeetCircle();
    void ScheduleMeeting(VoronoiHalfEdge* left, const qPoint64f& site);
    VoronoiEdge* NewEdge(VoronoiSite* first, VoronoiSite* second);
    void EndEdge(VoronoiEdge& edge, std::int32_t side, const qPoint64f& vertex);
    void FinishBeach();

    VoronoiInternal& internal;
    VoronoiQueue& queue;
    VoronoiBeach beach;
};

} // namespace Zvl
