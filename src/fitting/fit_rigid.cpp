#include <cmath>

#include "fitting/fit_kernels.h"
#include "fitting/fits.h"
#include "foundation/build_info.h"

ZM_BUILD_INFO(fit_rigid)

namespace zm {
namespace fit {
namespace {

// The eigenvector of the largest eigenvalue of a symmetric 4x4 matrix, by cyclic Jacobi
// rotations (orthonormal whatever the spread of the eigenvalues). Among equal largest
// eigenvalues the first column wins, so the zero matrix gives (1, 0, 0, 0).
void LargestEigenvector4(double (&a)[4][4], double (&out)[4]) {
  double v[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
  for (int sweep = 0; sweep < 50; ++sweep) {
    double off = 0, diag = 0;
    for (int i = 0; i < 4; ++i) {
      diag += a[i][i] * a[i][i];
      for (int j = i + 1; j < 4; ++j) off += a[i][j] * a[i][j];
    }
    if (!(off > 1e-32 * diag)) break;
    for (int p = 0; p < 3; ++p) {
      for (int q = p + 1; q < 4; ++q) {
        if (a[p][q] == 0) continue;
        const double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
        const double t = (theta < 0 ? -1.0 : 1.0) / (std::fabs(theta) + std::sqrt(theta * theta + 1));
        const double c = 1 / std::sqrt(t * t + 1), s = t * c;
        for (int k = 0; k < 4; ++k) {
          const double akp = a[k][p], akq = a[k][q];
          a[k][p] = c * akp - s * akq;
          a[k][q] = s * akp + c * akq;
        }
        for (int k = 0; k < 4; ++k) {
          const double apk = a[p][k], aqk = a[q][k];
          a[p][k] = c * apk - s * aqk;
          a[q][k] = s * apk + c * aqk;
          const double vkp = v[k][p], vkq = v[k][q];
          v[k][p] = c * vkp - s * vkq;
          v[k][q] = s * vkp + c * vkq;
        }
      }
    }
  }
  int best = 0;
  for (int k = 1; k < 4; ++k) {
    if (a[k][k] > a[best][best]) best = k;
  }
  for (int k = 0; k < 4; ++k) out[k] = v[k][best];
}

// Weighted sums over the usable pairs: visit(m, f, w).
template <class T, class Visit>
std::int64_t ForEachPair(const WbArrayTempl<ZmPoint3T<T>>& moving, const WbArrayTempl<ZmPoint3T<T>>& fixed,
                         const WbArrayTempl<T>* weights, Visit visit) {
  std::int64_t n = 0;
  for (std::uint64_t k = 0; k < moving.GetSize(); ++k) {
    const double w = weights ? double(weights->GetData()[k]) : 1.0;
    if (!(w > 0) || !metric::IsUsable(moving.GetData()[k]) || !metric::IsUsable(fixed.GetData()[k])) continue;
    visit(Widen(moving.GetData()[k]), Widen(fixed.GetData()[k]), w);
    ++n;
  }
  return n;
}

}  // namespace

template <class T>
ZmRigidFitT<T> FitRigid(const WbArrayTempl<ZmPoint3T<T>>& moving, const WbArrayTempl<ZmPoint3T<T>>& fixed,
                        const WbArrayTempl<T>* weights) {
  ZmRigidFitT<T> fit;
  if (moving.GetSize() != fixed.GetSize() || (weights && weights->GetSize() != moving.GetSize())) {
    fit.quality = Failed<T>(ZmFitBadInput, 0);
    return fit;
  }
  V3 sumM(0, 0, 0), sumF(0, 0, 0);
  double sumW = 0;
  const std::int64_t n = ForEachPair(moving, fixed, weights, [&](const P3& m, const P3& f, double w) {
    sumM += V3(m) * w;
    sumF += V3(f) * w;
    sumW += w;
  });
  if (n == 0) {
    fit.quality = Failed<T>(ZmFitTooFewPoints, 0);
    return fit;
  }
  const P3 meanM(sumM * (1.0 / sumW)), meanF(sumF * (1.0 / sumW));
  if (!std::isfinite(sumW) || !IsFinite(meanM) || !IsFinite(meanF)) {
    fit.quality = Failed<T>(ZmFitBadInput, n);
    return fit;
  }
  // s[a][b] = sum w (m - meanM)_a (f - meanF)_b, and the spread of the moving points.
  double s[3][3] = {{0, 0, 0}, {0, 0, 0}, {0, 0, 0}};
  Spread spread;
  spread.mean = meanM;
  spread.count = n;
  ForEachPair(moving, fixed, weights, [&](const P3& m, const P3& f, double w) {
    const V3 dm = m - meanM, df = f - meanF;
    for (int a = 0; a < 3; ++a) {
      for (int b = 0; b < 3; ++b) {
        s[a][b] += w * Component(dm, a) * Component(df, b);
        spread.cov[a][b] += w * Component(dm, a) * Component(dm, b);
      }
    }
  });
  // Horn's matrix: its top eigenvector is the unit quaternion of the best rotation.
  double h[4][4] = {
      {s[0][0] + s[1][1] + s[2][2], s[1][2] - s[2][1], s[2][0] - s[0][2], s[0][1] - s[1][0]},
      {s[1][2] - s[2][1], s[0][0] - s[1][1] - s[2][2], s[0][1] + s[1][0], s[2][0] + s[0][2]},
      {s[2][0] - s[0][2], s[0][1] + s[1][0], -s[0][0] + s[1][1] - s[2][2], s[1][2] + s[2][1]},
      {s[0][1] - s[1][0], s[2][0] + s[0][2], s[1][2] + s[2][1], -s[0][0] - s[1][1] + s[2][2]}};
  for (const auto& row : h) {
    for (double value : row) {
      if (!std::isfinite(value)) {
        fit.quality = Failed<T>(ZmFitBadInput, n);
        return fit;
      }
    }
  }
  double q[4];
  LargestEigenvector4(h, q);
  const double w = q[0], x = q[1], y = q[2], z = q[3];
  const double r[3][3] = {{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
                          {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
                          {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}};
  const ZmMatrix3T<double> rotation(r);
  const V3 translation = V3(meanF) - V3(rotation * meanM);
  fit.rotation = ZmMatrix3T<T>(rotation);
  fit.translation = ZmVector3T<T>(translation);
  const ZmFitStatus status = Rank<T>(spread, SortedEigen(spread.cov)) < 2 ? ZmFitDegenerate : ZmFitOk;
  double sum = 0, largest = 0;
  ForEachPair(moving, fixed, weights, [&](const P3& m, const P3& f, double) {
    const double d = (rotation * m + translation - f).length();
    sum += d * d;
    largest = d > largest ? d : largest;
  });
  fit.quality.status = status;
  fit.quality.count = n;
  fit.quality.rms = T(std::sqrt(sum / double(n)));
  fit.quality.maxResidual = T(largest);
  return fit;
}

template ZmRigidFitT<double> FitRigid(const WbArrayTempl<ZmPoint3T<double>>&, const WbArrayTempl<ZmPoint3T<double>>&,
                                      const WbArrayTempl<double>*);
template ZmRigidFitT<float> FitRigid(const WbArrayTempl<ZmPoint3T<float>>&, const WbArrayTempl<ZmPoint3T<float>>&,
                                     const WbArrayTempl<float>*);

}  // namespace fit
}  // namespace zm
