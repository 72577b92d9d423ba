#include "Fitting/CircleMinimumZone.h"
#include "Fitting/CircleCircumscribed.h"
#include "Fitting/CircleInscribed.h"
#include "Fitting/ZoneExchange.h"

#include "ZoneSupport.h"

#include <array>

namespace
{

using namespace ZoneSupport;
using Zvl::FitCircle_MZC;
using Zvl::Zone;
using Zvl::ZoneControls;

struct Result
{
    qPoint64f center{7.0, 7.0};
    double minRadius = 7.0;
    double maxRadius = 7.0;
    Points maxDistPoints{{7.0, 7.0}};
    Points minDistPoints{{7.0, 7.0}};
};

void FitZoneInto(Result& result, const Points& points)
{
    FitCircle_MZC(points.data(), points.size(), &result.center, &result.minRadius, &result.maxRadius,
                  &result.maxDistPoints, &result.minDistPoints);
}

Result FitZone(const Points& points)
{
    Result result;
    FitZoneInto(result, points);
    return result;
}

void ExpectNoZone(const Result& result)
{
    ExpectPoints({result.center}, {{kNull, kNull}});
    EXPECT_EQ(result.minRadius, kNull);
    EXPECT_EQ(result.maxRadius, kNull);
    EXPECT_TRUE(result.maxDistPoints.empty());
    EXPECT_TRUE(result.minDistPoints.empty());
}

TEST(MinimumZone, TooFewPointsGiveNothing)
{
    ExpectNoZone(FitZone({}));
    ExpectNoZone(FitZone({{1.0, 2.0}}));
    ExpectNoZone(FitZone({{1.0, 2.0}, {3.0, 4.0}}));
    Result result;
    FitCircle_MZC(nullptr, 10, &result.center, &result.minRadius, &result.maxRadius, &result.maxDistPoints,
                  &result.minDistPoints);
    ExpectNoZone(result);
    EXPECT_NO_THROW(FitCircle_MZC(nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST(MinimumZone, PointsOnOneLineGiveNothing)
{
    ExpectNoZone(FitZone({{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}}));
    ExpectNoZone(FitZone({{0.0, 0.0}, {1.0, 0.0}, {2.0, 0.0}, {3.0, 0.0}, {4.0, 0.0}}));
    ExpectNoZone(FitZone(Points(10, {1.0, 1.0})));
}

TEST(MinimumZone, ThreePointsLieOnOneCircle)
{
    const Result result = FitZone({{0.0, 0.0}, {8.0, 0.0}, {0.0, 6.0}});
    EXPECT_NEAR(result.center.x, 4.0, 1e-12);
    EXPECT_NEAR(result.center.y, 3.0, 1e-12);
    EXPECT_NEAR(result.minRadius, 5.0, 1e-12);
    EXPECT_NEAR(result.maxRadius, 5.0, 1e-12);
}

TEST(MinimumZone, UnusableCoordinatesAreRefused)
{
    for (const Points& points : UnusablePoints())
    {
        Result result;
        TestSupport::ExpectThrow(STATUS_BAD_DATA, "Zvl::FitCircle_MIC", [&] { FitZoneInto(result, points); });
        ExpectNoZone(result);
    }
}

TEST(MinimumZone, FailuresOfTheSeedsArePassedOn)
{
    Result result;
    TestSupport::ExpectThrow(STATUS_ABORTED, "Zvl::FitCircle_MIC", // four points on the inscribed circle
                             [&] {
                                 FitZoneInto(result, {{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}});
                             });
    ExpectNoZone(result);
    TestSupport::ExpectThrow(STATUS_ABORTED, "Zvl::FitCircle_MCC", // the farthest point is level with the mean
                             [&] {
                                 FitZoneInto(result, {{7.0, 0.0}, {-2.0, 4.0}, {-1.0, -3.0}, {-4.0, -1.0}});
                             });
    ExpectNoZone(result);
}

/** How the zones about the centres that are found compare with the narrowest ones, over a hundred sets of points. */
struct Nearness
{
    int exact = 0;
    int wider = 0;
    int understated = 0; ///< of these: with points outside of the radii that were returned
    int aborted = 0;
    double worst = 1.0; ///< largest width as a multiple of the narrowest one
};

template <typename MakePoints>
Nearness NearnessOf(MakePoints makePoints)
{
    Nearness nearness;
    for (std::uint64_t seed = 1; seed <= 100; ++seed)
    {
        const Points points = makePoints(5 + seed % 16, seed);
        const double narrowest = ZoneWidth(points);
        Result result;
        try
        {
            FitZoneInto(result, points);
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_ABORTED);
            ++nearness.aborted;
            continue;
        }
        const double width = Farthest(result.center, points) - Nearest(result.center, points);
        EXPECT_GE(width, narrowest - 1e-9);
        nearness.worst = std::max(nearness.worst, width / narrowest);
        nearness.understated += result.maxRadius - result.minRadius < width - 1e-6 ? 1 : 0;
        ++(width <= narrowest + 1e-6 ? nearness.exact : nearness.wider);
    }
    testing::Test::RecordProperty("exact", nearness.exact);
    testing::Test::RecordProperty("wider", nearness.wider);
    testing::Test::RecordProperty("understated", nearness.understated);
    testing::Test::RecordProperty("worst", std::to_string(nearness.worst));
    return nearness;
}

TEST(MinimumZone, RoundPartsHaveTheNarrowestZone)
{
    const Nearness nearness =
        NearnessOf([](std::size_t count, std::uint64_t seed) { return LobedRing(count, 0.02, seed); });
    EXPECT_GE(nearness.exact, 98);
    EXPECT_EQ(nearness.aborted, 0);
    EXPECT_EQ(nearness.understated, 0);
    EXPECT_LE(nearness.worst, 1.05);
}

/** Points all over a square have no zone to speak of, and the exchange often comes back to the circles that it began
 *  with. */
TEST(MinimumZone, ScatteredPointsHaveAZoneNoMoreThanThreeTimesAsWide)
{
    const Nearness nearness =
        NearnessOf([](std::size_t count, std::uint64_t seed) { return Scattered(count, 30.0, seed); });
    EXPECT_GE(nearness.exact, 60);
    EXPECT_EQ(nearness.aborted, 0);
    EXPECT_LE(nearness.understated, 5);
    EXPECT_LE(nearness.worst, 3.0);
}

TEST(MinimumZone, ItHoldsAllPointsOfALobedRing)
{
    for (const std::size_t count : {20U, 100U, 1000U, 10000U})
    {
        const Points points = LobedRing(count, 0.003, count);
        const Result result = FitZone(points);
        EXPECT_NEAR(Nearest(result.center, points), result.minRadius, 3e-7);
        EXPECT_NEAR(Farthest(result.center, points), result.maxRadius, 3e-7);
        EXPECT_EQ(result.maxDistPoints.size(), 2U);
        EXPECT_EQ(result.minDistPoints.size(), 2U);
        for (const qPoint64f& p : result.maxDistPoints)
        {
            EXPECT_NEAR(DistanceOf(result.center, p), result.maxRadius, 1e-9);
        }
        // Not wider than the zones about the centres of the two circles that it starts from.
        for (const auto fit : {&Zvl::FitCircle_MIC, &Zvl::FitCircle_MCC})
        {
            const Circle circle = FitTo(fit, points);
            EXPECT_LE(result.maxRadius - result.minRadius, circle.maxDistance - circle.minDistance);
        }
    }
}

TEST(MinimumZone, RingsOfHundredThousandPointsComeToAnEnd)
{
    const Points rough = LobedRing(100000, 0.003, 4);
    const Result result = FitZone(rough);
    EXPECT_NEAR(Nearest(result.center, rough), result.minRadius, 3e-7);
    EXPECT_NEAR(Farthest(result.center, rough), result.maxRadius, 3e-7);

    // Without any roughness the inscribed circle is found nowhere or has more points on it than three.
    Result perfect;
    try
    {
        FitZoneInto(perfect, LobedRing(100000, 0.0, 4));
        EXPECT_TRUE(perfect.center.x == kNull || perfect.maxRadius > 10.0);
    }
    catch (const Zo::Exception& exception)
    {
        EXPECT_EQ(exception.GetStatus(), STATUS_ABORTED);
        ExpectNoZone(perfect);
    }
}

TEST(MinimumZone, DegeneratePointsEndInAZoneNothingOrAnException)
{
    for (const Points& points : DegeneratePoints())
    {
        Result result;
        try
        {
            FitZoneInto(result, points);
            EXPECT_EQ(result.center.x == kNull, result.maxDistPoints.empty());
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_ABORTED);
            ExpectNoZone(result);
        }
    }
}

/** Points on few coordinates, nearly equal or far apart: the fit comes back with a zone, with nothing, or with an
 *  exception. */
TEST(MinimumZone, WildCoordinatesNeitherCrashNorHang)
{
    std::mt19937_64 random(8);
    std::uniform_real_distribution<double> exponent(-12.0, 12.0);
    std::array<int, 3> outcomes = {0, 0, 0};
    for (int repetition = 0; repetition < 4000; ++repetition)
    {
        const double spread = std::pow(10.0, exponent(random));
        const double offset = std::pow(10.0, exponent(random)) * static_cast<double>(repetition % 3);
        const std::uint64_t columns = 2 + random() % 9;
        Points points(3 + random() % 50);
        for (qPoint64f& p : points)
        {
            const auto coordinate = [&]
            {
                const double cell = static_cast<double>(random() % columns);
                return offset +
                       spread * (cell + static_cast<double>(random() % 3) * (repetition % 2 == 0 ? 0.0 : 1e-9));
            };
            p = {coordinate(), coordinate()};
        }
        Result result;
        try
        {
            FitZoneInto(result, points);
            ++outcomes[result.center.x == kNull ? 0 : 1];
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_ABORTED);
            ExpectNoZone(result);
            ++outcomes[2];
        }
    }
    for (const int outcome : outcomes)
    {
        EXPECT_GT(outcome, 100);
    }
}

// The outer points of the search lie on the circle of radius 5, the inner ones on that of radius 3, about the origin.
const Points kOuter = {{5.0, 0.0}, {3.0, 4.0}, {-4.0, 3.0}};
const Points kInner = {{0.0, 3.0}, {0.0, -3.0}, {-3.0, 0.0}};

TEST(FindBestFour, ThreeAndThreePointsLoseOneEach)
{
    ZoneControls controls = {kOuter, kInner};
    Zone zone;
    Zvl::FindBestFour(controls, zone);
    EXPECT_NEAR(zone.center.x, 0.0, 1e-12);
    EXPECT_NEAR(zone.center.y, 0.0, 1e-12);
    EXPECT_NEAR(zone.maxDistance, 5.0, 1e-12);
    EXPECT_NEAR(zone.minDistance, 3.0, 1e-12);
    EXPECT_EQ(zone.roundness, zone.maxDistance - zone.minDistance);
    EXPECT_EQ(controls.outer.size(), 2U);
    EXPECT_EQ(controls.inner.size(), 2U);
    ExpectPoints(zone.maxDistPoints, controls.outer);
    ExpectPoints(zone.minDistPoints, controls.inner);
}

TEST(FindBestFour, OfThreeAndTwoPointsTheListOfThreeLosesOne)
{
    ZoneControls controls = {kOuter, {kInner[0], kInner[1]}};
    Zone zone;
    Zvl::FindBestFour(controls, zone);
    EXPECT_NEAR(zone.roundness, 2.0, 1e-12);
    EXPECT_EQ(controls.outer.size(), 2U);
    ExpectPoints(controls.inner, {kInner[0], kInner[1]});

    ZoneControls mirrored = {{kOuter[0], kOuter[1]}, kInner};
    Zvl::FindBestFour(mirrored, zone);
    EXPECT_NEAR(zone.roundness, 2.0, 1e-12);
    EXPECT_EQ(mirrored.inner.size(), 2U);
    ExpectPoints(mirrored.outer, {kOuter[0], kOuter[1]});
}

TEST(FindBestFour, OtherSizesAreLeftAlone)
{
    Points four = kOuter;
    four.push_back({0.0, -5.0});
    const Points two = {kOuter[0], kOuter[1]};
    for (ZoneControls controls : {ZoneControls{two, {kInner[0], kInner[1]}},
                                  {four, kInner},
                                  {kOuter, {kInner[0]}},
                                  {{}, kInner},
                                  {kOuter, four},
                                  {{}, {}}})
    {
        const ZoneControls before = controls;
        Zone zone;
        Zvl::FindBestFour(controls, zone);
        ExpectPoints({zone.center}, {{kNull, kNull}});
        EXPECT_EQ(zone.roundness, std::numeric_limits<double>::max());
        ExpectPoints(controls.outer, before.outer);
        ExpectPoints(controls.inner, before.inner);
    }
}

TEST(FindBestFour, ParallelBisectorsGiveNoZone)
{
    ZoneControls controls = {{{0.0, 0.0}, {2.0, 0.0}}, {{0.0, 1.0}, {2.0, 1.0}, {4.0, 1.0}}};
    Zone zone;
    Zvl::FindBestFour(controls, zone);
    EXPECT_TRUE(zone.maxDistPoints.empty());
    EXPECT_EQ(controls.inner.size(), 3U);
}

TEST(FindBestFour, AnOuterPairNearerThanTheInnerOneWinsByItsNegativeWidth)
{
    // All within the tolerance of the circle of radius 5 about the origin, the outer ones on the inner side of it.
    const double nearer = 5.0 - 1e-7;
    ZoneControls controls = {{{nearer, 0.0}, {0.0, nearer}}, {{-5.0, 0.0}, {3.0, 4.0}, {0.0, 5e-8 - 5.0}}};
    Zone zone;
    Zvl::FindBestFour(controls, zone);
    EXPECT_LT(zone.roundness, -5e-8);
    EXPECT_LT(zone.maxDistance, zone.minDistance);
    EXPECT_EQ(controls.inner.size(), 2U);
}

TEST(FindBestFour, APointLeftOutMustLieInTheZone)
{
    // Whichever point is left out, it lies outside of the zone of the others: the pair called outer is the inner one.
    ZoneControls controls = {{kInner[0], kInner[1]}, kOuter};
    Zone zone;
    Zvl::FindBestFour(controls, zone);
    EXPECT_TRUE(zone.maxDistPoints.empty());
    EXPECT_EQ(controls.inner.size(), 3U);
}

TEST(AddViolators, TheFirstOfTheFarthestOnEachSideIsAdded)
{
    Zone zone;
    zone.center = {0.0, 0.0};
    zone.minDistance = 3.0;
    zone.maxDistance = 5.0;
    ZoneControls controls;
    const Points inside{{4.0, 0.0}, {3.0 - 1e-7, 0.0}, {0.0, 5.0 + 1e-7}};
    EXPECT_FALSE(Zvl::AddViolators(inside.data(), inside.size(), zone, controls));
    EXPECT_TRUE(controls.outer.empty());
    EXPECT_TRUE(controls.inner.empty());

    const Points outside{{6.0, 0.0}, {0.0, 7.0}, {7.0, 0.0}, {2.0, 0.0}, {0.0, -1.0}, {1.0, 0.0}, {4.0, 0.0}};
    EXPECT_TRUE(Zvl::AddViolators(outside.data(), outside.size(), zone, controls));
    ExpectPoints(controls.outer, {{0.0, 7.0}});
    ExpectPoints(controls.inner, {{0.0, -1.0}});
}

TEST(AddViolators, ANullZoneHasEveryPointAbove)
{
    ZoneControls controls;
    const Points points{{6.0, 0.0}, {0.0, 7.0}};
    EXPECT_TRUE(Zvl::AddViolators(points.data(), points.size(), Zone(), controls));
    ExpectPoints(controls.outer, {{6.0, 0.0}});
    EXPECT_TRUE(controls.inner.empty());
}

// Sites on four rows: the arc above a site begins or ends exactly at it, so that which one counts is told by where the search
// comes from.
TEST(MinimumZone, OfPointsOnFewRowsIsThatOfTheWalkAlongTheBeachLine)
{
    const Points points = {{49.300000000000004, 1},
                           {16.449999999999999, 1},
                           {38.550000000000004, 1},
                           {18, 1},
                           {7.7000000000000002, 2},
                           {3.9500000000000002, 2},
                           {8.5500000000000007, 1},
                           {25.700000000000003, 1},
                           {28.5, 1},
                           {34.550000000000004, 2},
                           {42.600000000000001, 2},
                           {17.150000000000002, 3},
                           {33, 3},
                           {28.400000000000002, 1},
                           {3.0500000000000003, 0},
                           {46.100000000000001, 3},
                           {30.25, 1},
                           {19.400000000000002, 3},
                           {38.450000000000003, 1},
                           {35.899999999999999, 2},
                           {38.100000000000001, 2},
                           {31.75, 2},
                           {30.550000000000001, 1},
                           {9.4500000000000011, 2},
                           {20.950000000000003, 1},
                           {0.20000000000000001, 1},
                           {21.600000000000001, 1},
                           {24.75, 2},
                           {37.300000000000004, 1},
                           {36.450000000000003, 2},
                           {35.950000000000003, 1},
                           {24.200000000000003, 2},
                           {32.300000000000004, 1}};
    const Result result = FitZone(points);
    EXPECT_EQ(result.center.x, 26.200000000000003);
    EXPECT_EQ(result.center.y, 70.538750000000022);
    EXPECT_EQ(result.minRadius, 67.880208835584043);
    EXPECT_EQ(result.maxRadius, 74.240405114482655);
}

} // namespace
