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
    std::int16_t* between; ///< for the result of the pass along the rows
    std::int16_t* out;     ///< may be the input
    std::size_t rows;
    std::size_t columns;
    std::uint32_t windowX;
    std::uint32_t windowY;
    bool keepNulls;
};

/** Whether AverageInStrips() can do it: the map is not too narrow, and sums of a window fit in 32 bits. */
bool CanAverageInStrips(const BoxMean& mean);

/** Bytes of working memory for AverageInStrips(). */
std::size_t BytesForStrips(const BoxMean& mean);

/** The box mean in vector instructions. @param memory BytesForStrips() bytes that start at a multiple of 64 */
void AverageInStrips(const BoxMean& mean, void* memory);

/** The box mean, cell by cell, of any map. */
void AverageLineByLine(const BoxMean& mean);

} // namespace Zvl
