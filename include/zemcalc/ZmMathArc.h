#pragma once

// Circles, arcs and ellipses of ZmMathd / ZmMathf: construction, evaluation and tessellation.
//
// An arc lives in space (a 2D arc is one with z = 0 and the normal +Z or -Z): its centre, its
// radius, the unit normal of its plane, the unit direction x from the centre to its start, and
// its sweep in radians, in (0, 2 pi], counter-clockwise about the normal (right-hand rule).
// With y = normal x x, the point at parameter t in [0, 1] is
//   centre + radius (cos(t sweep) x + sin(t sweep) y)
// and the unit tangent there -sin(t sweep) x + cos(t sweep) y (the direction of travel).
//
// Every construction computes in double and rounds the arc to the twin at the end. A
// construction that fails leaves the arc with the invalid marker in every field and says why:
//   ZmArcCoincident  two of the defining points coincide (or a radius is 0);
//   ZmArcCollinear   the points or the lines define no circle (collinear points, an end on
//                    the start's tangent line, parallel lines);
//   ZmArcBadInput    a NaN, an infinity or the invalid marker among the arguments, a radius
//                    or a tolerance that is not positive, lines that do not meet, too many
//                    points asked of a tessellation.
// Points coincide, and points are collinear, when the distance or the sine of the angle at
// stake is within 16 eps of the size involved (eps the twin's machine epsilon).
#include <wbcore/WbArray.h>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

enum ZmArcStatus : int { ZmArcOk = 0, ZmArcCoincident = 1, ZmArcCollinear = 2, ZmArcBadInput = 3 };

template <class T>
struct ZmArcT {
  ZmPoint3T<T> center = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> normal = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> startDirection = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  T radius = zm::Invalid<T>();
  T sweep = zm::Invalid<T>();
  ZmArcStatus status = ZmArcBadInput;
};

// An ellipse: centre, unit major axis u, unit normal n, semi-axes a >= b > 0 along u and
// v = n x u. The point at parameter t (radians) is centre + a cos(t) u + b sin(t) v.
template <class T>
struct ZmEllipseT {
  ZmPoint3T<T> center = ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> majorAxis = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  ZmVector3T<T> normal = ZmVector3T<T>(WbCoord3DT<T>::INVALID);
  T a = zm::Invalid<T>();
  T b = zm::Invalid<T>();
};

template <class T>
class ZMCALC_API ZmMathArcT {
public:
  using Point2 = ZmPoint2T<T>;
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;
  using Arc = ZmArcT<T>;

  // The arc from p0 through p1 to p2: the circle through the three points, its normal
  // (p1 - p0) x (p2 - p0) normalised, so that p0, p1, p2 come in that order counter-clockwise.
  // The centre is p + (|u|^2 (v x w) + |v|^2 (w x u)) / (2 |w|^2) with u, v the two edges from
  // the vertex p opposite the longest side (the most accurate of the three) and w = u x v;
  // the radius is the mean distance of the three points to it. The full circle is the same
  // arc with sweep 2 pi. The 2D form has the normal +Z for a counter-clockwise triple, -Z else.
  static Arc ArcThroughPoints(const Point3& p0, const Point3& p1, const Point3& p2);
  static Arc ArcThroughPoints(const Point2& p0, const Point2& p1, const Point2& p2);

  // The arc about center from start to the direction of end, counter-clockwise about normal
  // (any length): both points are first projected onto the plane through center normal to it.
  // The radius is the start's distance; end only gives the direction where the arc stops.
  // An end in the start's direction (an angle within 16 eps of 0) gives the full circle.
  static Arc ArcFromCenter(const Point3& start, const Point3& end, const Point3& center, const Vector3& normal);

  // The arc that leaves start along tangent (any length) and ends at end: its centre lies on
  // the start's normal within the plane of tangent and end - start, at the distance
  // |end - start|^2 / (2 h), h the height of end over the tangent line; the sweep is twice
  // the angle between tangent and chord. An end on the tangent line gives ZmArcCollinear.
  static Arc ArcFromTangent(const Point3& start, const Vector3& tangent, const Point3& end);

  // The fillet of the given radius between two lines that meet: leg k runs from the corner
  // along direction k (any length, pointing from the corner along the part that is kept). The
  // centre lies on the bisector at radius / sin(phi) from the corner, phi half the angle
  // between the legs, and the arc runs from its tangent point on leg 1 (at radius / tan(phi)
  // from the corner) to that on leg 2, the short way. Lines whose closest points are farther
  // apart than 1e-6 times the size of the corner (and of 1) do not meet: ZmArcBadInput;
  // parallel or opposite legs: ZmArcCollinear.
  static Arc Fillet(const Point3& point1, const Vector3& direction1, const Point3& point2, const Vector3& direction2,
                    T radius);

  // Point and unit tangent at parameter t (t is not clamped, so 0 <= t <= 1 stays on the
  // arc); the invalid point or vector for an arc that is not ZmArcOk or a t that is not finite.
  static Point3 PointAtParameter(const Arc& arc, T t);
  static Vector3 TangentAtParameter(const Arc& arc, T t);
  // radius * sweep, or the invalid marker.
  static T ArcLength(const Arc& arc);

  // Points along the arc, evenly spaced in angle, first and last on its ends (a full circle
  // repeats its start at the end), with the fewest chords such that every chord's sagitta
  // r (1 - cos(d / 2)) is within chordTolerance and every angle step d within maxAngle: the
  // step is min(maxAngle, 2 acos(1 - chordTolerance / r)), then the count of chords the
  // smallest that meets both. A chord never spans more than pi. chordTolerance <= 0 or
  // maxAngle <= 0 drop that limit. points is replaced; more than 2^24 chords: ZmArcBadInput,
  // points emptied.
  static ZmArcStatus TessellateArc(const Arc& arc, T chordTolerance, T maxAngle, WbArrayTempl<Point3>& points);
  // The same along the ellipse from parameter t0 to t1 (either way): evenly spaced in the
  // parameter, every chord's deviation from the curve (the distance of the point at the mid
  // parameter to the chord, its largest for an ellipse) within chordTolerance, and the turn of
  // the tangent over every chord within maxAngle. The fewest chords are found by bisection on
  // the count. An ellipse with a < b, b <= 0 or a non-unit axis: ZmArcBadInput.
  static ZmArcStatus TessellateEllipse(const ZmEllipseT<T>& ellipse, T t0, T t1, T chordTolerance, T maxAngle,
                                       WbArrayTempl<Point3>& points);
};

using ZmArcd = ZmArcT<double>;
using ZmArcf = ZmArcT<float>;
using ZmEllipsed = ZmEllipseT<double>;
using ZmEllipsef = ZmEllipseT<float>;

extern template class ZmMathArcT<double>;
extern template class ZmMathArcT<float>;
