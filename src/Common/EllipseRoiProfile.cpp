#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskProfile.h>
#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Alignment/Degrees.h"
#include "Common/Rounding.h"

#include <cmath>

namespace Zvl
{

namespace
{

double Square(double value)
{
    return value * value;
}

/** Half the extent along x of the outer ellipse, turned as it is. */
double HalfExtent(const EllipticalSector2d<double>& ellipse)
{
    const double rotation = ToRadians(ellipse.rotation);
    return std::sqrt(Square(ellipse.outerWidth / 2.0) * Square(std::cos(rotation)) +
                     Square(ellipse.outerHeight / 2.0) * Square(std::sin(rotation)));
}

} // namespace

EllipseRoiProfile::EllipseRoiProfile(const EllipticalSector2d<double>& ellipse, std::uint64_t frameWidth,
                                     const qPoint64f& scale, const qPoint64f& offset, int isUniform, void* allocator)
    : SingleRoiProfile(frameWidth, scale, offset, isUniform, allocator), ellipse(ellipse)
{
}

EllipseRoiProfile::EllipseRoiProfile(std::uint64_t frameWidth, const qPoint64f& scale, const qPoint64f& offset,
                                     int isUniform, void* allocator)
    : SingleRoiProfile(frameWidth, scale, offset, isUniform, allocator), ellipse{0.0, 0.0, 0.0, 0.0,
                                                                                 0.0, 0.0, 0.0, {0.0, 0.0}}
{
}

std::shared_ptr<RoiProfile> EllipseRoiProfile::ApplyAnchor(const Anchor& anchor) const
{
    EllipticalSector2d<double> moved;
    AnchorEllipticalSector(anchor, ellipse, &moved);
    return std::make_shared<EllipseRoiProfile>(moved, frameWidth, scale, offset, isUniform, allocator);
}

MaskType EllipseRoiProfile::GetShapeType() const
{
    return MaskTypeEllipse;
}

const EllipticalSector2d<double>& EllipseRoiProfile::GetShape() const
{
    return ellipse;
}

void EllipseRoiProfile::_CalculateBoundingSegment()
{
    RequireMapping("Zvl::EllipseRoiProfile::_CalculateBoundingSegment");
    if (isUniform == 0)
    {
        boundingSegment = {0, ClampToInt(frameWidth)};
        return;
    }
    const double half = HalfExtent(ellipse);
    SetBounds({ellipse.center.x - half, half * 2.0});
}

int EllipseRoiProfile::_IsPointInRegion(const qPoint64f& point) const
{
    return CheckPointInEllipticalSector(ellipse, point);
}

} // namespace Zvl
