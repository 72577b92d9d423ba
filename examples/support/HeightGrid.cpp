#include "support/HeightGrid.h"

#include "support/HeightMap.h"
#include "support/InputError.h"
#include "support/Lattice.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Examples
{
namespace
{

constexpr double kSmallestStep = 1e-12; // far beyond any sensor, in mm; the bounds keep all that follows finite
constexpr double kLargestStep = 1e6;
constexpr double kFarthest = 1e9;
constexpr double kMostCount = 32767.0;
constexpr double kFlatStep = 1e-6;

/** Which height a count stands for. */
struct Counts
{
    double step;
    double zero;
};

std::vector<double> PresentHeights(const HeightGrid& grid, const std::string& path)
{
    std::vector<double> heights;
    for (const double height : grid.heights)
    {
        if (std::isinf(height))
        {
            throw InputError(path + ": a height is infinite");
        }
        if (!std::isnan(height))
        {
            heights.push_back(height);
        }
    }
    if (heights.empty())
    {
        throw InputError(path + ": the map is empty, all heights are missing");
    }
    return heights;
}

Counts ChooseCounts(const std::vector<double>& heights)
{
    const auto [low, high] = std::minmax_element(heights.begin(), heights.end());
    const double range = *high - *low;
    const double finest = range / (2.0 * kMostCount);
    // Whole steps are kept where that rounds no height by more than the finest steps would.
    const std::optional<Lattice> steps =
        FindLattice(heights, static_cast<std::size_t>(2.0 * kMostCount) + 1,
                    [finest](double, double deviation) { return deviation <= finest / 2.0; });
    if (steps)
    {
        return {steps->pitch, steps->first + std::floor(static_cast<double>(steps->count) / 2.0) * steps->pitch};
    }
    return {range > 0.0 ? std::max(finest, kSmallestStep) : kFlatStep, *low + range / 2.0};
}

bool IsBetween(double low, double value, double high)
{
    return value >= low && value <= high; // false for NaN
}

} // namespace

std::size_t CellCount(std::uint64_t rows, std::uint64_t columns, const std::string& path)
{
    if (rows == 0 || columns == 0 || rows > kMostCells / columns)
    {
        throw InputError(path + ": has " + std::to_string(rows) + " x " + std::to_string(columns) + " cells; 1 to " +
                         std::to_string(kMostCells) + " can be read");
    }
    return rows * columns;
}

void RequireMapping(const qPoint3d64f& scale, const qPoint3d64f& offset, const std::string& path)
{
    for (const double step : {scale.x, scale.y, scale.z})
    {
        if (!IsBetween(kSmallestStep, step, kLargestStep))
        {
            throw InputError(path + ": the scale must lie between 1e-12 and 1e6 mm");
        }
    }
    for (const double place : {offset.x, offset.y, offset.z})
    {
        if (!IsBetween(-kFarthest, place, kFarthest))
        {
            throw InputError(path + ": the offset must lie between -1e9 and 1e9 mm");
        }
    }
}

Zvl::Surface ToSurface(const HeightGrid& grid, const std::string& path)
{
    const Counts counts = ChooseCounts(PresentHeights(grid, path));
    const qPoint3d64f scale{grid.scale.x, grid.scale.y, counts.step};
    const qPoint3d64f offset{grid.offset.x, grid.offset.y, counts.zero};
    RequireMapping(scale, offset, path);

    Zvl::Surface surface = MakeSurface(grid.rows, grid.columns, scale, offset, false);
    for (std::size_t row = 0; row < grid.rows; ++row)
    {
        const double* heights = grid.heights.data() + row * grid.columns;
        std::transform(heights, heights + grid.columns, HeightRow(surface, row),
                       [&](double height)
                       {
                           const double count = std::round((height - counts.zero) / counts.step);
                           return std::isnan(height) ? Zvl::GetNull<short>()
                                                     : static_cast<short>(std::clamp(count, -kMostCount, kMostCount));
                       });
    }
    return surface;
}

} // namespace Examples
