#include "Fitting/TriangularFactor.h"

#include <cmath>
#include <cstddef>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/TriangularFactorBlock.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

/* Plain loops, which the compiler turns into the vectors of each instruction set. */

constexpr std::size_t kUnknowns = 3;

using Column = EquationBlock::Column;

/** Summed in several parts side by side, so that the loop runs on vectors. */
double Dot(const Column& a, const Column& b)
{
    constexpr std::size_t kLanes = 8;
    std::array<double, kLanes> sums{};
    for (std::size_t i = 0; i < a.size(); i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            sums[lane] += a[i + lane] * b[i + lane];
        }
    }
    return ((sums[0] + sums[4]) + (sums[2] + sums[6])) + ((sums[1] + sums[5]) + (sums[3] + sums[7]));
}

/** The reflection that turns an entry of R and the column of a block below it into one number. */
class Reflection
{
public:
    /** @param squaredBelow squared length of the column */
    Reflection(double entry, double squaredBelow)
        : reflected(-std::copysign(std::sqrt(entry * entry + squaredBelow), entry)),
          head(entry - reflected),
          squaredLength(head * head + squaredBelow)
    {
    }

    double Reflected() const { return reflected; }

    /** Reflects another entry of the same row of R, and the column below it. */
    void Apply(const Column& pivots, double& entry, Column& below) const
    {
        const double share = 2.0 * (head * entry + Dot(pivots, below)) / squaredLength;
        entry -= share * head;
        for (std::size_t i = 0; i < below.size(); ++i)
        {
            below[i] -= share * pivots[i];
        }
    }

private:
    double reflected;
    double head; ///< of the vector to reflect at; the rest of it is the column
    double squaredLength;
};

void InsertBlock(EquationBlock& block, std::array<Equation, kUnknowns>& rows)
{
    for (std::size_t i = 0; i < kUnknowns; ++i)
    {
        const Column& pivots = block.coefficients[i];
        const double squaredBelow = Dot(pivots, pivots);
        if (squaredBelow == 0.0)
        {
            continue;
        }
        Equation& present = rows[i];
        const Reflection reflection(present.coefficients[i], squaredBelow);
        for (std::size_t j = i + 1; j < kUnknowns; ++j)
        {
            reflection.Apply(pivots, present.coefficients[j], block.coefficients[j]);
        }
        reflection.Apply(pivots, present.rightSide, block.rightSide);
        present.coefficients[i] = reflection.Reflected();
    }
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(InsertBlock);

void TriangularFactor::Insert(EquationBlock& block)
{
    HWY_DYNAMIC_DISPATCH(InsertBlock)(block, rows);
}

} // namespace Zvl
#endif
