#include <ZdkVisionLib/Geometry/Geometry.h>

#include "support/ExpectThrow.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <random>

namespace Zvl
{

namespace
{

using Polygon = std::vector<Point2d<double>>;

Polygon OutlineOf(const Region2d<double>& region)
{
    Polygon polygon(9, Point2d<double>(7, 7));
    ExtractPolygonFromRect(region, &polygon);
    EXPECT_EQ(polygon.size(), 5U);
    return polygon;
}

void ExpectVertices(const Polygon& polygon, const Polygon& expected, double tolerance)
{
    ASSERT_EQ(polygon.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index)
    {
        EXPECT_NEAR(polygon[index].x, expected[index].x, tolerance) << "vertex " << index;
        EXPECT_NEAR(polygon[index].y, expected[index].y, tolerance) << "vertex " << index;
    }
}

const Polygon kUpright = {{1, 2}, {5, 2}, {5, 4}, {1, 4}, {1, 2}};

} // namespace

TEST(ExtractPolygonFromRect, AnUprightRectangleGivesItsCornersAndClosesTheRing)
{
    ExpectVertices(OutlineOf({1, 2, 4, 2, 0}), kUpright, 0.0);
}

TEST(ExtractPolygonFromRect, AngleBelowTheToleranceCountsAsUpright)
{
    const double tolerance = static_cast<double>(FLT_EPSILON);
    ExpectVertices(OutlineOf({1, 2, 4, 2, std::nextafter(tolerance, 0.0)}), kUpright, 0.0);
    ExpectVertices(OutlineOf({1, 2, 4, 2, -std::nextafter(tolerance, 0.0)}), kUpright, 0.0);
    // At the tolerance the corners move by about 4e-9.
    EXPECT_GT(OutlineOf({1, 2, 4, 2, tolerance})[0].x, 1.0);
    EXPECT_LT(OutlineOf({1, 2, 4, 2, -tolerance})[0].x, 1.0);
}

TEST(ExtractPolygonFromRect, AnAngleTurnsAboutTheCenter)
{
    // Centre (3, 3); the corner (-2, -1) from it goes to (1, -2).
    ExpectVertices(OutlineOf({1, 2, 4, 2, 90}), {{4, 1}, {4, 5}, {2, 5}, {2, 1}, {4, 1}}, 1e-12);
    ExpectVertices(OutlineOf({1, 2, 4, 2, -90}), {{2, 5}, {2, 1}, {4, 1}, {4, 5}, {2, 5}}, 1e-12);
    ExpectVertices(OutlineOf({1, 2, 4, 2, 360}), kUpright, 1e-12);
}

TEST(ExtractPolygonFromRect, ARectangleWithoutSizeGivesFiveEqualVertices)
{
    const Polygon point(5, Point2d<double>(3, -4));
    ExpectVertices(OutlineOf({3, -4, 0, 0, 0}), point, 0.0);
    ExpectVertices(OutlineOf({3, -4, 0, 0, 33}), point, 1e-12);
}

TEST(ExtractPolygonFromRect, RandomRectanglesKeepTheirSidesAndTheirCenter)
{
    std::mt19937_64 random(41);
    std::uniform_real_distribution<double> values(-50.0, 50.0);
    for (int round = 0; round < 200; ++round)
    {
        const Region2d<double> region = {values(random), values(random), std::fabs(values(random)),
                                         std::fabs(values(random)), 10.0 * values(random)};
        const Polygon p = OutlineOf(region);
        const double angle = region.angle * M_PI / 180.0;
        EXPECT_NEAR(p[1].x - p[0].x, region.width * std::cos(angle), 1e-11);
        EXPECT_NEAR(p[1].y - p[0].y, region.width * std::sin(angle), 1e-11);
        EXPECT_NEAR(p[2].x - p[1].x, -region.height * std::sin(angle), 1e-11);
        EXPECT_NEAR(p[2].y - p[1].y, region.height * std::cos(angle), 1e-11);
        EXPECT_NEAR((p[0].x + p[2].x) / 2, region.x + region.width / 2, 1e-11);
        EXPECT_NEAR((p[1].y + p[3].y) / 2, region.y + region.height / 2, 1e-11);
        EXPECT_EQ(p[4].x, p[0].x);
        EXPECT_EQ(p[4].y, p[0].y);
    }
}

TEST(ExtractPolygonFromRect, ValuesThatAreNotFiniteStillGiveFiveVertices)
{
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), GetNull<double>()})
    {
        OutlineOf({bad, 2, 4, 2, 30});
        OutlineOf({1, 2, bad, bad, 0});
        OutlineOf({1, 2, 4, 2, bad});
    }
}

TEST(ExtractPolygonFromRect, ANullOutputThrows)
{
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::ExtractPolygonFromRect",
                             [] {
                                 ExtractPolygonFromRect({1, 2, 4, 2, 0}, nullptr);
                             });
}

} // namespace Zvl
