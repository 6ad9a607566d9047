#include "zemcalc/ZmMath.h"
#include "zemcalc/ZmPlane.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(distances)

template <class T>
T ZmMathDistanceT<T>::Distance(const Point3& p, const Point3& q) {
  return zm::RoundToFloat(p.DistanceToPoint(q));
}

template <class T>
T ZmMathDistanceT<T>::Distance(const ZmPoint2T<T>& p, const ZmPoint2T<T>& q) {
  return p.DistanceToPoint(q);
}

template <class T>
T ZmMathDistanceT<T>::DistToLine(const Point3& p, const Vector3& dir, const Point3& linePoint) {
  const T squared = dir.dot(dir);
  if (squared <= T(zm::kTolerance14)) return Distance(p, linePoint);
  const T t = -((linePoint - p).dot(dir)) / squared;
  const Point3 foot = linePoint + dir * t;
  return Distance(foot, p);
}

template <class T>
T ZmMathDistanceT<T>::DistToPlane(const Point3& p, const ZmPlaneT<T>& plane) {
  return Distance(ProjOnPlane(p, plane), p);
}

template <class T>
ZmPoint3T<T> ZmMathDistanceT<T>::ProjOnPlane(const Point3& p, const Vector3& normal, const Point3& planePoint) {
  if (!p.IsValid()) return p;
  const T s = Vector3(p - planePoint).dot(normal);
  return p - normal * s;
}

template <class T>
ZmPoint3T<T> ZmMathDistanceT<T>::ProjOnPlane(const Point3& p, const ZmPlaneT<T>& plane) {
  return ProjOnPlane(p, plane.GetNormal(), plane.GetPointOnPlane());
}

template class ZmMathDistanceT<double>;
template class ZmMathDistanceT<float>;
