#include <ZdkVisionLib/Alignment/Anchor.h>

#include "Alignment/Degrees.h"
#include "Common/Check.h"

#include <cmath>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();

void AddUnlessNull(double& coordinate, double shift)
{
    if (shift != kNull)
    {
        coordinate += shift;
    }
}

/** Turns the centre about the origin and shifts it; the size stays. */
template <typename Region>
void MoveCenter(const Anchor& anchor, Region& region)
{
    const double angle = ToRadians(anchor.angle);
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    const double x = region.x + region.width / 2;
    const double y = region.y + region.height / 2;
    region.x = x * cosine - y * sine + anchor.x - region.width / 2;
    region.y = x * sine + y * cosine + anchor.y - region.height / 2;
}

/** Moves the fields that regions of the plane and of space share. */
template <typename Region>
void MoveInPlane(const Anchor& anchor, Region& region)
{
    if (anchor.angle == kNull || anchor.x == kNull || anchor.y == kNull)
    {
        AddUnlessNull(region.x, anchor.x);
        AddUnlessNull(region.y, anchor.y);
    }
    else
    {
        MoveCenter(anchor, region);
    }
    if (anchor.angle != kNull && region.angle != kNull)
    {
        region.angle += anchor.angle;
    }
}

Region3d<double> MovedRegion(const Anchor& anchor, Region3d<double> region)
{
    MoveInPlane(anchor, region);
    AddUnlessNull(region.z, anchor.z);
    return region;
}

/** A region without size at @p center, turned by @p angle, after the move. */
Region2d<double> MovedCenter(const Anchor& anchor, const qPoint64f& center, double angle)
{
    Region2d<double> region = {center.x, center.y, 0.0, 0.0, angle};
    MoveInPlane(anchor, region);
    return region;
}

Region3d<double> MovedCenter(const Anchor& anchor, const qPoint3d64f& center, double angle)
{
    return MovedRegion(anchor, {center.x, center.y, 0.0, 0.0, angle, center.z, 0.0});
}

void AssignCenter(const Region2d<double>& moved, qPoint64f& center)
{
    center = {moved.x, moved.y};
}

void AssignCenter(const Region3d<double>& moved, qPoint3d64f& center)
{
    center = {moved.x, moved.y, moved.z};
}

template <typename Sector>
void MoveAnnularSector(const Anchor& anchor, const Sector& in, Sector* out)
{
    ZVL_REQUIRE("Zvl::AnchorAnnularSector", out != nullptr);
    const auto moved = MovedCenter(anchor, in.center, 0.0);
    *out = in;
    AssignCenter(moved, out->center);
    out->startAngle += moved.angle;
}

template <typename Sector>
void MoveEllipticalSector(const Anchor& anchor, const Sector& in, Sector* out)
{
    ZVL_REQUIRE("Zvl::AnchorEllipticalSector", out != nullptr);
    const auto moved = MovedCenter(anchor, in.center, in.rotation);
    *out = in;
    AssignCenter(moved, out->center);
    out->rotation = moved.angle;
}

} // namespace

void AnchorSurfaceRegion(const Anchor& anchor, const Region3d<double>* in, Region3d<double>* out)
{
    ZVL_REQUIRE("Zvl::AnchorSurfaceRegion", in != nullptr && out != nullptr);
    *out = MovedRegion(anchor, *in);
}

void AnchorRectangle(const Anchor& anchor, const Region2d<double>& in, Region2d<double>* out)
{
    ZVL_REQUIRE("Zvl::AnchorRectangle", out != nullptr);
    Region2d<double> moved = in;
    MoveInPlane(anchor, moved);
    *out = moved;
}

void AnchorRectangle(const Anchor& anchor, const Region3d<double>& in, Region3d<double>* out)
{
    ZVL_REQUIRE("Zvl::AnchorRectangle", out != nullptr);
    *out = MovedRegion(anchor, in);
}

void AnchorAnnularSector(const Anchor& anchor, const AnnularSector2d<double>& in, AnnularSector2d<double>* out)
{
    MoveAnnularSector(anchor, in, out);
}

void AnchorAnnularSector(const Anchor& anchor, const AnnularSector3d<double>& in, AnnularSector3d<double>* out)
{
    MoveAnnularSector(anchor, in, out);
}

void AnchorEllipticalSector(const Anchor& anchor, const EllipticalSector2d<double>& in, EllipticalSector2d<double>* out)
{
    MoveEllipticalSector(anchor, in, out);
}

void AnchorEllipticalSector(const Anchor& anchor, const EllipticalSector3d<double>& in, EllipticalSector3d<double>* out)
{
    MoveEllipticalSector(anchor, in, out);
}

} // namespace Zvl
