#pragma once

/** @file
 *  The circle events to come, lowest first. */

#include "Geometry/VoronoiHalfEdge.h"

namespace Zvl
{

/** A binary heap of half-edges from index 1 on, ordered by event key, then by the x of the vertex. Each half-edge knows
 *  its position, so that it is removed without a search. */
struct VoronoiQueue
{
    std::int32_t maxnumitems;
    std::int32_t numitems; ///< one more than there are items
    VoronoiHalfEdge** items;

    bool Empty() const { return numitems == 1; }
    const VoronoiHalfEdge& Top() const { return *items[1]; }

    /** @throws Zo::Exception #STATUS_ABORTED when there is no room, which the number of sites rules out */
    void Push(VoronoiHalfEdge* added);

    /** Takes the lowest one out; the queue must not be empty. */
    VoronoiHalfEdge* Pop();

    /** Does nothing to a half-edge that was never queued. One that was keeps its position after the removal: it is
     *  pushed again at once, or never used again. */
    void Remove(const VoronoiHalfEdge* removed);

private:
    void Place(VoronoiHalfEdge* item, std::int32_t position);
    void MoveUp(VoronoiHalfEdge* item, std::int32_t position);
    void MoveDown(VoronoiHalfEdge* item, std::int32_t position);
};

} // namespace Zvl
