#include <ZdkVisionLib/Fitting/Fit.h>

#include "LineSupport.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace LineSupport;
using TestSupport::kNull;

constexpr const char* kFunction = "Zvl::FitLineRansac";

LineResult Fit(const Points& points, double sampleRatio, std::size_t iterations, double threshold)
{
    LineResult line;
    Zvl::FitLineRansac(points.data(), points.size(), sampleRatio, iterations, threshold, &line.slope, &line.intercept);
    return line;
}

TEST(LineRansac, LineIsFoundAmongAsManyOutliers)
{
    std::mt19937_64 random(1);
    Points points = NoisyLine(100, 0.75, -2.0, 0.01, random);
    const LineResult expected = FitLine(points);
    std::uniform_real_distribution<double> outlier(60.0, 200.0);
    for (int i = 0; i < 100; ++i)
    {
        points.insert(points.begin() + 2 * i, {outlier(random) - 130.0, outlier(random)});
    }
    // A sample of 3 good points has a probability of about 1/8.
    const LineResult line = Fit(points, 0.0, 2000, 0.1);
    ExpectNear(line, expected.slope, expected.intercept, 1e-12);
}

TEST(LineRansac, ResultIsTheLineOfAllPointsThatAgree)
{
    // All lie within the threshold of whatever line a sample gives.
    std::mt19937_64 random(2);
    const Points points = NoisyLine(50, 0.5, 1.0, 0.1, random);
    const LineResult expected = FitLine(points);
    for (const double ratio : {0.0, 0.5, 1.0, -3.0, 7.0, kNaN, kInfinity})
    {
        ExpectLine(Fit(points, ratio, 20, 1e6), expected.slope, expected.intercept);
    }
}

TEST(LineRansac, DistanceEqualToTheThresholdIsTooFar)
{
    const Points points{{0.0, 1.0}, {1.0, 1.0}, {2.0, 1.0}, {3.0, 1.0}};
    ExpectLine(Fit(points, 1.0, 50, 0.0), 7.0, 7.0);
    ExpectLine(Fit(points, 1.0, 50, 1e-300), 0.0, 1.0);
}

TEST(LineRansac, OutputsAreLeftAloneWithoutConsensus)
{
    const Points points{{0.0, 1.0}, {1.0, 3.0}, {2.0, 5.0}, {3.0, 7.0}};
    ExpectLine(Fit(points, 0.0, 0, 1.0), 7.0, 7.0);
    ExpectLine(Fit(points, 0.0, 50, -1.0), 7.0, 7.0);
    ExpectLine(Fit(points, 0.0, 50, kNaN), 7.0, 7.0);
}

TEST(LineRansac, PointsWithoutALineFindNoConsensus)
{
    // A null line overflows to a distance of 0 near the origin, where these points lie.
    ExpectLine(Fit(Points(5, {-0.25, 0.5}), 0.0, 50, 1e9), 7.0, 7.0);
    ExpectLine(Fit(Points(5, {kNull, kNull}), 0.0, 50, 1e9), 7.0, 7.0);
    ExpectLine(Fit({{2.0, 0.0}, {2.0, 1.0}, {2.0, 5.0}}, 0.0, 50, 1e9), 7.0, 7.0);
    for (const double value : {kNaN, kInfinity, -kInfinity})
    {
        ExpectLine(Fit(Points(5, {value, 1.0}), 0.0, 50, 1e9), 7.0, 7.0);
        ExpectLine(Fit(Points(5, {1.0, value}), 0.0, 50, 1e9), 7.0, 7.0);
    }
}

TEST(LineRansac, NullPointsHaveNoPartInTheLine)
{
    Points points{{0.0, 1.0}, {1.0, 3.0}, {kNull, 1.0}, {2.0, 5.0}, {3.0, kNull}, {3.0, 7.0}};
    ExpectNear(Fit(points, 0.0, 500, 0.5), 2.0, 1.0, 1e-14);
}

TEST(LineRansac, ThreePointsAreEnough)
{
    const Points points{{0.0, 1.0}, {1.0, 3.0}, {2.0, 5.0}};
    // Each of the 27 samples but 3 has a line.
    for (const double ratio : {0.0, 1.0})
    {
        ExpectNear(Fit(points, ratio, 200, 0.5), 2.0, 1.0, 1e-14);
    }
}

void ExpectFailure(int status, const qPoint64f* points, std::size_t count, double sampleRatio)
{
    LineResult line;
    TestSupport::ExpectThrow(
        status, kFunction,
        [&] { Zvl::FitLineRansac(points, count, sampleRatio, 10, 1.0, &line.slope, &line.intercept); });
    ExpectLine(line, 7.0, 7.0);
}

TEST(LineRansac, LessPointsThanASampleThrowStatusZero)
{
    const Points points{{0.0, 1.0}, {1.0, 3.0}};
    ExpectFailure(0, nullptr, 10, 0.5);
    ExpectFailure(0, nullptr, 0, 0.5);
    for (std::size_t count = 0; count < 3; ++count)
    {
        ExpectFailure(0, points.data(), count, 0.0);
        ExpectFailure(0, points.data(), count, 1.0);
    }
}

TEST(LineRansac, SizeThatCannotExistThrowsTheStatusOfThePlatform)
{
    const Points points{{0.0, 1.0}, {1.0, 3.0}};
    ExpectFailure(STATUS_OUT_OF_MEMORY, points.data(), std::numeric_limits<std::size_t>::max(), 1.0);
}

TEST(LineRansac, ResultsMustHaveAPlace)
{
    const Points points{{0.0, 1.0}, {1.0, 3.0}, {2.0, 5.0}};
    double value = 7.0;
    const auto expectThrow = [&](double* slope, double* intercept)
    {
        TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                                 [&] { Zvl::FitLineRansac(points.data(), 3, 0.0, 10, 1.0, slope, intercept); });
    };
    expectThrow(nullptr, &value);
    expectThrow(&value, nullptr);
    EXPECT_EQ(value, 7.0);
}

TEST(LineRansac, ExhaustedMemoryIsThrownAndNothingLeaks)
{
    const Points points{{0.0, 1.0}, {1.0, 1.0}, {2.0, 1.0}, {3.0, 1.0}, {4.0, 1.0}, {5.0, 1.0}};
    const auto run = [&points]
    {
        LineResult line;
        try
        {
            Zvl::FitLineRansac(points.data(), points.size(), 0.0, 50, 0.5, &line.slope, &line.intercept);
        }
        catch (...)
        {
            ExpectLine(line, 7.0, 7.0);
            throw;
        }
    };
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run), 5U);
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run, TestSupport::Failing::OnlyNth), 5U);
}

} // namespace
