#pragma once

/** @file
 *  The C heap behind a Voronoi diagram, in few large allocations. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Cuts the blocks of one diagram from slabs. Hundreds of small blocks that go back to the heap together are handed on to
 *  the system by it, and fresh memory costs a fault for each page; slabs of some megabytes stay with the heap or come in
 *  large pages.
 *
 *  It lives until it is disowned and all of its blocks are back, and frees the slabs then. */
class VoronoiHeap
{
public:
    /** A heap for a diagram of @p count sites; null when there is no memory. */
    static VoronoiHeap* New(std::int32_t count);

    /** Lets the heap end with its last block. */
    void Disown() { ReleaseOne(); }

    // The functions for GenerateVoronoiWith(), with the heap as their context.
    static void* Allocate(void* context, std::size_t size);
    static void Release(void* context, void* memory);

private:
    struct Slab
    {
        Slab* next;
        std::size_t size;
    };

    explicit VoronoiHeap(std::size_t size) : slabSize(size) {}
    void ReleaseOne();
    bool AddSlab(std::size_t size);

    Slab* slabs = nullptr;
    char* position = nullptr;
    std::size_t remaining = 0;
    std::size_t slabSize;
    std::size_t owners = 1; ///< the creator, and each block
};

} // namespace Zvl
