#pragma once

/** @file
 *  Means over windows that slide down the columns of a map, in vector instructions. */

#include "Filter/LineMeans.h"

namespace Zvl
{

/** A row of shifted cells enters the windows of @p columns columns, and another one leaves them. */
struct ColumnStep
{
    const std::uint16_t* added;
    const std::uint16_t* removed;
    HeightSums sums;
    std::size_t columns;
};

/** Moves the windows by one row. All rows are padded to a multiple of #kMostLanes. */
void MoveColumns(const ColumnStep& step);

/** The same, and writes the means of the windows, truncated toward zero; where a window has no height, or with
 *  @p keepNulls where the cell of row @p centre is missing, a missing height.
 *  @param cells the most that a window holds
 *  @param means not padded
 *  @param next where the next means will go, which is brought into the cache */
void AverageColumns(const ColumnStep& step, std::size_t cells, const std::uint16_t* centre, bool keepNulls,
                    std::int16_t* means, const std::int16_t* next);

} // namespace Zvl
