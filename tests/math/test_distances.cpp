// Distances and projections: float-rounded lengths, widened thresholds, clamping, failure values.
#include "math_test_support.h"

using namespace math_test;

namespace {

constexpr double kSqrt2F = 1.4142135381698608;  // float(sqrt(2))

MATH_TWIN_SUITE(DistanceTwins);

template <class T>
ZmPlaneT<T> GroundPlane() {  // z = 0 through (5, 5, 0)
  unsigned char ok = 0;
  return ZmPlaneT<T>(ZmPoint3T<T>(5, 5, 0), ZmVector3T<T>(0, 0, 1), ok);
}

TEST(Distances, LengthsRoundTo3DFloatAndThresholdsAreWidenedFloats) {
  using P = ZmPoint3d;
  const ZmPlaned ground = GroundPlane<double>();
  ExpectRows<double>({
      // sqrt(3) = 1.7320508075688772 rounded to float, in both twins.
      {ZmMathd::Distance(P(0, 0, 0), P(1, 1, 1)), 1.7320507764816284},
      {ZmMathf::Distance(ZmPoint3f(0, 0, 0), ZmPoint3f(1, 1, 1)), 1.7320507764816284},
      // 2D keeps the class's precision: sqrt(2) = 1.4142135623730951 in double (not kSqrt2F).
      {ZmMathd::Distance(ZmPoint2d(0, 0), ZmPoint2d(1, 1)), 1.4142135623730951},
      {ZmMathf::Distance(ZmPoint2f(0, 0), ZmPoint2f(1, 1)), double(1.4142135623730951f)},
      // Foot (1, 0, 0) of (1, 0.1, 0) on the x axis: 0.1 rounded to float.
      {ZmMathd::DistToLine(P(1, 0.1, 0), ZmVector3d(1, 0, 0), P()), 0.10000000149011612},
      {ZmMathd::DistToLine(P(0, 5, 0), ZmVector3d(2, 0, 0), P()), 5.0},
      // d.d = 9.9999999e-15 is above 1e-14f = 9.9999998245167e-15: a line (the decimal 1e-14 would not be).
      {ZmMathd::DistToLine(P(1, 1, 0), ZmVector3d(9.99999995e-8, 0, 0), P()), 1.0},
      // In float (1e-7f)^2 is exactly 1e-14f: degenerate (inclusive), the distance to the point.
      {ZmMathf::DistToLine(ZmPoint3f(1, 1, 0), ZmVector3f(1e-7f, 0, 0), ZmPoint3f()), double(float(kSqrt2F))},
      {ZmMathd::DistToLine(P(3, 4, 0), ZmVector3d(0, 0, 0), P()), 5.0},
      // The plane distance is rounded too, and never negative.
      {ZmMathd::DistToPlane(P(1, 2, 0.1), ground), 0.10000000149011612},
      {ZmMathd::DistToPlane(P(1, 2, -3), ground), 3.0},
  });
  // So a double tolerance of 0.1 fails (0.1 < float(0.1)); the test is inclusive.
  ExpectRows<int>({{ZmMathd::PointIsInPlane(P(1, 2, 0.1), ground, 0.1), 0},
                   {ZmMathd::PointIsInPlane(P(1, 2, 0.1), ground, 0.10000000149011612), 1},
                   {ZmMathf::PointIsInPlane(ZmPoint3f(1, 2, 0.1f), GroundPlane<float>(), 0.1f), 1}});
}

TYPED_TEST(DistanceTwins, PlanesPointsInPlaneAndSignedDistance) {
  MATH_TWIN_TYPES;
  const ZmPlaneT<T> ground = GroundPlane<T>();
  // Three whole points and a trailing 7 that is no point.
  const WbArrayTempl<T> coords{0, 0, 0, 1, 1, 0.5, 2, 2, 0, 7};
  ExpectRows<int>({{M::PointsInPlane(coords, ground, T(0.5)), 1},
                   {M::PointsInPlane(coords, ground, T(0.4)), 0},
                   {M::PointsInPlane(WbArrayTempl<T>{1, 2}, ground, T(100)), 0},
                   {M::PointsInPlane(WbArrayTempl<T>{0, 0, 0, -1.0e32f, 0, 0}, ground, T(100)), 0}});

  const P a(0, 0, 0), b(1, 0, 0), c(0, 1, 0);  // normal (b - a) x (c - a) = +z
  V normal(9, 9, 9), unwritten(9, 9, 9);
  // Below the plane by less than 1; swapped corners: -z; collinear: the marker, normal unwritten.
  ExpectRows<T>({{M::SignedDistToPlane(P(3, 3, 2), a, b, c, &normal), T(2)},
                 {M::SignedDistToPlane(P(3, 3, -2), a, b, c), T(-2)},
                 {M::SignedDistToPlane(P(3, 3, -0.5), a, b, c), T(-0.5)},
                 {M::SignedDistToPlane(P(3, 3, -2), a, c, b), T(2)},
                 {M::SignedDistToPlane(P(3, 3, 2), a, b, P(2, 0, 0), &unwritten), T(kMarker)}});
  ExpectRows<V>({{normal, V(0, 0, 1)}, {unwritten, V(9, 9, 9)}});

  // The normal is used as passed (length 2: the offset times 4); a partly invalid p comes back as it is.
  const P partly(1, T(kMarker), 3);
  ExpectRows<P>({{M::ProjOnPlane(P(1, 2, 3), V(0, 0, 1), P(0, 0, 1)), P(1, 2, 1)},
                 {M::ProjOnPlane(P(1, 2, 3), ground), P(1, 2, 0)},
                 {M::ProjOnPlane(P(1, 2, 3), V(0, 0, 2), P(0, 0, 0)), P(1, 2, -9)},
                 {M::ProjOnPlane(partly, V(0, 0, 1), P(0, 0, 0)), partly}});
  ExpectAll<V>({M::ProjVectOnPlane(V(1, 2, 3), V(0, 0, 1)), M::ProjVectOnPlane(V(1, 2, 3), ground)}, V(1, 2, 0));
}

TYPED_TEST(DistanceTwins, SegmentsAndLinesClampAndRefuseDegenerateInput) {
  MATH_TWIN_TYPES;
  const P a(0, 0, 0), b(4, 0, 0);
  const auto onSegment = [](const P& p, const P& start, const P& end, int ok, const P& expectedFoot, T expectedParam) {
    P foot(5, 5, 5);
    T param = 7;
    EXPECT_EQ(M::ProjOnSegment(p, start, end, foot, &param), ok);
    EXPECT_TRUE(foot == expectedFoot && param == expectedParam) << param;
  };
  // Clamped; a = b gives 0, nothing written; the far end is the foot itself, not a + (b - a).
  onSegment(P(1, 1, 0), a, b, 1, P(1, 0, 0), T(0.25));
  onSegment(P(-1, 1, 0), a, b, 1, a, T(0));
  onSegment(P(9, -1, 0), a, b, 1, b, T(1));
  onSegment(P(1, 1, 0), a, a, 0, P(5, 5, 5), T(7));
  onSegment(P(T(1e-9), 0, 0), P(3, 0, 0), P(T(1e-9), 0, 0), 1, P(T(1e-9), 0, 0), T(1));
  const auto toSegment = [](const P& p, const P& s0, const P& s1, T distance, const V& expectedToFoot) {
    V toFoot;
    EXPECT_EQ(M::DistToSegment(p, s0, s1, toFoot), distance);
    EXPECT_EQ(toFoot, expectedToFoot);
  };
  // Distance to a segment, clamped to a; a degenerate segment is its point a: |a - p|.
  toSegment(P(2, 3, 0), a, b, 3, V(0, -3, 0));
  toSegment(P(-3, 4, 0), a, b, 5, V(3, -4, 0));
  toSegment(P(1, 1, 2), P(1, 1, 1), P(1, 1, 1), 1, V(0, 0, -1));
  // t counts directions: (3, 0, 0) = q + 1 d. A null direction: 0, invalid foot, t untouched.
  P foot;
  T t = 7;
  EXPECT_EQ(M::ProjectOnLine(P(3, 2, 0), V(2, 0, 0), P(1, 0, 0), foot, &t), 1);
  EXPECT_EQ(foot, P(3, 0, 0));
  EXPECT_EQ(M::ProjectOnLine(P(3, 2, 0), V(0, 0, 0), P(1, 0, 0), foot, &t), 0);
  EXPECT_TRUE(foot == InvalidPoint<T>() && t == T(1)) << t;
  ExpectRows<T>({
      // Parallel and overlapping: their separation; crossing diagonals of a square.
      {M::DistBetweenSegments(P(0, 0, 0), P(4, 0, 0), P(1, 3, 0), P(6, 3, 0)), T(3)},
      {M::DistBetweenSegments(P(0, 0, 0), P(2, 2, 0), P(0, 2, 0), P(2, 0, 0)), T(0)},
      // s clamped to the end of the first segment, t clamped to the start of the second.
      {M::DistBetweenSegments(P(0, 0, 0), P(1, 0, 0), P(2, -1, 0), P(2, 1, 0)), T(1)},
      {M::DistBetweenSegments(P(0, 0, 0), P(2, 0, 0), P(1, 1, 0), P(1, 5, 0)), T(1)},
      // Skew: from (0, 0, 0) to (0, 1, 1), sqrt(2) rounded to float.
      {M::DistBetweenSegments(P(0, 0, 0), P(1, 0, 0), P(0, 1, 1), P(0, 1, 2)), T(kSqrt2F)},
      // Degenerate: both, the first, the second (measured from p0, sqrt 26, without the swap).
      {M::DistBetweenSegments(P(0, 0, 0), P(0, 0, 0), P(3, 4, 0), P(3, 4, 0)), T(5)},
      {M::DistBetweenSegments(P(5, 1, 0), P(5, 1, 0), P(0, 0, 0), P(10, 0, 0)), T(1)},
      {M::DistBetweenSegments(P(0, 0, 0), P(10, 0, 0), P(5, 1, 0), P(5, 1, 0)), T(1)},
      // Lines: parallel, skew, a null direction.
      {M::DistLineToLine(V(1, 0, 0), P(0, 0, 0), V(3, 0, 0), P(0, 5, 0)), T(5)},
      {M::DistLineToLine(V(1, 0, 0), P(0, 0, 0), V(0, 1, 0), P(0, 0, 3)), T(3)},
      {M::DistLineToLine(V(0, 0, 0), P(0, 0, 0), V(0, 1, 0), P(0, 0, 3)), T(0)},
  });
  // Meeting at (-10, 0, 0), each is a segment of half-length max(1, |pt1 - pt2|) = 1: the gap is the
  // end (-u.x, 1 - u.y, 0), u = (1, 0.1, 0)/sqrt(1.01): 1 - 0.1/sqrt(1.01).
  EXPECT_NEAR(M::DistLineToLine(V(1, 0, 0), P(0, 0, 0), V(1, 0.1, 0), P(0, 1, 0)), 0.900496281, 1e-6);
}

TYPED_TEST(DistanceTwins, UnusableInputGivesTheFailureValue) {
  MATH_TWIN_TYPES;
  const T marker = T(kMarker);
  const P withNaN(1, kNan<T>, 0), o(0, 0, 0), x(1, 0, 0);
  const ZmPlaneT<T> ground = GroundPlane<T>();
  for (const P& bad : {InvalidPoint<T>(), withNaN, P(marker, 0, 0), P(0, marker, 0)}) {
    V toFoot;
    ExpectAll<T>({M::Distance(bad, o), M::DistToLine(bad, V(1, 0, 0), o), M::DistToLine(o, V(bad), x),
                  M::DistToPlane(bad, ground), M::SignedDistToPlane(o, bad, x, P(0, 1, 0)),
                  M::DistToSegment(o, x, bad, toFoot), M::DistBetweenSegments(o, x, bad, x)},
                 marker);
    P foot(7, 7, 7), lineFoot;
    ExpectAll<double>(
        {double(toFoot.IsValid()), double(M::PointIsInPlane(bad, ground, T(1e30))),
         double(M::DistLineToLine(V(1, 0, 0), bad, V(0, 1, 0), o)), double(M::DistLineToLine(V(bad), o, V(0, 1, 0), x)),
         double(M::ProjOnSegment(bad, o, x, foot)), double(M::ProjectOnLine(o, V(1, 0, 0), bad, lineFoot)),
         double(lineFoot.IsValid()), double(M::ProjVectOnPlane(V(bad), V(0, 0, 1)).IsValid())},
        0.0);
    EXPECT_EQ(foot, P(7, 7, 7));
  }
  EXPECT_EQ(M::Distance(ZmPoint2T<T>(kNan<T>, 0), ZmPoint2T<T>(0, 0)), marker);
  EXPECT_EQ(M::ProjOnPlane(withNaN, V(0, 0, 1), o), InvalidPoint<T>());
}

}  // namespace
