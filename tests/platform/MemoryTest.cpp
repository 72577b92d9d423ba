#include "platform/Fixtures.h"

#include <set>
#include <thread>

namespace
{

using namespace PlatformTest;
using Bytes = std::vector<std::uint8_t>;

TEST(Memory, CopyHandlesOverlap)
{
    Bytes bytes = {1, 2, 3, 4, 5};
    EXPECT_EQ(qMemCopy(&bytes[1], &bytes[0], 4), STATUS_OK);
    EXPECT_EQ(bytes, (Bytes{1, 1, 2, 3, 4}));
    EXPECT_EQ(qMemCopy(&bytes[0], &bytes[1], 4), STATUS_OK);
    EXPECT_EQ(bytes, (Bytes{1, 2, 3, 4, 4}));
}

TEST(Memory, SetFills)
{
    Bytes bytes = {1, 2, 3};
    EXPECT_EQ(qMemSet(bytes.data(), 0xAB, 2), STATUS_OK);
    EXPECT_EQ(bytes, (Bytes{0xAB, 0xAB, 3}));
}

TEST(Memory, ReverseTurnsBytesAround)
{
    Bytes bytes = {1, 2, 3, 4, 5};
    EXPECT_EQ(qMemReverse(bytes.data(), 5), STATUS_OK);
    EXPECT_EQ(bytes, (Bytes{5, 4, 3, 2, 1}));
    EXPECT_EQ(qMemReverse(bytes.data(), 1), STATUS_OK);
    EXPECT_EQ(bytes[0], 5);
    Bytes copy(3);
    EXPECT_EQ(qMemReverseCopy(copy.data(), bytes.data(), 3), STATUS_OK);
    EXPECT_EQ(copy, (Bytes{3, 4, 5}));
}

TEST(Memory, NullIsFineForNoBytesOnly)
{
    std::uint8_t byte = 0;
    EXPECT_EQ(qMemCopy(nullptr, nullptr, 0), STATUS_OK);
    EXPECT_EQ(qMemSet(nullptr, 1, 0), STATUS_OK);
    EXPECT_EQ(qMemReverse(nullptr, 0), STATUS_OK);
    EXPECT_EQ(qMemReverseCopy(nullptr, nullptr, 0), STATUS_OK);
    EXPECT_EQ(qMemCopy(nullptr, &byte, 1), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemCopy(&byte, nullptr, 1), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemSet(nullptr, 1, 1), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemReverse(nullptr, 1), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemReverseCopy(nullptr, &byte, 1), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemReverseCopy(&byte, nullptr, 1), STATUS_BAD_PARAMETER);
}

TEST(Memory, ImpossibleSizesAreRefused)
{
    std::uint8_t byte = 7;
    EXPECT_EQ(qMemCopy(&byte, &byte, kHuge), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemSet(&byte, 1, kHuge), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMemReverse(&byte, kHuge), STATUS_BAD_PARAMETER);
    EXPECT_EQ(byte, 7);
}

TEST(Random, WordsDifferAndUseAllBits)
{
    std::set<std::size_t> words;
    std::size_t any = 0;
    std::size_t all = ~std::size_t{0};
    for (int turn = 0; turn < 1000; ++turn)
    {
        const std::size_t word = qRandomSize();
        words.insert(word);
        any |= word;
        all &= word;
    }
    EXPECT_EQ(words.size(), 1000U);
    EXPECT_EQ(any, ~std::size_t{0});
    EXPECT_EQ(all, 0U);
}

TEST(Random, ThreadsHaveGeneratorsOfTheirOwn)
{
    std::size_t other = 0;
    std::thread([&other] { other = qRandomSize(); }).join();
    EXPECT_NE(other, qRandomSize());
}

} // namespace
