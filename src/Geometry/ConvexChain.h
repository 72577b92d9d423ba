#pragma once

/** @file
 *  Convex chains: of the end points of rows, those that the convex hull can use. A chain is a #qArrayList of
 *  #qPoint32s in cell coordinates, y rising from one entry to the next. The left chain is made of the leftmost cells of
 *  the rows, the right chain of the rightmost ones; together they are the hull's two sides. */

#include <ZdkVisionLib/platform/ZoApi.h>

#include <span>

namespace Zvl
{

/** Appends @p point to @p chain, after dropping the last entries that it makes needless: those on the line from the
 *  entry before to @p point, or on the inner side of it. This is one step of the monotone chain (A. M. Andrew,
 *  "Another efficient algorithm for convex hulls in two dimensions", 1979), with y as the sorted axis. Any
 *  coordinates are fine. Amortised constant time.
 *  @param left not 0 for a left chain, 0 for a right chain
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p chain is not a list of #qPoint32s or @p point is null; the
 *          platform's status when there is no room, with the needless entries already dropped */
void AddConvex(Zo::Object<void*> chain, const qPoint32s* point, int left);

/** True when @p list is a list that can be a chain. */
inline bool IsChain(void* list)
{
    return list != nullptr && xqCastClass_ObjectIs(list, xxqArrayList_type) &&
           qArrayList_Type(list) == xxqPoint32s_type;
}

/** The points of @p chain, valid until it changes. */
inline std::span<const qPoint32s> PointsOf(void* chain)
{
    return {static_cast<const qPoint32s*>(qArrayList_Data(chain)), qArrayList_Count(chain)};
}

} // namespace Zvl
