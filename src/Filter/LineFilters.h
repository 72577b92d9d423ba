#pragma once

/** @file
 *  The operations on one line, without the chain around them. Windows are odd and above 1. */

#include "Filter/Line.h"

#include <ZdkVisionLib/Filter/ProfileFilter.h>

namespace Zvl
{

/** Copies the line and fills the runs of missing cells that are short enough; see ProfileFilter::FillGap(). */
void FillLineGaps(const HeightLine& line, int maxGap, int maxSlope, bool fillHigh);

/** The means over a centred window; see ProfileFilter::Average(). */
void AverageLine(const HeightLine& line, std::size_t window);

/** The medians over a centred window; see ProfileFilter::Median(). */
void MedianLine(const HeightLine& line, std::size_t window);

/** The means under a Gaussian; see ProfileFilter::Gaussian(). */
void SmoothLine(const HeightLine& line, std::size_t window, double sigma);

/** The cells within a band of heights; see ProfileFilter::Percentile(). The percentiles are in order and within 0 to
 *  100. */
void KeepPercentiles(const HeightLine& line, double low, double high, ProfileFilter::PercentileType type);

} // namespace Zvl
