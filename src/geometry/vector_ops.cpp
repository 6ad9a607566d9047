#include <cmath>
#include <type_traits>

#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(vector_ops)

namespace {
// Length of the cross product: |z| of the scalar cross in 2D, the norm of the vector in 3D.
template <class T>
T CrossLength(const ZmVector2T<T>& a, const ZmVector2T<T>& b) {
  const T c = a.cross(b);
  return c < 0 ? -c : c;
}
template <class T>
T CrossLength(const ZmVector3T<T>& a, const ZmVector3T<T>& b) {
  return a.cross(b).length();
}

template <class T>
bool IsShort(T length) {
  return zm::RoundToFloat(length) <= T(zm::kTolerance6);
}
}  // namespace

template <class D, class B>
unsigned char ZmVectorOps<D, B>::unitize(T tol) {
  if (!this->IsValid()) return 0;
  const T len = this->length();
  const T limit = tol < 0 ? -tol : tol;
  if (!(len > limit)) return 0;
  if constexpr (std::is_same<T, float>::value) {
    *this *= T(1) / len;
  } else {
    *this /= len;
  }
  return 1;
}

template <class D, class B>
unsigned char ZmVectorOps<D, B>::setLength(T newLength) {
  if (!this->IsValid()) return 0;
  const T len = this->length();
  if (!(len > 0)) return 0;
  *this *= newLength / len;
  return 1;
}

template <class D, class B>
unsigned char ZmVectorOps<D, B>::isNull(T tol) const {
  return tol >= zm::RoundToFloat(this->length()) ? 1 : 0;
}

template <class D, class B>
D ZmVectorOps<D, B>::GetDirection() const {
  D direction(this->Self());
  if (!direction.unitize(T(0))) direction.Invalidate();
  return direction;
}

template <class D, class B>
auto ZmVectorOps<D, B>::AngleDegTo(const D& other) const -> T {
  if (!this->IsValid() || !other.IsValid()) return zm::Invalid<T>();
  const T product = this->length() * other.length();
  if (!(product > 0)) return zm::Invalid<T>();
  T cosine = this->dot(other) / product;
  if (cosine > T(1)) cosine = T(1);
  if (cosine < T(-1)) cosine = T(-1);
  return T(std::acos(cosine) * T(zm::kRadToDeg));
}

template <class D, class B>
unsigned char ZmVectorOps<D, B>::IsParallelTo(const D& other, T tolDeg, T* angleOut) const {
  if (IsShort(this->length()) || IsShort(other.length())) return 0;
  if (tolDeg == zm::Invalid<T>()) return IsShort(CrossLength(this->Self(), other)) ? 1 : 0;
  const T angle = AngleDegTo(other);
  const T supplement = T(180) - angle;
  if (angleOut) *angleOut = angle < supplement ? angle : supplement;
  return (angle < tolDeg || angle > T(180) - tolDeg) ? 1 : 0;
}

template <class D, class B>
unsigned char ZmVectorOps<D, B>::IsOrthogonalTo(const D& other, T tolDeg, T* angleOut) const {
  if (IsShort(this->length()) || IsShort(other.length())) return 0;
  if (tolDeg == zm::Invalid<T>()) {
    const T d = this->dot(other);
    return (d < 0 ? -d : d) < T(zm::kTolerance6) ? 1 : 0;
  }
  const T angle = AngleDegTo(other);
  const T offset = T(90) - angle;
  if (angleOut) *angleOut = offset < 0 ? -offset : offset;
  return (T(90) - tolDeg < angle && angle < T(90) + tolDeg) ? 1 : 0;
}

template class ZmVectorOps<ZmVector2T<double>, WbCoord2DT<double>>;
template class ZmVectorOps<ZmVector2T<float>, WbCoord2DT<float>>;
template class ZmVectorOps<ZmVector3T<double>, WbCoord3DT<double>>;
template class ZmVectorOps<ZmVector3T<float>, WbCoord3DT<float>>;
