#pragma once

// Vibration transmissibility in ZmMathd / ZmMathf: how much of an input signal (time on x)
// reaches an output signal, as a curve over frequency, with every intermediate curve handed
// back on request so that a caller can show the whole chain of processing.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>
#include <wbcore/WbString.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"

template <class T>
class ZMCALC_API ZmMathTransmissibilityT {
 public:
  using Curve = WbArrayTempl<ZmPoint2T<T>>;

  // Values of ComputeTransmissibility's method. Any other value takes the direct route.
  static constexpr int TRANSMISSIBILITY_DIRECT = 1;
  static constexpr int TRANSMISSIBILITY_CIRCULAR_CORRELATION = 2;
  static constexpr int TRANSMISSIBILITY_LINEAR_CORRELATION = 3;

  // The transmissibility of input to output (both time signals), over frequency, into result.
  // Optional scalars are absent when they hold the invalid marker -1e32 (the float value,
  // widened in ZmMathd). The parameters, in the order of the stages that use them:
  //   alignAbscissa   stage 1: abscissa at which the levels are aligned; absent: no alignment.
  //   samplingStart   stages 2-3: first abscissa of the resampling (SampleX's startX; the
  //                   curve's own first abscissa when absent or earlier).
  //   samplingStep    stages 2-3: the resampling step; required (absent or <= 0 fails).
  //   frequencyMin    stage 5: lower bound of the frequency range; absent: 0.
  //   method          stage 4: TRANSMISSIBILITY_CIRCULAR_CORRELATION or _LINEAR_CORRELATION
  //                   take the correlation route, any other value the direct route.
  //   frequencyMax    stage 5: upper bound; absent: 1/(2*samplingStep), the Nyquist frequency.
  //   envelopeStep    stage 6: the envelope width (EvaluateEnvelop); absent: local maxima.
  //   resultStep      stage 9: step of the final resampling of result; absent: none.
  //   nfft            stage 4: the FFT length, a power of two; 0 takes the smallest power of
  //                   two (at least 2) holding the longer of the two resampled signals.
  // Stages, in this order; each stage with a title appends its curve to *curves and its title
  // to *titles, each list only when given (titles: name|abscissa quantity|ordinate quantity):
  // 1. When alignAbscissa is given and both signals have a value there (InterpolateOnX) and the
  //    two values differ, the difference (input - output) is added to every output value.
  //    "Fitting of output curve with input (%g)|Time|" with the added value; nothing is
  //    appended when no value was added.
  // 2. The input resampled with SampleX(samplingStep, samplingStart). Failure: "Unable to
  //    sample points of input signal%s with shift=%g", %s being " from abscissa <start>" when
  //    samplingStart is given (else empty) and %g the step by which each sample shifts.
  //    "Sampling of input (%s%g)|Time|", %s = "<start> / " when samplingStart is given, %g
  //    the step.
  // 3. The same for the output: "Unable to sample points of output signal%s with shift=%g",
  //    "Sampling of output (%s%g)|Time|".
  // 4. Spectra, by ComputeFFT of the whole series (no weighting, no division by the count):
  //    direct route, of the two resampled signals: "FFT of input signal|Frequency|", "FFT of
  //    output signal|Frequency|". Correlation route, of the autocorrelation of the input and
  //    the cross-correlation of input (a) with output (b) (ComputeCorrelation; the linear ones
  //    lose their first half, entries 0 .. count/2 - 1, the negative lags):
  //    "Autocorrelation (%s) of input signal|Time|", "Intercorrelation (%s) of input signal with
  //    output signal|Time|", %s "MATLAB" for the linear and "XU" for the circular ones, then
  //    "FFT of Autocorrelation of input signal|Frequency|", "FFT of Intercorrelation of input
  //    signal with output signal|Frequency|". Errors of ComputeFFT are passed on. Below, the
  //    input side is the input's (or the autocorrelation's) spectrum, the output side the
  //    output's (or the cross-correlation's).
  // 5. Both spectra restricted to [frequencyMin, frequencyMax] by ExtractXRange (no tolerance;
  //    a bound inside a segment gets an interpolated point): "No input signal frequencies in
  //    given range" / "No output signal frequencies in given range" when nothing remains;
  //    "Restriction of input frequencies|Frequency|", "Restriction of output
  //    frequencies|Frequency|".
  // 6. The upper envelopes of both (EvaluateEnvelop with envelopeStep): "Computation of max
  //    input envelop%s|Frequency|", "Computation of max output envelop%s|Frequency|", %s =
  //    " (step=%g)" with the step when envelopeStep is given, else empty.
  // 7. When phaseDifference is given: the phase spectra of the two FFTs of stage 4, "FFT phase
  //    of input signal|Frequency|Angle (degrees)", "FFT phase of output signal|Frequency|Angle
  //    (degrees)"; then the input phase resampled with SampleX at its own frequency step from
  //    frequencyMin on, and at each of those frequencies up to frequencyMax the output phase
  //    (InterpolateOnX) minus the input phase, in degrees, not wrapped: "Phase difference
  //    (output - input)|Frequency|Angle (degrees)", also written to *phaseDifference.
  // 8. The transmissibility: at each frequency of the output envelope, its value divided by
  //    the input envelope there (InterpolateOnX); frequencies where the input envelope has no
  //    value or is 0 are left out, and "Unable to form the transmissibility: no input envelope
  //    value at the output envelope frequencies" when none is left. On the correlation route
  //    this is the cross- over the auto-spectrum. The curve is then smoothed by a ZmFilterMVAd
  //    (ZmFilterMVAf) of width count/20 (integer division) with point reflection at the ends
  //    (extrapolation 3), through its Compute; fewer than 20 points are left as they are (a
  //    width of 0 is no average). Errors of the filter are passed on.
  // 9. When resultStep is given, result is resampled with SampleX at that step; when that
  //    yields nothing, result is empty.
  // Bounded work. A call accepts at most 2^18 (262144) points per resampled signal, 2^15 (32768)
  // on the correlation routes (each correlation costs the square of that), and nfft at most
  // 2^18; the smoothing of stage 8 then stays within about 2^31 multiply-adds and the whole call
  // well under a second on such sizes. Beyond them the call is refused before the work starts:
  //   nfft above 2^18, before stage 1: "FFT length %u is larger than 262144";
  //   stages 2-3, when (largest abscissa - first sample)/samplingStep >= the limit (NaN
  //   abscissas skipped; the first sample as SampleX takes it), or the resampled signal holds
  //   more than the limit: "Sampling of input signal at step %g gives more than %d points",
  //   "Sampling of output signal at step %g gives more than %d points" (%d the limit);
  //   stage 9 by the same test with resultStep and 2^18: "Sampling of the transmissibility at
  //   step %g gives more than 262144 points".
  // Stages 7 and 8 read the other curve at increasing frequencies in one pass over it, so they
  // are linear too.
  // Returns null on success. On failure result and *phaseDifference are unchanged, and the
  // curves and titles appended before the failing stage stay. Running out of memory fails with
  // "Not enough memory to compute the transmissibility". result, phaseDifference and the
  // signals may be the same arrays.
  static const WbErrObj* ComputeTransmissibility(const Curve& input, const Curve& output, T alignAbscissa,
                                                 T samplingStart, T samplingStep, T frequencyMin, int method,
                                                 T frequencyMax, T envelopeStep, T resultStep, unsigned int nfft,
                                                 Curve& result, WbObjectArrayTempl<Curve>* curves,
                                                 WbObjectArrayTempl<WbString>* titles, Curve* phaseDifference);
};

extern template class ZmMathTransmissibilityT<double>;
extern template class ZmMathTransmissibilityT<float>;
