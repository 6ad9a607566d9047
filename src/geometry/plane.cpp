#include "zemcalc/ZmPlane.h"

#include <wbcore/WbLocalize.h>

#include <exception>

#include "zemcalc/ZmMath.h"
#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"

ZM_BUILD_INFO(plane)

namespace {
// Normalises the plane normal: 1 when its length, rounded to float, exceeds 1.0e-6.
template <class T>
unsigned char NormaliseNormal(ZmVector3T<T>& normal) {
  const T length = normal.length();
  if (!normal.IsValid() || !(zm::RoundToFloat(length) > T(zm::kTolerance6))) return 0;
  normal /= length;
  return 1;
}
}  // namespace

template <class T>
ZmPlaneT<T>::ZmPlaneT() : m_point(0, 0, 0), m_normal(0, 0, 1) {}

template <class T>
ZmPlaneT<T>::ZmPlaneT(const Point3& point, const Vector3& normal, unsigned char& ok) : m_point(point), m_normal(normal) {
  ok = NormaliseNormal(m_normal);
  if (!ok) m_normal = Vector3(0, 0, 1);
}

template <class T>
ZmPlaneT<T>::ZmPlaneT(const Point3& a, const Point3& b, const Point3& c, unsigned char& ok)
    : ZmPlaneT(a, Vector3(b - a).cross(c - a), ok) {}

template <class T>
unsigned char ZmPlaneT<T>::SetNormal(const Vector3& normal) {
  Vector3 candidate(normal);
  if (!NormaliseNormal(candidate)) return 0;
  m_normal = candidate;
  return 1;
}

template <class T>
unsigned char ZmPlaneT<T>::GetLimitBand(T& low, T& high) const {
  low = m_bandLow;
  high = m_bandHigh;
  return (m_bandLow != zm::Invalid<T>() && m_bandHigh != zm::Invalid<T>()) ? 1 : 0;
}

template <class T>
unsigned char ZmPlaneT<T>::IsInLimitBand(const Point3& p) const {
  T low, high;
  if (!GetLimitBand(low, high)) return 1;
  const T d = SignedDistance(p);
  return (low <= d && d <= high) ? 1 : 0;
}

template <class T>
ZmPoint3T<T> ZmPlaneT<T>::ProjectPoint(const Point3& p) const {
  return ZmMathT<T>::ProjOnPlane(p, *this);
}

template <class T>
unsigned char ZmPlaneT<T>::IntersectWithLine(const Point3& p, const Vector3& dir, Point3& hit, T tol) const {
  const T d = m_normal.dot(dir);
  if (tol > (d < 0 ? -d : d)) {
    hit.Invalidate();
    return 0;
  }
  hit = p + dir * (Vector3(m_point - p).dot(m_normal) / d);
  return 1;
}

template <class T>
unsigned char ZmPlaneT<T>::IntersectWithPlane(const ZmPlaneT& other, Point3& linePoint, Vector3& lineDir) const {
  const Vector3 u = m_normal.cross(other.m_normal);
  const T uu = u.dot(u);
  Vector3 direction(u);
  if (!direction.unitize(T(zm::kTolerance6))) {
    linePoint.Invalidate();
    lineDir.Invalidate();
    return 0;
  }
  // With n1.x = d1 and n2.x = d2, the point of the line nearest to the origin is
  // (d1 (n2 x u) + d2 (u x n1)) / (u.u).
  const T d1 = Vector3(m_point).dot(m_normal);
  const T d2 = Vector3(other.m_point).dot(other.m_normal);
  linePoint = Point3((other.m_normal.cross(u) * d1 + u.cross(m_normal) * d2) / uu);
  lineDir = direction;
  return 1;
}

template <class T>
WbString ZmPlaneT<T>::GetString(const wchar_t* numberFormat, const wchar_t* separator) const try {
  const zm::BoundaryCall boundary;
  const WbString origin = m_point.GetString(numberFormat, separator);
  const WbString normal = m_normal.GetString(L"%.3f", separator);
  return WbLocalizeStringVW(L"Origin: %s / Normal: %s", origin.GetString(), normal.GetString());
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

template class ZmPlaneT<double>;
template class ZmPlaneT<float>;
