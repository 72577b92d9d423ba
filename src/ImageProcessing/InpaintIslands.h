#pragma once

/** @file
 *  Groups of holes that are too far apart to matter to each other. */

#include "ImageProcessing/InpaintFront.h"

#include <span>
#include <vector>

namespace Zvl
{

/** The known cells at the edges of holes, group by group. A front that starts from one group after the other passes the
 *  cells of each in the same order as one that starts from all of them, since no time or value of a group depends on
 *  another; but it stays within the reach of the cache, and its queue is short. */
class InpaintIslands
{
public:
    /** @param f the states before any march: #CELL_HOLE, and #CELL_FRONT at the edges of holes
     *  @param reach holes whose cells are at most `2 * reach + 1` rows and columns apart are of one group; none that are more
     *  than `2 * reach + 13` apart are, unless others lie between them */
    InpaintIslands(const cv::Mat_<std::uint8_t>& f, int reach);

    /** Calls `visit(cells)` with the cells of each group, row after row. */
    template <typename Visit>
    void ForEach(Visit visit) const
    {
        std::size_t begin = 0;
        for (const std::size_t end : ends)
        {
            visit(std::span(cells).subspan(begin, end - begin));
            begin = end;
        }
    }

private:
    std::vector<PlaneCell> cells;
    std::vector<std::size_t> ends; ///< of each group
};

} // namespace Zvl
