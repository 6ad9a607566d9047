// Typed frames: construction rules, accessors and their row/column asymmetry, the axes from
// two vectors, the nearest axis, the text form, and the coordinate-type conversions against
// values computed independently.
#include "frames/frame_test_support.h"

namespace {

using namespace frame_test;

FRAME_TWIN_SUITE(FrameTwins);

// The frame of the independent numpy calculation below: the rotation by 40 degrees about
// (1, 2, 2) / 3 (Rodrigues), origin (1, -2, 0.5).
//   R = I + sin t K + (1 - cos t) K^2, columns:
ZmFramed RodriguesFrame(ZmFrameType type) {
  return ZmFramed(ZmVector3d(0.7920395049946471, 0.4805151968756977, -0.3765349493730213),
                  ZmVector3d(-0.3765349493730213, 0.8700246906216544, 0.3182427840648562),
                  ZmVector3d(0.4805151968756977, -0.11028228905950332, 0.8700246906216544), ZmPoint3d(1, -2, 0.5),
                  type);
}

FRAME_TWIN_TEST(FrameTwins, ConstructionsGiveTheseAxes) {
  const double s = std::sqrt(0.5);
  const V x(1, 0, 0), y(0, 1, 0), z(0, 0, 1), zero(0, 0, 0), reference(1, 1, 0);
  // Three points: e = p1 - p0 = (2, 0, 0), b = p2 - p0 = (0, 3, 0):
  //   mode 0: Z = (1,0,0), Y = unit((1,0,0) x (0,3,0)) = (0,0,1), X = Y x Z = (0,1,0)
  //   mode 1: X = (1,0,0), Y = unit((0,3,0) x (1,0,0)) = (0,0,-1), Z = X x Y = (0,1,0)
  //   mode 2: X = (1,0,0), Z = unit((1,0,0) x (0,3,0)) = (0,0,1), Y = Z x X = (0,1,0)
  //   any other mode: the identity.
  // A general triangle, mode 2 (numpy): e = (1, 2, 2), b = (-1, 1, 4): X = e/3,
  // Z = unit(X x b) = (6, -6, 3)/9, Y = Z x X = (-6, -3, 6)/9. Collinear points: the normal
  // cannot be normalised and stays zero; no failure, no NaN.
  // Origin and direction: Z = (0, 0, 1) is completed by (u.z, 0, 0) = (1, 0, 0) and (0, 1, 0);
  // with reference (1, 1, 0): Y = (0,0,2) x (1,1,0) = (-2, 2, 0) -> (-s, s, 0), X = Y x Z. A
  // zero direction is replaced by Z.
  const P p0(1, 1, 1), p1(3, 1, 1), p2(1, 4, 1);
  const struct {
    F frame;
    V x, y, z;
    double tol;
  } rows[] = {
      {F(p0, p1, p2, 0, ZmFrameCylindrical), y, z, x, 0},
      {F(p0, p1, p2, 1, ZmFrameCartesian), x, -z, y, 0},
      {F(p0, p1, p2, 2, ZmFrameCartesian), x, y, z, 0},
      {F(p0, p1, p2, 3, ZmFrameSpherical), x, y, z, 0},
      {F(P(0, 0, 0), P(1, 2, 2), P(-1, 1, 4), 2, ZmFrameCartesian), V(1.0 / 3, 2.0 / 3, 2.0 / 3),
       V(-2.0 / 3, -1.0 / 3, 2.0 / 3), V(2.0 / 3, -2.0 / 3, 1.0 / 3), 1e-6},
      {F(P(0, 0, 0), P(1, 0, 0), P(2, 0, 0), 2, ZmFrameCartesian), x, zero, zero, 0},
      {F(P(1, 2, 3), V(0, 0, 2), ZmFrameCylindrical), x, y, z, 0},
      {F(P(0, 0, 0), V(0, 0, 2), ZmFrameCartesian, &reference), V(s, s, 0), V(-s, s, 0), z, 1e-7},
      {F(P(0, 0, 0), zero, ZmFrameCartesian), x, y, z, 0},
  };
  for (const auto& r : rows) EXPECT_TRUE(HasAxes(r.frame, r.x, r.y, r.z, r.tol)) << &r - rows;
  ExpectRows<P>(
      {{rows[0].frame.GetOrigin(), p0}, {rows[3].frame.GetOrigin(), p0}, {rows[6].frame.GetOrigin(), P(1, 2, 3)}});
  ExpectAll<ZmFrameType>({rows[0].frame.GetType(), rows[6].frame.GetType()}, ZmFrameCylindrical);
  // The other precision's points give the same frame.
  const F fromDouble(ZmPoint3d(0, 0, 0), ZmPoint3d(1, 2, 2), ZmPoint3d(-1, 1, 4), 2, ZmFrameCartesian);
  EXPECT_TRUE(Near(fromDouble.GetVector(2), ZmVector3d(2.0 / 3, -2.0 / 3, 1.0 / 3), 1e-7));
  // A general direction keeps right-handed unit axes.
  const F general(P(0, 0, 0), V(1, -2, 0.5), ZmFrameCartesian);
  EXPECT_NEAR(general.GetMatrix().Determinant(), 1.0, 1e-6);
  EXPECT_TRUE(Near(general.GetVector(2), V(1, -2, 0.5) / std::sqrt(5.25), 1e-7));
}

FRAME_TWIN_TEST(FrameTwins, AccessorsIdentityValidityAndText) {
  // A rotation whose matrix is not symmetric: 90 degrees about Z, X = (0, 1, 0).
  F frame(P(1, 2, 3), V(1, 1, 1), ZmFrameSpherical);
  frame.SetMatrix(V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1));
  ZmVector3d row(7, 7, 7);
  ZmVector3f column(7, 7, 7);
  // The double form reads the first row, the float one the X axis; bad indexes write nothing.
  ExpectRows<int>({{frame.GetVector(0, row), 1},
                   {frame.GetVector(0, column), 1},
                   {frame.GetVector(3, row), 0},
                   {frame.GetVector(-1, column), 0},
                   {frame.GetVector(3).IsValid(), 0}});
  EXPECT_EQ(row, ZmVector3d(0, -1, 0));
  EXPECT_EQ(column, ZmVector3f(0, 1, 0));
  V x, y, z;
  frame.GetVectors(x, y, z);
  ExpectRows<V>({{x, V(0, 1, 0)}, {y, V(-1, 0, 0)}, {z, V(0, 0, 1)}});
  // SetIdentity keeps the origin or resets it; never the type.
  F reset(frame);
  frame.SetIdentity(0);
  reset.SetIdentity(1);
  EXPECT_EQ(frame.GetMatrix(), M::IDENTITY);
  ExpectRows<P>({{frame.GetOrigin(), P(1, 2, 3)}, {reset.GetOrigin(), P(0, 0, 0)}});
  EXPECT_EQ(reset.GetType(), ZmFrameSpherical);
  // SetMatrix with the other precision's vectors.
  reset.SetMatrix(ZmVector3d(0, 1, 0), ZmVector3d(-1, 0, 0), ZmVector3d(0, 0, 1));
  EXPECT_TRUE(HasAxes(reset, V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1), 0));
  // Validity and the text form.
  F text(V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1), P(1.25, -2, 30.04), ZmFrameCartesian);
  EXPECT_EQ(text.IsValid(), 1);
  EXPECT_STREQ(text.DumpOneLine().GetString(),
               L"v1=0.000, 1.000, 0.000, v2=-1.000, 0.000, 0.000, v3=0.000, 0.000, 1.000, pt=1.2, -2.0, 30.0");
  text.WriteDebug(L"ignored");
  // Orthonormality is not checked; the marker in an axis or the origin is.
  F skewed(text), marked(text), noOrigin;
  skewed.SetMatrix(V(5, 5, 5), V(0, 0, 0), V(0, 0, 1));
  marked.SetMatrix(V(1, 0, 0), V(0, T(kMarker), 0), V(0, 0, 1));
  noOrigin.SetOrigin(invalid);
  ExpectRows<int>({{skewed.IsValid(), 1}, {marked.IsValid(), 0}, {noOrigin.IsValid(), 0}});
}

FRAME_TWIN_TEST(FrameTwins, AxesFromTwoVectors) {
  const F start(P(0, 0, 0), V(1, 2, 3), ZmFrameCartesian);
  const double s = std::sqrt(0.5), nan = std::numeric_limits<double>::quiet_NaN();
  // X and Z: x and z at 45 degrees (|z x x| = 0.7071) or 0.1 degree off orthogonal (|y| =
  // cos(0.1 deg) = 0.9999984769 < 0.999999) are refused; 0.05 degree (0.9999996192) is taken
  // with the inputs kept as given; orthogonal inputs of any length are normalised, y = z x x.
  // Z and X: X re-orthogonalised, z = (0,0,1), x = (1,1,0): X = (s, s, 0), Y = (-s, s, 0).
  const double off = 0.1 * M_PI / 180, sl = std::sin(0.05 * M_PI / 180), cl = std::cos(0.05 * M_PI / 180);
  const struct {
    bool zFirst;
    V a, b;                             // x, z for SetMatrixByXAndZ; z, x for SetMatrixByZAndX
    ZmVector3d x = {}, y = {}, z = {};  // the axes set, none when refused
  } rows[] = {
      {false, V(1, 0, 0), V(1, 1, 0)},
      {false, V(0, 0, 0), V(0, 0, 1)},
      {false, V(1, 0, 0), V(WbCoord3DT<T>::INVALID)},
      {false, V(1, 0, 0), V(std::sin(off), 0, std::cos(off))},
      {false, V(0, 3, 0), V(2, 0, 0), {0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
      {false, V(1, 0, 0), V(sl, 0, cl), {1, 0, 0}, {0, cl, 0}, {sl, 0, cl}},
      {true, V(0, 0, 1), V(1, 1, 0), {s, s, 0}, {-s, s, 0}, {0, 0, 1}},
      {true, V(0, 0, 1), V(0, 0, -4)},  // parallel
      {true, V(0, 0, 0), V(1, 0, 0)},
      {true, V(0, 0, 1), V(T(nan), 0, 0)},
  };
  for (const auto& r : rows) {
    F frame(start);
    const bool taken = r.zFirst ? frame.SetMatrixByZAndX(r.a, r.b) : frame.SetMatrixByXAndZ(r.a, r.b);
    EXPECT_EQ(taken, r.x != ZmVector3d()) << &r - rows;
    EXPECT_TRUE(taken ? HasAxes(frame, V(r.x), V(r.y), V(r.z), 1e-7) : ::testing::AssertionResult(frame == start))
        << &r - rows;
  }
  // The other precision's vectors.
  F frame(start);
  EXPECT_EQ(frame.SetMatrixByZAndX(ZmVector3d(1, 0, 0), ZmVector3d(0, 1, 1)), 1);
  EXPECT_TRUE(Near(frame.GetVector(0), V(0, s, s), 1e-7));
}

FRAME_TWIN_TEST(FrameTwins, NearestAxis) {
  const T unwritten = 7;
  // AngleDeg((0,0,-1), Z) = pi * 57.2957763671875 = 179.99999011687993: folded 9.9e-6, so Z
  // within 10 degrees but not within 0. (sqrt 3, 1, 0) is 30 degrees from X, 60 from Y: X
  // within 45, nothing within 29. Exactly between X and Y: the tie keeps the lower index.
  // Unusable directions match no axis, whatever the angle allowed.
  const struct {
    V direction;
    T maxAngle;
    int axis;
    T sign;
  } rows[] = {
      {V(0, 0, -1), 10, 2, -1},
      {V(0, 0, -1), 0, F::kNoAxis, unwritten},
      {V(std::sqrt(3.0), 1, 0), 45, 0, 1},
      {V(std::sqrt(3.0), 1, 0), 29, F::kNoAxis, unwritten},
      {V(-1, -1, 0), 50, 0, -1},
      {V(0, 0, 0), 1000, F::kNoAxis, unwritten},
      {V(nan, 0, 1), 1000, F::kNoAxis, unwritten},
  };
  for (const auto& r : rows) {
    T sign = unwritten;
    EXPECT_EQ(F().GetDirectionAxis(r.direction, r.maxAngle, sign), r.axis) << &r - rows;
    EXPECT_EQ(sign, r.sign) << &r - rows;
  }
  EXPECT_EQ(F::kNoAxis, -1234567890);
}

TEST(Frame, CopiesTwinsAndConversionsAgainstAnIndependentCalculation) {
  const ZmFramed frame;
  EXPECT_EQ(frame, ZmFramed(ZmVector3d(1, 0, 0), ZmVector3d(0, 1, 0), ZmVector3d(0, 0, 1), ZmPoint3d(0, 0, 0),
                            ZmFrameCartesian));
  const ZmFramed rotated = RodriguesFrame(ZmFrameSpherical);
  ZmFramed copy;
  copy = rotated;
  EXPECT_EQ(copy, rotated);
  EXPECT_NE(copy, frame);
  // The float twin rounds each field; converting back widens them exactly.
  const ZmFramef narrowed = rotated;
  EXPECT_EQ(narrowed.GetType(), ZmFrameSpherical);
  EXPECT_EQ(ZmFramed(narrowed).GetOrigin(), ZmPoint3d(1, -2, 0.5));
  ExpectRows<double>({{narrowed.GetMatrix()[0][0], double(0.7920395049946471f)},
                      {ZmFramed(narrowed).GetMatrix()[1][2], double(-0.11028228905950332f)}});
  // numpy: l = R^T (p - o) for p = (3, 1, -2); cylindrical (hypot, degrees(arctan2), z) and
  // spherical (norm, degrees(arctan2), degrees(arcsin(z / norm))).
  const ZmPoint3d p(3, 1, -2);
  const ZmFramed cart = RodriguesFrame(ZmFrameCartesian), cyl = RodriguesFrame(ZmFrameCylindrical);
  EXPECT_TRUE(
      Near(cart.GlobalToLocal(p), ZmPoint3d(3.9669619740489406, 1.0613972129567804, -1.5448781999812509), 1e-14));
  EXPECT_TRUE(Near(cyl.GlobalToLocal(p), ZmPoint3d(4.106501107661203, 14.979150422807864, -1.5448781999812509), 1e-13));
  EXPECT_TRUE(
      Near(rotated.GlobalToLocal(p), ZmPoint3d(4.387482193696061, 14.979150422807864, -20.61645230362957), 1e-13));
  // numpy: R (2 cos a cos b, 2 sin a cos b, 2 sin b) + o for (rho, theta, phi) = (2, 135, -30).
  EXPECT_TRUE(Near(rotated.LocalToGlobal(ZmPoint3d(2, 135, -30)),
                   ZmPoint3d(-0.9117207667017242, -1.4126679561168016, 0.48090077516345864), 1e-14));
  // A vector ignores the origin: R^T (0.5, -1, 2).
  EXPECT_TRUE(Near(cart.GlobalToLocal(ZmVector3d(0.5, -1, 2)),
                   ZmVector3d(-0.8375653431244168, -0.4218065971784528, 2.0905892687406613), 1e-14));
  // The float twin of the same frame agrees within float precision.
  EXPECT_TRUE(Near(narrowed.GlobalToLocal(ZmPoint3f(3, 1, -2)),
                   ZmPoint3d(4.387482193696061, 14.979150422807864, -20.61645230362957), 1e-4));
}

FRAME_TWIN_TEST(FrameTwins, CylindricalAndSphericalEdges) {
  const F cylinder(P(1, 2, 3), V(0, 0, 1), ZmFrameCylindrical);
  const F sphere(P(0, 0, 0), V(0, 0, 1), ZmFrameSpherical);
  const F axis(P(0, 0, 0), V(0, 0, 1), ZmFrameCylindrical);
  const T tiny = T(5e-7), small = T(1e-6f);
  // Cylinder, relative (0, -1, 5): r = 1, theta = -acos(0) * 57.29577951308232 = -90 exactly.
  // On the axis, and within 1e-6 of it, theta is 0. The negative X side with y = +0 is +180
  // (theta negated only for y < 0). Sphere: the polar axis has no azimuth (cos phi is a
  // rounding residue there); below 1e-6 both angles are 0; (0, -3, 0): rho 3, theta -90. A
  // radius of exactly 1e-6f (sqrt(y * y) = |y|) still has its direction.
  const struct {
    const F& frame;
    P global, local;
    double tol;
  } rows[] = {
      {cylinder, P(1, 1, 8), P(1, -90, 5), 0},      {cylinder, P(1, 2, -4), P(0, 0, -7), 0},
      {cylinder, P(-1, 2, 3), P(2, 180, 0), 0},     {sphere, P(0, 0, 5), P(5, 0, 90), 0},
      {sphere, P(0, 0, -5), P(5, 0, -90), 0},       {sphere, P(0, -3, 0), P(3, -90, 0), 1e-5},
      {axis, P(0, -small, 0), P(small, -90, 0), 0}, {sphere, P(0, -small, 0), P(small, -90, 0), 0},
  };
  for (const auto& r : rows) EXPECT_TRUE(Near(r.frame.GlobalToLocal(r.global), r.local, r.tol)) << &r - rows;
  EXPECT_TRUE(Near(cylinder.LocalToGlobal(P(2, 90, 1)), P(1, 4, 4), 1e-6));
  // Near the pole x / (rho cos phi) exceeds 1 by rounding: clamped, never NaN.
  const P nearPole = sphere.GlobalToLocal(P(T(1e-12), 0, 1));
  ExpectRows<T>({{cylinder.LocalToGlobal(P(2, 90, 1)).z, 4},
                 {cylinder.GlobalToLocal(P(1, 2 + tiny, 3)).y, 0},
                 {sphere.GlobalToLocal(P(tiny, 0, tiny)).y, 0},
                 {sphere.GlobalToLocal(P(tiny, 0, tiny)).z, 0},
                 {nearPole.y, 0}});
  EXPECT_NEAR(nearPole.z, 90, 1e-4);
  // And below -1 on the other side, in double: rho = 1, phi = asin(1), rho cos phi =
  // 6.123233995736766e-17, so x = -9.18e-17 gives the cosine -1.4992, clamped: theta 180.
  EXPECT_EQ(ZmFramed(sphere).GlobalToLocal(ZmPoint3d(-9.18e-17, 0, 1)).y, 180.0);
}

// Exposes the protected type conversions.
template <class T>
class ProbeFrame : public ZmFrameT<T> {
 public:
  using ZmFrameT<T>::ZmFrameT;
  using ZmFrameT<T>::ConvertCartesianCoord;
  using ZmFrameT<T>::GetCartesianCoord;
};

FRAME_TWIN_TEST(FrameTwins, ProtectedTypeConversions) {
  const ProbeFrame<T> cylinder(P(9, 9, 9), V(0, 0, 1), ZmFrameCylindrical);
  P point;
  V vector;
  T x = 7, y = 7, z = 7;
  // The origin plays no part. An unknown type writes nothing; the public conversions give the
  // invalid point.
  const ProbeFrame<T> unknown(P(0, 0, 0), V(0, 0, 1), static_cast<ZmFrameType>(5));
  ExpectRows<int>({{cylinder.ConvertCartesianCoord(T(0), T(-2), T(4), point), 1},
                   {cylinder.ConvertCartesianCoord(T(-3), T(0), T(1), vector), 1},
                   {cylinder.GetCartesianCoord(P(2, 180, 4), x, y, z), 1},
                   {unknown.ConvertCartesianCoord(T(1), T(2), T(3), point), 0},
                   {unknown.ConvertCartesianCoord(T(1), T(2), T(3), vector), 0},
                   {unknown.GetCartesianCoord(V(1, 1, 1), x, y, z), 0},
                   {unknown.GetCartesianCoord(P(1, 1, 1), x, y, z), 0},
                   {unknown.GlobalToLocal(P(1, 2, 3)).IsValid(), 0},
                   {unknown.LocalToGlobal(V(1, 2, 3)).IsValid(), 0}});
  EXPECT_TRUE(point == P(2, -90, 4) && vector == V(3, 180, 1));
  EXPECT_TRUE(Near(P(x, y, z), P(-2, 0, 4), 1e-6));
  EXPECT_EQ(z, T(4));
}

}  // namespace
