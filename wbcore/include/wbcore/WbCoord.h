#pragma once

#include <array>
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

namespace wbcore_detail {
// The members below are written once for both dimensions: they walk the coordinate's
// components through its list of member pointers (Axes()).
template <class C>
unsigned char AllValid(const C& c) {
  for (auto axis : C::Axes()) {
    if (c.*axis == typename C::Scalar(kInvalidCoord)) return 0;
  }
  return 1;
}
template <class C>
void InvalidateAll(C& c) {
  for (auto axis : C::Axes()) c.*axis = typename C::Scalar(kInvalidCoord);
}
template <class C>
void FoldAll(C& c, const C& other, bool takeSmaller) {
  for (auto axis : C::Axes()) c.*axis = FoldComponent(c.*axis, other.*axis, takeSmaller);
}
template <class C>
WbString FormatAll(const C& c, const wchar_t* numberFormat, const wchar_t* separator) {
  double values[3] = {0, 0, 0};
  int count = 0;
  for (auto axis : C::Axes()) values[count++] = double(c.*axis);
  return FormatComponents(values, count, numberFormat, separator);
}
}  // namespace wbcore_detail

// The members common to both coordinate classes. An invalid coordinate holds the marker in
// every component; minimum and maximum fold component-wise, an invalid component (the marker)
// on either side giving way to the other side's, so that a fold can start from INVALID.
#define WB_COORD_COMMON_MEMBERS(Class)                                                            \
  static const Class INVALID;                                                                     \
  static const Class ZERO;                                                                        \
  unsigned char IsValid() const { return wbcore_detail::AllValid(*this); }                       \
  void Invalidate() { wbcore_detail::InvalidateAll(*this); }                                      \
  void minimum(const Class& other) { wbcore_detail::FoldAll(*this, other, true); }                \
  void maximum(const Class& other) { wbcore_detail::FoldAll(*this, other, false); }               \
  static int CompareX(const Class& a, const Class& b) { return wbcore_detail::CompareScalars(a.x, b.x); } \
  static int CompareY(const Class& a, const Class& b) { return wbcore_detail::CompareScalars(a.y, b.y); } \
  /* Each component with the printf-style number format, joined by the separator. */           \
  WbString GetString(const wchar_t* numberFormat = L"%g", const wchar_t* separator = L", ") const { \
    return wbcore_detail::FormatAll(*this, numberFormat, separator);                              \
  }

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
  static constexpr std::array<T WbCoord2DT::*, 2> Axes() { return {&WbCoord2DT::x, &WbCoord2DT::y}; }

  WB_COORD_COMMON_MEMBERS(WbCoord2DT)
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
  static constexpr std::array<T WbCoord3DT::*, 3> Axes() {
    return {&WbCoord3DT::x, &WbCoord3DT::y, &WbCoord3DT::z};
  }

  WB_COORD_COMMON_MEMBERS(WbCoord3DT)
  static int CompareZ(const WbCoord3DT& a, const WbCoord3DT& b) { return wbcore_detail::CompareScalars(a.z, b.z); }
};

#undef WB_COORD_COMMON_MEMBERS

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
