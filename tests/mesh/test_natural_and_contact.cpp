// Natural coordinates (round trips, outside points, singular elements) and penetration of
// nodes into shell segments, one pair at a time and through the grid search against a plain
// all-pairs loop.
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <tuple>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

using Pd = ZmPoint3d;
using M = ZmMeshd;

// An affine image of each reference element (undistorted), and a mildly distorted one.
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

// A natural point inside each element's range.
Pd RandomNatural(ZmElementType type, std::mt19937_64& rng) {
  std::uniform_real_distribution<double> u(0.0, 1.0), c(-1.0, 1.0);
  double a = u(rng), b = u(rng) * (1 - a), t = u(rng) * (1 - a - b);
  switch (type) {
    case ZmElementTri3:
      return Pd(a, b, 0);
    case ZmElementTet4:
      return Pd(a, b, t);
    case ZmElementWedge6:
      return Pd(a, b, c(rng));
    case ZmElementPyramid5:
      return Pd(c(rng), c(rng), 0.9 * u(rng));
    case ZmElementQuad4:
      return Pd(c(rng), c(rng), 0);
    default:
      return Pd(c(rng), c(rng), c(rng));
  }
}

std::vector<Pd> Transformed(const Shape& s, std::mt19937_64& rng, double distortion) {
  std::normal_distribution<double> n(0.0, 1.0);
  const double m[3][3] = {{2 + 0.3 * n(rng), 0.4 * n(rng), 0.2 * n(rng)},
                          {0.3 * n(rng), 1.5 + 0.2 * n(rng), 0.3 * n(rng)},
                          {0.2 * n(rng), 0.1 * n(rng), 1 + 0.2 * n(rng)}};
  std::vector<Pd> out;
  for (const Pd& p : s.reference) {
    const Pd q(p.x + distortion * n(rng), p.y + distortion * n(rng), p.z + distortion * n(rng));
    out.emplace_back(m[0][0] * q.x + m[0][1] * q.y + m[0][2] * q.z + 10, m[1][0] * q.x + m[1][1] * q.y + m[1][2] * q.z,
                     m[2][0] * q.x + m[2][1] * q.y + m[2][2] * q.z - 3);
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
        double shape[8];
        const Pd point = M::ComputePointAtNatural(s.type, nodes.data(), natural, shape);
        double sum = 0;
        for (int i = 0; i < M::NodeCount(s.type); ++i) sum += shape[i];
        EXPECT_NEAR(sum, 1.0, 1e-14);
        const auto r = M::ComputeNaturalCoordinates(s.type, nodes.data(), point, 1e-9);
        ASSERT_EQ(r.status, ZmNaturalConverged) << s.type;
        EXPECT_LE((r.natural - natural).length(), 1e-12) << s.type << " distortion " << distortion;
        EXPECT_EQ(r.inside, 1);
        EXPECT_LE(r.distance, 1e-12);
        if (distortion == 0.0) {
          EXPECT_LE(r.iterations, 6) << s.type;
        }
      }
    }
  }
}

TEST(NaturalCoordinates, NodesInterpolateAndOutsidePointsFindTheBoundary) {
  const std::vector<Pd>& cube = kShapes[5].reference;
  for (int i = 0; i < 8; ++i) EXPECT_EQ(M::ComputePointAtNatural(ZmElementHex8, cube.data(), cube[i]), cube[i]);
  const struct {
    ZmElementType type;
    const std::vector<Pd>* nodes;
    Pd point, closest;
    double distance;
    unsigned char inside;
  } rows[] = {
      {ZmElementHex8, &cube, Pd(3, 0.5, 0.5), Pd(1, 0.5, 0.5), 2.0, 0},
      {ZmElementHex8, &cube, Pd(2, 2, 0), Pd(1, 1, 0), std::sqrt(2.0), 0},
      {ZmElementHex8, &cube, Pd(0.2, 0.3, -0.4), Pd(0.2, 0.3, -0.4), 0.0, 1},
      // shells: the foot on the sheet inside, the nearest edge point outside
      {ZmElementQuad4, &kShapes[1].reference, Pd(0.5, 0.5, 3), Pd(0.5, 0.5, 0), 3.0, 1},
      {ZmElementQuad4, &kShapes[1].reference, Pd(2, 0.5, 1), Pd(1, 0.5, 0), std::sqrt(2.0), 0},
      {ZmElementTri3, &kShapes[0].reference, Pd(1, 1, 0), Pd(0.5, 0.5, 0), std::sqrt(0.5), 0},
  };
  for (const auto& r : rows) {
    const auto got = M::ComputeNaturalCoordinates(r.type, r.nodes->data(), r.point);
    EXPECT_EQ(got.inside, r.inside) << r.point.x;
    EXPECT_NEAR((got.closest - r.closest).length(), 0.0, 1e-12) << r.point.x;
    EXPECT_NEAR(got.distance, r.distance, 1e-12);
  }
}

TEST(NaturalCoordinates, WarpedQuadFindsTheFootOfTheNormal) {
  // A point off a warped quad along the sheet's normal at (r, s) comes back to (r, s): the least
  // squares on the 3x2 Jacobian, not a projection on the plane of three nodes.
  const std::vector<Pd> quad = {{0, 0, 0}, {2, 0, 0.3}, {2, 2, -0.2}, {0, 2, 0.4}};
  const Pd natural(0.3, -0.4, 0);
  const Pd on = M::ComputePointAtNatural(ZmElementQuad4, quad.data(), natural);
  const double h = 1e-6;
  const ZmVector3d dr = M::ComputePointAtNatural(ZmElementQuad4, quad.data(), Pd(0.3 + h, -0.4, 0)) - on;
  const ZmVector3d ds = M::ComputePointAtNatural(ZmElementQuad4, quad.data(), Pd(0.3, -0.4 + h, 0)) - on;
  ZmVector3d n = dr.cross(ds);
  n = n * (0.25 / n.length());
  const auto r = M::ComputeNaturalCoordinates(ZmElementQuad4, quad.data(), on + n);
  EXPECT_EQ(r.status, ZmNaturalConverged);
  EXPECT_NEAR(r.natural.x, 0.3, 1e-8);
  EXPECT_NEAR(r.natural.y, -0.4, 1e-8);
  EXPECT_NEAR(r.distance, 0.25, 1e-8);
}

TEST(NaturalCoordinates, SingularAndBadElementsAreStatedNotNaN) {
  const std::vector<Pd> collapsed(8, Pd(1, 2, 3));
  const auto r = M::ComputeNaturalCoordinates(ZmElementHex8, collapsed.data(), Pd(0, 0, 0));
  EXPECT_EQ(r.status, ZmNaturalSingular);
  EXPECT_EQ(r.natural, Pd(0, 0, 0));
  EXPECT_NEAR(r.distance, std::sqrt(14.0), 1e-12);
  const std::vector<Pd> cube = kShapes[5].reference;
  EXPECT_EQ(M::ComputeNaturalCoordinates(ZmElementHex8, cube.data(), Pd(NAN, 0, 0)).status, ZmNaturalInvalidInput);
  EXPECT_EQ(M::ComputeNaturalCoordinates(ZmElementBeam2, cube.data(), Pd(0, 0, 0)).status, ZmNaturalInvalidInput);
  // An element folded through itself: Newton stops at the limit with finite numbers.
  std::vector<Pd> folded = cube;
  std::swap(folded[6], folded[0]);
  const auto f = M::ComputeNaturalCoordinates(ZmElementHex8, folded.data(), Pd(50, -70, 20), 0, 0, 5);
  EXPECT_TRUE(std::isfinite(f.natural.x + f.natural.y + f.natural.z + f.distance));
  EXPECT_EQ(f.inside, 0);
}

// Both twins run one double implementation: on coordinates exact in float, the float results are
// the double ones rounded.
TEST(NaturalCoordinates, FloatTwinIsTheDoubleResultRounded) {
  const double nodes[8][3] = {{0, 0, 0}, {2.5, 0.25, 0}, {2.75, 2, 0.5}, {0.25, 1.75, 0},
                              {0, 0.5, 2}, {2, 0, 2.25}, {2.5, 2.5, 2}, {0.5, 2, 1.75}};
  std::vector<Pd> wide;
  std::vector<ZmPoint3f> narrow;
  for (const auto& n : nodes) {
    wide.emplace_back(n[0], n[1], n[2]);
    narrow.emplace_back(n[0], n[1], n[2]);
  }
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
    double nz;
  } rows[] = {
      // the triangle 0 1 2 of the square, p0 + r (p1 - p0) + s (p2 - p0); contact distance 1
      {ZmElementTri3, Pd(0.25, 0.25, 0.3), 0.7, Pd(0.25, 0.25, 0), Pd(0, 0.25, 0), 1},
      {ZmElementTri3, Pd(0.25, 0.25, -0.3), 0.7, Pd(0.25, 0.25, 0), Pd(0, 0.25, 0), -1},
      {ZmElementTri3, Pd(2, 0, 0), -0.0, Pd(1, 0, 0), Pd(1, 0, 0), 1},
      // (0.75, 0.5) lies in the triangle (centre, 1, 2) with weights 0.25, 0.25: natural (0.5, 0)
      {ZmElementQuad4, Pd(0.75, 0.5, 0.1), 0.9, Pd(0.75, 0.5, 0), Pd(0.5, 0, 0), 1},
      {ZmElementQuad4, Pd(0.5, 0.5, -2), -1.0, Pd(0.5, 0.5, 0), Pd(0, 0, 0), -1},
  };
  for (const auto& r : rows) {
    M::Penetration p;
    ASSERT_EQ(M::ComputePenetration(r.type, quad.data(), r.node, 1.0, 1.0, p), 1);
    EXPECT_NEAR(p.depth, r.depth, 1e-12);
    EXPECT_NEAR((p.closest - r.closest).length(), 0, 1e-12);
    EXPECT_NEAR((p.natural - r.natural).length(), 0, 1e-12);
    if (r.node.z != 0) {
      EXPECT_EQ(p.normal.z, r.nz);
    }
  }
  M::Penetration p;
  const std::vector<Pd> line = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
  EXPECT_EQ(M::ComputePenetration(ZmElementTri3, line.data(), Pd(0, 1, 0), 1, 1, p), 0);
}

// The grid search against every (node, segment) pair tested directly.
TEST(Penetration, GridSearchFindsWhatTheAllPairsLoopFinds) {
  std::mt19937_64 rng(5);
  std::uniform_real_distribution<double> u(0.0, 10.0), d(-0.6, 0.6), t(0.0, 0.8);
  std::vector<Pd> nodes;
  std::vector<double> thickness;
  std::vector<ZmElementType> types;
  std::vector<std::int64_t> connectivity;
  std::vector<double> segmentThickness;
  for (int s = 0; s < 400; ++s) {
    const Pd c(u(rng), u(rng), u(rng));
    const ZmElementType type = s % 2 ? ZmElementQuad4 : ZmElementTri3;
    types.push_back(type);
    segmentThickness.push_back(t(rng));
    for (int i = 0; i < M::NodeCount(type); ++i) {
      connectivity.push_back(static_cast<std::int64_t>(nodes.size()));
      nodes.emplace_back(c.x + d(rng), c.y + d(rng), c.z + d(rng));
      thickness.push_back(t(rng));
    }
  }
  // One segment across the whole box: too large to bin, tested against every node.
  types.push_back(ZmElementTri3);
  segmentThickness.push_back(0.5);
  for (const Pd& corner : {Pd(-1, -1, 5), Pd(11, -1, 5.5), Pd(5, 11, 4.5)}) {
    connectivity.push_back(static_cast<std::int64_t>(nodes.size()));
    nodes.push_back(corner);
    thickness.push_back(0.0);
  }
  for (int i = 0; i < 3000; ++i) {
    nodes.emplace_back(u(rng), u(rng), u(rng));
    thickness.push_back(t(rng));
  }
  WbArrayTempl<M::Penetration> found;
  const std::uint64_t count = M::FindPenetrations(nodes.data(), nodes.size(), nullptr, 0, thickness.data(),
                                                  types.data(), connectivity.data(), types.size(),
                                                  segmentThickness.data(), found);
  std::set<std::tuple<std::uint64_t, std::uint64_t, double>> grid, all;
  for (std::uint64_t i = 0; i < found.GetSize(); ++i) grid.emplace(found[i].node, found[i].segment, found[i].depth);
  for (std::uint64_t n = 0; n < nodes.size(); ++n) {
    std::size_t position = 0;
    for (std::size_t s = 0; s < types.size(); ++s) {
      const int k = M::NodeCount(types[s]);
      std::vector<Pd> segment;
      bool own = false;
      for (int i = 0; i < k; ++i) {
        segment.push_back(nodes[connectivity[position + i]]);
        own = own || connectivity[position + i] == static_cast<std::int64_t>(n);
      }
      position += k;
      M::Penetration p;
      if (!own && M::ComputePenetration(types[s], segment.data(), nodes[n], thickness[n], segmentThickness[s], p) &&
          p.depth > 0)
        all.emplace(n, s, p.depth);
    }
  }
  EXPECT_GT(all.size(), 50u);
  EXPECT_EQ(count, all.size());
  EXPECT_EQ(grid, all);
  // Results come by node, then segment.
  for (std::uint64_t i = 1; i < found.GetSize(); ++i)
    EXPECT_TRUE(std::make_pair(found[i - 1].node, found[i - 1].segment) < std::make_pair(found[i].node, found[i].segment));
  // Bad connectivity appends nothing.
  connectivity[3] = -1;
  EXPECT_EQ(M::FindPenetrations(nodes.data(), nodes.size(), nullptr, 0, nullptr, types.data(), connectivity.data(),
                                types.size(), nullptr, found),
            0u);
}

}  // namespace
