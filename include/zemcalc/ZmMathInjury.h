#pragma once

// Injury criteria of crash-test channels in ZmMathd / ZmMathf: the resultant of three
// channels, the head injury criterion (HIC) and the clip level exceeded for a cumulative
// duration (the "3 ms clip"). Curves are x = time, y = acceleration; each computation reads
// the curve as the broken line through its samples.
//
// Units: `units` is the unit system of the curve. Its time unit gives the abscissae (seconds
// when unset); with inG set the values are accelerations in g, else accelerations in the
// system's length / time^2, converted to m/s^2 through the unit catalogue and divided by
// g = 9.80665 m/s^2. Windows and durations are given in seconds; the times returned are in the
// curve's unit, the levels in g. Everything is computed in double, results rounded to T.
//
// Common refusals: "Not enough points to compute %s" (fewer than 2), "The time of point %d
// does not increase. Can't compute %s" (interval numbered from 1), "The value of point %d is
// not a finite number. Can't compute %s" (point from 0), "Unknown unit system. Can't compute
// %s" (a time, or without inG a length, the catalogue cannot convert), "Not enough memory to
// compute %s"; %s names the computation ("the HIC", "the clip level"). Outputs are left
// unchanged on failure.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmUnitSystem.h"

template <class T>
class ZMCALC_API ZmMathInjuryT {
 public:
  using Curve = WbArrayTempl<ZmPoint2T<T>>;

  // result[i] = (x[i].x, sqrt((x^2 + y^2) + z^2)) over the three channels' values at point i.
  // The channels must have the same point count ("The channels have different point counts
  // (%llu, %llu, %llu)") and the same abscissae within a millionth of the x channel's mean step
  // ("The abscissa of point %d differs between the channels"). result may be one of the inputs.
  static const WbErrObj* ComputeResultant(const Curve& x, const Curve& y, const Curve& z, Curve& result);

  // HIC = the maximum over sample pairs t1 < t2 with t2 - t1 <= maxWindow (seconds; 0.015 for
  // HIC15, 0.036 for HIC36; a window longer by at most a billionth counts, so that a 15 ms
  // window of a 10 kHz record is not lost to rounding) of
  //     (t2 - t1) * (mean acceleration in g over [t1, t2])^2.5,
  // the mean being the trapezoid integral of the broken line divided by t2 - t1 (seconds).
  // Only windows of positive mean count; a curve without one gives hic = 0, t1 = t2 = the
  // first abscissa. Ties go to the earliest t1, then the earliest t2. The result is exact on
  // the samples (the same as scanning every pair), found by bounding: the samples are cut in
  // blocks of 64, each pair of blocks within the window gets an upper bound, the smaller of
  // (longest span) * (highest sample)^2.5 and, for blocks apart, (largest rise of the
  // integral)^2.5 / (gap between the blocks)^1.5, and the block pairs are scanned in decreasing bound
  // until the bound falls below the best value found (for crash pulses a small share of the
  // pairs). maxWindow not positive or not finite: "The HIC window %g s is not a positive
  // number".
  static const WbErrObj* ComputeHIC(const Curve& acceleration, double maxWindow, const ZmUnitSystem& units,
                                    unsigned char inG, T& hic, T& t1, T& t2);

  // The clip level: the highest level L (in g) such that the broken line is at or above L for
  // a cumulative duration of at least `duration` seconds (0.003 for the 3 ms clip), computed
  // exactly: the time spent at or above L is piecewise linear in L, its breaks at the sample
  // values. A curve shorter than the duration fails with "The curve lasts %g s, less than the
  // clip duration %g s"; a duration not positive or not finite with "The clip duration %g s is
  // not a positive number".
  static const WbErrObj* ComputeClipLevel(const Curve& acceleration, double duration, const ZmUnitSystem& units,
                                          unsigned char inG, T& level);
};

extern template class ZmMathInjuryT<double>;
extern template class ZmMathInjuryT<float>;
