#pragma once

/** @file
 *  Angles are degrees in all records and radians in all formulas. Both conversions multiply before they
 *  divide, so that every part of the library gets the same bits. */

namespace Zvl
{

constexpr double kPi = 3.141592653589793;

inline constexpr double ToRadians(double degrees)
{
    return degrees * kPi / 180.0;
}

inline constexpr double ToDegrees(double radians)
{
    return radians * 180.0 / kPi;
}

} // namespace Zvl
