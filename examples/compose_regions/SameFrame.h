#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

namespace ComposeRegions
{

/** A scan in the cells of another one, which regions are drawn on; cells that it does not have are missing. A point cloud,
 *  for one, ends where its points do.
 *  @throws Examples::InputError when their cells are of different sizes */
Zvl::Surface InFrameOf(const Zvl::Surface& reference, const Zvl::Surface& scan);

} // namespace ComposeRegions
