#pragma once

/** @file
 *  The operations on pairs of cells, over stretches of two rows and in the widest vectors that the processor offers. The
 *  output overlaps no input. */

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

namespace Zvl
{

/** An operation on one pair of cells, and which one it is. */
struct RowOperation
{
    ArithmeticOperator op;
    const ArithmeticsPixelOperation& cell;
};

/** Stores the result of the operation on each pair of heights. */
void CombineHeights(const RowOperation& operation, const std::int16_t* a, const std::int16_t* b, std::int32_t* out,
                    std::size_t count);

/** As CombineHeights(), but null wherever one of the heights is missing. */
void CombinePresentHeights(const RowOperation& operation, const std::int16_t* a, const std::int16_t* b,
                           std::int32_t* out, std::size_t count);

/** Stores heights of the second surface as counts in the frame of the first; missing ones stay -32768. */
void MoveHeights(const ArithmeticsPixelOperation& operation, const std::int16_t* b, std::int32_t* out,
                 std::size_t count);

/** Stores the result of the operation on each pair of intensities. */
void CombineIntensities(const RowOperation& operation, const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out,
                        std::size_t count);

/** Stores each height of @p heights, or the missing one where that of @p mask is missing. */
void CopyWhereMasked(const std::int16_t* heights, const std::int16_t* mask, std::int16_t* out, std::size_t count);

/** Sets @p intensities to 0 wherever one of the heights is missing. */
void ClearWithoutHeights(const std::int16_t* a, const std::int16_t* b, std::uint8_t* intensities, std::size_t count);

} // namespace Zvl
