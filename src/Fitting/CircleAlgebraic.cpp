#include "Fitting/CircleAlgebraic.h"

#include "Utils/MeanOfPoints.h"

#include <cmath>

namespace Zvl
{

namespace
{

constexpr int kMostSteps = 99;

/** Means of products of the coordinates about the centroid, with z = x² + y². */
struct Moments
{
    double xx = 0.0;
    double yy = 0.0;
    double xy = 0.0;
    double xz = 0.0;
    double yz = 0.0;
    double zz = 0.0;
};

Moments MomentsAbout(const qPoint64f& centroid, const qPoint64f* points, std::size_t count)
{
    Moments sums;
    for (std::size_t i = 0; i < count; ++i)
    {
        const double x = points[i].x - centroid.x;
        const double y = points[i].y - centroid.y;
        const double z = x * x + y * y;
        sums.xx += x * x;
        sums.yy += y * y;
        sums.xy += x * y;
        sums.xz += x * z;
        sums.yz += y * z;
        sums.zz += z * z;
    }
    const auto n = static_cast<double>(count);
    return {sums.xx / n, sums.yy / n, sums.xy / n, sums.xz / n, sums.yz / n, sums.zz / n};
}

/** The least root of the characteristic polynomial: the first that Newton's method meets on the way up from 0. */
double LeastRoot(const Moments& m)
{
    const double z = m.xx + m.yy;
    const double covariance = m.xx * m.yy - m.xy * m.xy;
    const double variance = m.zz - z * z;
    const double a2 = 4.0 * covariance - 3.0 * z * z - m.zz;
    const double a1 = variance * z + 4.0 * covariance * z - m.xz * m.xz - m.yz * m.yz;
    const double a0 = m.xz * (m.xz * m.yy - m.yz * m.xy) + m.yz * (m.yz * m.xx - m.xz * m.xy) - variance * covariance;
    const double a22 = a2 + a2;

    double x = 0.0;
    double y = a0;
    for (int step = 0; step < kMostSteps; ++step)
    {
        const double slope = a1 + x * (a22 + 16.0 * x * x);
        const double next = x - y / slope;
        if (next == x || slope == 0.0)
        {
            break;
        }
        const double value = a0 + next * (a1 + next * (a2 + 4.0 * next * next));
        if (std::fabs(value) >= std::fabs(y))
        {
            break;
        }
        x = next;
        y = value;
    }
    return x;
}

} // namespace

void FitCircleAlgebraic(const qPoint64f* points, std::size_t count, qPoint64f* center, double* radius)
{
    const qPoint64f centroid = MeanOfPoints({points, count});
    const Moments m = MomentsAbout(centroid, points, count);
    const double z = m.xx + m.yy;
    const double covariance = m.xx * m.yy - m.xy * m.xy;
    const double x = LeastRoot(m);
    const double determinant = x * x - x * z + covariance;
    const double centerX = (m.xz * (m.yy - x) - m.yz * m.xy) / determinant / 2.0;
    const double centerY = (m.yz * (m.xx - x) - m.xz * m.xy) / determinant / 2.0;
    *center = {centerX + centroid.x, centerY + centroid.y};
    *radius = std::sqrt(centerX * centerX + centerY * centerY + z - x - x);
}

} // namespace Zvl
