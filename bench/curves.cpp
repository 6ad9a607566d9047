// The curve statics on a curve of 10^6 samples, against a baseline that reads every point of
// the curve once (the least any of them can do). Items are curve points: compare the items
// per second of each benchmark with the baseline's.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>

#include <zemcalc/zemcalc.h>

namespace {

constexpr std::uint64_t kPoints = 1000000;

// A damped oscillation sampled at 10 kHz: increasing abscissas, many crossings of 0.
const WbArrayTempl<ZmPoint2d>& Signal() {
  static const WbArrayTempl<ZmPoint2d> curve = [] {
    WbArrayTempl<ZmPoint2d> c;
    c.Reserve(kPoints);
    for (std::uint64_t i = 0; i < kPoints; ++i) {
      const double t = double(i) * 1e-4;
      c.Add(ZmPoint2d(t, std::exp(-t / 50.0) * std::sin(2.0 * 3.141592653589793 * 13.0 * t)));
    }
    return c;
  }();
  return curve;
}

void Baseline_ReadEveryPoint(benchmark::State& state) {
  const auto& c = Signal();
  for (auto _ : state) {
    double sum = 0;
    for (const ZmPoint2d& p : c) sum += p.y;
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(kPoints));
}
BENCHMARK(Baseline_ReadEveryPoint)->Unit(benchmark::kMillisecond);

void Baseline_CopyCurve(benchmark::State& state) {
  const auto& c = Signal();
  WbArrayTempl<ZmPoint2d> out;
  for (auto _ : state) {
    out.RemoveAll();
    for (const ZmPoint2d& p : c) out.Add(p);
    benchmark::DoNotOptimize(out.GetData());
  }
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(kPoints));
}
BENCHMARK(Baseline_CopyCurve)->Unit(benchmark::kMillisecond);

// Resampling at the curve's own spacing (about 10^6 samples) and at a tenth of it (10^7).
void SampleX(benchmark::State& state) {
  const auto& c = Signal();
  const double step = 1e-4 * double(state.range(0)) / 10.0;
  WbArrayTempl<ZmPoint2d> out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ZmPoint2d::SampleX(c.GetData(), c.GetSize(), step, out));
  }
  state.counters["samples"] = double(out.GetSize());
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(kPoints));
}
BENCHMARK(SampleX)->Arg(10)->Arg(1)->Unit(benchmark::kMillisecond);

void InterpolateOnYn(benchmark::State& state) {
  const auto& c = Signal();
  WbArrayTempl<double> xs;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ZmPoint2d::InterpolateOnYn(c.GetData(), c.GetSize(), 0.25, xs));
  }
  state.counters["crossings"] = double(xs.GetSize());
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(kPoints));
}
BENCHMARK(InterpolateOnYn)->Unit(benchmark::kMillisecond);

// Local extremes (argument 0) and one extreme per 5 ms span (argument 1).
void EvaluateEnvelop(benchmark::State& state) {
  const auto& c = Signal();
  const double width = state.range(0) ? 0.01 : double(-1.0e32f);
  WbArrayTempl<ZmPoint2d> out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ZmPoint2d::EvaluateEnvelop(c, 1, out, width));
  }
  state.counters["points"] = double(out.GetSize());
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(kPoints));
}
BENCHMARK(EvaluateEnvelop)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
