// Element metrics over meshes: nodes an (n, 3) array, types one integer per element (the index of
// its type in ELEMENT_TYPES), connectivity the elements' node indices packed element after
// element. The connectivity is checked to hold every node the types ask for before the library
// reads it; an element with an unknown type or a node index out of range gets nan (and, being of
// unknown size, ends the walk: the elements after an unknown type get nan too).
#include <iterator>

#include "arrays.h"
#include "families.h"
#include "zemcalc/ZmMesh.h"

namespace zmpy {
namespace {

const char* const kMetrics[] = {"area", "surface_area", "volume", "aspect_ratio", "edge_ratio", "radius_ratio",
                                "min_angle", "max_angle", "min_dihedral_angle", "jacobian", "scaled_jacobian",
                                "condition", "shape", "equiangle_skew", "skew", "taper", "warpage_verdict",
                                "stretch", "oddy", "collapse_ratio", "mean_ratio", "diagonal", "dimension",
                                "warping_angle", "warping_corner_angle", "warping_height", "warping_height_ratio",
                                "characteristic_length", "characteristic_length_edges"};
static_assert(std::size(kMetrics) == ZmMetricCount, "one name per element metric");
const char* const kTypes[] = {"beam2", "tri3", "quad4", "tet4", "pyramid5", "wedge6", "hex8"};
static_assert(std::size(kTypes) == ZmElementTypeCount, "one name per element type");

ZmElementMetric Metric(py::handle metric) {
  int index = -1;
  if (py::isinstance<py::str>(metric)) {
    const std::string name = metric.cast<std::string>();
    for (std::size_t i = 0; i < std::size(kMetrics); ++i)
      if (name == kMetrics[i]) index = static_cast<int>(i);
    if (index < 0) throw py::value_error("unknown element metric '" + name + "' (see ELEMENT_METRICS)");
  } else {
    index = metric.cast<int>();
    if (index < 0 || index >= ZmMetricCount) throw py::value_error("element metric " + std::to_string(index) + " out of range");
  }
  return static_cast<ZmElementMetric>(index);
}

// Runs batch(nodes, nodeCount, types, connectivity, elementCount, values) of twin T after the
// nodes' dtype and returns the values with the invalid marker as nan.
template <class Batch>
py::array OverMesh(py::handle nodesObj, py::handle typesObj, py::handle connectivityObj, Batch batch) {
  return WithTwin(nodesObj, [&](auto tag) -> py::array {
    using T = decltype(tag);
    const Points<T> nodes = ToPoints<T>(nodesObj, "nodes");
    const Array<int> types = Table<int>(typesObj, 0, "types");
    const Array<std::int64_t> connectivity = Table<std::int64_t>(connectivityObj, 0, "connectivity");
    if (types.ndim() != 1 || connectivity.ndim() != 1)
      throw py::value_error("types and connectivity must be one-dimensional arrays");
    std::uint64_t needed = 0;
    for (py::ssize_t e = 0; e < types.shape(0); ++e) {
      const int type = types.data()[e];
      if (type < 0 || type >= ZmElementTypeCount) break;
      needed += static_cast<std::uint64_t>(ZmMeshT<T>::NodeCount(static_cast<ZmElementType>(type)));
    }
    if (needed > static_cast<std::uint64_t>(connectivity.shape(0)))
      throw py::value_error("connectivity holds " + std::to_string(connectivity.shape(0)) + " node indices, the types need " +
                            std::to_string(needed));
    static_assert(sizeof(ZmElementType) == sizeof(int), "element types are read as ints");
    Array<T> values(types.shape(0));
    {
      py::gil_scoped_release release;
      batch(tag, nodes.GetData(), nodes.GetSize(), reinterpret_cast<const ZmElementType*>(types.data()),
            connectivity.data(), static_cast<std::uint64_t>(types.shape(0)), values.mutable_data());
    }
    for (py::ssize_t e = 0; e < values.shape(0); ++e) values.mutable_data()[e] = MarkerToNan(values.data()[e]);
    return std::move(values);
  });
}

}  // namespace

void BindMesh(py::module_& m) {
  py::tuple metrics(std::size(kMetrics)), types(std::size(kTypes));
  for (std::size_t i = 0; i < std::size(kMetrics); ++i) metrics[i] = kMetrics[i];
  for (std::size_t i = 0; i < std::size(kTypes); ++i) types[i] = kTypes[i];
  m.attr("ELEMENT_METRICS") = metrics;
  m.attr("ELEMENT_TYPES") = types;
  m.def(
      "mesh_metric",
      [](py::handle metric, py::handle nodes, py::handle types, py::handle connectivity) {
        const ZmElementMetric which = Metric(metric);
        return OverMesh(nodes, types, connectivity, [&](auto tag, auto... a) {
          ZmMeshT<decltype(tag)>::ComputeMeshMetric(which, a...);
        });
      },
      py::arg("metric"), py::arg("nodes"), py::arg("types"), py::arg("connectivity"),
      "The metric (name from ELEMENT_METRICS or its index) of every element; nan where it is not\n"
      "defined for the element's type or the element is degenerate.");
  m.def(
      "mesh_time_step",
      [](py::handle nodes, py::handle types, py::handle connectivity, double young, double poisson, double density,
         py::handle length) {
        const ZmElementMetric which = Metric(length);
        return OverMesh(nodes, types, connectivity, [&](auto tag, auto p, auto n, auto t, auto c, auto count, auto v) {
          using T = decltype(tag);
          ZmMeshT<T>::ComputeMeshTimeStep(which, p, n, t, c, count, T(young), T(poisson), T(density), v);
        });
      },
      py::arg("nodes"), py::arg("types"), py::arg("connectivity"), py::arg("young"), py::arg("poisson"),
      py::arg("density"), py::arg("length") = "characteristic_length",
      "The stable explicit time step Lc / c of every element (Lc the length metric 'characteristic_length',\n"
      "'characteristic_length_edges' or 'dimension'; c the bar, plane-stress or dilatational wave speed\n"
      "of beams, shells, solids); nan where either is undefined.");
}

}  // namespace zmpy
