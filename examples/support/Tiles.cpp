#include "support/Tiles.h"

#include "support/Drawing.h"

#include <algorithm>
#include <numeric>

namespace Examples
{
namespace
{

/** Where tiles of these lengths begin, and where the last one ends. */
std::vector<int> Borders(const std::vector<int>& lengths)
{
    std::vector<int> borders{0};
    std::partial_sum(lengths.begin(), lengths.end(), std::back_inserter(borders));
    return borders;
}

} // namespace

cv::Mat Tiles(const std::vector<cv::Mat>& pictures, int columns)
{
    const auto across = static_cast<std::size_t>(columns);
    std::vector<int> widths(across, 0);
    std::vector<int> heights((pictures.size() + across - 1) / across, 0);
    for (std::size_t index = 0; index < pictures.size(); ++index)
    {
        widths[index % across] = std::max(widths[index % across], pictures[index].cols);
        heights[index / across] = std::max(heights[index / across], pictures[index].rows);
    }

    const std::vector<int> lefts = Borders(widths);
    const std::vector<int> tops = Borders(heights);
    cv::Mat canvas(tops.back(), lefts.back(), CV_8UC3, Colours::kBackground);
    for (std::size_t index = 0; index < pictures.size(); ++index)
    {
        const cv::Point corner(lefts[index % across], tops[index / across]);
        pictures[index].copyTo(canvas(cv::Rect(corner, pictures[index].size())));
    }
    return canvas;
}

} // namespace Examples
