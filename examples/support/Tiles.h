#pragma once

#include <opencv2/core.hpp>

#include <vector>

namespace Examples
{

/** Pictures, CV_8UC3, side by side in so many columns, row after row, on the background that they were drawn on. Each
 *  column is as wide as the widest picture in it, each row as high as the highest. */
cv::Mat Tiles(const std::vector<cv::Mat>& pictures, int columns);

} // namespace Examples
