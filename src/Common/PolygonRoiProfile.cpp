#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskProfile.h>

#include "Common/PolygonTests.h"
#include "Common/Rounding.h"
#include "Common/VertexBounds.h"

namespace Zvl
{

PolygonRoiProfile::PolygonRoiProfile(const std::vector<Point2d<double>>& points, std::uint64_t frameWidth,
                                     const qPoint64f& scale, const qPoint64f& offset, int isUniform, void* allocator)
    : SingleRoiProfile(frameWidth, scale, offset, isUniform, allocator), polygonPoints(points)
{
}

PolygonRoiProfile::PolygonRoiProfile(const PolygonRoiProfile& other)
    : PolygonRoiProfile(other.polygonPoints, other.frameWidth, other.scale, other.offset, other.isUniform,
                        other.allocator)
{
}

PolygonRoiProfile::PolygonRoiProfile(std::uint64_t frameWidth, const qPoint64f& scale, const qPoint64f& offset,
                                     int isUniform, void* allocator)
    : SingleRoiProfile(frameWidth, scale, offset, isUniform, allocator)
{
}

std::shared_ptr<RoiProfile> PolygonRoiProfile::ApplyAnchor(const Anchor& anchor) const
{
    std::vector<Point2d<double>> moved;
    AnchorPolygon(anchor, polygonPoints, &moved);
    return std::make_shared<PolygonRoiProfile>(moved, frameWidth, scale, offset, isUniform, allocator);
}

MaskType PolygonRoiProfile::GetShapeType() const
{
    return MaskTypePolygon;
}

const std::vector<Point2d<double>>& PolygonRoiProfile::GetShape() const
{
    return polygonPoints;
}

void PolygonRoiProfile::_CalculateBoundingSegment()
{
    RequireMapping("Zvl::PolygonRoiProfile::_CalculateBoundingSegment");
    if (isUniform == 0)
    {
        boundingSegment = {0, ClampToInt(frameWidth)};
        return;
    }
    if (polygonPoints.size() < 4)
    {
        boundingSegment = {0, 0};
        return;
    }
    const Region2d<double> bounds = VertexBounds(polygonPoints);
    SetBounds({bounds.x, bounds.width});
}

int PolygonRoiProfile::_IsPointInRegion(const qPoint64f& point) const
{
    CollectIntersectXs(point, polygonPoints, &crossings, 0);
    return static_cast<int>(crossings.size() % 2);
}

} // namespace Zvl
