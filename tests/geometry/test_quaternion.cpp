// Quaternions: angle-axis, rotation-matrix and Euler-angle round trips, rotation of vectors,
// the Hamilton product, equality within an angle, inverse, normalisation and interpolation.
//
// Reference values come from scipy.spatial.transform.Rotation (quaternions printed there as
// x, y, z, w).
#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class QuaternionTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(QuaternionTwins, Scalars);

template <class T>
T Tol() {
  return std::is_same<T, double>::value ? T(1e-14) : T(2e-6);
}

template <class T>
using Radian = ZmAngleT<T, zm::AngleUnit::Radian>;

template <class T>
void ExpectNear(const ZmVector3T<T>& v, double x, double y, double z) {
  EXPECT_NEAR(v.x, x, Tol<T>());
  EXPECT_NEAR(v.y, y, Tol<T>());
  EXPECT_NEAR(v.z, z, Tol<T>());
}

TEST(Quaternion, LayoutAndConstants) {
  static_assert(sizeof(ZmQuaterniond) == 4 * sizeof(double) && !std::is_polymorphic<ZmQuaternionf>::value, "");
  EXPECT_TRUE(ZmQuaterniond::IDENTITY == ZmQuaterniond(1, 0, 0, 0));
  EXPECT_TRUE(ZmQuaternionf::ZERO == ZmQuaternionf(0, 0, 0, 0));
  EXPECT_TRUE(ZmQuaterniond() == ZmQuaterniond::IDENTITY);
  const ZmQuaternionf narrowed = ZmQuaterniond(0.1, 0.2, 0.3, 0.4);
  EXPECT_EQ(narrowed.w, 0.1f);
  EXPECT_EQ(narrowed.z, 0.4f);
}

TYPED_TEST(QuaternionTwins, QuarterTurnAboutZ) {
  using T = TypeParam;
  ZmQuaternionT<T> q;
  // The axis need not be of unit length.
  ASSERT_EQ(q.FromAngleAxis(Radian<T>(T(M_PI / 2)), ZmVector3T<T>(0, 0, 2)), 1);
  EXPECT_NEAR(q.w, std::sqrt(0.5), Tol<T>());
  EXPECT_NEAR(q.z, std::sqrt(0.5), Tol<T>());
  EXPECT_EQ(q.x, T(0));
  // X turns onto Y, Y onto -X (right-hand rule), Z stays.
  ExpectNear(q * ZmVector3T<T>(1, 0, 0), 0, 1, 0);
  ExpectNear(q * ZmVector3T<T>(0, 1, 0), -1, 0, 0);
  ExpectNear(q * ZmVector3T<T>(0, 0, 3), 0, 0, 3);
  const ZmPoint3T<T> p = q * ZmPoint3T<T>(2, 0, 1);
  EXPECT_NEAR(p.y, 2, Tol<T>());
  EXPECT_NEAR(p.z, 1, Tol<T>());
  // Its matrix has the turned axes as columns: [[0, -1, 0], [1, 0, 0], [0, 0, 1]].
  EXPECT_EQ(q.ToRotationMatrix().Equals(ZmMatrix3T<T>(0, -1, 0, 1, 0, 0, 0, 0, 1), Tol<T>()), 1);

  // A zero or invalid axis is refused and the quaternion is kept.
  EXPECT_EQ(q.FromAngleAxis(Radian<T>(T(1)), ZmVector3T<T>(0, 0, 0)), 0);
  EXPECT_EQ(q.FromAngleAxis(Radian<T>(T(1)), ZmVector3T<T>(WbCoord3DT<T>::INVALID)), 0);
  EXPECT_NEAR(q.z, std::sqrt(0.5), Tol<T>());
}

TYPED_TEST(QuaternionTwins, AngleAxisAndMatrixRoundTrips) {
  using T = TypeParam;
  // 2 rad about (1, 2, 2) / 3: scipy gives q = (0.5403023058681398; 0.2804903282692988,
  // 0.5609806565385976, 0.5609806565385976) and the matrix below.
  ZmQuaternionT<T> q;
  ASSERT_EQ(q.FromAngleAxis(Radian<T>(T(2)), ZmVector3T<T>(1, 2, 2)), 1);
  EXPECT_NEAR(q.w, 0.5403023058681398, Tol<T>());
  EXPECT_NEAR(q.x, 0.2804903282692988, Tol<T>());
  EXPECT_NEAR(q.y, 0.5609806565385976, Tol<T>());
  const ZmMatrix3T<T> expected(-0.25879718804190427, -0.2914989875399784, 0.9208975815609305,  //
                               0.9208975815609305, 0.21325175747380987, 0.3262994517457249,    //
                               -0.2914989875399784, 0.9324977362961793, 0.21325175747380987);
  const ZmMatrix3T<T> r = q.ToRotationMatrix();
  EXPECT_EQ(r.Equals(expected, Tol<T>()), 1);
  // Rotation by the quaternion and by its matrix agree: scipy rotates (0.5, -1, 2) to
  // (2.003895556640887, 0.8997959367981051, -0.6517437151185488).
  const ZmVector3T<T> v(0.5, -1, 2);
  ExpectNear(q * v, 2.003895556640887, 0.8997959367981051, -0.6517437151185488);
  ExpectNear(r * v, 2.003895556640887, 0.8997959367981051, -0.6517437151185488);

  Radian<T> angle;
  ZmVector3T<T> axis;
  q.ToAngleAxis(angle, axis);
  EXPECT_NEAR(T(angle), 2, Tol<T>());
  ExpectNear(axis, 1.0 / 3, 2.0 / 3, 2.0 / 3);
  // The scale of the quaternion does not change the angle and the axis.
  (q * T(5)).ToAngleAxis(angle, axis);
  EXPECT_NEAR(T(angle), 2, 4 * Tol<T>());
  // Without a rotation: angle 0 about X.
  ZmQuaternionT<T>::IDENTITY.ToAngleAxis(angle, axis);
  EXPECT_EQ(T(angle), T(0));
  EXPECT_TRUE(axis == ZmVector3T<T>(1, 0, 0));

  // Matrix -> quaternion, on the positive-trace branch and on the largest-diagonal one:
  // 3 rad about (1, 1, 1) / sqrt 3 has trace -0.98 (scipy: q = (0.07073720166770268;
  // 0.575903999031153 three times)); half turns have trace -1.
  EXPECT_EQ(ZmQuaternionT<T>(r).Equals(q, Radian<T>(4 * Tol<T>())), 1);
  const ZmMatrix3T<T> threeRad(-0.326661664400297, 0.5818551575587422, 0.7448065068415547,  //
                               0.7448065068415547, -0.326661664400297, 0.5818551575587422,  //
                               0.5818551575587422, 0.7448065068415547, -0.326661664400297);
  const ZmQuaternionT<T> fromThree(threeRad);
  EXPECT_NEAR(std::fabs(fromThree.w), 0.07073720166770268, 4 * Tol<T>());
  EXPECT_NEAR(fromThree.x * (fromThree.w < 0 ? -1 : 1), 0.575903999031153, 4 * Tol<T>());
  EXPECT_NEAR(fromThree.y, fromThree.z, 4 * Tol<T>());
  const ZmVector3T<T> axes[3] = {ZmVector3T<T>(1, 0, 0), ZmVector3T<T>(0, 1, 0), ZmVector3T<T>(0, 0, 1)};
  for (const ZmVector3T<T>& a : axes) {
    ZmQuaternionT<T> half;
    half.FromAngleAxis(Radian<T>(T(M_PI)), a);
    const ZmQuaternionT<T> back(half.ToRotationMatrix());
    EXPECT_EQ(back.Equals(half, Radian<T>(4 * Tol<T>())), 1);
    EXPECT_NEAR(back.Norm(), 1, Tol<T>());
  }
}

TYPED_TEST(QuaternionTwins, PitchYawRollDecomposeRzRyRx) {
  using T = TypeParam;
  ZmQuaternionT<T> qx, qy, qz;
  qx.FromAngleAxis(Radian<T>(T(0.3)), ZmVector3T<T>(1, 0, 0));
  qy.FromAngleAxis(Radian<T>(T(-0.5)), ZmVector3T<T>(0, 1, 0));
  qz.FromAngleAxis(Radian<T>(T(1.2)), ZmVector3T<T>(0, 0, 1));
  // scipy Rotation.from_euler('ZYX', [1.2, -0.5, 0.3]) = Rz Ry Rx: q = (0.7698226806613265;
  // 0.25762853798958335, -0.12014247631977643, 0.5714598517275828).
  const ZmQuaternionT<T> q = qz * qy * qx;
  EXPECT_NEAR(q.w, 0.7698226806613265, Tol<T>());
  EXPECT_NEAR(q.x, 0.25762853798958335, Tol<T>());
  EXPECT_NEAR(q.y, -0.12014247631977643, Tol<T>());
  EXPECT_NEAR(q.z, 0.5714598517275828, Tol<T>());
  EXPECT_NEAR(T(q.GetPitch()), 0.3, 4 * Tol<T>());
  EXPECT_NEAR(T(q.GetYaw()), -0.5, 4 * Tol<T>());
  EXPECT_NEAR(T(q.GetRoll()), 1.2, 4 * Tol<T>());
  // The product applies its right-hand factor first.
  const ZmVector3T<T> v(0.25, 2, -1);
  const ZmVector3T<T> stepwise = qz * (qy * (qx * v));
  const ZmVector3T<T> once = q * v;
  ExpectNear(once, stepwise.x, stepwise.y, stepwise.z);
  // Scale does not change the angles; a single rotation shows up in its own angle only.
  EXPECT_NEAR(T((q * T(3)).GetYaw()), -0.5, 4 * Tol<T>());
  EXPECT_NEAR(T(qy.GetYaw()), -0.5, Tol<T>());
  EXPECT_NEAR(T(qy.GetPitch()), 0, Tol<T>());
  EXPECT_NEAR(T(qx.GetRoll()), 0, Tol<T>());
}

TYPED_TEST(QuaternionTwins, EqualsComparesRotationsWithinAnAngle) {
  using T = TypeParam;
  ZmQuaternionT<T> a, b;
  a.FromAngleAxis(Radian<T>(T(0.7)), ZmVector3T<T>(1, 1, 0));
  b.FromAngleAxis(Radian<T>(T(0.71)), ZmVector3T<T>(1, 1, 0));
  // The two rotations are 0.01 rad apart.
  EXPECT_EQ(a.Equals(b, Radian<T>(T(0.0101))), 1);
  EXPECT_EQ(a.Equals(b, Radian<T>(T(-0.0101))), 1);
  EXPECT_EQ(a.Equals(b, Radian<T>(T(0.0099))), 0);
  // q and -q are the same rotation; the length does not matter.
  EXPECT_EQ(a.Equals(-a, Radian<T>(T(0))), 1);
  EXPECT_EQ(a.Equals(a * T(4), Radian<T>(Tol<T>())), 1);
  EXPECT_FALSE(a == -a);
  // A zero quaternion is no rotation and equals only another zero quaternion.
  EXPECT_EQ(ZmQuaternionT<T>::ZERO.Equals(a, Radian<T>(T(10))), 0);
  EXPECT_EQ(ZmQuaternionT<T>::ZERO.Equals(ZmQuaternionT<T>::ZERO, Radian<T>(T(0))), 1);
}

TYPED_TEST(QuaternionTwins, InverseNormaliseAndSlerp) {
  using T = TypeParam;
  const ZmQuaternionT<T> q(1, 2, -2, 4);  // squared length 25
  EXPECT_EQ(q.Norm(), T(5));
  EXPECT_TRUE(q.Conjugate() == ZmQuaternionT<T>(1, -2, 2, -4));
  EXPECT_TRUE(q.Inverse() == ZmQuaternionT<T>(0.04, -0.08, 0.08, -0.16));
  const ZmQuaternionT<T> product = q * q.Inverse();
  EXPECT_NEAR(product.w, 1, Tol<T>());
  EXPECT_NEAR(product.x, 0, Tol<T>());
  EXPECT_NEAR(product.z, 0, Tol<T>());
  EXPECT_TRUE(ZmQuaternionT<T>::ZERO.Inverse() == ZmQuaternionT<T>::ZERO);

  ZmQuaternionT<T> n(0, 3, 0, 4);
  ASSERT_EQ(n.Normalise(), 1);
  EXPECT_TRUE(n == ZmQuaternionT<T>(0, 0.6, 0, 0.8));
  ZmQuaternionT<T> zero = ZmQuaternionT<T>::ZERO;
  EXPECT_EQ(zero.Normalise(), 0);
  EXPECT_TRUE(zero == ZmQuaternionT<T>::ZERO);

  // Halfway from no rotation to a quarter turn about Z is an eighth turn:
  // (cos(pi/8), 0, 0, sin(pi/8)) = (0.9238795325112867, 0, 0, 0.3826834323650898).
  ZmQuaternionT<T> quarter;
  quarter.FromAngleAxis(Radian<T>(T(M_PI / 2)), ZmVector3T<T>(0, 0, 1));
  const ZmQuaternionT<T> eighth = ZmQuaternionT<T>::Slerp(T(0.5), ZmQuaternionT<T>::IDENTITY, quarter);
  EXPECT_NEAR(eighth.w, 0.9238795325112867, Tol<T>());
  EXPECT_NEAR(eighth.z, 0.3826834323650898, Tol<T>());
  // -quarter is the same rotation: the shortest path still gives the eighth turn. The long
  // way runs over the 4D angle 3 pi/4 between (1, 0, 0, 0) and -quarter; halfway both weights
  // are sin(3 pi/8) / sin(3 pi/4) = 1.3065629648763766, so w = 1.30656 (1 - cos(pi/4)) =
  // 0.3826834323650898 and z = -1.30656 sin(pi/4) = -0.9238795325112867.
  const ZmQuaternionT<T> shortest = ZmQuaternionT<T>::Slerp(T(0.5), ZmQuaternionT<T>::IDENTITY, -quarter);
  EXPECT_EQ(shortest.Equals(eighth, Radian<T>(4 * Tol<T>())), 1);
  const ZmQuaternionT<T> longWay = ZmQuaternionT<T>::Slerp(T(0.5), ZmQuaternionT<T>::IDENTITY, -quarter, 0);
  EXPECT_NEAR(longWay.w, 0.3826834323650898, Tol<T>());
  EXPECT_NEAR(longWay.z, -0.9238795325112867, Tol<T>());
  // The ends are the inputs; equal inputs give the input back.
  EXPECT_EQ(ZmQuaternionT<T>::Slerp(T(1), ZmQuaternionT<T>::IDENTITY, quarter).Equals(quarter, Radian<T>(Tol<T>())), 1);
  EXPECT_EQ(ZmQuaternionT<T>::Slerp(T(0.3), quarter, quarter).Equals(quarter, Radian<T>(Tol<T>())), 1);
}

}  // namespace
