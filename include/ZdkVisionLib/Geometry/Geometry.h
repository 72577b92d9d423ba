#pragma once

/** @file
 *  Shapes: their 2-D and 3-D records, whether a point lies in a sector, and the polygon of a rectangle.
 *
 *  All functions take constant time, or time linear in the vertices of a polygon, and may be called on any
 *  thread. */

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

ZDK_VISION_EXPORT int CheckPointInAnnularSector(const AnnularSector2d<double>& sector, const qPoint64f& point);
ZDK_VISION_EXPORT int CheckPointInAnnularSector(const AnnularSector3d<double>& sector, const qPoint3d64f& point,
                                                int useZ);
ZDK_VISION_EXPORT int CheckPointInEllipticalSector(const EllipticalSector2d<double>& sector, const qPoint64f& point);
ZDK_VISION_EXPORT int CheckPointInEllipticalSector(const EllipticalSector3d<double>& sector, const qPoint3d64f& point,
                                                   int useZ);

/** @} */

/** Replaces @p polygon by the closed outline of @p region: its four corners, counter-clockwise from the
 *  corner of smallest coordinates for a region of positive size, turned about the centre by the region's
 *  angle, and the first corner once more. There are always five vertices.
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p polygon is null */
ZDK_VISION_EXPORT void ExtractPolygonFromRect(const Region2d<double>& region, std::vector<Point2d<double>>* polygon);

} // namespace Zvl
