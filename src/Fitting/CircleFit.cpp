#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/CircleLeastSquares.h"
#include "Fitting/CircleMinimumZone.h"

#include <cmath>
#include <limits>
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

void FitLeastSquares(const qPoint64f* points, std::size_t count, double outlierPercent, CircleResult& result)
{
    double radius = kNull;
    FitCircle_LSC(points, count, outlierPercent, &result.center, &radius, &result.keptPoints, &result.outlierPoints);
    result.minRadius = radius;
    result.maxRadius = radius;
}

/** Finds the nearest and the farthest kept point. A distance that overflows never becomes the smallest. */
void MeasureDistances(CircleResult& result)
{
    result.minDistance = std::numeric_limits<double>::max();
    qPoint64f nearest = kNullPoint;
    qPoint64f farthest = kNullPoint;
    for (const qPoint64f& point : result.keptPoints)
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
    if (rejecting)
    {
        FitLeastSquares(points, count, outlierPercent, result);
    }
    else if (type == CIRCLE_LSC)
    {
        FitLeastSquares(points, count, outlierPercent, result);
        MeasureDistances(result);
    }
    else if (points != nullptr)
    {
        result.keptPoints.assign(points, points + count);
    }
    if (type == CIRCLE_MZC)
    {
        const std::vector<qPoint64f>& kept = result.keptPoints;
        FitCircle_MZC(kept.data(), kept.size(), &result.center, &result.minRadius, &result.maxRadius,
                      &result.maxDistPoints, &result.minDistPoints);
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
