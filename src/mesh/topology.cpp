// Element topologies, the metrics every type shares (edge ratio, volume by faces, the
// characteristic length of solids), the beam and the table from (type, metric) to kernel.
#include <algorithm>

#include "foundation/build_info.h"
#include "mesh/element_kernels.h"

ZM_BUILD_INFO(mesh_topology)

namespace zm {
namespace mesh {
namespace {

// Faces turn counter-clockwise seen from outside the positively oriented element.
const Topology kTopologies[ZmElementTypeCount] = {
    {2, 1, {{0, 1}}, 0, {}},
    {3, 3, {{0, 1}, {1, 2}, {2, 0}}, 1, {{3, {0, 1, 2, 0}}}},
    {4, 4, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}, 1, {{4, {0, 1, 2, 3}}}},
    {4, 6, {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}, 4,
     {{3, {0, 2, 1, 0}}, {3, {0, 1, 3, 0}}, {3, {1, 2, 3, 0}}, {3, {0, 3, 2, 0}}}},
    {5, 8, {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 4}, {1, 4}, {2, 4}, {3, 4}}, 5,
     {{4, {3, 2, 1, 0}}, {3, {0, 1, 4, 0}}, {3, {1, 2, 4, 0}}, {3, {2, 3, 4, 0}}, {3, {3, 0, 4, 0}}}},
    {6, 9, {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}}, 5,
     {{3, {0, 2, 1, 0}}, {3, {3, 4, 5, 0}}, {4, {0, 1, 4, 3}}, {4, {1, 2, 5, 4}}, {4, {2, 0, 3, 5}}}},
    {8, 12, {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {4, 5}, {5, 6}, {6, 7}, {7, 4}, {0, 4}, {1, 5}, {2, 6}, {3, 7}}, 6,
     {{4, {0, 1, 5, 4}}, {4, {1, 2, 6, 5}}, {4, {2, 3, 7, 6}}, {4, {3, 0, 4, 7}}, {4, {3, 2, 1, 0}}, {4, {4, 5, 6, 7}}}},
};

double BeamLength(const V3* p) { return Length(p[1] - p[0]); }


const KernelEntry kBeam[] = {{ZmMetricCharacteristicLength, BeamLength},
                             {ZmMetricCharacteristicLengthEdges, BeamLength}};
const KernelEntry kHexExtra[] = {{ZmMetricCharacteristicLength, CharacteristicLengthOf<ZmElementHex8>},
                                 {ZmMetricCharacteristicLengthEdges, CharacteristicLengthOf<ZmElementHex8>}};

template <std::size_t N>
KernelList ListOf(const KernelEntry (&entries)[N]) {
  return {entries, static_cast<int>(N)};
}

// The table, filled once from the per-type lists.
struct KernelTable {
  MetricKernel kernels[ZmElementTypeCount][ZmMetricCount] = {};
  void Fill(ZmElementType type, KernelList list) {
    for (int i = 0; i < list.count; ++i) kernels[type][list.entries[i].metric] = list.entries[i].kernel;
  }
  KernelTable() {
    Fill(ZmElementBeam2, ListOf(kBeam));
    Fill(ZmElementTri3, TriKernels());
    Fill(ZmElementQuad4, QuadKernels());
    Fill(ZmElementTet4, TetKernels());
    Fill(ZmElementPyramid5, PyramidKernels());
    Fill(ZmElementWedge6, WedgeKernels());
    Fill(ZmElementHex8, HexKernels());
    Fill(ZmElementHex8, ListOf(kHexExtra));
  }
};

}  // namespace

const Topology& TopologyOf(ZmElementType type) { return kTopologies[type]; }

MetricKernel KernelOf(ZmElementType type, ZmElementMetric metric) {
  static const KernelTable table;
  if (type < 0 || type >= ZmElementTypeCount || metric < 0 || metric >= ZmMetricCount) return nullptr;
  return table.kernels[type][metric];
}

double SolidCharacteristicLength(const V3* p, const Topology& topology) {
  double largest = 0.0;
  for (int f = 0; f < topology.faceCount; ++f) largest = std::max(largest, FaceArea(p, topology.faces[f]));
  if (!(largest > 0.0)) return kInvalid;
  return std::fabs(SolidVolume(p, topology)) / largest;
}

double FaceEquiangleSkew(const V3* p, const Face& face) {
  const int* n = face.n;
  const V3 nodes[4] = {p[n[0]], p[n[1]], p[n[2]], p[n[3]]};
  double lo, hi;
  if (face.count == 3) {
    if (!TriMinMaxAngle(nodes, lo, hi)) return 1.0;
    return std::max((hi - 60.0) / 120.0, (60.0 - lo) / 60.0);
  }
  if (!QuadMinMaxAngle(nodes, lo, hi)) return 1.0;
  return std::max((hi - 90.0) / 90.0, (90.0 - lo) / 90.0);
}

double FaceArea(const V3* p, const Face& face) {
  const int* n = face.n;
  if (face.count == 3) return 0.5 * Length(Cross(p[n[1]] - p[n[0]], p[n[2]] - p[n[0]]));
  return 0.5 * Length(Cross(p[n[2]] - p[n[0]], p[n[3]] - p[n[1]]));
}

// Tetrahedra from the node average to every face; a quad face is split into four triangles
// about its node average, which makes the sum the exact volume of the trilinear (bilinear-
// faced) element.
double SolidVolume(const V3* p, const Topology& topology) {
  V3 centre{0.0, 0.0, 0.0};
  for (int i = 0; i < topology.nodes; ++i) centre = centre + p[i];
  centre = (1.0 / topology.nodes) * centre;
  double volume = 0.0;
  for (int f = 0; f < topology.faceCount; ++f) {
    const Face& face = topology.faces[f];
    const int* n = face.n;
    if (face.count == 3) {
      volume += Triple(p[n[0]] - centre, p[n[1]] - centre, p[n[2]] - centre) / 6.0;
      continue;
    }
    const V3 faceCentre = 0.25 * (p[n[0]] + p[n[1]] + p[n[2]] + p[n[3]]);
    V3 side[4];
    for (int s = 0; s < 4; ++s) side[s] = centre - p[n[s]];
    const V3 toFace = centre - faceCentre;
    for (int j = 0; j < 3; ++j) volume += Dot(toFace, Cross(side[j + 1], side[j])) / 6.0;
    volume += Dot(toFace, Cross(side[0], side[3])) / 6.0;
  }
  return volume;
}

double EdgeRatio(const V3* p, const Topology& topology) {
  double shortest = 0.0, longest = 0.0;
  for (int e = 0; e < topology.edgeCount; ++e) {
    const double l2 = Length2(p[topology.edges[e][1]] - p[topology.edges[e][0]]);
    shortest = e == 0 ? l2 : std::min(shortest, l2);
    longest = e == 0 ? l2 : std::max(longest, l2);
  }
  if (!(shortest >= kTiny)) return kInvalid;
  return std::sqrt(longest / shortest);
}

// Ericson's region walk: vertex, edge and face regions in turn.
V3 ClosestPointOnTriangle(V3 q, V3 a, V3 b, V3 c, double& wb, double& wc) {
  const V3 ab = b - a, ac = c - a, aq = q - a;
  const double d1 = Dot(ab, aq), d2 = Dot(ac, aq);
  wb = wc = 0.0;
  if (d1 <= 0.0 && d2 <= 0.0) return a;
  const V3 bq = q - b;
  const double d3 = Dot(ab, bq), d4 = Dot(ac, bq);
  if (d3 >= 0.0 && d4 <= d3) {
    wb = 1.0;
    return b;
  }
  const double vc = d1 * d4 - d3 * d2;
  if (vc <= 0.0 && d1 >= 0.0 && d3 <= 0.0) {
    wb = d1 / (d1 - d3);
    return a + wb * ab;
  }
  const V3 cq = q - c;
  const double d5 = Dot(ab, cq), d6 = Dot(ac, cq);
  if (d6 >= 0.0 && d5 <= d6) {
    wc = 1.0;
    return c;
  }
  const double vb = d5 * d2 - d1 * d6;
  if (vb <= 0.0 && d2 >= 0.0 && d6 <= 0.0) {
    wc = d2 / (d2 - d6);
    return a + wc * ac;
  }
  const double va = d3 * d6 - d5 * d4;
  if (va <= 0.0 && (d4 - d3) >= 0.0 && (d5 - d6) >= 0.0) {
    wc = (d4 - d3) / ((d4 - d3) + (d5 - d6));
    wb = 1.0 - wc;
    return b + wc * (c - b);
  }
  const double denominator = 1.0 / (va + vb + vc);
  wb = vb * denominator;
  wc = vc * denominator;
  return a + wb * ab + wc * ac;
}

}  // namespace mesh
}  // namespace zm
