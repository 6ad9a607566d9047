// Injury criteria: HIC against a scan of every pair and a half sine by hand, clip level, resultant.
#include <random>

#include "math_test_support.h"

using namespace math_test;

namespace {

const ZmUnitSystem kSeconds(ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitSecond, ZmUnitTempUnset, ZmUnitAngleUnset);

// Every pair, the definition written out: (t2 - t1) * (integral / (t2 - t1))^2.5.
void ScanAllPairs(const WbArrayTempl<ZmPoint2d>& c, double window, double& hic, double& t1, double& t2) {
  hic = 0;
  t1 = t2 = c[0].x;
  for (std::uint64_t i = 0; i < c.GetSize(); ++i) {
    double area = 0;
    for (std::uint64_t j = i + 1; j < c.GetSize() && c[j].x - c[i].x <= window * (1 + 1e-9); ++j) {
      area += (c[j].x - c[j - 1].x) * (c[j].y + c[j - 1].y) / 2;
      const double d = c[j].x - c[i].x;
      if (area > 0 && d * std::pow(area / d, 2.5) > hic * (1 + 1e-13)) {
        hic = d * std::pow(area / d, 2.5);
        t1 = c[i].x;
        t2 = c[j].x;
      }
    }
  }
}

TEST(Injury, HICEqualsTheScanOfEveryPairOnRandomSignals) {
  std::mt19937_64 rng(16);
  std::normal_distribution<double> noise(0, 8);
  for (int trial = 0; trial < 12; ++trial) {
    const int n = 300 + 150 * trial;
    const double step = trial % 2 ? 1e-4 : 5e-5;
    const double width = 0.004 + 0.003 * trial;  // pulse length, s
    const double offset = trial % 3 == 0 ? -20.0 : 0.0;
    const auto c = Regular<double>(
        n, step, [&](double t) { return offset + (t < width ? 60 * std::sin(M_PI * t / width) : 0.0) + noise(rng); });
    for (double window : {0.015, 0.036, 0.002}) {
      double hic = 0, t1 = 0, t2 = 0, h = 0, s1 = 0, s2 = 0;
      ASSERT_EQ(ZmMathd::ComputeHIC(c, window, kSeconds, 1, hic, t1, t2), nullptr);
      ScanAllPairs(c, window, h, s1, s2);
      EXPECT_NEAR(hic, h, 1e-11 * h) << trial << " " << window;
      ExpectRows<double>({{t1, s1}, {t2, s2}});
      // The float twin computes in double on its widened samples and rounds the results.
      WbArrayTempl<ZmPoint2f> floats;
      WbArrayTempl<ZmPoint2d> widened;
      for (const auto& p : c) floats.Add(ZmPoint2f(p)), widened.Add(ZmPoint2d(ZmPoint2f(p)));
      float hf = 0, f1 = 0, f2 = 0;
      ASSERT_EQ(ZmMathf::ComputeHIC(floats, window, kSeconds, 1, hf, f1, f2), nullptr);
      ASSERT_EQ(ZmMathd::ComputeHIC(widened, window, kSeconds, 1, h, s1, s2), nullptr);
      ExpectRows<float>({{hf, static_cast<float>(h)}, {f1, static_cast<float>(s1)}});
    }
  }
}

TEST(Injury, HalfSinePulseAndBrokenLinesByHand) {
  // a = 100 g sin(pi t / D). The window [D/2 - tau, D/2 + tau], x = pi tau / D, gives HIC =
  // (2 D A^2.5 / pi) sin^2.5(x) / x^1.5, largest at tan x = 5/3 x: x = 1.0527942937699977 (10 ms),
  // or tau = 7.5 ms at most (50 ms). Clip: above L for D (1 - 2 asin(L / A) / pi) = 3 ms.
  const struct {
    double duration, window, hic, span, clip;
  } pulses[] = {{0.010, 0.036, 414.6456495, 0.006702, 89.10065242}, {0.050, 0.015, 1366.486488, 0.015, -1}};
  for (const auto& p : pulses) {
    const double step = 1e-5;
    const auto c = Regular<double>(static_cast<int>(std::lround(p.duration / step)) + 1, step,
                                   [&](double t) { return 100 * std::sin(M_PI * t / p.duration); });
    double hic = 0, t1 = 0, t2 = 0;
    ASSERT_EQ(ZmMathd::ComputeHIC(c, p.window, kSeconds, 1, hic, t1, t2), nullptr);
    // The trapezoids' error, 2.5 (pi h / D)^2 / 12 = 2.1e-6 of the HIC for D = 10 ms.
    EXPECT_NEAR(hic, p.hic, 4e-6 * p.hic);
    EXPECT_NEAR(t2 - t1, p.span, 1.5e-5);
    EXPECT_NEAR((t1 + t2) / 2, p.duration / 2, 1e-5);
    if (p.clip < 0) continue;
    double level = 0;
    ASSERT_EQ(ZmMathd::ComputeClipLevel(c, 0.003, kSeconds, 1, level), nullptr);
    EXPECT_NEAR(level, p.clip, 1e-5);
  }
  // Above L for 4 ms (1 - L/10): 3 ms at L = 2.5; a 3 ms plateau. In mm/ms^2: 10 g = 0.0980665.
  const auto triangle = Sampled<double>({0, 0.002, 0.004}, {0, 10, 0});
  const auto inMs = Sampled<double>({0, 2, 4}, {0, 10 * 9.80665e-3, 0}),
             plateau = Sampled<double>({0, 0.003, 0.004}, {5, 5, 0});
  const ZmUnitSystem mmMs(ZmUnitMillimeter, ZmUnitTon, ZmUnitMillisecond, ZmUnitTempUnset, ZmUnitAngleUnset);
  double level = 0, plateauLevel = 0, levelMs = 0;
  ASSERT_EQ(ZmMathd::ComputeClipLevel(triangle, 0.003, kSeconds, 1, level), nullptr);
  ASSERT_EQ(ZmMathd::ComputeClipLevel(plateau, 0.003, kSeconds, 1, plateauLevel), nullptr);
  ASSERT_EQ(ZmMathd::ComputeClipLevel(inMs, 0.003, mmMs, 0, levelMs), nullptr);
  ExpectNearRows<double>(1e-12, {{level, 2.5}, {levelMs, 2.5}});
  EXPECT_EQ(plateauLevel, 5.0);
  double hic = 0, t1 = 0, t2 = 0, h = 0, s1 = 0, s2 = 0;
  ASSERT_EQ(ZmMathd::ComputeHIC(inMs, 0.015, mmMs, 0, hic, t1, t2), nullptr);
  ASSERT_EQ(ZmMathd::ComputeHIC(triangle, 0.015, kSeconds, 1, h, s1, s2), nullptr);
  EXPECT_NEAR(hic, h, 1e-12 * h);
  ExpectRows<double>({{t1, s1 * 1000}, {t2, s2 * 1000}});
}

TEST(Injury, ResultantAndRefusals) {
  const std::vector<double> t = {0, 1e-4, 2 * 1e-4, 3 * 1e-4};
  auto x = Sampled<double>(t, {0, 3, 6, 9}), y = Sampled<double>(t, {0, -4, -8, -12}), r = x, first = y, back = x;
  auto z = Sampled<double>(t, {0, 12, 24, 36}), shifted = z;
  const auto one = Sampled<double>({0}, {1});
  ASSERT_EQ(ZmMathd::ComputeResultant(x, y, z, r), nullptr);
  EXPECT_EQ(r[3].y, 39.0);  // 13 * 3
  shifted[2].x += 1e-9;     // 1e-5 of the step
  first[0].x -= 1e-9;
  back[2].x = 0;
  double v = 0, a = 0, b = 0;
  ExpectRows<std::wstring>({
      {Message(ZmMathd::ComputeResultant(x, y, one, r)), L"The channels have different point counts (4, 4, 1)"},
      {Message(ZmMathd::ComputeResultant(x, y, shifted, r)), L"The abscissa of point 2 differs between the channels"},
      {Message(ZmMathd::ComputeResultant(x, first, z, r)), L"The abscissa of point 0 differs between the channels"},
      {Message(ZmMathd::ComputeHIC(one, 0.015, kSeconds, 1, v, a, b)), L"Not enough points to compute the HIC"},
      {Message(ZmMathd::ComputeHIC(x, 0.0, kSeconds, 1, v, a, b)), L"The HIC window 0 s is not a positive number"},
      {Message(ZmMathd::ComputeHIC(back, 0.015, kSeconds, 1, v, a, b)),
       L"The time of point 2 does not increase. Can't compute the HIC"},
      {Message(ZmMathd::ComputeHIC(x, 0.015, kSeconds, 0, v, a, b)), L"Unknown unit system. Can't compute the HIC"},
      {Message(ZmMathd::ComputeClipLevel(x, 0.003, kSeconds, 1, v)),
       L"The curve lasts 0.0003 s, less than the clip duration 0.003 s"},
  });
  // A curve without a window of positive mean.
  for (auto& p : x) p.y = -1;
  ASSERT_EQ(ZmMathd::ComputeHIC(x, 0.015, kSeconds, 1, v, a, b), nullptr);
  ExpectAll<double>({v, a, b}, 0.0);
}

}  // namespace
