#include <ZdkVisionLib/Filter/Filter.h>
#include <ZdkVisionLib/Fitting/Fit.h>

#include "support/Surfaces.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

using namespace Zvl;
using Mask = std::vector<std::uint8_t>;
using TestSupport::CellsIn;
using TestSupport::MakeArray;
using TestSupport::MakeFilled;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/** The mask that percentiles leave of a row of heights, all selected. */
Mask Heights(const std::vector<std::int16_t>& heights, double low, double high)
{
    const Surface surface = TestSupport::MakeSurface(1, heights.size(), heights);
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(1, heights.size(), 1);
    ThresholdPercentile<short>(surface, low, high, {0, 0, static_cast<int>(heights.size()), 1}, mask);
    return CellsIn<std::uint8_t>(mask);
}

TEST(ThresholdPercentile, ClearsWhatLiesStrictlyOutside)
{
    EXPECT_EQ(Heights({50, 10, 40, 20, 30}, 25.0, 75.0), (Mask{0, 0, 1, 1, 1}));
    EXPECT_EQ(Heights({50, 10, 40, 20, 30}, 0.0, 100.0), (Mask{1, 1, 1, 1, 1}));
    EXPECT_EQ(Heights({50, 10, 40, 20, 30}, 100.0, 100.0), (Mask{1, 0, 0, 0, 0}));
}

TEST(ThresholdPercentile, RanksAreRoundedHalfAwayFromZero)
{
    // 37.5 % of 4 steps is 1.5: rank 2.
    EXPECT_EQ(Heights({10, 20, 30, 40, 50}, 37.5, 100.0), (Mask{0, 0, 1, 1, 1}));
    EXPECT_EQ(Heights({10, 20, 30, 40, 50}, 37.4, 100.0), (Mask{0, 1, 1, 1, 1}));
}

TEST(ThresholdPercentile, TiesWithALimitStay)
{
    EXPECT_EQ(Heights({20, 10, 20, 30, 20}, 50.0, 50.0), (Mask{1, 0, 1, 0, 1}));
}

TEST(ThresholdPercentile, MissingHeightsThatAreSelectedTakePart)
{
    EXPECT_EQ(Heights({-32768, 1, 2}, 50.0, 100.0), (Mask{0, 1, 1}));
    EXPECT_EQ(Heights({-32768, 1, 2}, 0.0, 50.0), (Mask{1, 1, 0}));
}

TEST(ThresholdPercentile, RanksTheCellsOfItsWindow)
{
    Surface surface = TestSupport::MakeSurface(3, 4, {1, 2, 3, 4, 5, 60, 10, 8, 9, 20, 40, 12});
    surface.layers.push_back(MakeArray<std::uint8_t>(3, 4, {1, 2, 3, 4, 5, 60, 10, 8, 9, 20, 40, 12}));
    const Rect2d<int> window = {1, 1, 2, 2}; // 60 10 / 20 40
    const Zo::Object<void*> byHeight = MakeFilled<std::uint8_t>(2, 2, 1);
    ThresholdPercentile<short>(surface, 0.0, 50.0, window, byHeight);
    EXPECT_EQ(CellsIn<std::uint8_t>(byHeight), (Mask{0, 1, 1, 1}));
    const Zo::Object<void*> byIntensity = MakeFilled<std::uint8_t>(2, 2, 1);
    ThresholdPercentile<unsigned char>(surface, 50.0, 100.0, window, byIntensity);
    EXPECT_EQ(CellsIn<std::uint8_t>(byIntensity), (Mask{1, 0, 0, 1}));
}

TEST(ThresholdPercentile, IntensitiesAreThoseOfTheSecondLayer)
{
    Surface surface = TestSupport::MakeSurface(1, 3, {1, 2, 3});
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(1, 3, 1);
    ThresholdPercentile<unsigned char>(surface, 50.0, 50.0, {0, 0, 3, 1}, mask);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (Mask{1, 1, 1}));
    surface.layers.push_back(MakeArray<std::uint8_t>(1, 3, {200, 100, 150}));
    ThresholdPercentile<unsigned char>(surface, 50.0, 50.0, {0, 0, 3, 1}, mask);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (Mask{0, 0, 1}));
}

TEST(ThresholdPercentile, DistancesAreTakenFromTheFittedPlane)
{
    // A tilted plane with one cell far above and one far below.
    std::vector<std::int16_t> heights;
    for (int row = 0; row < 10; ++row)
    {
        for (int column = 0; column < 10; ++column)
        {
            heights.push_back(static_cast<std::int16_t>(100 * row + 50 * column));
        }
    }
    heights[23] = static_cast<std::int16_t>(heights[23] + 400);
    heights[76] = static_cast<std::int16_t>(heights[76] - 400);
    const Surface surface = TestSupport::MakeSurface(10, 10, heights);
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(10, 10, 1);
    ThresholdPercentile<double>(surface, 1.0, 99.0, {0, 0, 10, 10}, mask);
    Mask expected(100, 1);
    expected[23] = 0;
    expected[76] = 0;
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), expected);
}

TEST(ThresholdPercentile, WithoutAPlaneTheMaskStays)
{
    const Surface surface = TestSupport::MakeSurface(1, 5, {1, 2, 3, 4, 5});
    const Zo::Object<void*> mask = MakeArray<std::uint8_t>(1, 5, {1, 0, 1, 0, 1});
    ThresholdPercentile<double>(surface, 50.0, 50.0, {0, 0, 5, 1}, mask);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (Mask{1, 0, 1, 0, 1}));
}

TEST(ThresholdPercentile, UnfitInputLeavesTheMaskAsItWas)
{
    const Surface surface = TestSupport::MakeSurface(2, 3, {1, 2, 3, 4, 5, 6});
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(2, 2, 1);
    const Rect2d<int> fit = {0, 0, 2, 2};
    const auto call = [&](const Surface& from, double low, double high, const Rect2d<int>& rect)
    {
        EXPECT_NO_THROW(ThresholdPercentile<short>(from, low, high, rect, mask));
        EXPECT_EQ(CellsIn<std::uint8_t>(mask), Mask(4, 1));
    };
    call(surface, 60.0, 40.0, fit);
    call(surface, -0.001, 50.0, fit);
    call(surface, 50.0, 100.001, fit);
    call(surface, kNotANumber, 50.0, fit);
    call(surface, 50.0, kNotANumber, fit);
    call(surface, 50.0, 50.0, {2, 0, 2, 2});
    call(surface, 50.0, 50.0, {0, 1, 2, 2});
    call(surface, 50.0, 50.0, {-1, 0, 2, 2});
    call(surface, 50.0, 50.0, {0, 0, 2, 1});
    call(surface, 50.0, 50.0, {0, 0, 0, 0});
    call(Surface(), 50.0, 50.0, fit);
    Surface odd = surface;
    odd.layers[0] = MakeFilled<std::uint8_t>(2, 3, 1);
    call(odd, 50.0, 50.0, fit);
    odd.layers[0].Reset();
    call(odd, 50.0, 50.0, fit);
    EXPECT_NO_THROW(ThresholdPercentile<short>(surface, 50.0, 50.0, fit, Zo::Object<void*>()));
    const Zo::Object<void*> wide = MakeFilled<std::int16_t>(2, 2, 1);
    EXPECT_NO_THROW(ThresholdPercentile<short>(surface, 50.0, 50.0, fit, wide));
    EXPECT_EQ(CellsIn<std::int16_t>(wide), std::vector<std::int16_t>(4, 1));
}

TEST(ThresholdPercentile, AMaskWithoutACellOfOneStays)
{
    const Surface surface = TestSupport::MakeSurface(1, 4, {1, 2, 3, 4});
    const Zo::Object<void*> mask = MakeArray<std::uint8_t>(1, 4, {0, 5, 5, 0});
    ThresholdPercentile<short>(surface, 100.0, 100.0, {0, 0, 4, 1}, mask);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (Mask{0, 5, 5, 0}));
}

TEST(ThresholdPercentile, CellsOfOtherValuesAreRankedWithTheRest)
{
    const Surface surface = TestSupport::MakeSurface(1, 5, {10, 20, 30, 40, 50});
    const Zo::Object<void*> mask = MakeArray<std::uint8_t>(1, 5, {9, 1, 200, 9, 9});
    ThresholdPercentile<short>(surface, 25.0, 75.0, {0, 0, 5, 1}, mask);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (Mask{0, 1, 200, 9, 0}));
}

TEST(ThresholdPercentile, DistancesThatAreNotNumbersDoNoHarm)
{
    std::mt19937 random(53);
    for (const double strange : {kNotANumber, std::numeric_limits<double>::infinity(), 0.0, TestSupport::kNull})
    {
        Surface surface = TestSupport::MakeRandomSurface(60, 60, 0.0, random);
        surface.scale.x = strange;
        EXPECT_NO_THROW(
            ThresholdPercentile<double>(surface, 10.0, 90.0, {0, 0, 60, 60}, MakeFilled<std::uint8_t>(60, 60, 1)));
    }
}

TEST(ThresholdPercentile, DistancesThatAreNotNumbersRankLastAndStay)
{
    // An infinite height scale puts the plane at infinity: heights above zero are at no distance that is a number,
    // those below are at minus infinity.
    std::mt19937 random(59);
    std::vector<std::int16_t> heights(60 * 60);
    for (std::int16_t& height : heights)
    {
        height = static_cast<std::int16_t>(random() % 3 == 0 ? -5 : 5);
    }
    Surface surface = TestSupport::MakeSurface(60, 60, heights);
    surface.scale.z = std::numeric_limits<double>::infinity();
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(60, 60, 1);
    for (const auto& [low, high] : {std::pair<double, double>{0.0, 10.0}, {20.0, 60.0}, {70.0, 90.0}})
    {
        ThresholdPercentile<double>(surface, low, high, {0, 0, 60, 60}, mask);
        EXPECT_EQ(CellsIn<std::uint8_t>(mask), Mask(3600, 1)) << low << " to " << high;
    }
}

/** The definition: sort the selected values, read two of them, clear what lies outside. */
template <typename T>
void PlainPercentile(const std::vector<T>& values, double low, double high, Mask& mask)
{
    std::vector<T> sorted;
    for (std::size_t i = 0; i < mask.size(); ++i)
    {
        if (mask[i] != 0)
        {
            sorted.push_back(values[i]);
        }
    }
    if (sorted.empty())
    {
        return;
    }
    std::sort(sorted.begin(), sorted.end());
    const auto limit = [&](double percentile)
    {
        const double quotient = percentile / 100 * static_cast<double>(sorted.size() - 1);
        return sorted[static_cast<std::size_t>(quotient > 0.0 ? quotient + 0.5 : 0.0)];
    };
    const T lowest = limit(low);
    const T highest = limit(high);
    for (std::size_t i = 0; i < mask.size(); ++i)
    {
        if (mask[i] != 0 && (values[i] < lowest || values[i] > highest))
        {
            mask[i] = 0;
        }
    }
}

TEST(ThresholdPercentile, AgreesWithSorting)
{
    std::mt19937 random(37);
    for (int turn = 0; turn < 300; ++turn)
    {
        const std::size_t rows = 2 + random() % 20;
        const std::size_t columns = 2 + random() % 40;
        const Surface surface = TestSupport::MakeRandomSurface(rows, columns, 0.05, random);
        const Rect2d<int> whole = {0, 0, static_cast<int>(columns), static_cast<int>(rows)};
        double low = std::uniform_real_distribution<double>(0.0, 100.0)(random);
        double high = std::uniform_real_distribution<double>(0.0, 100.0)(random);
        if (low > high)
        {
            std::swap(low, high);
        }
        const Zo::Object<void*> mask = TestSupport::MakeRandomMask(rows, columns, 0.7, random);
        Mask expected = CellsIn<std::uint8_t>(mask);
        if (turn % 3 == 0)
        {
            PlainPercentile(CellsIn<std::int16_t>(surface.layers[0]), low, high, expected);
            ThresholdPercentile<short>(surface, low, high, whole, mask);
        }
        else if (turn % 3 == 1)
        {
            PlainPercentile(CellsIn<std::uint8_t>(surface.layers[1]), low, high, expected);
            ThresholdPercentile<unsigned char>(surface, low, high, whole, mask);
        }
        else
        {
            qPlane3d64f plane;
            FitPlane(surface, whole, mask.Get(), &plane);
            const auto& [point, normal] = plane;
            const double d = -(normal.x * point.x + normal.y * point.y + normal.z * point.z);
            const auto heights = CellsIn<std::int16_t>(surface.layers[0]);
            std::vector<double> distances;
            for (std::size_t i = 0; i < heights.size(); ++i)
            {
                distances.push_back(normal.x * static_cast<double>(i % columns) +
                                    normal.y * static_cast<double>(i / columns) + normal.z * heights[i] + d);
            }
            PlainPercentile(distances, low, high, expected);
            ThresholdPercentile<double>(surface, low, high, whole, mask);
        }
        ASSERT_EQ(CellsIn<std::uint8_t>(mask), expected) << "turn " << turn;
    }
}

} // namespace
