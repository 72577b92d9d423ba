#pragma once

/** @file
 *  The inner loop of weighted windows, in the widest vectors that the processor offers. */

#include <cstddef>

namespace Zvl
{

/** `sums[p]`, for p below @p count, becomes the sum of `values[p + t] * taps[t]` over all taps, added up in the
 *  order of t without fused operations. @p values holds `count + tapCount - 1` numbers. */
void WeightedSums(const double* values, const double* taps, std::size_t tapCount, double* sums, std::size_t count);

} // namespace Zvl
