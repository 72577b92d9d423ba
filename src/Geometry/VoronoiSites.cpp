#include "Geometry/VoronoiSites.h"

#include "Common/Check.h"
#include "Geometry/VoronoiHalfEdge.h"

#include <algorithm>
#include <cmath>

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

} // namespace

std::span<VoronoiSite> SortSites(std::span<const qPoint64f> points, const VoronoiRect* clip,
                                 std::span<VoronoiSite> sites)
{
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        CheckPoint(points[i], clip);
        sites[i] = {points[i], static_cast<std::int32_t>(i), {nullptr}};
    }
    std::sort(sites.begin(), sites.end(),
              [](const VoronoiSite& a, const VoronoiSite& b) { return ComesBefore(a.p, b.p); });
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
