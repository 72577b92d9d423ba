#pragma once

/** @file
 *  From a region's box and mask to data. The rectangle places a window on the surface's cells; the mask, a #qArray2 of
 *  q8u of the window's size, selects the cells whose mask cell is not 0. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

/** Cuts the window out of @p surface. Heights outside the mask become missing (-32768); an intensity layer of
 *  q8u is cut out whole. Other layers are dropped. @p cropped may be @p surface itself.
 *
 *  @param allocator allocator of the new layers; null is the platform's default
 *  @throws Zo::Exception
 *   - #STATUS_BAD_PARAMETER, with @p cropped untouched, when @p mask is no q8u array of the window's size, the
 *     surface has no height layer, the window is not empty and does not lie inside it, or an intensity layer of
 *     q8u has another size
 *   - #STATUS_OK (1), with the window's mapping and no layers in @p cropped, when the window is empty: the
 *     result is complete and has nothing in it
 *   - #STATUS_NOT_SUPPORTED, with @p cropped likewise, when the height layer is not q16s
 *   - the platform's status when memory runs out; @p cropped then holds the layers made so far
 *
 *  One pass over the window on the calling thread. */
ZDK_VISION_EXPORT void CropSurfaceFromROI(const Surface& surface, Rect2d<int> rect, Zo::Object<void*> mask,
                                          Surface& cropped, void* allocator);

/** Appends one item per selected cell to @p list, row after row. With v the cell's value:
 *
 *  | `T`             | layer       | item                                      |
 *  |-----------------|-------------|-------------------------------------------|
 *  | `unsigned char` | intensities | v                                         |
 *  | `short`         | heights     | v                                         |
 *  | `double`        | heights     | height in world units                     |
 *  | `qPoint3d32s`   | heights     | (surface column, surface row, v)          |
 *  | `qPoint3d64f`   | heights     | the cell's point in world units           |
 *
 *  The mask alone decides: a missing height that is selected gives an item made of -32768.
 *
 *  @param list a #qArrayList of `T` to append to, or null inside, for which a list is constructed with the
 *         default allocator; also when no cell is selected Nothing happens, and nothing is thrown, when @p list
 *         is null or holds a list of another type, the mask is no q8u array of the window's size, the window is
 *         empty or does not lie inside the surface, or the layer is missing or of another type.
 *  @throws Zo::Exception the platform's status when the list cannot be made or grown; its items are then as they
 *  were
 *
 *  Two passes over the mask and one over the selected cells, in parallel over rows. */
template <typename T>
ZDK_VISION_EXPORT void GetPointsFromROI(const Surface& surface, Rect2d<int> rect, Zo::Object<void*> mask, void** list);

/** Clears the cells of @p mask whose value lies strictly outside the percentiles @p low and @p high of the
 *  selected values. A percentile p is the value of rank `round(p / 100 * (n - 1))`, half away from zero, of the
 *  n values in ascending order, with no interpolation; values equal to a limit stay. The values are, for
 *  `unsigned char`, the intensities; for `short`, the heights; for `double`, the signed distances from the plane
 *  that FitPlane() fits to the selected cells. Missing heights that are selected take part. Values that are not
 *  numbers rank above all others and stay.
 *
 *  Nothing happens, and nothing is thrown, when the mask is no q8u array of the window's size or has no cell of
 *  value 1, the window is empty or does not lie inside the surface, the layer is missing or of another type, a
 *  percentile is outside 0 to 100 or not a number, @p low is above @p high, or no plane can be fitted.
 *
 *  Expected time linear in the window; memory for one value per selected cell. */
template <typename T>
ZDK_VISION_EXPORT void ThresholdPercentile(const Surface& surface, double low, double high, const Rect2d<int>& rect,
                                           Zo::Object<void*> mask);

} // namespace Zvl
