#pragma once

/** @file
 *  Padding by reflection about the edge. */

#include <cstddef>

namespace Zvl
{

/** The cell of a line of @p length cells that stands at @p position of the padded line, @p pad on either side. */
inline std::size_t MirroredIndex(std::size_t position, std::size_t pad, std::size_t length)
{
    if (position < pad)
    {
        return pad - 1 - position;
    }
    return position < pad + length ? position - pad : pad + 2 * length - 1 - position;
}

/** Throws under the name of PadArray2() unless both pads are from 1 to the lengths of the array. */
void CheckPads(std::size_t rows, std::size_t columns, int padX, int padY);

} // namespace Zvl
