#include "Fitting/CircleTrimmedSearch.h"

#include "Fitting/CircleAlgebraic.h"
#include "Fitting/CircleThroughPoints.h"
#include "Fitting/FirstIndices.h"
#include "Fitting/KthSmallest.h"
#include "Fitting/RadialErrors.h"
#include "Fitting/RandomPoints.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace Zvl
{

namespace
{

constexpr std::size_t kSampleSize = 3;
constexpr double kWeightRange = 36.0; // six times the median error, squared
constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

bool IsFinite(const TrimmedCircle& circle)
{
    return std::isfinite(circle.center.x) && std::isfinite(circle.center.y) && std::isfinite(circle.radius);
}

} // namespace

CircleTrimmedSearch::CircleTrimmedSearch(const qPoint64f* inputPoints, std::size_t inputCount, std::size_t kept,
                                         bool weighted)
    : points(inputPoints),
      count(inputCount),
      h(kept),
      useWeights(weighted),
      x(count),
      y(count),
      errors(count),
      ordered(count),
      nearest(count + 1),
      hSubset(h)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        x[i] = points[i].x;
        y[i] = points[i].y;
    }
}

void CircleTrimmedSearch::Try()
{
    qPoint64f h0Subset[kSampleSize];
    GetNRandomPoints(points, count, h0Subset, kSampleSize);
    TrimmedCircle circle;
    CircleThroughPoints(h0Subset, &circle.center, &circle.radius);
    if (circle.radius == GetNull<double>() || !IsFinite(circle))
    {
        return;
    }
    MeasureFrom(circle);
    FindNearest(h);
    std::transform(nearest.begin(), nearest.begin() + static_cast<std::ptrdiff_t>(h), hSubset.begin(),
                   [this](std::size_t index) { return points[index]; });
    FitCircleAlgebraic(hSubset.data(), h, &circle.center, &circle.radius);
    if (!IsFinite(circle))
    {
        return;
    }
    MeasureFrom(circle);
    if (!useWeights && SurelyNoBetter())
    {
        return;
    }
    const double limit = FindNearest(h);
    const double score = useWeights ? WeightedScore(ErrorAt(count / 2)) : Score();
    if (score < best)
    {
        best = score;
        bestLimit = limit;
        bestCircle = circle;
    }
}

void CircleTrimmedSearch::FlagFar(std::vector<int>& outliers)
{
    MeasureFrom(bestCircle);
    FindNearest(std::min(h + 1, count));
    std::fill(outliers.begin(), outliers.end(), 1);
    for (std::size_t i = 0; i < nearestCount; ++i)
    {
        outliers[nearest[i]] = 0;
    }
}

void CircleTrimmedSearch::MeasureFrom(const TrimmedCircle& circle)
{
    SquaredRadialErrors(x.data(), y.data(), count, circle.center, circle.radius, errors.data());
}

/** The error at @p position in ascending order. */
double CircleTrimmedSearch::ErrorAt(std::size_t position)
{
    ordered = errors;
    return KthSmallest(ordered.data(), count, position);
}

/** Finds the @p number points of least error, in ascending order of their indices.
 *  @return the largest of their errors */
double CircleTrimmedSearch::FindNearest(std::size_t number)
{
    const double limit = ErrorAt(number - 1);
    WriteFirstIndices(errors, limit, number, std::less<>(), nearest.data());
    nearestCount = number;
    return limit;
}

/** True when the score cannot be below the best one: with all errors cut to a limit, the sum of the least ones is that
 *  of all without the limit for each of the others, or more. */
bool CircleTrimmedSearch::SurelyNoBetter() const
{
    if (!HasBest())
    {
        return false;
    }
    constexpr std::size_t kLanes = 4; // sums that do not wait for each other
    double cut[kLanes] = {};
    std::size_t i = 0;
    for (; i + kLanes <= count; i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            cut[lane] += std::min(errors[i + lane], bestLimit);
        }
    }
    for (; i < count; ++i)
    {
        cut[0] += std::min(errors[i], bestLimit);
    }
    const auto n = static_cast<double>(count);
    const double rounding = 4.0 * n * kEpsilon * n * bestLimit;
    const double least = cut[0] + cut[1] + cut[2] + cut[3] - static_cast<double>(count - h) * bestLimit;
    return least > best + rounding;
}

double CircleTrimmedSearch::Score() const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < h; ++i)
    {
        sum += errors[nearest[i]];
    }
    return sum;
}

double CircleTrimmedSearch::WeightedScore(double medianError) const
{
    double sum = 0.0;
    for (std::size_t i = 0; i < h; ++i)
    {
        const double error = errors[nearest[i]];
        const double u = error / (medianError * kWeightRange);
        if (u <= 1.0)
        {
            sum += (1.0 - u) * (1.0 - u) * error;
        }
    }
    return sum;
}

} // namespace Zvl
