#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

#include <numeric>

namespace
{

using namespace PlatformTest;

Handle ListOf(const std::vector<std::int32_t>& items)
{
    Handle list = MakeList(xxq32s_type);
    EXPECT_EQ(qArrayList_Import(list, items.data(), items.size()), STATUS_OK);
    return list;
}

std::vector<std::int32_t> ItemsOf(void* list)
{
    const auto* first = static_cast<const std::int32_t*>(qArrayList_Data(list));
    return {first, first + qArrayList_Count(list)};
}

using Items = std::vector<std::int32_t>;

TEST(ArrayList, StartsEmptyWithRoom)
{
    const Handle list = MakeList(xxq32s_type, 4);
    EXPECT_EQ(qArrayList_Count(list), 0U);
    EXPECT_EQ(qArrayList_Type(list), xxq32s_type);
    EXPECT_TRUE(IsAligned(qArrayList_Data(list)));
    EXPECT_NE(qArrayList_Data(list), nullptr);
    EXPECT_EQ(qArrayList_Data(MakeList(xxq32s_type)), nullptr);
}

TEST(ArrayList, AddAppendsAndGrowsRarely)
{
    TestSupport::FailingAllocator allocator;
    const Handle list = MakeList(xxq32s_type, 0, allocator.Get());
    Items expected(10000);
    std::iota(expected.begin(), expected.end(), 0);
    for (const std::int32_t item : expected)
    {
        ASSERT_EQ(qArrayList_Add(list, &item), STATUS_OK);
    }
    EXPECT_EQ(ItemsOf(list), expected);
    EXPECT_LT(allocator.Allocations(), 30U);
    EXPECT_TRUE(IsAligned(qArrayList_Data(list)));
}

TEST(ArrayList, AddTakesAnItemOfTheListItself)
{
    const Handle list = MakeList(xxq32s_type);
    const std::int32_t first = 5;
    ASSERT_EQ(qArrayList_Add(list, &first), STATUS_OK);
    for (int turn = 0; turn < 100; ++turn)
    {
        ASSERT_EQ(qArrayList_Add(list, qArrayList_At(list, 0)), STATUS_OK);
    }
    EXPECT_EQ(ItemsOf(list), Items(101, 5));
}

TEST(ArrayList, RemoveTakesOutAndClosesTheGap)
{
    const Handle list = ListOf({1, 2, 3, 4});
    std::int32_t item = 0;
    EXPECT_EQ(qArrayList_Remove(list, 1, &item), STATUS_OK);
    EXPECT_EQ(item, 2);
    EXPECT_EQ(ItemsOf(list), (Items{1, 3, 4}));
    EXPECT_EQ(qArrayList_Remove(list, 2, nullptr), STATUS_OK);
    EXPECT_EQ(ItemsOf(list), (Items{1, 3}));
    EXPECT_EQ(qArrayList_Remove(list, 2, &item), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qArrayList_Remove(list, kHuge, &item), STATUS_BAD_PARAMETER);
    EXPECT_EQ(item, 2);
}

TEST(ArrayList, PurgeReserveAndResizeKeepTheirPromises)
{
    const Handle list = ListOf({1, 2, 3});
    EXPECT_EQ(qArrayList_Reserve(list, 100), STATUS_OK);
    const void* data = qArrayList_Data(list);
    EXPECT_EQ(ItemsOf(list), (Items{1, 2, 3}));
    EXPECT_EQ(qArrayList_Reserve(list, 1), STATUS_OK);
    EXPECT_EQ(qArrayList_Resize(list, 100), STATUS_OK);
    EXPECT_EQ(qArrayList_Data(list), data);
    EXPECT_EQ(qArrayList_Count(list), 100U);
    EXPECT_EQ(qArrayList_Resize(list, 2), STATUS_OK);
    EXPECT_EQ(ItemsOf(list), (Items{1, 2}));
    EXPECT_EQ(qArrayList_Purge(list), STATUS_OK);
    EXPECT_EQ(qArrayList_Count(list), 0U);
    EXPECT_EQ(qArrayList_Data(list), data);
    EXPECT_EQ(qArrayList_Zero(list), STATUS_OK);
}

TEST(ArrayList, ZeroClearsItemsAndKeepsTheCount)
{
    const Handle list = ListOf({1, 2, 3});
    EXPECT_EQ(qArrayList_Zero(list), STATUS_OK);
    EXPECT_EQ(ItemsOf(list), (Items{0, 0, 0}));
}

TEST(ArrayList, ImportReplacesTheContents)
{
    const Handle list = ListOf({1, 2, 3});
    const Items longer = {9, 8, 7, 6, 5};
    EXPECT_EQ(qArrayList_Import(list, longer.data(), longer.size()), STATUS_OK);
    EXPECT_EQ(ItemsOf(list), longer);
    EXPECT_EQ(qArrayList_Import(list, qArrayList_At(list, 2), 3), STATUS_OK);
    EXPECT_EQ(ItemsOf(list), (Items{7, 6, 5}));
    EXPECT_EQ(qArrayList_Import(list, nullptr, 0), STATUS_OK);
    EXPECT_EQ(qArrayList_Count(list), 0U);
    EXPECT_EQ(qArrayList_Import(list, nullptr, 1), STATUS_BAD_PARAMETER);
}

TEST(ArrayList, NullsAndRangesAreChecked)
{
    const Handle list = ListOf({1});
    EXPECT_EQ(qArrayList_Construct(nullptr, xxq8u_type, 1, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qArrayList_Add(list, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_STOPPED(qArrayList_At(list, 1));
    EXPECT_STOPPED(qArrayList_At(list, kHuge));
}

TEST(ArrayList, ImpossibleSizesLeaveTheList)
{
    const Handle list = ListOf({1, 2});
    EXPECT_EQ(qArrayList_Reserve(list, kHuge), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArrayList_Resize(list, kHuge / 4), STATUS_OUT_OF_MEMORY);
    const std::int32_t item = 0;
    EXPECT_EQ(qArrayList_Import(list, &item, kHuge / 2), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(ItemsOf(list), (Items{1, 2}));
}

TEST(ArrayList, ClonesAreIndependent)
{
    const Handle list = ListOf({1, 2});
    Handle copy;
    ASSERT_EQ(xqObject_CloneImpl(copy.Slot(), list, nullptr, nullptr, 0), STATUS_OK);
    EXPECT_EQ(qArrayList_Purge(list), STATUS_OK);
    EXPECT_EQ(ItemsOf(copy), (Items{1, 2}));
}

TEST(ArrayList, OwnsOneCountPerObject)
{
    const Handle item = MakeArray1(xxq8u_type, 1);
    const auto counted = [&item] { return Handle(item).Detach(); };
    {
        const Handle list = MakeList(xxqObject_type);
        void* raw = counted();
        ASSERT_EQ(qArrayList_Add(list, &raw), STATUS_OK);
        raw = counted();
        ASSERT_EQ(qArrayList_Add(list, &raw), STATUS_OK);
        EXPECT_EQ(qObject_ShareCount(item), 3);

        void* taken = nullptr;
        EXPECT_EQ(qArrayList_Remove(list, 0, &taken), STATUS_OK);
        EXPECT_EQ(taken, item.Get());
        EXPECT_EQ(qObject_ShareCount(item), 3);
        xqObject_DestroyImpl(taken, 1);
        EXPECT_EQ(qArrayList_Remove(list, 0, nullptr), STATUS_OK);
        EXPECT_EQ(qObject_ShareCount(item), 1);

        EXPECT_EQ(qArrayList_Resize(list, 3), STATUS_OK);
        EXPECT_EQ(*static_cast<void**>(qArrayList_At(list, 0)), nullptr) << "vacated room holds no handle";
        *static_cast<void**>(qArrayList_At(list, 2)) = counted();
        EXPECT_EQ(qArrayList_Resize(list, 2), STATUS_OK);
        EXPECT_EQ(qObject_ShareCount(item), 1);

        *static_cast<void**>(qArrayList_At(list, 1)) = counted();
        EXPECT_EQ(qArrayList_Zero(list), STATUS_OK);
        EXPECT_EQ(qArrayList_Count(list), 2U);
        EXPECT_EQ(qObject_ShareCount(item), 1);

        *static_cast<void**>(qArrayList_At(list, 0)) = counted();
        EXPECT_EQ(qArrayList_Purge(list), STATUS_OK);
        EXPECT_EQ(qObject_ShareCount(item), 1);

        void* two[] = {counted(), counted()};
        EXPECT_EQ(qArrayList_Import(list, two, 2), STATUS_OK);
        counted(); // for the import of its own second item
        EXPECT_EQ(qArrayList_Import(list, qArrayList_At(list, 1), 1), STATUS_OK);
        EXPECT_EQ(qArrayList_Count(list), 1U);
        EXPECT_EQ(qObject_ShareCount(item), 2);
    }
    EXPECT_EQ(qObject_ShareCount(item), 1);
}

TEST(ArrayList, ItemsMustBeLiveObjects)
{
    const Handle list = MakeList(xxqObject_type);
    for (void* handle : StrangeHandles())
    {
        if (handle != nullptr)
        {
            EXPECT_STOPPED(qArrayList_Add(list, &handle));
            EXPECT_STOPPED(qArrayList_Import(list, &handle, 1));
        }
    }
    EXPECT_EQ(qArrayList_Count(list), 0U);
    void* array = MakeArray1(xxq8u_type, 1).Detach();
    const Handle lists = MakeList(xxqArrayList_type);
    EXPECT_STOPPED(qArrayList_Add(lists, &array));
    EXPECT_EQ(qArrayList_Add(list, &array), STATUS_OK);
}

TEST(ArrayList, ItemsThatDiedAreSkipped)
{
    const Handle list = MakeList(xxqObject_type);
    ASSERT_EQ(qArrayList_Resize(list, 2), STATUS_OK);
    static_cast<void**>(qArrayList_Data(list))[0] = DeadHandle();
    static_cast<void**>(qArrayList_Data(list))[1] = reinterpret_cast<void*>(3);
    EXPECT_EQ(qArrayList_Purge(list), STATUS_OK);
    EXPECT_EQ(qArrayList_Count(list), 0U);
}

TEST(ArrayList, WithoutMemoryNothingChanges)
{
    TestSupport::FailingAllocator allocator;
    const Handle list = MakeList(xxq32s_type, 2, allocator.Get());
    const Items two = {1, 2};
    ASSERT_EQ(qArrayList_Import(list, two.data(), 2), STATUS_OK);
    allocator.FailAt(1);
    const Items three = {3, 4, 5};
    EXPECT_EQ(qArrayList_Add(list, three.data()), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArrayList_Reserve(list, 3), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArrayList_Resize(list, 3), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArrayList_Import(list, three.data(), 3), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(ItemsOf(list), two);

    const auto construct = []
    {
        void* slot = nullptr;
        const qStatus status = qArrayList_Construct(&slot, xxq8u_type, 3, nullptr);
        EXPECT_EQ(status, slot == nullptr ? STATUS_OUT_OF_MEMORY : STATUS_OK);
        xqObject_DestroyImpl(slot, 1);
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(construct), 2U);
}

TEST(ArrayList, FailedImportOfObjectsLeavesTheirCounts)
{
    TestSupport::FailingAllocator allocator;
    const Handle list = MakeList(xxqObject_type, 0, allocator.Get());
    const Handle item = MakeArray1(xxq8u_type, 1);
    void* raw = item.Get();
    allocator.FailAt(1);
    EXPECT_EQ(qArrayList_Import(list, &raw, 1), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qObject_ShareCount(item), 1);
    EXPECT_EQ(qArrayList_Count(list), 0U);
}

} // namespace
