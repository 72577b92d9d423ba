#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/CircleLeastSquares.h"
#include "Fitting/CircleMinimumZone.h"

#include <cmath>
#include <limits>
#include <span>
#include <utility>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();
constexpr qPoint64f kNullPoint{kNull, kNull};

/** The results of FitCircle(), collected here and handed out only when the fit has come to its end. */
struct CircleResult
{
    qPoint64f center = kNullPoint;
    double minRadius = kNull;
    double maxRadius = kNull;
    double maxDistance = kNull;
    double minDistance = kNull;
    std::vector<qPoint64f> maxDistPoints;
    std::vector<qPoint64f> minDistPoints;
    std::vector<qPoint64f> keptPoints;
    std::vector<qPoint64f> outlierPoints;
};

/** @param keptPoints may be null */
void FitLeastSquares(const qPoint64f* points, std::size_t count, double outlierPercent,
                     std::vector<qPoint64f>* keptPoints, CircleResult& result)
{
    double radius = kNull;
    FitCircle_LSC(points, count, outlierPercent, &result.center, &radius, keptPoints, &result.outlierPoints);
    result.minRadius = radius;
    result.maxRadius = radius;
}

/** Finds the nearest and the farthest point. A distance that overflows never becomes the smallest. */
void MeasureDistances(std::span<const qPoint64f> points, CircleResult& result)
{
    result.minDistance = std::numeric_limits<double>::max();
    qPoint64f nearest = kNullPoint;
    qPoint64f farthest = kNullPoint;
    for (const qPoint64f& point : points)
    {
        const double x = point.x - result.center.x;
        const double y = point.y - result.center.y;
        const double distance = std::sqrt(x * x + y * y);
        if (distance < result.minDistance)
        {
            result.minDistance = distance;
            nearest = point;
        }
        if (distance > result.maxDistance)
        {
            result.maxDistance = distance;
            farthest = point;
        }
    }
    result.minDistPoints.push_back(nearest);
    result.maxDistPoints.push_back(farthest);
}

template <typename T>
void Write(T* output, T& value)
{
    if (output != nullptr)
    {
        *output = std::move(value);
    }
}

} // namespace

void FitCircle(const qPoint64f* points, std::size_t count, double outlierPercent, CircleType type, qPoint64f* center,
               double* minRadius, double* maxRadius, double* maxDistance, double* minDistance,
               std::vector<qPoint64f>* maxDistPoints, std::vector<qPoint64f>* minDistPoints,
               std::vector<qPoint64f>* keptPoints, std::vector<qPoint64f>* outlierPoints)
{
    CircleResult result;
    const bool rejecting = outlierPercent > 0.0;
    std::span<const qPoint64f> kept(points, points == nullptr ? 0 : count);
    if (rejecting)
    {
        FitLeastSquares(points, count, outlierPercent, &result.keptPoints, result);
        kept = result.keptPoints;
    }
    else if (type == CIRCLE_LSC)
    {
        FitLeastSquares(points, count, outlierPercent, nullptr, result);
        if (maxDistance != nullptr || minDistance != nullptr || maxDistPoints != nullptr || minDistPoints != nullptr)
        {
            MeasureDistances(kept, result);
        }
    }
    if (type == CIRCLE_MZC)
    {
        FitCircle_MZC(kept.data(), kept.size(), &result.center, &result.minRadius, &result.maxRadius,
                      &result.maxDistPoints, &result.minDistPoints);
    }

    if (keptPoints != nullptr && !rejecting)
    {
        result.keptPoints.assign(kept.begin(), kept.end());
    }
    Write(center, result.center);
    Write(minRadius, result.minRadius);
    Write(maxRadius, result.maxRadius);
    Write(maxDistance, result.maxDistance);
    Write(minDistance, result.minDistance);
    Write(maxDistPoints, result.maxDistPoints);
    Write(minDistPoints, result.minDistPoints);
    Write(keptPoints, result.keptPoints);
    Write(outlierPoints, result.outlierPoints);
}

} // namespace Zvl
