// Intersections and containment, every expected value worked out by hand.
#include "math_test_support.h"

using namespace math_test;

namespace {

using P2 = ZmPoint2d;
using P = ZmPoint3d;
using V = ZmVector3d;

Line<float> ToFloat(const Line<double>& line) {
  Line<float> out;
  for (const P& p : line) out.Add(ZmPoint3f(p));
  return out;
}

}  // namespace

TEST(Intersections, SegmentsWriteTheirParametersEvenOutOfRangeAndIn3DAreSeenAlongTheNormal) {
  const auto check = [](P2 p1, P2 q0, P2 q1, unsigned char asLines, unsigned char result, double s, double t) {
    double actualS = 0, actualT = 0;
    EXPECT_EQ(ZmMathd::IntersectSegments(P2(0, 0), p1, q0, q1, &actualS, &actualT, asLines), result);
    ExpectRows<double>({{actualS, s}, {actualT, t}});
  };
  // 2D. Parallel: invalid parameters. At s = 1.5: 0 for segments, 1 for lines, written in both cases.
  check(P2(1, 0), P2(0, 1), P2(1, 1), 1, 0, kMarker, kMarker);
  check(P2(1, 0), P2(1.5, -1), P2(1.5, 1), 0, 0, 1.5, 0.5);
  check(P2(1, 0), P2(1.5, -1), P2(1.5, 1), 1, 1, 1.5, 0.5);
  check(P2(2, 0), P2(1.5, -1), P2(1.5, 1), 0, 1, 0.75, 0.5);
  // Null parameter pointers; the float twin agrees.
  EXPECT_EQ(ZmMathd::IntersectSegments(P2(0, 0), P2(2, 0), P2(1.5, -1), P2(1.5, 1), nullptr, nullptr, 0), 1);
  float sf = 0, tf = 0;
  const unsigned char hitF = ZmMathf::IntersectSegments(ZmPoint2f(0, 0), ZmPoint2f(2, 0), ZmPoint2f(1.5f, -1),
                                                        ZmPoint2f(1.5f, 1), &sf, &tf, 0);
  ExpectRows<float>({{hitF, 1}, {sf, 0.75f}, {tf, 0.5f}});
  // Seen along z: s = t = 0.5, one point on each. Parallel in the view: invalid, points untouched.
  P onP, onQ;
  double s, t;
  const P o(0, 0, 0), x(1, 0, 0);
  EXPECT_EQ(ZmMathd::IntersectSegments(o, x, P(0.5, -1, 1), P(0.5, 1, 1), V(0, 0, 1), onP, onQ, &s, &t, 0), 1);
  ExpectRows<double>({{s, 0.5}, {t, 0.5}});
  ExpectRows<P>({{onP, P(0.5, 0, 0)}, {onQ, P(0.5, 0, 1)}});
  onP = P(7, 7, 7);
  EXPECT_EQ(ZmMathd::IntersectSegments(o, x, P(0, 1, 1), P(1, 1, 1), V(0, 0, 1), onP, onQ, &s, &t, 1), 0);
  EXPECT_EQ(s, kMarker);
  EXPECT_EQ(onP, P(7, 7, 7));
  // Half-lines: a hit; missed behind the start, beside, parallel; a zero direction or segment.
  const P a(2, -1, 0), b(2, 1, 0);
  const V along(1, 0, 0);
  EXPECT_EQ(ZmMathd::IntersectHalfLineSegment(o, along, a, b), 1);
  for (unsigned char hit :
       {ZmMathd::IntersectHalfLineSegment(o, V(-1, 0, 0), a, b),
        ZmMathd::IntersectHalfLineSegment(o, along, P(2, 1, 0), P(2, 3, 0)),
        ZmMathd::IntersectHalfLineSegment(o, along, P(0, 1, 0), P(3, 1, 0)),
        ZmMathd::IntersectHalfLineSegment(o, V(0, 0, 0), a, b), ZmMathd::IntersectHalfLineSegment(o, along, a, a)})
    EXPECT_EQ(hit, 0);
  EXPECT_EQ(ZmMathf::IntersectHalfLineSegment(ZmPoint3f(o), ZmVector3f(1, 0, 0), ZmPoint3f(a), ZmPoint3f(b)), 1);
}

TEST(Intersections, SphereAgainstLineAndPolyline) {
  // Unit sphere, line (-2,0,0) -> (2,0,0): A = 16, B = -16, C = 3, disc = 64: t = (16 +- 8)/32.
  const P center(0, 0, 0), p0(-2, 0, 0), p1(2, 0, 0);
  P hit1, hit2;
  double params[2];
  ASSERT_EQ(ZmMathd::IntersectSphereLine(p0, p1, center, 1.0, hit1, hit2, params), 1);
  ExpectRows<double>({{params[0], 0.75}, {params[1], 0.25}});
  ExpectRows<P>({{hit1, P(1, 0, 0)}, {hit2, P(-1, 0, 0)}});
  // A zero-length line and a line that misses: nothing written.
  hit1 = P(5, 5, 5);
  EXPECT_EQ(ZmMathd::IntersectSphereLine(p0, p0, center, 1.0, hit1, hit2, params), 0);
  EXPECT_EQ(ZmMathd::IntersectSphereLine(P(-2, 2, 0), P(2, 2, 0), center, 1.0, hit1, hit2, nullptr), 0);
  EXPECT_EQ(hit1, P(5, 5, 5));
  const auto check = [&center](const Line<double>& line, int segment, const P& expected) {
    P hit(9, 9, 9);
    EXPECT_EQ(ZmMathd::IntersectSpherePolyline(center, 1.0, line, hit), segment);
    EXPECT_NEAR(hit.x, expected.x, 1e-15);
    EXPECT_EQ(hit.y, expected.y);
    EXPECT_EQ(hit.z, expected.z);
  };
  // The earlier of two hits within the segment: from the centre t = +-0.5, only 0.5 inside; the third
  // segment, at y = 0.5, first meets it at x = -sqrt(0.75). One point, or outside: -1, unwritten.
  check({p0, p1}, 0, P(-1, 0, 0));
  check({center, p1}, 0, P(1, 0, 0));
  check({P(-5, 3, 0), P(-4, 3, 0), P(-4, 0.5, 0), P(4, 0.5, 0)}, 2, P(-std::sqrt(0.75), 0.5, 0));
  check({p0}, -1, P(9, 9, 9));
  check({P(-3, 0, 0), p0}, -1, P(9, 9, 9));
}

TEST(Intersections, PointInTriangleUsesTheToleranceTwiceAndProjectionAlongADirection) {
  const P a(0, 0, 0), b(1, 0, 0), c(0, 1, 0), above(0.2, 0.2, 5);
  // 0.05 above the plane is beyond 10 tol = 0.01. 0.009 above it the area test decides:
  // sub-triangle areas for (0.2, 0.2, 0.009) are |(0,-0.009,0.2)|/2 + |(0.009,0.009,0.6)|/2 +
  // |(-0.009,0,0.2)|/2 = 0.50027 < 1.001 * 0.5. Collinear corners make no plane.
  ExpectRows<int>({{ZmMathd::PointIsInTriangle(P(0.2, 0.2, 0.05), a, b, c, 0.001), 0},
                   {ZmMathd::PointIsInTriangle(P(0.2, 0.2, 0.009), a, b, c, 0.001), 1},
                   {ZmMathd::PointIsInTriangle(P(0.8, 0.8, 0.009), a, b, c, 0.001), 0},
                   {ZmMathd::PointIsInTriangle(P(0.5, 0, 0), a, b, P(2, 0, 0), 0.1), 0}});
  // 2D, the area sum alone and strict: 0.25 + 0.5 + 1.25 = 2 needs tol > 0; (2, 2): 6 against 2 (1 + tol).
  const auto in2D = [](P2 p, double tol) { return ZmMathd::PointIsInTriangle(p, P2(0, 0), P2(2, 0), P2(0, 2), tol); };
  ExpectRows<int>(
      {{in2D(P2(0.5, 0.5), 0.0), 0},
       {in2D(P2(0.5, 0.5), 1e-9), 1},
       {in2D(P2(1, 0), 1e-9), 1},
       {in2D(P2(2, 2), 0.001), 0},
       {in2D(P2(2, 2), 2.0001), 1},
       {ZmMathf::PointIsInTriangle(ZmPoint2f(0.5f, 0.5f), ZmPoint2f(0, 0), ZmPoint2f(2, 0), ZmPoint2f(0, 2), 1e-6f),
        1}});
  // Areas: right triangle 2 x 3 is 3 in either orientation and dimension.
  ExpectAll<double>({ZmMathd::TriangleSurface(P(0, 0, 0), P(2, 0, 0), P(0, 3, 0)),
                     ZmMathd::TriangleSurface(P2(0, 0), P2(0, 3), P2(2, 0)),
                     ZmMathf::TriangleSurface(ZmPoint3f(0, 0, 1), ZmPoint3f(0, 2, 1), ZmPoint3f(0, 0, 4))},
                    3.0);
  const auto check = [&](const P& p, const P& corner, const V& dir, unsigned char inside, const P& expected) {
    P hit(0, 0, 0);
    EXPECT_EQ(ZmMathd::ProjectInTriangle(p, a, corner, c, dir, hit), inside);
    EXPECT_EQ(hit, expected);
  };
  // Outside: 0, hit on the plane all the same. Parallel to the plane, or no plane: invalid.
  check(above, b, V(0, 0, -1), 1, P(0.2, 0.2, 0));
  check(P(2, 2, 5), b, V(0, 0, 1), 0, P(2, 2, 0));
  check(above, b, V(1, 0, 0), 0, InvalidPoint<double>());
  check(above, a, V(0, 0, 1), 0, InvalidPoint<double>());
}

TEST(Intersections, EvenOddPolygonTest) {
  const Line<double> square{P(0, 0, 0), P(2, 0, 0), P(2, 2, 0), P(0, 2, 0)};
  // A concave L: the notch is outside although the ray crosses the polygon twice.
  const Line<double> ell{P(0, 0, 0), P(4, 0, 0), P(4, 1, 0), P(1, 1, 0), P(1, 4, 0), P(0, 4, 0)};
  const auto inside = [](const P& p, const Line<double>& poly) {
    return ZmMathd::IsPointInsidePolygon(p, poly, V(0, 0, 1));
  };
  ExpectRows<int>({{inside(P(1, 1, 0), square), 1},
                   {inside(P(3, 1, 0), square), 0},
                   {inside(P(-1, 1, 0), square), 0},
                   {inside(P(0.5, 0.5, 0), ell), 1},
                   {inside(P(0.5, 3, 0), ell), 1},
                   {inside(P(-1, 0.5, 0), ell), 0},
                   // Fewer than three vertices, or no usable normal.
                   {inside(P(1, 1, 0), {P(0, 0, 0), P(2, 2, 0)}), 0},
                   {ZmMathd::IsPointInsidePolygon(P(1, 1, 0), square, V(0, 0, 0)), 0},
                   {ZmMathf::IsPointInsidePolygon(ZmPoint3f(1, 1, 0), ToFloat(square), ZmVector3f(0, 0, 1)), 1}});
}

TEST(Intersections, PolylineCutByAPlane) {
  const P onPlane(1, 0, 0);
  const auto check = [&onPlane](const Line<double>& curve, const V& normal, const P& boundPoint, const V& boundNormal,
                                int count, std::initializer_list<P> expected) {
    Line<double> cut{P(9, 9, 9)};
    ASSERT_EQ(ZmMathd::ComputeIntersectionCurveToPlan(curve, onPlane, normal, boundPoint, boundNormal, cut), count);
    ASSERT_EQ(cut.GetSize(), expected.size());
    int i = 0;
    for (const P& p : expected) EXPECT_EQ(cut[i++], p);
  };
  // Plane x = 1, its normal (2, 0, 0) normalised first; bounded to y >= 1 by the second pair.
  const Line<double> path{P(0, 0, 0), P(2, 0, 0), P(2, 2, 0), P(0, 2, 0), P(0, 4, 0)};
  const V normal(2, 0, 0), none = ZmNonValV3d;
  check(path, normal, ZmNonValP3d, none, 2, {P(1, 0, 0), P(1, 2, 0)});
  check(path, normal, P(0, 1, 0), V(0, 1, 0), 1, {P(1, 2, 0)});
  // A vertex on the plane counts once; a segment lying in it gives both ends; a quarter along.
  check({P(0, 0, 0), P(1, 5, 0), P(2, 0, 0)}, normal, ZmNonValP3d, V(0, 0, 0), 1, {P(1, 5, 0)});
  check({P(1, 0, 0), P(1, 1, 0), P(3, 1, 0)}, normal, ZmNonValP3d, none, 2, {P(1, 0, 0), P(1, 1, 0)});
  check({P(0, 0, 0), P(4, 4, 4)}, normal, ZmNonValP3d, none, 1, {P(1, 1, 1)});
  // No plane: -1 and an empty result; empty and one-point curves give 0.
  check(path, V(0, 0, 0), ZmNonValP3d, none, -1, {});
  check({}, normal, ZmNonValP3d, none, 0, {});
  check({P(0, 0, 0)}, normal, ZmNonValP3d, none, 0, {});
  Line<float> cutF;
  EXPECT_EQ(ZmMathf::ComputeIntersectionCurveToPlan(ToFloat(path), ZmPoint3f(1, 0, 0), ZmVector3f(1, 0, 0), ZmNonValP3f,
                                                    ZmNonValV3f, cutF),
            2);
}
