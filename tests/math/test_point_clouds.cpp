// Bounding box and mean of point clouds: the float start values of an empty box, whole points
// only, the mean as sum times 1/n, and unusable points left out.
#include <gtest/gtest.h>

#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

constexpr double kFloatMax = 3.4028234663852886e38;

template <class T>
class CloudTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(CloudTwins, Scalars);

TYPED_TEST(CloudTwins, CartesianBoxOfWholePoints) {
  using M = ZmMathT<TypeParam>;
  using T = TypeParam;
  T box[6] = {};
  M::CartesianBox(WbArrayTempl<T>{}, box);
  for (int axis = 0; axis < 3; ++axis) {
    EXPECT_EQ(box[2 * axis], T(kFloatMax));
    EXPECT_EQ(box[2 * axis + 1], T(-kFloatMax));
  }
  // Two whole points, a trailing 9 that is none, and a point holding NaN that is skipped.
  const T nan = std::numeric_limits<T>::quiet_NaN();
  M::CartesianBox(WbArrayTempl<T>{1, 5, -2, nan, 100, 100, 3, -1, 4, 9}, box);
  const T expected[6] = {1, 3, -1, 5, -2, 4};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(box[i], expected[i]) << i;
  M::CartesianBox(WbArrayTempl<T>{1, 2, 3}, nullptr);  // nowhere to write: nothing happens
}

TYPED_TEST(CloudTwins, CenterIsTheMeanTimesTheReciprocalCount) {
  using M = ZmMathT<TypeParam>;
  using P = ZmPoint3T<TypeParam>;
  using T = TypeParam;
  // x sums to 7 and y to 5 over 3 points: 7 * (1/3) = 2.333333333333333 (7/3 would be
  // 2.3333333333333335) and 5 * (1/3) = 1.6666666666666665 in double; in float
  // 7 * (1/3) = 2.3333334922790527 and 5 * (1/3) = 1.6666667461395264.
  const bool isDouble = std::is_same<T, double>::value;
  const P expected(isDouble ? T(2.333333333333333) : T(2.3333334922790527),
                   isDouble ? T(1.6666666666666665) : T(1.6666667461395264), T(0));
  EXPECT_EQ(M::ComputeCenter(WbArrayTempl<T>{0, 0, 0, 1, 2, 0, 6, 3, 0}), expected);
  EXPECT_EQ(M::ComputeCenter(WbArrayTempl<P>{P(0, 0, 0), P(1, 2, 0), P(6, 3, 0)}), expected);
  // The mean, not the centre of the box: (0, 1, 10) on x give 11/3.
  EXPECT_NEAR(M::ComputeCenter(WbArrayTempl<P>{P(0, 0, 0), P(1, 0, 0), P(10, 0, 0)}).x, 11.0 / 3.0, 1e-6);
  const P invalid(WbCoord3DT<T>::INVALID);
  EXPECT_EQ(M::ComputeCenter(WbArrayTempl<T>{1, 2}), invalid);
  EXPECT_EQ(M::ComputeCenter(WbArrayTempl<P>{}), invalid);
  EXPECT_EQ(M::ComputeCenter(WbArrayTempl<P>{invalid}), invalid);
  // Unusable points are left out of the mean.
  EXPECT_EQ(M::ComputeCenter(WbArrayTempl<P>{P(2, 2, 2), invalid, P(4, 0, 2)}), P(3, 1, 2));
}

}  // namespace
