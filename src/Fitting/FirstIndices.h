#pragma once

/** @file
 *  Which values are the first ones in an order. */

#include <algorithm>
#include <cstddef>
#include <span>

namespace Zvl
{

/** Writes the indices of the @p number values that come first, in ascending order; among those equal to @p limit, the
 *  value of the last of them, the lowest indices go first.
 *  @param before whether its first argument comes before the second; no value is other than a number
 *  @param indices room for one more than @p number */
template <typename Before>
void WriteFirstIndices(std::span<const double> values, double limit, std::size_t number, Before before,
                       std::size_t* indices)
{
    const auto ahead = std::count_if(values.begin(), values.end(), [&](double value) { return before(value, limit); });
    std::size_t equals = number - static_cast<std::size_t>(ahead); // to be taken of those at the limit
    std::size_t found = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        // Written at all events: a branch would be mispredicted.
        indices[found] = i;
        const std::size_t taken = values[i] == limit && equals > 0 ? 1 : 0;
        equals -= taken;
        found += taken + (before(values[i], limit) ? 1 : 0);
    }
}

} // namespace Zvl
