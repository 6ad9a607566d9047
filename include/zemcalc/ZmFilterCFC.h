#pragma once

// The channel-frequency-class (CFC) low-pass filter at any sampling rate: the 2-pole
// Butterworth recursion of SAE J211/1 and ISO 6487, run forward and then backward over the
// curve (4 poles, no phase shift), its coefficients derived from the class and from the
// sampling period read on the curve. ZmFilterCFCd and ZmFilterCFCf belong to the ZmFilterd
// family (ZmFilter.h): runtime-class records named after the class, creation by name.
//
// Coefficients, for a class CFC (Hz) and a sampling period T (seconds):
//   wd = 2 pi * k * CFC, k = 2.0775 (ZmCFCDesignJ211, the default) or 25/12 (ZmCFCDesignISO6487)
//   wa = tan(wd T / 2), D = 1 + sqrt2 wa + wa^2
//   a0 = wa^2 / D, a1 = 2 a0, a2 = a0, b1 = -2 (wa^2 - 1) / D, b2 = (-1 + sqrt2 wa - wa^2) / D
// all in double. Each pass computes Y[t] = a0 X[t] + a1 X[t-1] + a2 X[t-2] + b1 Y[t-1] +
// b2 Y[t-2] over its values, two outputs at a time so that the processor works on both at
// once: with U[t] = (a0 X[t] + a1 X[t-1]) + a2 X[t-2],
//   Y[t]   = (U[t] + b2 Y[t-2]) + b1 Y[t-1]
//   Y[t+1] = ((U[t+1] + b1 U[t]) + b1 b2 Y[t-2]) + (b1^2 + b2) Y[t-1]
// (the recursion with Y[t] substituted; the same filter, rounded differently), the pairs
// counted from the start of each stretch of a pass (left padding, samples, right padding),
// a last odd value of a stretch by the recursion itself.
// A record of N samples longer than 4 times the filter's memory M (and than 4096 samples) is
// cut in two halves at H = N / 2 (integer division), run side by side by one instruction
// stream: the pass over the first half continues from the padding as above; the pass over
// the second half starts M samples before H in the steady state of the value there and runs
// up to H without writing anything. M is the number of samples over which a difference in the
// recursion's state decays to 2^-70 of itself (the poles r e^(+-i theta): r^M / sin(theta) =
// 2^-70), about 930 samples for CFC 60 at 10 kHz and 9,700 at 100 kHz, so the second half
// starts from the first half's state to far below the rounding; its outputs are rounded along
// another path than one pass over the whole record would take, and that is all. Samples
// 2H .. N-1 (one, for an odd N) continue the second half's pass.
// The result stays within about 1.2e-12 of the signal's scale of the recursion computed
// exactly (CFC 60 at 100 kHz, poles close to 1: the rounding of any order of the recursion in
// double strays that far on noisy records). A constant comes back within the same rounding,
// not bit for bit: the recursion's weights, rounded to double, do not sum to exactly 1 (on a
// constant, up to 2.5e-12 of its value at CFC 60 at 100 kHz, 3.5e-14 at 10 kHz).
// Every product is rounded on its own (no fused multiply-add), so the result does not depend
// on the processor or the optimiser.
// The gain at 0 Hz is 1 (a0 + a1 + a2 = 1 - b1 - b2); the combined amplitude response is |H|^2 = 1 / (1 + (tan(pi f T) / wa)^4), -3 dB at
// about 1.667 CFC (at 10 kHz: 100.0, 300.5, 1018.2 and 1751.0 Hz for CFC 60, 180, 600 and
// 1000).
// Both twins run the recursion in double; the float class reads its float values widened and
// rounds each result to float once, so it gives the double class's result on the same
// samples, rounded.
//
// It lies inside the J211/1 corridor for CFC 60, 180, 600 and 1000 at 10, 20, 50 and
// 100 kHz, the corridor read as: upper limit +0.5 dB up to F_N = 5/3 CFC, then -9 dB per
// octave down to a floor of -30 dB; lower limit -0.5 dB up to F_H = CFC, then from -1 dB at
// F_H to -4 dB at F_N (linear in log frequency), none above F_N.
//
// Sampling: T is the mean step (x[N-1] - x[0]) / (N - 1) of the curve, in the time unit given
// to the constructor, converted to seconds through the unit system. Every interval must be
// within the step tolerance of it: |dt_i - T| <= tolerance * T (default 1e-2, 1 %), else the
// filter refuses the curve naming the first interval that is not (intervals numbered from 1,
// interval i joining points i-1 and i; a NaN step is refused too).
// The rate 1/T must be at least 10 times the class (the standards' guidance) unless
// SetAllowLowRate(1); even then the design frequency k * CFC must stay below half the rate,
// where the recursion stops being a low-pass filter.
//
// Ends (ZmFilterEnds): the recursion needs the samples before the first one and after the
// last one. Before each pass the curve is continued by L samples on both sides, and each pass
// starts in the steady state of its first value (earlier inputs and outputs all equal to it:
// a constant is in that state from the start); the L added samples are dropped from the result.
//   ZmFilterEndsReflection (default): point reflection through the end values,
//       x[-k] = 2 x[0] - x[k], x[N-1+k] = 2 x[N-1] - x[N-1-k]. A signal's level and slope
//       continue through its ends, so a ramp, or a pulse that starts at 0, keeps its first and
//       last samples nearly unchanged; this is scipy's sosfiltfilt with padtype "odd".
//   ZmFilterEndsMirror: x[-k] = x[k], x[N-1+k] = x[N-1-k]: the level continues but the slope
//       turns (sosfiltfilt "even"); the end values are pulled towards their neighbours.
//   ZmFilterEndsConstant: x[-k] = x[0], x[N-1+k] = x[N-1] (sosfiltfilt "constant"): a step
//       of slope at the ends, so the end values of a ramp are bent towards the ramp's middle.
//   ZmFilterEndsNone: nothing added (L = 0); each pass starts at rest, every earlier input and
//       output 0. A curve that does not start (end) at 0 shows the filter's step response at
//       its start (end): the first output is a0 * x[0] then the backward pass. This is the
//       bare recursion; the standards ask for 10 ms of quiet data before and after the event.
// L is SetPadLength's value, or, by default (-1), ceil(3 / (CFC T)) samples (three periods of
// the class frequency: a start transient decays by more than 1e-10 over it); in every case at
// most N - 1, the samples that a reflection can use.
//
// Compute(in, out): out becomes a copy of in; on failure it keeps that copy. ComputeSpan (in
// ZmFilter.h) does the same on points in memory. Messages:
//   "Can't process filtering. The channel frequency class %g is not a positive number"
//   "Unknown end treatment %d", "Unknown design constant %d", "Unknown time unit %d"
//   "Can't process filtering. The step tolerance %g is not a non-negative number"
//   "Not enough points to filter" (fewer than 2 points: no sampling period)
//   "Can't process filtering. The abscissae do not increase (mean step %g)"
//   "Can't process filtering. The time step %g of interval %d differs from the mean step %g
//    by more than %g %%"
//   "Can't process filtering. The sampling rate %g Hz is lower than 10 times the channel
//    frequency class %g"
//   "Can't process filtering. The design frequency %g Hz is not below half the sampling rate
//    %g Hz"
//   "Not enough memory to filter"
// NaN and infinite values spread to every later output of the forward pass and so, after the
// backward pass, to the whole curve. in and out may be the same array; on a refusal out is the
// copy of in (filtering in place, the steps are all tested before the curve is touched).
// Cost: the two passes of the recursion, the steps tested inside the forward pass (filtering
// in place, in a pass of their own before it);
// 2L doubles of work space, plus N in the float class filtering in place (the
// double class keeps the forward results in out's values, the float class filtering into
// another array in the eight bytes of each out point); no allocation per sample. Timings
// next to scipy's sosfiltfilt and the fixed CFC 60 kernel are in bench/README.md.
// A float abscissa holds a 10 kHz step only to 7.6e-6 s near 100 s: long float records need a
// larger step tolerance (or the double class).
//
// By name: CFC 60, seconds, J211 constant, reflection, automatic L, 1 % tolerance.
#include <cstdint>

#include "zemcalc/ZmFilter.h"

// How the CFC filter continues a curve beyond its ends (see above).
enum ZmFilterEnds : int {
  ZmFilterEndsReflection = 0,
  ZmFilterEndsMirror = 1,
  ZmFilterEndsConstant = 2,
  ZmFilterEndsNone = 3
};

// The constant k between the class and the design frequency k * CFC.
enum ZmCFCDesign : int {
  ZmCFCDesignJ211 = 0,    // 2.0775
  ZmCFCDesignISO6487 = 1  // 25/12
};

// The coefficients of one pass: Y = a0 X + a1 X[-1] + a2 X[-2] + b1 Y[-1] + b2 Y[-2].
struct ZmCFCCoefficients {
  double a0, a1, a2, b1, b2;
};

template <class Base>
class ZMCALC_API ZmFilterCFCButterworthT : public Base {
 public:
  using T = typename Base::Scalar;
  using Curve = typename Base::Curve;
  using Point = typename Base::Point;

  explicit ZmFilterCFCButterworthT(double cfc = 60.0, _ZmUnitTime unit = ZmUnitSecond,
                                   ZmFilterEnds ends = ZmFilterEndsReflection, ZmCFCDesign design = ZmCFCDesignJ211);

  const WbErrObj* Compute(const Curve& in, Curve& out) override;
  // The same on count points in memory (ZmFilter.h): straight from in to out, no copy.
  const WbErrObj* ComputeSpan(const Point* in, std::uint64_t count, Point* out) override;

  // The coefficients for a sampling step given in the constructor's time unit, with the
  // parameter and rate checks of Compute; c is untouched on failure.
  const WbErrObj* ComputeCoefficients(double step, ZmCFCCoefficients& c) const;

  double GetClass() const { return m_cfc; }
  void SetClass(double cfc) { m_cfc = cfc; }
  _ZmUnitTime GetTimeUnit() const { return m_unit; }
  void SetTimeUnit(_ZmUnitTime unit) { m_unit = unit; }
  ZmFilterEnds GetEnds() const { return m_ends; }
  void SetEnds(ZmFilterEnds ends) { m_ends = ends; }
  ZmCFCDesign GetDesign() const { return m_design; }
  void SetDesign(ZmCFCDesign design) { m_design = design; }
  // Samples added at each end; -1: automatic (see above).
  std::int64_t GetPadLength() const { return m_padLength; }
  void SetPadLength(std::int64_t samples) { m_padLength = samples; }
  double GetStepTolerance() const { return m_tolerance; }
  void SetStepTolerance(double tolerance) { m_tolerance = tolerance; }
  unsigned char GetAllowLowRate() const { return m_allowLowRate; }
  void SetAllowLowRate(unsigned char allow) { m_allowLowRate = allow; }

 private:
  const WbErrObj* CheckSettings(double& secondsPerUnit) const;
  // Tests every interval (interval i joins points i-1 and i) against the mean step.
  const WbErrObj* CheckSteps(const Point* in, std::uint64_t count, double step) const;
  // The checks of a call but the steps' and what they give: the mean step, the coefficients
  // and the samples added at each end.
  const WbErrObj* Prepare(const Point* in, std::uint64_t count, ZmCFCCoefficients& c,
                          std::uint64_t& pad, double& step) const;
  // Tests the steps and filters.
  const WbErrObj* Run(const ZmCFCCoefficients& c, std::uint64_t pad, double step, const Point* in,
                      std::uint64_t count, Point* out) const;

  double m_cfc;
  _ZmUnitTime m_unit;
  ZmFilterEnds m_ends;
  ZmCFCDesign m_design;
  std::int64_t m_padLength;
  double m_tolerance;
  unsigned char m_allowLowRate;
};

extern template class ZmFilterCFCButterworthT<ZmFilterd>;
extern template class ZmFilterCFCButterworthT<ZmFilterf>;

ZM_FILTER_CLASS(ZmFilterCFCd, ZmFilterCFCButterworthT<ZmFilterd>)
ZM_FILTER_CLASS(ZmFilterCFCf, ZmFilterCFCButterworthT<ZmFilterf>)
