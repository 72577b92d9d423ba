#pragma once

/** @file
 *  The Voronoi diagram of points in the plane, clipped to a box, and the graph of its vertices.
 *
 *  @code
 *  Zvl::VoronoiDiagram diagram;
 *  Zvl::GenerateVoronoi(count, points, nullptr, &diagram); // cells: SitesOf(diagram)[i].edges
 *  Zvl::BuildVoronoiVertices(&diagram);                    // vertices: FirstVoronoiVertex(&diagram)
 *  Zvl::FreeVoronoi(&diagram);
 *  @endcode
 *
 *  The method is the plane sweep of S. Fortune, A sweepline algorithm for Voronoi diagrams, Algorithmica 2, 1987: a
 *  horizontal line moves up over the sites; below it lies the beach line, on which each point is as far from the
 *  nearest site as from the sweep line. Its breakpoints draw the edges. It runs in double precision.
 *
 *  Two bisectors count as parallel when the determinant of their coefficients, of which the larger one is 1, is below
 *  1e-4. The vertices between such bisectors are missed, and the cells about them are wrong: in rings of more than about
 *  60,000 sites all over, elsewhere at sites that are 1e4 times nearer to each other than to a common neighbour.
 *
 *  Where things are: VoronoiSites (sorting and the box), VoronoiSweep (the events), VoronoiBeach with VoronoiBeachIndex
 *  (the beach line), VoronoiQueue (the circle events to come), VoronoiClip (edges cut to the box), VoronoiCells (the
 *  edges around each site), VoronoiGaps (the border of the box), VoronoiVertices (the graph), VoronoiArena and VoronoiHeap
 *  (memory).
 *
 *  A diagram belongs to one thread at a time; nothing is shared between diagrams. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace Zvl
{

struct VoronoiEdge;
struct VoronoiGraphEdge;
struct VoronoiInternal;
struct VoronoiVertex;
struct VoronoiVertexEdge;

/** A box, its bounds included. */
struct VoronoiRect
{
    qPoint64f min;
    qPoint64f max;
};

/** A diagram in the caller's hands. A new one is empty and owns nothing; FreeVoronoi() makes it empty again. */
struct VoronoiDiagram
{
    VoronoiInternal* internal = nullptr;
    void* reserved[2] = {nullptr, nullptr};
    std::int32_t numsites = 0; ///< sites that are left after duplicates and those outside the clip rectangle are out
    qPoint64f min{0.0, 0.0};   ///< the box that the edges are clipped to
    qPoint64f max{0.0, 0.0};
};

/** A point whose cell is part of the diagram. */
struct VoronoiSite
{
    qPoint64f p;
    std::int32_t index; ///< position in the input
    union
    {
        VoronoiGraphEdge* edges; ///< the border of the cell, counter-clockwise
        VoronoiEdge* finished;   ///< during the sweep: the latest edge of the cell that has both of its ends
    };
};

/** Coefficients of the bisector `a x + b y = c`; the larger one is 1. */
struct VoronoiLine
{
    double a;
    double b;
};

/** The edge between two cells, or between a cell and the outside of the box. */
struct VoronoiEdge
{
    VoronoiEdge* next;
    VoronoiSite* sites[2]; ///< the second one is null on the border of the box
    qPoint64f pos[2];
    union
    {
        VoronoiLine line;           ///< until the edge has both of its ends, and of edges outside of the box
        VoronoiEdge* previous[2];   ///< then, on either side: the edge of the same cell that was finished before
        VoronoiVertex* vertices[2]; ///< in the graph: the ends, counter-clockwise about the site earlier in the array
    };
    double c;
};

/** An edge as seen from one of its sites. */
struct VoronoiGraphEdge
{
    VoronoiGraphEdge* next; ///< the next one counter-clockwise; null at the end, which the first one follows
    VoronoiEdge* edge;
    union
    {
        VoronoiSite* neighbor; ///< null on the border of the box
        double angle;          ///< while the cell is sorted: that of AngleTo()
    };
    qPoint64f pos[2]; ///< the ends, counter-clockwise about the site
};

/** A corner of cells. One that was merged into another stays in the list without edges. */
struct VoronoiVertex
{
    VoronoiVertex* next;
    qPoint64f pos;
    VoronoiVertexEdge* edges;
    union
    {
        VoronoiVertexEdge* lastEdge; ///< end of the list of edges, where there are any
        VoronoiVertex* mergedInto;   ///< otherwise: the vertex that took them over
    };
};

/** An edge as seen from one of its ends. */
struct VoronoiVertexEdge
{
    VoronoiVertexEdge* next;
    VoronoiEdge* edge;
    VoronoiVertex* neighbor; ///< the other end
};

using VoronoiAllocate = void* (*)(void* context, std::size_t size);
using VoronoiRelease = void (*)(void* context, void* memory);

/** Largest coordinate in magnitude. Beyond it the products of the sweep could overflow. */
inline constexpr double kVoronoiLargestCoordinate = 1e100;

/** Builds the diagram of @p count points; equal points become one site.
 *
 *  @param points may be null when @p count is not above 0, which gives a diagram without sites
 *  @param clip null, or the box; points outside are left out. Without one the box reaches 10 beyond the extent of the
 *  first `numsites` points of the input, rounded outwards. These are all points unless there are duplicates; in that
 *  case the cells of points farther out are cut short, and may stay open or be missing altogether.
 *  @param diagram a diagram in use is freed first. Each site's cell is afterwards a closed chain of edges.
 *
 *  @throws Zo::Exception from "Zvl::GenerateVoronoi" with #STATUS_BAD_PARAMETER for null pointers and a clip rectangle
 *          that is no finite box, #STATUS_BAD_DATA for a coordinate that is not a number, and for one beyond
 *          #kVoronoiLargestCoordinate that the clip rectangle does not leave out, #STATUS_ABORTED when one
 *          of several cells has no edge in the box, #STATUS_OUT_OF_MEMORY. The diagram is then empty.
 *
 *  Time O(n log n), about 1 kB of memory for a site. */
void GenerateVoronoi(std::int32_t count, const qPoint64f* points, const VoronoiRect* clip, VoronoiDiagram* diagram);

/** As GenerateVoronoi(), with memory from the caller: blocks that are aligned for a pointer, or null when there is none.
 *  Freeing the diagram releases them, and so does a failure. */
void GenerateVoronoiWith(std::int32_t count, const qPoint64f* points, const VoronoiRect* clip, void* context,
                         VoronoiAllocate allocate, VoronoiRelease release, VoronoiDiagram* diagram);

/** Links the corners of the cells into a graph, once for a diagram. Empty diagrams are fine. Where edges are so short that
 *  rounding decides on their order around a cell, as in the middle of a ring of sites, the graph need not be planar.
 *  @throws Zo::Exception from "Zvl::BuildVoronoiVertices" with #STATUS_BAD_PARAMETER when @p diagram is null,
 *          #STATUS_OUT_OF_MEMORY; the diagram is then only good for being freed. */
void BuildVoronoiVertices(VoronoiDiagram* diagram);

/** Frees all that the diagram owns and makes it empty. Null and empty diagrams are fine. */
void FreeVoronoi(VoronoiDiagram* diagram) noexcept;

/** First vertex of the list; null before BuildVoronoiVertices(). */
const VoronoiVertex* FirstVoronoiVertex(const VoronoiDiagram* diagram) noexcept;

/** The sites, ordered by y, then by x. */
std::span<const VoronoiSite> SitesOf(const VoronoiDiagram& diagram) noexcept;

/** First edge of the list of all edges. */
const VoronoiEdge* FirstVoronoiEdge(const VoronoiDiagram& diagram) noexcept;

/** Frees a diagram when it goes out of scope. */
class VoronoiOwner
{
public:
    VoronoiOwner() = default;
    ~VoronoiOwner() { FreeVoronoi(&diagram); }
    VoronoiOwner(const VoronoiOwner&) = delete;
    VoronoiOwner& operator=(const VoronoiOwner&) = delete;

    VoronoiDiagram* Get() { return &diagram; }

private:
    VoronoiDiagram diagram;
};

} // namespace Zvl
