#include <cmath>
#include <limits>
#include <vector>

#include "fitting/fit_kernels.h"
#include "fitting/fits.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(fit_circle)

namespace zm {
namespace fit {
namespace {

// Centred moments of 2D points: means of xx, yy, xy, xz, yz, zz with x, y taken about the
// mean and z = x^2 + y^2.
struct Moments2 {
  double meanX = 0, meanY = 0;
  std::int64_t count = 0;
  double xx = 0, yy = 0, xy = 0, xz = 0, yz = 0, zz = 0;
};

// forEach(visit) calls visit(x, y) for every point.
template <class ForEach>
Moments2 ComputeMoments(ForEach forEach) {
  Moments2 m;
  double sx = 0, sy = 0;
  forEach([&](double x, double y) {
    sx += x;
    sy += y;
    ++m.count;
  });
  if (m.count == 0) return m;
  const double inv = 1.0 / double(m.count);
  m.meanX = sx * inv;
  m.meanY = sy * inv;
  forEach([&](double x, double y) {
    const double dx = x - m.meanX, dy = y - m.meanY, z = dx * dx + dy * dy;
    m.xx += dx * dx;
    m.yy += dy * dy;
    m.xy += dx * dy;
    m.xz += dx * z;
    m.yz += dy * z;
    m.zz += z * z;
  });
  for (double* v : {&m.xx, &m.yy, &m.xy, &m.xz, &m.yz, &m.zz}) *v *= inv;
  return m;
}

// The algebraic fits as one generalised eigenproblem M A = eta N A on the centred moment
// matrix M of A z + B x + C y + D = 0. Eliminating B, C and D leaves the quartic
//   P(eta) = Q(eta) DET(eta) - R(eta),
//   DET = (xx - eta)(yy - eta) - xy^2,   Q = zz - n11 eta - (Mz + k eta)^2,   Mz = xx + yy,
//   R = xz^2 (yy - eta) + yz^2 (xx - eta) - 2 xz yz xy,
// with (n11, k) = (4 Mz, 0) for Taubin, (0, 2) for Pratt and (8 Mz, -2) for Hyper; Kasa is
// eta = 0. With eta its smallest non-negative root, the centre (relative to the mean) is
//   ((xz (yy - eta) - yz xy) / (2 DET), (yz (xx - eta) - xz xy) / (2 DET))
// and r^2 = |centre|^2 + Mz + k eta. False when the points are collinear or the circle
// degenerates into a line.
template <class T>
bool SolveAlgebraic(const Moments2& m, ZmCircleFitMethod method, double& cx, double& cy, double& r) {
  const double mz = m.xx + m.yy, cov = m.xx * m.yy - m.xy * m.xy;
  const double tiny = 16.0 * double(std::numeric_limits<T>::epsilon());
  if (!(cov > tiny * tiny * mz * mz)) return false;
  double n11 = 0, k = 0;
  if (method == ZmCircleFitTaubin) n11 = 4 * mz;
  if (method == ZmCircleFitPratt) k = 2;
  if (method == ZmCircleFitHyper) n11 = 8 * mz, k = -2;
  double eta = 0;
  if (method != ZmCircleFitKasa) {
    const double q[3] = {m.zz - mz * mz, -n11 - 2 * k * mz, -k * k};
    const double d[3] = {cov, -mz, 1};
    const double rr[2] = {m.xz * m.xz * m.yy + m.yz * m.yz * m.xx - 2 * m.xz * m.yz * m.xy, -(m.xz * m.xz + m.yz * m.yz)};
    double p[5] = {-rr[0], -rr[1], 0, 0, 0};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) p[i + j] += q[i] * d[j];
    }
    const auto value = [&p](double x) { return p[0] + x * (p[1] + x * (p[2] + x * (p[3] + x * p[4]))); };
    const auto slope = [&p](double x) { return p[1] + x * (2 * p[2] + x * (3 * p[3] + x * 4 * p[4])); };
    double y = value(0);
    for (int iteration = 0; iteration < 100; ++iteration) {
      const double next = eta - y / slope(eta);
      if (!std::isfinite(next) || next == eta) break;
      const double yNext = value(next);
      if (!(std::fabs(yNext) < std::fabs(y))) break;
      eta = next;
      y = yNext;
    }
  }
  const double det = eta * eta - eta * mz + cov;
  cx = (m.xz * (m.yy - eta) - m.yz * m.xy) / (2 * det);
  cy = (m.yz * (m.xx - eta) - m.xz * m.xy) / (2 * det);
  const double r2 = cx * cx + cy * cy + mz + k * eta;
  r = std::sqrt(r2);
  return r2 > 0 && std::isfinite(r) && r <= 1e8 * std::sqrt(mz);
}

// The geometric fit of a circle (D = 2, z ignored) or a sphere (D = 3): parameters the centre
// and the radius, residual |p - c| - r.
template <int D>
struct BallModel {
  const std::vector<P3>* points;
  double p[D + 1];  // centre, then radius

  double Normal(double (&jtj)[D + 1][D + 1], double (&jtr)[D + 1]) const {
    for (int i = 0; i <= D; ++i) {
      jtr[i] = 0;
      for (int j = 0; j <= D; ++j) jtj[i][j] = 0;
    }
    double cost = 0;
    for (const P3& q : *points) {
      double g[D + 1];
      const double res = Residual(q, g);
      cost += res * res;
      for (int i = 0; i <= D; ++i) {
        jtr[i] += g[i] * res;
        for (int j = 0; j <= D; ++j) jtj[i][j] += g[i] * g[j];
      }
    }
    return cost;
  }
  double Cost() const {
    double cost = 0, g[D + 1];
    for (const P3& q : *points) {
      const double res = Residual(q, g);
      cost += res * res;
    }
    return cost;
  }
  BallModel Moved(const double (&step)[D + 1]) const {
    BallModel moved = *this;
    for (int i = 0; i <= D; ++i) moved.p[i] += step[i];
    return moved;
  }
  // The residual and its gradient; a point at the centre has no direction and gets none.
  double Residual(const P3& q, double (&g)[D + 1]) const {
    double delta[D], d2 = 0;
    for (int i = 0; i < D; ++i) {
      delta[i] = Component(q, i) - p[i];
      d2 += delta[i] * delta[i];
    }
    const double d = std::sqrt(d2);
    for (int i = 0; i < D; ++i) g[i] = d > 0 ? -delta[i] / d : 0.0;
    g[D] = -1;
    return d - p[D];
  }
};

// The algebraic (or geometric) circle of the 2D points with moments m that forEach visits
// (again, for the geometric fit). Writes the centre and radius and returns the status.
template <class T, class ForEach>
ZmFitStatus CircleIn2D(const Moments2& m, ForEach forEach, ZmCircleFitMethod method, double& cx, double& cy,
                       double& r) {
  const ZmCircleFitMethod algebraic = method == ZmCircleFitGeometric ? ZmCircleFitTaubin : method;
  if (!SolveAlgebraic<T>(m, algebraic, cx, cy, r)) return ZmFitDegenerate;
  cx += m.meanX;
  cy += m.meanY;
  if (method != ZmCircleFitGeometric) return ZmFitOk;
  std::vector<P3> points;
  points.reserve(std::size_t(m.count));
  forEach([&points](double x, double y) { points.emplace_back(x, y, 0.0); });
  BallModel<2> model{&points, {cx, cy, r}};
  const bool converged = LevenbergMarquardt<3>(model);
  cx = model.p[0], cy = model.p[1], r = std::fabs(model.p[2]);
  return converged ? ZmFitOk : ZmFitNoConvergence;
}

bool IsMethod(ZmCircleFitMethod method) { return method >= ZmCircleFitKasa && method <= ZmCircleFitGeometric; }

}  // namespace

template <class T>
ZmCircle2FitT<T> FitCircle2(const WbArrayTempl<ZmPoint2T<T>>& points, ZmCircleFitMethod method) {
  ZmCircle2FitT<T> fit;
  // The moments' count and finiteness stand for the usable points' (an infinite coordinate
  // turns its mean into an infinity or a NaN).
  const auto forEach = [&points](auto visit) { ForEachUsable(points, [&](const P3& p) { visit(p.x, p.y); }); };
  const Moments2 m = ComputeMoments(forEach);
  if (!IsMethod(method) || !std::isfinite(m.meanX + m.meanY + m.zz)) {
    fit.quality = Failed<T>(ZmFitBadInput, m.count);
    return fit;
  }
  if (m.count < 3) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, m.count);
    return fit;
  }
  double cx = 0, cy = 0, r = 0;
  const ZmFitStatus status = CircleIn2D<T>(m, forEach, method, cx, cy, r);
  if (status == ZmFitDegenerate) {
    fit.quality = Failed<T>(status, m.count);
    return fit;
  }
  fit.center = ZmPoint2T<T>(cx, cy);
  fit.radius = T(r);
  fit.quality = Measure<T>(points, status, [&](const P3& p) {
    const double dx = p.x - cx, dy = p.y - cy;
    return std::sqrt(dx * dx + dy * dy) - r;
  });
  return fit;
}

template <class T>
ZmCircle3FitT<T> FitCircle3(const WbArrayTempl<ZmPoint3T<T>>& points, ZmCircleFitMethod method) {
  ZmCircle3FitT<T> fit;
  const Spread s = ComputeSpread(points);
  if (!s.finite || !IsMethod(method)) {
    fit.quality = Failed<T>(ZmFitBadInput, s.count);
    return fit;
  }
  if (s.count < 3) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, s.count);
    return fit;
  }
  const Eigen3 e = SortedEigen(s.cov);
  if (Rank<T>(s, e) < 2) {
    fit.quality = Failed<T>(ZmFitDegenerate, s.count);
    return fit;
  }
  // In-plane axes u (largest spread) and v = n x u, so that (u, v, n) is right-handed.
  const V3 n = e.vectors[0], u = e.vectors[2], v = n.cross(u);
  const auto forEach = [&](auto visit) {
    ForEachUsable(points, [&](const P3& p) { visit((p - s.mean).dot(u), (p - s.mean).dot(v)); });
  };
  double cx = 0, cy = 0, r = 0;
  const ZmFitStatus status = CircleIn2D<T>(ComputeMoments(forEach), forEach, method, cx, cy, r);
  if (status == ZmFitDegenerate) {
    fit.quality = Failed<T>(status, s.count);
    return fit;
  }
  const P3 center = s.mean + u * cx + v * cy;
  fit.center = ZmPoint3T<T>(center);
  fit.normal = ZmVector3T<T>(n);
  fit.radius = T(r);
  fit.quality = Measure<T>(points, status, [&](const P3& p) {
    const V3 d = p - center;
    const double h = d.dot(n);
    const double across = (d - n * h).length() - r;
    return std::sqrt(h * h + across * across);
  });
  return fit;
}

template <class T>
ZmSphereFitT<T> FitSphere(const WbArrayTempl<ZmPoint3T<T>>& points, bool geometric) {
  ZmSphereFitT<T> fit;
  const Spread s = ComputeSpread(points);
  if (!s.finite) {
    fit.quality = Failed<T>(ZmFitBadInput, s.count);
    return fit;
  }
  if (s.count < 4) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, s.count);
    return fit;
  }
  if (Rank<T>(s, SortedEigen(s.cov)) < 3) {
    fit.quality = Failed<T>(ZmFitDegenerate, s.count);
    return fit;
  }
  // Kasa in 3D: with x about the mean and z = |x|^2, the centre solves cov c = (sum x z) / 2
  // and r^2 = |c|^2 + mean z.
  double a[3][3], b[3] = {0, 0, 0}, c[3], sumZ = 0;
  ForEachUsable(points, [&](const P3& p) {
    const V3 d = p - s.mean;
    const double z = d.lengthSquared();
    for (int i = 0; i < 3; ++i) b[i] += 0.5 * Component(d, i) * z;
    sumZ += z;
  });
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) a[i][j] = s.cov[i][j];
  }
  if (!SolveDense<3>(a, b, c)) {
    fit.quality = Failed<T>(ZmFitDegenerate, s.count);
    return fit;
  }
  P3 center = s.mean + V3(c[0], c[1], c[2]);
  double r = std::sqrt(c[0] * c[0] + c[1] * c[1] + c[2] * c[2] + sumZ / double(s.count));
  bool converged = true;
  if (geometric) {
    std::vector<P3> usable;
    CollectUsable(points, usable);
    BallModel<3> model{&usable, {center.x, center.y, center.z, r}};
    converged = LevenbergMarquardt<4>(model);
    center = P3(model.p[0], model.p[1], model.p[2]);
    r = std::fabs(model.p[3]);
  }
  fit.center = ZmPoint3T<T>(center);
  fit.radius = T(r);
  fit.quality = Measure<T>(points, converged ? ZmFitOk : ZmFitNoConvergence,
                           [&](const P3& p) { return (p - center).length() - r; });
  return fit;
}

template ZmCircle2FitT<double> FitCircle2(const WbArrayTempl<ZmPoint2T<double>>&, ZmCircleFitMethod);
template ZmCircle2FitT<float> FitCircle2(const WbArrayTempl<ZmPoint2T<float>>&, ZmCircleFitMethod);
template ZmCircle3FitT<double> FitCircle3(const WbArrayTempl<ZmPoint3T<double>>&, ZmCircleFitMethod);
template ZmCircle3FitT<float> FitCircle3(const WbArrayTempl<ZmPoint3T<float>>&, ZmCircleFitMethod);
template ZmSphereFitT<double> FitSphere(const WbArrayTempl<ZmPoint3T<double>>&, bool);
template ZmSphereFitT<float> FitSphere(const WbArrayTempl<ZmPoint3T<float>>&, bool);

}  // namespace fit
}  // namespace zm
