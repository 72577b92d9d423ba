#pragma once

/** @file
 *  Anchors move a shape by a displacement that was found at run time: a turn about Z, then a shift. The moved
 *  shape is written to an output, which may be the input.
 *
 *  Two rules hold, and they differ in what a null field of the anchor does:
 *  - *Points* (point sets, polygons) are turned about the Z axis through the origin and shifted; a null field
 *    counts as 0.
 *  - *Shapes with a position* (rectangles, sectors) keep their size. Their centre is turned about the origin
 *    and shifted only when the anchor's x and y are both there; when one of them is null, only the shift that
 *    is there is applied. The shape's own angle is turned whenever the anchor has an angle and the shape's
 *    angle is no null.
 *
 *  An anchor of nulls leaves every shape as it was. Fields of a shape are not looked at for nulls, except for
 *  its angle. Time is linear in the points of a shape.
 *
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER, with the name of the function called, when an input or output
 *         pointer is null; nothing is written then */

#include <ZdkVisionLib/Common/Common.h>

#include <cstddef>
#include <vector>

namespace Zvl
{

/** Moves an array of @p count points; the pointers may be null when there are none. */
ZDK_VISION_EXPORT void AnchorPointSetRegion(Anchor anchor, const qPoint3d64f* in, std::size_t count, qPoint3d64f* out);

/** The same for the other record of a point. */
ZDK_VISION_EXPORT void AnchorPointSetRegion(Anchor anchor, const Point3d<double>* in, std::size_t count,
                                            Point3d<double>* out);

/** Moves a #qArrayList of qPoint3d64f.
 *  @param in address of the list's handle
 *  @param out address of the handle of the list to fill. What that list held is removed before the input is
 *         looked at, so that an input list given as output ends empty. A null handle is replaced by a new
 *         list, except when there is no point, and stays null when this throws
 *  @param allocator of the new list
 *  @throws Zo::Exception #STATUS_BAD_PARAMETER when a pointer or the input handle is null, when a handle is
 *         no live list, or when a list holds other items than qPoint3d64f (an output list of other items is
 *         empty then, and is not looked at when there is no point); a platform status when a list cannot
 *         grow */
ZDK_VISION_EXPORT void AnchorPointSetRegion(const Anchor& anchor, void* const* in, void** out, void* allocator);

/** Moves a region by the rule for shapes; @p anchor's z, if any, is added to its `z`. */
ZDK_VISION_EXPORT void AnchorSurfaceRegion(const Anchor& anchor, const Region3d<double>* in, Region3d<double>* out);

/** Moves a rectangle by the rule for shapes. */
ZDK_VISION_EXPORT void AnchorRectangle(const Anchor& anchor, const Region2d<double>& in, Region2d<double>* out);

/** As AnchorSurfaceRegion(). */
ZDK_VISION_EXPORT void AnchorRectangle(const Anchor& anchor, const Region3d<double>& in, Region3d<double>* out);

/** Moves the vertices by the rule for points. A polygon without vertices leaves @p out as it was. */
ZDK_VISION_EXPORT void AnchorPolygon(const Anchor& anchor, const std::vector<Point2d<double>>& in,
                                     std::vector<Point2d<double>>* out);

/** The same in space; the anchor's z is added to each vertex. */
ZDK_VISION_EXPORT void AnchorPolygon(const Anchor& anchor, const std::vector<Point3d<double>>& in,
                                     std::vector<Point3d<double>>* out);

/** Moves the centre by the rule for shapes and adds the anchor's angle, if any, to the start angle. */
ZDK_VISION_EXPORT void AnchorAnnularSector(const Anchor& anchor, const AnnularSector2d<double>& in,
                                           AnnularSector2d<double>* out);

/** As in 2-D; the anchor's z moves `center.z` only, not the sector's range along Z. */
ZDK_VISION_EXPORT void AnchorAnnularSector(const Anchor& anchor, const AnnularSector3d<double>& in,
                                           AnnularSector3d<double>* out);

/** Moves the centre by the rule for shapes and turns the ellipse's rotation; the sector's angles, which are
 *  in the ellipse's frame, turn with it and are not changed. */
ZDK_VISION_EXPORT void AnchorEllipticalSector(const Anchor& anchor, const EllipticalSector2d<double>& in,
                                              EllipticalSector2d<double>* out);

/** As in 2-D; the anchor's z moves `center.z` only, not the sector's range along Z. */
ZDK_VISION_EXPORT void AnchorEllipticalSector(const Anchor& anchor, const EllipticalSector3d<double>& in,
                                              EllipticalSector3d<double>* out);

} // namespace Zvl
