#pragma once

// Curves and checks shared by the filter tests.
//
// Expected outputs of the symmetric kernels replay the rules in Python/numpy, one operation at a
// time in the filter's precision (dt = numpy.float64 or numpy.float32), the work buffer b padded
// as the header says:
//   def run(y, c, n, mode, dt):
//       h = n // 2; b = pad(y, h, mode, dt); out = []
//       for j in range(len(y)):
//           s = dt(0)
//           for k in range(h): s = dt(s + dt(dt(b[j+k] + b[j+n-1-k]) * c[k]))
//           if n % 2: s = dt(s + dt(b[j+h] * c[h]))
//           out.append(s)
//   mva(n, dt) = [dt(numpy.float32(1) / numpy.float32(n))] * ((n + 1) // 2)
//   linear padding: b[i] = ((y1-y0)*i + (h+1)*y0) - h*y1,
//                   b[h+N+i] = ((B-A)*i + (h+N-1)*A) - (h+N-2)*B
// mostly on Signal(n) below, y[i] = ((37 * i) % 101) / 8.0, with point reflection.
#include <gtest/gtest.h>
#include <zemcalc/ZmFilter.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
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

// A test signal exact in both precisions.
inline std::vector<double> Signal(int n) {
  std::vector<double> y;
  for (int i = 0; i < n; ++i) y.push_back(static_cast<double>((37 * i) % 101) / 8.0);
  return y;
}

// The values of the points at, all of them when at is empty.
template <class T>
std::vector<T> Values(const WbArrayTempl<ZmPoint2T<T>>& curve, const std::vector<std::uint64_t>& at = {}) {
  std::vector<T> y;
  for (std::uint64_t i = 0; i < (at.empty() ? curve.GetSize() : at.size()); ++i)
    y.push_back(curve[at.empty() ? i : at[i]].y);
  return y;
}

inline std::wstring Message(const WbErrObj* error) { return error ? error->GetMessage() : L"<success>"; }

// The filter of class `name` made by name, null when unknown.
template <class T>
std::unique_ptr<ZmFilterT<T>> ByName(const std::wstring& name) {
  return std::unique_ptr<ZmFilterT<T>>(static_cast<ZmFilterT<T>*>(WbRuntimeClass::CreateObject(name.c_str())));
}

// 1 when both curves hold the same points, bit for bit in their values.
template <class T>
bool SameCurve(const WbArrayTempl<ZmPoint2T<T>>& a, const WbArrayTempl<ZmPoint2T<T>>& b) {
  const auto same = [](const ZmPoint2T<T>& p, const ZmPoint2T<T>& q) { return std::memcmp(&p, &q, sizeof(p)) == 0; };
  return a.GetSize() == b.GetSize() && std::equal(a.begin(), a.end(), b.begin(), same);
}

// Equal values, or both NaN.
template <class T>
bool SameValue(T a, T b) {
  return a == b || (std::isnan(a) && std::isnan(b));
}

// in filtered into a new curve whose abscissae must be those of in; a refusal is reported and
// gives in back.
template <class Filter, class Curve>
Curve Filtered(Filter&& filter, const Curve& in) {
  Curve out;
  const std::wstring message = Message(filter.Compute(in, out));
  EXPECT_EQ(message, L"<success>");
  if (message != L"<success>" || out.GetSize() != in.GetSize()) return in;
  for (std::uint64_t i = 0; i < in.GetSize(); ++i) EXPECT_EQ(out[i].x, in[i].x) << i;
  return out;
}

// The message of Compute(in, out) into an out that held other points ("<success>" when it
// succeeds); a refusal must leave out the copy of in, and give the same message and leave the
// curve unchanged when filtering in place, or this says that it does not.
template <class Filter, class Curve>
std::wstring Refusal(Filter&& filter, const Curve& in) {
  Curve out, same = in;
  out.Add(std::decay_t<decltype(in[0])>(9, 9));
  const std::wstring message = Message(filter.Compute(in, out));
  if (message == L"<success>") return message;
  if (!SameCurve(out, in)) return L"<out is not the copy of in>";
  return Message(filter.Compute(same, same)) == message && SameCurve(same, in) ? message : L"<in place differs>";
}

}  // namespace filter_test
