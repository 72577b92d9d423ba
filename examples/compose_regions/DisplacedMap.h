#pragma once

#include "compose_regions/Scene.h"

namespace ComposeRegions
{

/** A scan, and the same surface as if it had been shifted and turned a little before the next scan: each cell
 *  of the next scan takes the height of the nearest cell of the first one that comes to lie there. Where nothing comes to
 *  lie, a height is missing. The features are the three most distinct places of the map.
 *  @throws std::runtime_error when the map is too small, or features are not found */
Scene DisplacedMap(const std::string& title, const Zvl::Surface& map);

} // namespace ComposeRegions
