// The cosine filter (kernel, normalisation, outputs) and the sliding-window average of unevenly
// sampled curves: exact window means for each continuation, windows wider than the curve,
// causal and leading windows, refused curves and settings, non-finite values, float twin.
//
// Cosine expectations replay the kernel in Python/numpy (run() as in test_moving_average.cpp):
//   c[k] = dt(math.cos(math.pi * (n - 1 - 2*k) / (2.0 * n))), normalised by its kernel sum,
//   y[i] = ((37 * i) % 101) / 8.0 for i < 30, point reflection.
// Sliding-window expectations are integrals of broken lines worked out by hand in comments.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <limits>

#include "filters/filter_curves.h"

using filter_test::Curve;
using filter_test::Signal;
using filter_test::Message;
using filter_test::SameCurve;
using filter_test::Values;

namespace {

template <class T>
WbArrayTempl<ZmPoint2T<T>> Points(const std::vector<double>& x, const std::vector<double>& y) {
  WbArrayTempl<ZmPoint2T<T>> curve;
  for (std::size_t i = 0; i < x.size(); ++i) curve.Add(ZmPoint2T<T>(x[i], y[i]));
  return curve;
}

TEST(CosineFilter, KernelAndOutputs) {
  ZmFilterCosd three(3);
  EXPECT_EQ(three.GetNormalise(), 1);
  EXPECT_EQ(three.GetExtrapolationType(), ZmExtrapolationReflection);
  EXPECT_EQ(three.GetMinTimeStep(), -1.0000000331813535e+32);
  EXPECT_EQ(three.GetCoefficients()[0], 0.5000000000000001);  // cos(pi/3)
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(three.Compute(Curve<double>(Signal(30), 0.5), out), nullptr);
  EXPECT_EQ(three.GetCoefficients()[0], 0.25000000000000006);
  EXPECT_EQ(three.GetCoefficients()[1], 0.5);
  EXPECT_EQ(out[0].y, 1.1562500000000002);
  EXPECT_EQ(out[15].y, 6.250000000000001);
  EXPECT_EQ(out[29].y, 6.71875);

  ZmFilterCosd four(4);
  ASSERT_EQ(four.Compute(Curve<double>(Signal(30)), out), nullptr);
  EXPECT_EQ(four.GetCoefficients()[0], 0.14644660940672627);
  EXPECT_EQ(four.GetCoefficients()[1], 0.35355339059327373);
  EXPECT_EQ(out[0].y, 0.0);
  EXPECT_EQ(out[15].y, 5.786388443759919);
  EXPECT_EQ(out[29].y, 6.73407287525381);

  ZmFilterCosf fiveF(5);
  WbArrayTempl<ZmPoint2f> outF;
  ASSERT_EQ(fiveF.Compute(Curve<float>(Signal(30)), outF), nullptr);
  EXPECT_EQ(fiveF.GetCoefficients()[0], 0.095491506f);
  EXPECT_EQ(fiveF.GetCoefficients()[2], 0.309017f);
  EXPECT_EQ(outF[0].y, 1.5978982f);
  EXPECT_EQ(outF[15].y, 6.25f);
  EXPECT_EQ(outF[29].y, 7.482682f);

  // One tap copies; no tap is refused.
  ZmFilterCosd one(1);
  const auto in = Curve<double>(Signal(5));
  ASSERT_EQ(one.Compute(in, out), nullptr);
  EXPECT_TRUE(SameCurve(out, in));
  ZmFilterCosd none(0);
  EXPECT_EQ(Message(none.Compute(in, out)), L"Invalid filter kernel size 0");
}

// x = 0, 1, 3, 4 and y = 1, 3, 3, 1, window 4 centred. The broken line integrates to 2 over
// [0, 1], 6 over [1, 3], 2 over [3, 4].
//   x = 0: [-2, 2] holds 2 + 3 of the line plus the left continuation over [-2, 0]:
//     zeros 0; constant 1 * 2; linear 1 + 2t from -3 to 1, i.e. -2; reflection 2*1*2 - 5 = -1.
//   x = 1: [-1, 3] holds 8 plus [-1, 0]: zeros 0; constant 1; linear (-1 + 1)/2 = 0;
//     reflection 2*1*1 - 2 = 0.
//   x = 3 and x = 4 mirror x = 1 and x = 0.
TEST(SlidingWindow, ExactMeansForEachContinuation) {
  const auto in = Points<double>({0, 1, 3, 4}, {1, 3, 3, 1});
  struct Case {
    Extrapolation mode;
    std::vector<double> expected;
  };
  const Case cases[] = {
      {ZmExtrapolationZeros, {5.0 / 4, 8.0 / 4, 8.0 / 4, 5.0 / 4}},
      {ZmExtrapolationConstant, {7.0 / 4, 9.0 / 4, 9.0 / 4, 7.0 / 4}},
      {ZmExtrapolationLinear, {3.0 / 4, 8.0 / 4, 8.0 / 4, 3.0 / 4}},
      {ZmExtrapolationReflection, {4.0 / 4, 8.0 / 4, 8.0 / 4, 4.0 / 4}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.mode));
    ZmFilterSWAd filter(4.0, 0.5);
    filter.SetExtrapolationType(c.mode);
    WbArrayTempl<ZmPoint2d> out;
    ASSERT_EQ(filter.Compute(in, out), nullptr);
    EXPECT_EQ(Values(out), c.expected);
    ZmFilterSWAf filterF(4.0, 0.5);
    filterF.SetExtrapolationType(c.mode);
    WbArrayTempl<ZmPoint2f> outF;
    ASSERT_EQ(filterF.Compute(Points<float>({0, 1, 3, 4}, {1, 3, 3, 1}), outF), nullptr);
    for (std::uint64_t j = 0; j < 4; ++j) EXPECT_EQ(outF[j].y, static_cast<float>(c.expected[j]));
  }
}

TEST(SlidingWindow, LinesAndWindowPositions) {
  // y = 2x + 1 on uneven abscissae: the mean over [x - b*w, x + (1-b)*w] of a line is its
  // value at the window's middle, x + (0.5 - b)*w, with linear or reflected continuation.
  const std::vector<double> x = {0, 0.3, 0.5, 1.2, 2.0, 2.1, 3};
  std::vector<double> y;
  for (double v : x) y.push_back(2 * v + 1);
  const auto in = Points<double>(x, y);
  for (Extrapolation mode : {ZmExtrapolationLinear, ZmExtrapolationReflection}) {
    for (double before : {0.0, 0.5, 1.0}) {
      ZmFilterSWAd filter(0.4, before);
      filter.SetExtrapolationType(mode);
      WbArrayTempl<ZmPoint2d> out;
      ASSERT_EQ(filter.Compute(in, out), nullptr);
      for (std::size_t j = 0; j < x.size(); ++j) {
        EXPECT_NEAR(out[j].y, 2 * (x[j] + (0.5 - before) * 0.4) + 1, 1e-12) << j << " " << before;
        EXPECT_EQ(out[j].x, x[j]);
      }
    }
  }
  // A window wider than the curve: y = x on [0, 1], window [-3, 3] at x = 0 with reflection.
  // The line gives 0.5; the left part 2*0*3 - (0.5 + 1*2) = -2.5 (the mirrored range [0, 3]
  // leaves the curve at 1, where it is held at 1); the right part [1, 3] 2*1*2 - (0 + 0.5) =
  // 3.5 (its mirror [-1, 1] is held at 0 before 0). Mean (0.5 - 2.5 + 3.5) / 6 = 0.25.
  ZmFilterSWAd wide(6.0, 0.5);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(wide.Compute(Points<double>({0, 1}, {0, 1}), out), nullptr);
  EXPECT_EQ(out[0].y, 0.25);
}

TEST(SlidingWindow, SmallCurvesAndRepeatedAbscissae) {
  WbArrayTempl<ZmPoint2d> out;
  ZmFilterSWAd filter(1.0, 0.5);
  ASSERT_EQ(filter.Compute(WbArrayTempl<ZmPoint2d>(), out), nullptr);
  EXPECT_EQ(out.GetSize(), 0u);
  // One point: the continuation alone decides.
  const double onePoint[] = {0.0, 3.0, 3.0, 3.0};  // zeros, constant, linear, reflection
  for (int mode = 0; mode < 4; ++mode) {
    filter.SetExtrapolationType(static_cast<Extrapolation>(mode));
    ASSERT_EQ(filter.Compute(Points<double>({2}, {3}), out), nullptr);
    EXPECT_EQ(out[0].y, onePoint[mode]) << mode;
  }
  // A jump at x = 1 given as two points: the window [0.5, 1.5] sees 0 then 1 for half each,
  // [-0.5, 0.5] only 0, [1.5, 2.5] only 1 (constant continuation).
  filter.SetExtrapolationType(ZmExtrapolationConstant);
  ASSERT_EQ(filter.Compute(Points<double>({0, 1, 1, 2}, {0, 0, 1, 1}), out), nullptr);
  EXPECT_EQ(Values(out), (std::vector<double>{0.0, 0.5, 0.5, 1.0}));
}

TEST(SlidingWindow, RefusedSettingsAndCurves) {
  const auto in = Points<double>({0, 1, 2}, {4, 5, 6});
  WbArrayTempl<ZmPoint2d> out;
  const auto refuse = [&](ZmFilterSWAd& filter, const WbArrayTempl<ZmPoint2d>& curve, const std::wstring& message) {
    EXPECT_EQ(Message(filter.Compute(curve, out)), message);
    EXPECT_TRUE(SameCurve(out, curve));
  };
  const std::wstring width = L"Can't process filtering. The window width ";
  ZmFilterSWAd zero(0.0, 0.5), negative(-1.0, 0.5), nan(std::nan(""), 0.5),
      infinite(std::numeric_limits<double>::infinity(), 0.5);
  refuse(zero, in, width + L"0 is not a positive number");
  refuse(negative, in, width + L"-1 is not a positive number");
  refuse(nan, in, width + L"nan is not a positive number");
  refuse(infinite, in, width + L"inf is not a positive number");
  ZmFilterSWAd late(1.0, 1.5);
  refuse(late, in, L"Can't process filtering. The window position 1.5 is not between 0 and 1");
  ZmFilterSWAd filter(1.0, 0.5);
  refuse(filter, Points<double>({0, 2, 1}, {4, 5, 6}), L"Can't process filtering. The abscissa decreases at interval 2");
  refuse(filter, Points<double>({0, std::nan(""), 1}, {4, 5, 6}),
         L"Can't process filtering. The abscissa of point 1 is not a finite number");
  filter.SetExtrapolationType(static_cast<Extrapolation>(5));
  refuse(filter, in, L"Unknown extrapolation type 5");
}

TEST(SlidingWindow, NonFiniteValuesStayInTheirWindowsAndInPlaceFiltering) {
  std::vector<double> y(10, 1.0);
  y[5] = std::nan("");
  const auto in = Curve<double>(y, 1.0);
  ZmFilterSWAd filter(1.0, 0.5);
  filter.SetExtrapolationType(ZmExtrapolationConstant);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(filter.Compute(in, out), nullptr);
  // [j - 0.5, j + 0.5] reaches the segments on either side of x = 5 for j = 4, 5, 6 only.
  for (std::uint64_t j = 0; j < 10; ++j) {
    if (j >= 4 && j <= 6) {
      EXPECT_TRUE(std::isnan(out[j].y)) << j;
    } else {
      EXPECT_EQ(out[j].y, 1.0) << j;
    }
  }
  // Filtering a curve into itself reads the original values for every window.
  auto uneven = Points<double>({0, 0.25, 1, 1.5, 3}, {2, -1, 4, 0.5, 3});
  ZmFilterSWAd smooth(1.3, 0.3);
  WbArrayTempl<ZmPoint2d> separate;
  ASSERT_EQ(smooth.Compute(uneven, separate), nullptr);
  ASSERT_EQ(smooth.Compute(uneven, uneven), nullptr);
  EXPECT_TRUE(SameCurve(uneven, separate));
  // The float twin integrates in double and rounds the mean.
  ZmFilterSWAf smoothF(1.3, 0.3);
  WbArrayTempl<ZmPoint2f> outF;
  ASSERT_EQ(smoothF.Compute(Points<float>({0, 0.25, 1, 1.5, 3}, {2, -1, 4, 0.5, 3}), outF), nullptr);
  for (std::uint64_t j = 0; j < 5; ++j) EXPECT_EQ(outF[j].y, static_cast<float>(separate[j].y)) << j;
}

}  // namespace
