#include "Filter/LineSmallMedian.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/LineSmallMedian.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <limits>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{
namespace
{

namespace hn = hwy::HWY_NAMESPACE;

/** (a + b) / 2 truncated toward zero. Half of the sum, rounded down, is what the bits of both have in common and
 *  half of where they differ; it is one too low when it is negative and the sum is odd. */
template <typename Vector>
HWY_INLINE Vector TruncatedMean(Vector a, Vector b)
{
    const hn::DFromV<Vector> tag;
    const auto differing = hn::Xor(a, b);
    const auto floor = hn::Add(hn::And(a, b), hn::ShiftRight<1>(differing));
    const auto isOdd = hn::And(differing, hn::Set(tag, 1));
    return hn::Add(floor, hn::And(isOdd, hn::BroadcastSignBit(floor)));
}

/** Each lane is a window. All its cells are sorted by exchanges; missing ones rank first, so that the n valid cells
 *  have the ranks from window - n on. */
template <std::size_t window>
HWY_INLINE void MediansOfVector(const std::int16_t* HWY_RESTRICT cells, std::int16_t* HWY_RESTRICT medians)
{
    const hn::ScalableTag<std::int16_t> tag;
    using Vector = hn::VFromD<decltype(tag)>;
    const auto null = hn::Set(tag, std::numeric_limits<std::int16_t>::min());
    Vector sorted[window];
    auto missing = hn::Zero(tag);
    for (std::size_t i = 0; i < window; ++i)
    {
        Vector cell = hn::LoadU(tag, cells + i);
        missing = hn::Sub(missing, hn::VecFromMask(tag, hn::Eq(cell, null)));
        for (std::size_t rank = 0; rank < i; ++rank)
        {
            const auto lower = hn::Min(sorted[rank], cell);
            cell = hn::Max(sorted[rank], cell);
            sorted[rank] = lower;
        }
        sorted[i] = cell;
    }
    // Ranks (n - 1) / 2 and n / 2 of the valid cells: half of window + missing, less one for the lower.
    const auto twice = hn::Add(missing, hn::Set(tag, static_cast<std::int16_t>(window)));
    const auto upperRank = hn::ShiftRight<1>(twice);
    const auto lowerRank = hn::ShiftRight<1>(hn::Sub(twice, hn::Set(tag, 1)));
    auto upper = null;
    auto lower = null;
    for (std::size_t rank = window / 2; rank < window; ++rank)
    {
        const auto index = hn::Set(tag, static_cast<std::int16_t>(rank));
        upper = hn::IfThenElse(hn::Eq(upperRank, index), sorted[rank], upper);
        lower = hn::IfThenElse(hn::Eq(lowerRank, index), sorted[rank], lower);
    }
    const auto noneValid = hn::Eq(sorted[window - 1], null);
    hn::StoreU(hn::IfThenElse(noneValid, null, TruncatedMean(lower, upper)), tag, medians);
}

template <std::size_t window>
void MediansOfWindow(const std::int16_t* HWY_RESTRICT cells, std::int16_t* HWY_RESTRICT medians, std::size_t count)
{
    const std::size_t lanes = hn::Lanes(hn::ScalableTag<std::int16_t>());
    for (std::size_t i = 0; i < count; i += lanes)
    {
        MediansOfVector<window>(cells + i, medians + i);
    }
}

} // namespace

void SmallMedians(const std::int16_t* HWY_RESTRICT cells, std::size_t window, std::int16_t* HWY_RESTRICT medians,
                  std::size_t count)
{
    switch (window)
    {
    case 3:
        return MediansOfWindow<3>(cells, medians, count);
    case 5:
        return MediansOfWindow<5>(cells, medians, count);
    case 7:
        return MediansOfWindow<7>(cells, medians, count);
    case 9:
        return MediansOfWindow<9>(cells, medians, count);
    case 11:
        return MediansOfWindow<11>(cells, medians, count);
    case 13:
        return MediansOfWindow<13>(cells, medians, count);
    default:
        return MediansOfWindow<15>(cells, medians, count);
    }
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(SmallMedians);

void SmallMedians(const std::int16_t* cells, std::size_t window, std::int16_t* medians, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(SmallMedians)(cells, window, medians, count);
}

} // namespace Zvl
#endif
