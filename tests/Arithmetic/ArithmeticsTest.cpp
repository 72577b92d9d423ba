#include "Arithmetic/PlainArithmetic.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace Zvl;
using TestSupport::CellsIn;
using TestSupport::ExpectThrow;
using TestSupport::kMissing;
using TestSupport::MakeFilled;
using TestSupport::MakeSurface;
using Intensities = std::vector<std::uint8_t>;
using Heights = std::vector<std::int16_t>;

constexpr ArithmeticOperator kAdd = ArithmeticOperator::Add;
constexpr ArithmeticOperator kSubtract = ArithmeticOperator::Subtract;
constexpr ArithmeticOperator kAverage = ArithmeticOperator::Average;
constexpr ArithmeticLogic kIntersection = ArithmeticLogic::Intersection;
constexpr ArithmeticLogic kUnion = ArithmeticLogic::Union;
constexpr char kApply[] = "Zvl::Arithmetics::Apply";
constexpr char kApplyMask[] = "Zvl::Arithmetics::ApplyMask";
constexpr char kBoundaries[] = "Zvl::Arithmetics::getBoundaries";
constexpr qPoint3d64f kUnit = {1.0, 1.0, 1.0};
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

Surface Apply(ArithmeticOperator op, ArithmeticLogic logic, Surface surface0, Surface surface1)
{
    Surface result;
    Arithmetics::Apply(op, logic, surface0, surface1, result);
    return result;
}

Surface ApplyMask(Surface surface, Surface maskSurface)
{
    Surface result;
    Arithmetics::ApplyMask(surface, maskSurface, result);
    return result;
}

Heights HeightsOf(const Surface& surface)
{
    return CellsIn<std::int16_t>(surface.layers.at(0));
}

Intensities IntensitiesOf(const Surface& surface)
{
    return CellsIn<std::uint8_t>(surface.layers.at(1));
}

/** A row of heights whose first cell lies at @p x. */
Surface Row(const Heights& heights, double x = 0.0)
{
    return MakeSurface(1, heights.size(), heights, kUnit, {x, 0.0, 0.0});
}

Surface BrightRow(const Heights& heights, const Intensities& intensities, double x = 0.0)
{
    Surface row = Row(heights, x);
    row.layers.push_back(TestSupport::MakeArray(1, intensities.size(), intensities));
    return row;
}

TEST(Arithmetics, OnTheIntersectionBothHeightsAreNeeded)
{
    const Surface a = Row({1, 2, kMissing, kMissing, -3});
    const Surface b = Row({10, kMissing, 30, kMissing, 6});
    EXPECT_EQ(HeightsOf(Apply(kAdd, kIntersection, a, b)), (Heights{11, kMissing, kMissing, kMissing, 3}));
    EXPECT_EQ(HeightsOf(Apply(kSubtract, kIntersection, a, b)), (Heights{-9, kMissing, kMissing, kMissing, -9}));
    EXPECT_EQ(HeightsOf(Apply(kAverage, kIntersection, a, b)), (Heights{5, kMissing, kMissing, kMissing, 1}));
}

TEST(Arithmetics, OnTheUnionOneHeightSufficesAndKeepsItsSign)
{
    const Surface a = Row({1, 2, kMissing, kMissing, -3});
    const Surface b = Row({10, kMissing, 30, kMissing, 6});
    EXPECT_EQ(HeightsOf(Apply(kAdd, kUnion, a, b)), (Heights{11, 2, 30, kMissing, 3}));
    EXPECT_EQ(HeightsOf(Apply(kSubtract, kUnion, a, b)), (Heights{-9, 2, 30, kMissing, -9}));
    EXPECT_EQ(HeightsOf(Apply(kAverage, kUnion, a, b)), (Heights{5, 2, 30, kMissing, 1}));
}

TEST(Arithmetics, TheResultIsInTheFrameOfTheFirstSurface)
{
    const Surface a = MakeSurface(1, 3, {4, 4, kMissing}, {2.0, 3.0, 0.5}, {1.0, 2.0, 10.0});
    const Surface b = MakeSurface(1, 3, {6, kMissing, 6}, {9.0, 9.0, 9.0}, {1.0, 2.0, 20.0});
    const Surface sum = Apply(kAdd, kUnion, a, b);
    EXPECT_EQ(HeightsOf(sum), (Heights{50, 4, 26}));
    EXPECT_EQ(sum.scale.x, 2.0);
    EXPECT_EQ(sum.scale.y, 3.0);
    EXPECT_EQ(sum.scale.z, 0.5);
    EXPECT_EQ(sum.offset.x, 1.0);
    EXPECT_EQ(sum.offset.y, 2.0);
    EXPECT_EQ(sum.offset.z, 10.0);
    EXPECT_EQ(HeightsOf(Apply(kSubtract, kUnion, a, b)), (Heights{-42, 4, 26}));
    EXPECT_EQ(HeightsOf(Apply(kAverage, kIntersection, a, b)), (Heights{15, kMissing, kMissing}));
}

TEST(Arithmetics, FootprintsThatOverlapInPart)
{
    // The second surface lies one column to the right and one row down.
    const Surface a = MakeSurface(2, 2, {1, 2, 3, 4});
    const Surface b = MakeSurface(2, 2, {10, 20, 30, 40}, kUnit, {1.0, 1.0, 0.0});
    const Surface both = Apply(kAdd, kIntersection, a, b);
    EXPECT_EQ(HeightsOf(both), Heights{14});
    EXPECT_EQ(both.offset.x, 1.0);
    EXPECT_EQ(both.offset.y, 1.0);
    const Surface either = Apply(kAdd, kUnion, a, b);
    EXPECT_EQ(HeightsOf(either), (Heights{1, 2, kMissing, 3, 14, 20, kMissing, 30, 40}));
    EXPECT_EQ(qArray2_Length(either.layers[0], 0), 3U);
    EXPECT_EQ(qArray2_Length(either.layers[0], 1), 3U);
    EXPECT_EQ(either.offset.x, 0.0);
    EXPECT_EQ(either.offset.y, 0.0);
}

TEST(Arithmetics, HeightsOfTheSecondSurfaceAloneAreMovedToTheFirstFrame)
{
    const Surface a = MakeSurface(1, 1, {1}, {1.0, 1.0, 0.5}, {0.0, 0.0, 10.0});
    const Surface b = MakeSurface(1, 2, {6, kMissing}, {1.0, 1.0, 0.5}, {1.0, 0.0, 20.0});
    EXPECT_EQ(HeightsOf(Apply(kSubtract, kUnion, a, b)), (Heights{1, 26, kMissing}));
}

TEST(Arithmetics, OffsetsAreAlignedToTheNearestCell)
{
    const Surface a = Row({1, 2, 3});
    const Surface near = Apply(kAdd, kIntersection, a, Row({10, 20, 30}, 0.4));
    EXPECT_EQ(HeightsOf(near), (Heights{11, 22, 33}));
    EXPECT_EQ(near.offset.x, 0.4);
    // Half a cell goes up to a whole one; 2.5 columns are left, which is 3, and the first source has none under the last.
    const Surface half = Apply(kAdd, kIntersection, a, Row({10, 20, 30}, 0.5));
    EXPECT_EQ(HeightsOf(half), (Heights{12, 23, kMissing}));
    // From the union's start at -0.5 the first source is half a cell away to the left of its own: a whole one.
    const Surface united = Apply(kAdd, kUnion, a, Row({10, 20, 30}, -0.5));
    EXPECT_EQ(HeightsOf(united), (Heights{10, 21, 32, 3}));
    EXPECT_EQ(united.offset.x, -0.5);
}

TEST(Arithmetics, SameFootprintsGiveTheSameGridForBothLogics)
{
    const Surface a = Row({1, kMissing});
    const Surface b = Row({kMissing, 2});
    const Surface both = Apply(kAverage, kIntersection, a, b);
    const Surface either = Apply(kAverage, kUnion, a, b);
    EXPECT_EQ(both.offset.x, either.offset.x);
    EXPECT_EQ(HeightsOf(both), (Heights{kMissing, kMissing}));
    EXPECT_EQ(HeightsOf(either), (Heights{1, 2}));
}

TEST(Arithmetics, HeightsThatDoNotFitAreShifted)
{
    const Surface difference = Apply(kSubtract, kIntersection, Row({32767}), Row({-32767}));
    EXPECT_EQ(HeightsOf(difference), Heights{0});
    EXPECT_EQ(difference.scale.z, 1.0);
    EXPECT_EQ(difference.offset.z, 65534.0);
}

TEST(Arithmetics, ARangeThatDoesNotFitIsRescaled)
{
    const Surface sum = Apply(kAdd, kIntersection, Row({32767, -32767}), Row({32767, -32767}));
    EXPECT_EQ(HeightsOf(sum), (Heights{32767, -32767}));
    EXPECT_EQ(sum.scale.z, 131068.0 / 65535.0);
    EXPECT_EQ(sum.offset.z, 0.0);
}

TEST(Arithmetics, AMissingHeightUnderOneSourceAloneBecomesRealWhenAllAreMoved)
{
    const Surface fits = Apply(kAdd, kUnion, Row({kMissing, 3}), Row({4}, 1.0));
    EXPECT_EQ(HeightsOf(fits), (Heights{kMissing, 7}));
    const Surface shifted = Apply(kSubtract, kUnion, Row({kMissing, -20000}), Row({20000}, 1.0));
    EXPECT_EQ(HeightsOf(shifted), (Heights{3616, -3616}));
    EXPECT_EQ(shifted.offset.z, -36384.0);
    const Surface rescaled = Apply(kAdd, kUnion, Row({30000}, 1.0), Row({kMissing, 30000, kMissing}));
    EXPECT_EQ(HeightsOf(rescaled), (Heights{-32767, 32767, -32767}));
    EXPECT_EQ(rescaled.scale.z, 92768.0 / 65535.0);
    EXPECT_EQ(rescaled.offset.z, 13616.0);
}

TEST(Arithmetics, AllHeightsMissing)
{
    for (const ArithmeticLogic logic : {kIntersection, kUnion})
    {
        const Surface sum = Apply(kAdd, logic, Row({kMissing, kMissing}), Row({kMissing, kMissing}));
        EXPECT_EQ(HeightsOf(sum), Heights(2, kMissing));
        EXPECT_EQ(sum.offset.z, 0.0);
        EXPECT_EQ(sum.scale.z, 1.0);
    }
}

TEST(Arithmetics, IntensitiesOfTheIntersectionFollowTheHeights)
{
    const Surface a = BrightRow({1, 2, kMissing}, {200, 50, 50});
    const Surface b = BrightRow({1, kMissing, 3, 4}, {100, 60, 60, 70}, -1.0);
    EXPECT_EQ(IntensitiesOf(Apply(kAdd, kIntersection, a, b)), (Intensities{0, 110, 0}));
    EXPECT_EQ(IntensitiesOf(Apply(kAdd, kIntersection, a, BrightRow({1, 1, 1}, {100, 60, 60}))),
              (Intensities{255, 110, 0}));
    EXPECT_EQ(IntensitiesOf(Apply(kSubtract, kIntersection, a, BrightRow({1, 1, 1}, {100, 60, 60}))),
              (Intensities{100, 0, 0}));
}

TEST(Arithmetics, IntensitiesOfTheUnionDoNotCareForHeights)
{
    const Surface a = BrightRow({kMissing, kMissing, 3}, {5, 6, 7});
    const Surface b = BrightRow({kMissing, kMissing, 9}, {10, 20, 30}, 1.0);
    EXPECT_EQ(IntensitiesOf(Apply(kAdd, kUnion, a, b)), (Intensities{5, 16, 27, 30}));
    EXPECT_EQ(IntensitiesOf(Apply(kSubtract, kUnion, a, b)), (Intensities{5, 0, 0, 30}));
    EXPECT_EQ(IntensitiesOf(Apply(kAverage, kUnion, a, b)), (Intensities{5, 8, 13, 30}));
    const Surface apart = Apply(kAdd, kUnion, a, BrightRow({1}, {10}, 4.0));
    EXPECT_EQ(IntensitiesOf(apart), (Intensities{5, 6, 7, 0, 10}));
}

TEST(Arithmetics, IntensitiesOfOneSurfaceCountForNothing)
{
    Surface with = BrightRow({1, 2}, {3, 4});
    Surface without = Row({1, 2});
    Surface withNull = without;
    withNull.layers.emplace_back();
    for (const ArithmeticLogic logic : {kIntersection, kUnion})
    {
        EXPECT_EQ(Apply(kAdd, logic, with, without).layers.size(), 1U);
        EXPECT_EQ(Apply(kAdd, logic, without, with).layers.size(), 1U);
        EXPECT_EQ(Apply(kAdd, logic, withNull, with).layers.size(), 1U);
    }
    EXPECT_EQ(ApplyMask(with, without).layers.size(), 1U);
    EXPECT_EQ(ApplyMask(without, with).layers.size(), 1U);
    // A lone layer is not looked at, whatever it is.
    with.layers[1] = MakeFilled<double>(7, 7, 1.0);
    EXPECT_EQ(HeightsOf(Apply(kAdd, kUnion, with, without)), (Heights{2, 4}));
}

TEST(Arithmetics, AMaskKeepsTheCellsWhereItHasData)
{
    const Surface surface = BrightRow({1, 2, kMissing, 4}, {10, 20, 30, 40});
    const Surface masked = ApplyMask(surface, BrightRow({9, kMissing, 9, 0}, {1, 2, 3, 4}));
    EXPECT_EQ(HeightsOf(masked), (Heights{1, kMissing, kMissing, 4}));
    EXPECT_EQ(IntensitiesOf(masked), (Intensities{10, 0, 0, 40}));
    const Surface shifted = ApplyMask(surface, BrightRow({9, kMissing, 9, 9}, {1, 2, 3, 4}, 1.0));
    EXPECT_EQ(HeightsOf(shifted), (Heights{2, kMissing, 4}));
    EXPECT_EQ(IntensitiesOf(shifted), (Intensities{20, 0, 40}));
    EXPECT_EQ(shifted.offset.x, 1.0);
}

TEST(Arithmetics, FootprintsThatDoNotMeetHaveNoIntersection)
{
    const Surface a = MakeSurface(2, 2, {1, 2, 3, 4});
    for (const qPoint3d64f offset : {qPoint3d64f{9.0, 0.0, 0.0}, {0.0, -9.0, 0.0}, {9.0, 9.0, 0.0}})
    {
        const Surface b = MakeSurface(2, 2, {1, 2, 3, 4}, kUnit, offset);
        ExpectThrow(STATUS_OUT_OF_MEMORY, kApply, [&] { Apply(kAdd, kIntersection, a, b); });
        ExpectThrow(STATUS_OUT_OF_MEMORY, kApplyMask, [&] { ApplyMask(a, b); });
        EXPECT_NO_THROW(Apply(kAdd, kUnion, a, b));
    }
}

TEST(Arithmetics, FootprintsThatTouchHaveAnEmptyIntersection)
{
    const Surface a = MakeSurface(2, 2, {1, 2, 3, 4});
    const Surface b = MakeSurface(2, 2, {1, 2, 3, 4}, kUnit, {2.0, 0.0, 0.0});
    for (const Surface& result : {Apply(kAdd, kIntersection, a, b), ApplyMask(a, b)})
    {
        EXPECT_EQ(qArray2_Length(result.layers.at(0), 0), 2U);
        EXPECT_EQ(qArray2_Length(result.layers.at(0), 1), 0U);
    }
}

TEST(Arithmetics, AnUnknownLogicGivesNoCells)
{
    const Surface result = Apply(kAdd, static_cast<ArithmeticLogic>(2), Row({1, 2}, 5.0), Row({1, 2}));
    EXPECT_EQ(qArray2_Length(result.layers.at(0), 0), 0U);
    EXPECT_EQ(qArray2_Length(result.layers.at(0), 1), 0U);
    EXPECT_EQ(result.offset.x, 5.0);
}

TEST(Arithmetics, TheFirstLayersOfAResultAreReplacedAndTheAppendedOnesStayEmpty)
{
    Surface a = BrightRow({1}, {10});
    Surface b = BrightRow({2}, {20});
    Surface result = BrightRow({5, 6}, {7, 8});
    const Surface before = result;
    Arithmetics::ApplyMask(a, b, result);
    ASSERT_EQ(result.layers.size(), 4U);
    EXPECT_EQ(HeightsOf(result), Heights{1});
    EXPECT_EQ(IntensitiesOf(result), Intensities{10});
    EXPECT_EQ(result.layers[2].Get(), nullptr);
    EXPECT_EQ(result.layers[3].Get(), nullptr);
    EXPECT_EQ(HeightsOf(before), (Heights{5, 6}));
    Arithmetics::Apply(kAdd, kUnion, a, b, result);
    ASSERT_EQ(result.layers.size(), 2U);
    EXPECT_EQ(HeightsOf(result), Heights{3});
    EXPECT_EQ(IntensitiesOf(result), Intensities{30});
    // Without intensities an old second layer stays where it is.
    a.layers.pop_back();
    void* second = result.layers[1].Get();
    Arithmetics::Apply(kSubtract, kUnion, a, b, result);
    ASSERT_EQ(result.layers.size(), 2U);
    EXPECT_EQ(HeightsOf(result), Heights{-1});
    EXPECT_EQ(result.layers[1].Get(), second);
}

TEST(Arithmetics, TheResultMayBeASource)
{
    const auto run = [](auto operation)
    {
        const Surface a = BrightRow({1, 2}, {10, 20});
        const Surface b = BrightRow({30, 40}, {5, 6}, 1.0);
        Surface expected;
        Surface first = a;
        Surface second = b;
        operation(first, second, expected);
        operation(first, second, first);
        EXPECT_EQ(HeightsOf(first), HeightsOf(expected));
        EXPECT_EQ(IntensitiesOf(first), IntensitiesOf(expected));
        first = a;
        operation(first, second, second);
        EXPECT_EQ(HeightsOf(second), HeightsOf(expected));
        EXPECT_EQ(IntensitiesOf(second), IntensitiesOf(expected));
        EXPECT_EQ(second.offset.x, expected.offset.x);
        EXPECT_EQ(HeightsOf(a), (Heights{1, 2}));
        EXPECT_EQ(HeightsOf(b), (Heights{30, 40}));
    };
    run([](Surface& a, Surface& b, Surface& result) { Arithmetics::Apply(kAdd, kUnion, a, b, result); });
    run([](Surface& a, Surface& b, Surface& result) { Arithmetics::ApplyMask(a, b, result); });
    Surface both = Row({1, kMissing});
    Arithmetics::Apply(kAdd, kIntersection, both, both, both);
    EXPECT_EQ(HeightsOf(both), (Heights{2, kMissing}));
}

TEST(Arithmetics, AxesBeyond16BitsTakePartAsFarAsTheirCountersReach)
{
    for (const ArithmeticLogic logic : {kIntersection, kUnion})
    {
        const auto sumOf = [&](std::size_t count)
        {
            const Heights heights(count, 1);
            const Intensities intensities(count, 2);
            const Surface sum = Apply(kAdd, logic, BrightRow(heights, intensities), BrightRow(heights, intensities));
            const Intensities sums = IntensitiesOf(sum);
            return std::pair(HeightsOf(sum), std::count(sums.begin(), sums.end(), std::uint8_t{4}));
        };
        EXPECT_EQ(sumOf(32767).first, Heights(32767, 2));
        EXPECT_EQ(sumOf(32768).first, Heights(32768, kMissing));
        EXPECT_EQ(sumOf(32768).second, 0);
        Heights expected(65546, kMissing);
        std::fill_n(expected.begin(), 10, std::int16_t{2});
        EXPECT_EQ(sumOf(65546).first, expected);
        EXPECT_EQ(sumOf(65546).second, 10);
    }
    Heights expected(65546, kMissing);
    std::fill_n(expected.begin(), 10, std::int16_t{1});
    EXPECT_EQ(HeightsOf(ApplyMask(Row(Heights(65546, 1)), Row(Heights(65546, 1)))), expected);
}

TEST(Arithmetics, ALongColumnTakesPartAsFarAsItsCounterReaches)
{
    const Surface column = MakeSurface(40000, 1, Heights(40000, 1));
    EXPECT_EQ(HeightsOf(Apply(kAdd, kUnion, column, column)), Heights(40000, kMissing));
    // The grid is short, but no cell of the long source is within its bounds.
    const Surface brief = MakeSurface(3, 1, {1, 2, 3});
    EXPECT_EQ(HeightsOf(Apply(kAdd, kIntersection, brief, column)), Heights(3, kMissing));
}

TEST(Arithmetics, OfTheDistanceToASource16BitsAreLeft)
{
    // The first surface lies 65540 columns to the right of the grid's start, of which -4 is left, and of 65544 columns 8.
    const Surface united = Apply(kAdd, kUnion, Row({1, 2, 3, 4}, 65540.0), Row({5, 6, 7, 8}));
    Heights expected(65544, kMissing);
    const Heights begin = {5, 6, 7, 8, 1, 2, 3, 4};
    std::copy(begin.begin(), begin.end(), expected.begin());
    EXPECT_EQ(HeightsOf(united), expected);
}

TEST(Arithmetics, WithoutHeightsTheDataAreEmpty)
{
    const Surface good = Row({1}, 3.0);
    Surface none = Row({1}, 4.0);
    none.layers.clear();
    Surface withNull = none;
    withNull.layers.emplace_back();
    const auto expectEmptyData = [&](const Surface& first, const Surface& second, auto operation)
    {
        Surface a = first;
        Surface b = second;
        Surface result;
        try
        {
            operation(a, b, result);
            ADD_FAILURE() << "nothing was thrown";
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_BAD_PARAMETER);
            EXPECT_STREQ(exception.GetMessage(), "Empty Data");
            EXPECT_STREQ(exception.GetFunction(), "");
        }
        EXPECT_EQ(result.scale.x, 1.0);
        EXPECT_EQ(result.offset.x, first.offset.x);
        EXPECT_TRUE(result.layers.empty());
    };
    const auto apply = [](Surface& a, Surface& b, Surface& result)
    { Arithmetics::Apply(static_cast<ArithmeticOperator>(9), kUnion, a, b, result); };
    for (const Surface& bad : {none, withNull})
    {
        expectEmptyData(bad, good, apply);
        expectEmptyData(good, bad, apply);
        expectEmptyData(bad, good, Arithmetics::ApplyMask);
        expectEmptyData(good, bad, Arithmetics::ApplyMask);
    }
}

TEST(Arithmetics, AnUnknownOperatorIsRefusedOnceTheGridIsKnown)
{
    Surface a = Row({1, 2}, 3.0);
    Surface b = Row({1, 2}, 4.0);
    Surface result;
    ExpectThrow(STATUS_NOT_SUPPORTED, "Zvl::ArithmeticsPixelOperationFactory::Create",
                [&] { Arithmetics::Apply(static_cast<ArithmeticOperator>(3), kIntersection, a, b, result); });
    EXPECT_EQ(result.scale.z, 1.0);
    EXPECT_EQ(result.offset.x, 4.0);
    EXPECT_TRUE(result.layers.empty());
}

TEST(Arithmetics, UnfitLayersAreRefused)
{
    const Surface good = BrightRow({1, 2}, {3, 4});
    const auto refused = [&](const Surface& bad)
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kApply, [&] { Apply(kAdd, kUnion, bad, good); });
        ExpectThrow(STATUS_BAD_PARAMETER, kApply, [&] { Apply(kAdd, kIntersection, good, bad); });
        ExpectThrow(STATUS_BAD_PARAMETER, kApplyMask, [&] { ApplyMask(bad, good); });
        ExpectThrow(STATUS_BAD_PARAMETER, kApplyMask, [&] { ApplyMask(good, bad); });
    };
    Surface bad = good;
    bad.layers[0] = MakeFilled<std::uint8_t>(1, 2, 1);
    refused(bad);
    Zo::Test(qArray1_Construct(bad.layers[0].Slot(), xxq16s_type, 2, nullptr));
    refused(bad);
    for (const auto& intensities :
         {MakeFilled<std::uint8_t>(1, 1, 1), MakeFilled<std::uint8_t>(2, 2, 1), MakeFilled<std::int16_t>(1, 2, 1)})
    {
        bad = good;
        bad.layers[1] = intensities;
        refused(bad);
    }
}

TEST(Arithmetics, MappingsThatGiveNoNumberOfCellsAreRefused)
{
    const Surface good = Row({1, 2});
    const auto refused = [&](const Surface& first, const Surface& second)
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kBoundaries, [&] { Apply(kAdd, kUnion, first, second); });
        ExpectThrow(STATUS_BAD_PARAMETER, kBoundaries, [&] { Apply(kAdd, kIntersection, first, second); });
        ExpectThrow(STATUS_BAD_PARAMETER, kBoundaries, [&] { ApplyMask(first, second); });
    };
    for (const double value : {kNan, std::numeric_limits<double>::infinity()})
    {
        for (double qPoint3d64f::*axis : {&qPoint3d64f::x, &qPoint3d64f::y})
        {
            Surface bad = good;
            bad.offset.*axis = value;
            refused(bad, good);
            refused(good, bad);
            bad = good;
            bad.scale.*axis = value;
            refused(bad, good);
        }
    }
    Surface unset;
    unset.layers = good.layers;
    refused(unset, good);
    Surface flat = good;
    flat.scale.x = 0.0;
    refused(flat, good);
}

TEST(Arithmetics, AScaleThatMeasuresNothingLosesHeightsOnly)
{
    for (const double zScale : {0.0, kNan})
    {
        const Surface a = MakeSurface(1, 2, {1, 2}, {1.0, 1.0, zScale});
        EXPECT_EQ(HeightsOf(Apply(kAdd, kUnion, a, Row({1, kMissing}))), (Heights{kMissing, 2}));
        EXPECT_EQ(HeightsOf(Apply(kAverage, kIntersection, a, Row({1, 2}))), Heights(2, kMissing));
    }
}

TEST(Arithmetics, HeightsThatDoNotFitInTheLastRowShiftThoseOfAllRows)
{
    Heights heights(3 * 40, 20000);
    heights.back() = 32767;
    const Surface a = MakeSurface(3, 40, heights);
    const Surface result = Apply(kAdd, kIntersection, a, a);
    // From 40000 to 65534 counts: the middle is 52767.
    Heights expected(3 * 40, 40000 - 52767);
    expected.back() = 65534 - 52767;
    EXPECT_EQ(HeightsOf(result), expected);
    EXPECT_EQ(result.offset.z, 52767.0);

    heights.assign(3 * 40, 1);
    heights.back() = 32767;
    const Surface b = MakeSurface(3, 40, heights);
    expected.assign(3 * 40, 2 - 32768);
    expected.back() = 65534 - 32768;
    EXPECT_EQ(HeightsOf(Apply(kAdd, kUnion, b, b)), expected);
}

TEST(Arithmetics, AHugeUnionIsRefusedAtOnce)
{
    const Surface a = MakeSurface(1, 1, {1});
    const Surface b = MakeSurface(1, 1, {1}, kUnit, {1e12, 1e12, 0.0});
    ExpectThrow(STATUS_OUT_OF_MEMORY, kApply, [&] { Apply(kAdd, kUnion, a, b); });
    const Surface farther = MakeSurface(1, 1, {1}, kUnit, {-1e300, 0.0, 0.0});
    ExpectThrow(STATUS_OUT_OF_MEMORY, kApply, [&] { Apply(kAdd, kUnion, a, farther); });
}

TEST(Arithmetics, ExhaustedMemoryIsThrownWithTheLayersMadeSoFar)
{
    Surface a = BrightRow({1, 32767}, {3, 4});
    Surface b = BrightRow({5, 6}, {7, 8});
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(
                      {kApply, "Zvl::Arithmetics::ConvertSurface32sTo16s"},
                      [&]
                      {
                          Surface result;
                          Arithmetics::Apply(kAdd, kUnion, a, b, result);
                      },
                      mode),
                  5U);
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(
                      kApplyMask,
                      [&]
                      {
                          Surface result;
                          Arithmetics::ApplyMask(a, b, result);
                      },
                      mode),
                  2U);
    }
}

TEST(Arithmetics, AfterAFailureTheResultHoldsWhatWasMade)
{
    Surface a = BrightRow({1, 32767}, {3, 4});
    Surface b = BrightRow({5, 6}, {7, 8});
    TestSupport::FailingAllocator allocator;
    allocator.MakeDefault();
    {
        Surface result;
        allocator.FailAt(1);
        ExpectThrow(STATUS_OUT_OF_MEMORY, kApply, [&] { Arithmetics::Apply(kAdd, kUnion, a, b, result); });
        ASSERT_EQ(result.layers.size(), 1U);
        EXPECT_EQ(result.layers[0].Get(), nullptr);
        EXPECT_EQ(result.offset.x, 0.0);
    }
    allocator.FailNever();
    Surface whole;
    Arithmetics::Apply(kAdd, kUnion, a, b, whole);
    const std::size_t allocations = allocator.Allocations();
    whole = Surface();
    {
        Surface result;
        allocator.FailAt(allocations);
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::Arithmetics::ConvertSurface32sTo16s",
                    [&] { Arithmetics::Apply(kAdd, kUnion, a, b, result); });
        ASSERT_EQ(result.layers.size(), 2U);
        EXPECT_EQ(qArray2_Type(result.layers[0]), xxq32s_type);
        EXPECT_EQ(*static_cast<const std::int32_t*>(qArray2_At(result.layers[0], 0, 1)), 32773);
        EXPECT_EQ(IntensitiesOf(result), (Intensities{10, 12}));
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
