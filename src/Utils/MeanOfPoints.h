#pragma once

/** @file
 *  The mean of points. */

#include <ZdkVisionLib/platform/qApi.h>

#include <span>

namespace Zvl
{

/** The sums of the coordinates, each point added to the sum of those before it, bit for bit. */
qPoint64f SumOfPoints(std::span<const qPoint64f> points);

/** SumOfPoints() over their number; not a number when there are none. */
qPoint64f MeanOfPoints(std::span<const qPoint64f> points);

} // namespace Zvl
