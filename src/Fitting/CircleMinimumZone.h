#pragma once

/** @file
 *  The minimum zone: two concentric circles around all points. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>
#include <vector>

namespace Zvl
{

/** Looks for the two concentric circles of least distance that hold all points between them, by the exchange of control
 *  points: two points on the outer and two on the inner circle determine the centre; the points that are farthest
 *  outside take the places of others until none is outside. It starts with the points on the circumscribed
 *  (FitCircle_MCC()) and on the inscribed circle (FitCircle_MIC()), and falls back on the narrower of the two zones
 *  about their centres when the exchange finds nothing better.
 *
 *  All outputs may be null pointers. They begin as nulls and empty vectors, and stay so when there are fewer than 3
 *  points or none at all, when the inscribed or the circumscribed circle is null (points on one line), and when the call
 *  throws.
 *
 *  @param minRadius,maxRadius the two radii. Points within 1.2e-7 of the zone count as held by it, so that the outer
 *  radius may come to be the smaller one by as much.
 *  @param maxDistPoints,minDistPoints the points on the outer and on the inner circle
 *
 *  @throws Zo::Exception what FitCircle_MIC() and FitCircle_MCC() throw.
 *  Time O(n log n), and O(n) for each exchange, of which there are at most 1002. */
void FitCircle_MZC(const qPoint64f* points, std::size_t count, qPoint64f* center, double* minRadius, double* maxRadius,
                   std::vector<qPoint64f>* maxDistPoints, std::vector<qPoint64f>* minDistPoints);

} // namespace Zvl
