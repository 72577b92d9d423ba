#include "Geometry/VoronoiSites.h"

#include "Common/Check.h"
#include "Geometry/VoronoiHalfEdge.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Zvl
{

namespace
{

constexpr double kMargin = 10.0;

bool Contains(const VoronoiRect& rect, const qPoint64f& p)
{
    return p.x >= rect.min.x && p.x <= rect.max.x && p.y >= rect.min.y && p.y <= rect.max.y;
}

/** False for NaN. */
bool IsUsable(double coordinate)
{
    return std::fabs(coordinate) <= kVoronoiLargestCoordinate;
}

void CheckPoint(const qPoint64f& p, const VoronoiRect* clip)
{
    const bool isNumber = !std::isnan(p.x) && !std::isnan(p.y);
    const bool isUsed = clip == nullptr || Contains(*clip, p);
    if (!isNumber || (isUsed && !(IsUsable(p.x) && IsUsable(p.y))))
    {
        ZVL_THROW("Zvl::GenerateVoronoi", STATUS_BAD_DATA);
    }
}

/** Level strips from the lowest point to the highest, as many as there are points. */
class Strips
{
public:
    explicit Strips(std::span<const qPoint64f> points)
    {
        const auto [low, high] = std::minmax_element(points.begin(), points.end(),
                                                     [](const qPoint64f& a, const qPoint64f& b) { return a.y < b.y; });
        const double perUnit = static_cast<double>(points.size()) / (high->y - low->y);
        if (std::isfinite(high->y - low->y) && std::isfinite(perUnit)) // else all points are in the first one
        {
            lowest = low->y;
            stripsPerUnit = perUnit;
            last = static_cast<double>(points.size() - 1);
        }
    }

    /** Never falls as y rises. */
    std::size_t StripOf(double y) const
    {
        return last > 0.0 ? static_cast<std::size_t>(std::min((y - lowest) * stripsPerUnit, last)) : 0;
    }

private:
    double lowest = 0.0;
    double stripsPerUnit = 0.0;
    double last = 0.0;
};

/** The sweep order; among equal points that of the input. */
bool SortsBefore(const VoronoiSite& a, const VoronoiSite& b)
{
    const bool isSame = a.p.x == b.p.x && a.p.y == b.p.y;
    return isSame ? a.index < b.index : ComesBefore(a.p, b.p);
}

/** Puts each point into its strip, and sorts within the strips, which hold one point on average.
 *  @param ends room for a number for each point */
void SortByStrips(std::span<const qPoint64f> points, std::span<std::uint32_t> ends, std::span<VoronoiSite> sites)
{
    const Strips strips(points);
    std::fill(ends.begin(), ends.end(), 0);
    for (const qPoint64f& p : points)
    {
        ++ends[strips.StripOf(p.y)];
    }
    std::exclusive_scan(ends.begin(), ends.end(), ends.begin(), std::uint32_t{0});
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        sites[ends[strips.StripOf(points[i].y)]++] = {points[i], static_cast<std::int32_t>(i), {nullptr}};
    }
    auto begin = sites.begin();
    for (const std::uint32_t end : ends)
    {
        std::sort(begin, sites.begin() + end, SortsBefore);
        begin = sites.begin() + end;
    }
}

} // namespace

std::span<VoronoiSite> SortSites(std::span<const qPoint64f> points, const VoronoiRect* clip,
                                 std::span<std::uint32_t> room, std::span<VoronoiSite> sites)
{
    for (const qPoint64f& p : points)
    {
        CheckPoint(p, clip);
    }
    if (!points.empty())
    {
        SortByStrips(points, room, sites);
    }
    const auto isSame = [](const VoronoiSite& a, const VoronoiSite& b) { return a.p.x == b.p.x && a.p.y == b.p.y; };
    auto end = std::unique(sites.begin(), sites.end(), isSame);
    if (clip != nullptr)
    {
        end = std::remove_if(sites.begin(), end, [clip](const VoronoiSite& site) { return !Contains(*clip, site.p); });
    }
    return {sites.begin(), end};
}

VoronoiRect BoxAround(std::span<const qPoint64f> points)
{
    if (points.empty())
    {
        return {};
    }
    VoronoiRect box = {points[0], points[0]};
    for (const qPoint64f& p : points)
    {
        box.min = {std::min(box.min.x, p.x), std::min(box.min.y, p.y)};
        box.max = {std::max(box.max.x, p.x), std::max(box.max.y, p.y)};
    }
    return {{std::floor(box.min.x) - kMargin, std::floor(box.min.y) - kMargin},
            {std::ceil(box.max.x) + kMargin, std::ceil(box.max.y) + kMargin}};
}

} // namespace Zvl
