#pragma once

/** @file
 *  What several peers are composed of. */

#include <ZdkVisionLib/Common/Common.h>

#include <opencv2/core.hpp>

namespace Survey
{

/** A mean that leaves missing heights out, by a filter that does not know them: `filter(cells, sums)` over the heights
 *  with zeros in place of the missing ones, the same over the cells that have a height, and their quotient. */
template <typename Filter>
cv::Mat QuotientOfTwo(const cv::Mat& heights, Filter filter)
{
    cv::Mat missing;
    cv::Mat valid;
    cv::Mat sums;
    cv::Mat counts;
    cv::Mat mean;
    cv::compare(heights, cv::Scalar(Zvl::GetNull<short>()), missing, cv::CMP_EQ);
    cv::Mat filled = heights.clone();
    filled.setTo(0, missing);
    cv::bitwise_not(missing, valid);
    filter(filled, sums);
    filter(valid, counts);
    cv::divide(sums, counts, sums, 255.0);
    sums.convertTo(mean, CV_16S);
    mean.setTo(Zvl::GetNull<short>(), missing);
    return mean;
}

} // namespace Survey
