#pragma once

// Turns the fuzzer's bytes into the library's argument types: texts (wide, with the odd
// non-ASCII character), numbers that favour the edges (0, -0, 1, NaN, infinities, the invalid
// marker, the extremes, subnormals) and curves and point sets of bounded length.
#include <fuzzer/FuzzedDataProvider.h>
#include <wbcore/WbArray.h>
#include <wbcore/WbString.h>
#include <zemcalc/ZmPoint2.h>
#include <zemcalc/ZmPoint3.h>

#include <cstdint>
#include <limits>
#include <string>

namespace fuzz {

// A wide text of at most maxLength characters: each byte is a character, except 0xFF which
// takes the next two bytes as one character beyond Latin-1.
inline WbString Text(FuzzedDataProvider& in, std::size_t maxLength) {
  const std::string bytes = in.ConsumeRandomLengthString(maxLength);
  std::wstring text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned char b = static_cast<unsigned char>(bytes[i]);
    if (b == 0xFF && i + 2 < bytes.size()) {
      text += static_cast<wchar_t>((static_cast<unsigned char>(bytes[i + 1]) << 8) | static_cast<unsigned char>(bytes[i + 2]));
      i += 2;
    } else {
      text += static_cast<wchar_t>(b);
    }
  }
  return WbString(text.c_str());
}

template <class T>
T Number(FuzzedDataProvider& in) {
  typedef std::numeric_limits<T> L;
  const T edges[] = {T(0), -T(0), T(1), -T(1), L::quiet_NaN(), L::infinity(), -L::infinity(), T(-1.0e32f),
                     L::max(), L::lowest(), L::min(), L::denorm_min(), T(0.5), T(1.0e-6), T(1.0e6)};
  const std::uint8_t pick = in.ConsumeIntegral<std::uint8_t>();
  if (pick < 2 * sizeof(edges) / sizeof(edges[0])) return edges[pick / 2];
  if (pick < 200) return static_cast<T>(in.ConsumeIntegralInRange<int>(-1000, 1000)) / T(8);
  return in.ConsumeFloatingPoint<T>();
}

// A curve of at most maxPoints points: abscissas increasing from 0 by steps of 0 to 1 (always
// when anyAbscissa is false), or any numbers.
template <class T>
WbArrayTempl<ZmPoint2T<T>> Curve(FuzzedDataProvider& in, std::size_t maxPoints, bool anyAbscissa = true) {
  WbArrayTempl<ZmPoint2T<T>> curve;
  const std::size_t n = in.ConsumeIntegralInRange<std::size_t>(0, maxPoints);
  const bool increasing = !anyAbscissa || in.ConsumeBool();
  T x = 0;
  for (std::size_t i = 0; i < n && in.remaining_bytes() > 0; ++i) {
    if (increasing)
      x += static_cast<T>(in.ConsumeIntegralInRange<int>(0, 16)) / T(16);
    else
      x = Number<T>(in);
    curve.Add(ZmPoint2T<T>(x, Number<T>(in)));
  }
  return curve;
}

template <class T>
ZmPoint3T<T> Point3(FuzzedDataProvider& in) {
  const T x = Number<T>(in), y = Number<T>(in);
  return ZmPoint3T<T>(x, y, Number<T>(in));
}

template <class T>
ZmPoint2T<T> Point2(FuzzedDataProvider& in) {
  const T x = Number<T>(in);
  return ZmPoint2T<T>(x, Number<T>(in));
}

template <class T>
WbArrayTempl<ZmPoint3T<T>> Points3(FuzzedDataProvider& in, std::size_t maxPoints) {
  WbArrayTempl<ZmPoint3T<T>> points;
  const std::size_t n = in.ConsumeIntegralInRange<std::size_t>(0, maxPoints);
  for (std::size_t i = 0; i < n && in.remaining_bytes() > 0; ++i) points.Add(Point3<T>(in));
  return points;
}

}  // namespace fuzz
