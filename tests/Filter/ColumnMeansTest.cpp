/** @file
 *  The quotients of window means down columns, for every count that short windows can have and for some that longer ones
 *  can. */

#include "Filter/ColumnMeans.h"

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
TEST(ColumnMeans, QuotientsAreTruncatedTowardZero)
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

} // namespace
