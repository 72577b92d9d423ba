#include "Fitting/CenteredPoints.h"

#include "Utils/MeanOfPoints.h"

#include <algorithm>

namespace Zvl
{

CenteredPoints::CenteredPoints(const qPoint64f* points, std::size_t pointCount)
    : count(pointCount),
      size((pointCount + kBlock - 1) / kBlock * kBlock),
      centroid(MeanOfPoints({points, pointCount})),
      x(std::make_unique_for_overwrite<double[]>(size)), // NOLINT(*-avoid-c-arrays)
      y(std::make_unique_for_overwrite<double[]>(size))  // NOLINT(*-avoid-c-arrays)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        x[i] = points[i].x - centroid.x;
        y[i] = points[i].y - centroid.y;
    }
    std::fill(x.get() + count, x.get() + size, kRemoved);
    std::fill(y.get() + count, y.get() + size, kRemoved);
}

TriangularFactor CenteredPoints::Factor() const
{
    TriangularFactor factor;
    EquationBlock block;
    for (std::size_t begin = 0; begin < size; begin += kBlock)
    {
        for (std::size_t row = 0; row < kBlock; ++row)
        {
            const bool isKept = x[begin + row] == x[begin + row];
            const double pointX = isKept ? x[begin + row] : 0.0;
            const double pointY = isKept ? y[begin + row] : 0.0;
            block.coefficients[0][row] = 2.0 * pointX;
            block.coefficients[1][row] = 2.0 * pointY;
            block.coefficients[2][row] = isKept ? 1.0 : 0.0;
            block.rightSide[row] = pointX * pointX + pointY * pointY;
        }
        factor.Insert(block);
    }
    return factor;
}

double CenteredPoints::Reach() const
{
    double reach[kLanes] = {};
    const auto widen = [&reach](std::size_t lane, double coordinate)
    {
        const double distance = std::fabs(coordinate);
        reach[lane] = distance > reach[lane] ? distance : reach[lane];
    };
    for (std::size_t i = 0; i < size; i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            widen(lane, x[i + lane]);
            widen(lane, y[i + lane]);
        }
    }
    return *std::max_element(reach, reach + kLanes);
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
        if (Residual(SquaredDistance(i, circle), circle) == largest)
        {
            return i;
        }
    }
    return FirstKept();
}

/** Largest residual of the block that begins at @p begin; -1 when no point of it is kept. */
double CenteredPoints::LargestResidual(std::size_t begin, const Circle& circle) const
{
    double nearest[kLanes];
    double farthest[kLanes];
    std::fill_n(nearest, kLanes, std::numeric_limits<double>::infinity());
    std::fill_n(farthest, kLanes, -1.0);
    for (std::size_t i = begin; i < begin + kBlock; i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            const double distance = SquaredDistance(i + lane, circle);
            nearest[lane] = distance < nearest[lane] ? distance : nearest[lane];
            farthest[lane] = distance > farthest[lane] ? distance : farthest[lane];
        }
    }
    const double largest = *std::max_element(farthest, farthest + kLanes);
    const double smallest = *std::min_element(nearest, nearest + kLanes);
    return largest < 0.0 ? -1.0 : std::max(Residual(largest, circle), Residual(smallest, circle));
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
