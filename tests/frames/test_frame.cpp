// Typed frames: construction rules, accessors and their row/column asymmetry, the axes from
// two vectors, the nearest axis, the text form, and the coordinate-type conversions against
// values computed independently.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

#include "frames/frame_test_support.h"

namespace {

using frame_test::kMarker;
using frame_test::Near;
using frame_test::NearMatrix;

template <class T>
class FrameTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(FrameTwins, Scalars);

// Exposes the protected type conversions.
template <class T>
class ProbeFrame : public ZmFrameT<T> {
public:
  using ZmFrameT<T>::ZmFrameT;
  using ZmFrameT<T>::ConvertCartesianCoord;
  using ZmFrameT<T>::GetCartesianCoord;
};

// The frame of the independent numpy calculation below: the rotation by 40 degrees about
// (1, 2, 2) / 3 (Rodrigues), origin (1, -2, 0.5).
//   R = I + sin t K + (1 - cos t) K^2, columns:
ZmFramed RodriguesFrame(ZmFrameType type) {
  return ZmFramed(ZmVector3d(0.7920395049946471, 0.4805151968756977, -0.3765349493730213),
                  ZmVector3d(-0.3765349493730213, 0.8700246906216544, 0.3182427840648562),
                  ZmVector3d(0.4805151968756977, -0.11028228905950332, 0.8700246906216544), ZmPoint3d(1, -2, 0.5), type);
}

TEST(Frame, DefaultCopyAndTwinConversion) {
  const ZmFramed frame;
  EXPECT_EQ(frame.GetOrigin(), ZmPoint3d(0, 0, 0));
  EXPECT_EQ(frame.GetMatrix(), ZmMatrix3d::IDENTITY);
  EXPECT_EQ(frame.GetType(), ZmFrameCartesian);
  const ZmFramed rotated = RodriguesFrame(ZmFrameSpherical);
  ZmFramed copy;
  copy = rotated;
  EXPECT_EQ(copy, rotated);
  EXPECT_NE(copy, frame);
  // The float twin rounds each field; converting back widens them exactly.
  const ZmFramef narrowed = rotated;
  EXPECT_EQ(narrowed.GetType(), ZmFrameSpherical);
  EXPECT_EQ(narrowed.GetMatrix()[0][0], 0.7920395049946471f);
  EXPECT_EQ(ZmFramed(narrowed).GetOrigin(), ZmPoint3d(1, -2, 0.5));
  EXPECT_EQ(ZmFramed(narrowed).GetMatrix()[1][2], double(-0.11028228905950332f));
}

TYPED_TEST(FrameTwins, ThreePointModes) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  using V = ZmVector3T<T>;
  // e = p1 - p0 = (2, 0, 0), b = p2 - p0 = (0, 3, 0):
  //   mode 0: Z = (1,0,0), Y = unit((1,0,0) x (0,3,0)) = (0,0,1), X = Y x Z = (0,1,0)
  //   mode 1: X = (1,0,0), Y = unit((0,3,0) x (1,0,0)) = (0,0,-1), Z = X x Y = (0,1,0)
  //   mode 2: X = (1,0,0), Z = unit((1,0,0) x (0,3,0)) = (0,0,1), Y = Z x X = (0,1,0)
  const P p0(1, 1, 1), p1(3, 1, 1), p2(1, 4, 1);
  const ZmFrameT<T> m0(p0, p1, p2, 0, ZmFrameCylindrical);
  EXPECT_EQ(m0.GetOrigin(), p0);
  EXPECT_EQ(m0.GetType(), ZmFrameCylindrical);
  EXPECT_EQ(m0.GetMatrix(), ZmFrameT<T>(V(0, 1, 0), V(0, 0, 1), V(1, 0, 0), p0, ZmFrameCartesian).GetMatrix());
  const ZmFrameT<T> m1(p0, p1, p2, 1, ZmFrameCartesian);
  EXPECT_EQ(m1.GetVector(0), V(1, 0, 0));
  EXPECT_EQ(m1.GetVector(1), V(0, 0, -1));
  EXPECT_EQ(m1.GetVector(2), V(0, 1, 0));
  const ZmFrameT<T> m2(p0, p1, p2, 2, ZmFrameCartesian);
  EXPECT_EQ(m2.GetMatrix(), ZmMatrix3T<T>::IDENTITY);
  const ZmFrameT<T> other(p0, p1, p2, 3, ZmFrameSpherical);
  EXPECT_EQ(other.GetMatrix(), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(other.GetOrigin(), p0);

  // A general triangle, mode 2 (numpy): e = (1, 2, 2), b = (-1, 1, 4):
  //   X = e/3, Z = unit(X x b) = (6, -6, 3)/9, Y = Z x X = (-6, -3, 6)/9.
  const ZmFrameT<T> tilted(P(0, 0, 0), P(1, 2, 2), P(-1, 1, 4), 2, ZmFrameCartesian);
  EXPECT_TRUE(Near(tilted.GetVector(0), V(1.0 / 3, 2.0 / 3, 2.0 / 3), 1e-6));
  EXPECT_TRUE(Near(tilted.GetVector(1), V(-2.0 / 3, -1.0 / 3, 2.0 / 3), 1e-6));
  EXPECT_TRUE(Near(tilted.GetVector(2), V(2.0 / 3, -2.0 / 3, 1.0 / 3), 1e-6));

  // Collinear points: the normal cannot be normalised and stays zero; no failure, no NaN.
  const ZmFrameT<T> flat(P(0, 0, 0), P(1, 0, 0), P(2, 0, 0), 2, ZmFrameCartesian);
  EXPECT_EQ(flat.GetVector(0), V(1, 0, 0));
  EXPECT_EQ(flat.GetVector(2), V(0, 0, 0));
  EXPECT_EQ(flat.GetVector(1), V(0, 0, 0));
  // The other precision's points give the same frame.
  const ZmFramef fromDouble(ZmPoint3d(0, 0, 0), ZmPoint3d(1, 2, 2), ZmPoint3d(-1, 1, 4), 2, ZmFrameCartesian);
  EXPECT_TRUE(Near(fromDouble.GetVector(2), ZmVector3d(2.0 / 3, -2.0 / 3, 1.0 / 3), 1e-7));
}

TYPED_TEST(FrameTwins, OriginAndDirection) {
  using T = TypeParam;
  using V = ZmVector3T<T>;
  using P = ZmPoint3T<T>;
  // Without reference, Z = (0, 0, 1) is completed by (u.z, 0, 0) = (1, 0, 0) and (0, 1, 0).
  const ZmFrameT<T> plain(P(1, 2, 3), V(0, 0, 2), ZmFrameCylindrical);
  EXPECT_EQ(plain.GetMatrix(), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(plain.GetOrigin(), P(1, 2, 3));
  EXPECT_EQ(plain.GetType(), ZmFrameCylindrical);
  // With reference (1, 1, 0): Y = (0,0,2) x (1,1,0) = (-2, 2, 0) -> (-s, s, 0), s = sqrt(1/2);
  // X = Y x Z = (s, s, 0).
  const V reference(1, 1, 0);
  const ZmFrameT<T> aimed(P(0, 0, 0), V(0, 0, 2), ZmFrameCartesian, &reference);
  const double s = std::sqrt(0.5);
  EXPECT_TRUE(Near(aimed.GetVector(0), V(s, s, 0), 1e-7));
  EXPECT_TRUE(Near(aimed.GetVector(1), V(-s, s, 0), 1e-7));
  EXPECT_EQ(aimed.GetVector(2), V(0, 0, 1));
  // A zero direction: the completion replaces it by Z.
  const ZmFrameT<T> zero(P(0, 0, 0), V(0, 0, 0), ZmFrameCartesian);
  EXPECT_EQ(zero.GetMatrix(), ZmMatrix3T<T>::IDENTITY);
  // A general direction keeps right-handed unit axes.
  const ZmFrameT<T> general(P(0, 0, 0), V(1, -2, 0.5), ZmFrameCartesian);
  EXPECT_NEAR(general.GetMatrix().Determinant(), 1.0, 1e-6);
  EXPECT_TRUE(Near(general.GetVector(2), V(1, -2, 0.5) / std::sqrt(5.25), 1e-7));
}

TYPED_TEST(FrameTwins, GetVectorRowsAndColumns) {
  using T = TypeParam;
  // A rotation whose matrix is not symmetric: 90 degrees about Z, X = (0, 1, 0).
  ZmFrameT<T> frame;
  frame.SetMatrix(ZmVector3T<T>(0, 1, 0), ZmVector3T<T>(-1, 0, 0), ZmVector3T<T>(0, 0, 1));
  ZmVector3d row(7, 7, 7);
  ZmVector3f column(7, 7, 7);
  EXPECT_EQ(frame.GetVector(0, row), 1);
  EXPECT_EQ(row, ZmVector3d(0, -1, 0));  // first row
  EXPECT_EQ(frame.GetVector(0, column), 1);
  EXPECT_EQ(column, ZmVector3f(0, 1, 0));  // X axis
  EXPECT_EQ(frame.GetVector(0), ZmVector3T<T>(0, 1, 0));
  // Bad indexes write nothing.
  EXPECT_EQ(frame.GetVector(3, row), 0);
  EXPECT_EQ(frame.GetVector(-1, column), 0);
  EXPECT_EQ(row, ZmVector3d(0, -1, 0));
  EXPECT_EQ(column, ZmVector3f(0, 1, 0));
  EXPECT_FALSE(frame.GetVector(3).IsValid());
  ZmVector3T<T> x, y, z;
  frame.GetVectors(x, y, z);
  EXPECT_EQ(y, ZmVector3T<T>(-1, 0, 0));
  EXPECT_EQ(z, ZmVector3T<T>(0, 0, 1));
  // SetMatrix with the other precision's vectors.
  frame.SetMatrix(ZmVector3d(1, 0, 0), ZmVector3d(0, 1, 0), ZmVector3d(0, 0, 1));
  EXPECT_EQ(frame.GetMatrix(), ZmMatrix3T<T>::IDENTITY);
}

TYPED_TEST(FrameTwins, SetIdentityKeepsOrMovesTheOrigin) {
  using T = TypeParam;
  const ZmFrameT<T> start(ZmPoint3T<T>(1, 2, 3), ZmVector3T<T>(1, 1, 1), ZmFrameSpherical);
  ZmFrameT<T> keep(start), reset(start);
  keep.SetIdentity(0);
  reset.SetIdentity(1);
  EXPECT_EQ(keep.GetMatrix(), ZmMatrix3T<T>::IDENTITY);
  EXPECT_EQ(keep.GetOrigin(), ZmPoint3T<T>(1, 2, 3));
  EXPECT_EQ(reset.GetOrigin(), ZmPoint3T<T>(0, 0, 0));
  EXPECT_EQ(reset.GetType(), ZmFrameSpherical);
}

TYPED_TEST(FrameTwins, AxesFromTwoVectors) {
  using T = TypeParam;
  using V = ZmVector3T<T>;
  const ZmFrameT<T> start(ZmPoint3T<T>(0, 0, 0), V(1, 2, 3), ZmFrameCartesian);
  ZmFrameT<T> frame(start);
  // x and z at 45 degrees: |z x x| = 0.7071 is not above 0.999999.
  EXPECT_EQ(frame.SetMatrixByXAndZ(V(1, 0, 0), V(1, 1, 0)), 0);
  EXPECT_EQ(frame, start);
  EXPECT_EQ(frame.SetMatrixByXAndZ(V(0, 0, 0), V(0, 0, 1)), 0);
  EXPECT_EQ(frame.SetMatrixByXAndZ(V(1, 0, 0), V(WbCoord3DT<T>::INVALID)), 0);
  EXPECT_EQ(frame, start);
  // Orthogonal inputs of any length are normalised, not re-orthogonalised: y = z x x.
  EXPECT_EQ(frame.SetMatrixByXAndZ(V(0, 3, 0), V(2, 0, 0)), 1);
  EXPECT_EQ(frame.GetVector(0), V(0, 1, 0));
  EXPECT_EQ(frame.GetVector(1), V(0, 0, 1));
  EXPECT_EQ(frame.GetVector(2), V(1, 0, 0));
  // 0.1 degree off orthogonal: |y| = cos(0.1 deg) = 0.9999984769 < 0.999999, refused; 0.05
  // degree: 0.9999996192, accepted with the inputs kept as given.
  const double off = 0.1 * M_PI / 180, less = 0.05 * M_PI / 180;
  EXPECT_EQ(frame.SetMatrixByXAndZ(V(1, 0, 0), V(std::sin(off), 0, std::cos(off))), 0);
  EXPECT_EQ(frame.SetMatrixByXAndZ(V(1, 0, 0), V(std::sin(less), 0, std::cos(less))), 1);
  EXPECT_NEAR(frame.GetVector(2).x, std::sin(less), 1e-7);

  // Z kept, X re-orthogonalised: z = (0,0,1), x = (1,1,0) gives X = (s, s, 0), Y = (-s, s, 0).
  frame = start;
  EXPECT_EQ(frame.SetMatrixByZAndX(V(0, 0, 1), V(1, 1, 0)), 1);
  const double s = std::sqrt(0.5);
  EXPECT_TRUE(Near(frame.GetVector(0), V(s, s, 0), 1e-7));
  EXPECT_TRUE(Near(frame.GetVector(1), V(-s, s, 0), 1e-7));
  EXPECT_EQ(frame.GetVector(2), V(0, 0, 1));
  frame = start;
  EXPECT_EQ(frame.SetMatrixByZAndX(V(0, 0, 1), V(0, 0, -4)), 0);  // parallel
  EXPECT_EQ(frame.SetMatrixByZAndX(V(0, 0, 0), V(1, 0, 0)), 0);
  EXPECT_EQ(frame.SetMatrixByZAndX(V(0, 0, 1), V(std::numeric_limits<T>::quiet_NaN(), 0, 0)), 0);
  EXPECT_EQ(frame, start);
  // The other precision's vectors.
  EXPECT_EQ(frame.SetMatrixByZAndX(ZmVector3d(1, 0, 0), ZmVector3d(0, 1, 1)), 1);
  EXPECT_TRUE(Near(frame.GetVector(0), V(0, s, s), 1e-7));
}

TYPED_TEST(FrameTwins, NearestAxis) {
  using T = TypeParam;
  using V = ZmVector3T<T>;
  const ZmFrameT<T> frame;
  T sign = 7;
  // AngleDeg((0,0,-1), Z) = pi * 57.2957763671875 = 179.99999011687993: folded 9.9e-6.
  EXPECT_EQ(frame.GetDirectionAxis(V(0, 0, -1), T(10), sign), 2);
  EXPECT_EQ(sign, T(-1));
  sign = 7;
  EXPECT_EQ(frame.GetDirectionAxis(V(0, 0, -1), T(0), sign), -1234567890);
  EXPECT_EQ(sign, T(7));
  // 30 degrees from X, 60 from Y: X wins within 45, nothing within 29.
  EXPECT_EQ(frame.GetDirectionAxis(V(std::sqrt(3.0), 1, 0), T(45), sign), 0);
  EXPECT_EQ(sign, T(1));
  EXPECT_EQ(frame.GetDirectionAxis(V(std::sqrt(3.0), 1, 0), T(29), sign), ZmFrameT<T>::kNoAxis);
  // Exactly between X and Y: the tie keeps the lower index.
  EXPECT_EQ(frame.GetDirectionAxis(V(-1, -1, 0), T(50), sign), 0);
  EXPECT_EQ(sign, T(-1));
  // Unusable directions match no axis, whatever the angle allowed.
  sign = 7;
  EXPECT_EQ(frame.GetDirectionAxis(V(0, 0, 0), T(1000), sign), ZmFrameT<T>::kNoAxis);
  EXPECT_EQ(frame.GetDirectionAxis(V(std::numeric_limits<T>::quiet_NaN(), 0, 1), T(1000), sign), ZmFrameT<T>::kNoAxis);
  EXPECT_EQ(sign, T(7));
}

TYPED_TEST(FrameTwins, ValidityAndText) {
  using T = TypeParam;
  ZmFrameT<T> frame(ZmVector3T<T>(0, 1, 0), ZmVector3T<T>(-1, 0, 0), ZmVector3T<T>(0, 0, 1),
                    ZmPoint3T<T>(1.25, -2, 30.04), ZmFrameCartesian);
  EXPECT_EQ(frame.IsValid(), 1);
  EXPECT_STREQ(frame.DumpOneLine().GetString(),
               L"v1=0.000, 1.000, 0.000, v2=-1.000, 0.000, 0.000, v3=0.000, 0.000, 1.000, pt=1.2, -2.0, 30.0");
  frame.WriteDebug(L"ignored");
  // Orthonormality is not checked; the marker in an axis or the origin is.
  frame.SetMatrix(ZmVector3T<T>(5, 5, 5), ZmVector3T<T>(0, 0, 0), ZmVector3T<T>(0, 0, 1));
  EXPECT_EQ(frame.IsValid(), 1);
  frame.SetMatrix(ZmVector3T<T>(1, 0, 0), ZmVector3T<T>(0, T(kMarker), 0), ZmVector3T<T>(0, 0, 1));
  EXPECT_EQ(frame.IsValid(), 0);
  ZmFrameT<T> noOrigin;
  noOrigin.SetOrigin(ZmPoint3T<T>(WbCoord3DT<T>::INVALID));
  EXPECT_EQ(noOrigin.IsValid(), 0);
}

TEST(Frame, ConversionsAgainstAnIndependentCalculation) {
  // numpy: l = R^T (p - o) for p = (3, 1, -2); cylindrical (hypot, degrees(arctan2), z) and
  // spherical (norm, degrees(arctan2), degrees(arcsin(z / norm))).
  const ZmPoint3d p(3, 1, -2);
  EXPECT_TRUE(Near(RodriguesFrame(ZmFrameCartesian).GlobalToLocal(p),
                   ZmPoint3d(3.9669619740489406, 1.0613972129567804, -1.5448781999812509), 1e-14));
  EXPECT_TRUE(Near(RodriguesFrame(ZmFrameCylindrical).GlobalToLocal(p),
                   ZmPoint3d(4.106501107661203, 14.979150422807864, -1.5448781999812509), 1e-13));
  EXPECT_TRUE(Near(RodriguesFrame(ZmFrameSpherical).GlobalToLocal(p),
                   ZmPoint3d(4.387482193696061, 14.979150422807864, -20.61645230362957), 1e-13));
  // numpy: R (2 cos a cos b, 2 sin a cos b, 2 sin b) + o for (rho, theta, phi) = (2, 135, -30).
  EXPECT_TRUE(Near(RodriguesFrame(ZmFrameSpherical).LocalToGlobal(ZmPoint3d(2, 135, -30)),
                   ZmPoint3d(-0.9117207667017242, -1.4126679561168016, 0.48090077516345864), 1e-14));
  // A vector ignores the origin: R^T (0.5, -1, 2).
  EXPECT_TRUE(Near(RodriguesFrame(ZmFrameCartesian).GlobalToLocal(ZmVector3d(0.5, -1, 2)),
                   ZmVector3d(-0.8375653431244168, -0.4218065971784528, 2.0905892687406613), 1e-14));
  // The float twin of the same frame agrees within float precision.
  const ZmFramef narrowed = RodriguesFrame(ZmFrameSpherical);
  EXPECT_TRUE(Near(narrowed.GlobalToLocal(ZmPoint3f(3, 1, -2)),
                   ZmPoint3d(4.387482193696061, 14.979150422807864, -20.61645230362957), 1e-4));
}

TYPED_TEST(FrameTwins, CylindricalAndSphericalEdges) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  const ZmFrameT<T> cylinder(ZmPoint3T<T>(1, 2, 3), ZmVector3T<T>(0, 0, 1), ZmFrameCylindrical);
  // Relative (0, -1, 5): r = 1, theta = -acos(0) * 57.29577951308232 = -90 exactly.
  EXPECT_EQ(cylinder.GlobalToLocal(P(1, 1, 8)), P(1, -90, 5));
  // On the axis, and within 1e-6 of it, theta is 0.
  EXPECT_EQ(cylinder.GlobalToLocal(P(1, 2, -4)), P(0, 0, -7));
  EXPECT_EQ(cylinder.GlobalToLocal(P(1, T(2 + 5e-7), 3)).y, T(0));
  // The negative X side with y = +0 is +180 (theta negated only for y < 0).
  EXPECT_EQ(cylinder.GlobalToLocal(P(-1, 2, 3)).y, T(180));
  EXPECT_EQ(cylinder.LocalToGlobal(P(2, 90, 1)).z, T(4));
  EXPECT_TRUE(Near(cylinder.LocalToGlobal(P(2, 90, 1)), P(1, 4, 4), 1e-6));

  const ZmFrameT<T> sphere(ZmPoint3T<T>(0, 0, 0), ZmVector3T<T>(0, 0, 1), ZmFrameSpherical);
  // The polar axis has no azimuth: theta = 0 (cos phi is a rounding residue there).
  EXPECT_EQ(sphere.GlobalToLocal(P(0, 0, 5)), P(5, 0, 90));
  EXPECT_EQ(sphere.GlobalToLocal(P(0, 0, -5)), P(5, 0, -90));
  // Below 1e-6 both angles are 0.
  EXPECT_EQ(sphere.GlobalToLocal(P(T(5e-7), 0, T(5e-7))).y, T(0));
  EXPECT_EQ(sphere.GlobalToLocal(P(T(5e-7), 0, T(5e-7))).z, T(0));
  // Near the pole x / (rho cos phi) exceeds 1 by rounding: clamped, never NaN.
  const P nearPole = sphere.GlobalToLocal(P(T(1e-12), 0, 1));
  EXPECT_EQ(nearPole.y, T(0));
  EXPECT_NEAR(nearPole.z, 90, 1e-4);
  // (0, -3, 0): rho 3, theta -90, phi 0.
  EXPECT_TRUE(Near(sphere.GlobalToLocal(P(0, -3, 0)), P(3, -90, 0), 1e-5));
}

TYPED_TEST(FrameTwins, ProtectedTypeConversions) {
  using T = TypeParam;
  const ProbeFrame<T> cylinder(ZmPoint3T<T>(9, 9, 9), ZmVector3T<T>(0, 0, 1), ZmFrameCylindrical);
  ZmPoint3T<T> point;
  ZmVector3T<T> vector;
  EXPECT_EQ(cylinder.ConvertCartesianCoord(T(0), T(-2), T(4), point), 1);
  EXPECT_EQ(point, ZmPoint3T<T>(2, -90, 4));  // the origin plays no part
  EXPECT_EQ(cylinder.ConvertCartesianCoord(T(-3), T(0), T(1), vector), 1);
  EXPECT_EQ(vector, ZmVector3T<T>(3, 180, 1));
  T x = 7, y = 7, z = 7;
  EXPECT_EQ(cylinder.GetCartesianCoord(ZmPoint3T<T>(2, 180, 4), x, y, z), 1);
  EXPECT_NEAR(x, -2, 1e-6);
  EXPECT_NEAR(y, 0, 1e-6);
  EXPECT_EQ(z, T(4));
  // An unknown type writes nothing; the public conversions give the invalid point.
  const ProbeFrame<T> unknown(ZmPoint3T<T>(0, 0, 0), ZmVector3T<T>(0, 0, 1), static_cast<ZmFrameType>(5));
  EXPECT_EQ(unknown.ConvertCartesianCoord(T(1), T(2), T(3), point), 0);
  EXPECT_EQ(point, ZmPoint3T<T>(2, -90, 4));
  EXPECT_EQ(unknown.GetCartesianCoord(ZmVector3T<T>(1, 1, 1), x, y, z), 0);
  EXPECT_EQ(z, T(4));
  EXPECT_FALSE(unknown.GlobalToLocal(ZmPoint3T<T>(1, 2, 3)).IsValid());
  EXPECT_FALSE(unknown.LocalToGlobal(ZmVector3T<T>(1, 2, 3)).IsValid());
}

}  // namespace
