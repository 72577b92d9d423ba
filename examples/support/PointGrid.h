#pragma once

#include "support/HeightGrid.h"

namespace Examples
{

/** Puts points, in millimetres, into the cells of the grid that their x and y lie on, up to a twentieth of a cell. Cells
 *  without a point are missing. Points of a single row or column take the size of their cells across it from along it.
 *  @throws InputError when the points lie on no grid, or two of them in one cell */
HeightGrid GridOfPoints(const std::vector<qPoint3d64f>& points, const std::string& path);

} // namespace Examples
