#include "support/FalseColours.h"

#include "support/Drawing.h"
#include "support/HeightMap.h"
#include "support/PlaneDistance.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Examples
{
namespace
{

/** One level per height: 0 for the low end of the range, 255 for the high end. */
cv::Mat Levels(const Zvl::Surface& surface, const qPlane3d64f& reference, const HeightRange& range)
{
    cv::Mat levels(static_cast<int>(Rows(surface)), static_cast<int>(Columns(surface)), CV_8UC1);
    for (std::size_t row = 0; row < Rows(surface); ++row)
    {
        auto* level = levels.ptr<unsigned char>(static_cast<int>(row));
        for (std::size_t column = 0; column < Columns(surface); ++column)
        {
            const double height = PlaneDistance(reference, WorldPoint(surface, row, column));
            const double part = (height - range.low) / (range.high - range.low);
            level[column] = static_cast<unsigned char>(std::lround(255.0 * std::clamp(part, 0.0, 1.0)));
        }
    }
    return levels;
}

/** The colour of each level, from blue over white to red. */
cv::Mat DeviationColours()
{
    const cv::Vec3d low(190.0, 90.0, 20.0); // blue, green, red
    const cv::Vec3d middle(248.0, 248.0, 248.0);
    const cv::Vec3d high(30.0, 20.0, 200.0);
    cv::Mat colours(256, 1, CV_8UC3);
    for (int level = 0; level < 256; ++level)
    {
        const double away = level / 127.5 - 1.0;
        const cv::Vec3d colour = middle + std::abs(away) * ((away < 0.0 ? low : high) - middle);
        colours.at<cv::Vec3b>(level) = cv::Vec3b(colour);
    }
    return colours;
}

} // namespace

HeightRange TypicalRange(const Zvl::Surface& surface, const qPlane3d64f& plane, double percent)
{
    std::vector<double> heights;
    for (std::size_t row = 0; row < Rows(surface); ++row)
    {
        for (std::size_t column = 0; column < Columns(surface); ++column)
        {
            if (!IsMissing(HeightRow(surface, row)[column]))
            {
                heights.push_back(PlaneDistance(plane, WorldPoint(surface, row, column)));
            }
        }
    }
    if (heights.empty())
    {
        return {0.0, 0.0};
    }
    const auto rank = static_cast<std::ptrdiff_t>(percent / 100.0 * static_cast<double>(heights.size() - 1));
    std::nth_element(heights.begin(), heights.begin() + rank, heights.end());
    const double low = heights[static_cast<std::size_t>(rank)];
    std::nth_element(heights.begin(), heights.end() - 1 - rank, heights.end());
    return {low, heights[heights.size() - 1 - static_cast<std::size_t>(rank)]};
}

HeightRange Widened(const HeightRange& range)
{
    return range.high > range.low ? range : HeightRange{range.low - 1.0, range.low + 1.0};
}

cv::Mat Paint(const cv::Mat& levels, Palette palette)
{
    cv::Mat painted;
    switch (palette)
    {
    case Palette::Heights:
        cv::applyColorMap(levels, painted, cv::COLORMAP_VIRIDIS);
        break;
    case Palette::Greys:
        cv::cvtColor(levels, painted, cv::COLOR_GRAY2BGR);
        break;
    case Palette::Deviations:
        cv::applyColorMap(levels, painted, DeviationColours());
        break;
    }
    return painted;
}

cv::Mat ColourBar(Palette palette, const cv::Size& size)
{
    cv::Mat levels(1, 256, CV_8UC1);
    for (int level = 0; level < 256; ++level)
    {
        levels.at<unsigned char>(level) = static_cast<unsigned char>(level);
    }
    cv::Mat bar;
    cv::resize(Paint(levels, palette), bar, size, 0.0, 0.0, cv::INTER_LINEAR);
    return bar;
}

cv::Mat MissingCells(const Zvl::Surface& surface)
{
    cv::Mat missing(static_cast<int>(Rows(surface)), static_cast<int>(Columns(surface)), CV_8UC1);
    for (std::size_t row = 0; row < Rows(surface); ++row)
    {
        const short* heights = HeightRow(surface, row);
        std::transform(heights, heights + Columns(surface), missing.ptr<unsigned char>(static_cast<int>(row)),
                       [](short height) { return static_cast<unsigned char>(IsMissing(height) ? 255 : 0); });
    }
    return missing;
}

cv::Mat FalseColours(const Zvl::Surface& surface, const qPlane3d64f& reference, const HeightRange& range,
                     Palette palette)
{
    cv::Mat cells = Paint(Levels(surface, reference, range), palette);
    cells.setTo(Colours::kMissing, MissingCells(surface));
    return cells;
}

} // namespace Examples
