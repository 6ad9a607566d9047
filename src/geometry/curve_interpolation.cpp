// Interpolation along a curve: the value at an abscissa, the abscissa at a value, and every
// abscissa at which a value is reached.
#include <exception>

#include "geometry/curve_search.h"
#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"

ZM_BUILD_INFO(curve_interpolation)

using zm::curve::Axis;

template <class T>
T ZmPoint2T<T>::InterpolateOnX(const ZmPoint2T* points, std::uint64_t n, T x, int& index, int start) {
  return zm::curve::Interpolate<Axis::kX>(points, n, x, index, start);
}

template <class T>
T ZmPoint2T<T>::InterpolateOnY(const ZmPoint2T* points, std::uint64_t n, T y, int& index, int start) {
  return zm::curve::Interpolate<Axis::kY>(points, n, y, index, start);
}

// Each search resumes after the segment of the previous crossing, so the whole run costs one
// pass over the curve.
template <class T>
std::uint64_t ZmPoint2T<T>::InterpolateOnYn(const ZmPoint2T* points, std::uint64_t n, T y, WbArrayTempl<T>& xs) try {
  const zm::BoundaryCall boundary;
  xs.RemoveAll();
  const std::uint64_t count = zm::curve::IndexedCount(points, n);
  int start = 0;
  while (std::uint64_t(start) < count) {
    int index = -1;
    const T x = zm::curve::Interpolate<Axis::kY>(points, count, y, index, start);
    if (x == zm::Invalid<T>()) break;
    xs.Add(x);
    start = index + 1;
  }
  return xs.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  xs.RemoveAll();
  return 0;
}

template double ZmPoint2T<double>::InterpolateOnX(const ZmPoint2T<double>*, std::uint64_t, double, int&, int);
template float ZmPoint2T<float>::InterpolateOnX(const ZmPoint2T<float>*, std::uint64_t, float, int&, int);
template double ZmPoint2T<double>::InterpolateOnY(const ZmPoint2T<double>*, std::uint64_t, double, int&, int);
template float ZmPoint2T<float>::InterpolateOnY(const ZmPoint2T<float>*, std::uint64_t, float, int&, int);
template std::uint64_t ZmPoint2T<double>::InterpolateOnYn(const ZmPoint2T<double>*, std::uint64_t, double,
                                                          WbArrayTempl<double>&);
template std::uint64_t ZmPoint2T<float>::InterpolateOnYn(const ZmPoint2T<float>*, std::uint64_t, float,
                                                         WbArrayTempl<float>&);
