#pragma once

/** @file
 *  Numbers that must be the same in every bit. */

#include <cstring>

namespace TestSupport
{

/** True for the same bits; one not-a-number is as good as another. */
inline bool IsSameNumber(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (a != a && b != b);
}

} // namespace TestSupport
