/** @file
 *  Gaps of a line whose results overlap its cells. */

#include "Filter/LineFilters.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace
{

TEST(LineGaps, ResultsMayBeginAtAnyDistanceBeforeTheCells)
{
    std::mt19937 random(3);
    std::vector<std::int16_t> cells(300);
    for (std::int16_t& cell : cells)
    {
        cell = random() % 3 == 0 ? Zvl::kMissingHeight : static_cast<std::int16_t>(random() % 100);
    }
    std::vector<std::int16_t> expected(cells.size());
    Zvl::FillLineGaps({cells.data(), cells.size(), expected.data()}, 4, 20, false);
    EXPECT_NE(expected, cells);
    for (const std::size_t distance : {0U, 1U, 2U, 5U, 31U, 64U, 200U, 300U})
    {
        std::vector<std::int16_t> buffer(distance);
        buffer.insert(buffer.end(), cells.begin(), cells.end());
        Zvl::FillLineGaps({buffer.data() + distance, cells.size(), buffer.data()}, 4, 20, false);
        buffer.resize(cells.size());
        EXPECT_EQ(buffer, expected) << distance;
    }
}

} // namespace
