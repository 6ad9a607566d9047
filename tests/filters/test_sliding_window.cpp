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
  // x = 0, 1, 3, 4, y = 1, 3, 3, 1, window 4 centred: the line integrates to 2, 6, 2 over its
  // segments. At x = 0, [-2, 2] holds 2 + 3 plus [-2, 0] continued: zeros 0, constant 1 * 2,
  // linear 1 + 2t over [-3, 1] -2, reflection 2*1*2 - 5 = -1. At x = 1, [-1, 3] holds 8 plus
  // [-1, 0]: zeros 0, constant 1, linear (-1 + 1)/2 = 0, reflection 2*1*1 - 2 = 0; x = 3, 4 mirror.
  // Wider than the curve, y = x on [0, 1] with reflection: at x = 0, [-3, 3] holds the line 0.5,
  // the left part 2*0*3 - (0.5 + 1*2) = -2.5 (its mirror [0, 3] held at 1 beyond 1), the right
  // part [1, 3] 2*1*2 - (0 + 0.5) = 3.5 (its mirror [-1, 1] held at 0 before 0): 1.5 / 6. At
  // x = 1, [-2, 4]: -(0.5 + 1) + 0.5 + (2*1*3 - (0 + 0.5)) = 4.5, mean 0.75. One point: the
  // continuation alone decides. A jump at x = 1 given as two points: [0.5, 1.5] sees 0 then 1
  // for half each, [-0.5, 0.5] only 0, [1.5, 2.5] only 1. The float twin integrates in double
  // and rounds the mean.
  const std::vector<double> x = {0, 1, 3, 4}, y = {1, 3, 3, 1};
  const struct {
    std::vector<double> x, y;
    double width;
    int mode;
    std::vector<double> expected;
  } rows[] = {
      {x, y, 4, 0, {5.0 / 4, 8.0 / 4, 8.0 / 4, 5.0 / 4}},
      {x, y, 4, 1, {7.0 / 4, 9.0 / 4, 9.0 / 4, 7.0 / 4}},
      {x, y, 4, 2, {3.0 / 4, 8.0 / 4, 8.0 / 4, 3.0 / 4}},
      {x, y, 4, 3, {4.0 / 4, 8.0 / 4, 8.0 / 4, 4.0 / 4}},
      {{0, 1}, {0, 1}, 6, 3, {0.25, 0.75}},
      {{2}, {3}, 1, 0, {0}},
      {{2}, {3}, 1, 1, {3}},
      {{2}, {3}, 1, 2, {3}},
      {{2}, {3}, 1, 3, {3}},
      {{0, 1, 1, 2}, {0, 0, 1, 1}, 1, 1, {0, 0.5, 0.5, 1}},
      {{0, 1, 1}, {0, 0, 1}, 1, 2, {0, 0.5, 0.5}},  // a last segment of no length has no slope
      {{}, {}, 1, 1, {}},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(::testing::Message() << r.x.size() << " points, extrapolation " << r.mode);
    EXPECT_EQ(Slide<double>(r.x, r.y, r.width, 0.5, r.mode), r.expected);
    EXPECT_EQ(Slide<float>(r.x, r.y, r.width, 0.5, r.mode), std::vector<float>(r.expected.begin(), r.expected.end()));
  }
}

TEST(SlidingWindow, LinesAndWindowPositions) {
  // y = 2x + 1 on uneven abscissae: the mean over [x - b*w, x + (1-b)*w] of a line is its
  // value at the window's middle, x + (0.5 - b)*w, with linear or reflected continuation.
  const std::vector<double> x = {0, 0.3, 0.5, 1.2, 2.0, 2.1, 3}, y = {1, 1.6, 2, 3.4, 5, 5.2, 7};
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
