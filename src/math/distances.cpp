#include "zemcalc/ZmMathDistance.h"

#include "zemcalc/ZmPlane.h"
#include "foundation/build_info.h"
#include "math/metric_kernels.h"

ZM_BUILD_INFO(distances)

using zm::metric::AreUsable;
using zm::metric::IsUsable;

namespace {

template <class T>
T Magnitude(T v) {
  return v < 0 ? -v : v;
}

template <class T>
bool IsUsablePlane(const ZmPlaneT<T>& plane) {
  return AreUsable(plane.GetPointOnPlane(), plane.GetNormal());
}

// The clamping of the first segment's numerator in the closest-point computation: the value
// is the numerator of the projection of the other segment's chosen end onto the first one,
// whose denominator is a = u.u.
template <class T>
void ClampFirstParameter(T value, T a, T& sN, T& sD) {
  if (value < 0) {
    sN = 0;
  } else if (value > a) {
    sN = sD;
  } else {
    sN = value;
    sD = a;
  }
}

// The closest points of [p0, p1] and [q0, q1] with clamped parameters s and t, from the
// numerators and denominators sN/sD and tN/tD; parameters closer to 0 than `small` snap to 0.
template <class T>
T ClampedSegmentDistance(const ZmPoint3T<T>& p0, const ZmPoint3T<T>& p1, const ZmPoint3T<T>& q0,
                         const ZmPoint3T<T>& q1) {
  const ZmVector3T<T> u = p1 - p0, v = q1 - q0, w = p0 - q0;
  const T a = u.dot(u), b = u.dot(v), c = v.dot(v), d = u.dot(w), e = v.dot(w);
  const T D = a * c - b * b;
  const T small = T(zm::kTolerance6);
  T sN, sD = D, tN, tD = D;
  if (D < small) {  // parallel: take s = 0 and look for t
    sN = 0;
    sD = 1;
    tN = e;
    tD = c;
  } else {
    sN = b * e - c * d;
    tN = a * e - b * d;
    if (sN < 0) {
      sN = 0;
      tN = e;
      tD = c;
    } else if (sN > sD) {
      sN = sD;
      tN = e + b;
      tD = c;
    }
  }
  if (tN < 0) {
    tN = 0;
    ClampFirstParameter(-d, a, sN, sD);
  } else if (tN > tD) {
    tN = tD;
    ClampFirstParameter(b - d, a, sN, sD);
  }
  const T sc = Magnitude(sN) < small ? T(0) : sN / sD;
  const T tc = Magnitude(tN) < small ? T(0) : tN / tD;
  return zm::RoundToFloat(ZmVector3T<T>(w + u * sc - v * tc).length());
}

}  // namespace

template <class T>
T ZmMathDistanceT<T>::Distance(const Point3& p, const Point3& q) {
  if (!AreUsable(p, q)) return zm::Invalid<T>();
  return zm::metric::RoundedDistance(p, q);
}

template <class T>
T ZmMathDistanceT<T>::Distance(const Point2& p, const Point2& q) {
  if (!IsUsable(p) || !IsUsable(q)) return zm::Invalid<T>();
  return p.DistanceToPoint(q);
}

template <class T>
T ZmMathDistanceT<T>::DistToLine(const Point3& p, const Vector3& dir, const Point3& linePoint) {
  if (!AreUsable(p, dir, linePoint)) return zm::Invalid<T>();
  const T squared = dir.dot(dir);
  if (zm::metric::IsDegenerate(squared)) return zm::metric::RoundedDistance(p, linePoint);
  const T t = -(Vector3(linePoint - p).dot(dir)) / squared;
  const Point3 foot = linePoint + dir * t;
  return zm::metric::RoundedDistance(foot, p);
}

template <class T>
T ZmMathDistanceT<T>::DistToPlane(const Point3& p, const Plane& plane) {
  if (!AreUsable(p) || !IsUsablePlane(plane)) return zm::Invalid<T>();
  return zm::metric::RoundedDistance(ProjOnPlane(p, plane), p);
}

template <class T>
T ZmMathDistanceT<T>::SignedDistToPlane(const Point3& p, const Point3& a, const Point3& b, const Point3& c,
                                        Vector3* normalOut) {
  if (!AreUsable(p, a, b, c)) return zm::Invalid<T>();
  unsigned char ok = 0;
  const Plane plane(a, b, c, ok);
  if (!ok) return zm::Invalid<T>();
  const Vector3 r = plane.ProjectPoint(p) - p;
  if (normalOut) *normalOut = plane.GetNormal();
  const T distance = zm::RoundToFloat(r.length());
  return plane.GetNormal().dot(r) > 0 ? -distance : distance;
}

template <class T>
T ZmMathDistanceT<T>::DistToSegment(const Point3& p, const Point3& a, const Point3& b, Vector3& toFoot) {
  if (!AreUsable(p, a, b)) {
    toFoot.Invalidate();
    return zm::Invalid<T>();
  }
  return zm::metric::DistanceToSegment(p, a, b, toFoot);
}

template <class T>
T ZmMathDistanceT<T>::DistBetweenSegments(const Point3& p0, const Point3& p1, const Point3& q0, const Point3& q1) {
  if (!AreUsable(p0, p1, q0, q1)) return zm::Invalid<T>();
  // With the second segment reduced to a point the parallel branch would fix s = 0 and measure
  // from p0; distance is symmetric, so measure from that point to the first segment instead.
  const Vector3 u = p1 - p0, v = q1 - q0;
  if (zm::metric::IsDegenerate(v.dot(v)) && !zm::metric::IsDegenerate(u.dot(u))) {
    return ClampedSegmentDistance(q0, q1, p0, p1);
  }
  return ClampedSegmentDistance(p0, p1, q0, q1);
}

template <class T>
T ZmMathDistanceT<T>::DistLineToLine(const Vector3& dir1, const Point3& pt1, const Vector3& dir2, const Point3& pt2) {
  Vector3 d1(dir1), d2(dir2);
  if (!d1.unitize(T(zm::kTolerance6)) || !d2.unitize(T(zm::kTolerance6))) return T(0);
  if (!AreUsable(pt1, pt2)) return T(0);
  const T separation = zm::metric::RoundedDistance(pt1, pt2);
  const T h = separation > T(1) ? separation : T(1);
  return DistBetweenSegments(pt1 + d1 * h, pt1 - d1 * h, pt2 + d2 * h, pt2 - d2 * h);
}

template <class T>
unsigned char ZmMathDistanceT<T>::PointIsInPlane(const Point3& p, const Plane& plane, T tol) {
  const T distance = DistToPlane(p, plane);
  return (distance != zm::Invalid<T>() && tol >= distance) ? 1 : 0;
}

template <class T>
unsigned char ZmMathDistanceT<T>::PointsInPlane(const WbArrayTempl<T>& coords, const Plane& plane, T tol) {
  const std::uint64_t count = coords.GetSize() / 3;
  if (count == 0) return 0;
  const T* xyz = coords.GetData();
  for (std::uint64_t i = 0; i < count; ++i) {
    if (!PointIsInPlane(Point3(xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]), plane, tol)) return 0;
  }
  return 1;
}

template <class T>
ZmPoint3T<T> ZmMathDistanceT<T>::ProjOnPlane(const Point3& p, const Vector3& normal, const Point3& planePoint) {
  if (!p.IsValid()) return p;
  if (!AreUsable(p, normal, planePoint)) return zm::metric::InvalidPoint<T>();
  const T s = Vector3(p - planePoint).dot(normal);
  return p - normal * s;
}

template <class T>
ZmPoint3T<T> ZmMathDistanceT<T>::ProjOnPlane(const Point3& p, const Plane& plane) {
  return ProjOnPlane(p, plane.GetNormal(), plane.GetPointOnPlane());
}

template <class T>
ZmVector3T<T> ZmMathDistanceT<T>::ProjVectOnPlane(const Vector3& v, const Vector3& normal) {
  if (!AreUsable(v, normal)) return Vector3(WbCoord3DT<T>::INVALID);
  return v - normal * v.dot(normal);
}

template <class T>
ZmVector3T<T> ZmMathDistanceT<T>::ProjVectOnPlane(const Vector3& v, const Plane& plane) {
  return ProjVectOnPlane(v, plane.GetNormal());
}

template <class T>
unsigned char ZmMathDistanceT<T>::ProjectOnLine(const Point3& p, const Vector3& dir, const Point3& linePoint,
                                                Point3& foot, T* param) {
  const T squared = dir.dot(dir);
  if (!AreUsable(p, dir, linePoint) || zm::metric::IsDegenerate(squared)) {
    foot.Invalidate();
    return 0;
  }
  const T t = -(Vector3(linePoint - p).dot(dir)) / squared;
  foot = linePoint + dir * t;
  if (param) *param = t;
  return 1;
}

template <class T>
unsigned char ZmMathDistanceT<T>::ProjOnSegment(const Point3& p, const Point3& a, const Point3& b, Point3& foot,
                                                T* param) {
  if (!AreUsable(p, a, b)) return 0;
  Point3 f;
  T t;
  if (!zm::metric::ProjectOnSegment(p, a, b, f, t)) return 0;
  foot = f;
  if (param) *param = t;
  return 1;
}

template class ZmMathDistanceT<double>;
template class ZmMathDistanceT<float>;
