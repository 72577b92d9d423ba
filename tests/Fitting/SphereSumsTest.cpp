#include "Fitting/SphereSums.h"

#include "support/InstructionSets.h"
#include "support/SameNumber.h"

#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <vector>

namespace
{

using TestSupport::IsSameNumber;
using Zvl::SphereContribution;

void ExpectPlainSums(const std::vector<qPoint3d64f>& points, const SphereContribution& start)
{
    SphereContribution expected = start;
    for (const qPoint3d64f& point : points)
    {
        expected.Combine(SphereContribution(point), std::plus<>());
    }
    SphereContribution sums = start;
    Zvl::AddContributions(points.data(), points.size(), sums);
    for (std::size_t row = 0; row < Zvl::kSphereUnknowns; ++row)
    {
        for (std::size_t column = 0; column < Zvl::kSphereUnknowns; ++column)
        {
            EXPECT_TRUE(IsSameNumber(sums.matrix[row][column], expected.matrix[row][column])) << row << ", " << column;
        }
        EXPECT_TRUE(IsSameNumber(sums.vector[row], expected.vector[row])) << row;
    }
}

std::vector<qPoint3d64f> Scattered(std::size_t count)
{
    std::mt19937_64 random(count);
    std::uniform_real_distribution<double> coordinate(-3.0, 4.0);
    std::vector<qPoint3d64f> points(count);
    for (qPoint3d64f& point : points)
    {
        point = {coordinate(random), coordinate(random), coordinate(random)};
    }
    points.shrink_to_fit(); // so that the tools see what is read beyond
    return points;
}

TEST(SphereSums, AddPointsOneAfterTheOther)
{
    TestSupport::InEachInstructionSet(
        []
        {
            for (const std::size_t count : {0U, 1U, 2U, 3U, 4U, 5U, 100U, 1001U})
            {
                SCOPED_TRACE(count);
                ExpectPlainSums(Scattered(count), SphereContribution());
                ExpectPlainSums(Scattered(count), SphereContribution({0.3, -5.0, 7.1}));
            }
        });
}

TEST(SphereSums, OfWhatIsNotANumberAreThoseOfAPlainLoop)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    TestSupport::InEachInstructionSet(
        []
        {
            for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e160, -0.0})
            {
                std::vector<qPoint3d64f> points = Scattered(10);
                points[3].z = value;
                ExpectPlainSums(points, SphereContribution());
                points[9].x = value;
                ExpectPlainSums(points, SphereContribution());
            }
        });
}

} // namespace
