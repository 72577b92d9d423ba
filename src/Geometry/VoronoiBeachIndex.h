#pragma once

/** @file
 *  A search tree of two levels over the breakpoints of the beach line. */

#include "Geometry/VoronoiArena.h"
#include "Geometry/VoronoiHalfEdge.h"

namespace Zvl
{

/** Neighbouring breakpoints, from left to right. */
struct VoronoiBeachRun
{
    static constexpr std::int32_t kCapacity = 62;

    std::int64_t count;
    VoronoiBeachRun* nextFree;
    VoronoiHalfEdge* items[kCapacity];
};

/** Lists the breakpoints in runs, and the runs in a table, from left to right, so that the arc above a site is found by
 *  two binary searches. A full run is split in halves, and an empty one is used again. */
class VoronoiBeachIndex
{
public:
    /** Entries that the table needs at most for @p sites: each site inserts two breakpoints, and from one split of a run
     *  to the next half of its capacity is inserted. To be emptied and filled anew takes no more. */
    static constexpr std::size_t TableSize(std::size_t sites)
    {
        return 2 + 2 * sites / (VoronoiBeachRun::kCapacity / 2);
    }

    VoronoiBeachIndex(VoronoiArena& memory, VoronoiBeachRun** tableMemory) : arena(memory), table(tableMemory) {}

    /** The last breakpoint for which @p isBefore holds, when it holds for all breakpoints left of some place and for none
     *  right of it; null when it holds for none. */
    template <typename Predicate>
    VoronoiHalfEdge* FindLast(Predicate isBefore) const;

    /** Lists @p added right of @p previous; null is the left end. */
    void InsertAfter(const VoronoiHalfEdge* previous, VoronoiHalfEdge* added);

    /** Lists @p added in the place of @p removed. */
    static void Replace(const VoronoiHalfEdge* removed, VoronoiHalfEdge* added);

    void Remove(const VoronoiHalfEdge* removed);

    /** Lists nothing any more. */
    void Clear();

private:
    VoronoiBeachRun* NewRun(std::int32_t place);
    void Free(VoronoiBeachRun* run);
    void Split(VoronoiBeachRun* run);
    std::int32_t PlaceOf(const VoronoiBeachRun* run) const;

    VoronoiArena& arena;
    VoronoiBeachRun** table;
    VoronoiBeachRun* freeRuns = nullptr;
    std::int32_t numruns = 0;
};

template <typename Predicate>
VoronoiHalfEdge* VoronoiBeachIndex::FindLast(Predicate isBefore) const
{
    const auto countBefore = [&isBefore](std::int64_t count, auto itemAt)
    {
        std::int64_t begin = 0;
        while (begin < count)
        {
            const std::int64_t middle = begin + (count - begin) / 2;
            if (isBefore(itemAt(middle)))
            {
                begin = middle + 1;
            }
            else
            {
                count = middle;
            }
        }
        return begin;
    };
    const std::int64_t runs = countBefore(numruns, [this](std::int64_t i) { return table[i]->items[0]; });
    if (runs == 0)
    {
        return nullptr;
    }
    const VoronoiBeachRun* run = table[runs - 1];
    return run->items[countBefore(run->count, [run](std::int64_t i) { return run->items[i]; }) - 1];
}

} // namespace Zvl
