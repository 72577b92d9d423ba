#pragma once

/** @file
 *  The convex hull of points, and what lies inside of it. */

#include "Fitting/ZoneGeometry.h"

namespace Zvl
{

/** The corners of the convex hull, counter-clockwise, by the monotone chain: A. M. Andrew, Another efficient algorithm
 *  for convex hulls in two dimensions, 1979. Points on its sides are no corners. Fewer than 4 points are returned as
 *  they are. Coordinates are numbers. Time O(n log n). */
std::vector<qPoint64f> ConvexHull(const qPoint64f* points, std::size_t count);

/** True when all corners lie within the tolerance of one line. */
bool IsThin(const std::vector<qPoint64f>& hull);

/** A closed polygon, asked again and again what lies inside. Its sides are listed by strips of y, so that a question
 *  looks at the few sides that the ray from the point can meet. */
class ClosedPolygon
{
public:
    explicit ClosedPolygon(const std::vector<qPoint64f>& corners);

    /** True when the ray from @p p towards larger x crosses the sides at an odd number of places. Places nearer to each
     *  other than the tolerance are one, as at a corner, where two sides meet; flat sides do not count. */
    bool Contains(const qPoint64f& p) const;

private:
    struct Side
    {
        qPoint64f begin;
        qPoint64f end;
    };

    std::size_t StripOf(double y) const;

    std::vector<Side> sides;
    double lowest;
    double stripsPerUnit;
    std::vector<std::vector<std::size_t>> strips; // the sides that reach into each, in their order
};

} // namespace Zvl
