#pragma once

/** @file
 *  Medians over short windows, in the widest vectors that the processor offers. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** The longest window of SmallMedians(). */
constexpr std::size_t kLongestSmallWindow = 15;

/** SmallMedians() may read and write as many cells behind those that are asked for. */
constexpr std::size_t kSmallMedianSlack = 256;

/** `medians[i]`, for i below @p count, becomes the median of the valid ones among the cells i to i + @p window - 1, as
 *  ProfileFilter::Median() defines it.
 *
 *  @param cells `count + window - 1` cells and #kSmallMedianSlack more
 *  @param window odd, from 3 to #kLongestSmallWindow
 *  @param medians room for @p count cells and #kSmallMedianSlack more; not the memory of @p cells */
void SmallMedians(const std::int16_t* cells, std::size_t window, std::int16_t* medians, std::size_t count);

} // namespace Zvl
