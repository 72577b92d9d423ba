#include <ZdkVisionLib/Alignment/RefFrame.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

#include <array>
#include <cstring>
#include <limits>

namespace
{

using namespace Zvl;
using Bytes = std::vector<std::uint8_t>;
using TestSupport::ExpectThrow;

constexpr const char* kWrite = "Zvl::RefFrame::Serialize";
constexpr const char* kRead = "Zvl::RefFrame::Deserialize";

std::array<double, 12> ValuesOf(const RefFrame& frame)
{
    return {frame.GetIx(), frame.GetIy(), frame.GetIz(), frame.GetJx(), frame.GetJy(), frame.GetJz(),
            frame.GetKx(), frame.GetKy(), frame.GetKz(), frame.GetTx(), frame.GetTy(), frame.GetTz()};
}

/** A frame whose twelve values are @p first, @p first + 1 and so on. */
RefFrame Numbered(double first)
{
    return RefFrame(first, first + 1, first + 2, first + 3, first + 4, first + 5, first + 6, first + 7, first + 8,
                    first + 9, first + 10, first + 11);
}

Bytes Serialized(const RefFrame& frame)
{
    Zo::Object<void*> array;
    frame.Serialize(array.Slot());
    EXPECT_EQ(qArray1_Type(array), xxq8u_type);
    const auto* data = static_cast<const std::uint8_t*>(qArray1_Data(array));
    return Bytes(data, data + qArray1_Count(array));
}

TEST(RefFrameFormat, IsALengthAVersionAndTwelveValues)
{
    const Bytes bytes = Serialized(Numbered(1.0));
    ASSERT_EQ(bytes.size(), 102U);
    EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 6), (Bytes{100, 0, 1, 0, 0, 0}));
    EXPECT_EQ(Bytes(bytes.begin() + 6, bytes.begin() + 22), // 1.0 is 3ff0..., 2.0 is 4000...
              (Bytes{0, 0, 0, 0, 0, 0, 0xf0, 0x3f, 0, 0, 0, 0, 0, 0, 0, 0x40}));
    EXPECT_EQ(Bytes(bytes.end() - 8, bytes.end()), (Bytes{0, 0, 0, 0, 0, 0, 0x28, 0x40})); // 12.0
}

TEST(RefFrameFormat, EveryValueComesBack)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const RefFrame frame(TestSupport::kNull, -0.0, notANumber, std::numeric_limits<double>::infinity(), 1e-310, 6.0,
                         7.0, 8.0, 9.0, 10.0, 11.0, TestSupport::kNull);
    Bytes bytes = Serialized(frame);
    RefFrame read;
    read.Deserialize(bytes.data(), bytes.size(), nullptr);
    const auto written = ValuesOf(frame);
    const auto found = ValuesOf(read);
    EXPECT_EQ(std::memcmp(written.data(), found.data(), sizeof(written)), 0);
}

TEST(RefFrameFormat, TheVersionIsNotLookedAt)
{
    Bytes bytes = Serialized(Numbered(1.0));
    for (const auto version : {std::uint8_t{0}, std::uint8_t{2}, std::uint8_t{255}})
    {
        bytes[2] = version;
        bytes[5] = version;
        RefFrame read;
        read.Deserialize(bytes.data(), bytes.size(), nullptr);
        EXPECT_EQ(ValuesOf(read), ValuesOf(Numbered(1.0)));
    }
}

TEST(RefFrameFormat, BytesBehindTheValuesAreSkipped)
{
    Bytes bytes = Serialized(Numbered(1.0));
    bytes.insert(bytes.end(), 5, 0xaa);
    RefFrame read;
    read.Deserialize(bytes.data(), bytes.size(), nullptr);
    EXPECT_EQ(ValuesOf(read), ValuesOf(Numbered(1.0)));
    bytes[0] = 105; // now they are part of the block
    read.SetIdentity();
    read.Deserialize(bytes.data(), bytes.size(), nullptr);
    EXPECT_EQ(ValuesOf(read), ValuesOf(Numbered(1.0)));
}

/** The values that @p cut gives, a frame's bytes without the last ones: those ahead of the failure are new. */
void ExpectFailureWhereItEnds(Bytes cut)
{
    cut.shrink_to_fit();
    RefFrame read = Numbered(101.0);
    ExpectThrow(STATUS_END_OF_STREAM, kRead, [&] { read.Deserialize(cut.data(), cut.size(), nullptr); });
    const std::size_t valuesRead = cut.size() < 2 + 4 ? 0 : (cut.size() - 2 - 4) / 8;
    const auto values = ValuesOf(read);
    for (std::size_t index = 0; index < values.size(); ++index)
    {
        EXPECT_EQ(values[index], static_cast<double>(index) + (index < valuesRead ? 1.0 : 101.0)) << cut.size();
    }
}

TEST(RefFrameFormat, ATruncatedBufferFailsAtTheFieldThatRunsPastTheEnd)
{
    const Bytes whole = Serialized(Numbered(1.0));
    for (std::size_t size = 0; size < whole.size(); ++size)
    {
        ExpectFailureWhereItEnds(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
    }
}

TEST(RefFrameFormat, ABlockThatIsCutShortFailsWhereItEnds)
{
    const Bytes whole = Serialized(Numbered(1.0));
    for (std::size_t length = 0; length < 100; ++length)
    {
        // Here the block knows how long it is.
        Bytes cut(whole.begin(), whole.begin() + 2 + static_cast<std::ptrdiff_t>(length));
        cut[0] = static_cast<std::uint8_t>(length);
        ExpectFailureWhereItEnds(cut);
    }
}

TEST(RefFrameFormat, ALengthBeyondTheBufferIsNoFailureWhenAllValuesAreThere)
{
    Bytes whole = Serialized(Numbered(1.0));
    whole[0] = 200;
    RefFrame read = Numbered(101.0);
    read.Deserialize(whole.data(), whole.size(), nullptr);
    EXPECT_EQ(ValuesOf(read), ValuesOf(Numbered(1.0)));
}

TEST(RefFrameFormat, RandomBytesEndInAFrameOrAnException)
{
    std::mt19937 random(43);
    int frames = 0;
    for (int turn = 0; turn < 20000; ++turn)
    {
        Bytes bytes(random() % 140);
        for (std::uint8_t& byte : bytes)
        {
            byte = static_cast<std::uint8_t>(random());
        }
        if (turn % 2 == 0 && bytes.size() > 1)
        {
            bytes[1] = 0;
        }
        bytes.shrink_to_fit();
        RefFrame read;
        try
        {
            read.Deserialize(bytes.data(), bytes.size(), nullptr);
            ++frames;
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_END_OF_STREAM);
        }
    }
    EXPECT_GT(frames, 0);
}

TEST(RefFrameFormat, NullPointersAreRefused)
{
    RefFrame frame;
    ExpectThrow(STATUS_BAD_PARAMETER, kWrite, [&] { frame.Serialize(nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, kRead, [&] { frame.Deserialize(nullptr, 102, nullptr); });
    ExpectThrow(STATUS_END_OF_STREAM, kRead, [&] { frame.Deserialize(nullptr, 0, nullptr); });
}

TEST(RefFrameFormat, EveryShortageOfMemoryIsThrown)
{
    Bytes bytes = Serialized(Numbered(1.0));
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        EXPECT_GT(TestSupport::ExpectEachFailureThrown(
                      kWrite,
                      []
                      {
                          void* array = nullptr;
                          try
                          {
                              Numbered(1.0).Serialize(&array);
                          }
                          catch (const Zo::Exception&)
                          {
                              EXPECT_EQ(array, nullptr);
                              throw;
                          }
                          xqObject_DestroyImpl(array, 1);
                      },
                      mode),
                  4U);
        EXPECT_GT(TestSupport::ExpectEachFailureThrown(
                      kRead, [&] { RefFrame().Deserialize(bytes.data(), bytes.size(), nullptr); }, mode),
                  1U);
    }
}

TEST(RefFrameFormat, ScratchObjectsComeFromTheAllocatorGiven)
{
    Bytes bytes = Serialized(Numbered(1.0));
    TestSupport::FailingAllocator allocator;
    allocator.FailNever();
    RefFrame().Deserialize(bytes.data(), bytes.size(), allocator.Get());
    EXPECT_GT(allocator.Allocations(), 0U);
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
