#include "Common/RoiProfileSupport.h"
#include "support/FailingAllocator.h"

#include <functional>
#include <limits>

namespace
{

using namespace Zvl;
using namespace TestSupport;

const std::vector<Point2d<double>> kSquare = {{2.0, 0.0}, {4.0, 0.0}, {4.0, 2.0}, {2.0, 2.0}, {2.0, 0.0}};

PolygonRoiProfile Polygon(const std::vector<Point2d<double>>& points, int isUniform = kUniform)
{
    return PolygonRoiProfile(points, 10, kUnitScale, kNoOffset, isUniform, nullptr);
}

EllipseRoiProfile Ellipse(double height, double width, double rotation)
{
    const EllipticalSector2d<double> ellipse = {0.0, 0.0, height, width, 0.0, 360.0, rotation, {10.0, 0.0}};
    return EllipseRoiProfile(ellipse, 20, kUnitScale, kNoOffset, kUniform, nullptr);
}

/** One region of each shape over items 2 to 4. */
std::vector<std::shared_ptr<RoiProfile>> EachShape(const qPoint64f& scale, const qPoint64f& offset, int isUniform,
                                                   std::uint64_t frame = 10)
{
    const EllipticalSector2d<double> ellipse = {0.0, 0.0, 2.0, 2.0, 0.0, 360.0, 0.0, {3.0, 1.0}};
    const AnnularSector2d<double> disc = {0.0, 1.0, 0.0, 360.0, {3.0, 1.0}};
    const Region2d<double> rectangle = {2.0, 0.0, 2.0, 2.0, 0.0};
    return {std::make_shared<PolygonRoiProfile>(kSquare, frame, scale, offset, isUniform, nullptr),
            std::make_shared<RectangleRoiProfile>(rectangle, frame, scale, offset, isUniform, nullptr),
            std::make_shared<EllipseRoiProfile>(ellipse, frame, scale, offset, isUniform, nullptr),
            std::make_shared<CircleRoiProfile>(disc, frame, scale, offset, isUniform, nullptr)};
}

/** Shows what a region without a frame starts with. */
class Bare : public SingleRoiProfile
{
public:
    using SingleRoiProfile::SingleRoiProfile;

    std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& /*anchor*/) const override { return nullptr; }
    MaskType GetShapeType() const override { return MaskTypePolygon; }

    void ExpectNothingSet() const
    {
        EXPECT_EQ(frameWidth, 0U);
        EXPECT_TRUE(scale.x == kNull && scale.y == kNull && offset.x == kNull && offset.y == kNull);
        EXPECT_EQ(boundingRegion.start, kNull);
        EXPECT_EQ(boundingRegion.length, 0.0);
        EXPECT_EQ(boundingSegment.start, std::numeric_limits<int>::min());
        EXPECT_EQ(boundingSegment.length, 0);
        EXPECT_EQ(mask.Get(), nullptr);
        EXPECT_EQ(isUniform, 7);
    }

    void ExpectResetClearsBothRanges()
    {
        _ResetBoundingSegment();
        EXPECT_EQ(boundingRegion.start, 0.0);
        EXPECT_EQ(boundingSegment.start, 0);
    }

    RunLength<int> planned;

protected:
    void _CalculateBoundingSegment() override { boundingSegment = planned; }
    int _IsPointInRegion(const qPoint64f& /*point*/) const override { return 5; }
};

TEST(RoiProfile, StartsWithNothingComputed)
{
    Bare bare(7, nullptr);
    bare.ExpectNothingSet();
    ExpectFlags(bare, 0, 0);
    bare.ExpectResetClearsBothRanges();
}

TEST(RoiProfile, SegmentAndMaskAreComputedWhenAskedFor)
{
    PolygonRoiProfile roi = Polygon(kSquare);
    ExpectFlags(roi, 0, 0);
    ExpectSegment(roi, 2, 3);
    ExpectFlags(roi, 1, 0);
    EXPECT_EQ(Picture(roi), "###");
    ExpectFlags(roi, 1, 1);
    void* first = roi.GetMask().Get();
    EXPECT_EQ(roi.GetMask().Get(), first);
}

TEST(RoiProfile, EveryShapeSelectsItsWholeSegmentAtFirst)
{
    for (const std::shared_ptr<RoiProfile>& roi : EachShape(kUnitScale, kNoOffset, kUniform))
    {
        ExpectSegment(*roi, 2, 3);
        EXPECT_EQ(Picture(*roi), "###");
    }
}

TEST(RoiProfile, OfPairsTheWholeFrameIsTheSegment)
{
    for (const std::shared_ptr<RoiProfile>& roi : EachShape(kUnitScale, kNoOffset, kPairs))
    {
        ExpectSegment(*roi, 0, 10);
        EXPECT_EQ(Picture(*roi), "##########");
    }
    PolygonRoiProfile none = Polygon({}, kPairs);
    ExpectSegment(none, 0, 10);
}

TEST(RoiProfile, AFrameBeyondTheRangeOfIntIsCut)
{
    const auto most = std::numeric_limits<int>::max();
    for (const std::shared_ptr<RoiProfile>& roi : EachShape(kUnitScale, kNoOffset, kPairs, UINT64_MAX))
    {
        ExpectSegment(*roi, 0, most);
    }
    for (const std::shared_ptr<RoiProfile>& roi : EachShape(kUnitScale, kNoOffset, kUniform, UINT64_MAX))
    {
        ExpectSegment(*roi, 2, 3);
    }
}

TEST(RoiProfile, ThreeEntriesMakeAnEmptySegment)
{
    PolygonRoiProfile roi = Polygon({{2.0, 0.0}, {4.0, 0.0}, {2.0, 2.0}});
    ExpectSegment(roi, 0, 0);
    ASSERT_NE(roi.GetMask().Get(), nullptr);
    EXPECT_EQ(Picture(roi), "");
    ExpectFlags(roi, 1, 1);
}

TEST(RoiProfile, ANullInTheMappingIsRefused)
{
    const std::vector<const char*> functions = {
        "Zvl::PolygonRoiProfile::_CalculateBoundingSegment", "Zvl::PolygonRoiProfile::_CalculateBoundingSegment",
        "Zvl::EllipseRoiProfile::_CalculateBoundingSegment", "Zvl::EllipseRoiProfile::_CalculateBoundingSegment"};
    for (const qPoint64f bad : {qPoint64f{kNull, 1.0}, qPoint64f{1.0, kNull}})
    {
        for (const int isUniform : {kUniform, kPairs})
        {
            const auto badScale = EachShape(bad, kNoOffset, isUniform);
            const auto badOffset = EachShape(kUnitScale, bad, isUniform);
            for (std::size_t i = 0; i < functions.size(); ++i)
            {
                ExpectThrow(STATUS_BAD_PARAMETER, functions[i], [&] { badScale[i]->GetBoundingSegment(); });
                ExpectThrow(STATUS_BAD_PARAMETER, functions[i], [&] { badOffset[i]->GetMask(); });
                ExpectFlags(*badScale[i], 0, 0);
                ExpectFlags(*badOffset[i], 0, 0);
            }
        }
    }
}

TEST(RoiProfile, TheSegmentIsClippedToTheFrame)
{
    RectangleRoiProfile left = Stretch(-3, 1);
    ExpectSegment(left, 0, 2);
    RectangleRoiProfile right = Stretch(8, 14);
    ExpectSegment(right, 8, 2);
    RectangleRoiProfile beyond = Stretch(12, 14);
    EXPECT_LT(beyond.GetBoundingSegment().length, 1);
    EXPECT_EQ(Picture(beyond), "");
    RectangleRoiProfile before = Stretch(-5, -2);
    EXPECT_LT(before.GetBoundingSegment().length, 1);
    EXPECT_EQ(Picture(before), "");
}

TEST(RoiProfile, ItemsJustBesideTheShapeAreInTheSegment)
{
    const auto segmentOf = [](double x, double width)
    {
        RectangleRoiProfile roi({x, 0.0, width, 2.0, 0.0}, 10, kUnitScale, kNoOffset, kUniform, nullptr);
        return roi.GetBoundingSegment();
    };
    EXPECT_EQ(segmentOf(2.0004, 2.0).start, 2);
    EXPECT_EQ(segmentOf(2.0006, 2.0).start, 3);
    EXPECT_EQ(segmentOf(2.0, 1.9996).length, 3);
    EXPECT_EQ(segmentOf(2.0, 1.9994).length, 2);
}

TEST(RoiProfile, NegativeScalesAndShapesBetweenItemsSelectNothing)
{
    for (const std::shared_ptr<RoiProfile>& roi : EachShape({-1.0, 1.0}, {10.0, 0.0}, kUniform))
    {
        EXPECT_LT(roi->GetBoundingSegment().length, 1);
        EXPECT_EQ(Picture(*roi), "");
    }
    RectangleRoiProfile turned({6.0, 0.0, -4.0, 2.0, 0.0}, 10, kUnitScale, kNoOffset, kUniform, nullptr);
    ExpectSegment(turned, 2, 5); // the corners are those of the positive width, but no point is inside
    turned.ApplyRoi(HeightProfile({1, 1, 1, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(Picture(turned), ".....");
    RectangleRoiProfile between({2.3, 0.0, 0.4, 2.0, 0.0}, 10, kUnitScale, kNoOffset, kUniform, nullptr);
    EXPECT_LT(between.GetBoundingSegment().length, 1);
    EXPECT_EQ(Picture(between), "");
}

TEST(RoiProfile, EveryMappingHasAResult)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double odd : {0.0, -0.0, 5e-324, -1e308, 1e308, infinity, -infinity, nan})
    {
        for (const auto& [scale, offset] : {std::pair<qPoint64f, qPoint64f>{{odd, odd}, {0.0, 0.0}},
                                            std::pair<qPoint64f, qPoint64f>{{1.0, 1.0}, {odd, odd}}})
        {
            for (const std::shared_ptr<RoiProfile>& roi : EachShape(scale, offset, kUniform))
            {
                const RunLength<int> segment = roi->GetBoundingSegment();
                EXPECT_TRUE(segment.length < 1 || (segment.start >= 0 && segment.start + segment.length <= 10));
                EXPECT_EQ(Picture(*roi).size(), static_cast<std::size_t>(std::max(segment.length, 0)));
                EXPECT_NO_THROW(roi->ApplyRoi(HeightProfile(std::vector<std::int16_t>(10, 1), scale, offset)));
            }
        }
    }
}

TEST(RoiProfile, TheSegmentOfATurnedEllipseIsAsNarrowAsTheEllipse)
{
    EllipseRoiProfile lying = Ellipse(4.0, 8.0, 0.0);
    ExpectSegment(lying, 6, 9);
    EllipseRoiProfile standing = Ellipse(4.0, 8.0, 90.0);
    ExpectSegment(standing, 8, 5);
    // Half the extent is the root of 16 / 2 + 4 / 2, 3.16; the rectangle around the turned ellipse would reach to 4.24.
    EllipseRoiProfile turned = Ellipse(4.0, 8.0, 45.0);
    ExpectSegment(turned, 7, 7);
    EllipseRoiProfile back = Ellipse(4.0, 8.0, -45.0);
    ExpectSegment(back, 7, 7);
}

TEST(RoiProfile, ShapesTellWhatTheyAre)
{
    const std::vector<MaskType> types = {MaskTypePolygon, MaskTypeRectangle, MaskTypeEllipse, MaskTypeCircle};
    const auto shapes = EachShape(kUnitScale, kNoOffset, kUniform);
    for (std::size_t i = 0; i < types.size(); ++i)
    {
        EXPECT_EQ(shapes[i]->GetShapeType(), types[i]);
    }
    for (const double angle : {0.0, 0.5, -0.5, 90.0})
    {
        const RectangleRoiProfile roi({2.0, 0.0, 2.0, 2.0, angle}, 10, kUnitScale, kNoOffset, kUniform, nullptr);
        EXPECT_EQ(roi.GetShapeType(), MaskTypeRectangle);
        EXPECT_EQ(roi.GetShape().angle, angle);
    }
    EXPECT_EQ(Polygon(kSquare).GetShape().size(), 5U);
    EXPECT_EQ(Ellipse(4.0, 8.0, 45.0).GetShape().outerWidth, 8.0);
    const CircleRoiProfile disc = Disc(2, 6);
    EXPECT_EQ(disc.GetShape().outerRadius, 2.0);
    const EllipticalSector2d<double>& around = static_cast<const EllipseRoiProfile&>(disc).GetShape();
    EXPECT_TRUE(around.outerWidth == 4.0 && around.outerHeight == 4.0 && around.rotation == 0.0);
}

// ---------------------------------------------------------------------------------------------------------
// Copies

TEST(RoiProfileCopy, CopiesOfSectorsTakeTheCachesAlongAndShareTheMask)
{
    CircleRoiProfile circle = Disc(2, 6);
    circle.GetMask();
    CircleRoiProfile copy(circle);
    ExpectFlags(copy, 1, 1);
    EXPECT_EQ(copy.GetMask().Get(), circle.GetMask().Get());
    circle.ApplyRoi(HeightProfile({0, 0, 0, 0, 9, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Picture(copy), "##.##");

    EllipseRoiProfile ellipse = Ellipse(4.0, 8.0, 0.0);
    EllipseRoiProfile early(ellipse);
    ExpectFlags(early, 0, 0);
    ellipse.GetMask();
    EllipseRoiProfile late(ellipse);
    ExpectFlags(late, 1, 1);
    EXPECT_EQ(late.GetMask().Get(), ellipse.GetMask().Get());
    early = ellipse;
    EXPECT_EQ(early.GetMask().Get(), ellipse.GetMask().Get());
}

/** Expects that copy-construction of @p roi leaves the caches behind and assignment takes them along. */
template <typename Roi>
void ExpectFreshCopies(Roi& roi)
{
    roi.ApplyRoi(HeightProfile({9, 9, 1, 9, 9, 9, 9, 9, 9, 9}));
    EXPECT_EQ(Picture(roi), "#..");
    Roi copy(roi);
    ExpectFlags(copy, 0, 0);
    EXPECT_EQ(Picture(copy), "###");
    EXPECT_NE(copy.GetMask().Get(), roi.GetMask().Get());
    EXPECT_EQ(Picture(roi), "#..");
    copy = roi;
    ExpectFlags(copy, 1, 1);
    EXPECT_EQ(copy.GetMask().Get(), roi.GetMask().Get());
    Roi moved(std::move(copy));
    ExpectFlags(moved, 0, 0);
    EXPECT_EQ(Picture(moved), "###");
}

TEST(RoiProfileCopy, CopiesOfPolygonsStartAgainAndAssignedOnesDoNot)
{
    PolygonRoiProfile polygon = Polygon(kSquare);
    ExpectFreshCopies(polygon);
    RectangleRoiProfile rectangle = Stretch(2, 4);
    ExpectFreshCopies(rectangle);
    const RectangleRoiProfile copy(rectangle);
    EXPECT_EQ(copy.GetShape().width, 2.0);
    EXPECT_EQ(static_cast<const PolygonRoiProfile&>(copy).GetShape().size(), 5U);
}

TEST(RoiProfileCopy, CopiesKeepFrameFormAndAllocator)
{
    FailingAllocator allocator;
    {
        const qPoint64f scale = {0.5, 0.5};
        const qPoint64f offset = {1.0, 1.0};
        const PolygonRoiProfile polygon(kSquare, 8, scale, offset, kUniform, allocator.Get());
        PolygonRoiProfile copy(polygon);
        ExpectSegment(copy, 2, 5);
        copy.GetMask();
        EXPECT_GT(allocator.LiveBlocks(), 0U);
        const RectangleRoiProfile pairs = Stretch(2, 4, kPairs);
        RectangleRoiProfile pairsCopy(pairs);
        ExpectSegment(pairsCopy, 0, 10);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

// ---------------------------------------------------------------------------------------------------------
// Anchors

TEST(RoiProfileAnchor, EveryShapeIsMovedAndStartsAgain)
{
    Anchor anchor;
    anchor.x = 3.0;
    const Profile profile = HeightProfile({1, 1, 1, 9, 9, 1, 1, 1, 1, 1});
    for (const std::shared_ptr<RoiProfile>& roi : EachShape(kUnitScale, kNoOffset, kUniform))
    {
        roi->ApplyRoi(profile);
        const std::string before = Picture(*roi);
        const std::shared_ptr<RoiProfile> moved = roi->ApplyAnchor(anchor);
        EXPECT_EQ(moved->GetShapeType(), roi->GetShapeType());
        ExpectFlags(*moved, 0, 0);
        ExpectSegment(*moved, 5, 3);
        EXPECT_EQ(Picture(*moved), "###");
        ExpectSegment(*roi, 2, 3);
        EXPECT_EQ(Picture(*roi), before);
    }
}

TEST(RoiProfileAnchor, TheShapeOfTheSameClassIsMoved)
{
    Anchor anchor;
    anchor.x = 1.0;
    anchor.y = 2.0;
    anchor.angle = 90.0;
    const auto rectangle = std::dynamic_pointer_cast<RectangleRoiProfile>(Stretch(2, 4).ApplyAnchor(anchor));
    ASSERT_NE(rectangle, nullptr);
    EXPECT_EQ(rectangle->GetShape().angle, 90.0);
    EXPECT_NEAR(rectangle->GetShape().x, 1.0 - 1.0 - 1.0, 1e-12); // the centre (3, 1) turns to (-1, 3)
    EXPECT_NEAR(rectangle->GetShape().y, 3.0 + 2.0 - 1.0, 1e-12);
    const auto polygon = std::dynamic_pointer_cast<PolygonRoiProfile>(Polygon(kSquare).ApplyAnchor(anchor));
    ASSERT_NE(polygon, nullptr);
    ASSERT_EQ(polygon->GetShape().size(), 5U);
    EXPECT_NEAR(polygon->GetShape()[1].x, 1.0, 1e-12); // (4, 0) turns to (0, 4)
    EXPECT_NEAR(polygon->GetShape()[1].y, 6.0, 1e-12);
    const auto ellipse = std::dynamic_pointer_cast<EllipseRoiProfile>(Ellipse(4.0, 8.0, 10.0).ApplyAnchor(anchor));
    ASSERT_NE(ellipse, nullptr);
    EXPECT_EQ(ellipse->GetShape().rotation, 100.0);
    EXPECT_NEAR(ellipse->GetShape().center.y, 12.0, 1e-12);
    const auto circle = std::dynamic_pointer_cast<CircleRoiProfile>(Disc(2, 6).ApplyAnchor(anchor));
    ASSERT_NE(circle, nullptr);
    EXPECT_EQ(circle->GetShape().startAngle, 90.0);
    EXPECT_NEAR(circle->GetShape().center.y, 6.0, 1e-12);
}

TEST(RoiProfileAnchor, FrameFormAndAllocatorArePassedOn)
{
    FailingAllocator allocator;
    {
        const std::shared_ptr<RoiProfile> moved = Stretch(2, 4, kPairs, allocator.Get()).ApplyAnchor(Anchor{});
        ExpectSegment(*moved, 0, 10);
        moved->GetMask();
        EXPECT_GT(allocator.LiveBlocks(), 0U);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
    EXPECT_EQ(Polygon({}).ApplyAnchor(Anchor{})->GetBoundingSegment().length, 0);
}

// ---------------------------------------------------------------------------------------------------------
// Failures

TEST(RoiProfileFailure, ShortageOfMemoryIsThrownAndTheNextCallStartsAgain)
{
    FailingAllocator allocator;
    {
        RectangleRoiProfile roi = Stretch(2, 4, kUniform, allocator.Get());
        allocator.FailAt(1);
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::RoiProfile::_ConstructMask", [&] { roi.GetMask(); });
        ExpectFlags(roi, 1, 0);
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::RoiProfile::_ConstructMask",
                    [&] { roi.ApplyRoi(HeightProfile(std::vector<std::int16_t>(10, 1))); });
        allocator.FailAt(2, Failing::OnlyNth);
        ExpectThrow(STATUS_OK, "Zvl::RoiProfile::_ConstructMask", [&] { roi.GetMask(); });
        ExpectFlags(roi, 1, 0);
        EXPECT_EQ(Picture(roi), "###");
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(RoiProfileFailure, EveryShortageLeavesByAnException)
{
    const Profile profile = HeightProfile(std::vector<std::int16_t>(10, 1));
    const std::size_t runs = ExpectEachFailureThrown("Zvl::RoiProfile::_ConstructMask",
                                                     [&]
                                                     {
                                                         RectangleRoiProfile roi = Stretch(2, 4);
                                                         roi.ApplyRoi(profile);
                                                     });
    EXPECT_GT(runs, 0U);
}

TEST(RoiProfileFailure, AMaskTooLargeForTheMemoryIsAFailureAndNoCrash)
{
    FailingAllocator allocator;
    allocator.FailAt(1);
    RectangleRoiProfile roi({2.0, 0.0, 2.0, 2.0, 0.0}, UINT64_MAX, kUnitScale, kNoOffset, kPairs, allocator.Get());
    ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::RoiProfile::_ConstructMask", [&] { roi.GetMask(); });
    ExpectFlags(roi, 1, 0);
}

TEST(RoiProfileFailure, SegmentsOfOtherShapesAreNotTrusted)
{
    Bare bare(kUniform, nullptr);
    bare.planned = {-2, 4};
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::SingleRoiProfile::_CheckApplyRoiConditions",
                [&] {
                    bare.ApplyRoi(HeightProfile({1, 1, 1, 1}));
                });
    EXPECT_EQ(Picture(bare), "####");

    Bare largest(kUniform, nullptr);
    largest.planned = {std::numeric_limits<int>::max(), std::numeric_limits<int>::max()};
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::SingleRoiProfile::_CheckApplyRoiConditions",
                [&] {
                    largest.ApplyRoi(HeightProfile({1, 1, 1, 1}));
                });

    Bare lowest(kUniform, nullptr);
    lowest.planned = {0, std::numeric_limits<int>::min()};
    EXPECT_EQ(Picture(lowest), "");
    lowest.ApplyRoi(HeightProfile({1, 1, 1, 1}));
    EXPECT_EQ(Picture(lowest), "");
}

TEST(RoiProfileFailure, AnyAnswerButZeroSelects)
{
    Bare bare(10, kUnitScale, kNoOffset, kUniform, nullptr);
    bare.planned = {1, 3};
    bare.ApplyRoi(HeightProfile({1, 1, kMissing, 1}));
    EXPECT_EQ(Picture(bare), "#.#");
}

} // namespace
