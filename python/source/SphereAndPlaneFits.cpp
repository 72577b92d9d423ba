#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

namespace ZdkPython
{

namespace
{

using Rect = Zvl::Rect2d<int>;
using PointVector = std::vector<qPoint3d64f>;

/** What both forms of the sphere fit write. */
struct Sphere
{
    qPoint3d64f center;
    double radius;
    PointVector kept;
    PointVector outliers;
};

py::object FitPointsSphere(const Numbers& points, double outlierPercent, std::size_t maxPasses)
{
    const Points3 in(points);
    Sphere sphere{};
    WithoutInterpreter(
        [&]
        {
            Zvl::FitSphere(in.Data(), in.Count(), &sphere.center, &sphere.radius, nullptr, outlierPercent, &sphere.kept,
                           &sphere.outliers, maxPasses);
        });
    return Record("SphereFit", sphere.center, NumberOrNone(sphere.radius), ViewPoints(std::move(sphere.kept)),
                  ViewPoints(std::move(sphere.outliers)));
}

py::object FitSurfaceSphere(const Zvl::Surface& surface, const Rect& rect, const py::array& mask, double outlierPercent,
                            std::size_t maxPasses)
{
    const Zo::Object<void*> cells = TakeMask(mask);
    Sphere sphere{};
    PointVector points;
    WithoutInterpreter(
        [&, copy = surface]
        {
            Zvl::FitSphere(copy, rect, cells, &sphere.center, &sphere.radius, points, nullptr, outlierPercent,
                           &sphere.kept, &sphere.outliers, maxPasses);
        });
    return Record("SurfaceSphereFit", sphere.center, NumberOrNone(sphere.radius), ViewPoints(std::move(points)),
                  ViewPoints(std::move(sphere.kept)), ViewPoints(std::move(sphere.outliers)));
}

std::optional<qPlane3d64f> FitSurfacePlane(const Zvl::Surface& surface, const Rect& rect, const py::array& mask)
{
    const Zo::Object<void*> cells = TakeMask(mask);
    qPlane3d64f plane;
    WithoutInterpreter([&, copy = surface] { Zvl::FitPlane(copy, rect, cells, &plane); });
    return IsNull(plane.point) && IsNull(plane.normal) ? std::nullopt : std::optional(plane);
}

} // namespace

void AddSphereAndPlaneFits(py::module_& module)
{
    using namespace py::literals;
    module.def("fit_sphere", &FitPointsSphere, "points"_a, "outlier_percent"_a = 0.0, "max_passes"_a = 1,
               Documentation("Zvl::FitSphere", 0, "\nReturns a SphereFit."));
    module.def("fit_sphere", &FitSurfaceSphere, "surface"_a, "rect"_a, "mask"_a, "outlier_percent"_a = 0.0,
               "max_passes"_a = 1, Documentation("Zvl::FitSphere", 1, "\nReturns a SurfaceSphereFit."));
    module.def("fit_plane", &FitSurfacePlane, "surface"_a, "rect"_a, "mask"_a,
               Documentation("Zvl::FitPlane", 0, "\nReturns a Plane; None without a fit."));
}

} // namespace ZdkPython
