#include "Filter/LineWeightedSums.h"

#include "Filter/Line.h"

#include <array>
#include <cmath>

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

using Real = hn::ScalableTag<double>;
using Integer = hn::Rebind<std::int32_t, Real>;
using Narrow = hn::Rebind<std::int16_t, Real>;
using RealVector = hn::VFromD<Real>;

bool ToNumbers(const std::int16_t* HWY_RESTRICT cells, std::size_t count, double* HWY_RESTRICT numbers)
{
    const Real real;
    const std::size_t lanes = hn::Lanes(real);
    const auto missing = hn::Set(real, kMissingHeight);
    auto lowest = hn::Zero(real);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        const auto cell = hn::PromoteTo(real, hn::PromoteTo(Integer(), hn::LoadU(Narrow(), cells + i)));
        lowest = hn::Min(lowest, cell);
        hn::StoreU(cell, real, numbers + i);
    }
    bool isComplete = hn::AllTrue(real, hn::Ne(lowest, missing));
    for (; i < count; ++i)
    {
        isComplete = isComplete && cells[i] != kMissingHeight;
        numbers[i] = cells[i];
    }
    return isComplete;
}

/** Lanes are windows, so that each keeps its own order; four vectors at a time hide the latency of the additions. */
void WeightedSums(const double* HWY_RESTRICT values, const double* HWY_RESTRICT taps, std::size_t tapCount,
                  double* HWY_RESTRICT sums, std::size_t count)
{
    const Real tag;
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

/** As above; a missing cell adds 0 to both sums. */
void WeightedSumsOfPresent(const double* HWY_RESTRICT values, const double* HWY_RESTRICT taps, std::size_t tapCount,
                           double* HWY_RESTRICT sums, double* HWY_RESTRICT shares, std::size_t count)
{
    const Real real;
    const std::size_t lanes = hn::Lanes(real);
    const auto missing = hn::Set(real, kMissingHeight);
    std::size_t position = 0;
    for (; position + 2 * lanes <= count; position += 2 * lanes)
    {
        auto sum0 = hn::Zero(real);
        auto sum1 = hn::Zero(real);
        auto share0 = hn::Zero(real);
        auto share1 = hn::Zero(real);
        const double* cells = values + position;
        for (std::size_t t = 0; t < tapCount; ++t, ++cells)
        {
            const auto cell0 = hn::LoadU(real, cells);
            const auto cell1 = hn::LoadU(real, cells + lanes);
            const auto tap = hn::Set(real, taps[t]);
            const auto tap0 = hn::IfThenElseZero(hn::Ne(cell0, missing), tap);
            const auto tap1 = hn::IfThenElseZero(hn::Ne(cell1, missing), tap);
            sum0 = hn::Add(sum0, hn::Mul(cell0, tap0));
            sum1 = hn::Add(sum1, hn::Mul(cell1, tap1));
            share0 = hn::Add(share0, tap0);
            share1 = hn::Add(share1, tap1);
        }
        hn::StoreU(sum0, real, sums + position);
        hn::StoreU(sum1, real, sums + position + lanes);
        hn::StoreU(share0, real, shares + position);
        hn::StoreU(share1, real, shares + position + lanes);
    }
    for (; position < count; ++position)
    {
        double sum = 0.0;
        double share = 0.0;
        for (std::size_t t = 0; t < tapCount; ++t)
        {
            const double tap = values[position + t] == kMissingHeight ? 0.0 : taps[t];
            sum += values[position + t] * tap;
            share += tap;
        }
        sums[position] = sum;
        shares[position] = share;
    }
}

/** Rounds half away from zero. */
HWY_INLINE RealVector Rounded(RealVector number)
{
    const auto half = hn::Set(Real(), 0.5);
    const auto isAbove = hn::Gt(number, hn::Zero(Real()));
    return hn::Trunc(hn::IfThenElse(isAbove, hn::Add(number, half), hn::Sub(number, half)));
}

HWY_INLINE std::int16_t RoundedOne(double number)
{
    return static_cast<std::int16_t>(static_cast<int>(number > 0.0 ? number + 0.5 : number - 0.5));
}

HWY_INLINE void StoreHeights(RealVector numbers, std::int16_t* heights)
{
    hn::StoreU(hn::DemoteTo(Narrow(), hn::DemoteTo(Integer(), numbers)), Narrow(), heights);
}

void RoundSums(const double* HWY_RESTRICT sums, std::size_t count, std::int16_t* HWY_RESTRICT heights)
{
    const Real real;
    const std::size_t lanes = hn::Lanes(real);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        StoreHeights(Rounded(hn::LoadU(real, sums + i)), heights + i);
    }
    for (; i < count; ++i)
    {
        heights[i] = RoundedOne(sums[i]);
    }
}

std::size_t RoundQuotients(const double* HWY_RESTRICT sums, const double* HWY_RESTRICT shares, std::size_t count,
                           double tolerance, std::int16_t* HWY_RESTRICT heights, std::size_t* HWY_RESTRICT doubtful)
{
    const Real real;
    const std::size_t lanes = hn::Lanes(real);
    std::size_t doubts = 0;
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        const auto share = hn::LoadU(real, shares + i);
        const auto isMissing = hn::Eq(share, hn::Zero(real));
        const auto mean = hn::Div(hn::LoadU(real, sums + i), hn::IfThenElse(isMissing, hn::Set(real, 1.0), share));
        StoreHeights(hn::IfThenElse(isMissing, hn::Set(real, kMissingHeight), Rounded(mean)), heights + i);
        const auto magnitude = hn::Abs(mean);
        const auto toHalf = hn::Abs(hn::Sub(hn::Sub(magnitude, hn::Trunc(magnitude)), hn::Set(real, 0.5)));
        // Without a share the mean is 0, which is beyond doubt.
        const auto isDoubtful = hn::Le(toHalf, hn::Set(real, tolerance));
        if (HWY_UNLIKELY(!hn::AllFalse(real, isDoubtful)))
        {
            std::array<double, hn::MaxLanes(Real())> flags;
            hn::StoreU(hn::IfThenElseZero(isDoubtful, hn::Set(real, 1.0)), real, flags.data());
            for (std::size_t lane = 0; lane < lanes; ++lane)
            {
                doubtful[doubts] = i + lane;
                doubts += flags[lane] != 0.0 ? 1U : 0U;
            }
        }
    }
    for (; i < count; ++i)
    {
        const double mean = shares[i] == 0.0 ? 0.0 : sums[i] / shares[i];
        const double magnitude = std::abs(mean);
        heights[i] = shares[i] == 0.0 ? kMissingHeight : RoundedOne(mean);
        doubtful[doubts] = i;
        doubts += std::abs(magnitude - std::trunc(magnitude) - 0.5) <= tolerance ? 1U : 0U;
    }
    return doubts;
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(ToNumbers);
HWY_EXPORT(WeightedSums);
HWY_EXPORT(WeightedSumsOfPresent);
HWY_EXPORT(RoundSums);
HWY_EXPORT(RoundQuotients);

bool ToNumbers(const std::int16_t* cells, std::size_t count, double* numbers)
{
    return HWY_DYNAMIC_DISPATCH(ToNumbers)(cells, count, numbers);
}

void WeightedSums(const double* values, const double* taps, std::size_t tapCount, double* sums, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(WeightedSums)(values, taps, tapCount, sums, count);
}

void WeightedSumsOfPresent(const double* values, const double* taps, std::size_t tapCount, double* sums, double* shares,
                           std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(WeightedSumsOfPresent)(values, taps, tapCount, sums, shares, count);
}

void RoundSums(const double* sums, std::size_t count, std::int16_t* heights)
{
    HWY_DYNAMIC_DISPATCH(RoundSums)(sums, count, heights);
}

std::size_t RoundQuotients(const double* sums, const double* shares, std::size_t count, double tolerance,
                           std::int16_t* heights, std::size_t* doubtful)
{
    return HWY_DYNAMIC_DISPATCH(RoundQuotients)(sums, shares, count, tolerance, heights, doubtful);
}

} // namespace Zvl
#endif
