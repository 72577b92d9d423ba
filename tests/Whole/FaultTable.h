#pragma once

/** @file
 *  What stands in the table of faults, part by part. */

#include "Whole/FaultTrial.h"

#include <ZdkVisionLib/ZdkVisionLib.h>

#include "support/Surfaces.h"

#include <vector>

namespace WholeTest
{

std::vector<Entry> FaultsOfRecords();
std::vector<Entry> FaultsOfShapes();
std::vector<Entry> FaultsOfFrames();
std::vector<Entry> FaultsOfRegions();
std::vector<Entry> FaultsOfMasks();
std::vector<Entry> FaultsOfProfileRegions();
std::vector<Entry> FaultsOfFilters();
std::vector<Entry> FaultsOfFits();
std::vector<Entry> FaultsOfImages();
std::vector<Entry> FaultsOfPlatform();

// A small world for all of them.
constexpr std::size_t kFaultRows = 18;
constexpr std::size_t kFaultColumns = 24;
constexpr qPoint64f kFaultScale = {0.5, 0.5};
constexpr qPoint64f kFaultOffset = {-6.0, -4.5};

/** A wavy map with dropouts, and intensities. */
inline Zvl::Surface MakeFaultSurface()
{
    std::mt19937 random(7);
    std::vector<std::int16_t> heights(kFaultRows * kFaultColumns);
    for (std::size_t i = 0; i < heights.size(); ++i)
    {
        const int x = static_cast<int>(i % kFaultColumns) - 11;
        const int y = static_cast<int>(i / kFaultColumns) - 8;
        heights[i] =
            static_cast<std::int16_t>(i % 7 == 3 ? -32768 : 3 * x * x + 2 * y * y + static_cast<int>(random() % 3));
    }
    Zvl::Surface surface =
        TestSupport::MakeSurface(kFaultRows, kFaultColumns, heights, {0.5, 0.5, 0.01}, {-6.0, -4.5, 0.0});
    surface.layers.push_back(TestSupport::MakeFilled<std::uint8_t>(kFaultRows, kFaultColumns, 90));
    return surface;
}

constexpr Zvl::Rect2d<int> kFaultBox = {2, 3, 12, 9};

/** A mask over kFaultBox without the dropouts. */
inline Zo::Object<void*> MakeFaultMask(const Zvl::Surface& surface)
{
    Zo::Object<void*> mask = TestSupport::MakeFilled<std::uint8_t>(9, 12, 1);
    Zvl::ThresholdHeight(surface, -100.0, 100.0, kFaultBox, mask);
    return mask;
}

/** Lets the call keep the layers of @p surface as they are. */
inline void KeepsUnchanged(Trial& trial, const Zvl::Surface& surface)
{
    for (const Zo::Object<void*>& layer : surface.layers)
    {
        trial.KeepsUnchanged(layer);
    }
}

/** Adds @p member to a composition of two, which keeps what it has when that fails. */
template <typename Composition, typename Member>
void AddThird(Trial& trial, Composition& composed, const Member& member)
{
    const bool done = trial.Call([&] { composed.Add(member); });
    EXPECT_EQ(composed.GetRoiCount(), done ? 3U : 2U);
}

/** Moves a region, which gives a new one or nothing. */
template <typename Region>
void MoveRegion(Trial& trial, Region& region)
{
    decltype(region.ApplyAnchor(Zvl::Anchor())) moved;
    const bool done = trial.Call([&] { moved = region.ApplyAnchor({0.5, 0.5, 0.0, 10.0}); });
    EXPECT_EQ(moved != nullptr, done);
}

} // namespace WholeTest
