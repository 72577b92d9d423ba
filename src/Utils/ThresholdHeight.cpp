#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Cells.h"
#include "Common/Rounding.h"
#include "Utils/HeightRangeKernel.h"

namespace Zvl
{

namespace
{

/** Inclusive range of height counts that stay; empty when the first is above the second. */
struct CountRange
{
    int lowest;
    int highest;
};

/** The heights that the limits keep, the missing height -32768 excluded. A limit that is not a number keeps none:
 *  no comparison with it holds. */
CountRange CountsBetween(double minimum, double maximum, double offset, double scale)
{
    constexpr CountRange present = {GetNull<short>() + 1, std::numeric_limits<short>::max()};
    if (minimum == GetNull<double>() || maximum == GetNull<double>())
    {
        return present;
    }
    const double lowest = RoundHalfAway((minimum - offset) / scale);
    const double highest = RoundHalfAway((maximum - offset) / scale);
    if (std::isnan(lowest) || std::isnan(highest))
    {
        return {0, -1};
    }
    return {std::max(TruncateToInt(lowest), present.lowest), std::min(TruncateToInt(highest), present.highest)};
}

} // namespace

void ThresholdHeight(const Surface& surface, double minimum, double maximum, Rect2d<int> rect, Zo::Object<void*> mask)
{
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(LayerOf(surface, 0));
    const Cells<std::uint8_t> cells = CellsOf<std::uint8_t>(mask.Get());
    if (!heights.Contains(rect) || !cells.HasSizeOf(rect))
    {
        return;
    }
    const CountRange counts = CountsBetween(minimum, maximum, surface.offset.z, surface.scale.z);
    if (counts.lowest > counts.highest)
    {
        std::fill_n(cells.data, cells.rows * cells.columns, std::uint8_t{0});
        return;
    }
    for (std::size_t row = 0; row < cells.rows; ++row)
    {
        ClearOutsideHeights(heights.Row(static_cast<std::size_t>(rect.y) + row) + rect.x,
                            static_cast<std::int16_t>(counts.lowest), static_cast<std::int16_t>(counts.highest),
                            cells.Row(row), cells.columns);
    }
}

} // namespace Zvl
