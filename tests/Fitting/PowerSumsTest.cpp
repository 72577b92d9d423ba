#include "Fitting/PowerSums.h"

#include "support/InstructionSets.h"
#include "support/SameNumber.h"

#include <cmath>
#include <limits>
#include <new>
#include <random>
#include <vector>

namespace
{

using TestSupport::IsSameNumber;
using Zvl::PowerSums;

template <typename Point>
void ExpectPlainSums(const std::vector<Point>& points, std::size_t degree)
{
    std::vector<double> ofPowers(2 * degree + 1);
    std::vector<double> ofProducts(degree + 1);
    for (const Point& point : points)
    {
        double power = 1.0;
        for (std::size_t j = 0; j < ofPowers.size(); ++j)
        {
            ofPowers[j] += power;
            if (j < ofProducts.size())
            {
                ofProducts[j] += static_cast<double>(point.y) * power;
            }
            power *= static_cast<double>(point.x);
        }
    }
    PowerSums sums(degree);
    sums.Add(std::span<const Point>(points));
    ASSERT_EQ(sums.OfPowers().size(), ofPowers.size());
    ASSERT_EQ(sums.OfProducts().size(), ofProducts.size());
    for (std::size_t j = 0; j < ofPowers.size(); ++j)
    {
        EXPECT_TRUE(IsSameNumber(sums.OfPowers()[j], ofPowers[j])) << "power " << j;
    }
    for (std::size_t j = 0; j < ofProducts.size(); ++j)
    {
        EXPECT_TRUE(IsSameNumber(sums.OfProducts()[j], ofProducts[j])) << "product " << j;
    }
}

template <typename Point>
std::vector<Point> Scattered(std::size_t count)
{
    std::mt19937_64 random(count);
    std::uniform_real_distribution<double> coordinate(-3.0, 4.0);
    std::vector<Point> points(count);
    for (Point& point : points)
    {
        point.x = static_cast<decltype(point.x)>(coordinate(random));
        point.y = static_cast<decltype(point.y)>(coordinate(random));
    }
    return points;
}

TEST(PowerSums, OfThreePoints)
{
    PowerSums sums(1);
    const std::vector<qPoint64f> points{{1.0, 2.0}, {2.0, -1.0}, {-3.0, 0.5}};
    sums.Add(std::span<const qPoint64f>(points));
    const std::vector<double> powers{3.0, 0.0, 14.0};
    const std::vector<double> products{1.5, -1.5};
    EXPECT_EQ(std::vector<double>(sums.OfPowers().begin(), sums.OfPowers().end()), powers);
    EXPECT_EQ(std::vector<double>(sums.OfProducts().begin(), sums.OfProducts().end()), products);
}

TEST(PowerSums, AddPointsOneAfterTheOther)
{
    TestSupport::InEachInstructionSet(
        []
        {
            for (std::size_t degree = 0; degree <= 14; ++degree)
            {
                SCOPED_TRACE(degree);
                for (const std::size_t count : {0U, 1U, 15U, 16U, 17U, 33U, 255U, 256U, 257U, 272U, 600U})
                {
                    SCOPED_TRACE(count);
                    ExpectPlainSums(Scattered<qPoint64f>(count), degree);
                    ExpectPlainSums(Scattered<qPoint32f>(count), degree);
                }
            }
        });
}

TEST(PowerSums, OfWhatIsNotANumberAreThoseOfAPlainLoop)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    TestSupport::InEachInstructionSet(
        []
        {
            for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e200, -0.0})
            {
                std::vector<qPoint64f> points = Scattered<qPoint64f>(40);
                points[21].x = value;
                ExpectPlainSums(points, 3);
                points[5].y = value;
                ExpectPlainSums(points, 3);
            }
        });
}

TEST(PowerSums, OfTooManyPowersFailForLackOfMemory)
{
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    for (const std::size_t degree : {kMost, kMost / 2, kMost / 3, kMost / 64 + 1})
    {
        EXPECT_THROW(PowerSums{degree}, std::bad_alloc);
    }
}

} // namespace
