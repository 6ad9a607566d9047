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

// A system from its unit indices (length, mass, time, temperature, angle), in range or not;
// the default temperature and angle are Kelvin and radian.
inline ZmUnitSystem SysAt(int l, int m, int t, int k = 0, int a = 1) {
  return ZmUnitSystem(static_cast<_ZmUnitLength>(l), static_cast<_ZmUnitMass>(m), static_cast<_ZmUnitTime>(t),
                      static_cast<_ZmUnitTemp>(k), static_cast<_ZmUnitAngle>(a));
}

// (mm, T, s), (m, Kg, s), (mm, Kg, ms), pixels instead of a length, and no length at all.
const ZmUnitSystem kMmTS = SysAt(2, 4, 0), kMKgS = SysAt(0, 0, 0), kMmKgMs = SysAt(2, 0, 1), kPixels = SysAt(5, 4, 0),
                   kNoLength = SysAt(-1, 4, 0);
constexpr float kInvalid = -1e32f;
