#pragma once

/** @file
 *  The border of the box as edges of the cells of a Voronoi diagram. */

#include "Geometry/VoronoiInternal.h"

namespace Zvl
{

/** Closes the cell of a site along the border of the box.
 *  @throws Zo::Exception #STATUS_ABORTED when it has no edge at all although it is not the only one */
void FillGaps(VoronoiInternal& internal, VoronoiSite& site);

} // namespace Zvl
