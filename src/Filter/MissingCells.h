#pragma once

/** @file
 *  Where heights are missing, 64 cells at a time, so that a map without gaps costs no more than a look at it. */

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Sets bit `i % 64` of `words[i / 64]` when cell i is missing. Bits beyond @p count are 0. */
void MarkMissing(const std::int16_t* cells, std::size_t count, std::uint64_t* words);

/** Copies @p count cells from @p in to @p out, which does not begin within them unless it is the same place.
 *  @return whether one of them is missing */
bool CopyAndLook(const std::int16_t* in, std::int16_t* out, std::size_t count);

constexpr std::size_t kWordCells = 64;
constexpr std::size_t kMarkWords = 64;
constexpr std::size_t kMarkCells = kMarkWords * kWordCells;

/** The marks of one stretch of a row. */
using MissingMarks = std::array<std::uint64_t, kMarkWords>;

/** Calls `visit(word, first)` for each word of marks of a row, @p first being the column of its bit 0. */
template <typename Visit>
void ForEachMarkWord(const std::int16_t* row, std::size_t columns, Visit visit)
{
    MissingMarks marks;
    for (std::size_t start = 0; start < columns; start += kMarkCells)
    {
        const std::size_t count = std::min(kMarkCells, columns - start);
        MarkMissing(row + start, count, marks.data());
        for (std::size_t cell = 0; cell < count; cell += kWordCells)
        {
            visit(marks[cell / kWordCells], start + cell);
        }
    }
}

/** Calls `visit(column)` for each bit that is set. */
template <typename Visit>
void ForEachSetBit(std::uint64_t word, std::size_t first, Visit visit)
{
    for (; word != 0; word &= word - 1)
    {
        visit(first + static_cast<std::size_t>(std::countr_zero(word)));
    }
}

/** Calls `visit(begin, end)` for each longest run of missing cells of a row. */
template <typename Visit>
void ForEachMissingRun(const std::int16_t* row, std::size_t columns, Visit visit)
{
    bool isOpen = false;
    std::size_t begin = 0;
    const auto change = [&](std::size_t column)
    {
        if (isOpen)
        {
            visit(begin, column);
        }
        begin = column;
        isOpen = !isOpen;
    };
    ForEachMarkWord(row, columns,
                    [&](std::uint64_t missing, std::size_t first)
                    {
                        const std::uint64_t before = missing << 1 | static_cast<std::uint64_t>(isOpen);
                        ForEachSetBit(missing ^ before, first, change);
                    });
    if (isOpen)
    {
        visit(begin, columns);
    }
}

} // namespace Zvl
