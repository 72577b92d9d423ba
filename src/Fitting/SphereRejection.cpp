#include "Fitting/SphereRejection.h"

#include "Fitting/KthSmallest.h"
#include "Fitting/SphereResiduals.h"

#include <algorithm>

namespace Zvl
{

namespace
{

constexpr double kRejected = -2.0; // less than any residual

} // namespace

SphereRejection::SphereRejection(const qPoint3d64f* inputPoints, std::size_t count)
    : points(inputPoints, count), keptFinal(count, true)
{
}

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
        keptFinal[index] = false;
        rejected.push_back(index);
        outlierPointsLocal.push_back(points[index]);
        equations.Subtract(points[index]);
    }
}

std::vector<qPoint3d64f> SphereRejection::KeptPoints() const
{
    std::vector<qPoint3d64f> kept;
    kept.reserve(keptFinal.size() - rejected.size());
    for (std::size_t i = 0; i < keptFinal.size(); ++i)
    {
        if (keptFinal[i])
        {
            kept.push_back(points[i]);
        }
    }
    return kept;
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
    const auto beyond =
        std::count_if(residuals.begin(), residuals.end(), [limit](double residual) { return residual > limit; });
    std::size_t equals = batch - static_cast<std::size_t>(beyond); // to be taken of those at the limit
    std::size_t found = 0;
    outlierIndices.resize(batch + 1);
    for (std::size_t i = 0; i < residuals.size(); ++i)
    {
        // Written at all events: a branch would be mispredicted at each of the few.
        outlierIndices[found] = i;
        const std::size_t taken = residuals[i] == limit && equals > 0 ? 1 : 0;
        equals -= taken;
        found += taken + (residuals[i] > limit ? 1 : 0);
    }
    outlierIndices.resize(batch);
    std::reverse(outlierIndices.begin(), outlierIndices.end());
}

} // namespace Zvl
