// Closed-form cases worked by hand, the wedge orientation, degenerate and bad input, and the
// batch forms over a mixed mesh. Every case runs in both twins.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

using P = std::vector<ZmPoint3d>;
const double kPi = 3.14159265358979323846;
const double kDeg = 180.0 / kPi;

const P kSquare = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
const P kLifted = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0.2}};
const P kRightTri = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
const P kRegularTet = {{0, 0, 0}, {1, 0, 0}, {0.5, std::sqrt(3.0) / 2, 0}, {0.5, std::sqrt(3.0) / 6, std::sqrt(2.0 / 3)}};
const P kCube = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
const P kSheared = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0, 1}, {1.5, 0, 1}, {1.5, 1, 1}, {0.5, 1, 1}};
const P kTapered = {{0, 0, 0}, {2, 0, 0}, {2, 1, 0}, {0, 1, 0}, {0.5, 0, 1}, {1.5, 0, 1}, {1.5, 1, 1}, {0.5, 1, 1}};
const P kWedge = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}};
const P kWedgeOtherOrder = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, {0, 1, 1}, {1, 0, 1}};
const P kPyramid = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}};
const P kBeam = {{1, 1, 1}, {4, 5, 1}};
// Lifted quad: d1 x d2 = (1, 1, 0) x (-1, 1, 0.2) = (0.2, -0.2, 2), |.| = sqrt(4.08); every node
// is 0.1 / sqrt(4.08) from the mean plane; the split along 1-3 has normals (0, -0.2, 1) and
// (0.2, 0, 1) with cosine 1 / 1.04, the split along 0-2 the smaller angle acos(1 / sqrt(1.08)).
const double kLiftHeight = 0.1 / std::sqrt(4.08);

struct Case {
  const char* name;
  ZmElementType type;
  const P* nodes;
  ZmElementMetric metric;
  double expected;
};

const Case kCases[] = {
    {"square area", ZmElementQuad4, &kSquare, ZmMetricArea, 1.0},
    {"square warping", ZmElementQuad4, &kSquare, ZmMetricWarpingAngle, 0.0},
    {"square Lc A/Dmax", ZmElementQuad4, &kSquare, ZmMetricCharacteristicLength, 1 / std::sqrt(2.0)},
    {"square Lc with edges", ZmElementQuad4, &kSquare, ZmMetricCharacteristicLengthEdges, 1.0},
    {"lifted warping 15.94", ZmElementQuad4, &kLifted, ZmMetricWarpingAngle, std::acos(1 / 1.04) * kDeg},
    {"lifted height", ZmElementQuad4, &kLifted, ZmMetricWarpingHeight, kLiftHeight},
    {"lifted height ratio", ZmElementQuad4, &kLifted, ZmMetricWarpingHeightRatio,
     kLiftHeight / std::sqrt(0.5 * std::sqrt(4.08))},
    {"lifted corner form", ZmElementQuad4, &kLifted, ZmMetricWarpingCornerAngle, std::asin(kLiftHeight / 0.5) * kDeg},
    {"lifted Verdict warpage", ZmElementQuad4, &kLifted, ZmMetricWarpageVerdict, std::pow(1 / 1.04, 3)},
    {"right tri area", ZmElementTri3, &kRightTri, ZmMetricArea, 0.5},
    {"right tri min angle", ZmElementTri3, &kRightTri, ZmMetricMinAngle, 45.0},
    {"right tri max angle", ZmElementTri3, &kRightTri, ZmMetricMaxAngle, 90.0},
    {"right tri scaled Jacobian", ZmElementTri3, &kRightTri, ZmMetricScaledJacobian, std::sqrt(2.0 / 3.0)},
    {"right tri Lc 2A/Lmax", ZmElementTri3, &kRightTri, ZmMetricCharacteristicLength, 1 / std::sqrt(2.0)},
    {"regular tet volume", ZmElementTet4, &kRegularTet, ZmMetricVolume, 1 / (6 * std::sqrt(2.0))},
    {"regular tet scaled Jacobian", ZmElementTet4, &kRegularTet, ZmMetricScaledJacobian, 1.0},
    {"regular tet shape", ZmElementTet4, &kRegularTet, ZmMetricShape, 1.0},
    {"regular tet mean ratio", ZmElementTet4, &kRegularTet, ZmMetricMeanRatio, 1.0},
    {"regular tet condition", ZmElementTet4, &kRegularTet, ZmMetricCondition, 1.0},
    {"regular tet dihedral", ZmElementTet4, &kRegularTet, ZmMetricMinDihedralAngle, std::acos(1 / 3.0) * kDeg},
    {"regular tet altitude", ZmElementTet4, &kRegularTet, ZmMetricCharacteristicLength, std::sqrt(2.0 / 3.0)},
    {"cube volume", ZmElementHex8, &kCube, ZmMetricVolume, 1.0},
    {"cube scaled Jacobian", ZmElementHex8, &kCube, ZmMetricScaledJacobian, 1.0},
    {"cube dimension 1/sqrt(3)", ZmElementHex8, &kCube, ZmMetricDimension, 1 / std::sqrt(3.0)},
    {"cube Lc V/Amax", ZmElementHex8, &kCube, ZmMetricCharacteristicLength, 1.0},
    {"cube oddy", ZmElementHex8, &kCube, ZmMetricOddy, 0.0},
    {"sheared volume", ZmElementHex8, &kSheared, ZmMetricVolume, 1.0},
    {"sheared scaled Jacobian", ZmElementHex8, &kSheared, ZmMetricScaledJacobian, 2 / std::sqrt(5.0)},
    // Trapezoid 2 / 1 wide and 1 high, 1 deep; taper |efg13| / min(|efg1|, |efg3|) = 2 / 4.
    {"tapered volume", ZmElementHex8, &kTapered, ZmMetricVolume, 1.5},
    {"tapered taper", ZmElementHex8, &kTapered, ZmMetricTaper, 0.5},
    {"wedge volume", ZmElementWedge6, &kWedge, ZmMetricVolume, 0.5},
    {"wedge other order is inside out", ZmElementWedge6, &kWedgeOtherOrder, ZmMetricVolume, -0.5},
    {"wedge Lc V/Amax", ZmElementWedge6, &kWedge, ZmMetricCharacteristicLength, 0.5 / std::sqrt(2.0)},
    {"pyramid volume", ZmElementPyramid5, &kPyramid, ZmMetricVolume, 1 / 3.0},
    {"pyramid Lc V/Amax", ZmElementPyramid5, &kPyramid, ZmMetricCharacteristicLength, 1 / 3.0},
    {"beam length", ZmElementBeam2, &kBeam, ZmMetricCharacteristicLength, 5.0},
};

template <class T>
std::vector<ZmPoint3T<T>> Nodes(const P& p) {
  std::vector<ZmPoint3T<T>> out;
  for (const ZmPoint3d& q : p) out.emplace_back(T(q.x), T(q.y), T(q.z));
  return out;
}

template <class T>
class MeshTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(MeshTwins, Scalars);

TYPED_TEST(MeshTwins, ClosedFormCases) {
  using T = TypeParam;
  const double tol = std::is_same<T, double>::value ? 1e-12 : 2e-6;
  for (const Case& c : kCases) {
    const T got = ZmMeshT<T>::ComputeMetric(c.type, c.metric, Nodes<T>(*c.nodes).data());
    EXPECT_NEAR(double(got), c.expected, tol * std::max(1.0, std::fabs(c.expected))) << c.name;
  }
}

TYPED_TEST(MeshTwins, TimeStepsOfTheThreeWaveSpeeds) {
  using T = TypeParam;
  using M = ZmMeshT<T>;
  const double e = 210000.0, nu = 0.3, rho = 7.85e-9;  // steel in mm, t, s
  const double bar = std::sqrt(e / rho), plate = std::sqrt(e / (rho * (1 - nu * nu)));
  const double solid = std::sqrt(e * (1 - nu) / (rho * (1 + nu) * (1 - 2 * nu)));
  const struct {
    ZmElementType type;
    const P* nodes;
    double expected;
  } rows[] = {{ZmElementBeam2, &kBeam, 5 / bar},
              {ZmElementQuad4, &kSquare, 1 / std::sqrt(2.0) / plate},
              {ZmElementHex8, &kCube, 1 / solid}};
  for (const auto& r : rows) {
    const T dt = M::ComputeTimeStep(r.type, ZmMetricCharacteristicLength, Nodes<T>(*r.nodes).data(), T(e), T(nu),
                                    T(rho));
    EXPECT_NEAR(double(dt), r.expected, 1e-6 * r.expected) << r.type;
  }
  const T invalid = T(-1.0e32f);
  const auto cube = Nodes<T>(kCube);
  EXPECT_EQ(M::ComputeTimeStep(ZmElementHex8, ZmMetricCharacteristicLength, cube.data(), T(e), T(0.5), T(rho)), invalid);
  EXPECT_EQ(M::ComputeTimeStep(ZmElementHex8, ZmMetricArea, cube.data(), T(e), T(nu), T(rho)), invalid);
  EXPECT_EQ(M::ComputeWaveSpeed(ZmWaveSpeedBar, T(e), T(nu), T(0)), invalid);
}

TYPED_TEST(MeshTwins, DegenerateAndBadInputGiveTheInvalidMarker) {
  using T = TypeParam;
  using M = ZmMeshT<T>;
  const T invalid = T(-1.0e32f);
  auto cube = Nodes<T>(kCube);
  const std::vector<ZmPoint3T<T>> point(8, ZmPoint3T<T>(T(1), T(2), T(3)));
  EXPECT_EQ(M::ComputeMetric(ZmElementHex8, ZmMetricScaledJacobian, point.data()), invalid);
  EXPECT_EQ(M::ComputeMetric(ZmElementHex8, ZmMetricEdgeRatio, point.data()), invalid);
  EXPECT_EQ(M::ComputeMetric(ZmElementQuad4, ZmMetricWarpingAngle, point.data()), invalid);
  EXPECT_EQ(M::ComputeMetric(ZmElementHex8, ZmMetricEquiangleSkew, point.data()), T(1));
  EXPECT_EQ(M::ComputeMetric(ZmElementHex8, ZmMetricVolume, nullptr), invalid);
  EXPECT_EQ(M::ComputeMetric(ZmElementTet4, ZmMetricOddy, cube.data()), invalid);
  EXPECT_EQ(M::IsMetricDefined(ZmElementTet4, ZmMetricOddy), 0);
  EXPECT_EQ(M::ComputeMetric(ZmElementType(9), ZmMetricVolume, cube.data()), invalid);
  cube[5].y = std::numeric_limits<T>::quiet_NaN();
  EXPECT_EQ(M::ComputeMetric(ZmElementHex8, ZmMetricVolume, cube.data()), invalid);
  cube[5].y = std::numeric_limits<T>::infinity();
  EXPECT_EQ(M::ComputeMetric(ZmElementHex8, ZmMetricScaledJacobian, cube.data()), invalid);
}

TYPED_TEST(MeshTwins, ShellOrientationAgainstTheCallersNormal) {
  using M = ZmMeshT<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  const auto square = Nodes<TypeParam>(kSquare);
  const auto tri = Nodes<TypeParam>(kRightTri);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementQuad4, square.data(), V(0, 0, 1)), 1);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementQuad4, square.data(), V(0, 0, -1)), 0);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementTri3, tri.data(), V(0.1, 0, 1)), 1);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementTri3, tri.data(), V(1, 0, 0)), 0);  // edge-on
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementHex8, square.data(), V(0, 0, 1)), 0);
}

TYPED_TEST(MeshTwins, BatchOverAMixedMeshAndTheSmallestTimeSteps) {
  using T = TypeParam;
  using M = ZmMeshT<T>;
  // Nodes of the cube, then the wedge and the beam shifted along x; a quad on the cube's bottom.
  std::vector<ZmPoint3T<T>> nodes = Nodes<T>(kCube);
  for (const ZmPoint3d& q : kWedge) nodes.emplace_back(T(q.x + 5), T(q.y), T(q.z));
  const std::vector<ZmElementType> types = {ZmElementHex8, ZmElementQuad4, ZmElementWedge6, ZmElementBeam2,
                                            ZmElementTri3, ZmElementHex8};
  std::vector<std::int64_t> connectivity = {0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2, 3, 8, 9, 10, 11, 12, 13, 0, 6, 0, 1, 99};
  for (int i = 0; i < 8; ++i) connectivity.push_back(i);
  std::vector<T> values(types.size());
  // Volume: cube 1, quad and beam not solids, wedge 0.5, the triangle refers to node 99.
  EXPECT_EQ(M::ComputeMeshMetric(ZmMetricVolume, nodes.data(), nodes.size(), types.data(), connectivity.data(),
                                 types.size(), values.data()),
            3u);
  const T invalid = T(-1.0e32f);
  const T expected[] = {T(1), invalid, T(0.5), invalid, invalid, T(1)};
  for (std::size_t e = 0; e < types.size(); ++e) EXPECT_NEAR(values[e], expected[e], 1e-6) << e;
  // Time steps: the beam (diagonal sqrt(3) at the bar speed) against the solids.
  EXPECT_EQ(M::ComputeMeshTimeStep(ZmMetricCharacteristicLength, nodes.data(), nodes.size(), types.data(),
                                   connectivity.data(), types.size(), T(210000), T(0.3), T(7.85e-9), values.data()),
            5u);
  T smallest[4];
  std::uint64_t indices[4];
  ASSERT_EQ(M::SmallestValues(values.data(), values.size(), 4, smallest, indices), 4u);
  // Wedge 0.3536 / 6.001e6 = 5.9e-8, quad 0.7071 / 5.422e6 = 1.30e-7, then the two unit cubes
  // (1 / 6.001e6) tied and by index; the beam (sqrt(3) / 5.172e6 = 3.35e-7) comes last.
  const std::uint64_t order[] = {2, 1, 0, 5};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(indices[i], order[i]) << i;
  EXPECT_EQ(smallest[2], smallest[3]);
  // An unknown type ends the walk: everything from it on is invalid.
  std::vector<ZmElementType> broken = types;
  broken[1] = ZmElementType(-3);
  EXPECT_EQ(M::ComputeMeshMetric(ZmMetricVolume, nodes.data(), nodes.size(), broken.data(), connectivity.data(),
                                 broken.size(), values.data()),
            1u);
  EXPECT_EQ(values[5], invalid);
}

}  // namespace
