#pragma once

#include "compose_regions/Scene.h"

namespace ComposeRegions
{

/** Simulates two scans of a cover plate with three drilled holes and a raised seal around its two ports, and of a post of
 *  the fixture beside it. In the second scan the part is displaced, and the fixture is where it was. The seal is the
 *  union of a ring, an elliptical ring, a channel between them and a pad; the post's outline is no simple shape, so that
 *  its region is taught: the cells of the first scan at its height. Every call gives the same scans.
 *  @throws std::runtime_error when a hole is not found */
Scene SimulatedPart();

} // namespace ComposeRegions
