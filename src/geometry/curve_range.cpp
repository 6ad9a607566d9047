// The abscissa range of a curve: one more point beyond an end, or the part between two bounds.
#include <cmath>
#include <exception>
#include <utility>

#include "geometry/curve_search.h"
#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"

ZM_BUILD_INFO(curve_range)

template <class T>
unsigned char ZmPoint2T<T>::ExtrapolateOnX(WbArrayTempl<ZmPoint2T>& curve, T x, unsigned char linear, T floor) try {
  const zm::BoundaryCall boundary;
  const std::uint64_t n = curve.GetSize();
  if (n == 0) return 0;
  const bool before = x < curve[0].x;
  if (!before && !(x > curve[n - 1].x)) return 0;  // within the curve, or NaN
  // The end point and its neighbour along the curve.
  const ZmPoint2T& end = before ? curve[0] : curve[n - 1];
  T value = end.y;
  if (linear) {
    if (n < 2) return 0;
    const ZmPoint2T& inner = before ? curve[1] : curve[n - 2];
    if (inner.x == end.x) return 0;
    if (before) {
      value = end.y - (inner.y - end.y) / (inner.x - end.x) * (end.x - x);
    } else {
      value = end.y + (end.y - inner.y) / (end.x - inner.x) * (x - end.x);
    }
    if (floor != zm::Invalid<T>() && floor > value) value = floor;
  }
  if (before) {
    curve.InsertAt(0, ZmPoint2T(x, value));
  } else {
    curve.Add(ZmPoint2T(x, value));
  }
  return 1;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return 0;
}

namespace {

// Where an abscissa lies with respect to the kept band [lo - tol, hi + tol].
enum class Side { kBelow, kInside, kAbove, kUndefined };

template <class T>
struct Band {
  T lo, hi, tol;

  Side Locate(T x) const {
    if (x != x) return Side::kUndefined;
    if (x < lo - tol) return Side::kBelow;
    if (x > hi + tol) return Side::kAbove;
    return Side::kInside;
  }
  // A kept point farther than tol from the bound is not on it.
  bool AwayFrom(T x, T bound) const { return std::fabs(x - bound) > tol; }
};

// The point of segment a -> b at abscissa bound, interpolated as InterpolateOnX does.
template <class T>
ZmPoint2T<T> PointAt(const ZmPoint2T<T>& a, const ZmPoint2T<T>& b, T bound) {
  return ZmPoint2T<T>(bound, a.y + (bound - a.x) / (b.x - a.x) * (b.y - a.y));
}

}  // namespace

// The curve is clipped to the band segment by segment, so increasing, decreasing and
// back-and-forth runs are treated alike: kept points stay in order, and where a segment
// crosses a bound a point is interpolated on the bound, unless the kept end of the segment is
// already within tol of it.
template <class T>
std::uint64_t ZmPoint2T<T>::ExtractXRange(WbArrayTempl<ZmPoint2T>& curve, T xmin, T xmax, T tol) try {
  const zm::BoundaryCall boundary;
  const std::uint64_t n = curve.GetSize();
  if (xmin != xmin || xmax != xmax) {
    curve.RemoveAll();
    return 0;
  }
  if (xmin > xmax) std::swap(xmin, xmax);
  const Band<T> band{xmin, xmax, (tol == tol && tol != zm::Invalid<T>()) ? T(std::fabs(tol)) : T(0)};
  WbArrayTempl<ZmPoint2T> kept;
  kept.Reserve(n);
  Side previous = Side::kUndefined;
  for (std::uint64_t i = 0; i < n; ++i) {
    const ZmPoint2T& b = curve[i];
    const Side side = band.Locate(b.x);
    if (i > 0 && previous != Side::kUndefined && side != Side::kUndefined && side != previous) {
      const ZmPoint2T& a = curve[i - 1];
      // Leaving the band, or crossing it: the bound on the way out of a's side first.
      const bool enters = previous != Side::kInside, leaves = side != Side::kInside;
      if (enters) {
        const T entry = previous == Side::kBelow ? xmin : xmax;
        if (leaves || band.AwayFrom(b.x, entry)) kept.Add(PointAt(a, b, entry));
      }
      // A crossing of a single-abscissa range gives its one point once.
      if (leaves && !(enters && xmin == xmax)) {
        const T exit = side == Side::kBelow ? xmin : xmax;
        if (enters || band.AwayFrom(a.x, exit)) kept.Add(PointAt(a, b, exit));
      }
    }
    if (side == Side::kInside) kept.Add(b);
    previous = side;
  }
  curve = std::move(kept);
  return curve.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return 0;
}

template unsigned char ZmPoint2T<double>::ExtrapolateOnX(WbArrayTempl<ZmPoint2T<double>>&, double, unsigned char,
                                                         double);
template unsigned char ZmPoint2T<float>::ExtrapolateOnX(WbArrayTempl<ZmPoint2T<float>>&, float, unsigned char, float);
template std::uint64_t ZmPoint2T<double>::ExtractXRange(WbArrayTempl<ZmPoint2T<double>>&, double, double, double);
template std::uint64_t ZmPoint2T<float>::ExtractXRange(WbArrayTempl<ZmPoint2T<float>>&, float, float, float);
