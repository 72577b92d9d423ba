#pragma once

/** @file
 *  One step of a circle that shrinks around points. */

#include "Fitting/ZoneGeometry.h"

#include <span>

namespace Zvl
{

/** A circle around points, and the points on it. */
struct ShrinkingCircle
{
    qPoint64f center;
    double radius;
    std::vector<DistPoint> pDistances; ///< all points, each with its distance from the last centre tried for it
    std::vector<DistPoint> tempControlPoints;
};

enum class Shrinking
{
    TookUpPoint, ///< a smaller circle goes through the pivots and one more point
    CameToEnd,   ///< the circle has the first two pivots at the ends of a diameter
    Failed       ///< there is no such circle, and only one pivot; nothing has changed
};

/** Moves the centre along a line to the first place where the circle through the pivots takes up one more point.
 *
 *  @param pivots points on the circle that stay on it: one or two
 *  @param line where the centre moves
 *  @param limit end of the way that begins at the present centre; the new centre lies strictly between in x and in y
 *
 *  Points are tried in order, and the first one wins whose circle holds all others. Almost all of them fail at one point
 *  that has been found to lie outside of a circle before, so that the step is of linear time. */
Shrinking Shrink(ShrinkingCircle& circle, std::span<const qPoint64f> pivots, const ZoneLine& line,
                 const qPoint64f& limit);

} // namespace Zvl
