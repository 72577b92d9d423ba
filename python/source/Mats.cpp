#include "Arrays.h"
#include "Documentation.h"
#include "Messages.h"
#include "Module.h"
#include "Records.h"

#include <ZdkVisionLib/Common/Mat.h>

namespace ZdkPython
{

namespace
{

using Zvl::zvlMat;
using Region = Zvl::Region3d<double>;

/** Cells for OpenCV. NumPy arrays over them hold them by themselves: cells of another size take their place here, and not
 *  under whoever looks at the old ones. */
struct HeldMat
{
    std::shared_ptr<zvlMat> cells = std::make_shared<zvlMat>();
};

HeldMat FromMessage(const SurfaceMessage& message, int index, const Region& region, bool useZLimits, bool noClip)
{
    return {WithoutInterpreter(
        [&, held = message.handle]
        { return std::make_shared<zvlMat>(held.Get(), index, &region, useZLimits ? 1 : 0, noClip ? 1 : 0); })};
}

py::object ViewPixels(const HeldMat& mat)
{
    const cv::Mat header = mat.cells->GetMat();
    if (header.empty())
    {
        return py::none();
    }
    return py::array(py::dtype::of<std::uint16_t>(), {header.rows, header.cols}, header.data, Hold(mat.cells));
}

py::object MakeDestination(HeldMat& mat, int width, int height)
{
    if (mat.cells->GetSize() != cv::Size(width, height))
    {
        auto fresh = std::make_shared<zvlMat>();
        fresh->SetDestinationParameters(*mat.cells);
        fresh->GetDestinationMat(cv::Size(width, height));
        mat.cells = std::move(fresh);
    }
    return ViewPixels(mat);
}

py::object HeightsOf(const HeldMat& mat)
{
    return ViewOrNone(Zo::Object<void*>(mat.cells->GetqArray2Ofq16s()));
}

py::tuple SizeOf(const cv::Size& size)
{
    return py::make_tuple(size.width, size.height);
}

Region RegionOf(const SurfaceMessage& message, int index)
{
    Region region;
    zvlMat::GetRegionFromMsg(message.handle.Get(), index, &region);
    return region;
}

auto WithResult(void (*combine)(const Region*, const Region*, Region*))
{
    return [combine](const Region& a, const Region& b)
    {
        Region result;
        combine(&a, &b, &result);
        return result;
    };
}

} // namespace

void AddMat(py::module_& module)
{
    using namespace py::literals;
    const std::string name = "Zvl::zvlMat";
    py::class_<HeldMat>(
        module, "Mat",
        Documentation(name, 0,
                      "\nHere a NumPy array over the cells holds them, and may be used for as long as it is "
                      "there."))
        .def(py::init<>(), Documentation(name + "::zvlMat", 0))
        .def(py::init(&FromMessage), "message"_a, "index"_a, "region"_a, "use_z_limits"_a = false, "no_clip"_a = false,
             Documentation(name + "::zvlMat", 1))
        .def(
            "__copy__", [](const HeldMat& self) { return HeldMat{std::make_shared<zvlMat>(*self.cells)}; },
            Documentation(name + "::zvlMat", 2))
        .def_property_readonly("pixels", &ViewPixels,
                               Documentation(name + "::GetMat", 0, "It is a NumPy array here, or None."))
        .def("get_destination_mat", &MakeDestination, "width"_a, "height"_a,
             Documentation(name + "::GetDestinationMat"))
        .def(
            "set_destination_parameters",
            [](const HeldMat& self, const qPoint3d64f& scale, const qPoint3d64f& offset)
            { self.cells->SetDestinationParameters(scale, offset); },
            "scale"_a, "offset"_a, Documentation(name + "::SetDestinationParameters", 0))
        .def(
            "set_destination_parameters",
            [](const HeldMat& self, const HeldMat& other) { self.cells->SetDestinationParameters(*other.cells); },
            "other"_a, Documentation(name + "::SetDestinationParameters", 1))
        .def_property_readonly(
            "offset", [](const HeldMat& self) { return self.cells->GetOffset(); }, Documentation(name + "::GetOffset"))
        .def_property_readonly(
            "scale", [](const HeldMat& self) { return self.cells->GetScale(); }, Documentation(name + "::GetScale"))
        .def_property_readonly(
            "size", [](const HeldMat& self) { return SizeOf(self.cells->GetSize()); },
            Documentation(name + "::GetSize"))
        .def_static(
            "get_smallest_size",
            [](const HeldMat& a, const HeldMat& b) { return SizeOf(zvlMat::GetSmallestSize(*a.cells, *b.cells)); },
            "a"_a, "b"_a, Documentation(name + "::GetSmallestSize"))
        .def("get_heights", &HeightsOf, Documentation(name + "::GetqArray2Ofq16s"))
        .def_static("get_region_from_msg", &RegionOf, "message"_a, "index"_a,
                    Documentation(name + "::GetRegionFromMsg", 0, "\nReturns the region, whose angle is 0."))
        .def_static("compute_overlapping_region", WithResult(&zvlMat::ComputeOverlappingRegion), "a"_a, "b"_a,
                    Documentation(name + "::ComputeOverlappingRegion"))
        .def_static("compute_container_region", WithResult(&zvlMat::ComputeContainerRegion), "a"_a, "b"_a,
                    Documentation(name + "::ComputeContainerRegion"));
}

} // namespace ZdkPython
