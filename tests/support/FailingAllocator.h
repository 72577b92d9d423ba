#pragma once

/** @file
 *  Fault injection: an allocator that fails on demand, and loops that let a piece of code meet every possible
 *  shortage of memory.
 *
 *  Most tests need one of two calls:
 *
 *  @code
 *  // Each run of the callable meets one more failure; the status is tested by the callable itself.
 *  TestSupport::ForEachFailingAllocation([] {
 *      Zo::Object<void*> array;
 *      const qStatus status = qArray1_Construct(array.Slot(), xxq8u_type, 10, nullptr);
 *      EXPECT_TRUE(status == STATUS_OK ? array.Get() != nullptr : array.Get() == nullptr);
 *  });
 *
 *  // Every failure must leave by a Zo::Exception of this function, with the status of the repeated call.
 *  EXPECT_GT(TestSupport::ExpectEachFailureThrown("Zvl::RefFrame::Serialize", [] { ... }), 0);
 *  @endcode
 *
 *  Everything that the callable makes must be gone when it returns or throws, or the leak check fails the test.
 *  What has to survive (results to be compared afterwards, inputs) is made outside of the callable, with the
 *  callable only reading it. */

#include <ZdkVisionLib/platform/ZoApi.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport
{

/** Which allocations fail. */
enum class Failing
{
    FromNthOn, ///< the n-th and all later ones: memory is exhausted, and repeating a call does not help
    OnlyNth    ///< the n-th alone: the repeated call of the check idiom succeeds, and status 1 is thrown
};

/** An allocator over the C heap that counts and can fail. Usable as an allocator argument (Get()) and as what
 *  null stands for (MakeDefault()). Everything made with it must be gone before it is. All calls may be made
 *  from any thread. */
class FailingAllocator
{
public:
    FailingAllocator()
    {
        if (qAlloc_Construct(handle.Slot(), &Allocate, &Free, this) != STATUS_OK)
        {
            throw std::bad_alloc();
        }
    }

    ~FailingAllocator()
    {
        if (isDefault)
        {
            qAlloc_SetDefault(nullptr);
        }
    }

    FailingAllocator(const FailingAllocator&) = delete;
    FailingAllocator& operator=(const FailingAllocator&) = delete;

    /** The handle for an allocator argument; not counted. */
    qAlloc Get() const { return handle.Get(); }

    /** Lets null allocator arguments mean this allocator, until it is destroyed. */
    void MakeDefault()
    {
        isDefault = true;
        qAlloc_SetDefault(handle.Get());
    }

    /** Starts to count allocations anew, and lets the @p nth from now on (1 is the next one) fail. */
    void FailAt(std::size_t nth, Failing mode = Failing::FromNthOn)
    {
        const std::lock_guard lock(mutex);
        allocations = 0;
        failures = 0;
        failAt = nth;
        failing = mode;
    }

    /** Starts to count allocations anew; none fails. */
    void FailNever() { FailAt(0); }

    std::size_t Allocations() const { return Read(allocations); } ///< asked for since the last FailAt()
    std::size_t Failures() const { return Read(failures); }       ///< failed since the last FailAt()
    std::size_t LiveBlocks() const { return Read(liveBlocks); }   ///< given out and not yet back
    std::size_t LiveBytes() const { return Read(liveBytes); }     ///< bytes of these

private:
    // The block's size stands ahead of it, where it does not disturb the alignment.
    static constexpr std::size_t kPrefix = alignof(std::max_align_t);
    static_assert(kPrefix >= sizeof(std::size_t));

    static void* Allocate(void* context, std::size_t size) noexcept
    {
        auto& self = *static_cast<FailingAllocator*>(context);
        const std::lock_guard lock(self.mutex);
        ++self.allocations;
        const bool fails = self.failing == Failing::OnlyNth ? self.allocations == self.failAt
                                                            : self.failAt != 0 && self.allocations >= self.failAt;
        void* block = fails ? nullptr : std::malloc(size + kPrefix);
        if (block == nullptr)
        {
            ++self.failures;
            return nullptr;
        }
        *static_cast<std::size_t*>(block) = size;
        ++self.liveBlocks;
        self.liveBytes += size;
        return static_cast<unsigned char*>(block) + kPrefix;
    }

    static void Free(void* context, void* memory) noexcept
    {
        auto& self = *static_cast<FailingAllocator*>(context);
        void* block = static_cast<unsigned char*>(memory) - kPrefix;
        const std::lock_guard lock(self.mutex);
        --self.liveBlocks;
        self.liveBytes -= *static_cast<std::size_t*>(block);
        std::free(block);
    }

    std::size_t Read(const std::size_t& counter) const
    {
        const std::lock_guard lock(mutex);
        return counter;
    }

    Zo::Object<void*> handle;
    bool isDefault = false;

    mutable std::mutex mutex;
    std::size_t allocations = 0;
    std::size_t failures = 0;
    std::size_t failAt = 0;
    Failing failing = Failing::FromNthOn;
    std::size_t liveBlocks = 0;
    std::size_t liveBytes = 0;
};

/** Runs @p callable again and again with the default allocator replaced: first the 1st allocation fails, then
 *  the 2nd, and so on, until a run asks for fewer allocations than that. After each run nothing may be left of
 *  what it allocated. The built-in default allocator is back at the end, also when @p callable throws, which
 *  ends the loop.
 *  @return the runs that met a failing allocation */
template <typename Callable>
std::size_t ForEachFailingAllocation(Callable&& callable, Failing mode = Failing::FromNthOn)
{
    constexpr std::size_t kMostRuns = 100000;
    FailingAllocator allocator;
    allocator.MakeDefault();
    for (std::size_t nth = 1; nth <= kMostRuns; ++nth)
    {
        allocator.FailAt(nth, mode);
        callable();
        EXPECT_EQ(allocator.LiveBlocks(), 0U) << "left over after failing allocation " << nth;
        EXPECT_EQ(allocator.LiveBytes(), 0U) << "left over after failing allocation " << nth;
        if (allocator.Failures() == 0)
        {
            return nth - 1;
        }
    }
    ADD_FAILURE() << "still failing after " << kMostRuns << " runs";
    return kMostRuns;
}

/** As ForEachFailingAllocation(), for code that reports shortage by exception: each run that meets a failing
 *  allocation must throw a `Zo::Exception` whose function is one of @p functions, with #STATUS_OUT_OF_MEMORY
 *  (or #STATUS_OK with Failing::OnlyNth, since the repeated call succeeds). The last run, which meets none,
 *  must not throw.
 *  @return the runs that met a failing allocation */
template <typename Callable>
std::size_t ExpectEachFailureThrown(const std::vector<std::string>& functions, Callable&& callable,
                                    Failing mode = Failing::FromNthOn)
{
    std::size_t thrown = 0;
    const qStatus expected = mode == Failing::OnlyNth ? STATUS_OK : STATUS_OUT_OF_MEMORY;
    const auto guarded = [&]
    {
        try
        {
            callable();
        }
        catch (const Zo::Exception& exception)
        {
            ++thrown;
            EXPECT_EQ(exception.GetStatus(), expected) << exception.what();
            EXPECT_NE(std::find(functions.begin(), functions.end(), exception.GetFunction()), functions.end())
                << exception.what();
        }
    };
    const std::size_t runs = ForEachFailingAllocation(guarded, mode);
    EXPECT_EQ(thrown, runs) << "a failing allocation was not reported, or a run without one threw";
    return runs;
}

/** As above for code that fails under one function name only. */
template <typename Callable>
std::size_t ExpectEachFailureThrown(const char* function, Callable&& callable, Failing mode = Failing::FromNthOn)
{
    return ExpectEachFailureThrown(std::vector<std::string>{function}, std::forward<Callable>(callable), mode);
}

} // namespace TestSupport
