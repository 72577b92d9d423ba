#include "Geometry/VoronoiGaps.h"

#include "Common/Check.h"

#include <cmath>
#include <optional>

namespace Zvl
{

namespace
{

class GapFiller
{
public:
    GapFiller(VoronoiInternal& diagram, VoronoiSite& owner)
        : internal(diagram), site(owner), min(diagram.min), max(diagram.max)
    {
    }

    void Close()
    {
        if (site.edges == nullptr)
        {
            if (internal.sites.size() != 1)
            {
                ZVL_THROW("Zvl::GenerateVoronoi", STATUS_ABORTED);
            }
            site.edges = NewGap(min, {max.x, min.y});
        }
        if (site.edges->next == nullptr)
        {
            AddToCorner(*site.edges);
        }
        for (VoronoiGraphEdge* current = site.edges; current != nullptr; current = current->next)
        {
            const VoronoiGraphEdge* next = current->next != nullptr ? current->next : site.edges;
            if (!FillBetween(*current, next->pos[0]))
            {
                break;
            }
        }
    }

private:
    bool IsOnBorder(const qPoint64f& p) const
    {
        const bool isOnSide = (p.x == min.x) | (p.x == max.x); // nearly always false: not worth a branch each
        return isOnSide | (p.y == min.y) | (p.y == max.y);
    }

    /** The next corner of the box from a point on its border, counter-clockwise. */
    std::optional<qPoint64f> NextCorner(const qPoint64f& p) const
    {
        if (p.x < max.x && p.y == min.y)
        {
            return qPoint64f{max.x, min.y};
        }
        if (p.x > min.x && p.y == max.y)
        {
            return qPoint64f{min.x, max.y};
        }
        if (p.y > min.y && p.x == min.x)
        {
            return min;
        }
        if (p.y < max.y && p.x == max.x)
        {
            return max;
        }
        return std::nullopt;
    }

    /** Adds what is missing next between @p current and @p target, where the following edge begins.
     *  @return false when the cell cannot be closed along the border */
    bool FillBetween(VoronoiGraphEdge& current, const qPoint64f& target)
    {
        const qPoint64f& end = current.pos[1];
        if (!IsOnBorder(end) || (end.x == target.x && end.y == target.y))
        {
            return true;
        }
        if (std::isnan(target.x) || std::isnan(target.y))
        {
            return false; // no end would ever meet it
        }
        if (end.x == target.x || end.y == target.y)
        {
            Add(current, target);
            return true;
        }
        return IsOnBorder(target) && AddToCorner(current);
    }

    bool AddToCorner(VoronoiGraphEdge& current)
    {
        const std::optional<qPoint64f> corner = NextCorner(current.pos[1]);
        if (corner.has_value())
        {
            Add(current, *corner);
        }
        return corner.has_value();
    }

    void Add(VoronoiGraphEdge& current, const qPoint64f& end)
    {
        VoronoiGraphEdge* gap = NewGap(current.pos[1], end);
        gap->next = current.next;
        current.next = gap;
    }

    VoronoiGraphEdge* NewGap(const qPoint64f& begin, const qPoint64f& end)
    {
        auto* edge = internal.arena.New<VoronoiEdge>("Zvl::GenerateVoronoi");
        edge->next = internal.edges;
        edge->sites[0] = &site;
        edge->pos[0] = begin;
        edge->pos[1] = end;
        internal.edges = edge;

        auto* gap = internal.arena.New<VoronoiGraphEdge>("Zvl::GenerateVoronoi");
        gap->edge = edge;
        gap->pos[0] = begin;
        gap->pos[1] = end;
        return gap;
    }

    VoronoiInternal& internal;
    VoronoiSite& site;
    qPoint64f min;
    qPoint64f max;
};

} // namespace

void FillGaps(VoronoiInternal& internal, VoronoiSite& site)
{
    GapFiller(internal, site).Close();
}

} // namespace Zvl
