#include "Fitting/RandomPoints.h"

#include "support/ExpectThrow.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>
#include <vector>

namespace
{

std::vector<qPoint64f> Numbered(std::size_t count)
{
    std::vector<qPoint64f> points(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        points[i] = {static_cast<double>(i), -static_cast<double>(i)};
    }
    return points;
}

std::vector<double> Draw(const std::vector<qPoint64f>& points, std::size_t n)
{
    std::vector<qPoint64f> selected(n);
    Zvl::GetNRandomPoints(points.data(), points.size(), selected.data(), n);
    std::vector<double> numbers(n);
    for (std::size_t i = 0; i < n; ++i)
    {
        EXPECT_EQ(selected[i].y, -selected[i].x);
        numbers[i] = selected[i].x;
    }
    return numbers;
}

TEST(RandomPoints, SampleHoldsDistinctPoints)
{
    srand(1);
    for (std::size_t count = 2; count < 40; ++count)
    {
        const std::vector<qPoint64f> points = Numbered(count);
        for (std::size_t n = 1; n <= count; ++n)
        {
            const std::vector<double> drawn = Draw(points, n);
            const std::set<double> distinct(drawn.begin(), drawn.end());
            EXPECT_EQ(distinct.size(), n);
            EXPECT_LT(*distinct.rbegin(), static_cast<double>(count));
        }
    }
}

TEST(RandomPoints, SampleIsAFunctionOfTheSeed)
{
    const std::vector<qPoint64f> points = Numbered(1000);
    srand(42);
    const std::vector<double> first = Draw(points, 10);
    const std::vector<double> next = Draw(points, 10);
    srand(42);
    EXPECT_EQ(Draw(points, 10), first);
    EXPECT_NE(next, first);
}

TEST(RandomPoints, IndexIsTheRoundedShareOfTheLargestNumber)
{
    const std::vector<qPoint64f> points = Numbered(101);
    srand(7);
    const double share = static_cast<double>(rand()) / RAND_MAX;
    srand(7);
    EXPECT_EQ(Draw(points, 1)[0], std::trunc(share * 100.0 + 0.5));
}

TEST(RandomPoints, AllPointsComeInTheirOrderAndDrawNothing)
{
    srand(3);
    const int expected = rand();
    srand(3);
    EXPECT_EQ(Draw(Numbered(4), 4), (std::vector<double>{0.0, 1.0, 2.0, 3.0}));
    EXPECT_EQ(rand(), expected);
}

TEST(RandomPoints, NoPointsAreDrawnAtOnce)
{
    EXPECT_TRUE(Draw(Numbered(10), 0).empty());
    EXPECT_TRUE(Draw({}, 0).empty());
}

TEST(RandomPoints, EveryPointIsReached)
{
    // The ends are half as likely as the others: 1 in 18 draws.
    srand(5);
    const std::vector<qPoint64f> points = Numbered(10);
    std::vector<int> hits(10);
    for (int i = 0; i < 18000; ++i)
    {
        ++hits[static_cast<std::size_t>(Draw(points, 1)[0])];
    }
    for (std::size_t i = 0; i < hits.size(); ++i)
    {
        EXPECT_NEAR(hits[i], i == 0 || i == 9 ? 1000 : 2000, 250) << i;
    }
}

TEST(RandomPoints, MorePointsThanThereAreThrow)
{
    const std::vector<qPoint64f> points = Numbered(3);
    qPoint64f selected[4] = {{7.0, 7.0}, {7.0, 7.0}, {7.0, 7.0}, {7.0, 7.0}};
    TestSupport::ExpectThrow(STATUS_BAD_DATA, "Zvl::GetNRandomPoints",
                             [&] { Zvl::GetNRandomPoints(points.data(), 3, selected, 4); });
    EXPECT_EQ(selected[0].x, 7.0);
}

} // namespace
