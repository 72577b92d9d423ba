#pragma once

/** @file
 *  Shapes: their 2-D and 3-D records, whether a point lies in a sector, the polygon of a rectangle, and the box around
 *  selected cells.
 *
 *  Unless a comment says otherwise, functions take constant time, or time linear in the vertices of a polygon. All may
 *  be called on any thread. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

/** @name Conversions
 *  Fields that both records have are copied as they are, nulls included. What only a 3-D record has becomes
 *  0, and is dropped on the way back.
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER, with the function's own name, when @p out is null
 *  @{ */

ZDK_VISION_EXPORT void Rect2dTo3d(const Region2d<double>& in, Region3d<double>* out);
ZDK_VISION_EXPORT void Rect3dTo2d(const Region3d<double>& in, Region2d<double>* out);

/** Replaces what @p out held. */
ZDK_VISION_EXPORT void Polygon2dTo3d(const std::vector<Point2d<double>>& in, std::vector<Point3d<double>>* out);

/** Replaces what @p out held. */
ZDK_VISION_EXPORT void Polygon3dTo2d(const std::vector<Point3d<double>>& in, std::vector<Point2d<double>>* out);

ZDK_VISION_EXPORT void AnnularSector2dTo3d(const AnnularSector2d<double>& in, AnnularSector3d<double>* out);
ZDK_VISION_EXPORT void AnnularSector3dTo2d(const AnnularSector3d<double>& in, AnnularSector2d<double>* out);
ZDK_VISION_EXPORT void EllipticalSector2dTo3d(const EllipticalSector2d<double>& in, EllipticalSector3d<double>* out);
ZDK_VISION_EXPORT void EllipticalSector3dTo2d(const EllipticalSector3d<double>& in, EllipticalSector2d<double>* out);

/** @} */

/** @name Point tests
 *  1 when @p point lies in @p sector, 0 when it does not; nothing is thrown. Both bounding curves and both
 *  ends of the angular range belong to the sector. Angles run from the X axis towards the Y axis; in an
 *  ellipse they are the plain angles in its own turned frame, not the ellipse's parameter.
 *
 *  A radius or axis of 0 is no bound: the quotient is infinite or not a number, which an inner curve accepts
 *  for every point and an outer curve only where it is not a number, as in the centre. Values that are not
 *  numbers fail no comparison, so that such a point counts as inside.
 *
 *  The 3-D forms also ask for `z <= point.z <= z + depth`, unless @p useZ is 0, when no Z is read.
 *  @{ */

/** In the plane. */
ZDK_VISION_EXPORT int CheckPointInAnnularSector(const AnnularSector2d<double>& sector, const qPoint64f& point);

/** In space. */
ZDK_VISION_EXPORT int CheckPointInAnnularSector(const AnnularSector3d<double>& sector, const qPoint3d64f& point,
                                                int useZ);

/** In the plane. */
ZDK_VISION_EXPORT int CheckPointInEllipticalSector(const EllipticalSector2d<double>& sector, const qPoint64f& point);

/** In space. */
ZDK_VISION_EXPORT int CheckPointInEllipticalSector(const EllipticalSector3d<double>& sector, const qPoint3d64f& point,
                                                   int useZ);

/** @} */

/** Replaces @p polygon by the closed outline of @p region: its four corners, counter-clockwise from the
 *  corner of smallest coordinates for a region of positive size, turned about the centre by the region's
 *  angle, and the first corner once more. There are always five vertices.
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p polygon is null */
ZDK_VISION_EXPORT void ExtractPolygonFromRect(const Region2d<double>& region, std::vector<Point2d<double>>* polygon);

/** The box around the selected cells of all @p slices, in the mapping of the first one. `x`, `y` and `z` are the
 *  *centre* of the box, unlike in other regions. A slice's heights are q16s and its mask q8u; a selected missing height
 *  counts as the count -32768, so that masks must not select any.
 *
 *  With @p rotated 0 the box lies along the axes, from cell edge to cell edge, and `angle` is 90. Otherwise it is the
 *  rectangle of smallest area among 900 turns, a tenth of a degree apart: every tenth of them is tried first, then
 *  those around the best. `width` is its shorter side, `height` the longer one and `angle` the direction of the longer
 *  one, above -90 up to 90 degrees. The turned box is put around convex chains of the rows' ends (monotone chains: A.
 *  M. Andrew, "Another efficient algorithm for convex hulls in two dimensions", 1979), which need rows in rising order:
 *  when a slice begins above rows of slices before it, a turned box may miss cells of theirs.
 *
 *  Later slices are moved by the whole cells between their offset and the first one's, and are taken to have its
 *  scale. Displacements and cells beyond `int` are taken as the nearest `int`. A later slice that does not fit is left
 *  out: without heights, without a mask of its rectangle's size, or with a rectangle beyond its surface.
 *
 *  A default region is the answer to no slices, a first slice that does not fit or has a null in its mapping, no
 *  selected cell, and 256 slices: the count is taken modulo 256, and just as many slices are read. A turned box whose
 *  search has no room in 64 bits (a scale of 0 in X, one that is not a number, or scales in X and Y too unequal) has
 *  nulls in `x`, `y`, `width`, `height` and `angle`.
 *
 *  One pass over the masks and the selected heights on the calling thread.
 *  @param allocator for the chains and tables, which are gone afterwards
 *  @throws Zo::Exception the platform's status when there is no memory */
ZDK_VISION_EXPORT Region3d<double> GetBoundingBox(const std::vector<SurfaceSlice>& slices, int rotated,
                                                  void* allocator);

} // namespace Zvl
