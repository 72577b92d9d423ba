#include <ZdkVisionLib/Fitting/Fit.h>

#include "FittingSupport.h"
#include "support/FailingAllocator.h"

#include <cmath>
#include <limits>

namespace
{

using namespace FittingSupport;

constexpr double kNull = Zvl::GetNull<double>();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = std::numeric_limits<double>::max();
constexpr double kPi = 3.141592653589793;

using Points = std::vector<qPoint64f>;

/** All outputs, filled with what a fit must replace. */
struct Outputs
{
    qPoint64f center{7.0, 7.0};
    double minRadius = 7.0;
    double maxRadius = 7.0;
    double maxDistance = 7.0;
    double minDistance = 7.0;
    Points maxDistPoints{{7.0, 7.0}};
    Points minDistPoints{{7.0, 7.0}};
    Points kept{{7.0, 7.0}};
    Points outliers{{7.0, 7.0}};
};

void FitInto(Outputs& outputs, const qPoint64f* points, std::size_t count, double percent, int type)
{
    Zvl::FitCircle(points, count, percent, static_cast<Zvl::CircleType>(type), &outputs.center, &outputs.minRadius,
                   &outputs.maxRadius, &outputs.maxDistance, &outputs.minDistance, &outputs.maxDistPoints,
                   &outputs.minDistPoints, &outputs.kept, &outputs.outliers);
}

Outputs FitPoints(const Points& points, double percent, int type)
{
    Outputs outputs;
    FitInto(outputs, points.data(), points.size(), percent, type);
    return outputs;
}

void ExpectPoints(const Points& points, const Points& expected)
{
    EXPECT_TRUE(std::equal(points.begin(), points.end(), expected.begin(), expected.end(),
                           [](const qPoint64f& a, const qPoint64f& b) { return a.x == b.x && a.y == b.y; }));
}

void ExpectUntouched(const Outputs& outputs)
{
    const Points untouched{{7.0, 7.0}};
    ExpectPoints({outputs.center}, untouched);
    EXPECT_EQ(outputs.minRadius, 7.0);
    EXPECT_EQ(outputs.maxRadius, 7.0);
    EXPECT_EQ(outputs.maxDistance, 7.0);
    EXPECT_EQ(outputs.minDistance, 7.0);
    for (const Points& points : {outputs.maxDistPoints, outputs.minDistPoints, outputs.kept, outputs.outliers})
    {
        ExpectPoints(points, untouched);
    }
}

void ExpectNoCircle(const Outputs& outputs)
{
    ExpectPoints({outputs.center}, {{kNull, kNull}});
    EXPECT_EQ(outputs.minRadius, kNull);
    EXPECT_EQ(outputs.maxRadius, kNull);
}

void ExpectNoDistances(const Outputs& outputs)
{
    EXPECT_EQ(outputs.maxDistance, kNull);
    EXPECT_EQ(outputs.minDistance, kNull);
    EXPECT_TRUE(outputs.maxDistPoints.empty());
    EXPECT_TRUE(outputs.minDistPoints.empty());
}

/** Twenty points on the circle of radius 2 about (1, -1), one inside at index 3 and one outside at index 7.
 */
Points RoundPart()
{
    Points points;
    for (int i = 0; i < 20; ++i)
    {
        points.push_back({1.0 + 2.0 * std::cos(i * kPi / 10.0), -1.0 + 2.0 * std::sin(i * kPi / 10.0)});
    }
    points.insert(points.begin() + 3, {1.0, 0.5});
    points.insert(points.begin() + 7, {1.0, -4.0});
    return points;
}

TEST(FitCircle, WithoutRejectionAllOutputsAreFilled)
{
    // The corners of a rectangle, 5 from its centre (2, 1), and the middle of its upper side, 3 from it.
    // About that centre the equations 2 y y0 + c = x² + y² have the left sides -6, -6, 6, 6, 6 and the right
    // sides 25, 25, 25, 25, 9, which gives y0 = -4/9 and c = 67/3, and r² = c + y0².
    const Points points{{-2.0, -2.0}, {6.0, -2.0}, {6.0, 4.0}, {-2.0, 4.0}, {2.0, 4.0}};
    const Outputs outputs = FitPoints(points, 0.0, Zvl::CIRCLE_LSC);
    EXPECT_NEAR(outputs.center.x, 2.0, 1e-14);
    EXPECT_NEAR(outputs.center.y, 5.0 / 9.0, 1e-14);
    EXPECT_NEAR(outputs.minRadius, std::sqrt(67.0 / 3.0 + 16.0 / 81.0), 1e-14);
    EXPECT_EQ(outputs.maxRadius, outputs.minRadius);
    EXPECT_NEAR(outputs.maxDistance, std::sqrt(16.0 + 961.0 / 81.0), 1e-14);
    EXPECT_NEAR(outputs.minDistance, 31.0 / 9.0, 1e-14);
    ASSERT_EQ(outputs.maxDistPoints.size(), 1U);
    EXPECT_EQ(outputs.maxDistPoints[0].y, 4.0);
    ExpectPoints(outputs.minDistPoints, {{2.0, 4.0}});
    ExpectPoints(outputs.kept, points);
    EXPECT_TRUE(outputs.outliers.empty());
}

TEST(FitCircle, FirstPointWinsAmongEqualDistances)
{
    const Points points{{-1.0, 1.0}, {1.0, 1.0}, {-1.0, -1.0}, {1.0, -1.0}};
    const Outputs outputs = FitPoints(points, -3.0, Zvl::CIRCLE_LSC);
    EXPECT_EQ(outputs.maxDistance, std::sqrt(2.0));
    EXPECT_EQ(outputs.minDistance, std::sqrt(2.0));
    ExpectPoints(outputs.maxDistPoints, {points[0]});
    ExpectPoints(outputs.minDistPoints, {points[0]});
}

TEST(FitCircle, WithRejectionTheDistancesStayNull)
{
    const Outputs outputs = FitPoints(RoundPart(), 10.0, Zvl::CIRCLE_LSC);
    EXPECT_NEAR(outputs.center.x, 1.0, 1e-14);
    EXPECT_NEAR(outputs.center.y, -1.0, 1e-14);
    EXPECT_NEAR(outputs.minRadius, 2.0, 1e-14);
    EXPECT_EQ(outputs.maxRadius, outputs.minRadius);
    EXPECT_EQ(outputs.kept.size(), 20U);
    ExpectPoints(outputs.outliers, {{1.0, -4.0}, {1.0, 0.5}});
    ExpectNoDistances(outputs);
}

TEST(FitCircle, PercentageThatRejectsNoPointStillLeavesTheDistancesNull)
{
    const Outputs outputs = FitPoints(RoundPart(), 4.0, Zvl::CIRCLE_LSC);
    EXPECT_EQ(outputs.kept.size(), 22U);
    EXPECT_TRUE(outputs.outliers.empty());
    EXPECT_NE(outputs.minRadius, kNull);
    ExpectNoDistances(outputs);
}

TEST(FitCircle, TooFewPointsWithoutRejectionMeasureFromANullCentre)
{
    const Points points{{1.0, 2.0}, {3.0, 4.0}};
    const Outputs outputs = FitPoints(points, 0.0, Zvl::CIRCLE_LSC);
    ExpectNoCircle(outputs);
    ExpectPoints(outputs.kept, points);
    EXPECT_TRUE(outputs.outliers.empty());
    // The squares overflow: infinite is above the null, so that the first point wins, and not below the
    // largest double.
    EXPECT_EQ(outputs.maxDistance, kInfinity);
    ExpectPoints(outputs.maxDistPoints, {{1.0, 2.0}});
    EXPECT_EQ(outputs.minDistance, kLargest);
    ExpectPoints(outputs.minDistPoints, {{kNull, kNull}});
}

TEST(FitCircle, NoPointsWithoutRejectionKeepTheStartOfTheSearch)
{
    for (const std::size_t count : {0U, 1000U})
    {
        Outputs outputs;
        FitInto(outputs, nullptr, count, 0.0, Zvl::CIRCLE_LSC);
        ExpectNoCircle(outputs);
        EXPECT_TRUE(outputs.kept.empty());
        EXPECT_TRUE(outputs.outliers.empty());
        EXPECT_EQ(outputs.maxDistance, kNull);
        EXPECT_EQ(outputs.minDistance, kLargest);
        ExpectPoints(outputs.maxDistPoints, {{kNull, kNull}});
        ExpectPoints(outputs.minDistPoints, {{kNull, kNull}});
    }
}

TEST(FitCircle, TooFewPointsWithRejectionLeaveEverythingNull)
{
    const Points points{{1.0, 2.0}, {3.0, 4.0}};
    const Outputs outputs = FitPoints(points, 10.0, Zvl::CIRCLE_LSC);
    ExpectNoCircle(outputs);
    ExpectNoDistances(outputs);
    ExpectPoints(outputs.kept, points);
    EXPECT_TRUE(outputs.outliers.empty());

    Outputs none;
    FitInto(none, nullptr, 1000, 10.0, Zvl::CIRCLE_LSC);
    ExpectNoCircle(none);
    EXPECT_TRUE(none.kept.empty());
}

TEST(FitCircle, OtherTypesWithRejectionReturnItsCircle)
{
    const Outputs outputs = FitPoints(RoundPart(), 10.0, -17);
    EXPECT_NEAR(outputs.minRadius, 2.0, 1e-14);
    EXPECT_EQ(outputs.outliers.size(), 2U);
    ExpectNoDistances(outputs);
}

TEST(FitCircle, OtherTypesWithoutRejectionOnlyKeep)
{
    const Outputs outputs = FitPoints(RoundPart(), 0.0, 2147483647);
    ExpectNoCircle(outputs);
    ExpectNoDistances(outputs);
    ExpectPoints(outputs.kept, RoundPart());
    EXPECT_TRUE(outputs.outliers.empty());
}

TEST(FitCircle, PercentageThatIsNotANumberRejectsNone)
{
    const Outputs outputs = FitPoints(RoundPart(), std::nan(""), Zvl::CIRCLE_LSC);
    EXPECT_EQ(outputs.kept.size(), 22U);
    EXPECT_NE(outputs.maxDistance, kNull);
}

TEST(FitCircle, HugePercentageLeavesThreePoints)
{
    EXPECT_EQ(FitPoints(RoundPart(), 1e30, Zvl::CIRCLE_LSC).kept.size(), 3U);
}

TEST(FitCircle, MinimumZoneOfTheKeptPoints)
{
    // An ellipse of half axes 5.1 and 4.9 with corners at its ends: the zone about its centre is 0.2 wide.
    Points points;
    for (int i = 0; i < 40; ++i)
    {
        const double angle = (i + 0.1) * kPi / 20.0;
        points.push_back({1.0 + 5.1 * std::cos(angle), 2.0 + 4.9 * std::sin(angle)});
    }
    for (const qPoint64f& p : {qPoint64f{6.1, 2.0}, {-4.1, 2.0}, {1.0, 6.9}, {1.0, -2.9}})
    {
        points.push_back(p);
    }
    const Outputs whole = FitPoints(points, 0.0, Zvl::CIRCLE_MZC);
    EXPECT_NEAR(whole.center.x, 1.0, 1e-6);
    EXPECT_NEAR(whole.center.y, 2.0, 1e-6);
    EXPECT_NEAR(whole.minRadius, 4.9, 1e-6);
    EXPECT_NEAR(whole.maxRadius, 5.1, 1e-6);
    EXPECT_EQ(whole.maxDistance, kNull);
    EXPECT_EQ(whole.minDistance, kNull);
    EXPECT_EQ(whole.maxDistPoints.size(), 2U);
    EXPECT_EQ(whole.minDistPoints.size(), 2U);
    ExpectPoints(whole.kept, points);
    EXPECT_TRUE(whole.outliers.empty());

    points.push_back({1.0, 30.0});
    points.push_back({1.5, 2.0});
    const Outputs cleaned = FitPoints(points, 5.0, Zvl::CIRCLE_MZC); // two points of 46
    EXPECT_EQ(cleaned.outliers.size(), 2U);
    EXPECT_EQ(cleaned.kept.size(), 44U);
    EXPECT_EQ(cleaned.minRadius, whole.minRadius);
    EXPECT_EQ(cleaned.maxRadius, whole.maxRadius);
    EXPECT_EQ(cleaned.maxDistance, kNull);
}

TEST(FitCircle, MinimumZoneWithoutOneLeavesEverythingNull)
{
    for (const Points& points : {Points{}, Points{{1.0, 2.0}, {3.0, 4.0}}, Points{{0.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}}})
    {
        const Outputs outputs = FitPoints(points, 0.0, Zvl::CIRCLE_MZC);
        ExpectNoCircle(outputs);
        ExpectNoDistances(outputs);
        ExpectPoints(outputs.kept, points);
    }
}

TEST(FitCircle, FailingMinimumZoneLeavesAllOutputsAsTheyWere)
{
    const Points square{{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}};
    const Points unusable{{0.0, 0.0}, {2.0, 0.0}, {2.0, kNull}, {0.0, 2.0}};
    Outputs outputs;
    TestSupport::ExpectThrow(STATUS_ABORTED, "Zvl::FitCircle_MIC",
                             [&] { FitInto(outputs, square.data(), square.size(), 0.0, Zvl::CIRCLE_MZC); });
    ExpectUntouched(outputs);
    TestSupport::ExpectThrow(STATUS_BAD_DATA, "Zvl::FitCircle_MIC",
                             [&] { FitInto(outputs, unusable.data(), unusable.size(), 0.0, Zvl::CIRCLE_MZC); });
    ExpectUntouched(outputs);
}

TEST(FitCircle, FailingFitLeavesAllOutputsAsTheyWere)
{
    const Points line{{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}, {3.0, 3.0}};
    for (const double percent : {0.0, 25.0})
    {
        Outputs outputs;
        TestSupport::ExpectThrow(STATUS_BAD_DATA, "Zvl::FitCircle_LSC",
                                 [&] { FitInto(outputs, line.data(), line.size(), percent, Zvl::CIRCLE_LSC); });
        ExpectUntouched(outputs);
    }
    Outputs outputs;
    const Points huge{{1e20, 0.0}, {-1e20, 0.0}, {0.0, 1e20}};
    TestSupport::ExpectThrow(0, "Zvl::FitCircle_LSC",
                             [&] { FitInto(outputs, huge.data(), huge.size(), 0.0, Zvl::CIRCLE_LSC); });
    ExpectUntouched(outputs);
}

TEST(FitCircle, EveryOutputMayBeNull)
{
    const Points points = RoundPart();
    for (const double percent : {0.0, 20.0})
    {
        EXPECT_NO_THROW(Zvl::FitCircle(points.data(), points.size(), percent, Zvl::CIRCLE_LSC, nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    }
}

TEST(FitCircle, EachOutputIsTheSameWithoutTheOthers)
{
    Points points;
    for (int i = 0; i < 50; ++i) // a lobed ring, rough lest two circles are as good
    {
        const double angle = i * kPi / 25.0;
        const double radius = 5.0 + 0.1 * std::cos(3.0 * angle) + 0.01 * std::sin(i * i);
        points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    for (const int type : {Zvl::CIRCLE_LSC, Zvl::CIRCLE_MZC})
    {
        for (const double percent : {0.0, 20.0})
        {
            const Outputs all = FitPoints(points, percent, type);
            const auto fit = [&](double* maxDistance, double* minDistance, Points* maxDistPoints, Points* minDistPoints,
                                 Points* kept)
            {
                Zvl::FitCircle(points.data(), points.size(), percent, static_cast<Zvl::CircleType>(type), nullptr,
                               nullptr, nullptr, maxDistance, minDistance, maxDistPoints, minDistPoints, kept, nullptr);
            };
            Outputs single;
            fit(&single.maxDistance, nullptr, nullptr, nullptr, nullptr);
            fit(nullptr, &single.minDistance, nullptr, nullptr, nullptr);
            fit(nullptr, nullptr, &single.maxDistPoints, nullptr, nullptr);
            fit(nullptr, nullptr, nullptr, &single.minDistPoints, nullptr);
            fit(nullptr, nullptr, nullptr, nullptr, &single.kept);
            EXPECT_EQ(single.maxDistance, all.maxDistance);
            EXPECT_EQ(single.minDistance, all.minDistance);
            ExpectPoints(single.maxDistPoints, all.maxDistPoints);
            ExpectPoints(single.minDistPoints, all.minDistPoints);
            ExpectPoints(single.kept, all.kept);
        }
    }
}

TEST(FitCircle, ExhaustedMemoryLeavesAllOutputsAsTheyWere)
{
    const Points points = RoundPart();
    const auto run = [&points]
    {
        Outputs outputs;
        try
        {
            FitInto(outputs, points.data(), points.size(), 20.0, Zvl::CIRCLE_LSC);
        }
        catch (...)
        {
            ExpectUntouched(outputs);
            throw;
        }
    };
    EXPECT_GE(TestSupport::ExpectEachFailureThrown("Zvl::FitCircle_LSC", run), 6U);
}

} // namespace
