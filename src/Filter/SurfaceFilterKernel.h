#pragma once

/** @file
 *  The box mean of a map: a running mean along the rows, then one along the columns of its result. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** A map and what its box mean needs. Rows follow each other without gaps. */
struct BoxMean
{
    const std::int16_t* in;
    std::int16_t* out; ///< may be the input
    std::size_t rows;
    std::size_t columns;
    std::uint32_t windowX;
    std::uint32_t windowY;
    bool keepNulls;
};

/** Whether AverageInVectors() can do it: the map is not too narrow or empty, and windows are neither too large nor empty. */
bool CanAverageInVectors(const BoxMean& mean);

/** Bytes of working memory for AverageInVectors(). */
std::size_t BytesForVectors(const BoxMean& mean);

/** The box mean in vector instructions. The means along the rows are kept for as many rows as a window covers.
 *  @param memory BytesForVectors() bytes that start at a multiple of 64 */
void AverageInVectors(const BoxMean& mean, void* memory);

/** The box mean, cell by cell, of any map. @param between for the means along the rows, as large as the map */
void AverageLineByLine(const BoxMean& mean, std::int16_t* between);

} // namespace Zvl
