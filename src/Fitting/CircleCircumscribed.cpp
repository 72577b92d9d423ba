#include "Fitting/CircleCircumscribed.h"

#include "Common/Check.h"
#include "Fitting/CircleShrinking.h"
#include "Fitting/ZoneOutputs.h"

#include <algorithm>
#include <array>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitCircle_MCC";
constexpr double kPi = 3.141592653589793;
constexpr int kMostSteps = 1000;

/** The circle about the mean, through the farthest point. */
ShrinkingCircle CircleAboutMean(const qPoint64f* points, std::size_t count)
{
    ShrinkingCircle circle = {{0.0, 0.0}, GetNull<double>(), {}, {}};
    for (std::size_t i = 0; i < count; ++i)
    {
        circle.center.x += points[i].x;
        circle.center.y += points[i].y;
    }
    circle.center.x /= static_cast<double>(count);
    circle.center.y /= static_cast<double>(count);

    circle.pDistances.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const double distance = Distance(points[i], circle.center);
        circle.radius = std::max(circle.radius, distance);
        circle.pDistances.push_back({points[i], distance});
    }
    std::copy_if(circle.pDistances.begin(), circle.pDistances.end(), std::back_inserter(circle.tempControlPoints),
                 [&circle](const DistPoint& item) { return std::fabs(circle.radius - item.value) < kZoneEpsilon; });
    return circle;
}

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

/** From the circle through one point to one through two. */
void ShrinkToPoint(ShrinkingCircle& circle)
{
    const qPoint64f pointA = circle.tempControlPoints[0].point;
    const double distance = Distance(pointA, circle.center);
    const ZoneLine line = {pointA, {(pointA.x - circle.center.x) / distance, (pointA.y - circle.center.y) / distance}};
    if (Shrink(circle, {&pointA, 1}, line, pointA) == Shrinking::Failed)
    {
        ZVL_THROW(kFunction, STATUS_ABORTED);
    }
}

void ShrinkUntilSpread(ShrinkingCircle& circle)
{
    Shrinking last = Shrinking::TookUpPoint;
    for (int step = 0;; ++step)
    {
        const std::optional<Pivots> pivots = FindGap(circle);
        if (!pivots.has_value())
        {
            return;
        }
        // Two points at the ends of a diameter leave a gap only when they are one point.
        if (last == Shrinking::CameToEnd || step == kMostSteps)
        {
            ZVL_THROW(kFunction, STATUS_ABORTED);
        }
        last = Shrink(circle, *pivots, Bisector((*pivots)[0], (*pivots)[1]), Middle((*pivots)[0], (*pivots)[1]));
    }
}

} // namespace

void FitCircle_MCC(const qPoint64f* points, std::size_t count, qPoint64f* center, double* radius, double* maxDistance,
                   double* minDistance, std::vector<qPoint64f>* maxDistPoints, std::vector<qPoint64f>* minDistPoints,
                   std::vector<qPoint64f>* controlPoints)
{
    const ZoneOutputs outputs = {center, radius, maxDistance, minDistance, maxDistPoints, minDistPoints, controlPoints};
    outputs.Clear();
    if (points == nullptr || count < 3)
    {
        return;
    }
    if (count == 3)
    {
        outputs.WriteCircleThrough(points);
        return;
    }

    RequireUsablePoints(kFunction, points, count);
    ShrinkingCircle circle = CircleAboutMean(points, count);
    if (circle.tempControlPoints.size() == 1)
    {
        ShrinkToPoint(circle);
    }
    ShrinkUntilSpread(circle);

    std::vector<qPoint64f> onCircle;
    for (std::size_t i = 0; i < std::min<std::size_t>(circle.tempControlPoints.size(), 3); ++i)
    {
        onCircle.push_back(circle.tempControlPoints[i].point);
    }
    qPoint64f middle = Middle(onCircle[0], onCircle[1]);
    double distance = Distance(middle, onCircle[0]);
    if (onCircle.size() == 3)
    {
        CircleThroughPoints(onCircle.data(), &middle, &distance);
    }
    WriteTo(center, middle);
    WriteTo(radius, distance);
    WriteTo(maxDistance, distance);
    const auto nearest = std::min_element(circle.pDistances.begin(), circle.pDistances.end(),
                                          [](const DistPoint& a, const DistPoint& b) { return a.value < b.value; });
    WriteTo(minDistance, nearest->value);
    WriteTo(minDistPoints, {nearest->point});
    WriteTo(maxDistPoints, onCircle);
    WriteTo(controlPoints, onCircle);
}

} // namespace Zvl
