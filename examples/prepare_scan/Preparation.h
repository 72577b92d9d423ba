#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

namespace PrepareScan
{

/** What one step made of a scan, and how long it took. */
struct Step
{
    Zvl::Surface surface;
    double milliseconds;
};

/** The steps from a scan as the sensor delivers it to one that can be compared, in their order. */
struct Preparation
{
    static constexpr int kLongestGap = 10; ///< cells that are closed at most, along a row or a column
    static constexpr int kWindow = 5;      ///< cells on a side of the box that is averaged

    explicit Preparation(const Zvl::Surface& scan);

    Step filled;
    Step smoothed;
    Step decimated; ///< to half the rows and columns
};

/** Averages over a box of @p window by @p window cells.
 *  @param closesHoles whether missing heights are averaged from their surroundings, or stay missing */
Zvl::Surface Smooth(const Zvl::Surface& scan, std::size_t window, bool closesHoles);

/** Deviation of a prepared scan from the golden surface where both have a height, as heights over 0. */
Step Difference(const Zvl::Surface& prepared, const Zvl::Surface& golden);

} // namespace PrepareScan
