#pragma once

/** @file
 *  Filters over one line of 16-bit heights in plain buffers. A missing height is -32768. */

#include <ZdkVisionLib/Export.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Zvl
{

/** A chain of filters over one line of heights.
 *
 *  @code
 *  ProfileFilter(heights, count, smooth, nullptr).FillGap(5, 10, 0).Median(7, 1).Gaussian(5, 0.0, 1);
 *  @endcode
 *
 *  The first operation reads the input, every later one what the one before it left in the output; the last result
 *  stands in the output. Until an operation has written the output, the input is the source: a window of 0 or 1, where
 *  it is allowed, copies the input through and does not count as such an operation.
 *
 *  Input and output may be the same buffer, or overlap: results are those of separate buffers. The filter keeps a copy
 *  of its own of the source wherever it would otherwise read cells that are already written. For Average(), Median() and
 *  Gaussian() that is so when the output begins inside the input, or less than `window / 2 + 1` cells before it, and for
 *  all but the first operation; for every operation, when the buffers overlap without being the same.
 *
 *  Sums and products are held in 64 bits, so that no window and no line is too long for them.
 *
 *  The buffers must hold the given count of cells for as long as the filter is in use. One filter belongs to one
 *  thread; nothing in it is parallel. Operations return the filter itself. After a failure the output may hold part of
 *  a result, and the source is what it was before the operation. */
class ZDK_VISION_EXPORT ProfileFilter
{
public:
    /** What the limits of Percentile() are taken from. */
    enum PercentileType : std::int32_t
    {
        Rank = 0, ///< the valid cells in ascending order
        Range = 1 ///< the span from the lowest to the highest valid cell
    };

    /** @param in the input, @p size cells
     *  @param size from 1 to what a buffer can hold
     *  @param out the output, @p size cells
     *  @param alloc allocator of the copy of the source; null is the platform's default
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when a pointer is null or the size out of its range */
    ProfileFilter(const short* in, std::size_t size, short* out, void* alloc);
    ProfileFilter(const ProfileFilter&) = delete;
    ProfileFilter& operator=(const ProfileFilter&) = delete;
    ~ProfileFilter();

    /** Closes short runs of missing cells between two valid ones. With `gap` the distance of the two (2 for a single
     *  missing cell) and `rise` the height of the right one over the left one, a run is filled when `gap` is at most
     *  @p maxGap: by linear interpolation, truncated toward zero, or, where the rise is above `maxSlope * gap` or below
     *  `-maxSlope * gap`, flat from the lower end.
     *
     *  @param maxGap counts in signed 32 bits: higher bits do not take part, and a limit that is negative then closes
     *         nothing. 0 and 1 copy the line through.
     *  @param maxSlope height counts per cell
     *  @param fillHigh non-zero: steep runs are filled from the upper end
     *  @throws Zo::Exception the platform's status when the line cannot be copied
     *
     *  Linear in the line. */
    ProfileFilter& FillGap(std::size_t maxGap, int maxSlope, int fillHigh);

    /** The mean of the valid cells in a centred window, truncated toward zero; missing where there are none. At the
     *  ends of the line the window holds fewer cells.
     *
     *  @param window cells, odd; 1 copies the line through
     *  @param keepNulls non-zero: cells that are missing in the source stay so
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p window is even; the platform's status when the line cannot
     *         be copied
     *
     *  A running sum: linear in the line, whatever the window. */
    ProfileFilter& Average(std::size_t window, int keepNulls);

    /** The median of the valid cells in a centred window, as Average() in all else. Of an even count it is the mean of
     *  the two in the middle, truncated toward zero.
     *
     *  A running median over counts per height: linear in the line, whatever the window; memory for the span of the
     *  heights, at most 520 KiB. Windows of up to 15 cells are sorted, many at a time. */
    ProfileFilter& Median(std::size_t window, int keepNulls);

    /** The mean of the valid cells in a window, weighted by a Gaussian and rounded half away from zero. The window of
     *  cell i is centred on cell i - 1: the result lags by one cell behind those of Average() and Median(). Where
     *  cells are missing, or the window leaves the line, the other weights are scaled to sum to 1; where no
     *  weight is left, the cell is missing.
     *
     *  @param window cells, odd, at most 2^31 - 1; 1 copies the line through
     *  @param sigma of the Gaussian, in cells; 0 or less means `0.3 * ((window - 1) / 2 - 1) + 0.8`. A sigma that is
     *         not a number, or whose square vanishes, gives 0 wherever the window holds a valid cell.
     *  @param keepNulls as in Average()
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p window is even or too large; the platform's status when the
     *         line cannot be copied; #STATUS_ABORTED when the weights have no positive sum
     *
     *  One step per cell and weight that can meet a cell, and one per weight of the whole window. */
    ProfileFilter& Gaussian(std::size_t window, double sigma, int keepNulls);

    /** Clears the cells outside a band of heights; both limits are inclusive. Of #Rank, a percentile p is the valid
     *  cell of rank `round((n - 1) * p / 100)`; of #Range, it lies at p percent of the way from the lowest to the
     *  highest valid cell. Both are rounded half away from zero.
     *
     *  The whole line is cleared when @p low is not below @p high (also when one of them is not a number), when @p type
     *  is none of the two, when no cell is valid, and of #Range when all valid cells are equal.
     *
     *  @param low in percent; values outside 0 to 100 count as the nearest of these
     *  @param high as @p low
     *  @throws Zo::Exception the platform's status when the line cannot be copied
     *
     *  Expected time linear in the line; #Rank takes memory for a copy of it. */
    ProfileFilter& Percentile(double low, double high, PercentileType type);

private:
    struct Impl;
    std::unique_ptr<Impl> impl;
};

} // namespace Zvl
