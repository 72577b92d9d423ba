#pragma once

#include "profile_gauge/Recording.h"

namespace ProfileGauge
{

/** Simulates the line scans across the groove of a plate that trembles on its way under the sensor: in each scan it lies
 *  a little elsewhere and is turned a little. The groove gets wider along the plate and its depth waves. There are noise,
 *  stray light, and heights that are missing, more of them at the walls. Every call gives the same scans, which are
 *  the rows of the map. */
Zvl::Surface SimulateScans();

/** The recording of these scans, or of others of the same part in the same places.
 *  @throws Examples::InputError when the rows are not as many */
Recording KnownGroove(const std::string& title, const Zvl::Surface& scans);

} // namespace ProfileGauge
