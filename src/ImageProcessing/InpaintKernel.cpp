#include "ImageProcessing/InpaintKernel.h"

#include "ImageProcessing/InpaintFront.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "ImageProcessing/InpaintKernel.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{
namespace
{

namespace hn = hwy::HWY_NAMESPACE;

using Real = hn::CappedTag<float, 16>;
using Count = hn::Rebind<std::int32_t, Real>;
using State = hn::Rebind<std::uint8_t, Real>;
using RealLanes = hn::VFromD<Real>;
using RealMask = hn::Mask<Real>;

HWY_INLINE RealLanes Load(const float* values)
{
    return hn::LoadU(Real(), values);
}

HWY_INLINE RealLanes Same(float value)
{
    return hn::Set(Real(), value);
}

HWY_INLINE RealMask IsKnown(const std::uint8_t* states)
{
    const Count count;
    const auto wide = hn::PromoteTo(count, hn::LoadU(State(), states));
    return hn::RebindMask(Real(), hn::Ne(wide, hn::Set(count, CELL_HOLE)));
}

/** 0, 1, 2, ... from @p first on. */
HWY_INLINE RealLanes From(float first)
{
    return hn::Iota(Real(), first);
}

/** Which neighbours of the cells of a run are known. */
struct KnownNeighbours
{
    HWY_INLINE KnownNeighbours(const NeighbourRun& run, std::size_t k)
        : left(IsKnown(run.state + k - 1)),
          right(IsKnown(run.state + k + 1)),
          above(IsKnown(run.stateAbove + k)),
          below(IsKnown(run.stateBelow + k))
    {
    }

    RealMask left;
    RealMask right;
    RealMask above;
    RealMask below;
};

/** From the value @p before to the value @p after, each replaced by one at the cell itself where it is not known. With
 *  both neighbours known, the difference counts twice. */
HWY_INLINE RealLanes Difference(RealMask knowsBefore, RealMask knowsAfter, RealLanes before, RealLanes after,
                                RealLanes insteadOfBefore, RealLanes insteadOfAfter)
{
    const auto to = hn::IfThenElse(knowsAfter, after, insteadOfAfter);
    const auto from = hn::IfThenElse(knowsBefore, before, insteadOfBefore);
    const auto difference = hn::Sub(to, from);
    const auto doubled = hn::Mul(difference, Same(2.0F));
    return hn::IfThenElse(hn::And(knowsBefore, knowsAfter), doubled,
                          hn::IfThenElseZero(hn::Or(knowsBefore, knowsAfter), difference));
}

/** The sum of the steps to both neighbours, or twice the step to the only known one. */
HWY_INLINE RealLanes Steps(RealMask knowsBefore, RealMask knowsAfter, RealLanes stepBefore, RealLanes stepAfter)
{
    const auto first = hn::IfThenElse(knowsAfter, stepAfter, stepBefore);
    const auto second = hn::IfThenElse(knowsBefore, stepBefore, stepAfter);
    return hn::IfThenElseZero(hn::Or(knowsBefore, knowsAfter), hn::Add(first, second));
}

HWY_INLINE void StoreKnown(RealMask known, RealLanes values, float* terms)
{
    hn::StoreU(hn::IfThenElseZero(known, values), Real(), terms);
}

void Telea(const NeighbourRun& run, const FrontSlope& front, const RunTerms& terms)
{
    const std::size_t lanes = hn::Lanes(Real());
    for (std::size_t k = 0; k < run.count; k += lanes)
    {
        // From the neighbour to the cell to repair.
        const auto x = hn::Neg(From(run.dx + static_cast<float>(k)));
        const auto y = Same(-run.dy);
        const auto level =
            hn::Div(Same(1.0F), hn::Add(hn::Abs(hn::Sub(Load(run.t + k), Same(front.time))), Same(1.0F)));
        const auto along = hn::Add(hn::Mul(x, Same(front.x)), hn::Mul(y, Same(front.y)));
        const auto direction = hn::IfThenElse(hn::Le(hn::Abs(along), Same(0.01F)), Same(1e-6F), along);
        const auto weight = hn::Abs(hn::Mul(hn::Mul(Load(run.factor + k), level), direction));

        const KnownNeighbours knows(run, k);
        const auto here = Load(run.here + k);
        const auto gradX =
            Difference(knows.left, knows.right, Load(run.left + k), Load(run.right + k), here, Load(run.hereLeft + k));
        const auto gradY = Difference(knows.above, knows.below, Load(run.above + k), Load(run.below + k), here,
                                      Load(run.hereAbove + k));
        const auto known = IsKnown(run.state + k);
        StoreKnown(known, hn::Mul(weight, here), terms.weighted + k);
        StoreKnown(known, hn::Mul(hn::Mul(weight, gradX), x), terms.gradX + k);
        StoreKnown(known, hn::Mul(hn::Mul(weight, gradY), y), terms.gradY + k);
        StoreKnown(known, weight, terms.weight + k);
    }
}

void NavierStokes(const NeighbourRun& run, const RunTerms& terms)
{
    const std::size_t lanes = hn::Lanes(Real());
    for (std::size_t k = 0; k < run.count; k += lanes)
    {
        const KnownNeighbours knows(run, k);
        const auto here = Load(run.here + k);
        const auto hereAbove = Load(run.hereAbove + k);
        const auto stepAbove = hn::Abs(hn::Sub(hereAbove, Load(run.above + k)));
        const auto stepBelow = hn::Abs(hn::Sub(Load(run.below + k), hereAbove));
        const auto stepLeft = hn::Abs(hn::Sub(here, Load(run.left + k)));
        const auto stepRight = hn::Abs(hn::Sub(Load(run.right + k), here));
        // The isophote stands at a right angle to the gradient.
        const auto flowX = hn::Neg(Steps(knows.above, knows.below, stepAbove, stepBelow));
        const auto flowY = Steps(knows.left, knows.right, stepLeft, stepRight);

        const auto x = From(run.dx + static_cast<float>(k));
        const auto y = Same(run.dy);
        const auto along = hn::Add(hn::Mul(x, flowX), hn::Mul(y, flowY));
        const auto lengths =
            hn::Mul(hn::Add(hn::Mul(x, x), hn::Mul(y, y)), hn::Add(hn::Mul(flowX, flowX), hn::Mul(flowY, flowY)));
        const auto cosine = hn::Abs(hn::Div(along, hn::Sqrt(lengths)));
        const auto direction = hn::IfThenElse(hn::Gt(hn::Abs(along), Same(0.01F)), cosine, Same(1e-6F));
        const auto weight = hn::Mul(Load(run.factor + k), direction);

        const auto known = IsKnown(run.state + k);
        StoreKnown(known, hn::Mul(weight, here), terms.weighted + k);
        StoreKnown(known, weight, terms.weight + k);
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(Telea);
HWY_EXPORT(NavierStokes);

void TeleaTerms(const NeighbourRun& run, const FrontSlope& front, const RunTerms& terms)
{
    HWY_DYNAMIC_DISPATCH(Telea)(run, front, terms);
}

void NavierStokesTerms(const NeighbourRun& run, const RunTerms& terms)
{
    HWY_DYNAMIC_DISPATCH(NavierStokes)(run, terms);
}

} // namespace Zvl
#endif
