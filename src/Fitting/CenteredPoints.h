#pragma once

/** @file
 *  The points of a circle fit, from which points are taken out. */

#include "Fitting/TriangularFactor.h"

#include <ZdkVisionLib/platform/qApi.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <memory>

namespace Zvl
{

struct Circle
{
    double x;
    double y;
    double radius;
};

/** The square of the distance of a point from the centre. */
inline double SquaredDistance(double x, double y, const Circle& circle)
{
    const double dx = x - circle.x;
    const double dy = y - circle.y;
    return dx * dx + dy * dy;
}

/** The input about its centroid, each coordinate in an array of its own. A removed point becomes NaN, which
 *  loses every comparison; so do the entries that fill the last block. */
class CenteredPoints
{
public:
    CenteredPoints(const qPoint64f* points, std::size_t pointCount);

    const qPoint64f& Centroid() const { return centroid; }
    std::size_t Count() const { return count; }
    bool Kept(std::size_t index) const { return !std::isnan(x[index]); }
    void Remove(std::size_t index) { x[index] = kRemoved; }

    /** The equation `2 x x0 + 2 y y0 + c = x² + y²` of the circle in which the point has a part. */
    Equation EquationOf(std::size_t index) const
    {
        return {{2.0 * x[index], 2.0 * y[index], 1.0}, x[index] * x[index] + y[index] * y[index]};
    }

    /** The equations of the kept points, block after block. */
    TriangularFactor Factor() const;

    /** The largest coordinate, by magnitude. */
    double Reach() const;

    /** Index of the kept point with the largest | distance from the centre - radius |, the lowest among
     *  equals.
     *
     *  Root and difference never reverse an order, rounding included. The largest residual of a block is
     *  therefore that of its largest or its smallest squared distance. */
    std::size_t FarthestFrom(const Circle& circle) const;

private:
    static constexpr std::size_t kBlock = EquationBlock::kRows;
    static constexpr double kRemoved = std::numeric_limits<double>::quiet_NaN();

    static double Residual(double squaredDistance, const Circle& circle)
    {
        return std::fabs(std::sqrt(squaredDistance) - circle.radius);
    }

    double LargestResidual(std::size_t begin, const Circle& circle) const;
    std::size_t FirstKept() const;

    std::size_t count;
    std::size_t size; ///< the count, up to whole blocks
    qPoint64f centroid;
    std::unique_ptr<double[]> x; // NOLINT(*-avoid-c-arrays): a vector would be filled before it is written
    std::unique_ptr<double[]> y; // NOLINT(*-avoid-c-arrays)
};

} // namespace Zvl
