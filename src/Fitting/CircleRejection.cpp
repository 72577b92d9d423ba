#include "Fitting/CircleRejection.h"

#include "Common/Check.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <algorithm>
#include <cmath>

namespace Zvl
{

namespace
{

constexpr std::size_t kUnknowns = 3;
constexpr double kSquaredRadiusLimit = 3.4028234663852886e38; // the largest float

/** The squared determinant of the triangular factor may shrink to this share of a fresh one's before the
 *  factor is formed anew. No singular value has then shrunk to less than the root of the share, so that a
 *  chain of removals costs less than one digit. */
constexpr double kFactorAfreshBelow = 0.1;

/** Whether sums of products of the equations neither overflow nor vanish. */
bool KeepsDigits(double reach)
{
    constexpr double kLargest = 1e60;
    return reach >= 1.0 / kLargest && reach <= kLargest;
}

std::optional<Circle> SolveAll(const char* function, const CenteredPoints& points)
{
    CircleSystem system(function, points.Count());
    for (std::size_t i = 0; i < points.Count(); ++i)
    {
        system.Set(i, points.EquationOf(i));
    }
    return system.Solve();
}

std::optional<Circle> SolveFactor(CircleSystem& system, const TriangularFactor& factor)
{
    for (std::size_t row = 0; row < kUnknowns; ++row)
    {
        system.Set(row, factor.Row(row));
    }
    return system.Solve();
}

} // namespace

CircleSystem::CircleSystem(const char* functionName, std::size_t equations) : function(functionName)
{
    ZVL_CHECK(function, qArray2_Construct(matrix.Slot(), xxq64f_type, equations, kUnknowns, nullptr));
    ZVL_CHECK(function, qArray2_Construct(solution.Slot(), xxq64f_type, kUnknowns, 1, nullptr));
    ZVL_CHECK(function, qArray2_Construct(rightSide.Slot(), xxq64f_type, equations, 1, nullptr));
}

void CircleSystem::Set(std::size_t index, const Equation& equation)
{
    auto* row = static_cast<double*>(qArray2_At(matrix, index, 0));
    std::copy(equation.coefficients.begin(), equation.coefficients.end(), row);
    *static_cast<double*>(qArray2_At(rightSide, index, 0)) = equation.rightSide;
}

std::optional<Circle> CircleSystem::Solve()
{
    ZVL_CHECK(function, qMatrix_SolveSystem(matrix, solution, rightSide));
    const auto* values = static_cast<const double*>(qArray2_At(solution, 0, 0));
    const double x = values[0];
    const double y = values[1];
    const double squaredRadius = values[2] + x * x + y * y;
    if (squaredRadius < 0.0 || squaredRadius >= kSquaredRadiusLimit)
    {
        return std::nullopt;
    }
    return Circle{x, y, std::sqrt(squaredRadius)};
}

CircleRejection::CircleRejection(const char* functionName, const qPoint64f* points, std::size_t count)
    : function(functionName), centered(points, count)
{
    if (KeepsDigits(centered.Reach()))
    {
        FormFactor();
    }
}

void CircleRejection::FormFactor()
{
    if (!factorSystem)
    {
        factorSystem.emplace(function, kUnknowns);
    }
    factor = centered.Factor();
    determinantShare = 1.0;
}

bool CircleRejection::Solve()
{
    const std::optional<Circle> solved =
        factorSystem ? SolveFactor(*factorSystem, factor) : SolveAll(function, centered);
    circle = solved.value_or(circle);
    return solved.has_value();
}

std::size_t CircleRejection::RejectFarthest()
{
    if (!factorSystem)
    {
        FormFactor();
    }
    const std::size_t farthest = centered.FarthestFrom(circle);
    const Equation removed = centered.EquationOf(farthest);
    centered.Remove(farthest);
    determinantShare *= factor.Remove(removed);
    if (!(determinantShare >= kFactorAfreshBelow))
    {
        FormFactor();
    }
    return farthest;
}

qPoint64f CircleRejection::Center() const
{
    return {circle.x + centered.Centroid().x, circle.y + centered.Centroid().y};
}

} // namespace Zvl
