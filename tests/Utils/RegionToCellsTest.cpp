#include <ZdkVisionLib/Utils/Utils.h>

#include "support/Surfaces.h"

#include <climits>
#include <cmath>
#include <ostream>

namespace Zvl
{

static bool operator==(const RunLength<int>& a, const RunLength<int>& b)
{
    return a.start == b.start && a.length == b.length;
}

static std::ostream& operator<<(std::ostream& out, const RunLength<int>& run)
{
    return out << run.start << " + " << run.length;
}

static bool operator==(const Rect2d<int>& a, const Rect2d<int>& b)
{
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

static std::ostream& operator<<(std::ostream& out, const Rect2d<int>& rect)
{
    return out << "(" << rect.x << ", " << rect.y << ") " << rect.width << " x " << rect.height;
}

} // namespace Zvl

namespace
{

using namespace Zvl;
using TestSupport::kNull;

RunLength<int> RunOf(double start, double length, bool clip = false, std::size_t cells = 10, double offset = 0.0,
                     double scale = 1.0)
{
    const RunLength<double> region = {start, length};
    RunLength<int> result = {-77, -77};
    GetRegionPixel(cells, offset, scale, &region, &result, nullptr, clip ? 1 : 0);
    return result;
}

RunLength<int> RunWithTolerance(double start, double length, double tolerance)
{
    const RunLength<double> region = {start, length};
    RunLength<int> result = {-77, -77};
    GetRegionPixel(10, 0.0, 1.0, &region, &result, &tolerance, 0);
    return result;
}

Rect2d<int> Plane(const Region2d<double>& region, int clip, std::size_t width = 10, std::size_t height = 8)
{
    Rect2d<int> result = {-77, -77, -77, -77};
    GetRegionPixel(width, height, qPoint64f{0.0, 0.0}, qPoint64f{1.0, 1.0}, &region, &result, nullptr, clip);
    return result;
}

Rect2d<int> CrossSection(const Region2d<double>& region, int clip)
{
    Rect2d<int> result = {-77, -77, -77, -77};
    GetRegionXZPixel(10, qPoint64f{0.0, 0.0}, qPoint64f{1.0, 1.0}, &region, &result, nullptr, clip);
    return result;
}

TEST(RegionToRun, HoldsTheCellsWhoseCentresLieInside)
{
    EXPECT_EQ(RunOf(1.2, 3.0), (RunLength<int>{2, 3}));
    EXPECT_EQ(RunOf(2.0, 3.0), (RunLength<int>{2, 4})); // both edges on centres
    EXPECT_EQ(RunOf(-1.5, 1.0), (RunLength<int>{-1, 1}));
    EXPECT_EQ(RunOf(5.0, 1.0, false, 10, 1.0, 0.5), (RunLength<int>{8, 3}));
}

TEST(RegionToRun, BetweenTwoCentresThereIsNoCell)
{
    EXPECT_EQ(RunOf(1.2, 0.5), (RunLength<int>{2, 0}));
}

TEST(RegionToRun, ToleranceWidensOutward)
{
    EXPECT_EQ(RunWithTolerance(2.0004, 2.9992, 0.0005), (RunLength<int>{2, 4}));
    EXPECT_EQ(RunWithTolerance(2.0006, 2.9988, 0.0005), (RunLength<int>{3, 2}));
    EXPECT_EQ(RunWithTolerance(-2.9996, 5.9992, 0.0005), (RunLength<int>{-3, 7}));
}

TEST(RegionToRun, ZeroToleranceMovesExactCentresInward)
{
    EXPECT_EQ(RunWithTolerance(3.0, 2.0, 0.0), (RunLength<int>{4, 2}));   // the low edge of 3.0 snaps to 4, 5.0 stays
    EXPECT_EQ(RunWithTolerance(-5.0, 2.0, 0.0), (RunLength<int>{-5, 2})); // the high edge of -3.0 snaps to -4
    EXPECT_EQ(RunWithTolerance(0.0, 0.0, 0.0), (RunLength<int>{0, 0}));
}

TEST(RegionToRun, ClippingCutsToTheData)
{
    EXPECT_EQ(RunOf(-3.0, 5.0, true), (RunLength<int>{0, 3}));
    EXPECT_EQ(RunOf(7.0, 20.0, true), (RunLength<int>{7, 3}));
    EXPECT_EQ(RunOf(-3.0, 50.0, true), (RunLength<int>{0, 10}));
    EXPECT_EQ(RunOf(-9.0, 2.0, true), (RunLength<int>{0, 0}));
}

TEST(RegionToRun, AnEmptyClippedRunKeepsItsStart)
{
    EXPECT_EQ(RunOf(12.0, 3.0, true), (RunLength<int>{12, 0}));
    EXPECT_EQ(RunOf(0.0, 3.0, true, 0), (RunLength<int>{0, 0}));
}

TEST(RegionToRun, NonsenseNeitherOverflowsNorCrashes)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(RunOf(-1e300, 2e300), (RunLength<int>{INT_MIN, INT_MAX}));
    EXPECT_EQ(RunOf(-1e300, 2e300, true), (RunLength<int>{0, 10}));
    EXPECT_EQ(RunOf(1e300, 1.0), (RunLength<int>{INT_MAX, 1}));
    EXPECT_EQ(RunOf(kNull, 0.0, true), (RunLength<int>{0, 0}));
    EXPECT_EQ(RunOf(notANumber, 5.0), (RunLength<int>{0, 0}));
    EXPECT_EQ(RunOf(0.0, notANumber), (RunLength<int>{0, 0}));
    EXPECT_EQ(RunOf(0.0, 0.0, false, 10, 0.0, 0.0), (RunLength<int>{0, 0}));
    EXPECT_EQ(RunOf(1.0, 1.0, true, 10, 0.0, 0.0), (RunLength<int>{INT_MAX, 0}));
    EXPECT_EQ(RunOf(-infinity, infinity, true), (RunLength<int>{0, 0}));
    EXPECT_EQ(RunOf(-2e9, 4e9, true, SIZE_MAX), (RunLength<int>{0, 2000000001}));
    EXPECT_EQ(RunWithTolerance(notANumber, 5.0, 0.1), (RunLength<int>{0, 0}));
    EXPECT_EQ(RunWithTolerance(1.0, 5.0, notANumber), (RunLength<int>{2, 5}));
}

TEST(RegionToRectangle, NullPointersDoNothing)
{
    const Region2d<double> region = {0.0, 0.0, 1.0, 1.0, 0.0};
    Rect2d<int> cells = {1, 2, 3, 4};
    GetRegionPixel(10, 10, qPoint64f{0.0, 0.0}, qPoint64f{1.0, 1.0}, nullptr, &cells, nullptr, 1);
    EXPECT_EQ(cells, (Rect2d<int>{1, 2, 3, 4}));
    EXPECT_NO_THROW(GetRegionPixel(10, 10, qPoint64f{0.0, 0.0}, qPoint64f{1.0, 1.0}, &region, nullptr, nullptr, 1));
    EXPECT_NO_THROW(GetRegionPixel(nullptr, nullptr, nullptr, nullptr, 0));
    GetRegionXZPixel(10, qPoint64f{0.0, 0.0}, qPoint64f{1.0, 1.0}, nullptr, &cells, nullptr, 1);
    EXPECT_EQ(cells, (Rect2d<int>{1, 2, 3, 4}));

    RunLength<int> run = {5, 6};
    GetRegionPixel(10, 0.0, 1.0, nullptr, &run, nullptr, 1);
    EXPECT_EQ(run, (RunLength<int>{5, 6}));
    Rect3d<int> box = {1, 2, 3, 4, 5, 6};
    GetRegionPixel(10, 8, qPoint3d64f{0.0, 0.0, 0.0}, qPoint3d64f{1.0, 1.0, 1.0}, nullptr, &box, nullptr, 1);
    EXPECT_TRUE(box.x == 1 && box.width == 3 && box.z == 5 && box.depth == 6);
}

TEST(RegionToRectangle, AxesAreIndependent)
{
    const Region2d<double> region = {1.5, 2.5, 3.0, 1.0, 45.0};
    EXPECT_EQ(Plane(region, 0), (Rect2d<int>{2, 3, 3, 1}));
}

TEST(RegionToRectangle, ClippingCutsBothAxes)
{
    EXPECT_EQ(Plane({-2.0, -3.0, 100.0, 5.0, 0.0}, 1), (Rect2d<int>{0, 0, 10, 3}));
    EXPECT_EQ(Plane({8.0, 6.0, 5.0, 5.0, 0.0}, 1), (Rect2d<int>{8, 6, 2, 2}));
}

TEST(RegionToRectangle, BehindTheDataThereIsNoSizeAndThePositionStays)
{
    EXPECT_EQ(Plane({12.0, 3.0, 5.0, 2.0, 0.0}, 1), (Rect2d<int>{12, 3, 0, 0}));
    EXPECT_EQ(Plane({-2.0, 9.0, 5.0, 2.0, 0.0}, 1), (Rect2d<int>{-2, 9, 0, 0}));
    EXPECT_EQ(Plane({0.0, 0.0, 5.0, 5.0, 0.0}, 1, 0, 8), (Rect2d<int>{0, 0, 0, 0}));
}

TEST(RegionToRectangle, OneEmptyAxisEmptiesBoth)
{
    EXPECT_EQ(Plane({1.2, 2.0, 0.5, 3.0, 0.0}, 0), (Rect2d<int>{2, 2, 0, 0}));
    EXPECT_EQ(Plane({-5.0, 2.0, 3.0, 3.0, 0.0}, 1), (Rect2d<int>{0, 2, 0, 0}));
}

TEST(RegionToRectangle, ANullRegionIsEmptyOnceClipped)
{
    EXPECT_EQ(Plane(Region2d<double>(), 1), (Rect2d<int>{0, 0, 0, 0}));
}

TEST(RegionToBox, HeightIsNeverClipped)
{
    const Region3d<double> region = {-2.0, 1.0, 4.0, 2.0, 0.0, -50.5, 100.0};
    Rect3d<int> cells;
    GetRegionPixel(10, 8, qPoint3d64f{0.0, 0.0, 0.0}, qPoint3d64f{1.0, 1.0, 0.5}, &region, &cells, nullptr, 1);
    EXPECT_TRUE(cells.x == 0 && cells.y == 1 && cells.width == 3 && cells.height == 3);
    EXPECT_TRUE(cells.z == -101 && cells.depth == 201);
}

TEST(RegionToBox, ToleranceHoldsOnEachAxis)
{
    const Region3d<double> region = {2.0004, 2.0004, 1.0, 1.0, 0.0, 2.0004, 1.0};
    qPoint3d64f tolerance = {0.0005, 0.0, 0.0005};
    Rect3d<int> cells;
    GetRegionPixel(10, 8, qPoint3d64f{0.0, 0.0, 0.0}, qPoint3d64f{1.0, 1.0, 1.0}, &region, &cells, &tolerance, 1);
    EXPECT_TRUE(cells.x == 2 && cells.width == 2);
    EXPECT_TRUE(cells.y == 3 && cells.height == 1);
    EXPECT_TRUE(cells.z == 2 && cells.depth == 2);
}

TEST(RegionToBox, OneEmptyAxisEmptiesAll)
{
    SurfaceInputData data = {10, 8, {0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}, nullptr, nullptr};
    const Region3d<double> flat = {1.0, 1.0, 2.0, 2.0, 0.0, 0.2, 0.5};
    Rect3d<int> cells;
    GetRegionPixel(&data, &flat, &cells, nullptr, 1);
    EXPECT_TRUE(cells.x == 1 && cells.y == 1 && cells.z == 1);
    EXPECT_TRUE(cells.width == 0 && cells.height == 0 && cells.depth == 0);
}

TEST(RegionToCrossSection, HeightsAreClippedToSixteenBits)
{
    EXPECT_EQ(CrossSection({1.0, -40000.0, 2.0, 80000.0, 0.0}, 1), (Rect2d<int>{1, -32768, 3, 65536}));
    EXPECT_EQ(CrossSection({1.0, -40000.0, 2.0, 10000.0, 0.0}, 1), (Rect2d<int>{1, -32768, 3, 2769}));
    EXPECT_EQ(CrossSection({1.0, 32768.0, 2.0, 10.0, 0.0}, 1), (Rect2d<int>{1, 32768, 0, 0}));
    EXPECT_EQ(CrossSection({10.0, 0.0, 2.0, 10.0, 0.0}, 1), (Rect2d<int>{10, 0, 0, 0}));
    EXPECT_EQ(CrossSection({1.0, -50000.0, 2.0, 10.0, 0.0}, 1), (Rect2d<int>{1, -32768, 0, 0}));
}

TEST(RegionToCrossSection, TheLastClearingDoesNotDependOnClipping)
{
    EXPECT_EQ(CrossSection({1.2, 5.0, 0.5, 3.0, 0.0}, 0), (Rect2d<int>{2, 5, 0, 0}));
    EXPECT_EQ(CrossSection({-3.0, -40000.0, 2.0, 3.0, 0.0}, 0), (Rect2d<int>{-3, -40000, 3, 4}));
}

/** The plain rules over values that fit, one axis. */
RunLength<int> PlainRun(double start, double extent, double offset, double scale, const double* tolerance)
{
    const double p = (start - offset) / scale;
    const double q = (start + extent - offset) / scale;
    int first = static_cast<int>(std::ceil(p));
    int last = static_cast<int>(std::floor(q));
    if (tolerance != nullptr)
    {
        const double t = *tolerance / scale;
        const int i = static_cast<int>(p);
        const int j = static_cast<int>(q);
        first = p <= 0.0 ? (i - 1 > p - t ? i - 1 : i) : (i > p - t ? i : i + 1);
        last = q > 0.0 ? (q + t > j + 1 ? j + 1 : j) : (q + t > j ? j : j - 1);
    }
    return {first, last - first + 1};
}

TEST(RegionToRun, AgreesWithThePlainRules)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> value(-40.0, 40.0);
    std::uniform_real_distribution<double> size(0.0, 30.0);
    for (int round = 0; round < 20000; ++round)
    {
        const bool coarse = round % 2 == 0;
        const double start = coarse ? std::round(value(random) * 4.0) / 4.0 : value(random);
        const double extent = coarse ? std::round(size(random) * 4.0) / 4.0 : size(random);
        const double scale = coarse ? 0.5 : 0.1 + size(random) / 30.0;
        double tolerance = coarse ? 0.25 : 0.3 * size(random) / 30.0;
        double* given = round % 3 == 0 ? nullptr : &tolerance;
        const RunLength<double> region = {start, extent};
        RunLength<int> cells;
        GetRegionPixel(100, 1.0, scale, &region, &cells, given, 0);
        ASSERT_EQ(cells, PlainRun(start, extent, 1.0, scale, given)) << start << " " << extent << " " << scale;
    }
}

} // namespace
