#pragma once

/** @file
 *  The extent of a list of vertices. */

#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>
#include <vector>

namespace Zvl
{

/** The least upright rectangle around @p points, of which there is at least one. */
inline Region2d<double> VertexBounds(const std::vector<Point2d<double>>& points)
{
    const auto [left, right] = std::minmax_element(
        points.begin(), points.end(), [](const Point2d<double>& a, const Point2d<double>& b) { return a.x < b.x; });
    const auto [bottom, top] = std::minmax_element(
        points.begin(), points.end(), [](const Point2d<double>& a, const Point2d<double>& b) { return a.y < b.y; });
    return {left->x, bottom->y, right->x - left->x, top->y - bottom->y, 0.0};
}

} // namespace Zvl
