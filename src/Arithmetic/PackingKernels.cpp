#include "Arithmetic/PackingKernels.h"

#include "Arithmetic/HeightCounts.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Arithmetic/PackingKernels.cpp"
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

using Wide = hn::ScalableTag<std::int32_t>;
using Packed = hn::Rebind<std::int16_t, Wide>;
using World = hn::ScalableTag<double>;
using WorldCount = hn::Rebind<std::int32_t, World>;  ///< a 32-bit height for each lane of World
using WorldPacked = hn::Rebind<std::int16_t, World>; ///< a 16-bit height for each lane of World

std::int16_t ClampTo16(std::int64_t height)
{
    return static_cast<std::int16_t>(std::clamp<std::int64_t>(height, -32768, 32767));
}

/** The lowest of 32 bits is null, and clamping takes it to the lowest of 16 bits. */
void PackClampedKernel(const std::int32_t* heights, std::int16_t* out, std::size_t count, HeightRange& range)
{
    const Wide wide;
    const Packed packed;
    const std::size_t lanes = hn::Lanes(wide);
    const auto null = hn::Set(wide, GetNull<int>());
    const auto highest = hn::Set(wide, std::numeric_limits<std::int32_t>::max());
    auto minimum = hn::Set(wide, range.minimum);
    auto maximum = hn::Set(wide, range.maximum);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto cells = hn::LoadU(wide, heights + index);
        minimum = hn::Min(minimum, hn::IfThenElse(hn::Eq(cells, null), highest, cells));
        maximum = hn::Max(maximum, cells);
        hn::StoreU(hn::DemoteTo(packed, cells), packed, out + index);
    }
    range.minimum = hn::GetLane(hn::MinOfLanes(wide, minimum));
    range.maximum = hn::GetLane(hn::MaxOfLanes(wide, maximum));
    for (; index < count; ++index)
    {
        const std::int32_t height = heights[index];
        if (height != GetNull<int>())
        {
            range.minimum = std::min(range.minimum, height);
            range.maximum = std::max(range.maximum, height);
        }
        out[index] = ClampTo16(height);
    }
}

void PackShiftedKernel(const std::int32_t* heights, std::int16_t* out, std::size_t count, std::int32_t minimum,
                       std::int64_t base)
{
    const Wide wide;
    const Packed packed;
    const std::size_t lanes = hn::Lanes(wide);
    // Beyond these bases all heights are clamped, and from them to the highest height 32 bits are enough.
    const auto first = static_cast<std::int32_t>(std::clamp<std::int64_t>(base, -32768 - 65536, 32768));
    const auto null = hn::Set(wide, GetNull<int>());
    const auto missing = hn::Set(wide, GetNull<short>());
    const auto lowest = hn::Set(wide, minimum);
    const auto start = hn::Set(wide, first);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto cells = hn::LoadU(wide, heights + index);
        const auto shifted = hn::Add(hn::Sub(cells, lowest), start);
        hn::StoreU(hn::DemoteTo(packed, hn::IfThenElse(hn::Eq(cells, null), missing, shifted)), packed, out + index);
    }
    for (; index < count; ++index)
    {
        const bool isNull = heights[index] == GetNull<int>();
        out[index] = isNull ? GetNull<short>() : ClampTo16(std::int64_t{heights[index]} - minimum + first);
    }
}

std::int16_t RescaledHeight(std::int32_t height, const Rescaling& rescaling)
{
    if (height == GetNull<int>())
    {
        return GetNull<short>();
    }
    return ClampTo16(TruncateToCount((height * rescaling.oldScale + rescaling.oldOffset - rescaling.newOffset) /
                                     rescaling.newScale));
}

void PackRescaledKernel(const std::int32_t* heights, std::int16_t* out, std::size_t count, const Rescaling& rescaling)
{
    const World world;
    const WorldCount counts;
    const WorldPacked packed;
    const std::size_t lanes = hn::Lanes(world);
    const auto null = hn::Set(counts, GetNull<int>());
    const auto oldScale = hn::Set(world, rescaling.oldScale);
    const auto oldOffset = hn::Set(world, rescaling.oldOffset);
    const auto newScale = hn::Set(world, rescaling.newScale);
    const auto newOffset = hn::Set(world, rescaling.newOffset);
    const auto limit = hn::Set(world, kCountLimit);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto cells = hn::LoadU(counts, heights + index);
        const auto height = hn::Add(hn::Mul(hn::PromoteTo(world, cells), oldScale), oldOffset);
        const auto value = hn::Div(hn::Sub(height, newOffset), newScale);
        const auto fitting = hn::IfThenElse(hn::Lt(hn::Abs(value), limit), value, hn::Neg(limit));
        const auto rescaled = hn::DemoteTo(counts, fitting);
        hn::StoreU(hn::DemoteTo(packed, hn::IfThenElse(hn::Eq(cells, null), null, rescaled)), packed, out + index);
    }
    for (; index < count; ++index)
    {
        out[index] = RescaledHeight(heights[index], rescaling);
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(PackClampedKernel);
HWY_EXPORT(PackShiftedKernel);
HWY_EXPORT(PackRescaledKernel);

void PackClamped(const std::int32_t* heights, std::int16_t* out, std::size_t count, HeightRange& range)
{
    HWY_DYNAMIC_DISPATCH(PackClampedKernel)(heights, out, count, range);
}

void PackShifted(const std::int32_t* heights, std::int16_t* out, std::size_t count, std::int32_t minimum,
                 std::int64_t base)
{
    HWY_DYNAMIC_DISPATCH(PackShiftedKernel)(heights, out, count, minimum, base);
}

void PackRescaled(const std::int32_t* heights, std::int16_t* out, std::size_t count, const Rescaling& rescaling)
{
    HWY_DYNAMIC_DISPATCH(PackRescaledKernel)(heights, out, count, rescaling);
}

} // namespace Zvl
#endif
