#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Common/Check.h"
#include <ZdkVisionLib/Alignment/RefFrame.h>

#include <cfloat>
#include <cmath>
#include <utility>

namespace Zvl
{

namespace
{

std::vector<Point2d<double>> ClosedOutline(const Region2d<double>& region)
{
    const double right = region.x + region.width;
    const double top = region.y + region.height;
    return {{region.x, region.y}, {right, region.y}, {right, top}, {region.x, top}, {region.x, region.y}};
}

} // namespace

void ExtractPolygonFromRect(const Region2d<double>& region, std::vector<Point2d<double>>* polygon)
{
    ZVL_REQUIRE("Zvl::ExtractPolygonFromRect", polygon != nullptr);
    std::vector<Point2d<double>> outline = ClosedOutline(region);
    if (std::fabs(region.angle) < static_cast<double>(FLT_EPSILON))
    {
        *polygon = std::move(outline);
        return;
    }

    Region3d<double> flatRegion;
    Rect2dTo3d(region, &flatRegion);
    RefFrame turn;
    turn.Rotate(flatRegion);

    std::vector<Point3d<double>> vertices;
    Polygon2dTo3d(outline, &vertices);
    turn.ApplyN(vertices.data(), vertices.size(), vertices.data());
    Polygon3dTo2d(vertices, polygon);
}

} // namespace Zvl
