#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Check.h"

namespace Zvl
{

ROI::ROI(void* allocator) : allocator(allocator), boundingRegion{0.0, 0.0, 0.0, 0.0, 0.0} {}

const Rect2d<int>& ROI::GetBoundingBox()
{
    _CalculateBoundingBoxInternal();
    return boundingBox;
}

const Region2d<double>& ROI::GetBoundingRegion()
{
    _CalculateBoundingBoxInternal();
    return boundingRegion;
}

const Zo::Object<void*>& ROI::GetMask()
{
    if (maskValid != 0)
    {
        return mask;
    }
    if (boundingBoxValid == 0)
    {
        _CalculateBoundingBox();
        boundingBoxValid = 1;
    }
    _ConstructMask();
    _AssignMaskSliced();
    maskValid = 1;
    return mask;
}

int ROI::GetMaskValidity() const
{
    return maskValid;
}

int ROI::GetBoundingBoxValidity() const
{
    return boundingBoxValid;
}

void ROI::SetMaskPixel(std::uint64_t row, std::uint64_t column, std::uint8_t value)
{
    if (mask.Get() == nullptr || row >= qArray2_Length(mask, 0) || column >= qArray2_Length(mask, 1))
    {
        return;
    }
    const std::uint8_t cell = value != 0 ? 1 : 0;
    ZVL_CHECK("Zvl::ROI::SetMaskPixel", qArray2_SetItem(mask, row, column, &cell));
}

void ROI::_ConstructMask()
{
    if (void* old = mask.Detach(); old != nullptr)
    {
        ZVL_CHECK("Zvl::ROI::_ConstructMask", xqObject_DestroyImpl(old, 0));
    }
    if (boundingBox.width <= 0 || boundingBox.height <= 0)
    {
        return;
    }
    ZVL_CHECK("Zvl::ROI::_ConstructMask",
              qArray2_Construct(mask.Slot(), xxq8u_type, static_cast<std::size_t>(boundingBox.height),
                                static_cast<std::size_t>(boundingBox.width), allocator));
    ZVL_CHECK("Zvl::ROI::_ConstructMask", qArray2_Zero(mask));
}

void ROI::_InitializeBoundingBox()
{
    ZVL_CHECK("Zvl::ROI::_InitializeBoundingBox", qMemSet(&boundingBox, 0, sizeof(boundingBox)));
    ZVL_CHECK("Zvl::ROI::_InitializeBoundingBox", qMemSet(&boundingRegion, 0, sizeof(boundingRegion)));
}

void ROI::_CalculateBoundingBoxInternal()
{
    if (boundingBoxValid == 0)
    {
        _CalculateBoundingBox();
        boundingBoxValid = 1;
    }
}

} // namespace Zvl
