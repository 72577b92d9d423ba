#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

namespace ComposeRegions
{

/** The place of a hole: the mean of the cells within @p reach of @p expected whose heights lie around @p floor.
 *  @throws std::runtime_error when they cover less than half of a disc of @p radius */
qPoint64f FindHole(const Zvl::Surface& scan, const qPoint64f& expected, double reach, double radius, double floor);

} // namespace ComposeRegions
