#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

namespace Examples
{

/** Limits of the gaps of a map that are closed, the same along rows and columns.
 *  @param longest cells of the longest gap
 *  @param steepest degrees of the steepest slope that is interpolated */
Zvl::SurfaceFillGapParams GapLimits(const Zvl::Surface& map, int longest, double steepest);

} // namespace Examples
