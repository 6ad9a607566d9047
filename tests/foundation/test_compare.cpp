// Tolerance comparison of ZmMathd / ZmMathf.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <limits>

namespace {

template <class T>
class CompareTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(CompareTwins, Scalars);

TYPED_TEST(CompareTwins, BoundaryIsInclusiveAndTheToleranceSignIgnored) {
  using T = TypeParam;
  using Math = ZmMathT<T>;
  // 1.5 - 1.0 is exactly 0.5 in both precisions.
  const T below = std::nextafter(T(0.5), T(0));
  EXPECT_EQ(Math::IsEqual(T(1.0), T(1.5), T(0.5)), 1);
  EXPECT_EQ(Math::IsEqual(T(1.5), T(1.0), T(-0.5)), 1);
  EXPECT_EQ(Math::IsEqual(T(1.0), T(1.5), below), 0);
  EXPECT_EQ(Math::IsEqual(T(1.0), T(1.5), -below), 0);
  EXPECT_EQ(Math::IsEqual(T(1.0), T(1.1), T(0.1)), Math::IsEqual(T(1.0), T(1.1), T(-0.1)));
  EXPECT_EQ(Math::IsEqual(T(3.0), T(3.0), T(0)), 1);

  // Equal up to sign.
  EXPECT_EQ(Math::IsEqualAbs(T(-2.0), T(2.0), T(0)), 1);
  EXPECT_EQ(Math::IsEqual(T(-2.0), T(2.0), T(0)), 0);
  EXPECT_EQ(Math::IsEqualAbs(T(-2.0), T(2.5), T(-0.5)), 1);
  EXPECT_EQ(Math::IsEqualAbs(T(2.5), T(-2.0), below), 0);

  // A NaN anywhere gives 0, even against an infinite tolerance.
  const T nan = std::numeric_limits<T>::quiet_NaN();
  const T inf = std::numeric_limits<T>::infinity();
  EXPECT_EQ(Math::IsEqual(nan, T(1), inf), 0);
  EXPECT_EQ(Math::IsEqual(T(1), nan, inf), 0);
  EXPECT_EQ(Math::IsEqual(nan, nan, inf), 0);
  EXPECT_EQ(Math::IsEqual(T(1), T(1), nan), 0);
  EXPECT_EQ(Math::IsEqualAbs(nan, T(1), inf), 0);
  EXPECT_EQ(Math::IsEqualAbs(T(-1), T(1), nan), 0);
}

TEST(Compare, FloatTwinFormsTheDifferenceInFloat) {
  // 1 - (-2^-25) = 1 + 2^-25 exactly in double, which exceeds the tolerance 1; in float it
  // rounds to 1.0f (the float spacing above 1 is 2^-23), which is within it.
  const float tiny = std::ldexp(1.0f, -25);
  EXPECT_EQ(ZmMathd::IsEqual(1.0, -double(tiny), 1.0), 0);
  EXPECT_EQ(ZmMathf::IsEqual(1.0f, -tiny, 1.0f), 1);

  // |3*2^-25| - |-(1 + 2^-23)| = -(1 + 2^-25) exactly; float rounds it to -1.0f.
  const float a = 3.0f * tiny;
  const float b = -(1.0f + std::ldexp(1.0f, -23));
  EXPECT_EQ(ZmMathd::IsEqualAbs(double(a), double(b), 1.0), 0);
  EXPECT_EQ(ZmMathf::IsEqualAbs(a, b, 1.0f), 1);
}

}  // namespace
