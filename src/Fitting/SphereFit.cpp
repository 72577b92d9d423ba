#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Cells.h"
#include "Common/SelectedCells.h"
#include "Fitting/Rejection.h"
#include "Fitting/SphereRejection.h"

#include <algorithm>
#include <utility>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();
constexpr std::size_t kMinimumPoints = 4;

/** Where the results go; any of them may be null. */
struct SphereOutputs
{
    qPoint3d64f* center;
    double* radius;
    std::vector<qPoint3d64f>* keptPoints;
    std::vector<qPoint3d64f>* outlierPoints;

    void SetNull() const { Write({{kNull, kNull, kNull}, kNull}); }

    void Write(const Sphere& sphere) const
    {
        if (center != nullptr)
        {
            *center = sphere.center;
        }
        if (radius != nullptr)
        {
            *radius = sphere.radius;
        }
    }
};

std::size_t BatchSize(std::size_t toReject, std::size_t maxPasses)
{
    const std::size_t passes = std::max<std::size_t>(maxPasses, 1);
    return passes < toReject ? toReject / passes + 1 : 1;
}

/** Solves and rejects in turn, with @p equations filled from all points. The vectors are written last: the
 *  points may lie in one of them. */
void FitWithRejection(const qPoint3d64f* points, std::size_t count, double outlierPercent, std::size_t maxPasses,
                      SphereEquations& equations, const SphereOutputs& outputs)
{
    std::size_t toReject = CountToReject(count, outlierPercent, kMinimumPoints);
    const std::size_t batch = BatchSize(toReject, maxPasses);
    SphereRejection rejection(points, count);
    equations.PrepareSolve();
    Sphere sphere = equations.Solve();
    while (toReject > 0)
    {
        const std::size_t now = std::min(batch, toReject);
        rejection.Reject(sphere, now, equations);
        toReject -= now;
        sphere = equations.Solve();
    }

    std::vector<qPoint3d64f> kept = outputs.keptPoints != nullptr ? rejection.KeptPoints() : std::vector<qPoint3d64f>();
    std::vector<qPoint3d64f> outliers =
        outputs.outlierPoints != nullptr ? rejection.OutlierPoints() : std::vector<qPoint3d64f>();
    outputs.Write(sphere);
    if (outputs.keptPoints != nullptr)
    {
        outputs.keptPoints->swap(kept);
    }
    if (outputs.outlierPoints != nullptr)
    {
        outputs.outlierPoints->swap(outliers);
    }
}

/** The result of too few points: all are kept, none is an outlier. */
void KeepAll(std::vector<qPoint3d64f> points, const SphereOutputs& outputs)
{
    if (outputs.keptPoints != nullptr)
    {
        outputs.keptPoints->swap(points);
    }
    if (outputs.outlierPoints != nullptr)
    {
        outputs.outlierPoints->clear();
    }
}

qPoint3d64f ScaleAndShift(const qPoint3d64f& point, const Surface& surface)
{
    return {point.x * surface.scale.x + surface.offset.x, point.y * surface.scale.y + surface.offset.y,
            point.z * surface.scale.z + surface.offset.z};
}

/** Appends the selected cells to @p points, as world points. */
void CollectPoints(const Surface& surface, const Cells<const std::int16_t>& heights,
                   const Cells<const std::uint8_t>& mask, const Rect2d<int>& rect, std::vector<qPoint3d64f>& points)
{
    for (std::size_t row = 0; row < mask.rows; ++row)
    {
        const std::size_t y = static_cast<std::size_t>(rect.y) + row;
        const std::int16_t* cells = heights.Row(y) + rect.x;
        ForEachSelected(mask.Row(row), mask.columns,
                        [&](std::size_t column)
                        {
                            const qPoint3d64f cell = {static_cast<double>(rect.x) + static_cast<double>(column),
                                                      static_cast<double>(y), static_cast<double>(cells[column])};
                            points.push_back(ScaleAndShift(cell, surface));
                        });
    }
}

} // namespace

void FitSphere(const qPoint3d64f* points, std::size_t count, qPoint3d64f* center, double* radius, void* allocator,
               double outlierPercent, std::vector<qPoint3d64f>* keptPoints, std::vector<qPoint3d64f>* outlierPoints,
               std::size_t maxPasses)
{
    const SphereOutputs outputs{center, radius, keptPoints, outlierPoints};
    outputs.SetNull();
    if (points == nullptr || count < kMinimumPoints)
    {
        KeepAll(points == nullptr ? std::vector<qPoint3d64f>() : std::vector<qPoint3d64f>(points, points + count),
                outputs);
        return;
    }
    SphereEquations equations(allocator);
    equations.Add(points, count);
    FitWithRejection(points, count, outlierPercent, maxPasses, equations, outputs);
}

void FitSphere(const Surface& surface, const Rect2d<int>& rect, void* mask, qPoint3d64f* center, double* radius,
               std::vector<qPoint3d64f>& points, void* allocator, double outlierPercent,
               std::vector<qPoint3d64f>* keptPoints, std::vector<qPoint3d64f>* outlierPoints, std::size_t maxPasses)
{
    const SphereOutputs outputs{center, radius, keptPoints, outlierPoints};
    outputs.SetNull();
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(LayerOf(surface, 0));
    const Cells<const std::uint8_t> selected = CellsOf<const std::uint8_t>(mask);
    const bool hasCells = rect.width > 0 && rect.height > 0;
    if (!heights.present || !selected.HasSizeOf(rect) || (hasCells && !heights.Contains(rect)))
    {
        return;
    }

    SphereEquations equations(allocator);
    points.reserve(selected.rows * selected.columns);
    const std::size_t present = points.size();
    if (hasCells)
    {
        CollectPoints(surface, heights, selected, rect, points);
    }
    equations.Add(points.data() + present, points.size() - present);
    if (points.size() < kMinimumPoints)
    {
        // The kept points of this short way out carry the mapping twice.
        std::vector<qPoint3d64f> mapped(points.size());
        std::transform(points.begin(), points.end(), mapped.begin(),
                       [&surface](const qPoint3d64f& point) { return ScaleAndShift(point, surface); });
        KeepAll(std::move(mapped), outputs);
        return;
    }
    FitWithRejection(points.data(), points.size(), outlierPercent, maxPasses, equations, outputs);
}

} // namespace Zvl
