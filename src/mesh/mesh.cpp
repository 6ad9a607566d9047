// ZmMeshd / ZmMeshf: one element at a time and the batch forms over a mesh. The kernels run in
// double whatever the twin; the float twin rounds each result once.
#include <algorithm>
#include <utility>
#include <vector>

#include "foundation/build_info.h"
#include "mesh/element_kernels.h"
#include "zemcalc/ZmMesh.h"

ZM_BUILD_INFO(mesh)

using namespace zm::mesh;

namespace {

double WaveSpeed(ZmWaveSpeed kind, double e, double nu, double rho) {
  if (!std::isfinite(e) || !std::isfinite(nu) || !std::isfinite(rho) || !(e > 0.0) || !(rho > 0.0)) return kInvalid;
  switch (kind) {
    case ZmWaveSpeedBar:
      return std::sqrt(e / rho);
    case ZmWaveSpeedPlaneStress:
      if (!(nu > -1.0 && nu < 1.0)) return kInvalid;
      return std::sqrt(e / (rho * (1.0 - nu * nu)));
    case ZmWaveSpeedDilatational:
      if (!(nu > -1.0 && nu < 0.5)) return kInvalid;
      return std::sqrt(e * (1.0 - nu) / (rho * (1.0 + nu) * (1.0 - 2.0 * nu)));
  }
  return kInvalid;
}

ZmWaveSpeed WaveSpeedOf(ZmElementType type) {
  if (type == ZmElementBeam2) return ZmWaveSpeedBar;
  if (type == ZmElementTri3 || type == ZmElementQuad4) return ZmWaveSpeedPlaneStress;
  return ZmWaveSpeedDilatational;
}

bool IsLengthMetric(ZmElementMetric metric) {
  return metric == ZmMetricCharacteristicLength || metric == ZmMetricCharacteristicLengthEdges ||
         metric == ZmMetricDimension;
}

double TimeStep(double length, double speed) {
  if (length == kInvalid || speed == kInvalid || !(speed > 0.0)) return kInvalid;
  return length / speed;
}

// Walks the packed connectivity, calling evaluate(type, nodes) for each element whose nodes are
// all usable; the others get the invalid marker. Returns the count of valid values.
template <class T, class Evaluate>
std::uint64_t WalkMesh(const ZmPoint3T<T>* nodes, std::uint64_t nodeCount, const ZmElementType* types,
                       const std::int64_t* connectivity, std::uint64_t elementCount, T* values, Evaluate evaluate) {
  if (!values) return 0;
  const T invalid = zm::Invalid<T>();
  std::uint64_t valid = 0, position = 0, e = 0;
  const bool usable = nodes && types && connectivity;
  for (; usable && e < elementCount; ++e) {
    if (!IsKnownType(types[e])) break;
    const int n = TopologyOf(types[e]).nodes;
    V3 p[8];
    const bool loaded = GatherNodes(nodes, nodeCount, connectivity + position, n, p);
    position += static_cast<std::uint64_t>(n);
    const double value = loaded ? evaluate(types[e], p) : kInvalid;
    values[e] = value == kInvalid ? invalid : T(value);
    if (value != kInvalid) ++valid;
  }
  for (; e < elementCount; ++e) values[e] = invalid;
  return valid;
}

}  // namespace

template <class T>
int ZmMeshT<T>::NodeCount(ZmElementType type) {
  return IsKnownType(type) ? TopologyOf(type).nodes : 0;
}

template <class T>
unsigned char ZmMeshT<T>::IsMetricDefined(ZmElementType type, ZmElementMetric metric) {
  return KernelOf(type, metric) ? 1 : 0;
}

template <class T>
T ZmMeshT<T>::ComputeMetric(ZmElementType type, ZmElementMetric metric, const Point* nodes) {
  const MetricKernel kernel = KernelOf(type, metric);
  V3 p[8];
  if (!kernel || !nodes || !LoadNodes(nodes, TopologyOf(type).nodes, p)) return zm::Invalid<T>();
  const double value = kernel(p);
  return value == kInvalid ? zm::Invalid<T>() : T(value);
}

template <class T>
unsigned char ZmMeshT<T>::IsShellAlongNormal(ZmElementType type, const Point* nodes, const Vector& normal) {
  if ((type != ZmElementTri3 && type != ZmElementQuad4) || !nodes) return 0;
  V3 p[4];
  if (!LoadNodes(nodes, TopologyOf(type).nodes, p)) return 0;
  const V3 own = type == ZmElementTri3 ? Cross(p[1] - p[0], p[2] - p[0]) : Cross(p[2] - p[0], p[3] - p[1]);
  return Dot(own, V3{double(normal.x), double(normal.y), double(normal.z)}) > 0.0 ? 1 : 0;
}

template <class T>
T ZmMeshT<T>::ComputeWaveSpeed(ZmWaveSpeed kind, T youngModulus, T poissonRatio, T density) {
  const double c = WaveSpeed(kind, youngModulus, poissonRatio, density);
  return c == kInvalid ? zm::Invalid<T>() : T(c);
}

template <class T>
T ZmMeshT<T>::ComputeTimeStep(ZmElementType type, ZmElementMetric lengthMetric, const Point* nodes, T youngModulus,
                              T poissonRatio, T density) {
  if (!IsLengthMetric(lengthMetric) || !IsKnownType(type)) return zm::Invalid<T>();
  const T length = ComputeMetric(type, lengthMetric, nodes);
  const double dt = TimeStep(length == zm::Invalid<T>() ? kInvalid : double(length),
                             WaveSpeed(WaveSpeedOf(type), youngModulus, poissonRatio, density));
  return dt == kInvalid ? zm::Invalid<T>() : T(dt);
}

template <class T>
std::uint64_t ZmMeshT<T>::ComputeMeshMetric(ZmElementMetric metric, const Point* nodes, std::uint64_t nodeCount,
                                            const ZmElementType* types, const std::int64_t* connectivity,
                                            std::uint64_t elementCount, T* values) {
  return WalkMesh(nodes, nodeCount, types, connectivity, elementCount, values,
                  [metric](ZmElementType type, const V3* p) {
                    const MetricKernel kernel = KernelOf(type, metric);
                    return kernel ? kernel(p) : kInvalid;
                  });
}

template <class T>
std::uint64_t ZmMeshT<T>::ComputeMeshTimeStep(ZmElementMetric lengthMetric, const Point* nodes,
                                              std::uint64_t nodeCount, const ZmElementType* types,
                                              const std::int64_t* connectivity, std::uint64_t elementCount,
                                              T youngModulus, T poissonRatio, T density, T* values) {
  double speeds[ZmElementTypeCount];
  for (int t = 0; t < ZmElementTypeCount; ++t)
    speeds[t] = WaveSpeed(WaveSpeedOf(ZmElementType(t)), youngModulus, poissonRatio, density);
  const bool lengthOk = IsLengthMetric(lengthMetric);
  return WalkMesh(nodes, nodeCount, types, connectivity, elementCount, values,
                  [&](ZmElementType type, const V3* p) {
                    const MetricKernel kernel = lengthOk ? KernelOf(type, lengthMetric) : nullptr;
                    return kernel ? TimeStep(kernel(p), speeds[type]) : kInvalid;
                  });
}

template <class T>
std::uint64_t ZmMeshT<T>::SmallestValues(const T* values, std::uint64_t elementCount, std::uint64_t count, T* smallest,
                                         std::uint64_t* indices) {
  if (!values || !smallest || !indices || count == 0) return 0;
  std::vector<std::pair<T, std::uint64_t>> valid;
  for (std::uint64_t e = 0; e < elementCount; ++e)
    if (values[e] != zm::Invalid<T>() && !std::isnan(values[e])) valid.emplace_back(values[e], e);
  const std::size_t k = static_cast<std::size_t>(std::min<std::uint64_t>(count, valid.size()));
  std::partial_sort(valid.begin(), valid.begin() + static_cast<std::ptrdiff_t>(k), valid.end());
  for (std::size_t i = 0; i < k; ++i) {
    smallest[i] = valid[i].first;
    indices[i] = valid[i].second;
  }
  return k;
}

template class ZmMeshT<double>;
template class ZmMeshT<float>;
