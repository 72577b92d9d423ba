#pragma once

/** @file
 *  Selection by rank. */

#include <cstddef>

namespace Zvl
{

/** The value at position @p k (0 is the smallest) when @p count @p values are put in ascending order, in linear time.
 *  None of them may be NaN; @p k is below @p count. The values are overwritten. */
double KthSmallest(double* values, std::size_t count, std::size_t k);

} // namespace Zvl
