#include "compose_regions/PatchSearch.h"

#include "support/HeightMap.h"
#include "support/PlaneDistance.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace ComposeRegions
{
namespace
{

constexpr double kAlike = 0.6; // the least correlation

/** Where the parabola through three values, the middle one the highest, has its top; seen from the middle. */
double Top(double before, double middle, double after)
{
    const double curvature = before - 2.0 * middle + after;
    return curvature < 0.0 ? 0.5 * (before - after) / curvature : 0.0;
}

cv::Rect Around(const cv::Point& cell, int width, int height)
{
    return {cell.x - width, cell.y - height, 2 * width + 1, 2 * height + 1};
}

} // namespace

cv::Mat Relief(const Zvl::Surface& surface, const qPlane3d64f& plane)
{
    cv::Mat relief = cv::Mat::zeros(static_cast<int>(Examples::Rows(surface)),
                                    static_cast<int>(Examples::Columns(surface)), CV_32FC1);
    double squares = 0.0;
    double count = 0.0;
    for (std::size_t row = 0; row < Examples::Rows(surface); ++row)
    {
        const short* heights = Examples::HeightRow(surface, row);
        auto* values = relief.ptr<float>(static_cast<int>(row));
        for (std::size_t column = 0; column < Examples::Columns(surface); ++column)
        {
            if (!Examples::IsMissing(heights[column]))
            {
                // In counts, which no scale can take out of the range of a float.
                const double height =
                    Examples::PlaneDistance(plane, Examples::WorldPoint(surface, row, column)) / surface.scale.z;
                values[column] = static_cast<float>(height);
                squares += height * height;
                ++count;
            }
        }
    }
    const double deviation = std::sqrt(squares / std::max(count, 1.0));
    if (deviation > 0.0)
    {
        relief /= deviation;
    }
    return cv::min(cv::max(relief, -3.0), 3.0);
}

std::vector<cv::Point> DistinctCells(const cv::Mat& relief, int patch, const cv::Size& margin)
{
    constexpr int kFeatures = 3;
    std::vector<cv::Point2f> corners;
    if (relief.cols > 2 * margin.width && relief.rows > 2 * margin.height)
    {
        cv::Mat inner = cv::Mat::zeros(relief.size(), CV_8UC1);
        inner(cv::Rect(margin.width, margin.height, relief.cols - 2 * margin.width, relief.rows - 2 * margin.height)) =
            255;
        cv::goodFeaturesToTrack(relief, corners, kFeatures, 0.01, 0.3 * std::min(relief.rows, relief.cols), inner,
                                2 * patch + 1);
    }
    if (corners.size() < kFeatures)
    {
        throw std::runtime_error("the map does not show three distinct features");
    }
    return {corners.begin(), corners.end()};
}

cv::Point2d FindPatch(const cv::Mat& relief, const cv::Mat& next, const cv::Point& cell, int patch,
                      const cv::Size& reach)
{
    const cv::Rect window = Around(cell, patch + reach.width, patch + reach.height);
    cv::Mat likeness;
    cv::matchTemplate(next(window), relief(Around(cell, patch, patch)), likeness, cv::TM_CCOEFF_NORMED);
    double best = 0.0;
    cv::Point at;
    cv::minMaxLoc(likeness, nullptr, &best, nullptr, &at);
    const bool isInside = at.x > 0 && at.y > 0 && at.x + 1 < likeness.cols && at.y + 1 < likeness.rows;
    if (!(best >= kAlike) || !isInside)
    {
        throw std::runtime_error("a feature of the reference scan is not found in the next one");
    }
    const auto value = [&](int x, int y) { return static_cast<double>(likeness.at<float>(at.y + y, at.x + x)); };
    return {cell.x + at.x - reach.width + Top(value(-1, 0), best, value(1, 0)),
            cell.y + at.y - reach.height + Top(value(0, -1), best, value(0, 1))};
}

} // namespace ComposeRegions
