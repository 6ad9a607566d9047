// 3x3 and 4x4 matrices: layout and constants, coefficient access, products with matrices and
// vectors in both orders, determinant and inverse (also of singular matrices), affine transforms.
#include <limits>
#include <type_traits>
#include <typeinfo>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(MatrixTwins);

static_assert(std::has_virtual_destructor<ZmMatrix3d>::value && std::has_virtual_destructor<ZmMatrix4f>::value, "");
static_assert(sizeof(ZmMatrix3d) == sizeof(void*) + 9 * sizeof(double) &&
                  sizeof(ZmMatrix4d) == sizeof(void*) + 16 * sizeof(double),
              "");

// A non-symmetric matrix with determinant 4, so that its inverse (adjugate / 4) is exact in
// both precisions; the adjugate was computed with numpy (round(inv(A) * 4)).
template <class T>
ZmMatrix3T<T> SampleA() {
  return ZmMatrix3T<T>(-2, 1, 1, -2, -1, 1, 0, 2, 1);
}

TEST(Matrix, ConstantsCoefficientsAndConversions) {
  EXPECT_TRUE(ZmMatrix3f::IDENTITY == ZmMatrix3f(1, 0, 0, 0, 1, 0, 0, 0, 1));
  EXPECT_TRUE(ZmMatrix3d::ZERO == ZmMatrix3d(0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_TRUE(ZmMatrix4d::IDENTITY == ZmMatrix4d(1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1));
  EXPECT_TRUE(ZmMatrix4f::ZERO == ZmMatrix4f(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
  EXPECT_TRUE(ZmMatrix4d::ZEROAFFINE == ZmMatrix4d(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1));
  EXPECT_TRUE(ZmMatrix3d() == ZmMatrix3d::IDENTITY && ZmMatrix4f() == ZmMatrix4f::IDENTITY);
  // The constants are full objects with their class's virtual table.
  const ZmMatrixOps<ZmMatrix4d, double, 4>& asBase = ZmMatrix4d::ZEROAFFINE;
  EXPECT_TRUE(typeid(asBase) == typeid(ZmMatrix4d));

  const double rows[3][3] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
  ZmMatrix3d m(rows);
  EXPECT_TRUE(m[0][2] == 3.0 && m == ZmMatrix3d(1, 2, 3, 4, 5, 6, 7, 8, 9));  // row 0, column 2
  m[1][2] = -6;
  EXPECT_TRUE(m.GetRow(1) == ZmVector3d(4, 5, -6) && m.GetColumn(2) == ZmVector3d(3, -6, 9));
  m.SetColumn(0, ZmVector3d(-1, -2, -3));
  m.SetRow(2, ZmVector3d(0.5, 0.25, 0.125));
  double out[3][3];
  m.GetCoefs(out);
  EXPECT_TRUE(ZmMatrix3d(out) == ZmMatrix3d(-1, 2, 3, -2, 5, -6, 0.5, 0.25, 0.125));
  // The other precision converts coefficient by coefficient, rounding to nearest.
  const ZmMatrix3f narrowed = ZmMatrix3d(0.1, 0, 0, 0, 0.2, 0, 0, 0, 0.3);
  EXPECT_TRUE(narrowed == ZmMatrix3f(0.1f, 0, 0, 0, 0.2f, 0, 0, 0, 0.3f));
  const float frows[4][4] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 16.5f}};
  EXPECT_TRUE(ZmMatrix4d(frows) == ZmMatrix4d(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16.5));
  EXPECT_TRUE(ZmMatrix4d(ZmMatrix4f(frows)) == ZmMatrix4d(frows));
}

TYPED_TEST(MatrixTwins, ProductsWithMatricesAndVectorsInBothOrders) {
  using T = TypeParam;
  const ZmMatrix3T<T> a = SampleA<T>(), b(1, 0, 2, 3, -1, 0, 0, 4, 1);
  EXPECT_TRUE(a * b == ZmMatrix3T<T>(1, 3, -3, -5, 5, -3, 6, 2, 1));  // numpy: A @ B
  ZmMatrix3T<T> c = a;
  c *= b;
  EXPECT_TRUE(c == a * b && !(a * b == b * a));
  // Column vector: A @ (1, 2, 3) = (3, -1, 7); row vector: (1, 2, 3) @ A = (-6, 5, 6).
  const ZmVector3T<T> v(1, 2, 3);
  const ZmPoint3T<T> p(1, 2, 3);
  EXPECT_TRUE(a * v == ZmVector3T<T>(3, -1, 7) && v * a == ZmVector3T<T>(-6, 5, 6));
  EXPECT_TRUE(a * p == ZmPoint3T<T>(3, -1, 7) && p * a == ZmPoint3T<T>(-6, 5, 6));
  // With the other precision's matrix the result keeps the left operand's class.
  static_assert(std::is_same<decltype(ZmVector3f(1, 2, 3) * SampleA<double>()), ZmVector3f>::value, "");
  static_assert(std::is_same<decltype(ZmPoint3d(1, 2, 3) * SampleA<float>()), ZmPoint3d>::value, "");
  EXPECT_TRUE(ZmVector3f(1, 2, 3) * SampleA<double>() == ZmVector3f(-6, 5, 6) &&
              ZmPoint3d(1, 2, 3) * SampleA<float>() == ZmPoint3d(-6, 5, 6));
  EXPECT_TRUE(a * T(2) == a + a && T(2) * a - a == a && -a + a == ZmMatrix3T<T>::ZERO);
}

TYPED_TEST(MatrixTwins, DeterminantAndInverse) {
  using T = TypeParam;
  const ZmMatrix3T<T> a = SampleA<T>();
  ZmMatrix3T<T> inv;
  EXPECT_TRUE(a.Determinant() == T(4) && a.Transpose().Determinant() == T(4));
  ASSERT_EQ(a.Inverse(inv), 1);
  // adjugate (numpy) [[-3, 1, 2], [2, -2, 0], [-4, 4, 4]] divided by 4
  EXPECT_TRUE(inv == ZmMatrix3T<T>(-0.75, 0.25, 0.5, 0.5, -0.5, 0, -1, 1, 1) && a.Inverse() == inv);
  // det of [[1,2,-3,1],[-3,1,-1,3],[1,-2,3,-3],[-2,-2,2,-2]] is -8 and 8 * its inverse is
  // [[-4,-4,-4,-2],[16,16,24,-4],[4,8,12,-4],[-8,-4,-8,-2]] (numpy).
  const ZmMatrix4T<T> m(1, 2, -3, 1, -3, 1, -1, 3, 1, -2, 3, -3, -2, -2, 2, -2);
  ZmMatrix4T<T> minv;
  EXPECT_TRUE(m.Determinant() == T(-8) && m.Transpose().Determinant() == T(-8));
  ASSERT_EQ(m.Inverse(minv), 1);
  EXPECT_TRUE(minv == ZmMatrix4T<T>(-0.5, -0.5, -0.5, -0.25, 2, 2, 3, -0.5, 0.5, 1, 1.5, -0.5, -1, -0.5, -1, -0.25));
  EXPECT_TRUE(m.Transpose() == ZmMatrix4T<T>(1, -3, 1, -2, 2, 1, -2, -2, -3, -1, 3, 2, 1, 3, -3, -2));

  // Singular matrices are refused without dividing and leave the output alone: row 2 = row 0 +
  // row 1, zero, NaN.
  const ZmMatrix3T<T> marker(9, 9, 9, 9, 9, 9, 9, 9, 9);
  ZmMatrix3T<T> out = marker;
  const T nan = std::numeric_limits<T>::quiet_NaN();
  EXPECT_EQ((Ints{ZmMatrix3T<T>(1, 2, 3, 4, 5, 6, 5, 7, 9).Inverse(out), ZmMatrix3T<T>::ZERO.Inverse(out),
                  ZmMatrix3T<T>(nan, 0, 0, 0, 1, 0, 0, 0, 1).Inverse(out)}),
            Ints(3, 0));
  EXPECT_TRUE(out == marker && ZmMatrix3T<T>(1, 2, 3, 4, 5, 6, 5, 7, 9).Inverse() == ZmMatrix3T<T>::ZERO);
  EXPECT_EQ(ZmMatrix4T<T>::ZEROAFFINE.Inverse().Determinant(), T(0));
  // The tolerance is relative to the rows' lengths: a small but well-conditioned matrix (det
  // 1e-9, far below 1e-6) inverts, while rows (1,0,0), (0,1,0), (1,1,1e-7) are dependent to
  // within 1e-6: |det| = 1e-7 is below 1e-6 * 1 * 1 * sqrt(2) but above 1e-8 * sqrt(2).
  ASSERT_EQ((ZmMatrix3T<T>::IDENTITY * T(1e-3)).Inverse(out), 1);
  EXPECT_NEAR(out[1][1], T(1000), T(1e-3));
  const ZmMatrix3T<T> nearly(1, 0, 0, 0, 1, 0, 1, 1, T(1e-7));
  ASSERT_EQ(nearly.Inverse(out) * 2 + nearly.Inverse(out, T(1e-8)), 1);
  EXPECT_NEAR(out[2][2], T(1e7), T(1e7) * T(1e-5));
}

// A difference equal to the tolerance counts as equal; the tolerance's sign is ignored.
TYPED_TEST(MatrixTwins, EqualityIsExactOrWithinAnInclusiveTolerance) {
  using T = TypeParam;
  const ZmMatrix3T<T> a = SampleA<T>();
  ZmMatrix3T<T> b = a;
  b[2][1] += T(0.5);
  EXPECT_EQ((Ints{a != b, a.Equals(b, T(0.5)), a.Equals(b, T(-0.5)), a.Equals(b, T(0.25))}), (Ints{1, 1, 1, 0}));
  b[0][0] = std::numeric_limits<T>::quiet_NaN();
  EXPECT_EQ(a.Equals(b, T(1e30)), 0);
}

TYPED_TEST(MatrixTwins, AffineTransformsCarryTheTranslationInColumnThree) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  // Quarter turn about Z (columns are the images of the axes), then a shift by (1, 2, 3).
  const ZmMatrix3T<T> quarter(0, -1, 0, 1, 0, 0, 0, 0, 1);
  const ZmMatrix4T<T> m(quarter, ZmVector3T<T>(1, 2, 3)), shift(ZmMatrix3T<T>::IDENTITY, ZmVector3T<T>(10, 0, 0));
  EXPECT_TRUE(m == ZmMatrix4T<T>(0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1));
  EXPECT_TRUE(m.GetTranslation() == ZmVector3T<T>(1, 2, 3) && m.Extract3x3Matrix() == quarter);
  // (2, 0, 5) turns to (0, 2, 5) and moves to (1, 4, 8); a vector only turns. The inverse turns
  // back by -90 degrees with translation -R^T t; a product applies its right-hand factor first.
  EXPECT_TRUE(m * P(2, 0, 5) == P(1, 4, 8) && m * ZmVector3T<T>(2, 0, 5) == ZmVector3T<T>(0, 2, 5));
  EXPECT_TRUE(m.Inverse() == ZmMatrix4T<T>(0, 1, 0, -2, -1, 0, 0, 1, 0, 0, 1, -3, 0, 0, 0, 1));
  EXPECT_TRUE((shift * m) * P(2, 0, 5) == P(11, 4, 8) && (m * shift) * P(2, 0, 5) == P(1, 14, 8));
  // Affine needs the last row (0, 0, 0, 1) exactly; that row takes no part in moving points.
  ZmMatrix4T<T> edited = ZmMatrix4T<T>::IDENTITY;
  edited.SetTranslation(ZmVector3T<T>(-1, -2, -3));
  edited.Set3x3Matrix(quarter);
  edited[3][0] = 2;
  EXPECT_EQ(
      (Ints{m.IsAffine(), ZmMatrix4T<T>::ZEROAFFINE.IsAffine(), ZmMatrix4T<T>::ZERO.IsAffine(), edited.IsAffine()}),
      (Ints{1, 1, 0, 0}));
  EXPECT_TRUE(edited.GetTranslation() == ZmVector3T<T>(-1, -2, -3) && edited * P(2, 0, 5) == P(-1, 0, 2));
}

}  // namespace
