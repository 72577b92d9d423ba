#pragma once

/** @file
 *  Where the bisectors of many points and a pivot cross a line, in the widest vectors that the processor offers. */

#include "Fitting/ZoneGeometry.h"

namespace Zvl
{

/** Writes the crossing of @p line with the bisector of each point and @p pivot, bit for bit that of Bisector() and
 *  Intersection(). A point without one, and the pivot itself, get NaN.
 *  @param x,y room for @p count values each */
void CrossBisectors(const DistPoint* points, std::size_t count, const qPoint64f& pivot, const ZoneLine& line, double* x,
                    double* y);

} // namespace Zvl
