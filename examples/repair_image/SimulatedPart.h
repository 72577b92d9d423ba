#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

namespace RepairImage
{

/** A turned part with a boss, a groove and a printed stripe, without dropouts: heights and intensities. */
Zvl::Surface SimulatedPart();

} // namespace RepairImage
