// 3D vectors: norms and normalisation, the angular predicates, rotation and the direction grid.
#include <cmath>
#include <limits>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(Vector3Twins);

TEST(Vector3, UnitizeSetLengthAndTheNullTest) {
  // Double divides by the length, float multiplies by its reciprocal: 5 / sqrt(27) in double;
  // in float 3 * (1 / sqrt(11)) = 0.9045340418815613, where 3 / sqrt(11) = 0.9045339822769165.
  V3 d(1, 1, 5);
  ZmVector3f f(1, 1, 3);
  ASSERT_EQ(d.unitize(0.0) + f.unitize(0.0f), 2);
  EXPECT_EQ(d.z, 0.9622504486493763);
  EXPECT_EQ(f.z, 0.9045340418815613f);
  // The length must exceed |tol| strictly; a refused vector is left alone.
  V3 v(3, 4, 0), invalid = ZmNonValV3d, zero, w(0, 3, 4);
  EXPECT_EQ((Ints{v.unitize(5.0), v.unitize(-5.0), invalid.unitize(0.0), zero.setLength(2.0)}), (Ints{0, 0, 0, 0}));
  EXPECT_TRUE(v == V3(3, 4, 0) && invalid == ZmNonValV3d);
  EXPECT_EQ(v.unitize(-4.999) + w.setLength(10.0), 2);
  EXPECT_TRUE(v == V3(0.6, 0.8, 0) && w == V3(0, 6, 8));
  EXPECT_TRUE(V3(0, 0, 0).GetDirection() == ZmNonValV3d && V3(0, 0, -2).GetDirection() == V3(0, 0, -1));
  // The length is rounded to float before the comparison: 1e-300 rounds to 0, and
  // float(1e-6) = 9.999999974752427e-07 <= 1e-6.
  EXPECT_EQ((Ints{V3(0, 0, 0).isNull(0.0), V3(1e-300, 0, 0).isNull(0.0), V3(1e-30, 0, 0).isNull(0.0),
                  V3(1e-6, 0, 0).isNull(1e-6), V3(1e-6, 0, 0).isNull(9.99e-7)}),
            (Ints{1, 1, 0, 1, 0}));
}

// The main direction is -1 when all three magnitudes tie; otherwise ties go to the later axis.
// Aligned axes: 0.01 off the y axis is 0.57 degrees, 0.1 off is 5.7.
TEST(Vector3, MainDirectionAndAlignedAxis) {
  EXPECT_EQ((Ints{V3(1, 1, 1).GetMainDirection(), V3(2, 2, 1).GetMainDirection(), V3(1, 0, 1).GetMainDirection(),
                  V3(-3, 1, 2).GetMainDirection(), V3(1, -2, 2).GetMainDirection()}),
            (Ints{-1, 1, 2, 0, 2}));
  EXPECT_EQ((Ints{V3(0, 0, 1).GetAlignedAxis(1, 1.0), V3(0, 0, -1).GetAlignedAxis(1, 1.0),
                  V3(0, 0, -1).GetAlignedAxis(0, 1.0), V3(0.01, 1, 0).GetAlignedAxis(1, 1.0),
                  V3(0.1, 1, 0).GetAlignedAxis(1, 1.0), V3(1, 1, 0).GetAlignedAxis(0, 10.0),
                  V3(0, 0, 0).GetAlignedAxis(0, 10.0)}),
            (Ints{2, -1, 2, 1, -1, -1, -1}));
}

// Parallel: opposite counts; angleOut gets min(a, 180 - a); without a tolerance |cross| rounded
// to float is compared with 1.0e-6 and angleOut is untouched.
TYPED_TEST(Vector3Twins, ParallelTest) {
  using V = ZmVector3T<TypeParam>;
  const TypeParam none = zm::Invalid<TypeParam>();
  const struct {
    V a, b;
    TypeParam tol;
    int parallel;
    double angle;  // 7: untouched
  } rows[] = {{V(1, 0, 0), V(-2, 0, 0), 1, 1, 0},
              {V(0, 0, 0), V(1, 0, 0), 90, 0, 7},
              {V(1, 0, 0), V(0, 0, 0), none, 0, 7},
              {V(1, 0, 0), V(1, 1, 0), 44, 0, 45},
              {V(1, 0, 0), V(-1, 1, 0), 46, 1, 45},
              {V(1, 0, 0), V(2, 0, TypeParam(1e-7)), none, 1, 7},
              {V(1, 0, 0), V(1, 0, TypeParam(1e-5)), none, 0, 7}};
  for (const auto& r : rows) {
    TypeParam angle = 7;
    EXPECT_EQ(r.a.IsParallelTo(r.b, r.tol, &angle), r.parallel) << r.b.x << " " << r.b.y << " " << r.b.z;
    EXPECT_NEAR(angle, r.angle, 1e-4);
  }
}

// Without a tolerance |dot| must be below float(1e-6) = 9.999999974752427e-07, strictly.
TEST(Vector3, OrthogonalTestUsesTheWidenedFloatThreshold) {
  const V3 x(1, 0, 0);
  EXPECT_EQ((Ints{x.IsOrthogonalTo(V3(0, 1, 0)), x.IsOrthogonalTo(V3(9.999999974752427e-07, 1, 0)),
                  x.IsOrthogonalTo(V3(9.99999998e-07, 1, 0)), x.IsOrthogonalTo(V3(9.9999999e-07, 1, 0)),
                  x.IsOrthogonalTo(V3(1, 1, 0), 44.0), x.IsOrthogonalTo(V3(0, 1e-7, 0))}),
            (Ints{1, 0, 0, 1, 0, 0}));
  double offset = -1;
  EXPECT_EQ(x.IsOrthogonalTo(V3(1, 1, 0), 46.0, &offset), 1);
  EXPECT_NEAR(offset, 45.0, 1e-12);
}

TEST(Vector3, RotationToATargetAndAboutAnAxis) {
  V3 axis;
  EXPECT_NEAR(V3(2, 0, 0).GetRotationTo(V3(0, 3, 0), axis), 90.0, 1e-12);
  EXPECT_EQ(axis, V3(0, 0, 1));
  // Opposite vectors: any unit axis perpendicular to them.
  EXPECT_NEAR(V3(1, 0, 0).GetRotationTo(V3(-1, 0, 0), axis), 180.0, 1e-12);
  EXPECT_TRUE(std::fabs(axis.length() - 1) <= 1e-15 && axis.dot(V3(1, 0, 0)) == 0);
  EXPECT_EQ(V3(0, 0, 0).GetRotationTo(V3(1, 0, 0), axis), kMarker);
  EXPECT_EQ(axis, ZmNonValV3d);

  // A quarter turn of x about z: (cos(pi/2), 1, 0) with cos(pi/2) = 6.123233995736766e-17.
  V3 v(1, 0, 0), w(1, 2, 3);
  EXPECT_EQ(v.Rotate(V3(0, 0, 5), 90.0) * 2 + w.Rotate(V3(0, 0, 0), 45.0), 2);
  EXPECT_TRUE(v == V3(6.123233995736766e-17, 1, 0) && w == V3(1, 2, 3));
  // A third of a turn about the diagonal permutes the axes.
  ZmVector3f p(1, 0, 0);
  ASSERT_EQ(p.Rotate(ZmVector3f(1, 1, 1), 120.0f), 1);
  EXPECT_NEAR(ZmVector3f(p - ZmVector3f(0, 1, 0)).length(), 0.0f, 2e-6f);
}

// Step 90: 2 rows x 4 columns; cell 0 is centred on latitude -45, longitude -135. trunc(180/200)
// = 0 rows; a step of 1e-12 gives more cells than an int holds.
TEST(Vector3, DirectionGridCountsCellsAndNeighbours) {
  EXPECT_EQ(
      (Ints{V3::GetIndexedNormalsCount(7.0), ZmVector3f::GetIndexedNormalsCount(7.0f), V3::GetIndexedNormalsCount(0.0),
            V3::GetIndexedNormalsCount(-5.0), V3::GetIndexedNormalsCount(200.0), V3::GetIndexedNormalsCount(1e-12)}),
      (Ints{25 * 51, 25 * 51, 0, 0, 0, 0}));
  const V3 first = V3::GetIndexedNormal(90.0, 0);
  EXPECT_NEAR(V3(first - V3(-0.5, -0.5, -std::sqrt(0.5))).length(), 0.0, 1e-15);
  EXPECT_TRUE(V3::GetIndexedNormal(90.0, 8) == ZmNonValV3d && V3::GetIndexedNormal(0.0, 0) == ZmNonValV3d);
  // Neighbours wrap around both ways (step 90, cell 3 is the last column of row 0: the next
  // column is 0). Step 30: 6 rows x 12 columns, cell 29 is row 2, column 5.
  const struct {
    double step;
    int index;
    Ints neighbours;  // empty: refused
  } rows[] = {{90, 0, {4, 4, 7, 3, 7, 5, 1, 5}},
              {90, 3, {7, 7, 6, 2, 6, 4, 0, 4}},
              {30, 29, {17, 41, 16, 28, 40, 18, 30, 42}},
              {30, 72, {}},
              {30, -1, {}}};
  for (const auto& r : rows) {
    int out[8] = {};
    ASSERT_EQ(V3::GetNormalNeighbourIndexes(r.step, r.index, out), r.neighbours.empty() ? 0 : 1);
    EXPECT_EQ(Ints(out, out + 8), r.neighbours.empty() ? Ints(8, 0) : r.neighbours) << r.index;  // untouched if refused
  }
}

TYPED_TEST(Vector3Twins, DirectionGridIndexInvertsTheNormal) {
  using V = ZmVector3T<TypeParam>;
  for (TypeParam step : {TypeParam(7), TypeParam(10), TypeParam(90), TypeParam(45)}) {
    for (int i = 0; i < V::GetIndexedNormalsCount(step); ++i) {
      ASSERT_EQ(V::GetIndexedNormal(step, i).GetNormalIndex(step), i) << "step " << step;
    }
  }
  // Step 90: the pole falls into the top row (latitude 90 is clamped to row 1), longitude 0 into
  // column 2: 1 * 4 + 2; longitude 180 is clamped to the last column. No direction, no cell:
  // infinite or NaN components, a zero vector, and a length that overflows (1e30 squared exceeds
  // the float range; 1e200 squared the double range). A large length that does not overflow
  // still finds its cell (x axis: row 1, column 2).
  const TypeParam inf = std::numeric_limits<TypeParam>::infinity(), nan = std::numeric_limits<TypeParam>::quiet_NaN();
  const TypeParam overflowing = kIsFloat<TypeParam> ? TypeParam(1e30) : TypeParam(1e200);
  const V vectors[] = {V(0, 0, 1),      V(-1, 0, 0),  V(TypeParam(1e18), 0, 0), V(inf, 0, 0), V(0, 0, inf),
                       V(-inf, inf, 1), V(nan, 0, 1), V(overflowing, 0, 0),     V(0, 0, 0)};
  Ints got;
  for (const V& v : vectors) got.push_back(v.GetNormalIndex(TypeParam(90)));
  EXPECT_EQ(got, (Ints{6, 7, 6, -1, -1, -1, -1, -1, -1}));
}

// 0.1 < float(0.1) when compared in double.
TEST(Vector3, ComparatorsAndConstants) {
  EXPECT_EQ(
      (Ints{V3::CompareX(V3(0.1, 0, 0), ZmVector3f(0.1f, 0, 0)),
            ZmVector3f::CompareX(ZmVector3f(0.1f, 0, 0), V3(0.1, 0, 0)), V3::CompareVectors(V3(1, 2, 3), V3(1, 2, 3)),
            V3::CompareVectors(V3(1, 2, 3), V3(1, 2, 4)), V3::CompareZ(V3(0, 0, 3), ZmVector3f(0, 0, 2))}),
      (Ints{-1, 1, 0, -1, 1}));
  using V = ZmVector3f;
  EXPECT_TRUE(V::UNIT_X == V(1, 0, 0) && V::UNIT_Y == V(0, 1, 0) && V::UNIT_Z == V(0, 0, 1));
  EXPECT_TRUE(V::NEGATIVE_UNIT_X == V(-1, 0, 0) && V::NEGATIVE_UNIT_Y == V(0, -1, 0) &&
              V::NEGATIVE_UNIT_Z == V(0, 0, -1));
  EXPECT_EQ(ZmV3dX, V3::UNIT_X);
}

}  // namespace
