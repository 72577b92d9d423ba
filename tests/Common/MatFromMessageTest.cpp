#include "Common/MatSupport.h"

#include "support/FailingAllocator.h"

#include <cmath>
#include <limits>
#include <random>

namespace
{

using namespace Zvl;
using MatTest::FlatRegion;
using MatTest::Handle;
using MatTest::HeightsOf;
using MatTest::IsSame;
using MatTest::MakeMessage;
using MatTest::MakeTwelve;
using MatTest::Numbered;
using MatTest::Region;
using TestSupport::ExpectThrow;

using Heights = std::vector<int>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/** The part of @p message in @p region, cut to the message, without limits along Z. */
zvlMat Clipped(const Handle& message, const Region& region)
{
    return {message, 0, &region, 0, 0};
}

/** The same, with zeros where the region leaves the message. */
zvlMat Unclipped(const Handle& message, const Region& region)
{
    return {message, 0, &region, 0, 1};
}

TEST(MatFromMessage, HeightsAreEncodedInTheirOrderWithMissingOnesAsZero)
{
    const Handle message = MakeMessage(2, 3, {-32768, -32767, -1, 0, 1, 32767});
    const zvlMat mat = Clipped(message, FlatRegion(0.0, 0.0, 3.0, 2.0));
    EXPECT_EQ(MatTest::CellsOf(mat.GetMat()), Heights({0, 1, 32767, 32768, 32769, 65535}));
    EXPECT_EQ(mat.GetSize(), cv::Size(3, 2));
}

TEST(MatFromMessage, APartHasTheMappingOfItsFirstCell)
{
    const Handle message = MakeMessage(3, 4, Numbered(12), {0.5, 0.25, 0.1}, {10.0, 20.0, 30.0});
    const zvlMat mat = Clipped(message, {10.5, 20.25, 1.0, 0.5, 0.0, 0.0, 0.0});
    EXPECT_EQ(HeightsOf(mat), Heights({6, 7, 10, 11}));
    EXPECT_TRUE(IsSame(mat.GetScale(), {0.5, 0.25, 0.1}));
    EXPECT_TRUE(IsSame(mat.GetOffset(), {10.5, 20.25, 30.0}));
}

TEST(MatFromMessage, TheItemGivesTheOffsetAndSharesTheCells)
{
    Handle message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 1, 3, 2, nullptr));
    const qPoint3d64f offset = {100.0, 0.0, 7.0};
    Zo::Test(ZvSurfaceMsg_SetOffset(message, 1, &offset));
    const std::int16_t height = 5;
    Zo::Test(qArray2_SetItem(ZvSurfaceMsg_PointsArray(message, 0), 0, 2, &height));

    const Region region = FlatRegion(101.0, 0.0, 2.0, 1.0);
    const zvlMat mat(message, 1, &region, 0, 0);
    EXPECT_EQ(HeightsOf(mat), Heights({0, 5}));
    EXPECT_TRUE(IsSame(mat.GetOffset(), {101.0, 0.0, 7.0}));
}

TEST(MatFromMessage, CornerAndExtentAreTruncatedTowardZero)
{
    const Handle message = MakeTwelve();
    zvlMat mat = Unclipped(message, FlatRegion(1.75, 0.25, 2.5, 1.75));
    EXPECT_EQ(mat.GetSize(), cv::Size(2, 1));
    EXPECT_EQ(HeightsOf(mat), Heights({2, 3}));
    EXPECT_TRUE(IsSame(mat.GetOffset(), {1.0, 0.0, 0.0}));
    mat = Unclipped(message, FlatRegion(-0.75, -1.75, 2.0, 2.0));
    EXPECT_EQ(HeightsOf(mat), Heights({0, 0, 1, 2}));
    EXPECT_TRUE(IsSame(mat.GetOffset(), {0.0, -1.0, 0.0}));
}

TEST(MatFromMessage, TheExtentGivesTheSizeNotTheFarEdge)
{
    // From 0.75 to 2.25 the edges are two cells apart, and the extent of 1.5 holds one.
    const zvlMat mat = Clipped(MakeTwelve(), FlatRegion(0.75, 0.75, 1.5, 1.5));
    EXPECT_EQ(mat.GetSize(), cv::Size(1, 1));
    EXPECT_EQ(HeightsOf(mat), Heights({1}));
}

TEST(MatFromMessage, ARegionThatLeavesTheMessageIsCutOrFilledUp)
{
    const Handle message = MakeTwelve();
    const Region corner = FlatRegion(-1.0, -1.0, 3.0, 2.0);
    EXPECT_EQ(HeightsOf(Clipped(message, corner)), Heights({1, 2}));
    EXPECT_EQ(HeightsOf(Unclipped(message, corner)), Heights({0, 0, 0, 0, 1, 2}));
    const Region farCorner = FlatRegion(3.0, 2.0, 2.0, 2.0);
    EXPECT_EQ(HeightsOf(Clipped(message, farCorner)), Heights({12}));
    EXPECT_EQ(HeightsOf(Unclipped(message, farCorner)), Heights({12, 0, 0, 0}));
    const Region around = FlatRegion(-1.0, -1.0, 6.0, 5.0);
    EXPECT_EQ(HeightsOf(Clipped(message, around)), Heights({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    const Heights framed = {0, 0, 0, 0, 0, 0,  0,  1,  2, 3, 4, 0, 0, 5, 6,
                            7, 8, 0, 0, 9, 10, 11, 12, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(HeightsOf(Unclipped(message, around)), framed);
}

TEST(MatFromMessage, ARegionWhollyOutsideHasAMappingButNoCells)
{
    const Handle message = MakeMessage(3, 4, Numbered(12), {1.0, 1.0, 0.5}, {0.0, 0.0, 9.0});
    const zvlMat beyond = Clipped(message, FlatRegion(10.0, 0.0, 2.0, 2.0));
    EXPECT_EQ(beyond.GetSize(), cv::Size(0, 0));
    EXPECT_TRUE(beyond.GetMat().empty());
    EXPECT_TRUE(IsSame(beyond.GetScale(), {1.0, 1.0, 0.5}));
    EXPECT_TRUE(IsSame(beyond.GetOffset(), {10.0, 0.0, 9.0}));
    const zvlMat before = Clipped(message, FlatRegion(0.0, -10.0, 2.0, 2.0));
    EXPECT_EQ(before.GetSize(), cv::Size(0, 0));
    EXPECT_TRUE(IsSame(before.GetOffset(), {0.0, 0.0, 9.0}));
    const zvlMat touching = Clipped(message, FlatRegion(4.0, 0.0, 2.0, 2.0));
    EXPECT_EQ(touching.GetSize(), cv::Size(0, 0));

    EXPECT_EQ(HeightsOf(Unclipped(message, FlatRegion(10.0, 0.0, 2.0, 2.0))), Heights({0, 0, 0, 0}));
    EXPECT_EQ(HeightsOf(Unclipped(message, FlatRegion(0.0, -10.0, 2.0, 2.0))), Heights({0, 0, 0, 0}));
}

TEST(MatFromMessage, TheLowLimitIsTruncatedAndTheHighOneRounded)
{
    const Handle rising = MakeMessage(1, 6, {0, 1, 2, 3, 4, 5});
    const Region above = {0.0, 0.0, 6.0, 1.0, 0.0, 1.75, 1.75}; // 1.75 to 3.5: counts 1 to 4
    EXPECT_EQ(HeightsOf({rising, 0, &above, 1, 0}), Heights({0, 1, 2, 3, 4, 0}));
    EXPECT_EQ(HeightsOf({rising, 0, &above, -1, 0}), Heights({0, 1, 2, 3, 4, 0}));
    const Region exact = {0.0, 0.0, 6.0, 1.0, 0.0, 2.0, 1.0};
    EXPECT_EQ(HeightsOf({rising, 0, &exact, 1, 0}), Heights({0, 0, 2, 3, 0, 0}));

    const Handle falling = MakeMessage(1, 5, {-1, -2, -3, -4, -32768});
    const Region below = {0.0, 0.0, 5.0, 1.0, 0.0, -3.75, 2.25}; // -3.75 to -1.5: counts -3 to -2
    EXPECT_EQ(HeightsOf({falling, 0, &below, 1, 0}), Heights({0, -2, -3, 0, 0}));
}

TEST(MatFromMessage, LimitsAreTakenThroughTheItemsMapping)
{
    const Handle message = MakeMessage(1, 4, {9, 10, 20, 21}, {1.0, 1.0, 0.5}, {0.0, 0.0, 100.0});
    const Region region = {0.0, 0.0, 4.0, 1.0, 0.0, 105.0, 5.0};
    EXPECT_EQ(HeightsOf({message, 0, &region, 1, 0}), Heights({0, 10, 20, 0}));
}

TEST(MatFromMessage, WithoutLimitsEveryHeightIsKept)
{
    const Handle message = MakeTwelve();
    const Region flat = {0.0, 0.0, 4.0, 1.0, 0.0, 500.0, 0.0};
    EXPECT_EQ(HeightsOf({message, 0, &flat, 0, 0}), Heights({1, 2, 3, 4}));
    EXPECT_EQ(HeightsOf({message, 0, &flat, 1, 0}), Heights({0, 0, 0, 0}));
}

TEST(MatFromMessage, LimitsBeyondTheHeightsKeepAllOrNone)
{
    const Handle message = MakeMessage(1, 4, {-32767, 0, 32767, -32768});
    const auto cellsWithin = [&](double z, double depth)
    {
        const Region region = {0.0, 0.0, 4.0, 1.0, 0.0, z, depth};
        const zvlMat mat(message, 0, &region, 1, 0);
        return MatTest::CellsOf(mat.GetMat());
    };
    const Heights all = {1, 32768, 65535, 0};
    EXPECT_EQ(cellsWithin(-32768.0, 65535.0), all);
    EXPECT_EQ(cellsWithin(-1e300, 2e300), all);
    EXPECT_EQ(cellsWithin(-32767.0, kInfinity), all);
    EXPECT_EQ(cellsWithin(32767.0, 1e10), Heights({0, 0, 65535, 0}));
    EXPECT_EQ(cellsWithin(-1e10, 1e10 - 32767.0), Heights({1, 0, 0, 0}));

    const Heights none = {0, 0, 0, 0};
    EXPECT_EQ(cellsWithin(32768.0, 1e10), none);
    EXPECT_EQ(cellsWithin(-1e10, 1e9), none);
    EXPECT_EQ(cellsWithin(100.0, -200.0), none);
    EXPECT_EQ(cellsWithin(kNotANumber, 0.0), none);
    EXPECT_EQ(cellsWithin(0.0, kNotANumber), none);
    EXPECT_EQ(cellsWithin(-kInfinity, kInfinity), none); // its far edge is not a number
}

TEST(MatFromMessage, AFarEdgeThatRoundsBelowTheLastCellHidesIt)
{
    // (0.3 + 4 * 0.1 - 0.3) / 0.1 is a little less than 4.
    const Handle columns = MakeMessage(1, 4, Numbered(4), {0.1, 1.0, 1.0}, {0.3, 0.0, 0.0});
    EXPECT_EQ(HeightsOf(Unclipped(columns, FlatRegion(0.3, 0.0, 4 * 0.1, 1.0))), Heights({1, 2, 3, 0}));
    const Handle rows = MakeMessage(4, 1, Numbered(4), {1.0, 0.1, 1.0}, {0.0, 0.3, 0.0});
    EXPECT_EQ(HeightsOf(Unclipped(rows, FlatRegion(0.0, 0.3, 1.0, 4 * 0.1))), Heights({1, 2, 3, 0}));
}

TEST(MatFromMessage, AFarEdgeThatRoundsBeyondTheLastCellReadsNothingThere)
{
    // 2^53 + 1.5 is not a double: the far edge of three cells of 0.5 comes out as that of four.
    constexpr double huge = 9007199254740992.0;
    const Handle columns = MakeMessage(1, 3, Numbered(3), {0.5, 1.0, 1.0}, {huge, 0.0, 0.0});
    EXPECT_EQ(HeightsOf(Unclipped(columns, FlatRegion(huge, 0.0, 2.0, 1.0))), Heights({1, 2, 3, 0}));
    const Handle rows = MakeMessage(3, 1, Numbered(3), {1.0, 0.5, 1.0}, {0.0, huge, 0.0});
    EXPECT_EQ(HeightsOf(Unclipped(rows, FlatRegion(0.0, huge, 1.0, 2.0))), Heights({1, 2, 3, 0}));
}

TEST(MatFromMessage, ANegativeScaleCountsCellsTheOtherWay)
{
    const Handle message = MakeMessage(1, 3, Numbered(3), {-2.0, 1.0, 1.0}, {10.0, 0.0, 0.0});
    EXPECT_EQ(HeightsOf(Unclipped(message, FlatRegion(8.0, 0.0, -4.0, 1.0))), Heights({2, 3}));
    EXPECT_EQ(HeightsOf(Unclipped(message, FlatRegion(4.0, 0.0, 6.0, 1.0))), Heights());
}

TEST(MatFromMessage, CornersBeyondAllCellsGiveZerosAndTheNearestOffset)
{
    const Handle message = MakeTwelve();
    for (const double corner : {1e10, 1e300, kInfinity})
    {
        zvlMat mat = Unclipped(message, FlatRegion(corner, 0.0, 2.0, 2.0));
        EXPECT_EQ(HeightsOf(mat), Heights({0, 0, 0, 0}));
        EXPECT_EQ(mat.GetOffset().x, 2147483647.0);
        mat = Unclipped(message, FlatRegion(0.0, -corner, 2.0, 2.0));
        EXPECT_EQ(HeightsOf(mat), Heights({0, 0, 0, 0}));
        EXPECT_EQ(mat.GetOffset().y, -2147483648.0);
    }
}

TEST(MatFromMessage, ARegionWithoutACountableSizeHasNoCells)
{
    const Handle message = MakeTwelve();
    for (const Region& region :
         {FlatRegion(0.0, 0.0, kNotANumber, 1.0), FlatRegion(0.0, 0.0, 1.0, kNotANumber),
          FlatRegion(0.0, 0.0, kInfinity, 1.0), FlatRegion(0.0, 0.0, 1.0, 1e300),
          FlatRegion(0.0, 0.0, 2147483648.0, 1.0), FlatRegion(0.0, 0.0, -1e300, 1.0), FlatRegion(0.0, 0.0, 1.0, 0.75),
          FlatRegion(kNotANumber, 0.0, 1.0, 1.0), FlatRegion(0.0, kNotANumber, 1.0, 1.0), Region()})
    {
        EXPECT_EQ(Unclipped(message, region).GetSize(), cv::Size(0, 0));
    }
}

TEST(MatFromMessage, AScaleWithoutASizeGivesNoCells)
{
    for (const double scale : {0.0, kNotANumber, kInfinity})
    {
        const Handle message = MakeMessage(3, 4, Numbered(12), {scale, scale, scale});
        for (const Region& region : {FlatRegion(0.0, 0.0, 2.0, 2.0), FlatRegion(1.0, 1.0, 2.0, 2.0)})
        {
            EXPECT_EQ(Unclipped(message, region).GetSize(), cv::Size(0, 0)) << scale;
            EXPECT_EQ(Clipped(message, region).GetSize(), cv::Size(0, 0)) << scale;
        }
    }
}

TEST(MatFromMessage, TheSmallestScaleHasTheMessageButNoLargerRegion)
{
    constexpr double smallest = std::numeric_limits<double>::denorm_min();
    const Handle message = MakeMessage(3, 4, Numbered(12), {smallest, smallest, 1.0});
    const Region region = FlatRegion(0.0, 0.0, 2.0, 2.0);
    EXPECT_EQ(HeightsOf(Clipped(message, region)), Heights({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(Unclipped(message, region).GetSize(), cv::Size(0, 0));
}

TEST(MatFromMessage, CellsOfAnotherTypeCountAsOutside)
{
    const Handle message = MakeTwelve();
    Zo::Test(qArray2_Allocate(ZvSurfaceMsg_PointsArray(message, 0), xxq8u_type, 3, 4));
    EXPECT_EQ(HeightsOf(Clipped(message, FlatRegion(1.0, 1.0, 2.0, 1.0))), Heights({0, 0}));
}

TEST(MatFromMessage, AMessageWithoutCellsGivesZerosOnly)
{
    const Handle message = MakeMessage(0, 4, {});
    EXPECT_EQ(Clipped(message, FlatRegion(0.0, 0.0, 2.0, 2.0)).GetSize(), cv::Size(0, 0));
    EXPECT_EQ(HeightsOf(Unclipped(message, FlatRegion(0.0, 0.0, 2.0, 1.0))), Heights({0, 0}));
}

TEST(MatFromMessage, WithoutMessageOrRegionThereIsNothing)
{
    const Handle message = MakeMessage(3, 4, Numbered(12), {1.0, 1.0, 1.0}, {5.0, 5.0, 5.0});
    const Region region = FlatRegion(5.0, 5.0, 2.0, 2.0);
    for (const zvlMat& mat : {zvlMat(nullptr, 0, &region, 1, 1), zvlMat(message, 0, nullptr, 1, 1),
                              zvlMat(message, 99, nullptr, 0, 0), zvlMat(nullptr, -1, nullptr, 0, 0)})
    {
        EXPECT_EQ(mat.GetSize(), cv::Size(0, 0));
        EXPECT_TRUE(IsSame(mat.GetScale(), {0.0, 0.0, 0.0}));
        EXPECT_TRUE(IsSame(mat.GetOffset(), {0.0, 0.0, 0.0}));
    }
}

TEST(MatFromMessage, AMissingItemIsRefused)
{
    const Handle message = MakeTwelve();
    const Region region = FlatRegion(0.0, 0.0, 2.0, 2.0);
    for (const int index : {-1, 1, std::numeric_limits<int>::max()})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::GetSurfaceItemOffset", [&] { zvlMat(message, index, &region, 0, 0); });
        Region covered = region;
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::GetSurfaceItemOffset",
                    [&] { zvlMat::GetRegionFromMsg(message, index, &covered); });
        EXPECT_EQ(covered.width, 2.0);
        EXPECT_EQ(covered.depth, 65535.0);
    }
}

TEST(MatFromMessage, WhatIsNotAMessageIsRefused)
{
    const Handle array = TestSupport::MakeFilled<std::int16_t>(3, 4, 1);
    const Region region = FlatRegion(0.0, 0.0, 2.0, 2.0);
    Region covered = region;
    int refused = 0;
    for (const bool construct : {true, false})
    {
        try
        {
            construct ? void(zvlMat(array, 0, &region, 0, 0)) : zvlMat::GetRegionFromMsg(array, 0, &covered);
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), STATUS_BAD_PARAMETER);
            ++refused;
        }
    }
    EXPECT_EQ(refused, 2);
    EXPECT_EQ(covered.width, 2.0);
}

TEST(MatFromMessage, WithoutMemoryThereAreNoCells)
{
    const Handle message = MakeTwelve();
    const auto construct = [&]
    {
        const zvlMat mat = Clipped(message, FlatRegion(1.0, 1.0, 2.0, 1.0));
        EXPECT_EQ(HeightsOf(mat), mat.GetSize().empty() ? Heights() : Heights({6, 7}));
        EXPECT_TRUE(IsSame(mat.GetOffset(), {1.0, 1.0, 0.0}));
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(construct), 2U);
}

TEST(MatFromMessage, ASizeBeyondMemoryHasNoCells)
{
    const Handle message = MakeTwelve();
    TestSupport::FailingAllocator allocator;
    allocator.MakeDefault();
    allocator.FailAt(2); // the cells themselves, some 2^63 bytes
    const zvlMat mat = Unclipped(message, FlatRegion(0.0, 0.0, 2147483647.0, 2147483647.0));
    EXPECT_EQ(allocator.Failures(), 1U);
    EXPECT_EQ(mat.GetSize(), cv::Size(0, 0));
    EXPECT_TRUE(IsSame(mat.GetScale(), {1.0, 1.0, 1.0}));
}

TEST(MatFromMessage, TheMessageCoversAllItsCellsAndHeights)
{
    const Handle message = MakeMessage(3, 4, Numbered(12), {0.5, 0.25, 0.125}, {10.0, 20.0, 30.0});
    Region region;
    region.angle = 7.0;
    zvlMat::GetRegionFromMsg(message, 0, &region);
    EXPECT_EQ(region.x, 10.0);
    EXPECT_EQ(region.y, 20.0);
    EXPECT_EQ(region.width, 2.0);
    EXPECT_EQ(region.height, 0.75);
    EXPECT_EQ(region.z, -4066.0);      // 30 - 32768 / 8
    EXPECT_EQ(region.depth, 8191.875); // 65535 / 8
    EXPECT_EQ(region.angle, 7.0);

    zvlMat::GetRegionFromMsg(nullptr, 0, &region);
    EXPECT_EQ(region.x, 10.0);
    zvlMat::GetRegionFromMsg(message, 0, nullptr);
}

/** One cell of the wanted part at a time, in the steps of the definition. */
struct Oracle
{
    Region wanted;
    Region covered;
    qPoint3d64f scale;
    qPoint3d64f origin;

    static int Near(double start, double offset, double size) { return static_cast<int>((start - offset) / size); }

    int Columns() const { return static_cast<int>(wanted.width / scale.x); }
    int Rows() const { return static_cast<int>(wanted.height / scale.y); }

    bool HasCell(int row, int column) const
    {
        const int sourceColumn = Near(wanted.x, origin.x, scale.x) + column;
        const int sourceRow = Near(wanted.y, origin.y, scale.y) + row;
        return sourceColumn >= 0 && sourceRow >= 0 &&
               sourceColumn < Near(covered.x + covered.width, origin.x, scale.x) &&
               sourceRow < Near(covered.y + covered.height, origin.y, scale.y);
    }

    bool Keeps(int height) const
    {
        const double high = (wanted.z + wanted.depth - origin.z) / scale.z;
        return Near(wanted.z, origin.z, scale.z) <= height &&
               height <= static_cast<int>(high > 0.0 ? high + 0.5 : high - 0.5);
    }

    int Cell(const std::vector<std::int16_t>& heights, int messageColumns, int row, int column, bool useLimits) const
    {
        if (!HasCell(row, column))
        {
            return 0;
        }
        const int sourceRow = Near(wanted.y, origin.y, scale.y) + row;
        const int sourceColumn = Near(wanted.x, origin.x, scale.x) + column;
        const int height = heights[static_cast<std::size_t>(sourceRow * messageColumns + sourceColumn)];
        return !useLimits || Keeps(height) ? height + 32768 : 0;
    }
};

TEST(MatFromMessage, RandomRegionsFollowTheDefinitionCellByCell)
{
    std::mt19937 random(21);
    std::uniform_int_distribution<std::size_t> size(1, 70);
    std::uniform_real_distribution<double> part(-0.4, 1.4);
    std::uniform_real_distribution<double> step(0.05, 2.0);
    std::uniform_real_distribution<double> position(-50.0, 50.0);
    int withCells = 0;
    for (int round = 0; round < 400; ++round)
    {
        const std::size_t rows = size(random);
        const std::size_t columns = size(random);
        const Surface surface = TestSupport::MakeRandomSurface(rows, columns, 0.2, random);
        const std::vector<std::int16_t> heights = TestSupport::CellsIn<std::int16_t>(surface.layers[0]);
        Oracle oracle;
        oracle.scale = {step(random), step(random), step(random)};
        oracle.origin = {position(random), position(random), position(random)};
        const Handle message = MakeMessage(rows, columns, heights, oracle.scale, oracle.origin);
        zvlMat::GetRegionFromMsg(message, 0, &oracle.covered);
        const Region& all = oracle.covered;
        const Region region = {all.x + part(random) * all.width,
                               all.y + part(random) * all.height,
                               part(random) * all.width,
                               part(random) * all.height,
                               0.0,
                               all.z + part(random) * all.depth,
                               part(random) * all.depth};
        const bool clips = random() % 2 == 0;
        const bool useLimits = random() % 2 == 0;
        oracle.wanted = region;
        if (clips)
        {
            Region shared;
            zvlMat::ComputeOverlappingRegion(&region, &all, &shared);
            oracle.wanted = {shared.x, shared.y, shared.width, shared.height, 0.0, region.z, region.depth};
        }

        const zvlMat part(message, 0, &region, useLimits ? 1 : 0, clips ? 0 : 1);
        const cv::Mat mat = part.GetMat();
        const bool hasCells = oracle.Columns() > 0 && oracle.Rows() > 0;
        ASSERT_EQ(!mat.empty(), hasCells);
        withCells += hasCells ? 1 : 0;
        ASSERT_EQ(mat.size(), hasCells ? cv::Size(oracle.Columns(), oracle.Rows()) : cv::Size());
        for (int row = 0; row < mat.rows; ++row)
        {
            for (int column = 0; column < mat.cols; ++column)
            {
                ASSERT_EQ(mat.at<std::uint16_t>(row, column),
                          oracle.Cell(heights, static_cast<int>(columns), row, column, useLimits))
                    << "row " << row << ", column " << column;
            }
        }
    }
    EXPECT_GT(withCells, 100);
}

} // namespace
