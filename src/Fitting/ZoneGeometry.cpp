#include "Fitting/ZoneGeometry.h"

#include "Common/Check.h"
#include "Geometry/Voronoi.h"

namespace Zvl
{

void RequireUsablePoints(const char* function, const qPoint64f* points, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
    {
        // Not the other way round: comparisons with NaN are false.
        const bool isUsable =
            std::fabs(points[i].x) <= kVoronoiLargestCoordinate && std::fabs(points[i].y) <= kVoronoiLargestCoordinate;
        if (!isUsable)
        {
            ZVL_THROW(function, STATUS_BAD_DATA);
        }
    }
}

} // namespace Zvl
