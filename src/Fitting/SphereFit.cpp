#include <ZdkVisionLib/Fitting/Fit.h>
#include <ZdkVisionLib/platform/qVision.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/SelectedCells.h"
#include "Fitting/Rejection.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitSphere";
constexpr double kNull = GetNull<double>();
constexpr std::size_t kMinimumPoints = 4;
constexpr std::size_t kUnknowns = 4;
constexpr double kSmallestDeterminant = 1.1920928955078125e-07;

struct Sphere
{
    qPoint3d64f center;
    double radius;
};

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

/** What one point adds to the equations: the outer product of (x, y, z, 1) with itself, and (x, y, z, 1)
 *  times the squared distance from the origin. Both triangles are summed, with equal bits: whole rows add up
 *  as vectors. */
struct Contribution
{
    Contribution() = default;

    explicit Contribution(const qPoint3d64f& point)
    {
        const double terms[kUnknowns] = {point.x, point.y, point.z, 1.0};
        const double square = point.x * point.x + point.y * point.y + point.z * point.z;
        for (std::size_t row = 0; row < kUnknowns; ++row)
        {
            for (std::size_t column = 0; column < kUnknowns; ++column)
            {
                matrix[row][column] = terms[row] * terms[column];
            }
            vector[row] = terms[row] * square;
        }
    }

    /** Replaces each entry by the outcome of @p operation on it and the entry of @p other. */
    template <typename Operation>
    void Combine(const Contribution& other, Operation operation)
    {
        for (std::size_t row = 0; row < kUnknowns; ++row)
        {
            for (std::size_t column = 0; column < kUnknowns; ++column)
            {
                matrix[row][column] = operation(matrix[row][column], other.matrix[row][column]);
            }
            vector[row] = operation(vector[row], other.vector[row]);
        }
    }

    double matrix[kUnknowns][kUnknowns] = {};
    double vector[kUnknowns] = {};
};

/** The normal equations `pMat X = pVec` of the kept points. */
class SphereEquations
{
public:
    explicit SphereEquations(void* workAllocator) : allocator(workAllocator)
    {
        Construct(pMat, kUnknowns);
        Construct(pVec, 1);
        ZVL_CHECK(kFunction, qArray2_Zero(pMat));
        ZVL_CHECK(kFunction, qArray2_Zero(pVec));
    }

    void Add(const qPoint3d64f* points, std::size_t count)
    {
        Contribution total = sums; // a local of its own stays in registers
        for (std::size_t i = 0; i < count; ++i)
        {
            total.Combine(Contribution(points[i]), std::plus<>());
        }
        sums = total;
    }

    void Subtract(const qPoint3d64f& point) { sums.Combine(Contribution(point), std::minus<>()); }

    /** Constructs what Solve() needs besides the equations. */
    void PrepareSolve()
    {
        Construct(solution, 1);
        Construct(pMatInverse, kUnknowns);
    }

    Sphere Solve()
    {
        Store();
        double determinant = 0.0;
        ZVL_CHECK(kFunction, qMatrix_Invert(pMat, pMatInverse, &determinant));
        if (std::fabs(determinant) < kSmallestDeterminant)
        {
            ZVL_THROW(kFunction, STATUS_NOT_SUPPORTED);
        }
        ZVL_CHECK(kFunction, qMatrix_Mul64f(pMatInverse, pVec, solution));
        const double* values = Entries(solution);
        const qPoint3d64f center{values[0] / 2, values[1] / 2, values[2] / 2};
        const double squaredRadius = values[3] + (center.x * center.x + center.y * center.y + center.z * center.z);
        if (!(squaredRadius >= 0.0))
        {
            ZVL_THROW(kFunction, 0);
        }
        return {center, std::sqrt(squaredRadius)};
    }

private:
    void Construct(Zo::Object<void*>& array, std::size_t columns) const
    {
        ZVL_CHECK(kFunction, qArray2_Construct(array.Slot(), xxq64f_type, kUnknowns, columns, allocator));
    }

    static double* Entries(const Zo::Object<void*>& array) { return static_cast<double*>(qArray2_At(array, 0, 0)); }

    /** Writes the sums where the platform's routines read them. */
    void Store() const
    {
        for (std::size_t row = 0; row < kUnknowns; ++row)
        {
            std::copy_n(sums.matrix[row], kUnknowns, Entries(pMat) + row * kUnknowns);
        }
        std::copy_n(sums.vector, kUnknowns, Entries(pVec));
    }

    void* allocator;
    Contribution sums;
    Zo::Object<void*> pMat;
    Zo::Object<void*> pVec;
    Zo::Object<void*> solution;
    Zo::Object<void*> pMatInverse;
};

/** | distance from the centre - radius |; -1 where that is not a number, so that residuals can be put in
 *  order. */
double Residual(const qPoint3d64f& point, const Sphere& sphere)
{
    const double x = point.x - sphere.center.x;
    const double y = point.y - sphere.center.y;
    const double z = point.z - sphere.center.z;
    const double residual = std::fabs(std::sqrt(x * x + y * y + z * z) - sphere.radius);
    return residual >= 0.0 ? residual : -1.0;
}

/** Takes points out of the equations, the farthest first. */
class SphereRejection
{
public:
    SphereRejection(const qPoint3d64f* inputPoints, std::size_t count, std::size_t batch)
        : points(inputPoints), keptFinal(count, true), outlierIndices(batch)
    {
        pointDistList.reserve(batch > 1 ? count : 0);
    }

    /** Rejects the @p batch points farthest from @p sphere. */
    void Reject(const Sphere& sphere, std::size_t batch, SphereEquations& equations)
    {
        outlierIndices.resize(batch);
        if (batch == 1)
        {
            outlierIndices[0] = Farthest(sphere);
        }
        else
        {
            FindFarthest(sphere);
        }
        for (const std::size_t index : outlierIndices)
        {
            keptFinal[index] = false;
            outlierPointsLocal.push_back(points[index]);
            equations.Subtract(points[index]);
        }
    }

    std::vector<qPoint3d64f> KeptPoints() const
    {
        std::vector<qPoint3d64f> kept;
        kept.reserve(keptFinal.size() - outlierPointsLocal.size());
        for (std::size_t i = 0; i < keptFinal.size(); ++i)
        {
            if (keptFinal[i])
            {
                kept.push_back(points[i]);
            }
        }
        return kept;
    }

    std::vector<qPoint3d64f>& OutlierPoints() { return outlierPointsLocal; }

private:
    using ResidualAndIndex = std::pair<double, std::size_t>;

    std::size_t Farthest(const Sphere& sphere) const
    {
        double largest = std::numeric_limits<double>::lowest();
        std::size_t farthest = 0;
        for (std::size_t i = 0; i < keptFinal.size(); ++i)
        {
            if (!keptFinal[i])
            {
                continue;
            }
            const double residual = Residual(points[i], sphere);
            if (residual > largest)
            {
                largest = residual;
                farthest = i;
            }
        }
        return farthest;
    }

    /** Fills `outlierIndices` with the indices of the largest residuals, in descending order of index. */
    void FindFarthest(const Sphere& sphere)
    {
        pointDistList.clear();
        for (std::size_t i = 0; i < keptFinal.size(); ++i)
        {
            if (keptFinal[i])
            {
                pointDistList.emplace_back(Residual(points[i], sphere), i);
            }
        }
        const auto batchEnd = pointDistList.begin() + static_cast<std::ptrdiff_t>(outlierIndices.size());
        std::nth_element(pointDistList.begin(), batchEnd, pointDistList.end(),
                         [](const ResidualAndIndex& a, const ResidualAndIndex& b)
                         { return a.first != b.first ? a.first > b.first : a.second < b.second; });
        std::transform(pointDistList.begin(), batchEnd, outlierIndices.begin(),
                       [](const ResidualAndIndex& pair) { return pair.second; });
        std::sort(outlierIndices.begin(), outlierIndices.end(), std::greater<>());
    }

    const qPoint3d64f* points;
    std::vector<bool> keptFinal;
    std::vector<ResidualAndIndex> pointDistList;
    std::vector<std::size_t> outlierIndices;
    std::vector<qPoint3d64f> outlierPointsLocal;
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
    SphereRejection rejection(points, count, batch);
    equations.PrepareSolve();
    Sphere sphere = equations.Solve();
    while (toReject > 0)
    {
        const std::size_t now = std::min(batch, toReject);
        rejection.Reject(sphere, now, equations);
        toReject -= now;
        sphere = equations.Solve();
    }

    outputs.Write(sphere);
    std::vector<qPoint3d64f> kept;
    if (outputs.keptPoints != nullptr)
    {
        kept = rejection.KeptPoints();
        outputs.keptPoints->swap(kept);
    }
    if (outputs.outlierPoints != nullptr)
    {
        outputs.outlierPoints->swap(rejection.OutlierPoints());
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
