#pragma once

/** @file
 *  What the cells around a hole contribute to the value of one of its cells, in the widest vectors that the processor
 *  offers. */

#include <cstddef>
#include <cstdint>
#include <span>

namespace Zvl
{

/** Cells that a kernel may read and write behind those of a run. */
constexpr std::size_t kRunSlack = 64;

/** Cells of a row that ToFloats() takes at once, or a multiple of them. */
constexpr std::size_t kWindowStep = 16;

/** A run of cells in a row of the neighbourhood of the cell to repair. In the image's first and last row and column, some
 *  values are read one cell further inside. */
struct NeighbourRun
{
    std::size_t count;
    const float* factor; ///< by distance, of the run's first cell and those behind it
    std::ptrdiff_t dx;   ///< of the first cell from the cell to repair
    std::ptrdiff_t dy;
    bool isFirstRow; ///< of the image
    bool isLastRow;
    bool isFirstColumn;
    bool isLastColumn;
};

/** What the kernels read of the cell to repair and, by run, of those around it. */
struct Surroundings
{
    std::span<const NeighbourRun> runs; ///< row by row and from left to right
    const std::uint8_t* state;          ///< CellState
    const float* t;                     ///< when the front arrives
    std::ptrdiff_t planeStride;
    const float* value; ///< of the image
    std::ptrdiff_t valueStride;
};

/** The front at the cell to repair. */
struct FrontSlope
{
    float time;
    float x; ///< the gradient of the time
    float y;
};

/** Sums over the known cells of a neighbourhood, one cell after the other. */
struct NeighbourSums
{
    float weighted; ///< weight times value
    float gradX;    ///< weight times the value's change along x to the cell to repair; of SumTelea() only
    float gradY;
    float weight;
};

/** Adds weights by distance, by difference in time, and by direction against the front to @p sums. */
void SumTelea(const Surroundings& surroundings, const FrontSlope& front, NeighbourSums& sums);

/** Adds weights by distance and by direction against the isophotes to @p sums. */
void SumNavierStokes(const Surroundings& surroundings, NeighbourSums& sums);

/** Cells of an image that become floats. */
template <typename T>
struct ImageWindow
{
    const T* cells;
    std::ptrdiff_t stride;
    std::size_t rows;
    std::size_t columns; ///< a multiple of #kWindowStep
    float* values;
    std::size_t valueStride;
};

void ToFloats(const ImageWindow<std::uint8_t>& window);
void ToFloats(const ImageWindow<std::uint16_t>& window);
void ToFloats(const ImageWindow<std::int16_t>& window);
void ToFloats(const ImageWindow<float>& window);

} // namespace Zvl
