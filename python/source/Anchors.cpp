#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

namespace ZdkPython
{

namespace
{

constexpr char kReturns[] = "\nReturns the moved shape.";
constexpr char kReturnsPoints[] = "\nReturns the moved points.";

template <typename Shape>
void AddShape(py::module_& module, const char* name, const char* argument, const char* cppName, std::size_t index,
              void (*move)(const Zvl::Anchor&, const Shape&, Shape*))
{
    module.def(
        name,
        [move](const Zvl::Anchor& anchor, const Shape& shape)
        {
            Shape moved;
            move(anchor, shape, &moved);
            return moved;
        },
        py::arg("anchor"), py::arg(argument), Documentation(cppName, index, kReturns));
}

Zvl::Region3d<double> MoveRegion(const Zvl::Anchor& anchor, const Zvl::Region3d<double>& region)
{
    Zvl::Region3d<double> moved;
    Zvl::AnchorSurfaceRegion(anchor, &region, &moved);
    return moved;
}

py::array MovePoints(const Zvl::Anchor& anchor, const Numbers& points)
{
    const Points3 in(points);
    std::vector<qPoint3d64f> moved(in.Count());
    WithoutInterpreter([&] { Zvl::AnchorPointSetRegion(anchor, in.Data(), in.Count(), moved.data()); });
    return ViewPoints(std::move(moved));
}

template <typename Vertex, typename Point>
py::array MovePolygon(const Zvl::Anchor& anchor, const Numbers& points)
{
    const Points<Point> in(points);
    std::vector<Vertex> moved;
    Zvl::AnchorPolygon(anchor, std::vector<Vertex>(in.Data(), in.Data() + in.Count()), &moved);
    return ViewPoints(std::vector<Point>(moved.begin(), moved.end()));
}

/** Vertices of two or of three numbers, which the array itself tells. */
py::array MoveAnyPolygon(const Zvl::Anchor& anchor, const Numbers& points)
{
    return points.ndim() == 2 && points.shape(1) == 3 ? MovePolygon<Zvl::Point3d<double>, qPoint3d64f>(anchor, points)
                                                      : MovePolygon<Zvl::Point2d<double>, qPoint64f>(anchor, points);
}

} // namespace

void AddAnchors(py::module_& module)
{
    using namespace py::literals;
    module.def("anchor_point_set_region", &MovePoints, "anchor"_a, "points"_a,
               Documentation("Zvl::AnchorPointSetRegion", 0, kReturnsPoints));
    module.def("anchor_surface_region", &MoveRegion, "anchor"_a, "region"_a,
               Documentation("Zvl::AnchorSurfaceRegion", 0, kReturns));
    AddShape<Zvl::Region2d<double>>(module, "anchor_rectangle", "region", "Zvl::AnchorRectangle", 0,
                                    &Zvl::AnchorRectangle);
    AddShape<Zvl::Region3d<double>>(module, "anchor_rectangle", "region", "Zvl::AnchorRectangle", 1,
                                    &Zvl::AnchorRectangle);
    module.def("anchor_polygon", &MoveAnyPolygon, "anchor"_a, "points"_a,
               Documentation("Zvl::AnchorPolygon", 0, kReturnsPoints));
    AddShape<Zvl::AnnularSector2d<double>>(module, "anchor_annular_sector", "sector", "Zvl::AnchorAnnularSector", 0,
                                           &Zvl::AnchorAnnularSector);
    AddShape<Zvl::AnnularSector3d<double>>(module, "anchor_annular_sector", "sector", "Zvl::AnchorAnnularSector", 1,
                                           &Zvl::AnchorAnnularSector);
    AddShape<Zvl::EllipticalSector2d<double>>(module, "anchor_elliptical_sector", "sector",
                                              "Zvl::AnchorEllipticalSector", 0, &Zvl::AnchorEllipticalSector);
    AddShape<Zvl::EllipticalSector3d<double>>(module, "anchor_elliptical_sector", "sector",
                                              "Zvl::AnchorEllipticalSector", 1, &Zvl::AnchorEllipticalSector);
}

} // namespace ZdkPython
