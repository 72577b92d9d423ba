#include "Fitting/SphereRejection.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace Zvl
{

namespace
{

/** | distance from the centre - radius |; -1 where that is not a number, so that residuals can be put in
 *  order. */
double Residual(const qPoint3d64f& point, const Sphere& sphere)
{
    const double x = point.x - sphere.center.x;
    const double y = point.y - sphere.center.y;
    const double z = point.z - sphere.center.z;
    const double residual = std::fabs(std::sqrt(x * x + y * y + z * z) - sphere.radius);
    return residual >= 0.0 ? residual : -1.0;
}

} // namespace

SphereRejection::SphereRejection(const qPoint3d64f* inputPoints, std::size_t count, std::size_t batch)
    : points(inputPoints), keptFinal(count, true), outlierIndices(batch)
{
    pointDistList.reserve(batch > 1 ? count : 0);
}

void SphereRejection::Reject(const Sphere& sphere, std::size_t batch, SphereEquations& equations)
{
    outlierIndices.resize(batch);
    if (batch == 1)
    {
        outlierIndices[0] = Farthest(sphere);
    }
    else
    {
        FindFarthest(sphere);
    }
    for (const std::size_t index : outlierIndices)
    {
        keptFinal[index] = false;
        outlierPointsLocal.push_back(points[index]);
        equations.Subtract(points[index]);
    }
}

std::vector<qPoint3d64f> SphereRejection::KeptPoints() const
{
    std::vector<qPoint3d64f> kept;
    kept.reserve(keptFinal.size() - outlierPointsLocal.size());
    for (std::size_t i = 0; i < keptFinal.size(); ++i)
    {
        if (keptFinal[i])
        {
            kept.push_back(points[i]);
        }
    }
    return kept;
}

std::size_t SphereRejection::Farthest(const Sphere& sphere) const
{
    double largest = std::numeric_limits<double>::lowest();
    std::size_t farthest = 0;
    for (std::size_t i = 0; i < keptFinal.size(); ++i)
    {
        if (!keptFinal[i])
        {
            continue;
        }
        const double residual = Residual(points[i], sphere);
        if (residual > largest)
        {
            largest = residual;
            farthest = i;
        }
    }
    return farthest;
}

/** Fills `outlierIndices` with the indices of the largest residuals, in descending order of index. */
void SphereRejection::FindFarthest(const Sphere& sphere)
{
    pointDistList.clear();
    for (std::size_t i = 0; i < keptFinal.size(); ++i)
    {
        if (keptFinal[i])
        {
            pointDistList.emplace_back(Residual(points[i], sphere), i);
        }
    }
    const auto batchEnd = pointDistList.begin() + static_cast<std::ptrdiff_t>(outlierIndices.size());
    std::nth_element(pointDistList.begin(), batchEnd, pointDistList.end(),
                     [](const ResidualAndIndex& a, const ResidualAndIndex& b)
                     { return a.first != b.first ? a.first > b.first : a.second < b.second; });
    std::transform(pointDistList.begin(), batchEnd, outlierIndices.begin(),
                   [](const ResidualAndIndex& pair) { return pair.second; });
    std::sort(outlierIndices.begin(), outlierIndices.end(), std::greater<>());
}

} // namespace Zvl
