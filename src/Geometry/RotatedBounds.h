#pragma once

/** @file
 *  The smallest turned rectangle around two convex chains. */

#include <ZdkVisionLib/platform/ZoApi.h>

namespace Zvl
{

/** Finds the rectangle of smallest area around the cells of both chains, in steps of a tenth of a degree.
 *
 *  The points are projected on directions in fixed point, so that the areas of two directions are compared exactly:
 *  first on every tenth direction, then on those within nine steps of the best. Of equal areas the first one found
 *  wins, the coarse one before all fine ones. Points with a coordinate of -2147483648 are no points.
 *
 *  @param offset X and Y of the world position of cell (0, 0)
 *  @param scale X and Y of the world size of a cell
 *  @param center X and Y of the rectangle's centre, the cells' centres lying on whole coordinates
 *  @param size shorter and longer side, a cell's extent included
 *  @param angle direction of the longer side from the X axis towards the Y axis, in degrees from 0 to below 180
 *
 *  All outputs are null when there is no point, and when the projections cannot be held: the scale in X is 0, a scale
 *  is not a number, or they are so unequal that a projection would need more than 61 bits.
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when a chain is not a list of #qPoint32s or a pointer is null; the
 *          platform's status when there is no memory. The outputs are then as they were.
 *  Time is about 218 projections for each point, and the filling of the tables. */
void GetRotatedBounds(Zo::Object<void*> leftChain, Zo::Object<void*> rightChain, const double* offset,
                      const double* scale, double* center, double* size, double* angle, void* allocator);

} // namespace Zvl
