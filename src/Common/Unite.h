#pragma once

/** @file
 *  The union of boxes: the least box that holds them all. */

#include <ZdkVisionLib/Common/Common.h>

#include "Common/Rounding.h"

#include <type_traits>

namespace Zvl
{

/** Extends the range of @p length from @p start on, so that it holds the other one. Each end that moves takes the
 *  length along, so that doubles round as if one end were moved after the other. An `int` range that grows beyond its
 *  type is cut. */
template <typename T>
void ExtendRange(T& start, T& length, T otherStart, T otherLength)
{
    using Wide = std::conditional_t<std::is_same_v<T, int>, std::int64_t, T>;
    Wide extended = length;
    if (otherStart < start)
    {
        extended += static_cast<Wide>(start) - otherStart;
        start = otherStart;
    }
    const Wide otherEnd = static_cast<Wide>(otherStart) + otherLength;
    if (otherEnd > start + extended)
    {
        extended = otherEnd - start;
    }
    if constexpr (std::is_same_v<T, int>)
    {
        length = ClampToInt(extended);
    }
    else
    {
        length = extended;
    }
}

/** Extends @p whole, so that it holds @p part. An empty part adds nothing, and an empty whole becomes the part. */
inline void Unite(Rect2d<int>& whole, const Rect2d<int>& part)
{
    if (part.width < 1 || part.height < 1)
    {
        return;
    }
    if (whole.width == 0 && whole.height == 0)
    {
        whole = part;
        return;
    }
    ExtendRange(whole.x, whole.width, part.x, part.width);
    ExtendRange(whole.y, whole.height, part.y, part.height);
}

/** Extends @p whole, so that it holds @p part. An empty part adds nothing, and an empty whole becomes the part. */
inline void Unite(RunLength<int>& whole, const RunLength<int>& part)
{
    if (part.length < 1)
    {
        return;
    }
    if (whole.length == 0)
    {
        whole = part;
        return;
    }
    ExtendRange(whole.start, whole.length, part.start, part.length);
}

} // namespace Zvl
