#include <cmath>

#include "zemcalc/ZmPoint2.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(point2)

template <class T>
unsigned char ZmPoint2T<T>::IsDistinctFrom(const ZmPoint2T& p) const {
  return DistanceToPoint(p) > T(zm::kTolerance5) ? 1 : 0;
}

template <class T>
unsigned char ZmPoint2T<T>::IsInside(T xmin, T xmax, T ymin, T ymax) const {
  return (xmin <= this->x && this->x <= xmax && ymin <= this->y && this->y <= ymax) ? 1 : 0;
}

template <class T>
T ZmPoint2T<T>::ComputePolarAngleDeg() const {
  const T x = this->x, y = this->y;
  const T toDeg = T(zm::kRadToDeg);
  if (x > 0 && y > 0) return std::atan(y / x) * toDeg;
  if (x < 0 && y > 0) return std::atan(-x / y) * toDeg + T(90);
  if (x < 0 && y < 0) return std::atan(y / x) * toDeg + T(180);
  if (x > 0 && y < 0) return std::atan(-x / y) * toDeg + T(270);
  if (x == 0 && y > 0) return T(90);
  if (x < 0 && y == 0) return T(180);
  if (x == 0 && y < 0) return T(270);
  return T(0);
}

template <class T>
void ZmPoint2T<T>::scale(const ZmPoint2T& center, T factor) {
  scaleX(center.x, factor);
  scaleY(center.y, factor);
}

template <class T>
void ZmPoint2T<T>::scaleX(T centerX, T factor) {
  this->x = centerX + (this->x - centerX) * factor;
}

template <class T>
void ZmPoint2T<T>::scaleY(T centerY, T factor) {
  this->y = centerY + (this->y - centerY) * factor;
}

template <class T>
int ZmPoint2T<T>::ComparePoints(const ZmPoint2T& a, const ZmPoint2T& b) {
  const int cx = wbcore_detail::CompareScalars(a.x, b.x);
  return cx != 0 ? cx : wbcore_detail::CompareScalars(a.y, b.y);
}

template <class T>
ZmPoint2T<T> ZmPoint2T<T>::ComputeCenter(const ZmPoint2T& a, const ZmPoint2T& b) {
  return ZmPoint2T((a.x + b.x) / T(2), (a.y + b.y) / T(2));
}

template class ZmPoint2T<double>;
template class ZmPoint2T<float>;
