#pragma once

/** @file
 *  The edges around each site of a Voronoi diagram. */

#include "Geometry/VoronoiInternal.h"

namespace Zvl
{

/** Direction from the site to the middle of the edge between the two positions. */
double AngleTo(const VoronoiSite& site, const qPoint64f& begin, const qPoint64f& end);

/** Clips an edge and notes what is left of it at both its sites. */
void FinishEdge(VoronoiInternal& internal, VoronoiEdge& edge);

/** Makes the list of graph edges of a site, sorted by angle, from the edges that were noted; among equals the one
 *  finished last comes first. */
void BuildCell(VoronoiInternal& internal, VoronoiSite& site);

/** Fetches the edges of the sites ahead of the one that is built into the cache, each site's chain by one link at a time:
 *  with many sites the edges are spread over more memory than the cache holds. */
class CellPrefetch
{
public:
    explicit CellPrefetch(std::span<VoronoiSite> all) : sites(all) {}

    /** To be called before each cell is built, in the order of the sites. */
    void Advance();

private:
    static constexpr std::size_t kAhead = 8;

    static void Fetch(const VoronoiEdge* edge);

    std::span<VoronoiSite> sites;
    std::size_t next = 0;
    const VoronoiEdge* links[kAhead] = {}; // of the site with this remainder
};

} // namespace Zvl
