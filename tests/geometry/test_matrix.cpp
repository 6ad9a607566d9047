// 3x3 and 4x4 matrices: layout and constants, coefficient access, products with matrices and
// vectors in both orders, determinant and inverse (also of singular matrices), affine transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <typeinfo>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class MatrixTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(MatrixTwins, Scalars);

// A non-symmetric matrix with determinant 4, so that its inverse (adjugate / 4) is exact in
// both precisions; the adjugate was computed with numpy (round(inv(A) * 4)).
template <class T>
ZmMatrix3T<T> SampleA() {
  return ZmMatrix3T<T>(-2, 1, 1, -2, -1, 1, 0, 2, 1);
}

TEST(Matrix, LayoutConstantsAndVirtualTable) {
  static_assert(std::has_virtual_destructor<ZmMatrix3d>::value && std::has_virtual_destructor<ZmMatrix4f>::value, "");
  static_assert(sizeof(ZmMatrix3d) == sizeof(void*) + 9 * sizeof(double), "");
  static_assert(sizeof(ZmMatrix4d) == sizeof(void*) + 16 * sizeof(double), "");
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ(ZmMatrix3d::IDENTITY[i][j], i == j ? 1.0 : 0.0);
      EXPECT_EQ(ZmMatrix3f::IDENTITY[i][j], i == j ? 1.0f : 0.0f);
      EXPECT_EQ(ZmMatrix3d::ZERO[i][j], 0.0);
    }
  }
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      EXPECT_EQ(ZmMatrix4d::IDENTITY[i][j], i == j ? 1.0 : 0.0);
      EXPECT_EQ(ZmMatrix4f::ZERO[i][j], 0.0f);
      EXPECT_EQ(ZmMatrix4d::ZEROAFFINE[i][j], (i == 3 && j == 3) ? 1.0 : 0.0);
    }
  }
  // The constants are full objects with their class's virtual table.
  const ZmMatrixOps<ZmMatrix4d, double, 4>& asBase = ZmMatrix4d::ZEROAFFINE;
  EXPECT_TRUE(typeid(asBase) == typeid(ZmMatrix4d));
  // A default matrix is the identity.
  EXPECT_TRUE(ZmMatrix3d() == ZmMatrix3d::IDENTITY);
  EXPECT_TRUE(ZmMatrix4f() == ZmMatrix4f::IDENTITY);
}

TEST(Matrix, CoefficientsAreRowMajorAndWritable) {
  const double rows[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  ZmMatrix3d m(rows);
  EXPECT_EQ(m[0][2], 3.0);  // row 0, column 2
  EXPECT_EQ(m[2][0], 7.0);
  EXPECT_TRUE(m == ZmMatrix3d(1, 2, 3, 4, 5, 6, 7, 8, 9));
  m[1][2] = -6;
  EXPECT_EQ(m[1][2], -6.0);
  EXPECT_TRUE(m.GetRow(1) == ZmVector3d(4, 5, -6));
  EXPECT_TRUE(m.GetColumn(2) == ZmVector3d(3, -6, 9));
  m.SetColumn(0, ZmVector3d(-1, -2, -3));
  m.SetRow(2, ZmVector3d(0.5, 0.25, 0.125));
  double out[3][3];
  m.GetCoefs(out);
  const double expected[3][3] = {{-1, 2, 3}, {-2, 5, -6}, {0.5, 0.25, 0.125}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) EXPECT_EQ(out[i][j], expected[i][j]);
  }
  ZmMatrix3d set;
  set.SetCoefs(rows);
  EXPECT_TRUE(set == ZmMatrix3d(rows));

  // The other precision converts coefficient by coefficient, rounding to nearest.
  const ZmMatrix3f narrowed = ZmMatrix3d(0.1, 0, 0, 0, 0.2, 0, 0, 0, 0.3);
  EXPECT_EQ(narrowed[0][0], 0.1f);
  EXPECT_EQ(narrowed[2][2], 0.3f);
  const float frows[4][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16.5f}};
  const ZmMatrix4d widened(frows);
  EXPECT_EQ(widened[3][3], 16.5);
  EXPECT_EQ(widened[0][3], 4.0);
  EXPECT_EQ(ZmMatrix4d(ZmMatrix4f(frows))[2][1], 10.0);
}

TYPED_TEST(MatrixTwins, ProductsWithMatricesAndVectorsInBothOrders) {
  using T = TypeParam;
  const ZmMatrix3T<T> a = SampleA<T>();
  const ZmMatrix3T<T> b(1, 0, 2, 3, -1, 0, 0, 4, 1);
  // numpy: A @ B
  EXPECT_TRUE(a * b == ZmMatrix3T<T>(1, 3, -3, -5, 5, -3, 6, 2, 1));
  EXPECT_FALSE(a * b == b * a);

  // Column vector: A @ (1, 2, 3) = (3, -1, 7); row vector: (1, 2, 3) @ A = (-6, 5, 6).
  const ZmVector3T<T> v(1, 2, 3);
  EXPECT_TRUE(a * v == ZmVector3T<T>(3, -1, 7));
  EXPECT_TRUE(v * a == ZmVector3T<T>(-6, 5, 6));
  const ZmPoint3T<T> p(1, 2, 3);
  EXPECT_TRUE(a * p == ZmPoint3T<T>(3, -1, 7));
  EXPECT_TRUE(p * a == ZmPoint3T<T>(-6, 5, 6));
  // v * M is M transposed applied to v.
  EXPECT_TRUE(v * a == a.Transpose() * v);

  // With the other precision's matrix the result keeps the left operand's class.
  const ZmMatrix3T<double> ad = SampleA<double>();
  const ZmMatrix3T<float> af = SampleA<float>();
  static_assert(std::is_same<decltype(ZmVector3f(1, 2, 3) * ad), ZmVector3f>::value, "");
  static_assert(std::is_same<decltype(ZmPoint3d(1, 2, 3) * af), ZmPoint3d>::value, "");
  EXPECT_TRUE(ZmVector3f(1, 2, 3) * ad == ZmVector3f(-6, 5, 6));
  EXPECT_TRUE(ZmPoint3d(1, 2, 3) * af == ZmPoint3d(-6, 5, 6));

  EXPECT_TRUE(a * T(2) == a + a);
  EXPECT_TRUE(T(2) * a - a == a);
  EXPECT_TRUE(-a + a == ZmMatrix3T<T>::ZERO);
  ZmMatrix3T<T> c = a;
  c *= b;
  EXPECT_TRUE(c == a * b);
}

TYPED_TEST(MatrixTwins, DeterminantAndInverseOfKnownMatrices) {
  using T = TypeParam;
  const ZmMatrix3T<T> a = SampleA<T>();
  EXPECT_EQ(a.Determinant(), T(4));
  EXPECT_EQ(a.Transpose().Determinant(), T(4));
  ZmMatrix3T<T> inv;
  ASSERT_EQ(a.Inverse(inv), 1);
  // adjugate (numpy) [[-3, 1, 2], [2, -2, 0], [-4, 4, 4]] divided by 4
  EXPECT_TRUE(inv == ZmMatrix3T<T>(-0.75, 0.25, 0.5, 0.5, -0.5, 0, -1, 1, 1));
  EXPECT_TRUE(a * inv == ZmMatrix3T<T>::IDENTITY);
  EXPECT_TRUE(a.Inverse() == inv);

  // det of [[1,2,-3,1],[-3,1,-1,3],[1,-2,3,-3],[-2,-2,2,-2]] is -8 and 8 * its inverse is
  // [[-4,-4,-4,-2],[16,16,24,-4],[4,8,12,-4],[-8,-4,-8,-2]] (numpy).
  const ZmMatrix4T<T> m(1, 2, -3, 1, -3, 1, -1, 3, 1, -2, 3, -3, -2, -2, 2, -2);
  EXPECT_EQ(m.Determinant(), T(-8));
  ZmMatrix4T<T> minv;
  ASSERT_EQ(m.Inverse(minv), 1);
  EXPECT_TRUE(minv == ZmMatrix4T<T>(-0.5, -0.5, -0.5, -0.25, 2, 2, 3, -0.5, 0.5, 1, 1.5, -0.5, -1, -0.5, -1, -0.25));
  EXPECT_TRUE(minv * m == ZmMatrix4T<T>::IDENTITY);
  // Transposition swaps rows and columns and keeps the determinant.
  EXPECT_EQ(m.Transpose()[0][1], T(-3));
  EXPECT_EQ(m.Transpose()[1][0], T(2));
  EXPECT_EQ(m.Transpose().Determinant(), T(-8));
}

TYPED_TEST(MatrixTwins, SingularMatricesAreRefusedWithoutDividing) {
  using T = TypeParam;
  const ZmMatrix3T<T> marker(9, 9, 9, 9, 9, 9, 9, 9, 9);
  // Row 2 = row 0 + row 1.
  const ZmMatrix3T<T> dependent(1, 2, 3, 4, 5, 6, 5, 7, 9);
  ZmMatrix3T<T> out = marker;
  EXPECT_EQ(dependent.Inverse(out), 0);
  EXPECT_TRUE(out == marker);
  EXPECT_TRUE(dependent.Inverse() == ZmMatrix3T<T>::ZERO);
  EXPECT_EQ(ZmMatrix3T<T>::ZERO.Inverse(out), 0);
  EXPECT_EQ(ZmMatrix4T<T>::ZEROAFFINE.Inverse().Determinant(), T(0));
  const T nan = std::numeric_limits<T>::quiet_NaN();
  EXPECT_EQ(ZmMatrix3T<T>(nan, 0, 0, 0, 1, 0, 0, 0, 1).Inverse(out), 0);

  // The tolerance is relative to the rows' lengths: a small but well-conditioned matrix
  // (det 1e-9, far below 1e-6) inverts, ...
  const ZmMatrix3T<T> small = ZmMatrix3T<T>::IDENTITY * T(1e-3);
  ASSERT_EQ(small.Inverse(out), 1);
  EXPECT_NEAR(out[1][1], T(1000), T(1e-3));
  // ... while rows (1,0,0), (0,1,0), (1,1,1e-7) are dependent to within 1e-6: |det| = 1e-7 is
  // below 1e-6 * 1 * 1 * sqrt(2) but above 1e-8 * sqrt(2).
  const ZmMatrix3T<T> nearly(1, 0, 0, 0, 1, 0, 1, 1, T(1e-7));
  EXPECT_EQ(nearly.Inverse(out), 0);
  ASSERT_EQ(nearly.Inverse(out, T(1e-8)), 1);
  EXPECT_NEAR(out[2][2], T(1e7), T(1e7) * T(1e-5));
}

TYPED_TEST(MatrixTwins, EqualityIsExactOrWithinAnInclusiveTolerance) {
  using T = TypeParam;
  const ZmMatrix3T<T> a = SampleA<T>();
  ZmMatrix3T<T> b = a;
  b[2][1] += T(0.5);
  EXPECT_TRUE(a != b);
  EXPECT_EQ(a.Equals(b, T(0.5)), 1);   // a difference equal to the tolerance counts as equal
  EXPECT_EQ(a.Equals(b, T(-0.5)), 1);  // the tolerance's sign is ignored
  EXPECT_EQ(a.Equals(b, T(0.25)), 0);
  b[2][1] = std::numeric_limits<T>::quiet_NaN();
  EXPECT_EQ(a.Equals(b, T(1e30)), 0);
}

TYPED_TEST(MatrixTwins, AffineTransformsCarryTheTranslationInColumnThree) {
  using T = TypeParam;
  // Quarter turn about Z (columns are the images of the axes), then a shift by (1, 2, 3).
  const ZmMatrix3T<T> quarter(0, -1, 0, 1, 0, 0, 0, 0, 1);
  const ZmMatrix4T<T> m(quarter, ZmVector3T<T>(1, 2, 3));
  EXPECT_TRUE(m == ZmMatrix4T<T>(0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1));
  EXPECT_EQ(m.IsAffine(), 1);
  EXPECT_TRUE(m.GetTranslation() == ZmVector3T<T>(1, 2, 3));
  EXPECT_TRUE(m.Extract3x3Matrix() == quarter);
  // (2, 0, 5) turns to (0, 2, 5) and moves to (1, 4, 8); a vector only turns.
  EXPECT_TRUE(m * ZmPoint3T<T>(2, 0, 5) == ZmPoint3T<T>(1, 4, 8));
  EXPECT_TRUE(m * ZmVector3T<T>(2, 0, 5) == ZmVector3T<T>(0, 2, 5));
  // The inverse undoes the transform: rotate back by -90 degrees, translation -R^T t.
  const ZmMatrix4T<T> inv = m.Inverse();
  EXPECT_TRUE(inv == ZmMatrix4T<T>(0, 1, 0, -2, -1, 0, 0, 1, 0, 0, 1, -3, 0, 0, 0, 1));
  EXPECT_TRUE(inv * ZmPoint3T<T>(1, 4, 8) == ZmPoint3T<T>(2, 0, 5));
  // Composition applies the right-hand factor first.
  const ZmMatrix4T<T> shift(ZmMatrix3T<T>::IDENTITY, ZmVector3T<T>(10, 0, 0));
  EXPECT_TRUE((shift * m) * ZmPoint3T<T>(2, 0, 5) == ZmPoint3T<T>(11, 4, 8));
  EXPECT_TRUE((m * shift) * ZmPoint3T<T>(2, 0, 5) == ZmPoint3T<T>(1, 14, 8));

  EXPECT_EQ(ZmMatrix4T<T>::ZEROAFFINE.IsAffine(), 1);
  EXPECT_EQ(ZmMatrix4T<T>::ZERO.IsAffine(), 0);
  ZmMatrix4T<T> edited = ZmMatrix4T<T>::IDENTITY;
  edited.SetTranslation(ZmVector3T<T>(-1, -2, -3));
  edited.Set3x3Matrix(quarter);
  edited[3][0] = 2;
  EXPECT_EQ(edited.IsAffine(), 0);
  EXPECT_TRUE(edited.GetTranslation() == ZmVector3T<T>(-1, -2, -3));
  // The last row does not take part in transforming points.
  EXPECT_TRUE(edited * ZmPoint3T<T>(2, 0, 5) == ZmPoint3T<T>(-1, 0, 2));
}

}  // namespace
