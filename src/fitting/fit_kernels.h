#pragma once

// Shared machinery of the fits: the usable points of a list seen as double 3D points, their
// spread about the mean, the sorted eigen-decomposition of a covariance, a small dense solver,
// the quality figures and a Levenberg-Marquardt loop. Every fit runs in double whatever the
// twin; the public functions round the results at the end.
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "math/metric_kernels.h"
#include "math/symmetric_eigen.h"
#include "zemcalc/ZmMathFit.h"

namespace zm {
namespace fit {

using P3 = ZmPoint3T<double>;
using V3 = ZmVector3T<double>;

inline bool IsFinite(const P3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

inline P3 Widen(const ZmPoint3T<double>& p) { return p; }
inline P3 Widen(const ZmPoint3T<float>& p) { return P3(p.x, p.y, p.z); }
template <class T>
P3 Widen(const ZmPoint2T<T>& p) {
  return P3(double(p.x), double(p.y), 0.0);
}

// Calls visit(point) for every usable point, widened to double (2D points with z = 0).
// Returns false, after visiting what came before, on the first infinite coordinate.
template <class P, class Visit>
bool ForEachUsable(const WbArrayTempl<P>& points, Visit visit) {
  for (const P& p : points) {
    if (!metric::IsUsable(p)) continue;
    const P3 q = Widen(p);
    if (!IsFinite(q)) return false;
    visit(q);
  }
  return true;
}

// The usable points, widened, in one array (for the iterative fits that pass over them often).
template <class P>
bool CollectUsable(const WbArrayTempl<P>& points, std::vector<P3>& out) {
  out.clear();
  out.reserve(points.GetSize());
  return ForEachUsable(points, [&out](const P3& p) { out.push_back(p); });
}

// Mean and covariance sum (sum of (p - mean)(p - mean)^T, not divided) of the usable points,
// in two passes so that far coordinates keep their spread.
struct Spread {
  P3 mean = P3(0, 0, 0);
  std::int64_t count = 0;
  double cov[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
  bool finite = true;
};

template <class P>
Spread ComputeSpread(const WbArrayTempl<P>& points) {
  Spread s;
  V3 sum(0, 0, 0);
  s.finite = ForEachUsable(points, [&](const P3& p) {
    sum += p;
    ++s.count;
  });
  if (!s.finite || s.count == 0) return s;
  s.mean = P3(sum * (1.0 / double(s.count)));
  ForEachUsable(points, [&](const P3& p) {
    const V3 d = p - s.mean;
    for (int i = 0; i < 3; ++i) {
      for (int j = i; j < 3; ++j) s.cov[i][j] += Component(d, i) * Component(d, j);
    }
  });
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < i; ++j) s.cov[i][j] = s.cov[j][i];
  }
  s.finite = std::isfinite(s.cov[0][0] + s.cov[1][1] + s.cov[2][2]) && IsFinite(s.mean);
  return s;
}

// Eigenpairs of a symmetric 3x3 matrix, eigenvalues ascending, eigenvectors unit.
struct Eigen3 {
  double values[3];
  V3 vectors[3];
};

inline Eigen3 SortedEigen(const double (&m)[3][3]) {
  double values[3], vectors[3][3];
  eigen::SymmetricEigen3(m, values, vectors);
  int order[3] = {0, 1, 2};
  for (int i = 0; i < 3; ++i) {
    for (int j = i + 1; j < 3; ++j) {
      if (values[order[j]] < values[order[i]]) std::swap(order[i], order[j]);
    }
  }
  Eigen3 e;
  for (int k = 0; k < 3; ++k) {
    const int c = order[k];
    e.values[k] = values[c] < 0 ? 0.0 : values[c];  // a covariance has none below 0 but by rounding
    e.vectors[k] = V3(vectors[0][c], vectors[1][c], vectors[2][c]);
  }
  return e;
}

// The shape the spread of the points leaves: 0 coincident, 1 a line, 2 a plane, 3 a volume.
// An eigenvalue counts as none when it lies within (16 eps)^2 of the largest (eps the twin's
// epsilon), and everything counts as one point when the largest is within n (16 eps m)^2, m the
// largest coordinate of the mean: spreads at the rounding level of the input.
template <class T>
int Rank(const Spread& s, const Eigen3& e) {
  const double tiny = 16.0 * double(std::numeric_limits<T>::epsilon());
  const double m = std::fmax(std::fabs(s.mean.x), std::fmax(std::fabs(s.mean.y), std::fabs(s.mean.z)));
  if (e.values[2] <= double(s.count) * (tiny * m) * (tiny * m)) return 0;
  if (e.values[1] <= tiny * tiny * e.values[2]) return 1;
  if (e.values[0] <= tiny * tiny * e.values[2]) return 2;
  return 3;
}

// 1 - small / large, 0 when large is 0 (no spread at all).
inline double QualityRatio(double small, double large) { return large > 0 ? 1.0 - small / large : 0.0; }

// A unit vector orthogonal to the unit vector n: the cross product with the global axis least
// aligned with n, normalised.
inline V3 AnyOrthogonal(const V3& n) {
  const double ax = std::fabs(n.x), ay = std::fabs(n.y), az = std::fabs(n.z);
  const V3 axis = (ax <= ay && ax <= az) ? V3(1, 0, 0) : (ay <= az ? V3(0, 1, 0) : V3(0, 0, 1));
  const V3 u = n.cross(axis);
  return u * (1.0 / u.length());
}

// Root mean square and largest of residual(point) over the usable points.
template <class T, class P, class Residual>
ZmFitQualityT<T> Measure(const WbArrayTempl<P>& points, ZmFitStatus status, Residual residual) {
  double sum = 0, largest = 0;
  std::int64_t n = 0;
  ForEachUsable(points, [&](const P3& p) {
    const double r = std::fabs(residual(p));
    sum += r * r;
    largest = r > largest ? r : largest;
    ++n;
  });
  ZmFitQualityT<T> q;
  q.status = status;
  q.count = n;
  if (n > 0 && std::isfinite(sum)) {
    q.rms = T(std::sqrt(sum / double(n)));
    q.maxResidual = T(largest);
  }
  return q;
}

// A failed fit: the status and the count, every figure the marker.
template <class T>
ZmFitQualityT<T> Failed(ZmFitStatus status, std::int64_t count) {
  ZmFitQualityT<T> q;
  q.status = status;
  q.count = count;
  return q;
}

// Solves a x = b (N x N) by Gaussian elimination with partial pivoting; false when a pivot
// vanishes against the largest entry of its column's start.
template <int N>
bool SolveDense(double (&a)[N][N], double (&b)[N], double (&x)[N]) {
  for (int col = 0; col < N; ++col) {
    int pivot = col;
    for (int r = col + 1; r < N; ++r) {
      if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) pivot = r;
    }
    if (!(std::fabs(a[pivot][col]) > 0)) return false;
    if (pivot != col) {
      for (int c = 0; c < N; ++c) std::swap(a[pivot][c], a[col][c]);
      std::swap(b[pivot], b[col]);
    }
    for (int r = col + 1; r < N; ++r) {
      const double f = a[r][col] / a[col][col];
      for (int c = col; c < N; ++c) a[r][c] -= f * a[col][c];
      b[r] -= f * b[col];
    }
  }
  for (int r = N - 1; r >= 0; --r) {
    double s = b[r];
    for (int c = r + 1; c < N; ++c) s -= a[r][c] * x[c];
    x[r] = s / a[r][r];
  }
  for (int r = 0; r < N; ++r) {
    if (!std::isfinite(x[r])) return false;
  }
  return true;
}

// Levenberg-Marquardt with Marquardt's diagonal scaling. A model offers
//   double Normal(double (&jtj)[N][N], double (&jtr)[N]) const   the cost sum r^2 and J^T J, J^T r
//   double Cost() const
//   Model Moved(const double (&step)[N]) const
// A step that lowers the cost is taken and the damping divided by 10, otherwise the damping
// grows tenfold. The loop ends (converged) when the damping no longer finds a lower cost, or
// when a nearly undamped (Gauss-Newton) step lowers it by less than one part in 1e15: near the
// minimum such a step lands on it to rounding. It gives up (not converged) after 500 steps.
template <int N, class Model>
bool LevenbergMarquardt(Model& model) {
  double lambda = 1e-3;
  double jtj[N][N], jtr[N];
  double cost = model.Normal(jtj, jtr);
  for (int evaluation = 0; evaluation < 500; ++evaluation) {
    double a[N][N], b[N], step[N];
    for (int i = 0; i < N; ++i) {
      for (int j = 0; j < N; ++j) a[i][j] = jtj[i][j];
      a[i][i] += lambda * (jtj[i][i] > 0 ? jtj[i][i] : 1.0);
      b[i] = -jtr[i];
    }
    if (SolveDense<N>(a, b, step)) {
      const Model moved = model.Moved(step);
      const double movedCost = moved.Cost();
      if (movedCost < cost) {
        const bool settled = cost - movedCost <= 1e-15 * cost && lambda <= 1e-9;
        model = moved;
        cost = model.Normal(jtj, jtr);
        lambda = lambda * 0.1 < 1e-12 ? 1e-12 : lambda * 0.1;
        if (settled) return true;
        continue;
      }
    }
    lambda *= 10;
    if (lambda > 1e12) return true;  // no step lowers the cost: a minimum to rounding
  }
  return false;
}

}  // namespace fit
}  // namespace zm
