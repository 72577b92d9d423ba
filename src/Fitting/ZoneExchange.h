#pragma once

/** @file
 *  The exchange of the points that determine a minimum zone. */

#include "Fitting/ZoneGeometry.h"

#include <array>
#include <limits>

namespace Zvl
{

/** Two concentric circles. */
struct Zone
{
    qPoint64f center = kZoneNullPoint;
    double minDistance = GetNull<double>();
    double maxDistance = GetNull<double>();
    double roundness = std::numeric_limits<double>::max();
    std::vector<qPoint64f> maxDistPoints; ///< on the outer circle
    std::vector<qPoint64f> minDistPoints; ///< on the inner circle
};

/** The points that are considered for the two circles. */
struct ZoneControls
{
    std::vector<qPoint64f> outer;
    std::vector<qPoint64f> inner;
};

/** Takes two outer and two inner points, in all ways that leave at most one of each out, to the zone that they
 *  determine: its centre is equally far from the first two and from the last two. Of the zones that hold the points left
 *  out the narrowest is the result, the first one among equals, and the points that it leaves out are dropped.
 *
 *  Does nothing when no zone holds the rest, and unless there are three and three points, three and two, or two and
 *  three. */
void FindBestFour(ZoneControls& controls, Zone& zone);

/** Adds the farthest point outside of the zone to the outer points, and the nearest one inside of the inner circle to the
 *  inner points; the first one among equals.
 *  @return false when there is neither */
bool AddViolators(const qPoint64f* points, std::size_t count, const Zone& zone, ZoneControls& controls);

} // namespace Zvl
