#pragma once

/** @file
 *  The defining loops of convex chains and turned bounds, in 32 and 64 bits without any short cut, and short ways to
 *  chains. */

#include "Geometry/ConvexChain.h"
#include "support/Surfaces.h"

#include <cmath>
#include <limits>
#include <ostream>
#include <vector>

inline bool operator==(const qPoint32s& a, const qPoint32s& b)
{
    return a.x == b.x && a.y == b.y;
}

inline void PrintTo(const qPoint32s& point, std::ostream* out)
{
    *out << '(' << point.x << ", " << point.y << ')';
}

namespace PlainBounds
{

using Points = std::vector<qPoint32s>;

inline Zo::Object<void*> MakeChain(const Points& points, void* allocator = nullptr)
{
    Zo::Object<void*> chain;
    Zo::Test(qArrayList_Construct(chain.Slot(), xxqPoint32s_type, points.size(), allocator));
    Zo::Test(qArrayList_Import(chain, points.data(), points.size()));
    return chain;
}

inline Points PointsIn(void* chain)
{
    const auto points = Zvl::PointsOf(chain);
    return {points.begin(), points.end()};
}

inline void AddToChain(Points& chain, const qPoint32s& p, bool left)
{
    while (chain.size() >= 2)
    {
        const qPoint32s a = chain[chain.size() - 2];
        const qPoint32s b = chain[chain.size() - 1];
        const int d1y = b.y - a.y;
        const int d2y = p.y - a.y;
        const int d1x = left ? a.x - b.x : b.x - a.x;
        const int d2x = left ? a.x - p.x : p.x - a.x;
        if (d1y * d2x < d2y * d1x)
        {
            break;
        }
        chain.pop_back();
    }
    chain.push_back(p);
}

/** A turned rectangle; null when there is none. */
struct Box
{
    double center[2] = {TestSupport::kNull, TestSupport::kNull};
    double size[2] = {TestSupport::kNull, TestSupport::kNull};
    double angle = TestSupport::kNull;
};

/** The projections of all points on all 1800 directions. */
struct Search
{
    std::vector<std::int64_t> minimum = std::vector<std::int64_t>(1800, std::numeric_limits<std::int64_t>::max());
    std::vector<std::int64_t> maximum = std::vector<std::int64_t>(1800, -std::numeric_limits<std::int64_t>::max());

    static std::int64_t Round(double value)
    {
        return static_cast<std::int64_t>(value > 0.0 ? value + 0.5 : value - 0.5);
    }

    static double Radians(int i) { return i * (180.0 / 1800) * 3.141592653589793 / 180.0; }

    Search(const Points& points, const qPoint64f& scale)
    {
        const double f = 10.0 / scale.x;
        for (std::size_t i = 0; i < 1800; ++i)
        {
            const double angle = Radians(static_cast<int>(i));
            const std::int64_t cosine = Round(scale.x * f * 8192.0 * std::cos(angle));
            const std::int64_t sine = Round(scale.y * f * 8192.0 * std::sin(angle));
            for (const qPoint32s& p : points)
            {
                if (p.x != std::numeric_limits<int>::min() && p.y != std::numeric_limits<int>::min())
                {
                    minimum[i] = std::min(minimum[i], p.x * cosine + p.y * sine);
                    maximum[i] = std::max(maximum[i], p.x * cosine + p.y * sine);
                }
            }
        }
    }

    std::int64_t Area(int direction) const
    {
        const auto i = static_cast<std::size_t>(direction);
        return (maximum[i] - minimum[i]) * (maximum[i + 900] - minimum[i + 900]);
    }

    /** Coarse directions first, then those around the best. */
    int Best() const
    {
        int best = 0;
        for (int i = 0; i < 900; i += 10)
        {
            best = Area(i) < Area(best) ? i : best;
        }
        const int from = best - 9;
        const int to = best + 10;
        for (int i = from; i < to; ++i)
        {
            const int j = i < 0 ? i + 900 : i;
            best = Area(j) < Area(best) ? j : best;
        }
        return best;
    }
};

inline Box BoundsOf(const Points& points, const qPoint64f& offset, const qPoint64f& scale)
{
    Box box;
    const Search search(points, scale);
    if (search.minimum[0] > search.maximum[0])
    {
        return box;
    }
    const double f = 10.0 / scale.x;
    const int a = search.Best();
    const int b = a + 900;
    const double ca = std::cos(Search::Radians(a));
    const double sa = std::sin(Search::Radians(a));
    const double cb = std::cos(Search::Radians(b));
    const double sb = std::sin(Search::Radians(b));
    const auto extent = [&](int i)
    {
        const auto at = static_cast<std::size_t>(i);
        return static_cast<double>(search.maximum[at] - search.minimum[at]) / (8192.0 * f);
    };
    const auto middle = [&](int i)
    {
        const auto at = static_cast<std::size_t>(i);
        return static_cast<double>(search.maximum[at] + search.minimum[at]) / (16384.0 * f);
    };
    const double ea = extent(a) + (a != 0 ? std::min(scale.x / ca, scale.y / sa) : scale.x);
    const double eb = extent(b) + (a != 0 ? std::min(-scale.x / cb, scale.y / sb) : scale.y);
    box.angle = (ea >= eb ? a : b) * 0.1;
    box.size[0] = ea >= eb ? eb : ea;
    box.size[1] = ea >= eb ? ea : eb;
    const double cx = (middle(a) * sb - middle(b) * sa) / (ca * sb - cb * sa);
    const double cy = std::fabs(sa) > std::fabs(sb) ? (middle(a) - cx * ca) / sa : (middle(b) - cx * cb) / sb;
    box.center[0] = cx + offset.x;
    box.center[1] = cy + offset.y;
    return box;
}

inline void ExpectSameBox(const Box& box, const Box& expected)
{
    EXPECT_EQ(box.center[0], expected.center[0]);
    EXPECT_EQ(box.center[1], expected.center[1]);
    EXPECT_EQ(box.size[0], expected.size[0]);
    EXPECT_EQ(box.size[1], expected.size[1]);
    EXPECT_EQ(box.angle, expected.angle);
}

inline void ExpectNearBox(const Box& box, const Box& expected, double tolerance)
{
    EXPECT_NEAR(box.center[0], expected.center[0], tolerance);
    EXPECT_NEAR(box.center[1], expected.center[1], tolerance);
    EXPECT_NEAR(box.size[0], expected.size[0], tolerance);
    EXPECT_NEAR(box.size[1], expected.size[1], tolerance);
    EXPECT_NEAR(box.angle, expected.angle, 1e-9);
}

} // namespace PlainBounds
