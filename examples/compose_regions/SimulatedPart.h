#pragma once

#include "compose_regions/Scene.h"

namespace ComposeRegions
{

/** Simulates the scan of a cover plate with three drilled holes and a raised seal around its two ports, and of a post of
 *  the fixture beside it. Every call gives the same scan. */
Zvl::Surface SimulateReferenceScan();

/** Simulates the next scan, in which the part is displaced, and the fixture is where it was. */
Zvl::Surface SimulateNextScan();

/** The scene of these scans, or of others of the same part in the same places. The seal is the union of a ring, an
 *  elliptical ring, a channel between them and a pad; the post's outline is no simple shape, so that its region is taught:
 *  the cells of the reference scan at its height.
 *  @throws Examples::InputError when the cells of the scans are of different sizes
 *  @throws std::runtime_error when a hole is not found */
Scene KnownPart(const std::string& title, const Zvl::Surface& reference, const Zvl::Surface& next);

} // namespace ComposeRegions
