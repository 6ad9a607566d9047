// Natural coordinates: the shape functions of every type, the forward map, and the inverse by
// Newton iterations (least squares on the 3x2 Jacobian for shells), with the closest point of
// the element for points outside it.
#include <algorithm>

#include "foundation/build_info.h"
#include "mesh/element_kernels.h"
#include "zemcalc/ZmMesh.h"

ZM_BUILD_INFO(mesh_natural_coordinates)

using namespace zm::mesh;

namespace {

constexpr int kDefaultIterations = 20;
constexpr double kDefaultTolerance = 1.0e-12;
// A Jacobian whose determinant is below this fraction of the cube (square for shells) of the
// element's size is singular.
constexpr double kSingular = 1.0e-14;

// Reference corners of the quad and the hexahedron.
const double kCorner[8][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                              {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};

struct ShapeValues {
  double n[8];
  double d[8][3];  // derivatives along r, s, t
};

// Shape functions at (r, s, t). The pyramid is the hexahedron collapsed onto its apex:
// N_i = (1 - t)(1 + r r_i)(1 + s s_i)/4 for the base, N_4 = t, t in [0, 1].
void Shape(ZmElementType type, double r, double s, double t, ShapeValues& v) {
  v = ShapeValues{};
  switch (type) {
    case ZmElementBeam2:
      v.n[0] = 0.5 * (1 - r), v.n[1] = 0.5 * (1 + r);
      v.d[0][0] = -0.5, v.d[1][0] = 0.5;
      return;
    case ZmElementTri3:
    case ZmElementTet4: {
      const bool tet = type == ZmElementTet4;
      v.n[0] = 1 - r - s - (tet ? t : 0.0), v.n[1] = r, v.n[2] = s;
      v.d[0][0] = v.d[0][1] = -1, v.d[1][0] = 1, v.d[2][1] = 1;
      if (tet) v.n[3] = t, v.d[0][2] = -1, v.d[3][2] = 1;
      return;
    }
    case ZmElementQuad4:
      for (int i = 0; i < 4; ++i) {
        const double a = 1 + r * kCorner[i][0], b = 1 + s * kCorner[i][1];
        v.n[i] = 0.25 * a * b;
        v.d[i][0] = 0.25 * kCorner[i][0] * b, v.d[i][1] = 0.25 * a * kCorner[i][1];
      }
      return;
    case ZmElementHex8:
      for (int i = 0; i < 8; ++i) {
        const double a = 1 + r * kCorner[i][0], b = 1 + s * kCorner[i][1], c = 1 + t * kCorner[i][2];
        v.n[i] = 0.125 * a * b * c;
        v.d[i][0] = 0.125 * kCorner[i][0] * b * c, v.d[i][1] = 0.125 * a * kCorner[i][1] * c,
        v.d[i][2] = 0.125 * a * b * kCorner[i][2];
      }
      return;
    case ZmElementWedge6: {
      const double l[3] = {1 - r - s, r, s}, dl[3][2] = {{-1, -1}, {1, 0}, {0, 1}};
      for (int i = 0; i < 6; ++i) {
        const double h = i < 3 ? 0.5 * (1 - t) : 0.5 * (1 + t), dh = i < 3 ? -0.5 : 0.5;
        v.n[i] = l[i % 3] * h;
        v.d[i][0] = dl[i % 3][0] * h, v.d[i][1] = dl[i % 3][1] * h, v.d[i][2] = l[i % 3] * dh;
      }
      return;
    }
    case ZmElementPyramid5:
      for (int i = 0; i < 4; ++i) {
        const double a = 1 + r * kCorner[i][0], b = 1 + s * kCorner[i][1];
        v.n[i] = 0.25 * (1 - t) * a * b;
        v.d[i][0] = 0.25 * (1 - t) * kCorner[i][0] * b, v.d[i][1] = 0.25 * (1 - t) * a * kCorner[i][1],
        v.d[i][2] = -0.25 * a * b;
      }
      v.n[4] = t, v.d[4][2] = 1;
      return;
    default:
      return;
  }
}

bool IsShell(ZmElementType type) { return type == ZmElementTri3 || type == ZmElementQuad4; }
bool IsLinear(ZmElementType type) { return type == ZmElementTri3 || type == ZmElementTet4; }

V3 Start(ZmElementType type) {
  switch (type) {
    case ZmElementTri3:
      return {1.0 / 3.0, 1.0 / 3.0, 0.0};
    case ZmElementTet4:
      return {0.25, 0.25, 0.25};
    case ZmElementWedge6:
      return {1.0 / 3.0, 1.0 / 3.0, 0.0};
    case ZmElementPyramid5:
      return {0.0, 0.0, 0.25};
    default:
      return {0.0, 0.0, 0.0};
  }
}

bool IsInside(ZmElementType type, V3 x, double tol) {
  const double lo = -tol, hi = 1 + tol;
  switch (type) {
    case ZmElementTri3:
      return x.x >= lo && x.y >= lo && x.x + x.y <= hi;
    case ZmElementTet4:
      return x.x >= lo && x.y >= lo && x.z >= lo && x.x + x.y + x.z <= hi;
    case ZmElementQuad4:
      return std::fabs(x.x) <= hi && std::fabs(x.y) <= hi;
    case ZmElementHex8:
      return std::fabs(x.x) <= hi && std::fabs(x.y) <= hi && std::fabs(x.z) <= hi;
    case ZmElementWedge6:
      return x.x >= lo && x.y >= lo && x.x + x.y <= hi && std::fabs(x.z) <= hi;
    case ZmElementPyramid5:
      return std::fabs(x.x) <= hi && std::fabs(x.y) <= hi && x.z >= lo && x.z <= hi;
    default:
      return false;
  }
}

// Position and Jacobian columns at natural coordinates x.
V3 Map(ZmElementType type, const V3* p, V3 x, V3 column[3]) {
  ShapeValues v;
  Shape(type, x.x, x.y, x.z, v);
  V3 position{0, 0, 0};
  column[0] = column[1] = column[2] = V3{0, 0, 0};
  for (int i = 0; i < TopologyOf(type).nodes; ++i) {
    position = position + v.n[i] * p[i];
    for (int k = 0; k < 3; ++k) column[k] = column[k] + v.d[i][k] * p[i];
  }
  return position;
}

double Size(ZmElementType type, const V3* p) {
  const Topology& topology = TopologyOf(type);
  double longest = 0.0;
  for (int e = 0; e < topology.edgeCount; ++e)
    longest = std::max(longest, Length(p[topology.edges[e][1]] - p[topology.edges[e][0]]));
  return longest;
}

// One Newton step: solves J step = residual (3x3, Cramer) or J^T J step = J^T residual (shells);
// false when singular.
bool Step(ZmElementType type, const V3 column[3], V3 residual, double size, V3& step) {
  if (IsShell(type)) {
    const double a = Dot(column[0], column[0]), b = Dot(column[0], column[1]), c = Dot(column[1], column[1]);
    const double det = a * c - b * b;
    if (!(det > kSingular * size * size * size * size)) return false;
    const double u = Dot(column[0], residual), w = Dot(column[1], residual);
    step = {(c * u - b * w) / det, (a * w - b * u) / det, 0.0};
    return true;
  }
  const double det = Triple(column[0], column[1], column[2]);
  if (!(std::fabs(det) > kSingular * size * size * size)) return false;
  step = {Triple(residual, column[1], column[2]) / det, Triple(column[0], residual, column[2]) / det,
          Triple(column[0], column[1], residual) / det};
  return true;
}

// Nearest point of the segment a b.
V3 ClosestOnSegment(V3 q, V3 a, V3 b) {
  const V3 ab = b - a;
  const double l2 = Length2(ab);
  double u = l2 > 0.0 ? Dot(q - a, ab) / l2 : 0.0;
  u = std::min(1.0, std::max(0.0, u));
  return a + u * ab;
}

// Nearest point of the element's boundary: faces as triangles (quad faces split about their
// node average); for a quad shell, its four edges.
V3 ClosestOnBoundary(ZmElementType type, const V3* p, V3 q) {
  V3 best = p[0];
  double bestDistance = Length2(q - p[0]);
  const auto consider = [&](V3 candidate) {
    const double d = Length2(q - candidate);
    if (d < bestDistance) bestDistance = d, best = candidate;
  };
  double wb, wc;
  if (type == ZmElementQuad4) {
    for (int i = 0; i < 4; ++i) consider(ClosestOnSegment(q, p[i], p[(i + 1) % 4]));
    return best;
  }
  if (type == ZmElementTri3) return ClosestPointOnTriangle(q, p[0], p[1], p[2], wb, wc);
  const Topology& topology = TopologyOf(type);
  for (int f = 0; f < topology.faceCount; ++f) {
    const Face& face = topology.faces[f];
    const int* n = face.n;
    if (face.count == 3) {
      consider(ClosestPointOnTriangle(q, p[n[0]], p[n[1]], p[n[2]], wb, wc));
      continue;
    }
    const V3 centre = 0.25 * (p[n[0]] + p[n[1]] + p[n[2]] + p[n[3]]);
    for (int i = 0; i < 4; ++i) consider(ClosestPointOnTriangle(q, centre, p[n[i]], p[n[(i + 1) % 4]], wb, wc));
  }
  return best;
}

}  // namespace

template <class T>
typename ZmMeshT<T>::NaturalResult ZmMeshT<T>::ComputeNaturalCoordinates(ZmElementType type, const Point* nodes,
                                                                         const Point& point, T insideTolerance,
                                                                         T tolerance, int maxIterations) {
  NaturalResult result;
  V3 p[8], q;
  if (!IsKnownType(type) || type == ZmElementBeam2 || !nodes || !LoadNodes(nodes, TopologyOf(type).nodes, p) ||
      !LoadNodes(&point, 1, &q))
    return result;
  const double tol = tolerance > 0 ? double(tolerance) : kDefaultTolerance;
  const int limit = maxIterations > 0 ? maxIterations : kDefaultIterations;
  const double size = Size(type, p);
  V3 x = Start(type), column[3];
  result.status = ZmNaturalNotConverged;
  for (int iteration = 0; iteration < limit; ++iteration) {
    V3 step;
    const V3 at = Map(type, p, x, column);
    if (!Step(type, column, q - at, size, step)) {
      result.status = ZmNaturalSingular;
      x = V3{0, 0, 0};
      break;
    }
    const V3 next = x + step;
    if (!std::isfinite(next.x + next.y + next.z)) break;
    x = next;
    result.iterations = IsLinear(type) ? 0 : iteration + 1;
    if (IsLinear(type) || std::max(std::fabs(step.x), std::max(std::fabs(step.y), std::fabs(step.z))) <= tol) {
      result.status = ZmNaturalConverged;
      break;
    }
  }
  const bool inside = result.status == ZmNaturalConverged && IsInside(type, x, double(insideTolerance));
  V3 closest = q;
  if (IsShell(type) && inside)
    closest = Map(type, p, x, column);
  else if (IsShell(type) || !inside)
    closest = ClosestOnBoundary(type, p, q);
  result.natural = ToPoint<T>(x);
  result.closest = ToPoint<T>(closest);
  result.distance = T(Length(q - closest));
  result.inside = inside ? 1 : 0;
  return result;
}

template <class T>
typename ZmMeshT<T>::Point ZmMeshT<T>::ComputePointAtNatural(ZmElementType type, const Point* nodes,
                                                             const Point& natural, T* shape) {
  V3 p[8], x, column[3];
  if (!IsKnownType(type) || !nodes || !LoadNodes(nodes, TopologyOf(type).nodes, p) || !LoadNodes(&natural, 1, &x))
    return Point(WbCoord3DT<T>::INVALID);
  if (shape) {
    ShapeValues v;
    Shape(type, x.x, x.y, x.z, v);
    for (int i = 0; i < TopologyOf(type).nodes; ++i) shape[i] = T(v.n[i]);
  }
  return ToPoint<T>(Map(type, p, x, column));
}

template typename ZmMeshT<double>::NaturalResult ZmMeshT<double>::ComputeNaturalCoordinates(
    ZmElementType, const Point*, const Point&, double, double, int);
template typename ZmMeshT<float>::NaturalResult ZmMeshT<float>::ComputeNaturalCoordinates(ZmElementType,
                                                                                         const Point*,
                                                                                         const Point&, float,
                                                                                         float, int);
template ZmMeshT<double>::Point ZmMeshT<double>::ComputePointAtNatural(ZmElementType, const Point*, const Point&,
                                                                      double*);
template ZmMeshT<float>::Point ZmMeshT<float>::ComputePointAtNatural(ZmElementType, const Point*, const Point&,
                                                                    float*);
