#include "Fitting/LineSums.h"

#include "support/InstructionSets.h"
#include "support/SameNumber.h"

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace
{

using TestSupport::IsSameNumber;
using Zvl::LineSums;

constexpr double kNull = Zvl::GetNull<double>();

void ExpectPlainSums(const std::vector<qPoint64f>& points, const int* excluded)
{
    LineSums expected;
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        if ((excluded == nullptr || excluded[i] == 0) && points[i].x != kNull && points[i].y != kNull)
        {
            expected.Add(points[i]);
        }
    }
    const LineSums sums = Zvl::SumPoints(points.data(), excluded, points.size());
    EXPECT_EQ(sums.count, expected.count);
    EXPECT_TRUE(IsSameNumber(sums.sx, expected.sx));
    EXPECT_TRUE(IsSameNumber(sums.sy, expected.sy));
    EXPECT_TRUE(IsSameNumber(sums.sxx, expected.sxx));
    EXPECT_TRUE(IsSameNumber(sums.syy, expected.syy));
    EXPECT_TRUE(IsSameNumber(sums.sxy, expected.sxy));
}

std::vector<qPoint64f> Scattered(std::size_t count)
{
    std::mt19937_64 random(count);
    std::uniform_real_distribution<double> coordinate(-3.0, 4.0);
    std::vector<qPoint64f> points(count);
    for (qPoint64f& point : points)
    {
        point = {coordinate(random), coordinate(random)};
    }
    return points;
}

TEST(LineSums, OfThreePoints)
{
    const std::vector<qPoint64f> points{{1.0, 2.0}, {2.0, -1.0}, {-3.0, 0.5}};
    const LineSums sums = Zvl::SumPoints(points.data(), nullptr, points.size());
    EXPECT_EQ(sums.count, 3U);
    EXPECT_EQ(sums.sx, 0.0);
    EXPECT_EQ(sums.sy, 1.5);
    EXPECT_EQ(sums.sxx, 14.0);
    EXPECT_EQ(sums.syy, 5.25);
    EXPECT_EQ(sums.sxy, -1.5);
}

TEST(LineSums, AddPointsOneAfterTheOther)
{
    TestSupport::InEachInstructionSet(
        []
        {
            for (const std::size_t count : {0U, 1U, 2U, 63U, 64U, 65U, 127U, 128U, 129U, 1000U})
            {
                SCOPED_TRACE(count);
                ExpectPlainSums(Scattered(count), nullptr);
                ExpectPlainSums(Scattered(count), std::vector<int>(count).data());
            }
        });
}

TEST(LineSums, LeaveOutMissingAndExcludedPointsWhereverTheyAre)
{
    TestSupport::InEachInstructionSet(
        []
        {
            const std::vector<qPoint64f> whole = Scattered(200);
            for (std::size_t place = 0; place < whole.size(); ++place)
            {
                std::vector<qPoint64f> points = whole;
                points[place].x = kNull;
                ExpectPlainSums(points, nullptr);
                points[whole.size() - 1 - place].y = kNull;
                ExpectPlainSums(points, nullptr);
                std::vector<int> excluded(whole.size());
                excluded[place] = place % 2 == 0 ? 1 : -7;
                ExpectPlainSums(whole, excluded.data());
                ExpectPlainSums(points, excluded.data());
            }
        });
}

TEST(LineSums, TakeWhatIsNotANumberForAValue)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    TestSupport::InEachInstructionSet(
        []
        {
            for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e200, -0.0})
            {
                std::vector<qPoint64f> points = Scattered(100);
                points[30].x = value;
                ExpectPlainSums(points, nullptr);
                points[80].y = value;
                points[90].y = kNull;
                ExpectPlainSums(points, nullptr);
            }
        });
}

} // namespace
