#include "Fitting/CircleAlgebraic.h"

#include "Fitting/CircleLeastSquares.h"
#include "Fitting/CircleThroughPoints.h"
#include "Fitting/RadialErrors.h"
#include "data/CircleSets.h"

#include <ZdkVisionLib/Common/Common.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

using Points = std::vector<qPoint64f>;

constexpr double kNull = Zvl::GetNull<double>();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Circle
{
    qPoint64f center{7.0, 7.0};
    double radius = 7.0;
};

Circle Algebraic(const Points& points)
{
    Circle circle;
    Zvl::FitCircleAlgebraic(points.data(), points.size(), &circle.center, &circle.radius);
    return circle;
}

Circle Through(const Points& points)
{
    Circle circle;
    Zvl::CircleThroughPoints(points.data(), &circle.center, &circle.radius);
    return circle;
}

void ExpectCircle(const Circle& circle, double x, double y, double radius, double tolerance)
{
    EXPECT_NEAR(circle.center.x, x, tolerance);
    EXPECT_NEAR(circle.center.y, y, tolerance);
    EXPECT_NEAR(circle.radius, radius, tolerance);
}

TEST(CircleThroughPoints, PassesThroughThem)
{
    ExpectCircle(Through({{6.0, 2.0}, {1.0, 7.0}, {-2.0, -2.0}}), 1.0, 2.0, 5.0, 1e-15);
    ExpectCircle(Through({{1.0, 7.0}, {6.0, 2.0}, {-2.0, -2.0}}), 1.0, 2.0, 5.0, 1e-15);
    ExpectCircle(Through({{1e8 + 1.0, 0.0}, {1e8, 1.0}, {1e8 - 1.0, 0.0}}), 1e8, 0.0, 1.0, 1e-15);
}

TEST(CircleThroughPoints, CollinearPointsHaveNone)
{
    for (const Points& points : {Points{{0.0, 0.0}, {1.0, 2.0}, {2.0, 4.0}}, Points(3, {0.1, 0.7}),
                                 Points{{1e9, 0.0}, {1e9 + 1.0, 1.0}, {1e9 + 2.0, 2.0}}})
    {
        const Circle circle = Through(points);
        EXPECT_EQ(circle.center.x, kNull);
        EXPECT_EQ(circle.center.y, kNull);
        EXPECT_EQ(circle.radius, kNull);
    }
}

TEST(CircleThroughPoints, DeterminantDecidesFromTheLimitOn)
{
    const double limit = 1.1920928955078125e-07; // 2^-23
    EXPECT_NE(Through({{0.0, 0.0}, {1.0, 0.0}, {0.0, limit}}).radius, kNull);
    EXPECT_NE(Through({{0.0, 0.0}, {0.0, limit}, {1.0, 0.0}}).radius, kNull);
    EXPECT_EQ(Through({{0.0, 0.0}, {1.0, 0.0}, {0.0, std::nextafter(limit, 0.0)}}).radius, kNull);
}

TEST(CircleAlgebraic, PointsOnACircleGiveThatCircle)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> angle(0.0, 2.0);
    for (int run = 0; run < 100; ++run)
    {
        Points points(5 + random() % 50);
        for (qPoint64f& point : points)
        {
            const double a = angle(random);
            point = {3.0 + 20.0 * std::cos(a), -8.0 + 20.0 * std::sin(a)};
        }
        points[0] = {23.0, -8.0};
        points[1] = {3.0 + 20.0 * std::cos(2.0), -8.0 + 20.0 * std::sin(2.0)};
        ExpectCircle(Algebraic(points), 3.0, -8.0, 20.0, 1e-6);
    }
}

TEST(CircleAlgebraic, RadiusIsThatOfTheLeastRoot)
{
    // Mxx = 2, Myy = 1/2, Mz = 5/2, Mzz = 17/2, Cov = 1, Var = 9/4: the polynomial 4 x^4 - 23.25 x^2 + 15.625 x - 2.25
    // changes its sign once between 0 and 1/4, and the squared radius is 5/2 - 2 x.
    double low = 0.0;
    double high = 0.25;
    for (int step = 0; step < 60; ++step)
    {
        const double x = (low + high) / 2.0;
        (((4.0 * x * x - 23.25) * x + 15.625) * x - 2.25 < 0.0 ? low : high) = x;
    }
    ExpectCircle(Algebraic({{2.0, 0.0}, {-2.0, 0.0}, {0.0, 1.0}, {0.0, -1.0}}), 0.0, 0.0, std::sqrt(2.5 - 2.0 * low),
                 1e-14);
}

TEST(CircleAlgebraic, ShortNoisyArcsAreHardlyShrunk)
{
    // Over an eighth of a circle, noise draws the least-squares circle of squared distances far inwards; the mean of
    // the Hyper fit stays.
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> angle(0.0, 0.785);
    std::normal_distribution<double> noise(0.0, 0.05);
    double hyper = 0.0;
    double squares = 0.0;
    constexpr int kRuns = 400;
    for (int run = 0; run < kRuns; ++run)
    {
        Points points(40);
        for (qPoint64f& point : points)
        {
            const double a = angle(random);
            const double r = 10.0 + noise(random);
            point = {r * std::cos(a), r * std::sin(a)};
        }
        hyper += Algebraic(points).radius / kRuns;
        Circle circle;
        Zvl::FitCircle_LSC(points.data(), points.size(), 0.0, &circle.center, &circle.radius, nullptr, nullptr);
        squares += circle.radius / kRuns;
    }
    EXPECT_NEAR(hyper, 10.0, 0.1);
    EXPECT_LT(squares, 9.7);
}

double SquaredDistances(const Points& points, const qPoint64f& center, double radius)
{
    double sum = 0.0;
    for (const qPoint64f& point : points)
    {
        const double error = std::hypot(point.x - center.x, point.y - center.y) - radius;
        sum += error * error;
    }
    return sum;
}

TEST(CircleAlgebraic, PublishedPointsAreFittedNearlyAsWellAsByDistances)
{
    const CertifiedData::CircleSet set = CertifiedData::Gander();
    const Circle circle = Algebraic(set.points);
    const double least = SquaredDistances(set.points, set.center, set.radius);
    EXPECT_GT(SquaredDistances(set.points, circle.center, circle.radius), least);
    EXPECT_LT(SquaredDistances(set.points, circle.center, circle.radius), 1.03 * least);
    ExpectCircle(circle, set.center.x, set.center.y, set.radius, 0.2);
}

TEST(CircleAlgebraic, PointsWithoutACircleGiveNothingFinite)
{
    EXPECT_FALSE(std::isfinite(Algebraic({}).radius));
    EXPECT_FALSE(std::isfinite(Algebraic({{1.0, 2.0}}).radius));
    EXPECT_FALSE(std::isfinite(Algebraic(Points(4, {0.5, 0.75})).radius));
    EXPECT_FALSE(std::isfinite(Algebraic({{-1.0, -2.0}, {0.0, 0.0}, {1.0, 2.0}}).radius));
    EXPECT_FALSE(std::isfinite(Algebraic({{0.0, 0.0}, {1.0, std::nan("")}, {2.0, 1.0}, {0.0, 1.0}}).radius));
    EXPECT_FALSE(std::isfinite(Algebraic({{0.0, 0.0}, {1.0, kInfinity}, {2.0, 1.0}, {0.0, 1.0}}).radius));
    EXPECT_FALSE(std::isfinite(Algebraic({{0.0, 0.0}, {1.0, kNull}, {2.0, 1.0}, {0.0, 1.0}}).radius));
}

TEST(RadialErrors, AreThoseOfThePlainLoopBitForBit)
{
    std::mt19937_64 random(3);
    std::normal_distribution<double> coordinate(0.0, 10.0);
    for (std::size_t count = 0; count < 40; ++count)
    {
        std::vector<double> x(count);
        std::vector<double> y(count);
        for (std::size_t i = 0; i < count; ++i)
        {
            x[i] = coordinate(random);
            y[i] = coordinate(random);
        }
        std::vector<double> errors(count);
        Zvl::SquaredRadialErrors(x.data(), y.data(), count, {0.5, -0.25}, 3.0, errors.data());
        for (std::size_t i = 0; i < count; ++i)
        {
            const double dx = x[i] - 0.5;
            const double dy = y[i] + 0.25;
            const double error = std::sqrt(dx * dx + dy * dy) - 3.0;
            EXPECT_EQ(errors[i], error * error);
        }
    }
}

TEST(RadialErrors, InfinityStandsForWhatIsNotANumber)
{
    for (std::size_t count = 1; count < 20; ++count)
    {
        std::vector<double> x(count, std::nan(""));
        std::vector<double> y(count, 1.0);
        std::vector<double> errors(count);
        Zvl::SquaredRadialErrors(x.data(), y.data(), count, {0.0, 0.0}, 1.0, errors.data());
        EXPECT_EQ(errors, std::vector<double>(count, kInfinity));
        Zvl::SquaredRadialErrors(y.data(), y.data(), count, {kInfinity, 0.0}, kInfinity, errors.data());
        EXPECT_EQ(errors, std::vector<double>(count, kInfinity));
    }
}

} // namespace
