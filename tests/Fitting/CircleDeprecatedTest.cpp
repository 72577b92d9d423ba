#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/CircleLeastSquares.h"
#include "support/ExpectThrow.h"
#include "support/FailingAllocator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

using Points = std::vector<qPoint3d64f>;

constexpr double kNull = Zvl::GetNull<double>();
constexpr const char* kFunction = "Zvl::FitCircle_Deprecated";

/** A list of points, and what a fit makes of it. */
struct Fit
{
    explicit Fit(const Points& points)
    {
        Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, points.size(), nullptr));
        Zo::Test(qArrayList_Import(list, points.data(), points.size()));
    }

    void Run(int plane, double percent) { Zvl::FitCircle_Deprecated(list, plane, percent, &center, &radius); }

    Points Kept() const
    {
        const auto* data = static_cast<const qPoint3d64f*>(qArrayList_Data(list));
        return {data, data + qArrayList_Count(list)};
    }

    Zo::Object<void*> list;
    qPoint3d64f center{7.0, 7.0, 7.0};
    double radius = 7.0;
};

Fit FitPoints(const Points& points, int plane, double percent)
{
    Fit fit(points);
    fit.Run(plane, percent);
    return fit;
}

void ExpectCircle(const Fit& fit, const qPoint3d64f& center, double radius, double tolerance)
{
    EXPECT_NEAR(fit.center.x, center.x, tolerance);
    EXPECT_NEAR(fit.center.y, center.y, tolerance);
    EXPECT_NEAR(fit.center.z, center.z, tolerance);
    EXPECT_NEAR(fit.radius, radius, tolerance);
}

void ExpectNull(const Fit& fit)
{
    ExpectCircle(fit, {kNull, kNull, kNull}, kNull, 0.0);
}

void ExpectSamePoints(const Points& points, const Points& expected)
{
    ASSERT_EQ(points.size(), expected.size());
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        EXPECT_TRUE(points[i].x == expected[i].x && points[i].y == expected[i].y && points[i].z == expected[i].z) << i;
    }
}

/** A noisy circle in x and y about (3, -8); z rises by 1 from point to point. */
Points NoisyCircle(std::size_t count, unsigned seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
    std::normal_distribution<double> deviation(0.0, 0.2);
    Points points(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const double a = angle(random);
        const double r = 20.0 + deviation(random);
        points[i] = {3.0 + r * std::cos(a), -8.0 + r * std::sin(a), static_cast<double>(i)};
    }
    return points;
}

Points WithYAndZExchanged(Points points)
{
    for (qPoint3d64f& point : points)
    {
        std::swap(point.y, point.z);
    }
    return points;
}

TEST(CircleDeprecated, CircleLiesInEitherPlane)
{
    // Centre (1, 2), radius 5; the mean across is 4.
    const Points points{{6.0, 2.0, 3.0}, {1.0, 7.0, 4.0}, {-2.0, -2.0, 5.0}};
    ExpectCircle(FitPoints(points, 0, 0.0), {1.0, 2.0, 4.0}, 5.0, 1e-14);
    for (const int plane : {1, 2, -1})
    {
        ExpectCircle(FitPoints(WithYAndZExchanged(points), plane, 0.0), {1.0, 4.0, 2.0}, 5.0, 1e-14);
    }
}

TEST(CircleDeprecated, OutliersLeaveTheListAndTheMeanAcross)
{
    // Unit circle at 18 places and two outliers, which alone have another z.
    Points points;
    for (int i = 0; i < 18; ++i)
    {
        const double angle = i * 3.141592653589793 / 9.0;
        points.push_back({std::cos(angle), std::sin(angle), 2.0});
    }
    const Points circle = points;
    points.insert(points.begin() + 5, {0.0, 1.5, 100.0});
    points.insert(points.begin() + 11, {-3.0, 0.0, -70.0});
    const Fit fit = FitPoints(points, 0, 10.0);
    ExpectCircle(fit, {0.0, 0.0, 2.0}, 1.0, 1e-14);
    ExpectSamePoints(fit.Kept(), circle);
}

TEST(CircleDeprecated, RejectionsAreThoseOfTheLeastSquaresCircle)
{
    for (unsigned seed = 1; seed <= 10; ++seed)
    {
        const Points points = NoisyCircle(20 * seed, seed);
        std::vector<qPoint64f> flat;
        for (const qPoint3d64f& point : points)
        {
            flat.push_back({point.x, point.y});
        }
        qPoint64f center;
        double radius = 0.0;
        std::vector<qPoint64f> kept;
        const double percent = 9.0 * seed;
        Zvl::FitCircle_LSC(flat.data(), flat.size(), percent, &center, &radius, &kept, nullptr);

        const Fit fit = FitPoints(points, 0, percent);
        const Points left = fit.Kept();
        ASSERT_EQ(left.size(), kept.size());
        double across = 0.0;
        for (std::size_t i = 0; i < left.size(); ++i)
        {
            EXPECT_TRUE(left[i].x == kept[i].x && left[i].y == kept[i].y);
            across += left[i].z; // whole numbers: the mean is exact
        }
        ExpectCircle(fit, {center.x, center.y, across / static_cast<double>(left.size())}, radius, 0.0);

        const Fit turned = FitPoints(WithYAndZExchanged(points), 1, percent);
        ExpectSamePoints(WithYAndZExchanged(turned.Kept()), left);
        ExpectCircle(turned, {fit.center.x, fit.center.z, fit.center.y}, fit.radius, 0.0);
    }
}

TEST(CircleDeprecated, PercentageRejectsAsInTheLeastSquaresCircle)
{
    const Points points = NoisyCircle(100, 3);
    EXPECT_EQ(FitPoints(points, 0, 29.0).Kept().size(), 72U); // 29.0 / 100.0 lies just below 0.29
    EXPECT_EQ(FitPoints(points, 0, -10.0).Kept().size(), 100U);
    EXPECT_EQ(FitPoints(points, 0, std::nan("")).Kept().size(), 100U);
    EXPECT_EQ(FitPoints(points, 0, 1e300).Kept().size(), 3U);
}

TEST(CircleDeprecated, TooFewPointsGiveNulls)
{
    for (std::size_t count = 0; count < 3; ++count)
    {
        const Fit fit = FitPoints(Points(count, {1.0, 2.0, 3.0}), 0, 50.0);
        ExpectNull(fit);
        EXPECT_EQ(fit.Kept().size(), count);
    }
}

TEST(CircleDeprecated, RadiusBeyondFloatGivesNulls)
{
    const Points points{{1e20, 0.0, 1.0}, {-1e20, 0.0, 1.0}, {0.0, 1e20, 1.0}, {0.0, -1e20, 1.0}};
    const Fit fit = FitPoints(points, 0, 25.0);
    ExpectNull(fit);
    EXPECT_EQ(fit.Kept().size(), 4U);
}

TEST(CircleDeprecated, PointsWithoutACircleThrowTheStatusOfTheSolver)
{
    const double nan = std::nan("");
    for (const Points& points :
         {Points{{0.0, 0.0, 1.0}, {1.0, 1.0, 1.0}, {2.0, 2.0, 1.0}, {3.0, 3.0, 1.0}}, Points(5, {0.1, 0.7, 0.2}),
          Points{{0.0, 0.0, 1.0}, {1.0, 0.0, 1.0}, {nan, 1.0, 1.0}, {0.0, 1.0, 1.0}},
          Points{{0.0, 0.0, 1.0}, {1.0, 0.0, 1.0}, {kNull, 1.0, 1.0}, {0.0, 1.0, 1.0}}})
    {
        Fit fit(points);
        TestSupport::ExpectThrow(STATUS_BAD_DATA, kFunction, [&] { fit.Run(0, 25.0); });
        ExpectNull(fit);
        EXPECT_EQ(fit.Kept().size(), points.size());
    }
}

TEST(CircleDeprecated, UnfitArgumentsThrowAndTouchNothing)
{
    Zo::Object<void*> flat;
    Zo::Test(qArrayList_Construct(flat.Slot(), xxqPoint64f_type, 5, nullptr));
    Zo::Object<void*> array;
    Zo::Test(qArray1_Construct(array.Slot(), xxqPoint3d64f_type, 5, nullptr));
    int noObject = 0;
    Fit fit(NoisyCircle(5, 1));
    for (void* list : {flat.Get(), array.Get(), static_cast<void*>(&noObject), static_cast<void*>(nullptr)})
    {
        TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                                 [&] { Zvl::FitCircle_Deprecated(list, 0, 10.0, &fit.center, &fit.radius); });
    }
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                             [&] { Zvl::FitCircle_Deprecated(fit.list, 0, 50.0, nullptr, &fit.radius); });
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                             [&] { Zvl::FitCircle_Deprecated(fit.list, 0, 50.0, &fit.center, nullptr); });
    ExpectCircle(fit, {7.0, 7.0, 7.0}, 7.0, 0.0);
    EXPECT_EQ(fit.Kept().size(), 5U);
}

TEST(CircleDeprecated, ExhaustedMemoryIsThrownAndLeavesTheLastCircle)
{
    // Coordinates as small as these are solved in full for the first circle, and memory is asked for once more behind it.
    Points points = NoisyCircle(30, 3);
    for (qPoint3d64f& point : points)
    {
        point = {point.x * 0x1p-300, point.y * 0x1p-300, point.z};
    }
    const double first = FitPoints(points, 0, 0.0).radius;
    int nulls = 0;
    int circles = 0;
    const auto run = [&]
    {
        Fit fit(points);
        try
        {
            fit.Run(0, 20.0);
        }
        catch (...)
        {
            ++(fit.radius == kNull ? nulls : circles);
            EXPECT_TRUE(fit.radius == kNull || fit.radius == first);
            EXPECT_EQ(fit.Kept().size(), points.size());
            throw;
        }
    };
    EXPECT_GE(TestSupport::ExpectEachFailureThrown({kFunction, ""}, run), 6U); // "" is the list of the test
    EXPECT_GE(nulls, 3);
    EXPECT_GE(circles, 3);
}

} // namespace
