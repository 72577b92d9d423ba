#pragma once

/** @file
 *  The inner loops of area means, in the widest vectors that the processor offers. Their sums are taken in another
 *  order than those of cells one by one, and may differ from them in the last bits. */

#include "Filter/SurfaceDecimateSpan.h"

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Some rows of a map, with the share of each that is covered. */
struct RowBand
{
    static constexpr std::size_t kMostRows = 16; ///< as many lines of the cache as columns a row apart may share

    const std::int16_t* heights;
    const std::uint8_t* intensities; ///< null when there are none
    std::size_t stride;              ///< from row to row
    std::size_t rows;
    const double* shares;
};

/** Weighted sums over cells that have a height. An item is two numbers: the sum, and the sum of the weights. */
struct AreaSums
{
    double* heights;
    double* intensities; ///< null when there are none
};

/** Adds the rows of @p band, column by column, to @p sums, or starts the sums with them. */
void SumColumns(const RowBand& band, std::size_t columns, bool starts, const AreaSums& sums);

/** The columns that the cells of a row cover. All cells have as many shares, those of columns that they do not cover
 *  being 0: the processor could not foresee how many columns a cell covers. */
struct CellTaps
{
    const CellSpan* spans;
    std::size_t cells;
    const double* shares; ///< #count for each cell, from the first column of its span
    std::size_t count;
};

/** Sums items of columns to items of cells. */
void SumTaps(const CellTaps& taps, const double* columnSums, double* cellSums);

constexpr std::size_t kMeanBlock = 64;

/** Quotients of a block of sums and their weights, rounded half away from zero; @p missing where the weight is 0.
 *  @param sums items as in AreaSums
 *  @param margin how far a quotient may be from that of the sums in their proper order; negative when they are the same
 *  @return bit i set when the rounding of quotient i is in doubt */
std::uint64_t RoundMeans(const double* sums, double margin, std::int16_t missing, std::int16_t* means);

/** Two rows of a map. */
struct RowPair
{
    const std::int16_t* top;
    const std::int16_t* bottom;
};

/** Rounded means of two by two whole cells, as RoundMeans() of their exact sums, for as many of the first @p count
 *  means as fill vectors.
 *  @return their number */
std::size_t HalveHeights(const RowPair& heights, std::size_t count, std::int16_t* means);

/** The same number of means of the intensities @p top and @p bottom where there are heights; 0 where there is none. */
std::size_t HalveIntensities(const RowPair& heights, const std::uint8_t* top, const std::uint8_t* bottom,
                             std::size_t count, std::uint8_t* means);

} // namespace Zvl
