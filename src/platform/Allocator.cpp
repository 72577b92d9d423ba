#include "platform/Registry.h"

#include <cstdlib>
#include <cstring>
#include <mutex>

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

namespace ZdkPlatform
{

struct Allocator
{
    xqObjectLayout object;
    qAllocAllocateFx allocate;
    qAllocFreeFx release;
    void* context;
};

template <>
inline constexpr TypeId kClassOf<Allocator> = TypeId::Alloc;

namespace
{

// What null stands for, with a count of its own. The mutex lets nobody take a count of an allocator that is
// being replaced; as long as the built-in heap is the default, one load is all that is paid.
constinit std::atomic<Allocator*> replacedDefault{nullptr};
constinit std::mutex defaultMutex;

/** Asks for large pages wherever a whole one lies in the block. It is a hint: without it the memory is only slower. */
void AskForLargePages([[maybe_unused]] void* memory, [[maybe_unused]] std::size_t size) noexcept
{
#if defined(MADV_HUGEPAGE)
    constexpr std::size_t kLargePage = std::size_t{2} << 20U;
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (start + kLargePage - 1) / kLargePage * kLargePage;
    const std::uintptr_t last = (start + size) / kLargePage * kLargePage;
    if (first < last)
    {
        madvise(static_cast<unsigned char*>(memory) + (first - start), last - first, MADV_HUGEPAGE);
    }
#endif
}

/** The built-in heap. The first touch of fresh memory costs a fault per page, which for the cells of a height map is
 *  more than filling them; large blocks therefore ask for large pages. They come from `malloc` without an alignment of
 *  their own, since blocks with one would be mapped and unmapped each time. */
void* AllocateFromHeap(std::size_t size) noexcept
{
    constexpr std::size_t kLargeBlock = std::size_t{4} << 20U;
    void* memory = std::malloc(size);
    if (memory != nullptr && size >= kLargeBlock)
    {
        AskForLargePages(memory, size);
    }
    return memory;
}

void* AllocateRaw(const Allocator* allocator, std::size_t size) noexcept
{
    return allocator == nullptr ? AllocateFromHeap(size) : allocator->allocate(allocator->context, size);
}

void FreeRaw(const Allocator* allocator, void* memory) noexcept
{
    allocator == nullptr ? std::free(memory) : allocator->release(allocator->context, memory);
}

} // namespace

// The address that the heap gave stands in the word ahead of the aligned memory.
void* AllocateBytes(Allocator* allocator, std::size_t size) noexcept
{
    constexpr std::size_t kSlack = sizeof(void*) + kCellAlignment - 1;
    std::size_t whole = 0;
    if (__builtin_add_overflow(size, kSlack, &whole) || whole > static_cast<std::size_t>(PTRDIFF_MAX))
    {
        return nullptr;
    }
    void* raw = AllocateRaw(allocator, whole);
    if (raw == nullptr)
    {
        return nullptr;
    }
    const auto start = reinterpret_cast<std::uintptr_t>(raw);
    const std::uintptr_t aligned = (start + kSlack) / kCellAlignment * kCellAlignment;
    unsigned char* memory = static_cast<unsigned char*>(raw) + (aligned - start);
    std::memcpy(memory - sizeof(void*), &raw, sizeof(void*));
    return memory;
}

void FreeBytes(Allocator* allocator, void* memory) noexcept
{
    if (memory != nullptr)
    {
        void* raw = nullptr;
        std::memcpy(&raw, static_cast<unsigned char*>(memory) - sizeof(void*), sizeof(void*));
        FreeRaw(allocator, raw);
    }
}

Allocator* AcquireAllocator(qAlloc handle)
{
    if (handle != nullptr)
    {
        Allocator& allocator = CastTo<Allocator>(handle, __FILE__, __LINE__);
        HeaderOf(&allocator).count.fetch_add(1);
        return &allocator;
    }
    if (replacedDefault.load() == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard lock(defaultMutex);
    Allocator* allocator = replacedDefault.load();
    if (allocator != nullptr)
    {
        HeaderOf(allocator).count.fetch_add(1);
    }
    return allocator;
}

void ReleaseAllocator(Allocator* allocator) noexcept
{
    if (allocator != nullptr)
    {
        ReleaseCount(HeaderOf(allocator));
    }
}

} // namespace ZdkPlatform

using namespace ZdkPlatform;

qStatus qAlloc_Construct(qAlloc* slot, qAllocAllocateFx allocate, qAllocFreeFx release, void* context)
{
    if (slot == nullptr || allocate == nullptr || release == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    Draft<Allocator> draft(nullptr);
    if (!draft)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    draft->allocate = allocate;
    draft->release = release;
    draft->context = context;
    return draft.Publish(slot);
}

qStatus qAlloc_SetDefault(qAlloc allocator)
{
    Allocator* next = allocator == nullptr ? nullptr : AcquireAllocator(allocator);
    Allocator* old = nullptr;
    {
        const std::lock_guard lock(defaultMutex);
        old = replacedDefault.exchange(next);
    }
    ReleaseAllocator(old);
    return STATUS_OK;
}
