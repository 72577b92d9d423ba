#include <ZdkVisionLib/Alignment/RefFrame.h>
#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/PlaneCovariance.h"

namespace Zvl
{

void FitPlane(const Surface& surface, const Rect2d<int>& rect, void* mask, qPlane3d64f* plane)
{
    if (plane == nullptr)
    {
        return;
    }
    constexpr double null = GetNull<double>();
    *plane = {{null, null, null}, {null, null, null}};

    const SelectedCells cells{CellsOf<const std::int16_t>(LayerOf(surface, 0)), CellsOf<const std::uint8_t>(mask),
                              rect};
    if (!cells.heights.Contains(rect) || !cells.mask.HasSizeOf(rect))
    {
        return;
    }
    PlaneCovariance covariance{};
    if (!SumCovariance(cells, surface.scale, surface.offset, covariance))
    {
        return;
    }
    std::array<double, 9> eigenVectors{};
    DecomposeEigen(covariance.productSums.data(), eigenVectors.data(), 3, 0);

    // The eigenvalues descend, so that the last vector is the direction of the smallest scatter.
    qPoint3d64f normal{eigenVectors[6], eigenVectors[7], eigenVectors[8]};
    if (!(normal.z > 0.0))
    {
        normal = {-normal.x, -normal.y, -normal.z};
    }
    *plane = {covariance.mean, normal};
}

} // namespace Zvl
