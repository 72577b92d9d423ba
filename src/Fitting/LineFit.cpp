#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Check.h"
#include "Fitting/LineSums.h"

#include <cmath>
#include <limits>

namespace Zvl
{

namespace
{

/** True when the spread is no more than rounding can leave of none. */
bool MayCoincide(const LineSums& sums)
{
    const double share = 4.0 * sums.N() * sums.N() * std::numeric_limits<double>::epsilon();
    return std::fabs(sums.Dxx()) <= share * sums.sxx && std::fabs(sums.Dyy()) <= share * sums.syy;
}

bool DoCoincide(const qPoint64f* points, const int* excluded, std::size_t count)
{
    const qPoint64f* first = nullptr;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (!IsUsed(points, excluded, i))
        {
            continue;
        }
        first = first == nullptr ? &points[i] : first;
        if (points[i].x != first->x || points[i].y != first->y)
        {
            return false;
        }
    }
    return true;
}

} // namespace

Line LineSums::Solve() const
{
    const double dxx = Dxx();
    const double dyy = Dyy();
    const double nxy = Nxy();
    if (std::fabs(dxx) > std::fabs(dyy))
    {
        return {nxy / dxx, (sxx * sy - sx * sxy) / dxx};
    }
    if (dyy == 0.0)
    {
        return {};
    }
    return {dyy / nxy, -(syy * sx - sy * sxy) / nxy};
}

Line SolveLine(const LineSums& sums, const qPoint64f* points, const int* excluded, std::size_t count)
{
    return MayCoincide(sums) && DoCoincide(points, excluded, count) ? Line() : sums.Solve();
}

void FitLine(const qPoint64f* points, const int* excluded, std::size_t count, double* slope, double* intercept)
{
    ZVL_REQUIRE("Zvl::FitLine", slope != nullptr && intercept != nullptr);
    const std::size_t present = points == nullptr ? 0 : count;
    const Line line = SolveLine(SumPoints(points, excluded, present), points, excluded, present);
    *slope = line.slope;
    *intercept = line.intercept;
}

} // namespace Zvl
