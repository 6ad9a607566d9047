// 3D vectors: norms and normalisation, the angular predicates, rotation and the direction grid.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class Vector3Twins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Vector3Twins, Scalars);

TEST(Vector3, UnitizeDividesInDoubleAndMultipliesByTheReciprocalInFloat) {
  // (1, 1, 5): x / |v| and x * (1 / |v|) differ in the last bit of z in double.
  ZmVector3d d(1, 1, 5);
  ASSERT_EQ(d.unitize(0.0), 1);
  EXPECT_EQ(d.z, 0.9622504486493763);  // 5 / sqrt(27)
  // (1, 1, 3) in float: 3 * (1 / sqrt(11)) = 0.9045340418815613, 3 / sqrt(11) = 0.9045339822769165.
  ZmVector3f f(1, 1, 3);
  ASSERT_EQ(f.unitize(0.0f), 1);
  EXPECT_EQ(f.z, 0.9045340418815613f);
}

TEST(Vector3, UnitizeAndSetLengthRefuseShortOrInvalidVectors) {
  ZmVector3d v(3, 4, 0);
  EXPECT_EQ(v.unitize(5.0), 0);  // the length must exceed |tol| strictly
  EXPECT_EQ(v.unitize(-5.0), 0);
  EXPECT_EQ(v, ZmVector3d(3, 4, 0));
  EXPECT_EQ(v.unitize(-4.999), 1);
  EXPECT_EQ(v, ZmVector3d(0.6, 0.8, 0));
  ZmVector3d invalid = ZmNonValV3d;
  EXPECT_EQ(invalid.unitize(0.0), 0);
  EXPECT_EQ(invalid, ZmNonValV3d);
  ZmVector3d zero;
  EXPECT_EQ(zero.setLength(2.0), 0);
  ZmVector3d w(0, 3, 4);
  EXPECT_EQ(w.setLength(10.0), 1);
  EXPECT_EQ(w, ZmVector3d(0, 6, 8));
  EXPECT_EQ(ZmVector3d(0, 0, 0).GetDirection(), ZmNonValV3d);
  EXPECT_EQ(ZmVector3d(0, 0, -2).GetDirection(), ZmVector3d(0, 0, -1));
}

TEST(Vector3, NullTestComparesWithTheLengthRoundedToFloat) {
  EXPECT_EQ(ZmVector3d(0, 0, 0).isNull(0.0), 1);
  EXPECT_EQ(ZmVector3d(1e-300, 0, 0).isNull(0.0), 1);  // rounds to float 0
  EXPECT_EQ(ZmVector3d(1e-30, 0, 0).isNull(0.0), 0);
  // float(1e-6) = 9.999999974752427e-07 <= 1e-6
  EXPECT_EQ(ZmVector3d(1e-6, 0, 0).isNull(1e-6), 1);
  EXPECT_EQ(ZmVector3d(1e-6, 0, 0).isNull(9.99e-7), 0);
}

TEST(Vector3, AlgebraAndMainDirection) {
  const ZmVector3d a(1, 2, 2), b(0, 1, 0);
  EXPECT_EQ(a.length(), 3.0);
  EXPECT_EQ(a.lengthSquared(), 9.0);
  EXPECT_EQ(a.dot(b), 2.0);
  EXPECT_EQ(ZmVector3d(1, 0, 0).cross(b), ZmVector3d(0, 0, 1));
  ZmVector3d out;
  b.cross(ZmVector3d(1, 0, 0), out);
  EXPECT_EQ(out, ZmVector3d(0, 0, -1));
  ZmVector3d c(1, 2, 3);
  c.negate();
  c.scaleZ(2);
  EXPECT_EQ(c, ZmVector3d(-1, -2, -6));

  EXPECT_EQ(ZmVector3d(1, 1, 1).GetMainDirection(), -1);
  EXPECT_EQ(ZmVector3d(2, 2, 1).GetMainDirection(), 1);  // ties go to the later axis
  EXPECT_EQ(ZmVector3d(1, 0, 1).GetMainDirection(), 2);
  EXPECT_EQ(ZmVector3d(-3, 1, 2).GetMainDirection(), 0);
  EXPECT_EQ(ZmVector3d(1, -2, 2).GetMainDirection(), 2);
}

TYPED_TEST(Vector3Twins, ParallelTest) {
  using V = ZmVector3T<TypeParam>;
  TypeParam angle = -1;
  EXPECT_EQ(V(1, 0, 0).IsParallelTo(V(-2, 0, 0), TypeParam(1), &angle), 1);  // opposite counts
  EXPECT_EQ(angle, TypeParam(0));
  EXPECT_EQ(V(0, 0, 0).IsParallelTo(V(1, 0, 0), TypeParam(90)), 0);
  EXPECT_EQ(V(1, 0, 0).IsParallelTo(V(0, 0, 0)), 0);
  // 45 degrees apart: not parallel within 44, parallel within 46; angleOut gets min(a, 180 - a).
  EXPECT_EQ(V(1, 0, 0).IsParallelTo(V(1, 1, 0), TypeParam(44), &angle), 0);
  EXPECT_NEAR(angle, 45.0, 1e-4);
  EXPECT_EQ(V(1, 0, 0).IsParallelTo(V(-1, 1, 0), TypeParam(46), &angle), 1);
  EXPECT_NEAR(angle, 45.0, 1e-4);
  // Without a tolerance: |cross| rounded to float against 1.0e-6; angleOut untouched.
  angle = 7;
  EXPECT_EQ(V(1, 0, 0).IsParallelTo(V(2, 0, TypeParam(1e-7)), zm::Invalid<TypeParam>(), &angle), 1);
  EXPECT_EQ(angle, TypeParam(7));
  EXPECT_EQ(V(1, 0, 0).IsParallelTo(V(1, 0, TypeParam(1e-5))), 0);
}

TEST(Vector3, OrthogonalTestUsesTheWidenedFloatThreshold) {
  const ZmVector3d x(1, 0, 0);
  EXPECT_EQ(x.IsOrthogonalTo(ZmVector3d(0, 1, 0)), 1);
  // |dot| must be below float(1e-6) = 9.999999974752427e-07, strictly.
  EXPECT_EQ(x.IsOrthogonalTo(ZmVector3d(9.999999974752427e-07, 1, 0)), 0);
  EXPECT_EQ(x.IsOrthogonalTo(ZmVector3d(9.99999998e-07, 1, 0)), 0);  // below 1e-6, above the float
  EXPECT_EQ(x.IsOrthogonalTo(ZmVector3d(9.9999999e-07, 1, 0)), 1);
  double offset = -1;
  EXPECT_EQ(x.IsOrthogonalTo(ZmVector3d(1, 1, 0), 46.0, &offset), 1);
  EXPECT_NEAR(offset, 45.0, 1e-12);
  EXPECT_EQ(x.IsOrthogonalTo(ZmVector3d(1, 1, 0), 44.0), 0);
  EXPECT_EQ(x.IsOrthogonalTo(ZmVector3d(0, 1e-7, 0)), 0);  // too short to test
}

TEST(Vector3, AlignedAxis) {
  EXPECT_EQ(ZmVector3d(0, 0, 1).GetAlignedAxis(1, 1.0), 2);
  EXPECT_EQ(ZmVector3d(0, 0, -1).GetAlignedAxis(1, 1.0), -1);
  EXPECT_EQ(ZmVector3d(0, 0, -1).GetAlignedAxis(0, 1.0), 2);
  EXPECT_EQ(ZmVector3d(0.01, 1, 0).GetAlignedAxis(1, 1.0), 1);  // 0.57 degrees off the y axis
  EXPECT_EQ(ZmVector3d(0.1, 1, 0).GetAlignedAxis(1, 1.0), -1);  // 5.7 degrees off
  EXPECT_EQ(ZmVector3d(1, 1, 0).GetAlignedAxis(0, 10.0), -1);
  EXPECT_EQ(ZmVector3d(0, 0, 0).GetAlignedAxis(0, 10.0), -1);
}

TEST(Vector3, RotationToATargetAndAboutAnAxis) {
  ZmVector3d axis;
  EXPECT_NEAR(ZmVector3d(2, 0, 0).GetRotationTo(ZmVector3d(0, 3, 0), axis), 90.0, 1e-12);
  EXPECT_EQ(axis, ZmVector3d(0, 0, 1));
  EXPECT_NEAR(ZmVector3d(1, 0, 0).GetRotationTo(ZmVector3d(-1, 0, 0), axis), 180.0, 1e-12);
  EXPECT_NEAR(axis.length(), 1.0, 1e-15);
  EXPECT_EQ(axis.dot(ZmVector3d(1, 0, 0)), 0.0);
  EXPECT_EQ(ZmVector3d(0, 0, 0).GetRotationTo(ZmVector3d(1, 0, 0), axis), -1.0000000331813535e+32);
  EXPECT_EQ(axis, ZmNonValV3d);

  // A quarter turn of x about z: (cos(pi/2), 1, 0) with cos(pi/2) = 6.123233995736766e-17.
  ZmVector3d v(1, 0, 0);
  ASSERT_EQ(v.Rotate(ZmVector3d(0, 0, 5), 90.0), 1);
  EXPECT_EQ(v.x, std::cos(90.0 * 0.017453292519943295));
  EXPECT_EQ(v.y, 1.0);
  EXPECT_EQ(v.z, 0.0);
  ZmVector3d w(1, 2, 3);
  EXPECT_EQ(w.Rotate(ZmVector3d(0, 0, 0), 45.0), 0);
  EXPECT_EQ(w, ZmVector3d(1, 2, 3));
  // A third of a turn about the diagonal permutes the axes.
  ZmVector3f p(1, 0, 0);
  ASSERT_EQ(p.Rotate(ZmVector3f(1, 1, 1), 120.0f), 1);
  EXPECT_NEAR(p.x, 0.0f, 1e-6f);
  EXPECT_NEAR(p.y, 1.0f, 1e-6f);
  EXPECT_NEAR(p.z, 0.0f, 1e-6f);
}

TEST(Vector3, DirectionGridCountsAndCells) {
  EXPECT_EQ(ZmVector3d::GetIndexedNormalsCount(7.0), 25 * 51);
  EXPECT_EQ(ZmVector3f::GetIndexedNormalsCount(7.0f), 1275);
  EXPECT_EQ(ZmVector3d::GetIndexedNormalsCount(0.0), 0);
  EXPECT_EQ(ZmVector3d::GetIndexedNormalsCount(-5.0), 0);
  EXPECT_EQ(ZmVector3d::GetIndexedNormalsCount(200.0), 0);  // trunc(180/200) = 0
  EXPECT_EQ(ZmVector3d::GetIndexedNormalsCount(1e-12), 0);  // more cells than an int holds

  // Step 90: 2 rows x 4 columns; cell 0 is centred on latitude -45, longitude -135.
  const ZmVector3d first = ZmVector3d::GetIndexedNormal(90.0, 0);
  const double h = std::sqrt(0.5);
  EXPECT_NEAR(first.x, -0.5, 1e-15);
  EXPECT_NEAR(first.y, -0.5, 1e-15);
  EXPECT_NEAR(first.z, -h, 1e-15);
  EXPECT_EQ(ZmVector3d::GetIndexedNormal(90.0, 8), ZmNonValV3d);
  EXPECT_EQ(ZmVector3d::GetIndexedNormal(0.0, 0), ZmNonValV3d);
  EXPECT_EQ(ZmVector3d(0, 0, 0).GetNormalIndex(10.0), -1);
}

TYPED_TEST(Vector3Twins, DirectionGridIndexInvertsTheNormal) {
  using V = ZmVector3T<TypeParam>;
  for (TypeParam step : {TypeParam(7), TypeParam(10), TypeParam(90), TypeParam(45)}) {
    const int count = V::GetIndexedNormalsCount(step);
    for (int i = 0; i < count; ++i) {
      ASSERT_EQ(V::GetIndexedNormal(step, i).GetNormalIndex(step), i) << "step " << step;
    }
  }
  // Step 90 (2 rows x 4 columns): the pole falls into the top row (latitude 90 is clamped to
  // row 1), longitude 0 into column 2: 1 * 4 + 2. Longitude 180 is clamped to the last column.
  EXPECT_EQ(V(0, 0, 1).GetNormalIndex(TypeParam(90)), 6);
  EXPECT_EQ(V(-1, 0, 0).GetNormalIndex(TypeParam(90)), 7);

  // No direction, no cell: infinite or NaN components, and a length that overflows (1e30
  // squared exceeds the float range; 1e200 squared the double range) would normalise to NaN or
  // zero. A large length that does not overflow still finds its cell (x axis: latitude 0 is
  // (0 + 90) / 90 = row 1, longitude 0 is (0 + 180) / 90 = column 2: 1 * 4 + 2).
  const TypeParam inf = std::numeric_limits<TypeParam>::infinity(), nan = std::numeric_limits<TypeParam>::quiet_NaN();
  const TypeParam overflowing = sizeof(TypeParam) == 4 ? TypeParam(1e30) : TypeParam(1e200);
  const V noCell[] = {V(inf, 0, 0), V(0, 0, inf), V(-inf, inf, 1), V(nan, 0, 1), V(overflowing, 0, 0)};
  for (const V& v : noCell) EXPECT_EQ(v.GetNormalIndex(TypeParam(10)), -1) << v.x << " " << v.z;
  EXPECT_EQ(V(TypeParam(1e18), 0, 0).GetNormalIndex(TypeParam(90)), 6);
}

TEST(Vector3, DirectionGridNeighboursWrap) {
  int out[8] = {};
  ASSERT_EQ(ZmVector3d::GetNormalNeighbourIndexes(90.0, 0, out), 1);
  const int corner[8] = {4, 4, 7, 3, 7, 5, 1, 5};
  for (int k = 0; k < 8; ++k) EXPECT_EQ(out[k], corner[k]) << k;
  // Step 30: 6 rows x 12 columns, cell 29 is row 2, column 5.
  ASSERT_EQ(ZmVector3d::GetNormalNeighbourIndexes(30.0, 29, out), 1);
  const int inner[8] = {17, 41, 16, 28, 40, 18, 30, 42};
  for (int k = 0; k < 8; ++k) EXPECT_EQ(out[k], inner[k]) << k;
  EXPECT_EQ(ZmVector3d::GetNormalNeighbourIndexes(30.0, 72, out), 0);
  EXPECT_EQ(ZmVector3d::GetNormalNeighbourIndexes(30.0, -1, out), 0);
}

TEST(Vector3, ComparatorsAcceptTheOtherPrecision) {
  EXPECT_EQ(ZmVector3d::CompareX(ZmVector3d(0.1, 0, 0), ZmVector3f(0.1f, 0, 0)), -1);  // 0.1 < float(0.1)
  EXPECT_EQ(ZmVector3f::CompareX(ZmVector3f(0.1f, 0, 0), ZmVector3d(0.1, 0, 0)), 1);
  EXPECT_EQ(ZmVector3d::CompareVectors(ZmVector3d(1, 2, 3), ZmVector3d(1, 2, 3)), 0);
  EXPECT_EQ(ZmVector3d::CompareVectors(ZmVector3d(1, 2, 3), ZmVector3d(1, 2, 4)), -1);
  EXPECT_EQ(ZmVector3d::CompareZ(ZmVector3d(0, 0, 3), ZmVector3f(0, 0, 2)), 1);
}

TEST(Vector3, ConstantsOfTheClass) {
  EXPECT_EQ(ZmVector3d::UNIT_Y, ZmVector3d(0, 1, 0));
  EXPECT_EQ(ZmVector3f::NEGATIVE_UNIT_Z, ZmVector3f(0, 0, -1));
  EXPECT_EQ(ZmV3dX, ZmVector3d::UNIT_X);
}

}  // namespace
