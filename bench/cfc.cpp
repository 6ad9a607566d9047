// The CFC filter at any rate on a 10^6-sample crash pulse sampled at 10 kHz (repeated 80 ms
// half-sine deceleration plus noise): samples per second of ZmFilterCFCd (CFC 60, the two
// passes of the recursion with reflected ends) and ZmFilterCFCf, next to the fixed 81-tap
// CFC 60 kernel through the same Compute. bench/cfc_scipy.py times scipy's sosfiltfilt on the
// same kind of signal for the comparison in bench/README.md.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

#include <zemcalc/ZmFilterCFC.h>
#include <zemcalc/ZmFilterFixed.h>

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

}  // namespace

BENCHMARK(BM_CFCAnyRate60d)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CFCAnyRate60f)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CFC60Kernel)->Unit(benchmark::kMillisecond);
