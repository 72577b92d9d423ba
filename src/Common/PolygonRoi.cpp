#include <ZdkVisionLib/Alignment/Anchor.h>
#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Check.h"
#include "Common/PolygonScan.h"
#include "Common/VertexBounds.h"

namespace Zvl
{

PolygonROI::PolygonROI(void* allocator) : SingleROI(allocator) {}

PolygonROI::PolygonROI(const std::vector<Point2d<double>>& points, std::uint64_t frameWidth, std::uint64_t frameHeight,
                       const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : SingleROI(frameWidth, frameHeight, scale, offset, allocator), polygonPoints(points)
{
}

PolygonROI::PolygonROI(const qPoint64f* points, std::uint64_t count, std::uint64_t frameWidth,
                       std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : SingleROI(frameWidth, frameHeight, scale, offset, allocator)
{
    if (count == 0)
    {
        return;
    }
    ZVL_REQUIRE("Zvl::PolygonROI::PolygonROI", points != nullptr && count < polygonPoints.max_size());
    polygonPoints.reserve(count + 1);
    polygonPoints.assign(points, points + count);
    polygonPoints.push_back(polygonPoints.front());
}

PolygonROI::PolygonROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                       const qPoint64f& offset, void* allocator)
    : SingleROI(frameWidth, frameHeight, scale, offset, allocator)
{
}

std::shared_ptr<ROI> PolygonROI::ApplyAnchor(const Anchor& anchor)
{
    std::vector<Point2d<double>> moved;
    AnchorPolygon(anchor, polygonPoints, &moved);
    return std::make_shared<PolygonROI>(moved, frameWidth, frameHeight, scale, offset, allocator);
}

MaskType PolygonROI::GetShapeType() const
{
    return MaskTypePolygon;
}

std::shared_ptr<ROI> PolygonROI::DeepCopy() const
{
    return std::make_shared<PolygonROI>(polygonPoints, frameWidth, frameHeight, scale, offset, allocator);
}

const std::vector<Point2d<double>>& PolygonROI::GetShape() const
{
    return polygonPoints;
}

void PolygonROI::_CalculateBoundingBox()
{
    RequireMapping("Zvl::PolygonROI::_CalculateBoundingBox");
    if (polygonPoints.size() < 4)
    {
        _InitializeBoundingBox();
        return;
    }
    SetBounds(VertexBounds(polygonPoints));
}

void PolygonROI::_AssignMaskSliced()
{
    if (mask.Get() == nullptr)
    {
        return;
    }
    PolygonScanReceiver receiver = {&boundingBox, &scale, &offset, &polygonPoints, &boundingRegion};
    ZVL_CHECK("Zvl::PolygonROI::_AssignMaskSliced", qParallel_Execute(FillPolygonRows, &receiver, mask));
}

} // namespace Zvl
