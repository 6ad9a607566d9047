#pragma once

// The metric core of ZmMathd / ZmMathf: distances between points, lines, segments and planes
// and the orthogonal projections onto them. The polyline, angle, rotation and point-cloud
// statics (ZmMathPolyline.h, ZmMathAngle.h, ZmMathRotation.h, ZmMathPointCloud.h) follow the
// same rules:
//
// - Lengths are rounded to single precision, also in the double twin, before they are used
//   further or returned, so that both twins report the same distances; the one exception is
//   the 2D Distance, which keeps the full precision of its class. The float twin computes in
//   float and takes its square roots in double, rounded back.
// - Thresholds are float literals widened in the double twin: a direction d is degenerate
//   when d.d <= 1e-14f (9.9999998245167e-15 as a double); directions are normalised with
//   unitize(1e-6f) (9.999999974752427e-7), which refuses anything not longer than that.
// - An undefined scalar is the invalid value -1.0e32f, widened (-1.0000000331813535e32), and
//   an undefined point or vector holds that value in every component. Compare for equality.
// - Plane normals are used as stored (unit length); a normal or axis passed explicitly is
//   used as passed, without normalisation, unless a function says otherwise.
// - Bad input. A coordinate is unusable when it holds the invalid marker or is NaN. A function
//   given an unusable point or vector returns its failure value instead of computing with it:
//   the invalid value for a scalar, the invalid point or vector, 0 for a yes/no result, each as
//   stated per function. Nothing here throws, allocates or reads outside the arrays given.
#include <wbcore/WbArray.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API_FORWARD ZmPlaneT;

template <class T>
class ZMCALC_API ZmMathDistanceT {
public:
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;
  using Point2 = ZmPoint2T<T>;
  using Plane = ZmPlaneT<T>;

  // |p - q| rounded to float; the invalid value for an unusable point.
  static T Distance(const Point3& p, const Point3& q);
  // |p - q| in the full precision of the class; the invalid value for an unusable point.
  static T Distance(const Point2& p, const Point2& q);

  // Distance from p to the infinite line through linePoint with direction dir, rounded to
  // float. A degenerate direction makes the line the point linePoint: the result is then
  // Distance(p, linePoint). The invalid value for an unusable argument.
  static T DistToLine(const Point3& p, const Vector3& dir, const Point3& linePoint);
  // Distance from p to the plane, rounded to float and never negative. The invalid value for
  // an unusable p or a plane with an unusable point or normal.
  static T DistToPlane(const Point3& p, const Plane& plane);
  // Signed distance from p to the plane through a, b and c (normal (b - a) x (c - a)),
  // rounded to float: positive on the side the normal points to. normalOut (when given)
  // receives the unit normal. Collinear or coincident a, b, c (the plane cannot be built) or
  // an unusable point give the invalid value and leave normalOut untouched.
  static T SignedDistToPlane(const Point3& p, const Point3& a, const Point3& b, const Point3& c,
                             Vector3* normalOut = nullptr);
  // Distance from p to the segment [a, b], rounded to float; toFoot = foot - p, the foot being
  // the nearest point of the segment (a for a degenerate segment). An unusable point gives
  // the invalid value and the invalid vector in toFoot.
  static T DistToSegment(const Point3& p, const Point3& a, const Point3& b, Vector3& toFoot);
  // Distance between the segments [p0, p1] and [q0, q1] from their closest points (clamped
  // parameters), rounded to float. Pairs whose D = (u.u)(v.v) - (u.v)^2 is below 1e-6f
  // (u = p1 - p0, v = q1 - q0) are treated as parallel: the nearest point to p0 is looked for
  // on the second segment first. Both segments degenerate: the distance between the points.
  // When only the second segment is degenerate (its direction degenerate as above) the roles
  // are swapped, so that the result is the distance from that point to the first segment
  // (the parallel rule alone would measure it from p0). The invalid value for an unusable point.
  static T DistBetweenSegments(const Point3& p0, const Point3& p1, const Point3& q0, const Point3& q1);
  // Distance between the line through pt1 with direction dir1 and the line through pt2 with
  // direction dir2, each line represented by its segment of half-length
  // h = max(1, |pt1 - pt2| rounded to float) centred on its point (so the result is the true
  // line distance only when the closest points lie within h of pt1 and pt2). 0 when a
  // direction cannot be normalised or a point is unusable.
  static T DistLineToLine(const Vector3& dir1, const Point3& pt1, const Vector3& dir2, const Point3& pt2);

  // 1 when tol >= DistToPlane(p, plane) (inclusive; a negative tol accepts nothing); 0 for
  // an unusable p or plane.
  static unsigned char PointIsInPlane(const Point3& p, const Plane& plane, T tol);
  // The flat list x0, y0, z0, x1, ... tested point by point with PointIsInPlane: 1 when every
  // whole point lies within tol, 0 at the first that does not (or is unusable). Fewer than
  // three coordinates give 0; trailing coordinates that do not make a whole point are ignored.
  static unsigned char PointsInPlane(const WbArrayTempl<T>& coords, const Plane& plane, T tol);

  // Orthogonal projection of p onto the plane through planePoint with the given unit normal
  // (used as passed): p - ((p - planePoint).normal) normal. A p that is not valid (holds the
  // marker) is returned as it is; a p holding a NaN, or an unusable normal or planePoint, gives
  // the invalid point.
  static Point3 ProjOnPlane(const Point3& p, const Vector3& normal, const Point3& planePoint);
  static Point3 ProjOnPlane(const Point3& p, const Plane& plane);
  // The component of v orthogonal to the unit normal: v - (v.normal) normal. The invalid vector
  // for an unusable argument.
  static Vector3 ProjVectOnPlane(const Vector3& v, const Vector3& normal);
  static Vector3 ProjVectOnPlane(const Vector3& v, const Plane& plane);
  // Foot of the perpendicular from p to the line through linePoint with direction dir;
  // *param (when given) receives t with foot = linePoint + t dir, measured in multiples of
  // dir. A degenerate dir or an unusable argument gives 0 with foot invalidated and param
  // untouched.
  static unsigned char ProjectOnLine(const Point3& p, const Vector3& dir, const Point3& linePoint, Point3& foot,
                                     T* param = nullptr);
  // Foot of p on the segment [a, b], clamped to its ends; *param (when given) receives its
  // parameter, 0 at a and 1 at b. A degenerate segment or an unusable point gives 0 and
  // writes neither foot nor param.
  static unsigned char ProjOnSegment(const Point3& p, const Point3& a, const Point3& b, Point3& foot,
                                     T* param = nullptr);
};

extern template class ZmMathDistanceT<double>;
extern template class ZmMathDistanceT<float>;
