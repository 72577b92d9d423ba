#pragma once

/** @file
 *  From rows of 32-bit heights to rows of 16-bit heights, in the widest vectors that the processor offers. The 32-bit null
 *  always becomes the 16-bit one. */

#include <cstddef>
#include <cstdint>
#include <limits>

namespace Zvl
{

/** The range of the heights seen so far, nulls left out. */
struct HeightRange
{
    std::int32_t minimum = std::numeric_limits<std::int32_t>::max();
    std::int32_t maximum = std::numeric_limits<std::int32_t>::min();

    bool FitsIn16Bits() const { return minimum >= -32768 && maximum <= 32767; }
};

/** From counts of one mapping to counts of another. */
struct Rescaling
{
    double oldScale;
    double oldOffset;
    double newScale;
    double newOffset;
};

/** Stores heights clamped to 16 bits, and widens @p range by them. */
void PackClamped(const std::int32_t* heights, std::int16_t* out, std::size_t count, HeightRange& range);

/** Stores heights above @p minimum, counted from @p base and clamped to 16 bits. No height lies below @p minimum or more
 *  than 65535 above it. */
void PackShifted(const std::int32_t* heights, std::int16_t* out, std::size_t count, std::int32_t minimum,
                 std::int64_t base);

/** Stores heights in another mapping, truncated and clamped to 16 bits; those that are no 32-bit count in it are missing. */
void PackRescaled(const std::int32_t* heights, std::int16_t* out, std::size_t count, const Rescaling& rescaling);

} // namespace Zvl
