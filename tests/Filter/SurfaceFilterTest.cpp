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
using Window = Point2d<std::size_t>;

constexpr const char* kAverage = "Zvl::SurfaceFilter::Average";
constexpr std::size_t kHighest = std::numeric_limits<std::size_t>::max();

Heights Averaged(const HeightMap& map, Window window, int keepNulls)
{
    const Zo::Object<void*> in = ArrayOf(map);
    const Zo::Object<void*> out = MakeFilled<std::int16_t>(map.rows, map.columns, 77);
    SurfaceFilter(in, out, nullptr).Average(window, keepNulls);
    EXPECT_EQ(CellsIn<std::int16_t>(in), map.cells);
    return CellsIn<std::int16_t>(out);
}

/** The mean along the lines that start at each `line * step`, from prefix sums: cell c of a line has the cells
 *  c + w / 2 - w + 1 to c + w / 2 of it. */
void AverageLinesPlainly(Heights& cells, std::size_t lines, std::size_t step, std::size_t length, std::size_t stride,
                         std::uint32_t window, bool keepNulls)
{
    const Heights in = cells;
    std::vector<std::int64_t> sums(length + 1);
    std::vector<std::int64_t> counts(length + 1);
    for (std::size_t line = 0; line < lines; ++line)
    {
        for (std::size_t c = 0; c < length; ++c)
        {
            const std::int16_t cell = in[line * step + c * stride];
            sums[c + 1] = sums[c] + (cell == kMissing ? 0 : cell);
            counts[c + 1] = counts[c] + (cell == kMissing ? 0 : 1);
        }
        for (std::size_t c = 0; c < length; ++c)
        {
            const std::int64_t last = static_cast<std::int64_t>(c) + window / 2;
            const std::int64_t first = last - window + 1;
            const auto begin = static_cast<std::size_t>(std::max<std::int64_t>(first, 0));
            const auto end =
                static_cast<std::size_t>(std::min<std::int64_t>(last + 1, static_cast<std::int64_t>(length)));
            const std::int64_t count = begin < end ? counts[end] - counts[begin] : 0;
            const std::size_t at = line * step + c * stride;
            const bool isNull = count == 0 || (keepNulls && in[at] == kMissing);
            cells[at] = isNull ? kMissing : static_cast<std::int16_t>((sums[end] - sums[begin]) / count);
        }
    }
}

Heights AveragedPlainly(const HeightMap& map, Window window, int keepNulls)
{
    Heights cells = map.cells;
    AverageLinesPlainly(cells, map.rows, map.columns, map.columns, 1, static_cast<std::uint32_t>(window.x),
                        keepNulls != 0);
    AverageLinesPlainly(cells, map.columns, 1, map.rows, map.columns, static_cast<std::uint32_t>(window.y),
                        keepNulls != 0);
    return cells;
}

bool IsCopyThrough(Window window)
{
    return window.x < 2 && window.y < 2;
}

TEST(SurfaceFilter, AnOddWindowIsCentred)
{
    EXPECT_EQ(Averaged({1, 5, {10, 20, 31, 40, 50}}, {3, 1}, 1), (Heights{15, 20, 30, 40, 45}));
    EXPECT_EQ(Averaged({5, 1, {10, 20, 31, 40, 50}}, {1, 3}, 1), (Heights{15, 20, 30, 40, 45}));
}

TEST(SurfaceFilter, AnEvenWindowReachesOneCellFurtherAhead)
{
    EXPECT_EQ(Averaged({1, 6, {1, 2, 3, 4, 5, 6}}, {4, 1}, 1), (Heights{2, 2, 3, 4, 5, 5}));
    EXPECT_EQ(Averaged({6, 1, {1, 2, 3, 4, 5, 6}}, {1, 4}, 1), (Heights{2, 2, 3, 4, 5, 5}));
    EXPECT_EQ(Averaged({1, 4, {10, 20, 30, 40}}, {2, 1}, 1), (Heights{15, 25, 35, 40}));
    EXPECT_EQ(Averaged({3, 3, {0, 0, 0, 0, 0, 90, 0, 0, 0}}, {4, 4}, 1), (Heights{10, 10, 15, 10, 10, 15, 15, 15, 22}));
}

TEST(SurfaceFilter, MeansAreTruncatedTowardZero)
{
    EXPECT_EQ(Averaged({1, 4, {-1, -2, 2, 1}}, {3, 1}, 1), (Heights{-1, 0, 0, 1}));
}

TEST(SurfaceFilter, RowsAreTruncatedBeforeColumns)
{
    // 8 / 4 in one step would be 2.
    EXPECT_EQ(Averaged({2, 2, {1, 2, 2, 3}}, {3, 3}, 1), (Heights{1, 1, 1, 1}));
}

TEST(SurfaceFilter, MissingHeightsAreKeptOrFilled)
{
    const HeightMap map = {3, 3, {10, 10, 10, 10, kMissing, 10, 10, 10, 30}};
    EXPECT_EQ(Averaged(map, {3, 3}, 1), (Heights{10, 10, 10, 10, kMissing, 13, 10, 16, 15}));
    EXPECT_EQ(Averaged(map, {3, 3}, 0), (Heights{10, 10, 10, 10, 12, 13, 10, 13, 15}));
    EXPECT_EQ(Averaged(map, {3, 3}, -5), Averaged(map, {3, 3}, 1));
}

TEST(SurfaceFilter, AWindowWithoutHeightsIsMissing)
{
    const HeightMap map = {1, 5, {kMissing, kMissing, kMissing, kMissing, 8}};
    EXPECT_EQ(Averaged(map, {3, 3}, 0), (Heights{kMissing, kMissing, kMissing, 8, 8}));
    EXPECT_EQ(Averaged(map, {3, 3}, 1), (Heights{kMissing, kMissing, kMissing, kMissing, 8}));
}

TEST(SurfaceFilter, AWindowOfNoCellsLeavesNothing)
{
    for (const std::size_t side : {std::size_t{4}, std::size_t{40}})
    {
        const HeightMap map = {side, side, Heights(side * side, 5)};
        const Heights nothing(side * side, kMissing);
        EXPECT_EQ(Averaged(map, {0, 5}, 0), nothing);
        EXPECT_EQ(Averaged(map, {5, 0}, 1), nothing);
        EXPECT_EQ(Averaged(map, {std::size_t{1} << 32U, 1}, 0), nothing);
    }
}

TEST(SurfaceFilter, SizesAreTakenModuloTwoToThe32)
{
    const HeightMap map = {1, 6, {1, 2, 3, 4, 5, 6}};
    EXPECT_EQ(Averaged(map, {(std::size_t{1} << 32U) + 4, (std::size_t{7} << 32U) + 1}, 1),
              (Heights{2, 2, 3, 4, 5, 5}));
}

TEST(SurfaceFilter, AHugeWindowTakesTheWholeLine)
{
    for (const std::size_t window : {std::size_t{13}, std::size_t{14}, std::size_t{4294967294}, kHighest, kHighest - 1})
    {
        EXPECT_EQ(Averaged({1, 6, {1, 2, 3, 4, 5, 7}}, {window, 1}, 1), Heights(6, 3));
        EXPECT_EQ(Averaged({20, 18, Heights(360, -32767)}, {window, window}, 1), Heights(360, -32767));
    }
}

TEST(SurfaceFilter, NothingToSmoothCopiesTheInputIntoTheCallersOutput)
{
    for (const Window window : {Window{1, 1}, Window{0, 0}, Window{0, 1}, Window{1, 0}})
    {
        const Zo::Object<void*> in = MakeArray<std::int16_t>(1, 3, {10, 20, kMissing});
        const Zo::Object<void*> out = MakeFilled<std::int16_t>(1, 3, 5);
        SurfaceFilter filter(in, out, nullptr);
        EXPECT_EQ(&filter.Average(window, 0), &filter);
        EXPECT_EQ(CellsIn<std::int16_t>(out), (Heights{10, 20, kMissing}));
        // The chain goes on with that array, and still reads the input.
        Zo::Test(qArray2_SetItem(out, 0, 0, &kMissing));
        filter.Average({3, 3}, 0);
        EXPECT_EQ(CellsIn<std::int16_t>(out), (Heights{15, 15, 20}));
        filter.Average(window, 0);
        EXPECT_EQ(CellsIn<std::int16_t>(out), (Heights{15, 15, 20}));
        EXPECT_EQ(CellsIn<std::int16_t>(in), (Heights{10, 20, kMissing}));
    }
}

TEST(SurfaceFilter, NothingToSmoothLeavesASingleArrayAsItIs)
{
    const Zo::Object<void*> map = MakeArray<std::int16_t>(1, 3, {10, 20, 31});
    SurfaceFilter filter(map, map, nullptr);
    filter.Average({1, 1}, 0);
    EXPECT_EQ(CellsIn<std::int16_t>(map), (Heights{10, 20, 31}));
    filter.Average({3, 1}, 0).Average({0, 0}, 0);
    EXPECT_EQ(CellsIn<std::int16_t>(map), (Heights{15, 20, 25}));
}

TEST(SurfaceFilter, NothingToSmoothKeepsTheResultOfTheFilterBefore)
{
    const Zo::Object<void*> in = MakeArray<std::int16_t>(1, 3, {10, 20, 31});
    const Zo::Object<void*> out = MakeFilled<std::int16_t>(1, 3, 5);
    SurfaceFilter(in, out, nullptr).Average({3, 1}, 0).Average({1, 1}, 0);
    EXPECT_EQ(CellsIn<std::int16_t>(out), (Heights{15, 20, 25}));
}

TEST(SurfaceFilter, EveryRandomMapIsAveragedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(20);
            std::uniform_int_distribution<std::size_t> side(1, 70);
            std::uniform_int_distribution<std::size_t> size(0, 150);
            for (int round = 0; round < 500; ++round)
            {
                for (const Holes holes : kAllHoles)
                {
                    const HeightMap map =
                        RandomHeightMap(side(random), side(random), holes, round % 2 == 0 ? 32767 : 9, random);
                    const Window window = {size(random) % (round % 3 == 0 ? 6 : 151), size(random)};
                    if (!IsCopyThrough(window))
                    {
                        ASSERT_EQ(Averaged(map, window, round % 2), AveragedPlainly(map, window, round % 2))
                            << map.rows << " x " << map.columns << ", window " << window.x << ", " << window.y;
                    }
                }
            }
        });
}

TEST(SurfaceFilter, NarrowMapsAreAveragedAsPlainly)
{
    std::mt19937 random(21);
    for (std::size_t length = 1; length <= 20; ++length)
    {
        for (std::size_t size = 0; size <= 2 * length + 3; ++size)
        {
            for (const HeightMap& map : {RandomHeightMap(1, length, Holes::Sprinkled, 100, random),
                                         RandomHeightMap(length, 1, Holes::Sprinkled, 100, random)})
            {
                ASSERT_EQ(Averaged(map, {size, 2}, 0), AveragedPlainly(map, {size, 2}, 0));
                ASSERT_EQ(Averaged(map, {2, size}, 1), AveragedPlainly(map, {2, size}, 1));
            }
        }
    }
}

// Up to 255 cells, number and sum share 32 bits; from 513 cells on, a float does not hold every sum.
TEST(SurfaceFilter, LongWindowsAreAveragedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(22);
            for (const std::size_t size : {254U, 255U, 256U, 257U, 511U, 512U, 513U, 514U, 1000U, 2999U, 3000U, 7000U})
            {
                for (const int lowest : {-32767, 32700})
                {
                    HeightMap wide = RandomHeightMap(17, 3000, Holes::Sprinkled, 32767, random);
                    for (std::int16_t& cell : wide.cells)
                    {
                        cell = cell == kMissing ? cell : std::max(cell, static_cast<std::int16_t>(lowest));
                    }
                    const HeightMap tall = {3000, 17, wide.cells};
                    ASSERT_EQ(Averaged(wide, {size, 3}, 1), AveragedPlainly(wide, {size, 3}, 1));
                    ASSERT_EQ(Averaged(tall, {3, size}, 0), AveragedPlainly(tall, {3, size}, 0));
                }
            }
        });
}

// 65535 cells are the most that 16 bits can count, and 65538 heights of 32767 the most whose sum 32 bits can hold.
TEST(SurfaceFilter, TheHighestSumsAreExact)
{
    constexpr std::size_t kLength = 65600;
    std::mt19937 random(23);
    for (const std::int16_t height : {std::int16_t{32767}, std::int16_t{-32767}})
    {
        for (const std::size_t size : {65535U, 65536U, 65537U, 65538U, 65539U, 100000U, 200000U})
        {
            const HeightMap level = {17, kLength, Heights(17 * kLength, height)};
            EXPECT_TRUE(Averaged(level, {size, 3}, 0) == level.cells) << size;
            EXPECT_TRUE(Averaged({kLength, 17, level.cells}, {3, size}, 0) == level.cells) << size;
        }
    }
    const HeightMap rough = RandomHeightMap(17, kLength, Holes::Clustered, 32767, random);
    EXPECT_TRUE(Averaged(rough, {60001, 2}, 1) == AveragedPlainly(rough, {60001, 2}, 1));
    EXPECT_TRUE(Averaged(rough, {65535, 2}, 0) == AveragedPlainly(rough, {65535, 2}, 0));
    EXPECT_TRUE(Averaged(rough, {65540, 2}, 1) == AveragedPlainly(rough, {65540, 2}, 1));
}

TEST(SurfaceFilter, InputAndOutputMayBeOneArray)
{
    std::mt19937 random(24);
    for (const std::size_t side : {5U, 16U, 37U, 64U, 100U})
    {
        for (const std::size_t size : {2U, 3U, 15U, 16U, 40U, 300U})
        {
            const HeightMap map = RandomHeightMap(side, side + 3, Holes::Sprinkled, 32767, random);
            const Zo::Object<void*> array = ArrayOf(map);
            SurfaceFilter(array, array, nullptr).Average({size, size}, 1);
            ASSERT_EQ(CellsIn<std::int16_t>(array), AveragedPlainly(map, {size, size}, 1));
        }
    }
}

TEST(SurfaceFilter, EachFilterOfAChainReadsTheResultOfTheOneBefore)
{
    const std::vector<Window> windows = {{3, 3}, {4, 1}, {1, 6}, {0, 3}, {15, 2}, {1, 1}};
    std::mt19937 random(25);
    for (const Window& first : windows)
    {
        for (const Window& second : windows)
        {
            if (IsCopyThrough(first))
            {
                continue;
            }
            HeightMap map = RandomHeightMap(40, 30, Holes::Clustered, 3000, random);
            const Zo::Object<void*> in = ArrayOf(map);
            const Zo::Object<void*> out = MakeFilled<std::int16_t>(40, 30, 1);
            SurfaceFilter(in, out, nullptr).Average(first, 0).Average(second, 1).Average({2, 2}, 0);
            map.cells = AveragedPlainly(map, first, 0);
            map.cells = IsCopyThrough(second) ? map.cells : AveragedPlainly(map, second, 1);
            map.cells = AveragedPlainly(map, {2, 2}, 0);
            ASSERT_EQ(CellsIn<std::int16_t>(out), map.cells);
        }
    }
}

TEST(SurfaceFilter, EmptyMapsStayEmpty)
{
    for (const auto& [rows, columns] : {std::pair{0U, 0U}, std::pair{0U, 40U}, std::pair{40U, 0U}})
    {
        EXPECT_EQ(Averaged({rows, columns, {}}, {3, 3}, 0), Heights());
        EXPECT_EQ(Averaged({rows, columns, {}}, {0, 9}, 0), Heights());
        EXPECT_EQ(Averaged({rows, columns, {}}, {1, 1}, 0), Heights());
    }
}

TEST(SurfaceFilter, TakesTwoHeightArraysOfOneSizeOnly)
{
    const Zo::Object<void*> map = MakeFilled<std::int16_t>(3, 4, 1);
    Zo::Object<void*> line;
    Zo::Test(qArray1_Construct(line.Slot(), xxq16s_type, 12, nullptr));
    const std::vector<Zo::Object<void*>> others = {Zo::Object<void*>(),
                                                   MakeFilled<std::uint8_t>(3, 4, 1),
                                                   MakeFilled<double>(3, 4, 1.0),
                                                   MakeFilled<std::int16_t>(4, 4, 1),
                                                   MakeFilled<std::int16_t>(3, 5, 1),
                                                   line};
    for (const Zo::Object<void*>& other : others)
    {
        constexpr const char* kConstructor = "Zvl::SurfaceFilter::SurfaceFilter";
        ExpectThrow(STATUS_BAD_PARAMETER, kConstructor, [&] { SurfaceFilter(map, other, nullptr); });
        ExpectThrow(STATUS_BAD_PARAMETER, kConstructor, [&] { SurfaceFilter(other, map, nullptr); });
    }
}

TEST(SurfaceFilter, RefusesArraysThatHaveChanged)
{
    const Zo::Object<void*> in = MakeFilled<std::int16_t>(3, 4, 1);
    const Zo::Object<void*> out = MakeFilled<std::int16_t>(3, 4, 2);
    SurfaceFilter filter(in, out, nullptr);
    Zo::Test(qArray2_Allocate(out, xxq16s_type, 2, 2));
    ExpectThrow(STATUS_BAD_PARAMETER, kAverage, [&] { filter.Average({3, 3}, 0); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::SurfaceFilter::Impl::CheckConditions", [&] { filter.Average({1, 1}, 0); });
    Zo::Test(qArray2_Allocate(out, xxq8u_type, 3, 4));
    ExpectThrow(STATUS_BAD_PARAMETER, kAverage, [&] { filter.Average({3, 3}, 0); });
}

TEST(SurfaceFilter, EveryShortageOfMemoryIsThrownAndLeavesTheOutputAlone)
{
    for (const std::size_t side : {std::size_t{3}, std::size_t{20}})
    {
        const Zo::Object<void*> in = MakeFilled<std::int16_t>(side, side, 4);
        for (const auto mode : {Failing::FromNthOn, Failing::OnlyNth})
        {
            const Zo::Object<void*> out = MakeFilled<std::int16_t>(side, side, 1);
            EXPECT_GE(ExpectEachFailureThrown(
                          kAverage,
                          [&]
                          {
                              EXPECT_EQ(CellsIn<std::int16_t>(out), Heights(side * side, 1));
                              SurfaceFilter(in, out, nullptr).Average({3, 3}, 0);
                          },
                          mode),
                      2U);
            EXPECT_EQ(CellsIn<std::int16_t>(out), Heights(side * side, 4));
        }
    }
}

TEST(SurfaceFilter, EveryShortageOfMemoryForACopyIsThrown)
{
    const Zo::Object<void*> in = MakeFilled<std::int16_t>(3, 3, 4);
    const Zo::Object<void*> out = MakeFilled<std::int16_t>(3, 3, 1);
    for (const auto mode : {Failing::FromNthOn, Failing::OnlyNth})
    {
        EXPECT_GE(ExpectEachFailureThrown(
                      {kAverage, "Zvl::SurfaceFilter::Impl::CloneAndUpdateInSurface"},
                      [&] {
                          SurfaceFilter(in, out, nullptr).Average({3, 3}, 0).Average({3, 3}, 0);
                      },
                      mode),
                  6U);
    }
}

TEST(SurfaceFilter, GoesOnAfterAFailedCopy)
{
    const Zo::Object<void*> in = MakeArray<std::int16_t>(1, 3, {10, 20, 30});
    const Zo::Object<void*> out = MakeFilled<std::int16_t>(1, 3, 1);
    FailingAllocator allocator;
    {
        SurfaceFilter filter(in, out, allocator.Get());
        filter.Average({3, 1}, 0);
        EXPECT_EQ(CellsIn<std::int16_t>(out), (Heights{15, 20, 25}));
        allocator.FailAt(1);
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::SurfaceFilter::Impl::CloneAndUpdateInSurface",
                    [&] {
                        filter.Average({3, 1}, 0);
                    });
        allocator.FailNever();
        filter.Average({3, 1}, 0);
        EXPECT_EQ(CellsIn<std::int16_t>(out), (Heights{17, 20, 22}));
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
