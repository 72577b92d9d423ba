#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Check.h"
#include "Common/Mapping.h"

namespace Zvl
{

SingleROI::SingleROI(void* allocator)
    : SingleROI(0, 0, {GetNull<double>(), GetNull<double>()}, {GetNull<double>(), GetNull<double>()}, allocator)
{
}

SingleROI::SingleROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                     const qPoint64f& offset, void* allocator)
    : ROI(allocator), frameWidth(frameWidth), frameHeight(frameHeight), scale(scale), offset(offset)
{
}

void SingleROI::SetFrame(const std::uint64_t& width, const std::uint64_t& height)
{
    frameWidth = width;
    frameHeight = height;
    DropCaches();
}

void SingleROI::SetFrameWidth(const std::uint64_t& width)
{
    frameWidth = width;
    DropCaches();
}

void SingleROI::SetFrameHeight(const std::uint64_t& height)
{
    frameHeight = height;
    DropCaches();
}

void SingleROI::SetScale(const qPoint64f& value)
{
    scale = value;
    DropCaches();
}

void SingleROI::SetOffset(const qPoint64f& value)
{
    offset = value;
    DropCaches();
}

void SingleROI::SetAllocator(void* const& value)
{
    allocator = value;
    DropCaches();
}

void SingleROI::RequireMapping(const char* function) const
{
    ZVL_REQUIRE(function, IsMappingSet(scale, offset));
}

void SingleROI::SetBounds(const Region2d<double>& region)
{
    boundingRegion = region;
    qPoint64f tolerance = {kBoxTolerance, kBoxTolerance};
    GetRegionPixel(frameWidth, frameHeight, offset, scale, &boundingRegion, &boundingBox, &tolerance, 1);
}

void SingleROI::DropCaches()
{
    boundingBoxValid = 0;
    maskValid = 0;
}

} // namespace Zvl
