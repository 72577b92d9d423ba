#pragma once

/** @file
 *  The sums behind an algebraic sphere. */

#include "Fitting/SphereEquations.h"

namespace Zvl
{

/** Adds what each point contributes, one point after the other. */
void AddContributions(const qPoint3d64f* points, std::size_t count, SphereContribution& sums);

} // namespace Zvl
