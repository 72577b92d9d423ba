#include <ZdkVisionLib/Common/MaskProfile.h>

#include "Common/Check.h"

#include <algorithm>

namespace Zvl
{

RoiProfile::RoiProfile(int isUniform, void* allocator)
    : allocator(allocator),
      boundingRegion{GetNull<double>(), 0.0},
      boundingSegment{GetNull<int>(), 0},
      isUniform(isUniform)
{
}

int RoiProfile::IsBoundingSegmentValid()
{
    return boundingSegmentValid;
}

int RoiProfile::IsMaskValid()
{
    return maskValid;
}

const RunLength<int>& RoiProfile::GetBoundingSegment()
{
    if (IsBoundingSegmentValid() == 0)
    {
        _CalculateBoundingSegment();
        boundingSegmentValid = 1;
    }
    return boundingSegment;
}

const Zo::Object<void*>& RoiProfile::GetMask()
{
    if (IsMaskValid() == 0)
    {
        GetBoundingSegment();
        _ConstructMask();
        _AssignMask();
        maskValid = 1;
    }
    return mask;
}

void RoiProfile::_ResetBoundingSegment()
{
    ZVL_CHECK("Zvl::RoiProfile::_ResetBoundingSegment", qMemSet(&boundingSegment, 0, sizeof(boundingSegment)));
    ZVL_CHECK("Zvl::RoiProfile::_ResetBoundingSegment", qMemSet(&boundingRegion, 0, sizeof(boundingRegion)));
}

void RoiProfile::_ConstructMask()
{
    const auto count = static_cast<std::size_t>(std::max(boundingSegment.length, 0));
    if (mask.Get() == nullptr)
    {
        ZVL_CHECK("Zvl::RoiProfile::_ConstructMask", qArray1_Construct(mask.Slot(), xxq8u_type, count, allocator));
        return;
    }
    ZVL_CHECK("Zvl::RoiProfile::_ConstructMask", qArray1_Allocate(mask, qArray1_Type(mask), count));
}

} // namespace Zvl
