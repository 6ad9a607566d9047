#pragma once

#include <cmath>
#include <type_traits>

#include "zemcalc/ZmExport.h"

// Thresholds shared by both precisions are single-precision values. The double classes widen
// the float value rather than using the exact decimal, so that both precisions take the same
// decisions on the same data: 1.0e-5f is 9.999999747378752e-06 as a double, 1.0e-6f is
// 9.999999974752427e-07 and the invalid marker -1.0e32f is -1.0000000331813535e+32.
namespace zm {
constexpr float kInvalid = -1.0e32f;       // undefined results, absent optional arguments
constexpr float kTolerance5 = 1.0e-5f;     // distinct points
constexpr float kTolerance6 = 1.0e-6f;     // null-length guards of the vector predicates
constexpr float kTolerance14 = 1.0e-14f;   // degenerate direction, on squared lengths

// Conversion factors of the angle classes, in single precision so that an angle converted in
// either precision gives the same value: pi/180 rounded to float, and 180 divided by the float
// pi in float arithmetic. The latter is one float below 180/pi rounded (57.29578018...): keep
// it as written.
constexpr float kDegToRadF = 0.017453292519943295f;  // 0.01745329238474369 as a double
constexpr float kRadToDegF = 57.2957763671875f;      // 180.0f / 3.14159274f, exact as a double
// Exact double factors used by the point and vector members that take angles in degrees.
constexpr double kDegToRad = 0.017453292519943295;
constexpr double kRadToDeg = 57.29577951308232;

// The invalid marker in the precision T.
template <class T>
constexpr T Invalid() {
  return static_cast<T>(kInvalid);
}

namespace detail {
// Returns f unchanged, but through an empty assembler statement that claims to modify it: the
// compiler must materialise the rounded float and cannot fold a float -> double widening back
// into the double it came from. It costs no instruction (the value stays in its register).
inline float OpaqueFloat(float f) {
#if defined(__GNUC__) || defined(__clang__)
#  if defined(__x86_64__) || (defined(__i386__) && defined(__SSE2_MATH__))
  __asm__("" : "+x"(f));
#  elif defined(__aarch64__)
  __asm__("" : "+w"(f));
#  else
  __asm__("" : "+m"(f));
#  endif
#endif
  return f;
}
}  // namespace detail

// Converts an arithmetic value to the scalar T of a class, rounding to nearest when T is float
// and the value is not. Code that a public header inlines is compiled with the including
// program's flags, and GCC 12's basic-block vectoriser drops a double -> float -> double round
// trip when two such results are stored side by side (ZmPoint3d(ZmPoint3f(p)) gave x and y
// unrounded at -O2). Every rounding to float that a header can inline therefore goes through
// here, where the rounded value is made opaque to the optimiser; inside a constant expression
// the plain conversion is used (no optimiser is involved). The library's own sources are
// compiled with the basic-block vectoriser off, which keeps the round trip, and use the plain
// conversion too so that their loops stay vectorisable.
template <class T, class U>
constexpr T ConvertScalar(U value) {
  static_assert(std::is_arithmetic<T>::value && std::is_arithmetic<U>::value, "scalars only");
#if (defined(__GNUC__) || defined(__clang__)) && !defined(ZEMCALC_BUILDING)
  if constexpr (std::is_same<T, float>::value && !std::is_same<U, float>::value) {
    if (!__builtin_is_constant_evaluated()) return detail::OpaqueFloat(static_cast<float>(value));
  }
#endif
  return static_cast<T>(value);
}

// Square root in the precision rule of the library: float values are widened, rooted in
// double and rounded back; doubles are rooted directly.
template <class T>
inline T Sqrt(T value) {
  return ConvertScalar<T>(std::sqrt(static_cast<double>(value)));
}

// Rounds a double-precision length to single precision and back, the rule for lengths that
// both precisions must report alike. Used by the library's own sources, which are compiled
// with the vectoriser setting that keeps the round trip; headers use ConvertScalar.
template <class T>
constexpr T RoundToFloat(T value) {
  return static_cast<T>(static_cast<float>(value));
}

template <class T>
using EnableIfScalar = std::enable_if_t<std::is_arithmetic<T>::value, int>;
template <class T>
using EnableIfIntegral = std::enable_if_t<std::is_integral<T>::value, int>;
}  // namespace zm

// Standard gravity in m/s^2, stored as a float.
extern ZMCALC_API const float WbGms;

