#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Common/Check.h"

namespace Zvl
{

namespace
{

template <typename From, typename To>
void CopyRectangle(const From& in, To& out)
{
    out.x = in.x;
    out.y = in.y;
    out.width = in.width;
    out.height = in.height;
    out.angle = in.angle;
}

template <typename From, typename To>
void CopyAngularRangeAndCenter(const From& in, To& out)
{
    out.startAngle = in.startAngle;
    out.angleSpan = in.angleSpan;
    out.center.x = in.center.x;
    out.center.y = in.center.y;
}

template <typename From, typename To>
void CopyAnnularSector(const From& in, To& out)
{
    out.innerRadius = in.innerRadius;
    out.outerRadius = in.outerRadius;
    CopyAngularRangeAndCenter(in, out);
}

template <typename From, typename To>
void CopyEllipticalSector(const From& in, To& out)
{
    out.innerHeight = in.innerHeight;
    out.innerWidth = in.innerWidth;
    out.outerHeight = in.outerHeight;
    out.outerWidth = in.outerWidth;
    out.rotation = in.rotation;
    CopyAngularRangeAndCenter(in, out);
}

template <typename Sector>
void FlattenAlongZ(Sector& sector)
{
    sector.z = 0.0;
    sector.depth = 0.0;
    sector.center.z = 0.0;
}

} // namespace

void Rect2dTo3d(const Region2d<double>& in, Region3d<double>* out)
{
    ZVL_REQUIRE("Zvl::Rect2dTo3d", out != nullptr);
    CopyRectangle(in, *out);
    out->z = 0.0;
    out->depth = 0.0;
}

void Rect3dTo2d(const Region3d<double>& in, Region2d<double>* out)
{
    ZVL_REQUIRE("Zvl::Rect3dTo2d", out != nullptr);
    CopyRectangle(in, *out);
}

void Polygon2dTo3d(const std::vector<Point2d<double>>& in, std::vector<Point3d<double>>* out)
{
    ZVL_REQUIRE("Zvl::Polygon2dTo3d", out != nullptr);
    out->clear();
    out->reserve(in.size());
    for (const Point2d<double>& vertex : in)
    {
        out->emplace_back(vertex.x, vertex.y, 0.0);
    }
}

void Polygon3dTo2d(const std::vector<Point3d<double>>& in, std::vector<Point2d<double>>* out)
{
    ZVL_REQUIRE("Zvl::Polygon3dTo2d", out != nullptr);
    out->clear();
    out->reserve(in.size());
    for (const Point3d<double>& vertex : in)
    {
        out->emplace_back(vertex.x, vertex.y);
    }
}

void AnnularSector2dTo3d(const AnnularSector2d<double>& in, AnnularSector3d<double>* out)
{
    ZVL_REQUIRE("Zvl::AnnularSector2dTo3d", out != nullptr);
    CopyAnnularSector(in, *out);
    FlattenAlongZ(*out);
}

void AnnularSector3dTo2d(const AnnularSector3d<double>& in, AnnularSector2d<double>* out)
{
    ZVL_REQUIRE("Zvl::AnnularSector3dTo2d", out != nullptr);
    CopyAnnularSector(in, *out);
}

void EllipticalSector2dTo3d(const EllipticalSector2d<double>& in, EllipticalSector3d<double>* out)
{
    ZVL_REQUIRE("Zvl::EllipticalSector2dTo3d", out != nullptr);
    CopyEllipticalSector(in, *out);
    FlattenAlongZ(*out);
}

void EllipticalSector3dTo2d(const EllipticalSector3d<double>& in, EllipticalSector2d<double>* out)
{
    ZVL_REQUIRE("Zvl::EllipticalSector3dTo2d", out != nullptr);
    CopyEllipticalSector(in, *out);
}

} // namespace Zvl
