#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Common/Check.h"
#include "Common/SectorScan.h"
#include "Common/VertexBounds.h"

namespace Zvl
{

namespace
{

constexpr EllipticalSector2d<double> kZeroSector = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, {0.0, 0.0}};

} // namespace

EllipseROI::EllipseROI(void* allocator) : SingleROI(allocator), ellipse(kZeroSector) {}

EllipseROI::EllipseROI(double centerX, double centerY, double innerHeight, double innerWidth, double outerHeight,
                       double outerWidth, double startAngle, double angleSpan, double rotation,
                       std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                       const qPoint64f& offset, void* allocator)
    : EllipseROI(qPoint64f{centerX, centerY}, innerHeight, innerWidth, outerHeight, outerWidth, startAngle, angleSpan,
                 rotation, frameWidth, frameHeight, scale, offset, allocator)
{
}

EllipseROI::EllipseROI(const qPoint64f& center, double innerHeight, double innerWidth, double outerHeight,
                       double outerWidth, double startAngle, double angleSpan, double rotation,
                       std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                       const qPoint64f& offset, void* allocator)
    : EllipseROI(EllipticalSector2d<double>{innerHeight, innerWidth, outerHeight, outerWidth, startAngle, angleSpan,
                                            rotation, center},
                 frameWidth, frameHeight, scale, offset, allocator)
{
}

EllipseROI::EllipseROI(const EllipticalSector2d<double>& ellipse, std::uint64_t frameWidth, std::uint64_t frameHeight,
                       const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : SingleROI(frameWidth, frameHeight, scale, offset, allocator), ellipse(ellipse)
{
}

EllipseROI::EllipseROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                       const qPoint64f& offset, void* allocator)
    : EllipseROI(kZeroSector, frameWidth, frameHeight, scale, offset, allocator)
{
}

std::shared_ptr<ROI> EllipseROI::ApplyAnchor(const Anchor& anchor)
{
    EllipticalSector2d<double> moved;
    AnchorEllipticalSector(anchor, ellipse, &moved);
    return std::make_shared<EllipseROI>(moved, frameWidth, frameHeight, scale, offset, allocator);
}

MaskType EllipseROI::GetShapeType() const
{
    return MaskTypeEllipse;
}

std::shared_ptr<ROI> EllipseROI::DeepCopy() const
{
    return std::make_shared<EllipseROI>(ellipse, frameWidth, frameHeight, scale, offset, allocator);
}

const EllipticalSector2d<double>& EllipseROI::GetShape() const
{
    return ellipse;
}

void EllipseROI::_CalculateBoundingBox()
{
    RequireMapping("Zvl::EllipseROI::_CalculateBoundingBox");
    const Region2d<double> around = {ellipse.center.x - ellipse.outerWidth / 2.0,
                                     ellipse.center.y - ellipse.outerHeight / 2.0, ellipse.outerWidth,
                                     ellipse.outerHeight, ellipse.rotation};
    std::vector<Point2d<double>> polygon;
    ExtractPolygonFromRect(around, &polygon);
    SetBounds(VertexBounds(polygon));
}

void EllipseROI::_AssignMaskSliced()
{
    if (mask.Get() == nullptr)
    {
        return;
    }
    SectorScanReceiver receiver = {&boundingBox, &scale, &offset, &ellipse, nullptr};
    if (GetShapeType() == MaskTypeCircle)
    {
        const auto* circle = dynamic_cast<const CircleROI*>(this);
        ZVL_REQUIRE("Zvl::EllipseROI::_AssignMaskSliced", circle != nullptr);
        receiver.ellipse = nullptr;
        receiver.annulus = &circle->GetShape();
    }
    ZVL_CHECK("Zvl::EllipseROI::_AssignMaskSliced", qParallel_Execute(FillSectorRows, &receiver, mask));
}

} // namespace Zvl
