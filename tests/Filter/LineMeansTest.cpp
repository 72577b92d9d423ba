/** @file
 *  The quotients of window means along lines. */

#include "Filter/LineMeans.h"

#include "Filter/LineFilters.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

/** The mean of the cell in the middle of a line, whose window holds the whole line. */
std::int16_t MeanOfLine(const std::vector<std::int16_t>& cells)
{
    std::vector<std::int16_t> means(cells.size(), 77);
    Zvl::AverageLine({cells.data(), cells.size(), means.data()}, cells.size());
    return means[cells.size() / 2];
}

// In every instruction set, the plain one included.
TEST(LineMeans, QuotientsOfLinesAreTruncatedTowardZero)
{
    for (std::size_t count = 1; count <= 601; count += 2)
    {
        for (const int height : {-32766, -1001, -1, 1, 7, 1000, 32766})
        {
            const int beyond = height < 0 ? height - 1 : height + 1;
            std::vector<std::int16_t> cells(count, static_cast<std::int16_t>(beyond));
            ASSERT_EQ(MeanOfLine(cells), beyond) << count;
            cells.front() = static_cast<std::int16_t>(height); // the sum is one short of the next quotient
            ASSERT_EQ(MeanOfLine(cells), height) << count;
        }
    }
}

/** Means over the @p count cells up to each one. */
std::vector<std::int16_t> MeansUpTo(const std::vector<std::int16_t>& cells, std::size_t count)
{
    const Zvl::MeanWindow window = {count - 1, 0};
    const std::size_t sums = Zvl::CellsOfPrefixSums(window, cells.size());
    Zvl::MemoryParts size(nullptr);
    size.TakeSums(sums);
    std::vector<std::uint64_t> memory(size.Used() / sizeof(std::uint64_t) + 1);
    Zvl::MemoryParts parts(memory.data());
    std::vector<std::uint16_t> shifted(cells.size());
    Zvl::AverageStretch({cells.data(), cells.size(), 0, cells.size(), cells.data()}, window, false, Zvl::kHeightShift,
                        parts.TakeSums(sums), shifted.data());
    std::vector<std::int16_t> means;
    for (const std::uint16_t mean : shifted)
    {
        means.push_back(static_cast<std::int16_t>(mean - Zvl::kHeightShift));
    }
    return means;
}

/** All heights as quotients in a line: of @p count cells each, all of them that height or, but for the last, further from
 *  0 by @p beyond. */
void ExpectQuotientsInLine(std::size_t count, int beyond)
{
    std::vector<std::int16_t> cells;
    for (int height = -32766; height <= 32766; ++height)
    {
        cells.insert(cells.end(), count - 1, static_cast<std::int16_t>(height < 0 ? height - beyond : height + beyond));
        cells.push_back(static_cast<std::int16_t>(height));
    }
    const std::vector<std::int16_t> means = MeansUpTo(cells, count);
    std::size_t last = count - 1;
    for (int height = -32766; height <= 32766; ++height, last += count)
    {
        ASSERT_EQ(means[last], height) << count << " cells";
    }
}

// Such means are not divisions where a vector has a lane for each number of heights.
TEST(LineMeans, QuotientsOfFewCellsOfALineAreTruncatedTowardZero)
{
    for (std::size_t count = 1; count <= 16 && Zvl::CanAverageInVectors(count); ++count)
    {
        ExpectQuotientsInLine(count, 0);
        ExpectQuotientsInLine(count, 1);
    }
}

} // namespace
