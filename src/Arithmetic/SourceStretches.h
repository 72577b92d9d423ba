#pragma once

/** @file
 *  The cells of two sources under the cells of a grid. */

#include "Arithmetic/CommonGrid.h"
#include "Common/Cells.h"
#include "Common/Overlap.h"

#include <algorithm>
#include <array>

namespace Zvl
{

/** The layers of a source that are read. */
struct SourceLayers
{
    Cells<const std::int16_t> heights;
    Cells<const std::uint8_t> intensities; ///< as large as the heights, or not present
};

/** A source under the cells of a grid. */
class PlacedSource
{
public:
    /** Cell (@p firstRow, @p firstColumn) of the source lies under cell (0, 0) of a grid of @p size. */
    PlacedSource(const SourceLayers& layers, std::int16_t firstRow, std::int16_t firstColumn, const GridSize& size)
        : layers(layers),
          firstRow(firstRow),
          firstColumn(firstColumn),
          rows(OverlapOf(size.rows, firstRow, ReachableOf(layers.heights.rows))),
          columns(OverlapOf(size.columns, firstColumn, ReachableOf(layers.heights.columns)))
    {
    }

    /** The grid's columns that have one of the source under them. */
    const Overlap& Columns() const { return columns; }

    /** Heights from under the grid's cell (@p row, @p column) on; null when no cell of the source lies there. */
    const std::int16_t* HeightsAt(std::size_t row, std::size_t column) const { return At(layers.heights, row, column); }

    /** The same for intensities, and null when there are none. */
    const std::uint8_t* IntensitiesAt(std::size_t row, std::size_t column) const
    {
        return layers.intensities.present ? At(layers.intensities, row, column) : nullptr;
    }

private:
    template <typename T>
    const T* At(const Cells<const T>& cells, std::size_t row, std::size_t column) const
    {
        const bool isUnder = rows.first <= row && row < rows.end && columns.first <= column && column < columns.end;
        return isUnder ? cells.Row(Shifted(row, firstRow)) + Shifted(column, firstColumn) : nullptr;
    }

    static std::size_t Shifted(std::size_t cell, std::int16_t by)
    {
        return static_cast<std::size_t>(static_cast<std::int64_t>(cell) + by);
    }

    SourceLayers layers;
    std::int16_t firstRow;
    std::int16_t firstColumn;
    Overlap rows;
    Overlap columns;
};

/** A stretch of a row of the grid. Under it, each source has as many cells or none; its pointers are then null. */
struct SourceStretch
{
    std::size_t row;
    std::size_t column;
    std::size_t count;
    const std::int16_t* heights0;
    const std::int16_t* heights1;
    const std::uint8_t* intensities0;
    const std::uint8_t* intensities1;
};

/** Calls `visit(stretch)` for stretches that cover a grid of @p size, row after row. */
template <typename Visit>
void ForEachStretch(const PlacedSource& source0, const PlacedSource& source1, const GridSize& size, Visit visit)
{
    // Where a source begins or ends.
    std::array<std::size_t, 6> cuts = {
        0,           source0.Columns().first, source0.Columns().end, source1.Columns().first, source1.Columns().end,
        size.columns};
    std::sort(cuts.begin(), cuts.end());
    for (std::size_t row = 0; row < size.rows; ++row)
    {
        for (std::size_t i = 1; i < cuts.size(); ++i)
        {
            const std::size_t column = cuts[i - 1];
            if (column < cuts[i])
            {
                visit(SourceStretch{row, column, cuts[i] - column, source0.HeightsAt(row, column),
                                    source1.HeightsAt(row, column), source0.IntensitiesAt(row, column),
                                    source1.IntensitiesAt(row, column)});
            }
        }
    }
}

} // namespace Zvl
