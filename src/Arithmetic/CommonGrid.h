#pragma once

/** @file
 *  The grid that two height maps of different footprints have in common. */

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

namespace Zvl
{

/** Rows and columns of a height map. */
struct GridSize
{
    std::uint64_t rows;
    std::uint64_t columns;
};

/** One axis of the common grid. */
struct GridAxis
{
    double start;        ///< world position of its first cell
    std::uint64_t count; ///< its cells; a negative number of them reads as a very large one
    std::int16_t first0; ///< the cell of the first surface that lies under its first cell
    std::int16_t first1; ///< the same for the second surface
};

struct CommonGrid
{
    GridAxis x;
    GridAxis y;
};

/** The grid, in steps of @p scale, that two surfaces at @p offset0 and @p offset1 have in common. It has no cells when
 *  @p logic is none that there is.
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER from "Zvl::Arithmetics::getBoundaries" when a number of cells is not
 *          finite */
CommonGrid getBoundaries(ArithmeticLogic logic, const qPoint3d64f& scale, const qPoint3d64f& offset0,
                         const GridSize& size0, const qPoint3d64f& offset1, const GridSize& size1);

/** The cells of an axis that a counter of 16 bits reaches. */
std::size_t ReachableOf(std::uint64_t count);

} // namespace Zvl
