#pragma once

/** @file
 *  Points of form-tolerance measurements, and the circles that are sought, found by trying everything. */

#include "Geometry/VoronoiSupport.h"
#include "support/ExpectThrow.h"

#include <ZdkVisionLib/Common/Common.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <vector>

namespace ZoneSupport
{

using Points = std::vector<qPoint64f>;

constexpr double kNull = Zvl::GetNull<double>();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

inline double DistanceOf(const qPoint64f& a, const qPoint64f& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

inline double Nearest(const qPoint64f& center, const Points& points)
{
    double nearest = kInfinity;
    for (const qPoint64f& p : points)
    {
        nearest = std::min(nearest, DistanceOf(center, p));
    }
    return nearest;
}

inline double Farthest(const qPoint64f& center, const Points& points)
{
    double farthest = 0.0;
    for (const qPoint64f& p : points)
    {
        farthest = std::max(farthest, DistanceOf(center, p));
    }
    return farthest;
}

/** Where `a.x x + a.y y = c` and the other line cross. */
inline std::optional<qPoint64f> Crossing(const qPoint64f& a, double c, const qPoint64f& b, double d)
{
    const double determinant = a.x * b.y - a.y * b.x;
    if (std::fabs(determinant) < 1e-12)
    {
        return std::nullopt;
    }
    return qPoint64f{(c * b.y - d * a.y) / determinant, (a.x * d - b.x * c) / determinant};
}

/** The centre that is equally far from @p p and @p q, and from @p r and @p s. */
inline std::optional<qPoint64f> CenterBetween(const qPoint64f& p, const qPoint64f& q, const qPoint64f& r,
                                              const qPoint64f& s)
{
    const auto rightSide = [](const qPoint64f& a, const qPoint64f& b)
    { return (b.x * b.x + b.y * b.y - a.x * a.x - a.y * a.y) / 2.0; };
    return Crossing({q.x - p.x, q.y - p.y}, rightSide(p, q), {s.x - r.x, s.y - r.y}, rightSide(r, s));
}

/** Calls @p visit with every centre of a circle through three of the points. */
template <typename Visit>
void ForEachTriple(const Points& points, Visit visit)
{
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        for (std::size_t j = i + 1; j < points.size(); ++j)
        {
            for (std::size_t k = j + 1; k < points.size(); ++k)
            {
                if (const auto center = CenterBetween(points[i], points[j], points[i], points[k]))
                {
                    visit(*center, DistanceOf(*center, points[i]));
                }
            }
        }
    }
}

/** Radius of the smallest circle around the points. */
inline double EnclosingRadius(const Points& points)
{
    double smallest = kInfinity;
    const auto consider = [&](const qPoint64f& center, double radius)
    {
        if (radius < smallest && Farthest(center, points) <= radius * (1.0 + 1e-12))
        {
            smallest = radius;
        }
    };
    ForEachTriple(points, consider);
    for (const qPoint64f& p : points)
    {
        for (const qPoint64f& q : points)
        {
            consider({(p.x + q.x) / 2.0, (p.y + q.y) / 2.0}, DistanceOf(p, q) / 2.0);
        }
    }
    return smallest;
}

/** True when @p center lies in the convex hull: no line through it has all points strictly on one side. */
inline bool IsInHull(const qPoint64f& center, const Points& points)
{
    std::vector<double> angles;
    for (const qPoint64f& p : points)
    {
        angles.push_back(std::atan2(p.y - center.y, p.x - center.x));
    }
    std::sort(angles.begin(), angles.end());
    double widest = angles.front() + 2.0 * 3.141592653589793 - angles.back();
    for (std::size_t i = 1; i < angles.size(); ++i)
    {
        widest = std::max(widest, angles[i] - angles[i - 1]);
    }
    return widest <= 3.141592653589793;
}

/** Radius of the largest circle without a point inside whose centre is a Voronoi vertex in the hull. */
inline double InscribedRadius(const Points& points)
{
    double largest = 0.0;
    ForEachTriple(points,
                  [&](const qPoint64f& center, double radius)
                  {
                      if (radius > largest && Nearest(center, points) >= radius * (1.0 - 1e-12) &&
                          IsInHull(center, points))
                      {
                          largest = radius;
                      }
                  });
    return largest;
}

/** Width of the narrowest ring that holds all points: three points on one of its circles, or two on each. */
inline double ZoneWidth(const Points& points)
{
    double narrowest = kInfinity;
    const auto consider = [&](const qPoint64f& center)
    { narrowest = std::min(narrowest, Farthest(center, points) - Nearest(center, points)); };
    ForEachTriple(points, [&](const qPoint64f& center, double) { consider(center); });
    for (const qPoint64f& p : points)
    {
        for (const qPoint64f& q : points)
        {
            for (const qPoint64f& r : points)
            {
                for (const qPoint64f& s : points)
                {
                    if (const auto center = CenterBetween(p, q, r, s))
                    {
                        consider(*center);
                    }
                }
            }
        }
    }
    return narrowest;
}

/** A round part: radius 10 about (25, -40), lobes of 0.1 and a roughness. */
inline Points LobedRing(std::size_t count, double roughness, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> noise;
    Points points(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const double angle = 6.283185307179586 * (static_cast<double>(i) + 0.3) / static_cast<double>(count);
        const double radius = 10.0 + 0.1 * std::cos(3.0 * angle + 1.0) + roughness * noise(random);
        points[i] = {25.0 + radius * std::cos(angle), -40.0 + radius * std::sin(angle)};
    }
    return points;
}

inline Points Scattered(std::size_t count, double size, std::uint64_t seed)
{
    return VoronoiSupport::RandomSites(count, size, seed);
}

/** What the inscribed and the circumscribed circle write; filled with something else at first. */
struct Circle
{
    qPoint64f center{7.0, 7.0};
    double radius = 7.0;
    double maxDistance = 7.0;
    double minDistance = 7.0;
    Points maxDistPoints{{7.0, 7.0}};
    Points minDistPoints{{7.0, 7.0}};
    Points controlPoints{{7.0, 7.0}};
};

template <typename Fit>
void FitInto(Circle& circle, Fit fit, const Points& points)
{
    fit(points.data(), points.size(), &circle.center, &circle.radius, &circle.maxDistance, &circle.minDistance,
        &circle.maxDistPoints, &circle.minDistPoints, &circle.controlPoints);
}

template <typename Fit>
Circle FitTo(Fit fit, const Points& points)
{
    Circle circle;
    FitInto(circle, fit, points);
    return circle;
}

inline void ExpectPoints(const Points& points, const Points& expected)
{
    EXPECT_TRUE(std::equal(points.begin(), points.end(), expected.begin(), expected.end(),
                           [](const qPoint64f& a, const qPoint64f& b) { return a.x == b.x && a.y == b.y; }));
}

inline void ExpectNoNumbers(const Circle& circle)
{
    ExpectPoints({circle.center}, {{kNull, kNull}});
    EXPECT_EQ(circle.radius, kNull);
    EXPECT_EQ(circle.maxDistance, kNull);
    EXPECT_EQ(circle.minDistance, kNull);
}

inline void ExpectNothing(const Circle& circle)
{
    ExpectNoNumbers(circle);
    EXPECT_TRUE(circle.maxDistPoints.empty());
    EXPECT_TRUE(circle.minDistPoints.empty());
    EXPECT_TRUE(circle.controlPoints.empty());
}

/** Coordinates that are refused, as points among others. */
inline std::vector<Points> UnusablePoints()
{
    std::vector<Points> all;
    for (const double bad : {std::nan(""), kInfinity, -kInfinity, kNull, 1e101})
    {
        all.push_back({{0.0, 0.0}, {4.0, 1.0}, {bad, 3.0}, {1.0, 5.0}, {2.0, 2.0}});
        all.push_back({{0.0, 0.0}, {4.0, 1.0}, {3.0, bad}, {1.0, 5.0}, {2.0, 2.0}});
    }
    return all;
}

/** Lists of points that leave little or nothing to measure. */
inline std::vector<Points> DegeneratePoints()
{
    Points line;
    Points upright;
    Points grid;
    for (int i = 0; i < 12; ++i)
    {
        line.push_back({0.3 * i, 0.7 * i});
        upright.push_back({2.0, 1.0 * i});
        grid.push_back({static_cast<double>(i % 4), static_cast<double>(i / 4)});
    }
    Points twoPlaces(9, {1.0, 2.0});
    twoPlaces.resize(14, {3.0, 5.0});
    Points threePlaces = twoPlaces;
    threePlaces.resize(20, {0.0, 7.0});
    return {Points(4, {1.0, 1.0}),
            Points(1000, {-3.5, 2.25}),
            line,
            upright,
            grid,
            twoPlaces,
            threePlaces,
            {{0.0, 0.0}, {2.0, 0.0}, {2.0, 2.0}, {0.0, 2.0}},
            {{-1.0, 0.0}, {1.0, 0.0}, {0.0, 0.5}, {0.0, -0.5}},
            {{0.0, 0.0}, {1e-9, 0.0}, {0.0, 1e-9}, {1e-9, 1e-9}, {5e-10, 2e-10}},
            {{0.0, 0.0}, {1e90, 0.0}, {0.0, 1e90}, {1e90, 1e90}, {5e89, 2e89}},
            {{0.0, 0.0}, {5.0, 0.0}, {0.0, 5.0}, {0.0, 5.0}},
            {{0.0, 0.0}, {5.0, 0.0}, {0.0, 5.0}, {1.0, 1.0}, {1.0, 1.0 + 1e-15}}};
}

} // namespace ZoneSupport
