#include <cmath>

#include "zemcalc/ZmMath.h"
#include "zemcalc/ZmPoint3.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(point3)

namespace {
// Polar angle in degrees of (x, y) in (-180, 180]. On the negative x axis with y = +0 the
// result is -180: atan(-0) is -0, which is not below zero, so 180 is subtracted.
template <class T>
T PolarAngleDeg(T x, T y, T r) {
  if (r == 0) return 0;
  if (x != 0) {
    const T theta = std::atan(y / x) * T(zm::kRadToDeg);
    if (x < 0) return theta < 0 ? theta + T(180) : theta - T(180);
    return theta;
  }
  return y > 0 ? T(90) : T(-90);
}
}  // namespace

template <class T>
T ZmPoint3T<T>::DistanceToPointEx(const ZmPoint3T& p, ZmPoint3T* nearest) const {
  if (nearest) *nearest = p;
  return DistanceToPoint(p);
}

template <class T>
T ZmPoint3T<T>::DistanceToLine(const ZmPoint3T& linePoint, const ZmVector3T<T>& dir) const {
  return ZmMathT<T>::DistToLine(*this, dir, linePoint);
}

template <class T>
T ZmPoint3T<T>::DistanceToPlane(const ZmPlaneT<T>& plane) const {
  return ZmMathT<T>::DistToPlane(*this, plane);
}

template <class T>
unsigned char ZmPoint3T<T>::IsDistinctFrom(const ZmPoint3T& p) const {
  return DistanceToPoint(p) > T(zm::kTolerance5) ? 1 : 0;
}

template <class T>
unsigned char ZmPoint3T<T>::IsInside(T xmin, T xmax, T ymin, T ymax, T zmin, T zmax) const {
  return (xmin <= this->x && this->x <= xmax && ymin <= this->y && this->y <= ymax && zmin <= this->z &&
          this->z <= zmax)
             ? 1
             : 0;
}

template <class T>
ZmPoint3T<T> ZmPoint3T<T>::GetCylindricalCoordinates() const {
  const T r = zm::Sqrt(this->x * this->x + this->y * this->y);
  return ZmPoint3T(r, PolarAngleDeg(this->x, this->y, r), this->z);
}

template <class T>
ZmPoint3T<T> ZmPoint3T<T>::GetSphericalCoordinates() const {
  const T rho = zm::Sqrt(this->SquaredNorm());
  if (rho == 0) return ZmPoint3T(T(0), T(0), T(0));
  const T r = zm::Sqrt(this->x * this->x + this->y * this->y);
  T phi;
  if (r == 0) {
    phi = this->z > 0 ? T(90) : T(-90);
  } else {
    phi = std::atan(this->z / r) * T(zm::kRadToDeg);
  }
  return ZmPoint3T(rho, PolarAngleDeg(this->x, this->y, r), phi);
}

template <class T>
unsigned char ZmPoint3T<T>::Rotate(const ZmPoint3T& center, const ZmVector3T<T>& axis, T angleDeg) {
  if (!this->IsValid() || !center.IsValid()) return 0;
  ZmVector3T<T> offset = *this - center;
  if (!offset.Rotate(axis, angleDeg)) return 0;
  *this = center + offset;
  return 1;
}

template <class T>
int ZmPoint3T<T>::ComparePoints(const ZmPoint3T& a, const ZmPoint3T& b) {
  const int cx = ZmPoint3T::CompareX(a, b);
  if (cx != 0) return cx;
  const int cy = ZmPoint3T::CompareY(a, b);
  return cy != 0 ? cy : ZmPoint3T::CompareZ(a, b);
}

template <class T>
unsigned char ZmPoint3T<T>::AreAligned(const ZmPoint3T& p0, const ZmPoint3T& p1, const ZmPoint3T& p2, T tol) {
  if (zm::RoundToFloat(p0.DistanceToPoint(p1)) <= tol) return 1;
  const T distance = ZmMathT<T>::DistToLine(p2, p1 - p0, p0);
  if (distance == zm::Invalid<T>()) return 1;
  return tol >= distance ? 1 : 0;
}

template <class T>
ZmPoint3T<T> ZmPoint3T<T>::ComputeCenter(const WbArrayTempl<ZmPoint3T>& points) {
  if (points.GetSize() == 0) return ZmPoint3T(WbCoord3DT<T>::INVALID);
  WbCoord3DT<T> low = WbCoord3DT<T>::INVALID, high = WbCoord3DT<T>::INVALID;
  for (const ZmPoint3T& p : points) {
    low.minimum(p);
    high.maximum(p);
  }
  return ComputeCenter(ZmPoint3T(low), ZmPoint3T(high));
}

template <class T>
ZmPoint3T<T> ZmPoint3T<T>::ComputeCenter(const ZmPoint3T& a, const ZmPoint3T& b) {
  return ZmPoint3T((a.x + b.x) / T(2), (a.y + b.y) / T(2), (a.z + b.z) / T(2));
}

template <class T>
T ZmPoint3T<T>::ComputePolylineLength(const WbArrayTempl<ZmPoint3T>& points) {
  const std::uint64_t n = points.GetSize();
  if (n == 0) return zm::Invalid<T>();
  T total = 0;
  for (std::uint64_t i = 1; i < n; ++i) total += zm::RoundToFloat(points[i - 1].DistanceToPoint(points[i]));
  return total;
}

template <class T>
ZmPoint3T<T> ZmPoint3T<T>::GetPolylinePointAtLength(const WbArrayTempl<ZmPoint3T>& points, T length,
                                                    unsigned char clampToEnds) {
  const std::uint64_t n = points.GetSize();
  const ZmPoint3T invalid(WbCoord3DT<T>::INVALID);
  if (n == 0 || std::isnan(length)) return invalid;
  if (length < 0) return clampToEnds ? points[0] : invalid;
  T walked = 0;
  for (std::uint64_t i = 1; i < n; ++i) {
    const T segment = zm::RoundToFloat(points[i - 1].DistanceToPoint(points[i]));
    if (walked + segment >= length) {
      if (!(segment > 0)) return points[i - 1];
      const T f = (length - walked) / segment;
      return points[i - 1] + (points[i] - points[i - 1]) * f;
    }
    walked += segment;
  }
  if (length == walked) return points[n - 1];
  return clampToEnds ? points[n - 1] : invalid;
}

template class ZmPoint3T<double>;
template class ZmPoint3T<float>;
