#pragma once

/** @file
 *  From world values to cells and counts. A cast of a double that its target cannot hold is undefined, so every
 *  conversion clamps in double first. */

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace Zvl
{

/** @p value truncated toward zero; the nearest `int` when it is out of range, 0 when it is not a number. */
inline int TruncateToInt(double value) noexcept
{
    if (std::isnan(value))
    {
        return 0;
    }
    constexpr double lowest = std::numeric_limits<int>::min();
    constexpr double highest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(value, lowest, highest));
}

/** @p value rounded half away from zero, as all world values are on their way to a count or a cell. */
inline double RoundHalfAway(double value) noexcept
{
    return std::trunc(value > 0.0 ? value + 0.5 : value - 0.5);
}

/** @p value as an `int`, or the nearest that there is. */
inline int ClampToInt(std::int64_t value) noexcept
{
    return static_cast<int>(
        std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}

/** @p size as an `int`, or the largest that there is. */
inline int ClampToInt(std::size_t size) noexcept
{
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

} // namespace Zvl
