#include "Fitting/OuterPoints.h"

#include "ZoneSupport.h"

#include <limits>
#include <numeric>
#include <set>
#include <utility>

namespace
{

using namespace ZoneSupport;
using Zvl::Disc;
using Zvl::DistPoint;

constexpr qPoint64f kCenter = {4.0, 6.0};

double SquareOf(const qPoint64f& p, const qPoint64f& center = kCenter)
{
    const double x = p.x - center.x;
    const double y = p.y - center.y;
    return x * x + y * y;
}

bool IsBeyondOne(const qPoint64f& p, std::span<const Disc> discs)
{
    return std::any_of(discs.begin(), discs.end(),
                       [&p](const Disc& disc)
                       { return disc.radius <= 0.0 || SquareOf(p, disc.center) >= disc.radius * disc.radius; });
}

/** Random points, and points on whole coordinates, of which many are equally far. */
Points SomePoints(std::size_t count, std::uint64_t seed)
{
    Points points = Scattered(count, 10.0, seed);
    for (qPoint64f& p : points)
    {
        p = seed % 2 == 0 ? p : qPoint64f{std::round(p.x), std::round(p.y)};
    }
    return points;
}

std::vector<std::size_t> Counts()
{
    std::vector<std::size_t> counts(40);
    std::iota(counts.begin(), counts.end(), 1);
    counts.insert(counts.end(), {100, 127, 128, 129, 255, 1000, 1023, 1025, 5001});
    return counts;
}

bool IsAmong(const qPoint64f& p, const Points& points)
{
    return std::any_of(points.begin(), points.end(), [&p](const qPoint64f& q) { return q.x == p.x && q.y == p.y; });
}

TEST(FarthestOfGroups, HoldsTheFarthestOfAllAndFewOthers)
{
    for (const std::size_t count : Counts())
    {
        const Points points = SomePoints(count, count);
        const std::vector<DistPoint> farthest = Zvl::FarthestOfGroups(points, kCenter);
        EXPECT_LE(farthest.size(), 100U);
        double largest = 0.0;
        for (const DistPoint& item : farthest)
        {
            EXPECT_TRUE(IsAmong(item.point, points));
            EXPECT_EQ(item.value, SquareOf(item.point));
            largest = std::max(largest, item.value);
        }
        double expected = 0.0;
        for (const qPoint64f& p : points)
        {
            expected = std::max(expected, SquareOf(p));
        }
        EXPECT_EQ(largest, expected);
    }
}

/** The sixths of a turn about @p middle, of which one of the points is in each. */
std::set<int> Sixths(const std::vector<DistPoint>& items, const qPoint64f& middle)
{
    std::set<int> sixths;
    for (const DistPoint& item : items)
    {
        sixths.insert(static_cast<int>(
            std::floor(std::atan2(item.point.y - middle.y, item.point.x - middle.x) * 3.0 / 3.141592653589793)));
    }
    sixths.erase(3); // half a turn itself
    return sixths;
}

TEST(OutermostPoints, ShowsOuterPointsOnAllSidesInAnyOrder)
{
    constexpr qPoint64f kMiddle = {3.0, 4.0};
    for (std::uint64_t seed = 1; seed <= 20; ++seed)
    {
        SCOPED_TRACE(seed);
        Points points = VoronoiSupport::Ring(5000, kMiddle, 5.0);
        const Points inside = Scattered(500, 1.0, seed); // nowhere near the ring
        points.insert(points.end(), inside.begin(), inside.end());
        std::mt19937_64 random(seed);
        if (seed % 2 == 0)
        {
            std::shuffle(points.begin(), points.end(), random);
        }
        const std::vector<DistPoint> farthest = Zvl::OutermostPoints(points);
        EXPECT_LE(farthest.size(), 100U);
        for (const DistPoint& item : farthest)
        {
            EXPECT_TRUE(IsAmong(item.point, points));
        }
        EXPECT_EQ(Sixths(farthest, kMiddle).size(), 6U);
    }
}

TEST(OutermostPoints, PointsThatAreOneAreTheFarthestOfAll)
{
    const Points points(1000, {1.5, -2.0});
    for (const DistPoint& item : Zvl::OutermostPoints(points))
    {
        ExpectPoints({item.point}, {points[0]});
    }
}

TEST(PointsBeyond, AreThoseOutsideOfADiscInTheirOrder)
{
    for (const std::size_t count : Counts())
    {
        const Points points = SomePoints(count, count);
        for (const double radius : {-1.0, 0.0, 1.0, 3.0, 5.0, 6.5, 20.0})
        {
            const std::vector<Disc> discs = {{{4.5, 5.0}, radius + 0.5}, {{1.0, 10.0}, 15.0}, {kCenter, radius}};
            for (const std::span<const Disc> some : {std::span(discs), std::span(discs).last(1)})
            {
                Points expected;
                std::copy_if(points.begin(), points.end(), std::back_inserter(expected),
                             [some](const qPoint64f& p) { return IsBeyondOne(p, some); });
                const auto beyond = Zvl::PointsBeyond(points, some, count);
                ASSERT_TRUE(beyond.has_value());
                Points found;
                for (const DistPoint& item : *beyond)
                {
                    EXPECT_EQ(item.value, 0.0);
                    found.push_back(item.point);
                }
                ExpectPoints(found, expected);
            }
        }
    }
}

TEST(PointsBeyond, MoreThanAreWantedGiveNothing)
{
    const Points points = Scattered(1000, 10.0, 5);
    const Disc none = {kCenter, 0.0};
    const Disc all = {kCenter, 100.0};
    EXPECT_FALSE(Zvl::PointsBeyond(points, {&none, 1}, 900).has_value());
    EXPECT_FALSE(Zvl::PointsBeyond(points, {&none, 1}, 0).has_value());
    EXPECT_TRUE(Zvl::PointsBeyond(points, {&all, 1}, 0).has_value());
}

TEST(NearestPoint, IsTheFirstOneByTheRoundedDistance)
{
    for (const std::size_t count : Counts())
    {
        Points points = SomePoints(count, count);
        if (count % 3 == 0)
        {
            points.push_back({5.0, 6.0});
            points.push_back({5.0 + 1e-16, std::nextafter(6.0, 7.0)}); // another square, but the same root
            std::swap(points[0], points.back());
        }
        const auto isNearer = [](const qPoint64f& a, const qPoint64f& b)
        { return Zvl::Distance(a, kCenter) < Zvl::Distance(b, kCenter); };
        const qPoint64f expected = *std::min_element(points.begin(), points.end(), isNearer);
        const DistPoint nearest = Zvl::NearestPoint(points, kCenter);
        ExpectPoints({nearest.point}, {expected});
        EXPECT_EQ(nearest.value, Zvl::Distance(expected, kCenter));
    }
}

} // namespace
