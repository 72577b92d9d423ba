#include "Filter/LineWeightedSums.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/LineWeightedSums.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** Lanes are windows, so that each keeps its own order; four vectors at a time hide the latency of the additions. */
void WeightedSums(const double* HWY_RESTRICT values, const double* HWY_RESTRICT taps, std::size_t tapCount,
                  double* HWY_RESTRICT sums, std::size_t count)
{
    const hn::ScalableTag<double> tag;
    const std::size_t lanes = hn::Lanes(tag);
    std::size_t position = 0;
    for (; position + 4 * lanes <= count; position += 4 * lanes)
    {
        auto sum0 = hn::Zero(tag);
        auto sum1 = hn::Zero(tag);
        auto sum2 = hn::Zero(tag);
        auto sum3 = hn::Zero(tag);
        const double* cells = values + position;
        for (std::size_t t = 0; t < tapCount; ++t, ++cells)
        {
            const auto tap = hn::Set(tag, taps[t]);
            sum0 = hn::Add(sum0, hn::Mul(hn::LoadU(tag, cells), tap));
            sum1 = hn::Add(sum1, hn::Mul(hn::LoadU(tag, cells + lanes), tap));
            sum2 = hn::Add(sum2, hn::Mul(hn::LoadU(tag, cells + 2 * lanes), tap));
            sum3 = hn::Add(sum3, hn::Mul(hn::LoadU(tag, cells + 3 * lanes), tap));
        }
        hn::StoreU(sum0, tag, sums + position);
        hn::StoreU(sum1, tag, sums + position + lanes);
        hn::StoreU(sum2, tag, sums + position + 2 * lanes);
        hn::StoreU(sum3, tag, sums + position + 3 * lanes);
    }
    for (; position < count; ++position)
    {
        double sum = 0.0;
        for (std::size_t t = 0; t < tapCount; ++t)
        {
            sum += values[position + t] * taps[t];
        }
        sums[position] = sum;
    }
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(WeightedSums);

void WeightedSums(const double* values, const double* taps, std::size_t tapCount, double* sums, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(WeightedSums)(values, taps, tapCount, sums, count);
}

} // namespace Zvl
#endif
