#include "Fitting/CircleLeastSquares.h"

#include "Common/Check.h"
#include "Fitting/Rejection.h"
#include "Fitting/TriangularFactor.h"

#include <ZdkVisionLib/Common/Common.h>
#include <ZdkVisionLib/platform/qVision.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitCircle_LSC";
constexpr std::size_t kMinimumPoints = 3;
constexpr std::size_t kUnknowns = 3;
constexpr double kSquaredRadiusLimit = 3.4028234663852886e38; // the largest float

/** The squared determinant of the triangular factor may shrink to this share of a fresh one's before the
 *  factor is formed anew. No singular value has then shrunk to less than the root of the share, so that a
 *  chain of removals costs less than one digit. */
constexpr double kFactorAfreshBelow = 0.1;

struct Circle
{
    double x;
    double y;
    double radius;
};

/** The equations `2 x x0 + 2 y y0 + c = x² + y²` of the circle, in the platform's matrices. */
class CircleSystem
{
public:
    explicit CircleSystem(std::size_t equations)
    {
        ZVL_CHECK(kFunction, qArray2_Construct(matrix.Slot(), xxq64f_type, equations, kUnknowns, nullptr));
        ZVL_CHECK(kFunction, qArray2_Construct(solution.Slot(), xxq64f_type, kUnknowns, 1, nullptr));
        ZVL_CHECK(kFunction, qArray2_Construct(rightSide.Slot(), xxq64f_type, equations, 1, nullptr));
    }

    void Set(std::size_t index, const Equation& equation)
    {
        auto* row = static_cast<double*>(qArray2_At(matrix, index, 0));
        std::copy(equation.coefficients.begin(), equation.coefficients.end(), row);
        *static_cast<double*>(qArray2_At(rightSide, index, 0)) = equation.rightSide;
    }

    Circle Solve()
    {
        ZVL_CHECK(kFunction, qMatrix_SolveSystem(matrix, solution, rightSide));
        const auto* values = static_cast<const double*>(qArray2_At(solution, 0, 0));
        const double x = values[0];
        const double y = values[1];
        const double squaredRadius = values[2] + x * x + y * y;
        if (squaredRadius < 0.0 || squaredRadius >= kSquaredRadiusLimit)
        {
            ZVL_THROW(kFunction, 0);
        }
        return {x, y, std::sqrt(squaredRadius)};
    }

private:
    Zo::Object<void*> matrix;
    Zo::Object<void*> solution;
    Zo::Object<void*> rightSide;
};

/** The input about its centroid, each coordinate in an array of its own. A removed point becomes NaN, which
 *  loses every comparison; so do the entries that fill the last block. */
class CenteredPoints
{
public:
    CenteredPoints(const qPoint64f* points, std::size_t pointCount)
        : count(pointCount), x((pointCount + kBlock - 1) / kBlock * kBlock, kRemoved), y(x)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            centroid.x += points[i].x;
            centroid.y += points[i].y;
        }
        centroid.x /= static_cast<double>(count);
        centroid.y /= static_cast<double>(count);
        for (std::size_t i = 0; i < count; ++i)
        {
            x[i] = points[i].x - centroid.x;
            y[i] = points[i].y - centroid.y;
        }
    }

    const qPoint64f& Centroid() const { return centroid; }
    std::size_t Count() const { return count; }
    bool Kept(std::size_t index) const { return !std::isnan(x[index]); }
    void Remove(std::size_t index) { x[index] = kRemoved; }

    Equation EquationOf(std::size_t index) const
    {
        return {{2.0 * x[index], 2.0 * y[index], 1.0}, x[index] * x[index] + y[index] * y[index]};
    }

    /** Index of the kept point with the largest | distance from the centre - radius |, the lowest among
     *  equals.
     *
     *  Root and difference never reverse an order, rounding included. The largest residual of a block is
     *  therefore that of its largest or its smallest squared distance. */
    std::size_t FarthestFrom(const Circle& circle) const
    {
        double largest = -1.0;
        std::size_t first = 0;
        for (std::size_t begin = 0; begin < x.size(); begin += kBlock)
        {
            const double residual = LargestResidual(begin, circle);
            if (residual > largest)
            {
                largest = residual;
                first = begin;
            }
        }
        for (std::size_t i = first; i < std::min(first + kBlock, count); ++i)
        {
            if (Residual(SquaredDistance(i, circle), circle) == largest)
            {
                return i;
            }
        }
        return FirstKept();
    }

private:
    static constexpr std::size_t kLanes = 4; // independent extremes, so that the loop runs on vectors
    static constexpr std::size_t kBlock = 64;
    static constexpr double kRemoved = std::numeric_limits<double>::quiet_NaN();

    static double Residual(double squaredDistance, const Circle& circle)
    {
        return std::fabs(std::sqrt(squaredDistance) - circle.radius);
    }

    double SquaredDistance(std::size_t index, const Circle& circle) const
    {
        const double dx = x[index] - circle.x;
        const double dy = y[index] - circle.y;
        return dx * dx + dy * dy;
    }

    /** Largest residual of the block that begins at @p begin; -1 when no point of it is kept. */
    double LargestResidual(std::size_t begin, const Circle& circle) const
    {
        double nearest[kLanes];
        double farthest[kLanes];
        std::fill_n(nearest, kLanes, std::numeric_limits<double>::infinity());
        std::fill_n(farthest, kLanes, -1.0);
        for (std::size_t i = begin; i < begin + kBlock; i += kLanes)
        {
            for (std::size_t lane = 0; lane < kLanes; ++lane)
            {
                const double distance = SquaredDistance(i + lane, circle);
                nearest[lane] = distance < nearest[lane] ? distance : nearest[lane];
                farthest[lane] = distance > farthest[lane] ? distance : farthest[lane];
            }
        }
        const double largest = *std::max_element(farthest, farthest + kLanes);
        const double smallest = *std::min_element(nearest, nearest + kLanes);
        return largest < 0.0 ? -1.0 : std::max(Residual(largest, circle), Residual(smallest, circle));
    }

    std::size_t FirstKept() const
    {
        std::size_t index = 0;
        while (index + 1 < count && !Kept(index))
        {
            ++index;
        }
        return index;
    }

    std::size_t count;
    qPoint64f centroid{0.0, 0.0};
    std::vector<double> x;
    std::vector<double> y;
};

TriangularFactor FactorOf(const CenteredPoints& points)
{
    TriangularFactor factor;
    for (std::size_t i = 0; i < points.Count(); ++i)
    {
        if (points.Kept(i))
        {
            factor.Insert(points.EquationOf(i));
        }
    }
    return factor;
}

Circle FitAll(const CenteredPoints& points)
{
    CircleSystem system(points.Count());
    for (std::size_t i = 0; i < points.Count(); ++i)
    {
        system.Set(i, points.EquationOf(i));
    }
    return system.Solve();
}

/** Removes @p toReject points, each the farthest from the circle through those that are left, and returns
 *  their indices. @p circle enters as the circle of all points and leaves as that of the kept ones. */
std::vector<std::size_t> RejectFarthest(CenteredPoints& points, std::size_t toReject, Circle& circle)
{
    std::vector<std::size_t> rejected;
    rejected.reserve(toReject);
    CircleSystem system(kUnknowns);
    TriangularFactor factor = FactorOf(points);
    double determinantShare = 1.0;
    while (rejected.size() < toReject)
    {
        const std::size_t farthest = points.FarthestFrom(circle);
        rejected.push_back(farthest);
        const Equation removed = points.EquationOf(farthest);
        points.Remove(farthest);

        determinantShare *= factor.Remove(removed);
        if (!(determinantShare >= kFactorAfreshBelow))
        {
            factor = FactorOf(points);
            determinantShare = 1.0;
        }
        for (std::size_t row = 0; row < kUnknowns; ++row)
        {
            system.Set(row, factor.Row(row));
        }
        circle = system.Solve();
    }
    return rejected;
}

template <typename T>
void Write(T* output, T value)
{
    if (output != nullptr)
    {
        *output = std::move(value);
    }
}

} // namespace

void FitCircle_LSC(const qPoint64f* points, std::size_t count, double outlierPercent, qPoint64f* center, double* radius,
                   std::vector<qPoint64f>* keptPoints, std::vector<qPoint64f>* outlierPoints)
{
    Write(center, {GetNull<double>(), GetNull<double>()});
    Write(radius, GetNull<double>());
    if (points == nullptr || count < kMinimumPoints)
    {
        Write(keptPoints,
              points == nullptr ? std::vector<qPoint64f>() : std::vector<qPoint64f>(points, points + count));
        return;
    }

    CenteredPoints centered(points, count);
    Circle circle = FitAll(centered);
    std::vector<qPoint64f> outliers;
    const std::size_t toReject = CountToReject(count, outlierPercent, kMinimumPoints);
    if (toReject > 0)
    {
        for (const std::size_t index : RejectFarthest(centered, toReject, circle))
        {
            outliers.push_back(points[index]);
        }
    }
    std::vector<qPoint64f> kept;
    kept.reserve(count - outliers.size());
    for (std::size_t i = 0; i < count; ++i)
    {
        if (centered.Kept(i))
        {
            kept.push_back(points[i]);
        }
    }

    const qPoint64f& centroid = centered.Centroid();
    Write(center, {circle.x + centroid.x, circle.y + centroid.y});
    Write(radius, circle.radius);
    Write(keptPoints, std::move(kept));
    Write(outlierPoints, std::move(outliers));
}

} // namespace Zvl
