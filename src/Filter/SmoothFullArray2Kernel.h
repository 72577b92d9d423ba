#pragma once

/** @file
 *  What a row of box means takes, in vector instructions. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Sums and counts of heights that are not missing, side by side. */
struct HeightSums
{
    std::int64_t* heights;
    std::int64_t* cells;
};

/** Adds the row @p entering to the sums of the columns, and takes the row @p leaving away; null stands for no row. */
void MoveColumnSums(const std::int16_t* entering, const std::int16_t* leaving, const HeightSums& columns,
                    std::size_t count);

/** Writes, for each cell of @p centre that is not missing, the mean between two places of the prefix sums, the cell's own
 *  and the one @p width further; missing heights stay missing. */
void DivideRow(const HeightSums& prefix, std::size_t width, const std::int16_t* centre, std::int16_t* out,
               std::size_t count);

} // namespace Zvl
