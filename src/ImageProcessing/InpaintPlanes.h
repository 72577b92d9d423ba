#pragma once

/** @file
 *  The states and times of all cells before the marches. */

#include "ImageProcessing/InpaintFront.h"

namespace Zvl
{

/** The planes of a march inwards; they have room for #kRunSlack cells behind each row. */
struct MarchPlanes
{
    cv::Mat_<std::uint8_t> f; ///< CellState
    cv::Mat_<float> t;        ///< when the front arrives; negative outside the holes
};

/** A state for each cell of an image and for a border of one cell around it: #CELL_HOLE where @p inputMask is not 0,
 *  #CELL_FRONT for known cells of the image beside one, and #CELL_SETTLED. */
cv::Mat_<std::uint8_t> StatesOf(const cv::Mat& inputMask);

/** Times for a march inwards alone: #kNever. */
cv::Mat_<float> TimesInside(const cv::Mat_<std::uint8_t>& f);

/** Times for a march outwards, and one inwards after it: #kAwaitsFront for the settled cells of the image in the square of
 *  @p range about a hole, #kNever for all others. Makes room in @p queue for the march outwards.
 *  @return no times when there is no memory for the queue */
cv::Mat_<float> TimesAround(const cv::Mat_<std::uint8_t>& f, int range, CvPriorityQueueFloat& queue);

} // namespace Zvl
