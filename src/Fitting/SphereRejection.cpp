#include "Fitting/SphereRejection.h"

#include "Fitting/FirstIndices.h"
#include "Fitting/KthSmallest.h"
#include "Fitting/SphereResiduals.h"

#include <algorithm>
#include <functional>

namespace Zvl
{

namespace
{

constexpr double kRejected = -2.0; // less than any residual

} // namespace

SphereRejection::SphereRejection(const qPoint3d64f* inputPoints, std::size_t count) : points(inputPoints, count) {}

void SphereRejection::Reject(const Sphere& sphere, std::size_t batch, SphereEquations& equations)
{
    Measure(sphere);
    if (batch == 1)
    {
        outlierIndices = {Farthest()};
    }
    else
    {
        FindFarthest(batch);
    }
    for (const std::size_t index : outlierIndices)
    {
        rejected.push_back(index);
        equations.Subtract(points[index]);
    }
}

std::vector<qPoint3d64f> SphereRejection::KeptPoints() const
{
    std::vector<bool> keptFinal(points.size(), true);
    for (const std::size_t index : rejected)
    {
        keptFinal[index] = false;
    }
    std::vector<qPoint3d64f> kept;
    kept.reserve(points.size() - rejected.size());
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        if (keptFinal[i])
        {
            kept.push_back(points[i]);
        }
    }
    return kept;
}

std::vector<qPoint3d64f> SphereRejection::OutlierPoints() const
{
    std::vector<qPoint3d64f> outlierPointsLocal(rejected.size());
    std::transform(rejected.begin(), rejected.end(), outlierPointsLocal.begin(),
                   [this](std::size_t index) { return points[index]; });
    return outlierPointsLocal;
}

void SphereRejection::Measure(const Sphere& sphere)
{
    residuals.resize(points.size());
    MeasureResiduals(points, sphere, residuals.data());
    for (const std::size_t index : rejected)
    {
        residuals[index] = kRejected;
    }
}

std::size_t SphereRejection::Farthest() const
{
    const auto farthest = std::find(residuals.begin(), residuals.end(), LargestOf(residuals));
    return static_cast<std::size_t>(farthest - residuals.begin());
}

/** Fills `outlierIndices` with the indices of the largest residuals, in descending order of index. */
void SphereRejection::FindFarthest(std::size_t batch)
{
    ordered = residuals;
    const double limit = KthSmallest(ordered.data(), ordered.size(), ordered.size() - batch);
    outlierIndices.resize(batch + 1);
    WriteFirstIndices(residuals, limit, batch, std::greater<>(), outlierIndices.data());
    outlierIndices.resize(batch);
    std::reverse(outlierIndices.begin(), outlierIndices.end());
}

} // namespace Zvl
