#pragma once

/** @file
 *  From heights in world units to 32-bit counts. */

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

#include <cmath>

namespace Zvl
{

/** The lowest magnitude that has no 32-bit count. */
constexpr double kCountLimit = 2147483648.0;

/** @p value truncated toward zero; null when it is not a number or 32 bits cannot hold it. */
inline std::int32_t TruncateToCount(double value)
{
    return std::fabs(value) < kCountLimit ? static_cast<std::int32_t>(value) : GetNull<int>();
}

/** A height of the second surface, which is not missing, as a count in the frame of the first. */
inline std::int32_t CountInFirstFrame(const ArithmeticsPixelOperation& operation, std::int16_t b)
{
    if (operation.zOffset0 == operation.zOffset1)
    {
        return b;
    }
    return TruncateToCount((b * operation.zScale + operation.zOffset1 - operation.zOffset0) / operation.zScale);
}

} // namespace Zvl
