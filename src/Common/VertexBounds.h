#pragma once

/** @file
 *  The extent of a list of vertices. */

#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>
#include <vector>

namespace Zvl
{

/** The least upright rectangle around @p points, of which there is at least one. A coordinate that is not a number changes
 *  no bound, unless it is the first. */
inline Region2d<double> VertexBounds(const std::vector<Point2d<double>>& points)
{
    Point2d<double> least = points.front();
    Point2d<double> most = points.front();
    for (const Point2d<double>& point : points)
    {
        least = {std::min(least.x, point.x), std::min(least.y, point.y)};
        most = {std::max(most.x, point.x), std::max(most.y, point.y)};
    }
    return {least.x, least.y, most.x - least.x, most.y - least.y, 0.0};
}

} // namespace Zvl
