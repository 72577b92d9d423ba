#pragma once

/** @file
 *  Inputs and oracle of the line tests. */

#include "support/Surfaces.h"

#include <ZdkVisionLib/Fitting/Fit.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace LineSupport
{

using Points = std::vector<qPoint64f>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/** A line that no fit has touched yet. */
struct LineResult
{
    double slope = 7.0;
    double intercept = 7.0;
};

inline void ExpectLine(const LineResult& line, double slope, double intercept)
{
    EXPECT_EQ(line.slope, slope);
    EXPECT_EQ(line.intercept, intercept);
}

inline void ExpectNear(const LineResult& line, double slope, double intercept, double tolerance)
{
    EXPECT_NEAR(line.slope, slope, tolerance);
    EXPECT_NEAR(line.intercept, intercept, tolerance);
}

inline void ExpectNull(const LineResult& line)
{
    ExpectLine(line, TestSupport::kNull, TestSupport::kNull);
}

/** Equal as values, or both not a number. */
inline bool SameValue(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

inline LineResult FitLine(const Points& points, const std::vector<int>& excluded = {})
{
    LineResult line;
    Zvl::FitLine(points.data(), excluded.empty() ? nullptr : excluded.data(), points.size(), &line.slope,
                 &line.intercept);
    return line;
}

/** Points near a line, at random places along x from -50 to 50. */
inline Points NoisyLine(std::size_t count, double slope, double intercept, double noise, std::mt19937_64& random)
{
    std::uniform_real_distribution<double> along(-50.0, 50.0);
    std::normal_distribution<double> deviation;
    Points points(count);
    for (qPoint64f& point : points)
    {
        const double x = along(random);
        point = {x, slope * x + intercept + noise * deviation(random)};
    }
    return points;
}

/** The same points with x and y exchanged. */
inline Points Transposed(Points points)
{
    for (qPoint64f& point : points)
    {
        std::swap(point.x, point.y);
    }
    return points;
}

} // namespace LineSupport
