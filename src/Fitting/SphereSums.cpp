#include "Fitting/SphereSums.h"

#include <functional>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/SphereSums.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

#if HWY_MAX_BYTES >= 32 && !HWY_HAVE_SCALABLE

namespace hn = hwy::HWY_NAMESPACE;

using Reals = hn::FixedTag<double, kSphereUnknowns>;
using Vector = hn::Vec<Reals>;

/** Adds all points but the last one, beyond which a vector would reach.
 *  @return the number of points that were added */
std::size_t AddButLast(const qPoint3d64f* points, std::size_t count, SphereContribution& sums)
{
    static_assert(sizeof(qPoint3d64f) == 3 * sizeof(double));
    const Reals d;
    const auto isCoordinate = hn::FirstN(d, 3);
    const auto one = hn::Set(d, 1.0);
    Vector rowX = hn::LoadU(d, sums.matrix[0]);
    Vector rowY = hn::LoadU(d, sums.matrix[1]);
    Vector rowZ = hn::LoadU(d, sums.matrix[2]);
    Vector rowOne = hn::LoadU(d, sums.matrix[3]);
    Vector vector = hn::LoadU(d, sums.vector);
    const std::size_t most = count == 0 ? 0 : count - 1;
    for (std::size_t i = 0; i < most; ++i)
    {
        const qPoint3d64f& point = points[i];
        const auto terms = hn::IfThenElse(isCoordinate, hn::LoadU(d, &point.x), one);
        const double square = point.x * point.x + point.y * point.y + point.z * point.z;
        rowX = hn::Add(rowX, hn::Mul(hn::Set(d, point.x), terms));
        rowY = hn::Add(rowY, hn::Mul(hn::Set(d, point.y), terms));
        rowZ = hn::Add(rowZ, hn::Mul(hn::Set(d, point.z), terms));
        rowOne = hn::Add(rowOne, terms);
        vector = hn::Add(vector, hn::Mul(terms, hn::Set(d, square)));
    }
    hn::StoreU(rowX, d, sums.matrix[0]);
    hn::StoreU(rowY, d, sums.matrix[1]);
    hn::StoreU(rowZ, d, sums.matrix[2]);
    hn::StoreU(rowOne, d, sums.matrix[3]);
    hn::StoreU(vector, d, sums.vector);
    return most;
}

#else

std::size_t AddButLast(const qPoint3d64f* /*points*/, std::size_t /*count*/, SphereContribution& /*sums*/)
{
    return 0; // the compiler's vectors serve as well
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(AddButLast);

void AddContributions(const qPoint3d64f* points, std::size_t count, SphereContribution& sums)
{
    SphereContribution total = sums; // a local of its own stays in registers
    for (std::size_t i = HWY_DYNAMIC_DISPATCH(AddButLast)(points, count, total); i < count; ++i)
    {
        total.Combine(SphereContribution(points[i]), std::plus<>());
    }
    sums = total;
}

} // namespace Zvl
#endif
