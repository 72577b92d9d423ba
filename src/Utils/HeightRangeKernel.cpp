#include "Utils/HeightRangeKernel.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Utils/HeightRangeKernel.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** The outcome of both comparisons, all bits set or none, is narrowed to the width of the mask's cells. */
void ClearOutside(const std::int16_t* HWY_RESTRICT heights, std::int16_t lowest, std::int16_t highest,
                  std::uint8_t* HWY_RESTRICT mask, std::size_t count)
{
    const hn::ScalableTag<std::int16_t> wide;
    const hn::Rebind<std::int8_t, decltype(wide)> narrow;
    const std::size_t lanes = hn::Lanes(wide);
    const auto low = hn::Set(wide, lowest);
    const auto high = hn::Set(wide, highest);
    auto* cells = reinterpret_cast<std::int8_t*>(mask);
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto height = hn::LoadU(wide, heights + index);
        const auto outside = hn::Or(hn::Lt(height, low), hn::Gt(height, high));
        const auto clear = hn::DemoteTo(narrow, hn::VecFromMask(wide, outside));
        hn::StoreU(hn::AndNot(clear, hn::LoadU(narrow, cells + index)), narrow, cells + index);
    }
    for (; index < count; ++index)
    {
        mask[index] = heights[index] >= lowest && heights[index] <= highest ? mask[index] : std::uint8_t{0};
    }
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(ClearOutside);

void ClearOutsideHeights(const std::int16_t* heights, std::int16_t lowest, std::int16_t highest, std::uint8_t* mask,
                         std::size_t count)
{
    HWY_DYNAMIC_DISPATCH(ClearOutside)(heights, lowest, highest, mask, count);
}

} // namespace Zvl
#endif
