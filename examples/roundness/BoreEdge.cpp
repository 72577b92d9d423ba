#include "roundness/BoreEdge.h"

#include "support/EdgeSearch.h"
#include "support/GapLimits.h"
#include "support/HeightMap.h"
#include "support/PlaneDistance.h"
#include "support/Recess.h"
#include "support/RegionMaker.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Roundness
{
namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kHighest = 32767.0; // count
constexpr double kSteepest = 60.0;   // degrees; what is steeper is a wall that hides what is beside it

/** The face around a bore: neither the bore nor what stands out. */
qPlane3d64f FacePlane(const Zvl::Surface& map)
{
    const auto region = Examples::RegionMaker(map).Whole();
    Zvl::ThresholdHeight(map, Zvl::GetNull<double>(), Zvl::GetNull<double>(), *region);
    Zvl::ThresholdPercentile<double>(map, 15.0, 98.0, region->GetBoundingBox(), region->GetMask());
    qPlane3d64f plane{};
    Zvl::FitPlane(map, region->GetBoundingBox(), region->GetMask(), &plane);
    if (plane.normal.x == Zvl::GetNull<double>() || !(plane.normal.z > 0.0))
    {
        throw std::runtime_error("no face is found: too few heights");
    }
    return plane;
}

/** The map with its dropouts closed. */
Zvl::Surface Filled(const Zvl::Surface& map)
{
    constexpr int kLongestGap = 3; // cells
    Zvl::Surface filled = map;
    Zo::Object<void*> noIntensity;
    Zvl::SurfaceFillGapXY(Examples::GapLimits(map, kLongestGap, kSteepest), map.layers[0], noIntensity,
                          filled.layers[0], noIntensity, nullptr);
    return filled;
}

/** The heights of a map over a plane. */
Zvl::Surface Levelled(const Zvl::Surface& map, const qPlane3d64f& plane)
{
    Zvl::Surface level = Examples::MakeSurface(Examples::Rows(map), Examples::Columns(map), map.scale,
                                               {map.offset.x, map.offset.y, 0.0}, false);
    for (std::size_t row = 0; row < Examples::Rows(map); ++row)
    {
        for (std::size_t column = 0; column < Examples::Columns(map); ++column)
        {
            const short count = Examples::HeightRow(map, row)[column];
            const double height = Examples::PlaneDistance(plane, Examples::WorldPoint(map, row, column));
            Examples::HeightRow(level, row)[column] =
                Examples::IsMissing(count)
                    ? count
                    : static_cast<short>(std::clamp(std::round(height / map.scale.z), -kHighest, kHighest));
        }
    }
    return level;
}

/** The point where the heights pass through @p section on the way from the set cell to the clear one. */
qPoint64f Crossing(const Zvl::Surface& level, const Examples::EdgeStep& step, double section)
{
    const auto height = [&](int row, int column)
    { return Examples::HeightRow(level, static_cast<std::size_t>(row))[static_cast<std::size_t>(column)]; };
    const short upper = height(step.row, step.column);
    const short lower = height(step.row - step.rowStep, step.column - step.columnStep);
    const double fall = (upper - lower) * level.scale.z;
    const double width = step.columnStep != 0 ? level.scale.x : level.scale.y;
    const bool isSlope = !Examples::IsMissing(lower) && fall > 0.0 && fall < width * std::tan(kSteepest * kPi / 180.0);
    const double share = isSlope ? (upper * level.scale.z - section) / fall : 0.5;
    return Examples::PointOn(level, step, std::clamp(share, 0.0, 1.0));
}

} // namespace

std::vector<qPoint64f> FindBoreEdge(const Zvl::Surface& map, double depth)
{
    const Zvl::Surface filled = Filled(map);
    const qPlane3d64f face = FacePlane(filled);
    const std::vector<Examples::Recess> recesses = Examples::FindRecesses(filled, face, depth, 0.001);
    const auto bore = std::find_if(recesses.begin(), recesses.end(),
                                   [](const Examples::Recess& recess) { return recess.roundness > 0.75; });
    if (bore == recesses.end())
    {
        throw std::runtime_error("no round recess found");
    }

    const Zvl::Surface level = Levelled(filled, face);
    const auto ring =
        Examples::RegionMaker(level).Ring({0.7 * bore->radius, 1.4 * bore->radius, 0.0, 360.0, bore->center});
    Zvl::ThresholdHeight(level, -depth, kHighest * level.scale.z, *ring);
    std::vector<qPoint64f> points;
    for (const Examples::EdgeStep& step : Examples::FindInnerEdge(*ring, level))
    {
        points.push_back(Crossing(level, step, -depth));
    }
    return points;
}

} // namespace Roundness
