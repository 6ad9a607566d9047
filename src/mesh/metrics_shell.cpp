// Triangle and quadrilateral metrics: Verdict's definitions evaluated the way Verdict evaluates
// them (same edge vectors, same order of operations, so that results agree to rounding), the
// degenerate clamps replaced by the invalid marker, and the warping forms of pre-processors.
#include <algorithm>

#include "foundation/build_info.h"
#include "mesh/element_kernels.h"

ZM_BUILD_INFO(mesh_metrics_shell)

namespace zm {
namespace mesh {
namespace {

const double kRoot3 = std::sqrt(3.0);
const double kRoot2 = std::sqrt(2.0);

// ---- triangle -------------------------------------------------------------------------------

// Edges p1 - p0, p2 - p1, p0 - p2.
struct TriEdges {
  V3 a, b, c;
  explicit TriEdges(const V3* p) : a(p[1] - p[0]), b(p[2] - p[1]), c(p[0] - p[2]) {}
};

double TriAspectRatio(const V3* p) {
  const TriEdges e(p);
  const double la = Length(e.a), lb = Length(e.b), lc = Length(e.c);
  const double hm = std::max(std::max(la, lb), lc);
  const double denominator = Length(Cross(e.a, e.b));
  if (denominator < kTiny) return kInvalid;
  return kRoot3 / 6.0 * hm * (la + lb + lc) / denominator;
}

double TriRadiusRatio(const V3* p) {
  const TriEdges e(p);
  const double la = Length(e.a), lb = Length(e.b), lc = Length(e.c);
  const double denominator = Length2(Cross(e.a, e.b));
  if (denominator < kTiny) return kInvalid;
  return 0.25 * la * lb * lc * (la + lb + lc) / denominator;
}

double TriMinAngle(const V3* p) {
  double lo, hi;
  return TriMinMaxAngle(p, lo, hi) ? lo : kInvalid;
}
double TriMaxAngle(const V3* p) {
  double lo, hi;
  return TriMinMaxAngle(p, lo, hi) ? hi : kInvalid;
}

double TriEquiangleSkew(const V3* p) {
  double lo, hi;
  if (!TriMinMaxAngle(p, lo, hi)) return 1.0;
  return std::max((hi - 60.0) / 120.0, (60.0 - lo) / 60.0);
}

double TriCondition(const V3* p) {
  const V3 v1 = p[1] - p[0], v2 = p[2] - p[0];
  const double areaX2 = Length(Cross(v1, v2));
  if (areaX2 == 0.0) return kInvalid;
  return (Dot(v1, v1) + Dot(v2, v2) - Dot(v1, v2)) / (areaX2 * kRoot3);
}

double TriShape(const V3* p) {
  const double condition = TriCondition(p);
  return condition == kInvalid || condition <= kTiny ? 0.0 : 1.0 / condition;
}

double TriScaledJacobian(const V3* p) {
  const V3 e0 = p[1] - p[0], e1 = p[2] - p[0], e2 = p[2] - p[1];
  const double jacobian = Length(Cross(e1 - e0, e2 - e0));
  const double l0 = Length(e0), l1 = Length(e1), l2 = Length(e2);
  const double product = std::max(l0 * l1, std::max(l1 * l2, l0 * l2));
  if (product < kTiny) return 0.0;
  return jacobian * (2.0 / kRoot3) / product;
}

double TriCharacteristicLength(const V3* p) {
  const TriEdges e(p);
  const double longest = std::sqrt(std::max(std::max(Length2(e.a), Length2(e.b)), Length2(e.c)));
  if (!(longest > 0.0)) return kInvalid;
  return 2.0 * TriArea(p) / longest;
}

const KernelEntry kTri[] = {
    {ZmMetricArea, TriArea},
    {ZmMetricSurfaceArea, TriArea},
    {ZmMetricAspectRatio, TriAspectRatio},
    {ZmMetricEdgeRatio, [](const V3* p) { return EdgeRatio(p, TopologyOf(ZmElementTri3)); }},
    {ZmMetricRadiusRatio, TriRadiusRatio},
    {ZmMetricMinAngle, TriMinAngle},
    {ZmMetricMaxAngle, TriMaxAngle},
    {ZmMetricScaledJacobian, TriScaledJacobian},
    {ZmMetricCondition, TriCondition},
    {ZmMetricShape, TriShape},
    {ZmMetricEquiangleSkew, TriEquiangleSkew},
    {ZmMetricCharacteristicLength, TriCharacteristicLength},
    {ZmMetricCharacteristicLengthEdges, TriCharacteristicLength},
};

// ---- quadrilateral --------------------------------------------------------------------------

// A quad whose last two nodes coincide is measured as the triangle of its first three.
bool IsCollapsedQuad(const V3* p) { return p[3].x == p[2].x && p[3].y == p[2].y && p[3].z == p[2].z; }

struct QuadEdges {
  V3 e[4];
  explicit QuadEdges(const V3* p) : e{p[1] - p[0], p[2] - p[1], p[3] - p[2], p[0] - p[3]} {}
};

// Corner areas n . (e(i-1) x e(i)) with n the unit normal of the principal axes.
struct CornerAreas {
  double a[4];
  explicit CornerAreas(const QuadEdges& q) {
    const V3* e = q.e;
    V3 n = Cross(e[0] - e[2], e[1] - e[3]);
    Normalize(n);
    a[0] = Dot(n, Cross(e[3], e[0]));
    a[1] = Dot(n, Cross(e[0], e[1]));
    a[2] = Dot(n, Cross(e[1], e[2]));
    a[3] = Dot(n, Cross(e[2], e[3]));
  }
};

double QuadSurfaceArea(const V3* p) {
  const V3 c = 0.25 * (p[0] + p[1] + p[2] + p[3]);
  double area = 0.0;
  for (int i = 0; i < 4; ++i) area += 0.5 * Length(Cross(p[i] - c, p[(i + 1) % 4] - c));
  return area;
}

double QuadAspectRatio(const V3* p) {
  const QuadEdges q(p);
  const double a = Length(q.e[0]), b = Length(q.e[1]), c = Length(q.e[2]), d = Length(q.e[3]);
  const double hm = std::max(std::max(a, b), std::max(c, d));
  const double denominator = Length(Cross(q.e[0], q.e[1])) + Length(Cross(q.e[2], q.e[3]));
  if (denominator < kTiny) return kInvalid;
  return 0.5 * hm * (a + b + c + d) / denominator;
}

// The principal axes p1 + p2 - p3 - p0 and p2 + p3 - p0 - p1.
V3 QuadAxis1(const V3* p) { return p[1] + p[2] - p[3] - p[0]; }
V3 QuadAxis2(const V3* p) { return p[2] + p[3] - p[0] - p[1]; }

double QuadSkew(const V3* p) {
  V3 a1 = QuadAxis1(p), a2 = QuadAxis2(p);
  if (Normalize(a1) < kTiny || Normalize(a2) < kTiny) return 0.0;
  return std::fabs(Dot(a1, a2));
}

double QuadTaper(const V3* p) {
  const V3 cross = p[0] + p[2] - p[1] - p[3];
  const double shortest = std::min(Length(QuadAxis1(p)), Length(QuadAxis2(p)));
  if (shortest < kTiny) return kInvalid;
  return Length(cross) / shortest;
}

double QuadWarpageVerdict(const V3* p) {
  const QuadEdges q(p);
  V3 n[4] = {Cross(q.e[3], q.e[0]), Cross(q.e[0], q.e[1]), Cross(q.e[1], q.e[2]), Cross(q.e[2], q.e[3])};
  for (V3& v : n)
    if (Normalize(v) < kTiny) return kInvalid;
  const double smaller = std::min(Dot(n[0], n[2]), Dot(n[1], n[3]));
  return smaller * smaller * smaller;
}

double QuadStretch(const V3* p) {
  const QuadEdges q(p);
  const double shortest2 =
      std::min(std::min(Length2(q.e[0]), Length2(q.e[1])), std::min(Length2(q.e[2]), Length2(q.e[3])));
  const double diagonal2 = std::max(Length2(p[2] - p[0]), Length2(p[3] - p[1]));
  if (diagonal2 < kTiny) return kInvalid;
  return kRoot2 * std::sqrt(shortest2 / diagonal2);
}

double QuadMinAngle(const V3* p) {
  double lo, hi;
  return QuadMinMaxAngle(p, lo, hi) ? lo : kInvalid;
}
double QuadMaxAngle(const V3* p) {
  double lo, hi;
  return QuadMinMaxAngle(p, lo, hi) ? hi : kInvalid;
}
double QuadEquiangleSkew(const V3* p) {
  double lo, hi;
  if (!QuadMinMaxAngle(p, lo, hi)) return 1.0;
  return std::max((hi - 90.0) / 90.0, (90.0 - lo) / 90.0);
}

double QuadJacobian(const V3* p) {
  if (IsCollapsedQuad(p)) return 2.0 * TriArea(p);
  const CornerAreas c{QuadEdges(p)};
  return std::min(std::min(c.a[0], c.a[1]), std::min(c.a[2], c.a[3]));
}

double QuadScaledJacobian(const V3* p) {
  if (IsCollapsedQuad(p)) return TriScaledJacobian(p);
  const QuadEdges q(p);
  const CornerAreas c(q);
  double l[4];
  for (int i = 0; i < 4; ++i) {
    l[i] = Length(q.e[i]);
    if (l[i] < kTiny) return 0.0;
  }
  double smallest = c.a[0] / (l[0] * l[3]);
  for (int i = 1; i < 4; ++i) smallest = std::min(smallest, c.a[i] / (l[i] * l[i - 1]));
  return smallest;
}

double QuadCondition(const V3* p) {
  if (IsCollapsedQuad(p)) return TriCondition(p);
  const CornerAreas c{QuadEdges(p)};
  double largest = 0.0;
  for (int i = 0; i < 4; ++i) {
    if (c.a[i] < kTiny) return kInvalid;
    const V3 xxi = p[i] - p[(i + 1) % 4], xet = p[i] - p[(i + 3) % 4];
    largest = std::max(largest, (Dot(xxi, xxi) + Dot(xet, xet)) / c.a[i]);
  }
  return largest / 2.0;
}

}  // namespace

double QuadShape(const V3* p) {
  const QuadEdges q(p);
  const CornerAreas c(q);
  double l2[4];
  for (int i = 0; i < 4; ++i) {
    l2[i] = Length2(q.e[i]);
    if (l2[i] <= kTiny) return 0.0;
  }
  double smallest = c.a[0] / (l2[0] + l2[3]);
  for (int i = 1; i < 4; ++i) smallest = std::min(smallest, c.a[i] / (l2[i] + l2[i - 1]));
  smallest *= 2.0;
  return smallest < kTiny ? 0.0 : smallest;
}

namespace {

double QuadOddy(const V3* p) {
  double largest = 0.0;
  for (int i = 0; i < 4; ++i) {
    const V3 first = p[i] - p[(i + 1) % 4], second = p[i] - p[(i + 3) % 4];
    const double g11 = Dot(first, first), g12 = Dot(first, second), g22 = Dot(second, second);
    const double g = g11 * g22 - g12 * g12;
    if (g < kTiny) return kInvalid;
    largest = std::max(largest, ((g11 - g22) * (g11 - g22) + 4.0 * g12 * g12) / 2.0 / g);
  }
  return largest;
}

// ---- warping forms --------------------------------------------------------------------------

// Angle between the normals of the triangles (a, b, c) and (a, c, d); invalid when one is
// degenerate.
double SplitAngle(V3 a, V3 b, V3 c, V3 d) {
  const V3 n1 = Cross(b - a, c - a), n2 = Cross(c - a, d - a);
  const double l1 = Length(n1), l2 = Length(n2);
  if (!(l1 > 0.0) || !(l2 > 0.0)) return kInvalid;
  return AngleDegrees(Dot(n1, n2) / (l1 * l2));
}

double QuadWarpingAngle(const V3* p) {
  const double split02 = SplitAngle(p[0], p[1], p[2], p[3]);
  const double split13 = SplitAngle(p[1], p[2], p[3], p[0]);
  if (split02 == kInvalid || split13 == kInvalid) return kInvalid;
  return std::max(split02, split13);
}

// Height of the nodes over the mean plane (all four are at the same distance from it);
// invalid when the diagonals are parallel.
double QuadWarpingHeight(const V3* p) {
  V3 n = Cross(p[2] - p[0], p[3] - p[1]);
  if (!(Normalize(n) > 0.0)) return kInvalid;
  const V3 centre = 0.25 * (p[0] + p[1] + p[2] + p[3]);
  return std::fabs(Dot(n, p[0] - centre));
}

double QuadWarpingHeightRatio(const V3* p) {
  const double height = QuadWarpingHeight(p);
  const double area = QuadArea(p);
  if (height == kInvalid || !(area > 0.0)) return kInvalid;
  return height / std::sqrt(area);
}

double QuadWarpingCornerAngle(const V3* p) {
  const double height = QuadWarpingHeight(p);
  if (height == kInvalid) return kInvalid;
  double largest = 0.0;
  for (int i = 0; i < 4; ++i) {
    const double shorter = std::min(Length(p[(i + 1) % 4] - p[i]), Length(p[(i + 3) % 4] - p[i]));
    // h over half the edge, clamped: a zero edge under a lifted node reads as 90 degrees.
    double ratio = shorter > 0.0 ? height / (0.5 * shorter) : (height > 0.0 ? 1.0 : 0.0);
    if (!(ratio < 1.0)) ratio = 1.0;
    largest = std::max(largest, std::asin(ratio) * kRadToDeg);
  }
  return largest;
}

double QuadCharacteristicLength(const V3* p) {
  const double diagonal = std::sqrt(std::max(Length2(p[2] - p[0]), Length2(p[3] - p[1])));
  if (!(diagonal > 0.0)) return kInvalid;
  return QuadArea(p) / diagonal;
}

double QuadCharacteristicLengthEdges(const V3* p) {
  const double byArea = QuadCharacteristicLength(p);
  if (byArea == kInvalid) return kInvalid;
  double shortest = std::min(Length(p[2] - p[0]), Length(p[3] - p[1]));
  for (int i = 0; i < 4; ++i) shortest = std::min(shortest, Length(p[(i + 1) % 4] - p[i]));
  return std::max(byArea, shortest);
}

const KernelEntry kQuad[] = {
    {ZmMetricArea, QuadArea},
    {ZmMetricSurfaceArea, QuadSurfaceArea},
    {ZmMetricAspectRatio, QuadAspectRatio},
    {ZmMetricEdgeRatio, [](const V3* p) { return EdgeRatio(p, TopologyOf(ZmElementQuad4)); }},
    {ZmMetricMinAngle, QuadMinAngle},
    {ZmMetricMaxAngle, QuadMaxAngle},
    {ZmMetricJacobian, QuadJacobian},
    {ZmMetricScaledJacobian, QuadScaledJacobian},
    {ZmMetricCondition, QuadCondition},
    {ZmMetricShape, QuadShape},
    {ZmMetricEquiangleSkew, QuadEquiangleSkew},
    {ZmMetricSkew, QuadSkew},
    {ZmMetricTaper, QuadTaper},
    {ZmMetricWarpageVerdict, QuadWarpageVerdict},
    {ZmMetricStretch, QuadStretch},
    {ZmMetricOddy, QuadOddy},
    {ZmMetricWarpingAngle, QuadWarpingAngle},
    {ZmMetricWarpingCornerAngle, QuadWarpingCornerAngle},
    {ZmMetricWarpingHeight, QuadWarpingHeight},
    {ZmMetricWarpingHeightRatio, QuadWarpingHeightRatio},
    {ZmMetricCharacteristicLength, QuadCharacteristicLength},
    {ZmMetricCharacteristicLengthEdges, QuadCharacteristicLengthEdges},
};

}  // namespace

double TriArea(const V3* p) { return 0.5 * Length(Cross(p[1] - p[0], p[2] - p[0])); }

double QuadArea(const V3* p) { return 0.5 * Length(Cross(p[2] - p[0], p[3] - p[1])); }

// Verdict picks the angle opposite the shortest (longest) side, between the other two.
bool TriMinMaxAngle(const V3* p, double& minAngle, double& maxAngle) {
  const V3 s0 = p[1] - p[0], s1 = p[2] - p[1], s2 = p[2] - p[0];
  const double l[3] = {Length2(s0), Length2(s1), Length2(s2)};
  if (l[0] == 0.0 || l[1] == 0.0 || l[2] == 0.0) return false;
  const auto angleOpposite = [&](int side) {
    const V3 u = side == 0 ? s2 : s0;
    const V3 v = side == 0 ? s1 : (side == 1 ? s2 : -s1);
    return AngleDegrees(Dot(u, v) / (Length(u) * Length(v)));
  };
  int shortest = l[1] < l[0] ? 1 : 0;
  if (l[2] < l[shortest]) shortest = 2;
  int longest = l[1] > l[0] ? 1 : 0;
  if (l[2] > l[longest]) longest = 2;
  minAngle = angleOpposite(shortest);
  maxAngle = angleOpposite(longest);
  return true;
}

bool QuadMinMaxAngle(const V3* p, double& minAngle, double& maxAngle) {
  if (IsCollapsedQuad(p)) return TriMinMaxAngle(p, minAngle, maxAngle);
  const QuadEdges q(p);
  double l[4];
  for (int i = 0; i < 4; ++i) {
    l[i] = Length(q.e[i]);
    if (l[i] <= kTiny) return false;
  }
  minAngle = 360.0;
  maxAngle = 0.0;
  for (int i = 0; i < 4; ++i) {
    const int j = (i + 1) % 4;
    const double angle = AngleDegrees(-Dot(q.e[i], q.e[j]) / (l[i] * l[j]));
    minAngle = std::min(minAngle, angle);
    maxAngle = std::max(maxAngle, angle);
  }
  const CornerAreas c(q);
  if (c.a[0] < 0 || c.a[1] < 0 || c.a[2] < 0 || c.a[3] < 0) maxAngle = 360.0 - maxAngle;
  return true;
}

KernelList TriKernels() { return {kTri, static_cast<int>(sizeof(kTri) / sizeof(kTri[0]))}; }
KernelList QuadKernels() { return {kQuad, static_cast<int>(sizeof(kQuad) / sizeof(kQuad[0]))}; }

}  // namespace mesh
}  // namespace zm
