#pragma once

/** @file
 *  The inner loops of weighted windows, in the widest vectors that the processor offers. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Writes @p count cells as numbers. @return whether no cell is missing */
bool ToNumbers(const std::int16_t* cells, std::size_t count, double* numbers);

/** `sums[p]`, for p below @p count, becomes the sum of `values[p + t] * taps[t]` over all taps, added up in the
 *  order of t without fused operations. @p values holds `count + tapCount - 1` numbers. */
void WeightedSums(const double* values, const double* taps, std::size_t tapCount, double* sums, std::size_t count);

/** The same of values some of which are missing (-32768): these are left out. `shares[p]` becomes the sum of the taps
 *  that meet the others. */
void WeightedSumsOfPresent(const double* values, const double* taps, std::size_t tapCount, double* sums, double* shares,
                           std::size_t count);

/** `heights[p]` becomes `sums[p]`, rounded half away from zero. The sums are heights. */
void RoundSums(const double* sums, std::size_t count, std::int16_t* heights);

/** `heights[p]` becomes `sums[p] / shares[p]`, rounded half away from zero, or missing where the share is 0. The quotients
 *  are heights.
 *  @param doubtful gets the places, in order, of quotients that are within @p tolerance of half way between two heights;
 *                  room for @p count
 *  @return how many those are */
std::size_t RoundQuotients(const double* sums, const double* shares, std::size_t count, double tolerance,
                           std::int16_t* heights, std::size_t* doubtful);

} // namespace Zvl
