#pragma once

#include "measure_radius/Sections.h"
#include "support/ResultTable.h"

#include <opencv2/core.hpp>

#include <optional>
#include <string>
#include <vector>

namespace MeasureRadius
{

/** All that was measured in one map. */
struct Measurement
{
    std::string title;
    Zvl::Surface surface;
    Direction direction;
    std::vector<SectionCircle> circles; ///< at least one
    std::size_t skipped;                ///< sections that gave no circle
    double milliseconds;                ///< for all sections together
};

/** Mean and spread of the radii. */
struct RadiusStatistics
{
    explicit RadiusStatistics(const std::vector<SectionCircle>& circles);

    double mean = 0.0;
    double median = 0.0;
    double deviation = 0.0;  ///< standard deviation; 0 for a single section
    double middleHalf = 0.0; ///< between the quartiles; damaged sections hardly change it
    double range = 0.0;      ///< between the smallest and the largest
};

/** One line for each section, and the statistics; checked where @p nominalRadius is known. */
Examples::ResultTable Tabulate(const Measurement& measurement, std::optional<double> nominalRadius);

/** The map with its sections, some of the sections with their circles and residuals, and the radii. */
cv::Mat DrawPicture(const Measurement& measurement);

} // namespace MeasureRadius
