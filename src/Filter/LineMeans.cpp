#include "Filter/LineMeans.h"

#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/LineMeans.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

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

void Move(const ColumnStep& /*step*/) {}

void Average(const ColumnStep& /*step*/, std::size_t /*cells*/, const std::uint16_t* /*centre*/, bool /*keepNulls*/,
             std::uint16_t* /*means*/, const std::uint16_t* /*next*/)
{
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/** Two neighbouring cells share a lane of 32 bits. Taking them apart there, and joining them again, costs less than to
 *  widen cells in their order. */
using Wide = hn::CappedTag<std::int32_t, kMostLanes / 2>;
using WideUnsigned = hn::RebindToUnsigned<Wide>;
using Real = hn::RebindToFloat<Wide>;
using Narrow = hn::Repartition<std::uint16_t, Wide>;
using WideVector = hn::VFromD<Wide>;
using NarrowVector = hn::VFromD<Narrow>;

/** Whether a vector has a lane for each number up to 15. */
constexpr bool kHasLaneForEach = hn::MaxLanes(Real()) >= 16;

/** How many cells windows hold. */
enum class Reach
{
    Few,    ///< up to 15: the reciprocals of all numbers fit in a vector
    Short,  ///< up to 255: the number fits in 8 bits, the sum of shifted heights in the 24 bits of a float
    Medium, ///< up to 512: the sum of heights fits in the 24 bits of a float
    Long
};

constexpr Reach ReachOf(std::size_t cells)
{
    return kHasLaneForEach && cells <= 15 ? Reach::Few
           : cells <= 255                 ? Reach::Short
           : cells <= 512                 ? Reach::Medium
                                          : Reach::Long;
}

/** Whether prefix sums hold the numbers of heights, too. */
constexpr bool IsPacked(Reach reach)
{
    return reach == Reach::Few || reach == Reach::Short;
}

bool HasVectors()
{
    return true;
}

/** Sums of shifted heights are packed with their number in one lane: 256 times the sum, plus the number. */
constexpr std::int32_t kPackedNumber = 0xff;

template <int kBits>
HWY_INLINE WideVector ShiftRightLogical(WideVector v)
{
    return hn::BitCast(Wide(), hn::ShiftRight<kBits>(hn::BitCast(WideUnsigned(), v)));
}

HWY_INLINE WideVector Even(NarrowVector cells)
{
    return hn::And(hn::BitCast(Wide(), cells), hn::Set(Wide(), 0xffff));
}

HWY_INLINE WideVector Odd(NarrowVector cells)
{
    return ShiftRightLogical<16>(hn::BitCast(Wide(), cells));
}

/** The low 16 bits of both, in the order of the cells. */
HWY_INLINE NarrowVector Join(WideVector even, WideVector odd)
{
    return hn::OddEven(hn::BitCast(Narrow(), hn::ShiftLeft<16>(odd)), hn::BitCast(Narrow(), even));
}

/** `sum / count`, truncated toward zero, plus @p offset, in the low 16 bits of each lane. Of whole numbers that a float
 *  holds exactly, a quotient that is none itself lies further below the next one than rounding can lift it. */
HWY_INLINE WideVector Divide(hn::VFromD<Real> sum, hn::VFromD<Real> count, int offset)
{
    const auto quotient = hn::Trunc(hn::Div(sum, count));
    // From 2^23 to 2^24 the last bit of a float is worth one, which makes an integer of its low bits.
    constexpr float kUnits = 1.5F * 8388608.0F;
    return hn::BitCast(Wide(), hn::Add(quotient, hn::Set(Real(), kUnits + static_cast<float>(offset))));
}

/** The same for any sum: with all roundings the quotient, at most 32768, is less than one off, which shows in what it
 *  leaves of the sum. */
HWY_INLINE WideVector DivideLong(WideVector sum, WideVector count, int offset)
{
    const Wide wide;
    const auto zero = hn::Zero(wide);
    const auto magnitude = hn::Abs(sum);
    const auto quotient = Divide(hn::ConvertTo(Real(), magnitude), hn::ConvertTo(Real(), count), 0);
    const auto guess = hn::And(quotient, hn::Set(wide, 0xffff));
    const auto rest = hn::Sub(magnitude, hn::Mul(guess, count));
    const auto tooHigh = hn::VecFromMask(wide, hn::Lt(rest, zero)); // -1 where it is
    const auto highEnough = hn::VecFromMask(wide, hn::Lt(rest, count));
    // One is added where the rest still holds the count.
    const auto exact = hn::Add(hn::Add(guess, tooHigh), hn::Add(highEnough, hn::Set(wide, 1)));
    return hn::Add(hn::IfThenElse(hn::Lt(sum, zero), hn::Neg(exact), exact), hn::Set(wide, offset));
}

/** The mean of @p count heights, at least one, from the sum of the shifted ones. */
template <Reach reach>
HWY_INLINE WideVector Mean(WideVector shifted, WideVector count, int offset)
{
    const Real real;
    const auto number = hn::ConvertTo(real, count);
    if constexpr (reach == Reach::Short)
    {
        const auto shift = hn::Set(real, static_cast<float>(kHeightShift));
        return Divide(hn::NegMulAdd(number, shift, hn::ConvertTo(real, shifted)), number, offset);
    }
    const auto sum = hn::Sub(shifted, hn::ShiftLeft<15>(count));
    return reach == Reach::Medium ? Divide(hn::ConvertTo(real, sum), number, offset) : DivideLong(sum, count, offset);
}

/** The means of windows, truncated toward zero, plus an offset. A window without heights is taken for one of the shifted
 *  height 0, which is what stands for a missing one. */
template <Reach reach>
class Means
{
public:
    explicit Means(int offset) : offset(offset) {}

    HWY_INLINE NarrowVector FromSums(WideVector even, WideVector odd, NarrowVector counts) const
    {
        const auto divisors = hn::Max(counts, hn::Set(Narrow(), 1));
        return Join(Mean<reach>(even, Even(divisors), offset), Mean<reach>(odd, Odd(divisors), offset));
    }

    HWY_INLINE NarrowVector FromPacked(WideVector even, WideVector odd) const
    {
        return Join(FromPacked(even), FromPacked(odd));
    }

private:
    HWY_INLINE WideVector FromPacked(WideVector packed) const
    {
        const Wide wide;
        const auto count = hn::And(packed, hn::Set(wide, kPackedNumber));
        return Mean<reach>(ShiftRightLogical<8>(packed), hn::Max(count, hn::Set(wide, 1)), offset);
    }

    int offset;
};

/** The same for few heights, by a multiplication. A float between 2^18 and 2^19 ends in 32nds, so that 2^18 plus the mean of
 *  shifted heights has the mean's fraction in its lowest 5 bits and the whole part above. It is off by no more than 3/256: by
 *  1/256 each for the rounding of the reciprocal, for that of a packed sum, and for the number below it. A whole mean is so
 *  rounded to itself. Others lie 1/15 or more from the whole numbers, and stay between them. */
template <>
class Means<Reach::Few>
{
public:
    explicit Means(int offset)
    {
        const Real real;
        ofNumbers = hn::LoadU(real, kReciprocals.data());
        ofPackedNumbers = hn::Mul(ofNumbers, hn::Set(real, 1.0F / 256.0F));
        constexpr float kUnits = 262144.0F;
        const int toResult = (offset + kHeightShift) % (2 * kHeightShift); // only 16 bits of the result are used
        start = hn::Set(real, kUnits + static_cast<float>(toResult));
        zero = hn::BitCast(Wide(), hn::Set(real, kUnits + static_cast<float>(toResult + kHeightShift)));
    }

    HWY_INLINE NarrowVector FromSums(WideVector even, WideVector odd, NarrowVector counts) const
    {
        return JoinWhole(InFixedPoint(even, Even(counts), ofNumbers), InFixedPoint(odd, Odd(counts), ofNumbers));
    }

    HWY_INLINE NarrowVector FromPacked(WideVector even, WideVector odd) const
    {
        const auto number = hn::Set(Wide(), kPackedNumber);
        return JoinWhole(InFixedPoint(even, hn::And(even, number), ofPackedNumbers),
                         InFixedPoint(odd, hn::And(odd, number), ofPackedNumbers));
    }

private:
    static constexpr int kFraction = 5;

    /** Of the numbers from 0 on. In the place of 0 stands what makes the shifted height 0 of no heights. */
    static constexpr auto kReciprocals = []
    {
        std::array<float, hn::MaxLanes(Real())> reciprocals = {};
        for (std::size_t number = 1; number < reciprocals.size(); ++number)
        {
            reciprocals[number] = 1.0F / static_cast<float>(number);
        }
        return reciprocals;
    }();

    /** The mean with its fraction, or the next whole number where truncation goes up, below height 0. */
    HWY_INLINE WideVector InFixedPoint(WideVector sum, WideVector count, hn::VFromD<Real> reciprocals) const
    {
        const Wide wide;
        const Real real;
        const auto reciprocal = hn::TableLookupLanes(reciprocals, hn::IndicesFromVec(real, count));
        const auto mean = hn::BitCast(wide, hn::MulAdd(hn::ConvertTo(real, sum), reciprocal, start));
        const auto up = hn::Add(mean, hn::Set(wide, (1 << kFraction) - 1));
        return hn::IfThenElse(hn::Lt(mean, zero), up, mean);
    }

    /** The low 16 bits above the fraction, in the order of the cells. */
    static HWY_INLINE NarrowVector JoinWhole(WideVector even, WideVector odd)
    {
        const Narrow narrow;
        return hn::OddEven(hn::BitCast(narrow, hn::ShiftLeft<16 - kFraction>(odd)),
                           hn::BitCast(narrow, hn::ShiftRight<kFraction>(even)));
    }

    hn::VFromD<Real> ofNumbers;
    hn::VFromD<Real> ofPackedNumbers;
    hn::VFromD<Real> start; ///< what the mean is added to
    WideVector zero;        ///< height 0 in fixed point
};

/** @p means, or what stands for a missing one where @p centre is missing. */
HWY_INLINE NarrowVector KeepNulls(NarrowVector means, NarrowVector centre, int offset)
{
    const Narrow narrow;
    return hn::IfThenElse(hn::Eq(centre, hn::Zero(narrow)),
                          hn::Set(narrow, static_cast<std::uint16_t>(offset - kHeightShift)), means);
}

HWY_INLINE NarrowVector LoadShifted(const std::int16_t* cells)
{
    const auto heights = hn::LoadU(Narrow(), reinterpret_cast<const std::uint16_t*>(cells));
    return hn::Xor(heights, hn::Set(Narrow(), kHeightShift));
}

/** The first @p count cells, less than a vector; the others are missing. Nothing is read behind them. */
HWY_INLINE NarrowVector LoadFirst(const std::int16_t* cells, std::size_t count)
{
#if HWY_MEM_OPS_MIGHT_FAULT
    std::array<std::int16_t, kMostLanes> some;
    some.fill(-kHeightShift);
    std::copy_n(cells, count, some.begin());
    return LoadShifted(some.data());
#else
    const Narrow narrow;
    const auto isCell = hn::FirstN(narrow, count);
    const auto heights = hn::MaskedLoad(isCell, narrow, reinterpret_cast<const std::uint16_t*>(cells));
    return hn::IfThenElseZero(isCell, hn::Xor(heights, hn::Set(narrow, kHeightShift)));
#endif
}

/** Writes the first @p count means, less than a vector, and nothing behind them. */
HWY_INLINE void StoreFirst(NarrowVector means, std::uint16_t* out, std::size_t count)
{
#if HWY_MEM_OPS_MIGHT_FAULT
    std::array<std::uint16_t, kMostLanes> all;
    hn::StoreU(means, Narrow(), all.data());
    std::copy_n(all.begin(), count, out);
#else
    hn::BlendedStore(means, hn::FirstN(Narrow(), count), Narrow(), out);
#endif
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

struct ColumnWindows
{
    WideVector even;
    WideVector odd;
    NarrowVector counts;
};

/** Moves the windows of the columns from @p column on. */
HWY_INLINE ColumnWindows MoveAt(const ColumnStep& step, std::size_t column)
{
    const Wide wide;
    const Narrow narrow;
    const auto one = hn::Set(narrow, 1);
    std::int32_t* evenSums = step.sums.even + column / 2;
    std::int32_t* oddSums = step.sums.odd + column / 2;
    std::uint16_t* counts = step.sums.counts + column;
    const auto added = hn::LoadU(narrow, step.added + column);
    const auto removed = hn::LoadU(narrow, step.removed + column);
    const ColumnWindows windows = {
        hn::Add(hn::LoadU(wide, evenSums), hn::Sub(Even(added), Even(removed))),
        hn::Add(hn::LoadU(wide, oddSums), hn::Sub(Odd(added), Odd(removed))),
        hn::Add(hn::LoadU(narrow, counts), hn::Sub(hn::Min(added, one), hn::Min(removed, one)))};
    hn::StoreU(windows.even, wide, evenSums);
    hn::StoreU(windows.odd, wide, oddSums);
    hn::StoreU(windows.counts, narrow, counts);
    return windows;
}

void Move(const ColumnStep& step)
{
    for (std::size_t column = 0; column < step.columns; column += hn::Lanes(Narrow()))
    {
        MoveAt(step, column);
    }
}

template <Reach reach>
HWY_INLINE NarrowVector AverageAt(const Means<reach>& quotients, const ColumnStep& step, const std::uint16_t* centre,
                                  bool keepNulls, std::size_t column)
{
    const ColumnWindows windows = MoveAt(step, column);
    const auto means = quotients.FromSums(windows.even, windows.odd, windows.counts);
    return keepNulls ? KeepNulls(means, hn::LoadU(Narrow(), centre + column), 0) : means;
}

template <Reach reach>
void AverageAs(const ColumnStep& columnStep, const std::uint16_t* centre, bool keepNulls, std::uint16_t* means,
               const std::uint16_t* next)
{
    // By value, so that it can stay in registers while cells are written.
    const ColumnStep step = columnStep;
    const Means<reach> quotients(0);
    const std::size_t lanes = hn::Lanes(Narrow());
    std::size_t column = 0;
    for (; column + lanes <= step.columns; column += lanes)
    {
        hwy::Prefetch(next + column);
        hn::StoreU(AverageAt<reach>(quotients, step, centre, keepNulls, column), Narrow(), means + column);
    }
    if (column < step.columns)
    {
        StoreFirst(AverageAt<reach>(quotients, step, centre, keepNulls, column), means + column, step.columns - column);
    }
}

void Average(const ColumnStep& step, std::size_t cells, const std::uint16_t* centre, bool keepNulls,
             std::uint16_t* means, const std::uint16_t* next)
{
    const Reach reach = ReachOf(cells);
    const auto average = reach == Reach::Few      ? AverageAs<Reach::Few>
                         : reach == Reach::Short  ? AverageAs<Reach::Short>
                         : reach == Reach::Medium ? AverageAs<Reach::Medium>
                                                  : AverageAs<Reach::Long>;
    average(step, centre, keepNulls, means, next);
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
HWY_EXPORT(Move);
HWY_EXPORT(Average);

bool CanAverageInVectors(std::size_t cells)
{
    return cells <= kMostWindowCells && HWY_DYNAMIC_DISPATCH(HasVectors)();
}

void AverageStretch(const MeanStretch& stretch, const MeanWindow& window, bool keepNulls, int offset,
                    const HeightSums& prefixSums, std::uint16_t* means)
{
    HWY_DYNAMIC_DISPATCH(AverageCells)(stretch, window, keepNulls, offset, prefixSums, means);
}

void MoveColumns(const ColumnStep& step)
{
    HWY_DYNAMIC_DISPATCH(Move)(step);
}

void AverageColumns(const ColumnStep& step, std::size_t cells, const std::uint16_t* centre, bool keepNulls,
                    std::int16_t* means, const std::int16_t* next)
{
    HWY_DYNAMIC_DISPATCH(Average)
    (step, cells, centre, keepNulls, reinterpret_cast<std::uint16_t*>(means),
     reinterpret_cast<const std::uint16_t*>(next));
}

} // namespace Zvl
#endif
