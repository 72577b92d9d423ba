#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <opencv2/core.hpp>

#include <vector>

namespace ComposeRegions
{

/** Heights over @p plane in standard deviations, held within +-3, so that a deep pit counts no more than a shallow one;
 *  0 where a height is missing. */
cv::Mat Relief(const Zvl::Surface& surface, const qPlane3d64f& plane);

/** Three cells around which the relief varies in both directions, the most distinct first, with @p margin cells around
 *  them. Source: J. Shi, C. Tomasi, Good Features to Track, 1994.
 *  @throws std::runtime_error when there are fewer */
std::vector<cv::Point> DistinctCells(const cv::Mat& relief, int patch, const cv::Size& margin);

/** Where the square of (2 * @p patch + 1) cells around @p cell is found in @p next, at most @p reach cells away: at the
 *  highest normalised correlation, to fractions of a cell by the parabola through its neighbours.
 *  @throws std::runtime_error when nothing there is alike */
cv::Point2d FindPatch(const cv::Mat& relief, const cv::Mat& next, const cv::Point& cell, int patch,
                      const cv::Size& reach);

} // namespace ComposeRegions
