#include "support/HeightGrid.h"

#include "ScratchFolder.h"
#include "support/Lattice.h"

#include <algorithm>
#include <random>

namespace ExampleFiles
{
namespace
{

using Examples::HeightGrid;
using Examples::kMissingHeight;

HeightGrid RowOf(const std::vector<double>& heights)
{
    return {1, heights.size(), {1.0, 1.0}, {0.0, 0.0}, heights};
}

Zvl::Surface MapOf(const std::vector<double>& heights)
{
    return Examples::ToSurface(RowOf(heights), "map");
}

TEST(HeightGrid, KeepsWholeStepsOfASensor)
{
    const Zvl::Surface map =
        MapOf({7.3, 7.3 + 3 * 0.0004, 7.3 - 20 * 0.0004, kMissingHeight, 7.3 + 11 * 0.0004, 7.3 + 12 * 0.0004});
    EXPECT_DOUBLE_EQ(map.scale.z, 0.0004);
    EXPECT_TRUE(Examples::IsMissing(Examples::HeightRow(map, 0)[3]));
    EXPECT_NEAR(HeightAt(map, 0, 2), 7.292, 1e-12);
}

TEST(HeightGrid, DividesTheRangeOfOtherHeightsInto65534Steps)
{
    std::mt19937 generator(5);
    std::uniform_real_distribution<double> uniform(-2.0, 3.0);
    std::vector<double> heights = {-2.0, 3.0};
    for (int cell = 0; cell < 5000; ++cell)
    {
        heights.push_back(uniform(generator));
    }
    const Zvl::Surface map = MapOf(heights);
    EXPECT_DOUBLE_EQ(map.scale.z, 5.0 / 65534.0);
    EXPECT_EQ(Examples::HeightRow(map, 0)[0], -32767);
    EXPECT_EQ(Examples::HeightRow(map, 0)[1], 32767);
    ExpectMap(map, {heights}, 0.5001 * map.scale.z);
}

TEST(HeightGrid, DoesNotTakeNearlyEvenHeightsForSteps)
{
    const std::vector<double> heights = {0.0, 1.0, 2.04};
    ExpectMap(MapOf(heights), {heights}, 0.5001 * 2.04 / 65534.0);
}

TEST(HeightGrid, GivesAFlatMapStepsOfANanometre)
{
    const Zvl::Surface map = MapOf({2.5, kMissingHeight, 2.5});
    EXPECT_EQ(map.scale.z, 1e-6);
    EXPECT_EQ(HeightAt(map, 0, 2), 2.5);
}

TEST(HeightGrid, RefusesWhatIsNoMap)
{
    EXPECT_THROW(MapOf({kMissingHeight, kMissingHeight}), Examples::InputError);
    EXPECT_THROW(MapOf({1.0, std::numeric_limits<double>::infinity()}), Examples::InputError);
    EXPECT_THROW(MapOf({-1e308, 1e308}), Examples::InputError);
    EXPECT_THROW(MapOf({0.0, 1e12}), Examples::InputError);
    EXPECT_THROW(MapOf({1e10, 1e10}), Examples::InputError);
    for (const double size : {0.0, -1.0, 1e-13, 1e7, kMissingHeight})
    {
        HeightGrid grid = RowOf({0.0, 1.0});
        grid.scale.y = size;
        EXPECT_THROW(Examples::ToSurface(grid, "map"), Examples::InputError) << size;
    }
}

TEST(HeightGrid, CountsCellsUpToALimit)
{
    EXPECT_EQ(Examples::CellCount(1U << 20, 1U << 7, "map"), std::size_t{1} << 27);
    EXPECT_THROW(Examples::CellCount((1U << 20) + 1, 1U << 7, "map"), Examples::InputError);
    EXPECT_THROW(Examples::CellCount(0, 5, "map"), Examples::InputError);
    EXPECT_THROW(Examples::CellCount(5, 0, "map"), Examples::InputError);
    EXPECT_THROW(Examples::CellCount(std::uint64_t{1} << 63, 2, "map"), Examples::InputError);
}

TEST(HeightGrid, TakesTheSmallestAndLargestCellsOfAMapping)
{
    EXPECT_NO_THROW(Examples::RequireMapping({1e-12, 1e6, 1.0}, {-1e9, 1e9, 0.0}, "map"));
    EXPECT_THROW(Examples::RequireMapping({1.0, 1.0, 1.0}, {0.0, 0.0, 1.001e9}, "map"), Examples::InputError);
    EXPECT_THROW(Examples::RequireMapping({1.0, 1.0, 1.0}, {0.0, kMissingHeight, 0.0}, "map"), Examples::InputError);
}

bool IsNear(double pitch, double deviation)
{
    return deviation <= 0.05 * pitch;
}

TEST(Lattice, IsFoundBehindGapsAndNoise)
{
    const auto lattice = Examples::FindLattice({0.3001, 0.1, 0.1002, 1.2, 0.9999, 1.1, 2.1001}, 1000, IsNear);
    ASSERT_TRUE(lattice);
    EXPECT_NEAR(lattice->pitch, 0.1, 1e-4);
    EXPECT_EQ(lattice->count, 21U);
    EXPECT_EQ(lattice->IndexOf(1.2), 11U);
    EXPECT_EQ(lattice->IndexOf(2.1001), 20U);
}

TEST(Lattice, KeepsAllDigitsOfAPitchThatHasMany)
{
    constexpr double kPitch = 0.0010982520279867458;
    std::vector<double> places(640);
    std::generate(places.begin(), places.end(), [place = -kPitch]() mutable { return place += kPitch; });
    const auto lattice = Examples::FindLattice(places, 1000, IsNear);
    ASSERT_TRUE(lattice);
    EXPECT_NEAR(lattice->pitch, kPitch, 1e-15);
}

TEST(Lattice, IsFoundInSinglePrecisionFarFromTheOrigin)
{
    std::vector<double> places;
    for (int column = 0; column < 4000; ++column)
    {
        places.push_back(static_cast<float>(90000.0 + 0.25 * column));
        places.push_back(std::nextafter(static_cast<float>(90000.0 + 0.25 * column), 0.0F));
    }
    const auto lattice = Examples::FindLattice(places, 1U << 27U, IsNear);
    ASSERT_TRUE(lattice);
    EXPECT_EQ(lattice->count, 4000U);
    EXPECT_NEAR(lattice->pitch, 0.25, 1e-5);
}

TEST(Lattice, IsNotFoundInScatteredNumbersOrASingleOne)
{
    std::mt19937 generator(3);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    std::vector<double> values(500);
    std::generate(values.begin(), values.end(), [&] { return uniform(generator); });
    EXPECT_FALSE(Examples::FindLattice(values, 100000, IsNear));
    EXPECT_FALSE(Examples::FindLattice({4.0, 4.0}, 100, IsNear));
    EXPECT_TRUE(Examples::FindLattice({0.0, 15.0, 210.0}, 15, IsNear));
    EXPECT_FALSE(Examples::FindLattice({0.0, 15.0, 210.0}, 14, IsNear)); // too few places
    EXPECT_FALSE(Examples::FindLattice({-1.7e308, 1.7e308}, 100, IsNear));
}

} // namespace
} // namespace ExampleFiles
