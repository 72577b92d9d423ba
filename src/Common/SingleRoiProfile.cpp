#include <ZdkVisionLib/Common/MaskProfile.h>
#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Check.h"
#include "Common/LineCells.h"
#include "Common/Mapping.h"
#include "Common/Overlap.h"
#include "Common/PolygonTests.h"

#include <algorithm>
#include <cmath>

namespace Zvl
{

namespace
{

/** The raw handle of the items of @p profile, or null when there are none. */
void* ItemsOf(const Profile& profile)
{
    return profile.layers.empty() ? nullptr : profile.layers[0].Get();
}

bool Differ(double a, double b)
{
    return std::fabs(a - b) > kGeometricTolerance;
}

/** How many cells of @p mask have an item: the segment need not be as long as the mask, which other regions may share
 *  and have made anew. @p segment begins at 0 or above. */
std::size_t CellsToFill(const LineCells<std::uint8_t>& mask, const RunLength<int>& segment, std::size_t items)
{
    return OverlapOf(std::min(mask.count, static_cast<std::size_t>(segment.length)), segment.start, items).end;
}

} // namespace

SingleRoiProfile::SingleRoiProfile(int isUniform, void* allocator)
    : SingleRoiProfile(0, {GetNull<double>(), GetNull<double>()}, {GetNull<double>(), GetNull<double>()}, isUniform,
                       allocator)
{
}

SingleRoiProfile::SingleRoiProfile(std::uint64_t frameWidth, const qPoint64f& scale, const qPoint64f& offset,
                                   int isUniform, void* allocator)
    : RoiProfile(isUniform, allocator), frameWidth(frameWidth), scale(scale), offset(offset)
{
}

void SingleRoiProfile::ApplyRoi(const Profile& profile)
{
    _CheckApplyRoiConditions(profile);
    void* items = ItemsOf(profile);
    if (items == nullptr || GetBoundingSegment().length < 1)
    {
        return;
    }
    if (isUniform != 0)
    {
        SelectHeights(items);
    }
    else
    {
        SelectPairs(items);
    }
}

void SingleRoiProfile::_AssignMask()
{
    const LineCells<std::uint8_t> cells = LineCellsOf<std::uint8_t>(mask);
    std::fill_n(cells.data, cells.count, std::uint8_t{1});
}

void SingleRoiProfile::_CheckApplyRoiConditions(const Profile& profile)
{
    constexpr char function[] = "Zvl::SingleRoiProfile::_CheckApplyRoiConditions";
    void* items = ItemsOf(profile);
    if (items == nullptr)
    {
        return;
    }
    const RunLength<int> segment = GetBoundingSegment();
    if (segment.length < 1)
    {
        return;
    }
    ZVL_REQUIRE(function, IsLine(items) && segment.start >= 0);
    const std::size_t end = static_cast<std::size_t>(segment.start) + static_cast<std::size_t>(segment.length);
    ZVL_REQUIRE(function, end <= qArray1_Count(items));
    ZVL_REQUIRE(function, isUniform != 0 || end <= PairCellsOf(items).count);
    if (isUniform != 0 && qArray1_Type(items) != xxq16s_type)
    {
        ZVL_THROW(function, STATUS_MISMATCH);
    }
    if (Differ(profile.offset.x, offset.x) || Differ(profile.offset.y, offset.y) || Differ(profile.scale.x, scale.x) ||
        Differ(profile.scale.y, scale.y))
    {
        ZVL_THROW(function, STATUS_MISMATCH);
    }
}

void SingleRoiProfile::RequireMapping(const char* function) const
{
    ZVL_REQUIRE(function, IsMappingSet(scale, offset));
}

void SingleRoiProfile::SetBounds(const RunLength<double>& extent)
{
    boundingRegion = extent;
    double tolerance = kBoxTolerance;
    GetRegionPixel(frameWidth, offset.x, scale.x, &boundingRegion, &boundingSegment, &tolerance, 1);
}

void SingleRoiProfile::SelectHeights(void* layer)
{
    const LineCells<std::uint8_t> cells = LineCellsOf<std::uint8_t>(GetMask());
    const LineCells<const std::int16_t> heights = LineCellsOf<const std::int16_t>(layer);
    const std::size_t count = CellsToFill(cells, boundingSegment, heights.count);
    const auto start = static_cast<std::size_t>(boundingSegment.start);
    // The sum of many steps is not the product: x adds up along the line, over missing heights as well.
    double x = boundingSegment.start * scale.x + offset.x;
    for (std::size_t i = 0; i < count; ++i)
    {
        const std::int16_t height = heights.data[start + i];
        const bool selected = height != GetNull<short>() && _IsPointInRegion({x, height * scale.y + offset.y}) != 0;
        cells.data[i] = selected ? 1 : 0;
        x += scale.x;
    }
}

void SingleRoiProfile::SelectPairs(void* layer)
{
    const LineCells<std::uint8_t> cells = LineCellsOf<std::uint8_t>(GetMask());
    const PairCells pairs = PairCellsOf(layer);
    const std::size_t count = CellsToFill(cells, boundingSegment, pairs.count);
    const auto start = static_cast<std::size_t>(boundingSegment.start);
    for (std::size_t i = 0; i < count; ++i)
    {
        const CountPair pair = pairs.At(start + i);
        const bool selected = pair.x != GetNull<short>() && pair.z != GetNull<short>() &&
                              _IsPointInRegion({pair.x * scale.x + offset.x, pair.z * scale.y + offset.y}) != 0;
        cells.data[i] = selected ? 1 : 0;
    }
}

} // namespace Zvl
