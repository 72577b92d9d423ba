#pragma once

/** @file
 *  Height maps on a coarser grid. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstddef>

namespace Zvl
{

/** A copy of @p surface on a coarser grid. Each new cell is the mean of the rectangle of old cells that it covers: an
 *  old cell counts by the share of it that lies in the rectangle, and not at all when its height is missing (-32768),
 *  neither for the heights nor for the intensities. A new cell whose rectangle has no height is missing and has
 *  intensity 0. Heights are rounded half away from zero, intensities half up.
 *
 *  The grid is given by its size or by its ratio to the old grid:
 *
 *  | `outSize` | `ratio`     | new grid                                                                             |
 *  |-----------|-------------|--------------------------------------------------------------------------------------|
 *  | a 0 in it | above 0     | of that ratio, at most 1 each; its size is the old one times the ratio, rounded      |
 *  | not 0     | not above 0 | of that size, at most the old one each; its ratio follows from the sizes             |
 *  | not 0     | above 0     | of both as they are: it may end inside the old one, or reach beyond it and be missing |
 *
 *  where one component is enough for "a 0 in it" and "not above 0", and both components of the other argument are used.
 *
 *  The new scale and offset keep each cell's position at the centre of the rectangle that it covers.
 *
 *  @param surface layer 0 q16s, layer 1, when there is one, q8u of the same size; further layers are dropped. Without
 *         any layer the result is an empty Surface.
 *  @param outSize columns (x) and rows (y) of the result
 *  @param ratio new cells per old cell along a row (x) and a column (y)
 *  @param alloc allocator of the new layers and of working memory; null is the platform's default
 *  @throws Zo::Exception
 *   - #STATUS_BAD_PARAMETER when neither @p outSize nor @p ratio can be used, @p ratio is not a number, a layer is not
 *     as above, @p surface has no rows or columns, or the new size has a 0 in it
 *   - the platform's status when memory runs out
 *
 *  One pass over @p surface on the calling thread; working memory of some rows. The result is the same bits as that of
 *  the double precision sums taken cell by cell, row after row. Calls may run at once. */
ZDK_VISION_EXPORT Surface SurfaceDecimate(const Surface& surface, Point2d<std::size_t> outSize, Point2d<double> ratio,
                                          void* alloc);

} // namespace Zvl
