#pragma once

/** @file
 *  The sector tests, split into what depends on the sector alone and what is left to do for each point.
 *  Regions prepare a sector once and test every cell; the results are the same bits as those of a single
 *  test.
 *
 *  All comparisons look for a point outside, so that a quotient or an angle that is not a number excludes
 *  nothing. Squares are plain products: a power function may round otherwise. */

#include "Alignment/Degrees.h"
#include <ZdkVisionLib/Common/Common.h>

#include <cmath>

namespace Zvl
{

/** The angular range of a sector: from `start`, in [0, 360], up to `end`, at most 720. */
struct SectorAngles
{
    double start;
    double end;
    bool whole; ///< every angle belongs to the sector
};

inline SectorAngles NormalizeSectorAngles(double startAngle, double angleSpan)
{
    const bool whole = std::fabs(angleSpan) >= 360.0;
    if (angleSpan < 0.0)
    {
        startAngle += angleSpan;
        angleSpan = -angleSpan;
    }
    startAngle = std::fmod(startAngle, 360.0);
    if (startAngle < 0.0)
    {
        startAngle += 360.0;
    }
    return {startAngle, startAngle + angleSpan, whole};
}

/** True when the direction (@p x, @p y) belongs to the range, ends included. */
inline bool AngleIsInSector(const SectorAngles& angles, double y, double x)
{
    if (angles.whole)
    {
        return true;
    }
    double angle = ToDegrees(std::atan2(y, x));
    if (angle < 0.0)
    {
        angle += 360.0;
    }
    const bool outside = angles.end <= 360.0 ? angle < angles.start || angle > angles.end
                                             : angle < angles.start && angle > angles.end - 360.0;
    return !outside;
}

inline bool AngleIsInSector(double y, double x, double startAngle, double angleSpan)
{
    return AngleIsInSector(NormalizeSectorAngles(startAngle, angleSpan), y, x);
}

/** A range of angles that many directions are tested against. Most lie clearly left or right of both ends, which the cross
 *  products with them tell; only those in doubt are measured. */
class SectorDirections
{
public:
    explicit SectorDirections(const SectorAngles& range)
        : angles(range),
          isWide(range.end - range.start > 180.0),
          start(DirectionOf(range.start)),
          end(DirectionOf(range.end))
    {
    }

    /** As AngleIsInSector(). */
    bool Contain(double y, double x) const
    {
        if (angles.whole)
        {
            return true;
        }
        const double fromStart = start.x * y - start.y * x; // the sine of the angle between, times the length
        const double toEnd = x * end.y - y * end.x;
        const double margin = kMargin * (std::fabs(x) + std::fabs(y));
        if (std::fabs(fromStart) > margin && std::fabs(toEnd) > margin && margin > kSmallest)
        {
            return isWide ? fromStart > 0.0 || toEnd > 0.0 : fromStart > 0.0 && toEnd > 0.0;
        }
        return AngleIsInSector(angles, y, x);
    }

private:
    // In radians; what rounding adds to an angle or a cross product stays below 1e-12.
    static constexpr double kMargin = 1e-9;
    static constexpr double kSmallest = 1e-200; // far from numbers that lose digits

    static qPoint64f DirectionOf(double angle) { return {std::cos(ToRadians(angle)), std::sin(ToRadians(angle))}; }

    SectorAngles angles;
    bool isWide;
    qPoint64f start;
    qPoint64f end;
};

inline bool AngleIsInSector(const SectorDirections& directions, double y, double x)
{
    return directions.Contain(y, x);
}

/** @param angles of @p sector, as SectorAngles or SectorDirections */
template <typename Angles>
inline bool PointIsInAnnularSector(const AnnularSector2d<double>& sector, const Angles& angles, double x, double y)
{
    const double dx = x - sector.center.x;
    const double dy = y - sector.center.y;
    const double squaredDistance = dx * dx + dy * dy;
    // The rule compares the quotients of the squares with 1. A quotient of two numbers is rounded to 1 only if they are
    // equal: neighbours differ by more than half of the last place of 1. Zeros, infinities and what is not a number exclude
    // the same points, too.
    if (squaredDistance < sector.innerRadius * sector.innerRadius ||
        squaredDistance > sector.outerRadius * sector.outerRadius)
    {
        return false;
    }
    return AngleIsInSector(angles, dy, dx);
}

/** The angle that turns world directions into the frame of an ellipse, in radians. */
inline double EllipseFrameAngle(const EllipticalSector2d<double>& sector)
{
    return ToRadians(-sector.rotation);
}

/** @param angles of @p sector, as SectorAngles or SectorDirections
 *  @param cosine of EllipseFrameAngle()
 *  @param sine of EllipseFrameAngle() */
template <typename Angles>
inline bool PointIsInEllipticalSector(const EllipticalSector2d<double>& sector, const Angles& angles, double cosine,
                                      double sine, double x, double y)
{
    const double dx = x - sector.center.x;
    const double dy = y - sector.center.y;
    const double localX = dx * cosine - dy * sine;
    const double localY = dx * sine + dy * cosine;
    const double squaredX = localX * localX;
    const double squaredY = localY * localY;
    const double innerX = sector.innerWidth / 2.0;
    const double innerY = sector.innerHeight / 2.0;
    const double outerX = sector.outerWidth / 2.0;
    const double outerY = sector.outerHeight / 2.0;
    const double inner = squaredX / (innerX * innerX) + squaredY / (innerY * innerY);
    const double outer = squaredX / (outerX * outerX) + squaredY / (outerY * outerY);
    if (inner < 1.0 || outer > 1.0)
    {
        return false;
    }
    return AngleIsInSector(angles, localY, localX);
}

} // namespace Zvl
