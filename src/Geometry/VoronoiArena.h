#pragma once

/** @file
 *  Memory of the records of a Voronoi diagram: taken in blocks, given back all at once. */

#include "Geometry/Voronoi.h"

#include <new>
#include <type_traits>

namespace Zvl
{

/** Header of a block; the records follow it. */
struct VoronoiMemoryBlock
{
    std::size_t remaining;
    VoronoiMemoryBlock* next;
    char* position;
};

/** Hands out records from the newest block, and a new block when its remainder does not suffice. No record is freed
 *  singly. */
class VoronoiArena
{
public:
    static constexpr std::size_t kBlockSize = 16384;

    VoronoiArena(void* allocatorContext, VoronoiAllocate allocateFunction, VoronoiRelease releaseFunction)
        : context(allocatorContext), allocate(allocateFunction), release(releaseFunction)
    {
    }

    /** A record with all fields zero.
     *  @throws Zo::Exception #STATUS_OUT_OF_MEMORY */
    template <typename Record>
    Record* New(const char* function)
    {
        static_assert(std::is_trivial_v<Record> && alignof(Record) <= alignof(void*));
        static_assert(sizeof(Record) % alignof(void*) == 0 &&
                      sizeof(Record) <= kBlockSize - sizeof(VoronoiMemoryBlock));
        if (newest == nullptr || newest->remaining < sizeof(Record))
        {
            AddBlock(function);
        }
        auto* record = reinterpret_cast<Record*>(newest->position);
        newest->position += sizeof(Record);
        newest->remaining -= sizeof(Record);
        *record = Record();
        return record;
    }

    /** Frees all blocks; the arena is then as new. */
    void FreeBlocks() noexcept;

    /** Frees @p memory that came from the same allocator. */
    void Release(void* memory) const noexcept { release(context, memory); }

private:
    void AddBlock(const char* function);

    VoronoiMemoryBlock* newest = nullptr;
    void* context;
    VoronoiAllocate allocate;
    VoronoiRelease release;
};

} // namespace Zvl
