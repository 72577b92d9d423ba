#include "Fitting/SphereResiduals.h"

#include "support/InstructionSets.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace
{

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(MeasureResiduals, AreDistancesFromTheSurfaceOnBothSides)
{
    const std::vector<qPoint3d64f> points = {{1.0, 2.0, 3.0}, {4.0, 6.0, 3.0}, {1.0, 2.0, 15.0}, {3.0, 3.0, 5.0}};
    std::vector<double> residuals(points.size());
    Zvl::MeasureResiduals(points, {{1.0, 2.0, 3.0}, 5.0}, residuals.data());
    EXPECT_EQ(residuals, (std::vector<double>{5.0, 0.0, 7.0, 2.0}));
}

TEST(MeasureResiduals, AreMinusOneWhereThereIsNoNumber)
{
    const std::vector<qPoint3d64f> points = {{kNaN, 0.0, 0.0}, {0.0, kInfinity, 0.0}, {3.0, 0.0, 4.0}};
    std::vector<double> residuals(points.size());
    Zvl::MeasureResiduals(points, {{0.0, 0.0, 0.0}, 1.0}, residuals.data());
    EXPECT_EQ(residuals, (std::vector<double>{-1.0, kInfinity, 4.0}));
    Zvl::MeasureResiduals(points, {{0.0, 0.0, 0.0}, kInfinity}, residuals.data());
    EXPECT_EQ(residuals, (std::vector<double>{-1.0, -1.0, kInfinity}));
}

TEST(MeasureResiduals, AreThoseOfThePlainFormulaInEachInstructionSet)
{
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> coordinate(-50.0, 50.0);
    for (std::size_t count = 0; count < 40; ++count)
    {
        std::vector<qPoint3d64f> points(count);
        std::vector<double> expected;
        for (qPoint3d64f& point : points)
        {
            point = {coordinate(random), coordinate(random), coordinate(random)};
            const double x = point.x - 3.0;
            const double y = point.y + 7.0;
            const double z = point.z - 0.5;
            expected.push_back(std::fabs(std::sqrt(x * x + y * y + z * z) - 20.0));
        }
        TestSupport::InEachInstructionSet(
            [&]
            {
                std::vector<double> residuals(count);
                Zvl::MeasureResiduals(points, {{3.0, -7.0, 0.5}, 20.0}, residuals.data());
                ASSERT_EQ(residuals, expected);
            });
    }
}

TEST(LargestOf, IsFoundAtEachPlaceOfListsOfEachSize)
{
    TestSupport::InEachInstructionSet(
        []
        {
            for (std::size_t count = 1; count < 70; ++count)
            {
                for (std::size_t place = 0; place < count; ++place)
                {
                    std::vector<double> numbers(count, -2.0);
                    numbers[place] = -1.0;
                    ASSERT_EQ(Zvl::LargestOf(numbers), -1.0) << place << " of " << count;
                }
            }
        });
    EXPECT_EQ(Zvl::LargestOf(std::vector<double>{1.0, kInfinity, 2.0}), kInfinity);
}

} // namespace
