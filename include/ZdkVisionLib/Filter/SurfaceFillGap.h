#pragma once

/** @file
 *  Closing short gaps in a height map. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstdint>

namespace Zvl
{

/** Limits of the gaps that SurfaceFillGapXY() closes. */
struct SurfaceFillGapParams
{
    double resolutionX = 0.0;  ///< world units from column to column
    double resolutionY = 0.0;  ///< world units from row to row
    double resolutionZ = 0.0;  ///< world units of a height count
    double maxGapX = 0.0;      ///< longest gap in a row in world units; at or below 0 none is closed along rows
    double maxGapY = 0.0;      ///< longest gap in a column in world units; at or below 0 none is closed along columns
    double maxSlopeX = 0.0;    ///< steepest slope along a row that is interpolated, in degrees, 0 to below 90
    double maxSlopeY = 0.0;    ///< steepest slope along a column that is interpolated, in degrees, 0 to below 90
    std::int32_t fillHigh = 0; ///< not 0 to fill from the upper end where the slope is too steep, 0 from the lower
};

/** Closes the short gaps of a height map, runs of missing heights (-32768) between heights of one row or column, and
 *  fills the intensities of the same cells. Only heights and intensities of @p surface and @p intensity are used, never
 *  filled ones.
 *
 *  The longest gap is counted in missing cells: the limit divided by the resolution, truncated. The slope is counted in
 *  whole height counts per cell, rounded half away from zero and at most 32767.
 *
 *  Along rows alone (no gap in Y), or columns alone, a gap of at most that many cells is interpolated linearly between
 *  its two ends, in whole counts truncated toward the height before the gap, if the heights of its ends differ by no
 *  more than the slope allows. Otherwise all its cells take the lower end, or the upper one with `fillHigh`.
 *
 *  With gaps in both directions a cell is filled when its gap in the row or its gap in the column is short enough. The
 *  nearest heights left, right, above and below that are within the longest gap of that direction then take part. The
 *  lowest of them (the highest with `fillHigh`; the first in this order wins) is the anchor. A height counts if it is
 *  not above the anchor (below, with `fillHigh`) by more than the slope allows over the distances of both from the
 *  cell. The cell takes the mean of the heights that count, each weighted with the distances of all others, in
 *  thousandths of a world unit; it takes the anchor when these weights are 0.
 *
 *  Gaps that reach an edge of the map have one end only, and are not closed in that direction.
 *
 *  @param surface #qArray2 of q16s
 *  @param intensity #qArray2 of q8u as large as @p surface, or null inside: intensities are then not dealt with
 *  @param filledSurface receives a new array of heights; it may be the handle given as @p surface
 *  @param filledIntensity receives a new array of intensities, or null without @p intensity
 *  @param alloc allocator of the results and of working memory; null is the platform's default
 *  @throws Zo::Exception, with both results as they were:
 *   - #STATUS_BAD_PARAMETER when an array is not as above (without any gap to close, intensities of another size are
 *     copied like others), or a slope is not in its range; one that is not a number limits nothing
 *   - the platform's status when memory runs out
 *
 *  Linear time in the cells, with constant work for each row or column end of a gap; memory for the results, and for
 *  two items per column with gaps in both directions. On the calling thread; calls for different results may run at
 *  once. */
ZDK_VISION_EXPORT void SurfaceFillGapXY(const SurfaceFillGapParams& params, Zo::Object<void*> surface,
                                        Zo::Object<void*> intensity, Zo::Object<void*>& filledSurface,
                                        Zo::Object<void*>& filledIntensity, void* alloc);

} // namespace Zvl
