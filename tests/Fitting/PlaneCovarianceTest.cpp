#include "Fitting/PlaneCovariance.h"

#include "FittingSupport.h"

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>
#include <random>
#include <utility>

namespace
{

using namespace FittingSupport;

__extension__ using Wide = __int128;

/** The definition, cell by cell. */
std::optional<Zvl::PlaneCovariance> Naive(const Zvl::SelectedCells& cells, const qPoint3d64f& scale,
                                          const qPoint3d64f& offset)
{
    const auto forEachCell = [&cells](auto action)
    {
        for (int row = 0; row < cells.rect.height; ++row)
        {
            for (int column = 0; column < cells.rect.width; ++column)
            {
                if (cells.mask.Row(static_cast<std::size_t>(row))[column] != 0)
                {
                    const std::int64_t x = cells.rect.x + column;
                    const std::int64_t y = cells.rect.y + row;
                    action(x, y, std::int64_t{cells.heights.Row(static_cast<std::size_t>(y))[x]});
                }
            }
        }
    };

    std::array<std::int64_t, 4> mean{};
    forEachCell(
        [&mean](std::int64_t x, std::int64_t y, std::int64_t h)
        {
            mean[0] += 1;
            mean[1] += x;
            mean[2] += y;
            mean[3] += h;
        });
    if (mean[0] <= 3)
    {
        return std::nullopt;
    }
    while (mean[0] > 8192)
    {
        for (std::int64_t& sum : mean)
        {
            sum >>= 1;
        }
    }
    const double inverse = 1.0 / static_cast<double>(mean[0]);

    Zvl::PlaneCovariance covariance{};
    const std::array<double, 3> scales{scale.x, scale.y, scale.z};
    std::array<std::array<Wide, 3>, 3> sums{};
    const auto flush = [&](bool evenZero)
    {
        for (std::size_t i = 0; i < 3; ++i)
        {
            for (std::size_t j = i; j < 3; ++j)
            {
                if (evenZero || sums[i][j] != 0)
                {
                    const double value = static_cast<double>(sums[i][j]) * inverse * scales[i] * scales[j];
                    covariance.productSums[3 * i + j] += value;
                    if (i != j)
                    {
                        covariance.productSums[3 * j + i] += value;
                    }
                }
                sums[i][j] = 0;
            }
        }
    };
    std::size_t counter = 0;
    std::size_t limit = 128;
    forEachCell(
        [&](std::int64_t x, std::int64_t y, std::int64_t h)
        {
            if (counter == limit)
            {
                flush(true);
                limit += 128;
            }
            ++counter;
            const std::array<Wide, 3> deviation{x * mean[0] - mean[1], y * mean[0] - mean[2], h * mean[0] - mean[3]};
            for (std::size_t i = 0; i < 3; ++i)
            {
                for (std::size_t j = i; j < 3; ++j)
                {
                    sums[i][j] += deviation[i] * deviation[j];
                }
            }
        });
    flush(false);
    covariance.mean = {static_cast<double>(mean[1]) * inverse * scale.x + offset.x,
                       static_cast<double>(mean[2]) * inverse * scale.y + offset.y,
                       static_cast<double>(mean[3]) * inverse * scale.z + offset.z};
    return covariance;
}

void ExpectSameBits(const Zvl::Surface& surface, const Zvl::Rect2d<int>& rect, const Zo::Object<void*>& mask)
{
    const Zvl::SelectedCells cells{Zvl::CellsOf<const std::int16_t>(surface.layers[0].Get()),
                                   Zvl::CellsOf<const std::uint8_t>(mask.Get()), rect};
    ASSERT_TRUE(cells.heights.Contains(rect) && cells.mask.HasSizeOf(rect));
    const std::optional<Zvl::PlaneCovariance> expected = Naive(cells, surface.scale, surface.offset);
    Zvl::PlaneCovariance covariance{};
    ASSERT_EQ(Zvl::SumCovariance(cells, surface.scale, surface.offset, covariance), expected.has_value());
    if (expected)
    {
        EXPECT_EQ(std::memcmp(&covariance, &*expected, sizeof covariance), 0);
    }
}

constexpr qPoint3d64f kScale{0.0123, 0.0456, 0.00078};
constexpr qPoint3d64f kOffset{-11.7, 3.9, 0.25};

enum class Heights
{
    Random,
    Extremes,
    Missing
};

std::int16_t Height(Heights kind, std::mt19937_64& random)
{
    switch (kind)
    {
    case Heights::Random:
        return static_cast<std::int16_t>(random());
    case Heights::Extremes:
        return random() % 2 == 0 ? std::int16_t{-32768} : std::int16_t{32767};
    default:
        return random() % 10 == 0 ? std::int16_t{-32768} : static_cast<std::int16_t>(random() % 400);
    }
}

/** @p density is the share of selected cells; a seed for each test makes it one that can be repeated. */
void CompareOnRandomSurface(std::size_t rows, std::size_t columns, double density, Heights kind, std::uint64_t seed)
{
    SCOPED_TRACE(testing::Message() << rows << " x " << columns << ", density " << density << ", heights "
                                    << static_cast<int>(kind));
    std::mt19937_64 random(seed);
    std::vector<std::int16_t> heights(rows * columns);
    std::generate(heights.begin(), heights.end(), [&] { return Height(kind, random); });
    const Zvl::Rect2d<int> rect{columns > 2 ? 1 : 0, rows > 3 ? 2 : 0,
                                static_cast<int>(columns > 2 ? columns - 2 : columns),
                                static_cast<int>(rows > 3 ? rows - 3 : rows)};
    std::vector<std::uint8_t> selected(static_cast<std::size_t>(rect.width) * static_cast<std::size_t>(rect.height));
    std::bernoulli_distribution select(density);
    std::generate(selected.begin(), selected.end(),
                  [&] { return select(random) ? static_cast<std::uint8_t>(1 + random() % 255) : std::uint8_t{0}; });
    ExpectSameBits(MakeSurface(rows, columns, heights, kScale, kOffset), rect,
                   MakeMask(static_cast<std::size_t>(rect.height), static_cast<std::size_t>(rect.width), selected));
}

TEST(PlaneCovariance, RandomSurfacesGiveTheBitsOfTheDefinition)
{
    const std::pair<std::size_t, std::size_t> sizes[] = {{1, 4},    {1, 900},  {900, 1}, {4, 1},    {7, 5},
                                                         {64, 128}, {33, 300}, {3, 700}, {131, 517}};
    std::uint64_t seed = 100;
    for (const auto& [rows, columns] : sizes)
    {
        for (const double density : {1.0, 0.9, 0.5, 0.02})
        {
            for (const Heights kind : {Heights::Random, Heights::Extremes, Heights::Missing})
            {
                CompareOnRandomSurface(rows, columns, density, kind, ++seed);
            }
        }
    }
}

TEST(PlaneCovariance, RowsLongerThan16BitsGiveTheBitsOfTheDefinition)
{
    CompareOnRandomSurface(1, 70000, 0.9, Heights::Random, 1);
    CompareOnRandomSurface(70000, 1, 0.9, Heights::Extremes, 2);
    CompareOnRandomSurface(2, 70000, 0.003, Heights::Random, 3);
}

TEST(PlaneCovariance, ProductsBeyond64BitsAreExact)
{
    // A group of missing heights far below all others deviates by nearly 65535 * 8192 in every cell.
    std::vector<std::int16_t> heights(128 * 128, 32767);
    heights[5] = -32768;
    ExpectSameBits(MakeSurface(128, 128, heights, kScale, kOffset), {0, 0, 128, 128}, FullMask(128, 128));
    std::fill(heights.begin(), heights.begin() + 256, std::int16_t{-32768});
    ExpectSameBits(MakeSurface(128, 128, heights, kScale, kOffset), {0, 0, 128, 128}, FullMask(128, 128));
}

TEST(PlaneCovariance, GroupIsFlushedWhenTheCellBehindIts128thTurnsUp)
{
    // An infinite scale turns a zero sum that is flushed into NaN. A full group is flushed with its zeros,
    // the last group without them.
    const qPoint3d64f scale{1.0, 1.0, std::numeric_limits<double>::infinity()};
    for (const std::size_t columns : {127U, 128U, 129U, 256U})
    {
        const Zvl::Surface surface = MakeSurface(1, columns, std::vector<std::int16_t>(columns, 0), scale);
        const Zo::Object<void*> mask = FullMask(1, columns);
        const Zvl::SelectedCells cells{Zvl::CellsOf<const std::int16_t>(surface.layers[0].Get()),
                                       Zvl::CellsOf<const std::uint8_t>(mask.Get()),
                                       {0, 0, static_cast<int>(columns), 1}};
        Zvl::PlaneCovariance covariance{};
        ASSERT_TRUE(Zvl::SumCovariance(cells, scale, surface.offset, covariance));
        EXPECT_EQ(std::isnan(covariance.productSums[8]), columns > 128) << columns;
    }
}

} // namespace
