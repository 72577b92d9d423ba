#pragma once

/** @file
 *  Mean and scatter of the selected cells of a surface, the sums under FitPlane(). */

#include "Common/Cells.h"

#include <array>
#include <cstdint>

namespace Zvl
{

/** The cells of a rectangle of a surface and which of them are selected. */
struct SelectedCells
{
    Cells<const std::int16_t> heights; ///< all of the surface
    Cells<const std::uint8_t> mask;    ///< as large as `rect`
    Rect2d<int> rect;                  ///< inside the surface
};

struct PlaneCovariance
{
    qPoint3d64f mean;                  ///< world mean of the cells
    std::array<double, 9> productSums; ///< symmetric: sums of products of world deviations, not normalised
};

/** Sums in two passes over the cells: the mean, then the products of the deviations from it.
 *
 *  Cells enter as integers: columns and rows of the surface, and height counts. With n cells and sums Σx, Σy,
 *  Σh, deviations are taken n times too large, `x n - Σx`, so that they are integers as well. Above 8192 cells
 *  n and the sums are halved together, dropping the odd bit, until n is at or below that. Products are summed
 *  as integers over 128 cells at a time before they are scaled and added up as doubles; the result is that of
 *  this definition to the last bit.
 *
 *  @return false, with @p covariance untouched, when fewer than 4 cells are selected */
bool SumCovariance(const SelectedCells& cells, const qPoint3d64f& scale, const qPoint3d64f& offset,
                   PlaneCovariance& covariance);

} // namespace Zvl
