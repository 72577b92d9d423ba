#include "Geometry/Voronoi.h"

#include "Common/Check.h"
#include "Common/Rounding.h"
#include "Geometry/VoronoiCells.h"
#include "Geometry/VoronoiGaps.h"
#include "Geometry/VoronoiHeap.h"
#include "Geometry/VoronoiSites.h"
#include "Geometry/VoronoiSweep.h"

#include <cmath>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::GenerateVoronoi";

/** Hands out stretches of one allocation. */
class Stretches
{
public:
    explicit Stretches(void* memory) : position(static_cast<char*>(memory)) {}

    void* Take(std::size_t size)
    {
        void* taken = position;
        position += size;
        return taken;
    }

private:
    char* position;
};

/** The parts of the one allocation of a diagram. The queue and the table serve the sweep alone. */
struct Layout
{
    VoronoiInternal* internal;
    VoronoiSite* sites;
    std::uint32_t* stripEnds; ///< for sorting the sites, in the place of the queue, which is empty then
    VoronoiHalfEdge** queueItems;
    VoronoiBeachRun** table;
};

std::size_t QueueSize(std::size_t count)
{
    return 2 * count;
}

Layout LayOut(std::size_t count, void* context, VoronoiAllocate allocate, VoronoiRelease release)
{
    static_assert(sizeof(VoronoiInternal) % alignof(VoronoiSite) == 0 && sizeof(VoronoiSite) % sizeof(void*) == 0);
    const std::size_t sitesSize = count * sizeof(VoronoiSite);
    const std::size_t queueSize = QueueSize(count) * sizeof(void*);
    const std::size_t tableSize = VoronoiBeachIndex::TableSize(count) * sizeof(void*);
    void* memory = allocate(context, sizeof(VoronoiInternal) + sitesSize + queueSize + tableSize);
    if (memory == nullptr)
    {
        ZVL_THROW(kFunction, STATUS_OUT_OF_MEMORY);
    }
    Stretches stretches(memory);
    auto* internal = new (stretches.Take(sizeof(VoronoiInternal))) VoronoiInternal(memory, context, allocate, release);
    auto* sites = static_cast<VoronoiSite*>(stretches.Take(sitesSize));
    void* queue = stretches.Take(queueSize);
    auto* table = static_cast<VoronoiBeachRun**>(stretches.Take(tableSize));
    return {internal, sites, static_cast<std::uint32_t*>(queue), static_cast<VoronoiHalfEdge**>(queue), table};
}

void RequireBox(const VoronoiRect& rect)
{
    for (const double bound : {rect.min.x, rect.min.y, rect.max.x, rect.max.y})
    {
        ZVL_REQUIRE(kFunction, std::fabs(bound) <= kVoronoiLargestCoordinate);
    }
    ZVL_REQUIRE(kFunction, rect.min.x <= rect.max.x && rect.min.y <= rect.max.y);
}

void Build(const Layout& layout, std::span<const qPoint64f> points, const VoronoiRect* clip)
{
    VoronoiInternal& internal = *layout.internal;
    internal.sites = SortSites(points, clip, {layout.stripEnds, points.size()}, {layout.sites, points.size()});
    const VoronoiRect box = clip != nullptr ? *clip : BoxAround(points.first(internal.sites.size()));
    internal.min = box.min;
    internal.max = box.max;
    if (!internal.sites.empty())
    {
        VoronoiQueue queue{ClampToInt(QueueSize(points.size())), 1, layout.queueItems};
        VoronoiSweep(internal, queue, layout.table).Run();
        CellPrefetch prefetch(internal.sites);
        for (VoronoiSite& site : internal.sites)
        {
            prefetch.Advance();
            BuildCell(internal, site);
            FillGaps(internal, site);
        }
    }
}

} // namespace

void GenerateVoronoi(std::int32_t count, const qPoint64f* points, const VoronoiRect* clip, VoronoiDiagram* diagram)
{
    VoronoiHeap* heap = VoronoiHeap::New(count);
    if (heap == nullptr)
    {
        FreeVoronoi(diagram);
        ZVL_THROW(kFunction, STATUS_OUT_OF_MEMORY);
    }
    try
    {
        GenerateVoronoiWith(count, points, clip, heap, &VoronoiHeap::Allocate, &VoronoiHeap::Release, diagram);
    }
    catch (...)
    {
        heap->Disown();
        throw;
    }
    heap->Disown();
}

void GenerateVoronoiWith(std::int32_t count, const qPoint64f* points, const VoronoiRect* clip, void* context,
                         VoronoiAllocate allocate, VoronoiRelease release, VoronoiDiagram* diagram)
{
    ZVL_REQUIRE(kFunction, diagram != nullptr);
    FreeVoronoi(diagram);
    ZVL_REQUIRE(kFunction, allocate != nullptr && release != nullptr && (points != nullptr || count <= 0));
    if (clip != nullptr)
    {
        RequireBox(*clip);
    }
    const std::size_t size = count > 0 ? static_cast<std::size_t>(count) : 0;
    const Layout layout = LayOut(size, context, allocate, release);
    diagram->internal = layout.internal;
    try
    {
        Build(layout, {points, size}, clip);
    }
    catch (...)
    {
        FreeVoronoi(diagram);
        throw;
    }
    diagram->numsites = static_cast<std::int32_t>(layout.internal->sites.size());
    diagram->min = layout.internal->min;
    diagram->max = layout.internal->max;
}

void FreeVoronoi(VoronoiDiagram* diagram) noexcept
{
    if (diagram != nullptr && diagram->internal != nullptr)
    {
        VoronoiArena arena = diagram->internal->arena;
        void* memory = diagram->internal->memory;
        *diagram = {};
        arena.FreeBlocks();
        arena.Release(memory);
    }
}

const VoronoiVertex* FirstVoronoiVertex(const VoronoiDiagram* diagram) noexcept
{
    return diagram != nullptr && diagram->internal != nullptr ? diagram->internal->vertices : nullptr;
}

std::span<const VoronoiSite> SitesOf(const VoronoiDiagram& diagram) noexcept
{
    return diagram.internal != nullptr ? diagram.internal->sites : std::span<VoronoiSite>();
}

const VoronoiEdge* FirstVoronoiEdge(const VoronoiDiagram& diagram) noexcept
{
    return diagram.internal != nullptr ? diagram.internal->edges : nullptr;
}

} // namespace Zvl
