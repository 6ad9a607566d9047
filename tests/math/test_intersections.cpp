// Intersections and containment. Every expected value below is worked out by hand in the
// comment next to it.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>

namespace {

const double kInvalid = -1.0000000331813535e32;

template <class P>
void ExpectPoint(const P& p, double x, double y, double z) {
  EXPECT_DOUBLE_EQ(p.x, x);
  EXPECT_DOUBLE_EQ(p.y, y);
  EXPECT_DOUBLE_EQ(p.z, z);
}

WbArrayTempl<ZmPoint3d> Polyline(std::initializer_list<ZmPoint3d> points) { return WbArrayTempl<ZmPoint3d>(points); }

}  // namespace

TEST(Intersections, SegmentsIn2DWriteTheirParametersEvenOutOfRange) {
  double s = 0, t = 0;
  // Parallel: the system is singular; both parameters are marked invalid.
  EXPECT_EQ(ZmMathd::IntersectSegments(ZmPoint2d(0, 0), ZmPoint2d(1, 0), ZmPoint2d(0, 1), ZmPoint2d(1, 1), &s, &t, 1),
            0);
  EXPECT_EQ(s, kInvalid);
  EXPECT_EQ(t, kInvalid);
  // [(0,0), (1,0)] against [(1.5,-1), (1.5,1)]: they meet at s = 1.5, t = 0.5, beyond the first
  // segment's end: 0 for segments, 1 for lines, parameters written in both cases.
  const ZmPoint2d p0(0, 0), p1(1, 0), q0(1.5, -1), q1(1.5, 1);
  EXPECT_EQ(ZmMathd::IntersectSegments(p0, p1, q0, q1, &s, &t, 0), 0);
  EXPECT_EQ(s, 1.5);
  EXPECT_EQ(t, 0.5);
  s = t = 0;
  EXPECT_EQ(ZmMathd::IntersectSegments(p0, p1, q0, q1, &s, &t, 1), 1);
  EXPECT_EQ(s, 1.5);
  // A proper crossing, with null parameter pointers; the float twin agrees.
  EXPECT_EQ(ZmMathd::IntersectSegments(p0, ZmPoint2d(2, 0), q0, q1, nullptr, nullptr, 0), 1);
  float sf = 0, tf = 0;
  EXPECT_EQ(ZmMathf::IntersectSegments(ZmPoint2f(0, 0), ZmPoint2f(2, 0), ZmPoint2f(1.5f, -1), ZmPoint2f(1.5f, 1), &sf,
                                       &tf, 0),
            1);
  EXPECT_EQ(sf, 0.75f);
  EXPECT_EQ(tf, 0.5f);
}

TEST(Intersections, SegmentsIn3DAreSeenAlongTheNormal) {
  // [(0,0,0), (1,0,0)] and [(0.5,-1,1), (0.5,1,1)] seen along z cross at s = t = 0.5; the two
  // points are one on each segment, 1 apart in z.
  ZmPoint3d onP, onQ;
  double s, t;
  EXPECT_EQ(ZmMathd::IntersectSegments(ZmPoint3d(0, 0, 0), ZmPoint3d(1, 0, 0), ZmPoint3d(0.5, -1, 1),
                                       ZmPoint3d(0.5, 1, 1), ZmVector3d(0, 0, 1), onP, onQ, &s, &t, 0),
            1);
  EXPECT_DOUBLE_EQ(s, 0.5);
  EXPECT_DOUBLE_EQ(t, 0.5);
  ExpectPoint(onP, 0.5, 0, 0);
  ExpectPoint(onQ, 0.5, 0, 1);
  // Parallel in the view: 0, invalid parameters, points untouched.
  onP = ZmPoint3d(7, 7, 7);
  EXPECT_EQ(ZmMathd::IntersectSegments(ZmPoint3d(0, 0, 0), ZmPoint3d(1, 0, 0), ZmPoint3d(0, 1, 1), ZmPoint3d(1, 1, 1),
                                       ZmVector3d(0, 0, 1), onP, onQ, &s, &t, 1),
            0);
  EXPECT_EQ(s, kInvalid);
  ExpectPoint(onP, 7, 7, 7);

  // Half-lines from the origin along +x against [(2,-1,0), (2,1,0)]: hit (s = 2, t = 0.5);
  // along -x the crossing is behind the start; a segment beside the ray, and a parallel one,
  // are missed; a zero direction or a zero-length segment gives 0.
  const ZmPoint3d origin(0, 0, 0), a(2, -1, 0), b(2, 1, 0);
  EXPECT_EQ(ZmMathd::IntersectHalfLineSegment(origin, ZmVector3d(1, 0, 0), a, b), 1);
  EXPECT_EQ(ZmMathd::IntersectHalfLineSegment(origin, ZmVector3d(-1, 0, 0), a, b), 0);
  EXPECT_EQ(ZmMathd::IntersectHalfLineSegment(origin, ZmVector3d(1, 0, 0), ZmPoint3d(2, 1, 0), ZmPoint3d(2, 3, 0)), 0);
  EXPECT_EQ(ZmMathd::IntersectHalfLineSegment(origin, ZmVector3d(1, 0, 0), ZmPoint3d(0, 1, 0), ZmPoint3d(3, 1, 0)), 0);
  EXPECT_EQ(ZmMathd::IntersectHalfLineSegment(origin, ZmVector3d(0, 0, 0), a, b), 0);
  EXPECT_EQ(ZmMathd::IntersectHalfLineSegment(origin, ZmVector3d(1, 0, 0), a, a), 0);
  EXPECT_EQ(ZmMathf::IntersectHalfLineSegment(ZmPoint3f(0, 0, 0), ZmVector3f(1, 0, 0), ZmPoint3f(2, -1, 0),
                                              ZmPoint3f(2, 1, 0)),
            1);
}

TEST(Intersections, SphereAgainstLineAndPolyline) {
  // Unit sphere, line (-2,0,0) -> (2,0,0): d = (4,0,0), m = (-2,0,0), A = 16, B = -16, C = 3,
  // disc = 64: t1 = (8 + 16)/32 = 0.75, t2 = (16 - 8)/32 = 0.25.
  const ZmPoint3d center(0, 0, 0), p0(-2, 0, 0), p1(2, 0, 0);
  ZmPoint3d hit1, hit2;
  double params[2];
  ASSERT_EQ(ZmMathd::IntersectSphereLine(p0, p1, center, 1.0, hit1, hit2, params), 1);
  EXPECT_EQ(params[0], 0.75);
  EXPECT_EQ(params[1], 0.25);
  ExpectPoint(hit1, 1, 0, 0);
  ExpectPoint(hit2, -1, 0, 0);
  // The polyline takes the earlier of two hits within the segment.
  ZmPoint3d hit(9, 9, 9);
  EXPECT_EQ(ZmMathd::IntersectSpherePolyline(center, 1.0, Polyline({p0, p1}), hit), 0);
  ExpectPoint(hit, -1, 0, 0);
  // Leaving the sphere from its centre: (0,0,0) -> (2,0,0) has d = (2,0,0), m = 0, A = 4,
  // B = 0, C = -1, disc = 16: t1 = 0.5 inside, t2 = -0.5 behind.
  EXPECT_EQ(ZmMathd::IntersectSpherePolyline(center, 1.0, Polyline({ZmPoint3d(0, 0, 0), ZmPoint3d(2, 0, 0)}), hit), 0);
  ExpectPoint(hit, 1, 0, 0);
  // The third segment, (-4, 0.5) -> (4, 0.5), is the first to meet it: A = 64, B = -64,
  // C = 15.25, disc = 192, t2 = (64 - sqrt(192))/128 < t1, hit2 = (-sqrt(0.75), 0.5, 0).
  EXPECT_EQ(ZmMathd::IntersectSpherePolyline(
                center, 1.0,
                Polyline({ZmPoint3d(-5, 3, 0), ZmPoint3d(-4, 3, 0), ZmPoint3d(-4, 0.5, 0), ZmPoint3d(4, 0.5, 0)}), hit),
            2);
  EXPECT_NEAR(hit.x, -std::sqrt(0.75), 1e-15);
  EXPECT_EQ(hit.y, 0.5);
  // A zero-length line, a line that misses, a polyline too short or outside: nothing written.
  hit1 = ZmPoint3d(5, 5, 5);
  EXPECT_EQ(ZmMathd::IntersectSphereLine(p0, p0, center, 1.0, hit1, hit2, params), 0);
  EXPECT_EQ(ZmMathd::IntersectSphereLine(ZmPoint3d(-2, 2, 0), ZmPoint3d(2, 2, 0), center, 1.0, hit1, hit2, nullptr), 0);
  ExpectPoint(hit1, 5, 5, 5);
  hit = ZmPoint3d(9, 9, 9);
  EXPECT_EQ(ZmMathd::IntersectSpherePolyline(center, 1.0, Polyline({p0}), hit), -1);
  EXPECT_EQ(ZmMathd::IntersectSpherePolyline(center, 1.0, Polyline({ZmPoint3d(-3, 0, 0), ZmPoint3d(-2, 0, 0)}), hit),
            -1);
  ExpectPoint(hit, 9, 9, 9);
}

TEST(Intersections, PointInTriangleUsesTheToleranceTwice) {
  const ZmPoint3d a(0, 0, 0), b(1, 0, 0), c(0, 1, 0);
  // 0.05 above the plane is beyond 10 tol = 0.01.
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint3d(0.2, 0.2, 0.05), a, b, c, 0.001), 0);
  // 0.009 above it the area test decides. Sub-triangle areas for (0.2, 0.2, 0.009):
  // |(0,-0.009,0.2)|/2 + |(0.009,0.009,0.6)|/2 + |(-0.009,0,0.2)|/2 = 0.50027 < 1.001 * 0.5.
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint3d(0.2, 0.2, 0.009), a, b, c, 0.001), 1);
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint3d(0.8, 0.8, 0.009), a, b, c, 0.001), 0);
  // Collinear corners make no plane.
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint3d(0.5, 0, 0), a, b, ZmPoint3d(2, 0, 0), 0.1), 0);
  // 2D: no plane test, the area sum alone. For any point inside or on the edges the three
  // parts add up to the whole (0.25 + 0.5 + 1.25 = 2 for (0.5, 0.5) below), and the test is
  // strict: a tolerance of 0 accepts nothing, the smallest positive one accepts the closed
  // triangle.
  const ZmPoint2d a2(0, 0), b2(2, 0), c2(0, 2);
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint2d(0.5, 0.5), a2, b2, c2, 0.0), 0);
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint2d(0.5, 0.5), a2, b2, c2, 1e-9), 1);
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint2d(1, 0), a2, b2, c2, 1e-9), 1);
  // (2, 2): parts 2 + 2 + 2 = 6 against 2 (1 + tol).
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint2d(2, 2), a2, b2, c2, 0.001), 0);
  EXPECT_EQ(ZmMathd::PointIsInTriangle(ZmPoint2d(2, 2), a2, b2, c2, 2.0001), 1);
  EXPECT_EQ(ZmMathf::PointIsInTriangle(ZmPoint2f(0.5f, 0.5f), ZmPoint2f(0, 0), ZmPoint2f(2, 0), ZmPoint2f(0, 2), 1e-6f),
            1);
  // Areas: right triangle 2 x 3 is 3 in either orientation and dimension.
  EXPECT_EQ(ZmMathd::TriangleSurface(ZmPoint3d(0, 0, 0), ZmPoint3d(2, 0, 0), ZmPoint3d(0, 3, 0)), 3.0);
  EXPECT_EQ(ZmMathd::TriangleSurface(ZmPoint2d(0, 0), ZmPoint2d(0, 3), ZmPoint2d(2, 0)), 3.0);
  EXPECT_EQ(ZmMathf::TriangleSurface(ZmPoint3f(0, 0, 1), ZmPoint3f(0, 2, 1), ZmPoint3f(0, 0, 4)), 3.0f);
}

TEST(Intersections, ProjectionAlongADirectionIntoATriangle) {
  const ZmPoint3d a(0, 0, 0), b(1, 0, 0), c(0, 1, 0);
  ZmPoint3d hit;
  EXPECT_EQ(ZmMathd::ProjectInTriangle(ZmPoint3d(0.2, 0.2, 5), a, b, c, ZmVector3d(0, 0, -1), hit), 1);
  ExpectPoint(hit, 0.2, 0.2, 0);
  // Outside: 0, but hit keeps the intersection with the plane.
  EXPECT_EQ(ZmMathd::ProjectInTriangle(ZmPoint3d(2, 2, 5), a, b, c, ZmVector3d(0, 0, 1), hit), 0);
  ExpectPoint(hit, 2, 2, 0);
  // Parallel to the plane, or no plane: hit is invalid.
  EXPECT_EQ(ZmMathd::ProjectInTriangle(ZmPoint3d(0.2, 0.2, 5), a, b, c, ZmVector3d(1, 0, 0), hit), 0);
  EXPECT_EQ(hit.IsValid(), 0);
  hit = ZmPoint3d(0, 0, 0);
  EXPECT_EQ(ZmMathd::ProjectInTriangle(ZmPoint3d(0.2, 0.2, 5), a, a, c, ZmVector3d(0, 0, 1), hit), 0);
  EXPECT_EQ(hit.IsValid(), 0);
}

TEST(Intersections, EvenOddPolygonTest) {
  const ZmVector3d up(0, 0, 1);
  const WbArrayTempl<ZmPoint3d> square =
      Polyline({ZmPoint3d(0, 0, 0), ZmPoint3d(2, 0, 0), ZmPoint3d(2, 2, 0), ZmPoint3d(0, 2, 0)});
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(1, 1, 0), square, up), 1);
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(3, 1, 0), square, up), 0);
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(-1, 1, 0), square, up), 0);
  // A concave L: the notch is outside although the ray crosses the polygon twice.
  const WbArrayTempl<ZmPoint3d> ell = Polyline({ZmPoint3d(0, 0, 0), ZmPoint3d(4, 0, 0), ZmPoint3d(4, 1, 0),
                                                ZmPoint3d(1, 1, 0), ZmPoint3d(1, 4, 0), ZmPoint3d(0, 4, 0)});
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(0.5, 0.5, 0), ell, up), 1);
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(0.5, 3, 0), ell, up), 1);
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(-1, 0.5, 0), ell, up), 0);
  // Fewer than three vertices, or no usable normal.
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(1, 1, 0), Polyline({ZmPoint3d(0, 0, 0), ZmPoint3d(2, 2, 0)}), up),
            0);
  EXPECT_EQ(ZmMathd::IsPointInsidePolygon(ZmPoint3d(1, 1, 0), square, ZmVector3d(0, 0, 0)), 0);
  WbArrayTempl<ZmPoint3f> squareF;
  for (const ZmPoint3d& p : square) squareF.Add(ZmPoint3f(p));
  EXPECT_EQ(ZmMathf::IsPointInsidePolygon(ZmPoint3f(1, 1, 0), squareF, ZmVector3f(0, 0, 1)), 1);
}

TEST(Intersections, PolylineCutByAPlane) {
  // Plane x = 1. The path (0,0)->(2,0)->(2,2)->(0,2)->(0,4) crosses it at (1,0) and (1,2).
  const WbArrayTempl<ZmPoint3d> path =
      Polyline({ZmPoint3d(0, 0, 0), ZmPoint3d(2, 0, 0), ZmPoint3d(2, 2, 0), ZmPoint3d(0, 2, 0), ZmPoint3d(0, 4, 0)});
  const ZmPoint3d onPlane(1, 0, 0);
  const ZmVector3d normal(2, 0, 0);  // not unit: normalised first
  WbArrayTempl<ZmPoint3d> cut;
  ASSERT_EQ(ZmMathd::ComputeIntersectionCurveToPlan(path, onPlane, normal, ZmNonValP3d, ZmNonValV3d, cut), 2);
  ExpectPoint(cut[0], 1, 0, 0);
  ExpectPoint(cut[1], 1, 2, 0);
  // Bounded to y >= 1 by the second pair.
  ASSERT_EQ(
      ZmMathd::ComputeIntersectionCurveToPlan(path, onPlane, normal, ZmPoint3d(0, 1, 0), ZmVector3d(0, 1, 0), cut), 1);
  ExpectPoint(cut[0], 1, 2, 0);
  // A vertex on the plane counts once; a segment lying in it gives both ends.
  ASSERT_EQ(
      ZmMathd::ComputeIntersectionCurveToPlan(Polyline({ZmPoint3d(0, 0, 0), ZmPoint3d(1, 5, 0), ZmPoint3d(2, 0, 0)}),
                                              onPlane, normal, ZmNonValP3d, ZmVector3d(0, 0, 0), cut),
      1);
  ExpectPoint(cut[0], 1, 5, 0);
  ASSERT_EQ(
      ZmMathd::ComputeIntersectionCurveToPlan(Polyline({ZmPoint3d(1, 0, 0), ZmPoint3d(1, 1, 0), ZmPoint3d(3, 1, 0)}),
                                              onPlane, normal, ZmNonValP3d, ZmNonValV3d, cut),
      2);
  ExpectPoint(cut[1], 1, 1, 0);
  // Crossing at a quarter of a slanted segment: (0,0,0) -> (4,4,4) meets x = 1 at (1,1,1).
  ASSERT_EQ(ZmMathd::ComputeIntersectionCurveToPlan(Polyline({ZmPoint3d(0, 0, 0), ZmPoint3d(4, 4, 4)}), onPlane, normal,
                                                    ZmNonValP3d, ZmNonValV3d, cut),
            1);
  ExpectPoint(cut[0], 1, 1, 1);
  // No plane: -1 and an empty result; empty and one-point curves give 0.
  EXPECT_EQ(ZmMathd::ComputeIntersectionCurveToPlan(path, onPlane, ZmVector3d(0, 0, 0), ZmNonValP3d, ZmNonValV3d, cut),
            -1);
  EXPECT_EQ(cut.GetSize(), 0u);
  EXPECT_EQ(ZmMathd::ComputeIntersectionCurveToPlan(WbArrayTempl<ZmPoint3d>(), onPlane, normal, ZmNonValP3d,
                                                    ZmNonValV3d, cut),
            0);
  EXPECT_EQ(ZmMathd::ComputeIntersectionCurveToPlan(Polyline({ZmPoint3d(0, 0, 0)}), onPlane, normal, ZmNonValP3d,
                                                    ZmNonValV3d, cut),
            0);
  WbArrayTempl<ZmPoint3f> pathF, cutF;
  for (const ZmPoint3d& p : path) pathF.Add(ZmPoint3f(p));
  EXPECT_EQ(ZmMathf::ComputeIntersectionCurveToPlan(pathF, ZmPoint3f(1, 0, 0), ZmVector3f(1, 0, 0), ZmNonValP3f,
                                                    ZmNonValV3f, cutF),
            2);
}
