#include "Fitting/CircleCircumscribed.h"

#include "Common/Check.h"
#include "Fitting/CircleAroundFew.h"
#include "Fitting/OuterPoints.h"
#include "Fitting/ZoneOutputs.h"
#include "Utils/MeanOfPoints.h"

#include <algorithm>
#include <cmath>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitCircle_MCC";
constexpr std::size_t kManyPoints = 128; // of fewer than that, most matter

/** The smallest circle around the points. */
struct EnclosingCircle
{
    std::vector<qPoint64f> onCircle; ///< up to three points
    std::optional<DistPoint> nearest;
};

std::vector<qPoint64f> FirstThree(const std::vector<DistPoint>& items)
{
    std::vector<qPoint64f> points;
    for (std::size_t i = 0; i < std::min<std::size_t>(items.size(), 3); ++i)
    {
        points.push_back(items[i].point);
    }
    return points;
}

/** True when the distance of the nearest point is what the last step has left for it: the points that define the circle
 *  count as the radius away, whatever rounding says. */
bool IsInside(const DistPoint& nearest, const ShrinkingCircle& circle)
{
    return nearest.value < circle.radius &&
           std::all_of(circle.tempControlPoints.begin(), circle.tempControlPoints.end(),
                       [&](const DistPoint& item) { return nearest.value < Distance(item.point, circle.center); });
}

/** With the few points that matter, when they can be told from the others. The nearest one is then known unless the
 *  circle came to its end between two points, where the circles that were tried in vain leave their distances. */
std::optional<EnclosingCircle> EncloseByFew(std::span<const qPoint64f> points, const qPoint64f& mean,
                                            std::vector<DistPoint> outer, bool wantsNearest)
{
    const std::optional<ShrinkingCircle> circle = SpreadAroundFew(points, mean, std::move(outer));
    if (!circle.has_value() || (wantsNearest && circle->tempControlPoints.size() == 2))
    {
        return std::nullopt;
    }
    EnclosingCircle enclosing = {FirstThree(circle->tempControlPoints), std::nullopt};
    if (wantsNearest)
    {
        enclosing.nearest = NearestPoint(points, circle->center);
        if (!IsInside(*enclosing.nearest, *circle))
        {
            return std::nullopt;
        }
    }
    return enclosing;
}

EnclosingCircle EncloseByAll(std::span<const qPoint64f> points, const qPoint64f& mean)
{
    std::vector<DistPoint> items;
    items.reserve(points.size());
    for (const qPoint64f& point : points)
    {
        items.push_back({point, 0.0});
    }
    ShrinkingCircle circle = CircleAround(mean, std::move(items));
    const auto goOn = [](const ShrinkingWay& /*way*/, const ShrinkingCircle& /*reached*/) { return true; };
    if (ShrinkUntilSpread(circle, goOn) == Spreading::Stuck)
    {
        ZVL_THROW(kFunction, STATUS_ABORTED);
    }
    const auto nearest = std::min_element(circle.pDistances.begin(), circle.pDistances.end(),
                                          [](const DistPoint& a, const DistPoint& b) { return a.value < b.value; });
    return {FirstThree(circle.tempControlPoints), *nearest};
}

/** True when no coordinate can be other than IsUsable() wants it: all points are as near to the places that groups look
 *  from as the outermost ones, and a coordinate that is not a number would leave no mean.
 *  @param outer as OutermostPoints() gives them */
bool AreSurelyUsable(std::span<const DistPoint> outer, const qPoint64f& mean)
{
    constexpr double kLargest = kVoronoiLargestCoordinate / 10.0;
    constexpr double kLargestSquare = kLargest * kLargest / 100.0;
    return mean.x == mean.x && mean.y == mean.y &&
           std::all_of(outer.begin(), outer.end(),
                       [](const DistPoint& item) {
                           return std::fabs(item.point.x) <= kLargest && std::fabs(item.point.y) <= kLargest &&
                                  item.value <= kLargestSquare;
                       });
}

/** @throws Zo::Exception #STATUS_BAD_DATA when a coordinate is not a number or too large */
EnclosingCircle Enclose(std::span<const qPoint64f> points, bool wantsNearest)
{
    const qPoint64f mean = MeanOfPoints(points);
    if (points.size() < kManyPoints)
    {
        RequireUsablePoints(kFunction, points.data(), points.size());
        return EncloseByAll(points, mean);
    }
    std::vector<DistPoint> outer = OutermostPoints(points);
    if (!AreSurelyUsable(outer, mean))
    {
        RequireUsablePoints(kFunction, points.data(), points.size());
    }
    if (auto circle = EncloseByFew(points, mean, std::move(outer), wantsNearest))
    {
        return std::move(*circle);
    }
    return EncloseByAll(points, mean);
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

    const bool wantsNearest = minDistance != nullptr || minDistPoints != nullptr;
    const EnclosingCircle circle = Enclose({points, count}, wantsNearest);
    const std::vector<qPoint64f>& onCircle = circle.onCircle;
    qPoint64f middle = Middle(onCircle[0], onCircle[1]);
    double distance = Distance(middle, onCircle[0]);
    if (onCircle.size() == 3)
    {
        CircleThroughPoints(onCircle.data(), &middle, &distance);
    }
    WriteTo(center, middle);
    WriteTo(radius, distance);
    WriteTo(maxDistance, distance);
    if (wantsNearest)
    {
        WriteTo(minDistance, circle.nearest->value);
        WriteTo(minDistPoints, {circle.nearest->point});
    }
    WriteTo(maxDistPoints, onCircle);
    WriteTo(controlPoints, onCircle);
}

} // namespace Zvl
