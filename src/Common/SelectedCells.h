#pragma once

/** @file
 *  The selected cells of a row of a mask: those that are not 0. */

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Zvl
{

/** Eight mask cells from @p cells on as a word, the first in its lowest byte: 1 where the cell is not 0, else 0. */
inline std::uint64_t SelectedBytes(const std::uint8_t* cells)
{
    std::uint64_t word = 0;
    std::memcpy(&word, cells, sizeof(word));
    if constexpr (std::endian::native == std::endian::big)
    {
        word = __builtin_bswap64(word);
    }
    // The carry out of the low seven bits, or the high bit itself, says that a byte is not 0.
    constexpr std::uint64_t low = 0x7f7f7f7f7f7f7f7fU;
    return ((((word & low) + low) | word) & ~low) >> 7U;
}

/** Selected cells among the eight from @p cells on. */
inline std::size_t CountOfEight(const std::uint8_t* cells)
{
    // The product sums all bytes in the top one.
    return static_cast<std::size_t>((SelectedBytes(cells) * 0x0101010101010101U) >> 56U);
}

/** One bit for each of eight mask cells from @p cells on, set where the cell is selected; the first cell is bit 0. */
inline unsigned SelectionOfEight(const std::uint8_t* cells)
{
    // The product gathers the bytes' low bits in the top byte.
    return static_cast<unsigned>((SelectedBytes(cells) * 0x0102040810204080U) >> 56U);
}

/** Calls `visit(column)` for each non-zero cell of @p mask, in ascending order. */
template <typename Visit>
inline void ForEachSelected(const std::uint8_t* mask, std::size_t columns, Visit visit)
{
    std::size_t column = 0;
    for (; column + 8 <= columns; column += 8)
    {
        unsigned selection = SelectionOfEight(mask + column);
        if (selection == 0xffU)
        {
            for (std::size_t i = 0; i < 8; ++i)
            {
                visit(column + i);
            }
            continue;
        }
        for (; selection != 0; selection &= selection - 1)
        {
            visit(column + static_cast<std::size_t>(std::countr_zero(selection)));
        }
    }
    for (; column < columns; ++column)
    {
        if (mask[column] != 0)
        {
            visit(column);
        }
    }
}

/** Non-zero cells among @p count cells. */
inline std::size_t CountSelected(const std::uint8_t* mask, std::size_t count)
{
    std::size_t selected = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        selected += mask[i] != 0 ? 1U : 0U;
    }
    return selected;
}

} // namespace Zvl
