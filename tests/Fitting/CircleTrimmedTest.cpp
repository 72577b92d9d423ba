#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/CircleAlgebraic.h"
#include "Fitting/CircleLeastSquares.h"
#include "Fitting/CircleThroughPoints.h"
#include "Fitting/RandomPoints.h"
#include "support/ExpectThrow.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <set>
#include <utility>

namespace
{

using Points = std::vector<qPoint64f>;

constexpr double kNull = Zvl::GetNull<double>();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr const char* kFunction = "Zvl::FitCircleByRLTS";

struct Fit
{
    qPoint64f center{7.0, 7.0};
    double radius = 7.0;
    std::vector<int> outliers;
};

/** @p fit is filled as far as the call gets. */
void FitInto(Fit& fit, const Points& points, double percent, unsigned seed = 1, int useWeights = 0)
{
    fit.outliers.assign(points.size(), 7);
    Zvl::FitCircleByRLTS(points.data(), points.size(), percent, fit.center, fit.radius, fit.outliers.data(), &seed,
                         useWeights);
}

Fit FitPoints(const Points& points, double percent, unsigned seed = 1, int useWeights = 0)
{
    Fit fit;
    FitInto(fit, points, percent, seed, useWeights);
    return fit;
}

void ExpectNull(const Fit& fit)
{
    EXPECT_EQ(fit.center.x, kNull);
    EXPECT_EQ(fit.center.y, kNull);
    EXPECT_EQ(fit.radius, kNull);
}

void ExpectSame(const Fit& fit, const Fit& expected)
{
    EXPECT_EQ(fit.center.x, expected.center.x);
    EXPECT_EQ(fit.center.y, expected.center.y);
    EXPECT_EQ(fit.radius, expected.radius);
    EXPECT_EQ(fit.outliers, expected.outliers);
}

void ExpectCircle(const Fit& fit, double x, double y, double radius, double tolerance)
{
    EXPECT_NEAR(fit.center.x, x, tolerance);
    EXPECT_NEAR(fit.center.y, y, tolerance);
    EXPECT_NEAR(fit.radius, radius, tolerance);
}

/** A noisy circle about (3, -8) with radius 20; the first @p outliers points lie in a box about (20, 0) instead. */
Points NoisyCircle(std::size_t count, std::size_t outliers, double noise, unsigned seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
    std::uniform_real_distribution<double> box(-12.0, 12.0);
    std::normal_distribution<double> deviation;
    Points points(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const double a = angle(random);
        const double r = 20.0 + noise * deviation(random);
        points[i] = {3.0 + r * std::cos(a), -8.0 + r * std::sin(a)};
        if (i < outliers)
        {
            points[i] = {20.0 + box(random), 50.0 + box(random)};
        }
    }
    return points;
}

TEST(CircleTrimmed, CircleIsFoundAmongOutliers)
{
    for (const std::size_t outliers : {std::size_t{20}, std::size_t{100}, std::size_t{156}})
    {
        const Points points = NoisyCircle(200, outliers, 0.001, 5);
        for (const int useWeights : {0, 1, -1})
        {
            const Fit fit = FitPoints(points, 0.5 * static_cast<double>(outliers) + 1.0, 3, useWeights);
            ExpectCircle(fit, 3.0, -8.0, 20.0, 0.002);
            EXPECT_TRUE(std::all_of(fit.outliers.begin(), fit.outliers.begin() + static_cast<long>(outliers),
                                    [](int flag) { return flag == 1; }));
            EXPECT_LE(std::count(fit.outliers.begin() + static_cast<long>(outliers), fit.outliers.end(), 1),
                      static_cast<long>(200 - outliers) / 10);
        }
    }
}

TEST(CircleTrimmed, TimeSeedsWhereNoneIsGiven)
{
    const Points points = NoisyCircle(200, 80, 0.001, 6);
    Fit fit;
    Zvl::FitCircleByRLTS(points.data(), points.size(), 50.0, fit.center, fit.radius, nullptr, nullptr, 0);
    ExpectCircle(fit, 3.0, -8.0, 20.0, 0.002);
}

TEST(CircleTrimmed, SameSeedGivesTheSameResult)
{
    const Points points = NoisyCircle(100, 20, 3.0, 7);
    std::set<double> radii;
    for (unsigned seed = 0; seed < 20; ++seed)
    {
        const Fit fit = FitPoints(points, 40.0, seed);
        ExpectSame(FitPoints(points, 40.0, seed), fit);
        radii.insert(fit.radius);
    }
    EXPECT_GT(radii.size(), 1U);
}

TEST(CircleTrimmed, GeneratorOfTheProcessIsSeededAnew)
{
    const Points points = NoisyCircle(100, 40, 0.5, 7);
    srand(1000);
    FitPoints(points, 50.0, 42);
    const int next = rand();
    srand(2000);
    FitPoints(points, 50.0, 42);
    EXPECT_EQ(rand(), next);
}

TEST(CircleTrimmed, MoreThan80PercentCountAs80)
{
    const Points points = NoisyCircle(60, 30, 0.1, 8);
    const Fit expected = FitPoints(points, 80.0);
    ExpectSame(FitPoints(points, 90.0), expected);
    ExpectSame(FitPoints(points, 1e300), expected);
    ExpectSame(FitPoints(points, kInfinity), expected);
}

/** The definition: the order of the standard library's selection, sums in that order. Circles differ by rounding. */
struct Definition
{
    using ErrorAndIndex = std::pair<double, std::size_t>;

    explicit Definition(const Points& input) : points(input), residualAndIndex(input.size())
    {
        fit.outliers.assign(input.size(), 0);
    }

    void Measure(const qPoint64f& center, double radius)
    {
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            const double e = std::hypot(points[i].x - center.x, points[i].y - center.y) - radius;
            residualAndIndex[i] = {e * e, i};
        }
    }

    void Select(std::size_t position)
    {
        const auto nth = residualAndIndex.begin() + static_cast<std::ptrdiff_t>(position);
        std::nth_element(residualAndIndex.begin(), nth, residualAndIndex.end());
    }

    double Score(std::size_t h, bool useWeights)
    {
        double scale = 1.0;
        if (useWeights)
        {
            Select(points.size() / 2);
            scale = residualAndIndex[points.size() / 2].first;
        }
        Select(h);
        double score = 0.0;
        for (std::size_t m = 0; m < h; ++m)
        {
            const double e = residualAndIndex[m].first;
            const double u = e / (scale * 36.0);
            score += !useWeights ? e : u <= 1.0 ? (1.0 - u) * (1.0 - u) * e : 0.0;
        }
        return score;
    }

    void Try(std::size_t h, bool useWeights)
    {
        qPoint64f sample[3];
        Zvl::GetNRandomPoints(points.data(), points.size(), sample, 3);
        qPoint64f center;
        double radius = 0.0;
        Zvl::CircleThroughPoints(sample, &center, &radius);
        if (radius == kNull)
        {
            return;
        }
        Measure(center, radius);
        Select(h);
        Points nearest;
        for (std::size_t m = 0; m < h; ++m)
        {
            nearest.push_back(points[residualAndIndex[m].second]);
        }
        Zvl::FitCircleAlgebraic(nearest.data(), h, &center, &radius);
        Measure(center, radius);
        const double score = Score(h, useWeights);
        if (score < best)
        {
            best = score;
            fit.center = center;
            fit.radius = radius;
            for (std::size_t m = 0; m < points.size(); ++m)
            {
                fit.outliers[residualAndIndex[m].second] = h < m ? 1 : 0;
            }
        }
    }

    void Refine()
    {
        double c = 0.0;
        double sum = 0.0;
        double squares = 0.0;
        std::vector<double> errors;
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            errors.push_back(std::hypot(points[i].x - fit.center.x, points[i].y - fit.center.y) - fit.radius);
            if (fit.outliers[i] == 0)
            {
                c += 1.0;
                sum += errors[i];
                squares += errors[i] * errors[i];
            }
        }
        const double limit = 3.0 * std::sqrt(squares / c - (sum / c) * (sum / c));
        Points nearest;
        bool changed = false;
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            const int flag = std::fabs(errors[i]) < limit ? 0 : std::fabs(errors[i]) > limit ? 1 : fit.outliers[i];
            changed = changed || flag != fit.outliers[i];
            fit.outliers[i] = flag;
            if (flag == 0)
            {
                nearest.push_back(points[i]);
            }
        }
        if (changed)
        {
            Zvl::FitCircleAlgebraic(nearest.data(), nearest.size(), &fit.center, &fit.radius);
        }
    }

    const Points& points;
    std::vector<ErrorAndIndex> residualAndIndex;
    double best = std::numeric_limits<double>::max();
    Fit fit;
};

TEST(CircleTrimmed, ResultIsThatOfTheDefinition)
{
    for (unsigned seed = 1; seed <= 60; ++seed)
    {
        const std::size_t count = 20 + 5 * seed;
        const double share = 0.1 * static_cast<double>(1 + seed % 7);
        const bool useWeights = seed % 2 == 0;
        const Points points =
            NoisyCircle(count, static_cast<std::size_t>(share * static_cast<double>(count)), 0.3, seed);
        Definition definition(points);
        srand(seed);
        const double good = 1.0 - share * 100.0 / 100.0;
        const auto h = static_cast<std::size_t>(std::ceil(static_cast<double>(count) * good));
        const double trials = std::trunc(std::log(1e-4) / std::log(1.0 - good * good * good) + 0.5);
        for (double trial = 0.0; trial < trials; trial += 1.0)
        {
            definition.Try(h, useWeights);
        }
        definition.Refine();

        const Fit fit = FitPoints(points, share * 100.0, seed, useWeights ? 1 : 0);
        EXPECT_EQ(fit.outliers, definition.fit.outliers) << seed;
        ExpectCircle(fit, definition.fit.center.x, definition.fit.center.y, definition.fit.radius, 1e-9);
    }
}

TEST(CircleTrimmed, NoPercentageFitsAllPointsByLeastSquares)
{
    const Points points = NoisyCircle(50, 10, 0.1, 9);
    Fit expected;
    Zvl::FitCircle_LSC(points.data(), points.size(), 0.0, &expected.center, &expected.radius, nullptr, nullptr);
    expected.outliers.assign(50, 0);
    for (const double percent : {0.0, -0.0, -50.0, -kInfinity, kNaN})
    {
        ExpectSame(FitPoints(points, percent), expected);
    }
}

TEST(CircleTrimmed, NoPercentageThrowsAsTheLeastSquaresCircleDoes)
{
    const Points points{{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}, {3.0, 3.0}};
    Fit fit;
    TestSupport::ExpectThrow(STATUS_BAD_DATA, "Zvl::FitCircle_LSC", [&] { FitInto(fit, points, 0.0); });
    ExpectNull(fit);
    EXPECT_EQ(fit.outliers, std::vector<int>(4, 0));
}

TEST(CircleTrimmed, ThreePointsGiveTheirCircleAndLeaveTheFlagsAlone)
{
    const Fit fit = FitPoints({{6.0, 2.0}, {1.0, 7.0}, {-2.0, -2.0}}, 50.0);
    ExpectCircle(fit, 1.0, 2.0, 5.0, 1e-15);
    EXPECT_EQ(fit.outliers, std::vector<int>(3, 7));
    const Fit collinear = FitPoints({{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}}, 0.0);
    ExpectNull(collinear);
    EXPECT_EQ(collinear.outliers, std::vector<int>(3, 7));
}

TEST(CircleTrimmed, TooFewPointsGiveNullsAndLeaveTheFlagsAlone)
{
    for (std::size_t count = 0; count < 3; ++count)
    {
        const Fit fit = FitPoints(Points(count, {1.0, 2.0}), 50.0);
        ExpectNull(fit);
        EXPECT_EQ(fit.outliers, std::vector<int>(count, 7));
    }
    Fit fit;
    Zvl::FitCircleByRLTS(nullptr, 1000, 50.0, fit.center, fit.radius, nullptr, nullptr, 0);
    ExpectNull(fit);
}

TEST(CircleTrimmed, PointsWithoutACircleGiveNullsAndNoOutliers)
{
    Points line;
    for (int i = 0; i < 20; ++i)
    {
        line.push_back({static_cast<double>(i), 2.0 * i});
    }
    for (const Points& points : {line, Points(10, {0.1, 0.7}), Points(10, {kNaN, 1.0}), Points(10, {1.0, kInfinity}),
                                 Points(10, {kNull, kNull})})
    {
        for (const double percent : {1.0, 50.0, 80.0})
        {
            const Fit fit = FitPoints(points, percent, 1, percent > 60.0 ? 1 : 0);
            ExpectNull(fit);
            EXPECT_EQ(fit.outliers, std::vector<int>(points.size(), 0));
        }
    }
}

TEST(CircleTrimmed, PercentageTooSmallForATrialGivesNulls)
{
    const Points points = NoisyCircle(50, 0, 0.1, 9);
    for (const double percent : {3e-7, 1e-12, 5e-324})
    {
        const Fit fit = FitPoints(points, percent);
        ExpectNull(fit);
        EXPECT_EQ(fit.outliers, std::vector<int>(50, 0));
    }
    EXPECT_NE(FitPoints(points, 4e-7).radius, kNull);
}

TEST(CircleTrimmed, CoordinatesThatAreNoNumbersAreOutliers)
{
    Points points = NoisyCircle(60, 0, 0.001, 10);
    const double bad[] = {kNaN, kInfinity, -kInfinity, kNull, 1e200};
    for (std::size_t i = 0; i < 10; ++i)
    {
        (i % 2 == 0 ? points[5 * i].x : points[5 * i].y) = bad[i / 2];
    }
    for (const int useWeights : {0, 1})
    {
        const Fit fit = FitPoints(points, 40.0, 11, useWeights);
        ExpectCircle(fit, 3.0, -8.0, 20.0, 0.002);
        for (std::size_t i = 0; i < 10; ++i)
        {
            EXPECT_EQ(fit.outliers[5 * i], 1);
        }
    }
}

TEST(CircleTrimmed, PointsOnACircleUpToRoundingAreFitted)
{
    const Fit fit = FitPoints(NoisyCircle(40, 10, 0.0, 12), 30.0);
    ExpectCircle(fit, 3.0, -8.0, 20.0, 1e-9);
    EXPECT_TRUE(std::all_of(fit.outliers.begin(), fit.outliers.begin() + 10, [](int flag) { return flag == 1; }));
}

TEST(CircleTrimmed, LessThanFourKeptPointsThrowStatusZero)
{
    // Two of ten points are nearest, and three count as kept. The circle of two points has them as a diameter.
    const Points points = NoisyCircle(10, 0, 0.3, 13);
    Fit fit;
    TestSupport::ExpectThrow(0, kFunction, [&] { FitInto(fit, points, 80.0); });
    EXPECT_TRUE(std::isfinite(fit.radius));
    EXPECT_EQ(std::count(fit.outliers.begin(), fit.outliers.end(), 0), 3);
    EXPECT_EQ(std::count(fit.outliers.begin(), fit.outliers.end(), 1), 7);
}

TEST(CircleTrimmed, FewPointsEndInACircleOrNullsOrAStatus)
{
    std::mt19937_64 random(14);
    const double values[] = {0.0, 1.0, 2.0, 0.1, 0.7, kNaN, kInfinity, -kInfinity, kNull, 1e300, 5e-324};
    std::size_t circles = 0;
    std::size_t nulls = 0;
    std::size_t failed = 0;
    for (int run = 0; run < 3000; ++run)
    {
        Points points(random() % 8);
        const std::size_t range = random() % 4 == 0 ? std::size(values) : 5;
        for (qPoint64f& point : points)
        {
            point = {values[random() % range], values[random() % range]};
        }
        Fit fit;
        try
        {
            FitInto(fit, points, static_cast<double>(1 + random() % 80), static_cast<unsigned>(run), run % 2);
            ++(fit.radius == kNull ? nulls : circles);
        }
        catch (const Zo::Exception& exception)
        {
            ++failed;
            EXPECT_EQ(exception.GetStatus(), 0);
            EXPECT_STREQ(exception.GetFunction(), kFunction);
        }
    }
    EXPECT_GT(circles, 100U);
    EXPECT_GT(nulls, 100U);
    EXPECT_GT(failed, 100U);
}

} // namespace
