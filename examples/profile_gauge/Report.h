#pragma once

#include "profile_gauge/Gauge.h"
#include "support/ResultTable.h"

#include <opencv2/core.hpp>

namespace ProfileGauge
{

/** What was measured in a recording. */
struct Survey
{
    std::vector<std::optional<Reading>> readings; ///< one for each line scan; at least one was measured
    double milliseconds;                          ///< for all of them
};

Examples::ResultTable Tabulate(const Recording& recording, const Survey& survey);

/** One line scan with its regions and what was measured on it, and width and depth along the groove. */
cv::Mat DrawPicture(const Recording& recording, const Survey& survey, const Examples::ResultTable& table);

} // namespace ProfileGauge
