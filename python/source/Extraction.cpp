#include "Documentation.h"
#include "Module.h"
#include "Surfaces.h"

namespace ZdkPython
{

namespace
{

using Rect = Zvl::Rect2d<int>;

/** An empty window is told by an exception of success, with a complete result. */
void CropUnlessEmpty(const Zvl::Surface& surface, const Rect& rect, const Zo::Object<void*>& mask,
                     Zvl::Surface& cropped)
{
    try
    {
        Zvl::CropSurfaceFromROI(surface, rect, mask, cropped, nullptr);
    }
    catch (const Zo::Exception& report)
    {
        if (report.GetStatus() != STATUS_OK)
        {
            throw;
        }
    }
}

Zvl::Surface Crop(const Zvl::Surface& surface, const Rect& rect, const py::array& mask)
{
    const Zo::Object<void*> cells = TakeMask(mask);
    return WithoutInterpreter(
        [&, copy = surface]
        {
            Zvl::Surface cropped;
            CropUnlessEmpty(copy, rect, cells, cropped);
            return cropped;
        });
}

/** The items of type `T` of the selected cells; none is also the answer to what does not fit. */
template <typename T>
py::array Gather(const Zvl::Surface& surface, const Rect& rect, const py::array& mask)
{
    const Zo::Object<void*> cells = TakeMask(mask);
    Zo::Object<void*> list;
    WithoutInterpreter(
        [&, copy = surface]
        {
            Zvl::GetPointsFromROI<T>(copy, rect, cells, list.Slot());
            if (list.Get() == nullptr)
            {
                Zo::Test(qArrayList_Construct(list.Slot(), Zvl::GetqType<T>(), 0, nullptr));
            }
        });
    return View(list);
}

template <typename T>
void LimitPercentiles(const Zvl::Surface& surface, double low, double high, const Rect& rect, const py::array& mask)
{
    EditedMask edited(mask);
    WithoutInterpreter([&, copy = surface] { Zvl::ThresholdPercentile<T>(copy, low, high, rect, edited.Cells()); });
    edited.Finish();
}

template <typename T>
void AddGathering(py::module_& module, const char* name, const char* what)
{
    using namespace py::literals;
    module.def(name, &Gather<T>, "surface"_a, "rect"_a, "mask"_a, Documentation("Zvl::GetPointsFromROI", 0, what));
}

template <typename T>
void AddPercentiles(py::module_& module, const char* name, const char* what)
{
    using namespace py::literals;
    module.def(name, &LimitPercentiles<T>, "surface"_a, "low"_a, "high"_a, "rect"_a, "mask"_a,
               Documentation("Zvl::ThresholdPercentile", 0, what));
}

} // namespace

void AddExtraction(py::module_& module)
{
    using namespace py::literals;
    module.def(
        "crop_surface_from_roi", &Crop, "surface"_a, "rect"_a, "mask"_a,
        Documentation("Zvl::CropSurfaceFromROI", 0,
                      "\nReturns the new surface. An empty window, which ends in Status.OK above, raises nothing "
                      "here."));
    AddGathering<qPoint3d64f>(module, "get_points_from_roi",
                              "\nThis is the form for points in world units: an array of rows x, y, z.");
    AddGathering<qPoint3d32s>(module, "get_cells_from_roi",
                              "\nThis is the form for cells: an int32 array of rows column, row, height count.");
    AddGathering<double>(module, "get_heights_from_roi", "\nThis is the form for heights in world units.");
    AddGathering<short>(module, "get_counts_from_roi", "\nThis is the form for height counts, an int16 array.");
    AddGathering<unsigned char>(module, "get_intensities_from_roi",
                                "\nThis is the form for intensities, a uint8 array.");
    AddPercentiles<short>(module, "threshold_percentile_heights",
                          "\nThis is the form for heights. `mask` is changed where it is.");
    AddPercentiles<double>(module, "threshold_percentile_distances",
                           "\nThis is the form for distances from a plane. `mask` is changed where it is.");
    AddPercentiles<unsigned char>(module, "threshold_percentile_intensities",
                                  "\nThis is the form for intensities. `mask` is changed where it is.");
}

} // namespace ZdkPython
