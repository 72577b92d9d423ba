#pragma once

/** @file
 *  The parts of the module: each adds the functions and classes of one subsystem. */

#include <pybind11/pybind11.h>

namespace ZdkPython
{

void AddErrors(pybind11::module_& module);
void AddArrays(pybind11::module_& module);
void AddSurfaces(pybind11::module_& module);
void AddMessages(pybind11::module_& module);
void AddCellRanges(pybind11::module_& module);
void AddShapes(pybind11::module_& module);
void AddAnchors(pybind11::module_& module);
void AddRefFrames(pybind11::module_& module);
void AddRegions(pybind11::module_& module);
void AddProfileRegions(pybind11::module_& module);
void AddMasks(pybind11::module_& module);
void AddExtraction(pybind11::module_& module);
void AddProfileFilter(pybind11::module_& module);
void AddSurfaceFilters(pybind11::module_& module);
void AddArithmetic(pybind11::module_& module);
void AddLineFits(pybind11::module_& module);
void AddCircleFits(pybind11::module_& module);
void AddSphereAndPlaneFits(pybind11::module_& module);
void AddImages(pybind11::module_& module);
void AddMat(pybind11::module_& module);

} // namespace ZdkPython
