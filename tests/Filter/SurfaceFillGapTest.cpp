#include "Filter/SurfaceFillGapPlain.h"
#include "support/FailingAllocator.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace
{

using namespace Zvl;
using namespace TestSupport;

constexpr const char* kFunction = "Zvl::SurfaceFillGapXY";
constexpr std::int16_t M = kMissing;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

// Angles whose tangents round to so many counts per cell when cells and counts are as large.
constexpr double kOneCount = 45.0;
constexpr double kTenCounts = 84.289406862500371;
constexpr double kSteep = 89.9;

/** Gaps of so many cells; a cell is as large as a count. */
SurfaceFillGapParams Params(double gapX, double gapY, double slope, std::int32_t fillHigh = 0)
{
    SurfaceFillGapParams params;
    params.resolutionX = params.resolutionY = params.resolutionZ = 1.0;
    params.maxGapX = gapX;
    params.maxGapY = gapY;
    params.maxSlopeX = params.maxSlopeY = slope;
    params.fillHigh = fillHigh;
    return params;
}

HeightMap Row(const Heights& heights)
{
    return {1, heights.size(), heights};
}

HeightMap Column(const Heights& heights)
{
    return {heights.size(), 1, heights};
}

/** The heights of a row whose gaps are closed along it, which those of a column must equal. */
Heights FilledLine(double gap, double slope, std::int32_t fillHigh, const Heights& heights)
{
    Heights filled = Filled(Params(gap, 0.0, slope, fillHigh), Row(heights)).heights;
    EXPECT_EQ(Filled(Params(0.0, gap, slope, fillHigh), Column(heights)).heights, filled);
    return filled;
}

/** The same for intensities. */
Intensities FilledIntensities(double slope, std::int32_t fillHigh, const Heights& heights,
                              const Intensities& intensities)
{
    Intensities filled = Filled(Params(9.0, 0.0, slope, fillHigh), Row(heights), intensities).intensities;
    EXPECT_EQ(Filled(Params(0.0, 9.0, slope, fillHigh), Column(heights), intensities).intensities, filled);
    return filled;
}

TEST(SurfaceFillGapXY, InterpolatesInWholeCountsTowardTheHeightBefore)
{
    EXPECT_EQ(FilledLine(2.0, kSteep, 0, {10, M, M, 14}), (Heights{10, 11, 12, 14}));
    EXPECT_EQ(FilledLine(2.0, kSteep, 0, {14, M, M, 10}), (Heights{14, 13, 12, 10}));
    EXPECT_EQ(FilledLine(2.0, kSteep, 1, {-14, M, M, -10}), (Heights{-14, -13, -12, -10}));
    EXPECT_EQ(FilledLine(2.0, kSteep, 1, {1, M, -2, M, M, 7}), (Heights{1, 0, -2, 1, 4, 7}));
    EXPECT_EQ(FilledIntensities(kSteep, 0, {10, M, M, 14}, {100, 9, 9, 50}), (Intensities{100, 84, 67, 50}));
    EXPECT_EQ(FilledIntensities(kSteep, 1, {10, M, M, 14}, {0, 9, 9, 255}), (Intensities{0, 85, 170, 255}));
}

TEST(SurfaceFillGapXY, FillsSteepGapsFlatFromOneEnd)
{
    EXPECT_EQ(FilledLine(2.0, kOneCount, 0, {10, M, M, 13}), (Heights{10, 11, 12, 13}));
    EXPECT_EQ(FilledLine(2.0, kOneCount, 0, {10, M, M, 14}), (Heights{10, 10, 10, 14}));
    EXPECT_EQ(FilledLine(2.0, kOneCount, 1, {10, M, M, 14}), (Heights{10, 14, 14, 14}));
    EXPECT_EQ(FilledLine(2.0, kOneCount, 0, {14, M, M, 10}), (Heights{14, 10, 10, 10}));
    EXPECT_EQ(FilledLine(2.0, kOneCount, -3, {14, M, M, 10}), (Heights{14, 14, 14, 10}));
    const Intensities intensities = {1, 7, 7, 2};
    EXPECT_EQ(FilledIntensities(kOneCount, 0, {10, M, M, 14}, intensities), (Intensities{1, 1, 1, 2}));
    EXPECT_EQ(FilledIntensities(kOneCount, 1, {10, M, M, 14}, intensities), (Intensities{1, 2, 2, 2}));
    EXPECT_EQ(FilledIntensities(kOneCount, 0, {14, M, M, 10}, intensities), (Intensities{1, 2, 2, 2}));
    EXPECT_EQ(FilledIntensities(kOneCount, 1, {14, M, M, 10}, intensities), (Intensities{1, 1, 1, 2}));
}

TEST(SurfaceFillGapXY, ASlopeOfNothingInterpolatesBetweenEqualEndsOnly)
{
    EXPECT_EQ(FilledLine(2.0, 0.0, 0, {10, M, M, 10, M, 11}), (Heights{10, 10, 10, 10, 10, 11}));
    EXPECT_EQ(FilledIntensities(0.0, 0, {10, M, M, 10, M, 11}, {0, 0, 0, 30, 0, 50}),
              (Intensities{0, 10, 20, 30, 30, 50}));
}

TEST(SurfaceFillGapXY, GapsAtTheEdgeStayMissing)
{
    const Heights heights = {M, M, 5, M, 5, M};
    EXPECT_EQ(FilledLine(2.0, kSteep, 0, heights), (Heights{M, M, 5, 5, 5, M}));
    EXPECT_EQ(FilledLine(1e9, kSteep, 0, {M, M, M}), (Heights{M, M, M}));
    EXPECT_EQ(FilledIntensities(kSteep, 0, heights, {1, 2, 3, 4, 5, 6}), (Intensities{1, 2, 3, 4, 5, 6}));
}

TEST(SurfaceFillGapXY, CountsMissingCellsAgainstTheLimit)
{
    EXPECT_EQ(FilledLine(2.0, kSteep, 0, {1, M, M, 4, M, M, M, 8}), (Heights{1, 2, 3, 4, M, M, M, 8}));
    EXPECT_EQ(FilledLine(3.0, kSteep, 0, {1, M, M, 4, M, M, M, 8}), (Heights{1, 2, 3, 4, 5, 6, 7, 8}));
    EXPECT_EQ(FilledLine(2.99, kSteep, 0, {4, M, M, M, 8}), (Heights{4, M, M, M, 8}));
}

TEST(SurfaceFillGapXY, LimitsAreMeasuredInCells)
{
    SurfaceFillGapParams params = Params(0.0, 0.0, kSteep);
    params.resolutionX = 0.25;
    params.resolutionY = 4.0;
    params.maxGapX = 0.74; // 2 cells
    EXPECT_EQ(Filled(params, Row({1, M, M, 4, M, M, M, 8})).heights, (Heights{1, 2, 3, 4, M, M, M, 8}));
    params.maxGapX = -0.5;
    params.maxGapY = 7.9; // 1 cell
    EXPECT_EQ(Filled(params, Column({1, M, 3, M, M, 6})).heights, (Heights{1, 2, 3, M, M, 6}));
}

TEST(SurfaceFillGapXY, SlopesAreRoundedToWholeCounts)
{
    SurfaceFillGapParams params = Params(1.0, 0.0, kOneCount);
    params.resolutionX = 1.6; // 2 counts per cell, 4 from end to end
    params.maxGapX = 1.6;
    EXPECT_EQ(Filled(params, Row({0, M, 4, M, 9})).heights, (Heights{0, 2, 4, 4, 9}));
    params.resolutionX = 1.4; // 1 count per cell
    EXPECT_EQ(Filled(params, Row({0, M, 4, M, 6})).heights, (Heights{0, 0, 4, 5, 6}));
    params = Params(0.0, 1.0, kOneCount);
    params.resolutionZ = 0.4; // 2.5 counts, all but the last bit
    EXPECT_EQ(Filled(params, Column({0, M, 4, M, 9})).heights, (Heights{0, 2, 4, 4, 9}));
}

TEST(SurfaceFillGapXY, NoRiseIsTooSteepForTheSteepestSlope)
{
    SurfaceFillGapParams params = Params(1.0, 0.0, 89.9);
    for (const double resolutionZ : {1e-3, 1e-300, 0.0})
    {
        params.resolutionZ = resolutionZ;
        EXPECT_EQ(Filled(params, Row({-32767, M, 32767, M, -32767})).heights, (Heights{-32767, 0, 32767, 0, -32767}));
    }
}

// Counts that run downwards turn every slope into one that nothing is gentle enough for.
TEST(SurfaceFillGapXY, EndsOfOneHeightThatAreTooSteepFillFromTheCellBehind)
{
    SurfaceFillGapParams params = Params(1.0, 0.0, kOneCount);
    params.resolutionZ = -1.0;
    for (const std::int32_t fillHigh : {0, 1})
    {
        params.fillHigh = fillHigh;
        const Layers filled = Filled(params, Row({5, M, 5}), {1, 0, 2});
        EXPECT_EQ(filled.heights, (Heights{5, 5, 5}));
        EXPECT_EQ(filled.intensities, (Intensities{1, 2, 2}));
    }
}

TEST(SurfaceFillGapXY, AGapMayBeLongerThan16BitsCount)
{
    constexpr std::int64_t kSpan = 70001;
    Heights heights(kSpan + 1, M);
    heights.front() = -32767;
    heights.back() = 32767;
    const Heights filled = FilledLine(1e5, kSteep, 0, heights);
    for (const std::int64_t step : {1, 2, 35000, 35001, 50000, 70000})
    {
        EXPECT_EQ(filled[static_cast<std::size_t>(step)], -32767 + 65534 * step / kSpan) << step;
    }
}

TEST(SurfaceFillGapXY, RowsAndColumnsDoNotMix)
{
    const HeightMap map = {3, 3, {1, 2, 3, 4, M, 9, 7, 18, 11}};
    EXPECT_EQ(Filled(Params(1.0, 0.0, kSteep), map).heights[4], 6);
    EXPECT_EQ(Filled(Params(0.0, 1.0, kSteep), map).heights[4], 10);
    const HeightMap acrossRows = {2, 2, {1, M, 3, 4}};
    EXPECT_EQ(Filled(Params(5.0, 0.0, kSteep), acrossRows).heights, acrossRows.cells);
}

TEST(SurfaceFillGapXY, BothDirectionsTogetherTakeTheMeanOfAllFour)
{
    const HeightMap map = {3, 3, {0, 20, 0, 40, M, 60, 0, 81, 0}};
    const Layers filled = Filled(Params(1.0, 1.0, kSteep), map, {1, 2, 3, 4, 5, 6, 7, 9, 9});
    EXPECT_EQ(filled.heights, (Heights{0, 20, 0, 40, 50, 60, 0, 81, 0}));    // 201 / 4
    EXPECT_EQ(filled.intensities, (Intensities{1, 2, 3, 4, 5, 6, 7, 9, 9})); // 21 / 4
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep, 1), map).heights[4], 50);
}

TEST(SurfaceFillGapXY, NearHeightsCountMore)
{
    const HeightMap map = Row({10, M, M, 40});
    EXPECT_EQ(Filled(Params(2.0, 1.0, kSteep), map).heights, (Heights{10, 20, 30, 40}));
    EXPECT_EQ(Filled(Params(2.0, 1.0, kSteep), map, {0, 0, 0, 100}).intensities, (Intensities{0, 33, 66, 100}));
    // 10, 10 and 20 thousandths away: of the three, factors 30, 30 and 20.
    SurfaceFillGapParams params = Params(0.0096, 0.02, kSteep);
    params.resolutionX = 0.0096;
    params.resolutionY = 0.02;
    params.resolutionZ = 0.00001;
    EXPECT_EQ(Filled(params, {2, 3, {M, 90, M, 0, M, 0}}).heights, (Heights{M, 90, M, 0, 22, 0}));
}

TEST(SurfaceFillGapXY, MeansOfBothDirectionsAreTruncatedTowardZero)
{
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), Row({-10, M, -15, M, 18})).heights, (Heights{-10, -12, -15, 1, 18}));
}

TEST(SurfaceFillGapXY, HeightsTooFarFromTheAnchorDoNotCount)
{
    // The lowest is 10, and one count per cell is allowed for both: 12 is the highest that counts.
    const HeightMap map = {3, 3, {0, 12, 0, 10, M, 13, 0, 11, 0}};
    const Intensities intensities = {0, 3, 0, 1, 0, 4, 0, 2, 0};
    const Layers low = Filled(Params(1.0, 1.0, kOneCount), map, intensities);
    EXPECT_EQ(low.heights[4], 11);    // 33 / 3
    EXPECT_EQ(low.intensities[4], 2); // 6 / 3
    const Layers high = Filled(Params(1.0, 1.0, kOneCount, 1), map, intensities);
    EXPECT_EQ(high.heights[4], 12);    // 36 / 3
    EXPECT_EQ(high.intensities[4], 3); // 9 / 3
    const Layers lowest = Filled(Params(1.0, 1.0, 0.0), map, intensities);
    EXPECT_EQ(lowest.heights[4], 10);
    EXPECT_EQ(lowest.intensities[4], 1);
    const Layers highest = Filled(Params(1.0, 1.0, 0.0, 1), map, intensities);
    EXPECT_EQ(highest.heights[4], 13);
    EXPECT_EQ(highest.intensities[4], 4);
}

TEST(SurfaceFillGapXY, OfEqualHeightsTheFirstIsTheAnchor)
{
    // Left and above are as low, but from the left it is one count to the anchor's limit, from above it would be ten.
    SurfaceFillGapParams params = Params(1.0, 1.0, kOneCount);
    params.maxSlopeY = kTenCounts;
    EXPECT_EQ(Filled(params, {2, 3, {M, 10, M, 10, M, 13}}).heights[4], 10);
    EXPECT_EQ(Filled(params, {2, 3, {M, 10, M, 10, M, 12}}).heights[4], 10); // 32 / 3
    EXPECT_EQ(Filled(params, {2, 3, {M, 10, M, 10, M, 13}}, {0, 9, 0, 4, 0, 99}).intensities[4], 6);
    params.fillHigh = 1;
    EXPECT_EQ(Filled(params, {2, 3, {M, -10, M, -10, M, -13}}, {0, 9, 0, 4, 0, 99}).intensities[4], 6);
}

TEST(SurfaceFillGapXY, ACellAtTheEndOfARowMayBeFilledFromItsColumn)
{
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), Column({10, M, 21})).heights, (Heights{10, 15, 21}));
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), {3, 2, {10, 0, M, 50, 20, 0}}).heights,
              (Heights{10, 0, 26, 50, 20, 0})); // 80 / 3
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), {3, 2, {0, 10, 50, M, 0, 20}}).heights, (Heights{0, 10, 50, 26, 0, 20}));
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), {3, 2, {10, M, M, M, 20, M}}).heights, (Heights{10, M, 15, M, 20, M}));
}

TEST(SurfaceFillGapXY, ACellOfAGapThatIsOpenOrTooLongInBothDirectionsStaysMissing)
{
    const std::vector<HeightMap> maps = {Row({10, M}),
                                         Row({M, 10}),
                                         Column({10, M}),
                                         Column({M, 10}),
                                         Row({M}),
                                         Row({10, M, M, 10}),
                                         Column({10, M, M, 10}),
                                         {2, 2, {M, 10, 10, M}},
                                         {0, 0, {}},
                                         {2, 4, {7, M, M, 7, 7, M, M, 7}},
                                         {4, 2, {7, 7, M, M, M, M, 7, 7}}};
    for (const HeightMap& map : maps)
    {
        EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), map).heights, map.cells) << map.rows << " x " << map.columns;
    }
}

TEST(SurfaceFillGapXY, OnlyHeightsWithinTheLimitOfTheirDirectionCount)
{
    // The column is closed, the row too long: its left end is near enough to count, its right end is not.
    const HeightMap map = {3, 4, {1, 10, 1, 1, 40, M, M, 90, 1, 20, 1, 1}};
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), map).heights[5], 23); // 70 / 3
    // The row is closed, the column open: the height above counts as well.
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), {2, 3, {M, 60, M, 10, M, 20}}).heights, (Heights{M, 60, M, 10, 30, 20}));
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), {2, 3, {10, M, 20, M, 60, M}}).heights, (Heights{10, 30, 20, M, 60, M}));
    // Two rows further up it does not.
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), {3, 3, {M, 60, M, M, M, M, 10, M, 20}}).heights,
              (Heights{M, 60, M, M, M, M, 10, 15, 20}));
}

TEST(SurfaceFillGapXY, FilledCellsDoNotFillOthers)
{
    EXPECT_EQ(Filled(Params(1.0, 1.0, kSteep), {3, 3, {10, M, 20, M, M, 4, 30, 4, 4}}).heights,
              (Heights{10, 15, 20, 20, M, 4, 30, 4, 4}));
}

TEST(SurfaceFillGapXY, CellsThatAreNextToNothingApartAreFilled)
{
    SurfaceFillGapParams params = Params(0.0016, 0.0016, kSteep);
    params.resolutionX = params.resolutionY = 0.0004;
    params.resolutionZ = 1e-9;
    EXPECT_EQ(Filled(params, Row({10, M, 20})).heights, (Heights{10, 10, 20}));
    params.fillHigh = 1;
    EXPECT_EQ(Filled(params, Row({10, M, 20}), {1, 0, 2}).intensities, (Intensities{1, 2, 2}));
    params.resolutionX = 1.0;
    params.maxGapX = 1.0;
    // Left and right have factors of 1000, above and below of 2000 thousandths.
    EXPECT_EQ(Filled(params, {3, 3, {0, 30, 0, 60, M, 60, 0, 30, 0}}).heights[4], 40);
}

TEST(SurfaceFillGapXY, WithoutAGapToCloseTheResultsAreCopies)
{
    const HeightMap map = Row({1, M, 3});
    const Zo::Object<void*> surface = ArrayOf(map);
    const Zo::Object<void*> intensity = MakeArray<std::uint8_t>(2, 1, {4, 5}); // of another size
    for (const double gap : {0.0, -7.0, 0.99})
    {
        Zo::Object<void*> filled;
        Zo::Object<void*> filledIntensity;
        SurfaceFillGapXY(Params(gap, gap, kSteep), surface, intensity, filled, filledIntensity, nullptr);
        EXPECT_NE(filled.Get(), surface.Get());
        EXPECT_NE(filledIntensity.Get(), intensity.Get());
        EXPECT_EQ(CellsIn<std::int16_t>(filled), map.cells);
        EXPECT_EQ(CellsIn<std::uint8_t>(filledIntensity), (Intensities{4, 5}));
        EXPECT_EQ(Filled(Params(gap, gap, kSteep), map).heights, map.cells);
    }
}

TEST(SurfaceFillGapXY, EmptyMapsStayEmpty)
{
    for (const auto& [rows, columns] : {std::pair{0U, 0U}, std::pair{0U, 5U}, std::pair{5U, 0U}})
    {
        for (const auto& [gapX, gapY] : {std::pair{2.0, 0.0}, std::pair{0.0, 2.0}, std::pair{2.0, 2.0}})
        {
            EXPECT_TRUE(Filled(Params(gapX, gapY, kSteep), {rows, columns, {}}).heights.empty());
        }
    }
}

TEST(SurfaceFillGapXY, ResultsMayReplaceTheInputs)
{
    Zo::Object<void*> surface = MakeArray<std::int16_t>(1, 3, {1, M, 3});
    Zo::Object<void*> intensity = MakeArray<std::uint8_t>(1, 3, {10, 0, 30});
    const Zo::Object<void*> before = surface;
    SurfaceFillGapXY(Params(1.0, 0.0, kSteep), surface, intensity, surface, intensity, nullptr);
    EXPECT_EQ(CellsIn<std::int16_t>(surface), (Heights{1, 2, 3}));
    EXPECT_EQ(CellsIn<std::uint8_t>(intensity), (Intensities{10, 20, 30}));
    EXPECT_EQ(CellsIn<std::int16_t>(before), (Heights{1, M, 3}));
}

TEST(SurfaceFillGapXY, ResultsLiveInTheGivenAllocator)
{
    const Zo::Object<void*> surface = MakeArray<std::int16_t>(1, 3, {1, M, 3});
    const Zo::Object<void*> intensity = MakeFilled<std::uint8_t>(1, 3, 10);
    for (const auto& [gapX, gapY] :
         {std::pair{0.0, 0.0}, std::pair{1.0, 0.0}, std::pair{0.0, 1.0}, std::pair{1.0, 1.0}})
    {
        FailingAllocator allocator;
        {
            Zo::Object<void*> filled;
            Zo::Object<void*> filledIntensity;
            SurfaceFillGapXY(Params(gapX, gapY, kSteep), surface, intensity, filled, filledIntensity, allocator.Get());
            EXPECT_EQ(allocator.LiveBlocks(), 4U); // two arrays and their cells
        }
        EXPECT_EQ(allocator.LiveBlocks(), 0U);
    }
}

/** Expects a refusal that leaves both results as they were. */
void ExpectRefused(const SurfaceFillGapParams& params, const Zo::Object<void*>& surface,
                   const Zo::Object<void*>& intensity)
{
    Zo::Object<void*> filled = MakeFilled<std::int16_t>(1, 1, 5);
    Zo::Object<void*> filledIntensity = MakeFilled<std::uint8_t>(1, 1, 6);
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                [&] { SurfaceFillGapXY(params, surface, intensity, filled, filledIntensity, nullptr); });
    EXPECT_EQ(CellsIn<std::int16_t>(filled), Heights{5});
    EXPECT_EQ(CellsIn<std::uint8_t>(filledIntensity), Intensities{6});
}

TEST(SurfaceFillGapXY, TakesHeightsAndIntensitiesOnly)
{
    const Zo::Object<void*> heights = MakeFilled<std::int16_t>(3, 4, 1);
    const Zo::Object<void*> intensities = MakeFilled<std::uint8_t>(3, 4, 1);
    const Zo::Object<void*> numbers = MakeFilled<double>(3, 4, 1.0);
    Zo::Object<void*> line;
    Zo::Test(qArray1_Construct(line.Slot(), xxq16s_type, 12, nullptr));
    Zo::Object<void*> byteLine;
    Zo::Test(qArray1_Construct(byteLine.Slot(), xxq8u_type, 12, nullptr));
    for (const double gap : {0.0, 2.0})
    {
        const SurfaceFillGapParams params = Params(gap, gap, kSteep);
        for (const Zo::Object<void*>& other : {Zo::Object<void*>(), intensities, numbers, line})
        {
            ExpectRefused(params, other, Zo::Object<void*>());
            ExpectRefused(params, other, intensities);
        }
        for (const Zo::Object<void*>& other : {heights, numbers, byteLine})
        {
            ExpectRefused(params, heights, other);
        }
    }
}

TEST(SurfaceFillGapXY, ClosingGapsTakesIntensitiesOfTheSameSizeOnly)
{
    const Zo::Object<void*> heights = MakeFilled<std::int16_t>(3, 4, 1);
    for (const auto& [rows, columns] : {std::pair{3U, 5U}, std::pair{2U, 4U}, std::pair{4U, 3U}, std::pair{0U, 0U}})
    {
        const Zo::Object<void*> intensities = MakeFilled<std::uint8_t>(rows, columns, 1);
        ExpectRefused(Params(2.0, 0.0, kSteep), heights, intensities);
        ExpectRefused(Params(0.0, 2.0, kSteep), heights, intensities);
        ExpectRefused(Params(2.0, 2.0, kSteep), heights, intensities);
    }
}

TEST(SurfaceFillGapXY, TakesSlopesFromLevelToBelowUpright)
{
    const Zo::Object<void*> heights = MakeFilled<std::int16_t>(3, 4, 1);
    for (const double gap : {0.0, 2.0})
    {
        SurfaceFillGapParams params = Params(gap, gap, 0.0);
        for (const double slope : {-1e-9, -45.0, 90.0, 135.0, kInfinity, -kInfinity})
        {
            params.maxSlopeX = slope;
            ExpectRefused(params, heights, Zo::Object<void*>());
            params.maxSlopeX = 0.0;
            params.maxSlopeY = slope;
            ExpectRefused(params, heights, Zo::Object<void*>());
            params.maxSlopeY = 0.0;
        }
        for (const double slope : {-0.0, 0.0, std::nextafter(90.0, 0.0)})
        {
            params.maxSlopeX = params.maxSlopeY = slope;
            EXPECT_EQ(Filled(params, Row({3, M, 3})).heights[2], 3);
        }
    }
}

TEST(SurfaceFillGapXY, ASlopeThatIsNoNumberLimitsNothing)
{
    SurfaceFillGapParams params = Params(5.0, 0.0, 0.0);
    EXPECT_EQ(Filled(params, Row({0, M, M, 9})).heights, (Heights{0, 0, 0, 9})); // level: the lower end
    params.maxSlopeX = kNoNumber;
    EXPECT_EQ(Filled(params, Row({0, M, M, 9})).heights, (Heights{0, 3, 6, 9}));
}

TEST(SurfaceFillGapXY, NoLimitTouchesAHeight)
{
    std::mt19937 random(40);
    const HeightMap map = RandomHeightMap(9, 70, Holes::Clustered, 32767, random);
    const std::vector<double> numbers = {0.0,   1.0,    -1.0,      3e-4,       -3e-4,    1e-320,
                                         1e300, -1e300, kInfinity, -kInfinity, kNoNumber};
    for (std::size_t round = 0; round < 4000; ++round)
    {
        const auto any = [&] { return numbers[random() % numbers.size()]; };
        SurfaceFillGapParams params = {any(), any(), any(), any(), any(), 45.0, 89.0, static_cast<int>(round % 2)};
        if (round % 3 == 0)
        {
            params.maxGapX = 5.0 * params.resolutionX;
        }
        if (round % 5 == 0)
        {
            params.maxGapY = 5.0 * params.resolutionY;
        }
        const Heights filled = Filled(params, map).heights;
        for (std::size_t i = 0; i < map.cells.size(); ++i)
        {
            ASSERT_TRUE(map.cells[i] == M || map.cells[i] == filled[i]) << round;
        }
    }
}

TEST(SurfaceFillGapXY, EveryShortageOfMemoryIsThrownAndLeavesTheResultsAlone)
{
    const Zo::Object<void*> surface = MakeArray<std::int16_t>(1, 3, {1, M, 3});
    const Zo::Object<void*> intensity = MakeFilled<std::uint8_t>(1, 3, 10);
    for (const auto& [gapX, gapY, blocks] :
         {std::tuple{0.0, 0.0, 4U}, std::tuple{1.0, 0.0, 4U}, std::tuple{0.0, 1.0, 4U}, std::tuple{1.0, 1.0, 8U}})
    {
        const SurfaceFillGapParams params = Params(gapX, gapY, kSteep);
        for (const auto mode : {Failing::FromNthOn, Failing::OnlyNth})
        {
            const Zo::Object<void*> kept = MakeFilled<std::int16_t>(1, 1, 5);
            EXPECT_EQ(ExpectEachFailureThrown(
                          kFunction,
                          [&]
                          {
                              Zo::Object<void*> filled = kept;
                              Zo::Object<void*> filledIntensity = kept;
                              try
                              {
                                  SurfaceFillGapXY(params, surface, intensity, filled, filledIntensity, nullptr);
                              }
                              catch (const Zo::Exception&)
                              {
                                  EXPECT_EQ(filled.Get(), kept.Get());
                                  EXPECT_EQ(filledIntensity.Get(), kept.Get());
                                  throw;
                              }
                          },
                          mode),
                      blocks);
        }
    }
}

} // namespace
