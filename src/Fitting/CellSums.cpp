#include "Fitting/CellSums.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/CellSums.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Cells16 = hn::ScalableTag<std::int16_t>;
using Sums32 = hn::RepartitionToWide<Cells16>;
using Cell = hn::VFromD<Cells16>;
using Sum = hn::VFromD<Sums32>;

/** All bits of a lane set for a selected cell of the stretch, none for other cells. */
HWY_INLINE Cell SelectedLanes(const RowStretch& stretch, std::size_t index, Cell columns)
{
    const Cells16 wide;
    const hn::Rebind<std::uint8_t, Cells16> narrow;
    const Cell flags = hn::PromoteTo(wide, hn::LoadU(narrow, stretch.mask + index));
    // Against the last column, not the length: 32768 would not fit.
    const Cell last = hn::Set(wide, static_cast<std::int16_t>(stretch.length - 1));
    return hn::VecFromMask(wide, hn::AndNot(hn::Gt(columns, last), hn::Ne(flags, hn::Zero(wide))));
}

/** @p sum with the products of neighbouring lanes added. */
HWY_INLINE Sum AddProducts(Cell a, Cell b, Sum sum)
{
    const Sums32 wide;
    Sum rest = hn::Zero(wide);
    sum = hn::ReorderWidenMulAccumulate(wide, a, b, sum, rest);
    return hn::Add(sum, rest);
}

HWY_INLINE std::int64_t Total(Sum sum)
{
    return hn::GetLane(hn::SumOfLanes(Sums32(), sum));
}

CellSums SumCellsOf(const RowStretch& stretch)
{
    const Cells16 wide;
    const Sums32 sums;
    const std::size_t lanes = hn::Lanes(wide);
    const Cell one = hn::Set(wide, 1);
    Sum cells = hn::Zero(sums);
    Sum columns = hn::Zero(sums);
    Sum heights = hn::Zero(sums);
    std::size_t index = 0;
    for (; index < stretch.length && index + lanes <= stretch.readable; index += lanes)
    {
        const Cell column = hn::Iota(wide, static_cast<std::int16_t>(index));
        const Cell selected = SelectedLanes(stretch, index, column);
        cells = AddProducts(selected, selected, cells);
        columns = AddProducts(hn::And(column, selected), one, columns);
        heights = AddProducts(hn::And(hn::LoadU(wide, stretch.heights + index), selected), one, heights);
    }
    CellSums total{Total(cells), Total(columns), Total(heights)};
    for (; index < stretch.length; ++index)
    {
        if (stretch.mask[index] != 0)
        {
            total.cells += 1;
            total.columns += static_cast<std::int64_t>(index);
            total.heights += stretch.heights[index];
        }
    }
    return total;
}

/** A square of a height needs 31 bits, so that their sum would not fit in 32. The height is therefore taken
 *  apart into a signed high and an unsigned low byte. */
CellMoments SumMomentsOf(const RowStretch& stretch)
{
    const Cells16 wide;
    const Sums32 sums;
    const std::size_t lanes = hn::Lanes(wide);
    const Cell one = hn::Set(wide, 1);
    const Cell lowByte = hn::Set(wide, 255);
    Sum cells = hn::Zero(sums);
    Sum columns = hn::Zero(sums);
    Sum heights = hn::Zero(sums);
    Sum squaredColumns = hn::Zero(sums);
    Sum columnsTimesHeights = hn::Zero(sums);
    Sum squaredHigh = hn::Zero(sums);
    Sum highTimesLow = hn::Zero(sums);
    Sum squaredLow = hn::Zero(sums);
    std::size_t index = 0;
    for (; index < stretch.length && index + lanes <= stretch.readable; index += lanes)
    {
        const Cell column = hn::Iota(wide, static_cast<std::int16_t>(index));
        const Cell selected = SelectedLanes(stretch, index, column);
        const Cell u = hn::And(column, selected);
        const Cell h = hn::And(hn::LoadU(wide, stretch.heights + index), selected);
        const Cell high = hn::ShiftRight<8>(h);
        const Cell low = hn::And(h, lowByte);
        cells = AddProducts(selected, selected, cells);
        columns = AddProducts(u, one, columns);
        heights = AddProducts(h, one, heights);
        squaredColumns = AddProducts(u, u, squaredColumns);
        columnsTimesHeights = AddProducts(u, h, columnsTimesHeights);
        squaredHigh = AddProducts(high, high, squaredHigh);
        highTimesLow = AddProducts(high, low, highTimesLow);
        squaredLow = AddProducts(low, low, squaredLow);
    }
    CellMoments total;
    total.cells = Total(cells);
    total.columns = Total(columns);
    total.heights = Total(heights);
    total.squaredColumns = Total(squaredColumns);
    total.columnsTimesHeights = Total(columnsTimesHeights);
    total.squaredHeights = 65536 * Total(squaredHigh) + 512 * Total(highTimesLow) + Total(squaredLow);
    for (; index < stretch.length; ++index)
    {
        if (stretch.mask[index] != 0)
        {
            const auto column = static_cast<std::int64_t>(index);
            const std::int64_t height = stretch.heights[index];
            total.cells += 1;
            total.columns += column;
            total.heights += height;
            total.squaredColumns += column * column;
            total.columnsTimesHeights += column * height;
            total.squaredHeights += height * height;
        }
    }
    return total;
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(SumCellsOf);
HWY_EXPORT(SumMomentsOf);

CellSums SumCells(const RowStretch& stretch)
{
    return HWY_DYNAMIC_DISPATCH(SumCellsOf)(stretch);
}

CellMoments SumMoments(const RowStretch& stretch)
{
    return HWY_DYNAMIC_DISPATCH(SumMomentsOf)(stretch);
}

} // namespace Zvl
#endif
