// Angles with their unit: conversion factors, mixed-unit arithmetic and the float twins.
//
// Expected values (Python with numpy, f = np.float32):
//   float(f(math.pi / 180)) = 0.01745329238474369       (degrees to radians)
//   float(f(180) / f(math.pi)) = 57.2957763671875       (radians to degrees)
//   180 * 0.01745329238474369 = 3.1415926292538643
//   math.pi * 57.2957763671875 = 179.99999011687993
//   90 + (math.pi / 2) * 57.2957763671875 = 179.99999505843996
//   90 - (math.pi / 2) * 57.2957763671875 = 4.9415600358315714e-06
//   1 + 90 * 0.01745329238474369 = 2.570796314626932
//   float(f(90) * f(0.01745329238474369)) = 1.5707963705062866
//   float(f(180) * f(0.01745329238474369)) = 3.1415927410125732
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <type_traits>
#include <vector>

namespace {

constexpr double kPi = 3.141592653589793;
using Values = std::vector<double>;
using Ints = std::vector<int>;

// A mixed sum has the left operand's unit; a scalar or the other unit becomes an angle only
// explicitly, the other precision of the same unit implicitly.
static_assert(std::is_same<decltype(ZmRadiand(1) + ZmDegreed(90)), ZmRadiand>::value &&
                  std::is_same<decltype(1.0 / ZmDegreed(4)), ZmDegreed>::value &&
                  !std::is_convertible<double, ZmDegreed>::value && !std::is_convertible<ZmDegreed, ZmRadiand>::value &&
                  std::is_convertible<ZmDegreed, ZmDegreef>::value,
              "");

// A scalar is stored as it is, in the class's own unit; a mixed sum converts the right operand;
// within one unit the stored values are used, and the product of two angles is the plain product.
TEST(Angle, ConversionAndArithmeticInTheDoubleClasses) {
  using D = ZmDegreed;
  using R = ZmRadiand;
  const R quarter(kPi / 2);
  EXPECT_EQ((Values{D(1).AngleInRadians(), R(1).AngleInDegrees(), R(D(180.0)), D(R(kPi)), R(7) = D(180.0), D() = R(1.0),
                    R(7) = 2.5, R(0.1f), R(ZmRadianf(0.1f)), D()}),
            (Values{0.01745329238474369, 57.2957763671875, 3.1415926292538643, 179.99999011687993, 3.1415926292538643,
                    57.2957763671875, 2.5, 0.10000000149011612, 0.10000000149011612, 0.0}));
  EXPECT_EQ((Values{D(90) + quarter, D(90) - quarter, R(1) + D(90), D(90) += quarter, D(90) -= quarter}),
            (Values{179.99999505843996, 4.9415600358315714e-06, 2.570796314626932, 179.99999505843996,
                    4.9415600358315714e-06}));
  EXPECT_EQ((Values{D(90) * D(2), 1.0 / D(4), 2.0 * D(45), D(45) * 2.0, D(45) / 2.0, -R(1.5), D(30) + D(15) - D(50),
                    (D(30) += D(15)) -= D(50), (D(10) *= 3.0) /= 4.0}),
            (Values{180, 0.25, 90, 90, 22.5, -1.5, -5, -5, 7.5}));
  const D d10(10), d20(20);
  EXPECT_EQ((Ints{(d10 < d20), (d20 < d20), (d20 <= d20), (d20 <= d10), (d20 > d10), (d20 > d20), (d20 >= d20),
                  (d10 >= d20), (d10 == D(10.0)), (d10 == d20), (d10 != d20), (d10 != d10)}),
            (Ints{1, 0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0}));
  // Converted angles compare exactly: 180 degrees is not pi radians.
  EXPECT_EQ(R(D(180)) == R(kPi), 0);
}

// One unit between precisions: the value as it is, rounded. The double result rounded to float
// is the float result.
TEST(Angle, FloatTwinsConvertAlikeAndAgreeWithTheDoubleClasses) {
  EXPECT_EQ(
      (std::vector<float>{ZmRadianf(ZmDegreef(180.0f)), ZmDegreef(90.0f).AngleInRadians(),
                          ZmRadianf(1.0f).AngleInDegrees(), ZmDegreef(ZmDegreed(0.1)), ZmRadianf(ZmDegreed(180.0))}),
      (std::vector<float>{3.1415927410125732f, 1.5707963705062866f, 57.2957763671875f, 0.1f, 3.1415927410125732f}));
  for (double degrees : {1.0, 45.0, 90.0, 180.0, -270.0}) {
    EXPECT_EQ(float(ZmRadiand(ZmDegreed(degrees))), float(ZmRadianf(ZmDegreef(float(degrees))))) << degrees;
  }
}

}  // namespace
