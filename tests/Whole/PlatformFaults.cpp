#include "Whole/PlatformFaults.h"

#include "Whole/NthCall.h"

#include <ZdkVisionLib/platform/ZoVision.h>
#include <ZdkVisionLib/platform/qVision.h>

namespace
{

constinit thread_local WholeTest::NthCall operations;
constinit thread_local const char* firstFailed = nullptr;

bool MustFail(const char* name) noexcept
{
    if (!operations.MustFail())
    {
        return false;
    }
    if (operations.Failures() == 1)
    {
        firstFailed = name;
    }
    return true;
}

qStatus Fault() noexcept
{
    return WholeTest::kFirstFault - static_cast<qStatus>(operations.Failures() - 1);
}

} // namespace

namespace WholeTest
{

void FailOperationAt(std::size_t nth, bool onwards)
{
    operations.FailAt(nth, onwards);
    firstFailed = nullptr;
}

std::size_t FailedOperations()
{
    return operations.Failures();
}

const char* FirstFailedOperation()
{
    return firstFailed;
}

} // namespace WholeTest

// The linker's --wrap: a call of f goes to __wrap_f, and f itself is reached as __real_f.
#define OPERATION(symbol, name, parameters, arguments)                                                                 \
    qStatus Real_##name parameters asm("__real_" #symbol);                                                             \
    qStatus Wrapped_##name parameters asm("__wrap_" #symbol);                                                          \
    qStatus Wrapped_##name parameters                                                                                  \
    {                                                                                                                  \
        return MustFail(#name) ? Fault() : Real_##name arguments;                                                      \
    }
#include "Whole/PlatformOperations.inc"
#undef OPERATION
