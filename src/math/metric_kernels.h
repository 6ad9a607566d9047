#pragma once

// Inline kernels of the metric functions of ZmMathd / ZmMathf. The public statics and the
// polyline loops both call them, so each rule is written once and the per-segment loops run
// without a call through the library's exported interface for every segment.
#include <limits>
#include <type_traits>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

namespace zm {
namespace metric {

// The single-precision extremes, kept as floats and widened in the double twin.
constexpr float kFloatMax = std::numeric_limits<float>::max();          // 3.4028234663852886e38
constexpr float kFloatEpsilon = std::numeric_limits<float>::epsilon();  // 1.1920928955078125e-7

// A coordinate is usable when it is neither the invalid marker nor NaN.
template <class T, std::enable_if_t<std::is_floating_point<T>::value, int> = 0>
inline bool IsUsable(T v) {
  return v == v && v != Invalid<T>();
}

// The same test for every component of several 3D points at once, cheap enough for the
// per-call hot paths (one comparison per coordinate costs as much as the distance itself).
// The product of (v - marker) over all coordinates is 0 when one of them is the marker and
// NaN when one is NaN (or when an overflow to infinity meets a marker's 0). A usable
// coordinate's factor is never 0, and never small enough to underflow (two distinct values
// near -1e32 are at least their spacing apart), so a product of usable coordinates is
// finite or infinite but neither 0 nor NaN.
template <class T>
inline T MarkerOffsetProduct(const WbCoord3DT<T>& c) {
  const T marker = Invalid<T>();
  return ((c.x - marker) * (c.y - marker)) * (c.z - marker);
}
template <class T, class... More>
inline bool AreUsable(const WbCoord3DT<T>& first, const More&... more) {
  const T product = (MarkerOffsetProduct(first) * ... * MarkerOffsetProduct<T>(more));
  return product == product && product != T(0);
}
template <class T>
inline bool IsUsable(const WbCoord3DT<T>& c) {
  return AreUsable(c);
}
template <class T>
inline bool IsUsable(const WbCoord2DT<T>& c) {
  return IsUsable(c.x) && IsUsable(c.y);
}

template <class T>
inline ZmPoint3T<T> InvalidPoint() {
  return ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
}

// a.b = a.x b.x + a.y b.y + a.z b.z, in that order; the same value as ZmVector3T::dot
// without its leading 0 + (which only ever changes the sign of a zero).
template <class T>
inline T Dot(const WbCoord3DT<T>& a, const WbCoord3DT<T>& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
template <class T>
inline T Norm(const WbCoord3DT<T>& v) {
  return Sqrt(Dot(v, v));
}

// |p - q| rounded to single precision (a no-op in the float twin).
template <class T>
inline T RoundedDistance(const ZmPoint3T<T>& p, const ZmPoint3T<T>& q) {
  return RoundToFloat(Norm(p - q));
}

// A direction is degenerate when d.d <= 1e-14 (the float value); a NaN counts as degenerate.
template <class T>
inline bool IsDegenerate(T squaredLength) {
  return !(squaredLength > T(kTolerance14));
}

// Orthogonal projection of p onto the segment [a, b], clamped to its ends: the foot and its
// parameter (0 at a, 1 at b). Returns false, writing nothing, for a degenerate segment.
template <class T>
inline bool ProjectOnSegment(const ZmPoint3T<T>& p, const ZmPoint3T<T>& a, const ZmPoint3T<T>& b, ZmPoint3T<T>& foot,
                             T& param) {
  const ZmVector3T<T> d = b - a;
  const T dd = Dot(d, d);
  if (IsDegenerate(dd)) return false;
  const T s = Dot(p - a, d);
  if (s <= 0) {
    foot = a;
    param = 0;
  } else if (s >= dd) {
    foot = b;
    param = 1;
  } else {
    param = s / dd;
    foot = a + d * param;
  }
  return true;
}

// Distance from p to the segment [a, b], rounded to float; toFoot = foot - p. A degenerate
// segment is the point a.
template <class T>
inline T DistanceToSegment(const ZmPoint3T<T>& p, const ZmPoint3T<T>& a, const ZmPoint3T<T>& b, ZmVector3T<T>& toFoot) {
  ZmPoint3T<T> foot;
  T param;
  if (!ProjectOnSegment(p, a, b, foot, param)) foot = a;
  toFoot = foot - p;
  return RoundToFloat(Norm(toFoot));
}

}  // namespace metric
}  // namespace zm
