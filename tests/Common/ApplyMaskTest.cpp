#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/FailingAllocator.h"
#include "support/Regions.h"

namespace
{

using namespace Zvl;
using TestSupport::CellsIn;
using TestSupport::ExpectThrow;
using TestSupport::kMissing;
using TestSupport::kNoOffset;
using TestSupport::kUnitScale;
using TestSupport::MakeArray;
using TestSupport::MakeFilled;
using Heights = std::vector<std::int16_t>;
using Intensities = std::vector<std::uint8_t>;

constexpr char kFunction[] = "Zvl::ApplyMask";

/** 3 rows by 4 columns: heights 0 to 11, intensities 100 to 111. */
Surface Scan()
{
    Heights heights;
    Intensities intensities;
    for (int i = 0; i < 12; ++i)
    {
        heights.push_back(static_cast<std::int16_t>(i));
        intensities.push_back(static_cast<std::uint8_t>(100 + i));
    }
    Surface scan = TestSupport::MakeSurface(3, 4, heights, {0.5, 2.0, 0.25}, {10.0, 20.0, 30.0});
    scan.layers.push_back(MakeArray(3, 4, intensities));
    return scan;
}

/** The L of the cells (1, 1), (2, 1) and (2, 2), in the frame of Scan(). */
std::shared_ptr<ROI> Corner()
{
    auto roi = std::make_shared<RectangleROI>(10.5, 22.0, 0.5, 2.0, 0.0, 4, 3, qPoint64f{0.5, 2.0},
                                              qPoint64f{10.0, 20.0}, nullptr);
    roi->GetMask();
    roi->SetMaskPixel(0, 1, 0);
    return roi;
}

/** A region of @p columns by @p rows cells at the origin of a frame of that size. */
std::shared_ptr<ROI> Whole(int columns, int rows)
{
    return std::make_shared<RectangleROI>(0.0, 0.0, columns - 1, rows - 1, 0.0, columns, rows, kUnitScale, kNoOffset,
                                          nullptr);
}

void ExpectMapping(const Surface& surface, double offsetX, double offsetY)
{
    EXPECT_EQ(surface.scale.x, 0.5);
    EXPECT_EQ(surface.scale.y, 2.0);
    EXPECT_EQ(surface.scale.z, 0.25);
    EXPECT_EQ(surface.offset.x, offsetX);
    EXPECT_EQ(surface.offset.y, offsetY);
    EXPECT_EQ(surface.offset.z, 30.0);
}

TEST(ApplyMask, CutsHeightsAndIntensitiesDownToTheRegion)
{
    Surface out;
    ApplyMask(Scan(), Corner(), &out, nullptr);
    ExpectMapping(out, 10.5, 22.0);
    ASSERT_EQ(out.layers.size(), 2U);
    EXPECT_EQ(CellsIn<std::int16_t>(out.layers[0]), (Heights{5, kMissing, 9, 10}));
    EXPECT_EQ(CellsIn<std::uint8_t>(out.layers[1]), (Intensities{105, 0, 109, 110}));
    EXPECT_EQ(qArray2_Length(out.layers[0], 0), 2U);
}

TEST(ApplyMask, WithoutIntensitiesASecondLayerOfTheOutputStays)
{
    Surface in = Scan();
    in.layers[1].Reset();
    Surface out;
    out.layers = {Zo::Object<void*>(), MakeFilled<std::uint8_t>(1, 1, 7)};
    ApplyMask(in, Corner(), &out, nullptr);
    EXPECT_EQ(CellsIn<std::int16_t>(out.layers[0]), (Heights{5, kMissing, 9, 10}));
    EXPECT_EQ(CellsIn<std::uint8_t>(out.layers[1]), Intensities{7});
    in.layers.pop_back();
    Surface fresh;
    ApplyMask(in, Corner(), &fresh, nullptr);
    EXPECT_EQ(fresh.layers.size(), 1U);
}

TEST(ApplyMask, LayersOfTheRightTypeAndSizeAreReused)
{
    Surface out;
    ApplyMask(Scan(), Corner(), &out, nullptr);
    const Surface first = out;
    ApplyMask(Scan(), Corner(), &out, nullptr);
    EXPECT_EQ(out.layers[0].Get(), first.layers[0].Get());
    EXPECT_EQ(out.layers[1].Get(), first.layers[1].Get());
}

TEST(ApplyMask, ALoopOverScansAllocatesNothingAfterTheFirst)
{
    const Surface in = Scan();
    const std::shared_ptr<ROI> roi = Corner();
    TestSupport::FailingAllocator allocator;
    Surface out;
    ApplyMask(in, roi, &out, allocator.Get());
    EXPECT_GT(allocator.Allocations(), 0U);
    allocator.FailNever();
    ApplyMask(in, roi, &out, allocator.Get());
    EXPECT_EQ(allocator.Allocations(), 0U);
}

TEST(ApplyMask, LayersOfAnotherTypeOrSizeAreReplaced)
{
    Surface out;
    out.layers = {MakeFilled<std::uint8_t>(2, 2, 7), MakeFilled<std::uint8_t>(1, 2, 7)};
    const Surface before = out;
    ApplyMask(Scan(), Corner(), &out, nullptr);
    EXPECT_EQ(CellsIn<std::int16_t>(out.layers[0]), (Heights{5, kMissing, 9, 10}));
    EXPECT_EQ(CellsIn<std::uint8_t>(out.layers[1]), (Intensities{105, 0, 109, 110}));
    EXPECT_EQ(CellsIn<std::uint8_t>(before.layers[0]), Intensities(4, 7));
}

TEST(ApplyMask, AnEmptyBoxWritesTheMappingOnly)
{
    Surface out;
    out.layers = {MakeFilled<std::uint8_t>(1, 1, 7)};
    const auto outside = std::make_shared<RectangleROI>(90.0, 90.0, 1.0, 1.0, 0.0, 4, 3, qPoint64f{0.5, 2.0},
                                                        qPoint64f{10.0, 20.0}, nullptr);
    ApplyMask(Scan(), outside, &out, nullptr);
    ExpectMapping(out, 10.0, 20.0);
    EXPECT_EQ(CellsIn<std::uint8_t>(out.layers[0]), Intensities{7});
}

TEST(ApplyMask, WithNothingToDoTheOutputIsNotTouched)
{
    EXPECT_NO_THROW(ApplyMask(Scan(), nullptr, nullptr, nullptr));
    EXPECT_NO_THROW(ApplyMask(Surface(), Corner(), nullptr, nullptr));
    Surface in;
    in.layers.emplace_back();
    EXPECT_NO_THROW(ApplyMask(in, Corner(), nullptr, nullptr));
    Surface out;
    ApplyMask(in, Corner(), &out, nullptr);
    EXPECT_EQ(out.scale.x, TestSupport::kNull);
}

TEST(ApplyMask, UnfitLayersAreRefusedBeforeTheOutputIsTouched)
{
    const Surface good = Scan();
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { ApplyMask(good, Corner(), nullptr, nullptr); });
    const std::vector<std::vector<Zo::Object<void*>>> unfit = {
        {Zo::Object<void*>(), good.layers[1]},
        {Zo::Object<void*>(), Zo::Object<void*>()},
        {good.layers[1]},
        {good.layers[0], good.layers[0]},
        {good.layers[0], MakeFilled<std::uint8_t>(3, 5, 1)},
        {good.layers[0], MakeFilled<std::uint8_t>(2, 4, 1)},
    };
    for (const std::vector<Zo::Object<void*>>& layers : unfit)
    {
        Surface in = good;
        in.layers = layers;
        Surface out;
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { ApplyMask(in, Corner(), &out, nullptr); });
        EXPECT_EQ(out.scale.x, TestSupport::kNull);
        EXPECT_TRUE(out.layers.empty());
    }
}

TEST(ApplyMask, ABoxBeyondTheSurfaceIsRefused)
{
    Surface out;
    const auto larger = std::make_shared<RectangleROI>(10.0, 20.0, 2.0, 4.0, 0.0, 5, 3, qPoint64f{0.5, 2.0},
                                                       qPoint64f{10.0, 20.0}, nullptr);
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { ApplyMask(Scan(), larger, &out, nullptr); });
    ExpectMapping(out, 10.0, 20.0);
    EXPECT_TRUE(out.layers.empty());
}

TEST(ApplyMask, TheRegionsFailurePassesThrough)
{
    Surface out;
    const auto unset = std::make_shared<CircleROI>(nullptr);
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::EllipseROI::_CalculateBoundingBox",
                [&] { ApplyMask(Scan(), unset, &out, nullptr); });
    ExpectMapping(out, 10.0, 20.0);
    EXPECT_EQ(unset.use_count(), 1);
}

TEST(ApplyMask, TheOutputMayBeTheInput)
{
    Surface both = Scan();
    ApplyMask(both, Corner(), &both, nullptr);
    ExpectMapping(both, 10.5, 22.0);
    EXPECT_EQ(CellsIn<std::int16_t>(both.layers[0]), (Heights{5, kMissing, 9, 10}));
    EXPECT_EQ(CellsIn<std::uint8_t>(both.layers[1]), (Intensities{105, 0, 109, 110}));
}

TEST(ApplyMask, LayersThatTheInputSharesAreNotOverwritten)
{
    Surface in = Scan();
    in.scale = {1.0, 1.0, 1.0};
    in.offset = {0.0, 0.0, 0.0};
    const std::shared_ptr<ROI> roi = Whole(4, 3);
    roi->GetMask();
    roi->SetMaskPixel(0, 0, 0);
    Surface out = in; // a copy shares its layers, which are as large as the box
    ApplyMask(in, roi, &out, nullptr);
    EXPECT_EQ(CellsIn<std::int16_t>(out.layers[0])[0], kMissing);
    EXPECT_EQ(CellsIn<std::uint8_t>(out.layers[1])[0], 0);
    EXPECT_EQ(CellsIn<std::int16_t>(in.layers[0])[0], 0);
    EXPECT_EQ(CellsIn<std::uint8_t>(in.layers[1])[0], 100);
}

TEST(ApplyMask, TheRegionsMaskIsNotOverwritten)
{
    Surface in = Scan();
    const std::shared_ptr<ROI> roi = Corner();
    Surface out;
    out.layers = {Zo::Object<void*>(), roi->GetMask()};
    ApplyMask(in, roi, &out, nullptr);
    EXPECT_EQ(TestSupport::Picture(*roi), "#. ##");
    EXPECT_EQ(CellsIn<std::uint8_t>(out.layers[1]), (Intensities{105, 0, 109, 110}));
}

TEST(ApplyMask, CellsThatAStaleMaskDoesNotReachAreOutside)
{
    const auto member = std::make_shared<RectangleROI>(0.0, 0.0, 1.0, 1.0, 0.0, 4, 3, kUnitScale, kNoOffset, nullptr);
    const auto composed = std::make_shared<ComposedROI>();
    composed->Add(member);
    composed->Add(std::make_shared<RectangleROI>(0.0, 0.0, 0.0, 0.0, 0.0, 4, 3, kUnitScale, kNoOffset, nullptr));
    composed->GetMask();
    member->SetOffset({-1.0, -1.0});
    composed->GetBoundingBox();
    member->GetMask(); // its flags are up again: the composition keeps its mask of 2 by 2 over a box of 3 by 3
    Surface out;
    ApplyMask(Scan(), composed, &out, nullptr);
    EXPECT_EQ(CellsIn<std::int16_t>(out.layers[0]),
              (Heights{0, 1, kMissing, 4, 5, kMissing, kMissing, kMissing, kMissing}));
    EXPECT_EQ(CellsIn<std::uint8_t>(out.layers[1]), (Intensities{100, 101, 0, 104, 105, 0, 0, 0, 0}));
}

TEST(ApplyMask, EveryShortageOfMemoryIsThrown)
{
    const Surface in = Scan();
    const std::shared_ptr<ROI> roi = Corner();
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        const auto apply = [&]
        {
            Surface out;
            ApplyMask(in, roi, &out, nullptr);
        };
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, apply, mode), 4U);
    }
}

TEST(ApplyMask, AgreesWithThePlainLoop)
{
    std::mt19937 random(77);
    for (int turn = 0; turn < 100; ++turn)
    {
        const int rows = 1 + static_cast<int>(random() % 40);
        const int columns = 1 + static_cast<int>(random() % 60);
        const Surface in = TestSupport::MakeRandomSurface(static_cast<std::size_t>(rows),
                                                          static_cast<std::size_t>(columns), 0.2, random);
        const auto roi = std::make_shared<CircleROI>(
            qPoint64f{static_cast<double>(random() % 60), static_cast<double>(random() % 40)}, 0.0,
            1.0 + static_cast<double>(random() % 30), 0.0, 360.0, columns, rows, kUnitScale, kNoOffset, nullptr);
        Surface out;
        ApplyMask(in, roi, &out, nullptr);
        const Rect2d<int> box = roi->GetBoundingBox();
        if (box.width == 0)
        {
            EXPECT_TRUE(out.layers.empty());
            continue;
        }
        const auto selected = CellsIn<std::uint8_t>(roi->GetMask());
        const auto inHeights = CellsIn<std::int16_t>(in.layers[0]);
        const auto inIntensities = CellsIn<std::uint8_t>(in.layers[1]);
        const auto heights = CellsIn<std::int16_t>(out.layers[0]);
        const auto intensities = CellsIn<std::uint8_t>(out.layers[1]);
        ASSERT_EQ(heights.size(), selected.size());
        for (int i = 0; i < box.width * box.height; ++i)
        {
            const auto cell = static_cast<std::size_t>(i);
            const auto place = static_cast<std::size_t>((box.y + i / box.width) * columns + box.x + i % box.width);
            ASSERT_EQ(heights[cell], selected[cell] != 0 ? inHeights[place] : kMissing);
            ASSERT_EQ(intensities[cell], selected[cell] != 0 ? inIntensities[place] : 0);
        }
    }
}

} // namespace
