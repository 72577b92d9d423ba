#pragma once

/** @file
 *  Means over windows that slide along a line, in vector instructions, and what these share with those down columns. */

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Heights as the kernels keep them: height + 32768, so that a missing one is 0 and adds nothing to a sum. */
inline constexpr int kHeightShift = 32768;

/** The most cells that are worked on at once. */
inline constexpr std::size_t kMostLanes = 32;

/** Cells of a window that 16 bits can count; their sum then fits in 32 bits. */
inline constexpr std::size_t kMostWindowCells = 65535;

/** The cells around one that its mean is taken of, itself included. */
struct MeanWindow
{
    std::size_t behind; ///< cells before it
    std::size_t ahead;  ///< cells after it

    std::size_t Cells() const { return behind + 1 + ahead; }
};

/** Means that are computed together, and all cells that their windows can see. */
struct MeanStretch
{
    const std::int16_t* cells;
    std::size_t size;
    std::size_t first;        ///< of the cells whose means are wanted
    std::size_t count;        ///< of the means
    const std::int16_t* next; ///< as many cells, which are brought into the cache since they will be read next
};

/** Sums of shifted heights, modulo 2^32, and counts of heights, modulo 2^16. */
struct HeightSums
{
    std::int32_t* even; ///< the sums of the cells or columns 0, 2, 4, ...
    std::int32_t* odd;  ///< the sums between them
    std::uint16_t* counts;
};

/** @p size rounded up to a multiple of @p unit. */
constexpr std::size_t RoundUp(std::size_t size, std::size_t unit)
{
    return (size + unit - 1) / unit * unit;
}

/** Hands out one part of the memory after the other; with a null start it only counts. */
class MemoryParts
{
public:
    explicit MemoryParts(void* memory) : start(static_cast<unsigned char*>(memory)) {}

    template <typename T>
    T* Take(std::size_t count)
    {
        constexpr std::size_t kAlignment = 64;
        unsigned char* part = start == nullptr ? nullptr : start + used;
        used += RoundUp(count * sizeof(T), kAlignment);
        return reinterpret_cast<T*>(part);
    }

    /** Sums of @p cells cells or columns. */
    HeightSums TakeSums(std::size_t cells)
    {
        const std::size_t half = RoundUp(cells, kMostLanes) / 2;
        return {Take<std::int32_t>(half), Take<std::int32_t>(half), Take<std::uint16_t>(2 * half)};
    }

    std::size_t Used() const { return used; }

private:
    unsigned char* start;
    std::size_t used = 0;
};

/** Whether this machine has vectors, and they can do windows with up to @p cells cells. */
bool CanAverageInVectors(std::size_t cells);

/** Cells of the sums that AverageStretch() works with, for stretches of up to @p size cells. */
inline std::size_t CellsOfPrefixSums(const MeanWindow& window, std::size_t size)
{
    return window.Cells() + size + 4 * kMostLanes;
}

/** The means of a stretch, truncated toward zero, plus @p offset, in 16 bits. A window without heights, and with
 *  @p keepNulls a missing cell, gives what stands for a missing height: -32768 plus the offset.
 *  @param prefixSums working memory of CellsOfPrefixSums() cells */
void AverageStretch(const MeanStretch& stretch, const MeanWindow& window, bool keepNulls, int offset,
                    const HeightSums& prefixSums, std::uint16_t* means);

} // namespace Zvl
