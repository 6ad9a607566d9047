#include <cmath>

#include "zemcalc/ZmPoint2.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(vector2)

template <class T>
const ZmVector2T<T> ZmVector2T<T>::UNIT_X(1, 0);
template <class T>
const ZmVector2T<T> ZmVector2T<T>::UNIT_Y(0, 1);
template <class T>
const ZmVector2T<T> ZmVector2T<T>::NEGATIVE_UNIT_X(-1, 0);
template <class T>
const ZmVector2T<T> ZmVector2T<T>::NEGATIVE_UNIT_Y(0, -1);

template <class T>
int ZmVector2T<T>::GetMainDirection() const {
  const T a = std::fabs(this->x), b = std::fabs(this->y);
  if (a == b) return -1;
  return a > b ? 0 : 1;
}

template <class T>
int ZmVector2T<T>::GetAlignedAxis(unsigned char signedOnly, T tol) const {
  const T t = std::fabs(tol);
  const T ax = std::fabs(this->x), ay = std::fabs(this->y);
  const T xOff = signedOnly ? std::fabs(this->x - T(1)) : std::fabs(ax - T(1));
  if (t > xOff && t > ay) return 1;
  if (!(t > ax)) return 0;
  const T yOff = signedOnly ? std::fabs(this->y - T(1)) : std::fabs(ay - T(1));
  return t > yOff ? 2 : 0;
}

template <class T>
unsigned char ZmVector2T<T>::Rotate(T angleDeg) {
  // The float value of the angle factor and the float rounding of the sine and cosine hold in
  // both precisions. The angle itself is converted in the class's precision, so a float
  // rotation may differ from a double one (90 degrees: cos is 1.2e-8 in double, -4.4e-8 in float).
  const T radians = angleDeg * T(zm::kDegToRadF);
  const T c = T(float(std::cos(radians)));
  const T s = T(float(std::sin(radians)));
  const T x0 = this->x, y0 = this->y;
  this->x = x0 * c - y0 * s;
  this->y = x0 * s + y0 * c;
  return 1;
}

template class ZmVector2T<double>;
template class ZmVector2T<float>;
