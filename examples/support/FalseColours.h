#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <opencv2/core.hpp>

namespace Examples
{

/** Heights over a plane; a height outside is shown in the colour of the nearer end. */
struct HeightRange
{
    double low;
    double high;
};

/** The heights over @p plane between which all but the outermost @p percent of the present cells lie. */
HeightRange TypicalRange(const Zvl::Surface& surface, const qPlane3d64f& plane, double percent);

/** The range itself, or, if it has no length, one around it. */
HeightRange Widened(const HeightRange& range);

/** What colours tell apart. */
enum class Palette
{
    Heights,   ///< low from high
    Greys,     ///< dark from bright
    Deviations ///< too low, blue, from right, white, and too high, red
};

/** A picture of levels, CV_8UC1, in colours: level 0 is the low end of the palette, 255 the high end. */
cv::Mat Paint(const cv::Mat& levels, Palette palette);

/** A bar of all colours with the low end at its left. */
cv::Mat ColourBar(Palette palette, const cv::Size& size);

/** 255 where the height is missing, otherwise 0, as CV_8UC1. */
cv::Mat MissingCells(const Zvl::Surface& surface);

/** One pixel per cell: the colour of its height over @p reference, and dark where it is missing. @p range has a length. */
cv::Mat FalseColours(const Zvl::Surface& surface, const qPlane3d64f& reference, const HeightRange& range,
                     Palette palette);

} // namespace Examples
