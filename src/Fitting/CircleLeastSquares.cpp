#include "Fitting/CircleLeastSquares.h"

#include "Common/Check.h"
#include "Fitting/CircleRejection.h"
#include "Fitting/Rejection.h"

#include <ZdkVisionLib/Common/Common.h>

#include <utility>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitCircle_LSC";
constexpr std::size_t kMinimumPoints = 3;

void SolveOrThrow(CircleRejection& rejection)
{
    if (!rejection.Solve())
    {
        ZVL_THROW(kFunction, 0);
    }
}

std::vector<qPoint64f> KeptPoints(const CircleRejection& rejection, const qPoint64f* points, std::size_t count)
{
    std::vector<qPoint64f> kept;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (rejection.Kept(i))
        {
            kept.push_back(points[i]);
        }
    }
    return kept;
}

template <typename T>
void Write(T* output, T value)
{
    if (output != nullptr)
    {
        *output = std::move(value);
    }
}

} // namespace

void FitCircle_LSC(const qPoint64f* points, std::size_t count, double outlierPercent, qPoint64f* center, double* radius,
                   std::vector<qPoint64f>* keptPoints, std::vector<qPoint64f>* outlierPoints)
{
    Write(center, {GetNull<double>(), GetNull<double>()});
    Write(radius, GetNull<double>());
    if (points == nullptr || count < kMinimumPoints)
    {
        Write(keptPoints,
              points == nullptr ? std::vector<qPoint64f>() : std::vector<qPoint64f>(points, points + count));
        return;
    }

    CircleRejection rejection(kFunction, points, count);
    std::vector<qPoint64f> outliers;
    const std::size_t toReject = CountToReject(count, outlierPercent, kMinimumPoints);
    SolveOrThrow(rejection);
    while (outliers.size() < toReject)
    {
        outliers.push_back(points[rejection.RejectFarthest()]);
        SolveOrThrow(rejection);
    }
    std::vector<qPoint64f> kept;
    if (keptPoints != nullptr)
    {
        kept = outliers.empty() ? std::vector<qPoint64f>(points, points + count) : KeptPoints(rejection, points, count);
    }

    Write(center, rejection.Center());
    Write(radius, rejection.Radius());
    Write(keptPoints, std::move(kept));
    Write(outlierPoints, std::move(outliers));
}

} // namespace Zvl
