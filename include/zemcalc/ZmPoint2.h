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

namespace zm {
template <class T, class A, class B>
constexpr WbCoord2DT<T> Coord2(A xv, B yv) {
  return WbCoord2DT<T>(ConvertScalar<T>(xv), ConvertScalar<T>(yv));
}
}  // namespace zm

// Construction shared by the 2D point and vector: from nothing (origin), one scalar copied to
// both components, two scalars of any arithmetic types, any 2D coordinate of either precision,
// and any 3D coordinate (z dropped). Assignment accepts the same sources. Every component goes
// through zm::ConvertScalar (a double rounds to the nearest float in the float classes,
// whatever the caller's optimiser does).
#define ZM_COORD2_CONSTRUCTORS(Class)                                                              \
  constexpr Class() = default;                                                                     \
  template <class S, zm::EnableIfScalar<S> = 0>                                                   \
  constexpr explicit Class(S s) : Ops(zm::Coord2<T>(s, s)) {}                                      \
  template <class A, class B,                                                                      \
            std::enable_if_t<std::is_arithmetic<A>::value && std::is_arithmetic<B>::value, int> = 0> \
  constexpr Class(A xv, B yv) : Ops(zm::Coord2<T>(xv, yv)) {}                                      \
  template <class U>                                                                               \
  constexpr Class(const WbCoord2DT<U>& c) : Ops(zm::Coord2<T>(c.x, c.y)) {}                        \
  template <class U>                                                                               \
  constexpr Class(const WbCoord3DT<U>& c) : Ops(zm::Coord2<T>(c.x, c.y)) {}                        \
  template <class S, zm::EnableIfScalar<S> = 0>                                                   \
  Class& operator=(S s) {                                                                          \
    return *this = Class(s);                                                                       \
  }                                                                                                \
  template <class U>                                                                               \
  Class& operator=(const WbCoord2DT<U>& c) {                                                       \
    return *this = Class(c);                                                                       \
  }                                                                                                \
  template <class U>                                                                               \
  Class& operator=(const WbCoord3DT<U>& c) {                                                       \
    return *this = Class(c);                                                                       \
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
  //
  // Bad input never reads outside the curve: a null pointer counts as an empty curve whatever
  // n says, and NaN coordinates match nothing (NaN != anything). Positions are reported in an
  // int, so the statics that search or report them (the interpolations, SampleX,
  // EvaluateSinusoidEnvelop, EvaluateConvexShape) look at most at the first 2^31 points. Every
  // static is linear in the curve length except EvaluateConvexShape (n log n).

  // Value of the curve at abscissa x, searching the segments from `start` on. An exact hit on
  // the start point gives its y and index = start. Otherwise the first point i > start with
  // x_i == x, or with x strictly between x_{i-1} and x_i (either order), gives
  // y_{i-1} + (x - x_{i-1})/(x_i - x_{i-1})*(y_i - y_{i-1}) (y_i on the exact hit) and
  // index = i - 1: index names the first point of the segment used. -1 and the invalid marker
  // when no segment holds x. n = 0 or start >= n (also a negative start) return the marker
  // with index unwritten.
  static T InterpolateOnX(const ZmPoint2T* points, std::uint64_t n, T x, int& index, int start = 0);
  // The same with the roles of x and y exchanged: the abscissa at which the curve reaches y.
  static T InterpolateOnY(const ZmPoint2T* points, std::uint64_t n, T y, int& index, int start = 0);
  // Every abscissa at which the curve reaches y, in order: InterpolateOnY from 0, then from
  // the point after each found segment, until it gives the marker. A crossing exactly on a
  // point found through the segment search is reported twice (as that segment's end and as
  // the next start); xs is emptied first. Returns the count.
  static std::uint64_t InterpolateOnYn(const ZmPoint2T* points, std::uint64_t n, T y, WbArrayTempl<T>& xs);
  // Resamples at a fixed step from the first abscissa (or from max(startX, first abscissa)
  // when startX is given; a NaN startX counts as not given). Each sample is (x,
  // InterpolateOnX(points, n, x, index, 0)), the search starting from the first point, and
  // the next x is x + step (accumulated, not first + k*step); the run ends at the first x that
  // no segment holds. The results are exactly those, but found in one pass over the curve
  // (linear; a curve with NaN abscissas may need longer searches). out is emptied first, and
  // the curve may live in out itself. Returns the count; 0 for an empty curve or a step that
  // is not > 0 (NaN included).
  // The output is bounded: a sampling that would need more than 2^27 points (134217728) is
  // refused with 0 and out empty. It is refused up front when (largest abscissa - first
  // sample)/step exceeds 2^27, when a step too small to move the accumulated abscissa
  // (x + step == x) would repeat one sample forever, and when a sample beyond the 2^27th is
  // found or memory runs out.
  static std::uint64_t SampleX(const ZmPoint2T* points, std::uint64_t n, T step, WbArrayTempl<ZmPoint2T>& out,
                               T startX = zm::Invalid<T>());
  // Adds one point at x before the first point (x < x0) or after the last (x > xn), with the
  // end value or, when linear is set, the value extrapolated along the end segment:
  // y0 - (y1 - y0)/(x1 - x0)*(x0 - x), or yn + (yn - ym)/(xn - xm)*(x - xn); linear needs two
  // points and an end segment that is not vertical. In the linear case only, the value is
  // raised to floor when floor is given and higher. Returns 1 when a point was added; 0 for an
  // empty curve, an x within [x0, xn] or NaN, or a linear extrapolation that cannot be made.
  static unsigned char ExtrapolateOnX(WbArrayTempl<ZmPoint2T>& curve, T x, unsigned char linear,
                                      T floor = zm::Invalid<T>());
  // Keeps the part of the curve between xmin and xmax (in either order); returns the count
  // left. The curve is clipped segment by segment, so increasing, decreasing and back-and-forth
  // runs are treated alike and keep their order. Points with xmin - |tol| <= x <= xmax + |tol|
  // are kept as they are. Where a segment crosses a bound, a point is interpolated on the bound
  // (x = the bound, y as InterpolateOnX gives it on that segment), so a range that cuts a
  // segment keeps the curve's value at the bound; no point is added when the kept end of the
  // segment already lies within |tol| of the bound. A segment that spans the whole range gives
  // both bound points (one when xmin == xmax). Points with a NaN abscissa are dropped and
  // make no bound points; a NaN tol counts as 0; a NaN bound empties the curve.
  static std::uint64_t ExtractXRange(WbArrayTempl<ZmPoint2T>& curve, T xmin, T xmax, T tol);
  // Upper or lower envelope points; out is emptied first (it may be the curve itself);
  // returns their count.
  // Without width (the marker): the local extremes. Point i falls when y_i > y_{i+1} (the last
  // point always falls). Upper: point i is kept when it falls and was risen into (the previous
  // point did not fall; true for the first point). Lower: point i is kept when it does not
  // fall and the previous point fell (true for the first point); so the last point can be an
  // upper extreme but never a lower one.
  // With width: one extreme per span of width/2 along increasing abscissas. Starting with
  // point 0 as candidate, each next point either lies more than width/2 beyond the candidate
  // (the candidate is kept and the point becomes candidate) or replaces the candidate when it
  // is strictly higher (upper) or lower (lower); the last candidate is kept. On a decreasing
  // run a positive width closes no span, nor does a NaN width: one extreme for the whole curve.
  static std::uint64_t EvaluateEnvelop(const WbArrayTempl<ZmPoint2T>& curve, unsigned char upper,
                                       WbArrayTempl<ZmPoint2T>& out, T width = zm::Invalid<T>());
  // One peak per half-wave of an oscillating curve; out and indices (when given) are emptied
  // first; returns the count. With mid = (max y + min y)/2, the curve is cut at the crossings
  // of mid found by InterpolateOnY (from 0, then after each crossing's segment). Each piece,
  // from the point after the previous crossing's segment to the current crossing's segment,
  // gives its highest (upper) or lowest (lower) point, the earliest on ties, which is kept,
  // with its index, when it stands out from mid by more than (max - mid)/2 (upper) or
  // (mid - min)/2 (lower). The part after the last crossing is not examined. NaN values take
  // no part in the extremes or the pieces.
  static std::uint64_t EvaluateSinusoidEnvelop(const WbArrayTempl<ZmPoint2T>& curve, unsigned char upper,
                                               WbArrayTempl<ZmPoint2T>& out, WbArrayTempl<int>* indices);
  // Convex hull of a point set (monotone chain, n log n): the hull vertices counter-clockwise,
  // starting from the point with the smallest x (then smallest y), without repeating it;
  // points on a hull edge (collinear) are not vertices. indices (when given) receive each
  // vertex's index in the input; of equal points the first is used. Points with a NaN
  // coordinate are ignored. Degenerate sets: all points equal give one point, collinear points
  // their two ends, an empty set none. out and indices are emptied first (out may be the input
  // itself). Returns the count.
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
