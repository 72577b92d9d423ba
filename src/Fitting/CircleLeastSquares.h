#pragma once

/** @file
 *  Least-squares circle with rejection of outliers, the fit under FitCircle(). */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>
#include <vector>

namespace Zvl
{

/** Fits the least-squares circle (Kåsa's) and takes out the point farthest from it, the lowest index among
 *  equals, until the share of @p outlierPercent is out; at least 3 points stay. See FitCircle() for the
 *  method, the percentage and the failures.
 *
 *  @param points null counts as no points at all
 *  @param center,radius set to null at once and written with the result at the end; may be null
 *  @param keptPoints the kept points in input order; may be null
 *  @param outlierPoints the rejected points in order of rejection; may be null
 *
 *  Fewer than 3 points: centre and radius are null, @p keptPoints holds the input, and @p outlierPoints is
 *  left as it was. When the call throws, the vectors are as they were.
 *
 *  The sizes of the distances are found without a square root per point, and the rows of a removed point are
 *  taken out of the triangular factor instead of factoring anew; the outcome of each pass is that of a fresh
 *  solve. */
void FitCircle_LSC(const qPoint64f* points, std::size_t count, double outlierPercent, qPoint64f* center, double* radius,
                   std::vector<qPoint64f>* keptPoints, std::vector<qPoint64f>* outlierPoints);

} // namespace Zvl
