#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <memory>
#include <vector>

namespace Examples
{

/** Makes regions in the frame of a surface. */
class RegionMaker
{
public:
    explicit RegionMaker(const Zvl::Surface& surface);

    std::shared_ptr<Zvl::ROI> Ring(const Zvl::AnnularSector2d<double>& shape) const;
    std::shared_ptr<Zvl::ROI> Ellipse(const Zvl::EllipticalSector2d<double>& shape) const;
    std::shared_ptr<Zvl::ROI> Rectangle(const Zvl::Region2d<double>& shape) const;

    /** A polygon, which is closed here. */
    std::shared_ptr<Zvl::ROI> Polygon(const std::vector<qPoint64f>& corners) const;

    /** The cells where @p reference has a height. */
    std::shared_ptr<Zvl::ROI> Reference(const Zvl::Surface& reference) const;

    /** All cells of the surface. */
    std::shared_ptr<Zvl::ROI> Whole() const;

private:
    Zvl::SurfaceInputData frame{};
    qPoint64f scale;
    qPoint64f offset;
};

/** A plane through all heights of a surface; level when there are too few for a plane. */
qPlane3d64f PlaneThrough(const Zvl::Surface& surface);

} // namespace Examples
