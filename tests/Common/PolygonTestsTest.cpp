/** @file
 *  Rays and segments in general position, and the tolerance of every comparison: a power of two, so that sums with it
 *  are exact. */

#include "Common/PolygonTests.h"

#include <gtest/gtest.h>

namespace
{

using namespace Zvl;
using Point = Point2d<double>;

int IsPointInPolygon(const Point2d<double>& p, const std::vector<Point2d<double>>& points)
{
    Intersections intersections;
    return Zvl::IsPointInPolygon(p, points, intersections);
}

constexpr double kTolerance = kGeometricTolerance;
const Line kOblique = {{1.0, 2.0}, {0.6, 0.8}};

/** Expects that the ray crosses the segment at @p expected. */
void ExpectCrossing(const Line& line, const Point& a, const Point& b, const Point& expected)
{
    Point crossing(-7.0, -7.0);
    ASSERT_EQ(IntersectRaySegment(line, a, b, &crossing), 1);
    EXPECT_NEAR(crossing.x, expected.x, 1e-12);
    EXPECT_NEAR(crossing.y, expected.y, 1e-12);
}

void ExpectNoCrossing(const Line& line, const Point& a, const Point& b)
{
    Point crossing(-7.0, -7.0);
    EXPECT_EQ(IntersectRaySegment(line, a, b, &crossing), 0);
    EXPECT_EQ(crossing.x, -7.0);
}

TEST(RaySegment, ObliqueRayCrossesSegmentsOfEveryDirection)
{
    ExpectCrossing(kOblique, {2.0, 10.0}, {8.0, 2.0}, {4.5, 20.0 / 3.0});
    ExpectCrossing(kOblique, {8.0, 2.0}, {2.0, 10.0}, {4.5, 20.0 / 3.0});
    ExpectCrossing(kOblique, {2.0, 6.0}, {9.0, 6.0}, {4.0, 6.0});
    ExpectCrossing(kOblique, {9.0, 6.0}, {2.0, 6.0}, {4.0, 6.0});
    ExpectCrossing(kOblique, {4.0, 9.0}, {4.0, 3.0}, {4.0, 6.0});
    ExpectNoCrossing(kOblique, {5.0, 6.0}, {9.0, 6.0});
    ExpectNoCrossing(kOblique, {4.0, 9.0}, {4.0, 7.0});
    ExpectNoCrossing(kOblique, {-2.0, -2.0}, {-2.0, 2.0}); // it would be at (-2, -2), behind the origin
}

TEST(RaySegment, StartCountsAndEndDoesNot)
{
    ExpectCrossing(kOblique, {4.0, 6.0}, {9.0, 6.0}, {4.0, 6.0});
    ExpectNoCrossing(kOblique, {2.0, 6.0}, {4.0, 6.0});
}

TEST(RaySegment, CollinearSegmentIsCrossedAtItsStart)
{
    ExpectCrossing(kOblique, {4.0, 6.0}, {7.0, 10.0}, {4.0, 6.0});
    ExpectCrossing(kOblique, {-2.0, -2.0}, {7.0, 10.0}, {-2.0, -2.0});
    ExpectNoCrossing(kOblique, {4.0, 7.0}, {7.0, 11.0});
    ExpectNoCrossing(kOblique, {4.0, 5.0}, {7.0, 9.0});
}

TEST(RaySegment, ToleranceIsPartOfTheRangeAtItsBeginning)
{
    const Line up = {{0.0, -1.0}, {0.0, 1.0}};
    ExpectCrossing(up, {0.0, 0.0}, {kTolerance, 0.0}, {0.0, 0.0}); // the shortest segment
    ExpectNoCrossing(up, {0.0, 0.0}, {kTolerance / 2.0, 0.0});
    ExpectCrossing(up, {kTolerance, 0.0}, {1.0, 0.0}, {0.0, 0.0});
    ExpectNoCrossing(up, {2.0 * kTolerance, 0.0}, {1.0, 0.0});
    ExpectCrossing({{0.0, kTolerance}, {0.0, 1.0}}, {-1.0, 0.0}, {1.0, 0.0}, {0.0, 0.0});
    ExpectNoCrossing({{0.0, 2.0 * kTolerance}, {0.0, 1.0}}, {-1.0, 0.0}, {1.0, 0.0});
    ExpectCrossing({{1.0 - kTolerance, -1.0}, {0.0, 1.0}}, {0.0, 0.0}, {1.0, 0.0}, {1.0 - kTolerance, 0.0});
    ExpectNoCrossing({{1.0 - kTolerance / 2.0, -1.0}, {0.0, 1.0}}, {0.0, 0.0}, {1.0, 0.0});
}

TEST(PointOnSegment, LiesOnTheLineAndBetweenTheEnds)
{
    const Point a(3.0, 1.0);
    const Point b(7.0, 9.0);
    for (const Point& on : {a, b, Point(5.0, 5.0), Point(4.5, 4.0)})
    {
        EXPECT_EQ(IsPointOnSegment(on, a, b), 1);
        EXPECT_EQ(IsPointOnSegment(on, b, a), 1);
    }
    for (const Point& off : {Point(5.0, 5.01), Point(5.01, 5.0), Point(8.0, 11.0), Point(2.0, -1.0), Point(3.0, 9.0)})
    {
        EXPECT_EQ(IsPointOnSegment(off, a, b), 0);
        EXPECT_EQ(IsPointOnSegment(off, b, a), 0);
    }
}

TEST(PointOnSegment, ToleranceItselfIsTooFar)
{
    const Point origin(0.0, 0.0);
    for (const double beyond : {kTolerance / 2.0, kTolerance})
    {
        const int expected = beyond < kTolerance ? 1 : 0;
        EXPECT_EQ(IsPointOnSegment({-beyond, 0.0}, origin, {8.0, 0.0}), expected);
        EXPECT_EQ(IsPointOnSegment({beyond, 0.0}, {-8.0, 0.0}, origin), expected);
        EXPECT_EQ(IsPointOnSegment({0.0, -beyond}, origin, {0.0, 8.0}), expected);
        EXPECT_EQ(IsPointOnSegment({0.0, beyond}, {0.0, -8.0}, origin), expected);
        EXPECT_EQ(IsPointOnSegment({0.5, 0.5 - beyond}, origin, {1.0, 1.0}), expected);
    }
}

TEST(HorizontalRay, ToleranceItselfIsTooFar)
{
    Point crossing;
    const Point a(1.0, 0.0);
    const Point b(5.0, 2.0);
    EXPECT_EQ(IntersectHorizontalRay({0.0, -kTolerance}, a, b, &crossing), 0);
    EXPECT_EQ(IntersectHorizontalRay({0.0, -kTolerance / 2.0}, a, b, &crossing), 1);
    EXPECT_EQ(IntersectHorizontalRay({0.0, 2.0 + kTolerance}, a, b, &crossing), 0);
    EXPECT_EQ(IntersectHorizontalRay({0.0, 2.0 + kTolerance / 2.0}, a, b, &crossing), 1);
    EXPECT_EQ(IntersectHorizontalRay({1.0 - kTolerance, 0.0}, {1.0, -1.0}, {1.0, 1.0}, &crossing), 0);
    EXPECT_EQ(IntersectHorizontalRay({1.0 - 2.0 * kTolerance, 0.0}, {1.0, -1.0}, {1.0, 1.0}, &crossing), 1);
    EXPECT_EQ(IntersectHorizontalRay({0.0, 0.0}, a, {5.0, kTolerance}, &crossing), 1);
    EXPECT_EQ(IntersectHorizontalRay({0.0, 0.0}, a, {5.0, kTolerance / 2.0}, &crossing), 0); // counts as level
}

TEST(Crossings, AreDistinctFromTheToleranceOn)
{
    std::vector<double> crossings;
    for (const double x : {1.0, 1.0 + kTolerance / 2.0, 1.0 + kTolerance, 1.0 - kTolerance, 1.0 - kTolerance / 2.0})
    {
        InsertDistinct(x, crossings);
    }
    EXPECT_EQ(crossings, (std::vector<double>{1.0 - kTolerance, 1.0, 1.0 + kTolerance}));
}

TEST(PointInPolygon, ObliqueRaysDecideBesideVertices)
{
    // The level ray from each point meets a vertex.
    const std::vector<Point> notched = {{1.0, 1.0}, {9.0, 1.0}, {9.0, 9.0}, {6.0, 5.0},
                                        {3.0, 9.0}, {1.0, 9.0}, {1.0, 1.0}};
    EXPECT_EQ(IsPointInPolygon({2.0, 5.0}, notched), 1);
    EXPECT_EQ(IsPointInPolygon({4.0, 5.0}, notched), 1);
    EXPECT_EQ(IsPointInPolygon({0.5, 5.0}, notched), 0);
    EXPECT_EQ(IsPointInPolygon({6.0, 9.0}, notched), 0);
    EXPECT_EQ(IsPointInPolygon({0.5, 9.0}, notched), 0);
    EXPECT_EQ(IsPointInPolygon({0.5, 1.0}, notched), 0);
}

} // namespace
