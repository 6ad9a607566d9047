// Circles through three points, arcs from centre, tangent and fillet, fewest-chord tessellation.
#include "fitting/fitting_test_support.h"

TYPED_TEST(FittingTwins, CircleThroughThreePoints) {
  TWIN_NAMES;
  // At 5 from (1, 2), clockwise from atan2(4, 3) to -pi/2; tilted about (10, -20, 30): a half turn.
  const double sweep = std::atan2(4.0, 3.0) + kPi / 2, e6 = 1e6;
  const std::tuple<P, P, P, ZmArcStatus, P, double, double, double> rows[] = {
      {P(4, 6, 0), P(6, 2, 0), P(1, -3, 0), ZmArcOk, P(1, 2, 0), 5, -1, sweep},
      {P(1, -3, 0), P(6, 2, 0), P(4, 6, 0), ZmArcOk, P(1, 2, 0), 5, 1, sweep},
      {P(13, -16, 30), P(10, -20, 35), P(7, -24, 30), ZmArcOk, P(10, -20, 30), 5, 0, kPi},
      // In float 1e6 + 1 is within 16 eps of 1e6: the points count as one.
      {P(e6 + 1, e6, 0), P(e6, e6 + 1, 0), P(e6 - 1, e6, 0), kIsDouble<T> ? ZmArcOk : ZmArcCoincident, P(e6, e6, 0), 1,
       1, kPi},
      {P(0, 0, 0), P(1, 1, 1), P(3, 3, 3), ZmArcCollinear, P(), 0, 0, 0},
      // 1e-9 apart beside a far third: coincident (size: largest coordinate); sine < 16 eps: none.
      {P(e6, e6, 0), P(0, 0, 0), P(1e-9, 0, 0), ZmArcCoincident, P(), 0, 0, 0},
      {P(0, 0, 0), P(1e3, 0, 0), P(2e3, kIsDouble<T> ? 1e-14 : 1e-5, 0), ZmArcCollinear, P(), 0, 0, 0},
      {P(0, 0, 0), P(zm::Invalid<T>(), 1, 1), P(1, 0, 1), ZmArcBadInput, P(), 0, 0, 0},  // a marker in x only
      {P(0, 0, 0), P(1, 1, 1), P(1, 1, 1), ZmArcCoincident, P(), 0, 0, 0},
      {P(0, 0, 0), P(1, NAN, 1), P(1, 0, 1), ZmArcBadInput, P(), 0, 0, 0},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const auto& [p0, p1, p2, status, center, radius, normalZ, turn] = rows[i];
    const auto arc = M::ArcThroughPoints(p0, p1, p2);
    ASSERT_EQ(arc.status, status) << i;
    if (status != ZmArcOk) {
      ExpectNear({arc.radius, M::ArcLength(arc)}, {zm::Invalid<T>(), zm::Invalid<T>()}, 0, i);
      continue;
    }
    const double size = std::fabs(center.x) + radius;
    ExpectNear({Gap(arc.center, center), arc.radius}, {0, radius}, 4 * size * (kIsDouble<T> ? 1e-14 : 1e-6), i);
    ExpectNear({arc.sweep, Gap(M::PointAtParameter(arc, 1), p2) / size}, {turn, 0}, 1e-6, i);
    EXPECT_NEAR(arc.normal.z, normalZ, normalZ == 0 ? 1e-6 : 0) << i;  // exactly +-1 in the XY plane
  }
  EXPECT_EQ(M::ArcThroughPoints(P2(1, -3), P2(6, 2), P2(4, 6)).normal.z, T(1));  // 2D counter-clockwise: +Z
}

TYPED_TEST(FittingTwins, ArcsFromCenterTangentAndFillet) {
  TWIN_NAMES;
  const double s3 = std::sqrt(3.0);
  const P o(0, 0, 0);
  const std::tuple<ZmArcT<T>, P, P, double, double, V> rows[] = {
      // centre, start, radius, sweep, tangent
      // The end only gives the direction: a quarter turn about +Z, three about -Z, a full turn.
      {M::ArcFromCenter(P(1, 0, 5), P(0, 2, 0), o, V(0, 0, 3)), o, P(1, 0, 0), 1, kPi / 2, V(0, 1, 0)},
      {M::ArcFromCenter(P(1, 0, 0), P(0, 2, 0), o, V(0, 0, -1)), o, P(1, 0, 0), 1, 3 * kPi / 2, V(0, -1, 0)},
      {M::ArcFromCenter(P(2, 0, 0), P(5, 0, 0), o, V(0, 0, 1)), o, P(2, 0, 0), 2, 2 * kPi, V(0, 1, 0)},
      // From (0, 0) along X to (1, 1): centre (0, 1), a quarter; to (0, 2): a half turn.
      {M::ArcFromTangent(o, V(2, 0, 0), P(1, 1, 0)), P(0, 1, 0), o, 1, kPi / 2, V(1, 0, 0)},
      {M::ArcFromTangent(o, V(1, 0, 0), P(0, 0, 2)), P(0, 0, 1), o, 1, kPi, V(1, 0, 0)},
      // Legs along +X and +Y from the origin, radius 2: centre (2, 2), from (2, 0) to (0, 2).
      {M::Fillet(P(5, 0, 0), V(1, 0, 0), P(0, 7, 0), V(0, 3, 0), 2), P(2, 2, 0), P(2, 0, 0), 2, kPi / 2, V(-1, 0, 0)},
      // A 60 degree corner, radius 1: centre at 2 along the bisector, tangent points at sqrt 3.
      {M::Fillet(o, V(1, 0, 0), o, V(0.5, s3 / 2, 0), 1), P(s3, 1, 0), P(s3, 0, 0), 1, 2 * kPi / 3, V(-1, 0, 0)},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const auto& [arc, center, start, radius, sweep, tangent] = rows[i];
    ASSERT_EQ(arc.status, ZmArcOk) << i;
    ExpectNear({Gap(arc.center, center), arc.radius, arc.sweep, Gap(M::PointAtParameter(arc, 0), start),
                Gap(M::TangentAtParameter(arc, 0), tangent), M::ArcLength(arc) / 10},
               {0, radius, sweep, 0, 0, radius * sweep / 10}, 1e-6, i);
  }
  const std::pair<ZmArcT<T>, ZmArcStatus> failures[] = {
      {M::ArcFromCenter(P(0, 0, 1), P(1, 0, 0), o, V(0, 0, 1)), ZmArcCoincident},
      {M::ArcFromTangent(o, V(1, 0, 0), P(-3, 0, 0)), ZmArcCollinear},
      {M::Fillet(o, V(1, 0, 0), P(0, 1, 0), V(-1, 0, 0), 1), ZmArcCollinear},
      {M::Fillet(o, V(1, 0, 0), P(0, 0, 1), V(0, 1, 0), 1), ZmArcBadInput},  // skew legs
      {M::Fillet(o, V(1, 0, 0), o, V(0, 1, 0), 0), ZmArcBadInput}};
  for (const auto& f : failures)
    EXPECT_EQ(std::make_pair(f.first.status, M::PointAtParameter(f.first, 0).x),
              std::make_pair(f.second, zm::Invalid<T>()));
}

// The largest distance of a curve (t in [0, n] -> point) to its n chords, by dense sampling.
template <class Curve>
double WorstDeviation(Curve curve, long n) {
  double worst = 0;
  for (long i = 0; i < n; ++i) {
    const ZmPoint3T<double> a(curve(i));
    const ZmVector3T<double> chord = ZmPoint3T<double>(curve(i + 1)) - a, unit = chord * (1 / chord.length());
    for (int k = 1; k < 64; ++k)
      worst = std::fmax(worst, unit.cross(ZmPoint3T<double>(curve(i + k / 64.0)) - a).length());
  }
  return worst;
}

TYPED_TEST(FittingTwins, TessellationHasTheFewestChords) {
  TWIN_NAMES;
  // 2 acos(0.99) = 0.28308, 2 pi / 0.28308 = 22.2 -> 23; 90 / 20 = 4.5 -> 5; 0: the property alone.
  const struct {
    double radius, sweep, tol, maxAngle;
    long chords;
  } rows[] = {{10, 2 * kPi, 0.1, 0, 23},
              {1, kPi / 2, 0.5, 20 * kPi / 180, 5},
              {250, 1.3, 0.01, 0.05, 0},
              {3, 2 * kPi, 1e-4, 0, 0},
              {0.5, 0.3, 1.0, 0, 1}};
  for (const auto& r : rows) {
    const auto arc = M::ArcFromCenter(P(r.radius, 0, 0), P(std::cos(r.sweep), std::sin(r.sweep), 0), P(), V(0, 0, 1));
    L points;
    ASSERT_EQ(M::TessellateArc(arc, T(r.tol), T(r.maxAngle), points), ZmArcOk);
    const long n = long(points.GetSize()) - 1;
    EXPECT_EQ(r.chords ? n : 0, r.chords) << r.radius;
    const auto sagitta = [&r](long chords) { return r.radius * (1 - std::cos(r.sweep / chords / 2)); };
    EXPECT_TRUE(n == 1 || sagitta(n - 1) > r.tol || (r.maxAngle > 0 && r.sweep / (n - 1) > r.maxAngle)) << r.radius;
    const auto curve = [&arc, n](double t) { return M::PointAtParameter(arc, T(t / n)); };
    EXPECT_LE(WorstDeviation(curve, n), r.tol * (1 + 1e-5) + 1e-6) << r.radius;
  }
  ZmEllipseT<T> e;  // 4 x 1, a full turn within 0.01: every chord within, one chord fewer breaks it
  e.center = P(1, 2, 3), e.majorAxis = V(0, 1, 0), e.normal = V(1, 0, 0), e.a = 4, e.b = 1;
  L points;
  ASSERT_EQ(M::TessellateEllipse(e, 0, T(2 * kPi), T(0.01), 0, points), ZmArcOk);
  const long n = long(points.GetSize()) - 1;
  const auto curveWith = [](long chords) {
    const double w = 2 * kPi / double(chords);  // v = n x u = (0, 0, 1)
    return [w](double t) { return P(1, 2 + 4 * std::cos(w * t), 3 + std::sin(w * t)); };
  };
  EXPECT_LE(WorstDeviation(curveWith(n), n), 0.01 * (1 + 1e-5));
  EXPECT_GT(WorstDeviation(curveWith(n - 1), n - 1), 0.01);
  EXPECT_NEAR(Gap(points[1], curveWith(n)(1)), 0.0, 1e-5);
  e.b = 5;  // b > a
  EXPECT_EQ(M::TessellateEllipse(e, 0, 1, T(0.01), 0, points), ZmArcBadInput);
  EXPECT_EQ(points.GetSize(), 0u);
}
