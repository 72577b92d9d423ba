#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/FailingAllocator.h"
#include "support/Regions.h"

namespace
{

using namespace Zvl;
using TestSupport::ExpectBox;
using TestSupport::ExpectThrow;
using TestSupport::kMissing;
using TestSupport::kNoOffset;
using TestSupport::kUnitScale;
using TestSupport::MakeArray;
using TestSupport::MakeFilled;
using TestSupport::Picture;

constexpr std::int16_t kHole = kMissing;

/** 2 rows by 3 columns with a hole at (0, 1), intensities 9, 10, 20 / 21, 15, 255, its origin at (@p x, @p y). */
Surface Reference(double x, double y)
{
    Surface surface = TestSupport::MakeSurface(2, 3, {1, kHole, 3, 4, 5, 6});
    surface.layers.push_back(MakeArray<std::uint8_t>(2, 3, {9, 10, 20, 21, 15, 255}));
    surface.offset = {x, y, 0.0};
    return surface;
}

SurfaceROI Region(const Surface& surface, std::uint64_t width = 10, std::uint64_t height = 8)
{
    return SurfaceROI(surface, width, height, kUnitScale, kNoOffset, nullptr);
}

TEST(SurfaceRoi, SelectsTheCellsThatHaveAHeight)
{
    SurfaceROI roi = Region(Reference(4.0, 3.0));
    EXPECT_EQ(roi.GetShapeType(), MaskTypeSurface);
    ExpectBox(roi, 4, 3, 3, 2);
    EXPECT_EQ(Picture(roi), "#.# ###");
    const Region2d<double> region = roi.GetBoundingRegion();
    EXPECT_TRUE(region.x == 4.0 && region.y == 3.0 && region.width == 3.0 && region.height == 2.0);
}

TEST(SurfaceRoi, TheReferencesOriginIsSnappedToTheGrid)
{
    SurfaceROI down = Region(Reference(2.4, 2.6));
    ExpectBox(down, 2, 3, 3, 2);
    SurfaceROI half = Region(Reference(2.5, 0.5));
    // Half a cell is rounded away from zero twice: to the next cell of the frame, and from there to the next cell of the
    // reference, whose first column and row are left out.
    ExpectBox(half, 3, 1, 2, 1);
    EXPECT_EQ(Picture(half), "##");
    // -2.5 becomes -3, where the three columns lie beside the frame; of -1.4 two are left in it.
    SurfaceROI outside = Region(Reference(-2.5, 0.0));
    EXPECT_EQ(outside.GetBoundingRegion().x, -3.0);
    SurfaceROI inside = Region(Reference(-1.4, 0.0));
    EXPECT_EQ(inside.GetBoundingRegion().x, -1.0);
    ExpectBox(inside, 0, 0, 2, 2);
    EXPECT_EQ(Picture(inside), ".# ##");
}

TEST(SurfaceRoi, FrameAndReferenceBothBoundTheBox)
{
    SurfaceROI right = Region(Reference(8.0, 7.0));
    ExpectBox(right, 8, 7, 2, 1);
    EXPECT_EQ(Picture(right), "#.");
    SurfaceROI above = Region(Reference(0.0, -1.0));
    ExpectBox(above, 0, 0, 3, 1);
    EXPECT_EQ(Picture(above), "###");
    SurfaceROI larger = Region(Reference(0.0, 0.0), 2, 1);
    ExpectBox(larger, 0, 0, 2, 1);
    EXPECT_EQ(Picture(larger), "#.");
}

TEST(SurfaceRoi, AReferenceLeftOfTheFrameBoundsItNoLongerAndSelectsNothing)
{
    // What is left of the reference is negative, which the comparison without sign takes for very much.
    SurfaceROI left = Region(Reference(-12.0, 0.0));
    ExpectBox(left, 0, 0, 10, 2);
    EXPECT_EQ(Picture(left), ".......... ..........");
    SurfaceROI above = Region(Reference(4.0, -50.0));
    ExpectBox(above, 4, 0, 3, 8);
    EXPECT_EQ(Picture(above), "... ... ... ... ... ... ... ...");
    SurfaceROI both = Region(Reference(-4.0, -3.0), 2, 1);
    ExpectBox(both, 0, 0, 2, 1);
    EXPECT_EQ(Picture(both), "..");
    // Just beside the frame nothing is left, which is not negative.
    SurfaceROI beside = Region(Reference(-3.0, 0.0));
    EXPECT_EQ(Picture(beside), "null");
    EXPECT_EQ(beside.GetBoundingBoxValidity(), 1);
    EXPECT_EQ(beside.GetMaskValidity(), 1);
}

TEST(SurfaceRoi, AReferenceRightOfTheFrameKeepsItsOwnSize)
{
    SurfaceROI right = Region(Reference(12.0, 0.0));
    ExpectBox(right, 12, 0, 3, 2);
    EXPECT_EQ(Picture(right), "#.# ###");
}

TEST(SurfaceRoi, AReferenceOfOtherCellsSelectsNothing)
{
    Surface reference = Reference(4.0, 3.0);
    reference.scale.x = 1.0 + 2e-7;
    SurfaceROI roi = Region(reference);
    EXPECT_EQ(Picture(roi), "null");
    EXPECT_EQ(roi.GetBoundingBoxValidity(), 1);
    EXPECT_EQ(roi.GetMaskValidity(), 1);
    EXPECT_EQ(roi.GetBoundingRegion().width, 0.0);
    reference.scale.x = 1.0 + 1e-7;
    SurfaceROI near = Region(reference);
    EXPECT_EQ(Picture(near), "#.# ###");
    reference.scale.y = std::numeric_limits<double>::quiet_NaN();
    SurfaceROI odd = Region(reference);
    EXPECT_EQ(Picture(odd), "null");
}

TEST(SurfaceRoi, MissingAndForeignLayersSelectNothing)
{
    Surface reference;
    reference.scale = {1.0, 1.0, 1.0};
    reference.offset = {0.0, 0.0, 0.0};
    SurfaceROI none = Region(reference);
    EXPECT_EQ(Picture(none), "null");
    reference.layers.emplace_back();
    SurfaceROI null = Region(reference);
    EXPECT_EQ(Picture(null), "null");
    reference.layers[0] = MakeFilled<std::uint8_t>(2, 3, 1);
    SurfaceROI foreign = Region(reference);
    EXPECT_EQ(Picture(foreign), "null");
    reference.layers[0] = MakeFilled<std::int16_t>(0, 3, 1);
    SurfaceROI empty = Region(reference);
    EXPECT_EQ(Picture(empty), "null");
}

TEST(SurfaceRoi, AReferenceWithoutRowsOrColumnsStillHasAPlace)
{
    Surface reference;
    reference.scale = {1.0, 1.0, 1.0};
    reference.offset = {3.0, 2.0, 0.0};
    reference.layers.push_back(MakeFilled<std::int16_t>(4, 0, 1));
    SurfaceROI region(reference, 20, 20, kUnitScale, kNoOffset, nullptr);
    ExpectBox(region, 3, 2, 0, 4);
    const Region2d<double> world = region.GetBoundingRegion();
    EXPECT_TRUE(world.x == 3.0 && world.y == 2.0 && world.width == 0.0 && world.height == 4.0);
    EXPECT_EQ(Picture(region), "null");
}

TEST(SurfaceRoi, WithoutAFrameTheMappingIsRefused)
{
    const qPoint64f null = {TestSupport::kNull, TestSupport::kNull};
    SurfaceROI roi = Region(Reference(0.0, 0.0));
    roi.SetScale(null);
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::SurfaceROI::_CalculateBoundingBox", [&] { roi.GetMask(); });
}

TEST(SurfaceRoi, StrangeMappingsEndWithoutACrash)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double strange :
         {infinity, -infinity, 1e300, -1e300, 3e9, -3e9, std::numeric_limits<double>::quiet_NaN(), TestSupport::kNull})
    {
        SurfaceROI moved = Region(Reference(strange, strange));
        EXPECT_NO_THROW(moved.GetMask());
        Surface reference = Reference(0.0, 0.0);
        reference.scale.x = strange;
        SurfaceROI scaled(reference, 10, 8, {strange, 1.0}, {0.0, strange}, nullptr);
        if (strange != TestSupport::kNull)
        {
            EXPECT_NO_THROW(scaled.GetMask());
        }
    }
    SurfaceROI zero(Reference(0.0, 0.0), UINT64_MAX, UINT64_MAX, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(zero), "#.# ###");
}

TEST(SurfaceRoi, AnAnchorLeavesTheBoxWhereItWas)
{
    SurfaceROI roi = Region(Reference(4.0, 3.0));
    roi.GetMask();
    const std::shared_ptr<ROI> same = roi.ApplyAnchor({5.0, 5.0, 5.0, 45.0});
    EXPECT_EQ(same->GetShapeType(), MaskTypeSurface);
    EXPECT_EQ(same->GetMaskValidity(), 0);
    ExpectBox(*same, 4, 3, 3, 2);
}

TEST(SurfaceRoi, OnlyADeepCopyCopiesTheReference)
{
    const Surface reference = Reference(4.0, 3.0);
    SurfaceROI roi = Region(reference);
    EXPECT_EQ(roi.GetShape().layers[0].Get(), reference.layers[0].Get());
    const auto copy = std::dynamic_pointer_cast<SurfaceROI>(roi.DeepCopy());
    ASSERT_NE(copy, nullptr);
    EXPECT_NE(copy->GetShape().layers[0].Get(), reference.layers[0].Get());
    EXPECT_NE(copy->GetShape().layers[1].Get(), reference.layers[1].Get());
    *static_cast<std::int16_t*>(qArray2_At(reference.layers[0], 0, 0)) = kHole;
    EXPECT_EQ(Picture(roi), "..# ###");
    EXPECT_EQ(Picture(*copy), "#.# ###");
}

TEST(SurfaceRoi, CellsThatALayerLostAreOutside)
{
    const Surface reference = Reference(4.0, 3.0);
    SurfaceROI roi = Region(reference);
    roi.GetBoundingBox();
    Zo::Test(qArray2_Allocate(reference.layers[0], xxq16s_type, 1, 1));
    *static_cast<std::int16_t*>(qArray2_At(reference.layers[0], 0, 0)) = 5;
    EXPECT_EQ(Picture(roi), "#.. ...");
    Zo::Test(qArray2_Allocate(reference.layers[0], xxq8u_type, 2, 3));
    roi.SetScale(kUnitScale);
    EXPECT_EQ(Picture(roi), "null");
}

TEST(SurfaceRoi, EveryShortageOfMemoryIsThrown)
{
    const Surface reference = Reference(4.0, 3.0);
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(
                      "Zvl::SurfaceROI::DeepCopy", [&] { Region(reference).DeepCopy(); }, mode),
                  4U);
        EXPECT_GT(TestSupport::ExpectEachFailureThrown(
                      "Zvl::ROI::_ConstructMask", [&] { Region(reference).GetMask(); }, mode),
                  0U);
    }
}

TEST(IntensityRoi, SelectsTheRangeWithBothItsEnds)
{
    IntensityROI roi(Reference(4.0, 3.0), 10, 8, kUnitScale, kNoOffset, 10, 20, nullptr);
    EXPECT_EQ(roi.GetShapeType(), MaskTypeIntensity);
    ExpectBox(roi, 4, 3, 3, 2);
    EXPECT_EQ(Picture(roi), "..# .#."); // 10 lies over a hole, 9 and 21 beside the range
    IntensityROI reversed(Reference(4.0, 3.0), 10, 8, kUnitScale, kNoOffset, 20, 10, nullptr);
    EXPECT_EQ(Picture(reversed), "... ...");
    const std::shared_ptr<ROI> same = roi.ApplyAnchor({5.0, 5.0, 5.0, 45.0});
    EXPECT_EQ(same->GetShapeType(), MaskTypeIntensity);
    EXPECT_EQ(Picture(*same), "..# .#.");
}

TEST(IntensityRoi, NeedsBothLayers)
{
    Surface reference = Reference(4.0, 3.0);
    reference.layers[1] = MakeFilled<std::int16_t>(2, 3, 15);
    IntensityROI foreign(reference, 10, 8, kUnitScale, kNoOffset, 0, 255, nullptr);
    EXPECT_EQ(Picture(foreign), "null");
    reference.layers.pop_back();
    IntensityROI one(reference, 10, 8, kUnitScale, kNoOffset, 0, 255, nullptr);
    EXPECT_EQ(Picture(one), "null");
}

TEST(IntensityRoi, TheIntensitiesGiveTheExtent)
{
    Surface reference = Reference(4.0, 3.0);
    reference.layers[1] = MakeFilled<std::uint8_t>(3, 4, 15);
    IntensityROI larger(reference, 10, 8, kUnitScale, kNoOffset, 0, 255, nullptr);
    ExpectBox(larger, 4, 3, 4, 3);
    EXPECT_EQ(Picture(larger), "#.#. ###. ....");
    reference.layers[1] = MakeFilled<std::uint8_t>(1, 2, 15);
    IntensityROI smaller(reference, 10, 8, kUnitScale, kNoOffset, 0, 255, nullptr);
    ExpectBox(smaller, 4, 3, 2, 1);
    EXPECT_EQ(Picture(smaller), "#.");
}

TEST(IntensityRoi, ItsDeepCopyIsASurfaceRegion)
{
    const IntensityROI roi(Reference(4.0, 3.0), 10, 8, kUnitScale, kNoOffset, 10, 20, nullptr);
    const std::shared_ptr<ROI> copy = roi.DeepCopy();
    EXPECT_EQ(copy->GetShapeType(), MaskTypeSurface);
    EXPECT_EQ(Picture(*copy), "#.# ###");
}

class DataMasks : public testing::TestWithParam<std::size_t>
{
};

TEST_P(DataMasks, AgreeWithThePlainLoop)
{
    const TestSupport::WorkerCount workers(GetParam());
    std::mt19937 random(47);
    for (int turn = 0; turn < 60; ++turn)
    {
        // Masks from 64 KiB on are shared out among the workers.
        const std::size_t least = turn % 20 == 0 ? 300 : 1;
        const std::size_t rows = least + random() % 30;
        const std::size_t columns = least + random() % 30;
        Surface reference = TestSupport::MakeRandomSurface(rows, columns, 0.3, random);
        reference.offset.x = static_cast<double>(random() % 40) - 20.0;
        reference.offset.y = static_cast<double>(random() % 40) - 20.0;
        IntensityROI roi(reference, 300, 300, kUnitScale, kNoOffset, 50, 180, nullptr);
        void* mask = roi.GetMask().Get();
        if (mask == nullptr)
        {
            continue;
        }
        const Rect2d<int> box = roi.GetBoundingBox();
        const auto cells = TestSupport::CellsIn<std::uint8_t>(mask);
        const auto heights = TestSupport::CellsIn<std::int16_t>(reference.layers[0]);
        const auto intensities = TestSupport::CellsIn<std::uint8_t>(reference.layers[1]);
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            const auto width = static_cast<std::size_t>(box.width);
            // Beside the reference the differences wrap around to very large ones.
            const auto x =
                static_cast<std::size_t>(box.x + static_cast<int>(i % width) - static_cast<int>(reference.offset.x));
            const auto y =
                static_cast<std::size_t>(box.y + static_cast<int>(i / width) - static_cast<int>(reference.offset.y));
            const std::size_t cell = x < columns && y < rows ? y * columns + x : heights.size();
            const bool inside =
                cell < heights.size() && heights[cell] != kHole && intensities[cell] >= 50 && intensities[cell] <= 180;
            ASSERT_EQ(cells[i], inside ? 1 : 0) << "turn " << turn << ", cell " << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Workers, DataMasks, testing::Values(1, 2, 3, 8, 17));

} // namespace
