#include "Arithmetic/HeightPacking.h"

#include "Arithmetic/PackingKernels.h"
#include "Common/Check.h"
#include "Common/Rounding.h"

#include <algorithm>

namespace Zvl
{

namespace
{

constexpr char kFunction[] = "Zvl::Arithmetics::ConvertSurface32sTo16s";

/** Calls `pack(heights, out, columns)` for each row that is reached. */
template <typename Pack>
void ForEachRow(const Cells<std::int32_t>& heights, const Cells<std::int16_t>& out, const GridSize& size, Pack pack)
{
    for (std::size_t row = 0; row < size.rows; ++row)
    {
        pack(heights.Row(row), out.Row(row), size.columns);
    }
}

/** Most heights fit, so that they are packed while their range is found. */
HeightRange PackAsTheyAre(const Cells<std::int32_t>& heights, const Cells<std::int16_t>& out, const GridSize& size)
{
    HeightRange range;
    ForEachRow(heights, out, size,
               [&](const std::int32_t* in, std::int16_t* packed, std::size_t count)
               { PackClamped(in, packed, count, range); });
    return range;
}

/** The choice is made by a difference in 32 bits, which wraps around where the frames of the sources lie very far apart. */
bool IsNarrow(const HeightRange& range)
{
    const auto difference = static_cast<std::int32_t>(static_cast<std::uint32_t>(range.maximum) -
                                                      static_cast<std::uint32_t>(range.minimum));
    return difference <= 65535;
}

/** Heights of a difference that wraps around are shifted like others, and all but those at the middle are clamped. */
void ShiftApart(const Cells<std::int32_t>& heights, const GridSize& size, int shift, const Cells<std::int16_t>& out)
{
    ForEachRow(heights, out, size,
               [shift](const std::int32_t* in, std::int16_t* packed, std::size_t count)
               {
                   std::transform(in, in + count, packed,
                                  [shift](std::int32_t height)
                                  {
                                      const std::int64_t moved =
                                          std::clamp<std::int64_t>(std::int64_t{height} + shift, -32768, 32767);
                                      return height == GetNull<int>() ? GetNull<short>()
                                                                      : static_cast<std::int16_t>(moved);
                                  });
               });
}

// Sums and differences of two heights need 33 bits when the frames of the sources lie far apart.

void Shift(const Cells<std::int32_t>& heights, const HeightRange& range, const GridSize& size, Surface& surface16,
           const Cells<std::int16_t>& out)
{
    const std::int64_t middle = (std::int64_t{range.maximum} + range.minimum) / 2;
    const double oldOffset = surface16.offset.z;
    surface16.offset.z = static_cast<double>(middle) * surface16.scale.z + oldOffset;
    const int shift = TruncateToInt(RoundHalfAway((oldOffset - surface16.offset.z) / surface16.scale.z));
    const std::int64_t base = std::int64_t{range.minimum} + shift;
    if (std::int64_t{range.maximum} - range.minimum > 65535)
    {
        ShiftApart(heights, size, shift, out);
        return;
    }
    ForEachRow(heights, out, size,
               [&](const std::int32_t* in, std::int16_t* packed, std::size_t count)
               { PackShifted(in, packed, count, range.minimum, base); });
}

void Rescale(const Cells<std::int32_t>& heights, const HeightRange& range, const GridSize& size, Surface& surface16,
             const Cells<std::int16_t>& out)
{
    const double worldMaximum = range.maximum * surface16.scale.z + surface16.offset.z;
    const double worldMinimum = range.minimum * surface16.scale.z + surface16.offset.z;
    const Rescaling rescaling = {surface16.scale.z, surface16.offset.z, (worldMaximum - worldMinimum) / 65535.0,
                                 (worldMaximum + worldMinimum) / 2.0};
    surface16.scale.z = rescaling.newScale;
    surface16.offset.z = rescaling.newOffset;
    ForEachRow(heights, out, size,
               [&](const std::int32_t* in, std::int16_t* packed, std::size_t count)
               { PackRescaled(in, packed, count, rescaling); });
}

} // namespace

Surface ConvertSurface32sTo16s(const Surface& surface)
{
    const Cells<std::int32_t> heights = CellsOf<std::int32_t>(LayerOf(surface, 0));
    ZVL_REQUIRE(kFunction, heights.present);
    Surface surface16;
    surface16.scale = surface.scale;
    surface16.offset = surface.offset;
    surface16.layers.emplace_back();
    ZVL_CHECK(kFunction,
              qArray2_Construct(surface16.layers[0].Slot(), xxq16s_type, heights.rows, heights.columns, nullptr));
    if (surface.layers.size() > 1)
    {
        surface16.layers.push_back(surface.layers[1]);
    }

    const Cells<std::int16_t> out = CellsOf<std::int16_t>(surface16.layers[0]);
    const GridSize size = ReachableCells<std::int16_t>(out, GetNull<short>());
    const HeightRange range = PackAsTheyAre(heights, out, size);
    if (range.FitsIn16Bits())
    {
        return surface16;
    }
    if (IsNarrow(range))
    {
        Shift(heights, range, size, surface16, out);
    }
    else
    {
        Rescale(heights, range, size, surface16, out);
    }
    return surface16;
}

} // namespace Zvl
