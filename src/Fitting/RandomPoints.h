#pragma once

/** @file
 *  Random samples of points. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>

namespace Zvl
{

/** Draws @p n distinct points from the C runtime's generator, each as likely as the other but for the first and the
 *  last, which are half as likely. With `n == count` nothing is drawn: the points come in their order.
 *
 *  The generator is `rand`, whose state belongs to the whole process; the caller seeds it.
 *
 *  @param selected room for @p n points, which come in the order in which they were drawn
 *  @throws Zo::Exception from "Zvl::GetNRandomPoints" with #STATUS_BAD_DATA when @p n is above @p count
 *
 *  Time about O(n²) for n well below @p count. */
void GetNRandomPoints(const qPoint64f* points, std::size_t count, qPoint64f* selected, std::size_t n);

} // namespace Zvl
