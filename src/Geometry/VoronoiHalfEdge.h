#pragma once

/** @file
 *  The breakpoints of the beach line. */

#include "Geometry/Voronoi.h"

namespace Zvl
{

struct VoronoiBeachRun;

/** A breakpoint of the beach line on its way along an edge, and the circle event at which it meets its right
 *  neighbour. */
struct VoronoiHalfEdge
{
    VoronoiLine line; ///< of the edge, together with c and the upper site: the search for an arc looks at nothing else
    double c;
    qPoint64f top;
    std::int32_t direction;
    std::int32_t pqpos; ///< position in the queue; 0 when it was never queued
    VoronoiEdge* edge;  ///< null for the two ends of the beach line
    VoronoiHalfEdge* left;
    VoronoiHalfEdge* right;
    VoronoiBeachRun* run; ///< where the index of the beach line lists it
    qPoint64f vertex;     ///< where it meets its right neighbour
    double y;             ///< sweep position at which it does, the event's key

    /** @param towards the way along the edge */
    void PutOn(VoronoiEdge& onEdge, std::int32_t towards)
    {
        edge = &onEdge;
        line = onEdge.line;
        c = onEdge.c;
        top = onEdge.sites[1]->p;
        direction = towards;
    }
};

/** Which way a breakpoint moves along its edge, and which end of the edge it draws. */
inline constexpr std::int32_t kLeft = 0;
inline constexpr std::int32_t kRight = 1;

/** The order in which the sweep meets points. */
inline bool ComesBefore(const qPoint64f& a, const qPoint64f& b)
{
    return a.y != b.y ? a.y < b.y : a.x < b.x;
}

} // namespace Zvl
