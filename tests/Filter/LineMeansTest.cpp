/** @file
 *  The quotients of window means, for every count that short windows can have and for some that longer ones can. */

#include "Filter/LineMeans.h"

#include "Filter/LineFilters.h"
#include "support/InstructionSets.h"

#include <vector>

namespace
{

/** The means of columns whose windows hold @p count heights each, with the sums that @p sumOf gives for the heights from
 *  -32767 to 32767. */
class Quotients
{
public:
    static constexpr std::size_t kColumns = 65535;

    template <typename SumOf>
    std::vector<std::int16_t> Of(int count, SumOf sumOf)
    {
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            const std::int64_t sum = sumOf(static_cast<int>(column) - 32767);
            const auto shifted = static_cast<std::int32_t>(sum + std::int64_t{count} * Zvl::kHeightShift);
            (column % 2 == 0 ? even : odd)[column / 2] = shifted;
            counts[column] = static_cast<std::uint16_t>(count);
        }
        std::vector<std::int16_t> means(kColumns, 77);
        const Zvl::ColumnStep step = {
            nothing.data(), nothing.data(), {even.data(), odd.data(), counts.data()}, kColumns};
        Zvl::AverageColumns(step, static_cast<std::size_t>(count), nothing.data(), false, means.data(), means.data());
        return means;
    }

private:
    std::vector<std::int32_t> even = std::vector<std::int32_t>(kColumns / 2 + 1);
    std::vector<std::int32_t> odd = std::vector<std::int32_t>(kColumns / 2 + 1);
    std::vector<std::uint16_t> counts = std::vector<std::uint16_t>(kColumns + 1);
    std::vector<std::uint16_t> nothing = std::vector<std::uint16_t>(kColumns + 1, 0);
};

std::vector<int> Counts()
{
    std::vector<int> counts = {256, 257, 300, 511, 512, 513, 514, 1000, 4097, 32768, 32771, 65534, 65535};
    for (int count = 1; count <= 255; ++count)
    {
        counts.push_back(count);
    }
    return counts;
}

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

/** All heights as quotients of the least and of the greatest sum that have them; other sums are further away from the next
 *  whole number. */
void ExpectQuotientsOfColumns()
{
    Quotients quotients;
    std::vector<std::int16_t> heights(Quotients::kColumns);
    for (std::size_t column = 0; column < heights.size(); ++column)
    {
        heights[column] = static_cast<std::int16_t>(static_cast<int>(column) - 32767);
    }
    for (const int count : Counts())
    {
        const auto least = [=](int height) { return std::int64_t{height} * count; };
        const auto most = [=](int height)
        {
            const int rest = height == 32767 || height == -32767 ? 0 : count - 1;
            return std::int64_t{height} * count + (height < 0 ? -rest : rest);
        };
        ASSERT_EQ(quotients.Of(count, least), heights) << count;
        ASSERT_EQ(quotients.Of(count, most), heights) << count;
        const auto mostBelowZero = [=](int height) { return height == 0 ? std::int64_t{1} - count : least(height); };
        ASSERT_EQ(quotients.Of(count, mostBelowZero), heights) << count;
    }
}

// Without vectors the columns are averaged elsewhere, by plain loops, whatever the window.
TEST(LineMeans, QuotientsOfColumnsAreTruncatedTowardZero)
{
    const bool isPlain = (hwy::SupportedTargets() & ~HWY_SCALAR) == 0;
    for (const std::size_t cells : {1U, 255U, 65535U})
    {
        ASSERT_EQ(Zvl::CanAverageInVectors(cells), !isPlain);
    }
    EXPECT_FALSE(Zvl::CanAverageInVectors(65536));
    if (!isPlain)
    {
        ExpectQuotientsOfColumns();
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
