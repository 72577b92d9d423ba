#include "compose_regions/PartDrawing.h"

#include <algorithm>
#include <cmath>

namespace ComposeRegions
{
namespace
{

constexpr double kPi = 3.141592653589793;

double Distance(const qPoint64f& a, const qPoint64f& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

/** A place as seen from @p center, along axes that are turned by @p degrees. */
qPoint64f Seen(const qPoint64f& place, const qPoint64f& center, double degrees)
{
    const double angle = degrees * kPi / 180.0;
    const double x = place.x - center.x;
    const double y = place.y - center.y;
    return {x * std::cos(angle) + y * std::sin(angle), y * std::cos(angle) - x * std::sin(angle)};
}

bool IsInEllipse(const qPoint64f& seen, double width, double height)
{
    return std::hypot(seen.x / (width / 2.0), seen.y / (height / 2.0)) <= 1.0;
}

bool IsInRectangle(const Zvl::Region2d<double>& rectangle, const qPoint64f& place)
{
    const qPoint64f center{rectangle.x + rectangle.width / 2.0, rectangle.y + rectangle.height / 2.0};
    const qPoint64f seen = Seen(place, center, rectangle.angle);
    return std::abs(seen.x) <= rectangle.width / 2.0 && std::abs(seen.y) <= rectangle.height / 2.0;
}

bool IsInRing(const Zvl::AnnularSector2d<double>& ring, const qPoint64f& place)
{
    const double away = Distance(place, ring.center);
    return away >= ring.innerRadius && away <= ring.outerRadius;
}

bool IsInEllipticalRing(const Zvl::EllipticalSector2d<double>& ring, const qPoint64f& place)
{
    const qPoint64f seen = Seen(place, ring.center, ring.rotation);
    return IsInEllipse(seen, ring.outerWidth, ring.outerHeight) &&
           !IsInEllipse(seen, ring.innerWidth, ring.innerHeight);
}

Zvl::Region2d<double> Narrowed(const Zvl::Region2d<double>& shape, double margin)
{
    return {shape.x + margin, shape.y + margin, shape.width - 2.0 * margin, shape.height - 2.0 * margin, shape.angle};
}

} // namespace

Zvl::AnnularSector2d<double> PartDrawing::Ring(double margin) const
{
    return {3.5 + margin, 6.0 - margin, 0.0, 360.0, {14.0, 11.0}};
}

Zvl::EllipticalSector2d<double> PartDrawing::Ellipse(double margin) const
{
    const double wider = 2.0 * margin;
    return {5.0 + wider, 11.0 + wider, 10.0 - wider, 16.0 - wider, 0.0, 360.0, 12.0, {43.0, 12.0}};
}

Zvl::Region2d<double> PartDrawing::Channel(double margin) const
{
    return Narrowed({18.5, 9.8, 18.0, 3.0, 0.0}, margin);
}

Zvl::Region2d<double> PartDrawing::Pad(double margin) const
{
    return Narrowed({24.0, 2.5, 9.0, 3.5, 20.0}, margin);
}

bool PartDrawing::IsOnSeal(const qPoint64f& place, double margin) const
{
    return IsInRing(Ring(margin), place) || IsInEllipticalRing(Ellipse(margin), place) ||
           IsInRectangle(Channel(margin), place) || IsInRectangle(Pad(margin), place);
}

bool PartDrawing::IsInPort(const qPoint64f& place) const
{
    const Zvl::EllipticalSector2d<double> ellipse = Ellipse(0.0);
    return Distance(place, Ring(0.0).center) < 3.0 ||
           IsInEllipse(Seen(place, ellipse.center, ellipse.rotation), 10.0, 4.0);
}

bool PartDrawing::IsInHole(const qPoint64f& place) const
{
    return std::any_of(holes.begin(), holes.end(),
                       [&](const qPoint64f& hole) { return Distance(place, hole) < holeRadius; });
}

bool PartDrawing::IsOnPlate(const qPoint64f& place) const
{
    return place.x >= 0.0 && place.x <= width && place.y >= 0.0 && place.y <= height;
}

double PartDrawing::SealArea(double margin) const
{
    constexpr double kStep = 0.02;
    long inside = 0;
    for (int row = 0; row < static_cast<int>(height / kStep); ++row)
    {
        for (int column = 0; column < static_cast<int>(width / kStep); ++column)
        {
            inside += IsOnSeal({(column + 0.5) * kStep, (row + 0.5) * kStep}, margin) ? 1 : 0;
        }
    }
    return static_cast<double>(inside) * kStep * kStep;
}

} // namespace ComposeRegions
