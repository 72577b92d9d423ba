#pragma once

/** @file
 *  Exact sums over the selected cells of a row, in the widest vectors that the processor offers. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** A piece of one row of a surface and of its mask, from the same column on. */
struct RowStretch
{
    const std::int16_t* heights;
    const std::uint8_t* mask;
    std::size_t length;   ///< columns of the stretch
    std::size_t readable; ///< columns up to the end of the row in both arrays, at least `length`
};

/** Sums of first order over the selected cells of a stretch. Columns count from the stretch's first. */
struct CellSums
{
    std::int64_t cells = 0;
    std::int64_t columns = 0;
    std::int64_t heights = 0;
};

/** Sums of first and second order over the selected cells of a stretch. */
struct CellMoments
{
    std::int64_t cells = 0;
    std::int64_t columns = 0;
    std::int64_t heights = 0;
    std::int64_t squaredColumns = 0;
    std::int64_t columnsTimesHeights = 0;
    std::int64_t squaredHeights = 0;
};

constexpr std::size_t kLongestSumStretch = 32768;  ///< for SumCells(): a column fits in 16 bits
constexpr std::size_t kLongestMomentStretch = 256; ///< for SumMoments(): a column fits in 8 bits
constexpr std::size_t kMostMomentCells = 128;      ///< for SumMoments(): the sums fit in 32 bits

/** Sums over at most #kLongestSumStretch columns. */
CellSums SumCells(const RowStretch& stretch);

/** Sums over at most #kLongestMomentStretch columns with at most #kMostMomentCells selected cells. */
CellMoments SumMoments(const RowStretch& stretch);

} // namespace Zvl
