#include <ZdkVisionLib/Filter/ProfileFilter.h>

#include "Filter/LineRunningMedian.h"
#include "Filter/ProfileFilterPlain.h"
#include "Filter/ProfileGaussianKernel.h"
#include "support/FailingAllocator.h"

#include <limits>
#include <set>

namespace
{

using TestSupport::ExpectThrow;
using TestSupport::Heights;
using Zvl::ProfileFilter;

constexpr std::int16_t kNone = TestSupport::kMissing;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kHuge = std::numeric_limits<std::size_t>::max();
constexpr const char* kConditions = "Zvl::ProfileFilter::Impl::CheckConditions";
constexpr const char* kClone = "Zvl::ProfileFilter::Impl::CloneAndUpdateInProfile";

/** What @p operations, called with a filter over @p line, leave in the output. */
template <typename Operations>
Heights Filtered(const Heights& line, Operations operations)
{
    Heights result(line.size(), 12345);
    ProfileFilter filter(line.data(), line.size(), result.data(), nullptr);
    operations(filter);
    return result;
}

Heights Averaged(const Heights& line, std::size_t window, int keepNulls)
{
    return Filtered(line, [&](ProfileFilter& filter) { filter.Average(window, keepNulls); });
}

Heights Medians(const Heights& line, std::size_t window, int keepNulls)
{
    return Filtered(line, [&](ProfileFilter& filter) { filter.Median(window, keepNulls); });
}

Heights Smoothed(const Heights& line, std::size_t window, double sigma, int keepNulls)
{
    return Filtered(line, [&](ProfileFilter& filter) { filter.Gaussian(window, sigma, keepNulls); });
}

Heights Closed(const Heights& line, std::size_t maxGap, int maxSlope, int fillHigh)
{
    return Filtered(line, [&](ProfileFilter& filter) { filter.FillGap(maxGap, maxSlope, fillHigh); });
}

Heights Kept(const Heights& line, double low, double high, ProfileFilter::PercentileType type)
{
    return Filtered(line, [&](ProfileFilter& filter) { filter.Percentile(low, high, type); });
}

TEST(ProfileFilterAverage, IsTheMeanOfTheValidCellsInACentredWindow)
{
    EXPECT_EQ(Averaged({1, 2, 3, kNone, 10}, 3, 0), (Heights{1, 2, 2, 6, 10}));
    EXPECT_EQ(Averaged({1, 2, 3, kNone, 10}, 3, 1), (Heights{1, 2, 2, kNone, 10}));
}

TEST(ProfileFilterAverage, TruncatesTowardZero)
{
    EXPECT_EQ(Averaged({-1, -2, -2, 5}, 3, 0), (Heights{-1, -1, 0, 1}));
}

TEST(ProfileFilterAverage, AWindowWithoutValidCellsIsMissing)
{
    EXPECT_EQ(Averaged({7, kNone, kNone, kNone, 9}, 3, 0), (Heights{7, 7, kNone, 9, 9}));
}

TEST(ProfileFilterAverage, AWindowBeyondTheLineHoldsAllOfIt)
{
    const Heights line = {4, kNone, 9, -1};
    EXPECT_EQ(Averaged(line, 5, 0), (Heights{6, 4, 4, 4}));
    EXPECT_EQ(Averaged(line, 7, 0), (Heights{4, 4, 4, 4}));
    EXPECT_EQ(Averaged(line, kHuge, 0), (Heights{4, 4, 4, 4}));
    EXPECT_EQ(Averaged(line, kHuge, 1), (Heights{4, kNone, 4, 4}));
}

TEST(ProfileFilterAverage, SumsBeyond32BitsAreExact)
{
    const Heights line(100000, 32767);
    EXPECT_EQ(Averaged(line, 65535, 0), line);
    EXPECT_EQ(Averaged(line, 65537, 0), line);
    EXPECT_EQ(Averaged(line, 100001, 0), line);
    const Heights deep(200000, -32767);
    EXPECT_EQ(Averaged(deep, 65535, 0), deep);
    EXPECT_EQ(Averaged(deep, 400001, 0), deep);
}

TEST(ProfileFilterMedian, IsTheMiddleOfTheValidCells)
{
    EXPECT_EQ(Medians({5, 1, 9, kNone, -3}, 3, 0), (Heights{3, 5, 5, 3, -3}));
    EXPECT_EQ(Medians({5, 1, 9, kNone, -3}, 3, 1), (Heights{3, 5, 5, kNone, -3}));
}

TEST(ProfileFilterMedian, OfAnEvenCountIsTheTruncatedMeanOfTheTwoInTheMiddle)
{
    EXPECT_EQ(Medians({-3, -4}, 3, 0), (Heights{-3, -3}));
    EXPECT_EQ(Medians({32767, 32767}, 3, 0), (Heights{32767, 32767}));
    EXPECT_EQ(Medians({-32767, -32767}, 3, 0), (Heights{-32767, -32767}));
    EXPECT_EQ(Medians({-32767, 32767}, 3, 0), (Heights{0, 0}));
}

TEST(ProfileFilterMedian, EqualHeightsCountEachTime)
{
    EXPECT_EQ(Medians({2, 2, 2, 8, 8, 8, 8}, 5, 0), (Heights{2, 2, 2, 8, 8, 8, 8}));
}

TEST(ProfileFilterMedian, AWindowBeyondTheLineHoldsAllOfIt)
{
    EXPECT_EQ(Medians({4, kNone, 9, -1}, kHuge, 0), Heights(4, 4));
    EXPECT_EQ(Medians({4, kNone, 9, -1}, kHuge, 1), (Heights{4, kNone, 4, 4}));
}

TEST(ProfileFilterGaussian, LagsByOneCell)
{
    // A sigma this small leaves nothing but the centre, which is the cell to the left.
    EXPECT_EQ(Smoothed({3, 6, 9, 12}, 3, 0.1, 0), (Heights{3, 3, 6, 9}));
}

TEST(ProfileFilterGaussian, TheSigmaOfThreeCellsIsFourFifths)
{
    // exp(-1 / 1.28) = 0.45783: weights 0.23899, 0.52201, 0.23899; at cell 1 the left one is missing: 0.31404.
    const Heights expected = {0, 31, 52, 24};
    EXPECT_EQ(Smoothed({0, 100, 0, 0}, 3, 0.0, 0), expected);
    EXPECT_EQ(Smoothed({0, 100, 0, 0}, 3, -5.0, 0), expected);
    EXPECT_EQ(Smoothed({0, 100, 0, 0}, 3, 0.8, 0), expected);
}

TEST(ProfileFilterGaussian, RoundsHalfAwayFromZero)
{
    // Equal weights; at cell 1 the window holds cells 0 and 1.
    EXPECT_EQ(Smoothed({3, 6, 9, 12}, 3, kInfinity, 0), (Heights{3, 5, 6, 9}));
    EXPECT_EQ(Smoothed({-3, -6, -9, -12}, 3, kInfinity, 0), (Heights{-3, -5, -6, -9}));
}

TEST(ProfileFilterGaussian, FillsOrKeepsMissingCells)
{
    EXPECT_EQ(Smoothed({10, kNone, 20, 30}, 3, kInfinity, 0), (Heights{10, 10, 15, 25}));
    EXPECT_EQ(Smoothed({10, kNone, 20, 30}, 3, kInfinity, 1), (Heights{10, kNone, 15, 25}));
}

TEST(ProfileFilterGaussian, AWindowWithoutAWeightIsMissing)
{
    EXPECT_EQ(Smoothed({10, kNone, kNone, kNone, kNone, 20}, 3, kInfinity, 0), (Heights{10, 10, 10, kNone, kNone, 20}));
    // exp(-1 / 0.0002) is 0: valid cells beside a missing centre have no weight.
    EXPECT_EQ(Smoothed({10, kNone, 20}, 3, 0.01, 0), (Heights{kNone, 10, kNone}));
}

TEST(ProfileFilterGaussian, AKernelThatIsNoNumberGivesZeroWhereACellIsValid)
{
    for (const double sigma : {kNotANumber, 1e-200})
    {
        EXPECT_EQ(Smoothed({5, 6, kNone, kNone, kNone, kNone}, 3, sigma, 0), (Heights{0, 0, 0, 0, kNone, kNone}));
    }
}

TEST(ProfileFilterGaussian, LongWindowsOverShortLines)
{
    // At cell 2 the centre is missing, and both neighbours weigh the same.
    EXPECT_EQ(Smoothed({10, kNone, 20}, 2147483647, 0.3, 0), (Heights{10, 10, 15}));
    EXPECT_EQ(Smoothed({10, kNone, 20}, 2001, 1e9, 0), (Heights{15, 15, 15}));
    EXPECT_EQ(Smoothed({7}, 100001, 0.0, 0), Heights{7});
}

TEST(ProfileFilterGaussian, AWindowBeyondAnyKernelThrows)
{
    const Heights line = {1, 2, 3};
    Heights result(3, 5);
    ProfileFilter filter(line.data(), 3, result.data(), nullptr);
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::ProfileFilter::Gaussian", [&] { filter.Gaussian(2147483649, 1.0, 0); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::ProfileFilter::Gaussian", [&] { filter.Gaussian(kHuge, 1.0, 0); });
    EXPECT_EQ(result, Heights(3, 5));
}

TEST(GaussianKernel, WeightsWithoutAPositiveSumThrow)
{
    for (const std::vector<double>& values : {std::vector<double>{0.0, 0.0}, {1.0, -2.0}, {1.0, -1.0}, {}})
    {
        std::vector<double> weights = values;
        ExpectThrow(STATUS_ABORTED, "Zvl::GaussianKernel::Normalize", [&] { Zvl::GaussianKernel::Normalize(weights); });
        EXPECT_EQ(weights, values);
    }
}

TEST(GaussianKernel, WeightsAreDividedByTheirSum)
{
    std::vector<double> weights = {1.0, 2.0, 1.0};
    Zvl::GaussianKernel::Normalize(weights);
    EXPECT_EQ(weights, (std::vector<double>{0.25, 0.5, 0.25}));
}

TEST(ProfileFilterFillGap, InterpolatesBetweenValidCells)
{
    EXPECT_EQ(Closed({10, kNone, kNone, 16}, 3, 100, 0), (Heights{10, 12, 14, 16}));
    EXPECT_EQ(Closed({10, kNone, kNone, 16}, 2, 100, 0), (Heights{10, kNone, kNone, 16}));
    EXPECT_EQ(Closed({10, kNone, 20}, 2, 100, 0), (Heights{10, 15, 20}));
    EXPECT_EQ(Closed({0, kNone, kNone, -5}, 3, 100, 0), (Heights{0, -1, -3, -5}));
}

TEST(ProfileFilterFillGap, SteepStepsAreFlatFromOneEnd)
{
    const Heights up = {10, kNone, kNone, 16};
    EXPECT_EQ(Closed(up, 3, 1, 0), (Heights{10, 10, 10, 16}));
    EXPECT_EQ(Closed(up, 3, 1, 1), (Heights{10, 16, 16, 16}));
    EXPECT_EQ(Closed(up, 3, 2, 0), (Heights{10, 12, 14, 16}));
    const Heights down = {16, kNone, kNone, 10};
    EXPECT_EQ(Closed(down, 3, 1, 0), (Heights{16, 10, 10, 10}));
    EXPECT_EQ(Closed(down, 3, 1, 1), (Heights{16, 16, 16, 10}));
    EXPECT_EQ(Closed(down, 3, 2, 0), (Heights{16, 14, 12, 10}));
}

TEST(ProfileFilterFillGap, EndsAndLongRunsStayMissing)
{
    EXPECT_EQ(Closed({kNone, 1, kNone, kNone, kNone, 9, kNone, 5, kNone}, 3, 100, 0),
              (Heights{kNone, 1, kNone, kNone, kNone, 9, 7, 5, kNone}));
    EXPECT_EQ(Closed({kNone, 1, kNone, kNone, kNone, 9, kNone, 5, kNone}, 4, 100, 0),
              (Heights{kNone, 1, 3, 5, 7, 9, 7, 5, kNone}));
}

TEST(ProfileFilterFillGap, TheLimitOfTheGapCountsInSigned32Bits)
{
    const Heights line = {10, kNone, kNone, 16};
    EXPECT_EQ(Closed(line, 2147483647, 100, 0), (Heights{10, 12, 14, 16}));
    EXPECT_EQ(Closed(line, 2147483648U, 100, 0), line);
    EXPECT_EQ(Closed(line, kHuge, 100, 0), line);
    EXPECT_EQ(Closed(line, (std::size_t{1} << 32U) + 3, 100, 0), (Heights{10, 12, 14, 16}));
    EXPECT_EQ(Closed(line, (std::size_t{1} << 32U) + 2, 100, 0), line);
}

TEST(ProfileFilterFillGap, ExtremeSlopesAndLongGapsDoNotOverflow)
{
    constexpr int kLeast = std::numeric_limits<int>::min();
    constexpr int kMost = std::numeric_limits<int>::max();
    EXPECT_EQ(Closed({10, kNone, kNone, 16}, 3, kLeast, 0), (Heights{10, 10, 10, 16}));
    EXPECT_EQ(Closed({10, kNone, kNone, 16}, 3, kMost, 0), (Heights{10, 12, 14, 16}));
    // Cell j lies j * 65534 / 40000 above the first; half way that is 32767.
    Heights line(40001, kNone);
    line.front() = -32767;
    line.back() = 32767;
    const Heights closed = Closed(line, 40000, kMost, 0);
    EXPECT_EQ(closed[1], -32766);
    EXPECT_EQ(closed[20000], 0);
    EXPECT_EQ(closed[39999], 32765);
    EXPECT_TRUE(std::is_sorted(closed.begin(), closed.end()));
}

TEST(ProfileFilterPercentile, RanksLimitTheSortedCells)
{
    const Heights line = {50, 10, kNone, 40, 20, 30};
    EXPECT_EQ(Kept(line, 25.0, 75.0, ProfileFilter::Rank), (Heights{kNone, kNone, kNone, 40, 20, 30}));
    EXPECT_EQ(Kept(line, 0.0, 100.0, ProfileFilter::Rank), line);
    EXPECT_EQ(Kept(line, -kInfinity, kInfinity, ProfileFilter::Rank), line);
    // Rank 4 * 0.375 = 1.5 is rounded to 2, and 4 * 0.374 = 1.496 to 1.
    EXPECT_EQ(Kept(line, 37.5, 100.0, ProfileFilter::Rank), (Heights{50, kNone, kNone, 40, kNone, 30}));
    EXPECT_EQ(Kept(line, 37.4, 100.0, ProfileFilter::Rank), (Heights{50, kNone, kNone, 40, 20, 30}));
    EXPECT_EQ(Kept({kNone, 7, kNone}, 10.0, 20.0, ProfileFilter::Rank), (Heights{kNone, 7, kNone}));
}

TEST(ProfileFilterPercentile, RangesLimitTheSpan)
{
    const Heights line = {0, 25, kNone, 26, 75, 76, 101};
    // 101 * 25 / 100 = 25.25 and 101 - 25.25 = 75.75.
    EXPECT_EQ(Kept(line, 25.0, 75.0, ProfileFilter::Range), (Heights{kNone, 25, kNone, 26, 75, 76, kNone}));
    EXPECT_EQ(Kept(line, 0.0, 100.0, ProfileFilter::Range), line);
    EXPECT_EQ(Kept({-32767, 0, 32767}, 0.0, 100.0, ProfileFilter::Range), (Heights{-32767, 0, 32767}));
    EXPECT_EQ(Kept({-32767, 0, 32767}, 50.0, 100.0, ProfileFilter::Range), (Heights{kNone, 0, 32767}));
}

TEST(ProfileFilterPercentile, UnfitLimitsClearTheLine)
{
    const Heights line = {1, 2, 3};
    const Heights cleared(3, kNone);
    for (const auto type : {ProfileFilter::Rank, ProfileFilter::Range})
    {
        EXPECT_EQ(Kept(line, 50.0, 50.0, type), cleared);
        EXPECT_EQ(Kept(line, 80.0, 20.0, type), cleared);
        EXPECT_EQ(Kept(line, 100.0, 200.0, type), cleared);
        EXPECT_EQ(Kept(line, kNotANumber, 50.0, type), cleared);
        EXPECT_EQ(Kept(line, 50.0, kNotANumber, type), cleared);
    }
    EXPECT_EQ(Kept(line, 0.0, 100.0, static_cast<ProfileFilter::PercentileType>(2)), cleared);
    EXPECT_EQ(Kept({5, 5, kNone}, 0.0, 100.0, ProfileFilter::Range), cleared);
    EXPECT_EQ(Kept({5, 5, kNone}, 0.0, 100.0, ProfileFilter::Rank), (Heights{5, 5, kNone}));
}

TEST(ProfileFilter, ALineOfNullsStaysOne)
{
    const Heights line(9, kNone);
    EXPECT_EQ(Averaged(line, 3, 0), line);
    EXPECT_EQ(Medians(line, 3, 0), line);
    EXPECT_EQ(Smoothed(line, 3, 0.0, 0), line);
    EXPECT_EQ(Closed(line, 5, 1, 0), line);
    EXPECT_EQ(Kept(line, 0.0, 100.0, ProfileFilter::Rank), line);
    EXPECT_EQ(Kept(line, 0.0, 100.0, ProfileFilter::Range), line);
}

TEST(ProfileFilter, EachOperationReadsTheResultOfTheOneBefore)
{
    const Heights line = {10, kNone, 20, 90, 40, 50};
    // 10 15 20 90 40 50; medians 12 15 20 40 50 45; cells of 15 to 45.
    EXPECT_EQ(Filtered(line, [](ProfileFilter& filter)
                       { filter.FillGap(2, 100, 0).Median(3, 0).Percentile(20.0, 80.0, ProfileFilter::Rank); }),
              (Heights{kNone, 15, 20, 40, kNone, 45}));
}

TEST(ProfileFilter, WindowsOfOneCopyTheLineThrough)
{
    const Heights line = {1, kNone, 3};
    EXPECT_EQ(Averaged(line, 1, 1), line);
    EXPECT_EQ(Medians(line, 1, 0), line);
    EXPECT_EQ(Smoothed(line, 1, 0.0, 0), line);
    EXPECT_EQ(Closed(line, 0, 100, 0), line);
    EXPECT_EQ(Closed(line, 1, 100, 0), line);
}

TEST(ProfileFilter, AWindowOfOneLeavesTheInputAsTheSource)
{
    Heights line = {10, kNone, 20};
    Heights result(3);
    ProfileFilter filter(line.data(), 3, result.data(), nullptr);
    filter.Average(1, 0);
    EXPECT_EQ(result, line);
    line[0] = 30;
    filter.FillGap(2, 100, 0);
    EXPECT_EQ(result, (Heights{30, 25, 20}));
    // From here on the result is the source: a window of one does nothing, and the input is not read.
    line[0] = 0;
    filter.Median(1, 0).FillGap(1, 0, 0).Percentile(0.0, 100.0, ProfileFilter::Rank);
    EXPECT_EQ(result, (Heights{30, 25, 20}));
}

TEST(ProfileFilter, AWindowOfOneMovesALineThatOverlapsItself)
{
    Heights memory = {1, 2, 3, 4, 5, 6};
    ProfileFilter(memory.data(), 4, memory.data() + 2, nullptr).Average(1, 0);
    EXPECT_EQ(memory, (Heights{1, 2, 1, 2, 3, 4}));
}

TEST(ProfileFilter, TheSameBufferMayBeInputAndOutput)
{
    Heights line = {5, 1, 9, kNone, -3};
    ProfileFilter(line.data(), 5, line.data(), nullptr).Median(3, 0);
    EXPECT_EQ(line, (Heights{3, 5, 5, 3, -3}));
}

TEST(ProfileFilter, AnEvenWindowThrowsAndLeavesTheOutput)
{
    const Heights line = {1, 2, 3};
    Heights result(3, 5);
    ProfileFilter filter(line.data(), 3, result.data(), nullptr);
    for (const std::size_t window : {std::size_t{0}, std::size_t{2}, std::size_t{1000}})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kConditions, [&] { filter.Average(window, 0); });
        ExpectThrow(STATUS_BAD_PARAMETER, kConditions, [&] { filter.Median(window, 0); });
        ExpectThrow(STATUS_BAD_PARAMETER, kConditions, [&] { filter.Gaussian(window, 1.0, 0); });
    }
    EXPECT_EQ(result, Heights(3, 5));
    EXPECT_NO_THROW(filter.Average(3, 0));
    EXPECT_EQ(result, (Heights{1, 2, 2}));
}

TEST(ProfileFilter, AFilterWithoutBuffersThrows)
{
    constexpr const char* kConstructor = "Zvl::ProfileFilter::ProfileFilter";
    short cell = 3;
    ExpectThrow(STATUS_BAD_PARAMETER, kConstructor, [&] { ProfileFilter(nullptr, 1, &cell, nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, kConstructor, [&] { ProfileFilter(&cell, 0, &cell, nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, kConstructor, [&] { ProfileFilter(&cell, 1, nullptr, nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, kConstructor, [&] { ProfileFilter(&cell, kHuge, &cell, nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, kConstructor, [&] { ProfileFilter(&cell, kHuge / 2 + 2, &cell, nullptr); });
    EXPECT_EQ(cell, 3);
    EXPECT_NO_THROW(ProfileFilter(&cell, 1, &cell, nullptr));
}

TEST(ProfileFilter, AFailingCopyThrows)
{
    const auto chain = []
    {
        Heights line = {1, 2, 3};
        ProfileFilter(line.data(), 3, line.data(), nullptr).Average(3, 0).Median(3, 1).Gaussian(3, 0.0, 0);
    };
    EXPECT_GT(TestSupport::ExpectEachFailureThrown(kClone, chain), 0U);
    EXPECT_GT(TestSupport::ExpectEachFailureThrown(kClone, chain, TestSupport::Failing::OnlyNth), 0U);
}

TEST(ProfileFilter, AFilterGoesOnAfterAFailure)
{
    TestSupport::FailingAllocator allocator;
    Heights line = {1, 2, 6};
    {
        ProfileFilter filter(line.data(), 3, line.data(), allocator.Get());
        allocator.FailAt(1);
        ExpectThrow(STATUS_OUT_OF_MEMORY, kClone, [&] { filter.Average(3, 0); });
        EXPECT_EQ(line, (Heights{1, 2, 6}));
        allocator.FailNever();
        filter.Average(3, 0);
        EXPECT_EQ(line, (Heights{1, 3, 4}));
        EXPECT_GT(allocator.LiveBlocks(), 0U); // the copy lies with the allocator that was given
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(BinSet, FindsTheNearestMembers)
{
    std::mt19937 random(2010);
    std::uniform_int_distribution<std::size_t> anyBin(0, 65535);
    for (const int changes : {3, 20, 500, 20000})
    {
        Zvl::BinSet bins;
        std::set<std::size_t> plain = {0, 65535};
        bins.Insert(0);
        bins.Insert(65535);
        for (int i = 0; i < changes; ++i)
        {
            const std::size_t inserted = anyBin(random);
            bins.Insert(inserted);
            plain.insert(inserted);
            const std::size_t erased = std::clamp<std::size_t>(inserted / 2, 1, 65534);
            bins.Erase(erased);
            plain.erase(erased);
        }
        for (auto next = std::next(plain.begin()), last = plain.begin(); next != plain.end(); last = next++)
        {
            for (const std::size_t between : {*last, (*last + *next) / 2, *next - 1})
            {
                ASSERT_EQ(bins.Next(between), *next);
                ASSERT_EQ(bins.Previous(between + 1), *last);
            }
        }
    }
}

} // namespace
