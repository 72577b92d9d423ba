#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

namespace
{

std::vector<std::pair<std::uintptr_t, std::size_t>> advisedRanges;

} // namespace

// The linker leads the platform's calls of madvise() here.
int RealMadvise(void* memory, std::size_t size, int advice) asm("__real_madvise");
int WrappedMadvise(void* memory, std::size_t size, int advice) asm("__wrap_madvise");
int WrappedMadvise(void* memory, std::size_t size, int advice)
{
    advisedRanges.emplace_back(reinterpret_cast<std::uintptr_t>(memory), size);
    return RealMadvise(memory, size, advice);
}

namespace
{

using namespace PlatformTest;
using TestSupport::Failing;
using TestSupport::FailingAllocator;

/** Gives memory that is aligned to 8 bytes and no more, and remembers its context. */
struct OddHeap
{
    static void* Allocate(void* context, std::size_t size)
    {
        ++static_cast<OddHeap*>(context)->live;
        return static_cast<char*>(std::malloc(size + 8)) + 8;
    }

    static void Free(void* context, void* memory)
    {
        --static_cast<OddHeap*>(context)->live;
        std::free(static_cast<char*>(memory) - 8);
    }

    int live = 0;
};

TEST(Allocator, GetsItsContextAndEverythingBack)
{
    OddHeap heap;
    Handle allocator;
    ASSERT_EQ(qAlloc_Construct(allocator.Slot(), &OddHeap::Allocate, &OddHeap::Free, &heap), STATUS_OK);
    EXPECT_TRUE(xqCastClass_ObjectIs(allocator, xxqAlloc_type));
    {
        const Handle array = MakeArray2(xxq16s_type, 5, 7, allocator);
        EXPECT_EQ(heap.live, 2);
        EXPECT_TRUE(IsAligned(qArray2_At(array, 0, 0)));
        ASSERT_EQ(qArray2_Allocate(array, xxq64f_type, 9, 9), STATUS_OK);
        EXPECT_EQ(heap.live, 2);
    }
    EXPECT_EQ(heap.live, 0);
}

TEST(Allocator, LivesAsLongAsItsObjects)
{
    OddHeap heap;
    void* allocator = nullptr;
    ASSERT_EQ(qAlloc_Construct(&allocator, &OddHeap::Allocate, &OddHeap::Free, &heap), STATUS_OK);
    EXPECT_EQ(heap.live, 0);
    Handle list = MakeList(xxq8u_type, 10, allocator);
    EXPECT_EQ(qObject_ShareCount(allocator), 2);
    xqObject_DestroyImpl(allocator, 1);
    EXPECT_TRUE(xqCastClass_ObjectIsValid(allocator));
    list.Reset();
    EXPECT_FALSE(xqCastClass_ObjectIsValid(allocator));
    EXPECT_EQ(heap.live, 0);
}

TEST(Allocator, MissingCallbacksAreRefused)
{
    void* slot = nullptr;
    EXPECT_EQ(qAlloc_Construct(nullptr, &OddHeap::Allocate, &OddHeap::Free, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qAlloc_Construct(&slot, nullptr, &OddHeap::Free, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qAlloc_Construct(&slot, &OddHeap::Allocate, nullptr, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(slot, nullptr);
}

TEST(Allocator, NullStandsForTheReplacedDefault)
{
    Handle early = MakeArray1(xxq8u_type, 1);
    Handle late;
    FailingAllocator allocator;
    allocator.MakeDefault();
    EXPECT_EQ(qObject_ShareCount(allocator.Get()), 2);
    late = MakeArray1(xxq8u_type, 1);
    EXPECT_EQ(allocator.LiveBlocks(), 2U);
    early.Reset();
    ASSERT_EQ(qAlloc_SetDefault(nullptr), STATUS_OK);
    EXPECT_EQ(allocator.LiveBlocks(), 2U) << "objects keep the allocator that they were made with";
    ASSERT_EQ(qArray1_Allocate(late, xxq8u_type, 1000), STATUS_OK);
    EXPECT_GT(allocator.LiveBytes(), 1000U);
    late.Reset();
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
    EXPECT_EQ(allocator.LiveBytes(), 0U);
    EXPECT_EQ(qObject_ShareCount(allocator.Get()), 1);
}

#if defined(__linux__)
TEST(Allocator, LargeBlocksAskForTheLargePagesWithinThem)
{
    constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20U;
    for (const std::size_t size : {std::size_t{5} << 20U, std::size_t{23} << 19U})
    {
        advisedRanges.clear();
        const Handle block = MakeArray1(xxq8u_type, size);
        const auto cells = reinterpret_cast<std::uintptr_t>(qArray1_Data(block));
        ASSERT_EQ(advisedRanges.size(), 1U);
        const auto [start, length] = advisedRanges[0];
        EXPECT_EQ(start % kLargePage, 0U);
        EXPECT_EQ(length % kLargePage, 0U);
        EXPECT_GE(length, kLargePage);
        EXPECT_LT(cells, start + kLargePage); // the first page that is wholly within
        EXPECT_LE(start, cells + kLargePage);
        EXPECT_LE(start + length, cells + size + 4096); // the array's own words lie ahead of its cells
    }
    advisedRanges.clear();
    const Handle small = MakeArray1(xxq8u_type, std::size_t{1} << 20U);
    EXPECT_TRUE(advisedRanges.empty());
}
#endif

TEST(Allocator, HugeSizesNeverReachTheCallbacks)
{
    FailingAllocator allocator;
    void* slot = nullptr;
    for (const std::size_t size : {kHuge, kHuge - 63, kHuge / 2 + 1})
    {
        EXPECT_EQ(qArray1_Construct(&slot, xxq8u_type, size, allocator.Get()), STATUS_OUT_OF_MEMORY);
        EXPECT_EQ(qArrayList_Construct(&slot, xxq8u_type, size, allocator.Get()), STATUS_OUT_OF_MEMORY);
        EXPECT_EQ(qArray2_Construct(&slot, xxq8u_type, size, 1, allocator.Get()), STATUS_OUT_OF_MEMORY);
        EXPECT_EQ(qArray2_Construct(&slot, xxq16s_type, 3, size, allocator.Get()), STATUS_OUT_OF_MEMORY);
    }
    EXPECT_EQ(allocator.Allocations(), 0U);
    // Half of the address space is no overflow, but more than there is.
    EXPECT_EQ(qArray1_Construct(&slot, xxq8u_type, kHalf, allocator.Get()), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArray1_Construct(&slot, xxq64f_type, kHuge / 8 + 1, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
    EXPECT_EQ(qObject_ShareCount(allocator.Get()), 1);
}

TEST(FailingAllocator, FailsWhatItWasAskedTo)
{
    FailingAllocator allocator;
    const auto outcome = [&allocator]
    {
        Handle array;
        return qArray1_Construct(array.Slot(), xxq8u_type, 1, allocator.Get());
    };
    allocator.FailAt(3, Failing::OnlyNth); // each array asks twice
    EXPECT_EQ(outcome(), STATUS_OK);
    EXPECT_EQ(outcome(), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(outcome(), STATUS_OK);
    EXPECT_EQ(allocator.Failures(), 1U);
    allocator.FailAt(4, Failing::FromNthOn);
    EXPECT_EQ(outcome(), STATUS_OK);
    EXPECT_EQ(outcome(), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(outcome(), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(allocator.Failures(), 2U);
    EXPECT_EQ(allocator.Allocations(), 5U);
    allocator.FailNever();
    EXPECT_EQ(outcome(), STATUS_OK);
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

/** A call written in the check idiom: what fails is called again, and the second status is thrown. */
void MakeChecked()
{
    Handle array;
    if (qArray1_Construct(array.Slot(), xxq8u_type, 1, nullptr) != STATUS_OK)
    {
        const qStatus second = qArray1_Construct(array.Slot(), xxq8u_type, 1, nullptr);
        throw Zo::Exception(1, "here.cpp", second, "Zvl::MakeChecked", nullptr);
    }
}

TEST(FailingAllocator, CheckedCallsThrowTheSecondStatus)
{
    EXPECT_EQ(TestSupport::ExpectEachFailureThrown("Zvl::MakeChecked", MakeChecked), 2U);
    EXPECT_EQ(TestSupport::ExpectEachFailureThrown("Zvl::MakeChecked", MakeChecked, Failing::OnlyNth), 2U);
}

TEST(FailingAllocator, TheDefaultComesBackAfterAnException)
{
    EXPECT_THROW(TestSupport::ForEachFailingAllocation([] { throw 1; }), int);
    FailingAllocator unused;
    const Handle array = MakeArray1(xxq8u_type, 1);
    EXPECT_EQ(unused.Allocations(), 0U);
}

} // namespace
