#include "Geometry/VoronoiCells.h"

#include "Geometry/VoronoiClip.h"

#include <cmath>

namespace Zvl
{

namespace
{

constexpr double kFullTurn = 6.2831854820251465; // 2 pi in single precision

/** The edges of two sorted lists as one. The first list wins among equals. */
VoronoiGraphEdge* Merge(VoronoiGraphEdge* first, VoronoiGraphEdge* second)
{
    VoronoiGraphEdge* merged = nullptr;
    VoronoiGraphEdge** last = &merged;
    while (first != nullptr && second != nullptr)
    {
        VoronoiGraphEdge*& next = second->angle < first->angle ? second : first;
        *last = next;
        last = &next->next;
        next = next->next;
    }
    *last = first != nullptr ? first : second;
    return merged;
}

/** Sorts the first @p count edges of a list, and cuts them off it.
 *  @param rest becomes the first edge behind them */
VoronoiGraphEdge* Sort(VoronoiGraphEdge* first, std::size_t count, VoronoiGraphEdge*& rest)
{
    if (count == 1)
    {
        rest = first->next;
        first->next = nullptr;
        return first;
    }
    VoronoiGraphEdge* middle = nullptr;
    VoronoiGraphEdge* left = Sort(first, count / 2, middle);
    return Merge(left, Sort(middle, count - count / 2, rest));
}

/** The edge as the site on one side of it sees it. */
VoronoiGraphEdge* NewGraphEdge(VoronoiInternal& internal, VoronoiEdge& edge, int side)
{
    const qPoint64f& first = edge.sites[0]->p;
    const double turn =
        (edge.pos[0].x - first.x) * (edge.pos[1].y - first.y) - (edge.pos[0].y - first.y) * (edge.pos[1].x - first.x);
    const int begin = turn > 0.0 ? side : 1 - side;
    auto* graphEdge = internal.arena.New<VoronoiGraphEdge>("Zvl::GenerateVoronoi");
    graphEdge->edge = &edge;
    graphEdge->neighbor = edge.sites[1 - side];
    graphEdge->pos[0] = edge.pos[begin];
    graphEdge->pos[1] = edge.pos[1 - begin];
    graphEdge->angle = AngleTo(*edge.sites[side], graphEdge->pos[0], graphEdge->pos[1]);
    return graphEdge;
}

} // namespace

double AngleTo(const VoronoiSite& site, const qPoint64f& begin, const qPoint64f& end)
{
    const double x = (begin.x + end.x) * 0.5 - site.p.x;
    const double y = (begin.y + end.y) * 0.5 - site.p.y;
    const double angle = std::atan2(y, x);
    return y < 0.0 ? angle + kFullTurn : angle;
}

void FinishEdge(VoronoiInternal& internal, VoronoiEdge& edge)
{
    if (!ClipEdge(edge, internal.min, internal.max))
    {
        return;
    }
    for (const int side : {0, 1})
    {
        edge.previous[side] = edge.sites[side]->finished;
        edge.sites[side]->finished = &edge;
    }
}

void BuildCell(VoronoiInternal& internal, VoronoiSite& site)
{
    VoronoiEdge* edge = site.finished;
    VoronoiGraphEdge* first = nullptr;
    VoronoiGraphEdge** last = &first;
    std::size_t count = 0;
    while (edge != nullptr)
    {
        const int side = edge->sites[0] == &site ? 0 : 1;
        *last = NewGraphEdge(internal, *edge, side);
        last = &(*last)->next;
        edge = edge->previous[side];
        ++count;
    }
    VoronoiGraphEdge* rest = nullptr;
    site.edges = count > 1 ? Sort(first, count, rest) : first;
}

void CellPrefetch::Advance()
{
    for (std::size_t ahead = 1; ahead < kAhead; ++ahead)
    {
        const std::size_t site = next + ahead;
        const VoronoiEdge*& link = links[site % kAhead];
        if (link != nullptr && site < sites.size())
        {
            link = link->previous[link->sites[0] == &sites[site] ? 0 : 1];
            __builtin_prefetch(link);
        }
    }
    const std::size_t added = next + kAhead;
    links[next % kAhead] = added < sites.size() ? sites[added].finished : nullptr;
    __builtin_prefetch(links[next % kAhead]);
    ++next;
}

} // namespace Zvl
