#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <vector>

namespace Examples
{

/** A step of one cell, along a row or a column, from a clear cell of a mask onto a set one. */
struct EdgeStep
{
    int column; ///< of the set cell
    int row;
    int columnStep; ///< from the clear cell
    int rowStep;
};

/** The steps onto the mask of a ring, in cells of the surface, seen from its middle. Rows are followed to both sides in
 *  the quarters to the left and right, columns in those above and below, so that no edge is met at a grazing angle. */
std::vector<EdgeStep> FindInnerEdge(Zvl::ROI& ring, const Zvl::Surface& surface);

/** The world point on a step at the given @p share of the way from the set cell back to the clear one. */
qPoint64f PointOn(const Zvl::Surface& surface, const EdgeStep& step, double share);

} // namespace Examples
