#pragma once

/** @file
 *  Area means of a map, row after row of the coarser grid. */

#include "Common/Cells.h"

namespace Zvl
{

/** Heights, and intensities of the same size, if there are any. */
template <typename Height, typename Intensity>
struct MapLayers
{
    Cells<Height> heights;
    Cells<Intensity> intensities;
};

using SourceLayers = MapLayers<const std::int16_t, const std::uint8_t>;
using TargetLayers = MapLayers<std::int16_t, std::uint8_t>;

/** Fills @p target, of which each cell covers @p step cells of @p source. Failures are thrown for @p function. */
void DecimateRows(const char* function, const SourceLayers& source, const TargetLayers& target, Point2d<double> step,
                  void* alloc);

} // namespace Zvl
