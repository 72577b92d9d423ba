#include <ZdkVisionLib/Alignment/Anchor.h>

#include "support/ExpectThrow.h"

#include <gtest/gtest.h>

#include <vector>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();
constexpr double kTolerance = 1e-12;

// Centre (4, 2): a quarter turn carries it to (-2, 4).
constexpr Region2d<double> kRectangle = {2, 1, 4, 2, 15};
constexpr Region3d<double> kBox = {2, 1, 4, 2, 15, 5, 6};

struct Case
{
    Anchor anchor;
    double x; ///< corner of the moved rectangle
    double y;
    double centerX; ///< what becomes of a centre at (4, 2)
    double centerY;
    double turn;
};

const std::vector<Case> kCases = {
    {{kNull, kNull, kNull, kNull}, 2, 1, 4, 2, 0}, {{10, kNull, kNull, kNull}, 12, 1, 14, 2, 0},
    {{kNull, 20, kNull, kNull}, 2, 21, 4, 22, 0},  {{10, 20, kNull, kNull}, 12, 21, 14, 22, 0},
    {{kNull, kNull, kNull, 90}, 2, 1, 4, 2, 90},   {{10, kNull, kNull, 90}, 12, 1, 14, 2, 90},
    {{kNull, 20, kNull, 90}, 2, 21, 4, 22, 90},    {{10, 20, kNull, 90}, 6, 23, 8, 24, 90},
    {{0, 0, kNull, 90}, -4, 3, -2, 4, 90},
};

Anchor WithZ(Anchor anchor)
{
    anchor.z = 30;
    return anchor;
}

void ExpectBox(const Region3d<double>& box, const Case& expected, double z)
{
    EXPECT_NEAR(box.x, expected.x, kTolerance);
    EXPECT_NEAR(box.y, expected.y, kTolerance);
    EXPECT_EQ(box.width, 4.0);
    EXPECT_EQ(box.height, 2.0);
    EXPECT_EQ(box.angle, 15.0 + expected.turn);
    EXPECT_EQ(box.z, z);
    EXPECT_EQ(box.depth, 6.0);
}

template <typename Center>
void ExpectCenter(const Center& center, const Case& expected)
{
    EXPECT_NEAR(center.x, expected.centerX, kTolerance);
    EXPECT_NEAR(center.y, expected.centerY, kTolerance);
}

} // namespace

TEST(AnchorRectangle, MovesByWhatIsNotNull)
{
    for (const Case& expected : kCases)
    {
        Region2d<double> moved;
        AnchorRectangle(expected.anchor, kRectangle, &moved);
        EXPECT_NEAR(moved.x, expected.x, kTolerance);
        EXPECT_NEAR(moved.y, expected.y, kTolerance);
        EXPECT_EQ(moved.width, 4.0);
        EXPECT_EQ(moved.height, 2.0);
        EXPECT_EQ(moved.angle, 15.0 + expected.turn);
    }
}

TEST(AnchorSurfaceRegion, MovesByWhatIsNotNull)
{
    for (const Case& expected : kCases)
    {
        Region3d<double> moved;
        AnchorSurfaceRegion(expected.anchor, &kBox, &moved);
        ExpectBox(moved, expected, 5.0);
        AnchorSurfaceRegion(WithZ(expected.anchor), &kBox, &moved);
        ExpectBox(moved, expected, 35.0);
        AnchorRectangle(WithZ(expected.anchor), kBox, &moved);
        ExpectBox(moved, expected, 35.0);
    }
}

TEST(AnchorRectangle, ANullAngleOfTheRectangleStaysNull)
{
    Region2d<double> rectangle = kRectangle;
    rectangle.angle = kNull;
    AnchorRectangle(Anchor{10, 20, kNull, 90}, rectangle, &rectangle);
    EXPECT_NEAR(rectangle.x, 6.0, kTolerance);
    EXPECT_EQ(rectangle.angle, kNull);

    Region3d<double> box = kBox;
    box.angle = kNull;
    AnchorSurfaceRegion(Anchor{10, 20, 30, 90}, &box, &box);
    EXPECT_EQ(box.angle, kNull);
    EXPECT_EQ(box.z, 35.0);
}

TEST(AnchorRectangle, MovesInPlace)
{
    Region2d<double> rectangle = kRectangle;
    AnchorRectangle(Anchor{10, 20, kNull, 90}, rectangle, &rectangle);
    EXPECT_NEAR(rectangle.x, 6.0, kTolerance);
    EXPECT_NEAR(rectangle.y, 23.0, kTolerance);
    EXPECT_EQ(rectangle.angle, 105.0);
}

TEST(AnchorAnnularSector, MovesTheCenterAndTheStartAngle)
{
    for (const Case& expected : kCases)
    {
        const AnnularSector2d<double> flat = {1, 2, 350, -60, {4, 2}};
        AnnularSector2d<double> moved;
        AnchorAnnularSector(expected.anchor, flat, &moved);
        ExpectCenter(moved.center, expected);
        EXPECT_EQ(moved.innerRadius, 1.0);
        EXPECT_EQ(moved.outerRadius, 2.0);
        EXPECT_EQ(moved.startAngle, 350.0 + expected.turn);
        EXPECT_EQ(moved.angleSpan, -60.0);

        AnnularSector3d<double> solid = {1, 2, 350, -60, 7, 8, {4, 2, 9}};
        AnchorAnnularSector(WithZ(expected.anchor), solid, &solid);
        ExpectCenter(solid.center, expected);
        EXPECT_EQ(solid.center.z, 39.0);
        EXPECT_EQ(solid.z, 7.0);
        EXPECT_EQ(solid.depth, 8.0);
        EXPECT_EQ(solid.outerRadius, 2.0);
        EXPECT_EQ(solid.startAngle, 350.0 + expected.turn);
    }
}

TEST(AnchorEllipticalSector, MovesTheCenterAndTheRotation)
{
    for (const Case& expected : kCases)
    {
        const EllipticalSector2d<double> flat = {1, 2, 3, 4, 350, -60, 15, {4, 2}};
        EllipticalSector2d<double> moved;
        AnchorEllipticalSector(expected.anchor, flat, &moved);
        ExpectCenter(moved.center, expected);
        EXPECT_EQ(moved.innerHeight, 1.0);
        EXPECT_EQ(moved.innerWidth, 2.0);
        EXPECT_EQ(moved.outerHeight, 3.0);
        EXPECT_EQ(moved.outerWidth, 4.0);
        EXPECT_EQ(moved.startAngle, 350.0);
        EXPECT_EQ(moved.angleSpan, -60.0);
        EXPECT_EQ(moved.rotation, 15.0 + expected.turn);

        EllipticalSector3d<double> solid = {1, 2, 3, 4, 350, -60, 15, 7, 8, {4, 2, 9}};
        AnchorEllipticalSector(WithZ(expected.anchor), solid, &solid);
        ExpectCenter(solid.center, expected);
        EXPECT_EQ(solid.center.z, 39.0);
        EXPECT_EQ(solid.z, 7.0);
        EXPECT_EQ(solid.depth, 8.0);
        EXPECT_EQ(solid.outerWidth, 4.0);
        EXPECT_EQ(solid.startAngle, 350.0);
        EXPECT_EQ(solid.rotation, 15.0 + expected.turn);
    }
}

TEST(AnchorShapes, AnAnchorOfNullsKeepsNullsInTheShape)
{
    const AnnularSector2d<double> ring;
    AnnularSector2d<double> movedRing = {1, 2, 3, 4, {5, 6}};
    AnchorAnnularSector(Anchor(), ring, &movedRing);
    EXPECT_EQ(movedRing.center.x, kNull);
    EXPECT_EQ(movedRing.startAngle, 0.0);

    EllipticalSector3d<double> ellipse;
    ellipse.rotation = kNull;
    AnchorEllipticalSector(Anchor{kNull, kNull, kNull, 45}, ellipse, &ellipse);
    EXPECT_EQ(ellipse.center.z, kNull);
    EXPECT_EQ(ellipse.rotation, kNull);
}

TEST(AnchorShapes, NullPointersAreRejected)
{
    const Anchor anchor = {10, 20, 30, 90};
    Region3d<double> box = kBox;
    const auto expectRejected = [](const char* function, auto callable)
    { TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, function, callable); };
    expectRejected("Zvl::AnchorSurfaceRegion", [&] { AnchorSurfaceRegion(anchor, nullptr, &box); });
    expectRejected("Zvl::AnchorSurfaceRegion", [&] { AnchorSurfaceRegion(anchor, &box, nullptr); });
    expectRejected("Zvl::AnchorRectangle", [&] { AnchorRectangle(anchor, kRectangle, nullptr); });
    expectRejected("Zvl::AnchorRectangle", [&] { AnchorRectangle(anchor, kBox, nullptr); });
    expectRejected("Zvl::AnchorAnnularSector",
                   [&] { AnchorAnnularSector(anchor, AnnularSector2d<double>(), nullptr); });
    expectRejected("Zvl::AnchorAnnularSector",
                   [&] { AnchorAnnularSector(anchor, AnnularSector3d<double>(), nullptr); });
    expectRejected("Zvl::AnchorEllipticalSector",
                   [&] { AnchorEllipticalSector(anchor, EllipticalSector2d<double>(), nullptr); });
    expectRejected("Zvl::AnchorEllipticalSector",
                   [&] { AnchorEllipticalSector(anchor, EllipticalSector3d<double>(), nullptr); });
    EXPECT_EQ(box.x, 2.0);
}

} // namespace Zvl
