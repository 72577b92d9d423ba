#pragma once

/** @file
 *  The circle through three points. */

#include <ZdkVisionLib/platform/qApi.h>

namespace Zvl
{

/** Finds the circle through the three points of @p points. Centre and radius are null when twice the area of their
 *  triangle is below 1.1920928955078125e-07 (collinear or coincident points, very small triangles), and not finite
 *  when a coordinate is not. */
void CircleThroughPoints(const qPoint64f* points, qPoint64f* center, double* radius);

} // namespace Zvl
