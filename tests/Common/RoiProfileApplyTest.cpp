#include "Common/RoiProfileSupport.h"

#include <ZdkVisionLib/platform/ZoVision.h>

#include <limits>

namespace
{

using namespace Zvl;
using namespace TestSupport;

constexpr const char* kCheck = "Zvl::SingleRoiProfile::_CheckApplyRoiConditions";

/** The mask after @p roi was applied to @p profile. */
std::string Applied(RoiProfile& roi, const Profile& profile)
{
    roi.ApplyRoi(profile);
    return Picture(roi);
}

/** A closed polygon in a frame of unit scale. */
PolygonRoiProfile Polygon(std::vector<Point2d<double>> corners, int isUniform = kPairs, std::uint64_t frame = 6)
{
    corners.push_back(corners.front());
    return PolygonRoiProfile(corners, frame, kUnitScale, kNoOffset, isUniform, nullptr);
}

/** A sector of a ring about (3, 0), over pairs. */
CircleRoiProfile Ring(double inner, double outer, double startAngle, double angleSpan, std::uint64_t frame)
{
    return CircleRoiProfile({inner, outer, startAngle, angleSpan, {3.0, 0.0}}, frame, kUnitScale, kNoOffset, kPairs,
                            nullptr);
}

TEST(RoiProfileApply, HeightsInsideTheShapeAreSelected)
{
    RectangleRoiProfile roi = Stretch(2, 5);
    EXPECT_EQ(Applied(roi, HeightProfile({1, 1, 0, 1, 3, 2, 1, 1, 1, 1})), "##.#");
    ExpectFlags(roi, 1, 1);
    EXPECT_EQ(Applied(roi, HeightProfile({1, 1, -1, 1, 1, 3, 1, 1, 1, 1})), ".##.");
}

TEST(RoiProfileApply, HeightsAreScaledAndShifted)
{
    // Items at -1, -0.5, 0, 0.5, 1; heights 10 + 0.25 counts.
    const qPoint64f scale = {0.5, 0.25};
    const qPoint64f offset = {-1.0, 10.0};
    RectangleRoiProfile roi({-0.5, 10.0, 1.0, 1.0, 0.0}, 5, scale, offset, kUniform, nullptr);
    ExpectSegment(roi, 1, 3);
    EXPECT_EQ(Applied(roi, HeightProfile({0, 0, 4, 5, 0}, scale, offset)), "##.");
    EXPECT_EQ(Applied(roi, HeightProfile({0, -1, 4, 3, 0}, scale, offset)), ".##");
}

TEST(RoiProfileApply, AMissingHeightIsOutsideAndTheNextItemKeepsItsPlace)
{
    RectangleRoiProfile rectangle({0.0, -40000.0, 9.0, 80000.0, 0.0}, 10, kUnitScale, kNoOffset, kUniform, nullptr);
    EXPECT_EQ(Applied(rectangle, HeightProfile({1, kMissing, 1, -32767, 32767, kMissing, kMissing, 1, 1, 1})),
              "#.###..###");
    // A roof from (0, 0) over (4, 4) to (8, 0): which items lie under it depends on their x.
    PolygonRoiProfile roof = Polygon({{0.0, 0.0}, {8.0, 0.0}, {4.0, 4.0}}, kUniform, 10);
    EXPECT_EQ(Applied(roof, HeightProfile({2, 2, 2, 2, 2, 2, 2, 2, 2, 2})), "..####...");
    EXPECT_EQ(Applied(roof, HeightProfile({2, kMissing, 2, 2, 2, 2, 2, 2, 2, 2})), "..####...");
    EXPECT_EQ(Applied(roof, HeightProfile({kMissing, 2, kMissing, 2, 2, 2, 2, 2, 2, 2})), "...###...");
}

TEST(RoiProfileApply, PositionsAddUpAlongTheProfile)
{
    const qPoint64f scale = {0.1, 1.0};
    // Six steps of 0.1 come to 0.6, and their product to 0.6000000000000001: item 6 is inside by its sum alone.
    ASSERT_GT(6 * 0.1, 0.6);
    RectangleRoiProfile fromZero({0.0, 0.0, 0.6, 2.0, 0.0}, 20, scale, kNoOffset, kUniform, nullptr);
    ExpectSegment(fromZero, 0, 7);
    EXPECT_EQ(Applied(fromZero, HeightProfile(std::vector<std::int16_t>(20, 1), scale)), "#######");
    // From item 1 on, the fifth step comes to 0.6, too; from item 6 on, there is none and the product stands.
    RectangleRoiProfile fromOne({0.1, 0.0, 0.5, 2.0, 0.0}, 20, scale, kNoOffset, kUniform, nullptr);
    EXPECT_EQ(Applied(fromOne, HeightProfile(std::vector<std::int16_t>(20, 1), scale)), "######");
    RectangleRoiProfile fromSix({0.6, 0.0, 0.0, 2.0, 0.0}, 20, scale, kNoOffset, kUniform, nullptr);
    ExpectSegment(fromSix, 6, 1);
    EXPECT_EQ(Applied(fromSix, HeightProfile(std::vector<std::int16_t>(20, 1), scale)), ".");
    // Ten steps come to 0.9999999999999999.
    PolygonRoiProfile edge({{0.0, 0.0}, {1.0, 0.0}, {1.0, 2.0}, {0.0, 2.0}, {0.0, 0.0}}, 20, scale, kNoOffset, kUniform,
                           nullptr);
    EXPECT_EQ(Applied(edge, HeightProfile(std::vector<std::int16_t>(20, 1), scale)), "##########.");
}

TEST(RoiProfileApply, PairsAreReadWhereTheyLie)
{
    RectangleRoiProfile roi({2.0, 0.0, 2.0, 2.0, 0.0}, 6, kUnitScale, kNoOffset, kPairs, nullptr);
    const CountPairs pairs = {{4, 2}, {2, 0}, {1, 1}, {3, 3}, {kMissing, 1}, {3, kMissing}};
    EXPECT_EQ(Applied(roi, PairProfile(pairs)), "##....");
    const qPoint64f scale = {0.5, 0.25};
    const qPoint64f offset = {-1.0, 10.0};
    RectangleRoiProfile fine({-0.5, 10.0, 1.0, 1.0, 0.0}, 4, scale, offset, kPairs, nullptr);
    EXPECT_EQ(Applied(fine, PairProfile({{3, 4}, {1, 0}, {0, 0}, {2, -1}}, scale, offset)), "##..");
}

TEST(RoiProfileApply, APairWithAMissingCountIsOutsideOfEveryShape)
{
    RectangleRoiProfile all({-40000.0, -40000.0, 80000.0, 80000.0, 0.0}, 4, kUnitScale, kNoOffset, kPairs, nullptr);
    EXPECT_EQ(Applied(all, PairProfile({{kMissing, 1}, {1, kMissing}, {kMissing, kMissing}, {-32767, 32767}})), "...#");
}

TEST(RoiProfileApply, TheTypeOfPairsIsNotExamined)
{
    RectangleRoiProfile roi({2.0, 0.0, 2.0, 2.0, 0.0}, 4, kUnitScale, kNoOffset, kPairs, nullptr);
    const std::vector<std::int16_t> counts = {4, 2, 1, 1, 2, 0, 9, 9, 0, 0, 0, 0, 0, 0, 0, 0};
    for (const auto& [type, count] : {std::pair<qType, std::size_t>{xxq8u_type, 16},
                                      {xxq16s_type, 8},
                                      {xxq16u_type, 8},
                                      {xxq32s_type, 4},
                                      {xxqBool_type, 4},
                                      {xxqPoint32s_type, 4},
                                      {xxq64f_type, 4}})
    {
        EXPECT_EQ(Applied(roi, MakeProfile(MakeLine(type, count, counts.data()))), "#.#.");
        roi.ApplyRoi(PairProfile({{0, 0}, {0, 0}, {0, 0}, {0, 0}}));
    }
}

TEST(RoiProfileApply, ALongerProfileIsFineAndItsRestIsNotLookedAt)
{
    RectangleRoiProfile heights = Stretch(2, 4);
    EXPECT_EQ(Applied(heights, HeightProfile({9, 9, 1, 1, 1})), "###");
    EXPECT_EQ(Applied(heights, HeightProfile(std::vector<std::int16_t>(100, 1))), "###");
    RectangleRoiProfile pairs = Stretch(2, 4, kPairs);
    EXPECT_EQ(Applied(pairs, PairProfile(CountPairs(12, {2, 1}))), "##########");
}

// ---------------------------------------------------------------------------------------------------------
// Shapes

TEST(RoiProfileShape, APolygonTakesInItsLeftEdgeAndLeavesOutItsRightEdge)
{
    const Profile profile = HeightProfile({1, 1, 1, 1, 1, 1});
    PolygonRoiProfile polygon = Polygon({{2.0, 0.0}, {4.0, 0.0}, {4.0, 2.0}, {2.0, 2.0}}, kUniform);
    EXPECT_EQ(Applied(polygon, profile), "##.");
    RectangleRoiProfile rectangle({2.0, 0.0, 2.0, 2.0, 0.0}, 6, kUnitScale, kNoOffset, kUniform, nullptr);
    EXPECT_EQ(Applied(rectangle, profile), "###");
    // Lower and upper edge: both ends of the left edge count.
    PolygonRoiProfile square = Polygon({{2.0, 0.0}, {4.0, 0.0}, {4.0, 2.0}, {2.0, 2.0}});
    EXPECT_EQ(Applied(square, PairProfile({{2, 0}, {3, 0}, {4, 0}, {2, 2}, {3, 2}, {4, 2}})), "##.##.");
}

TEST(RoiProfileShape, ARayThroughAVertexCountsOnce)
{
    PolygonRoiProfile diamond = Polygon({{2.0, 0.0}, {4.0, 2.0}, {2.0, 4.0}, {0.0, 2.0}});
    // (0, 2) and (1, 2) look through the right corner. (0, 4) and (0, 0) look at the upper and lower one, and have one
    // crossing though they are outside; from (2, 4) there is nothing to the right.
    EXPECT_EQ(Applied(diamond, PairProfile({{0, 2}, {1, 2}, {4, 2}, {0, 4}, {0, 0}, {2, 4}})), "##.##.");
    // A notch from the right: (0, 2) looks through its tip, which counts once, as do the corners above.
    PolygonRoiProfile notched = Polygon({{1.0, 0.0}, {5.0, 0.0}, {3.0, 2.0}, {5.0, 4.0}, {1.0, 4.0}});
    EXPECT_EQ(Applied(notched, PairProfile({{2, 2}, {0, 2}, {4, 2}, {2, 1}, {0, 1}, {5, 1}})), "#..#..");
}

TEST(RoiProfileShape, ASelfCrossingPolygonFollowsParity)
{
    PolygonRoiProfile bow = Polygon({{0.0, 0.0}, {4.0, 4.0}, {4.0, 0.0}, {0.0, 4.0}});
    EXPECT_EQ(Applied(bow, PairProfile({{0, 1}, {0, 3}, {2, 1}, {3, 2}, {2, 3}, {3, 1}})), "##.#.#");
    // (1, 2) looks through the point where both diagonals cross: one place, and the parity comes out wrong.
    EXPECT_EQ(Applied(bow, PairProfile({{1, 2}, {1, 2}, {1, 2}, {1, 2}, {1, 2}, {1, 2}})), "......");
}

TEST(RoiProfileShape, OpenAndTinyPolygonsAreTestedAsTheyAre)
{
    const auto applied = [](const std::vector<Point2d<double>>& points)
    {
        PolygonRoiProfile roi(points, 2, kUnitScale, kNoOffset, kPairs, nullptr);
        return Applied(roi, PairProfile({{0, 1}, {4, 1}}));
    };
    EXPECT_EQ(applied({}), "..");
    EXPECT_EQ(applied({{2.0, 0.0}}), "..");
    EXPECT_EQ(applied({{2.0, 0.0}, {2.0, 2.0}}), "#.");
    EXPECT_EQ(applied({{2.0, 0.0}, {2.0, 2.0}, {3.0, 0.0}}), "..");
}

TEST(RoiProfileShape, ARectangleTurnedByMoreThanTheToleranceIsAPolygon)
{
    const Profile profile = HeightProfile({1, 1, 1, 1, 1, 1});
    const auto applied = [&](double angle)
    {
        RectangleRoiProfile roi({2.0, 0.0, 2.0, 2.0, angle}, 6, kUnitScale, kNoOffset, kUniform, nullptr);
        EXPECT_EQ(roi.GetShapeType(), MaskTypeRectangle);
        return Applied(roi, profile);
    };
    EXPECT_EQ(applied(0.0), "###");
    EXPECT_EQ(applied(1.1e-7), "###");
    EXPECT_EQ(applied(-1.1e-7), "###");
    EXPECT_EQ(applied(1.3e-7), "##.");
    EXPECT_EQ(applied(-1.3e-7), "##.");
    EXPECT_EQ(applied(90.0), "##.");
    EXPECT_EQ(applied(-90.0), "##.");
}

TEST(RoiProfileShape, AllEdgesOfAnUprightRectangleBelongToIt)
{
    RectangleRoiProfile roi({2.0, 1.0, 2.0, 2.0, 0.0}, 8, kUnitScale, kNoOffset, kPairs, nullptr);
    EXPECT_EQ(Applied(roi, PairProfile({{2, 1}, {4, 1}, {4, 3}, {2, 3}, {1, 1}, {5, 3}, {2, 0}, {4, 4}})), "####....");
    RectangleRoiProfile negative({4.0, 3.0, -2.0, -2.0, 0.0}, 4, kUnitScale, kNoOffset, kPairs, nullptr);
    EXPECT_EQ(Applied(negative, PairProfile({{2, 1}, {3, 2}, {4, 3}, {4, 1}})), "....");
}

TEST(RoiProfileShape, BothCirclesAndBothEndsOfARingsSectorBelongToIt)
{
    CircleRoiProfile upper = Ring(1.0, 2.0, 0.0, 90.0, 8);
    const CountPairs pairs = {{4, 0}, {5, 0}, {3, 1}, {3, 2}, {6, 0}, {3, 0}, {2, 0}, {3, -1}};
    EXPECT_EQ(Applied(upper, PairProfile(pairs)), "####....");
    CircleRoiProfile whole = Ring(1.0, 2.0, 17.0, -360.0, 8);
    EXPECT_EQ(Applied(whole, PairProfile(pairs)), "####..##");
}

TEST(RoiProfileShape, AnEllipseIsTestedInItsOwnFrame)
{
    // 4 along its own x, which points up, 2 along its own y.
    const EllipticalSector2d<double> ellipse = {0.0, 0.0, 2.0, 4.0, 0.0, 360.0, 90.0, {3.0, 0.0}};
    EllipseRoiProfile roi(ellipse, 6, kUnitScale, kNoOffset, kPairs, nullptr);
    EXPECT_EQ(Applied(roi, PairProfile({{3, 0}, {3, 1}, {3, -1}, {5, 0}, {3, 3}, {4, 1}})), "###...");
}

TEST(RoiProfileShape, ADiameterOfZeroExcludesNothingWhereItsQuotientIsNotANumber)
{
    const CountPairs pairs = {{3, 0}, {4, 0}, {3, 1}, {4, 1}};
    CircleRoiProfile noHole = Ring(0.0, 1.0, 0.0, 360.0, 4);
    EXPECT_EQ(Applied(noHole, PairProfile(pairs)), "###.");
    CircleRoiProfile point = Ring(0.0, 0.0, 0.0, 360.0, 4);
    EXPECT_EQ(Applied(point, PairProfile(pairs)), "#...");
    // The centre's quotient is 0 for the inner circle, which excludes it before the outer one is asked.
    CircleRoiProfile hole = Ring(1.0, 0.0, 0.0, 360.0, 4);
    EXPECT_EQ(Applied(hole, PairProfile(pairs)), "....");

    const auto applied = [&](double innerHeight, double innerWidth, double outerHeight, double outerWidth)
    {
        EllipseRoiProfile roi({innerHeight, innerWidth, outerHeight, outerWidth, 0.0, 360.0, 0.0, {3.0, 0.0}}, 4,
                              kUnitScale, kNoOffset, kPairs, nullptr);
        return Applied(roi, PairProfile(pairs));
    };
    EXPECT_EQ(applied(0.0, 0.0, 2.0, 2.0), "###.");
    // On an axis whose other diameter is 0, one of the two terms is 0 / 0, and so the sum is not a number.
    EXPECT_EQ(applied(0.0, 0.0, 0.0, 0.0), "###.");
    EXPECT_EQ(applied(0.0, 0.0, 0.0, 1.0), "##..");
    EXPECT_EQ(applied(0.0, 0.0, 1.0, 0.0), "#.#.");

    CircleRoiProfile uniform({0.0, 0.0, 0.0, 360.0, {3.0, 1.0}}, 6, kUnitScale, kNoOffset, kUniform, nullptr);
    ExpectSegment(uniform, 3, 1);
    EXPECT_EQ(Applied(uniform, HeightProfile({1, 1, 1, 1, 1, 1})), "#");
    EXPECT_EQ(Applied(uniform, HeightProfile({1, 1, 1, 2, 1, 1})), ".");
}

// ---------------------------------------------------------------------------------------------------------
// Nothing to do

TEST(RoiProfileApply, WithoutItemsNothingIsDone)
{
    RectangleRoiProfile roi = Stretch(2, 4);
    Profile profile(kNoOffset, kUnitScale);
    roi.ApplyRoi(profile);
    profile.layers.emplace_back();
    roi.ApplyRoi(profile);
    roi.ApplyRoi(Profile());
    ExpectFlags(roi, 0, 0);
    EXPECT_EQ(Applied(roi, HeightProfile({9, 9, 1, 9, 1})), "#.#");
    roi.ApplyRoi(profile);
    EXPECT_EQ(Picture(roi), "#.#");

    RectangleRoiProfile unset({2.0, 0.0, 2.0, 2.0, 0.0}, 10, {kNull, kNull}, {kNull, kNull}, kUniform, nullptr);
    EXPECT_NO_THROW(unset.ApplyRoi(profile));
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonRoiProfile::_CalculateBoundingSegment",
                [&] { unset.ApplyRoi(HeightProfile({1})); });
}

TEST(RoiProfileApply, AnEmptySegmentLooksAtNoItem)
{
    RectangleRoiProfile beyond = Stretch(12, 14);
    beyond.ApplyRoi(MakeProfile(MakeFilled<std::uint8_t>(1, 1, 0), {5.0, 5.0}));
    ExpectFlags(beyond, 1, 0);
    RectangleRoiProfile between({2.3, 0.0, 0.4, 2.0, 0.0}, 10, kUnitScale, kNoOffset, kUniform, nullptr);
    between.ApplyRoi(HeightProfile({}));
    ExpectFlags(between, 1, 0);
    RectangleRoiProfile noFrame({2.0, 0.0, 2.0, 2.0, 0.0}, 0, kUnitScale, kNoOffset, kPairs, nullptr);
    noFrame.ApplyRoi(HeightProfile({}));
    ExpectFlags(noFrame, 1, 0);
}

// ---------------------------------------------------------------------------------------------------------
// Failures

/** Expects @p status, and that the mask stays as it was. */
void ExpectRefused(int status, RoiProfile& roi, const Profile& profile)
{
    const std::string before = Picture(roi);
    ExpectThrow(status, kCheck, [&] { roi.ApplyRoi(profile); });
    EXPECT_EQ(Picture(roi), before);
}

TEST(RoiProfileFailure, ASegmentPastTheLayerIsRefused)
{
    RectangleRoiProfile heights = Stretch(2, 4);
    heights.ApplyRoi(HeightProfile({9, 9, 1, 9, 1}));
    ExpectRefused(STATUS_BAD_PARAMETER, heights, HeightProfile({1, 1, 1, 1}));
    ExpectRefused(STATUS_BAD_PARAMETER, heights, HeightProfile({}));
    RectangleRoiProfile pairs = Stretch(2, 4, kPairs);
    ExpectRefused(STATUS_BAD_PARAMETER, pairs, PairProfile(CountPairs(9, {2, 1})));
}

TEST(RoiProfileFailure, ALayerWithoutTheBytesOfItsPairsIsRefused)
{
    RectangleRoiProfile roi = Stretch(2, 4, kPairs);
    const std::vector<std::int16_t> counts(80, 1);
    ExpectRefused(STATUS_BAD_PARAMETER, roi, MakeProfile(MakeLine(xxq16s_type, 10, counts.data())));
    ExpectRefused(STATUS_BAD_PARAMETER, roi, MakeProfile(MakeLine(xxq16s_type, 19, counts.data())));
    ExpectRefused(STATUS_BAD_PARAMETER, roi, MakeProfile(MakeLine(xxq8u_type, 39, counts.data())));
    ExpectRefused(STATUS_BAD_PARAMETER, roi, MakeProfile(MakeLine(xxq64f_type, 9, counts.data()))); // items are too few
    EXPECT_NO_THROW(roi.ApplyRoi(MakeProfile(MakeLine(xxq16s_type, 20, counts.data()))));
    EXPECT_NO_THROW(roi.ApplyRoi(MakeProfile(MakeLine(xxq8u_type, 40, counts.data()))));
}

TEST(RoiProfileFailure, ALayerThatIsNoLineIsRefused)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 20, nullptr));
    Zo::Test(qArrayList_Resize(list, 20));
    for (const int isUniform : {kUniform, kPairs})
    {
        RectangleRoiProfile roi = Stretch(2, 4, isUniform);
        ExpectRefused(STATUS_BAD_PARAMETER, roi, MakeProfile(MakeFilled<std::int16_t>(1, 20, 1)));
        ExpectRefused(STATUS_BAD_PARAMETER, roi, MakeProfile(list));
    }
}

TEST(RoiProfileFailure, LinesOfObjectsAreNoPairs)
{
    RectangleRoiProfile pairs = Stretch(2, 4, kPairs);
    RectangleRoiProfile heights = Stretch(2, 4, kUniform);
    for (const qType type : {xxqObject_type, xxqAlloc_type, xxqArray1_type, xxqArray2_type, xxqArrayList_type,
                             xxqMemory_type, xxqSerializer_type, xxZvSurfaceMsg_type})
    {
        Profile profile(kNoOffset, kUnitScale);
        profile.AddLayer(type, 20, nullptr);
        ExpectRefused(STATUS_BAD_PARAMETER, pairs, profile);
        ExpectRefused(STATUS_MISMATCH, heights, profile);
    }
}

TEST(RoiProfileFailure, OtherItemsThanHeightsAreAMismatch)
{
    RectangleRoiProfile roi = Stretch(2, 4);
    const std::vector<std::uint8_t> zeros(200, 0);
    for (const qType type : {xxq8u_type, xxq16u_type, xxq32s_type, xxq64f_type})
    {
        ExpectRefused(STATUS_MISMATCH, roi, MakeProfile(MakeLine(type, 10, zeros.data())));
        ExpectRefused(STATUS_BAD_PARAMETER, roi, MakeProfile(MakeLine(type, 4, zeros.data()))); // the size comes first
    }
}

TEST(RoiProfileFailure, AnotherMappingIsAMismatch)
{
    RectangleRoiProfile heights = Stretch(2, 4);
    RectangleRoiProfile pairs = Stretch(2, 4, kPairs);
    for (const double sign : {1.0, -1.0})
    {
        for (int field = 0; field < 4; ++field)
        {
            const auto mapped = [&](Profile profile, double difference)
            {
                double* const fields[] = {&profile.offset.x, &profile.offset.y, &profile.scale.x, &profile.scale.y};
                *fields[field] += sign * difference;
                return profile;
            };
            const Profile line = HeightProfile(std::vector<std::int16_t>(10, 1));
            const Profile cloud = PairProfile(CountPairs(10, {3, 1}));
            ExpectRefused(STATUS_MISMATCH, heights, mapped(line, 1e-6));
            ExpectRefused(STATUS_MISMATCH, pairs, mapped(cloud, 1e-6));
            EXPECT_EQ(Applied(heights, mapped(line, 1e-8)), "###");
            EXPECT_EQ(Applied(pairs, mapped(cloud, 1e-8)), "##########");
        }
    }
    Profile unset = HeightProfile(std::vector<std::int16_t>(10, 1));
    unset.offset = Profile().offset;
    ExpectRefused(STATUS_MISMATCH, heights, unset);
    EXPECT_EQ(qArray1_Count(unset.layers[0]), 10U);
    ExpectRefused(STATUS_BAD_PARAMETER, heights, MakeProfile(MakeLine(xxq16s_type, 1, "12"), {2.0, 2.0}));
}

// ---------------------------------------------------------------------------------------------------------
// Masks that others have changed

TEST(RoiProfileSharing, AMaskMadeShorterIsFilledAsFarAsItGoes)
{
    RectangleRoiProfile heights = Stretch(2, 4);
    Zo::Test(qArray1_Allocate(heights.GetMask(), xxq8u_type, 2));
    EXPECT_EQ(Applied(heights, HeightProfile({1, 1, 1, 9, 1})), "#.");
    RectangleRoiProfile pairs = Stretch(2, 4, kPairs);
    Zo::Test(qArray1_Allocate(pairs.GetMask(), xxq8u_type, 3));
    EXPECT_EQ(Applied(pairs, PairProfile(CountPairs(10, {2, 1}))), "###");
    Zo::Test(qArray1_Allocate(pairs.GetMask(), xxq8u_type, 0));
    EXPECT_EQ(Applied(pairs, PairProfile(CountPairs(10, {2, 1}))), "");
}

TEST(RoiProfileSharing, AMaskMadeLongerKeepsItsRest)
{
    RectangleRoiProfile roi = Stretch(2, 4);
    Zo::Test(qArray1_Allocate(roi.GetMask(), xxq8u_type, 5));
    Zo::Test(qMemSet(qArray1_Data(roi.GetMask()), 1, 5));
    EXPECT_EQ(Applied(roi, HeightProfile({1, 1, 9, 1, 9, 9, 9, 9})), ".#.##");
}

TEST(RoiProfileSharing, AMaskOfAnotherTypeIsNotWritten)
{
    RectangleRoiProfile roi = Stretch(2, 4);
    Zo::Test(qArray1_Allocate(roi.GetMask(), xxqObject_type, 3));
    roi.ApplyRoi(HeightProfile({1, 1, 1, 1, 1}));
    for (std::size_t i = 0; i < 3; ++i)
    {
        EXPECT_EQ(static_cast<void* const*>(qArray1_Data(roi.GetMask()))[i], nullptr);
    }
}

TEST(RoiProfileSharing, TheMaskItselfMayBeTheProfile)
{
    RectangleRoiProfile roi = Stretch(2, 4, kPairs);
    Zo::Test(qArray1_Allocate(roi.GetMask(), xxq8u_type, 40));
    Zo::Test(qArray1_Zero(roi.GetMask()));
    EXPECT_NO_THROW(roi.ApplyRoi(MakeProfile(roi.GetMask())));
    EXPECT_EQ(Picture(roi), std::string(40, '.')); // every pair read is (0, 0), left of the rectangle
}

} // namespace
