#pragma once

/** @file
 *  The edges around each site of a Voronoi diagram. */

#include "Geometry/VoronoiInternal.h"

namespace Zvl
{

/** Direction from the site to the middle of the edge between the two positions. */
double AngleTo(const VoronoiSite& site, const qPoint64f& begin, const qPoint64f& end);

/** Clips an edge and notes what is left of it at both its sites. */
void FinishEdge(VoronoiInternal& internal, VoronoiEdge& edge);

/** Makes the list of graph edges of a site, sorted by angle, from the edges that were noted; among equals the one
 *  finished last comes first. */
void BuildCell(VoronoiInternal& internal, VoronoiSite& site);

} // namespace Zvl
