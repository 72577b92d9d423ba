#pragma once

/** @file
 *  One exported function after the other meets every fault that can befall it: each allocation of the default allocator
 *  and of a given one, each call of the platform, each `new` and each `malloc` fails, one run for each of them. */

#include <ZdkVisionLib/platform/ZoApi.h>

#include "support/FailingAllocator.h"

#include <array>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace WholeTest
{

/** What may fail under a function. */
enum Use : unsigned
{
    kNothing = 0,
    kDefaultAllocator = 1, ///< memory of the default allocator
    kGivenAllocator = 2,   ///< memory of Trial::allocator
    kOperations = 4,       ///< calls of the platform
    kNew = 8,              ///< memory of `new`
    kMalloc = 16,          ///< memory of `malloc`, other than the built-in heap, which is that of the default allocator
    kAbsorbs = 32,         ///< some faults of the platform do not leave the function as an exception
    kPerhapsNew = 128,     ///< memory of `new` in some instruction sets
    kIsPlatform = 64       ///< the calls are the platform's own
};

class Trial;

/** A call, and all exported functions that it reaches: those that it makes, and members that no host can call. */
struct Entry
{
    std::vector<const char*> symbols;   ///< as demangled, without `Zvl::` and the allocators of containers
    unsigned uses;                      ///< of Use: just these, and not one less
    std::vector<const char*> functions; ///< whose names exceptions may bear
    void (*body)(Trial& trial); ///< makes what the call needs, makes it by Trial::Call(), and looks at the outputs
};

/** For the reports of failing tests. */
inline void PrintTo(const Entry& entry, std::ostream* stream)
{
    *stream << entry.symbols.front();
}

/** What fails in one run of a body. */
struct Fault
{
    Use kind = kNothing;
    std::size_t nth = 0;
    TestSupport::Failing mode = TestSupport::Failing::FromNthOn;
};

/** One run of a body. */
class Trial
{
public:
    Trial(const Entry& tested, const Fault& injected, TestSupport::FailingAllocator& ofDefault,
          TestSupport::FailingAllocator& given);

    /** Makes the call under test, during which the fault happens, and looks at what leaves it. It is made once in a body.
     *  @return false when it failed */
    bool Call(const std::function<void()>& call);

    /** As Call(), of a function that returns a status. */
    bool CallStatus(const std::function<qStatus()>& call);

    /** Lets Call() make sure that @p object, an array or a list, keeps its cells, and that no count of it is kept after a
     *  failure. */
    void KeepsUnchanged(void* object);

    /** Whether a fault happened during the call. */
    bool Met() const { return met; }

    bool HasCalled() const { return called; }

    /** Whether a call that failed does its work when it is made again. */
    bool Repeats() const { return fault.mode == TestSupport::Failing::OnlyNth; }

    qAlloc allocator; ///< for the function's allocator argument

private:
    struct Left; ///< what left the call

    struct Input
    {
        void* object;
        std::int32_t shares;
        std::vector<unsigned char> bytes;
    };

    Left Watch(const std::function<qStatus()>& call);
    void Arm();
    void Disarm();
    void CheckOutOfMemory(const Left& left) const;
    void CheckStatus(int status, const std::string& function) const;
    void CheckInputs(bool failed) const;
    bool Bears(const std::string& function) const;

    const Entry& entry;
    const Fault& fault;
    std::array<TestSupport::FailingAllocator*, 2> allocators; ///< the default one and the given one
    std::vector<Input> inputs;
    const char* failedOperation = "";
    bool called = false;
    bool met = false;
};

/** Runs the body of @p entry under every fault, and compares what could fail with Entry::uses. */
void ExpectEveryFaultSurvived(const Entry& entry);

} // namespace WholeTest
