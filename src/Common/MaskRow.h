#pragma once

/** @file
 *  What the scans of all shapes share: the rows of a mask that a worker fills, and their world positions. */

#include "Common/Cells.h"

#include <algorithm>
#include <vector>

namespace Zvl
{

/** One row of a mask that was zeroed beforehand. */
class MaskRow
{
public:
    MaskRow(std::uint8_t* cells, int width) : cells(cells), width(width) {}

    int Width() const { return width; }

    void Set(int column, std::uint8_t value) { cells[column] = value; }

    /** Fills the columns from @p first to @p last, both included; nothing when there are none. */
    void Fill(int first, int last, std::uint8_t value)
    {
        if (value != 0 && first <= last)
        {
            std::fill(cells + first, cells + last + 1, value);
        }
    }

private:
    std::uint8_t* cells;
    int width;
};

/** Positions of @p count cells from @p first on, found by repeated addition: the sum of many steps is not the product,
 *  and neighbouring workers and shapes must agree on every cell. */
inline std::vector<double> AccumulatedPositions(double first, double step, std::size_t count)
{
    std::vector<double> positions(count);
    double position = first;
    for (double& entry : positions)
    {
        entry = position;
        position += step;
    }
    return positions;
}

} // namespace Zvl
