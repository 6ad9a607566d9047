// Filters on a 10^6-sample signal (a 10 kHz crash pulse: half-sine deceleration plus noise):
// samples per second of CFC 60, CFC 180, CFC 600 and a 5-point moving average through
// Compute (copy of the curve, padding, kernel, write-back), next to the plain symmetric FIR
// loop of the same 81-tap arithmetic over an already padded buffer, compiled here for the
// widest vector unit of this processor (this file is built with -march=native). Two plain
// forms: the loop as written (one output at a time, the pair sum inside), and the same sums
// with the loops exchanged over blocks of outputs, which compilers vectorise; both keep each
// output's order of operations, so they compute exactly the library's results.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include <zemcalc/ZmFilter.h>
#include <zemcalc/ZmFilterFixed.h>

namespace {

constexpr int kSamples = 1000000;

WbArrayTempl<ZmPoint2d> CrashPulse() {
  std::mt19937_64 rng(7);
  std::normal_distribution<double> noise(0.0, 2.0);
  WbArrayTempl<ZmPoint2d> curve;
  curve.Reserve(kSamples);
  for (int i = 0; i < kSamples; ++i) {
    const double t = i * 1.0e-4;
    const double pulse = std::fmod(t, 0.1) < 0.08 ? -40.0 * std::sin(3.141592653589793 * std::fmod(t, 0.1) / 0.08) : 0;
    curve.Add(ZmPoint2d(t, pulse + noise(rng)));
  }
  return curve;
}

template <class Filter>
void Library(benchmark::State& state, Filter filter) {
  const WbArrayTempl<ZmPoint2d> in = CrashPulse();
  WbArrayTempl<ZmPoint2d> out;
  for (auto _ : state) {
    if (filter.Compute(in, out)) state.SkipWithError("filtering failed");
    benchmark::DoNotOptimize(out.GetData());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
}

void BM_CFC60(benchmark::State& state) { Library(state, ZmFilterCFC60_10kHzd(ZmUnitSecond)); }
void BM_CFC180(benchmark::State& state) { Library(state, ZmFilterCFC180_10kHzd(ZmUnitSecond)); }
void BM_CFC600(benchmark::State& state) { Library(state, ZmFilterCFC600_10kHzd(ZmUnitSecond)); }
void BM_MVA5(benchmark::State& state) { Library(state, ZmFilterMVAd(5, ZmExtrapolationReflection)); }

struct Padded {
  std::vector<double> b;  // kSamples + 80 values
  std::vector<double> c;  // 41 coefficients
};

Padded PaddedPulse() {
  const WbArrayTempl<ZmPoint2d> in = CrashPulse();
  Padded p;
  p.b.assign(kSamples + 80, 0.0);
  for (int j = 0; j < kSamples; ++j) p.b[40 + j] = in[j].y;
  for (int k = 0; k < 41; ++k) p.c.push_back(1.0 / (41 + k));
  return p;
}

// out[j] = sum over k of (b[j+k] + b[j+80-k]) * c[k], then the centre.
void BM_PlainLoop81(benchmark::State& state) {
  Padded p = PaddedPulse();
  std::vector<double> out(kSamples);
  for (auto _ : state) {
    const double* b = p.b.data();
    const double* c = p.c.data();
    for (int j = 0; j < kSamples; ++j) {
      double sum = 0;
      for (int k = 0; k < 40; ++k) sum += (b[j + k] + b[j + 80 - k]) * c[k];
      out[j] = sum + b[j + 40] * c[40];
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
}

// The same sums with k outside and j inside, over blocks of 256 outputs kept in cache.
void BM_PlainLoop81Exchanged(benchmark::State& state) {
  Padded p = PaddedPulse();
  std::vector<double> out(kSamples);
  constexpr int kBlock = 256;
  for (auto _ : state) {
    const double* b = p.b.data();
    const double* c = p.c.data();
    for (int j0 = 0; j0 < kSamples; j0 += kBlock) {
      double* o = out.data() + j0;
      const int m = std::min(kBlock, kSamples - j0);
      for (int j = 0; j < m; ++j) o[j] = 0;
      for (int k = 0; k < 40; ++k) {
        for (int j = 0; j < m; ++j) o[j] += (b[j0 + j + k] + b[j0 + j + 80 - k]) * c[k];
      }
      for (int j = 0; j < m; ++j) o[j] += b[j0 + j + 40] * c[40];
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kSamples);
}

}  // namespace

BENCHMARK(BM_CFC60)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CFC180)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CFC600)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_MVA5)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainLoop81)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_PlainLoop81Exchanged)->Unit(benchmark::kMillisecond);
