#include "Fitting/BisectorCrossings.h"

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/BisectorCrossings.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** Handles the points in whole vectors.
 *  @return the number of points that it has handled */
std::size_t CrossWholeVectors(const DistPoint* points, std::size_t count, const qPoint64f& pivot, const ZoneLine& line,
                              double* HWY_RESTRICT x, double* HWY_RESTRICT y)
{
    static_assert(sizeof(DistPoint) == 3 * sizeof(double));
    const hn::ScalableTag<double> d;
    const std::size_t lanes = hn::Lanes(d);
    const auto pivotX = hn::Set(d, pivot.x);
    const auto pivotY = hn::Set(d, pivot.y);
    const auto lineX = hn::Set(d, line.point.x);
    const auto lineY = hn::Set(d, line.point.y);
    const auto directionX = hn::Set(d, line.direction.x);
    const auto directionY = hn::Set(d, line.direction.y);
    const auto half = hn::Set(d, 0.5);
    const auto epsilon = hn::Set(d, kZoneEpsilon);
    const auto none = hn::Set(d, std::numeric_limits<double>::quiet_NaN());
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
    {
        hn::Vec<decltype(d)> pointX;
        hn::Vec<decltype(d)> pointY;
        hn::Vec<decltype(d)> value;
        hn::LoadInterleaved3(d, &points[i].point.x, pointX, pointY, value);
        const auto alongX = hn::Sub(pointX, pivotX);
        const auto alongY = hn::Sub(pointY, pivotY);
        const auto distance = hn::Sqrt(hn::Add(hn::Mul(alongX, alongX), hn::Mul(alongY, alongY)));
        const auto middleX = hn::Mul(hn::Add(pointX, pivotX), half);
        const auto middleY = hn::Mul(hn::Add(pointY, pivotY), half);
        const auto bisectorX = hn::Div(hn::Neg(alongY), distance);
        const auto bisectorY = hn::Div(alongX, distance);
        const auto determinant = hn::Sub(hn::Mul(directionY, bisectorX), hn::Mul(bisectorY, directionX));
        const auto t =
            hn::Div(hn::Add(hn::Mul(hn::Sub(lineX, middleX), directionY), hn::Mul(hn::Sub(middleY, lineY), directionX)),
                    determinant);
        const auto isParallel = hn::Lt(hn::Abs(determinant), epsilon);
        hn::StoreU(hn::IfThenElse(isParallel, none, hn::Add(middleX, hn::Mul(t, bisectorX))), d, x + i);
        hn::StoreU(hn::IfThenElse(isParallel, none, hn::Add(middleY, hn::Mul(t, bisectorY))), d, y + i);
    }
    return i;
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(CrossWholeVectors);

void CrossBisectors(const DistPoint* points, std::size_t count, const qPoint64f& pivot, const ZoneLine& line, double* x,
                    double* y)
{
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t i = HWY_DYNAMIC_DISPATCH(CrossWholeVectors)(points, count, pivot, line, x, y); i < count; ++i)
    {
        const qPoint64f crossing =
            Intersection(line, Bisector(points[i].point, pivot)).value_or(qPoint64f{kNone, kNone});
        x[i] = crossing.x;
        y[i] = crossing.y;
    }
}

} // namespace Zvl
#endif
