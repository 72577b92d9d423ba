#pragma once

/** @file
 *  How far the selected cells of a row reach, in the widest vectors that the processor offers. */

#include <cstddef>
#include <cstdint>
#include <optional>

namespace Zvl
{

/** The selected cells of a row: their first and last column, their lowest and highest count. */
struct RowExtent
{
    std::size_t first;
    std::size_t last;
    std::int16_t lowest;
    std::int16_t highest;
};

/** The extent of the cells of a row whose @p mask is not 0; nothing when there are none. A missing height counts as
 *  any other. */
std::optional<RowExtent> ExtentOfSelected(const std::uint8_t* mask, const std::int16_t* heights, std::size_t columns);

} // namespace Zvl
