// Typed frames in motion: rotations, the relations to another frame, the round trips of every
// conversion on random frames in both twins, the twins against each other, and bad input.
#include "frames/frame_test_support.h"

namespace {

using namespace frame_test;

FRAME_TWIN_SUITE(FrameMotionTwins);

FRAME_TWIN_TEST(FrameMotionTwins, Rotations) {
  F frame;
  frame.SetOrigin(P(1, 0, 0));
  // A quarter turn about Z is exact: X -> Y, Y -> -X; the origin stays.
  EXPECT_EQ(frame.Rotate(V(0, 0, 3), T(90)), 1);
  EXPECT_TRUE(frame.GetMatrix() == M(0, -1, 0, 1, 0, 0, 0, 0, 1) && frame.GetOrigin() == P(1, 0, 0));
  // About the line through (0, 0, 5) along Z the origin turns too: (1,0,0) -> (0,1,0).
  EXPECT_EQ(frame.Rotate(P(0, 0, 5), V(0, 0, 1), T(90)), 1);
  EXPECT_TRUE(Near(frame.GetOrigin(), P(0, 1, 0), 1e-6));
  EXPECT_EQ(frame.GetMatrix(), M(-1, 0, 0, 0, -1, 0, 0, 0, 1));
  // Axes that cannot be normalised (RotationMatrix would turn about Z for the tiny one), a NaN
  // angle or an unusable centre change nothing, each on its own.
  const F before(frame);
  ExpectAll<int>({frame.Rotate(V(0, 0, 0), T(30)), frame.Rotate(V(T(5e-7), 0, 0), T(30)), frame.Rotate(V(1, 0, 0), nan),
                  frame.Rotate(invalid, V(1, 0, 0), T(30)), frame.Rotate(P(0, 0, 5), V(T(5e-7), 0, 0), T(30)),
                  frame.Rotate(P(0, 0, 5), V(1, 0, 0), nan)},
                 0);
  EXPECT_EQ(frame, before);
  // Own axes in the order X, then the new Y, then the new Z: (90, 90, 0) from the identity is
  // M = Rx(90) Ry(90), rows (0,0,1), (1,0,0), (0,1,0). The invalid marker counts as no angle;
  // a failing step leaves the frame as it was before the first.
  const struct {
    T x, y, z;
    unsigned char done;
    M matrix;
  } turns[] = {
      {90, 90, 0, 1, M(0, 0, 1, 1, 0, 0, 0, 1, 0)},
      {zm::Invalid<T>(), 0, 90, 1, M(0, -1, 0, 1, 0, 0, 0, 0, 1)},
      {30, inf, 0, 0, M::IDENTITY},
  };
  for (const auto& t : turns) {
    F turned;
    EXPECT_EQ(turned.RotateAroundAxes(t.x, t.y, t.z), t.done);
    EXPECT_EQ(turned.GetMatrix(), t.matrix);
  }
  // RotateAxis: the identity is symmetric, so X turns onto (0, 1, 0) about (1,0,0) x (0,1,0) = Z,
  // by the angle AngleDeg gives (89.99999505843996), so to within 8.6e-8 radians. Already
  // aligned: nothing to do. A bad index or a zero target change nothing.
  F aimed, aligned;
  EXPECT_EQ(aimed.RotateAxis(0, V(0, 2, 0)), 1);
  EXPECT_TRUE(frame_test::HasAxes(aimed, V(0, 1, 0), V(-1, 0, 0), V(0, 0, 1), 2e-7));
  const F aimedBefore(aimed);
  ExpectRows<int>({{aimed.RotateAxis(3, V(1, 0, 0)), 0},
                   {aimed.RotateAxis(1, V(0, 0, 0)), 0},
                   {aligned.RotateAxis(2, V(0, 0, 5)), 1}});
  EXPECT_EQ(aimed, aimedBefore);
  EXPECT_EQ(aligned.GetMatrix(), M::IDENTITY);
  // Rotate(other) places this frame in other's parent. Other: origin (10, 0, 0), a quarter
  // turn about Z. This frame, read in other: origin (1, 2, 3) -> (10 - 2, 1, 3); X axis
  // (1,0,0) -> (0,1,0). A frame with a NaN origin is refused.
  F other, placed(P(1, 2, 3), V(0, 0, 1), ZmFrameSpherical), broken;
  other.SetOrigin(P(10, 0, 0));
  other.Rotate(V(0, 0, 1), T(90));
  broken.SetOrigin(P(nan, 0, 0));
  ExpectRows<int>({{placed.Rotate(other), 1}, {placed.Rotate(broken), 0}});
  EXPECT_TRUE(placed.GetOrigin() == P(8, 1, 3) && placed.GetMatrix() == other.GetMatrix());
  EXPECT_EQ(placed.GetType(), ZmFrameSpherical);
}

TEST(FrameRelations, HandCheckedAngles) {
  // Other = this turned by 30 degrees about Z: every description says so. Intrinsic (10, 20,
  // 30) about the own axes: other's matrix is Rx(10) Ry(20) Rz(30). The same matrix about the
  // fixed axes, R = Rz(c) Ry(b) Rx(a), reads (numpy, the textbook formulas b = -asin(R20),
  // a = atan2(R21, R22), c = atan2(R10, R00)): a = 19.008263264952667, b = 11.822130763866337,
  // c = 33.75369500293538.
  const ZmFramed frame;
  ZmFramed about30, moved, flipped;
  about30.Rotate(ZmVector3d(0, 0, 1), 30.0);
  about30.SetOrigin(ZmPoint3d(1, 2, 3));
  moved.RotateAroundAxes(10, 20, 30);
  const struct {
    const ZmFramed& other;
    ZmVector3d ownAngles, fixedAngles, translation;
  } rows[] = {
      {about30, {0, 0, 30}, {0, 0, 30}, {1, 2, 3}},
      {moved, {10, 20, 30}, {19.008263264952667, 11.822130763866337, 33.75369500293538}, {0, 0, 0}},
  };
  for (const auto& r : rows) {
    double angles[3] = {0, 0, 0};
    ZmVector3d translation, rotation;
    ASSERT_EQ(frame.GetRotationAngles(r.other, angles), 1);
    ASSERT_EQ(frame.GetGlobalTransformation(r.other, translation, rotation), 1);
    EXPECT_TRUE(Near(ZmVector3d(angles[0], angles[1], angles[2]), r.ownAngles, 1e-12));
    EXPECT_TRUE(Near(rotation, r.fixedAngles, 1e-11));
    EXPECT_EQ(translation, r.translation);
  }
  // GetRotationTo: 30 degrees about Z; a half turn, 180 about +-X; no rotation: 0 about X.
  double angle = 0;
  ZmVector3d axis;
  flipped.Rotate(ZmVector3d(1, 0, 0), 180.0);
  ASSERT_EQ(frame.GetRotationTo(about30, angle, axis), 1);
  EXPECT_NEAR(angle, 30.0, 1e-12);
  EXPECT_TRUE(Near(axis, ZmVector3d(0, 0, 1), 1e-12));
  ASSERT_EQ(frame.GetRotationTo(flipped, angle, axis), 1);
  EXPECT_TRUE(Near(ZmVector3d(angle, std::fabs(axis.x), 0), ZmVector3d(180, 1, 0), 1e-12));
  ASSERT_EQ(frame.GetRotationTo(ZmFramed(), angle, axis), 1);
  EXPECT_TRUE(angle == 0.0 && axis == ZmVector3d(1, 0, 0)) << angle;
}

FRAME_TWIN_TEST(FrameMotionTwins, RelationsUndoneByTheMatchingMoves) {
  std::mt19937 rng(20240611);
  const double tol = sizeof(T) == sizeof(double) ? 1e-10 : 2e-5;
  for (int trial = 0; trial < 200; ++trial) {
    SCOPED_TRACE(trial);
    const F frame = RandomFrame<T>(rng, ZmFrameCartesian);
    const F other = RandomFrame<T>(rng, ZmFrameCylindrical);
    T angle = -1, angles[3];
    V axis, translation, rotation;
    F turned(frame), ownAxes(frame), fromIdentity, moved(frame), euler;
    // GetRotationTo then Rotate.
    ASSERT_EQ(frame.GetRotationTo(other, angle, axis), 1);
    EXPECT_TRUE(angle >= T(0) && angle <= T(180)) << angle;
    EXPECT_NEAR(axis.length(), 1.0, 1e-6);
    turned.Rotate(axis, angle);
    EXPECT_TRUE(NearMatrix(turned.GetMatrix(), other.GetMatrix(), tol));
    // GetRotationAngles then RotateAroundAxes, from this frame and from the identity (the
    // Euler frame's matrix).
    ASSERT_EQ(frame.GetRotationAngles(other, angles), 1);
    EXPECT_LE(std::fabs(angles[1]), T(90) + T(1e-3));
    ownAxes.RotateAroundAxes(angles[0], angles[1], angles[2]);
    fromIdentity.RotateAroundAxes(angles[0], angles[1], angles[2]);
    EXPECT_TRUE(NearMatrix(ownAxes.GetMatrix(), other.GetMatrix(), tol));
    // GetGlobalTransformation then the three global turns and the translation.
    ASSERT_EQ(frame.GetGlobalTransformation(other, translation, rotation), 1);
    moved.Rotate(V::UNIT_X, rotation.x);
    moved.Rotate(V::UNIT_Y, rotation.y);
    moved.Rotate(V::UNIT_Z, rotation.z);
    moved.SetOrigin(moved.GetOrigin() + translation);
    EXPECT_TRUE(NearMatrix(moved.GetMatrix(), other.GetMatrix(), tol));
    EXPECT_TRUE(Near(moved.GetOrigin(), other.GetOrigin(), tol * 100));
    // The Euler frame put back into this frame's parent is other; it is right-handed.
    ASSERT_EQ(frame.GetEulerFrame(other, euler), 1);
    EXPECT_EQ(euler.GetType(), ZmFrameCylindrical);
    EXPECT_NEAR(euler.GetMatrix().Determinant(), 1.0, tol * 10);
    EXPECT_TRUE(NearMatrix(fromIdentity.GetMatrix(), euler.GetMatrix(), tol));
    const F back = frame.LocalToGlobal(euler);
    EXPECT_TRUE(NearMatrix(back.GetMatrix(), other.GetMatrix(), tol));
    EXPECT_TRUE(Near(back.GetOrigin(), other.GetOrigin(), tol * 100));
  }
  // Gimbal lock (Y at 90 degrees) still reproduces the frame.
  F locked, again;
  locked.RotateAroundAxes(T(25), T(90), T(-40));
  T angles[3];
  ASSERT_EQ(F().GetRotationAngles(locked, angles), 1);
  EXPECT_NEAR(angles[1], 90, 1e-3);
  again.RotateAroundAxes(angles[0], angles[1], angles[2]);
  EXPECT_TRUE(NearMatrix(again.GetMatrix(), locked.GetMatrix(), 1e-6));
}

FRAME_TWIN_TEST(FrameMotionTwins, RoundTripsOnRandomFrames) {
  std::mt19937 rng(7);
  const double cartesian = kRoundTrip<T>;
  // The azimuth is read through acos, which cannot resolve angles closer to 0 or 180 degrees
  // than sqrt(2 eps) radians: the curvilinear round trips hold to about that, relative.
  const double curvilinear = sizeof(T) == sizeof(double) ? 1e-7 : 1e-3;
  for (int trial = 0; trial < 300; ++trial) {
    SCOPED_TRACE(trial);
    const ZmFrameType type = static_cast<ZmFrameType>(trial % 3);
    const double tol = type == ZmFrameCartesian ? cartesian : curvilinear;
    const F frame = RandomFrame<T>(rng, type);
    const P p = RandomPoint<T>(rng, 100);
    EXPECT_TRUE(Near(frame.LocalToGlobal(frame.GlobalToLocal(p)), p, tol * Scale(p, frame.GetOrigin())));
    const V v(RandomPoint<T>(rng, 10));
    EXPECT_TRUE(Near(frame.LocalToGlobal(frame.GlobalToLocal(v)), v, tol * 10));
    // Frames: the origin as a point, the axes as vectors, whatever this frame's type.
    const F other = RandomFrame<T>(rng, ZmFrameSpherical);
    const F local = frame.GlobalToLocal(other);
    EXPECT_NEAR(local.GetMatrix().Determinant(), 1.0, cartesian * 10);
    const F back = frame.LocalToGlobal(local);
    EXPECT_TRUE(Near(back.GetOrigin(), other.GetOrigin(), cartesian * Scale(other.GetOrigin(), frame.GetOrigin())));
    EXPECT_TRUE(NearMatrix(back.GetMatrix(), other.GetMatrix(), cartesian));
    EXPECT_EQ(back.GetType(), ZmFrameSpherical);
  }
  // Local to global to local, for local coordinates in the canonical ranges (theta kept away
  // from 0 and 180, where acos is well conditioned); angles of up to 180 and a global detour
  // of up to about 100 in size bound the error.
  const double canonical = sizeof(T) == sizeof(double) ? 1e-9 : 5e-3;
  std::uniform_real_distribution<double> radius(1, 20), theta(20, 160), phi(-80, 80), sign(-1, 1);
  for (int trial = 0; trial < 100; ++trial) {
    const ZmFrameType type = static_cast<ZmFrameType>(trial % 3);
    const F frame = RandomFrame<T>(rng, type);
    const double t = sign(rng) < 0 ? -theta(rng) : theta(rng);
    const P local = type == ZmFrameCartesian ? RandomPoint<T>(rng, 20)
                                             : P(radius(rng), t, type == ZmFrameSpherical ? phi(rng) : sign(rng) * 20);
    EXPECT_TRUE(Near(frame.GlobalToLocal(frame.LocalToGlobal(local)), local, canonical)) << "trial " << trial;
  }
}

FRAME_TWIN_TEST(FrameMotionTwins, TwoDimensionalConversionsAreTheFirstTwoComponents) {
  std::mt19937 rng(99);
  const F frame = RandomFrame<T>(rng, ZmFrameCylindrical);
  const P toLocal = frame.GlobalToLocal(P(3.5, -1.25, 0)), toGlobal = frame.LocalToGlobal(P(3.5, -1.25, 0));
  const V vectorToLocal = frame.GlobalToLocal(V(2, 30, 0)), vectorToGlobal = frame.LocalToGlobal(V(2, 30, 0));
  EXPECT_EQ(frame.GlobalToLocal(ZmPoint2T<T>(3.5, -1.25)), ZmPoint2T<T>(toLocal.x, toLocal.y));
  EXPECT_EQ(frame.LocalToGlobal(ZmPoint2T<T>(3.5, -1.25)), ZmPoint2T<T>(toGlobal.x, toGlobal.y));
  EXPECT_EQ(frame.GlobalToLocal(ZmVector2T<T>(2, 30)), ZmVector2T<T>(vectorToLocal.x, vectorToLocal.y));
  EXPECT_EQ(frame.LocalToGlobal(ZmVector2T<T>(2, 30)), ZmVector2T<T>(vectorToGlobal.x, vectorToGlobal.y));
}

FRAME_TWIN_TEST(FrameMotionTwins, ArrayConversions) {
  std::mt19937 rng(3);
  const F frame = RandomFrame<T>(rng, ZmFrameSpherical);
  WbArrayTempl<P> points;
  for (int i = 0; i < 5; ++i) points.Add(RandomPoint<T>(rng, 30));
  points.Add(invalid);
  // Each point as the single conversion gives it (the invalid one stays invalid), then back in
  // place through the array form, and through the raw form with in == out.
  P local[6];
  const P* in = points.GetData();
  P* out = local;
  frame.GlobalToLocal(6, in, out);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(local[i], frame.GlobalToLocal(points[i]));
  WbArrayTempl<P> restored;
  for (const P& p : local) restored.Add(p);
  frame.LocalToGlobal(restored);
  for (int i = 0; i < 5; ++i) EXPECT_TRUE(Near(restored[i], points[i], 1e-3 * Scale(points[i], frame.GetOrigin())));
  EXPECT_FALSE(restored[5].IsValid());
  const P* same = local;
  P* sameOut = local;
  frame.LocalToGlobal(6, same, sameOut);
  // Nothing for a null pointer or a count that is not positive.
  const P* none = nullptr;
  for (int count : {3, 0, -4}) frame.GlobalToLocal(count, count == 3 ? none : in, out);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(local[i], restored[i]);
  WbArrayTempl<P> empty;
  frame.LocalToGlobal(empty);
  EXPECT_EQ(empty.GetSize(), 0u);
}

TEST(FrameTwinsAgree, FloatFollowsDoubleWithinFloatPrecision) {
  std::mt19937 rng(11);
  for (int trial = 0; trial < 200; ++trial) {
    const ZmFramed frame = RandomFrame<double>(rng, ZmFrameCartesian);
    const ZmFramef narrowed = frame;
    const ZmPoint3d p(ZmPoint3f(RandomPoint<double>(rng, 100)));
    const double scale = Scale(p, frame.GetOrigin());
    EXPECT_TRUE(Near(narrowed.GlobalToLocal(ZmPoint3f(p)), frame.GlobalToLocal(p), 1e-6 * scale));
    EXPECT_TRUE(Near(narrowed.LocalToGlobal(ZmPoint3f(p)), frame.LocalToGlobal(p), 1e-6 * scale));
    // Arguments of the other twin are computed in the wider precision, then rounded.
    EXPECT_EQ(frame.GlobalToLocal(ZmPoint3f(p)), ZmPoint3f(frame.GlobalToLocal(p)));
    EXPECT_EQ(narrowed.GlobalToLocal(p), ZmFramed(narrowed).GlobalToLocal(p));
    ZmFramef other = RandomFrame<float>(rng, ZmFrameSpherical);
    EXPECT_EQ(frame.GlobalToLocal(other), ZmFramef(frame.GlobalToLocal(ZmFramed(other))));
  }
}

FRAME_TWIN_TEST(FrameMotionTwins, UnusableFramesAndInputs) {
  // Relations with a frame whose axis holds NaN fail and write nothing; conversions of unusable
  // values or by a frame without origin give invalid results.
  const F frame(P(1, 2, 3), V(0, 1, 1), ZmFrameCylindrical);
  F noAxis, noOrigin(frame), euler(P(7, 7, 7), V(1, 0, 0), ZmFrameSpherical);
  noAxis.SetMatrix(V(1, 0, 0), V(0, nan, 0), V(0, 0, 1));
  noOrigin.SetOrigin(invalid);
  T angle = 7, angles[3] = {7, 7, 7};
  V a(7, 7, 7), b(7, 7, 7);
  const F eulerBefore(euler), lost = frame.GlobalToLocal(noOrigin);
  ExpectAll<int>({frame.GetRotationTo(noAxis, angle, a), noAxis.GetRotationAngles(frame, angles),
                  frame.GetRotationAngles(frame, nullptr), frame.GetGlobalTransformation(noAxis, a, b),
                  noAxis.GetEulerFrame(frame, euler), frame.GlobalToLocal(invalid).IsValid(),
                  frame.GlobalToLocal(P(nan, 0, 0)).IsValid(), frame.LocalToGlobal(V(0, nan, 0)).IsValid(),
                  frame.GlobalToLocal(ZmPoint2T<T>(nan, 1)).IsValid(), noOrigin.GlobalToLocal(P(1, 1, 1)).IsValid(),
                  noOrigin.LocalToGlobal(ZmVector2T<T>(1, 1)).IsValid(), lost.IsValid(), lost.GetVector(0).IsValid(),
                  noOrigin.LocalToGlobal(frame).IsValid()},
                 0);
  ExpectAll<T>({angle, angles[0], a.x, a.y, a.z}, T(7));
  EXPECT_EQ(euler, eulerBefore);
}

}  // namespace
