// FFT, correlation and transmissibility over fuzzed curves, windows, lengths and options, in
// both precisions. Lengths and sampling steps are kept small enough for a fuzzing rate; the
// bounds on large work are the library's own business and are tested elsewhere.
#include <zemcalc/ZmMath.h>

#include <cstdlib>

#include "fuzz_input.h"

namespace {

template <class T>
void Fuzz(FuzzedDataProvider& in) {
  using Curve = WbArrayTempl<ZmPoint2T<T>>;
  const int family = in.ConsumeIntegralInRange<int>(0, 2);
  const bool anyAbscissa = family != 2;
  const Curve a = fuzz::Curve<T>(in, anyAbscissa ? 600 : 200, anyAbscissa);
  const Curve b = fuzz::Curve<T>(in, anyAbscissa ? 600 : 200, anyAbscissa);
  switch (family) {
    case 0: {
      const int window[2] = {in.ConsumeIntegralInRange<int>(-2, 700), in.ConsumeIntegralInRange<int>(-2, 700)};
      const std::uint64_t nfft = in.ConsumeBool() ? std::uint64_t(1) << in.ConsumeIntegralInRange<int>(0, 12)
                                                  : in.ConsumeIntegralInRange<std::uint64_t>(0, 5000);
      Curve spectrum, phase;
      const int windowType = in.ConsumeIntegralInRange<int>(-1, 3);
      const WbErrObj* error = ZmMathT<T>::ComputeFFT(a, in.ConsumeBool() ? window : nullptr, windowType, nfft,
                                                     spectrum, in.ConsumeBool(), in.ConsumeBool() ? &phase : nullptr);
      if (!error && spectrum.GetSize() != nfft) std::abort();
      break;
    }
    case 1: {
      Curve out;
      const bool linear = in.ConsumeBool();
      ZmMathT<T>::ComputeCorrelation(a, b, linear, out);
      const std::uint64_t n = a.GetSize();
      if (out.GetSize() != (n == 0 ? 0 : linear ? 2 * n - 1 : n)) std::abort();
      break;
    }
    default: {
      // Steps of at least 1/8 over increasing abscissas below 200 keep the resampled curves
      // within some thousand points.
      const T step = T(in.ConsumeIntegralInRange<int>(1, 64)) / T(8);
      const T align = fuzz::Number<T>(in), start = fuzz::Number<T>(in);
      const T fmin = fuzz::Number<T>(in), fmax = fuzz::Number<T>(in);
      const T envelope = fuzz::Number<T>(in), resultStep = fuzz::Number<T>(in);
      const int method = in.ConsumeIntegralInRange<int>(-1, 2);
      const unsigned int nfft = in.ConsumeIntegralInRange<unsigned int>(0, 4096);
      Curve result, phaseDifference;
      WbObjectArrayTempl<Curve> curves;
      WbObjectArrayTempl<WbString> titles;
      ZmMathT<T>::ComputeTransmissibility(a, b, align, start, step, fmin, method, fmax, envelope, resultStep, nfft,
                                          result, &curves, &titles, &phaseDifference);
      if (curves.GetSize() != titles.GetSize()) std::abort();
      break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeBool())
    Fuzz<double>(in);
  else
    Fuzz<float>(in);
  return 0;
}
