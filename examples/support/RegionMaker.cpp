#include "support/RegionMaker.h"

namespace Examples
{

RegionMaker::RegionMaker(const Zvl::Surface& surface)
    : scale{surface.scale.x, surface.scale.y}, offset{surface.offset.x, surface.offset.y}
{
    Zvl::RetrieveSurfaceInputData(surface, &frame);
}

std::shared_ptr<Zvl::ROI> RegionMaker::Ring(const Zvl::AnnularSector2d<double>& shape) const
{
    return std::make_shared<Zvl::CircleROI>(shape, frame.width, frame.height, scale, offset, nullptr);
}

std::shared_ptr<Zvl::ROI> RegionMaker::Ellipse(const Zvl::EllipticalSector2d<double>& shape) const
{
    return std::make_shared<Zvl::EllipseROI>(shape, frame.width, frame.height, scale, offset, nullptr);
}

std::shared_ptr<Zvl::ROI> RegionMaker::Rectangle(const Zvl::Region2d<double>& shape) const
{
    return std::make_shared<Zvl::RectangleROI>(shape, frame.width, frame.height, scale, offset, nullptr);
}

std::shared_ptr<Zvl::ROI> RegionMaker::Polygon(const std::vector<qPoint64f>& corners) const
{
    return std::make_shared<Zvl::PolygonROI>(corners.data(), corners.size(), frame.width, frame.height, scale, offset,
                                             nullptr);
}

std::shared_ptr<Zvl::ROI> RegionMaker::Reference(const Zvl::Surface& reference) const
{
    return std::make_shared<Zvl::SurfaceROI>(reference, frame.width, frame.height, scale, offset, nullptr);
}

std::shared_ptr<Zvl::ROI> RegionMaker::Whole() const
{
    return Rectangle({offset.x, offset.y, static_cast<double>(frame.width - 1) * scale.x,
                      static_cast<double>(frame.height - 1) * scale.y, 0.0});
}

qPlane3d64f PlaneThrough(const Zvl::Surface& surface)
{
    const auto whole = RegionMaker(surface).Whole();
    Zvl::ThresholdHeight(surface, Zvl::GetNull<double>(), Zvl::GetNull<double>(), *whole);
    qPlane3d64f plane{};
    Zvl::FitPlane(surface, whole->GetBoundingBox(), whole->GetMask(), &plane);
    const bool isSound = plane.normal.x != Zvl::GetNull<double>() && plane.normal.z > 0.0;
    return isSound ? plane : qPlane3d64f{{surface.offset.x, surface.offset.y, surface.offset.z}, {0.0, 0.0, 1.0}};
}

} // namespace Examples
