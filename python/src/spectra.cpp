// FFT, correlation and transmissibility of curves.
#include "arrays.h"
#include "families.h"
#include "zemcalc/ZmMath.h"

namespace zmpy {
namespace {

int WindowType(const std::string& name) {
  if (name == "none") return 0;
  if (name == "hamming") return ZmMathd::FFT_WINDOW_HAMMING;
  if (name == "hann") return ZmMathd::FFT_WINDOW_HANN;
  throw py::value_error("weighting must be 'none', 'hamming' or 'hann', got '" + name + "'");
}

int Method(const std::string& name) {
  if (name == "direct") return ZmMathd::TRANSMISSIBILITY_DIRECT;
  if (name == "circular") return ZmMathd::TRANSMISSIBILITY_CIRCULAR_CORRELATION;
  if (name == "linear") return ZmMathd::TRANSMISSIBILITY_LINEAR_CORRELATION;
  throw py::value_error("method must be 'direct', 'circular' or 'linear', got '" + name + "'");
}

// The smallest power of two, at least 2, holding count samples.
std::uint64_t PowerOfTwoFor(std::uint64_t count) {
  std::uint64_t n = 2;
  while (n < count && n < ZmMathd::MAX_FFT_LENGTH) n *= 2;
  return n;
}

py::object Fft(py::handle signalObj, py::object window, const std::string& weighting, std::uint64_t nfft,
               bool divideByCount, bool withPhase) {
  return WithTwin(signalObj, [&](auto tag) -> py::object {
    using T = decltype(tag);
    const Curve<T> signal = ToCurve<T>(signalObj, "signal");
    const auto last = static_cast<long long>(signal.GetSize()) - 1;
    int bounds[2] = {0, static_cast<int>(last > INT32_MAX ? INT32_MAX : last)};
    if (!window.is_none()) {
      const auto pair = window.cast<std::pair<int, int>>();
      bounds[0] = pair.first;
      bounds[1] = pair.second;
    }
    if (nfft == 0) nfft = PowerOfTwoFor(static_cast<std::uint64_t>(bounds[1]) - bounds[0] + 1);
    Curve<T> spectrum, phase;
    if (nfft <= ZmMathd::MAX_FFT_LENGTH && signal.GetSize() >= 3) {
      ReserveLarge(spectrum, nfft);
      if (withPhase) ReserveLarge(phase, nfft);
    }
    const WbErrObj* err = nullptr;
    {
      const int type = WindowType(weighting);
      py::gil_scoped_release release;
      err = ZmMathT<T>::ComputeFFT(signal, bounds, type, nfft, spectrum, divideByCount ? 1 : 0,
                                   withPhase ? &phase : nullptr);
    }
    Check(err);
    if (!withPhase) return FromCurve(std::move(spectrum));
    return py::make_tuple(FromCurve(std::move(spectrum)), FromCurve(std::move(phase)));
  });
}

py::array Correlation(py::handle aObj, py::handle bObj, bool linear) {
  return WithTwin(aObj, [&](auto tag) -> py::array {
    using T = decltype(tag);
    const Curve<T> a = ToCurve<T>(aObj, "a");
    const Curve<T> b = ToCurve<T>(bObj, "b");
    Curve<T> out;
    ReserveLarge(out, linear ? 2 * a.GetSize() : a.GetSize());
    {
      py::gil_scoped_release release;
      ZmMathT<T>::ComputeCorrelation(a, b, linear ? 1 : 0, out);
    }
    return FromCurve(std::move(out));
  });
}

py::object Transmissibility(py::handle inObj, py::handle outObj, double step, py::object start, py::object align,
                            py::object fmin, py::object fmax, const std::string& method, py::object envelopeStep,
                            py::object resultStep, unsigned int nfft, bool details) {
  return WithTwin(inObj, [&](auto tag) -> py::object {
    using T = decltype(tag);
    const Curve<T> input = ToCurve<T>(inObj, "input");
    const Curve<T> output = ToCurve<T>(outObj, "output");
    Curve<T> result, phase;
    WbObjectArrayTempl<Curve<T>> curves;
    WbObjectArrayTempl<WbString> titles;
    const T a = Optional<T>(align), s = Optional<T>(start), lo = Optional<T>(fmin), hi = Optional<T>(fmax);
    const T env = Optional<T>(envelopeStep), res = Optional<T>(resultStep);
    const int route = Method(method);
    const WbErrObj* err = nullptr;
    {
      py::gil_scoped_release release;
      err = ZmMathT<T>::ComputeTransmissibility(input, output, a, s, static_cast<T>(step), lo, route, hi, env, res,
                                                nfft, result, details ? &curves : nullptr,
                                                details ? &titles : nullptr, details ? &phase : nullptr);
    }
    Check(err);
    if (!details) return FromCurve(std::move(result));
    py::list steps;
    for (std::uint64_t i = 0; i < curves.GetSize() && i < titles.GetSize(); ++i)
      steps.append(py::make_tuple(ToUtf8(*titles[i]), FromCurve(*curves[i])));
    return py::make_tuple(FromCurve(std::move(result)), steps, FromCurve(std::move(phase)));
  });
}

}  // namespace

void BindSpectra(py::module_& m) {
  m.def("fft", &Fft, py::arg("signal"), py::arg("window") = py::none(), py::arg("weighting") = "none",
        py::arg("nfft") = 0, py::arg("divide_by_count") = false, py::arg("phase") = false,
        "Amplitude spectrum (frequency, amplitude) of signal[window[0]..window[1]] (both inclusive,\n"
        "the whole signal by default) by a radix-2 FFT of length nfft (0: the smallest power of two\n"
        "holding the window). weighting: 'none', 'hamming' or 'hann'. With phase=True returns\n"
        "(spectrum, phase in degrees). Raises zemcalc.Error with the library's message.");
  m.def("correlation", &Correlation, py::arg("a"), py::arg("b"), py::arg("linear") = false,
        "Correlation of a with b (biased, divided by the length of a): circular (n points) or linear\n"
        "(2n - 1 points, negative lags first). Autocorrelation: correlation(a, a).");
  m.def("transmissibility", &Transmissibility, py::arg("input"), py::arg("output"), py::arg("sampling_step"),
        py::kw_only(), py::arg("sampling_start") = py::none(), py::arg("align_abscissa") = py::none(),
        py::arg("frequency_min") = py::none(), py::arg("frequency_max") = py::none(),
        py::arg("method") = "direct", py::arg("envelope_step") = py::none(), py::arg("result_step") = py::none(),
        py::arg("nfft") = 0, py::arg("details") = false,
        "Transmissibility of input to output (time signals) over frequency. Optional arguments left\n"
        "at None are absent. method: 'direct', 'circular' or 'linear' (correlation routes).\n"
        "With details=True returns (result, steps, phase_difference), steps being the list of\n"
        "(title, curve) of every intermediate curve, titles as 'name|abscissa|ordinate'.");
}

}  // namespace zmpy
