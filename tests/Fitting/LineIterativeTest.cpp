#include <ZdkVisionLib/Fitting/Fit.h>

#include "LineSupport.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace LineSupport;
using TestSupport::kNull;

constexpr const char* kFunction = "Zvl::FitLineIterative";

struct IterativeFit
{
    LineResult line;
    std::vector<int> flags;
};

std::vector<int> FlagsOf(void* list)
{
    EXPECT_EQ(qArrayList_Type(list), xxqBool_type);
    const auto* data = static_cast<const int*>(qArrayList_Data(list));
    return {data, data + qArrayList_Count(list)};
}

IterativeFit Fit(const Points& points, double percent)
{
    IterativeFit fit;
    Zo::Object<void*> outliers;
    Zvl::FitLineIterative(points.data(), points.size(), percent, &fit.line.slope, &fit.line.intercept, outliers.Slot(),
                          nullptr);
    fit.flags = FlagsOf(outliers);
    return fit;
}

std::size_t Rejected(const IterativeFit& fit)
{
    return static_cast<std::size_t>(std::count(fit.flags.begin(), fit.flags.end(), 1));
}

/** The definition: a fresh line and all distances in each pass. */
IterativeFit ByDefinition(const Points& points, std::size_t toReject)
{
    IterativeFit fit;
    fit.flags.assign(points.size(), 0);
    fit.line = FitLine(points, fit.flags);
    for (std::size_t pass = 0; pass < toReject && fit.line.slope != kNull; ++pass)
    {
        double largest = std::numeric_limits<double>::lowest();
        std::size_t farthest = points.size();
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            const double distance = std::fabs(fit.line.slope * points[i].x - points[i].y + fit.line.intercept) /
                                    std::sqrt(fit.line.slope * fit.line.slope + 1.0);
            if (fit.flags[i] == 0 && distance > largest)
            {
                largest = distance;
                farthest = i;
            }
        }
        if (farthest == points.size())
        {
            return fit;
        }
        fit.flags[farthest] = 1;
        fit.line = FitLine(points, fit.flags);
    }
    return fit;
}

/** The same flags, and the same line to the last bit. */
void ExpectByDefinition(const Points& points, double percent, std::size_t toReject)
{
    const IterativeFit fit = Fit(points, percent);
    const IterativeFit expected = ByDefinition(points, toReject);
    EXPECT_EQ(fit.flags, expected.flags);
    EXPECT_TRUE(SameValue(fit.line.slope, expected.line.slope)) << fit.line.slope << " " << expected.line.slope;
    EXPECT_TRUE(SameValue(fit.line.intercept, expected.line.intercept));
}

TEST(LineIterative, FarthestPointsGoOneByOne)
{
    // y = 1 but for two points.
    Points points;
    for (int i = 0; i < 10; ++i)
    {
        points.push_back({static_cast<double>(i), 1.0});
    }
    points[2].y = 4.0;
    points[5].y = -1.0;
    const IterativeFit one = Fit(points, 10.0);
    EXPECT_EQ(one.flags, (std::vector<int>{0, 0, 1, 0, 0, 0, 0, 0, 0, 0}));
    const IterativeFit two = Fit(points, 20.0);
    EXPECT_EQ(two.flags, (std::vector<int>{0, 0, 1, 0, 0, 1, 0, 0, 0, 0}));
    ExpectLine(two.line, 0.0, 1.0);
}

TEST(LineIterative, LowestIndexWinsAmongEqualDistances)
{
    // The line of all is y = 0, and both ends of each pair are equally far from it.
    const Points points{{-4.0, 0.0}, {-1.0, 1.0}, {-1.0, -1.0}, {1.0, 1.0}, {1.0, -1.0}, {4.0, 0.0}};
    EXPECT_EQ(Fit(points, 100.0 / 6.0 + 0.1).flags, (std::vector<int>{0, 1, 0, 0, 0, 0}));
    // Points on a line: all distances are 0, and the lowest indices go.
    Points line;
    for (int i = 0; i < 10; ++i)
    {
        line.push_back({static_cast<double>(i), 2.0 * i + 1.0});
    }
    EXPECT_EQ(Fit(line, 30.0).flags, (std::vector<int>{1, 1, 1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(LineIterative, PercentageIsTruncatedAndTwoPointsStay)
{
    std::mt19937_64 random(1);
    const Points points = NoisyLine(100, 0.5, 1.0, 0.1, random);
    EXPECT_EQ(Rejected(Fit(points, 0.0)), 0U);
    EXPECT_EQ(Rejected(Fit(points, 0.99)), 0U);
    EXPECT_EQ(Rejected(Fit(points, 29.0)), 28U); // 29.0 / 100.0 lies just below 0.29
    EXPECT_EQ(Rejected(Fit(points, 98.0)), 98U);
    EXPECT_EQ(Rejected(Fit(points, 100.0)), 98U);
    EXPECT_EQ(Rejected(Fit(points, 1e300)), 98U);
    EXPECT_EQ(Rejected(Fit(points, kInfinity)), 98U);
    EXPECT_EQ(Rejected(Fit(points, kNaN)), 0U);
}

TEST(LineIterative, NegativePercentageOfAWholePointRejectsAllButTwo)
{
    std::mt19937_64 random(2);
    const Points points = NoisyLine(10, 0.5, 1.0, 0.1, random);
    EXPECT_EQ(Rejected(Fit(points, -10.0)), 8U);
    EXPECT_EQ(Rejected(Fit(points, -1e300)), 8U);
    EXPECT_EQ(Rejected(Fit(points, -kInfinity)), 8U);
    EXPECT_EQ(Rejected(Fit(points, -9.9)), 0U);
    EXPECT_EQ(Rejected(Fit(points, -0.0)), 0U);
}

TEST(LineIterative, TwoPointsGiveTheirLineAtAnyPercentage)
{
    for (const double percent : {0.0, 50.0, 100.0, 1e30, -100.0})
    {
        const IterativeFit fit = Fit({{1.0, 3.0}, {2.0, 5.0}}, percent);
        ExpectLine(fit.line, 2.0, 1.0);
        EXPECT_EQ(fit.flags, (std::vector<int>{0, 0}));
    }
}

TEST(LineIterative, NullPointSpendsARejection)
{
    const Points points{{0.0, 1.0}, {1.0, 3.0},  {2.0, 9.0},  {3.0, kNull}, {kNull, 4.0},
                        {4.0, 9.0}, {5.0, 11.0}, {6.0, 13.0}, {7.0, 15.0},  {8.0, 17.0}};
    EXPECT_EQ(Fit(points, 20.0).flags, (std::vector<int>{0, 0, 0, 1, 1, 0, 0, 0, 0, 0}));
    const IterativeFit three = Fit(points, 30.0);
    EXPECT_EQ(three.flags, (std::vector<int>{0, 0, 1, 1, 1, 0, 0, 0, 0, 0}));
    ExpectLine(three.line, 2.0, 1.0);
}

TEST(LineIterative, PointsWithoutALineStayUnrejected)
{
    const IterativeFit coincident = Fit(Points(10, {0.1, 0.7}), 50.0);
    ExpectNull(coincident.line);
    EXPECT_EQ(coincident.flags, std::vector<int>(10, 0));
    const IterativeFit nulls = Fit(Points(10, {kNull, kNull}), 50.0);
    ExpectNull(nulls.line);
    EXPECT_EQ(nulls.flags, std::vector<int>(10, 0));
}

TEST(LineIterative, LineThatIsLostOnTheWayEndsNull)
{
    // Without the one point that differs the others coincide.
    Points points(10, {1.0, 1.0});
    points[4] = {3.0, 2.0};
    points[7] = {1.0, 1.5};
    const IterativeFit fit = Fit(points, 80.0);
    ExpectNull(fit.line);
    EXPECT_LT(Rejected(fit), 8U);
    EXPECT_EQ(fit.flags[4], 1);
    EXPECT_EQ(fit.flags[7], 1);
}

TEST(LineIterative, DistancesThatAreNoNumbersEndTheRejection)
{
    const IterativeFit vertical = Fit({{1.0, 0.0}, {1.0, 1.0}, {1.0, 2.0}, {1.0, 5.0}}, 50.0);
    EXPECT_EQ(vertical.line.slope, kInfinity);
    EXPECT_EQ(Rejected(vertical), 0U);
    for (const double value : {kNaN, kInfinity, -kInfinity})
    {
        const IterativeFit fit = Fit({{0.0, 0.0}, {1.0, value}, {2.0, 2.0}, {3.0, 4.0}}, 50.0);
        EXPECT_TRUE(std::isnan(fit.line.slope));
        EXPECT_EQ(Rejected(fit), 0U);
    }
}

TEST(LineIterative, RandomPointsGiveTheRejectionsOfTheDefinition)
{
    std::mt19937_64 random(7);
    for (std::size_t run = 0; run < 60; ++run)
    {
        const std::size_t count = 3 + random() % 700;
        Points points = NoisyLine(count, 0.1 * static_cast<double>(run) - 3.0, 25.0, 0.2, random);
        for (std::size_t i = 0; i < count; i += 9)
        {
            points[i].y += 0.5 * static_cast<double>(random() % 100);
        }
        const std::size_t most = count - 2;
        ExpectByDefinition(points, 10.0, std::min(count / 10, most));
        ExpectByDefinition(points, 1000.0, most);
        ExpectByDefinition(Transposed(points), 1000.0, most);
    }
}

TEST(LineIterative, RejectionsAreThoseOfTheDefinitionWhereRoundingDecides)
{
    std::mt19937_64 random(8);
    Points decimal; // on a line but for the rounding of the coordinates
    Points grid;    // most distances several times over
    for (int i = 0; i < 400; ++i)
    {
        decimal.push_back({0.1 * i, 0.7 * (0.1 * i) + 0.3});
        grid.push_back({static_cast<double>(random() % 20), static_cast<double>(random() % 7)});
    }
    Points mirrored; // each distance twice, and equal but for rounding
    for (int i = 0; i < 200; ++i)
    {
        const double height = 0.1 * static_cast<double>(random() % 50);
        mirrored.push_back({0.1 * i, height});
        mirrored.push_back({0.1 * i, -height});
    }
    for (const Points& points : {decimal, grid, mirrored})
    {
        ExpectByDefinition(points, 40.0, 160);
        ExpectByDefinition(points, 100.0, 398);
        ExpectByDefinition(Transposed(points), 100.0, 398);
    }
}

TEST(LineIterative, OutliersThatDominateAllSumsChangeNoRejection)
{
    std::mt19937_64 random(9);
    Points points = NoisyLine(500, 0.4, 3.0, 0.1, random);
    for (const double size : {1e3, 1e6, 1e9, 1e140})
    {
        points.insert(points.begin() + 100, {size, -0.3 * size});
        points.insert(points.begin() + 300, {-0.2 * size, size});
    }
    ExpectByDefinition(points, 5.0, 25);
    ExpectByDefinition(points, 50.0, 254);
}

TEST(LineIterative, ScaleAndPlaceChangeNoRejection)
{
    std::mt19937_64 random(10);
    const Points plain = NoisyLine(300, -0.8, 0.0, 1.0, random);
    for (const double scale : {1e-160, 1e-80, 1e-6, 1e6, 1e80})
    {
        for (const double shift : {0.0, 1e3, 1e6, 1e9})
        {
            Points points = plain;
            for (qPoint64f& point : points)
            {
                point = {scale * (point.x + shift), scale * (point.y - shift)};
            }
            ExpectByDefinition(points, 30.0, 90);
        }
    }
}

TEST(LineIterative, StrangeCoordinatesGiveTheRejectionsOfTheDefinition)
{
    std::mt19937_64 random(12);
    const double values[] = {0.0, 1.0, 2.0, 0.1, 0.7, -3.0, kNaN, kInfinity, -kInfinity, kNull, 1e300, 1e155, 5e-324};
    for (int run = 0; run < 3000; ++run)
    {
        const std::size_t range = run % 3 == 0 ? std::size(values) : 6;
        Points points(2 + random() % 12);
        for (qPoint64f& point : points)
        {
            point = {values[random() % range], values[random() % range]};
        }
        ExpectByDefinition(points, 100.0, points.size() - 2);
    }
}

TEST(LineIterative, ManyPointsGiveTheRejectionsOfTheDefinition)
{
    std::mt19937_64 random(11);
    const Points points = NoisyLine(10000, 0.5, 10.0, 0.05, random); // 160 kB
    ExpectByDefinition(points, 10.0, 1000);
}

TEST(LineIterative, LessThanTwoPointsThrowAndLeaveNulls)
{
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}})
    {
        const Points points(1, {1.0, 2.0});
        LineResult line;
        void* outliers = &line;
        TestSupport::ExpectThrow(
            STATUS_BAD_PARAMETER, kFunction,
            [&]
            { Zvl::FitLineIterative(points.data(), count, 10.0, &line.slope, &line.intercept, &outliers, nullptr); });
        ExpectNull(line);
        EXPECT_EQ(outliers, &line);
    }
}

TEST(LineIterative, NullArgumentsThrow)
{
    const Points points{{0.0, 0.0}, {1.0, 1.0}};
    LineResult line;
    const auto expectThrow = [&](const qPoint64f* data, double* slope, double* intercept)
    {
        TestSupport::ExpectThrow(
            STATUS_BAD_PARAMETER, kFunction,
            [&] { Zvl::FitLineIterative(data, points.size(), 0.0, slope, intercept, nullptr, nullptr); });
    };
    expectThrow(points.data(), nullptr, &line.intercept);
    expectThrow(points.data(), &line.slope, nullptr);
    ExpectLine(line, 7.0, 7.0);
    expectThrow(nullptr, &line.slope, &line.intercept);
    ExpectNull(line);
}

TEST(LineIterative, SizeThatCannotExistThrowsTheStatusOfThePlatform)
{
    const Points points{{0.0, 0.0}, {1.0, 1.0}};
    LineResult line;
    TestSupport::ExpectThrow(STATUS_OUT_OF_MEMORY, kFunction,
                             [&]
                             {
                                 Zvl::FitLineIterative(points.data(), std::numeric_limits<std::size_t>::max(), 0.0,
                                                       &line.slope, &line.intercept, nullptr, nullptr);
                             });
    ExpectNull(line);
}

TEST(LineIterative, FlagsLieInTheAllocatorAndAreTheCallers)
{
    const Points points{{0.0, 1.0}, {3.0, 1.0}, {4.0, 2.0}, {8.0, 1.0}};
    TestSupport::FailingAllocator allocator;
    LineResult line;
    Zo::Object<void*> outliers;
    Zvl::FitLineIterative(points.data(), 4, 25.0, &line.slope, &line.intercept, outliers.Slot(), allocator.Get());
    EXPECT_GT(allocator.LiveBlocks(), 0U);
    EXPECT_EQ(FlagsOf(outliers), (std::vector<int>{0, 0, 1, 0}));
    outliers.Reset();
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
    Zvl::FitLineIterative(points.data(), 4, 25.0, &line.slope, &line.intercept, nullptr, allocator.Get());
    ExpectLine(line, 0.0, 1.0);
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(LineIterative, ExhaustedMemoryIsThrownAndNothingLeaks)
{
    const Points points{{0.0, 1.0}, {1.0, 3.0}, {2.0, 50.0}, {3.0, 7.0}};
    const auto run = [&points]
    {
        LineResult line;
        Zo::Object<void*> outliers;
        try
        {
            Zvl::FitLineIterative(points.data(), points.size(), 25.0, &line.slope, &line.intercept, outliers.Slot(),
                                  nullptr);
        }
        catch (...)
        {
            ExpectNull(line);
            EXPECT_EQ(outliers.Get(), nullptr);
            throw;
        }
    };
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run), 4U);
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run, TestSupport::Failing::OnlyNth), 4U);
}

} // namespace
