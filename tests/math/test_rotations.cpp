// Rotation matrices: exact quarter turns, null axes, bad indices, RotateMatrix, and Rodrigues' formula.
#include "math_test_support.h"

using namespace math_test;

namespace {

MATH_TWIN_SUITE(RotationTwins);

TYPED_TEST(RotationTwins, QuarterTurnsNullAxesAndBadIndices) {
  MATH_TWIN_TYPES;
  const R z90(0, -1, 0, 1, 0, 0, 0, 0, 1), zm90(0, 1, 0, -1, 0, 0, 0, 0, 1), x90(1, 0, 0, 0, 0, -1, 0, 1, 0),
      y90(0, 0, 1, 0, 1, 0, -1, 0, 0);
  ExpectRows<R>({
      {M::RotationMatrix(V(0, 0, 1), T(90)), z90},
      {M::RotationMatrix(V(0, 0, 5), T(90)), z90},   // any axis length
      {M::RotationMatrix(V(0, 0, 1), T(450)), z90},  // modulo 360
      {M::RotationMatrix(V(0, 0, -1), T(-90)), z90},
      {M::RotationMatrix(V(0, 0, 1), T(180)), R(-1, 0, 0, 0, -1, 0, 0, 0, 1)},
      {M::RotationMatrix(V(0, 0, 1), T(-90)), zm90},
      {M::RotationMatrix(V(0, 0, 1), T(270)), zm90},
      {M::RotationMatrix(V(0, 0, 1), T(-360)), R::IDENTITY},
      {M::RotationMatrix(V(2, 0, 0), T(90)), x90},
      {M::RotationMatrix(V(0, 3, 0), T(90)), y90},
      // The principal-axis form gives the same exact matrices.
      {M::RotationMatrix(2, T(90)), z90},
      {M::RotationMatrix(0, T(90)), x90},
      {M::RotationMatrix(1, T(-270)), y90},
      // Axes under the float epsilon: the identity; the completion turns axes up to 1e-6f into z.
      {M::RotationMatrix(V(0, 0, 0), T(30)), R::IDENTITY},
      {M::RotationMatrix(V(1e-7, 0, 0), T(90)), R::IDENTITY},
      {M::RotationMatrix(V(2e-7, 0, 0), T(90)), z90},
      {M::RotationMatrix(V(2e-6, 0, 0), T(90)), x90},
      {M::RotationMatrix(V(WbCoord3DT<T>::INVALID), T(90)), R::IDENTITY},
      {M::RotationMatrix(V(kNan<T>, 0, 1), T(90)), R::IDENTITY},
      {M::RotationMatrix(V(0, 0, 1), kNan<T>), R::IDENTITY},
      // A bad axis index or angle: the zero matrix.
      {M::RotationMatrix(3, T(45)), R::ZERO},
      {M::RotationMatrix(-1, T(0)), R::ZERO},
      {M::RotationMatrix(1, std::numeric_limits<T>::infinity()), R::ZERO},
  });
  // Column vectors turn counter-clockwise: x goes to y about z.
  EXPECT_EQ(z90 * V(1, 0, 0), V(0, 1, 0));
  // RotateMatrix applies R on the left (m R would permute the columns).
  R m(1, 2, 3, 4, 5, 6, 7, 8, 9);
  M::RotateMatrix(m, V(0, 0, 1), T(90));
  EXPECT_EQ(m, R(-4, -5, -6, 1, 2, 3, 7, 8, 9));
}

TEST(Rotations, OtherAnglesGoThroughSineAndCosine) {
  // theta = acos(-1) * 90.5 / 180: cos = -0.008726535498373775, sin = 0.9999619230641713.
  const ZmMatrix3d about = ZmMathd::RotationMatrix(ZmVector3d(0, 0, 1), 90.5);
  ExpectRows<double>(
      {{about[0][0], -0.008726535498373775}, {about[0][1], -0.9999619230641713}, {about[1][0], 0.9999619230641713}});
  EXPECT_EQ(ZmMathd::RotationMatrix(2, 90.5), about);
  // 90 + 1e-13 is not an integer: no exact quarter turn.
  EXPECT_NE(ZmMathd::RotationMatrix(ZmVector3d(0, 0, 1), 90.0 + 1e-13)[0][0], 0.0);
  // The float twin forms theta in float: float(float(pi) * 90.5) / 180 = 1.5795230865478516.
  const ZmMatrix3f aboutF = ZmMathf::RotationMatrix(ZmVector3f(0, 0, 1), 90.5f);
  EXPECT_FLOAT_EQ(aboutF[0][0], -0.008726648986339569f);
  EXPECT_FLOAT_EQ(aboutF[1][0], 0.9999619126319885f);
}

TYPED_TEST(RotationTwins, ArbitraryAxesFollowTheRightHandRule) {
  using T = TypeParam;
  const double tol = kIsDouble<T> ? 1e-13 : 2e-6;
  const double axes[][3] = {{1, 2, 3}, {-0.5, 0.25, 1}, {0, -1, 1e-3}, {3, -4, 0}, {1e-3, 1e-3, -2}};
  for (const auto& a : axes) {
    const double n = std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
    const double k[3] = {a[0] / n, a[1] / n, a[2] / n};
    const double cross[3][3] = {{0, -k[2], k[1]}, {k[2], 0, -k[0]}, {-k[1], k[0], 0}};
    for (double deg : {17.25, -123.0, 45.0, 300.5, 1.0e-3}) {
      // Rodrigues: R = c I + s [k]x + (1 - c) k k^T.
      const double th = deg * std::acos(-1.0) / 180.0, c = std::cos(th), s = std::sin(th);
      const ZmMatrix3T<T> r = ZmMathT<T>::RotationMatrix(ZmVector3T<T>(a[0], a[1], a[2]), T(deg));
      for (int i = 0; i < 9; ++i) {
        const double expected = (i / 3 == i % 3 ? c : 0.0) + s * cross[i / 3][i % 3] + (1 - c) * k[i / 3] * k[i % 3];
        EXPECT_NEAR(r[i / 3][i % 3], expected, tol)
            << "axis " << a[0] << "," << a[1] << "," << a[2] << " angle " << deg;
      }
    }
  }
}

}  // namespace
