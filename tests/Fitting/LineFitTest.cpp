#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/LineDistance.h"
#include "LineSupport.h"

namespace
{

using namespace LineSupport;
using TestSupport::kNull;

TEST(LineFit, FlatLineIsRegressedOverX)
{
    // Sx = 6, Sy = 2, Sxx = 14, Syy = 2, Sxy = 4: Dxx = 20, Dyy = 4, Nxy = 4.
    ExpectLine(FitLine({{0.0, 0.0}, {1.0, 1.0}, {2.0, 0.0}, {3.0, 1.0}}), 4.0 / 20.0, (28.0 - 24.0) / 20.0);
}

TEST(LineFit, SteepLineIsRegressedOverY)
{
    // The points above with x and y exchanged: x = 0.2 y + 0.2, that is y = 5 x - 1.
    ExpectLine(FitLine({{0.0, 0.0}, {1.0, 1.0}, {0.0, 2.0}, {1.0, 3.0}}), 5.0, -1.0);
}

TEST(LineFit, EqualSpreadIsRegressedOverY)
{
    // Dxx = Dyy = 6, Nxy = 3: over y the slope is 2, over x it would be 1/2.
    ExpectLine(FitLine({{0.0, 0.0}, {1.0, 2.0}, {2.0, 1.0}}), 2.0, -1.0);
    ExpectLine(FitLine({{0.0, 0.0}, {1.0, 1.0}}), 1.0, 0.0);
}

TEST(LineFit, TwoPointsGiveTheirLine)
{
    ExpectLine(FitLine({{1.0, 1.0}, {3.0, 0.0}}), -0.5, 1.5);
    ExpectLine(FitLine({{1.0, 3.0}, {2.0, 5.0}}), 2.0, 1.0);
}

TEST(LineFit, HorizontalLineHasSlopeZero)
{
    ExpectLine(FitLine({{-1.0, 4.0}, {0.0, 4.0}, {5.0, 4.0}}), 0.0, 4.0);
}

TEST(LineFit, VerticalLineIsInfiniteNotNull)
{
    // Dyy = 6, Nxy = 0, Syy Sx - Sy Sxy = 6.
    ExpectLine(FitLine({{1.0, 0.0}, {1.0, 1.0}, {1.0, 2.0}}), kInfinity, -kInfinity);
    // On the y axis the numerator of the intercept is 0, too.
    const LineResult axis = FitLine({{0.0, 0.0}, {0.0, 1.0}, {0.0, 2.0}});
    EXPECT_EQ(axis.slope, kInfinity);
    EXPECT_TRUE(std::isnan(axis.intercept));
}

TEST(LineFit, LessThanTwoPointsGiveNulls)
{
    ExpectNull(FitLine({}));
    ExpectNull(FitLine({{1.0, 2.0}}));
    ExpectNull(FitLine({{1.0, 2.0}, {kNull, 3.0}, {4.0, kNull}}));
    LineResult line;
    Zvl::FitLine(nullptr, nullptr, 1000, &line.slope, &line.intercept);
    ExpectNull(line);
}

TEST(LineFit, CoincidentPointsGiveNullsAtAnyPlace)
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> coordinate(-1e6, 1e6);
    for (std::size_t count = 2; count < 200; ++count)
    {
        ExpectNull(FitLine(Points(count, {coordinate(random), coordinate(random)})));
        ExpectNull(FitLine(Points(count, {coordinate(random), 0.0})));
        ExpectNull(FitLine(Points(count, {0.0, coordinate(random)})));
    }
}

TEST(LineFit, CloseNeighboursAreNoCoincidentPoints)
{
    // The spread drowns in the rounding of the sums, but the points differ: the formula stands.
    const LineResult line = FitLine({{1e8, 1e8}, {1e8, 1e8}, {1e8 + 0.0625, 1e8}});
    EXPECT_FALSE(line.slope == kNull && std::fabs(line.intercept) < 1e300);
    ExpectLine(FitLine({{1024.0, 1024.0}, {1024.125, 1024.0}}), 0.0, 1024.0);
}

TEST(LineFit, PointsWithANullCoordinateAreLeftOut)
{
    ExpectLine(FitLine({{kNull, 1.0}, {1.0, 3.0}, {7.0, kNull}, {2.0, 5.0}, {kNull, kNull}}), 2.0, 1.0);
}

TEST(LineFit, FlaggedPointsAreLeftOut)
{
    const Points points{{0.0, 9.0}, {1.0, 3.0}, {7.0, -2.0}, {2.0, 5.0}};
    ExpectLine(FitLine(points, {1, 0, -5, 0}), 2.0, 1.0);
    ExpectNull(FitLine(points, {1, 1, 1, 0}));
    ExpectLine(FitLine(points, {0, 0, 0, 0}), FitLine(points).slope, FitLine(points).intercept);
}

TEST(LineFit, NotANumberIsAValue)
{
    const LineResult line = FitLine({{0.0, 0.0}, {1.0, kNaN}, {2.0, 2.0}});
    EXPECT_TRUE(std::isnan(line.slope));
    EXPECT_TRUE(std::isnan(line.intercept));
    EXPECT_TRUE(std::isnan(FitLine({{0.0, 0.0}, {kInfinity, 1.0}}).slope));
}

TEST(LineFit, ResultsMustHaveAPlace)
{
    const Points points{{0.0, 0.0}, {1.0, 1.0}};
    double value = 7.0;
    const auto expectThrow = [&](double* slope, double* intercept)
    {
        TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::FitLine",
                                 [&] { Zvl::FitLine(points.data(), nullptr, 2, slope, intercept); });
    };
    expectThrow(nullptr, &value);
    expectThrow(&value, nullptr);
    EXPECT_EQ(value, 7.0);
}

/** Sum of squared deviations along y from the line through the points of @p points, at @p slope and @p intercept. */
double DeviationAlongY(const Points& points, double slope, double intercept)
{
    double sum = 0.0;
    for (const qPoint64f& point : points)
    {
        const double deviation = point.y - slope * point.x - intercept;
        sum += deviation * deviation;
    }
    return sum;
}

TEST(LineFit, NoNeighbouringLineHasLessDeviation)
{
    std::mt19937_64 random(3);
    for (int run = 0; run < 50; ++run)
    {
        const Points points = NoisyLine(40, 0.3, -2.0, 0.5, random);
        const LineResult line = FitLine(points);
        const double least = DeviationAlongY(points, line.slope, line.intercept);
        for (const double step : {-1e-4, 1e-4})
        {
            EXPECT_GT(DeviationAlongY(points, line.slope + step, line.intercept), least);
            EXPECT_GT(DeviationAlongY(points, line.slope, line.intercept + step), least);
        }
        // x = a y + b turned around.
        const LineResult steep = FitLine(Transposed(points));
        ExpectNear(steep, 1.0 / line.slope, -line.intercept / line.slope, 1e-9);
    }
}

TEST(LineDistance, IsThatOfThePerpendicular)
{
    // 3 x - 4 y + 8 = 0 as y = 0.75 x + 2; the point (4, 10) lies 20 / 5 above it, with its foot at (6.4, 6.8).
    const qPoint64f point{4.0, 10.0};
    double x = 0.0;
    double y = 0.0;
    EXPECT_DOUBLE_EQ(Zvl::PointToLineDistance(&point, 0.75, 2.0, &x, &y), 4.0);
    EXPECT_DOUBLE_EQ(x, 6.4);
    EXPECT_DOUBLE_EQ(y, 6.8);
    const qPoint64f below{0.0, -1.0};
    EXPECT_DOUBLE_EQ(Zvl::PointToLineDistance(&below, 0.0, 2.0, nullptr, nullptr), 3.0);
}

TEST(LineDistance, FootIsWrittenOnlyToBothPlaces)
{
    const qPoint64f point{4.0, 10.0};
    double place = 7.0;
    Zvl::PointToLineDistance(&point, 0.75, 2.0, &place, nullptr);
    Zvl::PointToLineDistance(&point, 0.75, 2.0, nullptr, &place);
    EXPECT_EQ(place, 7.0);
}

} // namespace
