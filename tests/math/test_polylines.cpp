// Polylines: length, arc-length parametrisation, projections onto polylines and segment pairs.
#include "math_test_support.h"

using namespace math_test;

namespace {

MATH_TWIN_SUITE(PolylineTwins);

// (0,0,0) -> (4,0,0) -> (4,3,0): segment lengths 4 and 3, total 7.
template <class T>
Line<T> Elbow() {
  return Line<T>{ZmPoint3T<T>(0, 0, 0), ZmPoint3T<T>(4, 0, 0), ZmPoint3T<T>(4, 3, 0)};
}

TYPED_TEST(PolylineTwins, LengthAndCoordinatesAtNormalisedArcLength) {
  MATH_TWIN_TYPES;
  // 2 float(sqrt(2)) + 1 = 3.8284270763397217 (unrounded 3.8284271247461903), in both twins.
  ExpectRows<T>({{M::GetLength(Line<T>{P(0, 0, 0), P(1, 1, 0), P(2, 2, 0), P(2, 2, 1)}), T(3.8284270763397217)},
                 {M::GetLength(Line<T>{}), T(0)},
                 {M::GetLength(Line<T>{P(1, 2, 3)}), T(0)},
                 {M::GetLength(Line<T>{P(0, 0, 0), InvalidPoint<T>()}), T(kMarker)}});
  const auto at = [](const Line<T>& line, T t) {
    P out(99, 99, 99);
    M::GetCoordinatesAt(line, t, out);
    return out;
  };
  const Line<T> elbow = Elbow<T>(), same{P(1, 2, 3), P(1, 2, 3), P(1, 2, 3)};
  ExpectRows<P>({{at(elbow, 0), P(0, 0, 0)},
                 {at(elbow, 1), P(4, 3, 0)},
                 {at(elbow, T(0.5)), P(3.5, 0, 0)},    // target 3.5 on the first segment
                 {at(elbow, T(0.75)), P(4, 1.25, 0)},  // target 5.25: 1.25 into the second
                 // Before the start along the first segment; past the end along the last.
                 {at(elbow, T(-0.25)), P(-1.75, 0, 0)},
                 {at(elbow, T(1.5)), P(4, 6.5, 0)},
                 // Bad t or polyline: the invalid point.
                 {at(elbow, kNan<T>), InvalidPoint<T>()},
                 {at(elbow, std::numeric_limits<T>::infinity()), InvalidPoint<T>()},
                 {at(Line<T>{}, T(0.5)), InvalidPoint<T>()},
                 {at(Line<T>{P(4, 0, 0), InvalidPoint<T>()}, T(0.5)), InvalidPoint<T>()},
                 // A single point, or all coinciding: the first.
                 {at(Line<T>{P(1, 2, 3)}, T(0.3)), P(1, 2, 3)},
                 {at(same, T(0.3)), P(1, 2, 3)}});
}

// GetProjectedPoint of p, checked for its result, foot and parameter.
template <class T>
void ExpectProjection(const Line<T>& line, const ZmPoint3T<T>& p, int ok, const ZmPoint3T<T>& foot, T param) {
  ZmPoint3T<T> actualFoot(7, 7, 7);
  T actualParam = -1;
  EXPECT_EQ(ZmMathT<T>::GetProjectedPoint(line, p, actualParam, actualFoot), ok);
  EXPECT_TRUE(actualFoot == foot && actualParam == param) << actualParam;
}

TYPED_TEST(PolylineTwins, ProjectionsWithTheirArcLengthParameterSegmentAndTieBreaks) {
  MATH_TWIN_TYPES;
  const Line<T> elbow = Elbow<T>();
  ExpectProjection(elbow, P(2, 1, 0), 1, P(2, 0, 0), T(2) / T(7));
  // Nearer the second segment (1 against sqrt 2): 4/7 + 1/7 in the class's precision.
  ExpectProjection(elbow, P(5, 1, 0), 1, P(4, 1, 0), T(4) / T(7) + T(1) / T(7));
  // Beyond either end: the end point, parameter 1 or 0.
  ExpectProjection(elbow, P(4, 5, 0), 1, P(4, 3, 0), T(1));
  ExpectProjection(elbow, P(-2, 1, 0), 1, P(0, 0, 0), T(0));
  // Equidistant from both segments (1 each): the earlier wins.
  ExpectProjection(Line<T>{P(0, 0, 0), P(2, 0, 0), P(2, 2, 0)}, P(1, 1, 0), 1, P(1, 0, 0), T(0.25));
  // Short polylines: the point itself at parameter 0, distance 0.
  const P p(5e-7, 1, 0);
  for (const Line<T>& shortLine : {Line<T>{}, Line<T>{P(3, 3, 3)}, Line<T>{P(0, 0, 0), P(5e-7, 0, 0)}}) {
    ExpectProjection(shortLine, p, 1, p, T(0));
    EXPECT_EQ(M::DistanceTo(shortLine, p), T(0));
  }
  // Length float(1e-6) is not below the widened 1e-6f: projected (the decimal 1e-6 would not be).
  ExpectProjection(Line<T>{P(0, 0, 0), P(1e-6, 0, 0)}, p, 1, P(5e-7, 0, 0), T(0.5));
  // Twelve segments of 9e-8 (d.d <= 1e-14f: none projected on) total 1.08e-6: the nearest vertex.
  Line<T> chain;
  for (int k = 0; k <= 12; ++k) chain.Add(P(T(k) * T(9e-8), 0, 0));
  ExpectProjection(chain, P(3e-7, 0, 0), 1, chain[3], T(0.25));
  ExpectProjection(chain, P(-1e-7, 0, 0), 1, chain[0], T(0));  // before the first vertex
  ExpectRows<T>({{M::DistanceTo(elbow, P(2, 1, 0)), 1}, {M::DistanceTo(elbow, P(7, 7, 0)), 5}});
  // a/(a + b) + b/(a + b) is 1.0000001192092896 in float: the end point needs the clamp to 1.
  const T a = 0.951476514339447f, b = 8.416665077209473f;
  ExpectProjection(Line<T>{P(0, 0, 0), P(a, 0, 0), P(a, b, 0)}, P(a, b + 1, 0), 1, P(a, b, 0), T(1));
  // Ties to the lower segment; no segment in one point; segments touching an invalid point skipped.
  const Line<T> corner{P(0, 0, 0), P(2, 0, 0), P(2, 2, 0)};
  const Line<T> broken{P(0, 0, 0), P(4, 0, 0), InvalidPoint<T>(), P(4, 3, 0), P(8, 3, 0)};
  const struct {
    P p;
    Line<T> line;
    P foot;
    int segment;
  } rows[] = {{P(1, 1, 0), corner, P(1, 0, 0), 0},
              {P(3, 1.5, 0), corner, P(2, 1.5, 0), 1},
              {P(1, 1, 0), Line<T>{P(0, 0, 0)}, InvalidPoint<T>(), -1},
              {P(6, 4, 0), broken, P(6, 3, 0), 3}};
  for (const auto& r : rows) {
    int segment = 99;
    EXPECT_EQ(M::ProjOnPolyline(r.p, r.line, &segment), r.foot);
    EXPECT_EQ(segment, r.segment);
  }
  EXPECT_EQ(M::ProjOnPolyline(P(3, 1.5, 0), corner), P(2, 1.5, 0));
  // Pairs at 1.2 and 1.8; neither the odd last point (0.2 away) nor the link between pairs counts.
  const Line<T> pairs{P(0, 0, 0), P(4, 0, 0), P(0, 3, 0), P(4, 3, 0), P(2, 1, 0)};
  ExpectRows<P>({{M::ProjOnSegments(P(2, 1.2, 0), pairs), P(2, 0, 0)},
                 {M::ProjOnSegments(P(2, 2, 0), pairs), P(2, 3, 0)},
                 {M::ProjOnSegments(P(2, 2, 0), Line<T>{P(0, 0, 0)}), InvalidPoint<T>()}});
  for (const P& bad : {InvalidPoint<T>(), P(kNan<T>, 0, 0)}) {
    ExpectProjection(elbow, bad, 0, InvalidPoint<T>(), T(0));
    ExpectAll<P>({M::ProjOnPolyline(bad, elbow), M::ProjOnSegments(bad, elbow)}, InvalidPoint<T>());
    // The same point inside the polyline.
    const Line<T> spoiled{P(0, 0, 0), bad, P(4, 3, 0)};
    T param = -1;
    P foot;
    EXPECT_EQ(M::GetProjectedPoint(spoiled, P(1, 1, 0), param, foot), 0);
    ExpectAll<T>({M::DistanceTo(elbow, bad), M::DistanceTo(spoiled, P(1, 1, 0))}, T(kMarker));
  }
}

}  // namespace
