#include "Common/MaskKernels.h"

#include <ZdkVisionLib/Common/Common.h>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Common/MaskKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** At most 32 bytes: these operations wait for memory, and wider stores to it are no faster, on some processors slower. */
using Bytes = hn::CappedTag<std::uint8_t, 32>;
using Wide = hn::ScalableTag<std::int16_t>;
using Narrow = hn::Rebind<std::uint8_t, Wide>; ///< a byte for each lane of Wide

/** Calls `step(index)` for stretches of @p lanes cells that cover @p count of them. The last stretch may repeat cells of the
 *  one before, which all kernels here bear: they give the same result the second time. Fewer cells than @p lanes go to
 *  `single(index)`. */
template <typename Step, typename Single>
HWY_INLINE void ForEachStretch(std::size_t count, std::size_t lanes, Step step, Single single)
{
    if (count < lanes)
    {
        for (std::size_t index = 0; index < count; ++index)
        {
            single(index);
        }
        return;
    }
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        step(index);
    }
    if (index < count)
    {
        step(count - lanes);
    }
}

/** All bits of a byte set where the height is not missing. */
HWY_INLINE hn::VFromD<Narrow> HasHeight(const std::int16_t* heights)
{
    const Wide wide;
    const hn::Rebind<std::int8_t, Wide> narrow;
    const auto valid = hn::Ne(hn::LoadU(wide, heights), hn::Set(wide, GetNull<short>()));
    return hn::BitCast(Narrow(), hn::DemoteTo(narrow, hn::VecFromMask(wide, valid)));
}

void MarkHeightsKernel(const std::int16_t* heights, std::uint8_t* out, std::size_t count)
{
    const Narrow narrow;
    const auto one = hn::Set(narrow, 1);
    ForEachStretch(
        count, hn::Lanes(narrow),
        [&](std::size_t i) HWY_ATTR { hn::StoreU(hn::And(HasHeight(heights + i), one), narrow, out + i); },
        [&](std::size_t i) { out[i] = heights[i] != GetNull<short>() ? 1 : 0; });
}

void MarkIntensitiesKernel(const std::int16_t* heights, const std::uint8_t* intensities, std::uint8_t minimum,
                           std::uint8_t maximum, std::uint8_t* out, std::size_t count)
{
    const Narrow narrow;
    const auto one = hn::Set(narrow, 1);
    const auto low = hn::Set(narrow, minimum);
    const auto high = hn::Set(narrow, maximum);
    ForEachStretch(
        count, hn::Lanes(narrow),
        [&](std::size_t i) HWY_ATTR
        {
            const auto intensity = hn::LoadU(narrow, intensities + i);
            // A value that a limit does not change keeps to it.
            const auto inRange = hn::And(hn::VecFromMask(narrow, hn::Eq(hn::Max(intensity, low), intensity)),
                                         hn::VecFromMask(narrow, hn::Eq(hn::Min(intensity, high), intensity)));
            hn::StoreU(hn::And(hn::And(inRange, HasHeight(heights + i)), one), narrow, out + i);
        },
        [&](std::size_t i)
        {
            const bool inRange = intensities[i] >= minimum && intensities[i] <= maximum;
            out[i] = inRange && heights[i] != GetNull<short>() ? 1 : 0;
        });
}

void MergeCellsKernel(const std::uint8_t* source, std::uint8_t* target, std::size_t count)
{
    const Bytes bytes;
    const auto one = hn::Set(bytes, 1);
    ForEachStretch(
        count, hn::Lanes(bytes),
        [&](std::size_t i) HWY_ATTR
        {
            const auto either = hn::Or(hn::LoadU(bytes, source + i), hn::LoadU(bytes, target + i));
            hn::StoreU(hn::Min(either, one), bytes, target + i);
        },
        [&](std::size_t i) { target[i] = (source[i] | target[i]) != 0 ? 1 : 0; });
}

void CopySelectedHeights(const std::int16_t* heights, const std::uint8_t* mask, std::int16_t* out, std::size_t count)
{
    const Wide wide;
    const Narrow narrow;
    const auto missing = hn::Set(wide, GetNull<short>());
    ForEachStretch(
        count, hn::Lanes(wide),
        [&](std::size_t i) HWY_ATTR
        {
            const auto cells = hn::PromoteTo(wide, hn::LoadU(narrow, mask + i));
            const auto selected = hn::Ne(cells, hn::Zero(wide));
            hn::StoreU(hn::IfThenElse(selected, hn::LoadU(wide, heights + i), missing), wide, out + i);
        },
        [&](std::size_t i) { out[i] = mask[i] != 0 ? heights[i] : GetNull<short>(); });
}

void CopySelectedIntensities(const std::uint8_t* intensities, const std::uint8_t* mask, std::uint8_t* out,
                             std::size_t count)
{
    const Bytes bytes;
    ForEachStretch(
        count, hn::Lanes(bytes),
        [&](std::size_t i) HWY_ATTR
        {
            const auto selected = hn::Ne(hn::LoadU(bytes, mask + i), hn::Zero(bytes));
            hn::StoreU(hn::IfThenElseZero(selected, hn::LoadU(bytes, intensities + i)), bytes, out + i);
        },
        [&](std::size_t i) { out[i] = mask[i] != 0 ? intensities[i] : std::uint8_t{0}; });
}

void AndBytesKernel(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count)
{
    const Bytes bytes;
    ForEachStretch(
        count, hn::Lanes(bytes),
        [&](std::size_t i) HWY_ATTR
        { hn::StoreU(hn::And(hn::LoadU(bytes, a + i), hn::LoadU(bytes, b + i)), bytes, out + i); },
        [&](std::size_t i) { out[i] = static_cast<std::uint8_t>(a[i] & b[i]); });
}

void OrBytesKernel(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count)
{
    const Bytes bytes;
    ForEachStretch(
        count, hn::Lanes(bytes),
        [&](std::size_t i) HWY_ATTR
        { hn::StoreU(hn::Or(hn::LoadU(bytes, a + i), hn::LoadU(bytes, b + i)), bytes, out + i); },
        [&](std::size_t i) { out[i] = static_cast<std::uint8_t>(a[i] | b[i]); });
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(MarkHeightsKernel);
HWY_EXPORT(MarkIntensitiesKernel);
HWY_EXPORT(MergeCellsKernel);
HWY_EXPORT(CopySelectedHeights);
HWY_EXPORT(CopySelectedIntensities);
HWY_EXPORT(AndBytesKernel);
HWY_EXPORT(OrBytesKernel);

void MarkHeights(const std::int16_t* heights, std::uint8_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(MarkHeightsKernel)(heights, out, count);
}

void MarkIntensities(const std::int16_t* heights, const std::uint8_t* intensities, std::uint8_t minimum,
                     std::uint8_t maximum, std::uint8_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(MarkIntensitiesKernel)(heights, intensities, minimum, maximum, out, count);
}

void MergeCells(const std::uint8_t* source, std::uint8_t* target, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(MergeCellsKernel)(source, target, count);
}

void CopySelected(const std::int16_t* heights, const std::uint8_t* mask, std::int16_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(CopySelectedHeights)(heights, mask, out, count);
}

void CopySelected(const std::uint8_t* intensities, const std::uint8_t* mask, std::uint8_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(CopySelectedIntensities)(intensities, mask, out, count);
}

void AndBytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(AndBytesKernel)(a, b, out, count);
}

void OrBytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(OrBytesKernel)(a, b, out, count);
}

} // namespace Zvl
#endif
