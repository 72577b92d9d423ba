#include "Geometry/VoronoiCells.h"

#include "Geometry/VoronoiClip.h"

#include <array>
#include <cmath>
#include <limits>

namespace Zvl
{

namespace
{

constexpr double kFullTurn = 6.2831854820251465; // 2 pi in single precision

/** From the site to the middle of an edge. */
qPoint64f ToMiddle(const VoronoiSite& site, const qPoint64f& begin, const qPoint64f& end)
{
    return {(begin.x + end.x) * 0.5 - site.p.x, (begin.y + end.y) * 0.5 - site.p.y};
}

/** An edge as the site on one side of it sees it. */
class Sight
{
public:
    Sight() = default;

    Sight(VoronoiEdge& seen, const VoronoiSite& site) : edge(&seen), side(seen.sites[0] == &site ? 0 : 1)
    {
        const qPoint64f& first = seen.sites[0]->p;
        const double turn = (seen.pos[0].x - first.x) * (seen.pos[1].y - first.y) -
                            (seen.pos[0].y - first.y) * (seen.pos[1].x - first.x);
        begin = side ^ (turn > 0.0 ? 0 : 1);
    }

    const qPoint64f& Begin() const { return edge->pos[begin]; }
    const qPoint64f& End() const { return edge->pos[1 - begin]; }
    VoronoiSite* Neighbor() const { return edge->sites[1 - side]; }

    /** The edge of the same cell that was finished before. */
    VoronoiEdge* Previous() const { return edge->previous[side]; }

    VoronoiGraphEdge* NewGraphEdge(VoronoiInternal& internal) const
    {
        auto* graphEdge = internal.arena.New<VoronoiGraphEdge>("Zvl::GenerateVoronoi");
        graphEdge->edge = edge;
        graphEdge->neighbor = Neighbor();
        graphEdge->pos[0] = Begin();
        graphEdge->pos[1] = End();
        return graphEdge;
    }

private:
    VoronoiEdge* edge;
    int side;  // of the site
    int begin; // which of the positions comes first counter-clockwise
};

/** How far around the square `|x| + |y| = 1` a direction points, from 0 to 4. It rises with the angle, and never faster.
 *  Not a number where there is no direction, and where y is zero: atan2() tells a zero from a negative one. */
double ShareOf(const qPoint64f& direction)
{
    // By quadrants, without a branch on what is as good as random.
    constexpr std::array<double, 4> kBegin = {0.0, 4.0, 2.0, 2.0};
    constexpr std::array<double, 4> kSign = {1.0, 1.0, -1.0, -1.0};
    const std::size_t quadrant = (direction.x < 0.0 ? 2U : 0U) + (direction.y < 0.0 ? 1U : 0U);
    const double share = direction.y / (std::fabs(direction.x) + std::fabs(direction.y));
    return direction.y == 0.0 ? std::numeric_limits<double>::quiet_NaN() : kBegin[quadrant] + kSign[quadrant] * share;
}

/** The edges around one site, when there are few and their directions differ clearly. Their shares of a way around the
 *  site then put them in the same order as their angles, which take much longer. */
class FewSights
{
public:
    /** Takes up all edges of @p site.
     *  @return false when the angles themselves are needed */
    bool TakeUp(const VoronoiSite& site)
    {
        for (VoronoiEdge* edge = site.finished; edge != nullptr; edge = sights[count++].Previous())
        {
            if (count == kMost)
            {
                return false;
            }
            sights[count] = Sight(*edge, site);
            shares[count] = ShareOf(ToMiddle(site, sights[count].Begin(), sights[count].End()));
            if (std::isnan(shares[count]))
            {
                return false;
            }
        }
        Sort();
        return AreDistinct();
    }

    VoronoiGraphEdge* NewGraphEdges(VoronoiInternal& internal) const
    {
        VoronoiGraphEdge* first = nullptr;
        VoronoiGraphEdge** last = &first;
        for (std::size_t i = 0; i < count; ++i)
        {
            *last = sights[sorted[i]].NewGraphEdge(internal);
            last = &(*last)->next;
        }
        return first;
    }

private:
    static constexpr std::size_t kMost = 24;

    /** Counts for each edge those ahead of it, which takes no branches that depend on the directions. */
    void Sort()
    {
        std::array<std::uint8_t, kMost> ahead{};
        for (std::size_t i = 1; i < count; ++i)
        {
            for (std::size_t j = 0; j < i; ++j)
            {
                const bool isAfter = shares[j] > shares[i];
                ahead[i] = static_cast<std::uint8_t>(ahead[i] + (isAfter ? 0 : 1));
                ahead[j] = static_cast<std::uint8_t>(ahead[j] + (isAfter ? 1 : 0));
            }
        }
        for (std::size_t i = 0; i < count; ++i)
        {
            sorted[ahead[i]] = static_cast<std::uint8_t>(i);
        }
    }

    bool AreDistinct() const
    {
        constexpr double kClear = 1e-12; // shares and angles are right to 1e-15
        bool areDistinct = true;
        for (std::size_t i = 1; i < count; ++i)
        {
            areDistinct = areDistinct && shares[sorted[i]] - shares[sorted[i - 1]] > kClear;
        }
        return areDistinct;
    }

    std::array<Sight, kMost> sights;
    std::array<double, kMost> shares;
    std::array<std::uint8_t, kMost> sorted;
    std::size_t count = 0;
};

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

/** Makes the list of graph edges by their angles. They stand in the place of the neighbours meanwhile. */
VoronoiGraphEdge* ListByAngle(VoronoiInternal& internal, const VoronoiSite& site)
{
    VoronoiGraphEdge* first = nullptr;
    VoronoiGraphEdge** last = &first;
    std::size_t count = 0;
    for (VoronoiEdge* edge = site.finished; edge != nullptr; ++count)
    {
        const Sight sight(*edge, site);
        *last = sight.NewGraphEdge(internal);
        (*last)->angle = AngleTo(site, sight.Begin(), sight.End());
        last = &(*last)->next;
        edge = sight.Previous();
    }
    VoronoiGraphEdge* rest = nullptr;
    first = count > 1 ? Sort(first, count, rest) : first;
    for (VoronoiGraphEdge* graphEdge = first; graphEdge != nullptr; graphEdge = graphEdge->next)
    {
        graphEdge->neighbor = Sight(*graphEdge->edge, site).Neighbor();
    }
    return first;
}

} // namespace

double AngleTo(const VoronoiSite& site, const qPoint64f& begin, const qPoint64f& end)
{
    const qPoint64f middle = ToMiddle(site, begin, end);
    const double angle = std::atan2(middle.y, middle.x);
    return middle.y < 0.0 ? angle + kFullTurn : angle;
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
    FewSights sights;
    site.edges = sights.TakeUp(site) ? sights.NewGraphEdges(internal) : ListByAngle(internal, site);
}

void CellPrefetch::Fetch(const VoronoiEdge* edge)
{
    if (edge != nullptr)
    {
        __builtin_prefetch(edge);
        __builtin_prefetch(&edge->c); // the end of the record is in another line as a rule
    }
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
            Fetch(link);
        }
    }
    const std::size_t added = next + kAhead;
    links[next % kAhead] = added < sites.size() ? sites[added].finished : nullptr;
    Fetch(links[next % kAhead]);
    ++next;
}

} // namespace Zvl
