#include "Arithmetic/RowKernels.h"

#include "Arithmetic/HeightCounts.h"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Arithmetic/RowKernels.cpp"
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

using World = hn::ScalableTag<double>;
using Count = hn::Rebind<std::int32_t, World>;  ///< a 32-bit count for each lane of World
using Height = hn::Rebind<std::int16_t, World>; ///< a height for each lane of World
using WorldLanes = hn::VFromD<World>;
using CountLanes = hn::VFromD<Count>;

using Heights = hn::ScalableTag<std::int16_t>;
using Intensities = hn::Rebind<std::uint8_t, Heights>; ///< an intensity for each lane of Heights
using Bytes = hn::ScalableTag<std::uint8_t>;
using ByteLanes = hn::VFromD<Bytes>;

HWY_INLINE CountLanes LoadHeights(const std::int16_t* heights)
{
    return hn::PromoteTo(Count(), hn::LoadU(Height(), heights));
}

HWY_INLINE auto IsMissing(CountLanes heights)
{
    return hn::Eq(heights, hn::Set(Count(), GetNull<short>()));
}

/** As TruncateToCount() of one value. */
HWY_INLINE CountLanes TruncateLanes(WorldLanes values)
{
    const World world;
    const auto fits = hn::Lt(hn::Abs(values), hn::Set(world, kCountLimit));
    return hn::DemoteTo(Count(), hn::IfThenElse(fits, values, hn::Set(world, -kCountLimit)));
}

/** Whether every combination of two heights is a count that fits, which the mapping of all but the strangest surfaces
 *  tells beforehand. */
bool AllCountsFit(const ArithmeticsPixelOperation& operation)
{
    const double highest =
        65536.0 * std::abs(operation.zScale) + 2.0 * std::abs(operation.zOffset0) + std::abs(operation.zOffset1);
    return highest / std::abs(operation.zScale) < kCountLimit / 2.0; // half: far beyond what rounding may add
}

/** The mapping of both surfaces in each lane. */
struct FrameLanes
{
    HWY_INLINE explicit FrameLanes(const ArithmeticsPixelOperation& operation)
        : scale(hn::Set(World(), operation.zScale)),
          offset0(hn::Set(World(), operation.zOffset0)),
          offset1(hn::Set(World(), operation.zOffset1)),
          sameOffset(operation.zOffset0 == operation.zOffset1),
          allFit(AllCountsFit(operation))
    {
    }

    HWY_INLINE WorldLanes World0(CountLanes heights) const
    {
        return hn::Add(hn::Mul(hn::PromoteTo(World(), heights), scale), offset0);
    }

    HWY_INLINE WorldLanes World1(CountLanes heights) const
    {
        return hn::Add(hn::Mul(hn::PromoteTo(World(), heights), scale), offset1);
    }

    HWY_INLINE CountLanes CountsOf(WorldLanes heights) const
    {
        const WorldLanes counts = hn::Div(heights, scale);
        return allFit ? hn::DemoteTo(Count(), counts) : TruncateLanes(counts);
    }

    /** As CountInFirstFrame() of one height. */
    HWY_INLINE CountLanes CountsInFirst(CountLanes b) const
    {
        return sameOffset ? b : CountsOf(hn::Sub(World1(b), offset0));
    }

    WorldLanes scale;
    WorldLanes offset0;
    WorldLanes offset1;
    bool sameOffset;
    bool allFit;
};

// The formulas round after each step, as those on single cells do; there is no fused multiplication and addition.

struct Sum
{
    static HWY_INLINE WorldLanes Of(WorldLanes a, WorldLanes b, WorldLanes offset)
    {
        return hn::Sub(hn::Add(a, b), offset);
    }
};

struct Difference
{
    static HWY_INLINE WorldLanes Of(WorldLanes a, WorldLanes b, WorldLanes offset)
    {
        return hn::Sub(hn::Sub(a, b), offset);
    }
};

struct Mean
{
    static HWY_INLINE WorldLanes Of(WorldLanes a, WorldLanes b, WorldLanes offset)
    {
        return hn::Sub(hn::Mul(hn::Add(a, b), hn::Set(World(), 0.5)), offset);
    }
};

/** Null wherever one of the heights is missing. */
struct BothNeeded
{
    static HWY_INLINE CountLanes Of(const FrameLanes& /*frame*/, CountLanes a, CountLanes b, CountLanes combined)
    {
        return hn::IfThenElse(hn::Or(IsMissing(a), IsMissing(b)), hn::Set(Count(), GetNull<int>()), combined);
    }

    static std::int32_t OfCell(const ArithmeticsPixelOperation& operation, std::int16_t a, std::int16_t b)
    {
        std::int32_t combined = GetNull<int>();
        if (a != GetNull<short>() && b != GetNull<short>())
        {
            operation.Operate(a, b, &combined);
        }
        return combined;
    }
};

/** The other height wherever one is missing. */
struct OneSuffices
{
    static HWY_INLINE CountLanes Of(const FrameLanes& frame, CountLanes a, CountLanes b, CountLanes combined)
    {
        const auto withoutA = IsMissing(a);
        const auto withoutB = IsMissing(b);
        const auto single = hn::IfThenElse(withoutA, frame.CountsInFirst(b), a);
        const auto any = hn::IfThenElse(hn::Or(withoutA, withoutB), single, combined);
        return hn::IfThenElse(hn::And(withoutA, withoutB), hn::Set(Count(), GetNull<int>()), any);
    }

    static std::int32_t OfCell(const ArithmeticsPixelOperation& operation, std::int16_t a, std::int16_t b)
    {
        std::int32_t combined = 0;
        operation.Operate(a, b, &combined);
        return combined;
    }
};

template <typename Formula, typename NullRule>
HWY_INLINE void CombineRows(const ArithmeticsPixelOperation& operation, const std::int16_t* a, const std::int16_t* b,
                            std::int32_t* out, std::size_t count)
{
    const Count counts;
    const std::size_t lanes = hn::Lanes(counts);
    const FrameLanes frame(operation);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const CountLanes heightsA = LoadHeights(a + index);
        const CountLanes heightsB = LoadHeights(b + index);
        const CountLanes combined =
            frame.CountsOf(Formula::Of(frame.World0(heightsA), frame.World1(heightsB), frame.offset0));
        hn::StoreU(NullRule::Of(frame, heightsA, heightsB, combined), counts, out + index);
    }
    for (; index < count; ++index)
    {
        out[index] = NullRule::OfCell(operation, a[index], b[index]);
    }
}

template <typename NullRule>
HWY_INLINE void CombineRowsBy(const RowOperation& operation, const std::int16_t* a, const std::int16_t* b,
                              std::int32_t* out, std::size_t count)
{
    switch (operation.op)
    {
    case ArithmeticOperator::Add:
        return CombineRows<Sum, NullRule>(operation.cell, a, b, out, count);
    case ArithmeticOperator::Subtract:
        return CombineRows<Difference, NullRule>(operation.cell, a, b, out, count);
    case ArithmeticOperator::Average:
        return CombineRows<Mean, NullRule>(operation.cell, a, b, out, count);
    }
}

void CombineHeightsKernel(const RowOperation& operation, const std::int16_t* a, const std::int16_t* b,
                          std::int32_t* out, std::size_t count)
{
    CombineRowsBy<OneSuffices>(operation, a, b, out, count);
}

void CombinePresentHeightsKernel(const RowOperation& operation, const std::int16_t* a, const std::int16_t* b,
                                 std::int32_t* out, std::size_t count)
{
    CombineRowsBy<BothNeeded>(operation, a, b, out, count);
}

void MoveHeightsKernel(const ArithmeticsPixelOperation& operation, const std::int16_t* b, std::int32_t* out,
                       std::size_t count)
{
    const Count counts;
    const std::size_t lanes = hn::Lanes(counts);
    const FrameLanes frame(operation);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const CountLanes heights = LoadHeights(b + index);
        hn::StoreU(hn::IfThenElse(IsMissing(heights), heights, frame.CountsInFirst(heights)), counts, out + index);
    }
    for (; index < count; ++index)
    {
        out[index] = b[index] == GetNull<short>() ? b[index] : CountInFirstFrame(operation, b[index]);
    }
}

struct SaturatedSum
{
    static HWY_INLINE ByteLanes Of(ByteLanes a, ByteLanes b) { return hn::SaturatedAdd(a, b); }
};

struct SaturatedDifference
{
    static HWY_INLINE ByteLanes Of(ByteLanes a, ByteLanes b) { return hn::SaturatedSub(a, b); }
};

/** The vector operation rounds up, which is one too much where the sum is odd. */
struct MeanRoundedDown
{
    static HWY_INLINE ByteLanes Of(ByteLanes a, ByteLanes b)
    {
        return hn::Sub(hn::AverageRound(a, b), hn::And(hn::Xor(a, b), hn::Set(Bytes(), 1)));
    }
};

template <typename Formula>
HWY_INLINE void CombineBytes(const ArithmeticsPixelOperation& operation, const std::uint8_t* a, const std::uint8_t* b,
                             std::uint8_t* out, std::size_t count)
{
    const Bytes bytes;
    const std::size_t lanes = hn::Lanes(bytes);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        hn::StoreU(Formula::Of(hn::LoadU(bytes, a + index), hn::LoadU(bytes, b + index)), bytes, out + index);
    }
    for (; index < count; ++index)
    {
        operation.Operate(a[index], b[index], out + index);
    }
}

void CombineIntensitiesKernel(const RowOperation& operation, const std::uint8_t* a, const std::uint8_t* b,
                              std::uint8_t* out, std::size_t count)
{
    switch (operation.op)
    {
    case ArithmeticOperator::Add:
        return CombineBytes<SaturatedSum>(operation.cell, a, b, out, count);
    case ArithmeticOperator::Subtract:
        return CombineBytes<SaturatedDifference>(operation.cell, a, b, out, count);
    case ArithmeticOperator::Average:
        return CombineBytes<MeanRoundedDown>(operation.cell, a, b, out, count);
    }
}

void CopyWhereMaskedKernel(const std::int16_t* heights, const std::int16_t* mask, std::int16_t* out, std::size_t count)
{
    const Heights wide;
    const std::size_t lanes = hn::Lanes(wide);
    const auto missing = hn::Set(wide, GetNull<short>());
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto cleared = hn::Eq(hn::LoadU(wide, mask + index), missing);
        hn::StoreU(hn::IfThenElse(cleared, missing, hn::LoadU(wide, heights + index)), wide, out + index);
    }
    for (; index < count; ++index)
    {
        out[index] = mask[index] == GetNull<short>() ? GetNull<short>() : heights[index];
    }
}

void ClearWithoutHeightsKernel(const std::int16_t* a, const std::int16_t* b, std::uint8_t* intensities,
                               std::size_t count)
{
    const Heights wide;
    const Intensities narrow;
    const hn::Rebind<std::int8_t, Heights> signedNarrow;
    const std::size_t lanes = hn::Lanes(wide);
    const auto missing = hn::Set(wide, GetNull<short>());
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto without = hn::Or(hn::VecFromMask(wide, hn::Eq(hn::LoadU(wide, a + index), missing)),
                                    hn::VecFromMask(wide, hn::Eq(hn::LoadU(wide, b + index), missing)));
        const auto clear = hn::BitCast(narrow, hn::DemoteTo(signedNarrow, without));
        hn::StoreU(hn::AndNot(clear, hn::LoadU(narrow, intensities + index)), narrow, intensities + index);
    }
    for (; index < count; ++index)
    {
        if (a[index] == GetNull<short>() || b[index] == GetNull<short>())
        {
            intensities[index] = 0;
        }
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(CombineHeightsKernel);
HWY_EXPORT(CombinePresentHeightsKernel);
HWY_EXPORT(MoveHeightsKernel);
HWY_EXPORT(CombineIntensitiesKernel);
HWY_EXPORT(CopyWhereMaskedKernel);
HWY_EXPORT(ClearWithoutHeightsKernel);

void CombineHeights(const RowOperation& operation, const std::int16_t* a, const std::int16_t* b, std::int32_t* out,
                    std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(CombineHeightsKernel)(operation, a, b, out, count);
}

void CombinePresentHeights(const RowOperation& operation, const std::int16_t* a, const std::int16_t* b,
                           std::int32_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(CombinePresentHeightsKernel)(operation, a, b, out, count);
}

void MoveHeights(const ArithmeticsPixelOperation& operation, const std::int16_t* b, std::int32_t* out,
                 std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(MoveHeightsKernel)(operation, b, out, count);
}

void CombineIntensities(const RowOperation& operation, const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out,
                        std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(CombineIntensitiesKernel)(operation, a, b, out, count);
}

void CopyWhereMasked(const std::int16_t* heights, const std::int16_t* mask, std::int16_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(CopyWhereMaskedKernel)(heights, mask, out, count);
}

void ClearWithoutHeights(const std::int16_t* a, const std::int16_t* b, std::uint8_t* intensities, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(ClearWithoutHeightsKernel)(a, b, intensities, count);
}

} // namespace Zvl
#endif
