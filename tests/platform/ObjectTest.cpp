#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

#include <ZdkVisionLib/platform/ZoVision.h>

#include <thread>

namespace
{

using namespace PlatformTest;

TEST(Object, CountFollowsShareAndDestroy)
{
    void* array = nullptr;
    ASSERT_EQ(qArray1_Construct(&array, xxq8u_type, 3, nullptr), STATUS_OK);
    EXPECT_EQ(qObject_ShareCount(array), 1);
    EXPECT_EQ(qObject_Share(array), STATUS_OK);
    EXPECT_EQ(qObject_ShareCount(array), 2);
    EXPECT_EQ(xqObject_DestroyImpl(array, 0), STATUS_OK);
    EXPECT_EQ(qObject_ShareCount(array), 1);
    EXPECT_TRUE(xqCastClass_ObjectIsValid(array));
    EXPECT_EQ(xqObject_DestroyImpl(array, 1), STATUS_OK);
    EXPECT_EQ(qObject_ShareCount(array), 0);
    EXPECT_FALSE(xqCastClass_ObjectIsValid(array));
}

TEST(Object, AHandleThatCannotReleaseWhatItHoldsTakesNothing)
{
    const Handle array = MakeArray1(xxq8u_type, 3);
    void* dead = DeadHandle();
    Handle held(dead);
    EXPECT_STOPPED(held.Reset(array.Get()));
    EXPECT_EQ(held.Get(), dead);
    Handle other(array);
    EXPECT_STOPPED(held = std::move(other));
    EXPECT_EQ(held.Get(), dead);
    EXPECT_EQ(other.Get(), array.Get()); // NOLINT(bugprone-use-after-move): it keeps what was not taken
    EXPECT_EQ(qObject_ShareCount(array), 2);
    EXPECT_EQ(held.Detach(), dead);
}

TEST(Object, DestroyingNullSucceeds)
{
    EXPECT_EQ(xqObject_DestroyImpl(nullptr, 0), STATUS_OK);
    EXPECT_EQ(xqObject_DestroyImpl(nullptr, 1), STATUS_OK);
}

TEST(Object, ClassesDeriveFromObject)
{
    const Handle array = MakeArray2(xxq16s_type, 2, 2);
    EXPECT_TRUE(xqCastClass_ObjectIs(array, xxqArray2_type));
    EXPECT_TRUE(xqCastClass_ObjectIs(array, xxqObject_type));
    EXPECT_FALSE(xqCastClass_ObjectIs(array, xxqArray1_type));
    EXPECT_FALSE(xqCastClass_ObjectIs(array, xxqArrayList_type));
    EXPECT_FALSE(xqCastClass_ObjectIs(array, xxq16s_type));
    EXPECT_STOPPED(xqCastClass_ObjectIs(array, nullptr));
}

TEST(Object, AnyPointerValueMayBeAskedAbout)
{
    for (void* handle : StrangeHandles())
    {
        EXPECT_FALSE(xqCastClass_ObjectIsValid(handle));
        EXPECT_FALSE(xqCastClass_ObjectIs(handle, xxqObject_type));
        EXPECT_EQ(qObject_ShareCount(handle), 0);
    }
    const Handle array = MakeArray1(xxq64f_type, 100);
    EXPECT_FALSE(xqCastClass_ObjectIsValid(static_cast<char*>(array.Get()) + 8));
    EXPECT_FALSE(xqCastClass_ObjectIsValid(qArray1_Data(array)));
}

TEST(Object, StrangeHandlesAreStoppedInEveryCall)
{
    const Handle other = MakeArray1(xxq8u_type, 4);
    std::vector<void*> handles = StrangeHandles();
    Handle memory;
    ASSERT_EQ(qMemory_Construct(memory.Slot(), nullptr, 0), STATUS_OK);
    handles.push_back(memory.Get());
    double item = 0.0;
    void* slot = nullptr;
    for (void* handle : handles)
    {
        if (handle != memory.Get())
        {
            EXPECT_STOPPED(qObject_Share(handle));
            EXPECT_STOPPED(qMemory_Length(handle));
            EXPECT_STOPPED(qMemory_At(handle, 0));
            EXPECT_STOPPED(qMemory_Attach(handle, &item, 0, 8, 8));
            EXPECT_STOPPED(qSerializer_Construct(&slot, handle, nullptr, nullptr));
        }
        if (handle != nullptr)
        {
            EXPECT_STOPPED(qArray1_Construct(&slot, xxq8u_type, 1, handle));
            EXPECT_STOPPED(qAlloc_SetDefault(handle));
        }
        EXPECT_STOPPED(qArray1_Construct(&slot, handle, 1, nullptr));
        EXPECT_STOPPED(qArray1_Allocate(handle, xxq8u_type, 1));
        EXPECT_STOPPED(qArray1_Zero(handle));
        EXPECT_STOPPED(qArray1_Count(handle));
        EXPECT_STOPPED(qArray1_Data(handle));
        EXPECT_STOPPED(qArray1_Type(handle));
        EXPECT_STOPPED(qArray2_Construct(&slot, handle, 1, 1, nullptr));
        EXPECT_STOPPED(qArray2_Allocate(handle, xxq8u_type, 1, 1));
        EXPECT_STOPPED(qArray2_Zero(handle));
        EXPECT_STOPPED(qArray2_Item(handle, 0, 0, &item));
        EXPECT_STOPPED(qArray2_SetItem(handle, 0, 0, &item));
        EXPECT_STOPPED(xqArray2_Assign(handle, handle, 0));
        EXPECT_STOPPED(qArray2_Length(handle, 0));
        EXPECT_STOPPED(qArray2_Type(handle));
        EXPECT_STOPPED(qArrayList_Construct(&slot, handle, 1, nullptr));
        EXPECT_STOPPED(qArrayList_Add(handle, &item));
        EXPECT_STOPPED(qArrayList_Remove(handle, 0, nullptr));
        EXPECT_STOPPED(qArrayList_Purge(handle));
        EXPECT_STOPPED(qArrayList_Reserve(handle, 1));
        EXPECT_STOPPED(qArrayList_Resize(handle, 1));
        EXPECT_STOPPED(qArrayList_Zero(handle));
        EXPECT_STOPPED(qArrayList_Import(handle, &item, 1));
        EXPECT_STOPPED(qArrayList_Count(handle));
        EXPECT_STOPPED(qArrayList_Data(handle));
        EXPECT_STOPPED(qArrayList_Type(handle));
        EXPECT_STOPPED(qArrayList_At(handle, 0));
        EXPECT_STOPPED(qSerializer_BeginWrite(handle, xxq16u_type, 0));
        EXPECT_STOPPED(qSerializer_EndWrite(handle));
        EXPECT_STOPPED(qSerializer_BeginRead(handle, xxq16u_type, 0));
        EXPECT_STOPPED(qSerializer_EndRead(handle));
        EXPECT_STOPPED(qSerializer_SetByteSwap(handle, 1));
        EXPECT_STOPPED(qSerializer_Write64f(handle, item));
        EXPECT_STOPPED(qSerializer_Read64f(handle, &item));
        EXPECT_STOPPED(xqSerializer_FlushEx(handle, 1));
        EXPECT_STOPPED(ZvSurfaceMsg_Width(handle));
        EXPECT_STOPPED(qThreadPool_Count(handle));
        EXPECT_STOPPED(qThreadPool_SetCount(handle, 1));
        EXPECT_EQ(slot, nullptr);
    }
    EXPECT_STOPPED(xqObject_DestroyImpl(DeadHandle(), 1));
    EXPECT_EQ(qArray1_Count(other), 4U);
}

TEST(Object, ClonesAreIndependentAtEveryDepth)
{
    const Handle outer = MakeList(xxqObject_type);
    Handle inner = MakeArray1(xxq8u_type, 2);
    static_cast<std::uint8_t*>(qArray1_Data(inner))[0] = 7;
    void* raw = inner.Detach();
    ASSERT_EQ(qArrayList_Add(outer, &raw), STATUS_OK);
    void* none = nullptr;
    ASSERT_EQ(qArrayList_Add(outer, &none), STATUS_OK);

    Handle copy;
    ASSERT_EQ(xqObject_CloneImpl(copy.Slot(), outer, nullptr, nullptr, 0), STATUS_OK);
    ASSERT_EQ(qArrayList_Count(copy), 2U);
    void* cloned = *static_cast<void**>(qArrayList_At(copy, 0));
    EXPECT_NE(cloned, raw);
    EXPECT_EQ(qObject_ShareCount(raw), 1);
    EXPECT_EQ(qObject_ShareCount(cloned), 1);
    EXPECT_EQ(*static_cast<void**>(qArrayList_At(copy, 1)), nullptr);
    static_cast<std::uint8_t*>(qArray1_Data(raw))[0] = 9;
    EXPECT_EQ(static_cast<std::uint8_t*>(qArray1_Data(cloned))[0], 7);
    EXPECT_EQ(qArray1_Count(cloned), 2U);
    EXPECT_EQ(qArray1_Type(cloned), xxq8u_type);
}

TEST(Object, CloneOfNullIsNull)
{
    void* slot = &slot;
    EXPECT_EQ(xqObject_CloneImpl(&slot, nullptr, nullptr, nullptr, 0), STATUS_OK);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(xqObject_CloneImpl(nullptr, nullptr, nullptr, nullptr, 0), STATUS_BAD_PARAMETER);
}

TEST(Object, StreamsAndAllocatorsHaveNoClone)
{
    Handle memory;
    Handle serializer;
    ASSERT_EQ(qMemory_Construct(memory.Slot(), nullptr, 0), STATUS_OK);
    ASSERT_EQ(qSerializer_Construct(serializer.Slot(), memory, nullptr, nullptr), STATUS_OK);
    const TestSupport::FailingAllocator allocator;
    for (void* source : {memory.Get(), serializer.Get(), allocator.Get()})
    {
        void* slot = memory.Get();
        EXPECT_EQ(xqObject_CloneImpl(&slot, source, nullptr, nullptr, 0), STATUS_NOT_SUPPORTED);
        EXPECT_EQ(slot, memory.Get());
    }
}

TEST(Object, CloneOfADeadItemIsReported)
{
    const Handle list = MakeList(xxqObject_type);
    ASSERT_EQ(qArrayList_Resize(list, 1), STATUS_OK);
    // Not the address of an object that was alive once: the heap may give that to the clone itself.
    alignas(64) unsigned char noObject[64] = {};
    *static_cast<void**>(qArrayList_At(list, 0)) = noObject;
    void* slot = nullptr;
    EXPECT_EQ(xqObject_CloneImpl(&slot, list, nullptr, nullptr, 0), STATUS_BAD_DATA);
    EXPECT_EQ(slot, nullptr);
}

TEST(Object, ACycleIsNotClonedForEver)
{
    const Handle list = MakeList(xxqObject_type);
    void* raw = list.Get();
    ASSERT_EQ(qObject_Share(raw), STATUS_OK);
    ASSERT_EQ(qArrayList_Add(list, &raw), STATUS_OK);
    void* slot = nullptr;
    EXPECT_EQ(xqObject_CloneImpl(&slot, list, nullptr, nullptr, 0), STATUS_BAD_DATA);
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(qArrayList_Purge(list), STATUS_OK);
    EXPECT_EQ(qObject_ShareCount(list), 1);
}

TEST(Object, AListHeldByItselfAloneMayBePurged)
{
    void* list = MakeList(xxqObject_type).Detach();
    ASSERT_EQ(qArrayList_Add(list, &list), STATUS_OK);
    EXPECT_EQ(qArrayList_Purge(list), STATUS_OK);
    EXPECT_FALSE(xqCastClass_ObjectIsValid(list));
}

TEST(Object, DeepNestsAreDestroyedWithoutRecursion)
{
    TestSupport::FailingAllocator allocator;
    void* nest = MakeList(xxqObject_type, 1, allocator.Get()).Detach();
    for (int depth = 0; depth < 200000; ++depth)
    {
        void* outer = MakeList(xxqObject_type, 1, allocator.Get()).Detach();
        ASSERT_EQ(qArrayList_Add(outer, &nest), STATUS_OK);
        nest = outer;
    }
    EXPECT_EQ(xqObject_DestroyImpl(nest, 1), STATUS_OK);
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(Object, CloneWithoutMemoryLeavesTheSlot)
{
    const Handle outer = MakeList(xxqObject_type);
    for (const qType type : {xxq8u_type, xxq64f_type})
    {
        void* inner = MakeArray2(type, 3, 3).Detach();
        ASSERT_EQ(qArrayList_Add(outer, &inner), STATUS_OK);
    }
    const std::size_t failing = TestSupport::ForEachFailingAllocation(
        [&]
        {
            void* slot = outer.Get();
            const qStatus status = xqObject_CloneImpl(&slot, outer, nullptr, nullptr, 0);
            EXPECT_EQ(status == STATUS_OK, slot != outer.Get());
            if (status == STATUS_OK)
            {
                xqObject_DestroyImpl(slot, 1);
            }
            else
            {
                EXPECT_EQ(status, STATUS_OUT_OF_MEMORY);
            }
        });
    EXPECT_EQ(failing, 6U);
}

TEST(Object, CountsAreAtomic)
{
    const Handle array = MakeArray1(xxq8u_type, 1);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
    {
        threads.emplace_back(
            [&array]
            {
                for (int turn = 0; turn < 2000; ++turn)
                {
                    const Handle copy = array;
                    const Handle own = MakeArray1(xxq8u_type, 1);
                    EXPECT_EQ(qArray1_Count(copy), 1U);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(qObject_ShareCount(array), 1);
}

// A handle in static storage is destroyed after main(), perhaps after the platform's own statics.
Handle untilTheEnd;

TEST(Object, HandlesMayOutliveMain)
{
    untilTheEnd = MakeArray1(xxq8u_type, 1);
    EXPECT_EQ(qObject_ShareCount(untilTheEnd), 1);
}

} // namespace
