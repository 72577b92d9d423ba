#include "Fitting/CircleSpreading.h"

#include <algorithm>
#include <utility>

namespace Zvl
{

namespace
{

constexpr double kPi = 3.141592653589793;
constexpr int kMostSteps = 1000;

using Pivots = std::array<qPoint64f, 2>;

/** Two neighbours on the circle with more than half of it between them; nothing when there are none. Sorts the points on
 *  the circle by angle. */
std::optional<Pivots> FindGap(ShrinkingCircle& circle)
{
    std::vector<DistPoint>& items = circle.tempControlPoints;
    for (DistPoint& item : items)
    {
        item.value = std::atan2(item.point.y - circle.center.y, item.point.x - circle.center.x) * 180.0 / kPi;
    }
    std::sort(items.begin(), items.end(), [](const DistPoint& a, const DistPoint& b) { return a.value < b.value; });
    for (std::size_t i = 1; i < items.size(); ++i)
    {
        if (items[i].value - items[i - 1].value - 180.0 > kZoneEpsilon)
        {
            return Pivots{items[i - 1].point, items[i].point};
        }
    }
    if (items.front().value - items.back().value + 180.0 > kZoneEpsilon)
    {
        return Pivots{items.front().point, items.back().point};
    }
    return std::nullopt;
}

/** From the circle through one point to one through two, towards that point. */
ShrinkingWay WayToPoint(const ShrinkingCircle& circle)
{
    const qPoint64f pointA = circle.tempControlPoints[0].point;
    const double distance = Distance(pointA, circle.center);
    const ZoneLine line = {pointA, {(pointA.x - circle.center.x) / distance, (pointA.y - circle.center.y) / distance}};
    return {circle.center, circle.radius, circle.tempControlPoints, {pointA}, line, pointA};
}

/** From the circle through the pivots to a smaller one, along their bisector. */
ShrinkingWay WayBetween(const ShrinkingCircle& circle, const Pivots& pivots)
{
    return {circle.center,
            circle.radius,
            circle.tempControlPoints,
            {pivots[0], pivots[1]},
            Bisector(pivots[0], pivots[1]),
            Middle(pivots[0], pivots[1])};
}

Shrinking Shrink(ShrinkingCircle& circle, const ShrinkingWay& way)
{
    return Shrink(circle, way.pivots, way.line, way.limit);
}

} // namespace

ShrinkingCircle CircleAround(const qPoint64f& center, std::vector<DistPoint> items)
{
    ShrinkingCircle circle = {center, GetNull<double>(), std::move(items), {}};
    for (DistPoint& item : circle.pDistances)
    {
        item.value = Distance(item.point, center);
        circle.radius = std::max(circle.radius, item.value);
    }
    std::copy_if(circle.pDistances.begin(), circle.pDistances.end(), std::back_inserter(circle.tempControlPoints),
                 [&circle](const DistPoint& item) { return std::fabs(circle.radius - item.value) < kZoneEpsilon; });
    return circle;
}

Spreading ShrinkUntilSpread(ShrinkingCircle& circle, const InspectStep& inspect)
{
    if (circle.tempControlPoints.size() == 1)
    {
        const ShrinkingWay way = WayToPoint(circle);
        if (Shrink(circle, way) == Shrinking::Failed)
        {
            return Spreading::Stuck;
        }
        if (!inspect(way, circle))
        {
            return Spreading::Stopped;
        }
    }
    Shrinking last = Shrinking::TookUpPoint;
    for (int step = 0;; ++step)
    {
        const std::optional<Pivots> pivots = FindGap(circle);
        if (!pivots.has_value())
        {
            return last == Shrinking::CameToEnd ? Spreading::DoneOnDiameter : Spreading::Done;
        }
        // Two points at the ends of a diameter leave a gap only when they are one point.
        if (last == Shrinking::CameToEnd || step == kMostSteps)
        {
            return Spreading::Stuck;
        }
        const ShrinkingWay way = WayBetween(circle, *pivots);
        last = Shrink(circle, way);
        if (!inspect(way, circle))
        {
            return Spreading::Stopped;
        }
    }
}

} // namespace Zvl
