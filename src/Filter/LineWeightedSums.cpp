#include "Filter/LineWeightedSums.h"

#include "Filter/MissingCells.h"

#include <algorithm>
#include <limits>

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

/** At most 32 bytes: most loads are unaligned, and wider ones would all cross the bounds of cache lines. */
using Single = hn::CappedTag<float, 8>;
using SingleVector = hn::Vec<Single>;
using Integer = hn::Rebind<std::int32_t, Single>;
using Narrow = hn::Rebind<std::int16_t, Single>;

constexpr std::size_t kVectors = 8; ///< of windows at a time
static_assert(kWindowStep % (kVectors * hn::MaxLanes(Single())) == 0);

HeightSpan SpanOfCellsIn(const std::int16_t* HWY_RESTRICT cells, std::size_t count)
{
    const hn::CappedTag<std::int16_t, 16> words;
    const std::size_t lanes = hn::Lanes(words);
    const auto one = hn::Set(words, 1);
    auto lowest = hn::Set(words, std::numeric_limits<std::int16_t>::max());
    auto highest = hn::Set(words, kMissingHeight);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        const auto cell = hn::LoadU(words, cells + i);
        lowest = hn::Min(lowest, hn::Sub(cell, one)); // one less than a missing cell is the highest of all numbers
        highest = hn::Max(highest, cell);
    }
    const HeightSpan rest = SpanOf(cells + i, count - i);
    return {std::min(rest.lowest, hn::GetLane(hn::MinOfLanes(words, lowest)) + 1),
            std::max<int>(rest.highest, hn::GetLane(hn::MaxOfLanes(words, highest)))};
}

std::size_t ToDistancesIn(const std::int16_t* HWY_RESTRICT cells, std::size_t count, int base,
                          float* HWY_RESTRICT distances, float* HWY_RESTRICT present)
{
    const Single single;
    const Integer integer;
    const std::size_t lanes = hn::Lanes(single);
    const auto missing = hn::Set(integer, kMissingHeight);
    const auto level = hn::Set(integer, base);
    const auto one = hn::Set(single, 1.0F);
    auto found = hn::Zero(single);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        const auto cell = hn::PromoteTo(integer, hn::LoadU(Narrow(), cells + i));
        const auto isPresent = hn::RebindMask(single, hn::Ne(cell, missing));
        const auto flag = hn::IfThenElseZero(isPresent, one);
        found = hn::Add(found, flag);
        hn::StoreU(flag, single, present + i);
        hn::StoreU(hn::IfThenElseZero(isPresent, hn::ConvertTo(single, hn::Sub(cell, level))), single, distances + i);
    }
    auto presentCount = static_cast<std::size_t>(hn::GetLane(hn::SumOfLanes(single, found)));
    for (; i < count; ++i)
    {
        const bool isPresent = cells[i] != kMissingHeight;
        presentCount += isPresent ? 1U : 0U;
        present[i] = isPresent ? 1.0F : 0.0F;
        distances[i] = isPresent ? static_cast<float>(cells[i] - base) : 0.0F;
    }
    return presentCount;
}

/** The sums of eight vectors of windows, lanes being windows: enough of them to hide the latency of the additions. */
struct WindowSums
{
    SingleVector v0, v1, v2, v3, v4, v5, v6, v7;
};

HWY_INLINE WindowSums NoSums()
{
    const auto zero = hn::Zero(Single());
    return {zero, zero, zero, zero, zero, zero, zero, zero};
}

/** Calls `visit(sum, offset)` for each vector, @p offset being that of its first window. */
template <typename Visit>
HWY_INLINE void ForEachVector(WindowSums& sums, Visit visit)
{
    const std::size_t lanes = hn::Lanes(Single());
    visit(sums.v0, 0);
    visit(sums.v1, lanes);
    visit(sums.v2, 2 * lanes);
    visit(sums.v3, 3 * lanes);
    visit(sums.v4, 4 * lanes);
    visit(sums.v5, 5 * lanes);
    visit(sums.v6, 6 * lanes);
    visit(sums.v7, 7 * lanes);
}

/** Adds the products with a single weight. */
HWY_INLINE void AddOne(const float* HWY_RESTRICT values, float weight, WindowSums& sums)
{
    const Single single;
    const auto factor = hn::Set(single, weight);
    ForEachVector(sums, [&](SingleVector& sum, std::size_t offset)
                  { sum = hn::MulAdd(hn::LoadU(single, values + offset), factor, sum); });
}

/** Adds the products with three weights that are a vector apart: a vector of cells meets each of them in the place of
 *  another vector of windows, so that ten loads do for twenty-four products. */
HWY_INLINE void AddThree(const float* HWY_RESTRICT values, const float* HWY_RESTRICT weights, WindowSums& sums)
{
    const Single single;
    const std::size_t lanes = hn::Lanes(single);
    const auto weight0 = hn::Set(single, weights[0]);
    const auto weight1 = hn::Set(single, weights[lanes]);
    const auto weight2 = hn::Set(single, weights[2 * lanes]);
    auto here = hn::LoadU(single, values);
    auto next = hn::LoadU(single, values + lanes);
    ForEachVector(sums,
                  [&](SingleVector& sum, std::size_t offset)
                  {
                      const auto last = hn::LoadU(single, values + offset + 2 * lanes);
                      sum = hn::MulAdd(last, weight2, hn::MulAdd(next, weight1, hn::MulAdd(here, weight0, sum)));
                      here = next;
                      next = last;
                  });
}

/** Stores the sums, or adds them to those that are stored. */
HWY_INLINE void Keep(WindowSums& sums, bool areFirst, float* HWY_RESTRICT stored)
{
    const Single single;
    ForEachVector(sums,
                  [&](const SingleVector& sum, std::size_t offset)
                  {
                      float* const place = stored + offset;
                      hn::StoreU(areFirst ? sum : hn::Add(hn::LoadU(single, place), sum), single, place);
                  });
}

void WeightedSumsIn(const float* HWY_RESTRICT values, const float* HWY_RESTRICT weights, std::size_t weightCount,
                    float* HWY_RESTRICT sums, std::size_t count)
{
    const std::size_t lanes = hn::Lanes(Single());
    static_assert(kPartialSum % (3 * hn::MaxLanes(Single())) == 0);
    for (std::size_t position = 0; position < count; position += kVectors * lanes)
    {
        const float* cells = values + position;
        std::size_t t = 0;
        for (; t + kPartialSum <= weightCount; t += kPartialSum)
        {
            WindowSums partial = NoSums();
            for (std::size_t group = t; group < t + kPartialSum; group += 3 * lanes)
            {
                for (std::size_t i = group; i < group + lanes; ++i)
                {
                    AddThree(cells + i, weights + i, partial);
                }
            }
            Keep(partial, t == 0, sums + position);
        }
        if (t < weightCount)
        {
            WindowSums rest = NoSums();
            const bool areFirst = t == 0;
            for (; t < weightCount; ++t)
            {
                AddOne(cells + t, weights[t], rest);
            }
            Keep(rest, areFirst, sums + position);
        }
    }
}

void SharesWithoutMissingIn(const std::size_t* HWY_RESTRICT missing, std::size_t missingCount,
                            const float* HWY_RESTRICT weights, std::size_t weightCount, float total,
                            float* HWY_RESTRICT shares, std::size_t count)
{
    const Single single;
    const std::size_t windows = kVectors * hn::Lanes(single);
    const auto whole = hn::Set(single, total);
    std::size_t from = 0;
    std::size_t to = 0;
    for (std::size_t position = 0; position < count; position += windows)
    {
        for (; from < missingCount && missing[from] < position; ++from)
        {
        }
        for (; to < missingCount && missing[to] < position + windows + weightCount - 1; ++to)
        {
        }
        // Window p meets a cell with weight `cell - p`, which is also the one as far from the other end.
        const auto mirrored = static_cast<std::ptrdiff_t>(weightCount - 1 + position);
        WindowSums sums = NoSums();
        for (std::size_t i = from; i < to; ++i)
        {
            const float* const weight = weights + (mirrored - static_cast<std::ptrdiff_t>(missing[i]));
            ForEachVector(sums, [&](SingleVector& sum, std::size_t offset)
                          { sum = hn::Add(sum, hn::LoadU(single, weight + offset)); });
        }
        ForEachVector(sums, [&](const SingleVector& sum, std::size_t offset)
                      { hn::StoreU(hn::Sub(whole, sum), single, shares + position + offset); });
    }
}

std::size_t RoundQuotientsIn(const float* HWY_RESTRICT sums, const float* HWY_RESTRICT shares, std::size_t count,
                             int base, const Tolerance& tolerance, std::int16_t* HWY_RESTRICT heights,
                             std::size_t* HWY_RESTRICT doubtful)
{
    using Wide = hn::CappedTag<float, 16>; // few loads, much arithmetic
    const Wide single;
    const hn::Rebind<std::int32_t, Wide> integer;
    const hn::Rebind<std::int16_t, Wide> narrow;
    const std::size_t lanes = hn::Lanes(single);
    const auto one = hn::Set(single, 1.0F);
    const auto leastShare = hn::Set(single, tolerance.leastShare);
    const auto leastDivisor = hn::Set(single, std::max(tolerance.leastShare, std::numeric_limits<float>::min()));
    const auto reach = hn::Set(single, 0.5F - tolerance.flat);
    const auto perShare = hn::Set(single, tolerance.perShare);
    std::size_t doubts = 0;
    for (std::size_t p = 0; p < count; p += lanes)
    {
        const auto share = hn::LoadU(single, shares + p);
        const auto isNone = hn::Eq(share, hn::Zero(single));
        const auto inverse = hn::Div(one, hn::Max(share, leastDivisor));
        const auto quotient = hn::Mul(hn::LoadU(single, sums + p), inverse);
        const auto nearest = hn::NearestInt(quotient);
        const auto height = hn::IfThenElse(hn::RebindMask(integer, isNone), hn::Set(integer, kMissingHeight),
                                           hn::Add(nearest, hn::Set(integer, base)));
        hn::StoreU(hn::DemoteTo(narrow, height), narrow, heights + p);
        const auto distance = hn::Abs(hn::Sub(quotient, hn::ConvertTo(single, nearest)));
        const auto trusted = hn::Sub(reach, hn::Mul(perShare, inverse));
        const auto isDoubtful = hn::Or(hn::Lt(share, leastShare), hn::Gt(distance, trusted));
        if (HWY_UNLIKELY(!hn::AllFalse(single, isDoubtful)))
        {
            std::uint8_t bits[8] = {}; // a vector's marks may be written as eight bytes, however few they are
            hn::StoreMaskBits(single, isDoubtful, bits);
            const std::uint64_t marks = std::uint64_t{bits[0]} | std::uint64_t{bits[1]} << 8U;
            ForEachSetBit(marks, p, [&](std::size_t place) { doubtful[doubts++] = place; });
        }
    }
    return doubts;
}

WeightedSum SumOfPresentIn(const std::int16_t* HWY_RESTRICT cells, const double* HWY_RESTRICT weights,
                           std::size_t count)
{
    using Double = hn::ScalableTag<double>;
    const Double wide;
    const std::size_t lanes = hn::Lanes(wide);
    const auto missing = hn::Set(wide, kMissingHeight);
    auto sums = hn::Zero(wide);
    auto shares = hn::Zero(wide);
    std::size_t t = 0;
    for (; t + lanes <= count; t += lanes)
    {
        const auto words = hn::LoadU(hn::Rebind<std::int16_t, Double>(), cells + t);
        const auto cell = hn::PromoteTo(wide, hn::PromoteTo(hn::Rebind<std::int32_t, Double>(), words));
        const auto weight = hn::IfThenElseZero(hn::Ne(cell, missing), hn::LoadU(wide, weights + t));
        sums = hn::MulAdd(cell, weight, sums);
        shares = hn::Add(shares, weight);
    }
    WeightedSum whole = {hn::GetLane(hn::SumOfLanes(wide, sums)), hn::GetLane(hn::SumOfLanes(wide, shares))};
    for (; t < count; ++t)
    {
        const double weight = cells[t] == kMissingHeight ? 0.0 : weights[t];
        whole.sum += cells[t] * weight;
        whole.share += weight;
    }
    return whole;
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(SpanOfCellsIn);
HWY_EXPORT(ToDistancesIn);
HWY_EXPORT(WeightedSumsIn);
HWY_EXPORT(SharesWithoutMissingIn);
HWY_EXPORT(RoundQuotientsIn);
HWY_EXPORT(SumOfPresentIn);

HeightSpan SpanOfCells(const std::int16_t* cells, std::size_t count)
{
    return HWY_DYNAMIC_DISPATCH(SpanOfCellsIn)(cells, count);
}

std::size_t ToDistances(const std::int16_t* cells, std::size_t count, int base, float* distances, float* present)
{
    return HWY_DYNAMIC_DISPATCH(ToDistancesIn)(cells, count, base, distances, present);
}

void WeightedSums(const float* values, const float* weights, std::size_t weightCount, float* sums, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(WeightedSumsIn)(values, weights, weightCount, sums, count);
}

void SharesWithoutMissing(const std::size_t* missing, std::size_t missingCount, const float* weights,
                          std::size_t weightCount, float total, float* shares, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(SharesWithoutMissingIn)(missing, missingCount, weights, weightCount, total, shares, count);
}

std::size_t RoundQuotients(const float* sums, const float* shares, std::size_t count, int base,
                           const Tolerance& tolerance, std::int16_t* heights, std::size_t* doubtful)
{
    return HWY_DYNAMIC_DISPATCH(RoundQuotientsIn)(sums, shares, count, base, tolerance, heights, doubtful);
}

WeightedSum SumOfPresent(const std::int16_t* cells, const double* weights, std::size_t count)
{
    return HWY_DYNAMIC_DISPATCH(SumOfPresentIn)(cells, weights, count);
}

} // namespace Zvl
#endif
