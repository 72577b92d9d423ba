#include "Fitting/ZoneHull.h"

#include <algorithm>

namespace Zvl
{

namespace
{

double Cross(const qPoint64f& origin, const qPoint64f& a, const qPoint64f& b)
{
    return (a.x - origin.x) * (b.y - origin.y) - (a.y - origin.y) * (b.x - origin.x);
}

/** Appends a corner, after dropping those that it puts on the hull or inside.
 *  @param fixed corners at the beginning that stay */
void AddCorner(std::vector<qPoint64f>& hull, std::size_t fixed, const qPoint64f& corner)
{
    while (hull.size() > fixed && !(Cross(hull[hull.size() - 2], hull.back(), corner) > 0.0))
    {
        hull.pop_back();
    }
    hull.push_back(corner);
}

} // namespace

std::vector<qPoint64f> ConvexHull(const qPoint64f* points, std::size_t count)
{
    std::vector<qPoint64f> sorted(points, points + count);
    if (count < 4)
    {
        return sorted;
    }
    std::sort(sorted.begin(), sorted.end(),
              [](const qPoint64f& a, const qPoint64f& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; });
    std::vector<qPoint64f> hull;
    for (const qPoint64f& point : sorted)
    {
        AddCorner(hull, 1, point);
    }
    const std::size_t lower = hull.size();
    for (auto point = sorted.rbegin() + 1; point != sorted.rend(); ++point)
    {
        AddCorner(hull, lower, *point);
    }
    hull.pop_back(); // the first point once more
    return hull;
}

bool IsThin(const std::vector<qPoint64f>& hull)
{
    const auto nearer = [&hull](const qPoint64f& a, const qPoint64f& b)
    { return Distance(hull[0], a) < Distance(hull[0], b); };
    const qPoint64f& farthest = *std::max_element(hull.begin(), hull.end(), nearer);
    const double length = Distance(hull[0], farthest);
    return std::all_of(hull.begin(), hull.end(),
                       [&](const qPoint64f& corner)
                       { return std::fabs(Cross(hull[0], farthest, corner)) <= kZoneEpsilon * length; });
}

ClosedPolygon::ClosedPolygon(const std::vector<qPoint64f>& corners) : lowest(corners[0].y)
{
    double highest = lowest;
    for (std::size_t i = 0; i < corners.size(); ++i)
    {
        const Side side = {corners[i], corners[(i + 1) % corners.size()]};
        lowest = std::min(lowest, side.begin.y);
        highest = std::max(highest, side.begin.y);
        if (!(std::fabs(side.begin.y - side.end.y) < kZoneEpsilon))
        {
            sides.push_back(side);
        }
    }
    strips.resize(sides.size() + 1);
    stripsPerUnit = highest > lowest ? static_cast<double>(sides.size()) / (highest - lowest) : 0.0;
    for (std::size_t i = 0; i < sides.size(); ++i)
    {
        const auto [low, high] = std::minmax(sides[i].begin.y, sides[i].end.y);
        for (std::size_t strip = StripOf(low - kZoneEpsilon); strip <= StripOf(high + kZoneEpsilon); ++strip)
        {
            strips[strip].push_back(i);
        }
    }
}

/** Never falls as y rises. */
std::size_t ClosedPolygon::StripOf(double y) const
{
    const double strip = (y - lowest) * stripsPerUnit;
    const double last = static_cast<double>(strips.size() - 1);
    return strip > 0.0 ? static_cast<std::size_t>(std::min(strip, last)) : 0;
}

bool ClosedPolygon::Contains(const qPoint64f& p) const
{
    std::vector<double> intersectXs;
    for (const std::size_t index : strips[StripOf(p.y)])
    {
        const auto& [a, b] = sides[index];
        const auto [low, high] = std::minmax(a.y, b.y);
        if (!(p.y > low - kZoneEpsilon && high + kZoneEpsilon > p.y))
        {
            continue;
        }
        const double x = (a.x - b.x) / (a.y - b.y) * (p.y - a.y) + a.x;
        const bool isKnown = std::any_of(intersectXs.begin(), intersectXs.end(),
                                         [x](double known) { return std::fabs(x - known) < kZoneEpsilon; });
        if (x - p.x > kZoneEpsilon && !isKnown)
        {
            intersectXs.push_back(x);
        }
    }
    return intersectXs.size() % 2 == 1;
}

} // namespace Zvl
