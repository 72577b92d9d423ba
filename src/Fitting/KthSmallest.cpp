#include "Fitting/KthSmallest.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/KthSmallest.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** At most 32 bytes: wider vectors take as long for each byte, and leave longer ends. */
using Reals = hn::CappedTag<double, 4>;

/** A plain loop, which the compiler turns into the vectors of each instruction set. */
void CountUpTo(const double* values, std::size_t count, double pivot, std::size_t& below, std::size_t& equal)
{
    std::size_t less = 0;
    std::size_t same = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        less += values[i] < pivot ? 1 : 0;
        same += values[i] == pivot ? 1 : 0;
    }
    below = less;
    equal = same;
}

/** Keeps the values below @p pivot, or those above it, at the front, in their order. No branch depends on a value: it would
 *  be mispredicted, which is what costs most in selecting.
 *  @return their number */
std::size_t KeepOneSide(double* values, std::size_t count, double pivot, bool keepBelow)
{
    const Reals d;
    const std::size_t lanes = hn::Lanes(d);
    const auto sign = hn::Set(d, keepBelow ? 1.0 : -1.0);
    const auto signedPivots = hn::Set(d, keepBelow ? pivot : -pivot);
    std::size_t kept = 0;
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        const auto next = hn::LoadU(d, values + i);
        const auto isWanted = hn::Lt(hn::Mul(next, sign), signedPivots);
        hn::StoreU(hn::Compress(next, isWanted), d, values + kept); // never beyond what has been read
        kept += hn::CountTrue(d, isWanted);
    }
    for (; i < count; ++i)
    {
        const double next = values[i];
        values[kept] = next;
        kept += (keepBelow ? next < pivot : next > pivot) ? 1 : 0;
    }
    return kept;
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(CountUpTo);
HWY_EXPORT(KeepOneSide);

namespace
{

constexpr std::size_t kFew = 32;
constexpr int kMostRounds = 40; // halving takes 40 for a million million values

double MedianOf(double a, double b, double c)
{
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

/** The median of three medians of three, from all over the values. */
double Pivot(const double* values, std::size_t count)
{
    const auto at = [=](std::size_t eighths) { return values[(count - 1) / 8 * eighths]; };
    return MedianOf(MedianOf(at(0), at(3), at(6)), MedianOf(at(1), at(4), at(7)), MedianOf(at(2), at(5), at(8)));
}

} // namespace

// C. A. R. Hoare, Algorithm 65: Find, Communications of the ACM 4(7), 1961, with the part that is not wanted dropped. Bad
// pivots, which none but chosen values lead to, leave the rest to the standard library, whose worst case is guarded.
double KthSmallest(double* values, std::size_t count, std::size_t k)
{
    for (int round = 0; round < kMostRounds && count > kFew; ++round)
    {
        const double pivot = Pivot(values, count);
        std::size_t below = 0;
        std::size_t equal = 0;
        HWY_DYNAMIC_DISPATCH(CountUpTo)(values, count, pivot, below, equal);
        if (k >= below && k < below + equal)
        {
            return pivot;
        }
        const bool isBelow = k < below;
        k -= isBelow ? 0 : below + equal;
        count = HWY_DYNAMIC_DISPATCH(KeepOneSide)(values, count, pivot, isBelow);
    }
    std::nth_element(values, values + k, values + count);
    return values[k];
}

} // namespace Zvl
#endif
