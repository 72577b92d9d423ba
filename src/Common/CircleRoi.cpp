#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/CircleEllipse.h"

namespace Zvl
{

CircleROI::CircleROI(void* allocator) : EllipseROI(allocator), annulus{0.0, 0.0, 0.0, 0.0, {0.0, 0.0}} {}

CircleROI::CircleROI(double centerX, double centerY, double innerRadius, double outerRadius, double startAngle,
                     double angleSpan, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                     const qPoint64f& offset, void* allocator)
    : CircleROI(qPoint64f{centerX, centerY}, innerRadius, outerRadius, startAngle, angleSpan, frameWidth, frameHeight,
                scale, offset, allocator)
{
}

CircleROI::CircleROI(const qPoint64f& center, double innerRadius, double outerRadius, double startAngle,
                     double angleSpan, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                     const qPoint64f& offset, void* allocator)
    : CircleROI(AnnularSector2d<double>{innerRadius, outerRadius, startAngle, angleSpan, center}, frameWidth,
                frameHeight, scale, offset, allocator)
{
}

CircleROI::CircleROI(const AnnularSector2d<double>& annulus, std::uint64_t frameWidth, std::uint64_t frameHeight,
                     const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : EllipseROI(frameWidth, frameHeight, scale, offset, allocator), annulus(annulus)
{
    ellipse = EllipseOf(annulus);
}

std::shared_ptr<ROI> CircleROI::ApplyAnchor(const Anchor& anchor)
{
    AnnularSector2d<double> moved;
    AnchorAnnularSector(anchor, annulus, &moved);
    return std::make_shared<CircleROI>(moved, frameWidth, frameHeight, scale, offset, allocator);
}

MaskType CircleROI::GetShapeType() const
{
    return MaskTypeCircle;
}

std::shared_ptr<ROI> CircleROI::DeepCopy() const
{
    return std::make_shared<CircleROI>(annulus, frameWidth, frameHeight, scale, offset, allocator);
}

const AnnularSector2d<double>& CircleROI::GetShape() const
{
    return annulus;
}

} // namespace Zvl
