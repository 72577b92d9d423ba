#include "measure_bore/Features.h"

#include "support/EdgeSearch.h"
#include "support/PlaneDistance.h"
#include "support/Stopwatch.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace MeasureBore
{
namespace
{

/** A list of the cells that a region selects, as items of type T. */
template <typename T>
class SelectedCells
{
public:
    SelectedCells(const Zvl::Surface& surface, Zvl::ROI& region)
    {
        Zvl::GetPointsFromROI<T>(surface, region.GetBoundingBox(), region.GetMask(), list.Slot());
    }

    const T* begin() const { return list.Get() == nullptr ? nullptr : static_cast<const T*>(qArrayList_Data(list)); }
    const T* end() const { return begin() + size(); }
    std::size_t size() const { return list.Get() == nullptr ? 0 : qArrayList_Count(list); }

private:
    Zo::Object<void*> list;
};

/** Largest less smallest of what @p measure gives for the items. */
template <typename Items, typename Measure>
double Spread(const Items& items, Measure measure)
{
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const auto& item : items)
    {
        low = std::min(low, measure(item));
        high = std::max(high, measure(item));
    }
    return high - low;
}

std::optional<double> MeanIntensity(const Zvl::Surface& surface, Zvl::ROI& region)
{
    const SelectedCells<unsigned char> intensities(surface, region);
    if (intensities.size() == 0)
    {
        return std::nullopt;
    }
    return std::accumulate(intensities.begin(), intensities.end(), 0.0) / static_cast<double>(intensities.size());
}

/** World points half-way between the last clear and the first set cell, since the edge is that of a wall. */
std::vector<qPoint64f> EdgePoints(Zvl::ROI& ring, const Zvl::Surface& surface)
{
    const std::vector<Examples::EdgeStep> steps = Examples::FindInnerEdge(ring, surface);
    std::vector<qPoint64f> points;
    points.reserve(steps.size());
    for (const Examples::EdgeStep& step : steps)
    {
        points.push_back(Examples::PointOn(surface, step, 0.5));
    }
    return points;
}

/** Heights at which the plate is found anywhere in @p region, which is tilted like the plate. */
HeightLimits PlateHeights(Zvl::ROI& region, const qPlane3d64f& plate, double depth)
{
    const Zvl::Region2d<double>& extent = region.GetBoundingRegion();
    const double middle = Examples::PlaneHeight(plate, extent.x + extent.width / 2.0, extent.y + extent.height / 2.0);
    const double corner = Examples::PlaneHeight(plate, extent.x, extent.y);
    const double other = Examples::PlaneHeight(plate, extent.x + extent.width, extent.y);
    const double reach = depth + std::max(std::abs(corner - middle), std::abs(other - middle));
    return {middle - reach, middle + reach};
}

} // namespace

Frame::Frame(const Zvl::Surface& surface)
    : scale{surface.scale.x, surface.scale.y}, offset{surface.offset.x, surface.offset.y}
{
    Zvl::SurfaceInputData data;
    Zvl::RetrieveSurfaceInputData(surface, &data);
    width = data.width;
    height = data.height;
}

std::shared_ptr<Zvl::ROI> MakePolygon(const std::vector<qPoint64f>& corners, const Frame& frame)
{
    return std::make_shared<Zvl::PolygonROI>(corners.data(), corners.size(), frame.width, frame.height, frame.scale,
                                             frame.offset, nullptr);
}

std::shared_ptr<Zvl::ROI> MakeRing(const qPoint64f& center, double innerRadius, double outerRadius, const Frame& frame)
{
    return std::make_shared<Zvl::CircleROI>(center, innerRadius, outerRadius, 0.0, 360.0, frame.width, frame.height,
                                            frame.scale, frame.offset, nullptr);
}

MeasuredPlane MeasurePlane(const Zvl::Surface& surface, Zvl::ROI& region, const HeightLimits& limits,
                           const Percentiles& percentiles)
{
    const Examples::Stopwatch stopwatch;
    MeasuredPlane result{};
    result.region = region.DeepCopy();

    Zvl::ThresholdHeight(surface, limits.low, limits.high, region);
    const std::size_t candidates = SelectedCells<short>(surface, region).size();
    Zvl::ThresholdPercentile<double>(surface, percentiles.low, percentiles.high, region.GetBoundingBox(),
                                     region.GetMask());
    Zvl::FitPlane(surface, region.GetBoundingBox(), region.GetMask(), &result.plane);
    if (result.plane.normal.x == Zvl::GetNull<double>() || !(result.plane.normal.z > 0.0))
    {
        throw std::runtime_error("no plane can be fitted: too few heights in the region");
    }

    const SelectedCells<qPoint3d64f> points(surface, region);
    result.kept = points.size();
    result.rejected = candidates - result.kept;
    result.flatness =
        Spread(points, [&](const qPoint3d64f& point) { return Examples::PlaneDistance(result.plane, point); });
    result.intensity = MeanIntensity(surface, region);
    result.milliseconds = stopwatch.Milliseconds();
    return result;
}

MeasuredCircle MeasureCircle(const Zvl::Surface& surface, Zvl::ROI& region, const qPlane3d64f& plate, double depth)
{
    const Examples::Stopwatch stopwatch;
    MeasuredCircle result{};
    result.region = region.DeepCopy();

    const HeightLimits limits = PlateHeights(region, plate, depth);
    Zvl::ThresholdHeight(surface, limits.low, limits.high, region);
    const std::vector<qPoint64f> edge = EdgePoints(region, surface);
    Zvl::FitCircle(edge.data(), edge.size(), 10.0, Zvl::CIRCLE_LSC, &result.center, &result.radius, nullptr, nullptr,
                   nullptr, nullptr, nullptr, &result.kept, &result.rejected);
    if (result.radius == Zvl::GetNull<double>())
    {
        throw std::runtime_error("no circle can be fitted: no edge in the region");
    }
    result.roundness = Spread(result.kept, [&](const qPoint64f& point)
                              { return std::hypot(point.x - result.center.x, point.y - result.center.y); });
    result.milliseconds = stopwatch.Milliseconds();
    return result;
}

MeasuredSphere MeasureSphere(const Zvl::Surface& surface, Zvl::ROI& region, const HeightLimits& limits)
{
    const Examples::Stopwatch stopwatch;
    MeasuredSphere result{};
    result.region = region.DeepCopy();

    Zvl::ThresholdHeight(surface, limits.low, limits.high, region);
    const SelectedCells<qPoint3d64f> points(surface, region);
    Zvl::FitSphere(points.begin(), points.size(), &result.center, &result.radius, nullptr, 0.5, &result.kept,
                   &result.rejected, 10);
    if (result.radius == Zvl::GetNull<double>())
    {
        throw std::runtime_error("no sphere can be fitted: too few heights in the region");
    }
    result.milliseconds = stopwatch.Milliseconds();
    return result;
}

} // namespace MeasureBore
