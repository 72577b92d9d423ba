#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

namespace ZdkPython
{

namespace
{

/** The result of a function with an output behind its input. */
template <typename Out, typename In>
Out Converted(void (*convert)(const In&, Out*), const In& in)
{
    Out out;
    convert(in, &out);
    return out;
}

template <typename In, typename Out>
void AddConversion(py::module_& module, const char* name, const char* argument, const char* cppName,
                   void (*convert)(const In&, Out*))
{
    module.def(
        name, [convert](const In& in) { return Converted(convert, in); }, py::arg(argument), Documentation(cppName));
}

py::array Polygon2dTo3d(const Numbers& points)
{
    const Points2 in(points);
    std::vector<Zvl::Point3d<double>> out;
    Zvl::Polygon2dTo3d({in.Data(), in.Data() + in.Count()}, &out);
    return ViewPoints(std::vector<qPoint3d64f>(out.begin(), out.end()));
}

py::array Polygon3dTo2d(const Numbers& points)
{
    const Points3 in(points);
    std::vector<Zvl::Point2d<double>> out;
    Zvl::Polygon3dTo2d({in.Data(), in.Data() + in.Count()}, &out);
    return ViewPoints(std::vector<qPoint64f>(out.begin(), out.end()));
}

py::array ExtractPolygon(const Zvl::Region2d<double>& region)
{
    std::vector<Zvl::Point2d<double>> polygon;
    Zvl::ExtractPolygonFromRect(region, &polygon);
    return ViewPoints(std::vector<qPoint64f>(polygon.begin(), polygon.end()));
}

template <typename Sector, typename Point>
void AddPointTest(py::module_& module, const char* name, const char* cppName, int (*test)(const Sector&, const Point&))
{
    module.def(
        name, [test](const Sector& sector, const Point& point) { return test(sector, point) != 0; }, py::arg("sector"),
        py::arg("point"), Documentation(cppName, 0));
}

template <typename Sector, typename Point>
void AddPointTest(py::module_& module, const char* name, const char* cppName,
                  int (*test)(const Sector&, const Point&, int))
{
    module.def(
        name,
        [test](const Sector& sector, const Point& point, bool useZ) { return test(sector, point, useZ ? 1 : 0) != 0; },
        py::arg("sector"), py::arg("point"), py::arg("use_z") = true, Documentation(cppName, 1));
}

Zvl::Region3d<double> BoundingBox(const std::vector<std::tuple<Zvl::Surface, Zvl::Rect2d<int>, py::array>>& slices,
                                  bool rotated)
{
    std::vector<Zvl::SurfaceSlice> taken;
    taken.reserve(slices.size());
    for (const auto& [surface, rect, mask] : slices)
    {
        taken.push_back({surface, rect, TakeMask(mask)});
    }
    return WithoutInterpreter([&] { return Zvl::GetBoundingBox(taken, rotated ? 1 : 0, nullptr); });
}

} // namespace

void AddShapes(py::module_& module)
{
    AddConversion(module, "rect2d_to_3d", "region", "Zvl::Rect2dTo3d", &Zvl::Rect2dTo3d);
    AddConversion(module, "rect3d_to_2d", "region", "Zvl::Rect3dTo2d", &Zvl::Rect3dTo2d);
    AddConversion(module, "annular_sector2d_to_3d", "sector", "Zvl::AnnularSector2dTo3d", &Zvl::AnnularSector2dTo3d);
    AddConversion(module, "annular_sector3d_to_2d", "sector", "Zvl::AnnularSector3dTo2d", &Zvl::AnnularSector3dTo2d);
    AddConversion(module, "elliptical_sector2d_to_3d", "sector", "Zvl::EllipticalSector2dTo3d",
                  &Zvl::EllipticalSector2dTo3d);
    AddConversion(module, "elliptical_sector3d_to_2d", "sector", "Zvl::EllipticalSector3dTo2d",
                  &Zvl::EllipticalSector3dTo2d);
    module.def("polygon2d_to_3d", &Polygon2dTo3d, py::arg("points"), Documentation("Zvl::Polygon2dTo3d"));
    module.def("polygon3d_to_2d", &Polygon3dTo2d, py::arg("points"), Documentation("Zvl::Polygon3dTo2d"));
    module.def("extract_polygon_from_rect", &ExtractPolygon, py::arg("region"),
               Documentation("Zvl::ExtractPolygonFromRect"));

    constexpr char kAnnular[] = "check_point_in_annular_sector";
    constexpr char kElliptical[] = "check_point_in_elliptical_sector";
    AddPointTest<Zvl::AnnularSector2d<double>, qPoint64f>(module, kAnnular, "Zvl::CheckPointInAnnularSector",
                                                          &Zvl::CheckPointInAnnularSector);
    AddPointTest<Zvl::AnnularSector3d<double>, qPoint3d64f>(module, kAnnular, "Zvl::CheckPointInAnnularSector",
                                                            &Zvl::CheckPointInAnnularSector);
    AddPointTest<Zvl::EllipticalSector2d<double>, qPoint64f>(module, kElliptical, "Zvl::CheckPointInEllipticalSector",
                                                             &Zvl::CheckPointInEllipticalSector);
    AddPointTest<Zvl::EllipticalSector3d<double>, qPoint3d64f>(module, kElliptical, "Zvl::CheckPointInEllipticalSector",
                                                               &Zvl::CheckPointInEllipticalSector);

    module.def("get_bounding_box", &BoundingBox, py::arg("slices"), py::arg("rotated") = false,
               Documentation("Zvl::GetBoundingBox", 0,
                             "\nA slice is a SurfaceSlice, or a tuple of a surface, a rectangle and a mask."));
}

} // namespace ZdkPython
