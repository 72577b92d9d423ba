#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Check.h"
#include "Common/NewMask.h"

#include <algorithm>

namespace Zvl
{

namespace
{

/** True when @p region is a composition with a member whose flag, as @p validity reads it, is down. The walk computes
 *  nothing and ends at the first such member. */
bool HasStaleMember(const ROI& region, int (ROI::*validity)() const)
{
    const auto* composed =
        region.GetShapeType() == MaskTypeComposed ? dynamic_cast<const ComposedROI*>(&region) : nullptr;
    return composed != nullptr &&
           std::any_of(composed->Begin(), composed->End(),
                       [&](const std::shared_ptr<ROI>& member) { return (*member.*validity)() == 0; });
}

} // namespace

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
    if (maskValid != 0 && HasStaleMember(*this, &ROI::GetMaskValidity))
    {
        maskValid = 0;
    }
    if (maskValid != 0)
    {
        return mask;
    }
    // A box that is valid by its own flag stays, even over changed members: only GetBoundingBox() looks at theirs.
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
    DropHeld("Zvl::ROI::_ConstructMask", mask);
    if (boundingBox.width <= 0 || boundingBox.height <= 0)
    {
        return;
    }
    mask = NewMask("Zvl::ROI::_ConstructMask", boundingBox, allocator);
}

void ROI::_InitializeBoundingBox()
{
    ZVL_CHECK("Zvl::ROI::_InitializeBoundingBox", qMemSet(&boundingBox, 0, sizeof(boundingBox)));
    ZVL_CHECK("Zvl::ROI::_InitializeBoundingBox", qMemSet(&boundingRegion, 0, sizeof(boundingRegion)));
}

void ROI::_CalculateBoundingBoxInternal()
{
    if (boundingBoxValid != 0 && HasStaleMember(*this, &ROI::GetBoundingBoxValidity))
    {
        boundingBoxValid = 0;
    }
    if (boundingBoxValid == 0)
    {
        _CalculateBoundingBox();
        boundingBoxValid = 1;
    }
}

} // namespace Zvl
