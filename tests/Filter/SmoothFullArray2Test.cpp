#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include "Filter/SurfaceFilterSupport.h"
#include "support/FailingAllocator.h"

#include <algorithm>
#include <limits>

namespace
{

using namespace Zvl;
using namespace TestSupport;
using Heights = std::vector<std::int16_t>;

constexpr const char* kFunction = "Zvl::SmoothFullArray2";

Heights Smoothed(const HeightMap& map, int width, int height)
{
    const Zo::Object<void*> array = ArrayOf(map);
    const Zo::Object<void*> mean = SmoothFullArray2<short>(array, width, height, nullptr);
    EXPECT_EQ(qArray2_Length(mean, 0), map.rows);
    EXPECT_EQ(qArray2_Length(mean, 1), map.columns);
    EXPECT_EQ(CellsIn<std::int16_t>(array), map.cells);
    return CellsIn<std::int16_t>(mean);
}

/** By two tables of inclusive prefix sums over the padded map. */
Heights SmoothedPlainly(const HeightMap& map, int width, int height)
{
    const auto halfX = static_cast<std::size_t>(width / 2);
    const auto halfY = static_cast<std::size_t>(height / 2);
    const Zo::Object<void*> array = PadArray2<short>(ArrayOf(map), width / 2, height / 2, nullptr);
    const std::size_t columns = map.columns + 2 * halfX;
    const HeightMap padded = {map.rows + 2 * halfY, columns, CellsIn<std::int16_t>(array)};
    std::vector<std::int64_t> integral(padded.cells.size());
    std::vector<std::int64_t> countMap(padded.cells.size());
    for (std::size_t row = 0; row < padded.rows; ++row)
    {
        std::int64_t sum = 0;
        std::int64_t count = 0;
        for (std::size_t column = 0; column < columns; ++column)
        {
            const std::int16_t cell = padded.At(row, column);
            sum += cell == kMissing ? 0 : cell;
            count += cell == kMissing ? 0 : 1;
            const std::size_t at = row * columns + column;
            integral[at] = sum + (row == 0 ? 0 : integral[at - columns]);
            countMap[at] = count + (row == 0 ? 0 : countMap[at - columns]);
        }
    }
    Heights mean(map.cells.size());
    for (std::size_t row = 0; row < map.rows; ++row)
    {
        for (std::size_t column = 0; column < map.columns; ++column)
        {
            const std::size_t top = row * columns + column;
            const std::size_t bottom = top + 2 * halfY * columns;
            const auto inBox = [&](const std::vector<std::int64_t>& table)
            { return table[bottom + 2 * halfX] + table[top] - table[top + 2 * halfX] - table[bottom]; };
            mean[row * map.columns + column] = map.At(row, column) == kMissing
                                                   ? kMissing
                                                   : static_cast<std::int16_t>(inBox(integral) / inBox(countMap));
        }
    }
    return mean;
}

TEST(SmoothFullArray2, TheBoxReachesOneCellFurtherAhead)
{
    const HeightMap map = {3, 4, {0, 10, 20, 30, 0, 10, 20, 30, 0, 10, 20, 30}};
    EXPECT_EQ(Smoothed(map, 2, 2), (Heights{5, 15, 25, 30, 5, 15, 25, 30, 5, 15, 25, 30}));
    const HeightMap turned = {4, 3, {0, 0, 0, 10, 10, 10, 20, 20, 20, 30, 30, 30}};
    EXPECT_EQ(Smoothed(turned, 2, 2), (Heights{5, 5, 5, 15, 15, 15, 25, 25, 25, 30, 30, 30}));
}

TEST(SmoothFullArray2, AnOddSizeCountsAsOneLess)
{
    const HeightMap map = {4, 4, {0, 10, 20, 30, 0, 10, 20, 30, 0, 10, 20, 30, 0, 10, 20, 30}};
    EXPECT_EQ(Smoothed(map, 3, 3), Smoothed(map, 2, 2));
    EXPECT_EQ(Smoothed(map, 3, 3), (Heights{5, 15, 25, 30, 5, 15, 25, 30, 5, 15, 25, 30, 5, 15, 25, 30}));
}

TEST(SmoothFullArray2, TheMapIsMirroredAtItsEdges)
{
    // A box of 4 x 2: the columns 0 1 2 of the first cell come after a second column 0, its own mirror image.
    const HeightMap map = {3, 5, {1, 2, 4, 8, 16, 1, 2, 4, 8, 16, 1, 2, 4, 8, 16}};
    const Heights row = {(1 + 1 + 2 + 4) / 4, (1 + 2 + 4 + 8) / 4, (2 + 4 + 8 + 16) / 4, (4 + 8 + 16 + 16) / 4,
                         (8 + 16 + 16 + 8) / 4};
    Heights expected;
    for (int i = 0; i < 3; ++i)
    {
        expected.insert(expected.end(), row.begin(), row.end());
    }
    EXPECT_EQ(Smoothed(map, 4, 2), expected);
}

TEST(SmoothFullArray2, MissingHeightsStayAndAreLeftOut)
{
    const HeightMap map = {3, 3, {4, kMissing, 9, 1, 2, kMissing, kMissing, kMissing, -8}};
    EXPECT_EQ(Smoothed(map, 2, 2),
              (Heights{(4 + 1 + 2) / 3, kMissing, 9, (1 + 2) / 2, (2 - 8) / 2, kMissing, kMissing, kMissing, -8}));
}

TEST(SmoothFullArray2, MeansAreTruncatedTowardZero)
{
    const HeightMap map = {3, 3, {-1, -2, -1, -2, -2, -2, 0, 0, 0}};
    EXPECT_EQ(Smoothed(map, 2, 2), (Heights{-7 / 4, -7 / 4, -6 / 4, -1, -1, -1, 0, 0, 0}));
}

TEST(SmoothFullArray2, EveryRandomMapIsSmoothedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(40);
            std::uniform_int_distribution<std::size_t> side(3, 60);
            for (int round = 0; round < 400; ++round)
            {
                for (const Holes holes : kAllHoles)
                {
                    const HeightMap map =
                        RandomHeightMap(side(random), side(random), holes, round % 2 == 0 ? 32767 : 9, random);
                    const int width = 2 + static_cast<int>(random() % (map.columns - 2));
                    const int height = 2 + static_cast<int>(random() % (map.rows - 2));
                    ASSERT_EQ(Smoothed(map, width, height), SmoothedPlainly(map, width, height))
                        << map.rows << " x " << map.columns << ", box " << width << " x " << height;
                }
            }
        });
}

struct BoxSize
{
    int width;
    int height;
};

// The sums of the first box need just more than the 24 bits of a float. Those of the second just fit in 32 bits, with their
// sign, and those of the others do not.
constexpr BoxSize kLargeBoxes[] = {{34, 34}, {256, 256}, {290, 226}, {308, 298}};

TEST(SmoothFullArray2, TheHighestSumsAreExact)
{
    InEachInstructionSet(
        []
        {
            for (const auto& [width, height] : kLargeBoxes)
            {
                for (const std::int16_t cell : {std::int16_t{32767}, std::int16_t{-32767}})
                {
                    HeightMap level = {300, 310, Heights(300 * 310, cell)};
                    EXPECT_EQ(Smoothed(level, width, height), level.cells);
                    level.cells[150 * 310 + 150] = static_cast<std::int16_t>(cell / 2);
                    EXPECT_EQ(Smoothed(level, width, height), SmoothedPlainly(level, width, height));
                }
            }
        });
}

// Rough plates as high or as low as can be: a quotient of numbers that single precision has rounded is one off in some cells.
TEST(SmoothFullArray2, LargeBoxesOfRoughMapsAreSmoothedAsPlainly)
{
    std::mt19937 random(41);
    HeightMap high = RandomHeightMap(300, 310, Holes::Sprinkled, 32767, random);
    HeightMap low = high;
    for (std::size_t i = 0; i < high.cells.size(); ++i)
    {
        if (high.cells[i] != GetNull<short>())
        {
            high.cells[i] = static_cast<std::int16_t>(32767 - std::abs(high.cells[i] % 100));
            low.cells[i] = static_cast<std::int16_t>(-high.cells[i]);
        }
    }
    InEachInstructionSet(
        [&]
        {
            for (const auto& [width, height] : kLargeBoxes)
            {
                EXPECT_EQ(Smoothed(high, width, height), SmoothedPlainly(high, width, height));
                EXPECT_EQ(Smoothed(low, width, height), SmoothedPlainly(low, width, height));
            }
        });
}

TEST(SmoothFullArray2, TakesHeightsOnly)
{
    Zo::Object<void*> line;
    Zo::Test(qArray1_Construct(line.Slot(), xxq16s_type, 12, nullptr));
    for (const Zo::Object<void*>& other :
         {Zo::Object<void*>(), line, MakeFilled<std::uint8_t>(4, 4, 1), MakeFilled<double>(4, 4, 1.0)})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { SmoothFullArray2<short>(other, 2, 2, nullptr); });
    }
}

TEST(SmoothFullArray2, TheBoxIsSmallerThanTheMap)
{
    const Zo::Object<void*> array = MakeFilled<std::int16_t>(4, 5, 7);
    constexpr int kHighest = std::numeric_limits<int>::max();
    for (const auto& [width, height] : {std::pair{0, 2}, std::pair{2, 0}, std::pair{-3, 2}, std::pair{2, -kHighest - 1},
                                        std::pair{5, 2}, std::pair{2, 4}, std::pair{kHighest, kHighest}})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                    [&, w = width, h = height] { SmoothFullArray2<short>(array, w, h, nullptr); });
    }
    EXPECT_EQ(CellsIn<std::int16_t>(SmoothFullArray2<short>(array, 4, 3, nullptr)), Heights(20, 7));
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                [&] { SmoothFullArray2<short>(MakeArray<std::int16_t>(0, 3, {}), 2, 2, nullptr); });
}

TEST(SmoothFullArray2, ASizeOfOneLeavesNothingToPad)
{
    const Zo::Object<void*> array = MakeFilled<std::int16_t>(4, 5, 7);
    for (const auto& [width, height] : {std::pair{1, 2}, std::pair{2, 1}, std::pair{1, 1}})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PadArray2",
                    [&, w = width, h = height] { SmoothFullArray2<short>(array, w, h, nullptr); });
    }
}

TEST(SmoothFullArray2, EveryShortageOfMemoryIsThrown)
{
    const Zo::Object<void*> array = MakeFilled<std::int16_t>(4, 5, 7);
    for (const auto mode : {Failing::FromNthOn, Failing::OnlyNth})
    {
        EXPECT_GE(ExpectEachFailureThrown(
                      kFunction, [&] { SmoothFullArray2<short>(array, 3, 2, nullptr); }, mode),
                  4U);
    }
}

TEST(SmoothFullArray2, TheResultComesFromTheAllocatorGiven)
{
    FailingAllocator allocator;
    {
        const Zo::Object<void*> mean =
            SmoothFullArray2<short>(MakeFilled<std::int16_t>(4, 5, 7), 3, 2, allocator.Get());
        EXPECT_EQ(allocator.LiveBlocks(), 2U);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
