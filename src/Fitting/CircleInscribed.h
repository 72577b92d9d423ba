#pragma once

/** @file
 *  The maximum inscribed circle. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>
#include <vector>

namespace Zvl
{

/** Finds the largest circle with no point inside whose centre lies inside of the convex hull of the points. Its centre
 *  is a vertex of their Voronoi diagram; among equals the first of the vertex list wins. Source of the principle:
 *  M. I. Shamos and D. Hoey, Closest-point problems, 1975.
 *
 *  All outputs may be null pointers. They begin as nulls and empty vectors, and stay so when there are fewer than 2
 *  points or none at all, when all of them lie on one line (within 1.2e-7), and when the call throws.
 *
 *  @param maxDistance,minDistance largest and smallest distance of a point from the centre
 *  @param maxDistPoints the farthest point, the last one among equals
 *  @param minDistPoints the three points on the circle
 *  @param controlPoints the same three points
 *
 *  Two points have the circle with both at the ends of a diameter, three the one through them; all points then are in
 *  all three vectors.
 *
 *  @throws Zo::Exception from "Zvl::FitCircle_MIC": #STATUS_BAD_DATA for 4 points or more with a coordinate that is not
 *          a number or larger than 1e100, #STATUS_BAD_PARAMETER for more than 2^31 - 1 points, #STATUS_ABORTED when the
 *          vectors of points on the circle are wanted and more or fewer than three sites meet in the centre (four points
 *          on one circle). The failures of GenerateVoronoi() and BuildVoronoiVertices() are passed on.
 *  Time O(n log n). */
void FitCircle_MIC(const qPoint64f* points, std::size_t count, qPoint64f* center, double* radius, double* maxDistance,
                   double* minDistance, std::vector<qPoint64f>* maxDistPoints, std::vector<qPoint64f>* minDistPoints,
                   std::vector<qPoint64f>* controlPoints);

} // namespace Zvl
