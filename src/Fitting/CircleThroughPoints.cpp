#include "Fitting/CircleThroughPoints.h"

#include <ZdkVisionLib/Common/Common.h>

#include <cmath>

namespace Zvl
{

namespace
{

constexpr double kLeastDeterminant = 1.1920928955078125e-07;

} // namespace

void CircleThroughPoints(const qPoint64f* points, qPoint64f* center, double* radius)
{
    *center = {GetNull<double>(), GetNull<double>()};
    *radius = GetNull<double>();

    // Seen from the first point, so that the determinants do not cancel far from the origin.
    const double x1 = points[1].x - points[0].x;
    const double y1 = points[1].y - points[0].y;
    const double x2 = points[2].x - points[0].x;
    const double y2 = points[2].y - points[0].y;
    const double determinant = x1 * y2 - x2 * y1;
    if (std::fabs(determinant) < kLeastDeterminant)
    {
        return;
    }
    const double square1 = x1 * x1 + y1 * y1;
    const double square2 = x2 * x2 + y2 * y2;
    const double x = (square1 * y2 - square2 * y1) / (2.0 * determinant);
    const double y = (square2 * x1 - square1 * x2) / (2.0 * determinant);
    *center = {points[0].x + x, points[0].y + y};
    *radius = std::sqrt(x * x + y * y);
}

} // namespace Zvl
