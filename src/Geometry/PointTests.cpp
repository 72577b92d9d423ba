#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Geometry/SectorTest.h"

namespace Zvl
{

namespace
{

template <typename Sector>
bool IsOutsideAlongZ(const Sector& sector, double z)
{
    return z < sector.z || z > sector.z + sector.depth;
}

} // namespace

int CheckPointInAnnularSector(const AnnularSector2d<double>& sector, const qPoint64f& point)
{
    const SectorAngles angles = NormalizeSectorAngles(sector.startAngle, sector.angleSpan);
    return PointIsInAnnularSector(sector, angles, point.x, point.y) ? 1 : 0;
}

int CheckPointInAnnularSector(const AnnularSector3d<double>& sector, const qPoint3d64f& point, int useZ)
{
    if (useZ != 0 && IsOutsideAlongZ(sector, point.z))
    {
        return 0;
    }
    AnnularSector2d<double> flat;
    AnnularSector3dTo2d(sector, &flat);
    return CheckPointInAnnularSector(flat, qPoint64f{point.x, point.y});
}

int CheckPointInEllipticalSector(const EllipticalSector2d<double>& sector, const qPoint64f& point)
{
    const SectorAngles angles = NormalizeSectorAngles(sector.startAngle, sector.angleSpan);
    const double frameAngle = EllipseFrameAngle(sector);
    const bool inside =
        PointIsInEllipticalSector(sector, angles, std::cos(frameAngle), std::sin(frameAngle), point.x, point.y);
    return inside ? 1 : 0;
}

int CheckPointInEllipticalSector(const EllipticalSector3d<double>& sector, const qPoint3d64f& point, int useZ)
{
    if (useZ != 0 && IsOutsideAlongZ(sector, point.z))
    {
        return 0;
    }
    EllipticalSector2d<double> flat;
    EllipticalSector3dTo2d(sector, &flat);
    return CheckPointInEllipticalSector(flat, qPoint64f{point.x, point.y});
}

} // namespace Zvl
