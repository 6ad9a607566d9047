// Helpers shared by the unit tests: strings and errors as text, a dimension or a system written
// out in one string, and the unit systems most tests use.
#pragma once

#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

inline std::wstring Text(const WbString& s) { return s.Std(); }
inline std::wstring Message(const WbErrObj* error) { return error ? error->GetMessage() : L"<no error>"; }
inline std::wstring LastMessage() { return Message(WbGetLastError()); }

// "name: e e e e e", exponents in the order length, mass, time, temperature, angle, each as
// "num" or "num/den"; a quotient adds its components: "[Force: ... / Length: ...]".
inline std::wstring Describe(const ZmUnitDim& d) {
  std::wstring s = Text(d.GetTemplDimName()) + L":";
  for (int t = 0; t < 5; ++t) {
    const auto type = static_cast<_ZmUnitType>(t);
    s += L" " + std::to_wstring(d.GetNumerator(type));
    if (d.GetDenominator(type) != 1) s += L"/" + std::to_wstring(d.GetDenominator(type));
  }
  if (d.IsQuotient()) s += L" [" + Describe(*d.GetPerNumerator()) + L" / " + Describe(*d.GetPerDenominator()) + L"]";
  return s;
}

// A dimension from its exponents "num" or "num/den" in the order length, mass, time, temperature, angle.
inline ZmUnitDim Dim(const wchar_t* exponents, const wchar_t* name = nullptr) {
  ZmUnitDim d(name, 0, 0, 0, 0, 0);
  std::wistringstream in(exponents);
  for (int t = 0, num = 0, den = 1; t < 5; ++t, den = 1) {
    if (in >> num && in.peek() == L'/') in.ignore() >> den;
    d.SetTypeDimension(static_cast<_ZmUnitType>(t), num, den);
  }
  return d;
}

// The five unit indices "l m t k a" (-1 when unset).
inline std::wstring Units(const ZmUnitSystem& s) {
  std::wstring out;
  for (int t = 0; t < 5; ++t) out += (t ? L" " : L"") + std::to_wstring(s.GetUnitIndex(static_cast<_ZmUnitType>(t)));
  return out;
}

inline ZmUnitSystem Sys(_ZmUnitLength l, _ZmUnitMass m, _ZmUnitTime t, _ZmUnitTemp k = ZmUnitKelvin,
                        _ZmUnitAngle a = ZmUnitRadian) {
  return ZmUnitSystem(l, m, t, k, a);
}
// A system from raw indices, in range or not.
inline ZmUnitSystem SysAt(int l, int m, int t, int k = 0, int a = 1) {
  return ZmUnitSystem(static_cast<_ZmUnitLength>(l), static_cast<_ZmUnitMass>(m), static_cast<_ZmUnitTime>(t),
                      static_cast<_ZmUnitTemp>(k), static_cast<_ZmUnitAngle>(a));
}

const ZmUnitSystem kMmTS = Sys(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond);
const ZmUnitSystem kMKgS = Sys(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond);
const ZmUnitSystem kMmKgMs = Sys(ZmUnitMillimeter, ZmUnitKilogram, ZmUnitMillisecond);
const ZmUnitSystem kPixels = Sys(ZmUnitPixel, ZmUnitTon, ZmUnitSecond);
const ZmUnitSystem kNoLength = Sys(ZmUnitLengthUnset, ZmUnitTon, ZmUnitSecond);
constexpr float kInvalid = -1e32f;
