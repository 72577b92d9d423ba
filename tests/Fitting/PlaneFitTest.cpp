#include <ZdkVisionLib/Fitting/Fit.h>

#include "FittingSupport.h"

#include <cmath>
#include <limits>

namespace
{

using namespace FittingSupport;

constexpr double kNull = Zvl::GetNull<double>();
constexpr qPlane3d64f kUntouched{{7.0, 7.0, 7.0}, {7.0, 7.0, 7.0}};

qPlane3d64f Fit(const Zvl::Surface& surface, const Zvl::Rect2d<int>& rect, const Zo::Object<void*>& mask)
{
    qPlane3d64f plane = kUntouched;
    Zvl::FitPlane(surface, rect, mask.Get(), &plane);
    return plane;
}

void ExpectNull(const qPlane3d64f& plane)
{
    for (const double field :
         {plane.point.x, plane.point.y, plane.point.z, plane.normal.x, plane.normal.y, plane.normal.z})
    {
        EXPECT_EQ(field, kNull);
    }
}

void ExpectNear(const qPoint3d64f& point, const qPoint3d64f& expected, double tolerance)
{
    EXPECT_NEAR(point.x, expected.x, tolerance);
    EXPECT_NEAR(point.y, expected.y, tolerance);
    EXPECT_NEAR(point.z, expected.z, tolerance);
}

TEST(FitPlane, FourCellsOfASlopeGiveItsPlane)
{
    // Heights column + row on a grid of 1: z = x + y.
    const qPlane3d64f plane = Fit(MakeSurface(2, 2, {0, 1, 1, 2}), {0, 0, 2, 2}, FullMask(2, 2));
    ExpectNear(plane.point, {0.5, 0.5, 1.0}, 1e-15);
    ExpectNear(plane.normal, {-1.0 / std::sqrt(3.0), -1.0 / std::sqrt(3.0), 1.0 / std::sqrt(3.0)}, 1e-15);
}

TEST(FitPlane, ScaleAndOffsetMapThePlaneToTheWorld)
{
    // z = 0.5 * h - 3 with h = 2 * column, x = 0.25 * column + 10: a slope of 4 along x.
    const qPlane3d64f plane =
        Fit(MakeSurface(2, 3, {0, 2, 4, 0, 2, 4}, {0.25, 2.0, 0.5}, {10.0, 20.0, -3.0}), {0, 0, 3, 2}, FullMask(2, 3));
    ExpectNear(plane.point, {10.25, 21.0, -2.0}, 1e-14);
    ExpectNear(plane.normal, {-4.0 / std::sqrt(17.0), 0.0, 1.0 / std::sqrt(17.0)}, 1e-14);
}

TEST(FitPlane, OnlySelectedCellsOfTheRectangleCount)
{
    // The 3 x 2 rectangle at column 1, row 1 is flat at 6, but for one cell that its mask leaves out.
    const Zvl::Surface surface = MakeSurface(3, 4,
                                             {90, 80, 70, 60, //
                                              50, 6, 6, 6,    //
                                              40, 6, -32768, 6});
    const qPlane3d64f plane = Fit(surface, {1, 1, 3, 2}, MakeMask(2, 3, {255, 1, 7, 1, 0, 1}));
    ExpectNear(plane.point, {2.0, 1.4, 6.0}, 1e-14);
    ExpectNear(plane.normal, {0.0, 0.0, 1.0}, 1e-14);
}

TEST(FitPlane, FourCellsSufficeAndThreeDoNot)
{
    const Zvl::Surface surface = MakeSurface(2, 2, {1, 1, 1, 1});
    ExpectNear(Fit(surface, {0, 0, 2, 2}, FullMask(2, 2)).normal, {0.0, 0.0, 1.0}, 1e-15);
    ExpectNull(Fit(surface, {0, 0, 2, 2}, MakeMask(2, 2, {1, 0, 1, 1})));
    ExpectNull(Fit(surface, {0, 0, 2, 2}, MakeMask(2, 2, {0, 0, 0, 0})));
}

TEST(FitPlane, VerticalPlaneHasItsNormalNegated)
{
    // One column: the scatter along x is exactly 0, so that the x axis itself is the smallest direction.
    const qPlane3d64f plane = Fit(MakeSurface(4, 1, {0, 10, 5, 20}), {0, 0, 1, 4}, FullMask(4, 1));
    EXPECT_EQ(plane.normal.x, -1.0);
    EXPECT_EQ(plane.normal.y, 0.0);
    EXPECT_EQ(plane.normal.z, 0.0);
}

TEST(FitPlane, MeanOfManyCellsIsThatOfTheHalvedSums)
{
    // 8281 cells of height -1 are one halving: 4140 cells, Σx = 372645 becomes 186322, Σh = -8281 becomes
    // -4141.
    const qPlane3d64f plane =
        Fit(MakeSurface(91, 91, std::vector<std::int16_t>(91 * 91, -1)), {0, 0, 91, 91}, FullMask(91, 91));
    EXPECT_EQ(plane.point.x, 186322.0 * (1.0 / 4140.0));
    EXPECT_EQ(plane.point.y, 186322.0 * (1.0 / 4140.0));
    EXPECT_EQ(plane.point.z, -4141.0 * (1.0 / 4140.0));
    ExpectNear(plane.normal, {0.0, 0.0, 1.0}, 1e-8);
}

TEST(FitPlane, TiltedPlanesAreFoundFromGentleToSteepAndNearTheEndsOfTheRange)
{
    for (const double tilt : {0.0, 1e-3, 0.1, 1.0, 20.0})
    {
        for (const double base : {-31900.0, 0.0, 31900.0})
        {
            constexpr int size = 40;
            const double slope = base > 0.0 ? -tilt : tilt;
            std::vector<std::int16_t> heights;
            for (int row = 0; row < size; ++row)
            {
                for (int column = 0; column < size; ++column)
                {
                    heights.push_back(static_cast<std::int16_t>(std::lround(base + slope * (column - row))));
                }
            }
            const qPlane3d64f plane = Fit(MakeSurface(size, size, heights), {0, 0, size, size}, FullMask(size, size));
            SCOPED_TRACE(testing::Message() << "tilt " << tilt << ", base " << base);
            const double length = std::sqrt(1.0 + 2.0 * slope * slope);
            // Rounding to counts moves a cell by half a count at most.
            ExpectNear(plane.normal, {-slope / length, slope / length, 1.0 / length}, 5e-3);
        }
    }
}

TEST(FitPlane, NullPlaneDoesNothing)
{
    EXPECT_NO_THROW(Zvl::FitPlane(MakeSurface(2, 2, {0, 1, 1, 2}), {0, 0, 2, 2}, FullMask(2, 2).Get(), nullptr));
}

TEST(FitPlane, UnfitInputLeavesThePlaneNull)
{
    for (const UnfitInput& input : UnfitInputs())
    {
        SCOPED_TRACE(input.what);
        ExpectNull(Fit(input.surface, input.rect, input.mask));
    }
}

TEST(FitPlane, MappingWithoutMeaningStillEnds)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double scale : {0.0, kNull, infinity, std::nan(""), 1e200})
    {
        const Zvl::Surface surface =
            MakeSurface(2, 3, {0, 9, 1, -32768, 4, 2}, {scale, scale, scale}, {kNull, infinity, 0.0});
        EXPECT_NO_THROW(Fit(surface, {0, 0, 3, 2}, FullMask(2, 3)));
    }
}

} // namespace
