#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace PlatformTest;
using Bytes = std::vector<std::uint8_t>;

Handle MakeStream(qAlloc allocator = nullptr)
{
    Handle memory;
    EXPECT_EQ(qMemory_Construct(memory.Slot(), allocator, 0), STATUS_OK);
    return memory;
}

/** Writes bytes at the stream's position. */
qStatus Write(void* memory, const Bytes& bytes)
{
    Handle serializer;
    EXPECT_EQ(qSerializer_Construct(serializer.Slot(), memory, nullptr, nullptr), STATUS_OK);
    EXPECT_EQ(xqSerializer_WritePrimitives(serializer, bytes.data(), bytes.size(), 0), STATUS_OK);
    return xqSerializer_FlushEx(serializer, 1);
}

TEST(MemoryStream, StartsEmpty)
{
    const Handle memory = MakeStream();
    EXPECT_EQ(qMemory_Length(memory), 0U);
    EXPECT_STOPPED(qMemory_At(memory, 0));
    EXPECT_EQ(qMemory_Construct(nullptr, nullptr, 0), STATUS_BAD_PARAMETER);
}

TEST(MemoryStream, GrowsAsItIsWritten)
{
    const Handle memory = MakeStream();
    for (std::uint8_t turn = 0; turn < 200; ++turn)
    {
        ASSERT_EQ(Write(memory, Bytes(97, turn)), STATUS_OK);
    }
    ASSERT_EQ(qMemory_Length(memory), 200U * 97U);
    const auto* bytes = static_cast<const std::uint8_t*>(qMemory_At(memory, 0));
    for (std::size_t offset = 0; offset < 200 * 97; ++offset)
    {
        ASSERT_EQ(bytes[offset], offset / 97);
    }
    EXPECT_STOPPED(qMemory_At(memory, 200 * 97));
}

TEST(MemoryStream, AttachUsesTheCallersBuffer)
{
    const Handle memory = MakeStream();
    Bytes buffer = {1, 2, 3, 4, 5};
    EXPECT_EQ(qMemory_Attach(memory, buffer.data(), 1, 3, 5), STATUS_OK);
    EXPECT_EQ(qMemory_Length(memory), 3U);
    EXPECT_EQ(qMemory_At(memory, 0), buffer.data());
    EXPECT_EQ(Write(memory, {7, 8, 9}), STATUS_OK);
    EXPECT_EQ(qMemory_Length(memory), 4U);
    EXPECT_EQ(buffer, (Bytes{1, 7, 8, 9, 5}));
}

TEST(MemoryStream, AnAttachedBufferIsNotOutgrown)
{
    const Handle memory = MakeStream();
    Bytes buffer = {1, 2, 3};
    ASSERT_EQ(qMemory_Attach(memory, buffer.data(), 2, 2, 3), STATUS_OK);
    EXPECT_EQ(Write(memory, {7, 8}), STATUS_END_OF_STREAM);
    EXPECT_EQ(buffer, (Bytes{1, 2, 3}));
    EXPECT_EQ(Write(memory, {7}), STATUS_OK);
    EXPECT_EQ(buffer, (Bytes{1, 2, 7}));
}

TEST(MemoryStream, AttachChecksItsNumbers)
{
    const Handle memory = MakeStream();
    Bytes buffer(4);
    EXPECT_EQ(qMemory_Attach(memory, buffer.data(), 3, 2, 4), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemory_Attach(memory, buffer.data(), 0, 5, 4), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemory_Attach(memory, nullptr, 0, 0, 4), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemory_Attach(memory, buffer.data(), 0, kHuge, kHuge), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemory_Length(memory), 0U);
    EXPECT_EQ(qMemory_Attach(memory, nullptr, 0, 0, 0), STATUS_OK);
    EXPECT_EQ(qMemory_Length(memory), 0U);
}

TEST(MemoryStream, ItsOwnMemoryCannotBeAttached)
{
    const Handle memory = MakeStream();
    ASSERT_EQ(Write(memory, {1, 2, 3}), STATUS_OK);
    EXPECT_EQ(qMemory_Attach(memory, qMemory_At(memory, 1), 0, 1, 1), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemory_Length(memory), 3U);
}

TEST(MemoryStream, AttachReleasesWhatTheStreamOwned)
{
    TestSupport::FailingAllocator allocator;
    const Handle memory = MakeStream(allocator.Get());
    ASSERT_EQ(Write(memory, {1, 2, 3}), STATUS_OK);
    EXPECT_EQ(allocator.LiveBlocks(), 2U);
    Bytes buffer(4);
    ASSERT_EQ(qMemory_Attach(memory, buffer.data(), 0, 4, 4), STATUS_OK);
    EXPECT_EQ(allocator.LiveBlocks(), 1U);
}

TEST(MemoryStream, WithoutMemoryItStaysAsItWas)
{
    TestSupport::FailingAllocator allocator;
    void* slot = nullptr;
    allocator.FailAt(1);
    EXPECT_EQ(qMemory_Construct(&slot, allocator.Get(), 0), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(slot, nullptr);
    allocator.FailNever();
    const Handle memory = MakeStream(allocator.Get());
    allocator.FailAt(1);
    EXPECT_EQ(Write(memory, {1}), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(qMemory_Length(memory), 0U);
}

} // namespace
