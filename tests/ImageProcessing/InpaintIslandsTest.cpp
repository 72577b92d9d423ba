#include "ImageProcessing/InpaintIslands.h"

#include "ImageProcessing/InpaintPlanes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace
{

using namespace Zvl;

using Cells = std::vector<PlaneCell>;

std::vector<Cells> GroupsOf(const cv::Mat& mask, int reach)
{
    std::vector<Cells> groups;
    InpaintIslands(StatesOf(mask), reach)
        .ForEach([&](std::span<const PlaneCell> cells) { groups.emplace_back(cells.begin(), cells.end()); });
    groups.erase(std::remove_if(groups.begin(), groups.end(), [](const Cells& cells) { return cells.empty(); }),
                 groups.end());
    return groups;
}

/** How many groups two holes at a distance have, wherever they lie. */
std::vector<std::size_t> CountsAt(const cv::Point& distance, int reach)
{
    std::vector<std::size_t> counts;
    for (int shift = 0; shift < 16; ++shift)
    {
        const cv::Point first(2 + shift % 4, 2 + shift / 4);
        const cv::Point second = first + distance;
        cv::Mat mask(second.y + 3, second.x + 3, CV_8UC1, cv::Scalar(0));
        mask.at<std::uint8_t>(first) = 1;
        mask.at<std::uint8_t>(second) = 255;
        counts.push_back(GroupsOf(mask, reach).size());
    }
    return counts;
}

TEST(InpaintIslands, HolesThatMatterToEachOtherAreOfOneGroup)
{
    const std::vector<std::size_t> one(16, 1);
    for (const int reach : {1, 2, 3, 4, 5, 6, 7, 8, 20, 100})
    {
        const int apart = 2 * reach + 1;
        for (const cv::Point& distance :
             {cv::Point(apart, 0), cv::Point(0, apart), cv::Point(apart, apart), cv::Point(apart, apart / 2)})
        {
            EXPECT_EQ(CountsAt(distance, reach), one) << "reach " << reach << ", distance " << distance;
        }
    }
}

TEST(InpaintIslands, HolesFarApartAreOfGroupsOfTheirOwn)
{
    const std::vector<std::size_t> two(16, 2);
    for (const int reach : {1, 2, 3, 4, 5, 6, 7, 8, 20, 100})
    {
        const int apart = 2 * reach + 14;
        for (const cv::Point& distance :
             {cv::Point(apart, 0), cv::Point(0, apart), cv::Point(apart, apart), cv::Point(1, apart)})
        {
            EXPECT_EQ(CountsAt(distance, reach), two) << "reach " << reach << ", distance " << distance;
        }
    }
}

TEST(InpaintIslands, HaveAllKnownCellsBesideHolesRowAfterRow)
{
    std::mt19937 random(41);
    const auto upTo = [&](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); };
    for (int round = 0; round < 100; ++round)
    {
        cv::Mat_<std::uint8_t> mask(1 + upTo(60), 1 + upTo(60), std::uint8_t{0});
        for (int hole = upTo(12); hole >= 0; --hole)
        {
            mask(upTo(mask.rows), upTo(mask.cols)) = 1;
        }
        const auto isHole = [&](int i, int j)
        { return i > 0 && j > 0 && i <= mask.rows && j <= mask.cols && mask(i - 1, j - 1) != 0; };
        cv::Mat_<std::uint8_t> missing(mask.rows + 2, mask.cols + 2, std::uint8_t{0});
        for (int i = 1; i <= mask.rows; ++i)
        {
            for (int j = 1; j <= mask.cols; ++j)
            {
                const bool touches = isHole(i - 1, j) || isHole(i + 1, j) || isHole(i, j - 1) || isHole(i, j + 1);
                missing(i, j) = touches && !isHole(i, j) ? 1 : 0;
            }
        }
        for (const Cells& group : GroupsOf(mask, 1 + upTo(8)))
        {
            EXPECT_TRUE(std::is_sorted(group.begin(), group.end(),
                                       [](const PlaneCell& a, const PlaneCell& b)
                                       { return a.i != b.i ? a.i < b.i : a.j < b.j; }));
            for (const PlaneCell& cell : group)
            {
                ASSERT_EQ(missing(cell.i, cell.j), 1);
                missing(cell.i, cell.j) = 0;
            }
        }
        EXPECT_EQ(cv::countNonZero(missing), 0);
    }
}

} // namespace
