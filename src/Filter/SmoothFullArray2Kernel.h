#pragma once

/** @file
 *  What a row of box means takes, in vector instructions. */

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace Zvl
{

/** The most cells of a box whose sum of heights 32 bits can always hold. */
inline constexpr std::size_t kMostCellsOf32Bits = 65536;

/** Sums and counts of heights that are not missing, side by side. Sums of 32 bits may wrap around on the way: what is
 *  between two of them is right as long as a box has at most #kMostCellsOf32Bits cells. */
template <typename Integer>
struct HeightSums
{
    Integer* heights;
    Integer* cells;
};

/** `a + b` and `a - b`, modulo a power of two. */
template <typename Integer>
Integer Sum(Integer a, Integer b)
{
    using Unsigned = std::make_unsigned_t<Integer>;
    return static_cast<Integer>(static_cast<Unsigned>(a) + static_cast<Unsigned>(b));
}

template <typename Integer>
Integer Difference(Integer a, Integer b)
{
    using Unsigned = std::make_unsigned_t<Integer>;
    return static_cast<Integer>(static_cast<Unsigned>(a) - static_cast<Unsigned>(b));
}

/** Adds the row @p entering to the sums of the columns, takes the row @p leaving away, and writes the sums of all columns up
 *  to each. */
void MoveColumnSums(const std::int16_t* entering, const std::int16_t* leaving, std::size_t count,
                    const HeightSums<std::int32_t>& columns, const HeightSums<std::int32_t>& prefix);
void MoveColumnSums(const std::int16_t* entering, const std::int16_t* leaving, std::size_t count,
                    const HeightSums<std::int64_t>& columns, const HeightSums<std::int64_t>& prefix);

/** Writes, for each cell of @p centre that is not missing, the mean between two places of the prefix sums, the cell's own
 *  and the one @p width further; missing heights stay missing. */
void DivideRow(const HeightSums<std::int32_t>& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
               std::size_t count);
void DivideRow(const HeightSums<std::int64_t>& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
               std::size_t count);

} // namespace Zvl
