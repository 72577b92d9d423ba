#pragma once

/** @file
 *  Sites of many kinds, and what every Voronoi diagram must fulfil. */

#include "Geometry/Voronoi.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace VoronoiSupport
{

using Points = std::vector<qPoint64f>;

/** A diagram with its vertex graph. */
class Diagram
{
public:
    explicit Diagram(const Points& points, const Zvl::VoronoiRect* clip = nullptr)
    {
        Zvl::GenerateVoronoi(static_cast<std::int32_t>(points.size()), points.data(), clip, owner.Get());
        Zvl::BuildVoronoiVertices(owner.Get());
        for (const Zvl::VoronoiVertex* v = Zvl::FirstVoronoiVertex(owner.Get()); v != nullptr; v = v->next)
        {
            if (v->edges != nullptr)
            {
                vertices.push_back(v);
            }
        }
    }

    const Zvl::VoronoiDiagram& Get() { return *owner.Get(); }
    std::span<const Zvl::VoronoiSite> Sites() { return Zvl::SitesOf(Get()); }
    /** The vertices that were not merged into others. */
    const std::vector<const Zvl::VoronoiVertex*>& Vertices() const { return vertices; }

    bool IsInside(const qPoint64f& p, double margin)
    {
        return p.x > Get().min.x + margin && p.x < Get().max.x - margin && p.y > Get().min.y + margin &&
               p.y < Get().max.y - margin;
    }

private:
    Zvl::VoronoiOwner owner;
    std::vector<const Zvl::VoronoiVertex*> vertices;
};

template <typename Link>
std::size_t LengthOf(const Link* first)
{
    std::size_t length = 0;
    for (; first != nullptr; first = first->next)
    {
        ++length;
    }
    return length;
}

inline double Distance(const qPoint64f& a, const qPoint64f& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

inline double NearestSite(const qPoint64f& p, std::span<const Zvl::VoronoiSite> sites)
{
    double nearest = Distance(p, sites[0].p);
    for (const Zvl::VoronoiSite& site : sites)
    {
        nearest = std::min(nearest, Distance(p, site.p));
    }
    return nearest;
}

inline double TwiceArea(const qPoint64f& a, const qPoint64f& b, const qPoint64f& c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/** Each cell is a chain of edges that runs around its site, and all cells together fill the box. */
inline void ExpectClosedCells(Diagram& diagram, double tolerance)
{
    double twiceArea = 0.0;
    for (const Zvl::VoronoiSite& site : diagram.Sites())
    {
        ASSERT_NE(site.edges, nullptr);
        for (const Zvl::VoronoiGraphEdge* edge = site.edges; edge != nullptr; edge = edge->next)
        {
            const Zvl::VoronoiGraphEdge& next = edge->next != nullptr ? *edge->next : *site.edges;
            ASSERT_LE(Distance(edge->pos[1], next.pos[0]), tolerance) << "at site " << site.index;
            ASSERT_EQ(edge->edge->sites[0] == &site ? edge->edge->sites[1] : edge->edge->sites[0], edge->neighbor);
            const double part = TwiceArea(site.p, edge->pos[0], edge->pos[1]);
            ASSERT_GE(part, -tolerance * (1.0 + Distance(edge->pos[0], edge->pos[1])));
            twiceArea += part;
        }
    }
    const qPoint64f min = diagram.Get().min;
    const qPoint64f max = diagram.Get().max;
    const double box = (max.x - min.x) * (max.y - min.y);
    EXPECT_NEAR(twiceArea / 2.0, box, box * 1e-9 + tolerance * (max.x - min.x + max.y - min.y));
}

/** Each vertex inside of the box is equally far from all sites around it, and no site is nearer.
 *  @param step every how many vertices one is compared with all sites */
inline void ExpectEmptyCircles(Diagram& diagram, double tolerance, std::size_t step = 1)
{
    std::size_t number = 0;
    for (const Zvl::VoronoiVertex* vertex : diagram.Vertices())
    {
        if (!diagram.IsInside(vertex->pos, tolerance))
        {
            continue;
        }
        const double radius = Distance(vertex->pos, vertex->edges->edge->sites[0]->p);
        EXPECT_GE(LengthOf(vertex->edges), 3U);
        for (const Zvl::VoronoiVertexEdge* edge = vertex->edges; edge != nullptr; edge = edge->next)
        {
            for (const Zvl::VoronoiSite* site : edge->edge->sites)
            {
                ASSERT_NE(site, nullptr);
                ASSERT_NEAR(Distance(vertex->pos, site->p), radius, tolerance);
            }
        }
        if (number++ % step == 0)
        {
            ASSERT_GE(NearestSite(vertex->pos, diagram.Sites()), radius - tolerance);
        }
    }
}

/** Vertices, edges and cells of the graph, the outside counted as a cell, are those of a connected planar graph; and
 *  both ends of each edge know it. */
inline void ExpectPlanarGraph(Diagram& diagram)
{
    std::size_t ends = 0;
    for (const Zvl::VoronoiVertex* vertex : diagram.Vertices())
    {
        for (const Zvl::VoronoiVertexEdge* edge = vertex->edges; edge != nullptr; edge = edge->next)
        {
            ++ends;
            ASSERT_NE(edge->neighbor->edges, nullptr) << "the neighbour was merged into another vertex";
            const auto& vertices = edge->edge->vertices;
            ASSERT_TRUE((vertices[0] == vertex && vertices[1] == edge->neighbor) ||
                        (vertices[1] == vertex && vertices[0] == edge->neighbor));
        }
    }
    ASSERT_EQ(ends % 2, 0U);
    const auto vertices = static_cast<std::int64_t>(diagram.Vertices().size());
    const auto edges = static_cast<std::int64_t>(ends / 2);
    const auto cells = static_cast<std::int64_t>(diagram.Sites().size()) + 1;
    EXPECT_EQ(vertices - edges + cells, 2);
}

inline Points RandomSites(std::size_t count, double size, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> coordinate(0.0, size);
    Points points(count);
    for (qPoint64f& p : points)
    {
        p = {coordinate(random), coordinate(random)};
    }
    return points;
}

inline Points Ring(std::size_t count, qPoint64f center, double radius)
{
    Points points(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
        points[i] = {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
    }
    return points;
}

/** Columns times rows, one apart. */
inline Points Grid(int columns, int rows)
{
    Points points;
    for (int y = 0; y < rows; ++y)
    {
        for (int x = 0; x < columns; ++x)
        {
            points.push_back({static_cast<double>(x), static_cast<double>(y)});
        }
    }
    return points;
}

/** @p count points from the origin on, @p step apart. */
inline Points Line(std::size_t count, qPoint64f step)
{
    Points points(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        points[i] = {step.x * static_cast<double>(i), step.y * static_cast<double>(i)};
    }
    return points;
}

} // namespace VoronoiSupport
