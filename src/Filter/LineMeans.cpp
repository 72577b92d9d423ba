#include "Filter/LineMeans.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/LineMeans.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>

#include "Filter/MeanVectors.h"

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET == HWY_SCALAR

bool HasVectors()
{
    return false;
}

void AverageCells(const MeanStretch& /*stretch*/, const MeanWindow& /*window*/, bool /*keepNulls*/, int /*offset*/,
                  const HeightSums& /*prefixSums*/, std::uint16_t* /*means*/)
{
}

#else

bool HasVectors()
{
    return true;
}

/** Sums over all lanes up to each one. */
class Scan
{
public:
    HWY_INLINE WideVector operator()(WideVector v) const
    {
        const Wide wide;
        // Within blocks of four lanes, then from the last lane of a block to all lanes of the next one or two.
        v = hn::Add(v, hn::ShiftLeftLanes<1>(wide, v));
        v = hn::Add(v, hn::ShiftLeftLanes<2>(wide, v));
        if constexpr (hn::MaxLanes(Wide()) > 4)
        {
            v = hn::Add(v, Spread(v, kFromBlock, kToBlock));
        }
        if constexpr (hn::MaxLanes(Wide()) > 8)
        {
            v = hn::Add(v, Spread(v, kFromHalf, kToHalf));
        }
        return v;
    }

    /** The last lane in all lanes. */
    HWY_INLINE WideVector Last(WideVector v) const
    {
        const Wide wide;
        return hn::TableLookupLanes(
            v, hn::IndicesFromVec(wide, hn::Set(wide, static_cast<std::int32_t>(hn::Lanes(wide)) - 1)));
    }

private:
    using Lanes = std::array<std::int32_t, kMostLanes / 2>;
    static constexpr Lanes kFromBlock = {0, 0, 0, 0, 3, 3, 3, 3, 0, 0, 0, 0, 11, 11, 11, 11};
    static constexpr Lanes kToBlock = {0, 0, 0, 0, -1, -1, -1, -1, 0, 0, 0, 0, -1, -1, -1, -1};
    static constexpr Lanes kFromHalf = {0, 0, 0, 0, 0, 0, 0, 0, 7, 7, 7, 7, 7, 7, 7, 7};
    static constexpr Lanes kToHalf = {0, 0, 0, 0, 0, 0, 0, 0, -1, -1, -1, -1, -1, -1, -1, -1};

    static HWY_INLINE WideVector Spread(WideVector v, const Lanes& from, const Lanes& to)
    {
        const Wide wide;
        return hn::IfThenElseZero(hn::MaskFromVec(hn::LoadU(wide, to.data())),
                                  hn::TableLookupLanes(v, hn::SetTableIndices(wide, from.data())));
    }
};

struct Packed
{
    WideVector even;
    WideVector odd;
};

HWY_INLINE Packed Pack(NarrowVector cells)
{
    const Wide wide;
    const auto sums = hn::Set(wide, 0xffff00); // the bits of the heights
    const auto numbers = hn::Min(cells, hn::Set(Narrow(), 1));
    const auto pairs = hn::BitCast(wide, cells);
    return {hn::IfVecThenElse(sums, hn::ShiftLeft<8>(pairs), hn::BitCast(wide, numbers)),
            hn::IfVecThenElse(sums, ShiftRightLogical<8>(pairs), Odd(numbers))};
}

/** A place in prefix sums, from which on a vector for even and one for odd cells can be read. */
struct PrefixPlace
{
    const std::int32_t* even;
    const std::int32_t* odd;
    const std::uint16_t* counts;
};

/** Means from prefix sums: those up to the end of each window less those up to its beginning. In front of the line, they
 *  are 0; behind it, they stay as they are. */
template <Reach reach>
class StretchMeans
{
public:
    StretchMeans(const MeanStretch& stretch, const MeanWindow& window, const HeightSums& prefixSums)
        : stretch(stretch), window(window), prefix(prefixSums), start(RoundUp(window.behind + 1, kMostLanes))
    {
    }

    void Accumulate()
    {
        const std::size_t lanes = hn::Lanes(Narrow());
        Totals totals = {hn::Zero(Wide()), hn::Zero(Narrow())};
        for (std::size_t place = 0; place < start; place += lanes)
        {
            Store(totals.sums, totals.sums, totals.counts, place);
        }
        std::size_t cell = 0;
        for (; cell + lanes <= stretch.size; cell += lanes)
        {
            totals = Extend(totals, LoadShifted(stretch.cells + cell), start + cell);
        }
        if (cell < stretch.size)
        {
            totals = Extend(totals, LoadFirst(stretch.cells + cell, stretch.size - cell), start + cell);
            cell += lanes;
        }
        const std::size_t end = stretch.first + RoundUp(stretch.count, lanes) + window.ahead + 1;
        for (; cell < end; cell += lanes)
        {
            Store(totals.sums, totals.sums, totals.counts, start + cell);
        }
    }

    void Divide(bool keepNulls, int offset, std::uint16_t* means) const
    {
        const PrefixPlace begin = At(start + stretch.first - window.behind);
        const PrefixPlace end = At(start + stretch.first + window.ahead + 1);
        const std::int16_t* centre = stretch.cells + stretch.first;
        const Means<reach> quotients(offset);
        const std::size_t lanes = hn::Lanes(Narrow());
        std::size_t cell = 0;
        for (; cell + lanes <= stretch.count; cell += lanes)
        {
            hwy::Prefetch(stretch.next + cell);
            const auto mean = MeansAt(quotients, begin, end, cell);
            hn::StoreU(keepNulls ? KeepNulls(mean, LoadShifted(centre + cell), offset) : mean, Narrow(), means + cell);
        }
        if (cell < stretch.count)
        {
            const std::size_t left = stretch.count - cell;
            const auto mean = MeansAt(quotients, begin, end, cell);
            StoreFirst(keepNulls ? KeepNulls(mean, LoadFirst(centre + cell, left), offset) : mean, means + cell, left);
        }
    }

private:
    struct Totals
    {
        WideVector sums;
        NarrowVector counts;
    };

    HWY_INLINE void Store(WideVector even, WideVector odd, NarrowVector counts, std::size_t place) const
    {
        hn::StoreU(even, Wide(), prefix.even + place / 2);
        hn::StoreU(odd, Wide(), prefix.odd + place / 2);
        if constexpr (!IsPacked(reach))
        {
            hn::StoreU(counts, Narrow(), prefix.counts + place);
        }
    }

    /** Stores the prefix sums of the next cells, and gives their totals. */
    HWY_INLINE Totals Extend(const Totals& totals, NarrowVector cells, std::size_t place) const
    {
        const Scan scan;
        const Packed packed = Pack(cells);
        const auto odd = scan(hn::Add(packed.even, packed.odd));
        const auto even = hn::Sub(odd, packed.odd);
        const auto all = scan.Last(odd);
        if constexpr (IsPacked(reach))
        {
            Store(hn::Add(even, totals.sums), hn::Add(odd, totals.sums), totals.counts, place);
            return {hn::Add(totals.sums, all), totals.counts};
        }
        else
        {
            // The packed sums of one vector always fit.
            const auto number = hn::Set(Wide(), kPackedNumber);
            Store(hn::Add(ShiftRightLogical<8>(even), totals.sums), hn::Add(ShiftRightLogical<8>(odd), totals.sums),
                  hn::Add(Join(hn::And(even, number), hn::And(odd, number)), totals.counts), place);
            const auto numbers = hn::And(all, number);
            return {hn::Add(totals.sums, ShiftRightLogical<8>(all)), hn::Add(totals.counts, Join(numbers, numbers))};
        }
    }

    /** The sums up to @p place, the cell there not included. */
    PrefixPlace At(std::size_t place) const
    {
        const std::size_t half = place / 2;
        return place % 2 == 0 ? PrefixPlace{prefix.odd + half - 1, prefix.even + half, prefix.counts + place - 1}
                              : PrefixPlace{prefix.even + half, prefix.odd + half, prefix.counts + place - 1};
    }

    static HWY_INLINE NarrowVector MeansAt(const Means<reach>& quotients, const PrefixPlace& begin,
                                           const PrefixPlace& end, std::size_t cell)
    {
        const Wide wide;
        const Narrow narrow;
        const std::size_t pair = cell / 2;
        const auto even = hn::Sub(hn::LoadU(wide, end.even + pair), hn::LoadU(wide, begin.even + pair));
        const auto odd = hn::Sub(hn::LoadU(wide, end.odd + pair), hn::LoadU(wide, begin.odd + pair));
        if constexpr (IsPacked(reach))
        {
            return quotients.FromPacked(even, odd);
        }
        else
        {
            const auto counts = hn::Sub(hn::LoadU(narrow, end.counts + cell), hn::LoadU(narrow, begin.counts + cell));
            return quotients.FromSums(even, odd, counts);
        }
    }

    MeanStretch stretch;
    MeanWindow window;
    HeightSums prefix;
    std::size_t start; ///< place of the first cell
};

template <Reach reach>
void AverageCellsAs(const MeanStretch& stretch, const MeanWindow& window, bool keepNulls, int offset,
                    const HeightSums& prefixSums, std::uint16_t* means)
{
    StretchMeans<reach> line(stretch, window, prefixSums);
    line.Accumulate();
    line.Divide(keepNulls, offset, means);
}

void AverageCells(const MeanStretch& stretch, const MeanWindow& window, bool keepNulls, int offset,
                  const HeightSums& prefixSums, std::uint16_t* means)
{
    const Reach reach = ReachOf(std::min(window.Cells(), stretch.size));
    const auto average = reach == Reach::Few      ? AverageCellsAs<Reach::Few>
                         : reach == Reach::Short  ? AverageCellsAs<Reach::Short>
                         : reach == Reach::Medium ? AverageCellsAs<Reach::Medium>
                                                  : AverageCellsAs<Reach::Long>;
    average(stretch, window, keepNulls, offset, prefixSums, means);
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(HasVectors);
HWY_EXPORT(AverageCells);

bool CanAverageInVectors(std::size_t cells)
{
    return cells <= kMostWindowCells && HWY_DYNAMIC_DISPATCH(HasVectors)();
}

void AverageStretch(const MeanStretch& stretch, const MeanWindow& window, bool keepNulls, int offset,
                    const HeightSums& prefixSums, std::uint16_t* means)
{
    HWY_DYNAMIC_DISPATCH(AverageCells)(stretch, window, keepNulls, offset, prefixSums, means);
}

} // namespace Zvl
#endif
