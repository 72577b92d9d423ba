#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Check.h"
#include "Fitting/CircleAlgebraic.h"
#include "Fitting/CircleLeastSquares.h"
#include "Fitting/CircleThroughPoints.h"
#include "Fitting/CircleTrimmedSearch.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitCircleByRLTS";
constexpr std::size_t kMinimumPoints = 3;
constexpr std::size_t kMinimumInRefinement = 4;
constexpr double kLargestPercent = 80.0;
constexpr double kFailureProbability = 9.999999999998899e-05; // 1 - 0.9999
constexpr double kDeviations = 3.0;

/** Trials that find three points of the circle with the probability that is wanted, when a share of @p outliers of the
 *  points is none. */
std::size_t TrialsFor(double outliers)
{
    const double good = 1.0 - outliers;
    const double trials = std::log(kFailureProbability) / std::log(1.0 - good * good * good);
    return static_cast<std::size_t>(std::trunc(trials + 0.5));
}

void Seed(const unsigned* seed)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the generator that the caller chose, see the public header
    std::srand(seed != nullptr ? *seed : static_cast<unsigned>(std::time(nullptr)));
}

double RadialError(const qPoint64f& point, const TrimmedCircle& circle)
{
    const double x = point.x - circle.center.x;
    const double y = point.y - circle.center.y;
    return std::sqrt(x * x + y * y) - circle.radius;
}

std::size_t CountKept(const std::vector<int>& outliers)
{
    return static_cast<std::size_t>(std::count(outliers.begin(), outliers.end(), 0));
}

/** Three standard deviations of the radial errors of the points that are kept. */
double ErrorLimit(const std::vector<double>& errors, const std::vector<int>& outliers)
{
    double sum = 0.0;
    double squares = 0.0;
    for (std::size_t i = 0; i < errors.size(); ++i)
    {
        if (outliers[i] == 0)
        {
            sum += errors[i];
            squares += errors[i] * errors[i];
        }
    }
    const auto kept = static_cast<double>(CountKept(outliers));
    const double mean = sum / kept;
    return kDeviations * std::sqrt(squares / kept - mean * mean);
}

/** Flags and releases points by their errors. The limits lie about zero, not about the mean error.
 *  @return true when a flag has changed */
bool Reflag(const std::vector<double>& errors, double limit, std::vector<int>& outliers)
{
    bool changed = false;
    for (std::size_t i = 0; i < errors.size(); ++i)
    {
        const bool inside = -limit < errors[i] && errors[i] < limit;
        const bool outside = errors[i] < -limit || errors[i] > limit;
        if (outliers[i] != 0 ? inside : outside)
        {
            outliers[i] = outliers[i] != 0 ? 0 : 1;
            changed = true;
        }
    }
    return changed;
}

void Write(const std::vector<int>& flags, int* outliers)
{
    if (outliers != nullptr)
    {
        std::copy(flags.begin(), flags.end(), outliers);
    }
}

void RequireEnough(const std::vector<int>& outliers)
{
    if (CountKept(outliers) < kMinimumInRefinement)
    {
        ZVL_THROW(kFunction, 0);
    }
}

/** Sorts the points by three standard deviations and fits the circle anew when that changes which are kept. */
void Refine(const qPoint64f* points, std::size_t count, TrimmedCircle& circle, std::vector<int>& outliers)
{
    std::vector<double> errors(count);
    std::transform(points, points + count, errors.begin(),
                   [&circle](const qPoint64f& point) { return RadialError(point, circle); });
    if (!Reflag(errors, ErrorLimit(errors, outliers), outliers))
    {
        return;
    }
    std::vector<qPoint64f> hSubset;
    hSubset.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        if (outliers[i] == 0)
        {
            hSubset.push_back(points[i]);
        }
    }
    FitCircleAlgebraic(hSubset.data(), hSubset.size(), &circle.center, &circle.radius);
}

} // namespace

void FitCircleByRLTS(const qPoint64f* points, std::size_t count, double outlierPercent, qPoint64f& center,
                     double& radius, int* outliers, unsigned* seed, int useWeights)
{
    center = {GetNull<double>(), GetNull<double>()};
    radius = GetNull<double>();
    if (points == nullptr || count < kMinimumPoints)
    {
        return;
    }
    if (count == kMinimumPoints)
    {
        CircleThroughPoints(points, &center, &radius);
        return;
    }
    if (!(outlierPercent > 0.0))
    {
        Write(std::vector<int>(count), outliers);
        FitCircle_LSC(points, count, 0.0, &center, &radius, nullptr, nullptr);
        return;
    }

    const double share = std::min(kLargestPercent, outlierPercent) / 100.0;
    const auto kept = static_cast<std::size_t>(std::ceil(static_cast<double>(count) * (1.0 - share)));
    Seed(seed);
    CircleTrimmedSearch search(points, count, kept, useWeights != 0);
    const std::size_t trials = TrialsFor(share);
    for (std::size_t trial = 0; trial < trials; ++trial)
    {
        search.Try();
    }

    TrimmedCircle circle = search.Best();
    center = circle.center;
    radius = circle.radius;
    std::vector<int> tmpOutliers(count);
    if (search.HasBest())
    {
        search.FlagFar(tmpOutliers);
        Write(tmpOutliers, outliers);
    }
    RequireEnough(tmpOutliers);
    Refine(points, count, circle, tmpOutliers);
    center = circle.center;
    radius = circle.radius;
    RequireEnough(tmpOutliers);
    Write(tmpOutliers, outliers);
}

} // namespace Zvl
