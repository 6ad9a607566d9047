// Penetration of nodes into shell segments: one node against one segment, and the search of a
// whole set of nodes against a set of segments on a uniform grid.
#include <algorithm>
#include <vector>

#include "foundation/build_info.h"
#include "mesh/element_kernels.h"
#include "zemcalc/ZmMesh.h"

ZM_BUILD_INFO(mesh_penetration)

using namespace zm::mesh;

namespace {

// Natural coordinates of the quad corners; the centre is (0, 0).
const double kQuadCorner[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};

struct Contact {
  V3 closest, natural, normal;
  double distance;
};

// Closest point over the segment's triangles (a quad: four about its node average); false for a
// degenerate segment.
bool ClosestOnSegment(ZmElementType type, const V3* p, V3 q, Contact& c) {
  double wb, wc;
  if (type == ZmElementTri3) {
    c.normal = Cross(p[1] - p[0], p[2] - p[0]);
    if (!(Normalize(c.normal) > 0.0)) return false;
    c.closest = ClosestPointOnTriangle(q, p[0], p[1], p[2], wb, wc);
    c.natural = {wb, wc, 0.0};
  } else {
    V3 own = Cross(p[2] - p[0], p[3] - p[1]);
    if (!(Normalize(own) > 0.0)) return false;
    const V3 centre = 0.25 * (p[0] + p[1] + p[2] + p[3]);
    double best = -1.0;
    for (int i = 0; i < 4; ++i) {
      const int j = (i + 1) % 4;
      const V3 point = ClosestPointOnTriangle(q, centre, p[i], p[j], wb, wc);
      const double d = Length2(q - point);
      if (best >= 0.0 && !(d < best)) continue;
      best = d;
      c.closest = point;
      c.natural = {wb * kQuadCorner[i][0] + wc * kQuadCorner[j][0], wb * kQuadCorner[i][1] + wc * kQuadCorner[j][1],
                   0.0};
      c.normal = Cross(p[i] - centre, p[j] - centre);
      if (!(Normalize(c.normal) > 0.0)) c.normal = own;
    }
  }
  const V3 offset = q - c.closest;
  c.distance = Length(offset);
  if (Dot(offset, c.normal) < 0.0) c.normal = -c.normal;
  return true;
}

template <class T>
void Fill(const Contact& c, double contactDistance, ZmPenetrationT<T>& out) {
  out.depth = T(contactDistance - c.distance);
  out.distance = T(c.distance);
  out.closest = ToPoint<T>(c.closest);
  out.natural = ToPoint<T>(c.natural);
  out.normal = ZmVector3T<T>(T(c.normal.x), T(c.normal.y), T(c.normal.z));
}

bool IsSegmentType(ZmElementType type) { return type == ZmElementTri3 || type == ZmElementQuad4; }

// A segment's node indices and its box widened by the reach of a contact (its coordinates are
// gathered again when a node is tested against it, which keeps the index small).
struct Segment {
  std::int64_t ids[4];
  ZmElementType type;
  double halfThickness;
  V3 lo, hi;
};

// A segment spanning more cells than this along an axis is tested against every node instead of
// being binned, so that one huge segment cannot fill the grid.
constexpr double kMaxCellsPerAxis = 8.0;
constexpr double kMaxCellIndex = 1.0e12;

std::int64_t CellIndex(double x, double cell) {
  const double i = std::floor(x / cell);
  return static_cast<std::int64_t>(std::max(-kMaxCellIndex, std::min(kMaxCellIndex, i)));
}
std::uint64_t CellKey(std::int64_t i, std::int64_t j, std::int64_t k) {
  std::uint64_t h = static_cast<std::uint64_t>(i) * 0x9E3779B97F4A7C15ull;
  h ^= static_cast<std::uint64_t>(j) * 0xC2B2AE3D27D4EB4Full + (h << 6) + (h >> 2);
  h ^= static_cast<std::uint64_t>(k) * 0x165667B19E3779F9ull + (h << 6) + (h >> 2);
  return h;
}

}  // namespace

template <class T>
unsigned char ZmMeshT<T>::ComputePenetration(ZmElementType type, const Point* segment, const Point& node,
                                             T nodeThickness, T segmentThickness, Penetration& out) {
  V3 p[4], q;
  if (!IsSegmentType(type) || !segment || !LoadNodes(segment, TopologyOf(type).nodes, p) || !LoadNodes(&node, 1, &q) ||
      !std::isfinite(double(nodeThickness) + double(segmentThickness)))
    return 0;
  Contact c;
  if (!ClosestOnSegment(type, p, q, c)) return 0;
  Fill(c, 0.5 * (double(nodeThickness) + double(segmentThickness)), out);
  return 1;
}

template <class T>
std::uint64_t ZmMeshT<T>::FindPenetrations(const Point* nodes, std::uint64_t nodeCount,
                                           const std::uint64_t* queryNodes, std::uint64_t queryCount,
                                           const T* nodeThickness, const ZmElementType* segmentTypes,
                                           const std::int64_t* segmentConnectivity, std::uint64_t segmentCount,
                                           const T* segmentThickness, WbArrayTempl<Penetration>& out) {
  if (!nodes || !segmentTypes || !segmentConnectivity) return 0;
  const auto halfThicknessOfNode = [&](std::uint64_t i) {
    return nodeThickness && std::isfinite(double(nodeThickness[i])) ? 0.5 * std::fabs(double(nodeThickness[i])) : 0.0;
  };
  double maxNodeHalf = 0.0;
  for (std::uint64_t i = 0; nodeThickness && i < nodeCount; ++i) maxNodeHalf = std::max(maxNodeHalf, halfThicknessOfNode(i));

  // Segments, their widened boxes and the mean box size as the grid cell.
  std::vector<Segment> segments(static_cast<std::size_t>(segmentCount));
  std::vector<char> usable(segments.size(), 1);
  double sizeSum = 0.0;
  std::uint64_t position = 0;
  for (std::uint64_t s = 0; s < segmentCount; ++s) {
    Segment& g = segments[s];
    g.type = segmentTypes[s];
    if (!IsSegmentType(g.type)) return 0;
    const int n = TopologyOf(g.type).nodes;
    for (int i = 0; i < n; ++i) {
      g.ids[i] = segmentConnectivity[position + static_cast<std::uint64_t>(i)];
      if (g.ids[i] < 0 || static_cast<std::uint64_t>(g.ids[i]) >= nodeCount) return 0;
    }
    V3 p[4];
    usable[s] = GatherNodes(nodes, nodeCount, segmentConnectivity + position, n, p) ? 1 : 0;
    position += static_cast<std::uint64_t>(n);
    const double t = segmentThickness ? double(segmentThickness[s]) : 0.0;
    g.halfThickness = std::isfinite(t) ? 0.5 * std::fabs(t) : 0.0;
    if (!usable[s]) continue;
    g.lo = g.hi = p[0];
    for (int i = 1; i < n; ++i) {
      g.lo = {std::min(g.lo.x, p[i].x), std::min(g.lo.y, p[i].y), std::min(g.lo.z, p[i].z)};
      g.hi = {std::max(g.hi.x, p[i].x), std::max(g.hi.y, p[i].y), std::max(g.hi.z, p[i].z)};
    }
    const double reach = g.halfThickness + maxNodeHalf;
    g.lo = g.lo - V3{reach, reach, reach};
    g.hi = g.hi + V3{reach, reach, reach};
    const V3 extent = g.hi - g.lo;
    sizeSum += std::max(extent.x, std::max(extent.y, extent.z));
  }
  double cell = segmentCount ? sizeSum / double(segmentCount) : 1.0;
  if (!(cell > 0.0) || !std::isfinite(cell)) cell = 1.0;

  // (cell key, segment) pairs sorted by key, and the oversized segments.
  std::vector<std::pair<std::uint64_t, std::uint64_t>> bins;
  std::vector<std::uint64_t> oversized;
  for (std::uint64_t s = 0; s < segmentCount; ++s) {
    if (!usable[s]) continue;
    const Segment& g = segments[s];
    const std::int64_t i0 = CellIndex(g.lo.x, cell), i1 = CellIndex(g.hi.x, cell);
    const std::int64_t j0 = CellIndex(g.lo.y, cell), j1 = CellIndex(g.hi.y, cell);
    const std::int64_t k0 = CellIndex(g.lo.z, cell), k1 = CellIndex(g.hi.z, cell);
    if (double(i1 - i0) >= kMaxCellsPerAxis || double(j1 - j0) >= kMaxCellsPerAxis ||
        double(k1 - k0) >= kMaxCellsPerAxis) {
      oversized.push_back(s);
      continue;
    }
    for (std::int64_t i = i0; i <= i1; ++i)
      for (std::int64_t j = j0; j <= j1; ++j)
        for (std::int64_t k = k0; k <= k1; ++k) bins.emplace_back(CellKey(i, j, k), s);
  }
  std::sort(bins.begin(), bins.end());

  const std::uint64_t before = out.GetSize();
  const std::uint64_t queries = queryNodes ? queryCount : nodeCount;
  std::vector<std::uint64_t> candidates;
  for (std::uint64_t qi = 0; qi < queries; ++qi) {
    const std::uint64_t node = queryNodes ? queryNodes[qi] : qi;
    V3 q;
    if (node >= nodeCount || !LoadNodes(&nodes[node], 1, &q)) continue;
    const std::uint64_t key = CellKey(CellIndex(q.x, cell), CellIndex(q.y, cell), CellIndex(q.z, cell));
    candidates.assign(oversized.begin(), oversized.end());
    auto it = std::lower_bound(bins.begin(), bins.end(), std::make_pair(key, std::uint64_t(0)));
    for (; it != bins.end() && it->first == key; ++it) candidates.push_back(it->second);
    std::sort(candidates.begin(), candidates.end());
    const double nodeHalf = halfThicknessOfNode(node);
    for (std::uint64_t s : candidates) {
      const Segment& g = segments[s];
      const int n = TopologyOf(g.type).nodes;
      if (std::find(g.ids, g.ids + n, static_cast<std::int64_t>(node)) != g.ids + n) continue;
      if (q.x < g.lo.x || q.y < g.lo.y || q.z < g.lo.z || q.x > g.hi.x || q.y > g.hi.y || q.z > g.hi.z) continue;
      V3 p[4];
      Contact c;
      const double contactDistance = nodeHalf + g.halfThickness;
      GatherNodes(nodes, nodeCount, g.ids, n, p);
      if (!ClosestOnSegment(g.type, p, q, c) || !(c.distance < contactDistance)) continue;
      Penetration found;
      Fill(c, contactDistance, found);
      found.node = node;
      found.segment = s;
      out.Add(found);
    }
  }
  return out.GetSize() - before;
}

template unsigned char ZmMeshT<double>::ComputePenetration(ZmElementType, const Point*, const Point&, double, double,
                                                           Penetration&);
template unsigned char ZmMeshT<float>::ComputePenetration(ZmElementType, const Point*, const Point&, float, float,
                                                          Penetration&);
template std::uint64_t ZmMeshT<double>::FindPenetrations(const Point*, std::uint64_t, const std::uint64_t*,
                                                         std::uint64_t, const double*, const ZmElementType*,
                                                         const std::int64_t*, std::uint64_t, const double*,
                                                         WbArrayTempl<Penetration>&);
template std::uint64_t ZmMeshT<float>::FindPenetrations(const Point*, std::uint64_t, const std::uint64_t*,
                                                        std::uint64_t, const float*, const ZmElementType*,
                                                        const std::int64_t*, std::uint64_t, const float*,
                                                        WbArrayTempl<Penetration>&);
