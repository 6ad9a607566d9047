// Polylines: length, arc-length parametrisation and the projections onto polylines and
// segment pairs, with their tie-breaks, clamping and bad input, in both twins.
#include <gtest/gtest.h>

#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

template <class T>
class PolylineTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(PolylineTwins, Scalars);

template <class T>
using Line = WbArrayTempl<ZmPoint3T<T>>;

// (0,0,0) -> (4,0,0) -> (4,3,0): segment lengths 4 and 3, total 7.
template <class T>
Line<T> Elbow() {
  return Line<T>{ZmPoint3T<T>(0, 0, 0), ZmPoint3T<T>(4, 0, 0), ZmPoint3T<T>(4, 3, 0)};
}

template <class T>
ZmPoint3T<T> InvalidPoint() {
  return ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
}

TYPED_TEST(PolylineTwins, LengthSumsFloatRoundedSegments) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  // sqrt(2) twice and 1: 2 * 1.4142135381698608 + 1 = 3.8284270763397217 (the unrounded sum
  // is 3.8284271247461903); the float twin sums the same float lengths to the same value.
  EXPECT_EQ(M::GetLength(Line<TypeParam>{P(0, 0, 0), P(1, 1, 0), P(2, 2, 0), P(2, 2, 1)}),
            TypeParam(3.8284270763397217));
  EXPECT_EQ(M::GetLength(Line<TypeParam>{}), TypeParam(0));
  EXPECT_EQ(M::GetLength(Line<TypeParam>{P(1, 2, 3)}), TypeParam(0));
  EXPECT_EQ(M::GetLength(Line<TypeParam>{P(0, 0, 0), InvalidPoint<TypeParam>()}), TypeParam(kMarker));
}

TYPED_TEST(PolylineTwins, CoordinatesAtNormalisedArcLength) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  const Line<TypeParam> elbow = Elbow<TypeParam>();
  P out;
  const auto at = [&](TypeParam t) {
    out = P(99, 99, 99);
    M::GetCoordinatesAt(elbow, t, out);
    return out;
  };
  EXPECT_EQ(at(0), P(0, 0, 0));
  EXPECT_EQ(at(1), P(4, 3, 0));
  EXPECT_EQ(at(TypeParam(0.5)), P(3.5, 0, 0));    // target 3.5 on the first segment
  EXPECT_EQ(at(TypeParam(0.75)), P(4, 1.25, 0));  // target 5.25: 1.25 into the second
  // Before the start: along the first segment (target -1.75).
  EXPECT_EQ(at(TypeParam(-0.25)), P(-1.75, 0, 0));
  // Past the end: along the last segment (target 10.5, 6.5 along it).
  EXPECT_EQ(at(TypeParam(1.5)), P(4, 6.5, 0));
  // Bad t or polyline: the invalid point, never a read past the array.
  EXPECT_EQ(at(std::numeric_limits<TypeParam>::quiet_NaN()), InvalidPoint<TypeParam>());
  EXPECT_EQ(at(std::numeric_limits<TypeParam>::infinity()), InvalidPoint<TypeParam>());
  M::GetCoordinatesAt(Line<TypeParam>{}, TypeParam(0.5), out);
  EXPECT_EQ(out, InvalidPoint<TypeParam>());
  M::GetCoordinatesAt(Line<TypeParam>{P(4, 0, 0), InvalidPoint<TypeParam>()}, TypeParam(0.5), out);
  EXPECT_EQ(out, InvalidPoint<TypeParam>());
  // A single point, or points that all coincide, have every arc length at the first point.
  M::GetCoordinatesAt(Line<TypeParam>{P(1, 2, 3)}, TypeParam(0.3), out);
  EXPECT_EQ(out, P(1, 2, 3));
  M::GetCoordinatesAt(Line<TypeParam>{P(1, 2, 3), P(1, 2, 3), P(1, 2, 3)}, TypeParam(0.3), out);
  EXPECT_EQ(out, P(1, 2, 3));
}

TYPED_TEST(PolylineTwins, ProjectedPointAndItsArcLengthParameter) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  const Line<TypeParam> elbow = Elbow<TypeParam>();
  P foot;
  TypeParam param = -1;
  EXPECT_EQ(M::GetProjectedPoint(elbow, P(2, 1, 0), param, foot), 1);
  EXPECT_EQ(foot, P(2, 0, 0));
  EXPECT_EQ(param, TypeParam(2) / TypeParam(7));
  // Nearer the second segment (1 against sqrt 2): 4/7 + 1/7 in the class's precision.
  EXPECT_EQ(M::GetProjectedPoint(elbow, P(5, 1, 0), param, foot), 1);
  EXPECT_EQ(foot, P(4, 1, 0));
  EXPECT_EQ(param, TypeParam(4) / TypeParam(7) + TypeParam(1) / TypeParam(7));
  // Beyond either end: the end point, parameter 1 or 0.
  EXPECT_EQ(M::GetProjectedPoint(elbow, P(4, 5, 0), param, foot), 1);
  EXPECT_EQ(foot, P(4, 3, 0));
  EXPECT_EQ(param, TypeParam(1));
  EXPECT_EQ(M::GetProjectedPoint(elbow, P(-2, 1, 0), param, foot), 1);
  EXPECT_EQ(foot, P(0, 0, 0));
  EXPECT_EQ(param, TypeParam(0));
  // Equidistant from both segments (1 each): the earlier wins.
  const Line<TypeParam> corner{P(0, 0, 0), P(2, 0, 0), P(2, 2, 0)};
  EXPECT_EQ(M::GetProjectedPoint(corner, P(1, 1, 0), param, foot), 1);
  EXPECT_EQ(foot, P(1, 0, 0));
  EXPECT_EQ(param, TypeParam(0.25));
}

TEST(Polylines, ParameterIsClampedToOne) {
  // Float segment lengths a = 0.951476514339447 and b = 8.416665077209473 (exact floats):
  // a/(a + b) + b/(a + b) is 1.0000001192092896 in float, so the end point needs the clamp.
  const float a = 0.951476514339447f, b = 8.416665077209473f;
  const WbArrayTempl<ZmPoint3f> line{ZmPoint3f(0, 0, 0), ZmPoint3f(a, 0, 0), ZmPoint3f(a, b, 0)};
  ZmPoint3f foot;
  float param = -1;
  EXPECT_EQ(ZmMathf::GetProjectedPoint(line, ZmPoint3f(a, b + 1, 0), param, foot), 1);
  EXPECT_EQ(foot, ZmPoint3f(a, b, 0));
  EXPECT_EQ(param, 1.0f);
}

TYPED_TEST(PolylineTwins, ProjectedPointOnShortAndDegeneratePolylines) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  P foot;
  TypeParam param = -1;
  const P p(5e-7, 1, 0);
  for (const Line<TypeParam>& shortLine :
       {Line<TypeParam>{}, Line<TypeParam>{P(3, 3, 3)}, Line<TypeParam>{P(0, 0, 0), P(5e-7, 0, 0)}}) {
    param = -1;
    EXPECT_EQ(M::GetProjectedPoint(shortLine, p, param, foot), 1);
    EXPECT_EQ(foot, p);
    EXPECT_EQ(param, TypeParam(0));
    EXPECT_EQ(M::DistanceTo(shortLine, p), TypeParam(0));
  }
  // Length float(1e-6) = 9.999999974752427e-7 is not below the widened 1e-6f: projected.
  // (The decimal 1e-6 threshold would have kept foot = p.)
  EXPECT_EQ(M::GetProjectedPoint(Line<TypeParam>{P(0, 0, 0), P(1e-6, 0, 0)}, p, param, foot), 1);
  EXPECT_EQ(foot, P(5e-7, 0, 0));
  EXPECT_EQ(param, TypeParam(0.5));
  // Twelve segments of 9e-8 (each d.d = 8.1e-15 <= 1e-14f: none can be projected on) total
  // 1.08e-6: the nearest vertex, number 3 of 12, is the foot at parameter 3/12.
  Line<TypeParam> chain;
  for (int k = 0; k <= 12; ++k) chain.Add(P(TypeParam(k) * TypeParam(9e-8), 0, 0));
  EXPECT_EQ(M::GetProjectedPoint(chain, P(3e-7, 0, 0), param, foot), 1);
  EXPECT_EQ(foot, chain[3]);
  EXPECT_EQ(param, TypeParam(0.25));
}

TYPED_TEST(PolylineTwins, DistanceToPolyline) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  EXPECT_EQ(M::DistanceTo(Elbow<TypeParam>(), P(2, 1, 0)), TypeParam(1));
  EXPECT_EQ(M::DistanceTo(Elbow<TypeParam>(), P(7, 7, 0)), TypeParam(5));  // from (4, 3, 0)
}

TYPED_TEST(PolylineTwins, ProjectionOnPolylineReportsTheLowerSegmentOnTies) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  int segment = 99;
  const Line<TypeParam> corner{P(0, 0, 0), P(2, 0, 0), P(2, 2, 0)};
  EXPECT_EQ(M::ProjOnPolyline(P(1, 1, 0), corner, &segment), P(1, 0, 0));
  EXPECT_EQ(segment, 0);
  EXPECT_EQ(M::ProjOnPolyline(P(3, 1.5, 0), corner, &segment), P(2, 1.5, 0));
  EXPECT_EQ(segment, 1);
  EXPECT_EQ(M::ProjOnPolyline(P(3, 1.5, 0), corner), P(2, 1.5, 0));  // segIndex optional
  segment = 99;
  EXPECT_EQ(M::ProjOnPolyline(P(1, 1, 0), Line<TypeParam>{P(0, 0, 0)}, &segment), InvalidPoint<TypeParam>());
  EXPECT_EQ(segment, -1);
  // Segments 1 and 2 touch an invalid point and are skipped; segment 3 is the nearest.
  const Line<TypeParam> broken{P(0, 0, 0), P(4, 0, 0), InvalidPoint<TypeParam>(), P(4, 3, 0), P(8, 3, 0)};
  EXPECT_EQ(M::ProjOnPolyline(P(6, 4, 0), broken, &segment), P(6, 3, 0));
  EXPECT_EQ(segment, 3);
}

TYPED_TEST(PolylineTwins, ProjectionOnSegmentPairsIgnoresAnOddLastPoint) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  // Pairs (0,0,0)-(4,0,0) at 1.2 and (0,3,0)-(4,3,0) at 1.8 from p; the odd last point
  // (2, 1, 0) is 0.2 from p but no segment, and neither is (4,0,0)-(0,3,0) between the pairs.
  const Line<TypeParam> pairs{P(0, 0, 0), P(4, 0, 0), P(0, 3, 0), P(4, 3, 0), P(2, 1, 0)};
  EXPECT_EQ(M::ProjOnSegments(P(2, 1.2, 0), pairs), P(2, 0, 0));
  EXPECT_EQ(M::ProjOnSegments(P(2, 2, 0), pairs), P(2, 3, 0));
  EXPECT_EQ(M::ProjOnSegments(P(2, 2, 0), Line<TypeParam>{P(0, 0, 0)}), InvalidPoint<TypeParam>());
}

TYPED_TEST(PolylineTwins, UnusablePointGivesTheFailureValues) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  const TypeParam nan = std::numeric_limits<TypeParam>::quiet_NaN();
  const Line<TypeParam> elbow = Elbow<TypeParam>();
  for (const P& bad : {InvalidPoint<TypeParam>(), P(nan, 0, 0)}) {
    P foot(7, 7, 7);
    TypeParam param = -1;
    EXPECT_EQ(M::GetProjectedPoint(elbow, bad, param, foot), 0);
    EXPECT_EQ(foot, InvalidPoint<TypeParam>());
    EXPECT_EQ(param, TypeParam(0));
    EXPECT_EQ(M::DistanceTo(elbow, bad), TypeParam(kMarker));
    EXPECT_EQ(M::ProjOnPolyline(bad, elbow), InvalidPoint<TypeParam>());
    EXPECT_EQ(M::ProjOnSegments(bad, elbow), InvalidPoint<TypeParam>());
    // The same point inside the polyline.
    const Line<TypeParam> spoiled{P(0, 0, 0), bad, P(4, 3, 0)};
    EXPECT_EQ(M::GetProjectedPoint(spoiled, P(1, 1, 0), param, foot), 0);
    EXPECT_EQ(M::DistanceTo(spoiled, P(1, 1, 0)), TypeParam(kMarker));
  }
}

}  // namespace
