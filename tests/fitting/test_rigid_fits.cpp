// The rigid move of matched sets: Eigen's umeyama on noisy sets (a mirror image included),
// a known move recovered, weights as repeated pairs, and the degenerate sets.
#include <gtest/gtest.h>

#include <cmath>

#include <zemcalc/zemcalc.h>

#include "fitting/reference_table.h"

namespace {

template <class T>
class RigidFitTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(RigidFitTwins, Scalars);

TYPED_TEST(RigidFitTwins, MatchesEigenUmeyama) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  const bool isDouble = std::is_same<T, double>::value;
  const auto records = ReadReferenceTable("rigid_fits.txt", {"rigid"});
  ASSERT_EQ(records.size(), 6u);
  for (std::size_t c = 0; c < records.size(); ++c) {
    WbArrayTempl<P> moving, fixed;
    double size = 1;
    for (const auto& row : records[c].rows) {
      moving.Add(P(row[0], row[1], row[2]));
      fixed.Add(P(row[3], row[4], row[5]));
      for (double v : row) size = std::fmax(size, std::fabs(v));
    }
    if (!isDouble && size > 2000) continue;  // float keeps too few digits of such a set
    const double tol = isDouble ? 1e-9 : 1e-4;
    const auto fit = ZmMathT<T>::FitRigid(moving, fixed);
    EXPECT_EQ(fit.quality.status, ZmFitOk) << c;
    const std::vector<double>& rot = records[c].results.at("rotation");
    const std::vector<double>& shift = records[c].results.at("translation");
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) EXPECT_NEAR(zm::Component(fit.rotation.GetRow(i), j), rot[3 * i + j], tol) << c;
      EXPECT_NEAR(zm::Component(fit.translation, i), shift[i], tol * size) << c;
    }
    EXPECT_NEAR(fit.rotation.Determinant(), 1.0, tol) << c;  // the mirror image too
  }
}

TYPED_TEST(RigidFitTwins, RecoversAMoveAndWeighsPairs) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  using V = ZmVector3T<T>;
  // A quarter turn about Z then a shift (10, 20, 30): (x, y, z) -> (10 - y, 20 + x, 30 + z).
  const WbArrayTempl<P> moving{P(0, 0, 0), P(1, 0, 0), P(0, 2, 0), P(0, 0, 3), P(1, 1, 1)};
  WbArrayTempl<P> fixed;
  for (const P& p : moving) fixed.Add(P(10 - p.y, 20 + p.x, 30 + p.z));
  const auto exact = ZmMathT<T>::FitRigid(moving, fixed);
  EXPECT_EQ(exact.quality.status, ZmFitOk);
  EXPECT_NEAR((exact.rotation * V(1, 0, 0) - V(0, 1, 0)).length(), 0.0, 1e-6);
  EXPECT_NEAR((exact.rotation * V(0, 1, 0) - V(-1, 0, 0)).length(), 0.0, 1e-6);
  EXPECT_NEAR((exact.translation - V(10, 20, 30)).length(), 0.0, 1e-5);
  EXPECT_NEAR(exact.quality.maxResidual, 0.0, 1e-5);
  // Disturbed targets: a weight of 3 on a pair is that pair given three times; weight 0 and
  // negative weights drop their pair.
  fixed[1] += V(0.3, -0.2, 0.1);
  fixed[3] += V(-0.1, 0.2, 0.4);
  WbArrayTempl<P> weightedM = moving, weightedF = fixed;
  weightedM.Add(P(5, 5, 5)), weightedF.Add(P(-50, 7, 1));
  WbArrayTempl<P> repeatedM = weightedM, repeatedF = weightedF;
  for (int k = 0; k < 2; ++k) repeatedM.Add(moving[3]), repeatedF.Add(fixed[3]);
  const WbArrayTempl<T> weights{1, 1, 1, 3, 1, 0};
  const WbArrayTempl<T> repeatedWeights{1, 1, 1, 1, 1, -2, 1, 1};
  const auto weighted = ZmMathT<T>::FitRigid(weightedM, weightedF, &weights);
  const auto repeated = ZmMathT<T>::FitRigid(repeatedM, repeatedF, &repeatedWeights);
  EXPECT_EQ(weighted.quality.count, 5);
  EXPECT_EQ(repeated.quality.count, 7);
  for (int i = 0; i < 3; ++i) {
    EXPECT_NEAR((weighted.rotation.GetRow(i) - repeated.rotation.GetRow(i)).length(), 0.0, 1e-5);
  }
  EXPECT_NEAR((weighted.translation - repeated.translation).length(), 0.0, 1e-4);
  EXPECT_GT(weighted.quality.rms, 0.01);
}

TYPED_TEST(RigidFitTwins, DegenerateSets) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  using V = ZmVector3T<T>;
  struct Row {
    WbArrayTempl<P> moving, fixed;
    ZmFitStatus status;
  };
  const Row rows[] = {
      {{P(1, 2, 3)}, {P(4, 6, 8)}, ZmFitDegenerate},                                   // a shift only
      {{P(0, 0, 0), P(1, 0, 0)}, {P(0, 0, 0), P(0, 1, 0)}, ZmFitDegenerate},           // a line
      {{P(0, 0, 0), P(1, 0, 0)}, {P(0, 0, 0)}, ZmFitBadInput},                         // sizes differ
      {{}, {}, ZmFitTooFewPoints},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const auto fit = ZmMathT<T>::FitRigid(rows[i].moving, rows[i].fixed);
    EXPECT_EQ(fit.quality.status, rows[i].status) << i;
    EXPECT_NEAR(fit.rotation.Determinant(), 1.0, 1e-6) << i;
    if (rows[i].status == ZmFitDegenerate) {
      EXPECT_NEAR(fit.quality.maxResidual, 0.0, 1e-6) << i;
    }
  }
  // One pair: the identity and the shift between the points.
  const auto one = ZmMathT<T>::FitRigid(rows[0].moving, rows[0].fixed);
  EXPECT_NEAR((one.rotation * V(1, 2, 3) - V(1, 2, 3)).length(), 0.0, 1e-6);
  EXPECT_NEAR((one.translation - V(3, 4, 5)).length(), 0.0, 1e-6);
}

}  // namespace
