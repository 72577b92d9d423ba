#include "platform/FailingNew.h"

#include <cstdlib>
#include <new>

namespace PlatformTest
{

thread_local bool newFails = false;

} // namespace PlatformTest

// The whole program's `new`, in a file of its own: where the compiler sees both sides of a replaced pair, it takes
// them for a mismatch.
void* operator new(std::size_t size)
{
    void* memory = PlatformTest::newFails ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr)
    {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
