#pragma once

/** @file
 *  The sums behind a least-squares line, and the line that they give. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstddef>

namespace Zvl
{

/** `y = slope * x + intercept`. The pair of nulls says that there is no line. */
struct Line
{
    double slope = GetNull<double>();
    double intercept = GetNull<double>();
};

/** Sums of the coordinates and of their products over @ref count points. */
struct LineSums
{
    /** Differences that are 0 for coincident coordinates: `count` squared times variances and covariance. */
    double Dxx() const { return N() * sxx - sx * sx; }
    double Dyy() const { return N() * syy - sy * sy; }
    double Nxy() const { return N() * sxy - sx * sy; }

    double N() const { return static_cast<double>(count); }

    void Add(const qPoint64f& point)
    {
        ++count;
        sx += point.x;
        sy += point.y;
        sxx += point.x * point.x;
        syy += point.y * point.y;
        sxy += point.x * point.y;
    }

    /** Takes a point that was added out again; the sums keep their rounding errors. */
    void Subtract(const qPoint64f& point)
    {
        --count;
        sx -= point.x;
        sy -= point.y;
        sxx -= point.x * point.x;
        syy -= point.y * point.y;
        sxy -= point.x * point.y;
    }

    /** The line of y over x, or the inverse of that of x over y unless the points spread farther along x. */
    Line Solve() const;

    std::size_t count = 0;
    double sx = 0.0;
    double sy = 0.0;
    double sxx = 0.0;
    double syy = 0.0;
    double sxy = 0.0;
};

/** True when @p point has both coordinates. A NaN is a value. */
inline bool IsPresent(const qPoint64f& point)
{
    return point.x != GetNull<double>() && point.y != GetNull<double>();
}

/** True when a point is present and not excluded.
 *  @param excluded a flag for each point, or null */
inline bool IsUsed(const qPoint64f* points, const int* excluded, std::size_t index)
{
    return (excluded == nullptr || excluded[index] == 0) && IsPresent(points[index]);
}

/** The sums over the points that are present and not excluded, added in input order.
 *  @param excluded a flag for each point, or null */
LineSums SumPoints(const qPoint64f* points, const int* excluded, std::size_t count);

/** The line of the points behind @p sums, which are those of SumPoints() with the same arguments. Where points
 *  coincide, rounding may leave differences other than 0; such points have no line either. */
Line SolveLine(const LineSums& sums, const qPoint64f* points, const int* excluded, std::size_t count);

} // namespace Zvl
