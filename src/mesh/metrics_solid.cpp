// Tetrahedron and hexahedron metrics with Verdict's definitions (same vectors, same order of
// operations), the degenerate clamps replaced by the invalid marker.
#include <algorithm>

#include "foundation/build_info.h"
#include "mesh/element_kernels.h"

ZM_BUILD_INFO(mesh_metrics_solid)

namespace zm {
namespace mesh {
namespace {

const double kRoot2 = std::sqrt(2.0);
const double kRoot3 = std::sqrt(3.0);
const double kRoot6 = std::sqrt(6.0);

// ---- tetrahedron ----------------------------------------------------------------------------

// s0 = p1 - p0, s1 = p2 - p1, s2 = p0 - p2, s3 = p3 - p0, s4 = p3 - p1, s5 = p3 - p2.
struct TetSides {
  V3 s[6];
  explicit TetSides(const V3* p) : s{p[1] - p[0], p[2] - p[1], p[0] - p[2], p[3] - p[0], p[3] - p[1], p[3] - p[2]} {}
};

double TetVolume(const V3* p) { return Triple(p[3] - p[0], p[1] - p[0], p[2] - p[0]) / 6.0; }
double TetJacobian(const V3* p) {
  const TetSides t(p);
  return Dot(t.s[3], Cross(t.s[2], t.s[0]));
}

double TetAspectRatio(const V3* p) {
  const V3 ab = p[1] - p[0], ac = p[2] - p[0], ad = p[3] - p[0];
  const double det = Dot(ab, Cross(ac, ad));
  if (std::fabs(det) < kTiny) return kInvalid;
  const V3 bc = p[2] - p[1], bd = p[3] - p[1], cd = p[3] - p[2];
  const double a = std::max(Length2(ab), Length2(bc)), b = std::max(Length2(ac), Length2(ad));
  const double c = std::max(Length2(bd), Length2(cd)), d = std::max(a, b);
  const double hm = d > c ? std::sqrt(d) : std::sqrt(c);
  const double faces =
      Length(Cross(ab, bc)) + Length(Cross(ab, ad)) + Length(Cross(ac, ad)) + Length(Cross(bc, cd));
  return kRoot6 / 12.0 * hm * faces / std::fabs(det);
}

double TetRadiusRatio(const V3* p) {
  const TetSides t(p);
  const V3* s = t.s;
  const V3 numerator = Length2(s[3]) * Cross(s[2], s[0]) + Length2(s[2]) * Cross(s[3], s[0]) +
                       Length2(s[0]) * Cross(s[3], s[2]);
  const double areaSum = (Length(Cross(s[2], s[0])) + Length(Cross(s[3], s[0])) + Length(Cross(s[4], s[1])) +
                          Length(Cross(s[3], s[2]))) *
                         0.5;
  const double volume = TetVolume(p);
  if (std::fabs(volume) < kTiny) return kInvalid;
  return Length(numerator) * areaSum / (108 * volume * volume);
}

// Face normals of Verdict's dihedral-angle formulas; false when a face is degenerate.
struct TetFaceNormals {
  V3 abc, abd, acd, bcd;
  double nabc, nabd, nacd, nbcd;
  explicit TetFaceNormals(const V3* p) {
    const V3 ab = p[1] - p[0], ad = p[3] - p[0], bc = p[2] - p[1], cd = p[3] - p[2];
    abc = Cross(ab, bc);
    abd = Cross(ab, ad);
    acd = Cross(ad, cd);
    bcd = Cross(bc, cd);
    nabc = Length(abc);
    nabd = Length(abd);
    nacd = Length(acd);
    nbcd = Length(bcd);
  }
  bool Valid() const { return nabc > 0.0 && nabd > 0.0 && nacd > 0.0 && nbcd > 0.0; }
  // The six dihedral angles in degrees.
  void Angles(double out[6]) const {
    out[0] = AngleDegrees(Dot(abc, abd) / (nabc * nabd));
    out[1] = AngleDegrees(Dot(abc, acd) / (nabc * nacd));
    out[2] = AngleDegrees(Dot(abc, bcd) / (nabc * nbcd));
    out[3] = AngleDegrees(Dot(abd, acd) / (nabd * nacd));
    out[4] = AngleDegrees(Dot(abd, bcd) / (nabd * nbcd));
    out[5] = AngleDegrees(Dot(acd, bcd) / (nacd * nbcd));
  }
};

double TetMinDihedralAngle(const V3* p) {
  const TetFaceNormals n(p);
  if (!n.Valid()) return kInvalid;
  double a[6];
  n.Angles(a);
  return *std::min_element(a, a + 6);
}

}  // namespace

double TetScaledJacobian(const V3* p) {
  const TetSides t(p);
  const V3* s = t.s;
  const double jacobian = Dot(s[3], Cross(s[2], s[0]));
  double l2[6];
  for (int i = 0; i < 6; ++i) l2[i] = Length2(s[i]);
  const double products[4] = {l2[0] * l2[2] * l2[3], l2[0] * l2[1] * l2[4], l2[1] * l2[2] * l2[5],
                              l2[3] * l2[4] * l2[5]};
  int which = 0;
  for (int i = 1; i < 4; ++i)
    if (products[i] > products[which]) which = i;
  double lengthProduct = std::sqrt(products[which]);
  if (lengthProduct < std::fabs(jacobian)) lengthProduct = std::fabs(jacobian);
  if (lengthProduct < kTiny) return kInvalid;
  return kRoot2 * jacobian / lengthProduct;
}

namespace {

double TetCondition(const V3* p) {
  const V3 side0 = p[1] - p[0], side2 = p[0] - p[2], side3 = p[3] - p[0];
  const V3 c1 = side0;
  const V3 c2 = (1.0 / kRoot3) * (-2.0 * side2 - side0);
  const V3 c3 = (1.0 / kRoot6) * (3.0 * side3 + side2 - side0);
  const double term1 = Dot(c1, c1) + Dot(c2, c2) + Dot(c3, c3);
  const double term2 = Length2(Cross(c1, c2)) + Length2(Cross(c2, c3)) + Length2(Cross(c1, c3));
  const double det = Dot(c1, Cross(c2, c3));
  if (std::fabs(det) <= kTiny) return kInvalid;
  return std::sqrt(term1 * term2) / (3.0 * det);
}

double TetShape(const V3* p) {
  const V3 e0 = p[1] - p[0], e2 = p[0] - p[2], e3 = p[3] - p[0];
  const double jacobian = Dot(e3, Cross(e2, e0));
  if (jacobian < kTiny) return 0.0;
  const double numerator = 3.0 * std::pow(kRoot2 * jacobian, 2.0 / 3.0);
  const double denominator =
      1.5 * (Dot(e0, e0) + Dot(e2, e2) + Dot(e3, e3)) - (Dot(e0, -e2) + Dot(-e2, e3) + Dot(e3, e0));
  if (denominator < kTiny) return 0.0;
  return std::max(numerator / denominator, 0.0);
}

double TetCollapseRatio(const V3* p) {
  const V3 e01 = p[1] - p[0], e02 = p[2] - p[0], e03 = p[3] - p[0];
  const V3 e12 = p[2] - p[1], e13 = p[3] - p[1], e23 = p[3] - p[2];
  const double l[6] = {Length(e01), Length(e02), Length(e03), Length(e12), Length(e13), Length(e23)};
  // Each face, the longest of its edges and the height of the opposite node above it.
  const double longest[4] = {std::max(std::max(l[4], l[0]), l[1]), std::max(std::max(l[0], l[2]), l[3]),
                             std::max(std::max(l[2], l[1]), l[5]), std::max(std::max(l[4], l[3]), l[5])};
  const V3 normals[4] = {Cross(e01, e02), Cross(e03, e01), Cross(e02, e03), Cross(e12, e13)};
  const V3 apex[4] = {e03, e02, e01, e01};
  double smallest = 0.0;
  for (int f = 0; f < 4; ++f) {
    const double magnitude = Length(normals[f]);
    if (!(magnitude > 0.0) || !(longest[f] > 0.0)) return kInvalid;
    const double ratio = Dot(apex[f], normals[f]) / magnitude / longest[f];
    smallest = f == 0 ? ratio : std::min(smallest, ratio);
  }
  return smallest;
}

double TetMeanRatio(const V3* p) {
  const double volume = TetVolume(p);
  if (std::fabs(volume) < kTiny) return 0.0;
  const TetSides t(p);
  double sum = 0.0;
  for (const V3& s : t.s) sum += Length2(s);
  const double sign = volume < 0.0 ? -1.0 : 1.0;
  return sign * 12.0 * std::pow(3.0 * std::fabs(volume), 2.0 / 3.0) / sum;
}

// Verdict's tet equiangle skew: the dihedral angles (between the unit normals bc x ab,
// ab x ad, cd x ad, bc x cd) against acos(1/3) and the face angles against 60 degrees.
double TetEquiangleSkew(const V3* p) {
  const TetFaceNormals n(p);
  if (!n.Valid() || EdgeRatio(p, TopologyOf(ZmElementTet4)) == kInvalid) return 1.0;
  const V3 ab = p[1] - p[0], ad = p[3] - p[0], bc = p[2] - p[1], cd = p[3] - p[2];
  V3 normals[4] = {Cross(bc, ab), Cross(ab, ad), Cross(cd, ad), Cross(bc, cd)};
  for (V3& v : normals) Normalize(v);
  double lo = 360.0, hi = 0.0;
  for (int i = 0; i < 4; ++i) {
    for (int j = i + 1; j < 4; ++j) {
      const double angle = AngleDegrees(-Dot(normals[i], normals[j]));
      lo = std::min(lo, angle);
      hi = std::max(hi, angle);
    }
  }
  const double theta = std::acos(1.0 / 3.0) * kRadToDeg;
  double skew = std::max((hi - theta) / (180.0 - theta), (theta - lo) / theta);
  static const int kFaces[4][3] = {{0, 1, 2}, {0, 1, 3}, {1, 2, 3}, {0, 2, 3}};
  for (const auto& f : kFaces) {
    const V3 tri[3] = {p[f[0]], p[f[1]], p[f[2]]};
    double flo, fhi;
    TriMinMaxAngle(tri, flo, fhi);
    skew = std::max(skew, std::max((fhi - 60.0) / 120.0, (60.0 - flo) / 60.0));
  }
  return skew;
}

// Smallest altitude: 3V over the largest face area.
double TetCharacteristicLength(const V3* p) {
  const Topology& topology = TopologyOf(ZmElementTet4);
  double largest = 0.0;
  for (int f = 0; f < topology.faceCount; ++f) largest = std::max(largest, FaceArea(p, topology.faces[f]));
  if (!(largest > 0.0)) return kInvalid;
  return 3.0 * std::fabs(TetVolume(p)) / largest;
}

const KernelEntry kTet[] = {
    {ZmMetricVolume, TetVolume},
    {ZmMetricAspectRatio, TetAspectRatio},
    {ZmMetricEdgeRatio, [](const V3* p) { return EdgeRatio(p, TopologyOf(ZmElementTet4)); }},
    {ZmMetricRadiusRatio, TetRadiusRatio},
    {ZmMetricMinDihedralAngle, TetMinDihedralAngle},
    {ZmMetricJacobian, TetJacobian},
    {ZmMetricScaledJacobian, TetScaledJacobian},
    {ZmMetricCondition, TetCondition},
    {ZmMetricShape, TetShape},
    {ZmMetricEquiangleSkew, TetEquiangleSkew},
    {ZmMetricCollapseRatio, TetCollapseRatio},
    {ZmMetricMeanRatio, TetMeanRatio},
    {ZmMetricCharacteristicLength, TetCharacteristicLength},
    {ZmMetricCharacteristicLengthEdges, TetCharacteristicLength},
};

// ---- hexahedron -----------------------------------------------------------------------------

// The corner frames: node, then its neighbours along xi, eta and zeta.
const int kHexCorners[8][4] = {{0, 1, 3, 4}, {1, 2, 0, 5}, {2, 3, 1, 6}, {3, 0, 2, 7},
                               {4, 7, 5, 0}, {5, 4, 6, 1}, {6, 5, 7, 2}, {7, 6, 4, 3}};

struct Frame {
  V3 xi, eta, zeta;
};
inline Frame CornerFrame(const V3* p, int corner) {
  const int* c = kHexCorners[corner];
  const V3 origin = p[c[0]];
  return {p[c[1]] - origin, p[c[2]] - origin, p[c[3]] - origin};
}

// p[a] + p[b] + p[c] + p[d] - p[e] - p[f] - p[g] - p[h], summed in that order.
inline V3 SignedSum(const V3* p, int a, int b, int c, int d, int e, int f, int g, int h) {
  return p[a] + p[b] + p[c] + p[d] - p[e] - p[f] - p[g] - p[h];
}
// The principal axes (twice the mean edge vectors) and the cross derivatives.
V3 Axis1(const V3* p) { return SignedSum(p, 1, 2, 5, 6, 0, 3, 4, 7); }
V3 Axis2(const V3* p) { return SignedSum(p, 2, 3, 6, 7, 0, 1, 4, 5); }
V3 Axis3(const V3* p) { return SignedSum(p, 4, 5, 6, 7, 0, 1, 2, 3); }
Frame CentreFrame(const V3* p) { return {Axis1(p), Axis2(p), Axis3(p)}; }

double HexSkew(const V3* p) {
  V3 a[3] = {Axis1(p), Axis2(p), Axis3(p)};
  for (V3& v : a)
    if (Normalize(v) <= kTiny) return kInvalid;
  return std::max(std::max(std::fabs(Dot(a[0], a[1])), std::fabs(Dot(a[0], a[2]))), std::fabs(Dot(a[1], a[2])));
}

double HexTaper(const V3* p) {
  const double l1 = Length(Axis1(p)), l2 = Length(Axis2(p)), l3 = Length(Axis3(p));
  const double cross[3] = {Length(SignedSum(p, 0, 2, 4, 6, 1, 3, 5, 7)), Length(SignedSum(p, 0, 3, 5, 6, 1, 2, 4, 7)),
                           Length(SignedSum(p, 0, 1, 6, 7, 2, 3, 4, 5))};
  const double shortest[3] = {std::min(l1, l2), std::min(l1, l3), std::min(l2, l3)};
  double taper = 0.0;
  for (int i = 0; i < 3; ++i) {
    if (shortest[i] < kTiny) return kInvalid;
    taper = std::max(taper, cross[i] / shortest[i]);
  }
  return taper;
}

// Shortest edge and longest and shortest body diagonal.
void HexLengths(const V3* p, double& shortestEdge, double& shortestDiagonal, double& longestDiagonal) {
  const Topology& topology = TopologyOf(ZmElementHex8);
  shortestEdge = Length(p[1] - p[0]);
  for (int e = 1; e < topology.edgeCount; ++e)
    shortestEdge = std::min(shortestEdge, Length(p[topology.edges[e][1]] - p[topology.edges[e][0]]));
  const double d[4] = {Length(p[6] - p[0]), Length(p[4] - p[2]), Length(p[7] - p[1]), Length(p[5] - p[3])};
  shortestDiagonal = std::min(std::min(d[0], d[1]), std::min(d[2], d[3]));
  longestDiagonal = std::max(std::max(d[0], d[1]), std::max(d[2], d[3]));
}

double HexStretch(const V3* p) {
  double edge, shortDiagonal, longDiagonal;
  HexLengths(p, edge, shortDiagonal, longDiagonal);
  if (longDiagonal < kTiny) return kInvalid;
  return kRoot3 * (edge / longDiagonal);
}

double HexDiagonal(const V3* p) {
  double edge, shortDiagonal, longDiagonal;
  HexLengths(p, edge, shortDiagonal, longDiagonal);
  if (longDiagonal < kTiny) return kInvalid;
  return shortDiagonal / longDiagonal;
}

// Flanagan-Belytschko gradient of the volume with respect to node i, component c (x, y, z):
// node i and the nodes playing its neighbours' roles, as in the node-1 formula
// B1x = (y2((z6 - z3) - (z4 - z5)) + y3(z2 - z4) + y4((z3 - z8) - (z5 - z2))
//        + y5((z8 - z6) - (z2 - z4)) + y6(z5 - z2) + y8(z4 - z5)) / 12   (1-based nodes).
const int kGradientRoles[8][6] = {{1, 2, 3, 4, 5, 7}, {2, 3, 0, 5, 6, 4}, {3, 0, 1, 6, 7, 5}, {0, 1, 2, 7, 4, 6},
                                  {7, 6, 5, 0, 3, 1}, {4, 7, 6, 1, 0, 2}, {5, 4, 7, 2, 1, 3}, {6, 5, 4, 3, 2, 0}};

double Component(const V3& v, int c) { return c == 0 ? v.x : (c == 1 ? v.y : v.z); }

double VolumeGradient(const V3* p, int node, int component) {
  const int* r = kGradientRoles[node];  // roles of nodes 2, 3, 4, 5, 6, 8
  const int cy = (component + 1) % 3, cz = (component + 2) % 3;
  double y[8], z[8];
  for (int i = 0; i < 8; ++i) {
    y[i] = Component(p[i], cy);
    z[i] = Component(p[i], cz);
  }
  const int n2 = r[0], n3 = r[1], n4 = r[2], n5 = r[3], n6 = r[4], n8 = r[5];
  return (y[n2] * (z[n6] - z[n3] - (z[n4] - z[n5])) + y[n3] * (z[n2] - z[n4]) +
          y[n4] * (z[n3] - z[n8] - (z[n5] - z[n2])) + y[n5] * (z[n8] - z[n6] - (z[n2] - z[n4])) +
          y[n6] * (z[n5] - z[n2]) + y[n8] * (z[n4] - z[n5])) /
         12.0;
}

double HexDimension(const V3* p) {
  double volume = 0.0, sum = 0.0;
  for (int i = 0; i < 8; ++i) {
    for (int c = 0; c < 3; ++c) {
      const double b = VolumeGradient(p, i, c);
      if (c == 0) volume += p[i].x * b;
      sum += b * b;
    }
  }
  if (!(sum > 0.0)) return kInvalid;
  return std::sqrt(0.5 * volume * volume / sum);
}

double HexJacobian(const V3* p) {
  const Frame centre = CentreFrame(p);
  double smallest = Dot(centre.xi, Cross(centre.eta, centre.zeta)) / 64.0;
  for (int c = 0; c < 8; ++c) {
    const Frame f = CornerFrame(p, c);
    smallest = std::min(smallest, Dot(f.xi, Cross(f.eta, f.zeta)));
  }
  return smallest;
}

// The smallest determinant over the product of its edge lengths, over the centre frame and the
// eight corners, each formed as det / sqrt(l1^2 l2^2 l3^2) as Verdict forms it. The frames are
// evaluated without an early exit so that the square roots and divisions overlap. A zero edge:
// invalid.
double HexScaledJacobian(const V3* p) {
  Frame frames[9];
  frames[0] = CentreFrame(p);
  for (int c = 0; c < 8; ++c) frames[c + 1] = CornerFrame(p, c);
  double smallest = 1.0e300;
  bool degenerate = false;
  for (const Frame& f : frames) {
    const double l1 = Length2(f.xi), l2 = Length2(f.eta), l3 = Length2(f.zeta);
    degenerate = degenerate || l1 <= kTiny || l2 <= kTiny || l3 <= kTiny;
    smallest = std::min(smallest, Dot(f.xi, Cross(f.eta, f.zeta)) / std::sqrt(l1 * l2 * l3));
  }
  return degenerate ? kInvalid : smallest;
}

double HexCondition(const V3* p) {
  double largest = 0.0;
  for (int c = 0; c < 8; ++c) {
    const Frame f = CornerFrame(p, c);
    const double det = Dot(f.xi, Cross(f.eta, f.zeta));
    if (det <= kTiny) return kInvalid;
    const double term1 = Dot(f.xi, f.xi) + Dot(f.eta, f.eta) + Dot(f.zeta, f.zeta);
    const double term2 =
        Length2(Cross(f.xi, f.eta)) + Length2(Cross(f.eta, f.zeta)) + Length2(Cross(f.zeta, f.xi));
    largest = std::max(largest, std::sqrt(term1 * term2) / det);
  }
  return largest / 3.0;
}

double HexShape(const V3* p) {
  double smallest = 1.0;
  for (int c = 0; c < 8; ++c) {
    const Frame f = CornerFrame(p, c);
    const double det = Dot(f.xi, Cross(f.eta, f.zeta));
    if (!(det > kTiny)) return 0.0;
    const double shape = 3.0 * std::pow(det, 2.0 / 3.0) / (Dot(f.xi, f.xi) + Dot(f.eta, f.eta) + Dot(f.zeta, f.zeta));
    smallest = std::min(smallest, shape);
  }
  return smallest <= kTiny ? 0.0 : smallest;
}

// Oddy measure of one frame; false for a non-positive determinant.
bool OddyOf(const Frame& f, double& value) {
  const double g11 = Dot(f.xi, f.xi), g12 = Dot(f.xi, f.eta), g13 = Dot(f.xi, f.zeta);
  const double g22 = Dot(f.eta, f.eta), g23 = Dot(f.eta, f.zeta), g33 = Dot(f.zeta, f.zeta);
  const double rootG = Dot(f.xi, Cross(f.eta, f.zeta));
  if (!(rootG > kTiny)) return false;
  const double normG2 = g11 * g11 + 2.0 * g12 * g12 + 2.0 * g13 * g13 + g22 * g22 + 2.0 * g23 * g23 + g33 * g33;
  const double normJ2 = g11 + g22 + g33;
  value = (normG2 - (1.0 / 3.0) * normJ2 * normJ2) / std::pow(rootG, 4.0 * (1.0 / 3.0));
  return true;
}

double HexOddy(const V3* p) {
  double largest;
  if (!OddyOf(CentreFrame(p), largest)) return kInvalid;
  for (int c = 0; c < 8; ++c) {
    double value;
    if (!OddyOf(CornerFrame(p, c), value)) return kInvalid;
    largest = std::max(largest, value);
  }
  return std::max(largest, 0.0);
}

double HexEquiangleSkew(const V3* p) {
  const Topology& topology = TopologyOf(ZmElementHex8);
  double lo = 360.0, hi = 0.0;
  for (int f = 0; f < topology.faceCount; ++f) {
    const int* n = topology.faces[f].n;
    const V3 quad[4] = {p[n[0]], p[n[1]], p[n[2]], p[n[3]]};
    double flo, fhi;
    if (!QuadMinMaxAngle(quad, flo, fhi)) return 1.0;
    lo = std::min(lo, flo);
    hi = std::max(hi, fhi);
  }
  return std::max((hi - 90.0) / 90.0, (90.0 - lo) / 90.0);
}

double HexVolume(const V3* p) { return SolidVolume(p, TopologyOf(ZmElementHex8)); }

const KernelEntry kHex[] = {
    {ZmMetricVolume, HexVolume},
    {ZmMetricEdgeRatio, [](const V3* p) { return EdgeRatio(p, TopologyOf(ZmElementHex8)); }},
    {ZmMetricSkew, HexSkew},
    {ZmMetricTaper, HexTaper},
    {ZmMetricStretch, HexStretch},
    {ZmMetricDiagonal, HexDiagonal},
    {ZmMetricDimension, HexDimension},
    {ZmMetricJacobian, HexJacobian},
    {ZmMetricScaledJacobian, HexScaledJacobian},
    {ZmMetricCondition, HexCondition},
    {ZmMetricShape, HexShape},
    {ZmMetricOddy, HexOddy},
    {ZmMetricEquiangleSkew, HexEquiangleSkew},
};

}  // namespace

KernelList TetKernels() { return {kTet, static_cast<int>(sizeof(kTet) / sizeof(kTet[0]))}; }
KernelList HexKernels() { return {kHex, static_cast<int>(sizeof(kHex) / sizeof(kHex[0]))}; }

}  // namespace mesh
}  // namespace zm
