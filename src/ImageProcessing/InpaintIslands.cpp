#include "ImageProcessing/InpaintIslands.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cstring>
#include <numeric>

namespace Zvl
{

namespace
{

/** Rows and columns of the blocks of cells that groups are made of: labels for single ones would cost more memory and time
 *  than exact groups save. */
constexpr int kBlock = 4;

/** Whether the eight cells from @p state on are settled, which most stretches of an image are. */
bool AreSettled(const std::uint8_t* state)
{
    std::uint64_t states = 0;
    std::memcpy(&states, state, sizeof(states));
    return states == 0;
}

/** Calls `visit(cell, state)` for the cells of @p f that are not settled, row after row. */
template <typename Visit>
void ForEachUnsettled(const cv::Mat_<std::uint8_t>& f, Visit visit)
{
    for (int i = 0; i < f.rows; ++i)
    {
        const std::uint8_t* state = f[i];
        int j = 0;
        while (j < f.cols)
        {
            if (j + 8 <= f.cols && AreSettled(state + j))
            {
                j += 8;
                continue;
            }
            if (state[j] != CELL_SETTLED)
            {
                visit(PlaneCell{i, j}, state[j]);
            }
            ++j;
        }
    }
}

/** Groups of blocks such that holes at most `2 * reach + 1` rows and columns apart are of one group. */
struct Groups
{
    cv::Mat_<int> labels;
    std::size_t count;

    /** @param holes not 0 for blocks with holes */
    Groups(const cv::Mat_<std::uint8_t>& holes, int reach)
    {
        // Such holes are at most this many blocks apart, and grown by half of it they touch.
        const int apart = (2 * reach + 1 + kBlock - 1) / kBlock;
        const int growth = std::max(apart / 2, 1); // at least by the cells at their edges
        cv::Mat_<std::uint8_t> grown;
        cv::dilate(holes, grown, cv::getStructuringElement(cv::MORPH_RECT, {2 * growth + 1, 2 * growth + 1}));
        count = static_cast<std::size_t>(cv::connectedComponents(grown, labels, 8, CV_32S));
    }

    std::size_t Of(const PlaneCell& cell) const
    {
        return static_cast<std::size_t>(labels(cell.i / kBlock, cell.j / kBlock));
    }
};

} // namespace

InpaintIslands::InpaintIslands(const cv::Mat_<std::uint8_t>& f, int reach)
{
    cv::Mat_<std::uint8_t> holes((f.rows - 1) / kBlock + 1, (f.cols - 1) / kBlock + 1, std::uint8_t{0});
    std::vector<PlaneCell> edges;
    ForEachUnsettled(f,
                     [&](const PlaneCell& cell, std::uint8_t state)
                     {
                         if (state == CELL_HOLE)
                         {
                             holes(cell.i / kBlock, cell.j / kBlock) = 1;
                         }
                         else
                         {
                             edges.push_back(cell);
                         }
                     });
    const Groups groups(holes, reach);

    // A counting sort, which keeps the order within a group.
    std::vector<std::size_t> starts(groups.count + 1, 0);
    for (const PlaneCell& cell : edges)
    {
        ++starts[groups.Of(cell) + 1];
    }
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    cells.resize(starts.back());
    for (const PlaneCell& cell : edges)
    {
        cells[starts[groups.Of(cell)]++] = cell;
    }
    ends.assign(starts.begin(), starts.end() - 1);
}

} // namespace Zvl
