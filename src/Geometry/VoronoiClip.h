#pragma once

/** @file
 *  Edges of a Voronoi diagram, cut to its box. */

#include "Geometry/Voronoi.h"

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

inline constexpr qPoint64f kVoronoiNullPoint = {GetNull<double>(), GetNull<double>()};

inline bool IsNullPoint(const qPoint64f& p)
{
    return p.x == kVoronoiNullPoint.x && p.y == kVoronoiNullPoint.y;
}

/** Puts both positions of an edge on its line, inside of the box; a null position is an end at infinity.
 *  @return false when nothing of the edge lies in the box */
bool ClipEdge(VoronoiEdge& edge, const qPoint64f& min, const qPoint64f& max);

} // namespace Zvl
