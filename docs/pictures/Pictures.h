#pragma once

#include "Svg.h"

#include <string>

/** @file
 *  The pictures of the documentation. What they show is what the library computes for them. */

namespace Pictures
{

Svg Mapping();
Svg Nulls();
Svg BoxAndMask();
Svg Frames();
Svg Ownership();

Svg SurfaceRegions();
Svg ProfileRegions();
Svg MasksAndLimits();
Svg Anchors();

Svg ProfileFilters();
Svg SurfaceFilters();
Svg GapFilling();
Svg Decimation();
Svg Arithmetic();

Svg LineFits();
Svg CircleFits();
Svg VoronoiCells();
Svg TrimmedCircle();
Svg SphereAndPlane();
Svg Polynomials();

Svg Inpainting();
Svg Shares();

} // namespace Pictures
