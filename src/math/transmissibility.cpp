#include <wbcore/WbLocalize.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "geometry/curve_search.h"
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmFilter.h"
#include "zemcalc/ZmMathSpectrum.h"
#include "zemcalc/ZmMathTransmissibility.h"

ZM_BUILD_INFO(transmissibility)

namespace {

template <class... Args>
const WbErrObj* Fail(const wchar_t* message, const Args&... args) {
  return WbSetError(WbLocalizeStringExW(message, 0), args...);
}

// The smoothing filter of the precision.
template <class T>
using MovingAverage = std::conditional_t<std::is_same<T, double>::value, ZmFilterMVAd, ZmFilterMVAf>;

// The smoothing width is a twentieth of the curve's point count.
constexpr std::uint64_t kSmoothingDivisor = 20;

// The chain of one call: the optional lists of intermediate curves and titles.
template <class T>
class Chain {
 public:
  using Curve = WbArrayTempl<ZmPoint2T<T>>;
  using Point = ZmPoint2T<T>;

  Chain(WbObjectArrayTempl<Curve>* curves, WbObjectArrayTempl<WbString>* titles) : m_curves(curves), m_titles(titles) {}

  // Appends a copy of curve and its title to the lists that were given. The two lists stay in
  // step: when memory runs out, neither gets the entry (and nothing is leaked).
  template <class... Args>
  void Keep(const Curve& curve, const wchar_t* titleFormat, const Args&... args) {
    std::unique_ptr<Curve> copy(m_curves ? new Curve(curve) : nullptr);
    std::unique_ptr<WbString> title(m_titles ? new WbString : nullptr);
    if (title) title->Format(titleFormat, args...);
    if (copy) m_curves->Add(copy.release());  // the lists take ownership, even when they fail
    if (title) {
      try {
        m_titles->Add(title.release());
      } catch (...) {
        if (m_curves) m_curves->RemoveAt(m_curves->GetSize() - 1);
        throw;
      }
    }
  }

 private:
  WbObjectArrayTempl<Curve>* m_curves;
  WbObjectArrayTempl<WbString>* m_titles;
};

template <class T>
bool IsGiven(T value) {
  return value != zm::Invalid<T>();
}

// The work a call accepts. The smoothing costs count^2/40 multiply-adds on up to nfft points, and
// the correlations n^2 each on n samples: 2^18 points smooth in well under a second, and so do
// two correlations of 2^15 samples. A resampled signal (and the final result) holds at most
// kMaxPoints points, at most kMaxCorrelationPoints on a correlation route, and nfft is at most
// kMaxPoints.
constexpr std::uint64_t kMaxPoints = std::uint64_t(1) << 18;
constexpr std::uint64_t kMaxCorrelationPoints = std::uint64_t(1) << 15;

// Whether resampling from start on at step can give more than limit points, judged from the
// abscissa span before any memory is taken: (largest abscissa - first sample)/step + 1, NaN
// abscissas skipped, the first sample chosen as SampleX chooses it. Inputs that SampleX refuses
// on its own (an empty curve, a step not > 0) are left to it.
template <class T>
bool SamplingExceeds(const WbArrayTempl<ZmPoint2T<T>>& signal, T start, T step, std::uint64_t limit) {
  if (signal.IsEmpty() || !(step > T(0))) return false;
  const T first = signal[0].x;
  const T from = (IsGiven(start) && start > first) ? start : first;
  T largest = from;
  for (const ZmPoint2T<T>& p : signal) largest = p.x > largest ? p.x : largest;
  return (largest - from) / step >= T(limit);
}

template <class T>
T ValueAt(const WbArrayTempl<ZmPoint2T<T>>& curve, T x) {
  int index = -1;
  return ZmPoint2T<T>::InterpolateOnX(curve.GetData(), curve.GetSize(), x, index, 0);
}

// ValueAt for abscissae met in increasing order, as the stages below meet frequencies: the
// same values in one pass over the curve instead of a search from its first point each time.
// It keeps the first point whose abscissa is >= the last one asked; no segment closed before
// it can hold a later abscissa, so the first holding segment is found from there (the
// argument of ZmPoint2T::SampleX). An abscissa below the previous one starts again from the
// first point.
template <class T>
class ForwardLookup {
 public:
  explicit ForwardLookup(const WbArrayTempl<ZmPoint2T<T>>& curve)
      : m_points(curve.GetData()), m_count(zm::curve::IndexedCount(curve.GetData(), curve.GetSize())) {}

  T At(T x) {
    using zm::curve::Axis;
    if (!(x >= m_last)) m_next = 0;
    m_last = x;
    while (m_next < m_count && !(m_points[m_next].x >= x)) ++m_next;
    if (m_count == 0) return zm::Invalid<T>();
    if (m_next == 0 && m_points[0].x == x) return m_points[0].y;
    const std::uint64_t end = zm::curve::FindSegmentEnd<Axis::kX>(m_points, m_count, m_next == 0 ? 1 : m_next, x);
    return end == m_count ? zm::Invalid<T>() : zm::curve::SegmentResult<Axis::kX>(m_points, end, x);
  }

 private:
  const ZmPoint2T<T>* m_points;
  std::uint64_t m_count;
  std::uint64_t m_next = 0;
  T m_last = zm::Invalid<T>();
};

// Stage 1: the output with its level moved onto the input's at alignAbscissa.
template <class T>
void AlignLevels(const WbArrayTempl<ZmPoint2T<T>>& input, WbArrayTempl<ZmPoint2T<T>>& output, T alignAbscissa,
                 Chain<T>& chain) {
  if (!IsGiven(alignAbscissa)) return;
  const T inputValue = ValueAt(input, alignAbscissa), outputValue = ValueAt(output, alignAbscissa);
  if (!IsGiven(inputValue) || !IsGiven(outputValue) || inputValue == outputValue) return;
  const T shift = inputValue - outputValue;
  for (ZmPoint2T<T>& p : output) p.y = p.y + shift;
  chain.Keep(output, L"Fitting of output curve with input (%g)|Time|", shift);
}

// Stages 2 and 3.
template <class T>
const WbErrObj* Resample(const WbArrayTempl<ZmPoint2T<T>>& signal, T start, T step, bool isInput, std::uint64_t limit,
                         WbArrayTempl<ZmPoint2T<T>>& sampled, Chain<T>& chain) {
  const bool fromStart = IsGiven(start);
  const int most = static_cast<int>(limit);
  if (SamplingExceeds(signal, start, step, limit) ||
      ZmPoint2T<T>::SampleX(signal.GetData(), signal.GetSize(), step, sampled, start) > limit) {
    return isInput ? Fail(L"Sampling of input signal at step %g gives more than %d points", step, most)
                   : Fail(L"Sampling of output signal at step %g gives more than %d points", step, most);
  }
  if (sampled.IsEmpty()) {
    const WbString from = fromStart ? WbString::Formatted(L" from abscissa %g", start) : WbString();
    return isInput ? Fail(L"Unable to sample points of input signal%s with shift=%g", from, step)
                   : Fail(L"Unable to sample points of output signal%s with shift=%g", from, step);
  }
  const WbString origin = fromStart ? WbString::Formatted(L"%g / ", start) : WbString();
  chain.Keep(sampled, isInput ? L"Sampling of input (%s%g)|Time|" : L"Sampling of output (%s%g)|Time|", origin, step);
  return nullptr;
}

// The amplitude (and phase) spectrum of a whole series.
template <class T>
const WbErrObj* Spectrum(const WbArrayTempl<ZmPoint2T<T>>& series, std::uint64_t nfft,
                         WbArrayTempl<ZmPoint2T<T>>& amplitude, WbArrayTempl<ZmPoint2T<T>>* phase) {
  const int window[2] = {0, static_cast<int>(series.GetSize()) - 1};
  return ZmMathSpectrumT<T>::ComputeFFT(series, window, 0, nfft, amplitude, 0, phase);
}

// The two spectra of stage 4, input side then output side.
template <class T>
struct Spectra {
  WbArrayTempl<ZmPoint2T<T>> input, output, inputPhase, outputPhase;
};

template <class T>
const WbErrObj* DirectSpectra(const WbArrayTempl<ZmPoint2T<T>>& input, const WbArrayTempl<ZmPoint2T<T>>& output,
                              std::uint64_t nfft, bool withPhase, Spectra<T>& spectra, Chain<T>& chain) {
  if (const WbErrObj* error = Spectrum(input, nfft, spectra.input, withPhase ? &spectra.inputPhase : nullptr))
    return error;
  chain.Keep(spectra.input, L"FFT of input signal|Frequency|");
  if (const WbErrObj* error = Spectrum(output, nfft, spectra.output, withPhase ? &spectra.outputPhase : nullptr))
    return error;
  chain.Keep(spectra.output, L"FFT of output signal|Frequency|");
  return nullptr;
}

template <class T>
const WbErrObj* CorrelationSpectra(const WbArrayTempl<ZmPoint2T<T>>& input, const WbArrayTempl<ZmPoint2T<T>>& output,
                                   bool linear, std::uint64_t nfft, bool withPhase, Spectra<T>& spectra,
                                   Chain<T>& chain) {
  WbArrayTempl<ZmPoint2T<T>> autoCorrelation, crossCorrelation;
  ZmMathSpectrumT<T>::ComputeCorrelation(input, input, linear ? 1 : 0, autoCorrelation);
  ZmMathSpectrumT<T>::ComputeCorrelation(input, output, linear ? 1 : 0, crossCorrelation);
  if (linear) {
    // Only the lags from 0 on.
    autoCorrelation.RemoveAt(0, autoCorrelation.GetSize() / 2);
    crossCorrelation.RemoveAt(0, crossCorrelation.GetSize() / 2);
  }
  const wchar_t* kind = linear ? L"MATLAB" : L"XU";
  chain.Keep(autoCorrelation, L"Autocorrelation (%s) of input signal|Time|", kind);
  chain.Keep(crossCorrelation, L"Intercorrelation (%s) of input signal with output signal|Time|", kind);
  if (const WbErrObj* error = Spectrum(autoCorrelation, nfft, spectra.input, withPhase ? &spectra.inputPhase : nullptr))
    return error;
  chain.Keep(spectra.input, L"FFT of Autocorrelation of input signal|Frequency|");
  if (const WbErrObj* error =
          Spectrum(crossCorrelation, nfft, spectra.output, withPhase ? &spectra.outputPhase : nullptr))
    return error;
  chain.Keep(spectra.output, L"FFT of Intercorrelation of input signal with output signal|Frequency|");
  return nullptr;
}

// Stage 7: the output phase minus the input phase, at the input phase's frequencies resampled
// from frequencyMin on, up to frequencyMax.
template <class T>
void PhaseDifference(const Spectra<T>& spectra, T frequencyMin, T frequencyMax, WbArrayTempl<ZmPoint2T<T>>& difference,
                     Chain<T>& chain) {
  chain.Keep(spectra.inputPhase, L"FFT phase of input signal|Frequency|Angle (degrees)");
  chain.Keep(spectra.outputPhase, L"FFT phase of output signal|Frequency|Angle (degrees)");
  const WbArrayTempl<ZmPoint2T<T>>& in = spectra.inputPhase;
  WbArrayTempl<ZmPoint2T<T>> grid;
  ZmPoint2T<T>::SampleX(in.GetData(), in.GetSize(), in[1].x - in[0].x, grid, frequencyMin);
  difference.RemoveAll();
  ForwardLookup<T> outputPhaseAt(spectra.outputPhase);
  for (const ZmPoint2T<T>& p : grid) {
    if (p.x > frequencyMax) break;
    const T outputPhase = outputPhaseAt.At(p.x);
    if (IsGiven(outputPhase)) difference.Add(ZmPoint2T<T>(p.x, outputPhase - p.y));
  }
  chain.Keep(difference, L"Phase difference (output - input)|Frequency|Angle (degrees)");
}

// Stage 8: output envelope over input envelope at the output envelope's frequencies, smoothed.
template <class T>
const WbErrObj* Transmissibility(const WbArrayTempl<ZmPoint2T<T>>& inputEnvelope,
                                 const WbArrayTempl<ZmPoint2T<T>>& outputEnvelope,
                                 WbArrayTempl<ZmPoint2T<T>>& transmissibility) {
  transmissibility.RemoveAll();
  ForwardLookup<T> inputEnvelopeAt(inputEnvelope);
  for (const ZmPoint2T<T>& p : outputEnvelope) {
    const T reference = inputEnvelopeAt.At(p.x);
    if (IsGiven(reference) && reference != T(0)) transmissibility.Add(ZmPoint2T<T>(p.x, p.y / reference));
  }
  if (transmissibility.IsEmpty())
    return Fail(L"Unable to form the transmissibility: no input envelope value at the output envelope frequencies");
  const std::uint64_t width = transmissibility.GetSize() / kSmoothingDivisor;
  if (width < 1) return nullptr;
  MovingAverage<T> smoothing(static_cast<int>(width), ZmExtrapolationReflection);
  return smoothing.Compute(transmissibility, transmissibility);
}

// The smallest power of two, at least 2, that holds count points.
std::uint64_t DefaultLength(std::uint64_t count) {
  std::uint64_t nfft = 2;
  while (nfft < count) nfft *= 2;
  return nfft;
}

template <class T>
const WbErrObj* Run(const WbArrayTempl<ZmPoint2T<T>>& input, const WbArrayTempl<ZmPoint2T<T>>& output, T alignAbscissa,
                    T samplingStart, T samplingStep, T frequencyMin, int method, T frequencyMax, T envelopeStep,
                    T resultStep, unsigned int nfft, WbArrayTempl<ZmPoint2T<T>>& result,
                    WbObjectArrayTempl<WbArrayTempl<ZmPoint2T<T>>>* curves, WbObjectArrayTempl<WbString>* titles,
                    WbArrayTempl<ZmPoint2T<T>>* phaseDifference) {
  using Curve = WbArrayTempl<ZmPoint2T<T>>;
  using Math = ZmMathTransmissibilityT<T>;
  Chain<T> chain(curves, titles);
  if (nfft > kMaxPoints) return Fail(L"FFT length %u is larger than %d", nfft, static_cast<int>(kMaxPoints));

  Curve alignedOutput = output;
  AlignLevels(input, alignedOutput, alignAbscissa, chain);

  const bool correlation =
      method == Math::TRANSMISSIBILITY_CIRCULAR_CORRELATION || method == Math::TRANSMISSIBILITY_LINEAR_CORRELATION;
  const std::uint64_t limit = correlation ? kMaxCorrelationPoints : kMaxPoints;
  Curve sampledInput, sampledOutput;
  if (const WbErrObj* error = Resample(input, samplingStart, samplingStep, true, limit, sampledInput, chain))
    return error;
  if (const WbErrObj* error = Resample(alignedOutput, samplingStart, samplingStep, false, limit, sampledOutput, chain))
    return error;

  const std::uint64_t length = nfft ? nfft : DefaultLength(std::max(sampledInput.GetSize(), sampledOutput.GetSize()));
  const bool withPhase = phaseDifference != nullptr;
  Spectra<T> spectra;
  const WbErrObj* error =
      correlation ? CorrelationSpectra(sampledInput, sampledOutput, method == Math::TRANSMISSIBILITY_LINEAR_CORRELATION,
                                       length, withPhase, spectra, chain)
                  : DirectSpectra(sampledInput, sampledOutput, length, withPhase, spectra, chain);
  if (error) return error;

  const T low = IsGiven(frequencyMin) ? frequencyMin : T(0);
  const T high = IsGiven(frequencyMax) ? frequencyMax : T(1) / (T(2) * samplingStep);
  if (ZmPoint2T<T>::ExtractXRange(spectra.input, low, high, T(0)) == 0)
    return Fail(L"No input signal frequencies in given range");
  chain.Keep(spectra.input, L"Restriction of input frequencies|Frequency|");
  if (ZmPoint2T<T>::ExtractXRange(spectra.output, low, high, T(0)) == 0)
    return Fail(L"No output signal frequencies in given range");
  chain.Keep(spectra.output, L"Restriction of output frequencies|Frequency|");

  const WbString stepLabel = IsGiven(envelopeStep) ? WbString::Formatted(L" (step=%g)", envelopeStep) : WbString();
  Curve inputEnvelope, outputEnvelope;
  ZmPoint2T<T>::EvaluateEnvelop(spectra.input, 1, inputEnvelope, envelopeStep);
  chain.Keep(inputEnvelope, L"Computation of max input envelop%s|Frequency|", stepLabel);
  ZmPoint2T<T>::EvaluateEnvelop(spectra.output, 1, outputEnvelope, envelopeStep);
  chain.Keep(outputEnvelope, L"Computation of max output envelop%s|Frequency|", stepLabel);

  Curve difference;
  if (withPhase) PhaseDifference(spectra, low, high, difference, chain);

  Curve transmissibility;
  if (const WbErrObj* failure = Transmissibility(inputEnvelope, outputEnvelope, transmissibility)) return failure;
  if (IsGiven(resultStep)) {
    if (SamplingExceeds(transmissibility, zm::Invalid<T>(), resultStep, kMaxPoints))
      return Fail(L"Sampling of the transmissibility at step %g gives more than %d points", resultStep,
                  static_cast<int>(kMaxPoints));
    if (ZmPoint2T<T>::SampleX(transmissibility.GetData(), transmissibility.GetSize(), resultStep, transmissibility,
                              zm::Invalid<T>()) == 0)
      transmissibility.RemoveAll();
  }

  result = std::move(transmissibility);
  if (phaseDifference) *phaseDifference = std::move(difference);
  return nullptr;
}

}  // namespace

template <class T>
const WbErrObj* ZmMathTransmissibilityT<T>::ComputeTransmissibility(
    const Curve& input, const Curve& output, T alignAbscissa, T samplingStart, T samplingStep, T frequencyMin,
    int method, T frequencyMax, T envelopeStep, T resultStep, unsigned int nfft, Curve& result,
    WbObjectArrayTempl<Curve>* curves, WbObjectArrayTempl<WbString>* titles, Curve* phaseDifference) {
  try {
    const zm::BoundaryCall boundary;
    return Run(input, output, alignAbscissa, samplingStart, samplingStep, frequencyMin, method, frequencyMax,
               envelopeStep, resultStep, nfft, result, curves, titles, phaseDifference);
  } catch (const std::exception&) {
    return Fail(L"Not enough memory to compute the transmissibility");
  }
}

template class ZmMathTransmissibilityT<double>;
template class ZmMathTransmissibilityT<float>;
