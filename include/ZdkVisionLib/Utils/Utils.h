#pragma once

/** @file
 *  Free functions under all algorithms: views of a surface, height limits on a mask, and the way from a world
 *  region to cells. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

/** Fills @p data with the mapping of @p surface, the size of its height layer, and its first two layers. Without
 *  a height layer the size is 0 and the mapping is still filled in. Constant time.
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p data is null or layer 0 is not a two-dimensional array */
ZDK_VISION_EXPORT void RetrieveSurfaceInputData(const Surface& surface, SurfaceInputData* data);

/** World offset of item @p index of a surface message.
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p message is null; the platform's status when there is no
 *          such item */
ZDK_VISION_EXPORT qPoint3d64f GetSurfaceItemOffset(void* message, int index);

/** Clears the cells of @p mask whose heights are missing or outside [@p minimum, @p maximum], world units, both
 *  inclusive after rounding to height counts, half away from zero. It never sets a cell. A null limit switches
 *  off both limits, so that only missing heights are cleared. A limit beyond the 32-bit counts is taken as the
 *  nearest of them; with a limit that is not a number no cell stays.
 *
 *  Nothing happens, and nothing is thrown, unless the surface has a height layer of q16s, @p mask is a #qArray2
 *  of q8u with the size of @p rect, and @p rect lies inside the surface.
 *
 *  One pass over @p rect on the calling thread. */
ZDK_VISION_EXPORT void ThresholdHeight(const Surface& surface, double minimum, double maximum, Rect2d<int> rect,
                                       Zo::Object<void*> mask);

/** @name Region to cells
 *  The range of cells that a world region covers. A cell belongs to it when its centre lies in the closed range;
 *  @p tolerance, in world units per axis, widens the range outward by up to that much. It may be null. The
 *  region's angle is not read. With @p clip not 0 the range is cut to the data. Null pointers for @p region or
 *  @p cells do nothing. Positions beyond the range of `int` (null regions, a zero scale) are taken as the nearest
 *  `int`, and a range whose edges are not numbers is empty, so that every region has a result. Constant time;
 *  nothing is allocated or thrown.
 *  @{ */

/** One axis. An empty clipped result keeps its start, which may lie beyond the data. */
ZDK_VISION_EXPORT void GetRegionPixel(std::size_t length, double offset, double scale, const RunLength<double>* region,
                                      RunLength<int>* cells, double* tolerance, int clip);

/** X and Y. A result without width or height has neither. */
ZDK_VISION_EXPORT void GetRegionPixel(std::size_t width, std::size_t height, const qPoint64f& offset,
                                      const qPoint64f& scale, const Region2d<double>* region, Rect2d<int>* cells,
                                      qPoint64f* tolerance, int clip);

/** X, Y and Z; Z is never clipped. A result with one empty dimension is empty in all three. */
ZDK_VISION_EXPORT void GetRegionPixel(std::size_t width, std::size_t height, const qPoint3d64f& offset,
                                      const qPoint3d64f& scale, const Region3d<double>* region, Rect3d<int>* cells,
                                      qPoint3d64f* tolerance, int clip);

/** X, Y and Z over a surface view; a null @p data does nothing. */
ZDK_VISION_EXPORT void GetRegionPixel(const SurfaceInputData* data, const Region3d<double>* region, Rect3d<int>* cells,
                                      qPoint3d64f* tolerance, int clip);

/** X and Z of a profile: the region's y and height are heights, clipped to the 16-bit counts -32768 to 32767. */
ZDK_VISION_EXPORT void GetRegionXZPixel(std::size_t width, const qPoint64f& offset, const qPoint64f& scale,
                                        const Region2d<double>* region, Rect2d<int>* cells, qPoint64f* tolerance,
                                        int clip);

/** @} */

/** Makes room for @p count more items in a list of `T` (those of GetqType()), constructing the list with @p allocator
 *  when @p list holds null. The list's count is unchanged.
 *  @return the address of the item after the last; null when @p list is null or its items are of another type
 *  @throws Zo::Exception the platform's status when there is no room */
template <typename T>
ZDK_VISION_EXPORT T* CheckAndReserveqArrayList(void** list, std::size_t count, void* allocator);

} // namespace Zvl
