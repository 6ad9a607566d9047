// Element metrics in both twins: hand-worked closed forms where VTK has none, bad input, time steps,
// shell orientation, the batch forms, and every quality metric against VTK 9.1 / Verdict's table.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

using P = std::vector<ZmPoint3d>;
const double kDeg = 180.0 / 3.14159265358979323846;
const double kMarker = double(-1.0e32f);

P With(P p, int node, double y) { return p[node].y = y, p; }

const P kSquare = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
const P kLifted = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0.2}};
const P kRightTri = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, kBeam = {{1, 1, 1}, {4, 5, 1}};
const P kRegularTet = {{0, 0, 0}, {1, 0, 0}, {0.5, std::sqrt(3.0) / 2, 0}, {0.5, std::sqrt(3.0) / 6, std::sqrt(2.0 / 3)}};
const P kCube = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
const P kWedge = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}};
const P kWedgeOtherOrder = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {0, 0, 1}, {0, 1, 1}, {1, 0, 1}};
const P kPyramid = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}};
const P kPoint(8, ZmPoint3d(1, 2, 3)), kNanCube = With(kCube, 5, NAN), kInfCube = With(kCube, 5, INFINITY);
// Lifted quad: d1 x d2 = (1, 1, 0) x (-1, 1, 0.2) = (0.2, -0.2, 2), |.| = sqrt(4.08); every node
// is 0.1 / sqrt(4.08) from the mean plane; the split along 1-3 has normals (0, -0.2, 1) and
// (0.2, 0, 1) with cosine 1 / 1.04, the split along 0-2 the smaller angle acos(1 / sqrt(1.08)).
const double kLiftHeight = 0.1 / std::sqrt(4.08);

struct Case {
  ZmElementType type;
  const P* nodes;
  ZmElementMetric metric;
  double expected, nu = 0.0;  // a Poisson ratio nu > 0 asks for the time step of steel in mm, t, s
};
const double kE = 210000.0, kNu = 0.3, kRho = 7.85e-9, kBar = std::sqrt(kE / kRho);
const double kPlate = std::sqrt(kE / (kRho * (1 - kNu * kNu)));
const double kSolid = std::sqrt(kE * (1 - kNu) / (kRho * (1 + kNu) * (1 - 2 * kNu)));
const Case kCases[] = {
    {ZmElementQuad4, &kSquare, ZmMetricWarpingAngle, 0.0},
    {ZmElementQuad4, &kSquare, ZmMetricCharacteristicLength, 1 / std::sqrt(2.0)},  // A / Dmax
    {ZmElementQuad4, &kSquare, ZmMetricCharacteristicLengthEdges, 1.0},
    {ZmElementQuad4, &kLifted, ZmMetricWarpingAngle, std::acos(1 / 1.04) * kDeg},  // 15.94
    {ZmElementQuad4, &kLifted, ZmMetricWarpingHeight, kLiftHeight},
    {ZmElementQuad4, &kLifted, ZmMetricWarpingHeightRatio, kLiftHeight / std::sqrt(0.5 * std::sqrt(4.08))},
    {ZmElementQuad4, &kLifted, ZmMetricWarpingCornerAngle, std::asin(kLiftHeight / 0.5) * kDeg},
    {ZmElementQuad4, &kLifted, ZmMetricWarpageVerdict, std::pow(1 / 1.04, 3)},
    {ZmElementTri3, &kRightTri, ZmMetricCharacteristicLength, 1 / std::sqrt(2.0)},  // 2A / Lmax
    {ZmElementTet4, &kRegularTet, ZmMetricCharacteristicLength, std::sqrt(2.0 / 3.0)},  // altitude
    {ZmElementHex8, &kCube, ZmMetricCharacteristicLength, 1.0},  // V / Amax
    {ZmElementWedge6, &kWedgeOtherOrder, ZmMetricVolume, -0.5},  // the other node order is inside out
    {ZmElementWedge6, &kWedge, ZmMetricCharacteristicLength, 0.5 / std::sqrt(2.0)},
    {ZmElementPyramid5, &kPyramid, ZmMetricCharacteristicLength, 1 / 3.0},
    {ZmElementBeam2, &kBeam, ZmMetricCharacteristicLength, 5.0},
    // Degenerate and bad input: the invalid marker, or the limit 1 of the equiangle skew.
    {ZmElementHex8, &kPoint, ZmMetricScaledJacobian, kMarker},
    {ZmElementHex8, &kPoint, ZmMetricEdgeRatio, kMarker},
    {ZmElementQuad4, &kPoint, ZmMetricWarpingAngle, kMarker},
    {ZmElementHex8, &kPoint, ZmMetricEquiangleSkew, 1.0},
    {ZmElementHex8, nullptr, ZmMetricVolume, kMarker},
    {ZmElementTet4, &kCube, ZmMetricOddy, kMarker},
    {ZmElementType(9), &kCube, ZmMetricVolume, kMarker},
    {ZmElementHex8, &kNanCube, ZmMetricVolume, kMarker},
    {ZmElementHex8, &kInfCube, ZmMetricScaledJacobian, kMarker},
    // Time steps at the speed of each kind of element, and invalid ones.
    {ZmElementBeam2, &kBeam, ZmMetricCharacteristicLength, 5 / kBar, kNu},
    {ZmElementQuad4, &kSquare, ZmMetricCharacteristicLength, 1 / std::sqrt(2.0) / kPlate, kNu},
    {ZmElementHex8, &kCube, ZmMetricCharacteristicLength, 1 / kSolid, kNu},
    {ZmElementHex8, &kCube, ZmMetricCharacteristicLength, kMarker, 0.5},
    {ZmElementHex8, &kCube, ZmMetricArea, kMarker, kNu},
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

TYPED_TEST(MeshTwins, OneElement) {
  using T = TypeParam;
  using M = ZmMeshT<T>;
  const double tol = std::is_same<T, double>::value ? 1e-12 : 2e-6;
  for (const Case& c : kCases) {
    const std::vector<ZmPoint3T<T>> nodes = c.nodes ? Nodes<T>(*c.nodes) : std::vector<ZmPoint3T<T>>();
    const T got = c.nu > 0 ? M::ComputeTimeStep(c.type, c.metric, nodes.data(), T(kE), T(c.nu), T(kRho))
                           : M::ComputeMetric(c.type, c.metric, c.nodes ? nodes.data() : nullptr);
    const double bound = c.nu > 0 ? 1e-6 * c.expected : tol * std::max(1.0, std::fabs(c.expected));
    EXPECT_TRUE(c.expected == kMarker ? got == T(kMarker) : std::fabs(got - c.expected) <= bound) << &c - kCases;
  }
  EXPECT_EQ(M::IsMetricDefined(ZmElementTet4, ZmMetricOddy), 0);
  EXPECT_EQ(M::ComputeWaveSpeed(ZmWaveSpeedBar, T(kE), T(kNu), T(0)), T(kMarker));
  // Shells against the caller's normal.
  const auto square = Nodes<T>(kSquare), tri = Nodes<T>(kRightTri);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementQuad4, square.data(), ZmVector3T<T>(0, 0, 1)), 1);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementQuad4, square.data(), ZmVector3T<T>(0, 0, -1)), 0);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementTri3, tri.data(), ZmVector3T<T>(0.1, 0, 1)), 1);
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementTri3, tri.data(), ZmVector3T<T>(1, 0, 0)), 0);  // edge-on
  EXPECT_EQ(M::IsShellAlongNormal(ZmElementHex8, square.data(), ZmVector3T<T>(0, 0, 1)), 0);
}

TYPED_TEST(MeshTwins, BatchOverAMixedMeshAndTheSmallestTimeSteps) {
  using T = TypeParam;
  using M = ZmMeshT<T>;
  // Nodes of the cube, then the wedge shifted along x; the elements: the cube, a quad on its
  // bottom, the wedge, a beam along the cube's diagonal, a triangle that refers to node 99, the cube.
  std::vector<ZmPoint3T<T>> nodes = Nodes<T>(kCube);
  for (const ZmPoint3d& q : kWedge) nodes.emplace_back(T(q.x + 5), T(q.y), T(q.z));
  std::vector<ZmElementType> types = {ZmElementHex8,  ZmElementQuad4, ZmElementWedge6,
                                      ZmElementBeam2, ZmElementTri3,  ZmElementHex8};
  const std::vector<std::int64_t> connectivity = {0, 1, 2, 3, 4, 5, 6, 7, 0, 1, 2,  3,  8, 9, 10, 11,
                                                  12, 13, 0, 6, 0, 1, 99, 0, 1, 2, 3, 4, 5, 6, 7};
  std::vector<T> values(types.size());
  const auto volumes = [&] {
    return M::ComputeMeshMetric(ZmMetricVolume, nodes.data(), nodes.size(), types.data(), connectivity.data(),
                                types.size(), values.data());
  };
  ASSERT_EQ(volumes(), 3u);  // cube 1, wedge 0.5, cube 1; the rest are not solids or refer to no node
  const T expected[] = {T(1), T(kMarker), T(0.5), T(kMarker), T(kMarker), T(1)};
  for (std::size_t e = 0; e < types.size(); ++e) EXPECT_NEAR(values[e], expected[e], 1e-6) << e;
  // Time steps: the beam (diagonal sqrt(3) at the bar speed) against the solids.
  EXPECT_EQ(5u, M::ComputeMeshTimeStep(ZmMetricCharacteristicLength, nodes.data(), nodes.size(), types.data(),
                                       connectivity.data(), types.size(), T(2.1e5), T(0.3), T(7.85e-9), values.data()));
  T smallest[4];
  std::uint64_t indices[4];
  ASSERT_EQ(M::SmallestValues(values.data(), values.size(), 4, smallest, indices), 4u);
  // Wedge 0.3536 / 6.001e6 = 5.9e-8, quad 0.7071 / 5.422e6 = 1.30e-7, then the two unit cubes
  // (1 / 6.001e6) tied and by index; the beam (sqrt(3) / 5.172e6 = 3.35e-7) comes last.
  EXPECT_EQ(std::vector<std::uint64_t>(indices, indices + 4), (std::vector<std::uint64_t>{2, 1, 0, 5}));
  EXPECT_EQ(smallest[2], smallest[3]);
  // An unknown type ends the walk: everything from it on is invalid.
  types[1] = ZmElementType(-3);
  EXPECT_EQ(volumes(), 1u);
  EXPECT_EQ(values[5], T(kMarker));
}

// The table's names of types and metrics, in the order of ZmElementType and ZmElementMetric.
const std::vector<std::string> kTypeNames = {"beam", "tri", "quad", "tet", "pyramid", "wedge", "hex"};
const std::vector<std::string> kMetricNames = {
    "Area", "SurfaceArea", "Volume", "AspectRatio", "EdgeRatio", "RadiusRatio", "MinAngle", "MaxAngle",
    "MinDihedralAngle", "Jacobian", "ScaledJacobian", "Condition", "Shape", "EquiangleSkew", "Skew", "Taper",
    "WarpageVerdict", "Stretch", "Oddy", "CollapseRatio", "MeanRatio", "Diagonal", "Dimension"};
int IndexOf(const std::vector<std::string>& names, const std::string& name) {
  return int(std::find(names.begin(), names.end(), name) - names.begin());
}

// tests/reference/mesh_quality_vtk.py: golden elements of Verdict's own tests and 1000 random,
// distorted, inverted and collapsed elements per type. Double within 1e-12 relative, float within
// 1e-5, of the larger of the value and the element's size to the power the metric scales with.
// Where VTK clamps to +-1e30 (or the table says nan), and where a zero edge leaves an angle
// undefined, the library gives its invalid marker.
TYPED_TEST(MeshTwins, QualityMetricsMatchVtk) {
  using T = TypeParam;
  const double relative = std::is_same<T, double>::value ? 1e-12 : 1e-5;
  std::ifstream in(ZEMCALC_MESH_REFERENCE);
  std::map<ZmElementType, std::vector<std::string>> columns;
  std::map<std::string, int> failures;
  std::string line, head, name;
  int rows = 0;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    if (!(words >> head) || head[0] == '#') continue;
    if (head == "columns") {
      words >> head;
      while (words >> name) columns[ZmElementType(IndexOf(kTypeNames, head))].push_back(name);
      continue;
    }
    ++rows;
    const ZmElementType type = ZmElementType(IndexOf(kTypeNames, head));
    P wide(static_cast<std::size_t>(ZmMeshd::NodeCount(type)));
    float x, y, z;
    for (ZmPoint3d& p : wide) words >> x >> y >> z, p = ZmPoint3d(x, y, z);
    double size = 0.0;  // the longest edge or diagonal
    bool zeroEdge = false;
    for (std::size_t i = 0; i < wide.size(); ++i)
      for (std::size_t j = i + 1; j < wide.size(); ++j)
        size = std::max(size, (wide[i] - wide[j]).length()), zeroEdge = zeroEdge || wide[i] == wide[j];
    for (const std::string& metric : columns.at(type)) {
      words >> name;
      const double expected = name == "nan" ? NAN : std::stod(name);
      const ZmElementMetric column = ZmElementMetric(IndexOf(kMetricNames, metric));
      const T got = ZmMeshT<T>::ComputeMetric(type, column, Nodes<T>(wide).data());
      // Verdict's degenerate answers: +-1e30 (1e30 / 2 or / 3 for the quad and hex condition), a
      // warpage of 1e-30, angles of 0 or 360 at a zero edge, and dihedral angles from which the NaN
      // ones of a collapsed tet were dropped.
      const bool undefined = std::isnan(expected) || std::fabs(expected) >= 1e29 ||
                             (column == ZmMetricWarpageVerdict && expected == 1e-30) ||
                             ((column == ZmMetricMinAngle || column == ZmMetricMaxAngle) && zeroEdge &&
                              (expected == 0.0 || expected == 360.0)) ||
                             (column == ZmMetricMinDihedralAngle && zeroEdge);
      const int dimension = column == ZmMetricArea ? 2 : column == ZmMetricVolume ? 3 : column == ZmMetricDimension ? 1
                            : column == ZmMetricJacobian ? (type == ZmElementQuad4 ? 2 : 3) : 0;
      const double scale = std::max(std::fabs(expected), std::pow(size, dimension));
      const bool ok = undefined ? got == T(kMarker)
                                : got != T(kMarker) && std::fabs(double(got) - expected) <= relative * scale;
      if (!ok && ++failures[metric] <= 3)
        ADD_FAILURE() << "type " << type << " " << metric << ": expected " << expected << ", got " << got;
    }
  }
  EXPECT_GT(rows, 6000) << "reference table not found or short";
  for (const auto& f : failures) ADD_FAILURE() << f.first << ": " << f.second << " mismatches";
}

}  // namespace
