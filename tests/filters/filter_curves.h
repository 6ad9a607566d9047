#pragma once

// Curves and checks shared by the filter tests.
#include <wbcore/WbError.h>
#include <zemcalc/ZmPoint2.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace filter_test {

// The d or the f class of a filter family, by scalar type.
template <class T, class D, class F>
using Twin = std::conditional_t<std::is_same<T, double>::value, D, F>;

// Samples y at x = x0, x0 + step, ... (x computed as x0 + i * step).
template <class T>
WbArrayTempl<ZmPoint2T<T>> Curve(const std::vector<double>& y, double step = 1.0e-4, double x0 = 0.0) {
  WbArrayTempl<ZmPoint2T<T>> curve;
  for (std::size_t i = 0; i < y.size(); ++i) curve.Add(ZmPoint2T<T>(x0 + static_cast<double>(i) * step, y[i]));
  return curve;
}

// The points (x[i], y[i]).
template <class T>
WbArrayTempl<ZmPoint2T<T>> Points(const std::vector<double>& x, const std::vector<double>& y) {
  WbArrayTempl<ZmPoint2T<T>> curve;
  for (std::size_t i = 0; i < x.size(); ++i) curve.Add(ZmPoint2T<T>(x[i], y[i]));
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

// Equal values, or both NaN.
template <class T>
bool SameValue(T a, T b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// The message of Compute(in, out) into an out that held other points ("<success>" when it
// succeeds); a refusal must leave out the copy of in, or this says that it does not.
template <class Filter, class Curve>
std::wstring Refusal(Filter&& filter, const Curve& in) {
  Curve out;
  out.Add(std::decay_t<decltype(in[0])>(9, 9));
  const WbErrObj* error = filter.Compute(in, out);
  return !error || SameCurve(out, in) ? Message(error) : L"<out is not the copy of in>";
}

}  // namespace filter_test
