#pragma once

/** @file
 *  Ray and segment tests under the scan conversion of polygons. Distances are in world units; positions that differ by
 *  less than the single-precision epsilon are the same. A polygon is a list of vertices whose last repeats its first.
 *  Coordinates that are not numbers fail every test. */

#include <ZdkVisionLib/Common/Common.h>

#include <cmath>
#include <vector>

namespace Zvl
{

/** The tolerance of all geometric comparisons: 2 to the power -23. */
constexpr double kGeometricTolerance = 1.1920928955078125e-07;

/** A ray: origin and unit direction. */
struct Line
{
    Point2d<double> origin;
    Point2d<double> direction;
};

/** An edge of a polygon, prepared for crossings with many horizontal rays. */
struct HorizontalCrossing
{
    HorizontalCrossing(const Point2d<double>& a, const Point2d<double>& b);

    /** True when a ray at height @p y can cross: the edge is not horizontal and @p y lies within its ends, both
     *  included with tolerance. */
    bool Reaches(double y) const { return !horizontal && y > above && below > y; }

    /** Where the edge's line meets height @p y. */
    double At(double y) const { return slope * (y - start.y) + start.x; }

    Point2d<double> start;
    double slope;
    double above; ///< heights must be greater
    double below; ///< heights must be less
    bool horizontal;
};

/** 1 when the ray to the right of @p origin crosses the segment, with the crossing in @p out; otherwise 0. Both ends
 *  count, and horizontal segments never cross. */
int IntersectHorizontalRay(const Point2d<double>& origin, const Point2d<double>& a, const Point2d<double>& b,
                           Point2d<double>* out);

/** Adds @p x to the ascending list @p crossings, unless an entry differs by less than the tolerance. Only the neighbours
 *  have to be looked at: the entries themselves are distinct. */
inline void InsertDistinct(double x, std::vector<double>& crossings)
{
    std::size_t place = crossings.size();
    while (place > 0 && crossings[place - 1] > x)
    {
        --place;
    }
    const bool nearNext = place < crossings.size() && std::fabs(x - crossings[place]) < kGeometricTolerance;
    const bool nearPrevious = place > 0 && std::fabs(x - crossings[place - 1]) < kGeometricTolerance;
    if (!nearNext && !nearPrevious)
    {
        crossings.insert(crossings.begin() + static_cast<std::ptrdiff_t>(place), x);
    }
}

/** Fills @p out with the distinct crossings of the ray to the right of @p origin: two edges that meet in a vertex give
 *  one. In the order of the edges, or ascending when @p sort is not 0. */
void CollectIntersectXs(const Point2d<double>& origin, const std::vector<Point2d<double>>& points,
                        std::vector<double>* out, int sort);

/** 1 when @p line crosses the segment, with the crossing in @p out; otherwise 0. The segment's start counts, its end
 *  does not; a collinear segment is crossed at its start. */
int IntersectRaySegment(const Line& line, const Point2d<double>& a, const Point2d<double>& b, Point2d<double>* out);

/** Fills @p out with all crossings of @p line, in the order of the edges; needs four entries at least. */
void CollectIntersectPoints(const Line& line, const std::vector<Point2d<double>>& points,
                            std::vector<Point2d<double>>* out);

/** 1 when @p p lies on the segment. The cross product is that of the unnormalised segment, so the tolerance in distance
 *  is tighter for long edges. */
int IsPointOnSegment(const Point2d<double>& p, const Point2d<double>& a, const Point2d<double>& b);

/** Lists that keep their memory from one test to the next. */
struct Intersections
{
    std::vector<double> xs;
    std::vector<Point2d<double>> points;
};

/** 1 when @p p is inside the polygon or on its boundary. A ray that hits a vertex cannot be trusted: the horizontal ray
 *  gives way to oblique ones in steps of 10 degrees until one misses every vertex; if none does, the result is 0. */
int IsPointInPolygon(const Point2d<double>& p, const std::vector<Point2d<double>>& points,
                     Intersections& intersections);

/** Euclidean distance, as all vertex searches measure it. */
double DistanceBetween(const Point2d<double>& a, const Point2d<double>& b);

} // namespace Zvl
