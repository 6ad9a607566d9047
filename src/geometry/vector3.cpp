#include <climits>
#include <cmath>

#include "zemcalc/ZmPoint3.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(vector3)

template <class T>
const ZmVector3T<T> ZmVector3T<T>::UNIT_X(1, 0, 0);
template <class T>
const ZmVector3T<T> ZmVector3T<T>::UNIT_Y(0, 1, 0);
template <class T>
const ZmVector3T<T> ZmVector3T<T>::UNIT_Z(0, 0, 1);
template <class T>
const ZmVector3T<T> ZmVector3T<T>::NEGATIVE_UNIT_X(-1, 0, 0);
template <class T>
const ZmVector3T<T> ZmVector3T<T>::NEGATIVE_UNIT_Y(0, -1, 0);
template <class T>
const ZmVector3T<T> ZmVector3T<T>::NEGATIVE_UNIT_Z(0, 0, -1);

template <class T>
int ZmVector3T<T>::GetMainDirection() const {
  const T a = std::fabs(this->x), b = std::fabs(this->y), c = std::fabs(this->z);
  if (a == b && a == c) return -1;
  if (a > b) return a > c ? 0 : 2;
  return b > c ? 1 : 2;
}

template <class T>
int ZmVector3T<T>::GetAlignedAxis(unsigned char signedOnly, T tolDeg) const {
  static const ZmVector3T axes[3] = {UNIT_X, UNIT_Y, UNIT_Z};
  for (int i = 0; i < 3; ++i) {
    const T angle = this->AngleDegTo(axes[i]);
    if (angle == zm::Invalid<T>()) return -1;
    if (angle < tolDeg || (!signedOnly && angle > T(180) - tolDeg)) return i;
  }
  return -1;
}

template <class T>
T ZmVector3T<T>::GetRotationTo(const ZmVector3T& target, ZmVector3T& axis) const {
  const T angle = this->AngleDegTo(target);
  if (angle == zm::Invalid<T>()) {
    axis.Invalidate();
    return angle;
  }
  const ZmVector3T from = this->GetDirection();
  axis = from.cross(target.GetDirection());
  if (!axis.unitize(T(zm::kTolerance6))) {
    // Parallel or opposite: any perpendicular turns this onto target; take the one made with
    // the axis along which this vector is smallest.
    const T ax = std::fabs(from.x), ay = std::fabs(from.y), az = std::fabs(from.z);
    const ZmVector3T helper = (ax <= ay && ax <= az) ? UNIT_X : (ay <= az ? UNIT_Y : UNIT_Z);
    axis = from.cross(helper);
    axis.unitize(T(0));
  }
  return angle;
}

template <class T>
unsigned char ZmVector3T<T>::Rotate(const ZmVector3T& axis, T angleDeg) {
  if (!this->IsValid()) return 0;
  ZmVector3T k(axis);
  if (!k.unitize(T(zm::kTolerance6))) return 0;
  const T radians = angleDeg * T(zm::kDegToRad);
  const T c = std::cos(radians), s = std::sin(radians);
  // Rodrigues: v cos + (k x v) sin + k (k.v)(1 - cos)
  *this = *this * c + k.cross(*this) * s + k * (k.dot(*this) * (T(1) - c));
  return 1;
}

namespace {
// Rows (latitude bands) and columns (longitude bands) of the direction grid; false when the
// step gives no usable grid or one whose cell count does not fit an int.
template <class T>
bool GridShape(T step, int& rows, int& columns) {
  if (!(step > 0) || !std::isfinite(step)) return false;
  const double m = std::trunc(double(T(180) / step));
  const double n = std::trunc(double(T(360) / step));
  if (m < 1 || n < 1 || m * n > double(INT_MAX)) return false;
  rows = int(m);
  columns = int(n);
  return true;
}
}  // namespace

template <class T>
int ZmVector3T<T>::GetIndexedNormalsCount(T step) {
  int rows = 0, columns = 0;
  return GridShape(step, rows, columns) ? rows * columns : 0;
}

template <class T>
ZmVector3T<T> ZmVector3T<T>::GetIndexedNormal(T step, int index) {
  int rows = 0, columns = 0;
  if (!GridShape(step, rows, columns) || index < 0 || index / columns >= rows) return ZmVector3T(WbCoord3DT<T>::INVALID);
  const int row = index / columns, column = index % columns;
  const T latitude = T(row) * step - T(90) + step / T(2);
  const T longitude = T(column) * step - T(180) + step / T(2);
  const T phi = latitude * T(zm::kDegToRad), lambda = longitude * T(zm::kDegToRad);
  return ZmVector3T(std::cos(lambda) * std::cos(phi), std::sin(lambda) * std::cos(phi), std::sin(phi));
}

template <class T>
int ZmVector3T<T>::GetNormalIndex(T step) const {
  int rows = 0, columns = 0;
  // An infinite or NaN component has no direction, and a finite vector whose length overflows
  // normalises to zero: both get no cell rather than a made-up one.
  const auto finite = [](const ZmVector3T& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
  };
  const ZmVector3T direction = this->GetDirection();
  if (!GridShape(step, rows, columns) || !finite(*this) || !direction.IsValid() || !finite(direction) ||
      direction.lengthSquared() == T(0)) {
    return -1;
  }
  T sine = direction.z;
  if (sine > T(1)) sine = T(1);
  if (sine < T(-1)) sine = T(-1);
  const T latitude = std::asin(sine) * T(zm::kRadToDeg);
  const T longitude = std::atan2(direction.y, direction.x) * T(zm::kRadToDeg);
  const auto band = [step](T degrees, int count) {
    const T cell = std::floor(degrees / step);
    return cell < 0 ? 0 : (cell >= T(count) ? count - 1 : int(cell));
  };
  return band(latitude + T(90), rows) * columns + band(longitude + T(180), columns);
}

template <class T>
unsigned char ZmVector3T<T>::GetNormalNeighbourIndexes(T step, int index, int out[8]) {
  int rows = 0, columns = 0;
  if (!out || !GridShape(step, rows, columns) || index < 0 || index / columns >= rows) return 0;
  const int r = index / columns, c = index % columns;
  const int rPrev = r == 0 ? rows - 1 : r - 1, rNext = r == rows - 1 ? 0 : r + 1;
  const int cPrev = c == 0 ? columns - 1 : c - 1, cNext = c == columns - 1 ? 0 : c + 1;
  const int cells[8][2] = {{rPrev, c},     {rNext, c},     {rPrev, cPrev}, {r, cPrev},
                           {rNext, cPrev}, {rPrev, cNext}, {r, cNext},     {rNext, cNext}};
  for (int k = 0; k < 8; ++k) out[k] = cells[k][0] * columns + cells[k][1];
  return 1;
}

template class ZmVector3T<double>;
template class ZmVector3T<float>;
