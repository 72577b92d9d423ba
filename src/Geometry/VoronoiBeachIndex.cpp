#include "Geometry/VoronoiBeachIndex.h"

#include <algorithm>

namespace Zvl
{

namespace
{

VoronoiHalfEdge** PositionOf(const VoronoiHalfEdge* halfEdge)
{
    VoronoiHalfEdge** items = halfEdge->run->items;
    return std::find(items, items + halfEdge->run->count, halfEdge);
}

} // namespace

void VoronoiBeachIndex::InsertAfter(const VoronoiHalfEdge* previous, VoronoiHalfEdge* added)
{
    VoronoiBeachRun* run = previous != nullptr ? previous->run : (numruns > 0 ? table[0] : NewRun(0));
    if (run->count == VoronoiBeachRun::kCapacity)
    {
        Split(run);
        run = previous != nullptr ? previous->run : table[0];
    }
    VoronoiHalfEdge** position = previous != nullptr ? PositionOf(previous) + 1 : run->items;
    std::copy_backward(position, run->items + run->count, run->items + run->count + 1);
    *position = added;
    added->run = run;
    ++run->count;
}

void VoronoiBeachIndex::Replace(const VoronoiHalfEdge* removed, VoronoiHalfEdge* added)
{
    *PositionOf(removed) = added;
    added->run = removed->run;
}

void VoronoiBeachIndex::Remove(const VoronoiHalfEdge* removed)
{
    VoronoiBeachRun* run = removed->run;
    VoronoiHalfEdge** position = PositionOf(removed);
    std::copy(position + 1, run->items + run->count, position);
    --run->count;
    if (run->count == 0)
    {
        const std::int32_t place = PlaceOf(run);
        std::copy(table + place + 1, table + numruns, table + place);
        --numruns;
        Free(run);
    }
}

void VoronoiBeachIndex::Clear()
{
    while (numruns > 0)
    {
        Free(table[--numruns]);
    }
}

/** Enters an empty run in the table. */
VoronoiBeachRun* VoronoiBeachIndex::NewRun(std::int32_t place)
{
    VoronoiBeachRun* run = freeRuns;
    if (run != nullptr)
    {
        freeRuns = run->nextFree;
    }
    else
    {
        run = arena.New<VoronoiBeachRun>("Zvl::GenerateVoronoi");
    }
    std::copy_backward(table + place, table + numruns, table + numruns + 1);
    table[place] = run;
    ++numruns;
    return run;
}

void VoronoiBeachIndex::Free(VoronoiBeachRun* run)
{
    run->count = 0;
    run->nextFree = freeRuns;
    freeRuns = run;
}

/** Moves the right half of a run to a new one. */
void VoronoiBeachIndex::Split(VoronoiBeachRun* run)
{
    VoronoiBeachRun* right = NewRun(PlaceOf(run) + 1);
    right->count = run->count / 2;
    run->count -= right->count;
    std::copy_n(run->items + run->count, right->count, right->items);
    for (std::int64_t i = 0; i < right->count; ++i)
    {
        right->items[i]->run = right;
    }
}

std::int32_t VoronoiBeachIndex::PlaceOf(const VoronoiBeachRun* run) const
{
    return static_cast<std::int32_t>(std::find(table, table + numruns, run) - table);
}

} // namespace Zvl
