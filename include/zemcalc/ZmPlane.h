#pragma once

// ZmPlaned / ZmPlanef: an infinite plane given by a point on it and a unit normal, with an
// optional point that fixes the direction of the plane's X axis and an optional band of
// signed distances that bounds the region of interest around it.
#include <wbcore/WbString.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint3.h"

template <class T>
class ZMCALC_API_FORWARD ZmFrameT;

template <class T>
class ZMCALC_API ZmPlaneT {
public:
  using Scalar = T;
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;

  // The plane z = 0 through the origin.
  ZmPlaneT();
  // Through point with the given normal. ok receives 1 and the normal is normalised when its
  // length, rounded to float, exceeds 1.0e-6 (the float value); otherwise ok receives 0 and the
  // normal becomes (0, 0, 1).
  ZmPlaneT(const Point3& point, const Vector3& normal, unsigned char& ok);
  // Through a, b and c, with the normal (b - a) x (c - a) and a as its point; the same rule and
  // flag as above (collinear or coincident points give 0).
  ZmPlaneT(const Point3& a, const Point3& b, const Point3& c, unsigned char& ok);
  // The other precision, field by field (implicit, like every twin conversion).
  template <class U, std::enable_if_t<!std::is_same<U, T>::value, int> = 0>
  ZmPlaneT(const ZmPlaneT<U>& other)
      : m_point(other.GetPointOnPlane()), m_normal(other.GetNormal()), m_xAxisPoint(other.GetXAxisPoint()) {
    U low = zm::Invalid<U>(), high = zm::Invalid<U>();
    other.GetLimitBand(low, high);
    m_bandLow = zm::ConvertScalar<T>(low);
    m_bandHigh = zm::ConvertScalar<T>(high);
  }
  virtual ~ZmPlaneT() = default;
  ZmPlaneT(const ZmPlaneT&) = default;
  ZmPlaneT& operator=(const ZmPlaneT&) = default;

  const Point3& GetPointOnPlane() const { return m_point; }
  const Vector3& GetNormal() const { return m_normal; }
  virtual void SetPointOnPlane(const Point3& point) { m_point = point; }
  // Stores the normal normalised; returns 0 and keeps the current normal when it is too short
  // (the same 1.0e-6 rule as the constructor).
  virtual unsigned char SetNormal(const Vector3& normal);

  // The point that fixes the X axis of the plane's frame; invalid when none was set.
  const Point3& GetXAxisPoint() const { return m_xAxisPoint; }
  void SetXAxisPoint(const Point3& point) { m_xAxisPoint = point; }
  // Band of signed distances [low, high] along the normal; both invalid when none was set.
  void SetLimitBand(T low, T high) {
    m_bandLow = low;
    m_bandHigh = high;
  }
  // Returns 1 when a band is set.
  unsigned char GetLimitBand(T& low, T& high) const;
  // 1 when the signed distance of p lies in the band (always 1 when no band is set).
  unsigned char IsInLimitBand(const Point3& p) const;

  // Validity of both the point and the normal.
  unsigned char IsValid() const { return (m_point.IsValid() && m_normal.IsValid()) ? 1 : 0; }
  // (p - point) . normal: positive on the side the normal points to.
  T SignedDistance(const Point3& p) const { return Vector3(p - m_point).dot(m_normal); }
  // The orthogonal projection of p (ZmMath ProjOnPlane).
  Point3 ProjectPoint(const Point3& p) const;
  // Meets the line through p with direction dir. With d = normal . dir, when tol > |d| hit is
  // invalidated and the result is 0 (|d| equal to tol still intersects); otherwise
  // hit = p + dir ((point - p) . normal / d) and the result is 1.
  unsigned char IntersectWithLine(const Point3& p, const Vector3& dir, Point3& hit, T tol) const;
  // The line where the two planes meet: its point nearest to the origin and its unit
  // direction (this normal x other normal). 0 with both outputs invalidated for parallel planes.
  unsigned char IntersectWithPlane(const ZmPlaneT& other, Point3& linePoint, Vector3& lineDir) const;

  // The plane's Cartesian frame: origin the point on the plane, Z the normal, and X towards
  // the X-axis point: its offset from the origin with the component along the normal removed.
  // When no X-axis point is set, or it is unusable or lies on the normal through the origin
  // (no direction is left once projected), X and Y are the orthogonal completion of the
  // normal (ZmMath OrthogonalVectors), the rule of ZmFrame's origin-and-direction constructor
  // without reference. Y = Z x X. Returns 1, or 0 with frame untouched when the point or the
  // normal holds the invalid marker or a NaN.
  unsigned char GetFrame(ZmFrameT<T>& frame) const;

  // "Origin: %s / Normal: %s": the origin with the given number format, the normal with "%.3f".
  WbString GetString(const wchar_t* numberFormat = L"%g", const wchar_t* separator = L", ") const;

private:
  Point3 m_point;
  Vector3 m_normal;
  Point3 m_xAxisPoint = Point3(WbCoord3DT<T>::INVALID);
  T m_bandLow = zm::Invalid<T>();
  T m_bandHigh = zm::Invalid<T>();
};

extern template class ZmPlaneT<double>;
extern template class ZmPlaneT<float>;

using ZmPlaned = ZmPlaneT<double>;
using ZmPlanef = ZmPlaneT<float>;
