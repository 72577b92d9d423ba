#include "Fitting/LineSums.h"

#include <algorithm>
#include <cmath>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/LineSums.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET == HWY_SCALAR

bool AddPresent(const qPoint64f* /*points*/, std::size_t /*count*/, LineSums& /*sums*/)
{
    return false; // without vectors, nothing is gained
}

#else

namespace hn = hwy::HWY_NAMESPACE;

/** The two coordinates of a point, or a sum of each. */
using Pair = hn::FixedTag<double, 2>;

/** Adds points one after the other, several sums at once, unless one is missing: then, nothing is added.
 *  @return whether the points were added */
bool AddPresent(const qPoint64f* points, std::size_t count, LineSums& sums)
{
    static_assert(sizeof(qPoint64f) == 2 * sizeof(double));
    const Pair d;
    const auto null = hn::Set(d, GetNull<double>());
    HWY_ALIGN double firsts[] = {sums.sx, sums.sy};
    HWY_ALIGN double squares[] = {sums.sxx, sums.syy};
    auto ofFirsts = hn::Load(d, firsts);
    auto ofSquares = hn::Load(d, squares);
    auto ofProducts = hn::Set(d, sums.sxy);
    auto areMissing = hn::Lt(null, null); // none
    for (std::size_t i = 0; i < count; ++i)
    {
        const auto point = hn::LoadU(d, &points[i].x);
        areMissing = hn::Or(areMissing, hn::Eq(point, null));
        ofFirsts = hn::Add(ofFirsts, point);
        ofSquares = hn::Add(ofSquares, hn::Mul(point, point));
        ofProducts = hn::Add(ofProducts, hn::Mul(point, hn::Reverse(d, point)));
    }
    if (!hn::AllFalse(d, areMissing))
    {
        return false;
    }
    hn::Store(ofFirsts, d, firsts);
    hn::Store(ofSquares, d, squares);
    sums = {sums.count + count, firsts[0], firsts[1], squares[0], squares[1], hn::GetLane(ofProducts)};
    return true;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(AddPresent);

namespace
{

constexpr std::size_t kBlock = 64; // points that are added at once when all of them are used

bool IsAnyExcluded(const int* excluded, std::size_t count)
{
    return excluded != nullptr && std::any_of(excluded, excluded + count, [](int flag) { return flag != 0; });
}

void AddUsed(const qPoint64f* points, const int* excluded, std::size_t count, LineSums& sums)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        if (IsUsed(points, excluded, i))
        {
            sums.Add(points[i]);
        }
    }
}

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

LineSums SumPoints(const qPoint64f* points, const int* excluded, std::size_t count)
{
    LineSums sums;
    for (std::size_t begin = 0; begin < count; begin += std::min(kBlock, count - begin))
    {
        const std::size_t some = std::min(kBlock, count - begin);
        const int* flags = excluded == nullptr ? nullptr : excluded + begin;
        if (IsAnyExcluded(flags, some) || !HWY_DYNAMIC_DISPATCH(AddPresent)(points + begin, some, sums))
        {
            AddUsed(points + begin, flags, some, sums);
        }
    }
    return sums;
}

Line SolveLine(const LineSums& sums, const qPoint64f* points, const int* excluded, std::size_t count)
{
    return MayCoincide(sums) && DoCoincide(points, excluded, count) ? Line() : sums.Solve();
}

} // namespace Zvl
#endif
