#pragma once

/** @file
 *  The steps of a circle around many points, taken with the few of them that can matter. */

#include "Fitting/CircleSpreading.h"

namespace Zvl
{

/** Shrinks a circle around the few points that lie farthest out, and proves after each step that the circle, with all its
 *  points, is what the same step leaves with all points. CircleAround() the same centre and ShrinkUntilSpread() over all
 *  points therefore end with the same centre, radius and points on the circle, in the same order.
 *
 *  The steps around some outer points show roughly which circles there will be. The points outside of one of these are
 *  almost all that matter: the steps around them are right as a rule, and tell better circles when they are not.
 *  @param mean where the circle begins
 *  @param outer one point at least; the farther out, the better, but any will do
 *  @return nothing when there is no proof, or no way to go on. Time O(n), one pass over the points as a rule. */
std::optional<ShrinkingCircle> SpreadAroundFew(std::span<const qPoint64f> points, const qPoint64f& mean,
                                               std::vector<DistPoint> outer);

} // namespace Zvl
