#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include <limits>
#include <string>

template <>
struct pybind11::detail::type_caster<Zvl::InpaintMethod> : ZdkPython::EnumCaster<Zvl::InpaintMethod>
{
    static constexpr auto name = const_name("InpaintMethod");
};

namespace ZdkPython
{

namespace
{

/** OpenCV's type of the cells of @p image, which may have three bytes each. */
int CellTypeOf(const py::array& image)
{
    const std::string type = NameOf(image.dtype());
    const int channels = image.ndim() == 3 ? static_cast<int>(image.shape(2)) : 1;
    const int depth = type == "uint8"     ? CV_8U
                      : type == "bool"    ? CV_8U
                      : type == "uint16"  ? CV_16U
                      : type == "int16"   ? CV_16S
                      : type == "float32" ? CV_32F
                                          : -1;
    if (depth < 0 || image.ndim() < 2 || image.ndim() > 3 || channels < 1 || channels > CV_CN_MAX)
    {
        throw py::value_error("an image has 2 dimensions, or channels as a third, and cells of uint8, uint16, int16 or "
                              "float32");
    }
    return CV_MAKETYPE(depth, channels);
}

/** In one piece, as OpenCV reads it; copied when it is not so yet. */
py::array InOnePiece(const py::array& image)
{
    py::array plain = py::array::ensure(image, kPlain);
    if (!plain)
    {
        throw py::error_already_set();
    }
    return plain;
}

/** A header over the cells of @p image, which lie in one piece. The call only reads those that may not be written. */
cv::Mat HeaderOver(const py::array& image, int type)
{
    constexpr py::ssize_t kLongest = std::numeric_limits<int>::max();
    if (image.shape(0) > kLongest || image.shape(1) > kLongest)
    {
        throw py::value_error("an image has at most 2147483647 rows and columns");
    }
    return {static_cast<int>(image.shape(0)), static_cast<int>(image.shape(1)), type, const_cast<void*>(image.data())};
}

py::array Repair(const py::array& source, const py::array& mask, double range, Zvl::InpaintMethod method)
{
    const int type = CellTypeOf(source);
    const int maskType = CellTypeOf(mask);
    const py::array in = InOnePiece(source);
    const py::array holes = InOnePiece(mask);
    py::array out(in.dtype(), std::vector<py::ssize_t>(in.shape(), in.shape() + in.ndim()));
    cv::Mat image = HeaderOver(in, type);
    cv::Mat toRepair = HeaderOver(holes, maskType);
    cv::Mat repaired = HeaderOver(out, type); // of the right size and type, so that it stays
    WithoutInterpreter([&] { Zvl::Inpaint(image, toRepair, repaired, range, method); });
    return out;
}

} // namespace

void AddImages(py::module_& module)
{
    using namespace py::literals;
    module.def(
        "inpaint", &Repair, "source"_a, "mask"_a, "range"_a, "method"_a,
        Documentation("Zvl::Inpaint", 0,
                      "\nImages are NumPy arrays of rows, columns and, of three channels, channels; those in one "
                      "piece are used without a copy. `method` stands for `flags`. Returns the new image."));
}

} // namespace ZdkPython
