// Line and plane fits: CGAL's fits and qualities on random clouds (far from the origin too),
// the float twin on the same clouds, and the stated answers on degenerate input.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

#include "fitting/reference_table.h"

namespace {

template <class T>
class LinearFitTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(LinearFitTwins, Scalars);

template <class V>
double AbsCosine(const V& a, const std::vector<double>& b) {
  return std::fabs(a.x * b[0] + a.y * b[1] + a.z * b[2]) / std::sqrt(b[0] * b[0] + b[1] * b[1] + b[2] * b[2]);
}

TYPED_TEST(LinearFitTwins, MatchesCgalOnRandomClouds) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  const bool isDouble = std::is_same<T, double>::value;
  const auto records = ReadReferenceTable("linear_fits.txt", {"cloud"});
  ASSERT_EQ(records.size(), 8u);
  for (std::size_t c = 0; c < records.size(); ++c) {
    const ReferenceRecord& r = records[c];
    WbArrayTempl<P> points;
    for (const auto& row : r.rows) points.Add(P(row[0], row[1], row[2]));
    const std::vector<double>& plane = r.results.at("plane");
    const std::vector<double>& line = r.results.at("line");
    const double size = std::fabs(plane[3]) + std::fabs(plane[4]) + std::fabs(plane[5]) + 1;
    // Float input far from the origin keeps too few digits of the spread to compare with.
    if (!isDouble && size > 100) continue;
    const double tol = isDouble ? 1e-9 : 2e-3;
    const auto pf = ZmMathT<T>::FitPlane(points);
    const auto lf = ZmMathT<T>::FitLine(points);
    EXPECT_EQ(pf.quality.status, ZmFitOk) << c;
    EXPECT_EQ(pf.quality.count, std::int64_t(r.rows.size())) << c;
    EXPECT_NEAR(AbsCosine(pf.normal, plane), 1.0, tol) << c;
    EXPECT_NEAR(AbsCosine(lf.direction, line), 1.0, tol) << c;
    EXPECT_NEAR(pf.fitQuality, plane[6], tol) << c;
    EXPECT_NEAR(lf.fitQuality, line[6], tol) << c;
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(zm::Component(pf.point, i), plane[3 + i], tol * size) << c;
    // The plane's rms is the root of the smallest eigenvalue over n: its normal's residuals.
    double sum = 0, largest = 0;
    for (const auto& row : r.rows) {
      const double d = std::fabs((row[0] - plane[3]) * plane[0] + (row[1] - plane[4]) * plane[1] +
                                 (row[2] - plane[5]) * plane[2]);
      sum += d * d;
      largest = std::fmax(largest, d);
    }
    EXPECT_NEAR(pf.quality.rms, std::sqrt(sum / double(r.rows.size())), tol * size) << c;
    EXPECT_NEAR(pf.quality.maxResidual, largest, tol * size) << c;
  }
}

TYPED_TEST(LinearFitTwins, DegenerateCloudsGiveTheStatedAnswer) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  const T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
  const P invalid(WbCoord3DT<T>::INVALID);
  struct Row {
    WbArrayTempl<P> points;
    ZmFitStatus plane, line;
    P normal, direction;  // expected up to sign; (0, 0, 0) when not checked
  };
  const Row rows[] = {
      {{}, ZmFitTooFewPoints, ZmFitTooFewPoints, P(0, 0, 0), P(0, 0, 0)},
      {{P(1, 2, 3), P(4, 5, 6)}, ZmFitTooFewPoints, ZmFitOk, P(0, 0, 0), P(1, 1, 1) * T(1 / std::sqrt(3.0))},
      // Points along X: the normal is X x (least aligned axis Y) = Z.
      {{P(0, 0, 0), P(1, 0, 0), P(3, 0, 0)}, ZmFitDegenerate, ZmFitOk, P(0, 0, 1), P(1, 0, 0)},
      {{P(5, 5, 5), P(5, 5, 5), P(5, 5, 5)}, ZmFitDegenerate, ZmFitDegenerate, P(0, 0, 1), P(1, 0, 0)},
      // NaN and marked points are skipped: what is left is the square in z = 2.
      {{P(0, 0, 2), P(nan, 0, 0), P(1, 0, 2), invalid, P(1, 1, 2), P(0, 1, 2)}, ZmFitOk, ZmFitOk, P(0, 0, 1),
       P(0, 0, 0)},
      {{P(0, 0, 0), P(1, 0, 0), P(inf, 1, 0)}, ZmFitBadInput, ZmFitBadInput, P(0, 0, 0), P(0, 0, 0)},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const auto pf = ZmMathT<T>::FitPlane(rows[i].points);
    const auto lf = ZmMathT<T>::FitLine(rows[i].points);
    EXPECT_EQ(pf.quality.status, rows[i].plane) << i;
    EXPECT_EQ(lf.quality.status, rows[i].line) << i;
    EXPECT_FALSE(std::isnan(pf.quality.rms) || std::isnan(lf.quality.rms) || std::isnan(pf.fitQuality)) << i;
    if (rows[i].normal.SquaredNorm() > 0) {
      EXPECT_NEAR(std::fabs(pf.normal.dot(ZmVector3T<T>(rows[i].normal))), 1.0, 1e-6) << i;
      EXPECT_EQ(pf.quality.rms, T(0)) << i;
    }
    if (rows[i].direction.SquaredNorm() > 0) {
      EXPECT_NEAR(std::fabs(lf.direction.dot(ZmVector3T<T>(rows[i].direction))), 1.0, 1e-6) << i;
    }
    if (rows[i].plane != ZmFitOk && rows[i].plane != ZmFitDegenerate) {
      EXPECT_EQ(pf.normal.x, zm::Invalid<T>()) << i;
    }
  }
}

TYPED_TEST(LinearFitTwins, LineInThePlane) {
  using T = TypeParam;
  using P2 = ZmPoint2T<T>;
  // (0, 1) and (2, 5) on y = 2x + 1, each moved by +-1 along the unit normal (-2, 1)/sqrt(5):
  // the fit is that line through (1, 3), every residual 1.
  const T s = T(1 / std::sqrt(5.0));
  const WbArrayTempl<P2> points{P2(0 - 2 * s, 1 + s), P2(0 + 2 * s, 1 - s), P2(2 - 2 * s, 5 + s), P2(2 + 2 * s, 5 - s)};
  const auto fit = ZmMathT<T>::FitLine(points);
  EXPECT_EQ(fit.quality.status, ZmFitOk);
  EXPECT_NEAR(std::fabs(fit.direction.x * 2 - fit.direction.y), 0.0, 1e-6);
  EXPECT_NEAR(fit.point.x, 1.0, 1e-6);
  EXPECT_NEAR(fit.point.y, 3.0, 1e-6);
  EXPECT_NEAR(fit.quality.rms, 1.0, 1e-6);
  EXPECT_NEAR(fit.quality.maxResidual, 1.0, 1e-6);
  // Covariance eigenvalues: along the line 4 points at +-sqrt(5) -> 20; across 4 at 1 -> 4.
  EXPECT_NEAR(fit.fitQuality, 1.0 - 4.0 / 20.0, 1e-6);
}

}  // namespace
