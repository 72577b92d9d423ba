#include "ImageProcessing/InpaintQueue.h"

#include <bit>
#include <new>

namespace Zvl
{

/** The bits of a float ascend with its value when the sign is turned, and all others with it where it is negative. */
std::uint64_t CvPriorityQueueFloat::RankOf(float time, std::uint32_t push)
{
    constexpr std::uint32_t kSign = 0x80000000U;
    const auto bits = std::bit_cast<std::uint32_t>(time + 0.0F); // makes an ordinary 0 of -0
    const std::uint32_t ascending = (bits & kSign) != 0 ? ~bits : bits | kSign;
    return std::uint64_t{ascending} << 32U | push;
}

bool CvPriorityQueueFloat::Init(const cv::Mat_<std::uint8_t>& cells)
{
    capacity = 0;
    used = 0;
    pushed = 0;
    for (int i = 0; i < cells.rows; ++i)
    {
        capacity += static_cast<std::size_t>(cv::countNonZero(cells.row(i)));
    }
    if (capacity == 0)
    {
        return false;
    }
    nodes.reset(new (std::nothrow) Node[capacity]);
    return nodes != nullptr;
}

bool CvPriorityQueueFloat::Push(int i, int j, float time)
{
    if (used == capacity)
    {
        return false;
    }
    const Node pushedNode = {RankOf(time, pushed++), i, j};
    std::size_t place = used++;
    while (place != 0 && nodes[(place - 1) / 4].rank > pushedNode.rank)
    {
        nodes[place] = nodes[(place - 1) / 4];
        place = (place - 1) / 4;
    }
    nodes[place] = pushedNode;
    return true;
}

bool CvPriorityQueueFloat::Pop(int* i, int* j)
{
    if (used == 0)
    {
        return false;
    }
    *i = nodes[0].i;
    *j = nodes[0].j;
    // The last node fills the gap, below all children of lower rank.
    const Node last = nodes[--used];
    std::size_t place = 0;
    for (std::size_t child = FirstOfChildren(place); child < used && nodes[child].rank < last.rank;
         child = FirstOfChildren(place))
    {
        nodes[place] = nodes[child];
        place = child;
    }
    nodes[place] = last;
    return true;
}

/** The child of the lowest rank; a place behind the nodes when there is none. */
std::size_t CvPriorityQueueFloat::FirstOfChildren(std::size_t parent) const
{
    const std::size_t first = 4 * parent + 1;
    if (first + 4 <= used)
    {
        const std::size_t left = first + (nodes[first + 1].rank < nodes[first].rank ? 1U : 0U);
        const std::size_t right = first + 2 + (nodes[first + 3].rank < nodes[first + 2].rank ? 1U : 0U);
        return nodes[right].rank < nodes[left].rank ? right : left;
    }
    std::size_t best = first;
    for (std::size_t child = first + 1; child < used; ++child)
    {
        best = nodes[child].rank < nodes[best].rank ? child : best;
    }
    return best;
}

} // namespace Zvl
