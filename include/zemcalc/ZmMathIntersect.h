#pragma once

// Intersections and containment of ZmMathd / ZmMathf: segment against segment in 2D and 3D,
// half-line against segment, sphere against line and polyline, point in triangle (2D and 3D),
// point in polygon, projection along a direction into a triangle, a polyline cut by a plane,
// and the triangle areas they rest on.
//
// The rules of the distance statics hold here too: the invalid value is -1.0e32f widened
// (-1.0000000331813535e32), directions are normalised with unitize(1e-6f) (the float value,
// widened), yes/no results are unsigned char 1/0. Nothing here allocates, throws or reports
// errors: unsolvable or degenerate input gives 0 (-1 for IntersectSpherePolyline and
// ComputeIntersectionCurveToPlan), and the segment tests mark their parameters invalid.
#include <wbcore/WbArray.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API ZmMathIntersectT {
 public:
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;
  using Point2 = ZmPoint2T<T>;

  // Area of the triangle a b c, never negative: half the length of (b - a) x (c - a) in 3D,
  // half the magnitude of the scalar cross product in 2D, in the full precision of the class
  // (an area is not one of the lengths that are rounded to float). Degenerate triangles give 0;
  // a NaN coordinate gives NaN.
  static T TriangleSurface(const Point3& a, const Point3& b, const Point3& c);
  static T TriangleSurface(const Point2& a, const Point2& b, const Point2& c);

  // The parameters (s, t) of p0 + s (p1 - p0) = q0 + t (q1 - q0), found by SolveSystem2x2 on
  // the rows (p1.x - p0.x, q0.x - q1.x), (p1.y - p0.y, q0.y - q1.y) with the right-hand side
  // (q0.x - p0.x, q0.y - p0.y) and the strict flag. Parallel (or degenerate) segments give 0 with
  // *s = *t = the invalid value. Otherwise *s and *t receive the solution and the result is 1
  // when both lie in [0, 1], or whenever infinite is set (the lines meet), else 0. s and t may
  // be null.
  static unsigned char IntersectSegments(const Point2& p0, const Point2& p1, const Point2& q0, const Point2& q1, T* s,
                                         T* t, unsigned char infinite);
  // The same in 3D, seen along normal: the four points are taken into the Cartesian frame
  // built on p0 and normal (its local z along normal) and the 2D rule applies to their local
  // x and y. When the system is solved, onP = p0 + s (p1 - p0) and onQ = q0 + t (q1 - q0) in
  // global coordinates, whether or not s and t lie in [0, 1]: skew segments give one point on
  // each. Unsolvable systems leave onP and onQ untouched.
  static unsigned char IntersectSegments(const Point3& p0, const Point3& p1, const Point3& q0, const Point3& q1,
                                         const Vector3& normal, Point3& onP, Point3& onQ, T* s, T* t,
                                         unsigned char infinite);
  // 1 when the half-line from start along dir meets the segment [a, b]: dir and b - a are
  // normalised (0 when either cannot be), the plane they span gives the normal n = unit(dir x
  // (b - a)) (0 for parallel directions), and the 3D segment test along n must give s >= 0
  // (ahead of start) and 0 <= t <= 1 (within the segment).
  static unsigned char IntersectHalfLineSegment(const Point3& start, const Vector3& dir, const Point3& a,
                                                const Point3& b);
  // The points where the line through p0 and p1 meets the sphere: with d = p1 - p0,
  // m = p0 - center, A = d.d, B = 2 d.m, C = m.m - radius^2 and disc = B^2 - 4AC, the
  // parameters t1 = (sqrt(disc) - B)/(2A) >= t2 = (-B - sqrt(disc))/(2A) give hit1 and hit2
  // (parameters not limited to [0, 1]); params (when given) receives t1, t2. 0 with nothing
  // written when |A| < 2^-23 (a zero-length line) or disc < 0 (no contact).
  static unsigned char IntersectSphereLine(const Point3& p0, const Point3& p1, const Point3& center, T radius,
                                           Point3& hit1, Point3& hit2, T* const params);
  // The first segment of the polyline that meets the sphere within its own extent: its index,
  // with hit the meeting point (of the two, the one with the smaller parameter when both lie
  // in [0, 1]). -1 and hit untouched when no segment does or the polyline has fewer than two
  // points.
  static int IntersectSpherePolyline(const Point3& center, T radius, const WbArrayTempl<Point3>& polyline, Point3& hit);
  // 1 when p lies in the triangle a b c: the areas of the three triangles that p makes with
  // the edges sum to less than (tol + 1) times the triangle's area (strictly). In 3D p must
  // first lie within 10 tol of the triangle's plane (0 when a, b, c do not make a plane):
  // tol is a relative tolerance on the areas and, ten times, an absolute one on the distance.
  static unsigned char PointIsInTriangle(const Point2& p, const Point2& a, const Point2& b, const Point2& c, T tol);
  static unsigned char PointIsInTriangle(const Point3& p, const Point3& a, const Point3& b, const Point3& c, T tol);
  // Even-odd test of p against the closed polygon (the last vertex joins the first), seen along
  // normal: a ray from p along the X axis of the frame of the plane through p with that normal
  // is tested against every edge with IntersectHalfLineSegment, and an odd number of hits
  // means inside. A ray through a vertex meets both edges there and counts twice. 0 for fewer
  // than three vertices or a normal that cannot be normalised.
  static unsigned char IsPointInsidePolygon(const Point3& p, const WbArrayTempl<Point3>& polygon,
                                            const Vector3& normal);
  // Projects p along dir onto the plane of the triangle a b c (hit; its intersection with the
  // line within 2^-23 of parallel counts as none) and tells whether the projection lies in the
  // triangle (PointIsInTriangle with tol 1e-3f). hit is invalidated first and keeps the
  // intersection point when there is one, also when the result is 0.
  static unsigned char ProjectInTriangle(const Point3& p, const Point3& a, const Point3& b, const Point3& c,
                                         const Vector3& dir, Point3& hit);
  // The points where the polyline `curve` crosses the plane through planePoint with normal
  // planeNormal, in the order of the polyline, appended to result after emptying it; returns
  // their count. A segment whose ends lie strictly on opposite sides gives the point
  // interpolated on the signed distances; a vertex lying exactly on the plane is a crossing
  // point itself, reported once (so a segment lying in the plane gives its two ends).
  // limitPoint and limitDirection bound the cut to a half-space, as when a section is taken of
  // one side of a part only: a crossing point x is kept when (x - limitPoint).limitDirection
  // >= 0. A limitDirection that is zero, NaN or invalid (ZmNonValV3d), or a limitPoint that
  // is invalid or NaN, sets no bound.
  // -1 with result emptied when planeNormal cannot be normalised or planePoint is not usable.
  static int ComputeIntersectionCurveToPlan(const WbArrayTempl<Point3>& curve, const Point3& planePoint,
                                            const Vector3& planeNormal, const Point3& limitPoint,
                                            const Vector3& limitDirection, WbArrayTempl<Point3>& result);
};

extern template class ZmMathIntersectT<double>;
extern template class ZmMathIntersectT<float>;
