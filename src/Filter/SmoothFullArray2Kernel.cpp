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

template <typename Integer>
using Sums = hn::ScalableTag<Integer>;
template <typename Integer>
using Middle = hn::Rebind<std::int32_t, Sums<Integer>>;
template <typename Integer>
using Narrow = hn::Rebind<std::int16_t, Sums<Integer>>;

/** Cells in 32 bits, as many as there are sums in a vector. */
template <typename Integer>
HWY_INLINE hn::VFromD<Middle<Integer>> LoadCells(const std::int16_t* cells)
{
    return hn::PromoteTo(Middle<Integer>(), hn::LoadU(Narrow<Integer>(), cells));
}

template <typename Integer>
HWY_INLINE auto IsNull(hn::VFromD<Middle<Integer>> cells)
{
    return hn::Eq(cells, hn::Set(Middle<Integer>(), GetNull<short>()));
}

/** @p cells as sums, which may be wider. */
template <typename Integer>
HWY_INLINE hn::VFromD<Sums<Integer>> Widened(hn::VFromD<Middle<Integer>> cells)
{
    if constexpr (sizeof(Integer) == sizeof(std::int32_t))
    {
        return cells;
    }
    else
    {
        return hn::PromoteTo(Sums<Integer>(), cells);
    }
}

/** Adds to each lane the one that is @p kDistance before it. */
template <int kDistance, class Tag>
HWY_INLINE hn::VFromD<Tag> AddEarlier(Tag tag, hn::VFromD<Tag> v)
{
    const auto distance = hn::Set(tag, kDistance);
    const auto lanes = hn::Iota(tag, 0);
    const auto earlier = hn::IndicesFromVec(tag, hn::Max(hn::Sub(lanes, distance), hn::Zero(tag)));
    return hn::Add(v, hn::IfThenZeroElse(hn::Lt(lanes, distance), hn::TableLookupLanes(v, earlier)));
}

/** In each lane the sum of all lanes up to it (Hillis and Steele, Data parallel algorithms, 1986). */
template <class Tag>
HWY_INLINE hn::VFromD<Tag> Scan(Tag tag, hn::VFromD<Tag> v)
{
    constexpr std::size_t kLanes = hn::MaxLanes(Tag());
    if constexpr (kLanes > 1)
    {
        v = AddEarlier<1>(tag, v);
    }
    if constexpr (kLanes > 2)
    {
        v = AddEarlier<2>(tag, v);
    }
    if constexpr (kLanes > 4)
    {
        v = AddEarlier<4>(tag, v);
    }
    if constexpr (kLanes > 8)
    {
        v = AddEarlier<8>(tag, v);
    }
    return v;
}

/** Sums of columns, and the sum of those up to each, from left to right. */
template <typename Integer>
class RunningSums
{
public:
    HWY_INLINE RunningSums(Integer* columns, Integer* prefix)
        : columns(columns), prefix(prefix), total(hn::Zero(Sums<Integer>()))
    {
    }

    HWY_INLINE void Change(std::size_t column, hn::VFromD<Middle<Integer>> change)
    {
        const Sums<Integer> tag;
        const auto last = hn::IndicesFromVec(tag, hn::Set(tag, static_cast<Integer>(hn::Lanes(tag)) - 1));
        const auto sums = hn::Add(hn::LoadU(tag, columns + column), Widened<Integer>(change));
        const auto scan = Scan(tag, sums);
        hn::StoreU(sums, tag, columns + column);
        hn::StoreU(hn::Add(total, scan), tag, prefix + column);
        total = hn::Add(total, hn::TableLookupLanes(scan, last));
    }

    HWY_INLINE void ChangeOne(std::size_t column, int change)
    {
        columns[column] += change;
        prefix[column] = Sum(column == 0 ? 0 : prefix[column - 1], columns[column]);
    }

private:
    Integer* columns;
    Integer* prefix;
    hn::VFromD<Sums<Integer>> total;
};

template <typename Integer>
HWY_INLINE void Move(const std::int16_t* entering, const std::int16_t* leaving, std::size_t count,
                     const HeightSums<Integer>& columns, const HeightSums<Integer>& prefix)
{
    const Middle<Integer> middle;
    const std::size_t lanes = hn::Lanes(middle);
    RunningSums<Integer> heights(columns.heights, prefix.heights);
    RunningSums<Integer> cells(columns.cells, prefix.cells);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto in = LoadCells<Integer>(entering + index);
        const auto out = LoadCells<Integer>(leaving + index);
        const auto noneIn = IsNull<Integer>(in);
        const auto noneOut = IsNull<Integer>(out);
        heights.Change(index, hn::Sub(hn::IfThenZeroElse(noneIn, in), hn::IfThenZeroElse(noneOut, out)));
        // A mask is -1 in its lanes.
        cells.Change(index, hn::Sub(hn::VecFromMask(middle, noneIn), hn::VecFromMask(middle, noneOut)));
    }
    for (; index < count; ++index)
    {
        const bool isIn = entering[index] != GetNull<short>();
        const bool isOut = leaving[index] != GetNull<short>();
        heights.ChangeOne(index, (isIn ? entering[index] : 0) - (isOut ? leaving[index] : 0));
        cells.ChangeOne(index, static_cast<int>(isIn) - static_cast<int>(isOut));
    }
}

/** A double holds each sum exactly, up to boxes of 2^38 cells, and a quotient that is no integer lies further below the
 *  next one than rounding can lift it: truncated, it is the integer quotient. */
HWY_INLINE auto Quotient(hn::VFromD<Sums<std::int64_t>> heights, hn::VFromD<Sums<std::int64_t>> cells)
{
    const hn::Rebind<double, Sums<std::int64_t>> real;
    return hn::DemoteTo(Middle<std::int64_t>(), hn::Div(hn::ConvertTo(real, heights), hn::ConvertTo(real, cells)));
}

/** In single precision the quotient, at most 32767, is less than one off, which shows in what it leaves of the sum. */
HWY_INLINE auto Quotient(hn::VFromD<Sums<std::int32_t>> heights, hn::VFromD<Sums<std::int32_t>> cells)
{
    const Sums<std::int32_t> tag;
    const hn::RebindToFloat<Sums<std::int32_t>> real;
    const auto magnitude = hn::Abs(heights);
    const auto guess = hn::ConvertTo(tag, hn::Div(hn::ConvertTo(real, magnitude), hn::ConvertTo(real, cells)));
    const auto rest = hn::Sub(magnitude, hn::Mul(guess, cells));
    const auto tooHigh = hn::VecFromMask(tag, hn::Lt(rest, hn::Zero(tag))); // -1 where it is
    const auto highEnough = hn::VecFromMask(tag, hn::Lt(rest, cells));
    // One is added where the rest still holds the count.
    const auto exact = hn::Add(hn::Add(guess, tooHigh), hn::Add(highEnough, hn::Set(tag, 1)));
    return hn::IfThenElse(hn::Lt(heights, hn::Zero(tag)), hn::Neg(exact), exact);
}

template <typename Integer>
HWY_INLINE void Divide(const HeightSums<Integer>& prefix, std::size_t width, const std::int16_t* centre,
                       std::int16_t* out, std::size_t count)
{
    const Sums<Integer> sums;
    const Narrow<Integer> narrow;
    const std::size_t lanes = hn::Lanes(sums);
    const auto one = hn::Set(sums, 1);
    const auto between = [&](const Integer* sumsUpTo) HWY_ATTR
    { return hn::Sub(hn::LoadU(sums, sumsUpTo + width), hn::LoadU(sums, sumsUpTo)); };
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto old = LoadCells<Integer>(centre + index);
        // Only the box of a missing height can be without any: the one keeps its quotient finite.
        const auto mean = Quotient(between(prefix.heights + index), hn::Max(between(prefix.cells + index), one));
        hn::StoreU(hn::DemoteTo(narrow, hn::IfThenElse(IsNull<Integer>(old), old, mean)), narrow, out + index);
    }
    for (; index < count; ++index)
    {
        const Integer heights = Difference(prefix.heights[index + width], prefix.heights[index]);
        const Integer cells = Difference(prefix.cells[index + width], prefix.cells[index]);
        const bool isNull = centre[index] == GetNull<short>();
        out[index] = isNull ? centre[index] : static_cast<std::int16_t>(heights / cells);
    }
}

// What the dispatch takes has no template arguments.

void Move32(const std::int16_t* entering, const std::int16_t* leaving, std::size_t count,
            const HeightSums<std::int32_t>& columns, const HeightSums<std::int32_t>& prefix)
{
    Move(entering, leaving, count, columns, prefix);
}

void Move64(const std::int16_t* entering, const std::int16_t* leaving, std::size_t count,
            const HeightSums<std::int64_t>& columns, const HeightSums<std::int64_t>& prefix)
{
    Move(entering, leaving, count, columns, prefix);
}

void Divide32(const HeightSums<std::int32_t>& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
              std::size_t count)
{
    Divide(prefix, width, centre, out, count);
}

void Divide64(const HeightSums<std::int64_t>& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
              std::size_t count)
{
    Divide(prefix, width, centre, out, count);
}

} // namespace

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(Move32);
HWY_EXPORT(Move64);
HWY_EXPORT(Divide32);
HWY_EXPORT(Divide64);

void MoveColumnSums(const std::int16_t* entering, const std::int16_t* leaving, std::size_t count,
                    const HeightSums<std::int32_t>& columns, const HeightSums<std::int32_t>& prefix)
{
    HWY_DYNAMIC_DISPATCH(Move32)(entering, leaving, count, columns, prefix);
}

void MoveColumnSums(const std::int16_t* entering, const std::int16_t* leaving, std::size_t count,
                    const HeightSums<std::int64_t>& columns, const HeightSums<std::int64_t>& prefix)
{
    HWY_DYNAMIC_DISPATCH(Move64)(entering, leaving, count, columns, prefix);
}

void DivideRow(const HeightSums<std::int32_t>& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
               std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(Divide32)(prefix, width, centre, out, count);
}

void DivideRow(const HeightSums<std::int64_t>& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
               std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(Divide64)(prefix, width, centre, out, count);
}

} // namespace Zvl
#endif
