#include "Fitting/CircleInscribed.h"

#include "Common/Check.h"
#include "Fitting/ZoneHull.h"
#include "Fitting/ZoneOutputs.h"
#include "Geometry/Voronoi.h"

#include <algorithm>
#include <limits>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitCircle_MIC";

/** A vertex and its distance from the sites around it. */
struct EmptyCircle
{
    const VoronoiVertex* vertex = nullptr;
    double radius = GetNull<double>();
};

EmptyCircle LargestEmptyCircle(const VoronoiDiagram& diagram, const ClosedPolygon& hull)
{
    EmptyCircle largest;
    for (const VoronoiVertex* vertex = FirstVoronoiVertex(&diagram); vertex != nullptr; vertex = vertex->next)
    {
        if (vertex->edges == nullptr)
        {
            continue;
        }
        const double radius = Distance(vertex->pos, vertex->edges->edge->sites[0]->p);
        if (radius > largest.radius && hull.Contains(vertex->pos))
        {
            largest = {vertex, radius};
        }
    }
    return largest;
}

/** The sites of the first three edges of a vertex. */
std::vector<qPoint64f> SitesAround(const VoronoiVertex& vertex)
{
    std::vector<qPoint64f> points;
    const VoronoiVertexEdge* edge = vertex.edges;
    for (int i = 0; i < 3 && edge != nullptr; ++i, edge = edge->next)
    {
        for (const VoronoiSite* site : edge->edge->sites)
        {
            const auto isSame = [site](const qPoint64f& p) { return p.x == site->p.x && p.y == site->p.y; };
            if (site != nullptr && std::none_of(points.begin(), points.end(), isSame))
            {
                points.push_back(site->p);
            }
        }
    }
    return points;
}

struct Extremes
{
    DistPoint nearest;
    DistPoint farthest;
};

/** The first of the nearest points and the last of the farthest ones, with their squared distances. */
Extremes ExtremesFrom(const qPoint64f& center, const qPoint64f* points, std::size_t count)
{
    Extremes extremes = {{points[0], std::numeric_limits<double>::infinity()}, {points[0], 0.0}};
    for (std::size_t i = 0; i < count; ++i)
    {
        const double x = points[i].x - center.x;
        const double y = points[i].y - center.y;
        const double squared = x * x + y * y;
        if (squared < extremes.nearest.value)
        {
            extremes.nearest = {points[i], squared};
        }
        if (squared >= extremes.farthest.value)
        {
            extremes.farthest = {points[i], squared};
        }
    }
    return extremes;
}

} // namespace

void FitCircle_MIC(const qPoint64f* points, std::size_t count, qPoint64f* center, double* radius, double* maxDistance,
                   double* minDistance, std::vector<qPoint64f>* maxDistPoints, std::vector<qPoint64f>* minDistPoints,
                   std::vector<qPoint64f>* controlPoints)
{
    const ZoneOutputs outputs = {center, radius, maxDistance, minDistance, maxDistPoints, minDistPoints, controlPoints};
    outputs.Clear();
    if (points == nullptr || count < 2)
    {
        return;
    }
    if (count == 2)
    {
        const qPoint64f middle = Middle(points[0], points[1]);
        outputs.WriteAll(middle, Distance(middle, points[0]), {points[0], points[1]});
        return;
    }
    if (count == 3)
    {
        outputs.WriteCircleThrough(points);
        return;
    }

    RequireUsablePoints(kFunction, points, count);
    ZVL_REQUIRE(kFunction, count <= static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()));
    const std::vector<qPoint64f> corners = ConvexHull(points, count);
    if (IsThin(corners))
    {
        return; // no vertex is inside
    }
    const ClosedPolygon hull(corners);
    VoronoiOwner diagram;
    GenerateVoronoi(static_cast<std::int32_t>(count), points, nullptr, diagram.Get());
    BuildVoronoiVertices(diagram.Get());
    const EmptyCircle largest = LargestEmptyCircle(*diagram.Get(), hull);
    if (largest.vertex == nullptr)
    {
        return;
    }
    if (controlPoints != nullptr || minDistPoints != nullptr)
    {
        const std::vector<qPoint64f> sites = SitesAround(*largest.vertex);
        if (sites.size() != 3)
        {
            ZVL_THROW(kFunction, STATUS_ABORTED);
        }
        WriteTo(controlPoints, sites);
        WriteTo(minDistPoints, sites);
    }
    const Extremes extremes = ExtremesFrom(largest.vertex->pos, points, count);
    WriteTo(maxDistance, std::sqrt(extremes.farthest.value));
    WriteTo(minDistance, std::sqrt(extremes.nearest.value));
    WriteTo(maxDistPoints, {extremes.farthest.point});
    WriteTo(radius, largest.radius);
    WriteTo(center, largest.vertex->pos);
}

} // namespace Zvl
