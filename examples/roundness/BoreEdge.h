#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <vector>

namespace Roundness
{

/** The edge of the largest round recess of a map, in the section that lies @p depth below the face around it. Where the
 *  wall is not too steep, the points lie between the cells, where the heights pass through the section; otherwise half-way
 *  between two cells.
 *  @throws std::runtime_error when there is none */
std::vector<qPoint64f> FindBoreEdge(const Zvl::Surface& map, double depth);

} // namespace Roundness
