/** @file
 *  Vectors of cells, and the means of windows from sums of heights. Included once for each instruction set, in the namespace
 *  of which all of it is. */

#if defined(ZVL_FILTER_MEAN_VECTORS_H) == defined(HWY_TARGET_TOGGLE)
#ifdef ZVL_FILTER_MEAN_VECTORS_H
#undef ZVL_FILTER_MEAN_VECTORS_H
#else
#define ZVL_FILTER_MEAN_VECTORS_H
#endif

#include "Filter/LineMeans.h"

#include <hwy/highway.h>

#include <array>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET != HWY_SCALAR

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

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#endif
