#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <vector>

namespace MeasureBore
{

/** World points where the mask of a ring begins, seen from its middle. Rows are followed to both sides in the quarters
 *  to the left and right, columns in those above and below, so that no edge is met at a grazing angle. A point lies
 *  half-way between the last clear and the first set cell. */
std::vector<qPoint64f> FindInnerEdge(Zvl::ROI& ring, const Zvl::Surface& surface);

} // namespace MeasureBore
