#include "Fitting/ZoneHull.h"

#include "ZoneSupport.h"

namespace
{

using namespace ZoneSupport;
using Zvl::ClosedPolygon;
using Zvl::ConvexHull;

Points HullOf(const Points& points)
{
    return ConvexHull(points.data(), points.size());
}

TEST(ConvexHull, FewerThanFourPointsAreReturnedAsTheyAre)
{
    const Points points{{3.0, 0.0}, {1.0, 1.0}, {2.0, 0.5}};
    ExpectPoints(HullOf(points), points);
    ExpectPoints(HullOf({}), {});
}

TEST(ConvexHull, CornersRunCounterClockwiseWithoutPointsOnTheSides)
{
    ExpectPoints(
        HullOf({{0.0, 2.0}, {2.0, 2.0}, {1.0, 0.0}, {2.0, 0.0}, {0.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}, {2.0, 2.0}}),
        {{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}});
}

TEST(ConvexHull, PointsOnOneLineLeaveItsEnds)
{
    ExpectPoints(HullOf({{1.0, 1.0}, {3.0, 3.0}, {0.0, 0.0}, {2.0, 2.0}}), {{0.0, 0.0}, {3.0, 3.0}});
    ExpectPoints(HullOf(Points(5, {2.0, 1.0})), {{2.0, 1.0}, {2.0, 1.0}});
}

TEST(ConvexHull, EveryPointLiesInside)
{
    const Points points = Scattered(500, 10.0, 1);
    const Points hull = HullOf(points);
    for (std::size_t i = 0; i < hull.size(); ++i)
    {
        const qPoint64f& a = hull[i];
        const qPoint64f& b = hull[(i + 1) % hull.size()];
        for (const qPoint64f& p : points)
        {
            EXPECT_GE((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x), -1e-12);
        }
    }
}

TEST(ConvexHull, ItIsThinWhenAllCornersLieNearOneLine)
{
    EXPECT_TRUE(Zvl::IsThin({{0.0, 0.0}, {3.0, 3.0}}));
    EXPECT_TRUE(Zvl::IsThin({{2.0, 1.0}, {2.0, 1.0}}));
    EXPECT_TRUE(Zvl::IsThin({{0.0, 0.0}, {5.0, -1e-7}, {10.0, 0.0}, {6.0, 1e-7}}));
    EXPECT_FALSE(Zvl::IsThin({{0.0, 0.0}, {5.0, -2e-7}, {10.0, 0.0}}));
}

TEST(ClosedPolygon, ContainsWhatLiesBetweenItsSides)
{
    const ClosedPolygon diamond({{0.0, -2.0}, {3.0, 0.0}, {0.0, 2.0}, {-3.0, 0.0}});
    EXPECT_TRUE(diamond.Contains({0.0, 0.0})); // the ray meets the right corner, where two sides count once
    EXPECT_TRUE(diamond.Contains({1.4, 1.0}));
    EXPECT_FALSE(diamond.Contains({1.6, 1.0}));
    EXPECT_FALSE(diamond.Contains({-1.6, 1.0}));
    EXPECT_FALSE(diamond.Contains({0.0, 2.5}));
    EXPECT_FALSE(diamond.Contains({4.0, 0.0}));
    EXPECT_FALSE(diamond.Contains({-4.0, 0.0})); // two corners
    EXPECT_FALSE(diamond.Contains({std::nan(""), 0.0}));
    EXPECT_FALSE(diamond.Contains({0.0, std::nan("")}));
    EXPECT_FALSE(diamond.Contains({0.0, kInfinity}));
    EXPECT_FALSE(diamond.Contains({0.0, -kInfinity}));
}

TEST(ClosedPolygon, FlatSidesDoNotCount)
{
    const ClosedPolygon square({{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}});
    EXPECT_TRUE(square.Contains({1.0, 1.0}));
    EXPECT_TRUE(square.Contains({1.0, 0.0})); // within the tolerance of the upright sides
    EXPECT_FALSE(square.Contains({1.0, -1e-6}));
    EXPECT_FALSE(square.Contains({2.0, 1.0}));
    const ClosedPolygon line({{0.0, 0.0}, {2.0, 0.0}});
    EXPECT_FALSE(line.Contains({1.0, 0.0}));
}

/** The test by its definition, over all sides. */
bool ContainsPlainly(const Points& corners, const qPoint64f& p)
{
    std::vector<double> crossings;
    for (std::size_t i = 0; i < corners.size(); ++i)
    {
        const qPoint64f& a = corners[i];
        const qPoint64f& b = corners[(i + 1) % corners.size()];
        if (std::fabs(a.y - b.y) < Zvl::kZoneEpsilon || !(p.y > std::min(a.y, b.y) - Zvl::kZoneEpsilon) ||
            !(std::max(a.y, b.y) + Zvl::kZoneEpsilon > p.y))
        {
            continue;
        }
        const double x = (a.x - b.x) / (a.y - b.y) * (p.y - a.y) + a.x;
        if (x - p.x > Zvl::kZoneEpsilon &&
            std::none_of(crossings.begin(), crossings.end(),
                         [x](double known) { return std::fabs(x - known) < Zvl::kZoneEpsilon; }))
        {
            crossings.push_back(x);
        }
    }
    return crossings.size() % 2 == 1;
}

TEST(ClosedPolygon, TheStripsFindWhatAllSidesFind)
{
    std::mt19937_64 random(2);
    for (const std::size_t count : {4U, 10U, 100U, 3000U})
    {
        for (const double size : {1e-6, 1.0, 1e6})
        {
            Points points = LobedRing(count, 0.001, count);
            for (qPoint64f& p : points)
            {
                p = {(p.x - 25.0) * size, (p.y + 40.0) * size};
            }
            const Points hull = HullOf(points);
            const ClosedPolygon polygon(hull);
            std::uniform_real_distribution<double> coordinate(-11.0 * size, 11.0 * size);
            for (int i = 0; i < 300; ++i)
            {
                const qPoint64f corner = hull[random() % hull.size()];
                for (const qPoint64f& p : {qPoint64f{coordinate(random), coordinate(random)},
                                           {coordinate(random), corner.y},
                                           {coordinate(random), corner.y + 1e-7},
                                           corner})
                {
                    EXPECT_EQ(polygon.Contains(p), ContainsPlainly(hull, p));
                }
            }
        }
    }
}

} // namespace
