#pragma once

/** @file
 *  The cells of a moving front, in the order of its arrival. */

#include <opencv2/core.hpp>

#include <cstdint>
#include <memory>

namespace Zvl
{

/** A queue of cells by ascending time; equal times leave in the order in which they came. It is sized once, and then
 *  takes logarithmic time for each cell and no memory. */
class CvPriorityQueueFloat
{
public:
    /** Empties the queue and makes room for as many cells as @p cells has that are not 0.
     *  @return false when there are none, or memory does not suffice */
    bool Init(const cv::Mat_<std::uint8_t>& cells);

    /** @return false when the queue is full */
    bool Push(int i, int j, float time);

    /** Takes the first cell out.
     *  @return false when the queue is empty */
    bool Pop(int* i, int* j);

private:
    struct Node
    {
        std::uint64_t rank; ///< by time in the upper half, then by the count of pushes
        int i;
        int j;
    };

    static std::uint64_t RankOf(float time, std::uint32_t push);
    std::size_t FirstOfChildren(std::size_t parent) const;

    std::unique_ptr<Node[]> nodes; ///< a heap in which each node has up to four children of higher rank
    std::size_t capacity = 0;
    std::size_t used = 0;
    std::uint32_t pushed = 0;
};

} // namespace Zvl
