#include "Fitting/BisectorCrossings.h"

#include "ZoneSupport.h"

namespace
{

using namespace ZoneSupport;
using Zvl::DistPoint;
using Zvl::ZoneLine;

void ExpectPlainCrossings(const std::vector<DistPoint>& points, const qPoint64f& pivot, const ZoneLine& line)
{
    std::vector<double> x(points.size(), 7.0);
    std::vector<double> y(points.size(), 7.0);
    Zvl::CrossBisectors(points.data(), points.size(), pivot, line, x.data(), y.data());
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const auto crossing = Zvl::Intersection(line, Zvl::Bisector(points[i].point, pivot));
        if (crossing.has_value() && !std::isnan(crossing->x))
        {
            EXPECT_EQ(x[i], crossing->x);
            EXPECT_EQ(y[i], crossing->y);
        }
        else
        {
            EXPECT_TRUE(std::isnan(x[i]));
            EXPECT_TRUE(std::isnan(y[i]));
        }
    }
}

TEST(BisectorCrossings, TheCrossingIsEquallyFarFromBoth)
{
    // The bisector of (4, 2) and the origin is 4 x + 2 y = 10; it crosses the line y = 3 at x = 1.
    const DistPoint point = {{4.0, 2.0}, 0.0};
    double x = 0.0;
    double y = 0.0;
    Zvl::CrossBisectors(&point, 1, {0.0, 0.0}, {{-5.0, 3.0}, {1.0, 0.0}}, &x, &y);
    EXPECT_NEAR(x, 1.0, 1e-14);
    EXPECT_NEAR(y, 3.0, 1e-14);
}

TEST(BisectorCrossings, TheyAreThoseOfThePlainFormsAtEveryLength)
{
    std::mt19937_64 random(1);
    for (std::size_t count = 0; count < 40; ++count)
    {
        for (const double offset : {0.0, 1e6})
        {
            std::vector<DistPoint> points;
            for (const qPoint64f& p : Scattered(count, 10.0, random()))
            {
                points.push_back({{p.x + offset, p.y - offset}, -1.0});
            }
            const qPoint64f pivot = {offset + 4.0, 5.0 - offset};
            ExpectPlainCrossings(points, pivot, Zvl::Bisector(pivot, {offset, 1.0 - offset}));
            ExpectPlainCrossings(points, pivot, {pivot, {0.0, 1.0}});
        }
    }
}

TEST(BisectorCrossings, PointsWithoutACrossingGetNone)
{
    std::vector<DistPoint> points;
    for (int i = 0; i < 20; ++i)
    {
        points.push_back({{1.0 * i, 2.0}, 0.0}); // level with the pivot: all bisectors are upright; one is the pivot
    }
    ExpectPlainCrossings(points, {3.0, 2.0}, {{0.0, 0.0}, {0.0, 1.0}});
    ExpectPlainCrossings(points, {3.0, 2.0}, {{0.0, 0.0}, {1.0, 0.0}});
    ExpectPlainCrossings(points, {3.0, 2.0}, {{0.0, 0.0}, {1e-7, 1.0}});
}

TEST(BisectorCrossings, TheToleranceItselfIsNotParallel)
{
    // (2^-23, 1 - 2^-47) has length 1 to the last bit: its bisector rises by exactly the tolerance against the x axis.
    const double tolerance = std::ldexp(1.0, -23);
    const std::vector<DistPoint> points(20, {{tolerance, 1.0 - std::ldexp(1.0, -47)}, 0.0});
    const ZoneLine level = {{0.0, 0.0}, {1.0, 0.0}};
    std::vector<double> x(points.size());
    std::vector<double> y(points.size());
    Zvl::CrossBisectors(points.data(), points.size(), {0.0, 0.0}, level, x.data(), y.data());
    for (const double place : x)
    {
        EXPECT_NEAR(place * tolerance, 0.5, 1e-6);
    }
    ExpectPlainCrossings(points, {0.0, 0.0}, level);
}

} // namespace
