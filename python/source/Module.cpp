#include "Module.h"

#include "Documentation.h"

PYBIND11_MODULE(_core, module)
{
    using namespace ZdkPython;
    const pybind11::object name = module.attr("__name__");
    module.attr("__name__") = "zdkvision"; // where functions and classes say that they are from
    module.doc() = "The compiled part of zdkvision.";
    module.def(
        "_documentation", [](const std::string& cppName) { return Documentation(cppName); }, pybind11::arg("name"),
        "The comment on a C++ name in the headers.");
    AddErrors(module);
    AddArrays(module);
    AddSurfaces(module);
    AddMessages(module);
    AddCellRanges(module);
    AddShapes(module);
    AddAnchors(module);
    AddRefFrames(module);
    AddRegions(module);
    AddProfileRegions(module);
    AddMasks(module);
    AddExtraction(module);
    AddProfileFilter(module);
    AddSurfaceFilters(module);
    AddArithmetic(module);
    AddLineFits(module);
    AddCircleFits(module);
    AddSphereAndPlaneFits(module);
    AddImages(module);
    AddMat(module);
    module.attr("__name__") = name;
}
