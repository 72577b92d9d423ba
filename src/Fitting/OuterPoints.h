#pragma once

/** @file
 *  Which points lie far from a centre, and how far the nearest one lies, in the widest vectors that the processor
 *  offers. Squares of distances are those of `dx dx + dy dy`, bit for bit. */

#include "Fitting/ZoneGeometry.h"

#include <span>

namespace Zvl
{

/** Splits the points, of which there is at least one, into about 48 groups, and finds the points of these that lie farthest
 *  from somewhere near their middle, with the squares of these distances: the outermost points on all sides, as a rule. */
std::vector<DistPoint> OutermostPoints(std::span<const qPoint64f> points);

/** The farthest point of each of these groups, as seen from @p center, with the square of its distance; the farthest point
 *  of all is among them. */
std::vector<DistPoint> FarthestOfGroups(std::span<const qPoint64f> points, const qPoint64f& center);

/** A circle and all that is inside. */
struct Disc
{
    qPoint64f center;
    double radius;
};

/** The points outside of at least one disc or on its border, in their order, without values; nothing when there are more
 *  than @p most of them in whole vectors. All points are outside of a disc whose radius is not positive. There is at least one disc. */
std::optional<std::vector<DistPoint>> PointsBeyond(std::span<const qPoint64f> points, std::span<const Disc> discs,
                                                   std::size_t most);

/** The first of the points that are nearest to @p center, with its distance. There is at least one point, and no
 *  coordinate is beyond 1e100. */
DistPoint NearestPoint(std::span<const qPoint64f> points, const qPoint64f& center);

} // namespace Zvl
