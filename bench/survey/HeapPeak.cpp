#include "survey/HeapPeak.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <malloc.h>

// The allocator of the C library under the names by which a program that puts its own in place reaches it.
extern "C"
{
    void* __libc_malloc(std::size_t size);
    void* __libc_calloc(std::size_t count, std::size_t size);
    void* __libc_realloc(void* block, std::size_t size);
    void* __libc_memalign(std::size_t alignment, std::size_t size);
    void __libc_free(void* block);
}

namespace
{

constinit std::atomic<bool> counting{false};
constinit std::atomic<std::int64_t> live{0};
constinit std::atomic<std::int64_t> peak{0};

void Add(std::int64_t bytes)
{
    const std::int64_t now = live.fetch_add(bytes) + bytes;
    std::int64_t highest = peak.load();
    while (now > highest && !peak.compare_exchange_weak(highest, now))
    {
    }
}

std::int64_t SizeOf(void* block)
{
    return static_cast<std::int64_t>(malloc_usable_size(block)); // 0 for null
}

void* Counted(void* block)
{
    if (counting.load(std::memory_order_relaxed))
    {
        Add(SizeOf(block));
    }
    return block;
}

void Uncount(void* block)
{
    if (counting.load(std::memory_order_relaxed))
    {
        live.fetch_sub(SizeOf(block));
    }
}

} // namespace

// What the program and all its libraries allocate with.
extern "C"
{

    [[gnu::visibility("default")]] void* malloc(std::size_t size)
    {
        return Counted(__libc_malloc(size));
    }

    [[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t size)
    {
        return Counted(__libc_calloc(count, size));
    }

    [[gnu::visibility("default")]] void* realloc(void* block, std::size_t size)
    {
        const std::int64_t before = counting.load(std::memory_order_relaxed) ? SizeOf(block) : 0;
        void* moved = __libc_realloc(block, size);
        if (counting.load(std::memory_order_relaxed) && (moved != nullptr || size == 0))
        {
            Add(SizeOf(moved) - before);
        }
        return moved;
    }

    [[gnu::visibility("default")]] void* memalign(std::size_t alignment, std::size_t size)
    {
        return Counted(__libc_memalign(alignment, size));
    }

    [[gnu::visibility("default")]] void* aligned_alloc(std::size_t alignment, std::size_t size)
    {
        return Counted(__libc_memalign(alignment, size));
    }

    [[gnu::visibility("default")]] int posix_memalign(void** slot, std::size_t alignment, std::size_t size)
    {
        if (alignment % sizeof(void*) != 0 || alignment == 0 || (alignment & (alignment - 1)) != 0)
        {
            return EINVAL;
        }
        void* block = Counted(__libc_memalign(alignment, size));
        if (block == nullptr)
        {
            return ENOMEM;
        }
        *slot = block;
        return 0;
    }

    [[gnu::visibility("default")]] void free(void* block)
    {
        Uncount(block);
        __libc_free(block);
    }

} // extern "C"

namespace Survey
{

double PeakHeapBytes(const Action& action)
{
    live = 0;
    peak = 0;
    counting = true;
    action();
    counting = false;
    return static_cast<double>(peak.load());
}

} // namespace Survey
