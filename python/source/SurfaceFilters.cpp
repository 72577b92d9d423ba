#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

#include <array>
#include <mutex>

namespace ZdkPython
{

namespace
{

using Pair = std::array<std::size_t, 2>;

Zo::Object<void*> SameShape(const Zo::Object<void*>& heights)
{
    Zo::Object<void*> made;
    Zo::Test(
        qArray2_Construct(made.Slot(), xxq16s_type, qArray2_Length(heights, 0), qArray2_Length(heights, 1), nullptr));
    return made;
}

/** A filter with an output of its own, which lets one thread in at a time. */
class HeldSurfaceFilter
{
public:
    explicit HeldSurfaceFilter(const py::array& heights) : HeldSurfaceFilter(TakeHeights(heights)) {}

    HeldSurfaceFilter& Average(const Pair& window, bool keepNulls)
    {
        const py::gil_scoped_release free;
        const std::lock_guard lock(mutex);
        filter.Average({window[0], window[1]}, keepNulls ? 1 : 0);
        return *this;
    }

    py::array Result() const { return View(result); }

private:
    explicit HeldSurfaceFilter(const Zo::Object<void*>& in) : result(SameShape(in)), filter(in, result, nullptr) {}

    Zo::Object<void*> result;
    Zvl::SurfaceFilter filter;
    std::mutex mutex;
};

template <typename T>
py::array Pad(const Zo::Object<void*>& cells, int padX, int padY)
{
    return View(WithoutInterpreter([&] { return Zvl::PadArray2<T>(cells, padX, padY, nullptr); }));
}

/** The width of the cells alone decides. */
py::array PadAny(const py::array& values, int padX, int padY)
{
    const Zo::Object<void*> cells = Take(values, nullptr, 2, "array");
    switch (values.itemsize())
    {
    case sizeof(unsigned char):
        return Pad<unsigned char>(cells, padX, padY);
    case sizeof(short):
        return Pad<short>(cells, padX, padY);
    case sizeof(int):
        return Pad<int>(cells, padX, padY);
    default:
        throw py::type_error("array: cells of 1, 2 or 4 bytes wanted");
    }
}

py::array Smooth(const py::array& heights, int width, int height)
{
    const Zo::Object<void*> cells = TakeHeights(heights);
    return View(WithoutInterpreter([&] { return Zvl::SmoothFullArray2<short>(cells, width, height, nullptr); }));
}

Zvl::Surface Decimate(const Zvl::Surface& surface, const Pair& outSize, const std::array<double, 2>& ratio)
{
    return WithoutInterpreter(
        [&, copy = surface] {
            return Zvl::SurfaceDecimate(copy, {outSize[0], outSize[1]}, {ratio[0], ratio[1]}, nullptr);
        });
}

py::object FillGaps(const Zvl::SurfaceFillGapParams& params, const py::array& heights,
                    const std::optional<py::array>& intensities)
{
    const Zo::Object<void*> cells = TakeHeights(heights);
    const Zo::Object<void*> bytes = TakeOptional(intensities, xxq8u_type, 2, "intensities");
    Zo::Object<void*> filled;
    Zo::Object<void*> filledBytes;
    WithoutInterpreter([&] { Zvl::SurfaceFillGapXY(params, cells, bytes, filled, filledBytes, nullptr); });
    return Record("FilledGaps", ViewOrNone(filled), ViewOrNone(filledBytes));
}

} // namespace

void AddSurfaceFilters(py::module_& module)
{
    using namespace py::literals;
    py::class_<HeldSurfaceFilter>(module, "SurfaceFilter", Documentation("Zvl::SurfaceFilter"))
        .def(py::init<const py::array&>(), "heights"_a, "A filter from `heights`, int16, to an array of its own.")
        .def("average", &HeldSurfaceFilter::Average, py::return_value_policy::reference, "window"_a,
             "keep_nulls"_a = false,
             Documentation("Zvl::SurfaceFilter::Average", 0, "\n`window` is a pair: columns, rows."))
        .def_property_readonly("result", &HeldSurfaceFilter::Result,
                               "The output array, which every operation writes; undefined before the first.");
    module.def("pad_array2", &PadAny, "array"_a, "pad_x"_a, "pad_y"_a, Documentation("Zvl::PadArray2"));
    module.def("smooth_full_array2", &Smooth, "heights"_a, "width"_a, "height"_a,
               Documentation("Zvl::SmoothFullArray2"));
    module.def("surface_decimate", &Decimate, "surface"_a, "out_size"_a = Pair{0, 0},
               "ratio"_a = std::array<double, 2>{0.0, 0.0}, Documentation("Zvl::SurfaceDecimate"));
    module.def("surface_fill_gap_xy", &FillGaps, "params"_a, "heights"_a, "intensities"_a = py::none(),
               Documentation("Zvl::SurfaceFillGapXY", 0,
                             "\n`surface` and `intensity` are the arrays `heights` and `intensities` here. Returns "
                             "FilledGaps."));
}

} // namespace ZdkPython
