#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Geometry/PlainBounds.h"
#include "support/FailingAllocator.h"

#include <array>

namespace
{

using namespace Zvl;
using PlainBounds::Points;
using TestSupport::kNull;
using TestSupport::MakeArray;
using TestSupport::MakeFilled;
using TestSupport::MakeSurface;

using Slices = std::vector<SurfaceSlice>;

constexpr qPoint3d64f kScale = {0.5, 0.25, 0.5};
constexpr qPoint3d64f kOffset = {10.0, 20.0, 30.0};

/** Three selected cells: (2, 1), (3, 1) and (3, 2) of a surface of 6 x 4, with heights 7, -3 and 5. */
SurfaceSlice Corner()
{
    SurfaceSlice slice;
    slice.surface = MakeSurface(4, 6, {90, 90, 90, 90, 90, 90, //
                                       90, 90, 7,  -3, 90, 90, //
                                       90, 90, 90, 5,  90, 90, //
                                       90, 90, 90, 90, 90, 90},
                                kScale, kOffset);
    slice.rect = {1, 1, 4, 2};
    slice.mask = MakeArray<std::uint8_t>(2, 4, {0, 1, 255, 0, 0, 0, 2, 0});
    return slice;
}

/** A surface of one selected cell, which lies at @p x and @p y. */
SurfaceSlice CellAt(double x, double y, std::int16_t height = 0)
{
    SurfaceSlice slice;
    slice.surface = MakeSurface(1, 1, {height}, {1.0, 1.0, 1.0}, {x, y, 0.0});
    slice.rect = {0, 0, 1, 1};
    slice.mask = MakeFilled<std::uint8_t>(1, 1, 1);
    return slice;
}

std::array<double, 7> FieldsOf(const Region3d<double>& region)
{
    return {region.x, region.y, region.width, region.height, region.angle, region.z, region.depth};
}

void ExpectRegion(const Region3d<double>& region, const Region3d<double>& expected)
{
    EXPECT_EQ(FieldsOf(region), FieldsOf(expected));
}

void ExpectDefault(const Slices& slices)
{
    ExpectRegion(GetBoundingBox(slices, 0, nullptr), Region3d<double>());
    ExpectRegion(GetBoundingBox(slices, 1, nullptr), Region3d<double>());
}

/** What later slices without effect must not change. */
void ExpectCornerAlone(const SurfaceSlice& later)
{
    for (const int rotated : {0, 1})
    {
        ExpectRegion(GetBoundingBox({Corner(), later}, rotated, nullptr), GetBoundingBox({Corner()}, rotated, nullptr));
    }
}

// Along the axes

TEST(GetBoundingBox, AnUprightBoxIsGivenByItsCenterAndHasAngle90)
{
    // Columns 2 to 3, rows 1 to 2, counts -3 to 7.
    ExpectRegion(GetBoundingBox({Corner()}, 0, nullptr), {11.25, 20.375, 1.0, 0.5, 90.0, 31.0, 5.5});
}

TEST(GetBoundingBox, OneCellIsAsLargeAsItsScale)
{
    SurfaceSlice slice = Corner();
    slice.mask = MakeArray<std::uint8_t>(2, 4, {0, 0, 1, 0, 0, 0, 0, 0});
    ExpectRegion(GetBoundingBox({slice}, 0, nullptr), {11.5, 20.25, 0.5, 0.25, 90.0, 28.5, 0.5});
    // Its longer side lies along X.
    ExpectRegion(GetBoundingBox({slice}, 1, nullptr), {11.5, 20.25, 0.25, 0.5, 0.0, 28.5, 0.5});
}

TEST(GetBoundingBox, ASelectedMissingCellTakesPartInTheHeights)
{
    SurfaceSlice slice = CellAt(0.0, 0.0, TestSupport::kMissing);
    const Region3d<double> box = GetBoundingBox({slice}, 0, nullptr);
    EXPECT_EQ(box.z, -32768.0);
    EXPECT_EQ(box.depth, 1.0);
    slice.surface = MakeSurface(1, 2, {TestSupport::kMissing, 32767});
    slice.rect.width = 2;
    slice.mask = MakeFilled<std::uint8_t>(1, 2, 1);
    EXPECT_EQ(GetBoundingBox({slice}, 0, nullptr).depth, 65536.0);
}

TEST(GetBoundingBox, LaterSlicesAreMovedByWholeCellsOfTheFirst)
{
    // 3.75 cells along X and -2.75 cells along Y are cut to 3 and -2.
    SurfaceSlice later = Corner();
    later.surface.offset = {kOffset.x + 3.75 * kScale.x, kOffset.y - 2.75 * kScale.y, 77.0};
    later.surface.scale = {9.0, 9.0, 9.0};
    // Columns 2 to 6, rows -1 to 2.
    ExpectRegion(GetBoundingBox({Corner(), later}, 0, nullptr), {12.0, 20.125, 2.5, 1.0, 90.0, 31.0, 5.5});
}

// Turned

TEST(GetBoundingBox, ATurnedBoxHasTheAngleOfItsLongerSide)
{
    // Two rows of three cells: the left ends lie at (2, 1), (2, 2), the right ends at (4, 1), (4, 2).
    SurfaceSlice slice = Corner();
    slice.surface.scale = {1.0, 1.0, 0.5};
    slice.mask = MakeArray<std::uint8_t>(2, 4, {0, 1, 1, 1, 0, 1, 1, 1});
    const Region3d<double> box = GetBoundingBox({slice}, 1, nullptr);
    EXPECT_NEAR(box.x, 13.0, 1e-12);
    EXPECT_NEAR(box.y, 21.5, 1e-12);
    EXPECT_NEAR(box.width, 2.0, 1e-12);
    EXPECT_NEAR(box.height, 3.0, 1e-12);
    EXPECT_EQ(box.angle, 0.0);
    EXPECT_EQ(box.depth, 47.0); // -3 to 90
    EXPECT_EQ(box.z, 30.0 + 43.5 * 0.5);
}

TEST(GetBoundingBox, AnglesReachFromAboveMinus90UpTo90)
{
    SurfaceSlice slice;
    slice.surface = MakeSurface(5, 5, std::vector<std::int16_t>(25));
    slice.rect = {0, 0, 5, 5};
    std::vector<std::uint8_t> rising(25);
    std::vector<std::uint8_t> falling(25);
    std::vector<std::uint8_t> upright(25);
    for (std::size_t i = 0; i < 5; ++i)
    {
        rising[i * 5 + i] = 1;
        falling[i * 5 + 4 - i] = 1;
        upright[i * 5 + 2] = 1;
    }
    slice.mask = MakeArray(5, 5, rising);
    EXPECT_DOUBLE_EQ(GetBoundingBox({slice}, 1, nullptr).angle, 45.0);
    slice.mask = MakeArray(5, 5, falling);
    EXPECT_DOUBLE_EQ(GetBoundingBox({slice}, 1, nullptr).angle, -45.0);
    slice.mask = MakeArray(5, 5, upright);
    EXPECT_DOUBLE_EQ(GetBoundingBox({slice}, -1, nullptr).angle, 90.0);
}

/** The cells of a rectangle of 120 x 40 about (100, 100), on a surface of 200 x 200. */
SurfaceSlice TurnedRectangle(double degrees)
{
    const double cosine = std::cos(degrees * 3.141592653589793 / 180.0);
    const double sine = std::sin(degrees * 3.141592653589793 / 180.0);
    std::vector<std::uint8_t> cells;
    for (int row = -100; row < 100; ++row)
    {
        for (int column = -100; column < 100; ++column)
        {
            const double along = column * cosine + row * sine;
            const double across = row * cosine - column * sine;
            cells.push_back(std::fabs(along) <= 60.0 && std::fabs(across) <= 20.0 ? 1 : 0);
        }
    }
    SurfaceSlice slice;
    slice.surface = MakeSurface(200, 200, std::vector<std::int16_t>(40000), {0.1, 0.1, 1.0}, {5.0, 6.0, 0.0});
    slice.rect = {0, 0, 200, 200};
    slice.mask = MakeArray(200, 200, cells);
    return slice;
}

TEST(GetBoundingBox, ATurnedRectangleOfCellsIsFound)
{
    for (const double degrees : {-89.0, -75.0, -45.0, -30.0, -10.0, -0.5, 0.0, 0.5, 20.0, 44.0, 60.0, 80.0, 89.5, 90.0})
    {
        const Region3d<double> box = GetBoundingBox({TurnedRectangle(degrees)}, 1, nullptr);
        const double turn = std::remainder(box.angle - degrees, 180.0);
        EXPECT_NEAR(turn, 0.0, 1.0) << degrees;
        EXPECT_GT(box.angle, -90.0);
        EXPECT_LE(box.angle, 90.0);
        EXPECT_NEAR(box.width, 4.0, 0.2) << degrees;
        EXPECT_NEAR(box.height, 12.0, 0.25) << degrees;
        EXPECT_NEAR(box.x, 15.0, 0.1) << degrees;
        EXPECT_NEAR(box.y, 16.0, 0.1) << degrees;
    }
}

TEST(GetBoundingBox, ScalesThatNoTurnedBoxCanHoldGiveNulls)
{
    for (const double scale : {0.0, std::numeric_limits<double>::quiet_NaN(), 1e-320})
    {
        SurfaceSlice slice = Corner();
        slice.surface.scale.x = scale;
        // The later slice's displacement is not a number or infinite.
        const SurfaceSlice later = slice;
        ExpectRegion(GetBoundingBox({slice, later}, 1, nullptr), {kNull, kNull, kNull, kNull, kNull, 31.0, 5.5});
        const Region3d<double> upright = GetBoundingBox({slice, later}, 0, nullptr);
        EXPECT_EQ(upright.height, 0.5);
        EXPECT_EQ(upright.angle, 90.0);
    }
}

// What has no box

TEST(GetBoundingBox, NoSelectedCellGivesADefaultRegion)
{
    SurfaceSlice slice = Corner();
    slice.mask = MakeFilled<std::uint8_t>(2, 4, 0);
    ExpectDefault({slice});
    ExpectDefault({slice, slice});
    ExpectDefault({});
}

TEST(GetBoundingBox, AFirstSliceWithoutMappingGivesADefaultRegion)
{
    for (double qPoint3d64f::*field : {&qPoint3d64f::x, &qPoint3d64f::y, &qPoint3d64f::z})
    {
        SurfaceSlice slice = Corner();
        slice.surface.offset.*field = kNull;
        ExpectDefault({slice, Corner()});
        slice = Corner();
        slice.surface.scale.*field = kNull;
        ExpectDefault({slice, Corner()});
    }
}

/** Slices that fail one test each. */
Slices UnfitSlices()
{
    Slices unfit;
    const auto add = [&](auto change)
    {
        SurfaceSlice slice = Corner();
        change(slice);
        unfit.push_back(slice);
    };
    add([](SurfaceSlice& slice) { slice.surface.layers.clear(); });
    add([](SurfaceSlice& slice) { slice.surface.layers[0].Reset(); });
    add([](SurfaceSlice& slice) { slice.surface.layers[0] = MakeFilled<std::uint8_t>(4, 6, 1); });
    add([](SurfaceSlice& slice)
        { Zo::Test(qArray1_Construct(slice.surface.layers[0].Slot(), xxq16s_type, 24, nullptr)); });
    add([](SurfaceSlice& slice) { slice.surface.layers[0] = MakeFilled<std::int16_t>(0, 6, 1); });
    add([](SurfaceSlice& slice) { slice.mask.Reset(); });
    add([](SurfaceSlice& slice) { slice.mask = MakeFilled<std::int16_t>(2, 4, 1); });
    add([](SurfaceSlice& slice) { slice.mask = MakeFilled<std::uint8_t>(3, 4, 1); });
    add([](SurfaceSlice& slice) { slice.mask = MakeFilled<std::uint8_t>(2, 3, 1); });
    add([](SurfaceSlice& slice) { Zo::Test(qArrayList_Construct(slice.mask.Slot(), xxq8u_type, 8, nullptr)); });
    for (const Rect2d<int>& rect :
         {Rect2d<int>{-1, 1, 4, 2}, Rect2d<int>{1, -1, 4, 2}, Rect2d<int>{3, 1, 4, 2}, Rect2d<int>{1, 3, 4, 2},
          Rect2d<int>{1, 1, 0, 2}, Rect2d<int>{1, 1, 4, 0}, Rect2d<int>{1, 1, -4, -2},
          Rect2d<int>{2147483647, 2147483647, 4, 2}, Rect2d<int>{1, 1, 2147483647, 2147483647}})
    {
        add([&](SurfaceSlice& slice) { slice.rect = rect; });
    }
    for (const Rect2d<int>& rect : {Rect2d<int>{1, 1, 0, 2}, Rect2d<int>{1, 1, 4, 0}})
    {
        add(
            [&](SurfaceSlice& slice)
            {
                slice.rect = rect;
                slice.mask = MakeFilled<std::uint8_t>(static_cast<std::size_t>(rect.height),
                                                      static_cast<std::size_t>(rect.width), 1);
            });
    }
    return unfit;
}

TEST(GetBoundingBox, AnUnfitFirstSliceGivesADefaultRegion)
{
    for (const SurfaceSlice& unfit : UnfitSlices())
    {
        ExpectDefault({unfit});
        ExpectDefault({unfit, Corner()});
    }
}

TEST(GetBoundingBox, AnUnfitLaterSliceIsLeftOut)
{
    for (const SurfaceSlice& unfit : UnfitSlices())
    {
        ExpectCornerAlone(unfit);
    }
    SurfaceSlice far = Corner();
    far.surface.offset.x += 100.0;
    for (const SurfaceSlice& unfit : UnfitSlices())
    {
        ExpectRegion(GetBoundingBox({Corner(), unfit, far}, 0, nullptr), GetBoundingBox({Corner(), far}, 0, nullptr));
    }
}

TEST(GetBoundingBox, AnEmptyLayerOfImpossibleHeightIsLeftOut)
{
    SurfaceSlice tall = Corner();
    Zo::Test(qArray2_Construct(tall.surface.layers[0].Slot(), xxq16s_type, PTRDIFF_MAX, 0, nullptr));
    ExpectCornerAlone(tall);
}

TEST(GetBoundingBox, TheSliceCountIsTakenModulo256)
{
    Slices slices(255, CellAt(0.0, 0.0));
    slices[254] = CellAt(4.0, 0.0);
    EXPECT_EQ(GetBoundingBox(slices, 0, nullptr).width, 5.0);
    EXPECT_EQ(GetBoundingBox(slices, 1, nullptr).height, 5.0);
    slices.push_back(CellAt(9.0, 0.0));
    ExpectDefault(slices);
    slices.push_back(CellAt(19.0, 0.0));
    EXPECT_EQ(GetBoundingBox(slices, 0, nullptr).width, 1.0);
    slices.push_back(CellAt(29.0, 0.0));
    slices[1] = CellAt(-2.0, 0.0);
    EXPECT_EQ(GetBoundingBox(slices, 0, nullptr).width, 3.0);
}

TEST(GetBoundingBox, DisplacementsBeyondIntAreTakenAsTheNearest)
{
    constexpr double lowest = -2147483648.0;
    constexpr double highest = 2147483647.0;
    // The second cell of each later slice lies one further.
    const auto widthWith = [](double offset)
    {
        SurfaceSlice later = CellAt(offset, 0.0);
        later.surface.layers[0] = MakeFilled<std::int16_t>(1, 2, 0);
        later.rect.width = 2;
        later.mask = MakeFilled<std::uint8_t>(1, 2, 1);
        const Region3d<double> rotated = GetBoundingBox({CellAt(0.0, 0.0), later}, 1, nullptr);
        EXPECT_EQ(rotated.depth, 1.0);
        return GetBoundingBox({CellAt(0.0, 0.0), later}, 0, nullptr).width;
    };
    EXPECT_EQ(widthWith(1e300), highest + 1.0);
    EXPECT_EQ(widthWith(std::numeric_limits<double>::infinity()), highest + 1.0);
    EXPECT_EQ(widthWith(highest - 1.0), highest + 1.0);
    EXPECT_EQ(widthWith(-1e300), 1.0 - lowest);
    EXPECT_EQ(widthWith(kNull), 1.0 - lowest);
    EXPECT_EQ(widthWith(std::numeric_limits<double>::quiet_NaN()), 2.0);
}

// Against the plain loop

/** The defining loop over the cells of fit slices. */
struct PlainExtent
{
    Points left;
    Points right;
    int minimum[3] = {2147483647, 2147483647, 2147483647};
    int maximum[3] = {-2147483647 - 1, -2147483647 - 1, -2147483647 - 1};

    void Include(int axis, int value)
    {
        minimum[axis] = std::min(minimum[axis], value);
        maximum[axis] = std::max(maximum[axis], value);
    }

    explicit PlainExtent(const Slices& slices)
    {
        const Surface& first = slices[0].surface;
        for (const SurfaceSlice& slice : slices)
        {
            const int dx = static_cast<int>((slice.surface.offset.x - first.offset.x) / first.scale.x);
            const int dy = static_cast<int>((slice.surface.offset.y - first.offset.y) / first.scale.y);
            for (int row = 0; row < slice.rect.height; ++row)
            {
                AddRow(slice, row, dx, dy);
            }
        }
    }

    void AddRow(const SurfaceSlice& slice, int row, int dx, int dy)
    {
        int rowMinimum = 2147483647;
        int rowMaximum = -1;
        const int y = slice.rect.y + row;
        for (int column = 0; column < slice.rect.width; ++column)
        {
            const int x = slice.rect.x + column;
            if (*static_cast<const std::uint8_t*>(
                    qArray2_At(slice.mask, static_cast<std::size_t>(row), static_cast<std::size_t>(column))) != 0)
            {
                rowMinimum = std::min(rowMinimum, x);
                rowMaximum = std::max(rowMaximum, x);
                Include(2, *static_cast<const std::int16_t*>(qArray2_At(
                               slice.surface.layers[0], static_cast<std::size_t>(y), static_cast<std::size_t>(x))));
            }
        }
        if (rowMaximum >= 0)
        {
            PlainBounds::AddToChain(left, {rowMinimum + dx, y + dy}, true);
            PlainBounds::AddToChain(right, {rowMaximum + dx, y + dy}, false);
            Include(0, rowMinimum + dx);
            Include(0, rowMaximum + dx);
            Include(1, y + dy);
        }
    }

    double Size(int axis, double scale) const { return (maximum[axis] - minimum[axis] + 1) * scale; }

    double Center(int axis, double offset, double scale) const
    {
        return offset + (minimum[axis] - 0.5) * scale + Size(axis, scale) / 2;
    }
};

Region3d<double> PlainBox(const Slices& slices, int rotated)
{
    const PlainExtent extent(slices);
    const qPoint3d64f& scale = slices[0].surface.scale;
    const qPoint3d64f& offset = slices[0].surface.offset;
    Region3d<double> box;
    if (extent.maximum[0] < extent.minimum[0])
    {
        return box;
    }
    box = {extent.Center(0, offset.x, scale.x),
           extent.Center(1, offset.y, scale.y),
           extent.Size(0, scale.x),
           extent.Size(1, scale.y),
           90.0,
           extent.Center(2, offset.z, scale.z),
           extent.Size(2, scale.z)};
    if (rotated != 0)
    {
        Points points = extent.left;
        points.insert(points.end(), extent.right.begin(), extent.right.end());
        const PlainBounds::Box turned = PlainBounds::BoundsOf(points, {offset.x, offset.y}, {scale.x, scale.y});
        box.x = turned.center[0];
        box.y = turned.center[1];
        box.width = turned.size[0];
        box.height = turned.size[1];
        box.angle = turned.angle > 90.0 ? turned.angle - 180.0 : turned.angle;
    }
    return box;
}

SurfaceSlice RandomSlice(double share, std::mt19937& random)
{
    std::uniform_real_distribution<double> shift(-20.0, 20.0);
    const std::size_t rows = 1 + random() % 30;
    const std::size_t columns = 1 + random() % 90;
    SurfaceSlice slice;
    slice.surface = TestSupport::MakeRandomSurface(rows, columns, 0.1, random);
    slice.surface.scale = {0.3, 0.45, 0.01};
    slice.surface.offset = {shift(random), shift(random), shift(random)};
    slice.rect.x = static_cast<int>(random() % columns);
    slice.rect.y = static_cast<int>(random() % rows);
    const std::size_t width = 1 + random() % (columns - static_cast<std::size_t>(slice.rect.x));
    const std::size_t height = 1 + random() % (rows - static_cast<std::size_t>(slice.rect.y));
    slice.rect.width = static_cast<int>(width);
    slice.rect.height = static_cast<int>(height);
    slice.mask = TestSupport::MakeRandomMask(height, width, share, random);
    return slice;
}

TEST(GetBoundingBox, AgreesWithThePlainLoop)
{
    std::mt19937 random(29);
    for (int round = 0; round < 200; ++round)
    {
        const double share = round % 4 == 0 ? 0.005 : 0.5;
        Slices slices;
        for (std::size_t count = 1 + random() % 3; count > 0; --count)
        {
            slices.push_back(RandomSlice(share, random));
        }
        ExpectRegion(GetBoundingBox(slices, 0, nullptr), PlainBox(slices, 0));
        ExpectRegion(GetBoundingBox(slices, 1, nullptr), PlainBox(slices, 1));
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
}

// Shortage of memory

TEST(GetBoundingBox, ShortageOfMemoryIsThrownByTheFunctionThatMeetsIt)
{
    const Slices slices = {Corner()};
    TestSupport::FailingAllocator allocator;
    allocator.FailNever();
    GetBoundingBox(slices, 0, allocator.Get());
    const std::size_t chains = allocator.Allocations();
    EXPECT_GE(chains, 2U);
    allocator.FailNever();
    GetBoundingBox(slices, 1, allocator.Get());
    const std::size_t all = allocator.Allocations();
    EXPECT_GE(all, chains + 4);
    for (std::size_t nth = 1; nth <= all; ++nth)
    {
        allocator.FailAt(nth);
        TestSupport::ExpectThrow(STATUS_OUT_OF_MEMORY, nth <= chains ? "Zvl::GetBoundingBox" : "Zvl::GetRotatedBounds",
                                 [&] { GetBoundingBox(slices, 1, allocator.Get()); });
        EXPECT_EQ(allocator.LiveBlocks(), 0U);
    }
    EXPECT_EQ(qObject_ShareCount(slices[0].mask), 1);
}

TEST(GetBoundingBox, ARepeatedCallThatSucceedsThrowsItsStatus)
{
    const Slices slices = {Corner()};
    const std::size_t thrown = TestSupport::ExpectEachFailureThrown(
        {"Zvl::GetBoundingBox", "Zvl::GetRotatedBounds"}, [&] { GetBoundingBox(slices, 1, nullptr); },
        TestSupport::Failing::OnlyNth);
    EXPECT_GE(thrown, 6U);
}

} // namespace
