#include "Filter/SurfaceFillGapPlain.h"

#include <array>

namespace
{

using namespace Zvl;
using namespace TestSupport;

Intensities RandomIntensities(std::size_t count, std::mt19937& random)
{
    std::uniform_int_distribution<int> intensity(0, 255);
    Intensities intensities(count);
    std::generate(intensities.begin(), intensities.end(), [&] { return static_cast<std::uint8_t>(intensity(random)); });
    return intensities;
}

/** Gaps of up to @p mostX and @p mostY cells, and slopes from flat to more than the steepest. */
SurfaceFillGapParams RandomParams(int mostX, int mostY, std::mt19937& random)
{
    const std::vector<double> resolutions = {0.001, 0.02, 0.37, 1.0, 25.0};
    const std::vector<double> slopes = {0.0, 1.0, 45.0, 80.0, 89.0, 89.999999};
    const auto any = [&random](const std::vector<double>& values)
    { return values[std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random)]; };
    const auto cells = [&random](int most) { return std::uniform_int_distribution<int>(0, most)(random) + 0.5; };
    SurfaceFillGapParams params;
    params.resolutionX = any(resolutions);
    params.resolutionY = any(resolutions);
    params.resolutionZ = any({0.0001, 0.01, 1.0});
    params.maxGapX = cells(mostX) * params.resolutionX;
    params.maxGapY = cells(mostY) * params.resolutionY;
    params.maxSlopeX = any(slopes);
    params.maxSlopeY = any(slopes);
    params.fillHigh = std::uniform_int_distribution<int>(-1, 1)(random);
    return params;
}

void ExpectFilledAsPlainly(const SurfaceFillGapParams& params, const HeightMap& map, const Intensities& intensities)
{
    ASSERT_TRUE(Filled(params, map, intensities) == PlainGapFiller(params, map, intensities).Result())
        << map.rows << " x " << map.columns << ", gaps " << params.maxGapX / params.resolutionX << ", "
        << params.maxGapY / params.resolutionY << ", slopes " << params.maxSlopeX << ", " << params.maxSlopeY
        << ", high " << params.fillHigh << (intensities.empty() ? "" : ", with intensities");
}

/** Of heights far apart, near each other and next to each other in turns. */
void ExpectRandomMapFilledAsPlainly(std::size_t round, Holes holes, std::mt19937& random)
{
    constexpr std::array<int, 3> highest = {32767, 300, 3};
    std::uniform_int_distribution<std::size_t> side(1, 40);
    const HeightMap map =
        RandomHeightMap(side(random), side(random) + round % 5 * 20, holes, highest.at(round % 3), random);
    const SurfaceFillGapParams params = RandomParams(round % 2 == 0 ? 3 : 50, 12, random);
    ExpectFilledAsPlainly(params, map, round % 4 == 0 ? Intensities() : RandomIntensities(map.cells.size(), random));
}

TEST(SurfaceFillGapXY, EveryRandomMapIsFilledAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(30);
            for (std::size_t round = 0; round < 1600; ++round)
            {
                ExpectRandomMapFilledAsPlainly(round, kAllHoles.at(round % 7 % 4), random);
                ASSERT_FALSE(HasFatalFailure());
            }
        });
}

TEST(SurfaceFillGapXY, NarrowMapsAreFilledAsPlainly)
{
    std::mt19937 random(31);
    for (std::size_t length = 1; length <= 200; ++length)
    {
        for (const Holes holes : {Holes::Sprinkled, Holes::Clustered})
        {
            for (const HeightMap& map :
                 {RandomHeightMap(1, length, holes, 5000, random), RandomHeightMap(length, 1, holes, 5000, random),
                  RandomHeightMap(2, length, holes, 5000, random)})
            {
                ExpectFilledAsPlainly(RandomParams(20, 20, random), map, RandomIntensities(map.cells.size(), random));
                ASSERT_FALSE(HasFatalFailure());
            }
        }
    }
}

// Rows of more cells than are looked at in one go, with gaps across every bound of that.
TEST(SurfaceFillGapXY, LongRowsAreFilledAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(32);
            for (const std::size_t columns : {4095U, 4096U, 4097U, 8191U, 8192U, 8200U, 12345U})
            {
                for (const Holes holes : {Holes::Sprinkled, Holes::Clustered})
                {
                    HeightMap map = RandomHeightMap(3, columns, holes, 32767, random);
                    std::fill(map.cells.begin() + 4000, map.cells.begin() + 4090, kMissing);
                    std::fill(map.cells.begin() + 4094, map.cells.begin() + 4200, kMissing);
                    for (const int mostY : {0, 3})
                    {
                        SurfaceFillGapParams params = RandomParams(200, mostY, random);
                        params.maxGapX = 120.0 * params.resolutionX;
                        ExpectFilledAsPlainly(params, map, RandomIntensities(map.cells.size(), random));
                    }
                }
            }
        });
}

TEST(SurfaceFillGapXY, MapsWithLargeGapsAreFilledAsPlainly)
{
    std::mt19937 random(33);
    for (int round = 0; round < 60; ++round)
    {
        HeightMap map = RandomHeightMap(150, 170, Holes::Sprinkled, 2000, random);
        std::uniform_int_distribution<std::size_t> corner(0, 140);
        for (int hole = 0; hole < 30; ++hole)
        {
            const std::size_t top = corner(random);
            const std::size_t left = corner(random);
            for (std::size_t row = top; row < std::min<std::size_t>(top + corner(random) / 4, map.rows); ++row)
            {
                std::fill_n(map.cells.begin() + static_cast<std::ptrdiff_t>(row * map.columns + left), 30, kMissing);
            }
        }
        ExpectFilledAsPlainly(RandomParams(60, 60, random), map, RandomIntensities(map.cells.size(), random));
        ASSERT_FALSE(HasFatalFailure());
    }
}

// The weighted means depend on the ratio of the distances alone, though the sums outgrow 64 bits here.
TEST(SurfaceFillGapXY, MeansDoNotDependOnTheUnit)
{
    constexpr std::int64_t kSpan = 300000;
    HeightMap map = {1, kSpan + 1, Heights(kSpan + 1, kMissing)};
    map.cells.front() = 32000;
    map.cells.back() = 31000;
    Heights expected(map.cells.size());
    for (std::int64_t step = 0; step <= kSpan; ++step)
    {
        expected[static_cast<std::size_t>(step)] =
            static_cast<std::int16_t>((32000 * (kSpan - step) + 31000 * step) / kSpan);
    }
    for (const double unit : {1.0, 2e6})
    {
        SurfaceFillGapParams params;
        params.resolutionX = params.resolutionY = params.resolutionZ = unit;
        params.maxGapX = kSpan * unit;
        params.maxGapY = unit;
        params.maxSlopeX = 45.0;
        EXPECT_TRUE(Filled(params, map).heights == expected) << unit;
    }
}

} // namespace
