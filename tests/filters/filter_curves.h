#pragma once

// Curves and checks shared by the filter tests.
#include <wbcore/WbError.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <zemcalc/ZmPoint2.h>

namespace filter_test {

// Samples y at x = x0, x0 + step, ... (x computed as x0 + i * step).
template <class T>
WbArrayTempl<ZmPoint2T<T>> Curve(const std::vector<double>& y, double step = 1.0e-4, double x0 = 0.0) {
  WbArrayTempl<ZmPoint2T<T>> curve;
  for (std::size_t i = 0; i < y.size(); ++i) curve.Add(ZmPoint2T<T>(x0 + static_cast<double>(i) * step, y[i]));
  return curve;
}

// A test signal exact in both precisions: y[i] = ((37 * i) % 101) / 8.
inline std::vector<double> Signal(int n) {
  std::vector<double> y;
  for (int i = 0; i < n; ++i) y.push_back(static_cast<double>((37 * i) % 101) / 8.0);
  return y;
}

template <class T>
std::vector<T> Values(const WbArrayTempl<ZmPoint2T<T>>& curve) {
  std::vector<T> y;
  for (const auto& p : curve) y.push_back(p.y);
  return y;
}

inline std::wstring Message(const WbErrObj* error) { return error ? error->GetMessage() : L"<success>"; }

// 1 when both curves hold the same points, bit for bit in their values.
template <class T>
bool SameCurve(const WbArrayTempl<ZmPoint2T<T>>& a, const WbArrayTempl<ZmPoint2T<T>>& b) {
  if (a.GetSize() != b.GetSize()) return false;
  for (std::uint64_t i = 0; i < a.GetSize(); ++i) {
    if (std::memcmp(&a[i], &b[i], sizeof(a[i])) != 0) return false;
  }
  return true;
}

}  // namespace filter_test
