#include "Geometry/VoronoiHeap.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace Zvl
{

namespace
{

constexpr std::size_t kBytesPerSite = 1200; // a little more than blocks take, so that one slab is enough
constexpr std::size_t kSmallestSlab = std::size_t{64} << 10U;
constexpr std::size_t kLargePage = std::size_t{2} << 20U;
constexpr std::size_t kLargestSlab = std::size_t{16} << 20U;
constexpr std::size_t kAlignment = alignof(std::max_align_t);

/** Asks for large pages wherever a whole one lies in the block. It is a hint. */
void AskForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size)
{
#if defined(MADV_HUGEPAGE)
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (start + kLargePage - 1) / kLargePage * kLargePage;
    const std::uintptr_t last = (start + size) / kLargePage * kLargePage;
    if (first < last)
    {
        madvise(static_cast<char*>(memory) + (first - start), last - first, MADV_HUGEPAGE);
    }
#endif
}

/** The largest slabs, of which there are many, are large pages all through. A single smaller one stays with the heap from
 *  one diagram to the next, which memory aligned so does not. */
void* TakeSlab(std::size_t size)
{
    void* memory = size < kLargestSlab ? std::malloc(size) : std::aligned_alloc(kLargePage, size);
    if (memory != nullptr)
    {
        AskForLargePages(memory, size);
    }
    return memory;
}

} // namespace

VoronoiHeap* VoronoiHeap::New(std::int32_t count)
{
    const std::size_t wanted = kBytesPerSite * static_cast<std::size_t>(std::max(count, 0));
    return new (std::nothrow) VoronoiHeap(std::clamp(wanted, kSmallestSlab, kLargestSlab));
}

void* VoronoiHeap::Allocate(void* context, std::size_t size)
{
    auto& heap = *static_cast<VoronoiHeap*>(context);
    const std::size_t rounded = (size + kAlignment - 1) / kAlignment * kAlignment;
    if (heap.remaining < rounded && !heap.AddSlab(rounded))
    {
        return nullptr;
    }
    void* memory = heap.position;
    heap.position += rounded;
    heap.remaining -= rounded;
    ++heap.owners;
    return memory;
}

void VoronoiHeap::Release(void* context, void* /*memory*/)
{
    static_cast<VoronoiHeap*>(context)->ReleaseOne();
}

void VoronoiHeap::ReleaseOne()
{
    if (--owners > 0)
    {
        return;
    }
    while (slabs != nullptr)
    {
        Slab* slab = slabs;
        slabs = slab->next;
        std::free(slab);
    }
    delete this;
}

/** Begins a slab with room for @p size bytes at least. */
bool VoronoiHeap::AddSlab(std::size_t size)
{
    static_assert(sizeof(Slab) % kAlignment == 0);
    const std::size_t wanted = std::max(sizeof(Slab) + size, slabSize);
    const std::size_t whole = wanted < kLargestSlab ? wanted : (wanted + kLargePage - 1) / kLargePage * kLargePage;
    void* memory = TakeSlab(whole);
    if (memory == nullptr)
    {
        return false;
    }
    slabs = new (memory) Slab{slabs, whole - sizeof(Slab)};
    position = static_cast<char*>(memory) + sizeof(Slab);
    remaining = whole - sizeof(Slab);
    return true;
}

} // namespace Zvl
