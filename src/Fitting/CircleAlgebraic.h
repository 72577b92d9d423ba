#pragma once

/** @file
 *  The algebraic circle fit without essential bias, the fit under FitCircleByRLTS(). */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>

namespace Zvl
{

/** Fits a circle to @p count points by the Hyper method: it minimises the squared algebraic distances under the
 *  constraint that frees the circle of bias up to the second order of the noise, and finds the least root of the
 *  characteristic polynomial by Newton's method from 0. Source: A. Al-Sharadqah and N. Chernov, Error analysis for
 *  circle fitting algorithms, Electronic Journal of Statistics 3, 2009.
 *
 *  Centre and radius are not finite when there is no circle (no points, coincident or collinear points), as far as
 *  rounding lets this be seen, and when a coordinate is not. */
void FitCircleAlgebraic(const qPoint64f* points, std::size_t count, qPoint64f* center, double* radius);

} // namespace Zvl
