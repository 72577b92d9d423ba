#include "ImageProcessing/InpaintQueue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>
#include <vector>

namespace
{

using Zvl::CvPriorityQueueFloat;

cv::Mat_<std::uint8_t> CellsWith(int count)
{
    cv::Mat_<std::uint8_t> cells(3, 100, std::uint8_t{0});
    for (int k = 0; k < count; ++k)
    {
        cells(k / 100, k % 100) = static_cast<std::uint8_t>(1 + k % 255);
    }
    return cells;
}

TEST(InpaintQueue, CellsLeaveByTimeAndThenByArrival)
{
    std::mt19937 random(3);
    CvPriorityQueueFloat queue;
    ASSERT_TRUE(queue.Init(CellsWith(300)));
    std::vector<std::tuple<float, int>> cells;
    for (int k = 0; k < 300; ++k)
    {
        const float time = static_cast<float>(random() % 20) * 0.25F - 2.0F;
        cells.emplace_back(time, k);
        ASSERT_TRUE(queue.Push(k, -k, time));
    }
    std::stable_sort(cells.begin(), cells.end(),
                     [](const auto& a, const auto& b) { return std::get<0>(a) < std::get<0>(b); });
    for (const auto& [time, k] : cells)
    {
        int i = 0;
        int j = 0;
        ASSERT_TRUE(queue.Pop(&i, &j));
        ASSERT_EQ(i, k);
        ASSERT_EQ(j, -k);
    }
}

TEST(InpaintQueue, HasRoomForAsManyCellsAsItWasMadeFor)
{
    CvPriorityQueueFloat queue;
    int i = -5;
    int j = -6;
    EXPECT_FALSE(queue.Push(1, 1, 0.0F));
    EXPECT_FALSE(queue.Pop(&i, &j));
    ASSERT_TRUE(queue.Init(CellsWith(2)));
    EXPECT_TRUE(queue.Push(1, 2, 5.0F));
    EXPECT_TRUE(queue.Push(3, 4, 4.0F));
    EXPECT_FALSE(queue.Push(5, 6, 1.0F));
    ASSERT_TRUE(queue.Pop(&i, &j));
    EXPECT_EQ(i, 3);
    EXPECT_TRUE(queue.Push(7, 8, 6.0F));
    EXPECT_FALSE(queue.Push(9, 9, 0.0F));
    ASSERT_TRUE(queue.Pop(&i, &j));
    EXPECT_EQ(i, 1);
    ASSERT_TRUE(queue.Pop(&i, &j));
    EXPECT_EQ(i, 7);
    EXPECT_EQ(j, 8);
    EXPECT_FALSE(queue.Pop(&i, &j));
    EXPECT_EQ(i, 7);
    EXPECT_EQ(j, 8);
}

TEST(InpaintQueue, WithoutCellsThereIsNoQueue)
{
    CvPriorityQueueFloat queue;
    EXPECT_FALSE(queue.Init(CellsWith(0)));
    EXPECT_FALSE(queue.Init(cv::Mat_<std::uint8_t>()));
    EXPECT_FALSE(queue.Push(1, 1, 0.0F));
}

TEST(InpaintQueue, IsEmptyWhenItIsMadeAnew)
{
    CvPriorityQueueFloat queue;
    ASSERT_TRUE(queue.Init(CellsWith(102)));
    ASSERT_TRUE(queue.Push(1, 1, 0.0F));
    ASSERT_TRUE(queue.Init(CellsWith(1)));
    int i = 0;
    int j = 0;
    EXPECT_FALSE(queue.Pop(&i, &j));
    EXPECT_TRUE(queue.Push(1, 1, 0.0F));
    EXPECT_FALSE(queue.Push(1, 1, 0.0F));
}

} // namespace
