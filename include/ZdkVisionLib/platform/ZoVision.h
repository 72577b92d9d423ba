#pragma once

/** @file
 *  Surface messages: what a sensor pipeline delivers. A message carries one grid of 16-bit heights, its scale,
 *  and one world offset per surface item; all items share the grid. */

#include <ZdkVisionLib/platform/qApi.h>

using ZvSurfaceMsg = void*; ///< a surface message, a platform object

extern ZDK_PLATFORM_EXPORT const qType xxZvSurfaceMsg_type; ///< class of surface messages

/** Makes a message of @p length rows by @p width columns with @p itemCount items; the cells are -32768 (missing),
 *  the scale is 1 and the offsets are 0. */
ZDK_PLATFORM_EXPORT qStatus ZvSurfaceMsg_Construct(ZvSurfaceMsg* slot, std::size_t length, std::size_t width,
                                                   std::size_t itemCount, qAlloc allocator);

/** Sets the world size of a cell (x, y) and of a height count (z). */
ZDK_PLATFORM_EXPORT qStatus ZvSurfaceMsg_SetScale(ZvSurfaceMsg message, const qPoint3d64f* scale);

/** Sets the world offset of item @p index; #STATUS_BAD_PARAMETER when there is no such item. */
ZDK_PLATFORM_EXPORT qStatus ZvSurfaceMsg_SetOffset(ZvSurfaceMsg message, int index, const qPoint3d64f* offset);

ZDK_PLATFORM_EXPORT std::size_t ZvSurfaceMsg_Width(ZvSurfaceMsg message);  ///< columns
ZDK_PLATFORM_EXPORT std::size_t ZvSurfaceMsg_Length(ZvSurfaceMsg message); ///< rows
ZDK_PLATFORM_EXPORT qPoint3d64f ZvSurfaceMsg_Scale(ZvSurfaceMsg message);  ///< world size of a cell and a count

/** Writes the world offset of item @p index; #STATUS_BAD_PARAMETER when there is no such item. */
ZDK_PLATFORM_EXPORT qStatus ZvSurfaceMsg_OffsetForRef(ZvSurfaceMsg message, int index, qPoint3d64f* offset);

/** The cells of item @p index, a #qArray2 of q16s; not counted, it lives as long as the message. Null when there
 *  is no such item. */
ZDK_PLATFORM_EXPORT qArray2 ZvSurfaceMsg_PointsArray(ZvSurfaceMsg message, int index);
