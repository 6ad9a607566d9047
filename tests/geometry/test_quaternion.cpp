// Quaternions: angle-axis, rotation-matrix and Euler-angle round trips, rotation of vectors,
// the Hamilton product, equality within an angle, inverse, normalisation and interpolation.
// Reference values from scipy.spatial.transform.Rotation (which prints x, y, z, w).
#include <algorithm>
#include <cmath>
#include <type_traits>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(QuaternionTwins);

template <class T>
using Radian = ZmAngleT<T, zm::AngleUnit::Radian>;

static_assert(sizeof(ZmQuaterniond) == 4 * sizeof(double) && !std::is_polymorphic<ZmQuaternionf>::value, "");

template <class T>
T Tol() {
  return kIsFloat<T> ? T(2e-6) : T(1e-14);
}
template <class T>
ZmQuaternionT<T> Turn(double radians, const ZmVector3T<T>& axis) {
  ZmQuaternionT<T> q;
  EXPECT_EQ(q.FromAngleAxis(Radian<T>(T(radians)), axis), 1);
  return q;
}

// The largest difference of the components from the expected w, x, y, z (or x, y, z).
template <class T>
double Off(const ZmQuaternionT<T>& q, std::vector<double> e) {
  return std::max({std::fabs(q.w - e[0]), std::fabs(q.x - e[1]), std::fabs(q.y - e[2]), std::fabs(q.z - e[3])});
}
template <class T>
double Off(const WbCoord3DT<T>& v, std::vector<double> e) {
  return std::max({std::fabs(v.x - e[0]), std::fabs(v.y - e[1]), std::fabs(v.z - e[2])});
}

TYPED_TEST(QuaternionTwins, AngleAxisMatrixAndVectorRotation) {
  using T = TypeParam;
  using V = ZmVector3T<T>;
  const T tol = Tol<T>(), h = T(std::sqrt(0.5));
  // A quarter turn about Z (the axis need not be of unit length): X onto Y, Y onto -X. A zero or
  // invalid axis is refused and the quaternion is kept.
  ZmQuaternionT<T> q = Turn<T>(M_PI / 2, V(0, 0, 2));
  EXPECT_LE(Off(q, {h, 0, 0, h}), tol);
  EXPECT_EQ(q.x, T(0));
  EXPECT_LE(Off(q * V(1, 0, 0), {0, 1, 0}) + Off(q * V(0, 1, 0), {-1, 0, 0}) + Off(q * V(0, 0, 3), {0, 0, 3}), tol);
  EXPECT_LE(Off(q * ZmPoint3T<T>(2, 0, 1), {0, 2, 1}), tol);
  EXPECT_EQ(q.ToRotationMatrix().Equals(ZmMatrix3T<T>(0, -1, 0, 1, 0, 0, 0, 0, 1), tol), 1);
  EXPECT_EQ(q.FromAngleAxis(Radian<T>(T(1)), V(0, 0, 0)) + q.FromAngleAxis(Radian<T>(T(1)), V(WbCoord3DT<T>::INVALID)),
            0);
  EXPECT_LE(Off(q, {h, 0, 0, h}), tol);

  // 2 rad about (1, 2, 2) / 3 (scipy): the quaternion, its matrix, and (0.5, -1, 2) turned by both.
  q = Turn<T>(2, V(1, 2, 2));
  EXPECT_LE(Off(q, {0.5403023058681398, 0.2804903282692988, 0.5609806565385976, 0.5609806565385976}), tol);
  const ZmMatrix3T<T> r = q.ToRotationMatrix();
  EXPECT_EQ(r.Equals(ZmMatrix3T<T>(-0.25879718804190427, -0.2914989875399784, 0.9208975815609305,  //
                                   0.9208975815609305, 0.21325175747380987, 0.3262994517457249,    //
                                   -0.2914989875399784, 0.9324977362961793, 0.21325175747380987),
                     tol),
            1);
  const std::vector<double> turned = {2.003895556640887, 0.8997959367981051, -0.6517437151185488};
  EXPECT_LE(std::max(Off(q * V(0.5, -1, 2), turned), Off(r * V(0.5, -1, 2), turned)), tol);
  // Back to angle and axis, whatever the scale; no rotation is angle 0 about X.
  Radian<T> angle;
  V axis;
  (q * T(5)).ToAngleAxis(angle, axis);
  EXPECT_NEAR(T(angle), 2, 4 * tol);
  EXPECT_LE(Off(axis, {1.0 / 3, 2.0 / 3, 2.0 / 3}), tol);
  ZmQuaternionT<T>::IDENTITY.ToAngleAxis(angle, axis);
  EXPECT_TRUE(T(angle) == T(0) && axis == V(1, 0, 0));

  // Matrix -> quaternion on the positive-trace branch and on the largest-diagonal one: 3 rad
  // about (1, 1, 1) / sqrt 3 has trace -0.98 (scipy), half turns have trace -1.
  EXPECT_EQ(ZmQuaternionT<T>(r).Equals(q, Radian<T>(4 * tol)), 1);
  const ZmMatrix3T<T> threeRad(-0.326661664400297, 0.5818551575587422, 0.7448065068415547,  //
                               0.7448065068415547, -0.326661664400297, 0.5818551575587422,  //
                               0.5818551575587422, 0.7448065068415547, -0.326661664400297);
  const ZmQuaternionT<T> fromThree(threeRad), sign(fromThree.w < 0 ? -1 : 1, 0, 0, 0);
  EXPECT_LE(Off(fromThree * sign.w, {0.07073720166770268, 0.575903999031153, 0.575903999031153, 0.575903999031153}),
            4 * tol);
  for (const V& a : {V(1, 0, 0), V(0, 1, 0), V(0, 0, 1)}) {
    const ZmQuaternionT<T> half = Turn<T>(M_PI, a), back(half.ToRotationMatrix());
    EXPECT_EQ(back.Equals(half, Radian<T>(4 * tol)), 1);
    EXPECT_NEAR(back.Norm(), 1, tol);
  }
}

// scipy Rotation.from_euler('ZYX', [1.2, -0.5, 0.3]) is Rz Ry Rx. The product applies its
// right-hand factor first; scale does not change the angles; a single rotation shows up in its
// own angle only.
TYPED_TEST(QuaternionTwins, PitchYawRollDecomposeRzRyRx) {
  using T = TypeParam;
  using V = ZmVector3T<T>;
  const T tol = Tol<T>();
  const ZmQuaternionT<T> qx = Turn<T>(0.3, V(1, 0, 0)), qy = Turn<T>(-0.5, V(0, 1, 0)), qz = Turn<T>(1.2, V(0, 0, 1));
  const ZmQuaternionT<T> q = qz * qy * qx;
  EXPECT_LE(Off(q, {0.7698226806613265, 0.25762853798958335, -0.12014247631977643, 0.5714598517275828}), tol);
  EXPECT_LE(Off(V(T(q.GetPitch()), T(q.GetYaw()), T(q.GetRoll())), {0.3, -0.5, 1.2}), 4 * tol);
  const V v(0.25, 2, -1), stepwise = qz * (qy * (qx * v));
  EXPECT_LE(Off(q * v, {stepwise.x, stepwise.y, stepwise.z}), tol);
  EXPECT_NEAR(T((q * T(3)).GetYaw()), -0.5, 4 * tol);
  EXPECT_LE(Off(V(T(qy.GetPitch()), T(qy.GetYaw()), T(qx.GetRoll())), {0, -0.5, 0}), tol);
}

TYPED_TEST(QuaternionTwins, EqualsInverseNormaliseAndSlerp) {
  using T = TypeParam;
  using Q = ZmQuaternionT<T>;
  const T tol = Tol<T>();
  // Two rotations 0.01 rad apart; the tolerance's sign is ignored; q and -q are the same
  // rotation and the length does not matter; a zero quaternion equals only another zero one.
  const Q a = Turn<T>(0.7, ZmVector3T<T>(1, 1, 0)), b = Turn<T>(0.71, ZmVector3T<T>(1, 1, 0));
  EXPECT_EQ((Ints{a.Equals(b, Radian<T>(T(0.0101))), a.Equals(b, Radian<T>(T(-0.0101))),
                  a.Equals(b, Radian<T>(T(0.0099))), a.Equals(-a, Radian<T>(T(0))), a.Equals(a * T(4), Radian<T>(tol)),
                  a == -a, Q::ZERO.Equals(a, Radian<T>(T(10))), Q::ZERO.Equals(Q::ZERO, Radian<T>(T(0)))}),
            (Ints{1, 1, 0, 1, 1, 0, 0, 1}));

  EXPECT_TRUE(Q() == Q::IDENTITY && Q::IDENTITY == Q(1, 0, 0, 0) && Q::ZERO == Q(0, 0, 0, 0));
  EXPECT_TRUE(ZmQuaternionf(ZmQuaterniond(0.1, 0.2, 0.3, 0.4)) == ZmQuaternionf(0.1f, 0.2f, 0.3f, 0.4f));
  const Q q(1, 2, -2, 4);  // squared length 25
  EXPECT_EQ(q.Norm(), T(5));
  EXPECT_TRUE(q.Conjugate() == Q(1, -2, 2, -4) && q.Inverse() == Q(0.04, -0.08, 0.08, -0.16));
  EXPECT_LE(Off(q * q.Inverse(), {1, 0, 0, 0}), tol);
  Q n(0, 3, 0, 4), zero = Q::ZERO;
  EXPECT_EQ(n.Normalise() * 2 + zero.Normalise(), 2);
  EXPECT_TRUE(n == Q(0, 0.6, 0, 0.8) && zero == Q::ZERO && Q::ZERO.Inverse() == Q::ZERO);

  // Halfway to a quarter turn about Z is an eighth turn (cos(pi/8), 0, 0, sin(pi/8)), also
  // towards -quarter (the same rotation) by the shortest path. The long way spans the 4D angle
  // 3 pi/4; halfway both weights are sin(3 pi/8) / sin(3 pi/4) = 1.3065629648763766, so
  // w = 1.30656 (1 - cos(pi/4)) = sin(pi/8) and z = -1.30656 sin(pi/4) = -cos(pi/8). The ends are
  // the inputs; equal inputs give the input back.
  const double c8 = 0.9238795325112867, s8 = 0.3826834323650898;
  const Q quarter = Turn<T>(M_PI / 2, ZmVector3T<T>(0, 0, 1));
  EXPECT_LE(Off(Q::Slerp(T(0.5), Q::IDENTITY, quarter), {c8, 0, 0, s8}), tol);
  EXPECT_LE(Off(Q::Slerp(T(0.5), Q::IDENTITY, -quarter), {c8, 0, 0, s8}), 4 * tol);
  EXPECT_LE(Off(Q::Slerp(T(0.5), Q::IDENTITY, -quarter, 0), {s8, 0, 0, -c8}), tol);
  EXPECT_EQ(Q::Slerp(T(1), Q::IDENTITY, quarter).Equals(quarter, Radian<T>(tol)), 1);
  EXPECT_EQ(Q::Slerp(T(0.3), quarter, quarter).Equals(quarter, Radian<T>(tol)), 1);
  // Rotations less than 2e-6 rad apart are blended linearly, and the end is still the input.
  const Q tiny(std::cos(T(5e-7)), 0, 0, std::sin(T(5e-7)));
  EXPECT_LE(Off(Q::Slerp(T(1), Q::IDENTITY, tiny), {std::cos(5e-7), 0, 0, std::sin(5e-7)}), tol);
}

}  // namespace
