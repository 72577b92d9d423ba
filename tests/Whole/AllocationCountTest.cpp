/** @file
 *  Memory is asked for by the call, not by the row or cell: a map of sixteen times the cells costs as many allocations, but
 *  for lists that grow by doubling. */

#include <ZdkVisionLib/Common/MaskProfile.h>
#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Whole/CountedNew.h"
#include "Whole/Program.h"

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

#include <algorithm>

namespace
{

using namespace WholeTest;

/** How often @p operation asks `new` and the platform's allocator for memory. */
std::size_t AllocationsOf(Operation operation, const World& world, TestSupport::FailingAllocator& allocator)
{
    Digests digests;
    allocator.FailNever();
    FailNewAt(0, false);
    operation(world, digests);
    return CallsOfNew() + allocator.Allocations();
}

TEST(Allocations, AreAsManyForALargeMapAsForASmallOne)
{
    const TestSupport::WorkerCount oneWorker(1);
    TestSupport::FailingAllocator allocator;
    allocator.MakeDefault();
    const World small(96, 128);
    const World large(384, 512);
    for (std::size_t i = 0; i < Operations().size(); ++i)
    {
        const std::size_t few = AllocationsOf(Operations()[i], small, allocator);
        const std::size_t most = AllocationsOf(Operations()[i], large, allocator);
        EXPECT_GT(few, 0U);
        EXPECT_LT(most, few + 20) << "operations " << i << " with " << few << " allocations";
    }
}

/** A comb: its teeth meet each row between them, and with whole coordinates rows hit vertices. */
std::vector<Zvl::Point2d<double>> Comb(int teeth, double height)
{
    std::vector<Zvl::Point2d<double>> points;
    for (int tooth = 0; tooth < teeth; ++tooth)
    {
        points.push_back({3.0 * tooth, height});
        points.push_back({3.0 * tooth + 1.0, 1.0 + tooth % 2});
    }
    points.push_back({3.0 * teeth, 0.0});
    points.push_back({0.0, 0.0});
    points.push_back(points.front());
    return points;
}

/** Calls of `new` while a region tells which of @p count heights it holds. */
std::size_t AllocationsOfProfile(std::size_t count)
{
    const qPoint64f scale = {0.01, 0.01};
    Zvl::Profile profile;
    profile.scale = scale;
    profile.offset = {0.0, 0.0};
    Zo::Object<void*> heights;
    Zo::Test(qArray1_Construct(heights.Slot(), xxq16s_type, count, nullptr));
    std::fill_n(static_cast<std::int16_t*>(qArray1_Data(heights)), count, std::int16_t{150});
    profile.AddLayer(heights);
    Zvl::PolygonRoiProfile region(Comb(30, 20.0), count, scale, {0.0, 0.0}, 1, nullptr);
    region.GetMask();
    FailNewAt(0, false);
    region.ApplyRoi(profile);
    return CallsOfNew();
}

TEST(Allocations, OfAPolygonAreNotMadeForEachPointOfAProfile)
{
    EXPECT_LT(AllocationsOfProfile(10000), AllocationsOfProfile(100) + 10);
}

/** Calls of `new` for the mask of a staircase, each row of which hits vertices. */
std::size_t AllocationsOfStaircase(std::size_t steps)
{
    const TestSupport::WorkerCount oneWorker(1);
    std::vector<Zvl::Point2d<double>> points;
    for (std::size_t step = 0; step <= steps; ++step)
    {
        points.push_back({10.0 + static_cast<double>(step % 2), static_cast<double>(step)});
    }
    points.push_back({0.0, static_cast<double>(steps)});
    points.push_back({0.0, 0.0});
    points.push_back(points.front());
    Zvl::PolygonROI region(points, 30, steps + 1, {1.0, 1.0}, {0.0, 0.0}, nullptr);
    FailNewAt(0, false);
    EXPECT_NE(region.GetMask().Get(), nullptr);
    return CallsOfNew();
}

TEST(Allocations, OfAPolygonAreNotMadeForEachRowThatHitsAVertex)
{
    EXPECT_LT(AllocationsOfStaircase(1000), AllocationsOfStaircase(10) + 30);
}

} // namespace
