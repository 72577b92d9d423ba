#pragma once

/** @file
 *  The front that marches over an image, one cell after the other. */

#include "ImageProcessing/InpaintQueue.h"

#include <array>

namespace Zvl
{

enum CellState : std::uint8_t
{
    CELL_SETTLED = 0, ///< known, or already passed by the front
    CELL_FRONT = 1,   ///< the front's own
    CELL_HOLE = 2     ///< not yet reached
};

constexpr float kNever = 1000000.0F;    ///< the time of a cell that no front has reached
constexpr float kAwaitsFront = -kNever; ///< that of one which the front outwards is to reach

/** A cell of the working planes, which have a border of one cell around the image. */
struct PlaneCell
{
    int i; ///< row
    int j; ///< column
};

/** The four neighbours in the order in which the front tries them. */
inline std::array<PlaneCell, 4> NeighboursOf(const PlaneCell& cell)
{
    return {{{cell.i - 1, cell.j}, {cell.i, cell.j - 1}, {cell.i + 1, cell.j}, {cell.i, cell.j + 1}}};
}

/** When the front arrives at @p cell, from the times @p t of its neighbours and their states @p f, of which at least one
 *  is known: the earliest solution of the eikonal equation. */
float ArrivalAt(const cv::Mat_<std::uint8_t>& f, const cv::Mat_<float>& t, const PlaneCell& cell);

/** Marches from the cells of @p queue over those that are #kAwaitsFront, until it is empty. All of them have the negative
 *  of their arrival afterwards. Times of other cells are 0 for those where the march begins, and #kNever. */
void MarchOutwards(cv::Mat_<float>& t, CvPriorityQueueFloat& queue);

} // namespace Zvl
