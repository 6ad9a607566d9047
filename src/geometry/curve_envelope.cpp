// Envelopes of a curve: its local or windowed extremes, and the peaks of an oscillation.
#include <exception>

#include "geometry/curve_search.h"
#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"

ZM_BUILD_INFO(curve_envelope)

namespace {

// Local extremes. Point i falls when y_i > y_{i+1} (the last point always falls). For the
// upper envelope a point is kept when it was risen into (the previous point did not fall;
// taken as true for the first point) and falls. For the lower envelope a point is kept when
// the previous point fell (taken as true for the first point) and it does not fall, so the
// last point never enters a lower envelope while it may enter an upper one.
template <class T>
void KeepLocalExtremes(const WbArrayTempl<ZmPoint2T<T>>& curve, bool upper, WbArrayTempl<ZmPoint2T<T>>& out) {
  const std::uint64_t n = curve.GetSize();
  bool risenInto = upper;
  for (std::uint64_t i = 0; i < n; ++i) {
    const bool falls = i + 1 == n || curve[i].y > curve[i + 1].y;
    if (upper ? (risenInto && falls) : (!risenInto && !falls)) out.Add(curve[i]);
    risenInto = !falls;
  }
}

// One extreme per span of width/2 along the abscissa: a candidate is kept when a point lies
// more than width/2 beyond it, and replaced by any strictly higher (lower) point before that.
template <class T>
void KeepSpanExtremes(const WbArrayTempl<ZmPoint2T<T>>& curve, bool upper, T width, WbArrayTempl<ZmPoint2T<T>>& out) {
  const std::uint64_t n = curve.GetSize();
  const T half = width / T(2);
  std::uint64_t candidate = 0;
  for (std::uint64_t i = 1; i < n; ++i) {
    const ZmPoint2T<T>& c = curve[candidate];
    if (curve[i].x - c.x > half) {
      out.Add(c);
      candidate = i;
    } else if (upper ? curve[i].y > c.y : curve[i].y < c.y) {
      candidate = i;
    }
  }
  out.Add(curve[candidate]);
}

}  // namespace

template <class T>
std::uint64_t ZmPoint2T<T>::EvaluateEnvelop(const WbArrayTempl<ZmPoint2T>& curve, unsigned char upper,
                                            WbArrayTempl<ZmPoint2T>& out, T width) try {
  const zm::BoundaryCall boundary;
  if (&curve == &out) {
    const WbArrayTempl<ZmPoint2T> copy(curve);
    return EvaluateEnvelop(copy, upper, out, width);
  }
  out.RemoveAll();
  if (curve.IsEmpty()) return 0;
  if (width == zm::Invalid<T>()) {
    KeepLocalExtremes(curve, upper != 0, out);
  } else {
    KeepSpanExtremes(curve, upper != 0, width, out);
  }
  return out.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  out.RemoveAll();
  return 0;
}

// The curve is cut at its crossings of the mid level (max + min)/2; each piece from the point
// after the previous crossing's segment to the current crossing's segment contributes its
// highest (lowest) point, the earliest on ties, when that point stands out from the mid level
// by more than half the upper (lower) amplitude. NaN values take no part.
template <class T>
std::uint64_t ZmPoint2T<T>::EvaluateSinusoidEnvelop(const WbArrayTempl<ZmPoint2T>& curve, unsigned char upper,
                                                    WbArrayTempl<ZmPoint2T>& out, WbArrayTempl<int>* indices) try {
  const zm::BoundaryCall boundary;
  if (&curve == &out) {
    const WbArrayTempl<ZmPoint2T> copy(curve);
    return EvaluateSinusoidEnvelop(copy, upper, out, indices);
  }
  out.RemoveAll();
  if (indices) indices->RemoveAll();
  const ZmPoint2T* p = curve.GetData();
  const std::uint64_t count = zm::curve::IndexedCount(p, curve.GetSize());
  bool anyValue = false;
  T lowest = 0, highest = 0;
  for (std::uint64_t i = 0; i < count; ++i) {
    const T y = p[i].y;
    if (y != y) continue;
    if (!anyValue || y < lowest) lowest = y;
    if (!anyValue || y > highest) highest = y;
    anyValue = true;
  }
  if (!anyValue) return 0;
  const T mid = (highest + lowest) / T(2);
  const T threshold = upper ? (highest - mid) / T(2) : (mid - lowest) / T(2);
  int start = 0;
  for (;;) {
    int end = -1;
    zm::curve::Interpolate<zm::curve::Axis::kY>(p, count, mid, end, start);
    if (end < 0) break;
    int peak = -1;
    for (int k = start; k <= end; ++k) {
      const T y = p[k].y;
      if (y != y) continue;
      if (peak < 0 || (upper ? y > p[peak].y : y < p[peak].y)) peak = k;
    }
    if (peak >= 0) {
      const T amplitude = upper ? p[peak].y - mid : mid - p[peak].y;
      if (amplitude > threshold) {
        out.Add(p[peak]);
        if (indices) indices->Add(peak);
      }
    }
    start = end + 1;
  }
  return out.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  out.RemoveAll();
  if (indices) indices->RemoveAll();
  return 0;
}

template std::uint64_t ZmPoint2T<double>::EvaluateEnvelop(const WbArrayTempl<ZmPoint2T<double>>&, unsigned char,
                                                          WbArrayTempl<ZmPoint2T<double>>&, double);
template std::uint64_t ZmPoint2T<float>::EvaluateEnvelop(const WbArrayTempl<ZmPoint2T<float>>&, unsigned char,
                                                         WbArrayTempl<ZmPoint2T<float>>&, float);
template std::uint64_t ZmPoint2T<double>::EvaluateSinusoidEnvelop(const WbArrayTempl<ZmPoint2T<double>>&, unsigned char,
                                                                  WbArrayTempl<ZmPoint2T<double>>&, WbArrayTempl<int>*);
template std::uint64_t ZmPoint2T<float>::EvaluateSinusoidEnvelop(const WbArrayTempl<ZmPoint2T<float>>&, unsigned char,
                                                                 WbArrayTempl<ZmPoint2T<float>>&, WbArrayTempl<int>*);
