#include "Fitting/CircleInscribed.h"

#include "ZoneSupport.h"

namespace
{

using namespace ZoneSupport;
using Zvl::FitCircle_MIC;

constexpr const char* kFunction = "Zvl::FitCircle_MIC";

TEST(InscribedCircle, TheCentreIsTheVertexBetweenThreePoints)
{
    // (5, 0), (-3, 4) and (-4, -3) lie 5 from the origin. (0, 6) leaves the circle empty. The other circles through
    // three of the four are smaller, or hold the fourth point.
    const Points points{{5.0, 0.0}, {-3.0, 4.0}, {-4.0, -3.0}, {0.0, 6.0}};
    const Circle circle = FitTo(FitCircle_MIC, points);
    EXPECT_NEAR(circle.center.x, 0.0, 1e-12);
    EXPECT_NEAR(circle.center.y, 0.0, 1e-12);
    EXPECT_NEAR(circle.radius, 5.0, 1e-12);
    EXPECT_NEAR(circle.minDistance, 5.0, 1e-12);
    EXPECT_NEAR(circle.maxDistance, 6.0, 1e-12);
    ExpectPoints(circle.maxDistPoints, {{0.0, 6.0}});
    EXPECT_EQ(circle.controlPoints.size(), 3U);
    ExpectPoints(circle.minDistPoints, circle.controlPoints);
    for (const qPoint64f& p : circle.controlPoints)
    {
        EXPECT_NE(p.y, 6.0);
    }
}

TEST(InscribedCircle, TwoPointsAreTheEndsOfADiameter)
{
    const Points points{{1.0, 1.0}, {7.0, 9.0}};
    const Circle circle = FitTo(FitCircle_MIC, points);
    ExpectPoints({circle.center}, {{4.0, 5.0}});
    EXPECT_EQ(circle.radius, 5.0);
    EXPECT_EQ(circle.maxDistance, 5.0);
    EXPECT_EQ(circle.minDistance, 5.0);
    for (const Points& list : {circle.maxDistPoints, circle.minDistPoints, circle.controlPoints})
    {
        ExpectPoints(list, points);
    }
}

TEST(InscribedCircle, ThreePointsHaveTheCircleThroughThem)
{
    const Points points{{0.0, 0.0}, {8.0, 0.0}, {0.0, 6.0}};
    const Circle circle = FitTo(FitCircle_MIC, points);
    ExpectPoints({circle.center}, {{4.0, 3.0}});
    EXPECT_EQ(circle.radius, 5.0);
    EXPECT_EQ(circle.minDistance, 5.0);
    ExpectPoints(circle.controlPoints, points);

    const Points line{{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}};
    const Circle none = FitTo(FitCircle_MIC, line);
    ExpectNoNumbers(none);
    ExpectPoints(none.controlPoints, line);
}

TEST(InscribedCircle, TooFewPointsGiveNothing)
{
    ExpectNothing(FitTo(FitCircle_MIC, {}));
    ExpectNothing(FitTo(FitCircle_MIC, {{1.0, 2.0}}));
    Circle circle;
    FitCircle_MIC(nullptr, 100, &circle.center, &circle.radius, &circle.maxDistance, &circle.minDistance,
                  &circle.maxDistPoints, &circle.minDistPoints, &circle.controlPoints);
    ExpectNothing(circle);
}

TEST(InscribedCircle, PointsOnOneLineHaveNoVertexInTheirHull)
{
    for (const qPoint64f& step : {qPoint64f{1.0, 0.0}, {0.0, 1.0}, {0.3, 0.7}, {-1.0, 1.0}})
    {
        Points line;
        for (int i = 0; i < 10; ++i)
        {
            line.push_back({step.x * i, step.y * i});
        }
        ExpectNothing(FitTo(FitCircle_MIC, line));
    }
    ExpectNothing(FitTo(FitCircle_MIC, Points(50, {2.0, 3.0})));
}

TEST(InscribedCircle, FourPointsOnOneCircleEndTheSearchForItsPoints)
{
    const Points square{{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}};
    Circle circle;
    TestSupport::ExpectThrow(STATUS_ABORTED, kFunction, [&] { FitInto(circle, FitCircle_MIC, square); });
    ExpectNothing(circle);

    // Without that search the circle is found.
    FitCircle_MIC(square.data(), 4, &circle.center, &circle.radius, nullptr, nullptr, nullptr, nullptr, nullptr);
    ExpectPoints({circle.center}, {{1.0, 1.0}});
    EXPECT_EQ(circle.radius, std::sqrt(2.0));
}

TEST(InscribedCircle, EveryOutputMayBeNull)
{
    const Points points = LobedRing(30, 0.01, 1);
    for (const std::size_t count : {0U, 1U, 2U, 3U, 4U, 30U})
    {
        EXPECT_NO_THROW(
            FitCircle_MIC(points.data(), count, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    }
}

TEST(InscribedCircle, UnusableCoordinatesAreRefused)
{
    for (const Points& points : UnusablePoints())
    {
        Circle circle;
        TestSupport::ExpectThrow(STATUS_BAD_DATA, kFunction, [&] { FitInto(circle, FitCircle_MIC, points); });
        ExpectNothing(circle);
    }
}

TEST(InscribedCircle, ItIsTheLargestEmptyCircleCentredInTheHull)
{
    for (std::uint64_t seed = 1; seed <= 150; ++seed)
    {
        const std::size_t count = 4 + seed % 17;
        const Points points = seed % 2 == 0 ? Scattered(count, 30.0, seed) : LobedRing(count, 0.05, seed);
        SCOPED_TRACE(seed);
        const double largest = InscribedRadius(points);
        const Circle circle = FitTo(FitCircle_MIC, points);
        if (largest == 0.0)
        {
            ExpectNothing(circle);
            continue;
        }
        EXPECT_NEAR(circle.radius, largest, 1e-9);
        EXPECT_NEAR(circle.minDistance, Nearest(circle.center, points), 1e-9);
        EXPECT_NEAR(circle.maxDistance, Farthest(circle.center, points), 1e-9);
        ASSERT_EQ(circle.maxDistPoints.size(), 1U);
        EXPECT_NEAR(DistanceOf(circle.center, circle.maxDistPoints[0]), circle.maxDistance, 1e-9);
        for (const qPoint64f& p : circle.controlPoints)
        {
            EXPECT_NEAR(DistanceOf(circle.center, p), circle.radius, 1e-9);
        }
    }
}

TEST(InscribedCircle, DegeneratePointsEndInACircleNothingOrAnException)
{
    for (const Points& points : DegeneratePoints())
    {
        Circle circle;
        try
        {
            FitInto(circle, FitCircle_MIC, points);
            EXPECT_EQ(circle.center.x == kNull, circle.controlPoints.empty());
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_ABORTED);
            ExpectNothing(circle);
        }
    }
}

} // namespace
