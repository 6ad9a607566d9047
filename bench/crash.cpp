// The CFC filter at any rate on a 10^6-sample crash pulse sampled at 10 kHz (repeated 80 ms
// half-sine deceleration plus noise): samples per second of ZmFilterCFCd (CFC 60, the two
// passes of the recursion with reflected ends) and ZmFilterCFCf, next to the fixed 81-tap
// CFC 60 kernel through the same Compute. bench/cfc_scipy.py times scipy's sosfiltfilt on the
// same kind of signal for the comparison in bench/README.md.
// HIC36 of a 200 ms record at 100 kHz (a 40 ms half-sine head pulse with noise): the bounded
// block search of ZmMathd::ComputeHIC next to the plain scan of every pair within the window.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <random>

#include <zemcalc/ZmFilterCFC.h>
#include <zemcalc/ZmFilterFixed.h>
#include <zemcalc/ZmMath.h>

namespace {

constexpr int kSamples = 1000000;

template <class T>
WbArrayTempl<ZmPoint2T<T>> CrashPulse() {
  std::mt19937_64 rng(7);
  std::normal_distribution<double> noise(0.0, 2.0);
  WbArrayTempl<ZmPoint2T<T>> curve;
  curve.Reserve(kSamples);
  for (int i = 0; i < kSamples; ++i) {
    const double t = i * 1.0e-4;
    const double pulse = std::fmod(t, 0.1) < 0.08 ? -40.0 * std::sin(3.141592653589793 * std::fmod(t, 0.1) / 0.08) : 0;
    curve.Add(ZmPoint2T<T>(t, pulse + noise(rng)));
  }
  return curve;
}

template <class Filter>
void Run(benchmark::State& state, Filter filter) {
  using T = typename Filter::Scalar;
  const auto in = CrashPulse<T>();
  WbArrayTempl<ZmPoint2T<T>> out;
  for (auto _ : state) {
    if (filter.Compute(in, out)) state.SkipWithError("filtering failed");
    benchmark::DoNotOptimize(out.GetData());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
}

void BM_CFCAnyRate60d(benchmark::State& state) { Run(state, ZmFilterCFCd(60)); }
// Float abscissae of a 100 s record are only 7.6e-6 s apart near its end (7.6 % of the step):
// the float twin is given a tolerance that accepts them.
void BM_CFCAnyRate60f(benchmark::State& state) {
  ZmFilterCFCf filter(60);
  filter.SetStepTolerance(0.1);
  Run(state, filter);
}
void BM_CFC60Kernel(benchmark::State& state) { Run(state, ZmFilterCFC60_10kHzd(ZmUnitSecond)); }

WbArrayTempl<ZmPoint2d> HeadPulse() {
  std::mt19937_64 rng(7);
  std::normal_distribution<double> noise(0.0, 3.0);
  WbArrayTempl<ZmPoint2d> curve;
  for (int i = 0; i < 20000; ++i) {
    const double t = i * 1.0e-5;
    const double pulse = t > 0.05 && t < 0.09 ? 80.0 * std::sin(3.141592653589793 * (t - 0.05) / 0.04) : 0.0;
    curve.Add(ZmPoint2d(t, pulse + noise(rng)));
  }
  return curve;
}

const ZmUnitSystem kSeconds(ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitSecond, ZmUnitTempUnset, ZmUnitAngleUnset);

void BM_HIC36(benchmark::State& state) {
  const auto curve = HeadPulse();
  for (auto _ : state) {
    double hic = 0, t1 = 0, t2 = 0;
    if (ZmMathd::ComputeHIC(curve, 0.036, kSeconds, 1, hic, t1, t2)) state.SkipWithError("HIC failed");
    benchmark::DoNotOptimize(hic);
  }
  state.SetItemsProcessed(state.iterations() * curve.GetSize());
}

void BM_HIC36PlainScan(benchmark::State& state) {
  const auto curve = HeadPulse();
  const std::uint64_t n = curve.GetSize();
  for (auto _ : state) {
    double best = 0;
    for (std::uint64_t i = 0; i < n; ++i) {
      double area = 0;
      for (std::uint64_t j = i + 1; j < n && curve[j].x - curve[i].x <= 0.036; ++j) {
        area += (curve[j].x - curve[j - 1].x) * (curve[j].y + curve[j - 1].y) / 2;
        const double span = curve[j].x - curve[i].x, mean = area / span;
        if (mean > 0) best = std::max(best, span * mean * mean * std::sqrt(mean));
      }
    }
    benchmark::DoNotOptimize(best);
  }
  state.SetItemsProcessed(state.iterations() * n);
}

}  // namespace

BENCHMARK(BM_CFCAnyRate60d)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CFCAnyRate60f)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CFC60Kernel)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HIC36)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_HIC36PlainScan)->Unit(benchmark::kMillisecond);
