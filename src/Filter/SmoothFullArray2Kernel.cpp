#include "Filter/SmoothFullArray2Kernel.h"

#include <ZdkVisionLib/Common/Common.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/SmoothFullArray2Kernel.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace
{

namespace hn = hwy::HWY_NAMESPACE;

using Sums = hn::ScalableTag<std::int64_t>;
using Real = hn::Rebind<double, Sums>;
using Middle = hn::Rebind<std::int32_t, Sums>;
using Narrow = hn::Rebind<std::int16_t, Sums>;

/** Cells in 32 bits, of which half a vector becomes a whole one of sums. */
HWY_INLINE hn::VFromD<Middle> LoadCells(const std::int16_t* cells)
{
    return hn::PromoteTo(Middle(), hn::LoadU(Narrow(), cells));
}

HWY_INLINE auto IsNull(hn::VFromD<Middle> cells)
{
    return hn::Eq(cells, hn::Set(Middle(), GetNull<short>()));
}

void MoveSums(const std::int16_t* entering, const std::int16_t* leaving, const HeightSums& columns, std::size_t count)
{
    const Sums sums;
    const Middle middle;
    const std::size_t lanes = hn::Lanes(sums);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto in = LoadCells(entering + index);
        const auto out = LoadCells(leaving + index);
        const auto noneIn = IsNull(in);
        const auto noneOut = IsNull(out);
        const auto heights = hn::Sub(hn::IfThenZeroElse(noneIn, in), hn::IfThenZeroElse(noneOut, out));
        // A mask is -1 in its lanes.
        const auto cells = hn::Sub(hn::VecFromMask(middle, noneIn), hn::VecFromMask(middle, noneOut));
        hn::StoreU(hn::Add(hn::LoadU(sums, columns.heights + index), hn::PromoteTo(sums, heights)), sums,
                   columns.heights + index);
        hn::StoreU(hn::Add(hn::LoadU(sums, columns.cells + index), hn::PromoteTo(sums, cells)), sums,
                   columns.cells + index);
    }
    for (; index < count; ++index)
    {
        const bool isIn = entering[index] != GetNull<short>();
        const bool isOut = leaving[index] != GetNull<short>();
        columns.heights[index] += (isIn ? entering[index] : 0) - (isOut ? leaving[index] : 0);
        columns.cells[index] += static_cast<int>(isIn) - static_cast<int>(isOut);
    }
}

/** A double holds each sum exactly, up to boxes of 2^38 cells, and a quotient that is no integer lies further below the
 *  next one than rounding can lift it: truncated, it is the integer quotient. */
void Divide(const HeightSums& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
            std::size_t count)
{
    const Sums sums;
    const Real real;
    const Middle middle;
    const std::size_t lanes = hn::Lanes(sums);
    const auto one = hn::Set(sums, 1);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto heights =
            hn::Sub(hn::LoadU(sums, prefix.heights + index + width), hn::LoadU(sums, prefix.heights + index));
        const auto cells =
            hn::Sub(hn::LoadU(sums, prefix.cells + index + width), hn::LoadU(sums, prefix.cells + index));
        const auto old = LoadCells(centre + index);
        // Only the box of a missing height can be without any: the one keeps its quotient finite.
        const auto quotient = hn::Div(hn::ConvertTo(real, heights), hn::ConvertTo(real, hn::Max(cells, one)));
        const auto mean = hn::DemoteTo(middle, quotient);
        hn::StoreU(hn::DemoteTo(Narrow(), hn::IfThenElse(IsNull(old), old, mean)), Narrow(), out + index);
    }
    for (; index < count; ++index)
    {
        const std::int64_t heights = prefix.heights[index + width] - prefix.heights[index];
        const std::int64_t cells = prefix.cells[index + width] - prefix.cells[index];
        const bool isNull = centre[index] == GetNull<short>();
        out[index] = isNull ? centre[index] : static_cast<std::int16_t>(heights / cells);
    }
}

} // namespace

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(MoveSums);
HWY_EXPORT(Divide);

void MoveColumnSums(const std::int16_t* entering, const std::int16_t* leaving, const HeightSums& columns,
                    std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(MoveSums)(entering, leaving, columns, count);
}

void DivideRow(const HeightSums& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
               std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(Divide)(prefix, width, centre, out, count);
}

} // namespace Zvl
#endif
