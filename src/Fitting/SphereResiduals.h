#pragma once

/** @file
 *  How far points lie from a sphere. */

#include "Fitting/SphereEquations.h"

#include <span>

namespace Zvl
{

/** Writes | distance from the centre - radius | of each point; -1 where that is not a number, so that residuals can be put in
 *  order. */
void MeasureResiduals(std::span<const qPoint3d64f> points, const Sphere& sphere, double* residuals);

/** The largest of the numbers, of which there is at least one and each is one. */
double LargestOf(std::span<const double> numbers);

} // namespace Zvl
