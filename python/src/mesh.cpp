// Element metrics and the initial-penetration search over meshes: nodes an (n, 3) array, types one
// integer per element (the index of its type in ELEMENT_TYPES), connectivity the elements' node
// indices packed element after element. The connectivity is checked to hold every node the types
// ask for before the library reads it; an element with an unknown type or a node index out of range
// gets nan (and, being of unknown size, ends the walk: the elements after an unknown type get nan
// too).
#include <cstring>
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

// Raises ValueError unless types and connectivity are one-dimensional and the connectivity holds
// every node index the types ask for, up to the first unknown type (where the library stops).
void CheckConnectivity(const Array<int>& types, const Array<std::int64_t>& connectivity) {
  if (types.ndim() != 1 || connectivity.ndim() != 1)
    throw py::value_error("types and connectivity must be one-dimensional arrays");
  std::uint64_t needed = 0;
  for (py::ssize_t e = 0; e < types.shape(0); ++e) {
    const int type = types.data()[e];
    if (type < 0 || type >= ZmElementTypeCount) break;
    needed += static_cast<std::uint64_t>(ZmMeshT<double>::NodeCount(static_cast<ZmElementType>(type)));
  }
  if (needed > static_cast<std::uint64_t>(connectivity.shape(0)))
    throw py::value_error("connectivity holds " + std::to_string(connectivity.shape(0)) +
                          " node indices, the types need " + std::to_string(needed));
}
static_assert(sizeof(ZmElementType) == sizeof(int), "element types are read as ints");

// The n values of T of an optional array (None: a null pointer to the library), kept in keep.
template <class T>
const T* OptionalValues(py::handle obj, py::ssize_t n, const char* what, const char* per, Array<T>& keep) {
  if (obj.is_none()) return nullptr;
  keep = Table<T>(obj, 0, what);
  if (keep.ndim() != 1 || keep.shape(0) != n)
    throw py::value_error(std::string(what) + " must hold one value per " + per + " (" + std::to_string(n) + ")");
  return keep.data();
}

// Every penetration (depth > 0) of the query nodes into the shell segments, as a dict of arrays.
py::dict FindPenetrations(py::handle nodesObj, py::handle typesObj, py::handle connectivityObj, py::handle queryObj,
                          py::handle nodeThicknessObj, py::handle segmentThicknessObj) {
  return WithTwin(nodesObj, [&](auto tag) {
    using T = decltype(tag);
    const Points<T> nodes = ToPoints<T>(nodesObj, "nodes");
    const Array<int> types = Table<int>(typesObj, 0, "types");
    const Array<std::int64_t> connectivity = Table<std::int64_t>(connectivityObj, 0, "connectivity");
    CheckConnectivity(types, connectivity);
    const auto nodeCount = static_cast<py::ssize_t>(nodes.GetSize());
    Array<T> keepNode, keepSegment;
    const T* nodeThickness = OptionalValues(nodeThicknessObj, nodeCount, "node_thickness", "node", keepNode);
    const T* segmentThickness =
        OptionalValues(segmentThicknessObj, types.shape(0), "segment_thickness", "segment", keepSegment);
    Array<std::int64_t> query;
    if (!queryObj.is_none()) query = Table<std::int64_t>(queryObj, 0, "query_nodes");
    static_assert(sizeof(std::int64_t) == sizeof(std::uint64_t), "negative indices read as huge ones are skipped");
    WbArrayTempl<ZmPenetrationT<T>> found;
    {
      py::gil_scoped_release release;
      ZmMeshT<T>::FindPenetrations(nodes.GetData(), nodes.GetSize(),
                                   queryObj.is_none() ? nullptr : reinterpret_cast<const std::uint64_t*>(query.data()),
                                   queryObj.is_none() ? 0 : static_cast<std::uint64_t>(query.size()), nodeThickness,
                                   reinterpret_cast<const ZmElementType*>(types.data()), connectivity.data(),
                                   static_cast<std::uint64_t>(types.shape(0)), segmentThickness, found);
    }
    const auto k = static_cast<py::ssize_t>(found.GetSize());
    Array<std::int64_t> node(k), segment(k);
    Array<T> depth(k), distance(k), closest({k, py::ssize_t(3)}), natural({k, py::ssize_t(3)}),
        normal({k, py::ssize_t(3)});
    for (py::ssize_t i = 0; i < k; ++i) {
      const ZmPenetrationT<T>& p = found[static_cast<std::uint64_t>(i)];
      node.mutable_data()[i] = static_cast<std::int64_t>(p.node);
      segment.mutable_data()[i] = static_cast<std::int64_t>(p.segment);
      depth.mutable_data()[i] = p.depth;
      distance.mutable_data()[i] = p.distance;
      const WbCoord3DT<T>* rows[3] = {&p.closest, &p.natural, &p.normal};
      T* out[3] = {closest.mutable_data(), natural.mutable_data(), normal.mutable_data()};
      for (int r = 0; r < 3; ++r) std::memcpy(out[r] + 3 * i, &rows[r]->x, 3 * sizeof(T));
    }
    py::dict d;
    d["node"] = node;
    d["segment"] = segment;
    d["depth"] = depth;
    d["distance"] = distance;
    d["closest"] = closest;
    d["natural"] = natural;
    d["normal"] = normal;
    return d;
  });
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
    CheckConnectivity(types, connectivity);
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
  m.def("find_penetrations", &FindPenetrations, py::arg("nodes"), py::arg("types"), py::arg("connectivity"),
        py::arg("query_nodes") = py::none(), py::arg("node_thickness") = py::none(),
        py::arg("segment_thickness") = py::none(),
        "Initial penetrations of nodes into shell segments (types tri3 or quad4, packed connectivity):\n"
        "every (node, segment) whose distance is below the contact distance (node and segment\n"
        "thickness, one value each or None for 0, halved and added), the segment's own nodes left out.\n"
        "query_nodes: the node indices to test (all when None; indices out of range are skipped).\n"
        "Returns a dict of arrays ordered by node, then segment: 'node', 'segment' (int64), 'depth'\n"
        "(> 0), 'distance' (to the mid-surface), 'closest', 'natural' (in the segment, t = 0) and\n"
        "'normal' (unit, towards the node), (k, 3). A type other than a shell segment, or a node index\n"
        "out of range, in the segments gives no penetration at all (empty arrays), as in the library.");
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
