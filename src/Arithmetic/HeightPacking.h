#pragma once

/** @file
 *  The end of arithmetic on heights: back from 32 bits to 16. */

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

#include "Arithmetic/CommonGrid.h"
#include "Common/Cells.h"

#include <algorithm>

namespace Zvl
{

/** 32-bit heights, which no surface of a caller has. */
template <>
inline qType CellType<std::int32_t>()
{
    return xxq32s_type;
}

/** The cells of an array that counters of 16 bits reach; all others hold @p missing from now on. */
template <typename T>
GridSize ReachableCells(const Cells<T>& cells, T missing)
{
    const GridSize reachable = {ReachableOf(cells.rows), ReachableOf(cells.columns)};
    if (reachable.rows != cells.rows || reachable.columns != cells.columns)
    {
        std::fill_n(cells.data, cells.rows * cells.columns, missing);
    }
    return reachable;
}

/** A surface with the heights of @p surface in 16 bits, and its second layer, if it has one, shared. The mapping is the
 *  same when all heights fit; otherwise they are shifted, or scaled when their range does not fit either.
 *  @throws Zo::Exception from "Zvl::Arithmetics::ConvertSurface32sTo16s": #STATUS_BAD_PARAMETER unless the first layer is
 *          a #qArray2 of q32s; the platform's status when memory is exhausted */
Surface ConvertSurface32sTo16s(const Surface& surface);

} // namespace Zvl
