#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Common/PolygonTests.h"

namespace Zvl
{

RectangleROI::RectangleROI(void* allocator) : PolygonROI(allocator), rectangle{0.0, 0.0, 0.0, 0.0, 0.0} {}

RectangleROI::RectangleROI(double x, double y, double width, double height, double angle, std::uint64_t frameWidth,
                           std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : RectangleROI(Region2d<double>{x, y, width, height, angle}, frameWidth, frameHeight, scale, offset, allocator)
{
}

RectangleROI::RectangleROI(qPoint64f corner, double width, double height, double angle, std::uint64_t frameWidth,
                           std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : RectangleROI(Region2d<double>{corner.x, corner.y, width, height, angle}, frameWidth, frameHeight, scale, offset,
                   allocator)
{
}

RectangleROI::RectangleROI(const Region2d<double>& rectangle, std::uint64_t frameWidth, std::uint64_t frameHeight,
                           const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : PolygonROI(frameWidth, frameHeight, scale, offset, allocator), rectangle(rectangle)
{
    ExtractPolygonFromRect(rectangle, &polygonPoints);
}

std::shared_ptr<ROI> RectangleROI::ApplyAnchor(const Anchor& anchor)
{
    Region2d<double> moved;
    AnchorRectangle(anchor, rectangle, &moved);
    return std::make_shared<RectangleROI>(moved, frameWidth, frameHeight, scale, offset, allocator);
}

MaskType RectangleROI::GetShapeType() const
{
    return rectangle.angle > kGeometricTolerance ? MaskTypeRotatedRectangle : MaskTypeRectangle;
}

std::shared_ptr<ROI> RectangleROI::DeepCopy() const
{
    return std::make_shared<RectangleROI>(rectangle, frameWidth, frameHeight, scale, offset, allocator);
}

const Region2d<double>& RectangleROI::GetShape() const
{
    return rectangle;
}

} // namespace Zvl
