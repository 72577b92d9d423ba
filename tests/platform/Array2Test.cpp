#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

#include <algorithm>

namespace
{

using namespace PlatformTest;

std::int16_t& Cell(void* array, std::size_t row, std::size_t column)
{
    return *static_cast<std::int16_t*>(qArray2_At(array, row, column));
}

/** Rows by columns, numbered row after row. */
Handle Numbered(std::size_t rows, std::size_t columns)
{
    Handle array = MakeArray2(xxq16s_type, rows, columns);
    for (std::size_t index = 0; index < rows * columns; ++index)
    {
        Cell(array, index / columns, index % columns) = static_cast<std::int16_t>(index);
    }
    return array;
}

TEST(Array2, RowsFollowEachOtherWithoutGaps)
{
    const Handle array = Numbered(3, 5);
    EXPECT_EQ(qArray2_Length(array, 0), 3U);
    EXPECT_EQ(qArray2_Length(array, 1), 5U);
    EXPECT_EQ(qArray2_Type(array), xxq16s_type);
    const auto* cells = static_cast<const std::int16_t*>(qArray2_At(array, 0, 0));
    EXPECT_TRUE(IsAligned(cells));
    for (std::int16_t index = 0; index < 15; ++index)
    {
        EXPECT_EQ(cells[index], index);
    }
}

TEST(Array2, ItemsAreCopiedInAndOut)
{
    const Handle array = Numbered(3, 5);
    std::int16_t item = 0;
    EXPECT_EQ(qArray2_Item(array, 1, 2, &item), STATUS_OK);
    EXPECT_EQ(item, 7);
    item = -9;
    EXPECT_EQ(qArray2_SetItem(array, 2, 4, &item), STATUS_OK);
    EXPECT_EQ(Cell(array, 2, 4), -9);
}

TEST(Array2, PositionsOutOfRangeAreRefused)
{
    const Handle array = Numbered(3, 5);
    std::int16_t item = 99;
    for (const auto& [row, column] : {std::pair<std::size_t, std::size_t>{3, 0}, {0, 5}, {kHuge, 0}, {0, kHuge}})
    {
        EXPECT_EQ(qArray2_Item(array, row, column, &item), STATUS_BAD_PARAMETER);
        EXPECT_EQ(qArray2_SetItem(array, row, column, &item), STATUS_BAD_PARAMETER);
        EXPECT_THROW(qArray2_At(array, row, column), Zo::Exception);
    }
    EXPECT_EQ(item, 99);
    EXPECT_EQ(qArray2_Item(array, 0, 0, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qArray2_SetItem(array, 0, 0, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_STOPPED(qArray2_Length(array, 2));
}

TEST(Array2, MayBeEmptyInEitherDirection)
{
    for (const auto& [rows, columns] : {std::pair<std::size_t, std::size_t>{0, 0}, {0, 7}, {7, 0}})
    {
        const Handle array = MakeArray2(xxq64f_type, rows, columns);
        EXPECT_EQ(qArray2_Length(array, 0), rows);
        EXPECT_EQ(qArray2_Length(array, 1), columns);
        EXPECT_EQ(qArray2_Zero(array), STATUS_OK);
        EXPECT_THROW(qArray2_At(array, 0, 0), Zo::Exception);
        Handle copy;
        EXPECT_EQ(xqObject_CloneImpl(copy.Slot(), array, nullptr, nullptr, 0), STATUS_OK);
        EXPECT_EQ(qArray2_Length(copy, 1), columns);
    }
}

TEST(Array2, ImpossibleSizesFailAtOnce)
{
    void* slot = nullptr;
    const std::size_t root = std::size_t{1} << 32;
    EXPECT_EQ(qArray2_Construct(&slot, xxq16s_type, kHuge, 2, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArray2_Construct(&slot, xxq16s_type, root, root, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArray2_Construct(&slot, xxq8u_type, kHuge - 3, kHuge - 5, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArray2_Construct(&slot, xxq8u_type, kHuge - 3, 0, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArray2_Construct(&slot, xxq8u_type, 0, kHuge - 3, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(slot, nullptr);
    const Handle array = Numbered(2, 2);
    EXPECT_EQ(qArray2_Allocate(array, xxq16s_type, root, root), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(Cell(array, 1, 1), 3);
}

TEST(Array2, ZeroClearsEveryCell)
{
    const Handle array = Numbered(4, 4);
    EXPECT_EQ(qArray2_Zero(array), STATUS_OK);
    for (std::size_t index = 0; index < 16; ++index)
    {
        EXPECT_EQ(Cell(array, index / 4, index % 4), 0);
    }
}

TEST(Array2, ZeroClearsLargeArraysWhole)
{
    const Handle array = MakeArray2(xxq8u_type, 1237, 1701); // about 2 MiB, shared among the workers
    auto* cells = static_cast<std::uint8_t*>(qArray2_At(array, 0, 0));
    for (const std::size_t workers : {std::size_t{1}, std::size_t{3}, std::size_t{17}})
    {
        const std::size_t before = qThreadPool_Count(qThreadPool_Default());
        ASSERT_EQ(qThreadPool_SetCount(qThreadPool_Default(), workers), STATUS_OK);
        ASSERT_EQ(qMemSet(cells, 0xFF, 1237 * 1701), STATUS_OK);
        EXPECT_EQ(qArray2_Zero(array), STATUS_OK);
        EXPECT_TRUE(std::all_of(cells, cells + 1237 * 1701, [](std::uint8_t cell) { return cell == 0; }));
        qThreadPool_SetCount(qThreadPool_Default(), before);
    }
}

TEST(Array2, AssignTakesTypeSizeAndCells)
{
    const Handle source = Numbered(3, 4);
    const Handle target = MakeArray2(xxq64f_type, 10, 10);
    EXPECT_EQ(xqArray2_Assign(target, source, 0), STATUS_OK);
    EXPECT_EQ(qArray2_Type(target), xxq16s_type);
    EXPECT_EQ(qArray2_Length(target, 0), 3U);
    EXPECT_EQ(qArray2_Length(target, 1), 4U);
    Cell(source, 2, 3) = 100;
    EXPECT_EQ(Cell(target, 2, 3), 11);
    EXPECT_EQ(xqArray2_Assign(target, source, 0), STATUS_OK);
    EXPECT_EQ(Cell(target, 2, 3), 100);
    EXPECT_EQ(xqArray2_Assign(target, target, 0), STATUS_OK);
    EXPECT_EQ(Cell(target, 2, 3), 100);
}

TEST(Array2, AssignSharesObjects)
{
    const Handle item = MakeArray1(xxq8u_type, 1);
    const Handle source = MakeArray2(xxqObject_type, 1, 2);
    void* raw = Handle(item).Detach();
    EXPECT_EQ(qArray2_SetItem(source, 0, 1, &raw), STATUS_OK);
    {
        const Handle target = MakeArray2(xxqObject_type, 1, 2);
        EXPECT_EQ(xqArray2_Assign(target, source, 0), STATUS_OK);
        EXPECT_EQ(qObject_ShareCount(item), 3);
        EXPECT_EQ(xqArray2_Assign(target, target, 0), STATUS_OK);
        EXPECT_EQ(qObject_ShareCount(item), 3);
    }
    EXPECT_EQ(qObject_ShareCount(item), 2);
    void* none = nullptr;
    EXPECT_EQ(qArray2_SetItem(source, 0, 1, &none), STATUS_OK);
    EXPECT_EQ(qObject_ShareCount(item), 1);
    void* dead = DeadHandle();
    EXPECT_STOPPED(qArray2_SetItem(source, 0, 1, &dead));
}

TEST(Array2, ClonesAreIndependent)
{
    const Handle source = Numbered(2, 3);
    Handle copy;
    ASSERT_EQ(xqObject_CloneImpl(copy.Slot(), source, nullptr, nullptr, 0), STATUS_OK);
    Cell(source, 1, 2) = 77;
    EXPECT_EQ(Cell(copy, 1, 2), 5);
    EXPECT_TRUE(IsAligned(qArray2_At(copy, 0, 0)));
}

TEST(Array2, AReshapeOfAsManyBytesKeepsTheBlock)
{
    const Handle array = Numbered(2, 2);
    const void* data = &Cell(array, 0, 0);
    ASSERT_EQ(qArray2_Allocate(array, xxq16s_type, 4, 1), STATUS_OK);
    EXPECT_EQ(&Cell(array, 0, 0), data);
    EXPECT_EQ(qArray2_Length(array, 0), 4U);
    EXPECT_EQ(qArray2_Length(array, 1), 1U);
    // An array of handles releases them and starts anew.
    ASSERT_EQ(qArray2_Allocate(array, xxqObject_type, 1, 1), STATUS_OK);
    EXPECT_EQ(*static_cast<void**>(qArray2_At(array, 0, 0)), nullptr);
    void* item = MakeArray2(xxq8u_type, 1, 1).Detach();
    ASSERT_EQ(qArray2_SetItem(array, 0, 0, &item), STATUS_OK);
    ASSERT_EQ(qArray2_Allocate(array, xxq64f_type, 1, 1), STATUS_OK);
    EXPECT_FALSE(xqCastClass_ObjectIsValid(item));
}

TEST(Array2, WithoutMemoryNothingChanges)
{
    const auto construct = []
    {
        void* slot = nullptr;
        const qStatus status = qArray2_Construct(&slot, xxq8u_type, 3, 3, nullptr);
        EXPECT_EQ(status, slot == nullptr ? STATUS_OUT_OF_MEMORY : STATUS_OK);
        xqObject_DestroyImpl(slot, 1);
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(construct), 2U);

    TestSupport::FailingAllocator allocator;
    const Handle array = MakeArray2(xxq16s_type, 1, 1, allocator.Get());
    Cell(array, 0, 0) = 5;
    allocator.FailAt(1);
    EXPECT_EQ(qArray2_Allocate(array, xxq16s_type, 2, 2), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(xqArray2_Assign(array, Numbered(2, 2), 0), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qArray2_Length(array, 0), 1U);
    EXPECT_EQ(Cell(array, 0, 0), 5);
}

TEST(Array2, NullSlotIsRefused)
{
    EXPECT_EQ(qArray2_Construct(nullptr, xxq8u_type, 1, 1, nullptr), STATUS_BAD_PARAMETER);
}

} // namespace
