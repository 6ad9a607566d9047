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

// The boundary is inclusive, the sign of the tolerance ignored, and a NaN anywhere gives 0, even
// against an infinite tolerance. 1.5 - 1.0 is exactly 0.5 in both precisions.
TYPED_TEST(CompareTwins, BoundarySignAndNaN) {
  using T = TypeParam;
  const T below = std::nextafter(T(0.5), T(0)), nan = std::numeric_limits<T>::quiet_NaN();
  const T inf = std::numeric_limits<T>::infinity();
  const struct {
    T a, b, tolerance;
    int equal, equalAbs;
  } rows[] = {{1, 1.5, 0.5, 1, 1}, {1.5, 1, -0.5, 1, 1}, {1, 1.5, below, 0, 0}, {1, 1.5, -below, 0, 0},
              {3, 3, 0, 1, 1},     {-2, 2, 0, 0, 1},     {-2, 2.5, -0.5, 0, 1}, {2.5, -2, below, 0, 0},
              {nan, 1, inf, 0, 0}, {1, nan, inf, 0, 0},  {nan, nan, inf, 0, 0}, {1, 1, nan, 0, 0},
              {-1, 1, nan, 0, 0}};
  for (const auto& r : rows) {
    EXPECT_EQ(ZmMathT<T>::IsEqual(r.a, r.b, r.tolerance), r.equal) << r.a << " " << r.b << " " << r.tolerance;
    EXPECT_EQ(ZmMathT<T>::IsEqualAbs(r.a, r.b, r.tolerance), r.equalAbs) << r.a << " " << r.b << " " << r.tolerance;
  }
}

TEST(Compare, FloatTwinFormsTheDifferenceInFloat) {
  // 1 - (-2^-25) = 1 + 2^-25 exactly in double, which exceeds the tolerance 1; in float it
  // rounds to 1.0f (the float spacing above 1 is 2^-23), which is within it.
  const float tiny = std::ldexp(1.0f, -25);
  EXPECT_EQ(ZmMathd::IsEqual(1.0, -double(tiny), 1.0), 0);
  EXPECT_EQ(ZmMathf::IsEqual(1.0f, -tiny, 1.0f), 1);
  // |3*2^-25| - |-(1 + 2^-23)| = -(1 + 2^-25) exactly; float rounds it to -1.0f.
  const float a = 3.0f * tiny, b = -(1.0f + std::ldexp(1.0f, -23));
  EXPECT_EQ(ZmMathd::IsEqualAbs(double(a), double(b), 1.0), 0);
  EXPECT_EQ(ZmMathf::IsEqualAbs(a, b, 1.0f), 1);
}

}  // namespace
