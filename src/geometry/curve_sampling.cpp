// Resampling a curve at a fixed abscissa step.
//
// Each sample takes the value that InterpolateOnX gives when it searches the whole curve from
// the first point: the first segment, in curve order, that holds the abscissa. Restarting that
// search for every sample would cost the curve length per sample. Instead the sampler keeps
// j, the first point whose abscissa is >= the current sample x, and searches from there:
//
// - No segment before j can hold x. A segment closed by point i holds x only when x equals
//   x_i, or lies strictly between x_{i-1} and x_i; either way x_i >= x or x_{i-1} >= x, so
//   i >= j (and the exact hit on the first point needs x_0 >= x, so j = 0).
// - The samples never decrease (step > 0), and a point below one sample is below every later
//   one, so j only moves forward: one pass over the curve in all.
// - Without NaN abscissas the segment closed by point j holds x at once (x_{j-1} < x <= x_j),
//   monotone or not. A NaN abscissa holds nothing, so the search may then go on past j; the
//   result is still the first holding segment, only the single pass is lost.
#include <algorithm>
#include <functional>
#include <exception>

#include "geometry/curve_search.h"
#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"

ZM_BUILD_INFO(curve_sampling)

namespace {

using zm::curve::Axis;

// The most samples SampleX produces (2^27: 2 GiB of double points); more is refused.
constexpr std::uint64_t kMaxSamples = std::uint64_t(1) << 27;

// Largest abscissa of the curve, NaN abscissas skipped; hasNaN tells whether there were any.
template <class T>
T LargestAbscissa(const ZmPoint2T<T>* p, std::uint64_t n, bool& hasNaN) {
  T largest = p[0].x;
  hasNaN = false;
  for (std::uint64_t i = 0; i < n; ++i) {
    const T x = p[i].x;
    if (x != x) {
      hasNaN = true;
    } else if (!(largest >= x)) {
      largest = x;  // also replaces a NaN first abscissa
    }
  }
  return largest;
}

// The samples of a curve of count >= 1 points from x on; false when the sampling is refused
// (too many samples). out is empty on entry.
template <class T>
bool Sample(const ZmPoint2T<T>* p, std::uint64_t count, T step, T x, WbArrayTempl<ZmPoint2T<T>>& out) {
  bool hasNaN = false;
  const T span = (LargestAbscissa(p, count, hasNaN) - x) / step;
  if (span > T(kMaxSamples)) return false;
  // Without NaN abscissas every sample up to the largest abscissa is found, so the span
  // predicts the count (to within the rounding of the accumulated step).
  if (!hasNaN && span >= 0) {
    const std::uint64_t expected = std::uint64_t(span) + 2;
    out.Reserve(expected < kMaxSamples ? expected : kMaxSamples);
  }
  std::uint64_t j = 0;
  for (;;) {
    while (j < count && !(p[j].x >= x)) ++j;
    T y;
    if (j == 0 && p[0].x == x) {
      y = p[0].y;
    } else {
      const std::uint64_t end = zm::curve::FindSegmentEnd<Axis::kX>(p, count, j == 0 ? 1 : j, x);
      if (end == count) return true;
      y = zm::curve::SegmentResult<Axis::kX>(p, end, x);
    }
    if (y == zm::Invalid<T>()) return true;
    if (out.GetSize() == kMaxSamples) return false;
    out.Add(ZmPoint2T<T>(x, y));
    const T next = x + step;
    if (next == x) return false;  // the same sample would repeat forever
    x = next;
  }
}

}  // namespace

template <class T>
std::uint64_t ZmPoint2T<T>::SampleX(const ZmPoint2T* points, std::uint64_t n, T step, WbArrayTempl<ZmPoint2T>& out,
                                    T startX) {
  const std::uint64_t count = zm::curve::IndexedCount(points, n);
  if (count == 0 || !(step > 0)) {
    out.RemoveAll();
    return 0;
  }
  try {
    const zm::BoundaryCall boundary;
    // A curve that lives in out itself is read from a copy, since out is rewritten.
    WbArrayTempl<ZmPoint2T> copy;
    const std::less<const ZmPoint2T*> before;
    if (!before(points, out.begin()) && before(points, out.end())) {
      copy.SetSize(count);
      std::copy(points, points + count, copy.begin());
      points = copy.GetData();
    }
    out.RemoveAll();
    const T first = points[0].x;
    const T x = (startX != zm::Invalid<T>() && startX > first) ? startX : first;
    // A refused sampling also gives back the memory reserved for it.
    if (!Sample(points, count, step, x, out)) out = WbArrayTempl<ZmPoint2T>();
  } catch (const std::exception&) {
    if (zm::BoundaryCall::Nested()) throw;
    out = WbArrayTempl<ZmPoint2T>();
  }
  return out.GetSize();
}

template std::uint64_t ZmPoint2T<double>::SampleX(const ZmPoint2T<double>*, std::uint64_t, double,
                                                  WbArrayTempl<ZmPoint2T<double>>&, double);
template std::uint64_t ZmPoint2T<float>::SampleX(const ZmPoint2T<float>*, std::uint64_t, float,
                                                 WbArrayTempl<ZmPoint2T<float>>&, float);
