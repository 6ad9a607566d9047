#include <cmath>
#include <limits>

#include "fitting/fit_kernels.h"
#include "fitting/fits.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(fit_linear)

namespace zm {
namespace fit {
namespace {

double DistanceToLine(const P3& p, const P3& origin, const V3& direction) {
  const V3 d = p - origin;
  return (d - direction * d.dot(direction)).length();
}

}  // namespace

template <class T, class P>
ZmLineFitT<T> FitLine3(const WbArrayTempl<P>& points) {
  ZmLineFitT<T> fit;
  const Spread s = ComputeSpread(points);
  if (!s.finite) {
    fit.quality = Failed<T>(ZmFitBadInput, s.count);
    return fit;
  }
  if (s.count < 2) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, s.count);
    return fit;
  }
  const Eigen3 e = SortedEigen(s.cov);
  const bool coincident = Rank<T>(s, e) == 0;
  const V3 direction = coincident ? V3(1, 0, 0) : e.vectors[2];
  fit.point = ZmPoint3T<T>(s.mean);
  fit.direction = ZmVector3T<T>(direction);
  fit.fitQuality = coincident ? T(0) : T(QualityRatio(e.values[1], e.values[2]));
  fit.quality = Measure<T>(points, coincident ? ZmFitDegenerate : ZmFitOk,
                           [&](const P3& p) { return DistanceToLine(p, s.mean, direction); });
  return fit;
}

template <class T>
ZmPlaneFitT<T> FitPlane(const WbArrayTempl<ZmPoint3T<T>>& points) {
  ZmPlaneFitT<T> fit;
  const Spread s = ComputeSpread(points);
  if (!s.finite) {
    fit.quality = Failed<T>(ZmFitBadInput, s.count);
    return fit;
  }
  if (s.count < 3) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, s.count);
    return fit;
  }
  const Eigen3 e = SortedEigen(s.cov);
  const int rank = Rank<T>(s, e);
  const V3 normal = rank == 0 ? V3(0, 0, 1) : (rank == 1 ? AnyOrthogonal(e.vectors[2]) : e.vectors[0]);
  fit.point = ZmPoint3T<T>(s.mean);
  fit.normal = ZmVector3T<T>(normal);
  fit.fitQuality = rank < 2 ? T(0) : T(QualityRatio(e.values[0], e.values[1]));
  fit.quality = Measure<T>(points, rank < 2 ? ZmFitDegenerate : ZmFitOk,
                           [&](const P3& p) { return (p - s.mean).dot(normal); });
  return fit;
}

template ZmLineFitT<double> FitLine3<double>(const WbArrayTempl<ZmPoint3T<double>>&);
template ZmLineFitT<float> FitLine3<float>(const WbArrayTempl<ZmPoint3T<float>>&);
template ZmLineFitT<double> FitLine3<double>(const WbArrayTempl<ZmPoint2T<double>>&);
template ZmLineFitT<float> FitLine3<float>(const WbArrayTempl<ZmPoint2T<float>>&);
template ZmPlaneFitT<double> FitPlane(const WbArrayTempl<ZmPoint3T<double>>&);
template ZmPlaneFitT<float> FitPlane(const WbArrayTempl<ZmPoint3T<float>>&);

}  // namespace fit
}  // namespace zm
