#pragma once

/** @file
 *  From points to the sites of a Voronoi diagram. */

#include "Geometry/Voronoi.h"

namespace Zvl
{

/** Copies @p points to @p sites, which has as many entries, sorts them in sweep order, and drops those that equal their
 *  predecessor or lie outside of @p clip, which may be null. Of equal points the first one stays.
 *  @param room as many numbers, for use while sorting
 *  @return the sites that are left
 *  @throws Zo::Exception #STATUS_BAD_DATA for coordinates that a sweep cannot take */
std::span<VoronoiSite> SortSites(std::span<const qPoint64f> points, const VoronoiRect* clip,
                                 std::span<std::uint32_t> room, std::span<VoronoiSite> sites);

/** The box 10 beyond @p points, rounded outwards; an empty one at the origin when there are none. */
VoronoiRect BoxAround(std::span<const qPoint64f> points);

} // namespace Zvl
