// Box and mean of point clouds: an empty box's float limits, whole points, the sum times 1/n.
#include "math_test_support.h"

using namespace math_test;

namespace {

MATH_TWIN_SUITE(CloudTwins);

TYPED_TEST(CloudTwins, CartesianBoxOfWholePointsAndTheMeanTimesTheReciprocalCount) {
  MATH_TWIN_TYPES;
  const T floatMax = T(3.4028234663852886e38);
  T box[6] = {};
  M::CartesianBox(WbArrayTempl<T>{}, box);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(box[i], i % 2 ? -floatMax : floatMax) << i;
  // Two whole points, a trailing 9 that is none, and a point holding NaN that is skipped.
  M::CartesianBox(WbArrayTempl<T>{1, 5, -2, kNan<T>, 100, 100, 3, -1, 4, 9}, box);
  ExpectRows<T>({{box[0], 1}, {box[1], 3}, {box[2], -1}, {box[3], 5}, {box[4], -2}, {box[5], 4}});
  M::CartesianBox(WbArrayTempl<T>{1, 2, 3}, nullptr);  // nowhere to write: nothing happens

  // Sums 7 and 5 over 3 points, times 1/3: 7/3 would be 2.3333333333333335 in double.
  const P expected(ByTwin<T>(2.333333333333333, 2.3333334922790527), ByTwin<T>(1.6666666666666665, 1.6666667461395264),
                   T(0));
  // Unusable points are left out of the mean; none left gives the invalid point.
  const P invalid = InvalidPoint<T>();
  ExpectRows<P>({{M::ComputeCenter(WbArrayTempl<T>{0, 0, 0, 1, 2, 0, 6, 3, 0}), expected},
                 {M::ComputeCenter(WbArrayTempl<P>{P(0, 0, 0), P(1, 2, 0), P(6, 3, 0)}), expected},
                 {M::ComputeCenter(WbArrayTempl<T>{1, 2}), invalid},
                 {M::ComputeCenter(WbArrayTempl<P>{}), invalid},
                 {M::ComputeCenter(WbArrayTempl<P>{invalid}), invalid},
                 {M::ComputeCenter(WbArrayTempl<P>{P(2, 2, 2), invalid, P(4, 0, 2)}), P(3, 1, 2)}});
  // The mean, not the centre of the box: (0, 1, 10) on x give 11/3.
  EXPECT_NEAR(M::ComputeCenter(WbArrayTempl<P>{P(0, 0, 0), P(1, 0, 0), P(10, 0, 0)}).x, 11.0 / 3.0, 1e-6);
}

}  // namespace
