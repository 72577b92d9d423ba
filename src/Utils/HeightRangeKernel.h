#pragma once

/** @file
 *  The inner loop of height limits, in the widest vectors that the processor offers. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Clears the cells of @p mask whose height is not in [@p lowest, @p highest]; other cells keep their value. */
void ClearOutsideHeights(const std::int16_t* heights, std::int16_t lowest, std::int16_t highest, std::uint8_t* mask,
                         std::size_t count);

} // namespace Zvl
