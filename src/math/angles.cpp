#include "zemcalc/ZmMathAngle.h"

#include <cmath>

#include "foundation/build_info.h"
#include "math/metric_kernels.h"

ZM_BUILD_INFO(angles)

using zm::metric::AreUsable;

namespace {

// acos of the dot product of the unit vectors of u and v, clamped to [-1, 1]; the invalid
// value when either cannot be normalised.
template <class V, class T = typename V::Scalar>
T UnsignedAngle(const V& u, const V& v) {
  V a(u), b(v);
  if (!a.unitize(T(zm::kTolerance6)) || !b.unitize(T(zm::kTolerance6))) return zm::Invalid<T>();
  T cosine = a.dot(b);
  if (cosine > T(1)) cosine = T(1);
  if (cosine < T(-1)) cosine = T(-1);
  return std::acos(cosine);
}

// Radians to degrees with the float value of 180/pi; the invalid value passes through.
template <class T>
T ToDegrees(T radians) {
  return radians == zm::Invalid<T>() ? radians : radians * T(zm::kRadToDegF);
}

// The angle in degrees, negated when the turn is clockwise (the invalid value never is).
template <class T>
T Signed(T degrees, T turn) {
  return (degrees != zm::Invalid<T>() && turn < 0) ? -degrees : degrees;
}

template <class T>
bool IsLongerThanTolerance(const ZmVector3T<T>& v) {
  return zm::RoundToFloat(v.length()) > T(zm::kTolerance6);
}

}  // namespace

template <class T>
T ZmMathAngleT<T>::AngleRad(const Vector3& u, const Vector3& v) {
  return UnsignedAngle(u, v);
}

template <class T>
T ZmMathAngleT<T>::AngleRad(const Vector2& u, const Vector2& v) {
  return UnsignedAngle(u, v);
}

template <class T>
T ZmMathAngleT<T>::AngleRad(const Point3& vertex, const Point3& p2, const Point3& p3) {
  if (!AreUsable(vertex, p2, p3)) return zm::Invalid<T>();
  return UnsignedAngle(Vector3(p3 - vertex), Vector3(p2 - vertex));
}

template <class T>
T ZmMathAngleT<T>::AngleDeg(const Vector3& u, const Vector3& v) {
  return ToDegrees(AngleRad(u, v));
}

template <class T>
T ZmMathAngleT<T>::AngleDeg(const Vector2& u, const Vector2& v) {
  return ToDegrees(AngleRad(u, v));
}

template <class T>
T ZmMathAngleT<T>::AngleDeg(const Point3& vertex, const Point3& p2, const Point3& p3) {
  return ToDegrees(AngleRad(vertex, p2, p3));
}

template <class T>
T ZmMathAngleT<T>::RotationAngle(const Vector2& u, const Vector2& v) {
  return Signed(AngleDeg(u, v), u.cross(v));
}

template <class T>
T ZmMathAngleT<T>::RotationAngle(const Vector3& u, const Vector3& v, const Vector3& axis,
                                 unsigned char projectOnPlane) {
  if (!AreUsable(axis)) return zm::Invalid<T>();
  Vector3 a(u), b(v);
  if (projectOnPlane) {
    a = a - axis * a.dot(axis);
    b = b - axis * b.dot(axis);
  }
  return Signed(AngleDeg(a, b), a.cross(b).dot(axis));
}

template <class T>
ZmVector3T<T> ZmMathAngleT<T>::Normal(const Point3& p1, const Point3& p2, const Point3& p3) {
  if (!AreUsable(p1, p2, p3)) return Vector3(WbCoord3DT<T>::INVALID);
  Vector3 normal = Vector3(p2 - p1).cross(p3 - p2);
  normal.unitize(T(zm::kTolerance6));
  return normal;
}

template <class T>
ZmVector3T<T> ZmMathAngleT<T>::Normal(const Point3& p1, const Point3& p2, const Point3& p3, const Point3& p4,
                                      unsigned char unitize) {
  if (!AreUsable(p1, p2, p3, p4)) return Vector3(WbCoord3DT<T>::INVALID);
  Vector3 normal = Vector3(p3 - p1).cross(p4 - p2);
  if (unitize) normal.unitize(T(zm::kTolerance6));
  return normal;
}

template <class T>
void ZmMathAngleT<T>::OrthogonalVectors(Vector3& u, Vector3& v, Vector3& w) {
  if (!AreUsable(u) || !IsLongerThanTolerance(u)) u = Vector3(0, 0, 1);
  v = Vector3(-u.y, u.x, T(0));
  if (!IsLongerThanTolerance(v)) {
    v = Vector3(u.z, T(0), T(0));
    w = Vector3(0, 1, 0);
  } else {
    w = u.cross(v);
  }
  u.unitize(T(zm::kTolerance6));
  v.unitize(T(zm::kTolerance6));
  // w was formed from the raw u and v, so its length is |u|^2: below about 1e-3 for u it is
  // too short to normalise. The product of the unit u and v is then the unit w.
  if (!w.unitize(T(zm::kTolerance6))) {
    w = u.cross(v);
    w.unitize(T(zm::kTolerance6));
  }
}

template class ZmMathAngleT<double>;
template class ZmMathAngleT<float>;
