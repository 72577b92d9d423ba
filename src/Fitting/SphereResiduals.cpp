#include "Fitting/SphereResiduals.h"

#include <algorithm>
#include <cmath>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/SphereResiduals.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

/* Plain loops, which the compiler turns into the vectors of each instruction set. */

void Measure(std::span<const qPoint3d64f> points, const Sphere& sphere, double* HWY_RESTRICT residuals)
{
    const Sphere from = sphere; // cannot be what is written to
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const double x = points[i].x - from.center.x;
        const double y = points[i].y - from.center.y;
        const double z = points[i].z - from.center.z;
        const double residual = std::fabs(std::sqrt(x * x + y * y + z * z) - from.radius);
        residuals[i] = residual >= 0.0 ? residual : -1.0;
    }
}

double Largest(std::span<const double> numbers)
{
    constexpr std::size_t kLanes = 16; // so many that none waits for the one before
    double largest[kLanes];
    std::fill_n(largest, kLanes, std::numeric_limits<double>::lowest());
    std::size_t i = 0;
    for (; i + kLanes <= numbers.size(); i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            largest[lane] = numbers[i + lane] > largest[lane] ? numbers[i + lane] : largest[lane];
        }
    }
    for (; i < numbers.size(); ++i)
    {
        largest[0] = std::max(largest[0], numbers[i]);
    }
    return *std::max_element(largest, largest + kLanes);
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(Measure);
HWY_EXPORT(Largest);

void MeasureResiduals(std::span<const qPoint3d64f> points, const Sphere& sphere, double* residuals)
{
    HWY_DYNAMIC_DISPATCH(Measure)(points, sphere, residuals);
}

double LargestOf(std::span<const double> numbers)
{
    return HWY_DYNAMIC_DISPATCH(Largest)(numbers);
}

} // namespace Zvl
#endif
