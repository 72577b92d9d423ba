#pragma once

/** @file
 *  A short way to decimate a map, and to look at the result. */

#include <ZdkVisionLib/Filter/SurfaceDecimate.h>

#include "Filter/SurfaceFilterSupport.h"

#include <cstdint>
#include <ostream>
#include <vector>

namespace TestSupport
{

using Heights = std::vector<std::int16_t>;
using Intensities = std::vector<std::uint8_t>;
using Size = Zvl::Point2d<std::size_t>;
using Ratio = Zvl::Point2d<double>;

/** A map as numbers. */
struct CoarseMap
{
    std::size_t rows = 0;
    std::size_t columns = 0;
    Heights heights;
    Intensities intensities; ///< none when there is no such layer

    bool operator==(const CoarseMap& other) const
    {
        return rows == other.rows && columns == other.columns && heights == other.heights &&
               intensities == other.intensities;
    }
};

inline std::ostream& operator<<(std::ostream& stream, const CoarseMap& map)
{
    stream << map.rows << " x " << map.columns << ":";
    for (const std::int16_t height : map.heights)
    {
        stream << " " << height;
    }
    for (const std::uint8_t intensity : map.intensities)
    {
        stream << " " << static_cast<int>(intensity);
    }
    return stream;
}

/** A surface of these heights, with intensities unless there are none of them. */
inline Zvl::Surface SurfaceOf(const HeightMap& map, const Intensities& intensities)
{
    Zvl::Surface surface = MakeSurface(map.rows, map.columns, map.cells, {0.5, 0.25, 2.0}, {1.0, 2.0, 3.0});
    if (!intensities.empty())
    {
        surface.layers.push_back(MakeArray(map.rows, map.columns, intensities));
    }
    return surface;
}

/** The numbers of the layers of @p surface. */
inline CoarseMap MapOf(const Zvl::Surface& surface)
{
    CoarseMap map;
    EXPECT_GE(surface.layers.size(), 1U);
    EXPECT_LE(surface.layers.size(), 2U);
    if (!surface.layers.empty())
    {
        map.rows = qArray2_Length(surface.layers[0], 0);
        map.columns = qArray2_Length(surface.layers[0], 1);
        map.heights = CellsIn<std::int16_t>(surface.layers[0]);
    }
    if (surface.layers.size() > 1)
    {
        EXPECT_EQ(qArray2_Length(surface.layers[1], 0), map.rows);
        EXPECT_EQ(qArray2_Length(surface.layers[1], 1), map.columns);
        map.intensities = CellsIn<std::uint8_t>(surface.layers[1]);
    }
    return map;
}

/** The map on a coarser grid. Expects the given one not to change. */
inline CoarseMap Decimated(const HeightMap& map, const Intensities& intensities, Size outSize, Ratio ratio)
{
    const Zvl::Surface surface = SurfaceOf(map, intensities);
    const CoarseMap coarse = MapOf(Zvl::SurfaceDecimate(surface, outSize, ratio, nullptr));
    const CoarseMap given = {map.rows, map.columns, map.cells, intensities};
    EXPECT_EQ(MapOf(surface), given);
    return coarse;
}

} // namespace TestSupport
