#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Geometry/SectorTest.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace Zvl
{

namespace
{

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/** A point at @p degrees, near a circle of radius 1 about the origin. */
qPoint64f At(double degrees)
{
    return {std::cos(degrees * M_PI / 180.0), std::sin(degrees * M_PI / 180.0)};
}

int RingHas(double startAngle, double angleSpan, const qPoint64f& point)
{
    return CheckPointInAnnularSector(AnnularSector2d<double>{0, 2, startAngle, angleSpan, {0, 0}}, point);
}

int WholeRingHas(double innerRadius, double outerRadius, const qPoint64f& point)
{
    return CheckPointInAnnularSector(AnnularSector2d<double>{innerRadius, outerRadius, 0, 360, {0, 0}}, point);
}

/** innerHeight 2, innerWidth 4, outerHeight 6, outerWidth 12. */
EllipticalSector2d<double> Ellipse(double rotation, double startAngle = 0, double angleSpan = 360)
{
    return {2, 4, 6, 12, startAngle, angleSpan, rotation, {10, 20}};
}

int EllipseHas(const EllipticalSector2d<double>& sector, double dx, double dy)
{
    return CheckPointInEllipticalSector(sector, qPoint64f{10 + dx, 20 + dy});
}

/** The angle test in one piece. */
bool NaiveAngleTest(double y, double x, double startAngle, double angleSpan)
{
    if (std::fabs(angleSpan) >= 360.0)
    {
        return true;
    }
    double angle = std::atan2(y, x) * 180.0 / M_PI;
    angle += angle < 0.0 ? 360.0 : 0.0;
    if (angleSpan < 0.0)
    {
        startAngle += angleSpan;
        angleSpan *= -1.0;
    }
    startAngle = std::fmod(startAngle, 360.0);
    startAngle += startAngle < 0.0 ? 360.0 : 0.0;
    const double end = startAngle + angleSpan;
    if (end <= 360.0)
    {
        return !(angle < startAngle || angle > end);
    }
    return !(angle < startAngle && angle > end - 360.0);
}

} // namespace

// ---------------------------------------------------------------------------------------------------------
// Rings

TEST(CheckPointInAnnularSector, BothCirclesBelongToTheRing)
{
    EXPECT_EQ(WholeRingHas(5, 10, {3, 4}), 1);
    EXPECT_EQ(WholeRingHas(5, 10, {6, -8}), 1);
    EXPECT_EQ(WholeRingHas(5, 10, {3, 3.999}), 0);
    EXPECT_EQ(WholeRingHas(5, 10, {6, -8.001}), 0);
    EXPECT_EQ(WholeRingHas(5, 5, {0, 5}), 1);
}

TEST(CheckPointInAnnularSector, TheCenterIsTheOriginOfTheRing)
{
    const AnnularSector2d<double> sector = {1, 2, 0, 90, {100, -50}};
    EXPECT_EQ(CheckPointInAnnularSector(sector, qPoint64f{101, -49}), 1);
    EXPECT_EQ(CheckPointInAnnularSector(sector, qPoint64f{99, -51}), 0);
    EXPECT_EQ(CheckPointInAnnularSector(sector, qPoint64f{1, 1}), 0);
}

/** The defining rule of a ring without ends about the origin. */
bool IsInRingByQuotients(double innerRadius, double outerRadius, const qPoint64f& point)
{
    const double squaredDistance = point.x * point.x + point.y * point.y;
    return !(squaredDistance / (innerRadius * innerRadius) < 1.0) &&
           !(squaredDistance / (outerRadius * outerRadius) > 1.0);
}

TEST(CheckPointInAnnularSector, ComparesTheQuotientsOfSquaresWithOne)
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> exponent(-545.0, 520.0); // squares from subnormal numbers to infinity
    int inside = 0;
    int outside = 0;
    for (int round = 0; round < 20000; ++round)
    {
        const double radius = std::exp2(exponent(random));
        const double away = round % 2 == 0 ? 0.0 : kInfinity;
        qPoint64f point = {radius, 0.0};
        for (int step = 0; step < 3; ++step, point.x = std::nextafter(point.x, away))
        {
            for (const auto& [inner, outer] : {std::pair(radius, 1e300), std::pair(0.0, radius)})
            {
                const bool expected = IsInRingByQuotients(inner, outer, point);
                EXPECT_EQ(WholeRingHas(inner, outer, point), expected ? 1 : 0) << radius << ", " << step;
                ++(expected ? inside : outside);
            }
        }
    }
    EXPECT_GT(inside, 20000);
    EXPECT_GT(outside, 20000);
    const double extremes[] = {0.0, 5e-324, 1e-200, 1.0, 1e200, kInfinity, kNotANumber};
    for (const double inner : extremes)
    {
        for (const double outer : extremes)
        {
            for (const double x : extremes)
            {
                EXPECT_EQ(WholeRingHas(inner, outer, {x, 0.0}), IsInRingByQuotients(inner, outer, {x, 0.0}) ? 1 : 0)
                    << inner << ", " << outer << ", " << x;
            }
        }
    }
}

TEST(CheckPointInAnnularSector, AnInnerRadiusOfZeroExcludesNothing)
{
    EXPECT_EQ(WholeRingHas(0, 2, {0, 0}), 1);
    EXPECT_EQ(WholeRingHas(0, 2, {1, 0}), 1);
}

TEST(CheckPointInAnnularSector, AnOuterRadiusOfZeroLeavesTheCenter)
{
    EXPECT_EQ(WholeRingHas(0, 0, {0, 0}), 1);
    EXPECT_EQ(WholeRingHas(0, 0, {1e-9, 0}), 0);
}

TEST(CheckPointInAnnularSector, RadiiAreSquared)
{
    EXPECT_EQ(WholeRingHas(-5, -10, {6, 0}), 1);
    EXPECT_EQ(WholeRingHas(-5, -10, {4, 0}), 0);
    EXPECT_EQ(WholeRingHas(-5, -10, {11, 0}), 0);
}

TEST(CheckPointInAnnularSector, ValuesThatAreNotNumbersExcludeNothing)
{
    EXPECT_EQ(WholeRingHas(kNotANumber, kNotANumber, {1, 1}), 1);
    EXPECT_EQ(WholeRingHas(1, 2, {kNotANumber, 0}), 1);
    EXPECT_EQ(RingHas(kNotANumber, 10, At(90)), 1);
    EXPECT_EQ(RingHas(10, kNotANumber, At(90)), 1);
    EXPECT_EQ(RingHas(kInfinity, 10, At(90)), 1);
    EXPECT_EQ(RingHas(0, 10, {kNotANumber, 0}), 1);
    EXPECT_EQ(WholeRingHas(1, 2, {kInfinity, 0}), 0);
    EXPECT_EQ(CheckPointInAnnularSector(AnnularSector2d<double>(), qPoint64f{0, 0}), 0);
}

// ---------------------------------------------------------------------------------------------------------
// Angles

TEST(AngleTest, BothEndsBelongToTheRange)
{
    EXPECT_EQ(RingHas(0, 90, {1, 0}), 1);
    EXPECT_EQ(RingHas(0, 90, {0, 1}), 1);
    EXPECT_EQ(RingHas(0, 90, At(90.001)), 0);
    EXPECT_EQ(RingHas(0, 90, At(-0.001)), 0);
    EXPECT_EQ(RingHas(90, 0, {0, 1}), 1);
    EXPECT_EQ(RingHas(90, 0, At(91)), 0);
}

TEST(AngleTest, ARangeMayPassTheXAxis)
{
    EXPECT_EQ(RingHas(350, 20, At(5)), 1);
    EXPECT_EQ(RingHas(350, 20, At(0)), 1);
    EXPECT_EQ(RingHas(350, 20, At(355)), 1);
    EXPECT_EQ(RingHas(350, 20, At(11)), 0);
    EXPECT_EQ(RingHas(350, 20, At(349)), 0);
    EXPECT_EQ(RingHas(350, 20, At(180)), 0);
}

TEST(AngleTest, ARangeThatEndsAt360LeavesOutTheXAxis)
{
    // The direction of the X axis is 0 degrees, never 360.
    EXPECT_EQ(RingHas(270, 90, {1, 0}), 0);
    EXPECT_EQ(RingHas(270, 90, {1, -0.0}), 0);
    EXPECT_EQ(RingHas(270, 90.0000001, {1, 0}), 1);
    EXPECT_EQ(RingHas(270, 90, {0, -1}), 1);
    EXPECT_EQ(RingHas(270, 90, At(359.999)), 1);
    EXPECT_EQ(RingHas(360, 10, {1, 0}), 1);
}

TEST(AngleTest, ANegativeSpanReachesBack)
{
    for (const double degrees : {350.5, 355.0, 0.0, 9.5})
    {
        EXPECT_EQ(RingHas(10, -20, At(degrees)), 1) << degrees;
    }
    EXPECT_EQ(RingHas(10, -20, At(11)), 0);
    EXPECT_EQ(RingHas(10, -20, At(349)), 0);
}

TEST(AngleTest, AFullSpanCoversEverything)
{
    for (const double span : {360.0, -360.0, 400.0, -1e9, kInfinity})
    {
        for (const double degrees : {0.0, 90.0, 200.0, 359.0})
        {
            EXPECT_EQ(RingHas(77, span, At(degrees)), 1);
        }
    }
    EXPECT_EQ(RingHas(10, 359, At(9.5)), 0);
}

TEST(AngleTest, TheStartIsTakenModuloAFullTurn)
{
    for (const double start : {45.0, 405.0, -315.0, 3645.0, -3555.0})
    {
        EXPECT_EQ(RingHas(start, 10, At(50)), 1) << start;
        EXPECT_EQ(RingHas(start, 10, At(44)), 0) << start;
        EXPECT_EQ(RingHas(start, 10, At(56)), 0) << start;
    }
}

TEST(AngleTest, DirectionsCloseToAnEndAreMeasured)
{
    std::mt19937_64 random(52);
    std::uniform_real_distribution<double> degrees(-400.0, 400.0);
    std::uniform_int_distribution<int> exponents(-17, -5);
    int inside = 0;
    for (int round = 0; round < 20000; ++round)
    {
        const double start = degrees(random);
        const double span = degrees(random);
        const SectorAngles angles = NormalizeSectorAngles(start, span);
        const double beside = std::pow(10.0, exponents(random)) * (round % 2 == 0 ? 1.0 : -1.0);
        const double angle = (round % 4 < 2 ? angles.start : angles.end) * M_PI / 180.0 + beside;
        const double length = std::pow(10.0, exponents(random) * 20 % 330);
        const double x = length * std::cos(angle);
        const double y = length * std::sin(angle);
        const bool expected = NaiveAngleTest(y, x, start, span);
        ASSERT_EQ(AngleIsInSector(SectorDirections(angles), y, x), expected) << start << " " << span << " " << beside;
        inside += expected ? 1 : 0;
    }
    EXPECT_GT(inside, 5000);
    EXPECT_LT(inside, 19000);
}

TEST(AngleTest, PreparedAnglesGiveTheSameAnswersAsTheTestInOnePiece)
{
    std::mt19937_64 random(51);
    std::uniform_real_distribution<double> coordinates(-1.0, 1.0);
    std::uniform_int_distribution<int> steps(-80, 80);
    std::uniform_int_distribution<int> directions(-3, 3);
    int inside = 0;
    for (int round = 0; round < 20000; ++round)
    {
        const double start = 15.0 * steps(random);
        const double span = 7.5 * steps(random);
        const bool onGrid = round % 2 == 0;
        const double x = onGrid ? directions(random) : coordinates(random);
        const double y = onGrid ? directions(random) : coordinates(random);
        const bool expected = NaiveAngleTest(y, x, start, span);
        EXPECT_EQ(AngleIsInSector(y, x, start, span), expected);
        EXPECT_EQ(AngleIsInSector(NormalizeSectorAngles(start, span), y, x), expected);
        EXPECT_EQ(AngleIsInSector(SectorDirections(NormalizeSectorAngles(start, span)), y, x), expected);
        inside += expected ? 1 : 0;
    }
    EXPECT_GT(inside, 5000);
    EXPECT_LT(inside, 19000);
}

// ---------------------------------------------------------------------------------------------------------
// Ellipses

TEST(CheckPointInEllipticalSector, BothEllipsesBelongToTheSector)
{
    EXPECT_EQ(EllipseHas(Ellipse(0), 2, 0), 1);
    EXPECT_EQ(EllipseHas(Ellipse(0), 1.999, 0), 0);
    EXPECT_EQ(EllipseHas(Ellipse(0), 6, 0), 1);
    EXPECT_EQ(EllipseHas(Ellipse(0), 6.001, 0), 0);
    EXPECT_EQ(EllipseHas(Ellipse(0), 0, 1), 1);
    EXPECT_EQ(EllipseHas(Ellipse(0), 0, 0.999), 0);
    EXPECT_EQ(EllipseHas(Ellipse(0), 0, -3), 1);
    EXPECT_EQ(EllipseHas(Ellipse(0), 0, -3.001), 0);
}

TEST(CheckPointInEllipticalSector, TheRotationTurnsTheEllipse)
{
    EXPECT_EQ(EllipseHas(Ellipse(90), 0, 5.9), 1);
    EXPECT_EQ(EllipseHas(Ellipse(90), 5.9, 0), 0);
    // At 30 degrees the long axis points to (cos 30, sin 30).
    EXPECT_EQ(EllipseHas(Ellipse(30), 5.9 * std::cos(M_PI / 6), 5.9 * std::sin(M_PI / 6)), 1);
    EXPECT_EQ(EllipseHas(Ellipse(-30), 5.9 * std::cos(M_PI / 6), 5.9 * std::sin(M_PI / 6)), 0);
}

TEST(CheckPointInEllipticalSector, AnglesArePlainAnglesInTheEllipsesFrame)
{
    // The direction (3, 1) is 18.4 degrees; the ellipse's parameter there would be 33.7 degrees.
    EXPECT_EQ(EllipseHas(Ellipse(0, 0, 20), 3, 1), 1);
    EXPECT_EQ(EllipseHas(Ellipse(0, 0, 18), 3, 1), 0);
    EXPECT_EQ(EllipseHas(Ellipse(90, 0, 20), -1, 3), 1);
    EXPECT_EQ(EllipseHas(Ellipse(90, 0, 18), -1, 3), 0);
    EXPECT_EQ(EllipseHas(Ellipse(90, 90, 20), -1, 3), 0);
}

TEST(CheckPointInEllipticalSector, AxesOfZeroExcludeNothingInsideAndAllButTheCenterOutside)
{
    const EllipticalSector2d<double> solid = {0, 0, 6, 12, 0, 360, 0, {10, 20}};
    EXPECT_EQ(EllipseHas(solid, 0, 0), 1);
    EXPECT_EQ(EllipseHas(solid, 1, 1), 1);
    EXPECT_EQ(EllipseHas(solid, 0, 1), 1);
    const EllipticalSector2d<double> nothing = {0, 0, 0, 0, 0, 360, 0, {10, 20}};
    EXPECT_EQ(EllipseHas(nothing, 0, 0), 1);
    EXPECT_EQ(EllipseHas(nothing, 1, 1), 0);
    // One zero axis: 0 / 0 on it is not a number, and excludes nothing.
    const EllipticalSector2d<double> needle = {0, 0, 6, 0, 0, 360, 0, {10, 20}};
    EXPECT_EQ(EllipseHas(needle, 0, 100), 1);
    EXPECT_EQ(EllipseHas(needle, 1, 0), 0);
}

TEST(CheckPointInEllipticalSector, EqualAxesGiveTheRing)
{
    std::mt19937_64 random(52);
    std::uniform_real_distribution<double> coordinates(-4.0, 4.0);
    std::uniform_real_distribution<double> angles(-400.0, 400.0);
    int inside = 0;
    for (int round = 0; round < 5000; ++round)
    {
        const double start = angles(random);
        const double span = angles(random);
        const double rotation = angles(random);
        const qPoint64f point = {coordinates(random), coordinates(random)};
        const EllipticalSector2d<double> ellipse = {2, 2, 6, 6, start, span, rotation, {0.5, 0.25}};
        const AnnularSector2d<double> ring = {1, 3, start + rotation, span, {0.5, 0.25}};
        const int expected = CheckPointInAnnularSector(ring, point);
        EXPECT_EQ(CheckPointInEllipticalSector(ellipse, point), expected);
        inside += expected;
    }
    EXPECT_GT(inside, 500);
}

TEST(CheckPointInEllipticalSector, PreparedValuesGiveTheSameAnswer)
{
    std::mt19937_64 random(53);
    std::uniform_int_distribution<int> coordinates(-14, 14);
    for (int round = 0; round < 5000; ++round)
    {
        const EllipticalSector2d<double> sector =
            Ellipse(15.0 * coordinates(random), 15.0 * coordinates(random), 30.0 * coordinates(random));
        const qPoint64f point = {10.0 + 0.5 * coordinates(random), 20.0 + 0.5 * coordinates(random)};
        const SectorAngles angles = NormalizeSectorAngles(sector.startAngle, sector.angleSpan);
        const double a = -sector.rotation * 3.141592653589793 / 180.0;
        EXPECT_EQ(PointIsInEllipticalSector(sector, angles, std::cos(a), std::sin(a), point.x, point.y) ? 1 : 0,
                  CheckPointInEllipticalSector(sector, point));
    }
}

// ---------------------------------------------------------------------------------------------------------
// Ranges along Z

TEST(PointTests3d, ZIsReadOnlyWhenAsked)
{
    const AnnularSector3d<double> ring = {1, 2, 0, 360, 5, 3, {0, 0, 99}};
    const EllipticalSector3d<double> ellipse = {2, 2, 4, 4, 0, 360, 0, 5, 3, {0, 0, 99}};
    for (const auto& [z, expected] : {std::pair(4.999, 0), std::pair(5.0, 1), std::pair(6.0, 1), std::pair(8.0, 1),
                                      std::pair(8.001, 0), std::pair(kNotANumber, 1), std::pair(kInfinity, 0)})
    {
        const qPoint3d64f inside = {1.5, 0, z};
        const qPoint3d64f outside = {2.5, 0, z};
        EXPECT_EQ(CheckPointInAnnularSector(ring, inside, 1), expected) << z;
        EXPECT_EQ(CheckPointInEllipticalSector(ellipse, inside, -1), expected) << z;
        EXPECT_EQ(CheckPointInAnnularSector(ring, inside, 0), 1) << z;
        EXPECT_EQ(CheckPointInEllipticalSector(ellipse, inside, 0), 1) << z;
        EXPECT_EQ(CheckPointInAnnularSector(ring, outside, 0), 0) << z;
        EXPECT_EQ(CheckPointInEllipticalSector(ellipse, outside, 1), 0) << z;
    }
}

TEST(PointTests3d, AllFieldsOfThePlaneCount)
{
    const AnnularSector3d<double> ring = {1, 2, 350, 20, 0, 0, {10, 20, 0}};
    EXPECT_EQ(CheckPointInAnnularSector(ring, {11.5, 20, 0}, 1), 1);
    EXPECT_EQ(CheckPointInAnnularSector(ring, {8.5, 20, 0}, 1), 0);
    const EllipticalSector3d<double> ellipse = {2, 4, 6, 12, 0, 20, 90, 0, 0, {10, 20, 0}};
    EXPECT_EQ(CheckPointInEllipticalSector(ellipse, {9, 23, 0}, 1), 1);
    EXPECT_EQ(CheckPointInEllipticalSector(ellipse, {13, 21, 0}, 1), 0);
}

} // namespace Zvl
