#include "Fitting/OuterPoints.h"

#include "ZoneSupport.h"

#include <numeric>

namespace
{

using namespace ZoneSupport;
using Zvl::DistPoint;

constexpr qPoint64f kCenter = {4.0, 6.0};

double SquareOf(const qPoint64f& p)
{
    const double x = p.x - kCenter.x;
    const double y = p.y - kCenter.y;
    return x * x + y * y;
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
        EXPECT_LE(farthest.size(), 200U);
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

TEST(PointsBeyond, AreThoseAtTheDistanceOrMoreInTheirOrder)
{
    for (const std::size_t count : Counts())
    {
        const Points points = SomePoints(count, count);
        for (const double distance : {-1.0, 0.0, 1.0, 3.0, 5.0, 6.5, 20.0})
        {
            Points expected;
            std::copy_if(points.begin(), points.end(), std::back_inserter(expected),
                         [distance](const qPoint64f& p)
                         { return distance <= 0.0 || SquareOf(p) >= distance * distance; });
            const auto beyond = Zvl::PointsBeyond(points, kCenter, distance, count);
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

TEST(PointsBeyond, MoreThanAreWantedGiveNothing)
{
    const Points points = Scattered(1000, 10.0, 5);
    EXPECT_FALSE(Zvl::PointsBeyond(points, kCenter, 0.0, 900).has_value());
    EXPECT_FALSE(Zvl::PointsBeyond(points, kCenter, 0.0, 0).has_value());
    EXPECT_TRUE(Zvl::PointsBeyond(points, kCenter, 100.0, 0).has_value());
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
