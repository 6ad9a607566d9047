#pragma once

// Material-law curves of sheet-metal forming in ZmMathd / ZmMathf: fitting hardening laws to
// measured stress-strain points, sampling them into curves (x = strain, y = stress), the
// forming-limit curve after Keeler, Lankford ratios and Hill's anisotropy coefficients, and
// the uniaxial Mooney-Rivlin fit.
//
// Numbers both precisions share:
// - Where a strain is raised to a power and multiplied by a coefficient (K*eps^n, b*eps^n),
//   the power is taken with the double pow and rounded to float before the product, in
//   ZmMathd too: both twins then tabulate the same law alike.
// - The fixed samplers use 21 strains i*0.05 (the float 0.05, 0.05000000074505806 widened),
//   i = 0..20; the other constants written as float literals below are float values too.
//
// The curve of every sampler is resized to its point count and overwritten. Bad input never
// loops or allocates without bound: see ComputeHollomonCurvePoints.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>

#include <cstdint>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"

template <class T>
class ZMCALC_API ZmMathMaterialT {
 public:
  using Point2 = ZmPoint2T<T>;
  using Curve = WbArrayTempl<ZmPoint2T<T>>;

  // Largest curve ComputeHollomonCurvePoints builds; a law that needs more points (a tiny step,
  // or a cap that the law never reaches) is refused with 0.
  static constexpr std::uint64_t MAX_HOLLOMON_POINTS = 1000000;

  // sigma = K*eps^n fitted by least squares of ln(sigma) on ln(eps). Candidates are the points
  // from index 2 on (the first two never count) with lower <= x <= last x, lower being 0.1f or
  // the x of the last point but one when that is smaller. Needs 3 candidates with distinct
  // abscissas, else 0. K is then re-anchored on the candidate with the greatest strain:
  // K = sigma / eps^n there (the power rounded to float). 0 for count < 3 or a null pts.
  static unsigned char ComputeHollomonCoeff(const Point2* pts, int count, T& K, T& n);
  // sigma = K*(eps0 + eps)^n: the Hollomon fit, then lastStress = the last point's stress and
  // eps0 = (y0 / K)^(1/n) - x0 from the first point. 0 when the fit fails or n = 0 (lastStress
  // is already written then).
  static unsigned char ComputeKrupkowskyCoeff(const Point2* pts, int count, T& K, T& n, T& eps0, T& lastStress);

  // Plastic strain against stress of a Hollomon law with a yield plateau and a cap. The strains
  // i*step run up to 1, or, when maxStress > K, to the first i*step past 1/step at which
  // K*(i*step)^n >= maxStress. Point 0 is (0, yieldStress); point i holds
  // (eps - sigma/young, sigma) with sigma = K*eps^n raised to yieldStress, or lowered to
  // maxStress when maxStress > yieldStress. The curve is emptied first; 0 (curve empty) when
  // step is not > 0 (NaN included), fewer than 2 points result, young <= 0, or more than
  // MAX_HOLLOMON_POINTS would be needed.
  static unsigned char ComputeHollomonCurvePoints(Curve& curve, T K, T n, T yieldStress, T maxStress, T step, T young);
  // 21 points (eps, K*(eps + eps0)^n), capped at maxStress when maxStress > 0.
  static unsigned char ComputeKrupkowskyCurvePoints(Curve& curve, T K, T n, T maxStress, T eps0);
  // 21 points (eps, b*eps^n + a), capped at maxStress when maxStress > 0.
  static unsigned char ComputePowerCurvePoints(Curve& curve, T a, T b, T n, T maxStress);
  // 21 points (eps, (1 - exp(-rate*eps))*amplitude + y0) of a saturating law (no float
  // rounding here), capped at maxStress when maxStress > 0.
  static unsigned char ComputeKinematicCurvePoints(Curve& curve, T y0, T rate, T amplitude, T maxStress);
  // Forming-limit curve in true strains, x = minor, y = major, 180 points. FLD0 (percent) =
  // 23 + 14.6f*thickness, scaled by n/0.21f when n < 0.21f (never above). Points 0..79, for
  // minor engineering strains -80..-1 %: the line y = ln(1 + FLD0/100) - x. Points 80..179, for
  // minor 0..99 %: major = (1 - exp(-0.05838*k))*18 + FLD0, y = ln(1 + major/100) while
  // major >= k, else y = x (the curve never crosses the line major = minor).
  static unsigned char ComputeKeelerCurvePoints(Curve& curve, T thickness, T n);

  // Hill 1948 coefficients from Lankford ratios: G = 2/(r0+1), F = 2*r0/((r0+1)*r90),
  // N = (2*r45+1)*(r0+r90)/((r0+1)*r90). 0 when r0 + 1 = 0 (nothing written) or
  // (r0+1)*r90 = 0 (G already written).
  static unsigned char ComputeHill3DCoeff(T r0, T r45, T r90, T& F, T& G, T& N);
  // The inverse: r0 = 2/G - 1, r90 = (2-G)/F, r45 = (2-G)*N/(2G - G^2 + 2F - FG) - 0.5. 0, with
  // nothing written, when F = 0 or (G+1)^2 - (2-G)*F - 1 = 0.
  static unsigned char ComputeLankfordCoeff(T F, T G, T N, T& r0, T& r45, T& r90);
  // Uniaxial Mooney-Rivlin fit, x = engineering strain in percent, y = engineering stress:
  // with lambda = 1 + x*0.01f and t = 1/lambda + 1e-7f (which keeps lambda = 1 away from a
  // zero denominator), r = (y/2)/(1/t - t^2) is a straight line c10 + c01*t fitted by least
  // squares. Errors: "Error while computing the coefficients : 2 points (at least) are
  // mandatory", "Error while computing the coefficients : division by 0" (lambda or t exactly
  // 0, or a zero covariance of t and r).
  static const WbErrObj* ComputeMoonleyRivlinCoefficientsFromPoints(const Curve& pts, T& c10, T& c01);
};

extern template class ZmMathMaterialT<double>;
extern template class ZmMathMaterialT<float>;
