#include "Geometry/Voronoi.h"

#include "Common/Check.h"
#include "Geometry/VoronoiInternal.h"

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::BuildVoronoiVertices";

/** Walks around the cells in the order of the sites. The edges to sites that were walked around before have their
 *  vertices already; the others get them now. */
class VertexLinker
{
public:
    explicit VertexLinker(VoronoiInternal& diagram) : internal(diagram) {}

    void WalkAround(const VoronoiSite& site)
    {
        const VoronoiGraphEdge* first = site.edges;
        const VoronoiGraphEdge* firstKnown = Known(site, *first);
        if (first->next == nullptr)
        {
            if (firstKnown == nullptr) // a cell that rounding has left open
            {
                VoronoiVertex* begin = NewVertex(first->pos[0]);
                Tie(*first->edge, *begin, *NewVertex(first->pos[1]));
            }
            return;
        }
        const VoronoiGraphEdge* current = first->next;
        const VoronoiGraphEdge* known = Known(site, *current);
        VoronoiVertex* vertex = known != nullptr        ? Remaining(known->edge->vertices[1])
                                : firstKnown != nullptr ? Remaining(firstKnown->edge->vertices[0])
                                                        : NewVertex(current->pos[0]);
        VoronoiVertex* firstEnd = vertex;
        for (const VoronoiGraphEdge* following = current->next; following != nullptr; following = following->next)
        {
            const VoronoiGraphEdge* nextKnown = Known(site, *following);
            vertex = Link(vertex, *current, known, nextKnown);
            known = nextKnown;
            current = following;
        }
        vertex = Link(vertex, *current, known, firstKnown);
        if (firstKnown == nullptr)
        {
            Tie(*first->edge, *vertex, *Remaining(firstEnd));
        }
    }

    /** Redirects what still refers to vertices that were merged into others. */
    void Redirect()
    {
        if (!hasMerged)
        {
            return;
        }
        for (const VoronoiVertex* vertex = internal.vertices; vertex != nullptr; vertex = vertex->next)
        {
            for (VoronoiVertexEdge* edge = vertex->edges; edge != nullptr; edge = edge->next)
            {
                edge->neighbor = Remaining(edge->neighbor);
                edge->edge->vertices[0] = Remaining(edge->edge->vertices[0]);
                edge->edge->vertices[1] = Remaining(edge->edge->vertices[1]);
            }
        }
    }

private:
    /** The edge when it has its vertices from the walk around the other site. */
    static const VoronoiGraphEdge* Known(const VoronoiSite& site, const VoronoiGraphEdge& graphEdge)
    {
        return graphEdge.neighbor != nullptr && graphEdge.neighbor < &site ? &graphEdge : nullptr;
    }

    /** Goes along an edge from @p begin to the vertex at its end.
     *  @param known the edge itself, when it has its vertices
     *  @param nextKnown the edge that follows, likewise */
    VoronoiVertex* Link(VoronoiVertex* begin, const VoronoiGraphEdge& graphEdge, const VoronoiGraphEdge* known,
                        const VoronoiGraphEdge* nextKnown)
    {
        if (known != nullptr)
        {
            VoronoiVertex* end = Remaining(known->edge->vertices[0]);
            VoronoiVertex* nextBegin = nextKnown != nullptr ? Remaining(nextKnown->edge->vertices[1]) : end;
            if (nextBegin != end)
            {
                Merge(*nextBegin, *end);
            }
            return end;
        }
        VoronoiVertex* end =
            nextKnown != nullptr ? Remaining(nextKnown->edge->vertices[1]) : NewVertex(graphEdge.pos[1]);
        Tie(*graphEdge.edge, *begin, *end);
        return end;
    }

    VoronoiVertex* NewVertex(const qPoint64f& position)
    {
        auto* vertex = internal.arena.New<VoronoiVertex>(kFunction);
        vertex->next = internal.vertices;
        vertex->pos = position;
        internal.vertices = vertex;
        return vertex;
    }

    void Tie(VoronoiEdge& edge, VoronoiVertex& first, VoronoiVertex& second)
    {
        AddEdge(first, edge, second);
        AddEdge(second, edge, first);
        edge.vertices[0] = &first;
        edge.vertices[1] = &second;
    }

    void AddEdge(VoronoiVertex& vertex, VoronoiEdge& edge, VoronoiVertex& neighbor)
    {
        auto* added = internal.arena.New<VoronoiVertexEdge>(kFunction);
        added->next = vertex.edges;
        added->edge = &edge;
        added->neighbor = &neighbor;
        vertex.lastEdge = vertex.edges != nullptr ? vertex.lastEdge : added;
        vertex.edges = added;
    }

    /** Moves the edges of @p dropped to @p kept, ahead of those that are there. What refers to @p dropped is redirected
     *  at the end: with many sites on one circle a vertex is merged again and again. */
    void Merge(VoronoiVertex& dropped, VoronoiVertex& kept)
    {
        if (dropped.edges != nullptr)
        {
            dropped.lastEdge->next = kept.edges;
            kept.lastEdge = kept.edges != nullptr ? kept.lastEdge : dropped.lastEdge;
            kept.edges = dropped.edges;
            dropped.edges = nullptr;
        }
        dropped.mergedInto = &kept;
        hasMerged = true;
    }

    /** The vertex that has the edges of @p vertex now. Shortens the way to it. */
    static VoronoiVertex* Remaining(VoronoiVertex* vertex)
    {
        while (IsMerged(*vertex))
        {
            if (IsMerged(*vertex->mergedInto))
            {
                vertex->mergedInto = vertex->mergedInto->mergedInto;
            }
            vertex = vertex->mergedInto;
        }
        return vertex;
    }

    static bool IsMerged(const VoronoiVertex& vertex)
    {
        return vertex.edges == nullptr && vertex.mergedInto != nullptr;
    }

    VoronoiInternal& internal;
    bool hasMerged = false;
};

constexpr std::size_t kAhead = 6;

/** Fetches the edges of a cell into the cache. Cells lie in memory as they are walked around, but their edges do not. */
void FetchEdges(const VoronoiSite& site)
{
    for (const VoronoiGraphEdge* graphEdge = site.edges; graphEdge != nullptr; graphEdge = graphEdge->next)
    {
        __builtin_prefetch(&graphEdge->edge->vertices);
    }
}

} // namespace

void BuildVoronoiVertices(VoronoiDiagram* diagram)
{
    ZVL_REQUIRE(kFunction, diagram != nullptr);
    if (diagram->internal == nullptr || diagram->internal->vertices != nullptr)
    {
        return;
    }
    VertexLinker linker(*diagram->internal);
    const std::span<const VoronoiSite> sites = diagram->internal->sites;
    for (std::size_t i = 0; i < sites.size(); ++i)
    {
        if (i + kAhead < sites.size())
        {
            FetchEdges(sites[i + kAhead]);
        }
        linker.WalkAround(sites[i]);
    }
    linker.Redirect();
}

} // namespace Zvl
