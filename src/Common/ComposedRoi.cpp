#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Check.h"
#include "Common/Members.h"
#include "Common/MergeRows.h"
#include "Common/NewMask.h"
#include "Common/Unite.h"

namespace Zvl
{

ComposedROI::ComposedROI(void* allocator) : ROI(allocator) {}

void ComposedROI::Add(const std::shared_ptr<ROI>& roi)
{
    if (roi == nullptr)
    {
        return;
    }
    AppendRegion<ComposedROI>(rois, roi);
    boundingBoxValid = 0;
    maskValid = 0;
}

std::vector<std::shared_ptr<ROI>>::const_iterator ComposedROI::Begin() const
{
    return rois.begin();
}

std::vector<std::shared_ptr<ROI>>::const_iterator ComposedROI::End() const
{
    return rois.end();
}

std::uint64_t ComposedROI::GetRoiCount() const
{
    return rois.size();
}

const Rect2d<int>& ComposedROI::GetSubBoundingBox(std::uint64_t index) const
{
    ZVL_REQUIRE("Zvl::ComposedROI::GetSubBoundingBox", index < rois.size());
    return rois[index]->GetBoundingBox();
}

const Zo::Object<void*>& ComposedROI::GetSubMask(std::uint64_t index) const
{
    ZVL_REQUIRE("Zvl::ComposedROI::GetSubMask", index < rois.size());
    return rois[index]->GetMask();
}

std::shared_ptr<ROI> ComposedROI::ApplyAnchor(const Anchor& anchor)
{
    auto moved = std::make_shared<ComposedROI>(allocator);
    for (const std::shared_ptr<ROI>& member : rois)
    {
        moved->Add(member->ApplyAnchor(anchor));
    }
    return moved;
}

MaskType ComposedROI::GetShapeType() const
{
    return MaskTypeComposed;
}

std::shared_ptr<ROI> ComposedROI::DeepCopy() const
{
    auto copy = std::make_shared<ComposedROI>(allocator);
    for (const std::shared_ptr<ROI>& member : rois)
    {
        copy->Add(member);
    }
    return copy;
}

void ComposedROI::_CalculateBoundingBox()
{
    _InitializeBoundingBox();
    for (const std::shared_ptr<ROI>& member : rois)
    {
        const Region2d<double>& region = member->GetBoundingRegion();
        _UpdateBBoxSize(member->GetBoundingBox(), region);
    }
}

void ComposedROI::_AssignMaskSliced()
{
    constexpr char function[] = "Zvl::ComposedROI::_AssignMaskSliced";
    DropHeld(function, mask);
    if (boundingBox.width <= 0 || boundingBox.height <= 0)
    {
        return;
    }
    mask = NewMask(function, boundingBox, allocator);
    for (const std::shared_ptr<ROI>& member : rois)
    {
        const Zo::Object<void*>& source = member->GetMask();
        if (source.Get() != nullptr)
        {
            MergeReceiver receiver(source, member->GetBoundingBox(), boundingBox);
            qParallel_Execute(MergeMaskRows, &receiver, mask);
        }
    }
}

void ComposedROI::_UpdateBBoxSize(const Rect2d<int>& box, const Region2d<double>& region)
{
    Unite(boundingBox, box);
    if (boundingRegion.width == 0.0 && boundingRegion.height == 0.0)
    {
        boundingRegion = region;
        return;
    }
    ExtendRange(boundingRegion.x, boundingRegion.width, region.x, region.width);
    ExtendRange(boundingRegion.y, boundingRegion.height, region.y, region.height);
}

} // namespace Zvl
