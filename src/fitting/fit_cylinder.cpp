#include <cmath>
#include <vector>

#include "fitting/fit_kernels.h"
#include "fitting/fits.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(fit_cylinder)

namespace zm {
namespace fit {
namespace {

// The axis through c along the unit d, with (u, v, d) orthonormal, and the radius. The five
// parameters of a step are the shifts of c along u and v, the tilts of d towards u and v, and
// the change of radius; after a step u and v are re-orthogonalised to the new axis.
struct CylinderModel {
  const std::vector<P3>* points;
  P3 c;
  V3 d, u, v;
  double r;

  double Normal(double (&jtj)[5][5], double (&jtr)[5]) const {
    for (int i = 0; i < 5; ++i) {
      jtr[i] = 0;
      for (int j = 0; j < 5; ++j) jtj[i][j] = 0;
    }
    double cost = 0;
    for (const P3& p : *points) {
      double g[5];
      const double res = Residual(p, &g);
      cost += res * res;
      for (int i = 0; i < 5; ++i) {
        jtr[i] += g[i] * res;
        for (int j = 0; j < 5; ++j) jtj[i][j] += g[i] * g[j];
      }
    }
    return cost;
  }
  double Cost() const {
    double cost = 0;
    for (const P3& p : *points) {
      const double res = Residual(p, nullptr);
      cost += res * res;
    }
    return cost;
  }
  CylinderModel Moved(const double (&step)[5]) const {
    CylinderModel m = *this;
    m.c = c + u * step[0] + v * step[1];
    const V3 tilted = d + u * step[2] + v * step[3];
    m.d = tilted * (1.0 / tilted.length());
    const V3 uOff = u - m.d * u.dot(m.d);
    m.u = uOff * (1.0 / uOff.length());
    m.v = m.d.cross(m.u);
    m.r = r + step[4];
    return m;
  }
  // Distance to the axis minus r; with w the offset of p from the axis and h = (p - c).d, the
  // gradient is -(w.u, w.v, h w.u, h w.v) / |w| and -1 for the radius.
  double Residual(const P3& p, double (*g)[5]) const {
    const V3 q = p - c;
    const double h = q.dot(d);
    const V3 w = q - d * h;
    const double dist = w.length();
    if (g) {
      const double wu = dist > 0 ? w.dot(u) / dist : 0.0, wv = dist > 0 ? w.dot(v) / dist : 0.0;
      const double grad[5] = {-wu, -wv, -h * wu, -h * wv, -1};
      for (int i = 0; i < 5; ++i) (*g)[i] = grad[i];
    }
    return dist - r;
  }
};

// The seed with axis along `axis`: the Taubin circle of the points projected across it.
bool Seed(const std::vector<P3>& points, const P3& mean, const V3& axis, CylinderModel& model) {
  const V3 u = AnyOrthogonal(axis), v = axis.cross(u);
  WbArrayTempl<ZmPoint2T<double>> across;
  across.SetSize(points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    across.GetData()[i] = ZmPoint2T<double>((points[i] - mean).dot(u), (points[i] - mean).dot(v));
  }
  const ZmCircle2FitT<double> circle = FitCircle2<double>(across, ZmCircleFitTaubin);
  if (circle.quality.status != ZmFitOk) return false;
  model = CylinderModel{&points, mean + u * circle.center.x + v * circle.center.y, axis, u, v, circle.radius};
  return true;
}

}  // namespace

template <class T>
ZmCylinderFitT<T> FitCylinder(const WbArrayTempl<ZmPoint3T<T>>& points) {
  ZmCylinderFitT<T> fit;
  const Spread s = ComputeSpread(points);
  if (!s.finite) {
    fit.quality = Failed<T>(ZmFitBadInput, s.count);
    return fit;
  }
  if (s.count < 5) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, s.count);
    return fit;
  }
  const Eigen3 e = SortedEigen(s.cov);
  std::vector<P3> usable;
  CollectUsable(points, usable);
  CylinderModel best{};
  double bestCost = -1;
  for (const V3& axis : e.vectors) {
    CylinderModel seed{};
    if (Rank<T>(s, e) < 2 || !Seed(usable, s.mean, axis, seed)) continue;
    const double cost = seed.Cost();
    if (bestCost < 0 || cost < bestCost) best = seed, bestCost = cost;
  }
  if (bestCost < 0) {
    fit.quality = Failed<T>(ZmFitDegenerate, s.count);
    return fit;
  }
  const bool converged = LevenbergMarquardt<5>(best);
  const P3 foot = best.c + best.d * (s.mean - best.c).dot(best.d);
  fit.point = ZmPoint3T<T>(foot);
  fit.direction = ZmVector3T<T>(best.d);
  fit.radius = T(std::fabs(best.r));
  const double r = std::fabs(best.r);
  fit.quality = Measure<T>(points, converged ? ZmFitOk : ZmFitNoConvergence, [&](const P3& p) {
    const V3 q = p - foot;
    return (q - best.d * q.dot(best.d)).length() - r;
  });
  return fit;
}

template ZmCylinderFitT<double> FitCylinder(const WbArrayTempl<ZmPoint3T<double>>&);
template ZmCylinderFitT<float> FitCylinder(const WbArrayTempl<ZmPoint3T<float>>&);

}  // namespace fit
}  // namespace zm
