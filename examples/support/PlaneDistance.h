#pragma once

#include <ZdkVisionLib/platform/qApi.h>

namespace Examples
{

/** Signed distance of a point from a plane of unit normal; above the plane it is positive. */
inline double PlaneDistance(const qPlane3d64f& plane, const qPoint3d64f& point)
{
    return plane.normal.x * (point.x - plane.point.x) + plane.normal.y * (point.y - plane.point.y) +
           plane.normal.z * (point.z - plane.point.z);
}

/** Height of the plane over a place. */
inline double PlaneHeight(const qPlane3d64f& plane, double x, double y)
{
    return plane.point.z -
           (plane.normal.x * (x - plane.point.x) + plane.normal.y * (y - plane.point.y)) / plane.normal.z;
}

} // namespace Examples
