#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskProfile.h>
#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Common/PolygonTests.h"

#include <cmath>

namespace Zvl
{

RectangleRoiProfile::RectangleRoiProfile(const Region2d<double>& rectangle, std::uint64_t frameWidth,
                                         const qPoint64f& scale, const qPoint64f& offset, int isUniform,
                                         void* allocator)
    : PolygonRoiProfile(frameWidth, scale, offset, isUniform, allocator), rectangle(rectangle)
{
    ExtractPolygonFromRect(rectangle, &polygonPoints);
}

RectangleRoiProfile::RectangleRoiProfile(const RectangleRoiProfile& other)
    : RectangleRoiProfile(other.rectangle, other.frameWidth, other.scale, other.offset, other.isUniform,
                          other.allocator)
{
}

std::shared_ptr<RoiProfile> RectangleRoiProfile::ApplyAnchor(const Anchor& anchor) const
{
    Region2d<double> moved;
    AnchorRectangle(anchor, rectangle, &moved);
    return std::make_shared<RectangleRoiProfile>(moved, frameWidth, scale, offset, isUniform, allocator);
}

MaskType RectangleRoiProfile::GetShapeType() const
{
    return MaskTypeRectangle;
}

const Region2d<double>& RectangleRoiProfile::GetShape() const
{
    return rectangle;
}

int RectangleRoiProfile::_IsPointInRegion(const qPoint64f& point) const
{
    if (std::fabs(rectangle.angle) > kGeometricTolerance)
    {
        return PolygonRoiProfile::_IsPointInRegion(point);
    }
    const bool inside = point.x >= rectangle.x && point.x <= rectangle.x + rectangle.width && point.y >= rectangle.y &&
                        point.y <= rectangle.y + rectangle.height;
    return inside ? 1 : 0;
}

} // namespace Zvl
