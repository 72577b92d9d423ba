#include "Documentation.h"
#include "Module.h"
#include "Surfaces.h"

namespace ZdkPython
{

namespace
{

constexpr char kResult[] = "\nReturns the cells.";

/** The address of what is there, or null. */
template <typename T>
T* AddressOf(std::optional<T>& value)
{
    return value ? &*value : nullptr;
}

Zvl::RunLength<int> AxisCells(std::size_t length, double offset, double scale, const Zvl::RunLength<double>& region,
                              std::optional<double> tolerance, bool clip)
{
    Zvl::RunLength<int> cells;
    Zvl::GetRegionPixel(length, offset, scale, &region, &cells, AddressOf(tolerance), clip ? 1 : 0);
    return cells;
}

Zvl::Rect2d<int> PlaneCells(std::size_t width, std::size_t height, const qPoint64f& offset, const qPoint64f& scale,
                            const Zvl::Region2d<double>& region, std::optional<qPoint64f> tolerance, bool clip)
{
    Zvl::Rect2d<int> cells;
    Zvl::GetRegionPixel(width, height, offset, scale, &region, &cells, AddressOf(tolerance), clip ? 1 : 0);
    return cells;
}

Zvl::Rect3d<int> SpaceCells(std::size_t width, std::size_t height, const qPoint3d64f& offset, const qPoint3d64f& scale,
                            const Zvl::Region3d<double>& region, std::optional<qPoint3d64f> tolerance, bool clip)
{
    Zvl::Rect3d<int> cells;
    Zvl::GetRegionPixel(width, height, offset, scale, &region, &cells, AddressOf(tolerance), clip ? 1 : 0);
    return cells;
}

Zvl::Rect3d<int> SurfaceCells(const Zvl::Surface& surface, const Zvl::Region3d<double>& region,
                              std::optional<qPoint3d64f> tolerance, bool clip)
{
    Zvl::SurfaceInputData data;
    Zvl::RetrieveSurfaceInputData(surface, &data);
    Zvl::Rect3d<int> cells;
    Zvl::GetRegionPixel(&data, &region, &cells, AddressOf(tolerance), clip ? 1 : 0);
    return cells;
}

Zvl::Rect2d<int> ProfileCells(std::size_t width, const qPoint64f& offset, const qPoint64f& scale,
                              const Zvl::Region2d<double>& region, std::optional<qPoint64f> tolerance, bool clip)
{
    Zvl::Rect2d<int> cells;
    Zvl::GetRegionXZPixel(width, offset, scale, &region, &cells, AddressOf(tolerance), clip ? 1 : 0);
    return cells;
}

} // namespace

void AddCellRanges(py::module_& module)
{
    using namespace py::literals;
    constexpr char kName[] = "Zvl::GetRegionPixel";
    module.def("get_region_pixel", &AxisCells, "length"_a, "offset"_a, "scale"_a, "region"_a,
               "tolerance"_a = py::none(), "clip"_a = true, Documentation(kName, 0, kResult));
    module.def("get_region_pixel", &PlaneCells, "width"_a, "height"_a, "offset"_a, "scale"_a, "region"_a,
               "tolerance"_a = py::none(), "clip"_a = true, Documentation(kName, 1, kResult));
    module.def("get_region_pixel", &SpaceCells, "width"_a, "height"_a, "offset"_a, "scale"_a, "region"_a,
               "tolerance"_a = py::none(), "clip"_a = true, Documentation(kName, 2, kResult));
    module.def("get_region_pixel", &SurfaceCells, "surface"_a, "region"_a, "tolerance"_a = py::none(), "clip"_a = true,
               Documentation(kName, 3, kResult));
    module.def("get_region_xz_pixel", &ProfileCells, "width"_a, "offset"_a, "scale"_a, "region"_a,
               "tolerance"_a = py::none(), "clip"_a = true, Documentation("Zvl::GetRegionXZPixel", 0, kResult));
}

} // namespace ZdkPython
