#include <ZdkVisionLib/Filter/Filter.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

namespace
{

using namespace Zvl;
using TestSupport::CellsIn;
using TestSupport::ExpectThrow;
using TestSupport::kMissing;
using TestSupport::MakeArray;
using TestSupport::MakeFilled;

constexpr const char* kFunction = "Zvl::CropSurfaceFromROI";

/** 3 rows by 4 columns: height 10 * row + column, intensity the same plus 100. */
Surface NumberedSurface()
{
    Surface surface = TestSupport::MakeSurface(3, 4, {0, 1, 2, 3, 10, 11, 12, 13, 20, 21, 22, 23});
    surface.layers.push_back(
        MakeArray<std::uint8_t>(3, 4, {100, 101, 102, 103, 110, 111, 112, 113, 120, 121, 122, 123}));
    surface.scale = {0.5, 0.25, 2.0};
    surface.offset = {1.0, 2.0, 3.0};
    return surface;
}

TEST(CropSurfaceFromROI, CutsTheWindowOut)
{
    const Surface surface = NumberedSurface();
    const Zo::Object<void*> mask = MakeArray<std::uint8_t>(2, 3, {1, 0, 200, 0, 1, 1});
    Surface cropped;
    CropSurfaceFromROI(surface, {1, 1, 3, 2}, mask, cropped, nullptr);
    ASSERT_EQ(cropped.layers.size(), 2U);
    EXPECT_EQ(CellsIn<std::int16_t>(cropped.layers[0]),
              (std::vector<std::int16_t>{11, kMissing, 13, kMissing, 22, 23}));
    EXPECT_EQ(CellsIn<std::uint8_t>(cropped.layers[1]), (std::vector<std::uint8_t>{111, 112, 113, 121, 122, 123}));
    EXPECT_EQ(qArray2_Length(cropped.layers[0], 0), 2U);
    EXPECT_TRUE(cropped.scale.x == 0.5 && cropped.scale.y == 0.25 && cropped.scale.z == 2.0);
    EXPECT_TRUE(cropped.offset.x == 1.5 && cropped.offset.y == 2.25 && cropped.offset.z == 3.0);
}

TEST(CropSurfaceFromROI, TheResultMayReplaceTheSource)
{
    Surface surface = NumberedSurface();
    CropSurfaceFromROI(surface, {1, 1, 3, 2}, MakeFilled<std::uint8_t>(2, 3, 1), surface, nullptr);
    ASSERT_EQ(surface.layers.size(), 2U);
    EXPECT_EQ(CellsIn<std::int16_t>(surface.layers[0]), (std::vector<std::int16_t>{11, 12, 13, 21, 22, 23}));
    EXPECT_TRUE(surface.offset.x == 1.5 && surface.offset.y == 2.25);
}

TEST(CropSurfaceFromROI, AnEmptyWindowLeavesWithASuccessStatus)
{
    const Surface surface = NumberedSurface();
    Surface cropped = NumberedSurface();
    ExpectThrow(STATUS_OK, kFunction,
                [&] {
                    CropSurfaceFromROI(surface, {2, 1, 0, 2}, MakeFilled<std::uint8_t>(2, 0, 1), cropped, nullptr);
                });
    EXPECT_TRUE(cropped.layers.empty());
    EXPECT_TRUE(cropped.offset.x == 2.0 && cropped.offset.y == 2.25 && cropped.offset.z == 3.0);
    EXPECT_EQ(cropped.scale.z, 2.0);
}

TEST(CropSurfaceFromROI, SecondLayersOfAnotherKindAreSkipped)
{
    Surface surface = NumberedSurface();
    for (const Zo::Object<void*>& second : {Zo::Object<void*>(), MakeFilled<std::int16_t>(3, 4, 5)})
    {
        surface.layers[1] = second;
        Surface cropped;
        CropSurfaceFromROI(surface, {0, 0, 4, 3}, MakeFilled<std::uint8_t>(3, 4, 1), cropped, nullptr);
        EXPECT_EQ(cropped.layers.size(), 1U);
    }
}

TEST(CropSurfaceFromROI, BadParametersLeaveTheResultUntouched)
{
    const Surface surface = NumberedSurface();
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(2, 3, 1);
    Surface cropped = NumberedSurface();
    const auto refuse = [&](const Surface& from, const Rect2d<int>& rect, const Zo::Object<void*>& with)
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { CropSurfaceFromROI(from, rect, with, cropped, nullptr); });
        EXPECT_EQ(cropped.layers.size(), 2U);
        EXPECT_EQ(cropped.offset.x, 1.0);
    };
    const Rect2d<int> fit = {0, 0, 3, 2};
    refuse(surface, fit, Zo::Object<void*>());
    refuse(surface, fit, MakeFilled<std::uint8_t>(3, 2, 1));
    refuse(surface, fit, MakeFilled<std::int16_t>(2, 3, 1));
    refuse(surface, {2, 0, 3, 2}, mask);
    refuse(surface, {0, 2, 3, 2}, mask);
    refuse(surface, {-1, 0, 3, 2}, mask);
    refuse(surface, {0, 2147483647, 3, 2}, mask);
    refuse(Surface(), fit, mask);
    Surface odd = NumberedSurface();
    odd.layers[0].Reset();
    refuse(odd, fit, mask);
    odd = NumberedSurface();
    odd.layers[1] = MakeFilled<std::uint8_t>(2, 4, 1);
    refuse(odd, fit, mask);
    odd.layers[0] = Zo::Object<void*>();
    Zo::Test(qArray1_Construct(odd.layers[0].Slot(), xxq16s_type, 12, nullptr));
    refuse(odd, fit, mask);
}

TEST(CropSurfaceFromROI, HeightsOfAnotherTypeAreNotSupported)
{
    Surface surface = NumberedSurface();
    surface.layers[0] = MakeFilled<std::uint8_t>(3, 4, 5);
    Surface cropped = NumberedSurface();
    ExpectThrow(STATUS_NOT_SUPPORTED, kFunction,
                [&] {
                    CropSurfaceFromROI(surface, {1, 1, 3, 2}, MakeFilled<std::uint8_t>(2, 3, 1), cropped, nullptr);
                });
    EXPECT_TRUE(cropped.layers.empty());
    EXPECT_EQ(cropped.offset.x, 1.5);
    // Whatever else would not fit.
    ExpectThrow(STATUS_NOT_SUPPORTED, kFunction,
                [&] {
                    CropSurfaceFromROI(surface, {8, 1, 3, 2}, MakeFilled<std::uint8_t>(2, 3, 1), cropped, nullptr);
                });
    EXPECT_EQ(cropped.offset.x, 5.0);
}

TEST(CropSurfaceFromROI, EveryShortageOfMemoryIsThrown)
{
    const Surface surface = NumberedSurface();
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(2, 3, 1);
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(
                      kFunction,
                      [&]
                      {
                          Surface cropped;
                          CropSurfaceFromROI(surface, {1, 1, 3, 2}, mask, cropped, nullptr);
                      },
                      mode),
                  4U);
    }
}

TEST(CropSurfaceFromROI, NewLayersComeFromTheAllocatorGiven)
{
    TestSupport::FailingAllocator allocator;
    {
        Surface cropped;
        CropSurfaceFromROI(NumberedSurface(), {1, 1, 3, 2}, MakeFilled<std::uint8_t>(2, 3, 1), cropped,
                           allocator.Get());
        EXPECT_EQ(allocator.LiveBlocks(), 4U);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
