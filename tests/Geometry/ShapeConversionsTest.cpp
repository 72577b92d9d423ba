#include <ZdkVisionLib/Geometry/Geometry.h>

#include "support/ExpectThrow.h"

#include <gtest/gtest.h>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();

} // namespace

TEST(ShapeConversions, ARectangleGetsAFlatZ)
{
    Region3d<double> solid = {9, 9, 9, 9, 9, 9, 9};
    Rect2dTo3d({1, 2, 3, 4, 5}, &solid);
    EXPECT_EQ(solid.x, 1.0);
    EXPECT_EQ(solid.y, 2.0);
    EXPECT_EQ(solid.width, 3.0);
    EXPECT_EQ(solid.height, 4.0);
    EXPECT_EQ(solid.angle, 5.0);
    EXPECT_EQ(solid.z, 0.0);
    EXPECT_EQ(solid.depth, 0.0);
}

TEST(ShapeConversions, ARectangleLosesItsZ)
{
    Region2d<double> flat;
    Rect3dTo2d({1, 2, 3, 4, 5, 6, 7}, &flat);
    EXPECT_EQ(flat.x, 1.0);
    EXPECT_EQ(flat.y, 2.0);
    EXPECT_EQ(flat.width, 3.0);
    EXPECT_EQ(flat.height, 4.0);
    EXPECT_EQ(flat.angle, 5.0);
    Rect3dTo2d(Region3d<double>(), &flat);
    EXPECT_EQ(flat.x, kNull);
}

TEST(ShapeConversions, APolygonReplacesWhatWasThere)
{
    std::vector<Point3d<double>> solid(7);
    Polygon2dTo3d({{1, 2}, {3, kNull}}, &solid);
    ASSERT_EQ(solid.size(), 2U);
    EXPECT_EQ(solid[0].x, 1.0);
    EXPECT_EQ(solid[0].y, 2.0);
    EXPECT_EQ(solid[0].z, 0.0);
    EXPECT_EQ(solid[1].y, kNull);
    EXPECT_EQ(solid[1].z, 0.0);

    std::vector<Point2d<double>> flat(7);
    Polygon3dTo2d({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}, &flat);
    ASSERT_EQ(flat.size(), 3U);
    EXPECT_EQ(flat[2].x, 7.0);
    EXPECT_EQ(flat[2].y, 8.0);

    Polygon2dTo3d({}, &solid);
    Polygon3dTo2d({}, &flat);
    EXPECT_TRUE(solid.empty());
    EXPECT_TRUE(flat.empty());
}

TEST(ShapeConversions, AnAnnularSectorGetsAndLosesItsZ)
{
    AnnularSector3d<double> solid = {9, 9, 9, 9, 9, 9, {9, 9, 9}};
    AnnularSector2dTo3d({1, 2, 3, 4, {5, 6}}, &solid);
    EXPECT_EQ(solid.z, 0.0);
    EXPECT_EQ(solid.depth, 0.0);
    EXPECT_EQ(solid.center.z, 0.0);
    AnnularSector2d<double> flat;
    AnnularSector3dTo2d(solid, &flat);
    EXPECT_EQ(flat.innerRadius, 1.0);
    EXPECT_EQ(flat.outerRadius, 2.0);
    EXPECT_EQ(flat.startAngle, 3.0);
    EXPECT_EQ(flat.angleSpan, 4.0);
    EXPECT_EQ(flat.center.x, 5.0);
    EXPECT_EQ(flat.center.y, 6.0);
}

TEST(ShapeConversions, AnEllipticalSectorGetsAndLosesItsZ)
{
    EllipticalSector3d<double> solid = {9, 9, 9, 9, 9, 9, 9, 9, 9, {9, 9, 9}};
    EllipticalSector2dTo3d({1, 2, 3, 4, 5, 6, 7, {8, 10}}, &solid);
    EXPECT_EQ(solid.z, 0.0);
    EXPECT_EQ(solid.depth, 0.0);
    EXPECT_EQ(solid.center.z, 0.0);
    EllipticalSector2d<double> flat;
    EllipticalSector3dTo2d(solid, &flat);
    EXPECT_EQ(flat.innerHeight, 1.0);
    EXPECT_EQ(flat.innerWidth, 2.0);
    EXPECT_EQ(flat.outerHeight, 3.0);
    EXPECT_EQ(flat.outerWidth, 4.0);
    EXPECT_EQ(flat.startAngle, 5.0);
    EXPECT_EQ(flat.angleSpan, 6.0);
    EXPECT_EQ(flat.rotation, 7.0);
    EXPECT_EQ(flat.center.x, 8.0);
    EXPECT_EQ(flat.center.y, 10.0);
}

TEST(ShapeConversions, ANullOutputThrowsUnderTheFunctionsOwnName)
{
    const auto expectRejected = [](const char* function, auto callable)
    { TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, function, callable); };
    expectRejected("Zvl::Rect2dTo3d", [] { Rect2dTo3d({}, nullptr); });
    expectRejected("Zvl::Rect3dTo2d", [] { Rect3dTo2d({}, nullptr); });
    expectRejected("Zvl::Polygon2dTo3d", [] { Polygon2dTo3d({}, nullptr); });
    expectRejected("Zvl::Polygon3dTo2d", [] { Polygon3dTo2d({}, nullptr); });
    expectRejected("Zvl::AnnularSector2dTo3d", [] { AnnularSector2dTo3d({}, nullptr); });
    expectRejected("Zvl::AnnularSector3dTo2d", [] { AnnularSector3dTo2d({}, nullptr); });
    expectRejected("Zvl::EllipticalSector2dTo3d", [] { EllipticalSector2dTo3d({}, nullptr); });
    expectRejected("Zvl::EllipticalSector3dTo2d", [] { EllipticalSector3dTo2d({}, nullptr); });
}

} // namespace Zvl
