#pragma once

// Angles between vectors, normals of triangles and quadrilaterals, and the orthonormal
// completion of a direction, in ZmMathd / ZmMathf. Thresholds and bad-input rules are those of
// ZmMathDistance.h.
//
// Radians are turned into degrees with the single-precision value of 180/pi, exactly
// 57.2957763671875 in both twins (not 57.29577951308232): a right angle is therefore
// 89.99999505843996 degrees in the double twin. The invalid value passes through unscaled.
#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API ZmMathAngleT {
public:
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;
  using Vector2 = ZmVector2T<T>;

  // The unsigned angle between u and v in radians, in [0, pi]: acos of the dot product of
  // their unit vectors, clamped to [-1, 1]. The invalid value when either cannot be normalised
  // with unitize(1e-6f) (zero, too short, invalid or NaN).
  static T AngleRad(const Vector3& u, const Vector3& v);
  static T AngleRad(const Vector2& u, const Vector2& v);
  // The angle at vertex between p3 - vertex and p2 - vertex, as above; the invalid value also
  // for an unusable point.
  static T AngleRad(const Point3& vertex, const Point3& p2, const Point3& p3);
  // The same three angles in degrees (see the factor above).
  static T AngleDeg(const Vector3& u, const Vector3& v);
  static T AngleDeg(const Vector2& u, const Vector2& v);
  static T AngleDeg(const Point3& vertex, const Point3& p2, const Point3& p3);

  // The signed angle in degrees from u to v: AngleDeg(u, v), negated when
  // u.x v.y - u.y v.x < 0, so positive when v lies counter-clockwise from u. The invalid value
  // (never negated) when either vector cannot be normalised.
  static T RotationAngle(const Vector2& u, const Vector2& v);
  // The signed angle in degrees from u to v about axis (used as passed): with projectOnPlane
  // set, u and v are first replaced by their components orthogonal to axis, x - (x.axis) axis;
  // the angle between them is negated when (u x v).axis < 0, so positive for a right-handed
  // turn about axis. The invalid value (never negated) when the vectors cannot be normalised
  // or the axis is unusable.
  static T RotationAngle(const Vector3& u, const Vector3& v, const Vector3& axis, unsigned char projectOnPlane);

  // The unit normal (p2 - p1) x (p3 - p2) of the triangle p1 p2 p3, normalised with
  // unitize(1e-6f); a degenerate triangle leaves the unnormalised, near-zero product. The
  // invalid vector for an unusable point.
  static Vector3 Normal(const Point3& p1, const Point3& p2, const Point3& p3);
  // The cross product (p3 - p1) x (p4 - p2) of the diagonals of the quadrilateral p1 p2 p3 p4,
  // whose length is twice its projected area; normalised with unitize(1e-6f) only when
  // `unitize` is non-zero. The invalid vector for an unusable point.
  static Vector3 Normal(const Point3& p1, const Point3& p2, const Point3& p3, const Point3& p4, unsigned char unitize);

  // Completes u into an orthonormal right-handed triple (u, v, w = u x v), all three unit:
  // u no longer than 1e-6f (rounded to float), or unusable, is replaced by (0, 0, 1) first;
  // v = (-u.y, u.x, 0), or, when that is no longer than 1e-6f (u along Z), v = (u.z, 0, 0)
  // and w = (0, 1, 0); otherwise w = u x v. The three are then normalised with unitize(1e-6f),
  // u in place. A w too short for that (|u| below about 1e-3 makes |u x v| = |u|^2 tiny) is
  // formed again from the normalised u and v, so the triple is orthonormal for any u.
  static void OrthogonalVectors(Vector3& u, Vector3& v, Vector3& w);
};

extern template class ZmMathAngleT<double>;
extern template class ZmMathAngleT<float>;
