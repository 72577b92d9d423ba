#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskProfile.h>
#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Common/CircleEllipse.h"

namespace Zvl
{

CircleRoiProfile::CircleRoiProfile(const AnnularSector2d<double>& annulus, std::uint64_t frameWidth,
                                   const qPoint64f& scale, const qPoint64f& offset, int isUniform, void* allocator)
    : EllipseRoiProfile(frameWidth, scale, offset, isUniform, allocator), annulus(annulus)
{
    ellipse = EllipseOf(annulus);
}

std::shared_ptr<RoiProfile> CircleRoiProfile::ApplyAnchor(const Anchor& anchor) const
{
    AnnularSector2d<double> moved;
    AnchorAnnularSector(anchor, annulus, &moved);
    return std::make_shared<CircleRoiProfile>(moved, frameWidth, scale, offset, isUniform, allocator);
}

MaskType CircleRoiProfile::GetShapeType() const
{
    return MaskTypeCircle;
}

const AnnularSector2d<double>& CircleRoiProfile::GetShape() const
{
    return annulus;
}

int CircleRoiProfile::_IsPointInRegion(const qPoint64f& point) const
{
    return CheckPointInAnnularSector(annulus, point);
}

} // namespace Zvl
