#include "Geometry/RowExtent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

namespace
{

using Zvl::ExtentOfSelected;
using Zvl::RowExtent;

struct Row
{
    std::vector<std::uint8_t> mask;
    std::vector<std::int16_t> heights;

    std::optional<RowExtent> Extent() const { return ExtentOfSelected(mask.data(), heights.data(), mask.size()); }

    std::optional<RowExtent> PlainExtent() const
    {
        std::optional<RowExtent> extent;
        for (std::size_t column = 0; column < mask.size(); ++column)
        {
            if (mask[column] != 0)
            {
                extent = extent.value_or(RowExtent{column, column, heights[column], heights[column]});
                extent->last = column;
                extent->lowest = std::min(extent->lowest, heights[column]);
                extent->highest = std::max(extent->highest, heights[column]);
            }
        }
        return extent;
    }
};

void ExpectExtent(const Row& row, std::size_t first, std::size_t last, int lowest, int highest)
{
    const std::optional<RowExtent> extent = row.Extent();
    ASSERT_TRUE(extent.has_value());
    EXPECT_EQ(extent->first, first);
    EXPECT_EQ(extent->last, last);
    EXPECT_EQ(extent->lowest, lowest);
    EXPECT_EQ(extent->highest, highest);
}

void ExpectPlainExtent(const Row& row)
{
    const std::optional<RowExtent> expected = row.PlainExtent();
    ASSERT_EQ(row.Extent().has_value(), expected.has_value());
    if (expected)
    {
        ExpectExtent(row, expected->first, expected->last, expected->lowest, expected->highest);
    }
}

Row RandomRow(std::size_t columns, double share, std::mt19937& random)
{
    std::bernoulli_distribution selected(share);
    Row row;
    for (std::size_t column = 0; column < columns; ++column)
    {
        row.mask.push_back(selected(random) ? static_cast<std::uint8_t>(1 + random() % 255) : std::uint8_t{0});
        row.heights.push_back(static_cast<std::int16_t>(random()));
    }
    return row;
}

TEST(ExtentOfSelected, SpansTheSelectedCells)
{
    ExpectExtent({{0, 1, 0, 255, 0}, {-9, 4, 99, -3, 50}}, 1, 3, -3, 4);
    ExpectExtent({{0, 0, 1}, {-9, 99, 5}}, 2, 2, 5, 5);
}

TEST(ExtentOfSelected, TheEndsOfTheCountsAreHeightsAsAnyOther)
{
    ExpectExtent({{1, 1, 0}, {-32768, -32768, 3}}, 0, 1, -32768, -32768);
    ExpectExtent({{1, 1, 0}, {32767, 32767, 3}}, 0, 1, 32767, 32767);
}

TEST(ExtentOfSelected, ARowWithoutSelectedCellsHasNone)
{
    EXPECT_FALSE(ExtentOfSelected(nullptr, nullptr, 0).has_value());
    for (const std::size_t columns : {1U, 7U, 8U, 9U, 200U})
    {
        EXPECT_FALSE((Row{std::vector<std::uint8_t>(columns), std::vector<std::int16_t>(columns)}.Extent()));
    }
}

TEST(ExtentOfSelected, OneCellIsFoundInEveryPlace)
{
    for (std::size_t columns = 1; columns < 80; ++columns)
    {
        for (std::size_t column = 0; column < columns; ++column)
        {
            Row row = {std::vector<std::uint8_t>(columns), std::vector<std::int16_t>(columns)};
            row.mask[column] = 128;
            row.heights[column] = 7;
            ExpectExtent(row, column, column, 7, 7);
        }
    }
}

TEST(ExtentOfSelected, AgreesWithThePlainLoopAtEveryLength)
{
    std::mt19937 random(5);
    for (const double share : {0.01, 0.1, 0.5, 0.95, 1.0})
    {
        for (std::size_t columns = 0; columns < 300; ++columns)
        {
            ExpectPlainExtent(RandomRow(columns, share, random));
        }
    }
}

} // namespace
