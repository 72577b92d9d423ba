#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cstddef>
#include <vector>

namespace Examples
{

/** A connected place where the surface lies deeper than a plane, or has no heights: a hole, a bowl, a groove. */
struct Recess
{
    qPoint64f center; ///< mean of its cells
    double radius;    ///< of the disc of equal area
    double
        roundness; ///< its area as a share of the disc around its longer side: about 1 when round, far less for grooves
    double missingShare; ///< share of its cells without a height
};

/** Finds the recesses that are deeper than @p depth below @p plane, cover at least @p smallestShare of the map, and do
 * not touch its border; the largest comes first. */
std::vector<Recess> FindRecesses(const Zvl::Surface& surface, const qPlane3d64f& plane, double depth,
                                 double smallestShare);

} // namespace Examples
