#pragma once

#include "Chart.h"
#include "Svg.h"

#include <ZdkVisionLib/Common/Common.h>

namespace Pictures
{

/** The cells of a map as squares: cell (0, 0) at the upper left, rows downwards. */
class Cells
{
public:
    Cells(Svg& target, const qPoint64f& upperLeft, double size, std::size_t rows, std::size_t columns);

    Place Cell(double row, double column) const;       ///< the square of a cell
    qPoint64f Centre(double row, double column) const; ///< its middle

    /** The lines between the cells. */
    void Grid();

    /** Colours each cell by its value, from violet for @p low to yellow for @p high; missing heights are grey. */
    void Heights(void* array, const Range& range);

    /** The cells that are not 0, for a mask whose first cell is cell (@p row, @p column). */
    void Mask(void* mask, int row, int column, const std::string& style);

    /** The outline of a rectangle of cells. */
    void Box(const Zvl::Rect2d<int>& box, const std::string& style);

private:
    Svg& svg;
    qPoint64f corner;
    double pixels;
    std::size_t rowCount;
    std::size_t columnCount;
};

} // namespace Pictures
