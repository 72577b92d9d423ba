#include "platform/Fixtures.h"
#include "support/FailingAllocator.h"

#include <memory>
#include <random>

namespace
{

using namespace PlatformTest;
using Bytes = std::vector<std::uint8_t>;

/** A serializer that writes to a stream of its own. */
struct Writer
{
    Handle memory;
    Handle serializer;

    explicit Writer(int swap = 0)
    {
        EXPECT_EQ(qMemory_Construct(memory.Slot(), nullptr, 0), STATUS_OK);
        EXPECT_EQ(qSerializer_Construct(serializer.Slot(), memory, nullptr, nullptr), STATUS_OK);
        EXPECT_EQ(qSerializer_SetByteSwap(serializer, swap), STATUS_OK);
    }

    /** What stands in the stream after a flush. */
    Bytes Flushed() const
    {
        EXPECT_EQ(xqSerializer_FlushEx(serializer, 1), STATUS_OK);
        if (qMemory_Length(memory) == 0)
        {
            return {};
        }
        const auto* first = static_cast<const std::uint8_t*>(qMemory_At(memory, 0));
        return {first, first + qMemory_Length(memory)};
    }
};

/** A serializer that reads a copy of the given bytes, which has not one byte more. */
struct Reader
{
    std::unique_ptr<std::uint8_t[]> bytes;
    Handle memory;
    Handle serializer;

    explicit Reader(const Bytes& source, int swap = 0) : bytes(new std::uint8_t[source.size()])
    {
        std::copy(source.begin(), source.end(), bytes.get());
        EXPECT_EQ(qMemory_Construct(memory.Slot(), nullptr, 0), STATUS_OK);
        EXPECT_EQ(qMemory_Attach(memory, bytes.get(), 0, source.size(), source.size()), STATUS_OK);
        EXPECT_EQ(qSerializer_Construct(serializer.Slot(), memory, nullptr, nullptr), STATUS_OK);
        EXPECT_EQ(qSerializer_SetByteSwap(serializer, swap), STATUS_OK);
    }
};

/** One value of each size, alone and in a row. */
void WriteSample(void* serializer)
{
    const std::uint8_t byte = 0x01;
    const std::uint16_t words[] = {0x0203, 0x0405};
    EXPECT_EQ(xqSerializer_WritePrimitives(serializer, &byte, 1, 0), STATUS_OK);
    EXPECT_EQ(xqSerializer_WritePrimitives(serializer, words, 2, 1), STATUS_OK);
    EXPECT_EQ(qSerializer_Write32s(serializer, -2), STATUS_OK);
    EXPECT_EQ(qSerializer_Write64f(serializer, 1.5), STATUS_OK); // 0x3FF8000000000000
}

const Bytes kSampleLittle = {0x01, 0x03, 0x02, 0x05, 0x04, 0xFE, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0xF8, 0x3F};
const Bytes kSampleBig = {0x01, 0x02, 0x03, 0x04, 0x05, 0xFF, 0xFF, 0xFF, 0xFE, 0x3F, 0xF8, 0, 0, 0, 0, 0, 0};

TEST(Serializer, BytesAreLittleEndianUnlessSwapped)
{
    const Writer little(0);
    WriteSample(little.serializer);
    EXPECT_EQ(little.Flushed(), kSampleLittle);
    const Writer big(1);
    WriteSample(big.serializer);
    EXPECT_EQ(big.Flushed(), kSampleBig);
}

TEST(Serializer, ReadsWhatItWrites)
{
    for (const int swap : {0, 1})
    {
        const Reader reader(swap == 0 ? kSampleLittle : kSampleBig, swap);
        std::uint8_t byte = 0;
        std::uint16_t words[2] = {};
        std::int32_t integer = 0;
        double real = 0.0;
        EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_OK);
        EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, words, 2, 1), STATUS_OK);
        EXPECT_EQ(qSerializer_Read32s(reader.serializer, &integer), STATUS_OK);
        EXPECT_EQ(qSerializer_Read64f(reader.serializer, &real), STATUS_OK);
        EXPECT_EQ(byte, 1);
        EXPECT_EQ(words[0], 0x0203);
        EXPECT_EQ(words[1], 0x0405);
        EXPECT_EQ(integer, -2);
        EXPECT_EQ(real, 1.5);
        EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_END_OF_STREAM);
    }
}

TEST(Serializer, NothingReachesTheStreamBeforeAFlush)
{
    const Writer writer;
    EXPECT_EQ(qSerializer_Write32s(writer.serializer, 7), STATUS_OK);
    EXPECT_EQ(qMemory_Length(writer.memory), 0U);
    EXPECT_EQ(writer.Flushed(), (Bytes{7, 0, 0, 0}));
    EXPECT_EQ(writer.Flushed(), (Bytes{7, 0, 0, 0}));
}

TEST(Serializer, BlocksAreFramedByTheirLength)
{
    struct Case
    {
        qType type;
        int includeSize;
        int swap;
        Bytes expected;
    };
    const std::vector<Case> cases = {
        {xxq8u_type, 0, 0, {4, 7, 0, 0, 0}},
        {xxq8u_type, 1, 0, {5, 7, 0, 0, 0}},
        {xxq16u_type, 0, 0, {4, 0, 7, 0, 0, 0}},
        {xxq16u_type, 1, 1, {0, 6, 0, 0, 0, 7}},
        {xxq32s_type, 0, 1, {0, 0, 0, 4, 0, 0, 0, 7}},
        {xxq32s_type, 1, 0, {8, 0, 0, 0, 7, 0, 0, 0}},
        {xxq64s_type, 0, 0, {4, 0, 0, 0, 0, 0, 0, 0, 7, 0, 0, 0}},
        {xxq64s_type, 1, 1, {0, 0, 0, 0, 0, 0, 0, 12, 0, 0, 0, 7}},
    };
    for (const Case& sample : cases)
    {
        const Writer writer(sample.swap);
        EXPECT_EQ(qSerializer_BeginWrite(writer.serializer, sample.type, sample.includeSize), STATUS_OK);
        EXPECT_EQ(qSerializer_Write32s(writer.serializer, 7), STATUS_OK);
        EXPECT_EQ(qSerializer_EndWrite(writer.serializer), STATUS_OK);
        EXPECT_EQ(writer.Flushed(), sample.expected);

        const Reader reader(sample.expected, sample.swap);
        std::int32_t value = 0;
        EXPECT_EQ(qSerializer_BeginRead(reader.serializer, sample.type, sample.includeSize), STATUS_OK);
        EXPECT_EQ(qSerializer_Read32s(reader.serializer, &value), STATUS_OK);
        EXPECT_EQ(value, 7);
        EXPECT_EQ(qSerializer_EndRead(reader.serializer), STATUS_OK);
    }
}

TEST(Serializer, BlocksNest)
{
    const Writer writer;
    EXPECT_EQ(qSerializer_Write32s(writer.serializer, 1), STATUS_OK);
    EXPECT_EQ(qSerializer_BeginWrite(writer.serializer, xxq16u_type, 0), STATUS_OK);
    EXPECT_EQ(qSerializer_BeginWrite(writer.serializer, xxq8u_type, 1), STATUS_OK);
    EXPECT_EQ(qSerializer_Write32s(writer.serializer, 2), STATUS_OK);
    // A flush in between sends what precedes the outermost open block, and no more.
    EXPECT_EQ(writer.Flushed(), (Bytes{1, 0, 0, 0}));
    EXPECT_EQ(qSerializer_EndWrite(writer.serializer), STATUS_OK);
    EXPECT_EQ(qSerializer_BeginWrite(writer.serializer, xxq8u_type, 0), STATUS_OK);
    EXPECT_EQ(qSerializer_EndWrite(writer.serializer), STATUS_OK);
    EXPECT_EQ(writer.Flushed(), (Bytes{1, 0, 0, 0}));
    EXPECT_EQ(qSerializer_EndWrite(writer.serializer), STATUS_OK);
    EXPECT_EQ(writer.Flushed(), (Bytes{1, 0, 0, 0, 6, 0, 5, 2, 0, 0, 0, 0}));
    EXPECT_EQ(qSerializer_EndWrite(writer.serializer), STATUS_BAD_PARAMETER);
}

TEST(Serializer, ClosingABlockSkipsWhatWasNotRead)
{
    const Reader reader({3, 1, 10, 11, 99});
    std::uint8_t byte = 0;
    EXPECT_EQ(qSerializer_BeginRead(reader.serializer, xxq8u_type, 0), STATUS_OK);
    EXPECT_EQ(qSerializer_BeginRead(reader.serializer, xxq8u_type, 0), STATUS_OK);
    EXPECT_EQ(qSerializer_EndRead(reader.serializer), STATUS_OK);
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_OK);
    EXPECT_EQ(byte, 11);
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_END_OF_STREAM)
        << "reading stops at the end of the block";
    EXPECT_EQ(byte, 11);
    EXPECT_EQ(qSerializer_EndRead(reader.serializer), STATUS_OK);
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_OK);
    EXPECT_EQ(byte, 99);
    EXPECT_EQ(qSerializer_EndRead(reader.serializer), STATUS_BAD_PARAMETER);
}

TEST(Serializer, LengthsThatDoNotFitAreReported)
{
    const Writer writer;
    const Bytes payload(256, 3);
    EXPECT_EQ(qSerializer_BeginWrite(writer.serializer, xxq8u_type, 0), STATUS_OK);
    EXPECT_EQ(xqSerializer_WritePrimitives(writer.serializer, payload.data(), 255, 0), STATUS_OK);
    EXPECT_EQ(qSerializer_EndWrite(writer.serializer), STATUS_OK);
    EXPECT_EQ(qSerializer_BeginWrite(writer.serializer, xxq8u_type, 1), STATUS_OK);
    EXPECT_EQ(xqSerializer_WritePrimitives(writer.serializer, payload.data(), 255, 0), STATUS_OK);
    EXPECT_EQ(qSerializer_EndWrite(writer.serializer), STATUS_BAD_DATA);
    EXPECT_EQ(writer.Flushed().size(), 256U) << "the block that failed stays open";
}

TEST(Serializer, HostileLengthsNeverLeadOutside)
{
    const auto begin = [](const Bytes& bytes, qType type, int includeSize)
    {
        const Reader reader(bytes);
        return qSerializer_BeginRead(reader.serializer, type, includeSize);
    };
    EXPECT_EQ(begin({}, xxq16u_type, 0), STATUS_END_OF_STREAM);
    EXPECT_EQ(begin({0}, xxq16u_type, 0), STATUS_END_OF_STREAM);
    EXPECT_EQ(begin({0, 0}, xxq16u_type, 0), STATUS_OK);
    EXPECT_EQ(begin({1, 0}, xxq16u_type, 1), STATUS_BAD_DATA);
    EXPECT_EQ(begin({2, 0}, xxq16u_type, 1), STATUS_OK);
    EXPECT_EQ(begin({0xFF, 0xFF, 0xFF, 0xFF, 1}, xxq32s_type, 0), STATUS_BAD_DATA);
    EXPECT_EQ(begin(Bytes(9, 0xFF), xxq64s_type, 0), STATUS_BAD_DATA);
    EXPECT_EQ(begin(Bytes(9, 0xFF), xxq64s_type, 1), STATUS_BAD_DATA);
}

/** The bytes that a block gives until one is not there. */
Bytes BytesOfBlock(const Reader& reader, qType type, int includeSize)
{
    EXPECT_EQ(qSerializer_BeginRead(reader.serializer, type, includeSize), STATUS_OK);
    Bytes bytes;
    std::uint8_t byte = 0;
    while (xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0) == STATUS_OK)
    {
        bytes.push_back(byte);
    }
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_END_OF_STREAM);
    EXPECT_EQ(qSerializer_EndRead(reader.serializer), STATUS_OK);
    return bytes;
}

TEST(Serializer, ABlockThatClaimsMoreThanThereIsEndsWithTheStream)
{
    const auto read = [](const Bytes& bytes, qType type, int includeSize)
    { return BytesOfBlock(Reader(bytes), type, includeSize); };
    EXPECT_EQ(read({1, 0}, xxq16u_type, 0), Bytes());
    EXPECT_EQ(read({0xFF, 0xFF, 7}, xxq16u_type, 0), Bytes({7}));
    EXPECT_EQ(read({0xFF, 0xFF, 7, 8}, xxq16u_type, 1), Bytes({7, 8}));
    EXPECT_EQ(read({0xFF, 0xFF, 0xFF, 0x7F, 9}, xxq32s_type, 0), Bytes({9}));
    EXPECT_EQ(read({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 1, 2}, xxq64s_type, 0), Bytes({1, 2}));
}

TEST(Serializer, AnInnerBlockThatClaimsMoreThanTheOuterOneHasEndsWithIt)
{
    const Reader reader({3, 200, 5, 6, 7});
    EXPECT_EQ(qSerializer_BeginRead(reader.serializer, xxq8u_type, 0), STATUS_OK);
    EXPECT_EQ(BytesOfBlock(reader, xxq8u_type, 0), Bytes({5, 6}));
    EXPECT_EQ(qSerializer_EndRead(reader.serializer), STATUS_OK);
    std::uint8_t byte = 0;
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_OK);
    EXPECT_EQ(byte, 7);
}

TEST(Serializer, AFailedBeginReadLeavesThePosition)
{
    const Reader reader({9, 5});
    std::uint8_t byte = 0;
    EXPECT_EQ(qSerializer_BeginRead(reader.serializer, xxq32s_type, 0), STATUS_END_OF_STREAM);
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &byte, 1, 0), STATUS_OK);
    EXPECT_EQ(byte, 9);
}

TEST(Serializer, TruncatedInputFailsAtEachLength)
{
    for (std::size_t length = 0; length < kSampleLittle.size(); ++length)
    {
        const Reader reader(Bytes(kSampleLittle.begin(), kSampleLittle.begin() + static_cast<int>(length)));
        Bytes all(kSampleLittle.size(), 0xEE);
        EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, all.data(), all.size(), 0), STATUS_END_OF_STREAM);
        EXPECT_EQ(all, Bytes(kSampleLittle.size(), 0xEE)) << "a failed read leaves the items untouched";
        EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, all.data(), length, 0), STATUS_OK);
    }
}

TEST(Serializer, ArgumentsAreChecked)
{
    const Writer writer;
    double value = 0.0;
    EXPECT_EQ(qSerializer_Construct(nullptr, writer.memory, nullptr, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qSerializer_BeginWrite(writer.serializer, xxq64f_type, 0), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qSerializer_BeginRead(writer.serializer, xxq16s_type, 0), STATUS_BAD_PARAMETER);
    EXPECT_STOPPED(qSerializer_BeginWrite(writer.serializer, nullptr, 0));
    EXPECT_STOPPED(qSerializer_BeginRead(writer.serializer, nullptr, 0));
    for (const int log2Size : {-1, 4, 64})
    {
        EXPECT_EQ(xqSerializer_WritePrimitives(writer.serializer, &value, 1, log2Size), STATUS_BAD_PARAMETER);
        EXPECT_EQ(xqSerializer_ReadPrimitives(writer.serializer, &value, 1, log2Size), STATUS_BAD_PARAMETER);
    }
    EXPECT_EQ(xqSerializer_WritePrimitives(writer.serializer, nullptr, 1, 3), STATUS_BAD_PARAMETER);
    EXPECT_EQ(xqSerializer_ReadPrimitives(writer.serializer, nullptr, 1, 3), STATUS_BAD_PARAMETER);
    EXPECT_EQ(xqSerializer_WritePrimitives(writer.serializer, nullptr, 0, 3), STATUS_OK);
    EXPECT_EQ(xqSerializer_ReadPrimitives(writer.serializer, nullptr, 0, 3), STATUS_OK);
    EXPECT_EQ(xqSerializer_WritePrimitives(writer.serializer, &value, kHuge, 3), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(xqSerializer_WritePrimitives(writer.serializer, &value, kHalf, 0), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(xqSerializer_ReadPrimitives(writer.serializer, &value, kHuge, 3), STATUS_END_OF_STREAM);
    EXPECT_TRUE(writer.Flushed().empty());
}

TEST(Serializer, HoldsItsStream)
{
    Writer writer;
    EXPECT_EQ(qObject_ShareCount(writer.memory), 2);
    writer.serializer.Reset();
    EXPECT_EQ(qObject_ShareCount(writer.memory), 1);
}

TEST(Serializer, LongOutputArrivesWhole)
{
    const Writer writer;
    constexpr std::int32_t kCount = 100000;
    for (std::int32_t value = 0; value < kCount; ++value)
    {
        ASSERT_EQ(qSerializer_Write32s(writer.serializer, value), STATUS_OK);
    }
    const Bytes bytes = writer.Flushed();
    ASSERT_EQ(bytes.size(), 4U * kCount);
    for (std::int32_t value = 0; value < kCount; ++value)
    {
        std::int32_t stored = 0;
        std::memcpy(&stored, &bytes[4 * static_cast<std::size_t>(value)], 4);
        ASSERT_EQ(stored, value);
    }
}

TEST(Serializer, AStreamThatShrinksStopsTheReader)
{
    const Reader reader({4, 1, 2, 3, 4});
    EXPECT_EQ(qSerializer_BeginRead(reader.serializer, xxq8u_type, 0), STATUS_OK);
    std::uint8_t two[] = {7, 8};
    ASSERT_EQ(qMemory_Attach(reader.memory, two, 1, 2, 2), STATUS_OK);
    std::uint16_t pair = 0;
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &pair, 1, 1), STATUS_END_OF_STREAM);
    EXPECT_EQ(qSerializer_EndRead(reader.serializer), STATUS_OK);
    EXPECT_EQ(xqSerializer_ReadPrimitives(reader.serializer, &pair, 1, 0), STATUS_END_OF_STREAM);
}

TEST(Serializer, RandomBytesNeverLeadOutside)
{
    std::mt19937 random(20240817);
    const qType types[] = {xxq8u_type, xxq16u_type, xxq32s_type, xxq64s_type};
    std::size_t reads = 0;
    for (int turn = 0; turn < 3000; ++turn)
    {
        Bytes bytes(random() % 64);
        for (std::uint8_t& byte : bytes)
        {
            byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() : random() % 16);
        }
        const Reader reader(bytes, static_cast<int>(random() % 2));
        for (int step = 0; step < 40; ++step)
        {
            std::uint64_t values[4] = {};
            const int includeSize = static_cast<int>(random() % 2);
            switch (random() % 3)
            {
            case 0:
                qSerializer_BeginRead(reader.serializer, types[random() % 4], includeSize);
                break;
            case 1:
                qSerializer_EndRead(reader.serializer);
                break;
            default:
                reads += xqSerializer_ReadPrimitives(reader.serializer, values, random() % 5,
                                                     static_cast<int>(random() % 4)) == STATUS_OK;
            }
        }
    }
    EXPECT_GT(reads, 1000U);
}

TEST(Serializer, RandomNestsReadBackAsWritten)
{
    std::mt19937 random(7);
    const qType types[] = {xxq16u_type, xxq32s_type, xxq64s_type};
    for (int turn = 0; turn < 300; ++turn)
    {
        // Each step is a value, the start of a block (-1 - type) or its end (-10).
        std::vector<int> steps;
        int depth = 0;
        for (int step = 0; step < 30; ++step)
        {
            const int kind = static_cast<int>(random() % 4);
            if (kind == 0)
            {
                steps.push_back(-1 - static_cast<int>(random() % 3));
                ++depth;
            }
            else if (kind == 1 && depth > 0)
            {
                steps.push_back(-10);
                --depth;
            }
            else
            {
                steps.push_back(static_cast<int>(random() % 1000));
            }
        }
        steps.insert(steps.end(), static_cast<std::size_t>(depth), -10);

        const int swap = turn % 2;
        const int includeSize = turn % 3 == 0;
        const Writer writer(swap);
        for (const int step : steps)
        {
            const qStatus status = step == -10 ? qSerializer_EndWrite(writer.serializer)
                                   : step < 0 ? qSerializer_BeginWrite(writer.serializer, types[-1 - step], includeSize)
                                              : qSerializer_Write32s(writer.serializer, step);
            ASSERT_EQ(status, STATUS_OK);
        }
        const Reader reader(writer.Flushed(), swap);
        for (const int step : steps)
        {
            std::int32_t value = step;
            const qStatus status = step == -10 ? qSerializer_EndRead(reader.serializer)
                                   : step < 0  ? qSerializer_BeginRead(reader.serializer, types[-1 - step], includeSize)
                                               : qSerializer_Read32s(reader.serializer, &value);
            ASSERT_EQ(status, STATUS_OK);
            ASSERT_EQ(value, step);
        }
    }
}

TEST(Serializer, WithoutMemoryTheStatusSaysSo)
{
    const auto roundTrip = []
    {
        Handle memory;
        Handle serializer;
        const qStatus steps[] = {
            qMemory_Construct(memory.Slot(), nullptr, 0),
            memory.Get() == nullptr ? STATUS_OUT_OF_MEMORY
                                    : qSerializer_Construct(serializer.Slot(), memory, nullptr, nullptr),
            serializer.Get() == nullptr ? STATUS_OUT_OF_MEMORY : qSerializer_BeginWrite(serializer, xxq16u_type, 0),
        };
        for (const qStatus status : steps)
        {
            EXPECT_TRUE(status == STATUS_OK || status == STATUS_OUT_OF_MEMORY);
        }
        if (steps[2] == STATUS_OK)
        {
            EXPECT_EQ(qSerializer_Write64f(serializer, 1.0), STATUS_OK);
            EXPECT_EQ(qSerializer_EndWrite(serializer), STATUS_OK);
            const qStatus flushed = xqSerializer_FlushEx(serializer, 1);
            EXPECT_EQ(qMemory_Length(memory), flushed == STATUS_OK ? 10U : 0U);
        }
        else if (serializer.Get() != nullptr)
        {
            EXPECT_EQ(qSerializer_EndWrite(serializer), STATUS_BAD_PARAMETER) << "no block was opened";
        }
    };
    // Stream, serializer, its buffer, its stack of blocks, and the stream's bytes.
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(roundTrip), 5U);
}

} // namespace
