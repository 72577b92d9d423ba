#include "Common/ActiveEdges.h"

#include <algorithm>

namespace Zvl
{

namespace
{

bool IsCounted(double x, double left)
{
    return x - left > kGeometricTolerance;
}

} // namespace

ActiveEdges::ActiveEdges(const std::vector<Point2d<double>>& points, const std::vector<double>& rowPositions)
{
    const bool ascending = std::is_sorted(rowPositions.begin(), rowPositions.end());
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
    {
        Edge edge = {HorizontalCrossing(points[i], points[i + 1]), 0, rowPositions.size()};
        if (ascending)
        {
            RestrictRows(edge, rowPositions);
        }
        if (!edge.crossing.horizontal && edge.firstRow < edge.endRow)
        {
            byFirstRow.push_back(edges.size());
            edges.push_back(edge);
        }
    }
    std::sort(byFirstRow.begin(), byFirstRow.end(),
              [this](std::size_t a, std::size_t b) { return edges[a].firstRow < edges[b].firstRow; });
}

void ActiveEdges::CollectCrossings(std::size_t row, double y, double left, std::vector<double>& out)
{
    Activate(row);
    Cross(row, y, left);
    out.clear();
    for (const Crossing& crossing : active)
    {
        if (!IsCounted(crossing.x, left))
        {
            continue;
        }
        if (!out.empty() && crossing.x - out.back() < kGeometricTolerance)
        {
            CollectInPolygonOrder(left, out);
            return;
        }
        out.push_back(crossing.x);
    }
}

void ActiveEdges::RestrictRows(Edge& edge, const std::vector<double>& rowPositions)
{
    const auto first = std::partition_point(rowPositions.begin(), rowPositions.end(),
                                            [&](double y) { return !(y > edge.crossing.above); });
    const auto end = std::partition_point(first, rowPositions.end(), [&](double y) { return edge.crossing.below > y; });
    edge.firstRow = static_cast<std::size_t>(first - rowPositions.begin());
    edge.endRow = static_cast<std::size_t>(end - rowPositions.begin());
}

void ActiveEdges::Activate(std::size_t row)
{
    while (next < byFirstRow.size() && edges[byFirstRow[next]].firstRow <= row)
    {
        active.push_back({byFirstRow[next++], 0.0});
    }
}

/** Moves all active edges on to their crossings with this row, ascending, and drops those that end before it. An edge
 *  without a crossing that counts is put at @p left. */
void ActiveEdges::Cross(std::size_t row, double y, double left)
{
    std::size_t kept = 0;
    for (const Crossing& previous : active)
    {
        const Edge& edge = edges[previous.edge];
        if (edge.endRow <= row)
        {
            continue;
        }
        const double x = edge.crossing.At(y);
        const Crossing crossing = {previous.edge, edge.crossing.Reaches(y) && IsCounted(x, left) ? x : left};
        std::size_t place = kept++;
        for (; place > 0 && active[place - 1].x > crossing.x; --place)
        {
            active[place] = active[place - 1];
        }
        active[place] = crossing;
    }
    active.resize(kept);
}

/** Of crossings that fall together, the first in the polygon's order is the one that stays. */
void ActiveEdges::CollectInPolygonOrder(double left, std::vector<double>& out)
{
    ordered = active;
    std::sort(ordered.begin(), ordered.end(), [](const Crossing& a, const Crossing& b) { return a.edge < b.edge; });
    out.clear();
    for (const Crossing& crossing : ordered)
    {
        if (IsCounted(crossing.x, left))
        {
            InsertDistinct(crossing.x, out);
        }
    }
}

} // namespace Zvl
