#include "Fitting/CircleCircumscribed.h"
#include "Fitting/CircleShrinking.h"

#include "ZoneSupport.h"

namespace
{

using namespace ZoneSupport;
using Zvl::DistPoint;
using Zvl::FitCircle_MCC;
using Zvl::Shrinking;
using Zvl::ShrinkingCircle;
using Zvl::ZoneLine;

constexpr const char* kFunction = "Zvl::FitCircle_MCC";

TEST(CircumscribedCircle, ThreePointsHaveTheCircleThroughThem)
{
    const Points points{{0.0, 0.0}, {8.0, 0.0}, {0.0, 6.0}};
    const Circle circle = FitTo(FitCircle_MCC, points);
    ExpectPoints({circle.center}, {{4.0, 3.0}});
    EXPECT_EQ(circle.radius, 5.0);
    EXPECT_EQ(circle.maxDistance, 5.0);
    EXPECT_EQ(circle.minDistance, 5.0);
    for (const Points& list : {circle.maxDistPoints, circle.minDistPoints, circle.controlPoints})
    {
        ExpectPoints(list, points);
    }
    ExpectNoNumbers(FitTo(FitCircle_MCC, {{0.0, 0.0}, {1.0, 1.0}, {2.0, 2.0}}));
}

TEST(CircumscribedCircle, TooFewPointsGiveNothing)
{
    ExpectNothing(FitTo(FitCircle_MCC, {}));
    ExpectNothing(FitTo(FitCircle_MCC, {{1.0, 2.0}, {3.0, 4.0}}));
    Circle circle;
    FitCircle_MCC(nullptr, 100, &circle.center, &circle.radius, &circle.maxDistance, &circle.minDistance,
                  &circle.maxDistPoints, &circle.minDistPoints, &circle.controlPoints);
    ExpectNothing(circle);
}

TEST(CircumscribedCircle, PointsOnACircleAreFoundAtOnceWhenTheyAreSpread)
{
    // The four lie 5 from their mean, the origin; (1, 1) and its mirror image leave the mean there.
    const Points points{{5.0, 0.0}, {0.0, 5.0}, {-5.0, 0.0}, {0.0, -5.0}, {1.0, 1.0}, {-1.0, -1.0}};
    const Circle circle = FitTo(FitCircle_MCC, points);
    ExpectPoints({circle.center}, {{0.0, 0.0}});
    EXPECT_EQ(circle.radius, 5.0);
    EXPECT_EQ(circle.maxDistance, 5.0);
    EXPECT_EQ(circle.minDistance, std::sqrt(2.0));
    ExpectPoints(circle.minDistPoints, {{1.0, 1.0}});
    // By angle: -90, 0, 90 and 180 degrees.
    ExpectPoints(circle.controlPoints, {{0.0, -5.0}, {5.0, 0.0}, {0.0, 5.0}});
    ExpectPoints(circle.maxDistPoints, circle.controlPoints);
}

TEST(CircumscribedCircle, UnusableCoordinatesAreRefused)
{
    for (const Points& points : UnusablePoints())
    {
        Circle circle;
        TestSupport::ExpectThrow(STATUS_BAD_DATA, kFunction, [&] { FitInto(circle, FitCircle_MCC, points); });
        ExpectNothing(circle);
    }
}

TEST(CircumscribedCircle, AnUnusableCoordinateAmongManyIsRefused)
{
    const Points points = LobedRing(333, 0.01, 1);
    for (const Points& few : UnusablePoints())
    {
        for (const std::size_t place : {0U, 100U, 328U})
        {
            Points some = points;
            std::copy(few.begin(), few.end(), some.begin() + static_cast<std::ptrdiff_t>(place));
            Circle circle;
            TestSupport::ExpectThrow(STATUS_BAD_DATA, kFunction, [&] { FitInto(circle, FitCircle_MCC, some); });
            ExpectNothing(circle);
        }
    }
}

TEST(CircumscribedCircle, AnUnusableCoordinateIsRefusedWhereverItIs)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    Points points = LobedRing(300, 0.01, 1);
    for (qPoint64f& p : points)
    {
        for (const double value : {std::nan(""), kInfinity, -kInfinity, 1.001e100, -1e160})
        {
            for (double* coordinate : {&p.x, &p.y})
            {
                const double before = std::exchange(*coordinate, value);
                Circle circle;
                TestSupport::ExpectThrow(STATUS_BAD_DATA, kFunction, [&] { FitInto(circle, FitCircle_MCC, points); });
                ExpectNothing(circle);
                *coordinate = before;
            }
        }
    }
    points[7].x = 1e300; // the two leave a mean as any other
    points[250].x = -1e300;
    Circle circle;
    TestSupport::ExpectThrow(STATUS_BAD_DATA, kFunction, [&] { FitInto(circle, FitCircle_MCC, points); });
}

TEST(CircumscribedCircle, CoordinatesUpToTheLargestAreUsable)
{
    Points points = LobedRing(300, 0.01, 1);
    points[40] = {1e100, 1e100};
    points[199] = {-1e100, -1e100};
    const Circle circle = FitTo(FitCircle_MCC, points);
    EXPECT_NEAR(circle.radius, std::sqrt(2.0) * 1e100, 1e86);
}

TEST(CircumscribedCircle, AFarthestPointBesideTheMeanLeavesNoWay)
{
    // The mean is (1, 0), and (7, 0) is the farthest point: no centre lies strictly between the two in y.
    const Points points{{7.0, 0.0}, {-1.0, 2.0}, {-1.0, -2.0}, {-1.0, 0.0}};
    Circle circle;
    TestSupport::ExpectThrow(STATUS_ABORTED, kFunction, [&] { FitInto(circle, FitCircle_MCC, points); });
    ExpectNothing(circle);
}

TEST(CircumscribedCircle, CoincidentPointsAreRefused)
{
    for (const std::size_t count : {4U, 1000U})
    {
        Circle circle;
        TestSupport::ExpectThrow(STATUS_ABORTED, kFunction,
                                 [&] {
                                     FitInto(circle, FitCircle_MCC, Points(count, {1.5, -2.0}));
                                 });
        ExpectNothing(circle);
    }
}

TEST(CircumscribedCircle, EveryOutputMayBeNull)
{
    const Points points = LobedRing(30, 0.01, 1);
    for (const std::size_t count : {0U, 2U, 3U, 4U, 30U})
    {
        EXPECT_NO_THROW(
            FitCircle_MCC(points.data(), count, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    }
}

TEST(CircumscribedCircle, ItIsTheSmallestCircleAroundThePoints)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed)
    {
        const std::size_t count = 4 + seed % 17;
        const Points points = seed % 2 == 0 ? Scattered(count, 30.0, seed) : LobedRing(count, 0.05, seed);
        SCOPED_TRACE(seed);
        const Circle circle = FitTo(FitCircle_MCC, points);
        EXPECT_NEAR(circle.radius, EnclosingRadius(points), 1e-6);
        EXPECT_EQ(circle.maxDistance, circle.radius);
        EXPECT_NEAR(Farthest(circle.center, points), circle.radius, 1e-6);
        for (const qPoint64f& p : circle.controlPoints)
        {
            EXPECT_NEAR(DistanceOf(circle.center, p), circle.radius, 1e-6);
        }
    }
}

TEST(CircumscribedCircle, DegeneratePointsEndInACircleOrAnException)
{
    for (const Points& points : DegeneratePoints())
    {
        Circle circle;
        try
        {
            FitInto(circle, FitCircle_MCC, points);
            EXPECT_GE(circle.controlPoints.size(), 2U);
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_ABORTED);
            ExpectNothing(circle);
        }
    }
}

/** The step by its definition: every circle is compared with the points in order, up to the first one outside. */
Shrinking ShrinkPlainly(ShrinkingCircle& circle, const Points& pivots, const ZoneLine& line, const qPoint64f& limit)
{
    const auto isBetween = [](double value, double a, double b)
    { return std::min(a, b) < value && value < std::max(a, b); };
    for (std::size_t tried = 0; tried < circle.pDistances.size(); ++tried)
    {
        const qPoint64f q = circle.pDistances[tried].point;
        if (std::any_of(circle.tempControlPoints.begin(), circle.tempControlPoints.end(),
                        [&q](const DistPoint& item) { return Zvl::IsSamePoint(item.point, q); }))
        {
            continue;
        }
        std::optional<qPoint64f> center;
        for (const qPoint64f& pivot : pivots)
        {
            const auto crossing = Zvl::Intersection(line, Zvl::Bisector(q, pivot));
            if (!center.has_value() && crossing.has_value() && isBetween(crossing->x, limit.x, circle.center.x) &&
                isBetween(crossing->y, limit.y, circle.center.y))
            {
                center = crossing;
            }
        }
        if (!center.has_value())
        {
            continue;
        }
        const double r = Zvl::Distance(*center, pivots[0]);
        bool isAdopted = true;
        for (DistPoint& item : circle.pDistances)
        {
            const bool isOn = Zvl::IsSamePoint(item.point, q) ||
                              std::any_of(pivots.begin(), pivots.end(),
                                          [&item](const qPoint64f& p) { return Zvl::IsSamePoint(item.point, p); });
            const double d = isOn ? r : Zvl::Distance(item.point, *center);
            if (d > r)
            {
                isAdopted = false;
                break;
            }
            item.value = d;
        }
        if (isAdopted)
        {
            circle.center = *center;
            circle.radius = r;
            circle.tempControlPoints.clear();
            std::copy_if(circle.pDistances.begin(), circle.pDistances.end(),
                         std::back_inserter(circle.tempControlPoints),
                         [r](const DistPoint& item) { return std::fabs(r - item.value) < Zvl::kZoneEpsilon; });
            return Shrinking::TookUpPoint;
        }
    }
    circle.center = Zvl::Middle(pivots[0], pivots[1]);
    circle.radius = Zvl::Distance(pivots[0], pivots[1]) / 2.0;
    circle.tempControlPoints = {{pivots[0], 0.0}, {pivots[1], 0.0}};
    return Shrinking::CameToEnd;
}

void ExpectSame(const std::vector<DistPoint>& items, const std::vector<DistPoint>& expected)
{
    EXPECT_TRUE(std::equal(items.begin(), items.end(), expected.begin(), expected.end(),
                           [](const DistPoint& a, const DistPoint& b)
                           { return a.point.x == b.point.x && a.point.y == b.point.y && a.value == b.value; }));
}

/** Points anywhere, near a circle, or on one, where rounding alone says which of them are outside. */
Points PointsForStep(int repetition, std::size_t count, std::mt19937_64& random)
{
    switch (repetition % 3)
    {
    case 0:
        return Scattered(count, 10.0, random());
    case 1:
        return LobedRing(count, 0.01, random());
    default:
        return VoronoiSupport::Ring(count, {3.0, 4.0}, std::uniform_real_distribution<double>(4.0, 6.0)(random));
    }
}

/** A circle with two of the points on it, and the others anywhere: some steps take up a point, some come to the end, and
 *  both must leave every distance as the plain loop does. */
TEST(Shrink, LeavesWhatThePlainLoopLeaves)
{
    std::mt19937_64 random(3);
    std::size_t tookUp = 0;
    std::size_t cameToEnd = 0;
    for (int repetition = 0; repetition < 4000; ++repetition)
    {
        const std::size_t count = 4 + random() % 40;
        const Points points = PointsForStep(repetition, count, random);
        const std::size_t first = random() % count;
        const Points pivots = {points[first], points[(first + 1 + random() % (count - 1)) % count]};
        const qPoint64f middle = Zvl::Middle(pivots[0], pivots[1]);
        const ZoneLine line = Zvl::Bisector(pivots[0], pivots[1]);
        const double t = std::uniform_real_distribution<double>(-9.0, 9.0)(random);
        ShrinkingCircle circle = {{middle.x + t * line.direction.x, middle.y + t * line.direction.y}, 0.0, {}, {}};
        circle.radius = Zvl::Distance(circle.center, pivots[0]);
        for (const qPoint64f& p : points)
        {
            circle.pDistances.push_back({p, Zvl::Distance(p, circle.center)});
        }
        circle.tempControlPoints = {{pivots[0], 0.0}, {pivots[1], 0.0}};
        ShrinkingCircle plain = circle;

        const Shrinking result = Zvl::Shrink(circle, pivots, line, middle);
        ASSERT_EQ(result, ShrinkPlainly(plain, pivots, line, middle));
        ExpectPoints({circle.center}, {plain.center});
        EXPECT_EQ(circle.radius, plain.radius);
        ExpectSame(circle.pDistances, plain.pDistances);
        ExpectSame(circle.tempControlPoints, plain.tempControlPoints);
        ++(result == Shrinking::TookUpPoint ? tookUp : cameToEnd);
    }
    EXPECT_GT(tookUp, 50U);
    EXPECT_GT(cameToEnd, 100U);
}

TEST(Shrink, ALevelWayHasNoCentreStrictlyBetween)
{
    const Points pivots = {{0.0, 1.0}, {0.0, -1.0}};
    ShrinkingCircle circle = {{5.0, 0.0}, std::sqrt(26.0), {}, {{pivots[0], 0.0}, {pivots[1], 0.0}}};
    circle.pDistances = {{pivots[0], 0.0}, {pivots[1], 0.0}, {{3.0, 0.0}, 1.0}};
    EXPECT_EQ(Zvl::Shrink(circle, pivots, {{0.0, 0.0}, {1.0, 0.0}}, {0.0, 0.0}), Shrinking::CameToEnd);
    ExpectPoints({circle.center}, {{0.0, 0.0}}); // although (3, 0) lies outside
    EXPECT_EQ(circle.radius, 1.0);
}

TEST(Shrink, OnePivotWithoutAnotherPointLeavesEverythingAsItIs)
{
    const Points pivot = {{4.0, 3.0}};
    ShrinkingCircle circle = {{0.0, 0.0}, 5.0, {{pivot[0], 5.0}, {{9.0, 9.0}, 2.0}}, {{pivot[0], 5.0}}};
    EXPECT_EQ(Zvl::Shrink(circle, pivot, {pivot[0], {0.8, 0.6}}, pivot[0]), Shrinking::Failed);
    ExpectPoints({circle.center}, {{0.0, 0.0}});
    EXPECT_EQ(circle.radius, 5.0);
    EXPECT_EQ(circle.tempControlPoints.size(), 1U);
}

} // namespace
