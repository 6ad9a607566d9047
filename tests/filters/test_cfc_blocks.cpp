// The CFC filter at any rate runs its recursion two outputs at a time, over stretches of the
// curve, and a long record's two halves side by side; here it is checked against the plain
// recursion, one output after the other in long double (its own rounding is far below the
// tolerance; in double, any order of the recursion strays by up to about 1.2e-12 of the signal's
// scale at CFC 60 at 100 kHz), written out from the filter's rules (ends continued by L samples,
// each pass started in the steady state of its first value, or at rest without ends): every
// short length and a long record, every end treatment and pad, classes and rates with poles
// close to 1, both twins.
#include <gtest/gtest.h>
#include <zemcalc/ZmFilterCFC.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace {

// Two passes of y = a0 x + a1 x[-1] + a2 x[-2] + b1 y[-1] + b2 y[-2], one output at a time, in
// long double.
std::vector<double> PlainFiltfilt(const std::vector<double>& y, const ZmCFCCoefficients& c, ZmFilterEnds ends,
                                  std::int64_t padLength, double automaticPad) {
  const std::int64_t n = static_cast<std::int64_t>(y.size());
  const std::int64_t pad =
      ends == ZmFilterEndsNone ? 0 : std::min<std::int64_t>(padLength >= 0 ? padLength : automaticPad, n - 1);
  std::vector<long double> v;
  for (std::int64_t k = -pad; k < n + pad; ++k) {  // x[k]; past an end e, m is k mirrored through e
    const std::int64_t e = k < 0 ? 0 : n - 1, m = 2 * e - k;
    v.push_back(k >= 0 && k < n                  ? y[k]
                : ends == ZmFilterEndsReflection ? 2 * y[e] - y[m]
                : ends == ZmFilterEndsMirror     ? y[m]
                                                 : y[e]);
  }
  for (int pass = 0; pass < 2; ++pass) {
    const long double start = ends == ZmFilterEndsNone ? 0.0L : v[0];
    long double x1 = start, x2 = start, y1 = start, y2 = start;
    for (long double& value : v) {
      const long double x = value;
      value = c.a0 * x + c.a1 * x1 + c.a2 * x2 + c.b1 * y1 + c.b2 * y2;
      x2 = x1, x1 = x, y2 = y1, y1 = value;
    }
    std::reverse(v.begin(), v.end());
  }
  return std::vector<double>(v.begin() + pad, v.begin() + pad + n);
}

template <class Filter>
void CheckAgainstPlain(double cfc, double rate, ZmFilterEnds ends, std::int64_t pad, std::size_t n) {
  using T = typename Filter::Scalar;
  // A pulse of +-40 on an offset of 25, in values exact in float: the twins read the same numbers.
  std::vector<double> y(n);
  WbArrayTempl<ZmPoint2T<T>> curve, out;
  for (std::size_t i = 0; i < n; ++i) {
    y[i] = 25.0 + static_cast<double>(static_cast<int>((i * 7919) % 641) - 320) / 8.0;
    curve.Add(ZmPoint2T<T>(static_cast<double>(i) / rate, y[i]));
  }
  Filter filter(cfc, ZmUnitSecond, ends);
  filter.SetPadLength(pad);
  filter.SetStepTolerance(0.1);
  filter.SetAllowLowRate(1);  // CFC 1000 at 10 kHz read from float abscissae is a hair below 10 kHz
  const WbErrObj* error = filter.Compute(curve, out);
  SCOPED_TRACE(testing::Message() << "CFC " << cfc << " at " << rate << " Hz, ends " << ends << ", pad " << pad << ", "
                                  << n << " samples, " << sizeof(T) << "-byte twin");
  // The span entry point, into another array and in place, gives Compute's bits (or its refusal,
  // the input left as it was).
  std::vector<ZmPoint2T<T>> span(n), inPlace(curve.GetData(), curve.GetData() + n);
  ASSERT_EQ(filter.ComputeSpan(curve.GetData(), n, span.data()) != nullptr, error != nullptr);
  ASSERT_EQ(filter.ComputeSpan(inPlace.data(), n, inPlace.data()) != nullptr, error != nullptr);
  for (std::size_t i = 0; i < n; ++i) {
    ASSERT_TRUE(span[i].y == out[i].y && inPlace[i].y == out[i].y && span[i].x == curve[i].x) << "sample " << i;
  }
  ASSERT_EQ(error != nullptr, n < 2);
  if (n < 2) return;
  // The filter's sampling period: the mean step of the curve's own (float or double) abscissae.
  const double step =
      (static_cast<double>(curve[n - 1].x) - static_cast<double>(curve[0].x)) / static_cast<double>(n - 1);
  ZmCFCCoefficients c{};
  ASSERT_EQ(filter.ComputeCoefficients(step, c), nullptr);
  const std::vector<double> expected = PlainFiltfilt(y, c, ends, pad, std::ceil(3.0 / (cfc * step)));
  // Within 2e-12 of the signal's scale (65); the float twin rounds the result once more (half a
  // float unit, 6e-8 relative).
  for (std::size_t i = 0; i < n; ++i) {
    const double allowed = 65 * 2e-12 + (sizeof(T) == 4 ? std::fabs(expected[i]) * 6.0e-8 : 0.0);
    ASSERT_NEAR(out[i].y, expected[i], allowed) << "sample " << i;
    ASSERT_EQ(out[i].x, curve[i].x);
  }
}

TEST(CFCBlocks, AgreeWithThePlainRecursion) {
  const struct { double cfc, rate; } rates[] = {{60, 1.0e5}, {1000, 1.0e4}, {180, 2.0e4}, {600, 5.0e4}, {60, 1.0e4}};
  std::vector<std::size_t> lengths;
  for (std::size_t n = 0; n <= 41; ++n) lengths.push_back(n);
  lengths.push_back(40003);  // a long record, of odd length, cut in two halves at every rate here
  for (const auto& r : rates) {
    for (ZmFilterEnds ends : {ZmFilterEndsReflection, ZmFilterEndsMirror, ZmFilterEndsConstant, ZmFilterEndsNone}) {
      for (std::int64_t pad : {-1, 0, 1, 9, 1000000}) {
        for (std::size_t n : lengths) {
          CheckAgainstPlain<ZmFilterCFCd>(r.cfc, r.rate, ends, pad, n);
          CheckAgainstPlain<ZmFilterCFCf>(r.cfc, r.rate, ends, pad, n);
        }
      }
    }
  }
}

// Filtering into another array, the steps are tested in the forward pass itself: a bad step far
// into the curve is still refused, the first one named, and the target ends as the copy of the
// input; filtering in place, every step is tested before the curve is touched. The record is cut
// in halves at 5000: the bad step is the last of the first half, the first of the second, or
// the last one, left over after the halves.
template <class Filter>
void CheckLateUnevenStep(int at) {
  using P = typename Filter::Point;
  WbArrayTempl<P> curve, out;
  for (int i = 0; i < 10001; ++i) curve.Add(P(i * 1.0e-4 + (i >= at ? 5.0e-5 : 0.0), i % 7));
  WbArrayTempl<P> same = curve;
  std::vector<P> span(10001);
  Filter filter(60);
  for (const WbErrObj* error : {filter.Compute(curve, out), filter.Compute(same, same),
                                filter.ComputeSpan(curve.GetData(), 10001, span.data())}) {
    ASSERT_NE(error, nullptr);
    EXPECT_NE(std::wstring(error->GetMessage()).find(L"interval " + std::to_wstring(at) + L" "), std::wstring::npos)
        << error->GetMessage();
  }
  for (int i = 0; i < 10001; ++i) {
    const P& p = curve[i];
    ASSERT_TRUE(out[i].x == p.x && out[i].y == p.y && same[i].x == p.x && same[i].y == p.y && span[i].x == p.x &&
                span[i].y == p.y)
        << i;
  }
}

TEST(CFCBlocks, UnevenStepLateInTheCurveIsRefused) {
  for (int at : {4999, 5000, 10000}) {
    CheckLateUnevenStep<ZmFilterCFCd>(at);
    CheckLateUnevenStep<ZmFilterCFCf>(at);
  }
}

}  // namespace
