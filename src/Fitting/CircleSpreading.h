#pragma once

/** @file
 *  The steps from a circle about the middle of points to the smallest one around them. */

#include "Fitting/CircleShrinking.h"

#include <array>
#include <functional>

namespace Zvl
{

/** Where a step began, and the way that it was on. */
struct ShrinkingWay
{
    qPoint64f center;
    double radius;
    std::vector<DistPoint> onCircle; ///< the points on the circle then
    std::vector<qPoint64f> pivots;   ///< those of them that stay on it
    ZoneLine line;
    qPoint64f limit;
};

/** Looks at a circle after a step.
 *  @return false to go no further */
using InspectStep = std::function<bool(const ShrinkingWay& way, const ShrinkingCircle& circle)>;

enum class Spreading
{
    Done,           ///< three points or more hold the circle
    DoneOnDiameter, ///< two points hold it, at the ends of a diameter
    Stuck,          ///< there is no way to go on
    Stopped         ///< the inspection ended it
};

/** A circle about @p center through the farthest of @p items, whose values become the distances from it. */
ShrinkingCircle CircleAround(const qPoint64f& center, std::vector<DistPoint> items);

/** Shrinks the circle until no arc of more than half a turn is free of points. */
Spreading ShrinkUntilSpread(ShrinkingCircle& circle, const InspectStep& inspect);

} // namespace Zvl
