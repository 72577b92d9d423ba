#pragma once

/** @file
 *  The steps of a circle around many points, taken with the few of them that can matter. */

#include "Fitting/CircleSpreading.h"

namespace Zvl
{

/** Shrinks a circle around the few points that lie farthest out, and proves after each step that the circle, with all its
 *  points, is what the same step leaves with all points. CircleAround() the same centre and ShrinkUntilSpread() over all
 *  points therefore end with the same centre, radius and points on the circle, in the same order.
 *  @param mean where the circle begins
 *  @return nothing when there is no proof, or no way to go on. Time O(n), three passes over the points as a rule. */
std::optional<ShrinkingCircle> SpreadAroundFew(std::span<const qPoint64f> points, const qPoint64f& mean);

} // namespace Zvl
