#pragma once

/** @file
 *  Where cells that are laid over others meet them. */

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** A range of cells, its end excluded. */
struct Overlap
{
    std::size_t first;
    std::size_t end;
};

/** The cells among @p count that meet one of @p others cells, when cell i lies over cell `offset + i`. */
inline Overlap OverlapOf(std::size_t count, std::int64_t offset, std::size_t others)
{
    if (offset < 0)
    {
        const std::uint64_t outside = std::uint64_t{0} - static_cast<std::uint64_t>(offset);
        const std::size_t first = std::min<std::uint64_t>(count, outside);
        return {first, std::max<std::size_t>(first, std::min<std::uint64_t>(count, outside + others))};
    }
    const auto position = static_cast<std::uint64_t>(offset);
    return {0, position < others ? std::min<std::size_t>(count, others - position) : 0};
}

} // namespace Zvl
