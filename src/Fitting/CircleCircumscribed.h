#pragma once

/** @file
 *  The minimum circumscribed circle. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>
#include <vector>

namespace Zvl
{

/** Finds the smallest circle around the points: a circle about their mean shrinks to the farthest of them and then along
 *  bisectors, taking up one more point at a time, until no arc of more than half a turn is free of points. Source of the
 *  principle: G. Chrystal, On the problem to construct the minimum circle enclosing n given points in the plane,
 *  Proceedings of the Edinburgh Mathematical Society 3, 1885.
 *
 *  A centre is only looked for strictly between the present one and its goal, in x and in y. On the way along an exactly
 *  upright or level line there is therefore none, and the circle ends with the two points at the ends of a diameter,
 *  whether or not it holds the others.
 *
 *  All outputs may be null pointers. They begin as nulls and empty vectors, and stay so when there are fewer than 3
 *  points or none at all, and when the call throws.
 *
 *  @param maxDistance the radius
 *  @param minDistance distance of the nearest point, measured from the last centre that was tried for it. That is the
 *  result's centre, except when the circle ends with two points.
 *  @param maxDistPoints the first three points on the circle, or two
 *  @param minDistPoints the nearest point, the first one among equals
 *  @param controlPoints as @p maxDistPoints
 *
 *  Three points have the circle through them and are in all three vectors; on one line they leave the numbers null.
 *
 *  @throws Zo::Exception from "Zvl::FitCircle_MCC": #STATUS_BAD_DATA for 4 points or more with a coordinate that is not
 *          a number or larger than 1e100, #STATUS_ABORTED when the circle cannot shrink: the farthest point lies exactly
 *          above, below or beside the mean, the points on the circle coincide, or it has not come to rest after 1000
 *          steps.
 *  Time O(n) for each step, as a rule fewer than ten; of many points, the steps look at the few outermost alone. */
void FitCircle_MCC(const qPoint64f* points, std::size_t count, qPoint64f* center, double* radius, double* maxDistance,
                   double* minDistance, std::vector<qPoint64f>* maxDistPoints, std::vector<qPoint64f>* minDistPoints,
                   std::vector<qPoint64f>* controlPoints);

} // namespace Zvl
