#pragma once

/** @file
 *  A line of heights on its way through a filter. */

#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace Zvl
{

constexpr std::int16_t kMissingHeight = GetNull<short>();

/** Cells and the place of their results, which is the cells' own, another buffer, or one that begins far enough before
 *  them for no cell to be written that is still to be read. */
struct HeightLine
{
    const std::int16_t* source;
    std::size_t size;
    std::int16_t* result;
};

/** The signed distance in cells from @p from to @p to, which may lie in different buffers and are therefore compared by
 *  their addresses. */
inline std::ptrdiff_t CellDistance(const std::int16_t* from, const std::int16_t* to)
{
    const auto bytes = reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from);
    return static_cast<std::ptrdiff_t>(bytes) / static_cast<std::ptrdiff_t>(sizeof(std::int16_t));
}

/** Lowest and highest of the valid cells of a line. */
struct HeightSpan
{
    int lowest = std::numeric_limits<std::int16_t>::max();
    int highest = kMissingHeight;

    /** True when there is no valid cell. */
    bool Empty() const { return lowest > highest; }
};

inline HeightSpan SpanOf(const std::int16_t* cells, std::size_t size)
{
    std::int16_t lowest = std::numeric_limits<std::int16_t>::max();
    std::int16_t highest = kMissingHeight;
    for (std::size_t i = 0; i < size; ++i)
    {
        // The null ranks below all heights: the highest cell needs no test for it.
        const std::int16_t cell = cells[i];
        lowest = std::min(lowest, cell == kMissingHeight ? std::numeric_limits<std::int16_t>::max() : cell);
        highest = std::max(highest, cell);
    }
    return highest == kMissingHeight ? HeightSpan() : HeightSpan{lowest, highest};
}

} // namespace Zvl
