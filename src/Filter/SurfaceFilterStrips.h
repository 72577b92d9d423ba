#pragma once

/** @file
 *  Sizes and working memory of a box mean in vector instructions. */

#include "Filter/SurfaceFilterKernel.h"

#include <algorithm>

namespace Zvl
{

inline constexpr std::size_t kStripRows = 16; ///< rows of a map that are averaged side by side
inline constexpr std::size_t kTile = 8;       ///< rows and columns of a square that is transposed at once
inline constexpr std::size_t kMostLanes = 16; ///< cells of a map's line that are worked on at once
inline constexpr std::size_t kAlignment = 64; ///< bytes

/** Cells of a window whose sum fits in 32 bits. */
inline constexpr std::size_t kMostCells = 65538;

/** Cells of a window whose sum a float holds exactly. */
inline constexpr std::size_t kMostExactCells = 512;

/** @p size rounded up to a multiple of @p unit. */
constexpr std::size_t RoundUp(std::size_t size, std::size_t unit)
{
    return (size + unit - 1) / unit * unit;
}

/** The working memory: hands out one part after the other; with a null start it only counts. */
class Parts
{
public:
    explicit Parts(void* memory) : start(static_cast<unsigned char*>(memory)) {}

    template <typename T>
    T* Take(std::size_t count)
    {
        unsigned char* part = start == nullptr ? nullptr : start + used;
        used += RoundUp(count * sizeof(T), kAlignment);
        return reinterpret_cast<T*>(part);
    }

    std::size_t Used() const { return used; }

private:
    unsigned char* start;
    std::size_t used = 0;
};

/** Sums and counts of the heights in the windows of lines that lie side by side. */
struct WindowSums
{
    std::int32_t* raw;    ///< of the cells as they are, missing ones included, modulo 2^32
    std::int32_t* counts; ///< of the cells that are not missing
};

/** What strips and columns are averaged in. */
struct WorkingMemory
{
    WorkingMemory(const BoxMean& mean, void* memory)
    {
        Parts parts(memory);
        // The last stretch of a row may overlap the one before, and has sums of its own.
        const std::size_t columnSums = RoundUp(mean.columns, kMostLanes);
        columns = {parts.Take<std::int32_t>(columnSums), parts.Take<std::int32_t>(columnSums)};
        strip = {parts.Take<std::int32_t>(kStripRows), parts.Take<std::int32_t>(kStripRows)};
        nulls = parts.Take<std::int16_t>(std::max(mean.columns, kStripRows));
        zeros = parts.Take<std::int16_t>(std::max(mean.columns, kStripRows));
        spare = parts.Take<std::int16_t>(mean.columns);
        source = parts.Take<std::int16_t>(mean.columns * kStripRows);
        result = parts.Take<std::int16_t>(mean.columns * kStripRows);
        bytes = parts.Used();
    }

    WindowSums columns{};
    WindowSums strip{};
    std::int16_t* nulls;  ///< a row of missing heights, for what lies outside the map
    std::int16_t* zeros;  ///< a row without missing heights
    std::int16_t* spare;  ///< takes the rows of a strip that the map does not have
    std::int16_t* source; ///< the transposed strip
    std::int16_t* result; ///< its means
    std::size_t bytes;
};

} // namespace Zvl
