#include "ImageProcessing/InpaintIslands.h"

#include <opencv2/imgproc.hpp>

#include <numeric>

namespace Zvl
{

namespace
{

/** Calls `visit(label, cell)` for the cells of @p band, row after row. */
template <typename Visit>
void ForEachLabelled(const cv::Mat_<std::uint8_t>& band, const cv::Mat_<int>& labels, Visit visit)
{
    for (int i = 0; i < band.rows; ++i)
    {
        const std::uint8_t* inBand = band[i];
        const int* label = labels[i];
        for (int j = 0; j < band.cols; ++j)
        {
            if (inBand[j] != 0)
            {
                visit(static_cast<std::size_t>(label[j]), PlaneCell{i, j});
            }
        }
    }
}

} // namespace

InpaintIslands::InpaintIslands(const cv::Mat_<std::uint8_t>& mask, const cv::Mat_<std::uint8_t>& band, int reach)
{
    cv::Mat_<std::uint8_t> grown;
    cv::dilate(mask, grown, cv::getStructuringElement(cv::MORPH_RECT, {2 * reach + 1, 2 * reach + 1}));
    cv::Mat_<int> labels;
    const auto groups = static_cast<std::size_t>(cv::connectedComponents(grown, labels, 8, CV_32S));

    // A counting sort, which keeps the order within a group.
    std::vector<std::size_t> starts(groups + 1, 0);
    ForEachLabelled(band, labels, [&](std::size_t label, const PlaneCell&) { ++starts[label + 1]; });
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    cells.resize(starts.back());
    ForEachLabelled(band, labels, [&](std::size_t label, const PlaneCell& cell) { cells[starts[label]++] = cell; });
    ends.assign(starts.begin(), starts.end() - 1);
}

} // namespace Zvl
