#include "Geometry/RowExtent.h"

#include "Common/SelectedCells.h"

#include <algorithm>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Geometry/RowExtent.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** Puts the lowest and the highest of the selected heights in @p extent. */
void FindHeights(const std::uint8_t* HWY_RESTRICT mask, const std::int16_t* HWY_RESTRICT heights, std::size_t count,
                 RowExtent& extent)
{
    const hn::ScalableTag<std::int16_t> wide;
    const hn::Rebind<std::uint8_t, decltype(wide)> narrow;
    const std::size_t lanes = hn::Lanes(wide);
    extent.lowest = std::numeric_limits<std::int16_t>::max();
    extent.highest = std::numeric_limits<std::int16_t>::min();
    if (count < lanes)
    {
        for (std::size_t index = 0; index < count; ++index)
        {
            if (mask[index] != 0)
            {
                extent.lowest = std::min(extent.lowest, heights[index]);
                extent.highest = std::max(extent.highest, heights[index]);
            }
        }
        return;
    }
    auto lowest = hn::Set(wide, extent.lowest);
    auto highest = hn::Set(wide, extent.highest);
    const auto visit = [&](std::size_t index) HWY_ATTR
    {
        const auto flags = hn::PromoteTo(wide, hn::LoadU(narrow, mask + index));
        const auto selected = hn::Ne(flags, hn::Zero(wide));
        const auto height = hn::LoadU(wide, heights + index);
        lowest = hn::Min(lowest, hn::IfThenElse(selected, height, lowest));
        highest = hn::Max(highest, hn::IfThenElse(selected, height, highest));
    };
    for (std::size_t index = 0; index + lanes <= count; index += lanes)
    {
        visit(index);
    }
    visit(count - lanes); // the last cells, some of them once more
    extent.lowest = hn::GetLane(hn::MinOfLanes(wide, lowest));
    extent.highest = hn::GetLane(hn::MaxOfLanes(wide, highest));
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(FindHeights);

namespace
{

/** Column of the first selected cell; @p columns when there is none. */
std::size_t FirstSelected(const std::uint8_t* mask, std::size_t columns)
{
    std::size_t column = 0;
    while (column + 8 <= columns && SelectedBytes(mask + column) == 0)
    {
        column += 8;
    }
    while (column < columns && mask[column] == 0)
    {
        ++column;
    }
    return column;
}

/** Column of the last selected cell of a row that has one. */
std::size_t LastSelected(const std::uint8_t* mask, std::size_t columns)
{
    std::size_t end = columns;
    while (end >= 8 && SelectedBytes(mask + end - 8) == 0)
    {
        end -= 8;
    }
    while (mask[end - 1] == 0)
    {
        --end;
    }
    return end - 1;
}

} // namespace

std::optional<RowExtent> ExtentOfSelected(const std::uint8_t* mask, const std::int16_t* heights, std::size_t columns)
{
    const std::size_t first = FirstSelected(mask, columns);
    if (first == columns)
    {
        return std::nullopt;
    }
    RowExtent extent = {first, LastSelected(mask, columns), 0, 0};
    HWY_DYNAMIC_DISPATCH(FindHeights)(mask + first, heights + first, extent.last - first + 1, extent);
    return extent;
}

} // namespace Zvl
#endif
