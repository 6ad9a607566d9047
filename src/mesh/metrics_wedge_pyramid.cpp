// Wedge and pyramid metrics with Verdict's definitions: the wedge from its six corner
// Jacobians, the pyramid from the four tetrahedra of its corners and the position of its apex
// over the base.
#include <algorithm>

#include "foundation/build_info.h"
#include "mesh/element_kernels.h"

ZM_BUILD_INFO(mesh_metrics_wedge_pyramid)

namespace zm {
namespace mesh {
namespace {

// Wedge corners: node, its neighbour along the triangle, the node above (or below) it, the
// other triangle neighbour; the corner Jacobian is (p[b] - p[o]) . ((p[a] - p[o]) x (p[c] - p[o])).
const int kWedgeCorners[6][4] = {{0, 1, 3, 2}, {1, 2, 4, 0}, {2, 0, 5, 1}, {3, 0, 4, 5}, {4, 1, 5, 3}, {5, 3, 4, 2}};
// An ideal corner (equilateral triangle, unit height) has determinant sqrt(3)/2.
const double kWedgeScale = 2.0 / std::sqrt(3.0);

struct Corner {
  V3 a, b, c;
  double det;
};
Corner WedgeCorner(const V3* p, int corner) {
  const int* k = kWedgeCorners[corner];
  const V3 o = p[k[0]];
  Corner c{p[k[1]] - o, p[k[2]] - o, p[k[3]] - o, 0.0};
  c.det = Dot(c.b, Cross(c.a, c.c));
  return c;
}

double WedgeJacobian(const V3* p) {
  double smallest = WedgeCorner(p, 0).det;
  for (int c = 1; c < 6; ++c) smallest = std::min(smallest, WedgeCorner(p, c).det);
  return smallest;
}

double WedgeScaledJacobian(const V3* p) {
  double smallest = 1.0e300;
  bool degenerate = false;
  for (int i = 0; i < 6; ++i) {
    const Corner c = WedgeCorner(p, i);
    const double product = Length2(c.a) * Length2(c.b) * Length2(c.c);
    degenerate = degenerate || !(product > kTiny);
    smallest = std::min(smallest, c.det / std::sqrt(product));
  }
  return degenerate ? kInvalid : smallest * kWedgeScale;
}

// 3 (scaled det)^(2/3) / (sum of the squared corner edges), the smallest over the corners; 0 as
// soon as one corner is not positive.
double WedgeShape(const V3* p) {
  double smallest = 1.0;
  for (int i = 0; i < 6; ++i) {
    const Corner c = WedgeCorner(p, i);
    if (!(c.det > kTiny)) return 0.0;
    const double shape =
        3.0 * std::pow(c.det * 2.0 / std::sqrt(3.0), 2.0 / 3.0) / (Length2(c.a) + Length2(c.b) + Length2(c.c));
    smallest = std::min(smallest, shape);
  }
  return smallest;
}

template <ZmElementType Type>
double SolidEquiangleSkew(const V3* p) {
  const Topology& topology = TopologyOf(Type);
  double largest = 0.0;
  for (int f = 0; f < topology.faceCount; ++f) largest = std::max(largest, FaceEquiangleSkew(p, topology.faces[f]));
  return largest;
}

// The pyramid's corner tetrahedra: each base triangle with the apex.
const int kPyramidTets[4][4] = {{0, 1, 2, 4}, {0, 2, 3, 4}, {0, 1, 3, 4}, {1, 2, 3, 4}};

double PyramidJacobian(const V3* p) {
  double smallest = 0.0;
  for (int t = 0; t < 4; ++t) {
    const int* k = kPyramidTets[t];
    const double det = Triple(p[k[3]] - p[k[0]], p[k[1]] - p[k[0]], p[k[2]] - p[k[0]]);
    smallest = t == 0 ? det : std::min(smallest, det);
  }
  return smallest;
}

// The smallest scaled Jacobian of the corner tetrahedra times sqrt(2) (1 for the pyramid whose
// edges are all equal), folded back below 1 (2 - x above it); 0 when not positive.
double PyramidScaledJacobian(const V3* p) {
  double smallest = 0.0;
  for (int t = 0; t < 4; ++t) {
    const V3 tet[4] = {p[kPyramidTets[t][0]], p[kPyramidTets[t][1]], p[kPyramidTets[t][2]], p[kPyramidTets[t][3]]};
    const double value = TetScaledJacobian(tet);
    if (value == kInvalid) return kInvalid;
    smallest = t == 0 ? value : std::min(smallest, value);
  }
  if (smallest <= 0.0) return 0.0;
  const double scaled = smallest * 2.0 / std::sqrt(2.0);
  return scaled < 1.0 ? scaled : 1.0 - (scaled - 1.0);
}

// Quad shape of the base times the cosine of the apex's tilt from the base normal times the
// ratio of the apex height to the ideal one (the longest edge / sqrt(2)), or its inverse: 1 for
// the pyramid with all edges equal.
double PyramidShape(const V3* p) {
  const double base = QuadShape(p);
  if (base == 0.0) return 0.0;
  const V3 centroid = 0.25 * (p[0] + p[1] + p[2] + p[3]);
  const V3 normal = Cross(p[1] - p[0], p[3] - p[0]);
  const V3 toApex = p[4] - centroid;
  const double normalLength = Length(normal), apexDistance = Length(toApex);
  if (!(normalLength > 0.0) || !(apexDistance > 0.0)) return 0.0;
  const double height = Dot(toApex, normal) / normalLength;
  const double cosine = height / apexDistance;
  if (height <= 0.0 || cosine <= 0.0) return 0.0;
  const Topology& topology = TopologyOf(ZmElementPyramid5);
  double longest = 0.0;
  for (int e = 0; e < topology.edgeCount; ++e)
    longest = std::max(longest, Length2(p[topology.edges[e][1]] - p[topology.edges[e][0]]));
  const double ideal = std::sqrt(longest) * (std::sqrt(2.0) / 2.0);
  const double ratio = height < ideal ? height / ideal : ideal / height;
  return base * cosine * ratio;
}

const KernelEntry kWedge[] = {
    {ZmMetricVolume, VolumeOf<ZmElementWedge6>},
    {ZmMetricEdgeRatio, EdgeRatioOf<ZmElementWedge6>},
    {ZmMetricJacobian, WedgeJacobian},
    {ZmMetricScaledJacobian, WedgeScaledJacobian},
    {ZmMetricShape, WedgeShape},
    {ZmMetricEquiangleSkew, SolidEquiangleSkew<ZmElementWedge6>},
    {ZmMetricCharacteristicLength, CharacteristicLengthOf<ZmElementWedge6>},
    {ZmMetricCharacteristicLengthEdges, CharacteristicLengthOf<ZmElementWedge6>},
};
const KernelEntry kPyramid[] = {
    {ZmMetricVolume, VolumeOf<ZmElementPyramid5>},
    {ZmMetricEdgeRatio, EdgeRatioOf<ZmElementPyramid5>},
    {ZmMetricJacobian, PyramidJacobian},
    {ZmMetricScaledJacobian, PyramidScaledJacobian},
    {ZmMetricShape, PyramidShape},
    {ZmMetricEquiangleSkew, SolidEquiangleSkew<ZmElementPyramid5>},
    {ZmMetricCharacteristicLength, CharacteristicLengthOf<ZmElementPyramid5>},
    {ZmMetricCharacteristicLengthEdges, CharacteristicLengthOf<ZmElementPyramid5>},
};

}  // namespace

KernelList WedgeKernels() { return {kWedge, static_cast<int>(sizeof(kWedge) / sizeof(kWedge[0]))}; }
KernelList PyramidKernels() { return {kPyramid, static_cast<int>(sizeof(kPyramid) / sizeof(kPyramid[0]))}; }

}  // namespace mesh
}  // namespace zm
