#pragma once

// Signal filters: a filter object is configured once and then turns an input curve (x the
// abscissa, usually time, y the value) into an output curve of the same points with filtered
// values. Every filter exists as a double class (suffix d) and a float class (suffix f) that
// share one implementation: the logic lives in the class templates below, and each named class
// (ZmFilterMAd, ZmFilterMVAf ...) only adds its own runtime-class record, named after the
// class, so that it can be created by name through WbRuntimeClass::CreateObject.
//
// This header: the framework (ZmFilterd, the Extrapolation choice), the symmetric-kernel filters
// ZmFilterMAd, ZmFilterMVAd, ZmFilterMVAWeightedd and ZmFilterCosd, and the sliding-window
// average ZmFilterSWAd for unevenly sampled curves. The fixed kernels (CFC 60, 180, 600 at
// 10 kHz, FIRF16) are in ZmFilterFixed.h, the CFC filter at any sampling rate in ZmFilterCFC.h.
//
// --- Symmetric kernels (ZmFilterMAd and every class derived from it)
//
// A kernel of n taps (h = n / 2) is stored as its half: coefficient k (k = 0 .. h-1) weighs the
// pair of samples k places in from the two ends of the n-sample window, coefficient 0 the
// outermost pair; for odd n one more coefficient, the centre weight, comes last. With the
// curve's values in a work buffer b (h padded values, the N values, h padded values):
//     out[j] = sum over k = 0 .. h-1 of (b[j+k] + b[j+n-1-k]) * c[k]   (+ b[j+h] * c[h] for odd n)
// summed from 0 in that order, the centre term last. For odd n the window is centred on sample
// j; for even n it spans in[j-h] .. in[j+h-1], half a sample early. The kernel loop is
// vectorised across output positions (each lane a different j, the processor's vector width
// chosen at run time), never with fused multiply-adds, so every processor gives the same bits
// as the plain loop written above.
//
// Padding (Extrapolation), with y0 = in[0], y1 = in[1], A = in[N-2], B = in[N-1], i = 0 .. h-1:
//   0 zeros:      b[i] = b[h+N+i] = 0.
//   1 constant:   b[i] = y0, b[h+N+i] = B.
//   2 linear:     b[i] = (y1 - y0)*i + (h+1)*y0 - h*y1, the line through the first two samples;
//                 b[h+N+i] = (B - A)*i + (h+N-1)*A - (h+N-2)*B. The right-hand value is the line
//                 through the last two samples evaluated at buffer position i, not h+N+i: it does
//                 not continue the line (y = x is not straight at its right end after filtering).
//                 This is the established behaviour of the filter and is kept on purpose. A
//                 one-point curve uses y1 = y0 and A = B (constant padding).
//   3 reflection: b[h-1-k] = 2*y0 - in[k] and b[h+N+k] = 2*B - in[N-1-k] (k = 0 .. h-1): point
//                 reflection through the end values; the first padded value is the end value.
//
// Compute(in, out):
//   1. out becomes a copy of in; on every failure below out holds that copy.
//   2. Refused filters: a kernel size below 1 or above 2^20 (1048576) taps, or a coefficient
//      array that does not hold (n+1)/2 values, fails with "Invalid filter kernel size %d". A
//      wider kernel is never stored, so constructing one takes no memory: ZmFilterMVAf(INT_MAX)
//      holds no coefficients and is refused at Compute. An extrapolation outside 0..3
//      fails with "Unknown extrapolation type %d".
//   3. When a time-step limit is set (not the invalid marker -1e32) and in has more than one
//      point, each interval i = 1 .. N-1 (numbered from 1: interval 8 joins points 7 and 8) has
//      dt = x[i] - x[i-1]; the first one below the minimum fails with "Can't process filtering.
//      The time step of interval %llu is lower than %g", above the maximum with "Can't process
//      filtering. The time step of interval %llu is higher than %g" (the interval number printed
//      as an unsigned 64-bit count, right beyond 2^31 points). A decreasing abscissa gives
//      a negative step and so the lower-than message. A NaN step compares neither lower nor
//      higher and passes: the kernel works on sample indices and never reads the abscissae.
//      Without limits any abscissae are accepted and copied unchanged.
//   4. Normalisation (normalise set): the coefficients are divided by the kernel sum
//      s = 2*(c[0] + ... + c[h-1]) (+ c[h] for odd n), when s is not 0, and the normalise flag is
//      then cleared. The stored coefficients change once, at the first call whose time steps
//      pass (also when the curve then proves too short); later calls (and copies made
//      afterwards) use exactly those coefficients, so repeated calls give identical bits. Because of this a filter
//      object with normalise set must not be used from two threads before its first call; afterwards Compute changes
//      nothing in it.
//   5. N < h fails with "Not enough points to filter" (N = h is enough). An empty curve with
//      n = 1 gives an empty output; a kernel larger than the curve works as long as N >= h.
//   6. The values are padded and filtered; the abscissae of out are those of in.
// A work buffer that cannot be allocated fails with "Not enough memory to filter", out still
// the copy (the copy itself needs memory too; when even that fails, out is left unspecified).
// NaN and infinite values propagate into every output whose window (padding included) holds
// them: a zero coefficient still gives NaN for 0 * inf.
// The f classes do all of this in single precision: coefficients, sums, limits and steps.
//
// Cost: one pass over the curve through one work buffer of about 2048 + 2n values: the time
// steps are tested, the points read and the results written block by block, the kernel applied
// per block in cache. (A curve filtered into itself has its time steps tested in a pass of its
// own first, since a refused curve must come back unchanged.) No allocation per sample. in and
// out may be the same array.
//
// --- Runtime classes and creation by name
//
// Every class below has a record WbClass<name> named after the class, GetBaseRuntimeClass()
// (the record of the base class named here: ZmFilterMVAWeightedd's is ZmFilterMVAd's) and
// GetRuntimeClass(); OnDynamicDeletion() returns 1. Creation by name takes no arguments, so a
// name-created object uses the defaults of its constructor, given with each class: seconds
// for the time unit, 3 taps for the moving averages, 5 for the cosine filter, 1e-3 wide
// centred windows for the sliding average, point reflection at the ends. ZmFilterd/f are
// abstract and ZmFilterMAd/f have no kernel: creating them by name gives null.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>
#include <wbcore/WbObject.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmUnitDim.h"

// How a curve is continued beyond its ends while a window overhangs them.
enum Extrapolation : int {
  ZmExtrapolationZeros = 0,
  ZmExtrapolationConstant = 1,
  ZmExtrapolationLinear = 2,
  ZmExtrapolationReflection = 3
};

// Declares a named filter class: its runtime record and the constructors of the template that
// holds its logic. The d and f classes of a family are two such lines over one template.
#define ZM_FILTER_CLASS(className, ...)             \
  class ZMCALC_API className : public __VA_ARGS__ { \
    using Logic = __VA_ARGS__;                      \
    WB_DECLARE_DYNAMIC(className)                   \
    using Logic::Logic;                             \
  };

// The interface of every filter of precision T.
template <class T>
class ZMCALC_API ZmFilterT : public WbObject {
 public:
  using Scalar = T;
  using Point = ZmPoint2T<T>;
  using Curve = WbArrayTempl<ZmPoint2T<T>>;
  // ZmFilterd::Extrapolation names the same enumeration.
  using Extrapolation = ::Extrapolation;

  ZmFilterT() = default;
  ZmFilterT(const ZmFilterT&) = default;
  ZmFilterT(ZmFilterT&&) = default;
  ZmFilterT& operator=(const ZmFilterT&) = default;
  ZmFilterT& operator=(ZmFilterT&&) = default;
  ~ZmFilterT() override;

  // Objects made by name may always be deleted: returns 1.
  unsigned char OnDynamicDeletion() override;
  // Filters in into out (same points, filtered values). Null on success, else the error.
  virtual const WbErrObj* Compute(const Curve& in, Curve& out) = 0;
  // Filters count points in memory (the layout of a curve's points: x, y of T, an (n, 2) array
  // of another language say) into out, which holds count points: the result and the messages
  // of Compute on a curve of those points, and on failure out holds the points of in. out may
  // be in; otherwise the two must not overlap. The CFC filter at any rate and the
  // symmetric-kernel filters read and write the memory directly; other filters go through a
  // curve (a copy in and a copy out).
  virtual const WbErrObj* ComputeSpan(const Point* in, std::uint64_t count, Point* out);
};
extern template class ZmFilterT<double>;
extern template class ZmFilterT<float>;

ZM_FILTER_CLASS(ZmFilterd, ZmFilterT<double>)
ZM_FILTER_CLASS(ZmFilterf, ZmFilterT<float>)

// The symmetric-kernel filter (rules at the top of this header). Base is ZmFilterd or ZmFilterf.
// Constructed with kernel size 0, no coefficients and no time-step limits: derived classes give
// it a kernel; on its own it refuses to filter ("Invalid filter kernel size 0").
template <class Base>
class ZMCALC_API ZmFilterMAT : public Base {
 public:
  using T = typename Base::Scalar;
  using Curve = typename Base::Curve;
  using Point = typename Base::Point;

  explicit ZmFilterMAT(unsigned char normalise = 0, Extrapolation extrapolation = ZmExtrapolationReflection);
  // The extrapolation also as its number (0 to 3; other numbers are refused at Compute).
  template <class E, zm::EnableIfIntegral<E> = 0>
  ZmFilterMAT(unsigned char normalise, E extrapolation)
      : ZmFilterMAT(normalise, static_cast<Extrapolation>(extrapolation)) {}

  const WbErrObj* Compute(const Curve& in, Curve& out) override;
  const WbErrObj* ComputeSpan(const Point* in, std::uint64_t count, Point* out) override;

  int GetKernelSize() const { return m_size; }
  // The half kernel, outermost pair first, centre last for odd sizes.
  const WbArrayTempl<T>& GetCoefficients() const { return m_coefficients; }
  // 1 until the first filtering has normalised the coefficients.
  unsigned char GetNormalise() const { return m_normalise; }
  // The admissible time steps in the abscissa's unit; -1e32 (the float marker) when not limited.
  T GetMinTimeStep() const { return m_minStep; }
  T GetMaxTimeStep() const { return m_maxStep; }
  Extrapolation GetExtrapolationType() const { return m_extrapolation; }
  void SetExtrapolationType(Extrapolation extrapolation) { m_extrapolation = extrapolation; }

 protected:
  // Limits the time step to the 10 kHz sampling, 1e-4 s +/- 50 %: 5e-5 s to 1.5e-4 s (float
  // values, widened in the double twin), converted from seconds into unit with a
  // ZmUnitConverter for the time dimension when unit is not seconds (0). When that conversion
  // cannot be prepared (a unit outside the catalogue) the limits stay in seconds.
  void SetLimitDT(_ZmUnitTime unit);
  // Sets the kernel size and sizes the coefficient array to (n+1)/2 zeros (none for n < 1, for
  // n above 2^20 taps, and when memory runs out, which Compute then refuses).
  void SetKernelSize(int n);
  // SetKernelSize(n), then the (n+1)/2 values of table as the coefficients.
  void SetKernelTable(int n, const float* table);

  int m_size;                      // taps of the full kernel
  WbArrayTempl<T> m_coefficients;  // the half kernel
  unsigned char m_normalise;       // divide by the kernel sum at the next filtering
  T m_minStep;                     // -1e32: no limit
  T m_maxStep;                     // -1e32: no limit
  Extrapolation m_extrapolation;

 private:
  const WbErrObj* CheckKernel() const;
  bool HasTimeStepLimits() const;
  // Tests the time steps of the intervals from .. to-1 (interval i joins points i-1 and i).
  const WbErrObj* CheckTimeSteps(const Point* in, std::uint64_t from, std::uint64_t to) const;
  // The coefficients divided by the kernel sum (unchanged when it is 0), into c.
  void Normalise(T* c) const;
  // Normalises, tests the time steps and the length, then writes the filtered curve into out
  // (which may be in). A failure leaves out to be restored from in, which is still intact.
  // Filters count points of source into target, or into resized (sized to count once the
  // curve is known to be long enough) when it is not null.
  const WbErrObj* Compute1D(const Point* source, std::uint64_t count, Point* target, Curve* resized);
};

extern template class ZmFilterMAT<ZmFilterd>;
extern template class ZmFilterMAT<ZmFilterf>;

ZM_FILTER_CLASS(ZmFilterMAd, ZmFilterMAT<ZmFilterd>)
ZM_FILTER_CLASS(ZmFilterMAf, ZmFilterMAT<ZmFilterf>)

// The plain moving average of n samples: normalise 0, (n+1)/2 coefficients, each 1/n computed
// in single precision (1.0f / n) and widened in the double twin, so 1/3 is 0.3333333432674408.
// n = 1 copies the curve; n < 1 and n > 2^20 are refused at Compute ("Invalid filter kernel
// size %d"), and such a filter holds no coefficients.
// By name: n = 3, point reflection.
template <class Base>
class ZMCALC_API ZmFilterMVAT : public Base {
 public:
  explicit ZmFilterMVAT(int n = 3, Extrapolation extrapolation = ZmExtrapolationReflection);
  template <class E, zm::EnableIfIntegral<E> = 0>
  ZmFilterMVAT(int n, E extrapolation) : ZmFilterMVAT(n, static_cast<Extrapolation>(extrapolation)) {}
};

extern template class ZmFilterMVAT<ZmFilterMAd>;
extern template class ZmFilterMVAT<ZmFilterMAf>;

ZM_FILTER_CLASS(ZmFilterMVAd, ZmFilterMVAT<ZmFilterMAd>)
ZM_FILTER_CLASS(ZmFilterMVAf, ZmFilterMVAT<ZmFilterMAf>)

// A weighted moving average: first the plain one of n samples; then, unless weights is empty,
// coefficient k = weights[k] while there are weights and the last weight for the remaining k
// (weights beyond the (n+1)/2 coefficients are ignored). The weights are used as given, never
// normalised: (5, {1, 2}) is the kernel 1, 2, 2, 2, 1 and multiplies a constant by 8.
// By name: n = 3, no weights (the plain average), point reflection.
template <class Base>
class ZMCALC_API ZmFilterMVAWeightedT : public Base {
 public:
  using T = typename Base::T;
  explicit ZmFilterMVAWeightedT(int n = 3, const WbArrayTempl<T>& weights = WbArrayTempl<T>(),
                                Extrapolation extrapolation = ZmExtrapolationReflection);
  template <class E, zm::EnableIfIntegral<E> = 0>
  ZmFilterMVAWeightedT(int n, const WbArrayTempl<T>& weights, E extrapolation)
      : ZmFilterMVAWeightedT(n, weights, static_cast<Extrapolation>(extrapolation)) {}
};

extern template class ZmFilterMVAWeightedT<ZmFilterMVAd>;
extern template class ZmFilterMVAWeightedT<ZmFilterMVAf>;

ZM_FILTER_CLASS(ZmFilterMVAWeightedd, ZmFilterMVAWeightedT<ZmFilterMVAd>)
ZM_FILTER_CLASS(ZmFilterMVAWeightedf, ZmFilterMVAWeightedT<ZmFilterMVAf>)

// The cosine (sine-window) filter of n taps: tap i = 0 .. n-1 sits at t = i - (n-1)/2 and weighs
// cos(pi * t / n), so coefficient k = cos(pi * (n - 1 - 2k) / (2n)) (computed in double and
// rounded to the class's precision), the centre of an odd kernel 1. Every weight is positive.
// normalise 1 (the kernel sums to 1 from the first filtering on), point reflection, no
// time-step limits. n = 3 gives 1/4, 1/2, 1/4. n < 1 is refused at Compute. By name: n = 5.
template <class Base>
class ZMCALC_API ZmFilterCosT : public Base {
 public:
  explicit ZmFilterCosT(int n = 5);
};

extern template class ZmFilterCosT<ZmFilterMAd>;
extern template class ZmFilterCosT<ZmFilterMAf>;

ZM_FILTER_CLASS(ZmFilterCosd, ZmFilterCosT<ZmFilterMAd>)
ZM_FILTER_CLASS(ZmFilterCosf, ZmFilterCosT<ZmFilterMAf>)

// The sliding-window average of a curve sampled at any abscissae. The curve is the broken line
// through its points, continued beyond its ends by the extrapolation:
//   0 zeros; 1 constant (the end values); 2 linear (the line of the end segment, slope 0 when
//   that segment has no length or the curve one point); 3 point reflection through the end
//   point, y(x0 - s) = 2*y0 - y(x0 + s) (and likewise at the right end), the reflected curve
//   taken as constant beyond its other end when the window is wider than the curve.
// Output j is the mean of that function over the window [x_j - before*width, x_j + (1 -
// before)*width]: its exact integral (trapezoids over the broken line, closed forms over the
// continuation) divided by width. before = 0.5 centres the window on the sample, 1 averages
// the past only (a causal filter), 0 the future only. A straight line stays straight with
// extrapolations 2 and 3 and a centred window; a constant stays constant except with zeros.
// Both twins integrate in double and round the mean to the class's precision.
//
// Compute(in, out): out becomes a copy of in, then on failure keeps it:
//   "Can't process filtering. The window width %g is not a positive number" (width <= 0, NaN
//   or infinite), "Can't process filtering. The window position %g is not between 0 and 1",
//   "Unknown extrapolation type %d", "Can't process filtering. The abscissa of point %llu is not
//   a finite number" (index from 0), "Can't process filtering. The abscissa decreases at
//   interval %llu" (numbered from 1 as for the time steps; equal abscissae are accepted, the
//   jump between them having no width). An empty curve gives an empty output.
// NaN or infinite values make NaN or infinite the outputs whose window (or reflected window)
// reaches a segment holding them; other outputs are unaffected.
// Cost: each output walks the segments inside its window (found by bisection), so the time is
// N * (log N + points per window); no allocation beyond the copy.
// By name: width 1e-3 (1 ms in seconds), centred, point reflection.
template <class Base>
class ZMCALC_API ZmFilterSWAT : public Base {
 public:
  using Curve = typename Base::Curve;

  explicit ZmFilterSWAT(double width = 1.0e-3, double before = 0.5);

  const WbErrObj* Compute(const Curve& in, Curve& out) override;

  double GetWidth() const { return m_width; }
  double GetBefore() const { return m_before; }
  Extrapolation GetExtrapolationType() const { return m_extrapolation; }
  void SetExtrapolationType(Extrapolation extrapolation) { m_extrapolation = extrapolation; }

 private:
  const WbErrObj* CheckCurve(const Curve& in) const;

  double m_width;
  double m_before;
  Extrapolation m_extrapolation;
};

extern template class ZmFilterSWAT<ZmFilterd>;
extern template class ZmFilterSWAT<ZmFilterf>;

ZM_FILTER_CLASS(ZmFilterSWAd, ZmFilterSWAT<ZmFilterd>)
ZM_FILTER_CLASS(ZmFilterSWAf, ZmFilterSWAT<ZmFilterf>)
