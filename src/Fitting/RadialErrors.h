#pragma once

/** @file
 *  How far points lie from a circle. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>

namespace Zvl
{

/** Fills @p errors with the squares of `distance from the centre - radius`; infinity stands for what is not a number,
 *  so that errors can be put in order.
 *  @param x,y coordinates of @p count points */
void SquaredRadialErrors(const double* x, const double* y, std::size_t count, const qPoint64f& center, double radius,
                         double* errors);

} // namespace Zvl
