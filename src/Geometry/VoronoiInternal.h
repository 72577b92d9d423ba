#pragma once

/** @file
 *  What a Voronoi diagram owns. */

#include "Geometry/VoronoiArena.h"

namespace Zvl
{

/** The records of a diagram. It lies in one allocation with the sites. */
struct VoronoiInternal
{
    VoronoiInternal(void* base, void* context, VoronoiAllocate allocate, VoronoiRelease release)
        : memory(base), arena(context, allocate, release)
    {
    }

    void* memory; ///< the allocation that holds this record
    VoronoiArena arena;
    std::span<VoronoiSite> sites;
    VoronoiEdge* edges = nullptr;
    VoronoiVertex* vertices = nullptr;
    qPoint64f min{0.0, 0.0};
    qPoint64f max{0.0, 0.0};
};

} // namespace Zvl
