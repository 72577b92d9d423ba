#pragma once

/** @file
 *  How far a point lies from a line. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cmath>

namespace Zvl
{

/** Distance of @p point from the line `slope * x - y + intercept = 0`, never negative; NaN when the line or the
 *  point is not finite.
 *  @param posX,posY when both are given, the foot of the perpendicular */
inline double PointToLineDistance(const qPoint64f* point, double slope, double intercept, double* posX, double* posY)
{
    const double a = slope;
    const double b = -1.0;
    const double c = intercept;
    const double d = a * a + b * b;
    if (posX != nullptr && posY != nullptr)
    {
        *posX = (b * (b * point->x - a * point->y) - a * c) / d;
        *posY = (a * (-b * point->x + a * point->y) - b * c) / d;
    }
    return std::fabs(a * point->x + b * point->y + c) / std::sqrt(d);
}

} // namespace Zvl
