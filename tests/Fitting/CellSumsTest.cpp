#include "Fitting/CellSums.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

using Zvl::CellMoments;
using Zvl::CellSums;
using Zvl::RowStretch;

struct Row
{
    std::vector<std::int16_t> heights;
    std::vector<std::uint8_t> mask;

    RowStretch Stretch(std::size_t length) const { return {heights.data(), mask.data(), length, heights.size()}; }
};

CellMoments Naive(const Row& row, std::size_t length)
{
    CellMoments moments;
    for (std::size_t i = 0; i < length; ++i)
    {
        if (row.mask[i] != 0)
        {
            const auto column = static_cast<std::int64_t>(i);
            const std::int64_t height = row.heights[i];
            moments.cells += 1;
            moments.columns += column;
            moments.heights += height;
            moments.squaredColumns += column * column;
            moments.columnsTimesHeights += column * height;
            moments.squaredHeights += height * height;
        }
    }
    return moments;
}

void ExpectSums(const Row& row, std::size_t length)
{
    const CellMoments expected = Naive(row, length);
    const CellSums sums = Zvl::SumCells(row.Stretch(length));
    EXPECT_EQ(sums.cells, expected.cells);
    EXPECT_EQ(sums.columns, expected.columns);
    EXPECT_EQ(sums.heights, expected.heights);
}

void ExpectMoments(const Row& row, std::size_t length)
{
    const CellMoments expected = Naive(row, length);
    const CellMoments moments = Zvl::SumMoments(row.Stretch(length));
    EXPECT_EQ(moments.cells, expected.cells);
    EXPECT_EQ(moments.columns, expected.columns);
    EXPECT_EQ(moments.heights, expected.heights);
    EXPECT_EQ(moments.squaredColumns, expected.squaredColumns);
    EXPECT_EQ(moments.columnsTimesHeights, expected.columnsTimesHeights);
    EXPECT_EQ(moments.squaredHeights, expected.squaredHeights);
}

TEST(CellSums, EveryLengthEqualsTheNaiveSumsAndLooksAtNoCellBeyond)
{
    std::mt19937_64 random(7);
    for (std::size_t length = 1; length <= Zvl::kLongestMomentStretch; ++length)
    {
        for (const std::size_t beyond : {0U, 5U, 300U})
        {
            Row row;
            std::size_t room = Zvl::kMostMomentCells;
            for (std::size_t i = 0; i < length + beyond; ++i)
            {
                const bool selected = i >= length || (room > 0 && random() % 2 == 0);
                room -= selected && i < length ? 1 : 0;
                row.heights.push_back(static_cast<std::int16_t>(random()));
                row.mask.push_back(selected ? static_cast<std::uint8_t>(1 + random() % 255) : std::uint8_t{0});
            }
            ExpectSums(row, length);
            ExpectMoments(row, length);
        }
    }
}

TEST(CellSums, ExtremeHeightsDoNotOverflow)
{
    for (const std::int16_t height : {std::int16_t{-32768}, std::int16_t{32767}})
    {
        Row row{std::vector<std::int16_t>(Zvl::kLongestSumStretch, height),
                std::vector<std::uint8_t>(Zvl::kLongestSumStretch, 1)};
        ExpectSums(row, Zvl::kLongestSumStretch);
        std::fill(row.mask.begin(), row.mask.begin() + 128, std::uint8_t{0});
        ExpectMoments(row, Zvl::kLongestMomentStretch);
    }
}

} // namespace
