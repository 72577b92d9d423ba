#pragma once

/** @file
 *  The three ways through a map that close its gaps. All read the input alone, and copy each row before they look for
 *  gaps in it, so that it comes from memory only once. */

#include "Common/Cells.h"
#include "Filter/MissingCells.h"

#include <algorithm>

namespace Zvl
{

/** Gaps of one direction, in cells and counts. */
struct GapLimit
{
    std::int64_t gap;   ///< most missing cells
    std::int64_t slope; ///< most counts per cell
};

/** One layer, and the layer to fill, which is as large. Null pointers for a missing layer. */
template <typename T>
struct FilledLayer
{
    const T* in = nullptr;
    T* out = nullptr;
};

/** What the walks work on. */
struct GapMap
{
    std::size_t rows;
    std::size_t columns;
    FilledLayer<std::int16_t> heights;
    FilledLayer<std::uint8_t> intensities;
    bool fillHigh;

    /** Copies the cells of a row as they are.
     *  @return whether a height of it is missing */
    bool CopyRow(std::size_t row) const
    {
        const std::size_t first = row * columns;
        if (intensities.in != nullptr)
        {
            std::copy_n(intensities.in + first, columns, intensities.out + first);
        }
        return CopyAndLook(heights.in + first, heights.out + first, columns);
    }
};

/** What FillGapBoth() needs beside the map. */
struct CrossLimits
{
    GapLimit x;
    GapLimit y;
    std::int64_t weightX; ///< distance from column to column, in thousandths of a world unit
    std::int64_t weightY; ///< distance from row to row
};

/** Closes gaps along rows. */
void FillGapRows(const GapMap& map, const GapLimit& limit);

/** Closes gaps along columns. */
void FillGapColumns(const GapMap& map, const GapLimit& limit);

/** Closes gaps of both directions at once. @p previousRows and @p nextRows are working memory of one item per
 *  column. */
void FillGapBoth(const GapMap& map, const CrossLimits& limits, std::int64_t* previousRows, std::int64_t* nextRows);

} // namespace Zvl
