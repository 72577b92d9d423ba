#include "Documentation.h"
#include "Module.h"
#include "RegionLock.h"
#include "Surfaces.h"

namespace ZdkPython
{

namespace
{

using Rect = Zvl::Rect2d<int>;

void LimitHeights(const Zvl::Surface& surface, std::optional<double> minimum, std::optional<double> maximum,
                  const Rect& rect, const py::array& mask)
{
    EditedMask edited(mask);
    WithoutInterpreter(
        [&, copy = surface]
        { Zvl::ThresholdHeight(copy, NumberOrNull(minimum), NumberOrNull(maximum), rect, edited.Cells()); });
    edited.Finish();
}

void LimitHeightsOfRegion(const Zvl::Surface& surface, std::optional<double> minimum, std::optional<double> maximum,
                          Zvl::ROI& region)
{
    WithRegions([&, copy = surface]
                { Zvl::ThresholdHeight(copy, NumberOrNull(minimum), NumberOrNull(maximum), region); });
}

py::object Combine(const py::array& a, const py::array& b, Zvl::MaskOperationType operation)
{
    const Zo::Object<void*> first = Take(a, nullptr, 2, "a");
    const Zo::Object<void*> second = Take(b, nullptr, 2, "b");
    Zo::Object<void*> result;
    WithoutInterpreter([&] { Zvl::MaskOperation(first, second, operation, result.Slot(), nullptr); });
    return ViewOrNone(result);
}

/** A list of runs as the library takes it. */
Zo::Object<void*> ListOf(const py::array_t<std::int32_t, py::array::c_style>& runs)
{
    if (runs.size() != 0 && (runs.ndim() != 2 || runs.shape(1) != 3))
    {
        throw py::value_error("runs: rows of 3 numbers wanted: row, first column, cells");
    }
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d32s_type, 0, nullptr));
    Zo::Test(qArrayList_Import(list, runs.data(), static_cast<std::size_t>(runs.size() / 3)));
    return list;
}

py::object FromRuns(const py::array_t<std::int32_t, py::array::c_style>& runs)
{
    const Zo::Object<void*> list = ListOf(runs);
    Zo::Object<void*> mask;
    Rect rect;
    WithoutInterpreter([&] { Zvl::RLEToMask(list, mask.Slot(), &rect, nullptr); });
    return Record("MaskAndRect", ViewOrNone(mask), rect);
}

py::object Unite(const std::vector<std::optional<py::array>>& masks, const std::vector<Rect>& rects)
{
    std::vector<Zo::Object<void*>> taken;
    taken.reserve(masks.size());
    for (const std::optional<py::array>& mask : masks)
    {
        taken.push_back(TakeOptional(mask, xxq8u_type, 2, "mask"));
    }
    Zo::Object<void*> merged;
    Rect mergedRect;
    WithoutInterpreter([&] { Zvl::MergeMasks(taken, rects, merged.Slot(), &mergedRect, nullptr); });
    return Record("MaskAndRect", ViewOrNone(merged), mergedRect);
}

Zvl::Surface MaskOut(const Zvl::Surface& surface, const std::shared_ptr<Zvl::ROI>& roi)
{
    return WithRegions(
        [&, copy = surface]
        {
            Zvl::Surface out;
            Zvl::ApplyMask(copy, roi, &out, nullptr);
            return out;
        });
}

} // namespace

void AddMasks(py::module_& module)
{
    using namespace py::literals;
    // The forms stand in two headers: the region's comes first.
    module.def(
        "threshold_height", &LimitHeights, "surface"_a, "minimum"_a, "maximum"_a, "rect"_a, "mask"_a,
        Documentation("Zvl::ThresholdHeight", 1,
                      "\nA limit that is None is null. `mask` is changed where it is; a read-only one is refused."));
    module.def("threshold_height", &LimitHeightsOfRegion, "surface"_a, "minimum"_a, "maximum"_a, "roi"_a,
               Documentation("Zvl::ThresholdHeight", 0));
    module.def("mask_operation", &Combine, "a"_a, "b"_a, "op"_a,
               Documentation("Zvl::MaskOperation", 0, "\nReturns a new array; None when the arrays are empty."));
    module.def(
        "rle_to_mask", &FromRuns, "runs"_a,
        Documentation("Zvl::RLEToMask", 0,
                      "\n`runs` is an int32 array of rows of three. Returns a MaskAndRect, whose mask is None without "
                      "runs."));
    module.def("merge_masks", &Unite, "masks"_a, "rects"_a,
               Documentation("Zvl::MergeMasks", 0, "\nReturns a MaskAndRect, whose mask is None without masks."));
    module.def("apply_mask", &MaskOut, "surface"_a, "roi"_a,
               Documentation("Zvl::ApplyMask", 0, "\n`in` is `surface` here, and `out` is returned, a new surface."));
}

} // namespace ZdkPython
