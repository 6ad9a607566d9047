// ComputeFFT at 2^10, 2^14, 2^17 and 2^20 points next to FFTW's single-precision complex
// transform of the same length (when FFTW was found: see CMakeLists.txt), and the circular
// correlation of 10^5 points. ComputeFFT is timed whole: the weighting, the bit reversal, the
// transform and the scaled amplitude spectrum; FFTW only executes a plan made beforehand.
#include <benchmark/benchmark.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <cstdint>
#include <random>

#if defined(ZEMCALC_BENCH_WITH_FFTW)
#include <fftw3.h>
#endif

namespace {

// A noisy two-tone signal sampled at 10 kHz.
template <class T>
WbArrayTempl<ZmPoint2T<T>> Signal(std::uint64_t count) {
  std::mt19937 generator(42);
  std::normal_distribution<double> noise(0.0, 0.1);
  WbArrayTempl<ZmPoint2T<T>> c;
  c.Reserve(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    const double t = double(i) * 1e-4;
    c.Add(ZmPoint2T<T>(T(t), T(std::sin(2 * 3.141592653589793 * 50 * t) +
                               0.3 * std::sin(2 * 3.141592653589793 * 1230 * t) + noise(generator))));
  }
  return c;
}

// Arguments: nfft and the window type (0: none, 2: Hann).
template <class T>
void BM_ComputeFFT(benchmark::State& state) {
  const std::uint64_t nfft = std::uint64_t(state.range(0));
  const int windowType = int(state.range(1));
  const auto signal = Signal<T>(nfft);
  const int window[2] = {0, int(nfft - 1)};
  WbArrayTempl<ZmPoint2T<T>> spectrum;
  for (auto _ : state) {
    const WbErrObj* error = ZmMathT<T>::ComputeFFT(signal, window, windowType, nfft, spectrum, 0, nullptr);
    benchmark::DoNotOptimize(error);
    benchmark::DoNotOptimize(spectrum.GetData());
  }
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(nfft));
}
BENCHMARK_TEMPLATE(BM_ComputeFFT, double)
    ->ArgsProduct({{1 << 10, 1 << 14, 1 << 17, 1 << 20}, {0, 2}})
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_ComputeFFT, float)
    ->ArgsProduct({{1 << 10, 1 << 14, 1 << 17, 1 << 20}, {0, 2}})
    ->Unit(benchmark::kMicrosecond);

#if defined(ZEMCALC_BENCH_WITH_FFTW)
void BM_FftwComplexFloat(benchmark::State& state) {
  const int nfft = int(state.range(0));
  fftwf_complex* in = fftwf_alloc_complex(std::size_t(nfft));
  fftwf_complex* out = fftwf_alloc_complex(std::size_t(nfft));
  fftwf_plan plan = fftwf_plan_dft_1d(nfft, in, out, FFTW_FORWARD, FFTW_MEASURE);
  const auto signal = Signal<float>(std::uint64_t(nfft));
  for (int i = 0; i < nfft; ++i) {
    in[i][0] = signal[std::uint64_t(i)].y;
    in[i][1] = 0.0f;
  }
  for (auto _ : state) {
    fftwf_execute(plan);
    benchmark::DoNotOptimize(out[0][0]);
  }
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(nfft));
  fftwf_destroy_plan(plan);
  fftwf_free(in);
  fftwf_free(out);
}
BENCHMARK(BM_FftwComplexFloat)->Arg(1 << 10)->Arg(1 << 14)->Arg(1 << 17)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);
#endif

template <class T>
void BM_CircularCorrelation(benchmark::State& state) {
  const std::uint64_t count = std::uint64_t(state.range(0));
  const auto signal = Signal<T>(count);
  WbArrayTempl<ZmPoint2T<T>> out;
  for (auto _ : state) {
    ZmMathT<T>::ComputeCorrelation(signal, signal, 0, out);
    benchmark::DoNotOptimize(out.GetData());
  }
  state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(count) * std::int64_t(count));
}
BENCHMARK_TEMPLATE(BM_CircularCorrelation, double)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_CircularCorrelation, float)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
