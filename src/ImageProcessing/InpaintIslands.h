#pragma once

/** @file
 *  Groups of holes that are too far apart to matter to each other. */

#include "ImageProcessing/InpaintFront.h"

#include <vector>

namespace Zvl
{

/** The known cells at the edges of holes, group by group. A front that starts from one group after the other passes the
 *  cells of each in the same order as one that starts from all of them, since no time or value of a group depends on
 *  another; but it stays within the reach of the cache, and its queue is short. */
class InpaintIslands
{
public:
    /** @param mask the holes; @param band the cells at their edges
     *  @param reach holes whose cells are at most `2 * reach + 1` rows and columns apart are of one group */
    InpaintIslands(const cv::Mat_<std::uint8_t>& mask, const cv::Mat_<std::uint8_t>& band, int reach);

    /** Fills @p queue, which has room for all cells, with those of each group at a time 0, row after row, and calls
     *  `march()`, which is to empty it. */
    template <typename March>
    void ForEach(CvPriorityQueueFloat& queue, March march) const
    {
        std::size_t next = 0;
        for (const std::size_t end : ends)
        {
            for (; next < end; ++next)
            {
                queue.Push(cells[next].i, cells[next].j, 0.0F);
            }
            march();
        }
    }

private:
    std::vector<PlaneCell> cells;
    std::vector<std::size_t> ends; ///< of each group
};

} // namespace Zvl
