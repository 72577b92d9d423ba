#include "Common/SectorOutline.h"

#include "Alignment/Degrees.h"
#include "Geometry/SectorTest.h"

#include <cmath>

namespace Zvl
{

namespace
{

// The point test compares a quotient with 1. Its rounding, and that of the crossings found here, stays below
// 20 * 2^-53 * aspect^2, which the margin exceeds up to the largest aspect that is let through.
constexpr double kQuotientMargin = 1e-9;
constexpr double kLargestAspect = 500.0;

// The fourth powers of these are numbers.
constexpr double kSmallestAxis = 1e-75;
constexpr double kLargestAxis = 1e75;

// Margin of a direction, in radians; the rounding of the test's angle is about 1e-15.
constexpr double kAngleMargin = 1e-9;

bool IsRegularCurve(double halfWidth, double halfHeight)
{
    const double shorter = std::fmin(std::fabs(halfWidth), std::fabs(halfHeight));
    const double longer = std::fmax(std::fabs(halfWidth), std::fabs(halfHeight));
    return shorter >= kSmallestAxis && longer <= kLargestAxis && longer <= shorter * kLargestAspect;
}

} // namespace

SectorOutline::SectorOutline(const AnnularSector2d<double>& sector)
{
    SetCurves(sector.outerRadius, sector.outerRadius, sector.innerRadius, sector.innerRadius, 1.0, 0.0);
    SetRays(sector.startAngle, sector.angleSpan, 1.0, 0.0);
}

SectorOutline::SectorOutline(const EllipticalSector2d<double>& sector)
{
    const double angle = EllipseFrameAngle(sector);
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    SetCurves(sector.outerWidth / 2.0, sector.outerHeight / 2.0, sector.innerWidth / 2.0, sector.innerHeight / 2.0,
              cosine, sine);
    SetRays(sector.startAngle, sector.angleSpan, cosine, sine);
}

bool SectorOutline::Locate(double dy, double reach, OutlineRanges& ranges) const
{
    if (!std::isfinite(dy))
    {
        return false;
    }
    ranges.Clear();
    LocateConic(outer, dy, ranges);
    LocateConic(inner, dy, ranges);
    if (!hasRays)
    {
        return true;
    }
    if (!(std::fabs(dy) > 4.0 * kAngleMargin * reach))
    {
        return false;
    }
    for (const Ray& ray : rays)
    {
        if (ray.crosses)
        {
            const double dx = dy * ray.slope;
            const double margin = std::fabs(dy) * ray.margin;
            ranges.Add(dx - margin, dx + margin);
        }
    }
    return true;
}

SectorOutline::Conic SectorOutline::ConicOf(double halfWidth, double halfHeight, double cosine, double sine)
{
    const double alongX = 1.0 / halfWidth;
    const double alongY = 1.0 / halfHeight;
    const double product = alongX * alongY;
    const double xx = cosine * alongX * (cosine * alongX) + sine * alongY * (sine * alongY);
    const double xy = cosine * sine * (alongY * alongY - alongX * alongX);
    return {true, xx, 1.0 / xx, -xy / xx, product * product};
}

void SectorOutline::LocateConic(const Conic& conic, double dy, OutlineRanges& ranges)
{
    if (!conic.present)
    {
        return;
    }
    const double beyond = conic.xx * (1.0 + kQuotientMargin) - dy * dy * conic.determinant;
    if (beyond < 0.0)
    {
        return;
    }
    const double within = conic.xx * (1.0 - kQuotientMargin) - dy * dy * conic.determinant;
    const double middle = conic.shift * dy;
    const double farHalf = std::sqrt(beyond) * conic.perXx;
    if (within <= 0.0)
    {
        ranges.Add(middle - farHalf, middle + farHalf);
        return;
    }
    const double nearHalf = std::sqrt(within) * conic.perXx;
    ranges.Add(middle - farHalf, middle - nearHalf);
    ranges.Add(middle + nearHalf, middle + farHalf);
}

void SectorOutline::SetCurves(double outerX, double outerY, double innerX, double innerY, double cosine, double sine)
{
    regular = IsRegularCurve(outerX, outerY);
    outer = ConicOf(outerX, outerY, cosine, sine);
    // An inner curve with an axis of zero excludes nothing: its quotient is infinite or not a number.
    if (innerX != 0.0 && innerY != 0.0)
    {
        regular = regular && IsRegularCurve(innerX, innerY);
        inner = ConicOf(innerX, innerY, cosine, sine);
    }
}

void SectorOutline::SetRays(double startAngle, double angleSpan, double cosine, double sine)
{
    const SectorAngles angles = NormalizeSectorAngles(startAngle, angleSpan);
    hasRays = !angles.whole;
    if (!hasRays)
    {
        return;
    }
    regular = regular && std::isfinite(angles.end);
    const std::array<double, 2> ends = {angles.start, angles.end};
    for (std::size_t i = 0; i < ends.size(); ++i)
    {
        const double x = std::cos(ToRadians(ends[i]));
        const double y = std::sin(ToRadians(ends[i]));
        const qPoint64f direction = {x * cosine + y * sine, y * cosine - x * sine}; // in the world
        // A ray along the rows meets only rows through the centre, of which each cell is tested.
        if (std::fabs(direction.y) >= 2.0 * kAngleMargin)
        {
            const double slope = direction.x / direction.y;
            rays[i] = {true, slope, 2.0 * kAngleMargin * (std::fabs(slope) + 1.0) / std::fabs(direction.y)};
        }
    }
}

} // namespace Zvl
