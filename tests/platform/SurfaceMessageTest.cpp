#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

#include <ZdkVisionLib/platform/ZoVision.h>

namespace
{

using namespace PlatformTest;

Handle MakeMessage(std::size_t length, std::size_t width, std::size_t itemCount)
{
    Handle message;
    EXPECT_EQ(ZvSurfaceMsg_Construct(message.Slot(), length, width, itemCount, nullptr), STATUS_OK);
    return message;
}

TEST(SurfaceMessage, StartsWithMissingCellsAndUnitScale)
{
    const Handle message = MakeMessage(3, 4, 2);
    EXPECT_TRUE(xqCastClass_ObjectIs(message, xxZvSurfaceMsg_type));
    EXPECT_EQ(ZvSurfaceMsg_Length(message), 3U);
    EXPECT_EQ(ZvSurfaceMsg_Width(message), 4U);
    const qPoint3d64f scale = ZvSurfaceMsg_Scale(message);
    EXPECT_EQ(scale.x, 1.0);
    EXPECT_EQ(scale.y, 1.0);
    EXPECT_EQ(scale.z, 1.0);
    for (const int index : {0, 1})
    {
        qPoint3d64f offset{9.0, 9.0, 9.0};
        EXPECT_EQ(ZvSurfaceMsg_OffsetForRef(message, index, &offset), STATUS_OK);
        EXPECT_EQ(offset.x, 0.0);
        EXPECT_EQ(offset.y, 0.0);
        EXPECT_EQ(offset.z, 0.0);
    }
    void* cells = ZvSurfaceMsg_PointsArray(message, 0);
    ASSERT_EQ(qArray2_Type(cells), xxq16s_type);
    EXPECT_EQ(qArray2_Length(cells, 0), 3U);
    EXPECT_EQ(qArray2_Length(cells, 1), 4U);
    for (std::size_t cell = 0; cell < 12; ++cell)
    {
        EXPECT_EQ(*static_cast<std::int16_t*>(qArray2_At(cells, cell / 4, cell % 4)), -32768);
    }
}

TEST(SurfaceMessage, ItemsHaveOffsetsAndShareTheGrid)
{
    const Handle message = MakeMessage(1, 1, 2);
    const qPoint3d64f offset{1.0, 2.0, 3.0};
    const qPoint3d64f scale{0.1, 0.2, 0.3};
    EXPECT_EQ(ZvSurfaceMsg_SetOffset(message, 1, &offset), STATUS_OK);
    EXPECT_EQ(ZvSurfaceMsg_SetScale(message, &scale), STATUS_OK);
    qPoint3d64f read{};
    EXPECT_EQ(ZvSurfaceMsg_OffsetForRef(message, 1, &read), STATUS_OK);
    EXPECT_EQ(read.z, 3.0);
    EXPECT_EQ(ZvSurfaceMsg_OffsetForRef(message, 0, &read), STATUS_OK);
    EXPECT_EQ(read.z, 0.0);
    EXPECT_EQ(ZvSurfaceMsg_Scale(message).y, 0.2);
    void* cells = ZvSurfaceMsg_PointsArray(message, 0);
    EXPECT_EQ(ZvSurfaceMsg_PointsArray(message, 1), cells);
    EXPECT_EQ(qObject_ShareCount(cells), 1);
}

TEST(SurfaceMessage, IndicesAndNullsAreChecked)
{
    const Handle message = MakeMessage(1, 1, 1);
    qPoint3d64f offset{7.0, 7.0, 7.0};
    for (const int index : {-1, 1, 2147483647, -2147483647 - 1})
    {
        EXPECT_EQ(ZvSurfaceMsg_OffsetForRef(message, index, &offset), STATUS_BAD_PARAMETER);
        EXPECT_EQ(ZvSurfaceMsg_SetOffset(message, index, &offset), STATUS_BAD_PARAMETER);
        EXPECT_EQ(ZvSurfaceMsg_PointsArray(message, index), nullptr);
    }
    EXPECT_EQ(offset.x, 7.0);
    EXPECT_EQ(ZvSurfaceMsg_OffsetForRef(message, 0, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(ZvSurfaceMsg_SetOffset(message, 0, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(ZvSurfaceMsg_SetScale(message, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(ZvSurfaceMsg_Construct(nullptr, 1, 1, 1, nullptr), STATUS_BAD_PARAMETER);
}

TEST(SurfaceMessage, StrangeHandlesAreStopped)
{
    std::vector<void*> handles = StrangeHandles();
    const Handle array = MakeArray1(xxq8u_type, 1);
    handles.push_back(array.Get());
    qPoint3d64f point{};
    for (void* handle : handles)
    {
        EXPECT_STOPPED(ZvSurfaceMsg_Width(handle));
        EXPECT_STOPPED(ZvSurfaceMsg_Length(handle));
        EXPECT_STOPPED(ZvSurfaceMsg_Scale(handle));
        EXPECT_STOPPED(ZvSurfaceMsg_SetScale(handle, &point));
        EXPECT_STOPPED(ZvSurfaceMsg_SetOffset(handle, 0, &point));
        EXPECT_STOPPED(ZvSurfaceMsg_OffsetForRef(handle, 0, &point));
        EXPECT_STOPPED(ZvSurfaceMsg_PointsArray(handle, 0));
    }
}

TEST(SurfaceMessage, MayBeEmptyAndWithoutItems)
{
    const Handle message = MakeMessage(0, 0, 0);
    EXPECT_EQ(ZvSurfaceMsg_Width(message), 0U);
    EXPECT_EQ(ZvSurfaceMsg_PointsArray(message, 0), nullptr);
    void* slot = nullptr;
    EXPECT_EQ(ZvSurfaceMsg_Construct(&slot, kHuge, kHuge, 1, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(ZvSurfaceMsg_Construct(&slot, 1, 1, kHuge, nullptr), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(slot, nullptr);
}

TEST(SurfaceMessage, ClonesAreIndependent)
{
    const Handle message = MakeMessage(2, 2, 1);
    const qPoint3d64f offset{4.0, 5.0, 6.0};
    ZvSurfaceMsg_SetOffset(message, 0, &offset);
    Handle copy;
    ASSERT_EQ(xqObject_CloneImpl(copy.Slot(), message, nullptr, nullptr, 0), STATUS_OK);
    qArray2_Zero(ZvSurfaceMsg_PointsArray(message, 0));
    EXPECT_EQ(*static_cast<std::int16_t*>(qArray2_At(ZvSurfaceMsg_PointsArray(copy, 0), 1, 1)), -32768);
    qPoint3d64f read{};
    EXPECT_EQ(ZvSurfaceMsg_OffsetForRef(copy, 0, &read), STATUS_OK);
    EXPECT_EQ(read.y, 5.0);
}

TEST(SurfaceMessage, WithoutMemoryTheSlotStays)
{
    const Handle original = MakeMessage(2, 2, 1);
    const auto expectAllOrNothing = [](qStatus status, void* slot)
    {
        EXPECT_EQ(status, slot == nullptr ? STATUS_OUT_OF_MEMORY : STATUS_OK);
        xqObject_DestroyImpl(slot, 1);
    };
    const auto construct = [&]
    {
        void* slot = nullptr;
        const qStatus status = ZvSurfaceMsg_Construct(&slot, 2, 2, 1, nullptr);
        expectAllOrNothing(status, slot);
    };
    const auto clone = [&]
    {
        void* slot = nullptr;
        const qStatus status = xqObject_CloneImpl(&slot, original, nullptr, nullptr, 0);
        expectAllOrNothing(status, slot);
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(construct), 5U);
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(clone), 5U);
}

} // namespace
