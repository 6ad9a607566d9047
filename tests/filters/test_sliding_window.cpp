// The sliding-window average of unevenly sampled curves: exact window means for each
// continuation, windows wider than the curve, causal and leading windows, refused curves and
// settings, non-finite values, float twin. Expected means are integrals of broken lines worked
// out by hand in the comments.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>

#include "filters/filter_curves.h"

namespace {

using namespace filter_test;

// The sliding average of the points (x, y), width w, the fraction b of it before x.
template <class T>
std::vector<T> Slide(const std::vector<double>& x, const std::vector<double>& y, double w, double b, int mode) {
  Twin<T, ZmFilterSWAd, ZmFilterSWAf> filter(w, b);
  filter.SetExtrapolationType(static_cast<Extrapolation>(mode));
  return Values(Filtered(filter, Points<T>(x, y)));
}

TEST(SlidingWindow, ExactMeans) {
  // x = 0, 1, 3, 4 and y = 1, 3, 3, 1, window 4 centred. The broken line integrates to 2 over
  // [0, 1], 6 over [1, 3], 2 over [3, 4].
  //   x = 0: [-2, 2] holds 2 + 3 of the line plus the left continuation over [-2, 0]:
  //     zeros 0; constant 1 * 2; linear 1 + 2t from -3 to 1, i.e. -2; reflection 2*1*2 - 5 = -1.
  //   x = 1: [-1, 3] holds 8 plus [-1, 0]: zeros 0; constant 1; linear (-1 + 1)/2 = 0;
  //     reflection 2*1*1 - 2 = 0.
  //   x = 3 and x = 4 mirror x = 1 and x = 0.
  // A window wider than the curve: y = x on [0, 1], window [-3, 3] at x = 0 with reflection.
  // The line gives 0.5; the left part 2*0*3 - (0.5 + 1*2) = -2.5 (the mirrored range [0, 3]
  // leaves the curve at 1, where it is held at 1); the right part [1, 3] 2*1*2 - (0 + 0.5) =
  // 3.5 (its mirror [-1, 1] is held at 0 before 0). Mean (0.5 - 2.5 + 3.5) / 6 = 0.25. At x = 1,
  // [-2, 4]: -(0.5 + 1) + 0.5 + (2*1*3 - (0 + 0.5)) = 4.5, mean 0.75.
  // One point: the continuation alone decides. A jump at x = 1 given as two points: the window
  // [0.5, 1.5] sees 0 then 1 for half each, [-0.5, 0.5] only 0, [1.5, 2.5] only 1.
  const std::vector<double> x = {0, 1, 3, 4}, y = {1, 3, 3, 1};
  const struct {
    std::vector<double> x, y;
    double width;
    int mode;
    std::vector<double> expected;
    bool twins;  // the float twin integrates in double and rounds the mean
  } rows[] = {
      {x, y, 4, 0, {5.0 / 4, 8.0 / 4, 8.0 / 4, 5.0 / 4}, true},
      {x, y, 4, 1, {7.0 / 4, 9.0 / 4, 9.0 / 4, 7.0 / 4}, true},
      {x, y, 4, 2, {3.0 / 4, 8.0 / 4, 8.0 / 4, 3.0 / 4}, true},
      {x, y, 4, 3, {4.0 / 4, 8.0 / 4, 8.0 / 4, 4.0 / 4}, true},
      {{0, 1}, {0, 1}, 6, 3, {0.25, 0.75}, false},
      {{2}, {3}, 1, 0, {0}, false},
      {{2}, {3}, 1, 1, {3}, false},
      {{2}, {3}, 1, 2, {3}, false},
      {{2}, {3}, 1, 3, {3}, false},
      {{0, 1, 1, 2}, {0, 0, 1, 1}, 1, 1, {0, 0.5, 0.5, 1}, false},
      {{0, 1, 1}, {0, 0, 1}, 1, 2, {0, 0.5, 0.5}, false},  // a last segment of no length has no slope
      {{}, {}, 1, 1, {}, false},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(::testing::Message() << r.x.size() << " points, extrapolation " << r.mode);
    EXPECT_EQ(Slide<double>(r.x, r.y, r.width, 0.5, r.mode), r.expected);
    if (r.twins) {
      EXPECT_EQ(Slide<float>(r.x, r.y, r.width, 0.5, r.mode), std::vector<float>(r.expected.begin(), r.expected.end()));
    }
  }
}

TEST(SlidingWindow, LinesAndWindowPositions) {
  // y = 2x + 1 on uneven abscissae: the mean over [x - b*w, x + (1-b)*w] of a line is its
  // value at the window's middle, x + (0.5 - b)*w, with linear or reflected continuation.
  const std::vector<double> x = {0, 0.3, 0.5, 1.2, 2.0, 2.1, 3};
  std::vector<double> y;
  for (double v : x) y.push_back(2 * v + 1);
  for (const int mode : {ZmExtrapolationLinear, ZmExtrapolationReflection}) {
    for (const double before : {0.0, 0.5, 1.0}) {
      const std::vector<double> got = Slide<double>(x, y, 0.4, before, mode);
      for (std::size_t j = 0; j < x.size(); ++j) {
        EXPECT_NEAR(got[j], 2 * (x[j] + (0.5 - before) * 0.4) + 1, 1e-12) << j << " " << before;
      }
    }
  }
}

TEST(SlidingWindow, RefusedSettingsAndCurves) {
  const auto in = Points<double>({0, 1, 2}, {4, 5, 6});
  const std::wstring cant = L"Can't process filtering. The ";
  ZmFilterSWAd unknown(1.0, 0.5);
  unknown.SetExtrapolationType(static_cast<Extrapolation>(5));
  struct {
    ZmFilterSWAd filter;
    WbArrayTempl<ZmPoint2d> in;
    std::wstring message;
  } rows[] = {
      {ZmFilterSWAd(0.0, 0.5), in, cant + L"window width 0 is not a positive number"},
      {ZmFilterSWAd(-1.0, 0.5), in, cant + L"window width -1 is not a positive number"},
      {ZmFilterSWAd(NAN, 0.5), in, cant + L"window width nan is not a positive number"},
      {ZmFilterSWAd(INFINITY, 0.5), in, cant + L"window width inf is not a positive number"},
      {ZmFilterSWAd(1.0, 1.5), in, cant + L"window position 1.5 is not between 0 and 1"},
      {ZmFilterSWAd(1.0, 0.5), Points<double>({0, 2, 1}, {4, 5, 6}), cant + L"abscissa decreases at interval 2"},
      {ZmFilterSWAd(1.0, 0.5), Points<double>({0, NAN, 1}, {4, 5, 6}),
       cant + L"abscissa of point 1 is not a finite number"},
      {unknown, in, L"Unknown extrapolation type 5"},
  };
  for (auto& r : rows) EXPECT_EQ(Refusal(r.filter, r.in), r.message);
}

TEST(SlidingWindow, NonFiniteValuesStayInTheirWindowsAndInPlaceFiltering) {
  // [j - 0.5, j + 0.5] reaches the segments on either side of x = 5 for j = 4, 5, 6 only.
  std::vector<double> y(10, 1.0), x;
  y[5] = NAN;
  for (int j = 0; j < 10; ++j) x.push_back(j);
  const std::vector<double> got = Slide<double>(x, y, 1.0, 0.5, ZmExtrapolationConstant);
  for (std::size_t j = 0; j < 10; ++j) EXPECT_TRUE(SameValue(got[j], j >= 4 && j <= 6 ? NAN : 1.0)) << j;
  // Filtering a curve into itself reads the original values for every window; the float twin
  // integrates in double and rounds the mean.
  const std::vector<double> ux = {0, 0.25, 1, 1.5, 3}, uy = {2, -1, 4, 0.5, 3};
  auto uneven = Points<double>(ux, uy);
  ASSERT_EQ(ZmFilterSWAd(1.3, 0.3).Compute(uneven, uneven), nullptr);
  const std::vector<double> separate = Slide<double>(ux, uy, 1.3, 0.3, ZmExtrapolationReflection);
  EXPECT_EQ(Values(uneven), separate);
  EXPECT_EQ(Slide<float>(ux, uy, 1.3, 0.3, ZmExtrapolationReflection),
            std::vector<float>(separate.begin(), separate.end()));
}

}  // namespace
