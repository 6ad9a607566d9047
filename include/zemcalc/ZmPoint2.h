#pragma once

// Points and vectors in 2D: ZmPoint2d / ZmVector2d and their float twins ZmPoint2f /
// ZmVector2f, exactly two scalars x, y deriving from WbCoord2Dd / WbCoord2Df.
//
// A 2D point is also a sample of a curve: x the abscissa (time, displacement, frequency), y
// the value. A curve is an ordered run of points, given as an array or as a pointer with a
// count; the curve statics never sort it and accept increasing and decreasing abscissas
// segment by segment. Absent values and optional arguments use the invalid marker -1.0e32
// (the float value, widened in the double twin).
#include <cstdint>

#include <wbcore/WbArray.h>
#include <wbcore/WbCoord.h>

#include "zemcalc/ZmCoordOps.h"
#include "zemcalc/ZmExport.h"

// Construction shared by the 2D point and vector: from nothing (origin), one scalar copied to
// both components, two scalars of any arithmetic types, any 2D coordinate of either precision,
// and any 3D coordinate (z dropped).
#define ZM_COORD2_CONSTRUCTORS(Class)                                                              \
  constexpr Class() = default;                                                                     \
  template <class S, zm::EnableIfScalar<S> = 0>                                                   \
  constexpr explicit Class(S s) : Ops(WbCoord2DT<T>(T(s), T(s))) {}                                \
  template <class A, class B,                                                                      \
            std::enable_if_t<std::is_arithmetic<A>::value && std::is_arithmetic<B>::value, int> = 0> \
  constexpr Class(A xv, B yv) : Ops(WbCoord2DT<T>(T(xv), T(yv))) {}                                \
  template <class U>                                                                               \
  constexpr Class(const WbCoord2DT<U>& c) : Ops(WbCoord2DT<T>(T(c.x), T(c.y))) {}                 \
  template <class U>                                                                               \
  constexpr Class(const WbCoord3DT<U>& c) : Ops(WbCoord2DT<T>(T(c.x), T(c.y))) {}                 \
  template <class S, zm::EnableIfScalar<S> = 0>                                                   \
  Class& operator=(S s) {                                                                          \
    this->x = this->y = T(s);                                                                      \
    return *this;                                                                                  \
  }

template <class T>
class ZMCALC_API ZmVector2T : public ZmVectorOps<ZmVector2T<T>, WbCoord2DT<T>> {
  using Ops = ZmVectorOps<ZmVector2T<T>, WbCoord2DT<T>>;

public:
  ZM_COORD2_CONSTRUCTORS(ZmVector2T)

  static const ZmVector2T UNIT_X, UNIT_Y, NEGATIVE_UNIT_X, NEGATIVE_UNIT_Y;

  // The scalar x1*y2 - y1*x2.
  T cross(const ZmVector2T& o) const { return this->x * o.y - this->y * o.x; }
  // -1 when |x| = |y|, 0 when |x| > |y|, else 1.
  int GetMainDirection() const;
  // For unit vectors: 1 when aligned with the x axis, 2 with the y axis, 0 for none, each
  // component within |tol| (strictly). With signedOnly the axis must point the positive way.
  int GetAlignedAxis(unsigned char signedOnly, T tol) const;
  // Counter-clockwise rotation by angleDeg degrees. The angle is converted with the float
  // value of pi/180 and the sine and cosine are rounded to float, in both precisions, so a
  // quarter turn of (1, 0) gives x = cos rounded to float, not exactly 0. Always returns 1.
  unsigned char Rotate(T angleDeg);

  // -1/0/1 comparators for sorting; CompareVectors is lexicographic on x, then y.
  template <class U>
  static int CompareX(const ZmVector2T& a, const ZmVector2T<U>& b) {
    return wbcore_detail::CompareScalars(a.x, b.x);
  }
  template <class U>
  static int CompareY(const ZmVector2T& a, const ZmVector2T<U>& b) {
    return wbcore_detail::CompareScalars(a.y, b.y);
  }
  template <class U>
  static int CompareVectors(const ZmVector2T& a, const ZmVector2T<U>& b) {
    const int cx = CompareX(a, b);
    return cx != 0 ? cx : CompareY(a, b);
  }
};

template <class T>
class ZMCALC_API ZmPoint2T : public ZmCoordOps<ZmPoint2T<T>, WbCoord2DT<T>> {
  using Ops = ZmCoordOps<ZmPoint2T<T>, WbCoord2DT<T>>;

public:
  ZM_COORD2_CONSTRUCTORS(ZmPoint2T)

  // Euclidean distance in full precision of the class.
  T DistanceToPoint(const ZmPoint2T& p) const { return ZmVector2T<T>(*this - p).length(); }
  // 1 when the distance is strictly greater than 1.0e-5 (the float value, widened).
  unsigned char IsDistinctFrom(const ZmPoint2T& p) const;
  // 1 when xmin <= x <= xmax and ymin <= y <= ymax.
  unsigned char IsInside(T xmin, T xmax, T ymin, T ymax) const;
  // Polar angle in degrees in [0, 360), by quadrant; the origin gives 0.
  T ComputePolarAngleDeg() const;
  // Scaling about a centre: each coordinate c becomes centre + (c - centre) * factor.
  void scale(const ZmPoint2T& center, T factor);
  void scaleX(T centerX, T factor);
  void scaleY(T centerY, T factor);

  static T GetX(const ZmPoint2T& p) { return p.x; }
  static T GetY(const ZmPoint2T& p) { return p.y; }
  // -1/0/1 comparators; the second operand is always a double point, so that a float sample
  // can be searched for in double data.
  static int CompareX(const ZmPoint2T& a, const ZmPoint2T<double>& b) {
    return wbcore_detail::CompareScalars(a.x, b.x);
  }
  static int CompareY(const ZmPoint2T& a, const ZmPoint2T<double>& b) {
    return wbcore_detail::CompareScalars(a.y, b.y);
  }
  // Lexicographic on x, then y.
  static int ComparePoints(const ZmPoint2T& a, const ZmPoint2T& b);
  // The midpoint.
  static ZmPoint2T ComputeCenter(const ZmPoint2T& a, const ZmPoint2T& b);

  // --- curve statics

  // Value of the curve at abscissa x, searching the segments from `start` on. index receives
  // the first point of the segment used (for an exact hit on point i > start it is i - 1);
  // -1 and the invalid marker when no segment holds x. n = 0 or start >= n (also a negative
  // start) return the marker with index unwritten.
  static T InterpolateOnX(const ZmPoint2T* points, std::uint64_t n, T x, int& index, int start = 0);
  // The same with the roles of x and y exchanged: the abscissa at which the curve reaches y.
  static T InterpolateOnY(const ZmPoint2T* points, std::uint64_t n, T y, int& index, int start = 0);
  // Every abscissa at which the curve reaches y, in order (a crossing exactly on a point may
  // be reported twice); xs is emptied first. Returns the count.
  static std::uint64_t InterpolateOnYn(const ZmPoint2T* points, std::uint64_t n, T y, WbArrayTempl<T>& xs);
  // Resamples at a fixed step from the first abscissa (or from max(startX, first abscissa)
  // when startX is given), the abscissa accumulated step by step, until it leaves the curve.
  // out is emptied first; returns the count (0 for an empty curve or a step <= 0).
  static std::uint64_t SampleX(const ZmPoint2T* points, std::uint64_t n, T step, WbArrayTempl<ZmPoint2T>& out,
                               T startX = zm::Invalid<T>());
  // Adds one point at x before the first or after the last point, with the end value or,
  // when linear is set, the value extrapolated along the end segment (raised to floor when
  // floor is given and higher). Returns 1 when a point was added.
  static unsigned char ExtrapolateOnX(WbArrayTempl<ZmPoint2T>& curve, T x, unsigned char linear,
                                      T floor = zm::Invalid<T>());
  // Keeps the part of the curve between xmin and xmax; returns the count left.
  static std::uint64_t ExtractXRange(WbArrayTempl<ZmPoint2T>& curve, T xmin, T xmax, T tol);
  // Upper or lower envelope points; out is emptied first; returns their count.
  static std::uint64_t EvaluateEnvelop(const WbArrayTempl<ZmPoint2T>& curve, unsigned char upper,
                                       WbArrayTempl<ZmPoint2T>& out, T width = zm::Invalid<T>());
  // One peak per half-wave of an oscillating curve; returns the count.
  static std::uint64_t EvaluateSinusoidEnvelop(const WbArrayTempl<ZmPoint2T>& curve, unsigned char upper,
                                               WbArrayTempl<ZmPoint2T>& out, WbArrayTempl<int>* indices);
  // Convex hull of a point set with the indices of the hull points; returns the count.
  static std::uint64_t EvaluateConvexShape(const WbArrayTempl<ZmPoint2T>& points, WbArrayTempl<ZmPoint2T>& out,
                                           WbArrayTempl<int>* indices);
};

#undef ZM_COORD2_CONSTRUCTORS

// Absolute value of each component.
template <class T>
ZmVector2T<T> abs(const ZmVector2T<T>& v) {
  return ZmVector2T<T>(v.x < 0 ? -v.x : v.x, v.y < 0 ? -v.y : v.y);
}

extern template class ZmVectorOps<ZmVector2T<double>, WbCoord2DT<double>>;
extern template class ZmVectorOps<ZmVector2T<float>, WbCoord2DT<float>>;
extern template class ZmVector2T<double>;
extern template class ZmVector2T<float>;
extern template class ZmPoint2T<double>;
extern template class ZmPoint2T<float>;

using ZmVector2d = ZmVector2T<double>;
using ZmVector2f = ZmVector2T<float>;
using ZmPoint2d = ZmPoint2T<double>;
using ZmPoint2f = ZmPoint2T<float>;

extern ZMCALC_API const ZmPoint2d ZmNonValP2d;
extern ZMCALC_API const ZmPoint2f ZmNonValP2f;
extern ZMCALC_API const ZmVector2d ZmNonValV2d;
extern ZMCALC_API const ZmVector2f ZmNonValV2f;
extern ZMCALC_API const ZmVector2d ZmV2dX;
extern ZMCALC_API const ZmVector2d ZmV2dY;
extern ZMCALC_API const ZmVector2f ZmV2fX;
extern ZMCALC_API const ZmVector2f ZmV2fY;
