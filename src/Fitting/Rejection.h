#pragma once

/** @file
 *  How many points a fit with rejection takes out. */

#include <cmath>
#include <cstddef>

namespace Zvl
{

/** `trunc(count * (percent / 100.0))` for @p percent above 0, otherwise 0 (NaN included); at most
 *  `count - minimumKept`. @p count is at least @p minimumKept. */
inline std::size_t CountToReject(std::size_t count, double percent, std::size_t minimumKept)
{
    if (!(percent > 0.0))
    {
        return 0;
    }
    const std::size_t most = count - minimumKept;
    const double wanted = std::trunc(static_cast<double>(count) * (percent / 100.0));
    // The limit is taken in double: a value beyond the range of size_t must not be cast.
    return wanted < static_cast<double>(most) ? static_cast<std::size_t>(wanted) : most;
}

} // namespace Zvl
