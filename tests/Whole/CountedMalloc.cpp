#include "Whole/CountedMalloc.h"

#include "Whole/NthCall.h"

namespace
{

constinit thread_local WholeTest::NthCall calls;

} // namespace

namespace WholeTest
{

void FailMallocAt(std::size_t nth, bool onwards)
{
    calls.FailAt(nth, onwards);
}

std::size_t FailuresOfMalloc()
{
    return calls.Failures();
}

} // namespace WholeTest

// The linker's --wrap: a call of malloc goes to __wrap_malloc, and malloc itself is reached as __real_malloc.
extern "C" void* RealMalloc(std::size_t size) asm("__real_malloc");
extern "C" void* WrappedMalloc(std::size_t size) asm("__wrap_malloc");

extern "C" void* WrappedMalloc(std::size_t size)
{
    return calls.MustFail() ? nullptr : RealMalloc(size);
}
