#pragma once

// The segment search shared by the curve statics of ZmPoint2T. One search serves both
// directions: along x (the value at an abscissa) and along y (the abscissa at a value).
#include <climits>
#include <cstdint>

#include "zemcalc/ZmPoint2.h"

namespace zm {
namespace curve {

// Segment and point positions are reported in an int, so a curve is searched over at most
// its first INT_MAX + 1 points; every position then fits.
constexpr std::uint64_t kMaxIndexedPoints = std::uint64_t(INT_MAX) + 1;

// The number of points that the statics look at: none behind a null pointer, and at most
// kMaxIndexedPoints.
template <class P>
std::uint64_t IndexedCount(const P* points, std::uint64_t n) {
  if (points == nullptr) return 0;
  return n < kMaxIndexedPoints ? n : kMaxIndexedPoints;
}

enum class Axis { kX, kY };

// The searched coordinate of a point and the coordinate that is read off.
template <Axis A, class T>
T Key(const ZmPoint2T<T>& p) {
  if constexpr (A == Axis::kX) {
    return p.x;
  } else {
    return p.y;
  }
}
template <Axis A, class T>
T Other(const ZmPoint2T<T>& p) {
  if constexpr (A == Axis::kX) {
    return p.y;
  } else {
    return p.x;
  }
}

// Point i >= 1 closes a segment that holds v when v is exactly its key, or strictly between
// the keys of points i - 1 and i in either order. A NaN key holds nothing.
template <Axis A, class T>
bool ClosesSegmentHolding(const ZmPoint2T<T>* p, std::uint64_t i, T v) {
  const T k1 = Key<A>(p[i]);
  if (k1 == v) return true;
  const T k0 = Key<A>(p[i - 1]);
  return (k0 < v && v < k1) || (k1 < v && v < k0);
}

// The first point i in [from, n) that closes a segment holding v (from >= 1), or n.
template <Axis A, class T>
std::uint64_t FindSegmentEnd(const ZmPoint2T<T>* p, std::uint64_t n, std::uint64_t from, T v) {
  for (std::uint64_t i = from; i < n; ++i) {
    if (ClosesSegmentHolding<A>(p, i, v)) return i;
  }
  return n;
}

// The result read off the segment closed by point i: that point's other coordinate on an
// exact hit, else the linear interpolation from point i - 1, evaluated in this order.
template <Axis A, class T>
T SegmentResult(const ZmPoint2T<T>* p, std::uint64_t i, T v) {
  if (Key<A>(p[i]) == v) return Other<A>(p[i]);
  const T k0 = Key<A>(p[i - 1]);
  const T o0 = Other<A>(p[i - 1]);
  return o0 + (v - k0) / (Key<A>(p[i]) - k0) * (Other<A>(p[i]) - o0);
}

// InterpolateOnX (A = kX) and InterpolateOnY (A = kY).
template <Axis A, class T>
T Interpolate(const ZmPoint2T<T>* p, std::uint64_t n, T v, int& index, int start) {
  const std::uint64_t count = IndexedCount(p, n);
  if (start < 0 || std::uint64_t(start) >= count) return zm::Invalid<T>();
  const std::uint64_t first = std::uint64_t(start);
  if (Key<A>(p[first]) == v) {
    index = start;
    return Other<A>(p[first]);
  }
  const std::uint64_t end = FindSegmentEnd<A>(p, count, first + 1, v);
  if (end == count) {
    index = -1;
    return zm::Invalid<T>();
  }
  index = int(end - 1);
  return SegmentResult<A>(p, end, v);
}

}  // namespace curve
}  // namespace zm
