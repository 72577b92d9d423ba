#pragma once

/** @file
 *  Points, lines and the tolerance of the form-tolerance circles. */

#include "Geometry/Voronoi.h"

#include <ZdkVisionLib/Common/Common.h>

#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

namespace Zvl
{

/** Tolerance of lengths, determinants and angles alike. */
inline constexpr double kZoneEpsilon = 1.1920928955078125e-07;

inline constexpr qPoint64f kZoneNullPoint = {GetNull<double>(), GetNull<double>()};

/** A point with its distance from something, or another value to order it by. */
struct DistPoint
{
    qPoint64f point;
    double value;
};

/** A straight line. */
struct ZoneLine
{
    qPoint64f point;
    qPoint64f direction;
};

inline double Distance(const qPoint64f& a, const qPoint64f& b)
{
    const double x = a.x - b.x;
    const double y = a.y - b.y;
    return std::sqrt(x * x + y * y);
}

inline qPoint64f Middle(const qPoint64f& a, const qPoint64f& b)
{
    return {(a.x + b.x) / 2.0, (a.y + b.y) / 2.0};
}

/** The points that are equally far from @p p and @p q. Its direction is not a number when the two are one. */
inline ZoneLine Bisector(const qPoint64f& p, const qPoint64f& q)
{
    const double distance = Distance(p, q);
    return {Middle(p, q), {-(p.y - q.y) / distance, (p.x - q.x) / distance}};
}

/** Where two lines cross; nothing when they are nearly parallel. */
inline std::optional<qPoint64f> Intersection(const ZoneLine& first, const ZoneLine& second)
{
    const double determinant = first.direction.y * second.direction.x - second.direction.y * first.direction.x;
    if (std::fabs(determinant) < kZoneEpsilon)
    {
        return std::nullopt;
    }
    const double t =
        ((first.point.x - second.point.x) * first.direction.y + (second.point.y - first.point.y) * first.direction.x) /
        determinant;
    return qPoint64f{second.point.x + t * second.direction.x, second.point.y + t * second.direction.y};
}

/** True when the two are the same point but for rounding. */
inline bool IsSamePoint(const qPoint64f& a, const qPoint64f& b)
{
    return std::fabs(a.x - b.x) < kZoneEpsilon && std::fabs(a.y - b.y) < kZoneEpsilon;
}

/** True when the coordinates are numbers and not too large for products of coordinates. */
inline bool IsUsable(const qPoint64f& point)
{
    return std::fabs(point.x) <= kVoronoiLargestCoordinate && std::fabs(point.y) <= kVoronoiLargestCoordinate;
}

/** Throws #STATUS_BAD_DATA unless all points are usable. */
void RequireUsablePoints(const char* function, const qPoint64f* points, std::size_t count);

} // namespace Zvl
