#pragma once

#include "prepare_scan/Comparison.h"

#include <opencv2/core.hpp>

namespace PrepareScan
{

Examples::ResultTable Tabulate(const Task& task, const Comparison& comparison);

/** The scan after each step, and the difference. */
cv::Mat DrawPicture(const Task& task, const Comparison& comparison, const Examples::ResultTable& table);

} // namespace PrepareScan
