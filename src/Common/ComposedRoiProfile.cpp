#include <ZdkVisionLib/Common/MaskProfile.h>

#include "Common/Check.h"
#include "Common/LineCells.h"
#include "Common/MaskKernels.h"
#include "Common/Members.h"
#include "Common/Overlap.h"
#include "Common/Unite.h"

#include <algorithm>

namespace Zvl
{

ComposedRoiProfile::ComposedRoiProfile(int isUniform, void* allocator) : RoiProfile(isUniform, allocator) {}

std::shared_ptr<RoiProfile> ComposedRoiProfile::ApplyAnchor(const Anchor& anchor) const
{
    auto moved = std::make_shared<ComposedRoiProfile>(isUniform, allocator);
    for (const std::shared_ptr<RoiProfile>& member : rois)
    {
        moved->Add(member->ApplyAnchor(anchor));
    }
    return moved;
}

MaskType ComposedRoiProfile::GetShapeType() const
{
    return MaskTypeComposed;
}

void ComposedRoiProfile::ApplyRoi(const Profile& profile)
{
    _CheckApplyRoiConditions(profile);
    for (const std::shared_ptr<RoiProfile>& member : rois)
    {
        member->ApplyRoi(profile);
    }
    maskValid = 0;
    GetMask();
}

int ComposedRoiProfile::IsBoundingSegmentValid()
{
    const auto isValid = [](const std::shared_ptr<RoiProfile>& member)
    { return member->IsBoundingSegmentValid() != 0; };
    if (boundingSegmentValid != 0 && !std::all_of(rois.begin(), rois.end(), isValid))
    {
        boundingSegmentValid = 0;
    }
    return boundingSegmentValid;
}

int ComposedRoiProfile::IsMaskValid()
{
    const auto isValid = [](const std::shared_ptr<RoiProfile>& member) { return member->IsMaskValid() != 0; };
    if (maskValid != 0 && !std::all_of(rois.begin(), rois.end(), isValid))
    {
        maskValid = 0;
    }
    return maskValid;
}

void ComposedRoiProfile::Add(const std::shared_ptr<RoiProfile>& roi)
{
    if (roi == nullptr)
    {
        return;
    }
    AppendRegion<ComposedRoiProfile>(rois, roi);
    boundingSegmentValid = 0;
    maskValid = 0;
}

std::vector<std::shared_ptr<RoiProfile>>::const_iterator ComposedRoiProfile::Begin() const
{
    return rois.begin();
}

std::vector<std::shared_ptr<RoiProfile>>::const_iterator ComposedRoiProfile::End() const
{
    return rois.end();
}

std::uint64_t ComposedRoiProfile::GetRoiCount() const
{
    return rois.size();
}

const RunLength<int>& ComposedRoiProfile::GetSubBoundingSegment(std::uint64_t index) const
{
    ZVL_REQUIRE("Zvl::ComposedRoiProfile::GetSubBoundingSegment", index < rois.size());
    return rois[index]->GetBoundingSegment();
}

const Zo::Object<void*>& ComposedRoiProfile::GetSubMask(std::uint64_t index) const
{
    ZVL_REQUIRE("Zvl::ComposedRoiProfile::GetSubMask", index < rois.size());
    return rois[index]->GetMask();
}

void ComposedRoiProfile::_CalculateBoundingSegment()
{
    _ResetBoundingSegment();
    for (const std::shared_ptr<RoiProfile>& member : rois)
    {
        _UpdateBoundingSegment(member->GetBoundingSegment());
    }
}

void ComposedRoiProfile::_AssignMask()
{
    ZVL_CHECK("Zvl::ComposedRoiProfile::_AssignMask", qArray1_Zero(mask));
    for (const std::shared_ptr<RoiProfile>& member : rois)
    {
        const LineCells<const std::uint8_t> source = LineCellsOf<const std::uint8_t>(member->GetMask());
        const RunLength<int> segment = member->GetBoundingSegment();
        // The own cells are looked up last: a member that shares this mask may just have made it anew.
        const LineCells<std::uint8_t> target = LineCellsOf<std::uint8_t>(mask);
        // A member that was assigned from another region may lie beside the segment, or have a mask of another length.
        const std::size_t count = std::min(source.count, static_cast<std::size_t>(std::max(segment.length, 0)));
        const std::int64_t position = std::int64_t{segment.start} - boundingSegment.start;
        const Overlap overlap = OverlapOf(count, position, target.count);
        if (overlap.first < overlap.end)
        {
            MergeCells(source.data + overlap.first, target.data + (static_cast<std::int64_t>(overlap.first) + position),
                       overlap.end - overlap.first);
        }
    }
}

void ComposedRoiProfile::_CheckApplyRoiConditions(const Profile& /*profile*/) {}

void ComposedRoiProfile::_UpdateBoundingSegment(const RunLength<int>& segment)
{
    Unite(boundingSegment, segment);
}

} // namespace Zvl
