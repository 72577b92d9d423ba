#pragma once

/** @file
 *  Box means over height arrays: #qArray2 of q16s, in which -32768 stands for a missing height. */

#include <ZdkVisionLib/Common/Common.h>

#include <memory>

namespace Zvl
{

/** A chain of filters over a height array. The first filter reads the input array, each later one what the one before
 *  it left in the output array. Both arrays are shared with the caller, and may be the same array.
 *
 *  A filter belongs to one thread at a time, and works on it alone. */
class ZDK_VISION_EXPORT SurfaceFilter
{
public:
    /** @param in heights to filter, q16s
     *  @param out array of q16s with the lengths of @p in, for the result
     *  @param alloc allocator of working memory, which must outlive the filter; null is the platform's default
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when an array is null or not q16s, or their lengths differ */
    SurfaceFilter(Zo::Object<void*> in, Zo::Object<void*> out, void* alloc);

    SurfaceFilter(const SurfaceFilter&) = delete;
    SurfaceFilter& operator=(const SurfaceFilter&) = delete;
    ~SurfaceFilter();

    /** Replaces each height by the mean of those around it: first along the rows with a window of `window.x` cells, then
     *  along the columns of that result with `window.y`. Of a window of w cells, cell c has cells `c + w / 2 - w + 1` to
     *  `c + w / 2`, as far as they lie in the line: an odd window is centred, an even one reaches one cell further
     *  toward higher indices. Both means leave missing heights out and are truncated toward zero. A window without any
     *  height gives a missing height, and so does a window of 0 cells.
     *
     *  When each of the two sizes is 0 or 1 there is nothing to smooth: a filter that has not smoothed yet copies the
     *  input to the output array as it is.
     *
     *  @param window sizes in cells; a size that is not below 2^32 is taken modulo 2^32
     *  @param keepNulls if not 0, each pass keeps missing heights missing; if 0, they are filled from their surroundings
     *  @return this filter
     *  @throws Zo::Exception
     *   - #STATUS_BAD_PARAMETER when an array has been given another type or size since the construction
     *   - the platform's status when memory runs out; the output array is then as it was
     *
     *  Time linear in the cells, whatever the window; memory for as many rows as the window has, for one more array when
     *  the window has more than 65,535 cells or the map is very narrow, and, in each call after the first, for a copy of
     *  the array. */
    SurfaceFilter& Average(Point2d<std::size_t> window, int keepNulls);

private:
    struct Impl;

    std::unique_ptr<Impl> impl;
};

/** A copy of @p array with @p padX columns more on either side and @p padY rows more above and below, which mirror the
 *  array about its edge with the edge cell repeated: the cell at distance d outside is the one d cells inside, counted
 *  from 0 for the edge cell. Missing heights are copied like any other.
 *
 *  @tparam T `unsigned char`, `short` or `int`: the width of the cells
 *  @param array #qArray2 of a plain item type as wide as `T`, which is also that of the result
 *  @param padX columns, 1 to the array's columns
 *  @param padY rows, 1 to the array's rows
 *  @param alloc allocator of the result; null is the platform's default
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when an argument is not as above, or the platform's status when memory
 *          runs out
 *
 *  One pass over the result on the calling thread. */
template <typename T>
ZDK_VISION_EXPORT Zo::Object<void*> PadArray2(const Zo::Object<void*>& array, int padX, int padY, void* alloc);

/** Replaces each height by the mean of the heights in a box around it, of which missing ones are left out; missing
 *  heights stay missing. With h the half `height / 2` and w the half `width / 2`, the box of cell (row, column) has rows
 *  `row - h + 1` to `row + h` and columns `column - w + 1` to `column + w`: it is not centred, and an odd size counts as
 *  one less. Beyond its edges the array goes on as PadArray2() pads it. The mean is truncated toward zero.
 *
 *  @tparam T `short`
 *  @param array #qArray2 of q16s
 *  @param width columns of the box, 2 to one less than the array's
 *  @param height rows of the box, 2 to one less than the array's
 *  @param alloc allocator of the result and of working memory; null is the platform's default
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when an argument is not as above (a size of 1, which leaves nothing to pad,
 *          under the name of PadArray2()), or the platform's status when memory runs out
 *
 *  Time linear in the cells, whatever the box; memory for the result and some rows. On the calling thread. */
template <typename T>
ZDK_VISION_EXPORT Zo::Object<void*> SmoothFullArray2(const Zo::Object<void*>& array, int width, int height,
                                                     void* alloc);

} // namespace Zvl
