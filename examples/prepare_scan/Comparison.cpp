#include "prepare_scan/Comparison.h"

#include "support/HeightMap.h"
#include "support/RegionMaker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <vector>

namespace PrepareScan
{
namespace
{

constexpr double kUnlimited = std::numeric_limits<double>::infinity();

/** All points of @p surface that have a height between two limits. */
std::vector<qPoint3d64f> PointsBetween(const Zvl::Surface& surface, double low, double high)
{
    const auto region = Examples::RegionMaker(surface).Whole();
    Zvl::ThresholdHeight(surface, low, high, *region);
    Zo::Object<void*> list;
    Zvl::GetPointsFromROI<qPoint3d64f>(surface, region->GetBoundingBox(), region->GetMask(), list.Slot());
    if (list.Get() == nullptr || qArrayList_Count(list) == 0)
    {
        return {};
    }
    const auto* first = static_cast<const qPoint3d64f*>(qArrayList_Data(list));
    return {first, first + qArrayList_Count(list)};
}

double Rms(const std::vector<qPoint3d64f>& points)
{
    double squares = 0.0;
    for (const qPoint3d64f& point : points)
    {
        squares += point.z * point.z;
    }
    return std::sqrt(squares / static_cast<double>(points.size()));
}

/** The largest deviation among points that are out of tolerance, and the middle of those near it. */
std::optional<Flaw> LargestFlaw(const std::vector<qPoint3d64f>& points, double reach)
{
    const auto peak =
        std::max_element(points.begin(), points.end(),
                         [](const qPoint3d64f& a, const qPoint3d64f& b) { return std::abs(a.z) < std::abs(b.z); });
    if (peak == points.end())
    {
        return std::nullopt;
    }
    qPoint64f sum{0.0, 0.0};
    double count = 0.0;
    for (const qPoint3d64f& point : points)
    {
        if (std::hypot(point.x - peak->x, point.y - peak->y) <= reach)
        {
            sum.x += point.x;
            sum.y += point.y;
            count += 1.0;
        }
    }
    return Flaw{{sum.x / count, sum.y / count}, peak->z};
}

} // namespace

Comparison Compare(const Task& task)
{
    constexpr double kReach = 15.0; // cells
    const Preparation prepared(task.scan);
    const Step difference = Difference(prepared.decimated.surface, task.golden);
    const std::vector<qPoint3d64f> all = PointsBetween(difference.surface, -kUnlimited, kUnlimited);
    if (all.empty())
    {
        throw std::runtime_error("too few cells have a height in both the scan and the golden surface");
    }
    const double rms = Rms(all);
    const double rounding = 2.0 * difference.surface.scale.z; // less than this is no deviation
    const double limit = task.limit.value_or(std::max(3.0 * rms, rounding));
    const std::vector<qPoint3d64f> low = PointsBetween(difference.surface, -kUnlimited, -limit);
    const std::vector<qPoint3d64f> high = PointsBetween(difference.surface, limit, kUnlimited);
    const double reach = kReach * std::max(difference.surface.scale.x, difference.surface.scale.y);
    return {prepared,
            difference,
            rms,
            limit,
            low.size() + high.size(),
            reach,
            LargestFlaw(low, reach),
            LargestFlaw(high, reach)};
}

} // namespace PrepareScan
