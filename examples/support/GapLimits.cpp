#include "support/GapLimits.h"

namespace Examples
{

Zvl::SurfaceFillGapParams GapLimits(const Zvl::Surface& map, int longest, double steepest)
{
    const double cells =
        longest + 0.5; // the limit divided by the size of a cell is truncated, and may just fail to be whole
    Zvl::SurfaceFillGapParams limits;
    limits.resolutionX = map.scale.x;
    limits.resolutionY = map.scale.y;
    limits.resolutionZ = map.scale.z;
    limits.maxGapX = cells * map.scale.x;
    limits.maxGapY = cells * map.scale.y;
    limits.maxSlopeX = steepest;
    limits.maxSlopeY = steepest;
    return limits;
}

} // namespace Examples
