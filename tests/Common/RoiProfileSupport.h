#pragma once

/** @file
 *  What the tests of regions over profiles use: profiles of both forms, and the picture of a mask. */

#include <ZdkVisionLib/Common/MaskProfile.h>

#include "support/Regions.h"

#include <cstring>
#include <string>
#include <utility>

namespace TestSupport
{

constexpr int kUniform = 1;
constexpr int kPairs = 0;

using Member = std::shared_ptr<Zvl::RoiProfile>;
using CountPairs = std::vector<std::pair<std::int16_t, std::int16_t>>;

/** An array of @p count items of @p type that holds @p bytes, as many as it has. */
inline Zo::Object<void*> MakeLine(qType type, std::size_t count, const void* bytes)
{
    Zo::Object<void*> line;
    Zo::Test(qArray1_Construct(line.Slot(), type, count, nullptr));
    Zo::Test(qMemCopy(qArray1_Data(line), bytes, count * qType_Size(type)));
    return line;
}

inline Zvl::Profile MakeProfile(Zo::Object<void*> layer, qPoint64f scale = kUnitScale, qPoint64f offset = kNoOffset)
{
    Zvl::Profile profile(offset, scale);
    profile.AddLayer(std::move(layer));
    return profile;
}

/** A uniform profile. */
inline Zvl::Profile HeightProfile(const std::vector<std::int16_t>& heights, qPoint64f scale = kUnitScale,
                                  qPoint64f offset = kNoOffset)
{
    return MakeProfile(MakeLine(xxq16s_type, heights.size(), heights.data()), scale, offset);
}

/** A profile of pairs, x first. */
inline Zvl::Profile PairProfile(const CountPairs& pairs, qPoint64f scale = kUnitScale, qPoint64f offset = kNoOffset)
{
    std::vector<std::int16_t> counts;
    for (const auto& [x, z] : pairs)
    {
        counts.insert(counts.end(), {x, z});
    }
    return MakeProfile(MakeLine(xxq32s_type, pairs.size(), counts.data()), scale, offset);
}

/** The cells of @p mask as '#' and '.'. */
inline std::string PictureOf(void* mask)
{
    EXPECT_EQ(qArray1_Type(mask), xxq8u_type);
    std::string picture;
    const auto* cells = static_cast<const std::uint8_t*>(qArray1_Data(mask));
    for (std::size_t i = 0; i < qArray1_Count(mask); ++i)
    {
        EXPECT_LE(cells[i], 1);
        picture += cells[i] != 0 ? '#' : '.';
    }
    return picture;
}

inline std::string Picture(Zvl::RoiProfile& roi)
{
    return PictureOf(roi.GetMask());
}

inline void ExpectSegment(Zvl::RoiProfile& roi, int start, int length)
{
    const Zvl::RunLength<int> segment = roi.GetBoundingSegment();
    EXPECT_EQ(segment.start, start);
    EXPECT_EQ(segment.length, length);
}

/** Expects the flags of @p roi, without computing anything. */
inline void ExpectFlags(Zvl::RoiProfile& roi, int segmentValid, int maskValid)
{
    EXPECT_EQ(roi.IsBoundingSegmentValid(), segmentValid);
    EXPECT_EQ(roi.IsMaskValid(), maskValid);
}

/** The upright rectangle over items @p first to @p last of a frame of 10, heights 0 to 2. */
inline Zvl::RectangleRoiProfile Stretch(int first, int last, int isUniform = kUniform, void* allocator = nullptr)
{
    const Zvl::Region2d<double> rectangle = {double(first), 0.0, double(last - first), 2.0, 0.0};
    return Zvl::RectangleRoiProfile(rectangle, 10, kUnitScale, kNoOffset, isUniform, allocator);
}

/** As Stretch(), as the circle around it whose centre is at height 0: a class whose copies share their mask. */
inline Zvl::CircleRoiProfile Disc(int first, int last, void* allocator = nullptr)
{
    const Zvl::AnnularSector2d<double> disc = {0.0, (last - first) / 2.0, 0.0, 360.0, {(first + last) / 2.0, 0.0}};
    return Zvl::CircleRoiProfile(disc, 10, kUnitScale, kNoOffset, kUniform, allocator);
}

} // namespace TestSupport
