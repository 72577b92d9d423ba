#include "Filter/SurfaceDecimateSupport.h"
#include "support/FailingAllocator.h"

#include <limits>
#include <utility>

namespace
{

using namespace Zvl;
using namespace TestSupport;

constexpr const char* kFunction = "Zvl::SurfaceDecimate";
constexpr std::int16_t M = kMissing;
constexpr Size kNoSize = {0, 0};
constexpr Ratio kNoRatio = {0.0, 0.0};
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

Heights DecimatedRow(const Heights& heights, Size outSize, Ratio ratio)
{
    return Decimated({1, heights.size(), heights}, {}, outSize, ratio).heights;
}

TEST(SurfaceDecimate, HalfTheCellsAreMeansOfTwoByTwo)
{
    const HeightMap map = {4, 4, {1, 2, 3, 4, 5, 6, 7, 9, -1, -2, -3, -4, -5, -6, -7, -9}};
    const Intensities intensities = {1, 2, 3, 4, 5, 6, 7, 9, 255, 255, 0, 0, 255, 254, 0, 1};
    const CoarseMap coarse = {2, 2, {4, 6, -4, -6}, {4, 6, 255, 0}}; // 3.5, 5.75; 254.75, 0.25
    EXPECT_EQ(Decimated(map, intensities, kNoSize, {0.5, 0.5}), coarse);
    EXPECT_EQ(Decimated(map, intensities, {2, 2}, kNoRatio), coarse);
    EXPECT_EQ(Decimated(map, intensities, {2, 2}, {0.5, 0.5}), coarse);
}

TEST(SurfaceDecimate, TheNewFrameKeepsEveryCellWhereItsSpanHasItsCentre)
{
    const Surface coarse =
        SurfaceDecimate(SurfaceOf({2, 4, {1, 2, 3, 4, 5, 6, 7, 9}}, {}), kNoSize, {0.25, 0.5}, nullptr);
    EXPECT_EQ(coarse.layers.size(), 1U);
    EXPECT_TRUE(coarse.scale.x == 2.0 && coarse.scale.y == 0.5 && coarse.scale.z == 2.0);
    EXPECT_TRUE(coarse.offset.x == 1.75 && coarse.offset.y == 2.125 && coarse.offset.z == 3.0);
}

TEST(SurfaceDecimate, MissingHeightsDoNotCount)
{
    const HeightMap map = {2, 6, {1, M, M, M, 7, M, 3, 8, M, M, M, M}};
    const Intensities intensities = {10, 99, 5, 6, 7, 8, 20, 33, 9, 10, 11, 12};
    const CoarseMap coarse = {1, 3, {4, M, 7}, {21, 0, 7}};
    EXPECT_EQ(Decimated(map, intensities, {3, 1}, kNoRatio), coarse);
}

TEST(SurfaceDecimate, CellsCountByTheShareThatIsCovered)
{
    EXPECT_EQ(DecimatedRow({10, 20, 40}, {2, 1}, kNoRatio), (Heights{13, 33})); // 20 / 1.5, 50 / 1.5
    EXPECT_EQ(DecimatedRow({10, -20, -40}, {2, 1}, kNoRatio), (Heights{0, -33}));
    EXPECT_EQ(DecimatedRow({10, M, 40}, {2, 1}, kNoRatio), (Heights{10, 40}));
    EXPECT_EQ(DecimatedRow({M, 20, M}, {2, 1}, kNoRatio), (Heights{20, 20}));
    const CoarseMap column = {2, 1, {13, 33}, {}};
    EXPECT_EQ(Decimated({3, 1, {10, 20, 40}}, {}, {1, 2}, kNoRatio), column);
    // The cell in the middle counts a quarter: (9 + (18 + 27) / 2 + 72 / 4) / 2.25, and so on.
    const HeightMap square = {3, 3, {9, 18, 0, 27, 72, 0, 0, 0, 0}};
    const CoarseMap quarters = {2, 2, {22, 12, 14, 8}, {22, 12, 14, 8}};
    EXPECT_EQ(Decimated(square, {9, 18, 0, 27, 72, 0, 0, 0, 0}, {2, 2}, kNoRatio), quarters);
}

TEST(SurfaceDecimate, ASingleHeightDecidesACellWhateverItsShare)
{
    // The second cell covers a tenth of the height.
    EXPECT_EQ(DecimatedRow({0, 0, 77, M, M, M, M}, {3, 1}, {1.0 / 2.9, 1.0}), (Heights{24, 77, M}));
}

TEST(SurfaceDecimate, HalvesAreRoundedAwayFromZero)
{
    EXPECT_EQ(DecimatedRow({1, 2, -1, -2, 0, -1, 0, 1, 32767, 32766, -32767, -32766}, {6, 1}, kNoRatio),
              (Heights{2, -2, -1, 1, 32767, -32767}));
    const CoarseMap coarse = {1, 3, {0, 0, 0}, {2, 1, 255}};
    EXPECT_EQ(Decimated({1, 6, Heights(6, 0)}, {1, 2, 0, 1, 254, 255}, {3, 1}, kNoRatio), coarse);
}

TEST(SurfaceDecimate, TheSizeIsRoundedToo)
{
    EXPECT_EQ(DecimatedRow(Heights(5, 3), kNoSize, {0.5, 1.0}), Heights(3, 3)); // 2.5 columns
    EXPECT_EQ(DecimatedRow(Heights(5, 3), kNoSize, {0.4, 0.5}), Heights(2, 3)); // half a row
    EXPECT_EQ(DecimatedRow(Heights(5, 3), kNoSize, {0.1, 0.5}), Heights(1, 3));
}

TEST(SurfaceDecimate, ARatioAboveOneChangesNothing)
{
    const HeightMap map = {2, 3, {1, 2, M, 4, -5, 6}};
    const Intensities intensities = {1, 2, 3, 4, 5, 6};
    const CoarseMap same = {2, 3, map.cells, {1, 2, 0, 4, 5, 6}}; // a cell without height has no intensity
    for (const Ratio ratio : {Ratio{1.0, 1.0}, Ratio{7.0, 1.5}, Ratio{kInfinity, kInfinity}})
    {
        EXPECT_EQ(Decimated(map, intensities, kNoSize, ratio), same);
        EXPECT_EQ(Decimated(map, intensities, {0, 9}, ratio), same);
        const Surface coarse = SurfaceDecimate(SurfaceOf(map, {}), kNoSize, ratio, nullptr);
        EXPECT_TRUE(coarse.scale.x == 0.5 && coarse.scale.y == 0.25 && coarse.scale.z == 2.0);
        EXPECT_TRUE(coarse.offset.x == 1.0 && coarse.offset.y == 2.0 && coarse.offset.z == 3.0);
    }
}

TEST(SurfaceDecimate, ASizeAboveTheOldOneIsCappedEachWay)
{
    const HeightMap map = {2, 4, {1, 3, 5, 7, 2, 4, 6, 8}};
    const CoarseMap same = {2, 4, map.cells, {}};
    EXPECT_EQ(Decimated(map, {}, {9, 9}, kNoRatio), same);
    const CoarseMap narrow = {2, 2, {2, 6, 3, 7}, {}};
    EXPECT_EQ(Decimated(map, {}, {2, std::numeric_limits<std::size_t>::max()}, {-1.0, 3.0}), narrow);
}

TEST(SurfaceDecimate, OneComponentThatIsMissingCallsForTheOtherArgument)
{
    const HeightMap map = {2, 4, {1, 3, 5, 7, 2, 4, 6, 8}};
    const CoarseMap byRatio = {1, 2, {3, 7}, {}}; // 2.5, 6.5
    EXPECT_EQ(Decimated(map, {}, {0, 2}, {0.5, 0.5}), byRatio);
    EXPECT_EQ(Decimated(map, {}, {4, 0}, {0.5, 0.5}), byRatio);
    const CoarseMap bySize = {2, 1, {4, 5}, {}};
    for (const Ratio ratio : {Ratio{0.5, 0.0}, Ratio{0.0, 0.5}, Ratio{-0.5, 0.5}, Ratio{-kInfinity, 0.5}})
    {
        EXPECT_EQ(Decimated(map, {}, {1, 2}, ratio), bySize);
    }
}

TEST(SurfaceDecimate, SizeAndRatioTogetherAreTakenAsTheyAre)
{
    const HeightMap map = {2, 4, {10, 20, 30, 40, 10, 20, 30, 40}};
    const Intensities intensities = {1, 3, 5, 7, 1, 3, 5, 7};
    const CoarseMap inside = {1, 1, {15}, {2}};
    EXPECT_EQ(Decimated(map, intensities, {1, 1}, {0.5, 1.0}), inside);
    const CoarseMap beyond = {3, 3, {15, 35, M, 15, 35, M, M, M, M}, {2, 6, 0, 2, 6, 0, 0, 0, 0}};
    EXPECT_EQ(Decimated(map, intensities, {3, 3}, {0.5, 1.0}), beyond);
    const CoarseMap halves = {2, 3, {15, 35, M, M, M, M}, {2, 6, 0, 0, 0, 0}};
    EXPECT_EQ(Decimated(map, intensities, {3, 2}, {0.5, 0.5}), halves);
    const Surface coarse = SurfaceDecimate(SurfaceOf(map, {}), {3, 3}, {0.5, 1.0}, nullptr);
    EXPECT_TRUE(coarse.scale.x == 1.0 && coarse.scale.y == 0.25);
    EXPECT_TRUE(coarse.offset.x == 1.25 && coarse.offset.y == 2.0);
}

TEST(SurfaceDecimate, SizeAndRatioTogetherMayEnlarge)
{
    EXPECT_EQ(DecimatedRow({10, 20}, {5, 2}, {2.0, 2.0}), (Heights{10, 10, 20, 20, M, 10, 10, 20, 20, M}));
    // Steps of 0.75 and whole rows: 10; (10 / 4 + 20 / 2) / 0.75; (20 / 2 + 40 / 4) / 0.75; 40.
    EXPECT_EQ(DecimatedRow({10, 20, 40}, {4, 1}, {4.0 / 3.0, 1.0}), (Heights{10, 17, 27, 40}));
    const Surface coarse = SurfaceDecimate(SurfaceOf({1, 2, {10, 20}}, {}), {4, 1}, {2.0, 1.0}, nullptr);
    EXPECT_TRUE(coarse.scale.x == 0.25 && coarse.offset.x == 0.875);
}

TEST(SurfaceDecimate, ExtremeRatiosCoverEverythingOrNothing)
{
    constexpr double least = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(DecimatedRow({1, 2, 6}, {2, 2}, {least, least}), (Heights{3, M, M, M}));
    EXPECT_EQ(DecimatedRow({1, 2, 6}, {2, 1}, {1e-300, 1.0}), (Heights{3, M}));
    EXPECT_EQ(DecimatedRow({1, 2, 6}, {2, 1}, {kInfinity, 1.0}), (Heights{M, M}));
    EXPECT_EQ(DecimatedRow({1, 2, 6}, {2, 1}, {1.0, kInfinity}), (Heights{M, M}));
    EXPECT_EQ(DecimatedRow({1, 2, 6}, {3, 1}, {1e300, 1.0}), (Heights{1, 1, 1}));
}

TEST(SurfaceDecimate, WithoutLayersTheResultIsEmpty)
{
    const Surface nothing;
    const Surface coarse = SurfaceDecimate(nothing, {2, 2}, kNoRatio, nullptr);
    EXPECT_TRUE(coarse.layers.empty());
    EXPECT_EQ(coarse.scale.x, nothing.scale.x);
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { SurfaceDecimate(nothing, kNoSize, kNoRatio, nullptr); });
}

TEST(SurfaceDecimate, FurtherLayersAreDropped)
{
    Surface surface = SurfaceOf({1, 2, {10, 20}}, {1, 2});
    surface.layers.push_back(MakeFilled<double>(7, 7, 1.0));
    const CoarseMap coarse = {1, 1, {15}, {2}};
    EXPECT_EQ(MapOf(SurfaceDecimate(surface, {1, 1}, kNoRatio, nullptr)), coarse);
}

void ExpectRefused(const Surface& surface, Size outSize, Ratio ratio)
{
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { SurfaceDecimate(surface, outSize, ratio, nullptr); });
}

TEST(SurfaceDecimate, NeedsASizeOrARatio)
{
    const Surface surface = SurfaceOf({2, 2, {1, 2, 3, 4}}, {});
    for (const Size size : {Size{0, 0}, Size{0, 1}, Size{1, 0}})
    {
        for (const Ratio ratio : {Ratio{0.0, 0.0}, Ratio{0.5, 0.0}, Ratio{-0.0, 0.5}, Ratio{-1.0, -1.0},
                                  Ratio{0.5, -kInfinity}, Ratio{kNoNumber, 0.5}, Ratio{0.5, kNoNumber}})
        {
            ExpectRefused(surface, size, ratio);
        }
    }
}

TEST(SurfaceDecimate, RefusesARatioThatIsNoNumberBesideAnySize)
{
    const Surface surface = SurfaceOf({2, 2, {1, 2, 3, 4}}, {});
    for (const Ratio ratio : {Ratio{kNoNumber, 0.5}, Ratio{0.5, kNoNumber}, Ratio{kNoNumber, 0.0}})
    {
        ExpectRefused(surface, {1, 1}, ratio);
        ExpectRefused(Surface(), {1, 1}, ratio);
    }
}

TEST(SurfaceDecimate, RefusesARatioThatLeavesNoCells)
{
    const Surface surface = SurfaceOf({2, 4, {1, 2, 3, 4, 5, 6, 7, 8}}, {});
    ExpectRefused(surface, kNoSize, {0.5, 0.24});
    ExpectRefused(surface, kNoSize, {0.12, 1.0});
    ExpectRefused(surface, kNoSize, {1e-300, 1e-300});
    EXPECT_EQ(MapOf(SurfaceDecimate(surface, kNoSize, {0.125, 0.25}, nullptr)).heights.size(), 1U);
}

TEST(SurfaceDecimate, TakesHeightsAndIntensitiesOfOneSizeOnly)
{
    Surface surface;
    Zo::Object<void*> line;
    Zo::Test(qArray1_Construct(line.Slot(), xxq16s_type, 4, nullptr));
    for (const Zo::Object<void*>& other :
         {Zo::Object<void*>(), MakeFilled<std::uint8_t>(2, 2, 1), MakeFilled<double>(2, 2, 1.0), line})
    {
        surface.layers = {other};
        ExpectRefused(surface, {1, 1}, kNoRatio);
    }
    for (const Zo::Object<void*>& other : {Zo::Object<void*>(), MakeFilled<std::int16_t>(2, 2, 1),
                                           MakeFilled<std::uint8_t>(2, 3, 1), MakeFilled<std::uint8_t>(1, 2, 1), line})
    {
        surface.layers = {MakeFilled<std::int16_t>(2, 2, 1), other};
        ExpectRefused(surface, {1, 1}, kNoRatio);
        ExpectRefused(surface, kNoSize, {0.5, 0.5});
    }
    for (const auto& [rows, columns] : {std::pair{0U, 0U}, std::pair{0U, 3U}, std::pair{3U, 0U}})
    {
        surface.layers = {MakeFilled<std::int16_t>(rows, columns, 1)};
        ExpectRefused(surface, {1, 1}, kNoRatio);
        ExpectRefused(surface, {1, 1}, {1.0, 1.0});
    }
}

TEST(SurfaceDecimate, AGridThatDoesNotFitIntoMemoryIsThrown)
{
    const Surface surface = SurfaceOf({1, 2, {1, 2}}, {});
    for (const Size size : {Size{std::numeric_limits<std::size_t>::max(), 2}, Size{std::size_t{1} << 62U, 1}})
    {
        ExpectThrow(STATUS_OUT_OF_MEMORY, kFunction, [&] { SurfaceDecimate(surface, size, {1.0, 1.0}, nullptr); });
    }
}

TEST(SurfaceDecimate, ResultsLiveInTheGivenAllocator)
{
    const Surface surface = SurfaceOf({2, 3, {1, 2, 3, 4, 5, 6}}, {1, 2, 3, 4, 5, 6});
    FailingAllocator allocator;
    {
        const Surface coarse = SurfaceDecimate(surface, {2, 1}, kNoRatio, allocator.Get());
        EXPECT_EQ(allocator.LiveBlocks(), 4U); // two arrays and their cells
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(SurfaceDecimate, EveryShortageOfMemoryIsThrown)
{
    const HeightMap map = {2, 4, {1, 2, 3, 4, 5, 6, 7, 8}};
    for (const Surface& surface : {SurfaceOf(map, {}), SurfaceOf(map, {1, 2, 3, 4, 5, 6, 7, 8})})
    {
        for (const Size size : {Size{2, 1}, Size{3, 1}})
        {
            for (const auto mode : {Failing::FromNthOn, Failing::OnlyNth})
            {
                EXPECT_GE(ExpectEachFailureThrown(
                              kFunction, [&] { SurfaceDecimate(surface, size, kNoRatio, nullptr); }, mode),
                          2U * (surface.layers.size() + 1));
            }
        }
    }
}

} // namespace
