#pragma once

#include <cmath>
#include <type_traits>

#include "wbcore/WbExport.h"
#include "wbcore/WbString.h"

// Base coordinates of the suite: plain x, y (and z) values with a validity marker.
//
// The invalid marker is -1.0e32 written as a float, widened to double in the double
// classes (-1.0000000331813535e+32), so that both precisions agree on what is invalid.
// A coordinate is valid when no component equals the marker.
namespace wbcore_detail {
constexpr float kInvalidCoord = -1.0e32f;

WBCORE_API WbString FormatComponents(const double* values, int count, const wchar_t* numberFormat,
                                     const wchar_t* separator);

// -1/0/1 for sorting: smaller first.
// Folds one component into a running minimum or maximum. The invalid marker on either side
// yields the other side, so a fold can start from an invalid coordinate.
template <class T>
constexpr T FoldComponent(T mine, T theirs, bool takeSmaller) {
  if (mine == T(kInvalidCoord)) return theirs;
  if (theirs == T(kInvalidCoord)) return mine;
  return takeSmaller ? (theirs < mine ? theirs : mine) : (mine < theirs ? theirs : mine);
}

template <class T, class U>
constexpr int CompareScalars(T a, U b) {
  return (a < b) ? -1 : ((b < a) ? 1 : 0);
}
}  // namespace wbcore_detail

template <class T>
class WBCORE_VISIBLE WbCoord2DT {
public:
  static_assert(std::is_floating_point<T>::value, "coordinates are float or double");
  using Scalar = T;
  static constexpr int kDimension = 2;

  T x = 0;
  T y = 0;

  constexpr WbCoord2DT() = default;
  constexpr WbCoord2DT(T xValue, T yValue) : x(xValue), y(yValue) {}

  static const WbCoord2DT INVALID;
  static const WbCoord2DT ZERO;

  unsigned char IsValid() const {
    return (x != T(wbcore_detail::kInvalidCoord) && y != T(wbcore_detail::kInvalidCoord)) ? 1 : 0;
  }
  void Invalidate() { x = y = T(wbcore_detail::kInvalidCoord); }
  // Component-wise minimum or maximum with other, in place. An invalid component (the marker)
  // on either side is replaced by the other side's, so folding starts from INVALID.
  void minimum(const WbCoord2DT& other) {
    x = wbcore_detail::FoldComponent(x, other.x, true);
    y = wbcore_detail::FoldComponent(y, other.y, true);
  }
  void maximum(const WbCoord2DT& other) {
    x = wbcore_detail::FoldComponent(x, other.x, false);
    y = wbcore_detail::FoldComponent(y, other.y, false);
  }
  static int CompareX(const WbCoord2DT& a, const WbCoord2DT& b) { return wbcore_detail::CompareScalars(a.x, b.x); }
  static int CompareY(const WbCoord2DT& a, const WbCoord2DT& b) { return wbcore_detail::CompareScalars(a.y, b.y); }
  // Each component with the printf-style number format, joined by the separator.
  WbString GetString(const wchar_t* numberFormat = L"%g", const wchar_t* separator = L", ") const {
    const double values[2] = {double(x), double(y)};
    return wbcore_detail::FormatComponents(values, 2, numberFormat, separator);
  }
};

template <class T>
class WBCORE_VISIBLE WbCoord3DT {
public:
  static_assert(std::is_floating_point<T>::value, "coordinates are float or double");
  using Scalar = T;
  static constexpr int kDimension = 3;

  T x = 0;
  T y = 0;
  T z = 0;

  constexpr WbCoord3DT() = default;
  constexpr WbCoord3DT(T xValue, T yValue, T zValue) : x(xValue), y(yValue), z(zValue) {}

  static const WbCoord3DT INVALID;
  static const WbCoord3DT ZERO;

  unsigned char IsValid() const {
    const T marker = T(wbcore_detail::kInvalidCoord);
    return (x != marker && y != marker && z != marker) ? 1 : 0;
  }
  void Invalidate() { x = y = z = T(wbcore_detail::kInvalidCoord); }
  void minimum(const WbCoord3DT& other) {
    x = wbcore_detail::FoldComponent(x, other.x, true);
    y = wbcore_detail::FoldComponent(y, other.y, true);
    z = wbcore_detail::FoldComponent(z, other.z, true);
  }
  void maximum(const WbCoord3DT& other) {
    x = wbcore_detail::FoldComponent(x, other.x, false);
    y = wbcore_detail::FoldComponent(y, other.y, false);
    z = wbcore_detail::FoldComponent(z, other.z, false);
  }
  static int CompareX(const WbCoord3DT& a, const WbCoord3DT& b) { return wbcore_detail::CompareScalars(a.x, b.x); }
  static int CompareY(const WbCoord3DT& a, const WbCoord3DT& b) { return wbcore_detail::CompareScalars(a.y, b.y); }
  static int CompareZ(const WbCoord3DT& a, const WbCoord3DT& b) { return wbcore_detail::CompareScalars(a.z, b.z); }
  WbString GetString(const wchar_t* numberFormat = L"%g", const wchar_t* separator = L", ") const {
    const double values[3] = {double(x), double(y), double(z)};
    return wbcore_detail::FormatComponents(values, 3, numberFormat, separator);
  }
};

template <class T>
const WbCoord2DT<T> WbCoord2DT<T>::INVALID{T(wbcore_detail::kInvalidCoord), T(wbcore_detail::kInvalidCoord)};
template <class T>
const WbCoord2DT<T> WbCoord2DT<T>::ZERO{T(0), T(0)};
template <class T>
const WbCoord3DT<T> WbCoord3DT<T>::INVALID{T(wbcore_detail::kInvalidCoord), T(wbcore_detail::kInvalidCoord),
                                           T(wbcore_detail::kInvalidCoord)};
template <class T>
const WbCoord3DT<T> WbCoord3DT<T>::ZERO{T(0), T(0), T(0)};

using WbCoord2Dd = WbCoord2DT<double>;
using WbCoord2Df = WbCoord2DT<float>;
using WbCoord3Dd = WbCoord3DT<double>;
using WbCoord3Df = WbCoord3DT<float>;
