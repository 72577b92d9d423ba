#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

namespace MeasureRadius
{

/** Radius of the simulated cylinder, in millimetres. */
constexpr double kNominalRadius = 5.0;

/** Simulates the scan of a strip along a lying cylinder: its axis runs along y and falls a little; there are fine
 *  striations along the axis, noise, spikes, burrs at both long sides, and clusters of missing cells. Every call gives
 * the same scan. */
Zvl::Surface SimulateCylinder();

} // namespace MeasureRadius
