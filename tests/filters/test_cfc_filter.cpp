// The CFC filter at any rate: coefficients and filtered signals against scipy (the committed
// table of tests/reference/cfc_filter.py), the J211/1 corridor and the -3 dB points of the
// implementation's coefficients, the twins, the refusals with their messages and time units
// (creation by name: test_fixed_kernels.cpp).
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "filters/filter_curves.h"

namespace {

using namespace filter_test;

struct Row {
  std::string kind, ends;
  double k = 0, cfc = 0, fs = 0;
  std::vector<double> values;
};

std::vector<Row> ReadTable() {
  std::ifstream file(ZEMCALC_CFC_REFERENCE);
  std::vector<Row> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    Row r;
    double v = 0, skipped = 0;  // the pad and the count
    in >> r.kind;
    if (r.kind == "coef") in >> r.k >> r.cfc >> r.fs;
    if (r.kind == "input") in >> skipped >> r.fs;
    if (r.kind == "filtered") in >> r.k >> r.cfc >> r.fs >> r.ends >> skipped >> skipped;
    while (in >> v) r.values.push_back(v);
    rows.push_back(r);
  }
  return rows;
}

ZmCFCDesign DesignOf(double k) { return k == 2.0775 ? ZmCFCDesignJ211 : ZmCFCDesignISO6487; }

// The combined (forward and backward) amplitude in dB at f: |H(e^{iwT})|^2.
double ResponseDb(const ZmCFCCoefficients& c, double f, double fs) {
  const std::complex<double> z1 = std::polar(1.0, -2.0 * M_PI * f / fs);
  const std::complex<double> h = (c.a0 + c.a1 * z1 + c.a2 * z1 * z1) / (1.0 - c.b1 * z1 - c.b2 * z1 * z1);
  return 20.0 * std::log10(std::norm(h));
}

// The coefficients against scipy's butter, the filtered signals against sosfiltfilt; the float
// twin (filtering in place) is the double filter run on its widened samples, each result rounded.
TEST(CFCFilter, CoefficientsAndFilteredSignalsAgreeWithScipy) {
  const Row* input = nullptr;
  int coefficients = 0, filtered = 0;
  const auto rows = ReadTable();
  for (const Row& r : rows) {
    SCOPED_TRACE(::testing::Message() << r.kind << " CFC " << r.cfc << " at " << r.fs << " Hz " << r.ends);
    if (r.kind == "input") input = &r;
    if (r.kind == "coef") {
      ZmCFCCoefficients c{};
      ASSERT_EQ(
          ZmFilterCFCd(r.cfc, ZmUnitSecond, ZmFilterEndsReflection, DesignOf(r.k)).ComputeCoefficients(1.0 / r.fs, c),
          nullptr);
      const double ours[] = {c.a0, c.a1, c.a2, -c.b1, -c.b2};
      for (int i = 0; i < 5; ++i) EXPECT_NEAR(ours[i], r.values[i], 1e-12) << i;
      ++coefficients;
    }
    if (r.kind != "filtered") continue;
    ASSERT_TRUE(input && input->fs == r.fs);
    const std::vector<std::string> endNames = {"odd", "even", "constant", "none"};  // in the order of ZmFilterEnds
    const auto ends = static_cast<ZmFilterEnds>(std::find(endNames.begin(), endNames.end(), r.ends) - endNames.begin());
    ZmFilterCFCd filter(r.cfc, ZmUnitSecond, ends, DesignOf(r.k));
    const auto out = Filtered(filter, Curve<double>(input->values, 1.0 / r.fs));
    auto curveF = Curve<float>(input->values, 1.0 / r.fs);
    WbArrayTempl<ZmPoint2d> widened;
    for (const auto& p : curveF) widened.Add(ZmPoint2d(p.x, p.y));
    const auto outOfFloats = Filtered(filter, widened);
    ASSERT_EQ(ZmFilterCFCf(r.cfc, ZmUnitSecond, ends, DesignOf(r.k)).Compute(curveF, curveF), nullptr);
    for (std::uint64_t i = 0; i < out.GetSize(); ++i) {
      ASSERT_NEAR(out[i].y, r.values[i], 1e-9) << i;
      ASSERT_EQ(curveF[i].y, static_cast<float>(outOfFloats[i].y)) << i;
    }
    ++filtered;
  }
  EXPECT_EQ(coefficients, 40);
  EXPECT_EQ(filtered, 9);
}

// The J211/1 corridor as stated in ZmFilterCFC.h, in dB.
void Corridor(double cfc, double f, double& lower, double& upper) {
  const double fh = cfc, fn = cfc * 5.0 / 3.0;
  upper = f <= fn ? 0.5 : std::max(0.5 - 9.0 * std::log2(f / fn), -30.0);
  lower = f <= fh ? -0.5 : f <= fn ? -1.0 - 3.0 * std::log(f / fh) / std::log(fn / fh) : -INFINITY;
}

TEST(CFCFilter, ResponseInsideTheCorridorAndMinus3dBPoints) {
  // -3 dB of the pair of passes at 10 kHz: tan(pi f T) = (sqrt2 - 1)^(1/4) tan(pi k CFC T),
  // e.g. CFC 60: f = atan(0.8022428 * tan(pi * 0.0124650)) / (pi * 1e-4) = 100.0178 Hz.
  const struct {
    double cfc, minus3dB;
  } classes[] = {{60, 100.0178}, {180, 300.4909}, {600, 1018.2407}, {1000, 1751.0402}};
  for (const auto& cls : classes) {
    for (double fs : {10000.0, 20000.0, 50000.0, 100000.0}) {
      ZmFilterCFCd filter(cls.cfc);
      ZmCFCCoefficients c{};
      ASSERT_EQ(filter.ComputeCoefficients(1.0 / fs, c), nullptr);
      for (int i = 0; i <= 4000; ++i) {
        const double f = 0.1 * std::pow(fs / 2 / 0.1, i / 4000.0);
        double lower = 0, upper = 0;
        Corridor(cls.cfc, f, lower, upper);
        const double db = ResponseDb(c, f, fs);
        ASSERT_TRUE(db >= lower && db <= upper) << cls.cfc << " at " << fs << ": " << db << " dB at " << f;
      }
      if (fs != 10000.0) continue;
      double lo = 1, hi = fs / 2;
      for (int i = 0; i < 60; ++i) (ResponseDb(c, (lo + hi) / 2, fs) > -3.0103 ? lo : hi) = (lo + hi) / 2;
      EXPECT_NEAR(lo, cls.minus3dB, 1e-3);
    }
  }
}

TEST(CFCFilter, RefusalsKeepTheInputAndNameTheCause) {
  const auto even = Curve<double>(std::vector<double>(50, 1.0), 1e-4);  // 10 kHz
  auto uneven = even;
  uneven[7].x += 2e-6;  // intervals 7 and 8 are 2 % off the mean step
  auto flat = even;
  for (auto& p : flat) p.x = 0.0;
  const std::wstring cant = L"Can't process filtering. The ", ok = L"<success>";
  const struct {
    double cfc;
    _ZmUnitTime unit;
    int ends;
    const WbArrayTempl<ZmPoint2d>& in;
    unsigned char allowLow;
    std::wstring message;
  } cases[] = {
      {0.0, ZmUnitSecond, 0, even, 0, cant + L"channel frequency class 0 is not a positive number"},
      {NAN, ZmUnitSecond, 0, even, 0, cant + L"channel frequency class nan is not a positive number"},
      {60, ZmUnitSecond, 7, even, 0, L"Unknown end treatment 7"},
      {60, static_cast<_ZmUnitTime>(9), 0, even, 0, L"Unknown time unit 9"},
      {60, ZmUnitSecond, 0, flat, 0, cant + L"abscissae do not increase (mean step 0)"},
      {60, ZmUnitSecond, 0, uneven, 0,
       cant + L"time step 0.000102 of interval 7 differs from the mean step 0.0001 by more than 1 %"},
      // 10 kHz is below 10 x 1000 Hz: refused unless asked; k CFC = 2077.5 Hz stays below 5 kHz.
      {1001, ZmUnitSecond, 0, even, 0,
       cant + L"sampling rate 10000 Hz is lower than 10 times the channel frequency class 1001"},
      {1001, ZmUnitSecond, 0, even, 1, ok},
      {2406, ZmUnitSecond, 0, even, 1, ok},  // 2.0775 * 2406 = 4998.5 Hz, 2407: 5000.5 Hz
      {2407, ZmUnitSecond, 0, even, 1,
       cant + L"design frequency 5000.54 Hz is not below half the sampling rate 10000 Hz"},
      {60, ZmUnitMillisecond, 0, even, 0, ok},  // steps read in milliseconds are 1e-7 s: 10 MHz
      {60, ZmUnitSecond, 0, Curve<double>({1.0}), 0, L"Not enough points to filter"},
  };
  for (const auto& t : cases) {
    ZmFilterCFCd filter(t.cfc, t.unit, static_cast<ZmFilterEnds>(t.ends));
    filter.SetAllowLowRate(t.allowLow);
    EXPECT_EQ(filter_test::Refusal(filter, t.in), t.message) << t.cfc;
  }
  // Steps exactly at the tolerance pass: 1.5 and 0.5 ms against a mean of 1 ms at 50 % (exact).
  ZmFilterCFCd edge(60, ZmUnitMillisecond);
  edge.SetStepTolerance(0.5);
  EXPECT_EQ(filter_test::Refusal(edge, WbArrayTempl<ZmPoint2d>{{0, 1}, {1.5, 1}, {2, 1}}), ok);
}

TEST(CFCFilter, StepsInMillisecondsFilterAsInSeconds) {
  const auto y = Signal(300);
  const auto inSeconds = Filtered(ZmFilterCFCd(180), Curve<double>(y, 1e-4));
  const auto inMs = Filtered(ZmFilterCFCd(180, ZmUnitMillisecond), Curve<double>(y, 0.1));
  for (std::uint64_t i = 0; i < inSeconds.GetSize(); ++i) ASSERT_NEAR(inSeconds[i].y, inMs[i].y, 1e-9);
}

}  // namespace
