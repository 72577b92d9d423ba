#include "Utils/MeanOfPoints.h"

#include "support/InstructionSets.h"
#include "support/SameNumber.h"

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace
{

using TestSupport::IsSameNumber;
using Points = std::vector<qPoint64f>;
using Random = std::mt19937_64;

qPoint64f PlainSum(const Points& points)
{
    qPoint64f sum = {0.0, 0.0};
    for (const qPoint64f& point : points)
    {
        sum.x += point.x;
        sum.y += point.y;
    }
    return sum;
}

void ExpectPlainSum(const Points& points)
{
    const qPoint64f expected = PlainSum(points);
    const qPoint64f sum = Zvl::SumOfPoints(points);
    EXPECT_TRUE(IsSameNumber(sum.x, expected.x)) << sum.x << " for " << expected.x;
    EXPECT_TRUE(IsSameNumber(sum.y, expected.y)) << sum.y << " for " << expected.y;
}

/** Points of two kinds of coordinates, in numbers from none to more than a hundred blocks. */
void ExpectPlainSums(const std::function<double(Random&)>& x, const std::function<double(Random&)>& y)
{
    TestSupport::InEachInstructionSet(
        [&]
        {
            Random random(7);
            for (const std::size_t count : {0U, 1U, 31U, 32U, 63U, 64U, 65U, 127U, 128U, 200U, 1000U, 4096U, 10001U})
            {
                SCOPED_TRACE(count);
                Points points(count);
                for (qPoint64f& point : points)
                {
                    point = {x(random), y(random)};
                }
                ExpectPlainSum(points);
            }
        });
}

double Within(Random& random, double least, double most)
{
    return std::uniform_real_distribution<double>(least, most)(random);
}

double Whole(Random& random, int least, int most)
{
    return std::uniform_int_distribution<int>(least, most)(random);
}

TEST(SumOfPoints, AddsPointsFarFromTheOriginOneAfterTheOther)
{
    ExpectPlainSums([](Random& random) { return Within(random, 15.0, 35.0); },
                    [](Random& random) { return Within(random, -50.0, -30.0); });
}

TEST(SumOfPoints, AddsPointsAroundTheOriginOneAfterTheOther)
{
    ExpectPlainSums([](Random& random) { return Within(random, -10.0, 10.0); },
                    [](Random& random) { return Within(random, -9.0, 11.0); });
}

TEST(SumOfPoints, GoesToTheEvenNeighbourFromTheMiddleBetweenTwo)
{
    // Beside 2^53, 1 is half of the last place, beside 2^52 it is the last place and a half lies in the middle.
    ExpectPlainSums([](Random& random) { return random() % 50 == 0 ? 0x1p46 : Whole(random, -4, 5) / 2.0; },
                    [](Random& random) { return random() % 100 == 0 ? -0x1p47 : Whole(random, -9, 3) / 4.0; });
    for (const double start : {0x1p52, 0x1p52 + 1.0, 0x1.8p52 + 1.0, -0x1.4p52, -0x1.4p52 - 1.0})
    {
        TestSupport::InEachInstructionSet(
            [&]
            {
                Random random(3);
                Points points(1000);
                for (qPoint64f& point : points)
                {
                    point = {Whole(random, -3, 3) / 2.0, Whole(random, 0, 1) - 0.5};
                }
                points[0] = {start, -start};
                ExpectPlainSum(points);
            });
    }
}

TEST(SumOfPoints, GoesUpAndDownThroughPowersOfTwo)
{
    for (const double step : {1.0, 0.1, 0.37})
    {
        SCOPED_TRACE(step);
        double height = 0.0;
        const auto wave = [&height, step](Random&) { return std::sin(height += step / 40.0) * 50.0; };
        ExpectPlainSums(wave, [](Random& random) { return random() % 7 == 0 ? -6.0 : 1.0; });
    }
    ExpectPlainSums([](Random&) { return 1.0 / 64.0; }, [](Random&) { return -1.0; });
}

TEST(SumOfPoints, AddsNumbersOfAllSizes)
{
    const auto any = [](Random& random)
    { return std::ldexp(Within(random, -1.0, 1.0), static_cast<int>(Whole(random, -1070, 1000))); };
    ExpectPlainSums(any, [](Random& random)
                    { return std::ldexp(Within(random, 0.5, 1.0), static_cast<int>(Whole(random, 0, 60))); });
    ExpectPlainSums([](Random& random) { return Within(random, 1.0, 2.0) * 1e-310; },
                    [](Random& random) { return Within(random, 1.0, 2.0) * 1e-199; });
    ExpectPlainSums([](Random& random) { return Within(random, 1.0, 2.0) * 1e199; },
                    [](Random& random) { return Within(random, 1.0, 2.0) * 1e305; });
}

TEST(SumOfPoints, IsNotANumberOrInfiniteAsThatOfAPlainLoop)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    TestSupport::InEachInstructionSet(
        [&]
        {
            for (const double value :
                 {std::nan(""), kInfinity, -kInfinity, std::numeric_limits<double>::lowest(), -0.0})
            {
                for (std::size_t place = 0; place < 200; ++place)
                {
                    Points points(300, {3.0, -4.0});
                    points[place].x = value;
                    points[299 - place].y = value;
                    ExpectPlainSum(points);
                    points[place + 100].x = kInfinity;
                    ExpectPlainSum(points);
                }
            }
            ExpectPlainSum(Points(200, {-0.0, 0.0}));
        });
}

TEST(MeanOfPoints, IsTheSumOverTheNumber)
{
    const qPoint64f mean = Zvl::MeanOfPoints(Points{{1.0, -2.0}, {2.0, 4.0}, {6.0, 1.0}});
    EXPECT_EQ(mean.x, 3.0);
    EXPECT_EQ(mean.y, 1.0);
}

TEST(MeanOfPoints, OfNoPointsIsNotANumber)
{
    const qPoint64f mean = Zvl::MeanOfPoints({});
    EXPECT_TRUE(std::isnan(mean.x));
    EXPECT_TRUE(std::isnan(mean.y));
}

} // namespace
