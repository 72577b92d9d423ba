#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

#include <cstring>
#include <limits>

namespace
{

using namespace Zvl;
using namespace TestSupport;

constexpr const char* kFunction = "Zvl::PadArray2";
constexpr int kHighest = std::numeric_limits<int>::max();

/** An array of any item type whose cells are @p cells. */
template <typename T>
Zo::Object<void*> ArrayOfType(qType type, std::size_t rows, std::size_t columns, const std::vector<T>& cells)
{
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), type, rows, columns, nullptr));
    std::memcpy(qArray2_At(array, 0, 0), cells.data(), cells.size() * sizeof(T));
    return array;
}

/** Pads by steps to the left and up from the edge, one cell at a time. */
template <typename T>
void ExpectPadded(qType type, std::mt19937& random)
{
    std::uniform_int_distribution<std::size_t> side(1, 12);
    std::uniform_int_distribution<int> value(std::numeric_limits<short>::min(), std::numeric_limits<short>::max());
    const std::size_t rows = side(random);
    const std::size_t columns = side(random);
    const std::size_t padX = 1 + side(random) % columns;
    const std::size_t padY = 1 + side(random) % rows;
    std::vector<T> cells(rows * columns);
    for (T& cell : cells)
    {
        cell = static_cast<T>(value(random));
    }
    const Zo::Object<void*> padded =
        PadArray2<T>(ArrayOfType(type, rows, columns, cells), static_cast<int>(padX), static_cast<int>(padY), nullptr);
    ASSERT_EQ(qArray2_Type(padded), type);
    ASSERT_EQ(qArray2_Length(padded, 0), rows + 2 * padY);
    ASSERT_EQ(qArray2_Length(padded, 1), columns + 2 * padX);
    const auto inside = [](std::size_t position, std::size_t pad, std::size_t length)
    {
        std::size_t index = position < pad ? pad - position - 1 : position - pad;
        return index < length ? index : length - 1 - (index - length);
    };
    for (std::size_t row = 0; row < rows + 2 * padY; ++row)
    {
        for (std::size_t column = 0; column < columns + 2 * padX; ++column)
        {
            ASSERT_EQ(*static_cast<const T*>(qArray2_At(padded, row, column)),
                      cells[inside(row, padY, rows) * columns + inside(column, padX, columns)])
                << row << ", " << column;
        }
    }
}

TEST(PadArray2, RepeatsTheEdge)
{
    const Zo::Object<void*> array = MakeArray<std::int16_t>(2, 3, {1, 2, 3, 4, kMissing, 6});
    const Zo::Object<void*> padded = PadArray2<short>(array, 2, 1, nullptr);
    EXPECT_EQ(qArray2_Length(padded, 0), 4U);
    EXPECT_EQ(qArray2_Length(padded, 1), 7U);
    EXPECT_EQ(
        CellsIn<std::int16_t>(padded),
        (std::vector<std::int16_t>{2, 1, 1,        2, 3, 3,        2,        2, 1, 1,        2, 3, 3,       2, kMissing,
                                   4, 4, kMissing, 6, 6, kMissing, kMissing, 4, 4, kMissing, 6, 6, kMissing}));
    EXPECT_EQ(CellsIn<std::int16_t>(array), (std::vector<std::int16_t>{1, 2, 3, 4, kMissing, 6}));
}

TEST(PadArray2, APadAsLargeAsTheArrayMirrorsAllOfIt)
{
    const Zo::Object<void*> array = MakeArray<std::uint8_t>(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(CellsIn<std::uint8_t>(PadArray2<unsigned char>(array, 3, 2, nullptr)),
              (std::vector<std::uint8_t>{6, 5, 4, 4, 5, 6, 6, 5, 4, 3, 2, 1, 1, 2, 3, 3, 2, 1, //
                                         3, 2, 1, 1, 2, 3, 3, 2, 1, 6, 5, 4, 4, 5, 6, 6, 5, 4, //
                                         6, 5, 4, 4, 5, 6, 6, 5, 4, 3, 2, 1, 1, 2, 3, 3, 2, 1}));
}

TEST(PadArray2, PadsEveryCellWidth)
{
    std::mt19937 random(30);
    for (int round = 0; round < 500; ++round)
    {
        ASSERT_NO_FATAL_FAILURE(ExpectPadded<std::uint8_t>(xxq8u_type, random));
        ASSERT_NO_FATAL_FAILURE(ExpectPadded<std::int16_t>(xxq16s_type, random));
        ASSERT_NO_FATAL_FAILURE(ExpectPadded<std::int32_t>(xxq32s_type, random));
    }
}

TEST(PadArray2, KeepsTheItemType)
{
    std::mt19937 random(31);
    ExpectPadded<std::int16_t>(xxq16u_type, random);
}

TEST(PadArray2, TakesNoNullOrForeignArray)
{
    Zo::Object<void*> line;
    Zo::Test(qArray1_Construct(line.Slot(), xxq16s_type, 12, nullptr));
    for (const Zo::Object<void*>& other : {Zo::Object<void*>(), line, MakeFilled<double>(3, 3, 1.0)})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { PadArray2<short>(other, 1, 1, nullptr); });
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { PadArray2<int>(other, 1, 1, nullptr); });
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { PadArray2<unsigned char>(other, 1, 1, nullptr); });
    }
    const Zo::Object<void*> heights = MakeFilled<std::int16_t>(3, 3, 1);
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { PadArray2<unsigned char>(heights, 1, 1, nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { PadArray2<int>(heights, 1, 1, nullptr); });
}

TEST(PadArray2, PadsAreFromOneToTheLengths)
{
    const Zo::Object<void*> array = MakeFilled<std::int16_t>(2, 3, 7);
    for (const auto& [padX, padY] : {std::pair{0, 1}, std::pair{1, 0}, std::pair{-1, 1}, std::pair{1, -kHighest - 1},
                                     std::pair{4, 1}, std::pair{1, 3}, std::pair{kHighest, kHighest}})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                    [&, x = padX, y = padY] { PadArray2<short>(array, x, y, nullptr); });
    }
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                [&] { PadArray2<short>(MakeArray<std::int16_t>(0, 3, {}), 1, 1, nullptr); });
}

TEST(PadArray2, EveryShortageOfMemoryIsThrown)
{
    const Zo::Object<void*> array = MakeFilled<std::int16_t>(2, 3, 7);
    for (const auto mode : {Failing::FromNthOn, Failing::OnlyNth})
    {
        EXPECT_EQ(ExpectEachFailureThrown(
                      kFunction, [&] { PadArray2<short>(array, 1, 1, nullptr); }, mode),
                  2U);
    }
}

TEST(PadArray2, TheResultComesFromTheAllocatorGiven)
{
    FailingAllocator allocator;
    {
        const Zo::Object<void*> padded = PadArray2<short>(MakeFilled<std::int16_t>(2, 3, 7), 1, 1, allocator.Get());
        EXPECT_EQ(allocator.LiveBlocks(), 2U);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
