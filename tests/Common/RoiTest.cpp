#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/FailingAllocator.h"
#include "support/Regions.h"

#include <memory>

namespace
{

using namespace Zvl;
using TestSupport::ExpectBox;
using TestSupport::ExpectThrow;
using TestSupport::kNoOffset;
using TestSupport::kUnitScale;
using TestSupport::Picture;

/** A 3 by 2 rectangle of cells in a frame of 10 by 10. */
RectangleROI SmallRectangle()
{
    return RectangleROI(2.0, 3.0, 2.0, 1.0, 0.0, 10, 10, kUnitScale, kNoOffset, nullptr);
}

TEST(Roi, StartsWithNothingComputed)
{
    const RectangleROI roi = SmallRectangle();
    EXPECT_EQ(roi.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(roi.GetMaskValidity(), 0);
}

TEST(Roi, BoxAndMaskAreComputedWhenAskedFor)
{
    RectangleROI roi = SmallRectangle();
    ExpectBox(roi, 2, 3, 3, 2);
    EXPECT_EQ(roi.GetBoundingBoxValidity(), 1);
    EXPECT_EQ(roi.GetMaskValidity(), 0);
    EXPECT_EQ(Picture(roi), "### ###");
    EXPECT_EQ(roi.GetMaskValidity(), 1);
    const Region2d<double> region = roi.GetBoundingRegion();
    EXPECT_TRUE(region.x == 2.0 && region.y == 3.0 && region.width == 2.0 && region.height == 1.0);
    EXPECT_EQ(region.angle, 0.0);
}

TEST(Roi, TheMaskIsKeptUntilASetterDropsIt)
{
    RectangleROI roi = SmallRectangle();
    void* first = roi.GetMask().Get();
    EXPECT_EQ(roi.GetMask().Get(), first);
    const Zo::Object<void*> kept = roi.GetMask();
    roi.SetScale(kUnitScale);
    EXPECT_EQ(roi.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(roi.GetMaskValidity(), 0);
    EXPECT_NE(roi.GetMask().Get(), kept.Get());
}

TEST(Roi, EverySetterDropsBothCaches)
{
    RectangleROI roi = SmallRectangle();
    const std::vector<std::function<void()>> setters = {
        [&] { roi.SetFrame(10, 10); },     [&] { roi.SetFrameWidth(10); },    [&] { roi.SetFrameHeight(10); },
        [&] { roi.SetScale(kUnitScale); }, [&] { roi.SetOffset(kNoOffset); }, [&] { roi.SetAllocator(nullptr); }};
    for (const auto& setter : setters)
    {
        roi.GetMask();
        setter();
        EXPECT_EQ(roi.GetBoundingBoxValidity(), 0);
        EXPECT_EQ(roi.GetMaskValidity(), 0);
    }
    roi.SetFrame(4, 4);
    ExpectBox(roi, 2, 3, 2, 1);
    roi.SetFrameHeight(10);
    ExpectBox(roi, 2, 3, 2, 2);
    roi.SetFrameWidth(10);
    roi.SetOffset({1.0, 0.0});
    ExpectBox(roi, 1, 3, 3, 2);
}

TEST(Roi, WithoutAFrameTheMappingIsRefused)
{
    RectangleROI rectangle(2.0, 3.0, 2.0, 1.0, 0.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    const double null = TestSupport::kNull;
    for (const qPoint64f bad : {qPoint64f{null, 1.0}, qPoint64f{1.0, null}})
    {
        rectangle.SetScale(bad);
        rectangle.SetOffset(kNoOffset);
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonROI::_CalculateBoundingBox",
                    [&] { rectangle.GetBoundingBox(); });
        rectangle.SetScale(kUnitScale);
        rectangle.SetOffset(bad);
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonROI::_CalculateBoundingBox", [&] { rectangle.GetMask(); });
    }
    EXPECT_EQ(rectangle.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(rectangle.GetMaskValidity(), 0);

    RectangleROI bareRectangle;
    PolygonROI barePolygon;
    EllipseROI bareEllipse;
    CircleROI bareCircle;
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonROI::_CalculateBoundingBox", [&] { bareRectangle.GetMask(); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonROI::_CalculateBoundingBox", [&] { barePolygon.GetBoundingBox(); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::EllipseROI::_CalculateBoundingBox", [&] { bareEllipse.GetBoundingBox(); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::EllipseROI::_CalculateBoundingBox", [&] { bareCircle.GetMask(); });
}

TEST(Roi, AnEmptyBoxHasANullMaskAndBothFlags)
{
    RectangleROI roi(20.0, 3.0, 2.0, 1.0, 0.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(roi), "null");
    EXPECT_EQ(roi.GetBoundingBoxValidity(), 1);
    EXPECT_EQ(roi.GetMaskValidity(), 1);
}

TEST(Roi, MaskPixelsAreEditedInThePresentMask)
{
    RectangleROI roi = SmallRectangle();
    roi.SetMaskPixel(0, 0, 0);
    EXPECT_EQ(Picture(roi), "### ###"); // the edit came before there was a mask
    roi.SetMaskPixel(0, 1, 0);
    roi.SetMaskPixel(1, 2, 0);
    EXPECT_EQ(Picture(roi), "#.# ##.");
    roi.SetMaskPixel(0, 1, 200);
    EXPECT_EQ(TestSupport::CellsIn<std::uint8_t>(roi.GetMask())[1], 1);
    EXPECT_EQ(roi.GetMaskValidity(), 1);
}

TEST(Roi, MaskPixelsOutsideTheMaskAreIgnored)
{
    RectangleROI roi = SmallRectangle();
    roi.GetMask();
    roi.SetMaskPixel(2, 0, 0);
    roi.SetMaskPixel(0, 3, 0);
    roi.SetMaskPixel(UINT64_MAX, UINT64_MAX, 0);
    EXPECT_EQ(Picture(roi), "### ###");
}

TEST(Roi, CopiesShareTheMaskUntilOneRebuilds)
{
    RectangleROI roi = SmallRectangle();
    roi.GetMask();
    RectangleROI copy(roi);
    EXPECT_EQ(copy.GetMaskValidity(), 1);
    roi.SetMaskPixel(0, 0, 0);
    EXPECT_EQ(Picture(copy), ".## ###");
    copy.SetScale(kUnitScale);
    EXPECT_EQ(Picture(copy), "### ###");
    EXPECT_EQ(Picture(roi), ".## ###");

    RectangleROI assigned;
    assigned = roi;
    EXPECT_EQ(assigned.GetMask().Get(), roi.GetMask().Get());
    const RectangleROI moved(std::move(assigned));
    EXPECT_EQ(moved.GetMaskValidity(), 1);
}

TEST(Roi, DeepCopiesShareNothing)
{
    RectangleROI roi = SmallRectangle();
    roi.GetMask();
    roi.SetMaskPixel(0, 0, 0);
    const std::shared_ptr<ROI> copy = roi.DeepCopy();
    EXPECT_EQ(copy->GetBoundingBoxValidity(), 0);
    EXPECT_EQ(copy->GetMaskValidity(), 0);
    EXPECT_EQ(Picture(*copy), "### ###");
    EXPECT_NE(copy->GetMask().Get(), roi.GetMask().Get());
}

TEST(Roi, ShortageOfMemoryIsThrownAndTheNextCallStartsAgain)
{
    RectangleROI roi = SmallRectangle();
    TestSupport::FailingAllocator allocator;
    roi.SetAllocator(allocator.Get());
    roi.GetBoundingBox();
    allocator.FailAt(1);
    ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::ROI::_ConstructMask", [&] { roi.GetMask(); });
    EXPECT_EQ(roi.GetMaskValidity(), 0);
    allocator.FailAt(1, TestSupport::Failing::OnlyNth);
    ExpectThrow(STATUS_OK, "Zvl::ROI::_ConstructMask", [&] { roi.GetMask(); });
    EXPECT_EQ(roi.GetMaskValidity(), 0);
    EXPECT_EQ(Picture(roi), "### ###");
    roi = RectangleROI();
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(Roi, AMaskTooLargeToExistIsAFailureAndNoCrash)
{
    RectangleROI roi(0.0, 0.0, 3e9, 3e9, 0.0, UINT64_MAX, UINT64_MAX, kUnitScale, kNoOffset, nullptr);
    TestSupport::FailingAllocator allocator;
    allocator.FailAt(1);
    roi.SetAllocator(allocator.Get());
    ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::ROI::_ConstructMask", [&] { roi.GetMask(); });
}

TEST(ThresholdHeightOfRegion, ClearsTheRegionsOwnMask)
{
    std::vector<std::int16_t> heights(100, 5);
    heights[3 * 10 + 2] = 50;
    heights[4 * 10 + 4] = TestSupport::kMissing;
    const Surface surface = TestSupport::MakeSurface(10, 10, heights);
    RectangleROI roi = SmallRectangle();
    ThresholdHeight(surface, 0.0, 10.0, roi);
    EXPECT_EQ(Picture(roi), ".## ##.");
}

TEST(ThresholdHeightOfRegion, WithoutHeightsTheRegionIsNotTouched)
{
    RectangleROI roi = SmallRectangle();
    Surface surface;
    ThresholdHeight(surface, 0.0, 10.0, roi);
    surface.layers.emplace_back();
    ThresholdHeight(surface, 0.0, 10.0, roi);
    EXPECT_EQ(roi.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(roi.GetMaskValidity(), 0);
}

TEST(ThresholdHeightOfRegion, AFrameLargerThanTheSurfaceChangesNothing)
{
    const Surface surface = TestSupport::MakeSurface(2, 2, {0, 0, 0, 0});
    RectangleROI roi = SmallRectangle();
    EXPECT_NO_THROW(ThresholdHeight(surface, 5.0, 10.0, roi));
    EXPECT_EQ(Picture(roi), "### ###");
}

} // namespace
