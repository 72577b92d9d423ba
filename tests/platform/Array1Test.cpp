#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace PlatformTest;

TEST(Array1, KnowsTypeCountAndCells)
{
    const Handle array = MakeArray1(xxqPoint64f_type, 5);
    EXPECT_EQ(qArray1_Count(array), 5U);
    EXPECT_EQ(qArray1_Type(array), xxqPoint64f_type);
    EXPECT_TRUE(IsAligned(qArray1_Data(array)));
    auto* cells = static_cast<qPoint64f*>(qArray1_Data(array));
    cells[4] = {1.0, 2.0};
    EXPECT_EQ(qArray1_Zero(array), STATUS_OK);
    EXPECT_EQ(cells[4].x, 0.0);
    EXPECT_EQ(cells[4].y, 0.0);
}

TEST(Array1, CellsOfEverySizeAreAligned)
{
    for (std::size_t count = 1; count < 200; ++count)
    {
        EXPECT_TRUE(IsAligned(qArray1_Data(MakeArray1(xxq8u_type, count))));
    }
}

TEST(Array1, MayBeEmpty)
{
    const Handle array = MakeArray1(xxq8u_type, 0);
    EXPECT_EQ(qArray1_Count(array), 0U);
    EXPECT_EQ(qArray1_Data(array), nullptr);
    EXPECT_EQ(qArray1_Zero(array), STATUS_OK);
    Handle copy;
    EXPECT_EQ(xqObject_CloneImpl(copy.Slot(), array, nullptr, nullptr, 0), STATUS_OK);
    EXPECT_EQ(qArray1_Count(copy), 0U);
}

TEST(Array1, TakesAnotherShape)
{
    const Handle array = MakeArray1(xxq8u_type, 3);
    ASSERT_EQ(qArray1_Allocate(array, xxq64f_type, 100), STATUS_OK);
    EXPECT_EQ(qArray1_Count(array), 100U);
    EXPECT_EQ(qArray1_Type(array), xxq64f_type);
    EXPECT_EQ(qArray1_Zero(array), STATUS_OK);
    EXPECT_EQ(static_cast<double*>(qArray1_Data(array))[99], 0.0);
}

TEST(Array1, AReshapeOfAsManyBytesKeepsTheBlock)
{
    const Handle array = MakeArray1(xxq16s_type, 4);
    void* data = qArray1_Data(array);
    ASSERT_EQ(qArray1_Allocate(array, xxq64f_type, 1), STATUS_OK);
    EXPECT_EQ(qArray1_Data(array), data);
    EXPECT_EQ(qArray1_Count(array), 1U);
    EXPECT_EQ(qArray1_Type(array), xxq64f_type);
    // Handles start as null, which old bytes would not be.
    ASSERT_EQ(qArray1_Allocate(array, xxqObject_type, 1), STATUS_OK);
    EXPECT_EQ(*static_cast<void**>(qArray1_Data(array)), nullptr);
}

TEST(Array1, AFailedReshapeChangesNothing)
{
    const Handle array = MakeArray1(xxq8u_type, 3);
    void* data = qArray1_Data(array);
    EXPECT_EQ(qArray1_Allocate(array, xxq64f_type, kHuge), STATUS_OUT_OF_MEMORY);
    EXPECT_STOPPED(qArray1_Allocate(array, nullptr, 1));
    EXPECT_EQ(qArray1_Count(array), 3U);
    EXPECT_EQ(qArray1_Type(array), xxq8u_type);
    EXPECT_EQ(qArray1_Data(array), data);
}

TEST(Array1, NullSlotIsRefused)
{
    EXPECT_EQ(qArray1_Construct(nullptr, xxq8u_type, 3, nullptr), STATUS_BAD_PARAMETER);
}

TEST(Array1, OwnsObjectsInItsCells)
{
    const Handle item = MakeArray1(xxq8u_type, 1);
    {
        const Handle array = MakeArray1(xxqObject_type, 2);
        auto* cells = static_cast<void**>(qArray1_Data(array));
        EXPECT_EQ(cells[0], nullptr);
        cells[1] = Handle(item).Detach();
        EXPECT_EQ(qObject_ShareCount(item), 2);
        EXPECT_EQ(qArray1_Zero(array), STATUS_OK);
        EXPECT_EQ(cells[1], nullptr);
        EXPECT_EQ(qObject_ShareCount(item), 1);
        cells[0] = Handle(item).Detach();
    }
    EXPECT_EQ(qObject_ShareCount(item), 1);
}

TEST(Array1, WithoutMemoryTheSlotStays)
{
    const auto construct = []
    {
        void* slot = nullptr;
        const qStatus status = qArray1_Construct(&slot, xxq64f_type, 9, nullptr);
        EXPECT_EQ(status, slot == nullptr ? STATUS_OUT_OF_MEMORY : STATUS_OK);
        xqObject_DestroyImpl(slot, 1);
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(construct), 2U);

    TestSupport::FailingAllocator allocator;
    const Handle array = MakeArray1(xxq8u_type, 3, allocator.Get());
    allocator.FailAt(1);
    EXPECT_EQ(qArray1_Allocate(array, xxq8u_type, 4), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArray1_Count(array), 3U);
}

} // namespace
