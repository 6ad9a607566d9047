#include <algorithm>
#include <cmath>
#include <vector>

#include "fitting/fit_kernels.h"
#include "fitting/fits.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(fit_ellipse)

namespace zm {
namespace fit {
namespace {

// The real roots of x^3 + c2 x^2 + c1 x + c0 (one or three), each polished by Newton steps.
int RealCubicRoots(double c2, double c1, double c0, double (&roots)[3]) {
  const double shift = c2 / 3, p = c1 - c2 * shift, q = c0 - c1 * shift + 2 * shift * shift * shift;
  const double disc = q * q / 4 + p * p * p / 27;
  int count = 0;
  if (disc > 0) {
    const double s = std::sqrt(disc);
    roots[count++] = std::cbrt(-q / 2 + s) + std::cbrt(-q / 2 - s) - shift;
  } else {
    const double r = std::sqrt(std::max(0.0, -p / 3));
    const double angle = r > 0 ? std::acos(std::clamp(-q / (2 * r * r * r), -1.0, 1.0)) / 3 : 0.0;
    for (int k = 0; k < 3; ++k) roots[count++] = 2 * r * std::cos(angle - 2.0943951023931953 * k) - shift;
  }
  for (int k = 0; k < count; ++k) {
    for (int step = 0; step < 4; ++step) {
      const double x = roots[k], f = ((x + c2) * x + c1) * x + c0, d = (3 * x + 2 * c2) * x + c1;
      if (d != 0 && std::isfinite(x - f / d)) roots[k] = x - f / d;
    }
  }
  return count;
}

// An eigenvector of the 3x3 matrix m for its eigenvalue lambda: the longest cross product of
// two rows of m - lambda I.
bool EigenvectorFor(const double (&m)[3][3], double lambda, V3& out) {
  V3 rows[3];
  for (int i = 0; i < 3; ++i) rows[i] = V3(m[i][0] - (i == 0) * lambda, m[i][1] - (i == 1) * lambda, m[i][2] - (i == 2) * lambda);
  const V3 candidates[3] = {rows[0].cross(rows[1]), rows[0].cross(rows[2]), rows[1].cross(rows[2])};
  out = candidates[0];
  for (const V3& c : candidates) {
    if (c.lengthSquared() > out.lengthSquared()) out = c;
  }
  return out.lengthSquared() > 0;
}

// Distance of (u, v) (ellipse frame) to the ellipse with semi-axes a >= b (Eberly's robust
// form): on an axis in closed form, otherwise the root t of
// g(t) = (a u / (t + a^2))^2 + (b v / (t + b^2))^2 - 1, decreasing on [-b^2 + b v,
// -b^2 + |(a u, b v)|], by bisection; the nearest point is (a^2 u / (t + a^2), b^2 v / (t + b^2)).
double DistanceToEllipse(double a, double b, double u, double v) {
  u = std::fabs(u), v = std::fabs(v);
  if (v == 0) {
    if (!(u < (a * a - b * b) / a)) return std::fabs(u - a);
    const double x = a * a * u / (a * a - b * b);
    return std::hypot(x - u, b * std::sqrt(std::max(0.0, 1 - (x / a) * (x / a))));
  }
  if (u == 0) return std::fabs(v - b);
  const auto g = [&](double t) {
    const double ru = a * u / (t + a * a), rv = b * v / (t + b * b);
    return ru * ru + rv * rv - 1;
  };
  double lo = -b * b + b * v, hi = -b * b + std::hypot(a * u, b * v);
  for (int k = 0; k < 200; ++k) {
    const double mid = 0.5 * (lo + hi);
    if (mid == lo || mid == hi) break;
    (g(mid) > 0 ? lo : hi) = mid;
  }
  const double t = 0.5 * (lo + hi);
  return std::hypot(a * a * u / (t + a * a) - u, b * b * v / (t + b * b) - v);
}

}  // namespace

template <class T>
ZmEllipse2FitT<T> FitEllipse(const WbArrayTempl<ZmPoint2T<T>>& points) {
  ZmEllipse2FitT<T> fit;
  const Spread s = ComputeSpread(points);
  if (!s.finite) {
    fit.quality = Failed<T>(ZmFitBadInput, s.count);
    return fit;
  }
  if (s.count < 5) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, s.count);
    return fit;
  }
  // Centred and scaled to a unit mean square, so that the quartic sums keep their digits.
  const double scale = std::sqrt((s.cov[0][0] + s.cov[1][1]) / double(s.count));
  if (!(scale > 0)) {
    fit.quality = Failed<T>(ZmFitDegenerate, s.count);
    return fit;
  }
  // Halir and Flusser: the quadratic part a1 = (A, B, C) and the linear part a2 = (D, E, F) of
  // A x^2 + B xy + C y^2 + D x + E y + F; a2 = -S3^-1 S2^T a1, and a1 the eigenvector of
  // C1^-1 (S1 + S2 T) with 4 A C - B^2 > 0.
  double s1[3][3] = {}, s2[3][3] = {}, s3[3][3] = {};
  ForEachUsable(points, [&](const P3& p) {
    const double x = (p.x - s.mean.x) / scale, y = (p.y - s.mean.y) / scale;
    const double d1[3] = {x * x, x * y, y * y}, d2[3] = {x, y, 1};
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        s1[i][j] += d1[i] * d1[j];
        s2[i][j] += d1[i] * d2[j];
        s3[i][j] += d2[i] * d2[j];
      }
    }
  });
  double t[3][3];  // -S3^-1 S2^T, column by column
  for (int col = 0; col < 3; ++col) {
    double a[3][3], b[3] = {-s2[col][0], -s2[col][1], -s2[col][2]}, x[3];
    std::copy(&s3[0][0], &s3[0][0] + 9, &a[0][0]);
    if (!SolveDense<3>(a, b, x)) {
      fit.quality = Failed<T>(ZmFitDegenerate, s.count);
      return fit;
    }
    for (int row = 0; row < 3; ++row) t[row][col] = x[row];
  }
  double m[3][3];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      m[i][j] = s1[i][j];
      for (int k = 0; k < 3; ++k) m[i][j] += s2[i][k] * t[k][j];
    }
  }
  const double reduced[3][3] = {{m[2][0] / 2, m[2][1] / 2, m[2][2] / 2},
                                {-m[1][0], -m[1][1], -m[1][2]},
                                {m[0][0] / 2, m[0][1] / 2, m[0][2] / 2}};
  const double trace = reduced[0][0] + reduced[1][1] + reduced[2][2];
  const double minors = reduced[0][0] * reduced[1][1] - reduced[0][1] * reduced[1][0] + reduced[0][0] * reduced[2][2] -
                        reduced[0][2] * reduced[2][0] + reduced[1][1] * reduced[2][2] - reduced[1][2] * reduced[2][1];
  const double det = ZmMatrix3T<double>(reduced).Determinant();
  double roots[3];
  const int count = RealCubicRoots(-trace, minors, -det, roots);
  V3 best;
  double bestConstraint = 0;
  for (int k = 0; k < count; ++k) {
    V3 v;
    if (!EigenvectorFor(reduced, roots[k], v)) continue;
    const double constraint = (4 * v.x * v.z - v.y * v.y) / v.lengthSquared();
    if (constraint > bestConstraint) best = v, bestConstraint = constraint;
  }
  if (!(bestConstraint > 0)) {
    fit.quality = Failed<T>(ZmFitDegenerate, s.count);
    return fit;
  }
  const double qa = best.x, qb = best.y, qc = best.z;
  const double qd = t[0][0] * qa + t[0][1] * qb + t[0][2] * qc, qe = t[1][0] * qa + t[1][1] * qb + t[1][2] * qc,
               qf = t[2][0] * qa + t[2][1] * qb + t[2][2] * qc;
  // Centre: the gradient vanishes; then the quadratic form's eigenpairs give the axes.
  const double den = 4 * qa * qc - qb * qb;
  const double cx = (qb * qe - 2 * qc * qd) / den, cy = (qb * qd - 2 * qa * qe) / den;
  const double f0 = qf + (qd * cx + qe * cy) / 2;
  const double mean = (qa + qc) / 2, half = std::hypot((qa - qc) / 2, qb / 2);
  const double small = mean - (mean > 0 ? half : -half), large = mean + (mean > 0 ? half : -half);
  const double a2 = -f0 / small, b2 = -f0 / large;
  if (!(a2 > 0) || !(b2 > 0) || !std::isfinite(a2) || !std::isfinite(b2)) {
    fit.quality = Failed<T>(ZmFitDegenerate, s.count);
    return fit;
  }
  // The major axis is the eigenvector of the eigenvalue `small`: (B/2, small - A), or
  // (small - C, B/2) when that one is longer.
  V3 axis = std::fabs(small - qa) > std::fabs(small - qc) ? V3(qb / 2, small - qa, 0) : V3(small - qc, qb / 2, 0);
  if (!(axis.length() > 0)) axis = V3(1, 0, 0);
  axis = axis * (1.0 / axis.length());
  const double a = std::sqrt(a2) * scale, b = std::sqrt(b2) * scale;
  const P3 center(s.mean.x + cx * scale, s.mean.y + cy * scale, 0);
  fit.center = ZmPoint2T<T>(center.x, center.y);
  fit.majorAxis = ZmVector2T<T>(axis.x, axis.y);
  fit.a = T(a);
  fit.b = T(b);
  fit.quality = Measure<T>(points, ZmFitOk, [&](const P3& p) {
    const V3 d = p - center;
    return DistanceToEllipse(a, b, d.dot(axis), d.x * -axis.y + d.y * axis.x);
  });
  return fit;
}

template ZmEllipse2FitT<double> FitEllipse(const WbArrayTempl<ZmPoint2T<double>>&);
template ZmEllipse2FitT<float> FitEllipse(const WbArrayTempl<ZmPoint2T<float>>&);

}  // namespace fit
}  // namespace zm
