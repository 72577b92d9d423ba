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

/** The states around the cells of a run, and the values by their role in the differences: `here` is the cell as it is
 *  read, which at the image's edges is one cell further inside. */
struct RunPointers
{
    HWY_INLINE RunPointers(const Surroundings& around, const NeighbourRun& run)
        : state(around.state + run.dy * around.planeStride + run.dx),
          stateAbove(state - around.planeStride),
          stateBelow(state + around.planeStride),
          t(around.t + run.dy * around.planeStride + run.dx)
    {
        const float* value = around.value + run.dy * around.valueStride + run.dx;
        const float* inRow = value + (run.isFirstRow ? around.valueStride : 0);
        const std::ptrdiff_t inColumn = run.isFirstColumn ? 1 : 0;
        here = inRow + inColumn;
        hereLeft = inRow - (run.isLastColumn ? 1 : 0);
        hereAbove = value - (run.isLastRow ? around.valueStride : 0) + inColumn;
        above = here - around.valueStride;
        below = hereAbove + around.valueStride;
    }

    const std::uint8_t* state;
    const std::uint8_t* stateAbove;
    const std::uint8_t* stateBelow;
    const float* t;
    const float* here;
    const float* hereLeft;  ///< in place of `here` where the cell to the right is not known
    const float* hereAbove; ///< in place of `here` where the cell below is not known
    const float* above;
    const float* below;
};

/** Which neighbours of the cells of a run are known. */
struct KnownNeighbours
{
    HWY_INLINE KnownNeighbours(const RunPointers& at, std::size_t k)
        : left(IsKnown(at.state + k - 1)),
          right(IsKnown(at.state + k + 1)),
          above(IsKnown(at.stateAbove + k)),
          below(IsKnown(at.stateBelow + k))
    {
    }

    RealMask left;
    RealMask right;
    RealMask above;
    RealMask below;
};

/** Sums that add the terms of one cell after the other. A 0 for a cell that is not known leaves them as they are. */
class OrderedSums
{
public:
    HWY_INLINE explicit OrderedSums(const NeighbourSums& begin)
        : sums{begin.weighted, begin.gradX, begin.gradY, begin.weight}
    {
    }

    /** Adds the terms of the first @p count lanes. */
    HWY_INLINE void Add(RealMask known, RealLanes weighted, RealLanes gradX, RealLanes gradY, RealLanes weight,
                        std::size_t count)
    {
        weighted = hn::IfThenElseZero(known, weighted);
        gradX = hn::IfThenElseZero(known, gradX);
        gradY = hn::IfThenElseZero(known, gradY);
        weight = hn::IfThenElseZero(known, weight);
#if HWY_TARGET == HWY_SCALAR
        (void)count;
        const float terms[4] = {hn::GetLane(weighted), hn::GetLane(gradX), hn::GetLane(gradY), hn::GetLane(weight)};
        for (std::size_t k = 0; k < 4; ++k)
        {
            sums[k] += terms[k];
        }
#else
        const hn::FixedTag<float, 4> four; // the sums side by side
        HWY_ALIGN float terms[4 * hn::MaxLanes(Real())];
        hn::StoreInterleaved4(weighted, gradX, gradY, weight, Real(), terms);
        auto lanes = hn::Load(four, sums);
        for (std::size_t k = 0; k < count; ++k)
        {
            lanes = hn::Add(lanes, hn::Load(four, terms + 4 * k));
        }
        hn::Store(lanes, four, sums);
#endif
    }

    HWY_INLINE NeighbourSums Get() const
    {
        return {sums[0], sums[1], sums[2], sums[3]};
    }

private:
    HWY_ALIGN float sums[4];
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

void Telea(const Surroundings& around, const FrontSlope& front, NeighbourSums& result)
{
    const std::size_t lanes = hn::Lanes(Real());
    OrderedSums sums(result);
    for (const NeighbourRun& run : around.runs)
    {
        const RunPointers at(around, run);
        for (std::size_t k = 0; k < run.count; k += lanes)
        {
            const auto awayX = From(static_cast<float>(run.dx) + static_cast<float>(k));
            const auto awayY = Same(static_cast<float>(run.dy));
            const auto level =
                hn::Div(Same(1.0F), hn::Add(hn::Abs(hn::Sub(Load(at.t + k), Same(front.time))), Same(1.0F)));
            const auto along = hn::Add(hn::Mul(hn::Neg(awayX), Same(front.x)), hn::Mul(hn::Neg(awayY), Same(front.y)));
            const auto direction = hn::IfThenElse(hn::Le(hn::Abs(along), Same(0.01F)), Same(1e-6F), along);
            const auto weight = hn::Abs(hn::Mul(hn::Mul(Load(run.factor + k), level), direction));

            const KnownNeighbours knows(at, k);
            const auto here = Load(at.here + k);
            const auto hereLeft = Load(at.hereLeft + k);
            const auto gradX =
                Difference(knows.left, knows.right, Load(at.here + k - 1), Load(at.hereLeft + k + 1), here, hereLeft);
            const auto gradY = Difference(knows.above, knows.below, Load(at.above + k), Load(at.below + k), here,
                                          Load(at.hereAbove + k));
            sums.Add(IsKnown(at.state + k), hn::Mul(weight, here), hn::Mul(hn::Mul(weight, gradX), awayX),
                     hn::Mul(hn::Mul(weight, gradY), awayY), weight, HWY_MIN(run.count - k, lanes));
        }
    }
    result = sums.Get();
}

void NavierStokes(const Surroundings& around, NeighbourSums& result)
{
    const std::size_t lanes = hn::Lanes(Real());
    OrderedSums sums(result);
    for (const NeighbourRun& run : around.runs)
    {
        const RunPointers at(around, run);
        for (std::size_t k = 0; k < run.count; k += lanes)
        {
            const KnownNeighbours knows(at, k);
            const auto here = Load(at.here + k);
            const auto hereAbove = Load(at.hereAbove + k);
            const auto stepAbove = hn::Abs(hn::Sub(hereAbove, Load(at.above + k)));
            const auto stepBelow = hn::Abs(hn::Sub(Load(at.below + k), hereAbove));
            const auto stepLeft = hn::Abs(hn::Sub(here, Load(at.here + k - 1)));
            const auto stepRight = hn::Abs(hn::Sub(Load(at.hereLeft + k + 1), here));
            // The isophote stands at a right angle to the gradient.
            const auto flowX = hn::Neg(Steps(knows.above, knows.below, stepAbove, stepBelow));
            const auto flowY = Steps(knows.left, knows.right, stepLeft, stepRight);

            const auto x = From(static_cast<float>(run.dx) + static_cast<float>(k));
            const auto y = Same(static_cast<float>(run.dy));
            const auto along = hn::Add(hn::Mul(x, flowX), hn::Mul(y, flowY));
            const auto lengths =
                hn::Mul(hn::Add(hn::Mul(x, x), hn::Mul(y, y)), hn::Add(hn::Mul(flowX, flowX), hn::Mul(flowY, flowY)));
            const auto cosine = hn::Abs(hn::Div(along, hn::Sqrt(lengths)));
            const auto direction = hn::IfThenElse(hn::Gt(hn::Abs(along), Same(0.01F)), cosine, Same(1e-6F));
            const auto weight = hn::Mul(Load(run.factor + k), direction);
            sums.Add(IsKnown(at.state + k), hn::Mul(weight, here), hn::Zero(Real()), hn::Zero(Real()), weight,
                     HWY_MIN(run.count - k, lanes));
        }
    }
    result = sums.Get();
}

template <typename T>
HWY_INLINE RealLanes LoadReal(const T* cells)
{
    return hn::ConvertTo(Real(), hn::PromoteTo(Count(), hn::LoadU(hn::Rebind<T, Real>(), cells)));
}

HWY_INLINE RealLanes LoadReal(const float* cells)
{
    return Load(cells);
}

template <typename T>
HWY_INLINE void Widen(const ImageWindow<T>& window)
{
    for (std::size_t row = 0; row < window.rows; ++row)
    {
        const T* cells = window.cells + static_cast<std::ptrdiff_t>(row) * window.stride;
        float* values = window.values + row * window.valueStride;
        for (std::size_t column = 0; column < window.columns; column += hn::Lanes(Real()))
        {
            hn::StoreU(LoadReal(cells + column), Real(), values + column);
        }
    }
}

void Widen8U(const ImageWindow<std::uint8_t>& window)
{
    Widen(window);
}

void Widen16U(const ImageWindow<std::uint16_t>& window)
{
    Widen(window);
}

void Widen16S(const ImageWindow<std::int16_t>& window)
{
    Widen(window);
}

void Widen32F(const ImageWindow<float>& window)
{
    Widen(window);
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
HWY_EXPORT(Widen8U);
HWY_EXPORT(Widen16U);
HWY_EXPORT(Widen16S);
HWY_EXPORT(Widen32F);

void SumTelea(const Surroundings& surroundings, const FrontSlope& front, NeighbourSums& sums)
{
    HWY_DYNAMIC_DISPATCH(Telea)(surroundings, front, sums);
}

void SumNavierStokes(const Surroundings& surroundings, NeighbourSums& sums)
{
    HWY_DYNAMIC_DISPATCH(NavierStokes)(surroundings, sums);
}

void ToFloats(const ImageWindow<std::uint8_t>& window)
{
    HWY_DYNAMIC_DISPATCH(Widen8U)(window);
}

void ToFloats(const ImageWindow<std::uint16_t>& window)
{
    HWY_DYNAMIC_DISPATCH(Widen16U)(window);
}

void ToFloats(const ImageWindow<std::int16_t>& window)
{
    HWY_DYNAMIC_DISPATCH(Widen16S)(window);
}

void ToFloats(const ImageWindow<float>& window)
{
    HWY_DYNAMIC_DISPATCH(Widen32F)(window);
}

} // namespace Zvl
#endif
