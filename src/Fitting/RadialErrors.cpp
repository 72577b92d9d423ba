#include "Fitting/RadialErrors.h"

#include <cmath>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/RadialErrors.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

void ErrorsOf(const double* HWY_RESTRICT x, const double* HWY_RESTRICT y, std::size_t count, const qPoint64f& center,
              double radius, double* HWY_RESTRICT errors)
{
    const hn::ScalableTag<double> reals;
    const std::size_t lanes = hn::Lanes(reals);
    const auto centerX = hn::Set(reals, center.x);
    const auto centerY = hn::Set(reals, center.y);
    const auto radii = hn::Set(reals, radius);
    const auto infinity = hn::Set(reals, std::numeric_limits<double>::infinity());
    std::size_t index = 0;
    for (; index + lanes <= count; index += lanes)
    {
        const auto dx = hn::Sub(hn::LoadU(reals, x + index), centerX);
        const auto dy = hn::Sub(hn::LoadU(reals, y + index), centerY);
        const auto error = hn::Sub(hn::Sqrt(hn::Add(hn::Mul(dx, dx), hn::Mul(dy, dy))), radii);
        const auto square = hn::Mul(error, error);
        hn::StoreU(hn::IfThenElse(hn::Eq(square, square), square, infinity), reals, errors + index);
    }
    for (; index < count; ++index)
    {
        const double dx = x[index] - center.x;
        const double dy = y[index] - center.y;
        const double error = std::sqrt(dx * dx + dy * dy) - radius;
        const double square = error * error;
        errors[index] = square == square ? square : std::numeric_limits<double>::infinity();
    }
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(ErrorsOf);

void SquaredRadialErrors(const double* x, const double* y, std::size_t count, const qPoint64f& center, double radius,
                         double* errors)
{
    HWY_DYNAMIC_DISPATCH(ErrorsOf)(x, y, count, center, radius, errors);
}

} // namespace Zvl
#endif
