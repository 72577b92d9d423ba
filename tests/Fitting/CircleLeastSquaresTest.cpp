#include "Fitting/CircleLeastSquares.h"

#include "Fitting/Rejection.h"
#include "FittingSupport.h"
#include "support/FailingAllocator.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

using namespace FittingSupport;

constexpr double kNull = Zvl::GetNull<double>();
constexpr double kPi = 3.141592653589793;
constexpr const char* kFunction = "Zvl::FitCircle_LSC";

struct Fit
{
    qPoint64f center{7.0, 7.0};
    double radius = 7.0;
    std::vector<qPoint64f> kept;
    std::vector<qPoint64f> outliers;
};

Fit FitPoints(const std::vector<qPoint64f>& points, double outlierPercent)
{
    Fit fit;
    Zvl::FitCircle_LSC(points.data(), points.size(), outlierPercent, &fit.center, &fit.radius, &fit.kept,
                       &fit.outliers);
    return fit;
}

/** The definition: a system of its own for each pass, on the coordinates as given. */
Fit Textbook(const std::vector<qPoint64f>& points, double outlierPercent)
{
    Fit fit;
    fit.kept = points;
    const std::size_t toReject = Zvl::CountToReject(points.size(), outlierPercent, 3);
    for (;;)
    {
        std::vector<double> rows;
        std::vector<double> rightSides;
        for (const qPoint64f& point : fit.kept)
        {
            rows.insert(rows.end(), {2.0 * point.x, 2.0 * point.y, 1.0});
            rightSides.push_back(point.x * point.x + point.y * point.y);
        }
        const auto matrix = TestSupport::MakeArray(fit.kept.size(), 3, rows);
        const auto rightSide = TestSupport::MakeArray(fit.kept.size(), 1, rightSides);
        const auto solution = TestSupport::MakeArray(3, 1, std::vector<double>(3));
        Zo::Test(qMatrix_SolveSystem(matrix, solution, rightSide));
        const auto* values = static_cast<const double*>(qArray2_At(solution, 0, 0));
        fit.center = {values[0], values[1]};
        fit.radius = std::sqrt(values[2] + values[0] * values[0] + values[1] * values[1]);
        if (fit.outliers.size() >= toReject)
        {
            return fit;
        }
        std::size_t farthest = 0;
        double largest = std::numeric_limits<double>::lowest();
        for (std::size_t i = 0; i < fit.kept.size(); ++i)
        {
            const double x = fit.kept[i].x - fit.center.x;
            const double y = fit.kept[i].y - fit.center.y;
            const double residual = std::fabs(std::sqrt(x * x + y * y) - fit.radius);
            if (residual > largest)
            {
                largest = residual;
                farthest = i;
            }
        }
        fit.outliers.push_back(fit.kept[farthest]);
        fit.kept.erase(fit.kept.begin() + static_cast<std::ptrdiff_t>(farthest));
    }
}

bool Same(const qPoint64f& a, const qPoint64f& b)
{
    return a.x == b.x && a.y == b.y;
}

void ExpectSamePoints(const std::vector<qPoint64f>& points, const std::vector<qPoint64f>& expected)
{
    EXPECT_TRUE(std::equal(points.begin(), points.end(), expected.begin(), expected.end(), Same));
}

void ExpectTextbook(const std::vector<qPoint64f>& points, double outlierPercent)
{
    const Fit fit = FitPoints(points, outlierPercent);
    const Fit expected = Textbook(points, outlierPercent);
    ExpectSamePoints(fit.kept, expected.kept);
    ExpectSamePoints(fit.outliers, expected.outliers);
    const double tolerance = 1e-9 * (expected.radius + std::fabs(expected.center.x) + std::fabs(expected.center.y));
    EXPECT_NEAR(fit.center.x, expected.center.x, tolerance);
    EXPECT_NEAR(fit.center.y, expected.center.y, tolerance);
    EXPECT_NEAR(fit.radius, expected.radius, tolerance);
}

std::vector<qPoint64f> NoisyArc(std::size_t count, qPoint64f center, double radius, double span, double noise,
                                std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> angle(0.0, span);
    std::normal_distribution<double> deviation;
    std::vector<qPoint64f> points(count);
    for (qPoint64f& point : points)
    {
        const double a = angle(random);
        const double r = radius + noise * deviation(random);
        point = {center.x + r * std::cos(a), center.y + r * std::sin(a)};
    }
    return points;
}

TEST(CircleLeastSquares, ThreePointsGiveTheirCircleAtAnyPercentage)
{
    // Centre (1, 2), radius 5.
    const std::vector<qPoint64f> points{{6.0, 2.0}, {1.0, 7.0}, {-2.0, -2.0}};
    for (const double percent : {0.0, 50.0, 100.0, 1e30})
    {
        const Fit fit = FitPoints(points, percent);
        EXPECT_NEAR(fit.center.x, 1.0, 1e-14);
        EXPECT_NEAR(fit.center.y, 2.0, 1e-14);
        EXPECT_NEAR(fit.radius, 5.0, 1e-14);
        ExpectSamePoints(fit.kept, points);
        EXPECT_TRUE(fit.outliers.empty());
    }
}

TEST(CircleLeastSquares, SquaresOfDistancesAreFittedNotDistances)
{
    // By symmetry the centre is the origin, and the squared radius is the mean of the squares 4, 4, 1, 1. A
    // fit of distances would give 1.5.
    const Fit fit = FitPoints({{2.0, 0.0}, {-2.0, 0.0}, {0.0, 1.0}, {0.0, -1.0}}, 0.0);
    EXPECT_NEAR(fit.radius, std::sqrt(2.5), 1e-15);
}

TEST(CircleLeastSquares, OutliersGoFarthestFirst)
{
    std::vector<qPoint64f> points;
    for (int i = 0; i < 18; ++i)
    {
        points.push_back({std::cos(i * kPi / 9.0), std::sin(i * kPi / 9.0)});
    }
    points.insert(points.begin() + 5, {0.0, 1.5});
    points.insert(points.begin() + 11, {-3.0, 0.0});
    const Fit fit = FitPoints(points, 10.0);
    ExpectSamePoints(fit.outliers, {{-3.0, 0.0}, {0.0, 1.5}});
    EXPECT_EQ(fit.kept.size(), 18U);
    EXPECT_NEAR(fit.center.x, 0.0, 1e-14);
    EXPECT_NEAR(fit.center.y, 0.0, 1e-14);
    EXPECT_NEAR(fit.radius, 1.0, 1e-14);
}

TEST(CircleLeastSquares, LowestIndexWinsAmongEqualResiduals)
{
    // The same outlier twice, at positions 2 and 6; the later one must stay.
    std::vector<qPoint64f> points = NoisyArc(30, {0.0, 0.0}, 1.0, 2.0 * kPi, 0.0, 17);
    points[2] = points[6] = {0.3, 1.2};
    const Fit fit = FitPoints(points, 100.0 / 29.0);
    ExpectSamePoints(fit.outliers, {{0.3, 1.2}});
    points.erase(points.begin() + 2);
    ExpectSamePoints(fit.kept, points);
}

TEST(CircleLeastSquares, RandomPointsGiveThePassesOfTheTextbook)
{
    for (std::uint64_t seed = 1; seed <= 12; ++seed)
    {
        const std::size_t count = 5 + 37 * seed;
        ExpectTextbook(NoisyArc(count, {3.0, -8.0}, 20.0, 2.0 * kPi, 0.4, seed), 10.0 * static_cast<double>(seed));
        ExpectTextbook(NoisyArc(count, {30.0, 15.0}, 20.0, 1.0, 0.2, seed), 35.0);
    }
}

TEST(CircleLeastSquares, OutliersThatDominateAllSumsCostNoDigits)
{
    // Rings of outliers, each a hundred times as large as the one before: without it, hardly anything of the
    // sums is left.
    std::vector<qPoint64f> points = NoisyArc(200, {0.3, 0.2}, 1.0, 2.0 * kPi, 0.01, 99);
    for (const double radius : {1e2, 1e4, 1e6})
    {
        const std::vector<qPoint64f> ring = NoisyArc(12, {0.0, 0.0}, radius, 2.0 * kPi, 0.1 * radius, 7);
        points.insert(points.begin() + 50, ring.begin(), ring.end());
    }
    for (const double percent : {5.0, 10.0, 14.0, 30.0, 80.0})
    {
        ExpectTextbook(points, percent);
    }
}

TEST(CircleLeastSquares, SmallCircleFarFromTheOriginIsFound)
{
    const std::vector<qPoint64f> points = NoisyArc(1000, {1e5, -1e5}, 1.0, 2.0 * kPi, 0.0, 4);
    for (const double percent : {0.0, 10.0})
    {
        const Fit fit = FitPoints(points, percent);
        EXPECT_NEAR(fit.center.x, 1e5, 1e-9);
        EXPECT_NEAR(fit.center.y, -1e5, 1e-9);
        EXPECT_NEAR(fit.radius, 1.0, 1e-9);
    }
}

TEST(CircleLeastSquares, TooFewPointsLeaveNullsAndTheOutliersAlone)
{
    Fit fit;
    fit.outliers = {{1.0, 1.0}};
    const qPoint64f points[2] = {{1.0, 2.0}, {3.0, 4.0}};
    Zvl::FitCircle_LSC(points, 2, 10.0, &fit.center, &fit.radius, &fit.kept, &fit.outliers);
    EXPECT_TRUE(Same(fit.center, {kNull, kNull}));
    EXPECT_EQ(fit.radius, kNull);
    ExpectSamePoints(fit.kept, {{1.0, 2.0}, {3.0, 4.0}});
    EXPECT_EQ(fit.outliers.size(), 1U);

    Zvl::FitCircle_LSC(nullptr, 1000, 10.0, &fit.center, &fit.radius, &fit.kept, &fit.outliers);
    EXPECT_TRUE(fit.kept.empty());
    EXPECT_EQ(fit.outliers.size(), 1U);
}

TEST(CircleLeastSquares, EveryOutputMayBeNull)
{
    const std::vector<qPoint64f> points = NoisyArc(20, {0.0, 0.0}, 1.0, 6.0, 0.1, 3);
    EXPECT_NO_THROW(Zvl::FitCircle_LSC(points.data(), points.size(), 20.0, nullptr, nullptr, nullptr, nullptr));
    EXPECT_NO_THROW(Zvl::FitCircle_LSC(nullptr, 0, 20.0, nullptr, nullptr, nullptr, nullptr));
}

TEST(CircleLeastSquares, PointsMayLieInTheKeptVector)
{
    std::vector<qPoint64f> points = NoisyArc(50, {0.0, 0.0}, 1.0, 6.0, 0.1, 3);
    const Fit expected = FitPoints(points, 20.0);
    Zvl::FitCircle_LSC(points.data(), points.size(), 20.0, nullptr, nullptr, &points, nullptr);
    ExpectSamePoints(points, expected.kept);
}

void ExpectFailure(int status, const std::vector<qPoint64f>& points, double outlierPercent)
{
    Fit fit;
    fit.kept = fit.outliers = {{1.0, 1.0}};
    TestSupport::ExpectThrow(status, kFunction,
                             [&]
                             {
                                 Zvl::FitCircle_LSC(points.data(), points.size(), outlierPercent, &fit.center,
                                                    &fit.radius, &fit.kept, &fit.outliers);
                             });
    EXPECT_TRUE(Same(fit.center, {kNull, kNull}));
    EXPECT_EQ(fit.radius, kNull);
    EXPECT_EQ(fit.kept.size(), 1U);
    EXPECT_EQ(fit.outliers.size(), 1U);
}

TEST(CircleLeastSquares, PointsWithoutACircleThrowTheStatusOfTheSolver)
{
    ExpectFailure(STATUS_BAD_DATA, {{0.0, 0.0}, {1.0, 2.0}, {2.0, 4.0}, {3.0, 6.0}}, 0.0);
    ExpectFailure(STATUS_BAD_DATA, std::vector<qPoint64f>(5, {0.1, 0.7}), 40.0);
    ExpectFailure(STATUS_BAD_DATA, {{0.0, 0.0}, {1.0, 0.0}, {kNull, 1.0}, {0.0, 1.0}}, 0.0);
    ExpectFailure(STATUS_BAD_DATA, {{0.0, 0.0}, {1.0, 0.0}, {std::nan(""), 1.0}, {0.0, 1.0}}, 25.0);
    ExpectFailure(STATUS_BAD_DATA, {{0.0, 0.0}, {1.0, 0.0}, {0.0, std::nan("")}, {0.0, 1.0}}, 25.0);
    const double infinity = std::numeric_limits<double>::infinity();
    ExpectFailure(STATUS_BAD_DATA, {{0.0, 0.0}, {1.0, 0.0}, {infinity, -infinity}, {0.0, 1.0}}, 25.0);
}

TEST(CircleLeastSquares, PointsOnAGridEndInACircleOrAStatus)
{
    // Few positions, many points on one: most removals meet equal residuals, and some leave no circle.
    std::mt19937_64 random(11);
    std::size_t failed = 0;
    for (int run = 0; run < 2000; ++run)
    {
        std::vector<qPoint64f> points(3 + random() % 10);
        for (qPoint64f& point : points)
        {
            point = {static_cast<double>(random() % 3), static_cast<double>(random() % 3)};
        }
        try
        {
            const Fit fit = FitPoints(points, 60.0);
            EXPECT_EQ(fit.outliers.size(), Zvl::CountToReject(points.size(), 60.0, 3));
            EXPECT_EQ(fit.kept.size() + fit.outliers.size(), points.size());
            EXPECT_TRUE(std::isfinite(fit.center.x) && std::isfinite(fit.center.y) && fit.radius >= 0.0);
        }
        catch (const Zo::Exception& exception)
        {
            ++failed;
            EXPECT_TRUE(exception.GetStatus() == STATUS_BAD_DATA || exception.GetStatus() == 0);
        }
    }
    EXPECT_GT(failed, 0U);
    EXPECT_LT(failed, 2000U);
}

TEST(CircleLeastSquares, RadiusBeyondFloatThrowsStatusZero)
{
    ExpectFailure(0, {{1e20, 0.0}, {-1e20, 0.0}, {0.0, 1e20}, {0.0, -1e20}}, 0.0);
}

TEST(CircleLeastSquares, RadiusJustInsideFloatIsFound)
{
    EXPECT_NEAR(FitPoints({{1e19, 0.0}, {-1e19, 0.0}, {0.0, 1e19}, {0.0, -1e19}}, 0.0).radius, 1e19, 1e4);
}

TEST(CircleLeastSquares, CoordinatesFarFromAllMeasuresAreSolvedInFull)
{
    const std::vector<qPoint64f> points = NoisyArc(100, {0.3, 0.2}, 1.0, 5.0, 0.01, 41);
    const double tiny = 0x1p-300; // scaling by powers of two changes no digit
    std::vector<qPoint64f> scaled = points;
    for (qPoint64f& point : scaled)
    {
        point = {point.x * tiny, point.y * tiny};
    }
    for (const double percent : {0.0, 20.0})
    {
        const Fit expected = FitPoints(points, percent);
        const Fit fit = FitPoints(scaled, percent);
        EXPECT_NEAR(fit.center.x / tiny, expected.center.x, 1e-12);
        EXPECT_NEAR(fit.center.y / tiny, expected.center.y, 1e-12);
        EXPECT_NEAR(fit.radius / tiny, expected.radius, 1e-12);
        EXPECT_EQ(fit.outliers.size(), expected.outliers.size());
    }
    ExpectFailure(0, {{1e120, 0.0}, {-1e120, 0.0}, {0.0, 1e120}, {0.0, -1e120}}, 0.0);
}

TEST(CircleLeastSquares, ExhaustedMemoryIsThrownAndNothingLeaks)
{
    const std::vector<qPoint64f> points = NoisyArc(30, {0.0, 0.0}, 1.0, 6.0, 0.1, 3);
    const auto run = [&points]
    {
        Fit fit;
        try
        {
            Zvl::FitCircle_LSC(points.data(), points.size(), 20.0, &fit.center, &fit.radius, &fit.kept, &fit.outliers);
        }
        catch (...)
        {
            EXPECT_EQ(fit.radius, kNull);
            EXPECT_TRUE(fit.kept.empty());
            throw;
        }
    };
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run), 6U);
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run, TestSupport::Failing::OnlyNth), 6U);
}

} // namespace
