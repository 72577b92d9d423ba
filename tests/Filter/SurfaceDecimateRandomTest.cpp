#include "Filter/SurfaceDecimateSupport.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using namespace Zvl;
using namespace TestSupport;

constexpr Size kNoSize = {0, 0};
constexpr Ratio kNoRatio = {0.0, 0.0};

double Rounded(double value)
{
    return std::trunc(value > 0.0 ? value + 0.5 : value - 0.5);
}

/** The share of cell @p cell that lies between @p begin and @p end. */
double ShareOf(std::size_t cell, double begin, double end)
{
    const auto position = static_cast<double>(cell);
    if (position == std::floor(begin))
    {
        return 1.0 - (begin - position);
    }
    return position == std::ceil(end) - 1.0 ? end - position : 1.0;
}

/** The sums of one row of the coarser grid, cell by cell and row after row. */
struct RowSums
{
    explicit RowSums(std::size_t columns) : heights(columns), intensities(columns), weights(columns) {}

    void Add(const HeightMap& map, const Intensities& of, std::size_t y, double wy, double stepX)
    {
        double begin = 0.0;
        double end = stepX;
        for (std::size_t i = 0; i < heights.size(); ++i)
        {
            for (auto x = static_cast<std::size_t>(std::floor(begin));
                 static_cast<double>(x) < std::ceil(end) && x < map.columns; ++x)
            {
                const double wx = ShareOf(x, begin, end);
                if (map.At(y, x) != kMissing)
                {
                    heights[i] += map.At(y, x) * wx * wy;
                    weights[i] += wx * wy;
                    intensities[i] += of.empty() ? 0.0 : of[y * map.columns + x] * wx * wy;
                }
            }
            begin += stepX;
            end += stepX;
        }
    }

    std::vector<double> heights;
    std::vector<double> intensities;
    std::vector<double> weights;
};

CoarseMap DecimatedPlainly(const HeightMap& map, const Intensities& intensities, Size outSize, Ratio ratio)
{
    const auto columns = static_cast<double>(map.columns);
    const auto rows = static_cast<double>(map.rows);
    if (outSize.x == 0 || outSize.y == 0)
    {
        ratio = {std::min(ratio.x, 1.0), std::min(ratio.y, 1.0)};
        outSize = {static_cast<std::size_t>(Rounded(columns * ratio.x)),
                   static_cast<std::size_t>(Rounded(rows * ratio.y))};
    }
    else if (ratio.x <= 0.0 || ratio.y <= 0.0)
    {
        outSize = {std::min(outSize.x, map.columns), std::min(outSize.y, map.rows)};
        ratio = {static_cast<double>(outSize.x) / columns, static_cast<double>(outSize.y) / rows};
    }
    const double stepX = 1.0 / ratio.x;
    const double stepY = 1.0 / ratio.y;
    CoarseMap coarse = {outSize.y, outSize.x, {}, {}};
    double begin = 0.0;
    double end = stepY;
    for (std::size_t j = 0; j < outSize.y; ++j)
    {
        RowSums sums(outSize.x);
        for (auto y = static_cast<std::size_t>(std::floor(begin));
             static_cast<double>(y) < std::ceil(end) && y < map.rows; ++y)
        {
            sums.Add(map, intensities, y, ShareOf(y, begin, end), stepX);
        }
        for (std::size_t i = 0; i < outSize.x; ++i)
        {
            const bool isNull = sums.weights[i] == 0.0;
            coarse.heights.push_back(isNull ? kMissing
                                            : static_cast<std::int16_t>(Rounded(sums.heights[i] / sums.weights[i])));
            if (!intensities.empty())
            {
                coarse.intensities.push_back(
                    isNull ? std::uint8_t{0} : static_cast<std::uint8_t>(sums.intensities[i] / sums.weights[i] + 0.5));
            }
        }
        begin += stepY;
        end += stepY;
    }
    return coarse;
}

Intensities RandomIntensities(const HeightMap& map, int highest, std::mt19937& random)
{
    std::uniform_int_distribution<int> intensity(0, highest);
    Intensities intensities(map.cells.size());
    std::generate(intensities.begin(), intensities.end(), [&] { return static_cast<std::uint8_t>(intensity(random)); });
    return intensities;
}

void ExpectDecimatedAsPlainly(const HeightMap& map, const Intensities& intensities, Size outSize, Ratio ratio)
{
    ASSERT_TRUE(Decimated(map, intensities, outSize, ratio) == DecimatedPlainly(map, intensities, outSize, ratio))
        << map.rows << " x " << map.columns << " to " << outSize.y << " x " << outSize.x << ", ratio " << ratio.y
        << ", " << ratio.x << (intensities.empty() ? "" : ", with intensities");
}

TEST(SurfaceDecimate, EveryRandomMapIsDecimatedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(50);
            std::uniform_int_distribution<std::size_t> side(1, 90);
            std::uniform_real_distribution<double> share(0.0, 1.2);
            for (int round = 0; round < 600; ++round)
            {
                const HeightMap map = RandomHeightMap(side(random), side(random), kAllHoles[random() % 4],
                                                      round % 3 == 0 ? 32767 : 5, random);
                const Intensities intensities =
                    round % 2 == 0 ? Intensities() : RandomIntensities(map, round % 3 == 0 ? 255 : 3, random);
                const Size size = {side(random), side(random)};
                const Ratio ratio = {std::max(share(random), 0.6 / static_cast<double>(map.columns)),
                                     std::max(share(random), 0.6 / static_cast<double>(map.rows))};
                ExpectDecimatedAsPlainly(map, intensities, size, kNoRatio);
                ExpectDecimatedAsPlainly(map, intensities, kNoSize, ratio);
                ExpectDecimatedAsPlainly(map, intensities, size, ratio);
                ASSERT_FALSE(HasFatalFailure());
            }
        });
}

// Steps of few binary digits, of which all sums are exact, and steps nearly so.
TEST(SurfaceDecimate, SimpleRatiosAreDecimatedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(51);
            std::uniform_int_distribution<std::size_t> side(60, 150);
            const std::vector<double> steps = {1.0, 1.25,   1.5, 2.0, 2.2,  2.5,  3.0,
                                               4.0, 4.0001, 5.2, 8.0, 16.0, 17.0, 40.0};
            for (const double stepX : steps)
            {
                for (const double stepY : steps)
                {
                    const HeightMap map = RandomHeightMap(side(random), side(random), Holes::Sprinkled, 7, random);
                    const Ratio ratio = {1.0 / stepX, 1.0 / stepY};
                    ExpectDecimatedAsPlainly(map, {}, kNoSize, ratio);
                    ExpectDecimatedAsPlainly(map, RandomIntensities(map, 5, random), {70, 80}, ratio);
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        });
}

// Two by two whole cells, of every count of missing heights.
TEST(SurfaceDecimate, EveryMapIsHalvedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(52);
            for (std::size_t columns = 1; columns <= 150; ++columns)
            {
                for (const Holes holes : kAllHoles)
                {
                    const HeightMap map =
                        RandomHeightMap(7 + columns % 2, columns, holes, columns % 3 == 0 ? 32767 : 2, random);
                    ExpectDecimatedAsPlainly(map, {}, kNoSize, {0.5, 0.5});
                    const Intensities intensities = RandomIntensities(map, columns % 2 == 0 ? 255 : 1, random);
                    ExpectDecimatedAsPlainly(map, intensities, kNoSize, {0.5, 0.5});
                    ExpectDecimatedAsPlainly(map, intensities, {columns, 6}, {0.5, 0.5});
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        });
}

// The order of summation decides many of these: a share of heights of 0 and 1 lies on a half but for rounding.
TEST(SurfaceDecimate, MeansNextToAHalfAreRoundedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(53);
            std::uniform_int_distribution<std::size_t> side(20, 100);
            for (int round = 0; round < 300; ++round)
            {
                HeightMap map = RandomHeightMap(side(random), side(random), Holes::Sprinkled, 1, random);
                const std::array<double, 6> steps = {1.1, 2.2, 2.7, 10.0 / 3.0, 6.7, 12.3};
                const Ratio ratio = {1.0 / steps.at(random() % 6), 1.0 / steps.at(random() % 6)};
                for (std::int16_t& cell : map.cells)
                {
                    const auto base = static_cast<std::int16_t>(round % 2 == 0 ? 0 : 32000);
                    cell = cell == kMissing ? kMissing : static_cast<std::int16_t>(base + (cell > 0 ? 1 : 0));
                }
                ExpectDecimatedAsPlainly(map, RandomIntensities(map, 1, random), {side(random), side(random)}, ratio);
                ASSERT_FALSE(HasFatalFailure());
            }
        });
}

TEST(SurfaceDecimate, NarrowAndLongMapsAreDecimatedAsPlainly)
{
    InEachInstructionSet(
        []
        {
            std::mt19937 random(54);
            for (const std::size_t length : {1U, 2U, 63U, 64U, 65U, 1000U, 4097U, 20000U})
            {
                for (const std::size_t cells : {1U, 2U, 7U, 64U, 65U, 300U, 5000U})
                {
                    const HeightMap wide = RandomHeightMap(2, length, Holes::Sprinkled, 32767, random);
                    const HeightMap tall = RandomHeightMap(length, 2, Holes::Clustered, 32767, random);
                    ExpectDecimatedAsPlainly(wide, RandomIntensities(wide, 255, random), {cells, 1}, kNoRatio);
                    ExpectDecimatedAsPlainly(tall, RandomIntensities(tall, 255, random), {1, cells}, kNoRatio);
                    ExpectDecimatedAsPlainly(wide, {}, {cells, 1}, {0.013, 0.7});
                    ASSERT_FALSE(HasFatalFailure());
                }
            }
        });
}

TEST(SurfaceDecimate, TheHighestHeightsStayAsTheyAre)
{
    for (const std::int16_t height : {std::int16_t{32767}, std::int16_t{-32767}})
    {
        const HeightMap map = {300, 400, Heights(120000, height)};
        for (const Ratio ratio : {Ratio{0.37, 0.81}, Ratio{0.5, 0.5}, Ratio{0.01, 0.003}, Ratio{0.125, 0.25}})
        {
            const CoarseMap coarse = Decimated(map, Intensities(120000, 255), kNoSize, ratio);
            EXPECT_EQ(coarse.heights, Heights(coarse.heights.size(), height));
            EXPECT_EQ(coarse.intensities, Intensities(coarse.heights.size(), 255));
        }
    }
}

} // namespace
