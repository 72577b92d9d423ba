#include "Common/PolygonTests.h"

#include "Alignment/Degrees.h"

#include <algorithm>
#include <cmath>

namespace Zvl
{

namespace
{

/** True when @p x is on the ray's side: right of its origin, which a crossing that is not a number never is. */
bool IsRightOf(double x, double origin)
{
    return x - origin > kGeometricTolerance;
}

bool IsDistinct(double x, const std::vector<double>& crossings)
{
    return std::none_of(crossings.begin(), crossings.end(),
                        [x](double other) { return std::fabs(x - other) < kGeometricTolerance; });
}

bool HitsVertex(const Point2d<double>& crossing, const std::vector<Point2d<double>>& points)
{
    return std::any_of(points.begin(), points.end(),
                       [&crossing](const Point2d<double>& vertex)
                       { return DistanceBetween(crossing, vertex) < kGeometricTolerance; });
}

} // namespace

HorizontalCrossing::HorizontalCrossing(const Point2d<double>& a, const Point2d<double>& b)
    : start(a),
      slope((a.x - b.x) / (a.y - b.y)),
      above(std::min(a.y, b.y) - kGeometricTolerance),
      below(std::max(a.y, b.y) + kGeometricTolerance),
      horizontal(std::fabs(a.y - b.y) < kGeometricTolerance)
{
}

int IntersectHorizontalRay(const Point2d<double>& origin, const Point2d<double>& a, const Point2d<double>& b,
                           Point2d<double>* out)
{
    const HorizontalCrossing edge(a, b);
    if (!edge.Reaches(origin.y))
    {
        return 0;
    }
    const double x = edge.At(origin.y);
    if (!IsRightOf(x, origin.x))
    {
        return 0;
    }
    *out = {x, origin.y};
    return 1;
}

void CollectIntersectXs(const Point2d<double>& origin, const std::vector<Point2d<double>>& points,
                        std::vector<double>* out, int sort)
{
    out->clear();
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
    {
        Point2d<double> crossing;
        if (IntersectHorizontalRay(origin, points[i], points[i + 1], &crossing) == 0)
        {
            continue;
        }
        if (sort != 0)
        {
            InsertDistinct(crossing.x, *out);
        }
        else if (IsDistinct(crossing.x, *out))
        {
            out->push_back(crossing.x);
        }
    }
}

int IntersectRaySegment(const Line& line, const Point2d<double>& a, const Point2d<double>& b, Point2d<double>* out)
{
    const Point2d<double> along(b.x - a.x, b.y - a.y);
    const double length = std::sqrt(along.x * along.x + along.y * along.y);
    if (length < kGeometricTolerance)
    {
        return 0;
    }
    const Point2d<double> dirSeg01(along.x / length, along.y / length);
    const double determinant = line.direction.x * dirSeg01.y - line.direction.y * dirSeg01.x;
    if (std::fabs(determinant) < kGeometricTolerance)
    {
        const double apart = (a.x - line.origin.x) * line.direction.y - (a.y - line.origin.y) * line.direction.x;
        if (std::fabs(apart) < kGeometricTolerance)
        {
            *out = a;
            return 1;
        }
        return 0;
    }
    const double t =
        (a.x * dirSeg01.y + line.origin.y * dirSeg01.x - a.y * dirSeg01.x - line.origin.x * dirSeg01.y) / determinant;
    const double s = std::fabs(dirSeg01.y) < kGeometricTolerance
                         ? (line.origin.x + t * line.direction.x - a.x) / dirSeg01.x
                         : (line.origin.y + t * line.direction.y - a.y) / dirSeg01.y;
    if (t >= -kGeometricTolerance && s >= -kGeometricTolerance && length - kGeometricTolerance >= s)
    {
        *out = {line.origin.x + t * line.direction.x, line.origin.y + t * line.direction.y};
        return 1;
    }
    return 0;
}

void CollectIntersectPoints(const Line& line, const std::vector<Point2d<double>>& points,
                            std::vector<Point2d<double>>* out)
{
    out->clear();
    if (points.size() < 4)
    {
        return;
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
    {
        Point2d<double> crossing;
        if (IntersectRaySegment(line, points[i], points[i + 1], &crossing) != 0)
        {
            out->push_back(crossing);
        }
    }
}

int IsPointOnSegment(const Point2d<double>& p, const Point2d<double>& a, const Point2d<double>& b)
{
    const bool inBounds =
        p.y > std::min(a.y, b.y) - kGeometricTolerance && std::max(a.y, b.y) + kGeometricTolerance > p.y &&
        p.x > std::min(a.x, b.x) - kGeometricTolerance && std::max(a.x, b.x) + kGeometricTolerance > p.x;
    if (!inBounds)
    {
        return 0;
    }
    const double cross = (b.y - a.y) * (p.x - a.x) - (p.y - a.y) * (b.x - a.x);
    return std::fabs(cross) < kGeometricTolerance ? 1 : 0;
}

int IsPointInPolygon(const Point2d<double>& p, const std::vector<Point2d<double>>& points, Intersections& intersections)
{
    if (points.size() < 3)
    {
        return 0;
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
    {
        if (IsPointOnSegment(p, points[i], points[i + 1]) != 0)
        {
            return 1;
        }
    }
    std::vector<double>& intersectXs = intersections.xs;
    CollectIntersectXs(p, points, &intersectXs, 1);
    const bool rayHitsVertex = std::any_of(intersectXs.begin(), intersectXs.end(),
                                           [&](double x) {
                                               return HitsVertex({x, p.y}, points);
                                           });
    if (!rayHitsVertex)
    {
        return static_cast<int>(intersectXs.size() % 2);
    }
    std::vector<Point2d<double>>& intersectPoints = intersections.points;
    for (int n = 1; n <= 35; ++n)
    {
        const double angle = n * kPi / 18;
        CollectIntersectPoints({p, {std::cos(angle), std::sin(angle)}}, points, &intersectPoints);
        const bool hitsVertex =
            std::any_of(intersectPoints.begin(), intersectPoints.end(),
                        [&](const Point2d<double>& crossing) { return HitsVertex(crossing, points); });
        if (!hitsVertex)
        {
            return static_cast<int>(intersectPoints.size() % 2);
        }
    }
    return 0;
}

double DistanceBetween(const Point2d<double>& a, const Point2d<double>& b)
{
    const double dx = a.x - b.x;
    const double dy = a.y - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

} // namespace Zvl
