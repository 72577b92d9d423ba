#pragma once

/** @file
 *  What the cells around a hole contribute to the value of one of its cells, in the widest vectors that the processor
 *  offers. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Cells that a kernel may read and write behind those of a run. */
constexpr std::size_t kRunSlack = 64;

/** A run of cells in a row of the neighbourhood of the cell to repair. All pointers are those of the run's first cell.
 *  Those into the image go by its role in the differences: `here` is the cell as it is read, which at the image's edges
 *  is one cell further inside. */
struct NeighbourRun
{
    std::size_t count;
    float dx; ///< of the first cell from the cell to repair
    float dy;
    const float* factor; ///< by distance
    const std::uint8_t* stateAbove;
    const std::uint8_t* state;
    const std::uint8_t* stateBelow;
    const float* t;
    const float* here;
    const float* left;      ///< beside `here`, for a difference to the left
    const float* right;     ///< beside `hereLeft`, for one to the right
    const float* hereLeft;  ///< in place of `here` where the cell to the right is not known
    const float* above;     ///< over `here`
    const float* below;     ///< under `hereAbove`
    const float* hereAbove; ///< in place of `here` where the cell below is not known
};

/** The terms of the sums, one for each cell of a run; 0 for those that are not known. */
struct RunTerms
{
    float* weighted; ///< weight times value
    float* gradX;    ///< weight times the value's change along x to the cell to repair; of TeleaTerms() only
    float* gradY;
    float* weight;
};

/** The front at the cell to repair. */
struct FrontSlope
{
    float time;
    float x; ///< the gradient of the time
    float y;
};

/** Weights by distance, by difference in time, and by direction against the front. */
void TeleaTerms(const NeighbourRun& run, const FrontSlope& front, const RunTerms& terms);

/** Weights by distance and by direction against the isophotes. */
void NavierStokesTerms(const NeighbourRun& run, const RunTerms& terms);

} // namespace Zvl
