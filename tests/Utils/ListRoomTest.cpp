#include <ZdkVisionLib/Utils/Utils.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

namespace
{

using namespace Zvl;
using TestSupport::ExpectThrow;

TEST(CheckAndReserveqArrayList, ConstructsTheListWhenThereIsNone)
{
    Zo::Object<void*> list;
    double* items = CheckAndReserveqArrayList<double>(list.Slot(), 3, nullptr);
    ASSERT_NE(items, nullptr);
    EXPECT_EQ(items, qArrayList_Data(list));
    EXPECT_EQ(qArrayList_Count(list), 0U);
    EXPECT_EQ(qArrayList_Type(list), xxq64f_type);
}

TEST(CheckAndReserveqArrayList, PointsBehindTheItemsThatAreThere)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 1, nullptr));
    const short item = 5;
    Zo::Test(qArrayList_Add(list, &item));
    void* raw = list.Get();
    short* items = CheckAndReserveqArrayList<short>(&raw, 1000, nullptr);
    EXPECT_EQ(items, static_cast<short*>(qArrayList_Data(list)) + 1);
    items[999] = 1;
    EXPECT_EQ(qArrayList_Count(list), 1U);
    EXPECT_EQ(*static_cast<short*>(qArrayList_At(list, 0)), 5);
}

TEST(CheckAndReserveqArrayList, AnotherItemTypeAndANullListGiveNull)
{
    EXPECT_EQ(CheckAndReserveqArrayList<double>(nullptr, 1, nullptr), nullptr);
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 1, nullptr));
    void* raw = list.Get();
    EXPECT_EQ(CheckAndReserveqArrayList<double>(&raw, 1, nullptr), nullptr);
    EXPECT_EQ(raw, list.Get());
}

TEST(CheckAndReserveqArrayList, RoomThatCannotExistIsThrown)
{
    void* raw = nullptr;
    ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::CheckAndReserveqArrayList",
                [&] { CheckAndReserveqArrayList<double>(&raw, SIZE_MAX, nullptr); });
    EXPECT_EQ(raw, nullptr);

    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq64f_type, 1, nullptr));
    const double item = 5.0;
    Zo::Test(qArrayList_Add(list, &item));
    raw = list.Get();
    for (const std::size_t count : {SIZE_MAX, SIZE_MAX - 1})
    {
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::CheckAndReserveqArrayList",
                    [&] { CheckAndReserveqArrayList<double>(&raw, count, nullptr); });
    }
    EXPECT_EQ(qArrayList_Count(list), 1U);
}

TEST(CheckAndReserveqArrayList, ListsAreMadeWithTheAllocatorGiven)
{
    TestSupport::FailingAllocator allocator;
    {
        Zo::Object<void*> list;
        CheckAndReserveqArrayList<double>(list.Slot(), 3, allocator.Get());
        EXPECT_GT(allocator.LiveBlocks(), 0U);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(CheckAndReserveqArrayList, EveryShortageOfMemoryIsThrown)
{
    EXPECT_GT(TestSupport::ExpectEachFailureThrown("Zvl::CheckAndReserveqArrayList",
                                                   []
                                                   {
                                                       Zo::Object<void*> list;
                                                       CheckAndReserveqArrayList<double>(list.Slot(), 3, nullptr);
                                                       void* raw = list.Get();
                                                       CheckAndReserveqArrayList<double>(&raw, 3000, nullptr);
                                                   }),
              0U);
}

} // namespace
