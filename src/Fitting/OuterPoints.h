#pragma once

/** @file
 *  Which points lie far from a centre, and how far the nearest one lies, in the widest vectors that the processor
 *  offers. Squares of distances are those of `dx dx + dy dy`, bit for bit. */

#include "Fitting/ZoneGeometry.h"

#include <span>

namespace Zvl
{

/** Splits the points into about 128 groups and finds the farthest of each.
 *  @return these points with the squares of their distances from @p center; the farthest point of all is among them */
std::vector<DistPoint> FarthestOfGroups(std::span<const qPoint64f> points, const qPoint64f& center);

/** The points at a distance of @p distance or more from @p center, in their order, without values; nothing when there
 *  are more than @p most. A distance that is not positive asks for all points. */
std::optional<std::vector<DistPoint>> PointsBeyond(std::span<const qPoint64f> points, const qPoint64f& center,
                                                   double distance, std::size_t most);

/** The first of the points that are nearest to @p center, with its distance. There is at least one point, and no
 *  coordinate is beyond 1e100. */
DistPoint NearestPoint(std::span<const qPoint64f> points, const qPoint64f& center);

} // namespace Zvl
