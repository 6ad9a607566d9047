// Natural coordinates (round trips, outside points, a warped quad, singular elements) and penetration
// of nodes into shell segments, one pair at a time and by the grid search against an all-pairs loop.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <random>
#include <set>
#include <tuple>
#include <vector>

namespace {

using Pd = ZmPoint3d;
using M = ZmMeshd;

// Each reference element, of which the tests take affine images, undistorted and distorted.
struct Shape {
  ZmElementType type;
  std::vector<Pd> reference;
};
const Shape kShapes[] = {
    {ZmElementTri3, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}},
    {ZmElementQuad4, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}}},
    {ZmElementTet4, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
    {ZmElementPyramid5, {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {0, 0, 1}}},
    {ZmElementWedge6, {{0, 0, -1}, {1, 0, -1}, {0, 1, -1}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}}},
    {ZmElementHex8,
     {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, 1}, {1, -1, 1}, {1, 1, 1}, {-1, 1, 1}}},
};
const std::vector<Pd>& kCube = kShapes[5].reference;

// A natural point inside the element's range: a, b (and t) on the simplex, x, y, z in [-1, 1].
Pd RandomNatural(ZmElementType type, std::mt19937_64& rng) {
  std::uniform_real_distribution<double> u(0.0, 1.0), c(-1.0, 1.0);
  const double a = u(rng), b = u(rng) * (1 - a), t = u(rng) * (1 - a - b), x = c(rng), y = c(rng), z = c(rng);
  if (type == ZmElementTri3 || type == ZmElementTet4 || type == ZmElementWedge6)
    return Pd(a, b, type == ZmElementTet4 ? t : type == ZmElementWedge6 ? z : 0);
  return Pd(x, y, type == ZmElementHex8 ? z : type == ZmElementPyramid5 ? 0.45 * (z + 1) : 0);
}

// A random affine image of the reference element (scaled about 2, 1.5, 1 and sheared), each node
// moved by `distortion` times a normal deviate.
std::vector<Pd> Transformed(const Shape& s, std::mt19937_64& rng, double distortion) {
  std::normal_distribution<double> n(0.0, 1.0);
  double m[3][3];
  for (int i = 0; i < 9; ++i) m[i / 3][i % 3] = (i % 4 ? 0.0 : 2 - 0.5 * (i / 4)) + 0.25 * n(rng);
  std::vector<Pd> out;
  for (const Pd& p : s.reference) {
    const double q[3] = {p.x + distortion * n(rng), p.y + distortion * n(rng), p.z + distortion * n(rng)};
    const auto row = [&](int i) { return m[i][0] * q[0] + m[i][1] * q[1] + m[i][2] * q[2]; };
    out.emplace_back(row(0) + 10, row(1), row(2) - 3);
  }
  return out;
}

TEST(NaturalCoordinates, RoundTripsWithinSixStepsOnUndistortedElements) {
  std::mt19937_64 rng(11);
  for (const Shape& s : kShapes) {
    for (double distortion : {0.0, 0.08}) {
      for (int trial = 0; trial < 200; ++trial) {
        const std::vector<Pd> nodes = Transformed(s, rng, distortion);
        const Pd natural = RandomNatural(s.type, rng);
        const int n = M::NodeCount(s.type);
        double shape[9], sum = 0;
        shape[n] = -7;  // one past the values: left alone
        const Pd point = M::ComputePointAtNatural(s.type, nodes.data(), natural, shape);
        for (int i = 0; i < n; ++i) sum += shape[i];
        EXPECT_TRUE(std::fabs(sum - 1.0) <= 1e-14 && shape[n] == -7) << s.type;
        const auto r = M::ComputeNaturalCoordinates(s.type, nodes.data(), point, 1e-9);
        ASSERT_EQ(r.status, ZmNaturalConverged) << s.type;
        EXPECT_LE((r.natural - natural).length(), 1e-12) << s.type << " distortion " << distortion;
        EXPECT_TRUE(r.inside == 1 && r.distance <= 1e-12 && (distortion > 0 || r.iterations <= 6)) << s.type;
      }
    }
  }
}

TEST(NaturalCoordinates, OutsidePointsFindTheBoundaryAndBadInputIsStated) {
  for (int i = 0; i < 8; ++i) EXPECT_EQ(M::ComputePointAtNatural(ZmElementHex8, kCube.data(), kCube[i]), kCube[i]);
  // A warped quad: x = 1 + r, y = 1 + s, z bilinear in the corner heights 0, 0.3, -0.2, 0.4. At
  // (r, s) = (0.3, -0.4): z = (1.3 1.4 0.3 - 1.3 0.6 0.2 + 0.7 0.6 0.4) / 4 = 0.1395,
  // dz/dr = (1.4 0.3 - 0.6 0.6) / 4 = 0.015, dz/ds = (-1.3 0.5 + 0.7 0.4) / 4 = -0.0925, normal
  // (-0.015, 0.0925, 1). A point 0.25 along the normal comes back to (r, s): the least squares on
  // the 3x2 Jacobian, not a projection on the plane of three nodes.
  const std::vector<Pd> warped = {{0, 0, 0}, {2, 0, 0.3}, {2, 2, -0.2}, {0, 2, 0.4}};
  const Pd foot(1.3, 0.6, 0.1395);
  const std::vector<Pd> collapsed(8, Pd(1, 2, 3)), &square = kShapes[1].reference, &tri = kShapes[0].reference;
  const ZmNaturalStatus ok = ZmNaturalConverged, bad = ZmNaturalInvalidInput;
  const struct {
    ZmElementType type;
    const std::vector<Pd>* nodes;
    Pd point, closest, natural;
    double distance;
    unsigned char inside;
    ZmNaturalStatus status;
  } rows[] = {
      // Reference elements map natural coordinates to themselves (the foot's on a shell), out of range
      // for an outside point.
      {ZmElementHex8, &kCube, Pd(3, 0.5, 0.5), Pd(1, 0.5, 0.5), Pd(3, 0.5, 0.5), 2.0, 0, ok},
      {ZmElementHex8, &kCube, Pd(2, 2, 0), Pd(1, 1, 0), Pd(2, 2, 0), std::sqrt(2.0), 0, ok},
      {ZmElementHex8, &kCube, Pd(0.2, 0.3, -0.4), Pd(0.2, 0.3, -0.4), Pd(0.2, 0.3, -0.4), 0.0, 1, ok},
      // shells: the foot on the sheet inside, the nearest edge point outside
      {ZmElementQuad4, &square, Pd(0.5, 0.5, 3), Pd(0.5, 0.5, 0), Pd(0.5, 0.5, 0), 3.0, 1, ok},
      {ZmElementQuad4, &square, Pd(2, 0.5, 1), Pd(1, 0.5, 0), Pd(2, 0.5, 0), std::sqrt(2.0), 0, ok},
      {ZmElementTri3, &tri, Pd(1, 1, 0), Pd(0.5, 0.5, 0), Pd(1, 1, 0), std::sqrt(0.5), 0, ok},
      // A point on a face (s = 0 exactly) is inside: the range is closed.
      {ZmElementWedge6, &kShapes[4].reference, Pd(0.25, 0, 0.5), Pd(0.25, 0, 0.5), Pd(0.25, 0, 0.5), 0.0, 1, ok},
      {ZmElementQuad4, &warped, foot + ZmVector3d(-0.015, 0.0925, 1) * (0.25 / std::sqrt(1.00878125)), foot,
       Pd(0.3, -0.4, 0), 0.25, 1, ok},
      // A collapsed element is singular: natural (0, 0, 0) and the distance to its point; a NaN point
      // or a type without natural coordinates writes nothing.
      {ZmElementHex8, &collapsed, Pd(0, 0, 0), Pd(1, 2, 3), Pd(0, 0, 0), std::sqrt(14.0), 0, ZmNaturalSingular},
      {ZmElementHex8, &kCube, Pd(NAN, 0, 0), Pd(), Pd(), 0, 0, bad},
      {ZmElementBeam2, &kCube, Pd(0, 0, 0), Pd(), Pd(), 0, 0, bad},
  };
  for (const auto& r : rows) {
    const auto got = M::ComputeNaturalCoordinates(r.type, r.nodes->data(), r.point);
    EXPECT_TRUE(got.status == r.status && got.inside == r.inside) << &r - rows;
    EXPECT_LE((got.closest - r.closest).length() + (got.natural - r.natural).length(), 1e-10) << &r - rows;
    EXPECT_NEAR(got.distance, r.distance, 1e-10) << &r - rows;
  }
  std::vector<Pd> folded = kCube;  // folded through itself: Newton stops at the limit with finite numbers
  std::swap(folded[6], folded[0]);
  const auto f = M::ComputeNaturalCoordinates(ZmElementHex8, folded.data(), Pd(50, -70, 20), 0, 0, 5);
  EXPECT_TRUE(std::isfinite(f.natural.x + f.natural.y + f.natural.z + f.distance) && f.inside == 0);
}

// Both twins run one double implementation: on coordinates exact in float, the float results are
// the double ones rounded.
TEST(NaturalCoordinates, FloatTwinIsTheDoubleResultRounded) {
  const std::vector<Pd> wide = {{0, 0, 0},   {2.5, 0.25, 0}, {2.75, 2, 0.5}, {0.25, 1.75, 0},
                                {0, 0.5, 2}, {2, 0, 2.25},   {2.5, 2.5, 2},  {0.5, 2, 1.75}};
  std::vector<ZmPoint3f> narrow;
  for (const Pd& p : wide) narrow.emplace_back(float(p.x), float(p.y), float(p.z));
  const auto d = M::ComputeNaturalCoordinates(ZmElementHex8, wide.data(), Pd(1.25, 0.75, 1.5));
  const auto f = ZmMeshf::ComputeNaturalCoordinates(ZmElementHex8, narrow.data(), ZmPoint3f(1.25f, 0.75f, 1.5f));
  EXPECT_EQ(f.natural, ZmPoint3f(float(d.natural.x), float(d.natural.y), float(d.natural.z)));
  EXPECT_EQ(f.iterations, d.iterations);
  ZmMeshf::Penetration pf;
  M::Penetration pd;
  ASSERT_EQ(ZmMeshf::ComputePenetration(ZmElementQuad4, narrow.data(), ZmPoint3f(1, 1, 0.5f), 0.5f, 1, pf), 1);
  ASSERT_EQ(M::ComputePenetration(ZmElementQuad4, wide.data(), Pd(1, 1, 0.5), 0.5, 1, pd), 1);
  EXPECT_EQ(pf.depth, float(pd.depth));
}

TEST(Penetration, NodeAgainstTriangleAndQuadSegments) {
  const std::vector<Pd> quad = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  const struct {
    ZmElementType type;
    Pd node;
    double depth;
    Pd closest, natural;
    double nz;  // the normal points towards the node; unchecked for a node in the plane
  } rows[] = {
      // the triangle 0 1 2 of the square, p0 + r (p1 - p0) + s (p2 - p0); contact distance 1
      {ZmElementTri3, Pd(0.25, 0.25, 0.3), 0.7, Pd(0.25, 0.25, 0), Pd(0, 0.25, 0), 1},
      {ZmElementTri3, Pd(0.25, 0.25, -0.3), 0.7, Pd(0.25, 0.25, 0), Pd(0, 0.25, 0), -1},
      {ZmElementTri3, Pd(2, 0, 0), -0.0, Pd(1, 0, 0), Pd(1, 0, 0), 0},
      // (0.75, 0.5) lies in the triangle (centre, 1, 2) with weights 0.25, 0.25: natural (0.5, 0)
      {ZmElementQuad4, Pd(0.75, 0.5, 0.1), 0.9, Pd(0.75, 0.5, 0), Pd(0.5, 0, 0), 1},
      {ZmElementQuad4, Pd(0.5, 0.5, -2), -1.0, Pd(0.5, 0.5, 0), Pd(0, 0, 0), -1},
      // (0.25, 0.5) in the triangle (centre, 3, 0), weights 0.25, 0.25: natural (-1, 1) / 4 + (-1, -1) / 4
      {ZmElementQuad4, Pd(0.25, 0.5, 0.2), 0.8, Pd(0.25, 0.5, 0), Pd(-0.5, 0, 0), 1},
  };
  for (const auto& r : rows) {
    M::Penetration p;
    ASSERT_EQ(M::ComputePenetration(r.type, quad.data(), r.node, 1.0, 1.0, p), 1);
    EXPECT_NEAR(p.depth, r.depth, 1e-12) << &r - rows;
    EXPECT_LE((p.closest - r.closest).length() + (p.natural - r.natural).length(), 1e-12) << &r - rows;
    EXPECT_TRUE(r.nz == 0 || p.normal.z == r.nz) << &r - rows;
  }
  M::Penetration p;
  const std::vector<Pd> line = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
  EXPECT_EQ(M::ComputePenetration(ZmElementTri3, line.data(), Pd(0, 1, 0), 1, 1, p), 0);
}

// The grid search against every (node, segment) pair tested directly. Each segment has nodes of
// its own, stored one after the other; 2000 free nodes follow.
TEST(Penetration, GridSearchFindsWhatTheAllPairsLoopFinds) {
  std::mt19937_64 rng(5);
  std::uniform_real_distribution<double> u(0.0, 10.0), d(-0.6, 0.6), t(0.0, 0.8);
  std::vector<Pd> nodes;
  std::vector<double> thickness, segmentThickness;
  std::vector<ZmElementType> types;
  std::vector<std::int64_t> connectivity;
  // The last segment lies across the whole box: too large to bin, tested against every node.
  const Pd across[] = {Pd(-1, -1, 5), Pd(11, -1, 5.5), Pd(5, 11, 4.5)};
  for (int s = 0; s <= 400; ++s) {
    const Pd c(u(rng), u(rng), u(rng));
    types.push_back(s % 2 ? ZmElementQuad4 : ZmElementTri3);
    segmentThickness.push_back(s == 400 ? 0.5 : t(rng));
    for (int i = 0; i < M::NodeCount(types.back()); ++i) {
      connectivity.push_back(static_cast<std::int64_t>(nodes.size()));
      nodes.push_back(s == 400 ? across[i] : Pd(c.x + d(rng), c.y + d(rng), c.z + d(rng)));
      thickness.push_back(s == 400 ? 0 : t(rng));
    }
  }
  for (int i = 0; i < 2000; ++i) nodes.emplace_back(u(rng), u(rng), u(rng)), thickness.push_back(t(rng));
  WbArrayTempl<M::Penetration> found;
  const std::uint64_t count =
      M::FindPenetrations(nodes.data(), nodes.size(), nullptr, 0, thickness.data(), types.data(), connectivity.data(),
                          types.size(), segmentThickness.data(), found);
  std::set<std::tuple<std::uint64_t, std::uint64_t, double>> grid, all;
  for (std::uint64_t i = 0; i < found.GetSize(); ++i) grid.emplace(found[i].node, found[i].segment, found[i].depth);
  for (std::uint64_t n = 0; n < nodes.size(); ++n) {
    for (std::size_t s = 0, first = 0; s < types.size(); first += M::NodeCount(types[s++])) {
      const std::uint64_t own = static_cast<std::uint64_t>(connectivity[first]);
      M::Penetration p;
      if ((n < own || n >= own + M::NodeCount(types[s])) &&
          M::ComputePenetration(types[s], &nodes[own], nodes[n], thickness[n], segmentThickness[s], p) && p.depth > 0)
        all.emplace(n, s, p.depth);
    }
  }
  EXPECT_GT(all.size(), 50u);
  EXPECT_TRUE(count == all.size() && grid == all);
  // Results come by node, then segment.
  for (std::uint64_t i = 1; i < found.GetSize(); ++i)
    EXPECT_LT(std::make_pair(found[i - 1].node, found[i - 1].segment), std::make_pair(found[i].node, found[i].segment));
  connectivity[3] = -1;  // bad connectivity appends nothing
  EXPECT_EQ(M::FindPenetrations(nodes.data(), nodes.size(), nullptr, 0, nullptr, types.data(), connectivity.data(),
                                types.size(), nullptr, found),
            0u);
}

}  // namespace
