#include "Whole/CountedNew.h"

#include "Whole/NthCall.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{

constinit std::atomic<std::ptrdiff_t> liveBlocks{0};
constinit std::atomic<std::ptrdiff_t> liveBytes{0};

constinit thread_local WholeTest::NthCall calls;

void* Allocate(std::size_t size, std::size_t alignment) noexcept
{
    void* memory = nullptr;
    if (calls.MustFail() || posix_memalign(&memory, alignment, size == 0 ? 1 : size) != 0)
    {
        return nullptr;
    }
    liveBlocks.fetch_add(1, std::memory_order_relaxed);
    liveBytes.fetch_add(static_cast<std::ptrdiff_t>(malloc_usable_size(memory)), std::memory_order_relaxed);
    return memory;
}

void* AllocateOrThrow(std::size_t size, std::size_t alignment)
{
    void* memory = Allocate(size, alignment);
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void Free(void* memory) noexcept
{
    if (memory != nullptr)
    {
        liveBlocks.fetch_sub(1, std::memory_order_relaxed);
        liveBytes.fetch_sub(static_cast<std::ptrdiff_t>(malloc_usable_size(memory)), std::memory_order_relaxed);
        std::free(memory);
    }
}

constexpr std::size_t kPlain = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

} // namespace

namespace WholeTest
{

LiveMemory LiveOfNew()
{
    return {liveBlocks.load(), liveBytes.load()};
}

void FailNewAt(std::size_t nth, bool onwards)
{
    calls.FailAt(nth, onwards);
}

std::size_t CallsOfNew()
{
    return calls.Calls();
}

std::size_t FailuresOfNew()
{
    return calls.Failures();
}

} // namespace WholeTest

// All forms are replaced: a sanitizer brings its own of those that are not, and takes the mixture for a mistake.
void* operator new(std::size_t size)
{
    return AllocateOrThrow(size, kPlain);
}

void* operator new[](std::size_t size)
{
    return AllocateOrThrow(size, kPlain);
}

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return Allocate(size, kPlain);
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept
{
    return Allocate(size, kPlain);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return AllocateOrThrow(size, static_cast<std::size_t>(alignment));
}

void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept
{
    return Allocate(size, static_cast<std::size_t>(alignment));
}

void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*tag*/) noexcept
{
    return Allocate(size, static_cast<std::size_t>(alignment));
}

void operator delete(void* memory) noexcept
{
    Free(memory);
}

void operator delete[](void* memory) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    Free(memory);
}

void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::align_val_t /*alignment*/) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    Free(memory);
}

void operator delete(void* memory, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept
{
    Free(memory);
}

void operator delete[](void* memory, std::align_val_t /*alignment*/, const std::nothrow_t& /*tag*/) noexcept
{
    Free(memory);
}
