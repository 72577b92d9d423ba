#include "support/PointGrid.h"

#include "support/InputError.h"
#include "support/Lattice.h"

#include <algorithm>
#include <cmath>

namespace Examples
{
namespace
{

/** The columns or rows of a grid of points; one of unknown size when all coordinates are the same. */
Lattice LinesOf(const std::vector<qPoint3d64f>& points, double qPoint3d64f::*axis, const std::string& name,
                const std::string& path)
{
    constexpr double kTolerance = 0.05; // of a cell
    std::vector<double> places(points.size());
    std::transform(points.begin(), points.end(), places.begin(),
                   [axis](const qPoint3d64f& point) { return point.*axis; });
    const auto [low, high] = std::minmax_element(places.begin(), places.end());
    if (*low == *high)
    {
        return {*low, 0.0, 1};
    }
    const std::optional<Lattice> lines = FindLattice(
        std::move(places), kMostCells, [](double pitch, double deviation) { return deviation <= kTolerance * pitch; });
    if (!lines)
    {
        throw InputError(path + ": the points do not lie on a grid along " + name);
    }
    return *lines;
}

} // namespace

HeightGrid GridOfPoints(const std::vector<qPoint3d64f>& points, const std::string& path)
{
    if (points.size() < 2)
    {
        throw InputError(path + ": holds " + std::to_string(points.size()) + " points, too few for a grid");
    }
    const Lattice columns = LinesOf(points, &qPoint3d64f::x, "x", path);
    const Lattice rows = LinesOf(points, &qPoint3d64f::y, "y", path);
    HeightGrid grid{};
    grid.rows = rows.count;
    grid.columns = columns.count;
    grid.scale = {columns.count > 1 ? columns.pitch : rows.pitch, rows.count > 1 ? rows.pitch : columns.pitch};
    grid.offset = {columns.first, rows.first};
    grid.heights.assign(CellCount(grid.rows, grid.columns, path), kMissingHeight);
    for (const qPoint3d64f& point : points)
    {
        const std::size_t row = grid.rows > 1 ? rows.IndexOf(point.y) : 0;
        const std::size_t column = grid.columns > 1 ? columns.IndexOf(point.x) : 0;
        double& height = grid.heights[row * grid.columns + column];
        if (!std::isnan(height))
        {
            throw InputError(path + ": two points lie at x = " + std::to_string(point.x) +
                             ", y = " + std::to_string(point.y) + ", so they are no map of heights");
        }
        height = point.z;
    }
    return grid;
}

} // namespace Examples
