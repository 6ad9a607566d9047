#pragma once

// One function per family of the module; each lives in the source file of its name.
#include <pybind11/pybind11.h>

namespace zmpy {
void BindCurves(pybind11::module_& m);
void BindFilters(pybind11::module_& m);
void BindSpectra(pybind11::module_& m);
void BindUnits(pybind11::module_& m);
void BindTensors(pybind11::module_& m);
void BindMaterials(pybind11::module_& m);
void BindGeometry(pybind11::module_& m);
void BindInjury(pybind11::module_& m);
void BindMesh(pybind11::module_& m);
void BindFitting(pybind11::module_& m);
void BindArcs(pybind11::module_& m);
void BindPolygons(pybind11::module_& m);
}  // namespace zmpy
