#include "Filter/SurfaceDecimateKernel.h"

#include <ZdkVisionLib/Common/Common.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/SurfaceDecimateKernel.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Doubles = hn::ScalableTag<double>;
using Integers = hn::Rebind<std::int32_t, Doubles>;
using Double = hn::VFromD<Doubles>;

HWY_INLINE Double HeightsAt(const std::int16_t* cells)
{
    const hn::Rebind<std::int16_t, Doubles> narrow;
    return hn::PromoteTo(Doubles(), hn::PromoteTo(Integers(), hn::LoadU(narrow, cells)));
}

HWY_INLINE Double IntensitiesAt(const std::uint8_t* cells)
{
    const hn::Rebind<std::uint8_t, Doubles> narrow;
    return hn::PromoteTo(Doubles(), hn::PromoteTo(Integers(), hn::LoadU(narrow, cells)));
}

/** An item of AreaSums. */
struct Item
{
    double sum;
    double weight;
};

/** Adds the rows of a column to its item. Cells without a height do not count. */
template <typename T>
Item SumColumn(const RowBand& band, const T* cells, std::size_t column, Item item)
{
    for (std::size_t row = 0; row < band.rows; ++row)
    {
        const std::size_t cell = row * band.stride + column;
        if (band.heights[cell] != GetNull<short>())
        {
            item.sum += cells[cell] * band.shares[row];
            item.weight += band.shares[row];
        }
    }
    return item;
}

template <typename T>
void SumSomeColumns(const RowBand& band, const T* cells, std::size_t begin, std::size_t end, bool starts, double* sums)
{
    for (std::size_t column = begin; column < end; ++column)
    {
        double* item = sums + 2 * column;
        const Item sum = SumColumn(band, cells, column, starts ? Item{0.0, 0.0} : Item{item[0], item[1]});
        item[0] = sum.sum;
        item[1] = sum.weight;
    }
}

/** All columns that fill vectors; returns their number. */
template <bool hasIntensities>
std::size_t SumVectors(const RowBand& band, std::size_t columns, bool starts, const AreaSums& sums)
{
    const Doubles doubles;
    const std::size_t lanes = hn::Lanes(doubles);
    const Double missing = hn::Set(doubles, GetNull<short>());
    std::size_t column = 0;
    for (; column + lanes <= columns; column += lanes)
    {
        Double height = hn::Zero(doubles);
        Double weight = hn::Zero(doubles);
        Double intensity = hn::Zero(doubles);
        if (!starts)
        {
            if constexpr (hasIntensities)
            {
                hn::LoadInterleaved2(doubles, sums.intensities + 2 * column, intensity, weight);
            }
            hn::LoadInterleaved2(doubles, sums.heights + 2 * column, height, weight);
        }
        for (std::size_t row = 0; row < band.rows; ++row)
        {
            const std::size_t cell = row * band.stride + column;
            const Double share = hn::Set(doubles, band.shares[row]);
            const Double cells = HeightsAt(band.heights + cell);
            const Double counted = hn::IfThenElseZero(hn::Ne(cells, missing), share);
            height = hn::MulAdd(cells, counted, height);
            weight = hn::Add(weight, counted);
            if constexpr (hasIntensities)
            {
                intensity = hn::MulAdd(IntensitiesAt(band.intensities + cell), counted, intensity);
            }
        }
        hn::StoreInterleaved2(height, weight, doubles, sums.heights + 2 * column);
        if constexpr (hasIntensities)
        {
            hn::StoreInterleaved2(intensity, weight, doubles, sums.intensities + 2 * column);
        }
    }
    return column;
}

void SumColumnsOf(const RowBand& band, std::size_t columns, bool starts, const AreaSums& sums)
{
    const bool hasIntensities = band.intensities != nullptr;
    const std::size_t done =
        hasIntensities ? SumVectors<true>(band, columns, starts, sums) : SumVectors<false>(band, columns, starts, sums);
    SumSomeColumns(band, band.heights, done, columns, starts, sums.heights);
    if (hasIntensities)
    {
        SumSomeColumns(band, band.intensities, done, columns, starts, sums.intensities);
    }
}

void SumTapsOf(const CellTaps& taps, const double* columnSums, double* cellSums)
{
    const hn::CappedTag<double, 2> item;
    const std::size_t lanes = hn::Lanes(item);
    const double* shares = taps.shares;
    for (std::size_t cell = 0; cell < taps.cells; ++cell)
    {
        for (std::size_t lane = 0; lane < 2; lane += lanes) // once, unless there are no vectors
        {
            const double* sums = columnSums + 2 * taps.spans[cell].begin + lane;
            auto sum = hn::Zero(item);
            for (std::size_t tap = 0; tap < taps.count; ++tap)
            {
                sum = hn::MulAdd(hn::Set(item, shares[tap]), hn::LoadU(item, sums + 2 * tap), sum);
            }
            hn::StoreU(sum, item, cellSums + 2 * cell + lane);
        }
        shares += taps.count;
    }
}

std::uint64_t RoundMeansOf(const double* sums, double margin, std::int16_t missing, std::int16_t* means)
{
    const hn::CappedTag<double, kMeanBlock> doubles;
    const hn::Rebind<std::int32_t, decltype(doubles)> integers;
    const hn::Rebind<std::int16_t, decltype(doubles)> narrow;
    const std::size_t lanes = hn::Lanes(doubles);
    const auto half = hn::Set(doubles, 0.5);
    const auto doubt = hn::Set(doubles, margin);
    std::uint64_t doubtful = 0;
    for (std::size_t i = 0; i < kMeanBlock; i += lanes)
    {
        auto sum = hn::Zero(doubles);
        auto weight = hn::Zero(doubles);
        hn::LoadInterleaved2(doubles, sums + 2 * i, sum, weight);
        const auto isMissing = hn::Eq(weight, hn::Zero(doubles));
        const auto mean = hn::Div(sum, hn::IfThenElse(isMissing, half, weight));
        const auto rounded = hn::Trunc(hn::Add(mean, hn::CopySign(half, mean)));
        const auto toHalf = hn::Abs(hn::Sub(hn::Abs(hn::Sub(mean, hn::Trunc(mean))), half));
        // At most 64 bits over all vectors, and eight are written for each, however few it has.
        std::uint8_t bits[8] = {};
        hn::StoreMaskBits(doubles, hn::Le(toHalf, doubt), bits);
        for (std::size_t byte = 0; byte * 8 < lanes; ++byte)
        {
            doubtful |= static_cast<std::uint64_t>(bits[byte]) << (i + 8 * byte);
        }
        const auto result = hn::IfThenElse(isMissing, hn::Set(doubles, static_cast<double>(missing)), rounded);
        hn::StoreU(hn::DemoteTo(narrow, hn::DemoteTo(integers, result)), narrow, means + i);
    }
    return doubtful;
}

#if HWY_TARGET == HWY_SCALAR // which has no two lanes to pair

std::size_t HalveHeightsOf(const RowPair& /*heights*/, std::size_t /*count*/, std::int16_t* /*means*/)
{
    return 0;
}

std::size_t HalveIntensitiesOf(const RowPair& /*heights*/, const std::uint8_t* /*top*/, const std::uint8_t* /*bottom*/,
                               std::size_t /*count*/, std::uint8_t* /*means*/)
{
    return 0;
}

#else

// Two by two cells: pairs of 16-bit lanes are lanes of 32 bits.
using Cells16 = hn::ScalableTag<std::int16_t>;
using Pairs = hn::RepartitionToWide<Cells16>;
using Cell16 = hn::VFromD<Cells16>;
using Pair = hn::VFromD<Pairs>;

/** The sums of pairs in two rows, each lane times @p factor. */
HWY_INLINE Pair PairSums(Cell16 top, Cell16 bottom, std::int16_t factor)
{
    const Cell16 factors = hn::Set(Cells16(), factor);
    Pair rest = hn::Zero(Pairs());
    Pair sums = hn::ReorderWidenMulAccumulate(Pairs(), top, factors, hn::Zero(Pairs()), rest);
    sums = hn::ReorderWidenMulAccumulate(Pairs(), bottom, factors, sums, rest);
    return hn::RearrangeToOddPlusEven(sums, rest);
}

/** All bits set in the lanes of heights. */
HWY_INLINE Cell16 PresentLanes(Cell16 heights)
{
    const Cells16 wide;
    return hn::VecFromMask(wide, hn::Ne(heights, hn::Set(wide, GetNull<short>())));
}

/** The means of sums of at most four heights, to the nearest float or, for three, close to it. */
HWY_INLINE hn::VFromD<hn::Rebind<float, Pairs>> Quotients(Pair sums, Pair counts)
{
    const hn::Rebind<float, Pairs> floats;
    const auto dividend = hn::ConvertTo(floats, sums);
#if HWY_MAX_BYTES >= 32 && !HWY_HAVE_SCALABLE
    HWY_ALIGN static constexpr float kReciprocals[hn::MaxLanes(floats)] = {1.0F, 1.0F, 0.5F, 1.0F / 3.0F, 0.25F};
    const auto reciprocals = hn::Load(floats, kReciprocals);
    return hn::Mul(dividend, hn::TableLookupLanes(reciprocals, hn::IndicesFromVec(floats, counts)));
#else
    return hn::Div(dividend, hn::ConvertTo(floats, hn::Max(counts, hn::Set(Pairs(), 1))));
#endif
}

/** The rounded quotients of sums and counts of at most four heights. A float holds these sums and all of their halves
 *  and quarters; thirds are nowhere near a half. */
HWY_INLINE Pair RoundedQuotients(Pair sums, Pair counts, Pair missing)
{
    const Pairs integers;
    const hn::Rebind<float, Pairs> floats;
    const auto mean = Quotients(sums, counts);
    const Pair rounded = hn::ConvertTo(integers, hn::Add(mean, hn::CopySign(hn::Set(floats, 0.5F), mean)));
    return hn::IfThenElse(hn::Eq(counts, hn::Zero(integers)), missing, rounded);
}

struct PairsOfHeights
{
    explicit PairsOfHeights(const RowPair& rows, std::size_t column)
        : top(hn::LoadU(Cells16(), rows.top + column)),
          bottom(hn::LoadU(Cells16(), rows.bottom + column)),
          topPresent(PresentLanes(top)),
          bottomPresent(PresentLanes(bottom)),
          counts(PairSums(topPresent, bottomPresent, -1))
    {
    }

    Cell16 top;
    Cell16 bottom;
    Cell16 topPresent;
    Cell16 bottomPresent;
    Pair counts;
};

std::size_t HalveHeightsOf(const RowPair& heights, std::size_t count, std::int16_t* means)
{
    const hn::Rebind<std::int16_t, Pairs> narrow;
    const std::size_t lanes = hn::Lanes(Pairs());
    const Pair missing = hn::Set(Pairs(), GetNull<short>());
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        const PairsOfHeights pairs(heights, 2 * i);
        const Pair sums = PairSums(hn::And(pairs.top, pairs.topPresent), hn::And(pairs.bottom, pairs.bottomPresent), 1);
        hn::StoreU(hn::DemoteTo(narrow, RoundedQuotients(sums, pairs.counts, missing)), narrow, means + i);
    }
    return i;
}

HWY_INLINE Cell16 WideIntensities(const std::uint8_t* cells)
{
    const hn::Rebind<std::uint8_t, Cells16> narrow;
    return hn::PromoteTo(Cells16(), hn::LoadU(narrow, cells));
}

std::size_t HalveIntensitiesOf(const RowPair& heights, const std::uint8_t* top, const std::uint8_t* bottom,
                               std::size_t count, std::uint8_t* means)
{
    const hn::Rebind<std::uint8_t, Pairs> narrow;
    const std::size_t lanes = hn::Lanes(Pairs());
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        const PairsOfHeights pairs(heights, 2 * i);
        const Pair sums = PairSums(hn::And(WideIntensities(top + 2 * i), pairs.topPresent),
                                   hn::And(WideIntensities(bottom + 2 * i), pairs.bottomPresent), 1);
        const Pair rounded = RoundedQuotients(sums, pairs.counts, hn::Zero(Pairs()));
        hn::StoreU(hn::DemoteTo(narrow, rounded), narrow, means + i);
    }
    return i;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(SumColumnsOf);
HWY_EXPORT(SumTapsOf);
HWY_EXPORT(RoundMeansOf);
HWY_EXPORT(HalveHeightsOf);
HWY_EXPORT(HalveIntensitiesOf);

void SumColumns(const RowBand& band, std::size_t columns, bool starts, const AreaSums& sums)
{
    HWY_DYNAMIC_DISPATCH(SumColumnsOf)(band, columns, starts, sums);
}

void SumTaps(const CellTaps& taps, const double* columnSums, double* cellSums)
{
    HWY_DYNAMIC_DISPATCH(SumTapsOf)(taps, columnSums, cellSums);
}

std::uint64_t RoundMeans(const double* sums, double margin, std::int16_t missing, std::int16_t* means)
{
    return HWY_DYNAMIC_DISPATCH(RoundMeansOf)(sums, margin, missing, means);
}

std::size_t HalveHeights(const RowPair& heights, std::size_t count, std::int16_t* means)
{
    return HWY_DYNAMIC_DISPATCH(HalveHeightsOf)(heights, count, means);
}

std::size_t HalveIntensities(const RowPair& heights, const std::uint8_t* top, const std::uint8_t* bottom,
                             std::size_t count, std::uint8_t* means)
{
    return HWY_DYNAMIC_DISPATCH(HalveIntensitiesOf)(heights, top, bottom, count, means);
}

} // namespace Zvl
#endif
