#pragma once

/** @file
 *  The inner loops of weighted windows, in the vectors that the processor offers. */

#include "Filter/Line.h"

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Windows that are worked on at once. Arrays of sums and shares have room for a multiple of this. */
constexpr std::size_t kWindowStep = 64;

/** Zeros that stand on either side of an array of weights. */
constexpr std::size_t kWeightRoom = kWindowStep;

/** Products that are added up before their sum joins that of the products before them. */
constexpr std::size_t kPartialSum = 24;

/** Lowest and highest of some cells. */
HeightSpan SpanOfCells(const std::int16_t* cells, std::size_t count);

/** `distances[i]` becomes the height of cell i above @p base, and `present[i]` 1; of a missing cell both are 0.
 *  @return how many cells are present */
std::size_t ToDistances(const std::int16_t* cells, std::size_t count, int base, float* distances, float* present);

/** `sums[p]`, for p below @p count, becomes the sum of `values[p + t] * weights[t]` over all weights. The last step may go
 *  beyond @p count, in @p values as well. */
void WeightedSums(const float* values, const float* weights, std::size_t weightCount, float* sums, std::size_t count);

/** `shares[p]`, for p below @p count, becomes the sum of the weights that meet a present cell: @p total without the weights
 *  that meet one of the missing ones.
 *  @param missing the places of missing cells, in order, all of them below `count + weightCount - 1`
 *  @param weights mirrored about their centre, between zeros */
void SharesWithoutMissing(const std::size_t* missing, std::size_t missingCount, const float* weights,
                          std::size_t weightCount, float total, float* shares, std::size_t count);

/** Which quotients of a sum by a share are to be trusted. */
struct Tolerance
{
    float leastShare; ///< smaller shares are in doubt
    float flat;       ///< the quotient's error is below `flat + perShare / share`
    float perShare;
};

/** `heights[p]` becomes @p base and `sums[p] / shares[p]`, rounded, or missing where the share is 0.
 *  @param doubtful gets the places, in order, of results that the quotient's error could change; room for as many as
 *                  there are sums
 *  @return how many those are */
std::size_t RoundQuotients(const float* sums, const float* shares, std::size_t count, int base,
                           const Tolerance& tolerance, std::int16_t* heights, std::size_t* doubtful);

/** The sum of cells times weights, and of the weights, of the cells that are present. */
struct WeightedSum
{
    double sum;
    double share;
};

WeightedSum SumOfPresent(const std::int16_t* cells, const double* weights, std::size_t count);

} // namespace Zvl
