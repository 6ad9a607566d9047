// Distances and projections between points, lines, segments and planes: the float rounding of
// lengths, the widened thresholds, the clamping and the failure values, in both twins.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened
constexpr double kSqrt2F = 1.4142135381698608;       // float(sqrt(2))

template <class T>
class DistanceTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(DistanceTwins, Scalars);

template <class T>
ZmPlaneT<T> GroundPlane() {  // z = 0 through (5, 5, 0)
  unsigned char ok = 0;
  return ZmPlaneT<T>(ZmPoint3T<T>(5, 5, 0), ZmVector3T<T>(0, 0, 1), ok);
}

TYPED_TEST(DistanceTwins, PointDistancesRoundTo3DFloatButKeep2DPrecision) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  // sqrt(3) = 1.7320508075688772 rounded to float is 1.7320507764816284, in both twins.
  EXPECT_EQ(M::Distance(P(0, 0, 0), P(1, 1, 1)), TypeParam(1.7320507764816284));
  // 2D keeps the class's precision: sqrt(2) = 1.4142135623730951 in double.
  const TypeParam planar = M::Distance(ZmPoint2T<TypeParam>(0, 0), ZmPoint2T<TypeParam>(1, 1));
  EXPECT_EQ(planar, TypeParam(1.4142135623730951));
  if (std::is_same<TypeParam, double>::value) {
    EXPECT_NE(planar, kSqrt2F);
  }
}

TEST(Distances, LineDistanceRoundsAndUsesTheWidenedDegenerateThreshold) {
  // Foot (1, 0, 0) of (1, 0.1, 0) on the x axis: 0.1 rounded to float.
  EXPECT_EQ(ZmMathd::DistToLine(ZmPoint3d(1, 0.1, 0), ZmVector3d(1, 0, 0), ZmPoint3d()), 0.10000000149011612);
  EXPECT_EQ(ZmMathd::DistToLine(ZmPoint3d(0, 5, 0), ZmVector3d(2, 0, 0), ZmPoint3d()), 5.0);
  // d = 9.99999995e-8: d.d = 9.9999999e-15 is above 1e-14f = 9.9999998245167e-15, so the line
  // stands (distance 1); the decimal 1e-14 would have made it the point (distance sqrt 2).
  EXPECT_EQ(ZmMathd::DistToLine(ZmPoint3d(1, 1, 0), ZmVector3d(9.99999995e-8, 0, 0), ZmPoint3d()), 1.0);
  // In float (1e-7f)^2 is exactly 1e-14f: degenerate (inclusive), the distance to the point.
  EXPECT_EQ(ZmMathf::DistToLine(ZmPoint3f(1, 1, 0), ZmVector3f(1e-7f, 0, 0), ZmPoint3f()), float(kSqrt2F));
  EXPECT_EQ(ZmMathd::DistToLine(ZmPoint3d(3, 4, 0), ZmVector3d(0, 0, 0), ZmPoint3d()), 5.0);
}

TEST(Distances, PlaneDistanceIsRoundedSoADoubleToleranceOf0p1Fails) {
  const ZmPlaned ground = GroundPlane<double>();
  const ZmPoint3d p(1, 2, 0.1);
  EXPECT_EQ(ZmMathd::DistToPlane(p, ground), 0.10000000149011612);
  EXPECT_EQ(ZmMathd::DistToPlane(ZmPoint3d(1, 2, -3), ground), 3.0);  // never negative
  EXPECT_EQ(ZmMathd::PointIsInPlane(p, ground, 0.1), 0);  // 0.1 < float(0.1)
  EXPECT_EQ(ZmMathd::PointIsInPlane(p, ground, 0.10000000149011612), 1);  // inclusive
  EXPECT_EQ(ZmMathf::PointIsInPlane(ZmPoint3f(1, 2, 0.1f), GroundPlane<float>(), 0.1f), 1);
}

TYPED_TEST(DistanceTwins, PointsInPlaneTakesWholePointsInOrder) {
  using M = ZmMathT<TypeParam>;
  const ZmPlaneT<TypeParam> ground = GroundPlane<TypeParam>();
  // Three whole points and a trailing 7 that is no point.
  const WbArrayTempl<TypeParam> coords{0, 0, 0, 1, 1, 0.5, 2, 2, 0, 7};
  EXPECT_EQ(M::PointsInPlane(coords, ground, TypeParam(0.5)), 1);
  EXPECT_EQ(M::PointsInPlane(coords, ground, TypeParam(0.4)), 0);
  EXPECT_EQ(M::PointsInPlane(WbArrayTempl<TypeParam>{1, 2}, ground, TypeParam(100)), 0);
  EXPECT_EQ(M::PointsInPlane(WbArrayTempl<TypeParam>{0, 0, 0, -1.0e32f, 0, 0}, ground, TypeParam(100)), 0);
}

TYPED_TEST(DistanceTwins, SignedDistanceFollowsTheNormalOfTheThreePoints) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  const P a(0, 0, 0), b(1, 0, 0), c(0, 1, 0);  // normal (b - a) x (c - a) = +z
  V normal(9, 9, 9);
  EXPECT_EQ(M::SignedDistToPlane(P(3, 3, 2), a, b, c, &normal), TypeParam(2));
  EXPECT_EQ(normal, V(0, 0, 1));
  EXPECT_EQ(M::SignedDistToPlane(P(3, 3, -2), a, b, c), TypeParam(-2));
  EXPECT_EQ(M::SignedDistToPlane(P(3, 3, -2), a, c, b), TypeParam(2));  // swapped: normal -z
  // Collinear points build no plane: the marker, normalOut untouched.
  normal = V(9, 9, 9);
  EXPECT_EQ(M::SignedDistToPlane(P(3, 3, 2), a, b, P(2, 0, 0), &normal), TypeParam(kMarker));
  EXPECT_EQ(normal, V(9, 9, 9));
}

TYPED_TEST(DistanceTwins, SegmentProjectionClampsAndRefusesDegenerateSegments) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  const P a(0, 0, 0), b(4, 0, 0);
  P foot;
  TypeParam param = 7;
  EXPECT_EQ(M::ProjOnSegment(P(1, 1, 0), a, b, foot, &param), 1);
  EXPECT_EQ(foot, P(1, 0, 0));
  EXPECT_EQ(param, TypeParam(0.25));
  EXPECT_EQ(M::ProjOnSegment(P(-1, 1, 0), a, b, foot, &param), 1);
  EXPECT_EQ(foot, a);
  EXPECT_EQ(param, TypeParam(0));
  EXPECT_EQ(M::ProjOnSegment(P(9, -1, 0), a, b, foot, &param), 1);
  EXPECT_EQ(foot, b);
  EXPECT_EQ(param, TypeParam(1));
  // a = b: 0, and neither the foot nor the parameter is written.
  foot = P(5, 5, 5);
  param = 7;
  EXPECT_EQ(M::ProjOnSegment(P(1, 1, 0), a, a, foot, &param), 0);
  EXPECT_EQ(foot, P(5, 5, 5));
  EXPECT_EQ(param, TypeParam(7));

  V toFoot;
  EXPECT_EQ(M::DistToSegment(P(2, 3, 0), a, b, toFoot), TypeParam(3));
  EXPECT_EQ(toFoot, V(0, -3, 0));
  EXPECT_EQ(M::DistToSegment(P(-3, 4, 0), a, b, toFoot), TypeParam(5));  // clamped to a
  EXPECT_EQ(toFoot, V(3, -4, 0));
  // A degenerate segment is its point a: |a - p|.
  EXPECT_EQ(M::DistToSegment(P(1, 1, 2), P(1, 1, 1), P(1, 1, 1), toFoot), TypeParam(1));
  EXPECT_EQ(toFoot, V(0, 0, -1));
}

TYPED_TEST(DistanceTwins, LineProjectionParameterCountsMultiplesOfTheDirection) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  P foot;
  TypeParam t = 7;
  // Through (1, 0, 0) with direction (2, 0, 0): (3, 2, 0) projects to (3, 0, 0) = q + 1 d.
  EXPECT_EQ(M::ProjectOnLine(P(3, 2, 0), V(2, 0, 0), P(1, 0, 0), foot, &t), 1);
  EXPECT_EQ(foot, P(3, 0, 0));
  EXPECT_EQ(t, TypeParam(1));
  EXPECT_EQ(M::ProjectOnLine(P(3, 2, 0), V(0, 0, 0), P(1, 0, 0), foot, &t), 0);
  EXPECT_EQ(foot, ZmPoint3T<TypeParam>(WbCoord3DT<TypeParam>::INVALID));
  EXPECT_EQ(t, TypeParam(1));  // untouched
}

TYPED_TEST(DistanceTwins, SegmentToSegmentDistance) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  // Parallel and overlapping: their separation.
  EXPECT_EQ(M::DistBetweenSegments(P(0, 0, 0), P(4, 0, 0), P(1, 3, 0), P(6, 3, 0)), TypeParam(3));
  // Crossing diagonals of a square.
  EXPECT_EQ(M::DistBetweenSegments(P(0, 0, 0), P(2, 2, 0), P(0, 2, 0), P(2, 0, 0)), TypeParam(0));
  // s clamped to the end of the first segment: (1, 0, 0) to (2, 0, 0).
  EXPECT_EQ(M::DistBetweenSegments(P(0, 0, 0), P(1, 0, 0), P(2, -1, 0), P(2, 1, 0)), TypeParam(1));
  // t clamped to the start of the second: (1, 0, 0) to (1, 1, 0).
  EXPECT_EQ(M::DistBetweenSegments(P(0, 0, 0), P(2, 0, 0), P(1, 1, 0), P(1, 5, 0)), TypeParam(1));
  // Skew: from (0, 0, 0) to (0, 1, 1), sqrt(2) rounded to float.
  EXPECT_EQ(M::DistBetweenSegments(P(0, 0, 0), P(1, 0, 0), P(0, 1, 1), P(0, 1, 2)), TypeParam(kSqrt2F));
  // Degenerate segments: both (the points' distance), the first, and the second; the last
  // would be measured from p0 (sqrt 26) without the swap.
  EXPECT_EQ(M::DistBetweenSegments(P(0, 0, 0), P(0, 0, 0), P(3, 4, 0), P(3, 4, 0)), TypeParam(5));
  EXPECT_EQ(M::DistBetweenSegments(P(5, 1, 0), P(5, 1, 0), P(0, 0, 0), P(10, 0, 0)), TypeParam(1));
  EXPECT_EQ(M::DistBetweenSegments(P(0, 0, 0), P(10, 0, 0), P(5, 1, 0), P(5, 1, 0)), TypeParam(1));
}

TYPED_TEST(DistanceTwins, LineToLineDistanceUsesBoundedSegments) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  EXPECT_EQ(M::DistLineToLine(V(1, 0, 0), P(0, 0, 0), V(3, 0, 0), P(0, 5, 0)), TypeParam(5));  // parallel
  EXPECT_EQ(M::DistLineToLine(V(1, 0, 0), P(0, 0, 0), V(0, 1, 0), P(0, 0, 3)), TypeParam(3));  // skew
  EXPECT_EQ(M::DistLineToLine(V(0, 0, 0), P(0, 0, 0), V(0, 1, 0), P(0, 0, 3)), TypeParam(0));
  // The lines meet at (-10, 0, 0), but each is only the segment of half-length
  // h = max(1, |pt1 - pt2|) = 1 about its point: the gap is the end (-u.x, 1 - u.y, 0) of the
  // second, u = (1, 0.1, 0)/sqrt(1.01), above the first: 1 - 0.1/sqrt(1.01) = 0.900496281.
  EXPECT_NEAR(M::DistLineToLine(V(1, 0, 0), P(0, 0, 0), V(1, 0.1, 0), P(0, 1, 0)), 0.900496281, 1e-6);
}

TYPED_TEST(DistanceTwins, PlaneProjections) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  EXPECT_EQ(M::ProjOnPlane(P(1, 2, 3), V(0, 0, 1), P(0, 0, 1)), P(1, 2, 1));
  EXPECT_EQ(M::ProjOnPlane(P(1, 2, 3), GroundPlane<TypeParam>()), P(1, 2, 0));
  // The normal is used as passed: a normal of length 2 scales the offset by 4.
  EXPECT_EQ(M::ProjOnPlane(P(1, 2, 3), V(0, 0, 2), P(0, 0, 0)), P(1, 2, -9));
  EXPECT_EQ(M::ProjVectOnPlane(V(1, 2, 3), V(0, 0, 1)), V(1, 2, 0));
  EXPECT_EQ(M::ProjVectOnPlane(V(1, 2, 3), GroundPlane<TypeParam>()), V(1, 2, 0));
  // A p holding the marker comes back as it is, even partly invalid.
  const P partly(1, TypeParam(kMarker), 3);
  EXPECT_EQ(M::ProjOnPlane(partly, V(0, 0, 1), P(0, 0, 0)), partly);
}

TYPED_TEST(DistanceTwins, UnusableInputGivesTheFailureValue) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  const TypeParam nan = std::numeric_limits<TypeParam>::quiet_NaN();
  const TypeParam marker = TypeParam(kMarker);
  const P invalid(WbCoord3DT<TypeParam>::INVALID), withNaN(1, nan, 0), o(0, 0, 0), x(1, 0, 0);
  const ZmPlaneT<TypeParam> ground = GroundPlane<TypeParam>();
  for (const P& bad : {invalid, withNaN, P(marker, 0, 0)}) {
    EXPECT_EQ(M::Distance(bad, o), marker);
    EXPECT_EQ(M::DistToLine(bad, V(1, 0, 0), o), marker);
    EXPECT_EQ(M::DistToLine(o, V(bad), x), marker);
    EXPECT_EQ(M::DistToPlane(bad, ground), marker);
    EXPECT_EQ(M::PointIsInPlane(bad, ground, TypeParam(1e30)), 0);
    EXPECT_EQ(M::SignedDistToPlane(o, bad, x, P(0, 1, 0)), marker);
    V toFoot;
    EXPECT_EQ(M::DistToSegment(o, x, bad, toFoot), marker);
    EXPECT_EQ(toFoot.IsValid(), 0);
    EXPECT_EQ(M::DistBetweenSegments(o, x, bad, x), marker);
    EXPECT_EQ(M::DistLineToLine(V(1, 0, 0), bad, V(0, 1, 0), o), TypeParam(0));
    EXPECT_EQ(M::DistLineToLine(V(bad), o, V(0, 1, 0), x), TypeParam(0));
    P foot(7, 7, 7);
    EXPECT_EQ(M::ProjOnSegment(bad, o, x, foot), 0);
    EXPECT_EQ(foot, P(7, 7, 7));
    EXPECT_EQ(M::ProjectOnLine(o, V(1, 0, 0), bad, foot), 0);
    EXPECT_EQ(foot.IsValid(), 0);
    EXPECT_EQ(M::ProjVectOnPlane(V(bad), V(0, 0, 1)).IsValid(), 0);
  }
  EXPECT_EQ(M::Distance(ZmPoint2T<TypeParam>(nan, 0), ZmPoint2T<TypeParam>(0, 0)), marker);
  EXPECT_EQ(M::ProjOnPlane(withNaN, V(0, 0, 1), o), ZmPoint3T<TypeParam>(WbCoord3DT<TypeParam>::INVALID));
}

}  // namespace
