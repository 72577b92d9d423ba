#include "roundness/Reference.h"

#include "support/Statistics.h"
#include "support/Stopwatch.h"

#include <array>
#include <cmath>
#include <stdexcept>

namespace Roundness
{
namespace
{

Examples::Statistics Distances(const qPoint64f& center, const std::vector<qPoint64f>& points)
{
    std::vector<double> distances;
    distances.reserve(points.size());
    for (const qPoint64f& point : points)
    {
        distances.push_back(std::hypot(point.x - center.x, point.y - center.y));
    }
    return Examples::Statistics(distances);
}

/** One of four values, in the order of the kinds. */
template <typename T>
T Choose(Kind kind, const std::array<T, kKinds>& values)
{
    return values[static_cast<std::size_t>(kind)];
}

/** Where a function with a single low place within @p reach of @p middle is lowest. */
template <typename Function>
double LowestPlace(double middle, double reach, Function function)
{
    constexpr int kDivisions = 25; // to 1/25000 of the reach
    double low = middle - reach;
    double high = middle + reach;
    for (int division = 0; division < kDivisions; ++division)
    {
        const double third = (high - low) / 3.0;
        const bool isLeft = function(low + third) < function(high - third);
        low += isLeft ? 0.0 : third;
        high -= isLeft ? third : 0.0;
    }
    return (low + high) / 2.0;
}

qPoint64f Turned(const qPoint64f& point, const qPoint64f& about, double angle)
{
    const double x = point.x - about.x;
    const double y = point.y - about.y;
    return {about.x + x * std::cos(angle) - y * std::sin(angle), about.y + x * std::sin(angle) + y * std::cos(angle)};
}

/** The fit goes astray on points that lie exactly above each other, as those of one column of cells do, and is therefore
 *  given them turned. Points that lie too evenly, as on the edge of a drawn disc, may have no zone all the same. */
void FitMinimumZone(Measurement* result)
{
    constexpr double kAngle = 0.4711;  // brings no row or column in line with another
    constexpr double kRounding = 1e-6; // mm
    const qPoint64f& pivot = result->references.front().center;
    std::vector<qPoint64f> turned;
    for (const qPoint64f& point : result->kept)
    {
        turned.push_back(Turned(point, pivot, kAngle));
    }
    Reference zone{Kind::MinimumZone, {}, 0.0, 0.0, 0.0};
    try
    {
        Zvl::FitCircle(turned.data(), turned.size(), 0.0, Zvl::CIRCLE_MZC, &zone.center, &zone.inner, &zone.outer,
                       nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    catch (const Zo::Exception& error)
    {
        result->remark = std::string("\nno minimum zone is found: ") + error.what();
        return;
    }
    zone.center = Turned(zone.center, pivot, -kAngle);
    const Examples::Statistics distances = Distances(zone.center, result->kept);
    if (distances.low < zone.inner - kRounding || distances.high > zone.outer + kRounding)
    {
        result->remark = "\nno minimum zone is found that holds all points";
        return;
    }
    zone.radius = (zone.inner + zone.outer) / 2.0;
    result->references.push_back(zone);
}

} // namespace

std::string Name(Kind kind)
{
    return Choose<const char*>(kind, {"least squares", "minimum zone", "inscribed", "circumscribed"});
}

Reference SearchReference(Kind kind, const std::vector<qPoint64f>& points, const qPoint64f& start)
{
    const Examples::Statistics first = Distances(start, points);
    const double reach = first.high - first.low;
    const auto badness = [&](double x, double y)
    {
        const Examples::Statistics seen = Distances({x, y}, points);
        return Choose<double>(kind, {seen.deviation, seen.high - seen.low, -seen.low, seen.high});
    };
    const auto bestY = [&](double x) { return LowestPlace(start.y, reach, [&](double y) { return badness(x, y); }); };
    const double bestX = LowestPlace(start.x, reach, [&](double x) { return badness(x, bestY(x)); });

    const qPoint64f center{bestX, bestY(bestX)};
    const Examples::Statistics seen = Distances(center, points);
    const double radius = Choose<double>(kind, {seen.mean, (seen.low + seen.high) / 2.0, seen.low, seen.high});
    return {kind, center, radius, seen.low, seen.high};
}

Measurement MeasureRoundness(const std::vector<qPoint64f>& edge)
{
    constexpr double kOutlierPercent = 1.5;

    const Examples::Stopwatch stopwatch;
    Measurement result{};
    Reference mean{Kind::LeastSquares, {}, 0.0, 0.0, 0.0};
    Zvl::FitCircle(edge.data(), edge.size(), kOutlierPercent, Zvl::CIRCLE_LSC, &mean.center, &mean.radius, nullptr,
                   nullptr, nullptr, nullptr, nullptr, &result.kept, &result.rejected);
    if (mean.radius == Zvl::GetNull<double>())
    {
        throw std::runtime_error("no circle can be fitted: the bore has no edge");
    }
    const Examples::Statistics distances = Distances(mean.center, result.kept);
    mean.inner = distances.low;
    mean.outer = distances.high;
    result.references.push_back(mean);
    FitMinimumZone(&result);
    for (const Kind kind : {Kind::Inscribed, Kind::Circumscribed})
    {
        result.references.push_back(SearchReference(kind, result.kept, mean.center));
    }
    result.milliseconds = stopwatch.Milliseconds();
    return result;
}

} // namespace Roundness
