#pragma once

/** @file
 *  A mask that is laid over a layer and need not lie inside it. */

#include <ZdkVisionLib/Common/Common.h>

#include "Common/Overlap.h"

namespace Zvl
{

/** The cells of a mask that have a cell of the layer under them. */
struct LayerWindow
{
    /** Mask cell (0, 0) lies over cell @p offset of the layer: column, row. */
    LayerWindow(const qPoint32s& offset, std::size_t maskRows, std::size_t maskColumns, std::size_t layerRows,
                std::size_t layerColumns)
        : offset(offset),
          rows(OverlapOf(maskRows, offset.y, layerRows)),
          columns(OverlapOf(maskColumns, offset.x, layerColumns))
    {
    }

    std::size_t BeginRow(std::size_t begin) const { return std::max(begin, rows.first); }
    std::size_t EndRow(std::size_t end) const { return columns.first < columns.end ? std::min(end, rows.end) : 0; }
    std::size_t ColumnCount() const { return columns.end - columns.first; }

    /** The layer's row under mask row @p row, which is one of the window's. */
    std::size_t LayerRow(std::size_t row) const { return Shifted(row, offset.y); }

    /** The layer's column under the window's first column. */
    std::size_t LayerColumn() const { return Shifted(columns.first, offset.x); }

    qPoint32s offset;
    Overlap rows;
    Overlap columns;

private:
    static std::size_t Shifted(std::size_t cell, std::int32_t by)
    {
        return static_cast<std::size_t>(static_cast<std::int64_t>(cell) + by);
    }
};

} // namespace Zvl
