// Rotation matrices: exact quarter turns, the identity for a null axis, the zero matrix for a
// bad axis index, left application in RotateMatrix, and the right-hand rule against an
// independent formula (Rodrigues) on arbitrary axes.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class RotationTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(RotationTwins, Scalars);

template <class T>
ZmMatrix3T<T> Rows(T a00, T a01, T a02, T a10, T a11, T a12, T a20, T a21, T a22) {
  return ZmMatrix3T<T>(a00, a01, a02, a10, a11, a12, a20, a21, a22);
}

TYPED_TEST(RotationTwins, QuarterTurnsAreExact) {
  using M = ZmMathT<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  using T = TypeParam;
  const ZmMatrix3T<T> z90 = Rows<T>(0, -1, 0, 1, 0, 0, 0, 0, 1);
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 1), T(90)), z90);
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 5), T(90)), z90);   // any axis length
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 1), T(450)), z90);  // modulo 360
  EXPECT_EQ(M::RotationMatrix(V(0, 0, -1), T(-90)), z90);
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 1), T(180)), Rows<T>(-1, 0, 0, 0, -1, 0, 0, 0, 1));
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 1), T(-90)), Rows<T>(0, 1, 0, -1, 0, 0, 0, 0, 1));
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 1), T(270)), Rows<T>(0, 1, 0, -1, 0, 0, 0, 0, 1));
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 1), T(-360)), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(M::RotationMatrix(V(2, 0, 0), T(90)), Rows<T>(1, 0, 0, 0, 0, -1, 0, 1, 0));
  EXPECT_EQ(M::RotationMatrix(V(0, 3, 0), T(90)), Rows<T>(0, 0, 1, 0, 1, 0, -1, 0, 0));
  // The principal-axis form gives the same exact matrices.
  EXPECT_EQ(M::RotationMatrix(2, T(90)), z90);
  EXPECT_EQ(M::RotationMatrix(0, T(90)), Rows<T>(1, 0, 0, 0, 0, -1, 0, 1, 0));
  EXPECT_EQ(M::RotationMatrix(1, T(-270)), Rows<T>(0, 0, 1, 0, 1, 0, -1, 0, 0));
  // Column vectors turn counter-clockwise: x goes to y about z.
  EXPECT_EQ(z90 * V(1, 0, 0), V(0, 1, 0));
}

TEST(Rotations, OtherAnglesGoThroughSineAndCosine) {
  // theta = acos(-1) * 90.5 / 180: cos = -0.008726535498373775, sin = 0.9999619230641713.
  const ZmMatrix3d about = ZmMathd::RotationMatrix(ZmVector3d(0, 0, 1), 90.5);
  EXPECT_EQ(about[0][0], -0.008726535498373775);
  EXPECT_EQ(about[0][1], -0.9999619230641713);
  EXPECT_EQ(about[1][0], 0.9999619230641713);
  EXPECT_EQ(ZmMathd::RotationMatrix(2, 90.5), about);
  // 90 + 1e-13 is not an integer: no exact quarter turn.
  EXPECT_NE(ZmMathd::RotationMatrix(ZmVector3d(0, 0, 1), 90.0 + 1e-13)[0][0], 0.0);
  // The float twin forms theta in float: float(float(pi) * 90.5) / 180 = 1.5795230865478516,
  // whose cosine and sine, rounded to float, are -0.008726648986339569 and 0.9999619126319885.
  const ZmMatrix3f aboutF = ZmMathf::RotationMatrix(ZmVector3f(0, 0, 1), 90.5f);
  EXPECT_FLOAT_EQ(aboutF[0][0], -0.008726648986339569f);
  EXPECT_FLOAT_EQ(aboutF[1][0], 0.9999619126319885f);
}

TYPED_TEST(RotationTwins, NullAxisGivesIdentityAndABadIndexTheZeroMatrix) {
  using M = ZmMathT<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  using T = TypeParam;
  const T nan = std::numeric_limits<T>::quiet_NaN();
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 0), T(30)), ZmMatrix3T<T>::IDENTITY);
  // 1e-7 is below the float epsilon 1.1920929e-7: identity. 2e-7 is not, but the orthonormal
  // completion replaces an axis no longer than 1e-6f by z: a quarter turn about z.
  EXPECT_EQ(M::RotationMatrix(V(1e-7, 0, 0), T(90)), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(M::RotationMatrix(V(2e-7, 0, 0), T(90)), Rows<T>(0, -1, 0, 1, 0, 0, 0, 0, 1));
  EXPECT_EQ(M::RotationMatrix(V(2e-6, 0, 0), T(90)), Rows<T>(1, 0, 0, 0, 0, -1, 0, 1, 0));
  EXPECT_EQ(M::RotationMatrix(V(WbCoord3DT<T>::INVALID), T(90)), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(M::RotationMatrix(V(nan, 0, 1), T(90)), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(M::RotationMatrix(V(0, 0, 1), nan), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(M::RotationMatrix(3, T(45)), ZmMatrix3T<T>::ZERO);
  EXPECT_EQ(M::RotationMatrix(-1, T(0)), ZmMatrix3T<T>::ZERO);
  EXPECT_EQ(M::RotationMatrix(1, std::numeric_limits<T>::infinity()), ZmMatrix3T<T>::ZERO);
}

TYPED_TEST(RotationTwins, RotateMatrixAppliesTheRotationOnTheLeft) {
  using M = ZmMathT<TypeParam>;
  using T = TypeParam;
  ZmMatrix3T<T> m = Rows<T>(1, 2, 3, 4, 5, 6, 7, 8, 9);
  M::RotateMatrix(m, ZmVector3T<T>(0, 0, 1), T(90));
  // R m with R = rows (0,-1,0), (1,0,0), (0,0,1): rows -row1, row0, row2 of m (m R would
  // permute the columns instead).
  EXPECT_EQ(m, Rows<T>(-4, -5, -6, 1, 2, 3, 7, 8, 9));
}

TYPED_TEST(RotationTwins, ArbitraryAxesFollowTheRightHandRule) {
  using M = ZmMathT<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  using T = TypeParam;
  const double tol = std::is_same<T, double>::value ? 1e-13 : 2e-6;
  const double axes[][3] = {{1, 2, 3}, {-0.5, 0.25, 1}, {0, -1, 1e-3}, {3, -4, 0}, {1e-3, 1e-3, -2}};
  const double angles[] = {17.25, -123.0, 45.0, 300.5, 1.0e-3};
  for (const auto& a : axes) {
    const double n = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    const double k[3] = {a[0] / n, a[1] / n, a[2] / n};
    for (double deg : angles) {
      // Rodrigues: R = c I + s [k]x + (1 - c) k k^T.
      const double th = deg * std::acos(-1.0) / 180.0, c = std::cos(th), s = std::sin(th);
      const double cross[3][3] = {{0, -k[2], k[1]}, {k[2], 0, -k[0]}, {-k[1], k[0], 0}};
      const ZmMatrix3T<T> r = M::RotationMatrix(V(a[0], a[1], a[2]), T(deg));
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
          const double expected = (i == j ? c : 0.0) + s * cross[i][j] + (1 - c) * k[i] * k[j];
          EXPECT_NEAR(r[i][j], expected, tol) << "axis " << a[0] << "," << a[1] << "," << a[2] << " angle " << deg;
        }
      }
    }
  }
}

}  // namespace
