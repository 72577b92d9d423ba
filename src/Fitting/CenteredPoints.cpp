#include "Fitting/CenteredPoints.h"

#include "Utils/MeanOfPoints.h"

#include <algorithm>
#include <span>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/CenteredPoints.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

/* Plain loops, which the compiler turns into the vectors of each instruction set. */

constexpr std::size_t kBlock = EquationBlock::kRows;

/** Extremes that are kept side by side, so that loops run on vectors, and these do not wait for one another. */
constexpr std::size_t kLanes = 8;

void TakeApart(std::span<const qPoint64f> points, const qPoint64f& centroid, double* HWY_RESTRICT x,
               double* HWY_RESTRICT y)
{
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        x[i] = points[i].x - centroid.x;
        y[i] = points[i].y - centroid.y;
    }
}

/** Writes the equations of a block of points, with zeros for removed ones. */
void WriteEquations(const double* HWY_RESTRICT x, const double* HWY_RESTRICT y, EquationBlock& block)
{
    for (std::size_t row = 0; row < kBlock; ++row)
    {
        const bool isKept = x[row] == x[row];
        const double pointX = isKept ? x[row] : 0.0;
        const double pointY = isKept ? y[row] : 0.0;
        block.coefficients[0][row] = 2.0 * pointX;
        block.coefficients[1][row] = 2.0 * pointY;
        block.coefficients[2][row] = isKept ? 1.0 : 0.0;
        block.rightSide[row] = pointX * pointX + pointY * pointY;
    }
}

/** The largest magnitude in whole blocks of numbers; 0 when there is none. */
double LargestMagnitude(std::span<const double> numbers)
{
    double largest[kLanes] = {};
    for (std::size_t i = 0; i < numbers.size(); i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            const double magnitude = std::fabs(numbers[i + lane]);
            largest[lane] = magnitude > largest[lane] ? magnitude : largest[lane];
        }
    }
    return *std::max_element(largest, largest + kLanes);
}

/** How far the kept points of a block are from the centre of @p circle; infinity and -1 when there is none. */
void FindSquaredRange(const double* HWY_RESTRICT x, const double* HWY_RESTRICT y, const Circle& circle, double& least,
                      double& largest)
{
    double nearest[kLanes];
    double farthest[kLanes];
    std::fill_n(nearest, kLanes, std::numeric_limits<double>::infinity());
    std::fill_n(farthest, kLanes, -1.0);
    for (std::size_t i = 0; i < kBlock; i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            const double distance = SquaredDistance(x[i + lane], y[i + lane], circle);
            nearest[lane] = distance < nearest[lane] ? distance : nearest[lane];
            farthest[lane] = distance > farthest[lane] ? distance : farthest[lane];
        }
    }
    least = *std::min_element(nearest, nearest + kLanes);
    largest = *std::max_element(farthest, farthest + kLanes);
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(TakeApart);
HWY_EXPORT(WriteEquations);
HWY_EXPORT(LargestMagnitude);
HWY_EXPORT(FindSquaredRange);

CenteredPoints::CenteredPoints(const qPoint64f* points, std::size_t pointCount)
    : count(pointCount),
      size((pointCount + kBlock - 1) / kBlock * kBlock),
      centroid(MeanOfPoints({points, pointCount})),
      x(std::make_unique_for_overwrite<double[]>(size)), // NOLINT(*-avoid-c-arrays)
      y(std::make_unique_for_overwrite<double[]>(size))  // NOLINT(*-avoid-c-arrays)
{
    HWY_DYNAMIC_DISPATCH(TakeApart)({points, count}, centroid, x.get(), y.get());
    std::fill(x.get() + count, x.get() + size, kRemoved);
    std::fill(y.get() + count, y.get() + size, kRemoved);
}

TriangularFactor CenteredPoints::Factor() const
{
    TriangularFactor factor;
    EquationBlock block;
    for (std::size_t begin = 0; begin < size; begin += kBlock)
    {
        HWY_DYNAMIC_DISPATCH(WriteEquations)(&x[begin], &y[begin], block);
        factor.Insert(block);
    }
    return factor;
}

double CenteredPoints::Reach() const
{
    return std::max(HWY_DYNAMIC_DISPATCH(LargestMagnitude)({x.get(), size}),
                    HWY_DYNAMIC_DISPATCH(LargestMagnitude)({y.get(), size}));
}

std::size_t CenteredPoints::FarthestFrom(const Circle& circle) const
{
    double largest = -1.0;
    std::size_t first = 0;
    for (std::size_t begin = 0; begin < size; begin += kBlock)
    {
        const double residual = LargestResidual(begin, circle);
        if (residual > largest)
        {
            largest = residual;
            first = begin;
        }
    }
    for (std::size_t i = first; i < std::min(first + kBlock, count); ++i)
    {
        if (Residual(SquaredDistance(x[i], y[i], circle), circle) == largest)
        {
            return i;
        }
    }
    return FirstKept();
}

/** Largest residual of the block that begins at @p begin; -1 when no point of it is kept. */
double CenteredPoints::LargestResidual(std::size_t begin, const Circle& circle) const
{
    double least = 0.0;
    double largest = 0.0;
    HWY_DYNAMIC_DISPATCH(FindSquaredRange)(&x[begin], &y[begin], circle, least, largest);
    return largest < 0.0 ? -1.0 : std::max(Residual(largest, circle), Residual(least, circle));
}

std::size_t CenteredPoints::FirstKept() const
{
    std::size_t index = 0;
    while (index + 1 < count && !Kept(index))
    {
        ++index;
    }
    return index;
}

} // namespace Zvl
#endif
