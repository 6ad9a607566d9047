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
#include <type_traits>
#include <vector>

#include "foundation/foundation_test_support.h"

namespace {

using namespace foundation_test;

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
  ExpectRows<double>({{D(1.0).AngleInRadians(), 0.01745329238474369},
                      {R(1.0).AngleInDegrees(), 57.2957763671875},
                      {R(D(180.0)), 3.1415926292538643},
                      {D(R(kPi)), 179.99999011687993},
                      {R(7.0) = D(180.0), 3.1415926292538643},
                      {D() = R(1.0), 57.2957763671875},
                      {R(7.0) = 2.5, 2.5},
                      {R(0.1f), 0.10000000149011612},
                      {R(ZmRadianf(0.1f)), 0.10000000149011612},
                      {D(), 0.0},
                      {D(90) + quarter, 179.99999505843996},
                      {D(90) - quarter, 4.9415600358315714e-06},
                      {R(1) + D(90), 2.570796314626932},
                      {D(90) += quarter, 179.99999505843996},
                      {D(90) -= quarter, 4.9415600358315714e-06},
                      {D(90) * D(2), 180.0},
                      {1.0 / D(4), 0.25},
                      {2.0 * D(45), 90.0},
                      {D(45) * 2.0, 90.0},
                      {D(45) / 2.0, 22.5},
                      {-R(1.5), -1.5},
                      {D(30) + D(15) - D(50), -5.0},
                      {(D(30) += D(15)) -= D(50), -5.0},
                      {(D(10) *= 3.0) /= 4.0, 7.5}});
  const D d10(10), d20(20);
  EXPECT_EQ((std::vector<int>{(d10 < d20), (d20 <= d20), (d20 > d20), (d20 >= d10), (d10 == D(10.0)), (d10 != d10)}),
            (std::vector<int>{1, 1, 0, 1, 1, 0}));
  // Converted angles compare exactly: 180 degrees is not pi radians.
  EXPECT_EQ(R(D(180)) == R(kPi), 0);
}

TEST(Angle, FloatTwinsConvertAlikeAndAgreeWithTheDoubleClasses) {
  ExpectRows<float>({{ZmRadianf(ZmDegreef(180.0f)), 3.1415927410125732f},
                     {ZmDegreef(90.0f).AngleInRadians(), 1.5707963705062866f},
                     {ZmRadianf(1.0f).AngleInDegrees(), 57.2957763671875f},
                     {ZmDegreef(ZmDegreed(0.1)), 0.1f},
                     {ZmRadianf(ZmDegreed(180.0)), 3.1415927410125732f}});
  // The double result rounded to float is the float result.
  for (double degrees : {1.0, 45.0, 90.0, 180.0, -270.0}) {
    EXPECT_EQ(float(ZmRadiand(ZmDegreed(degrees))), float(ZmRadianf(ZmDegreef(float(degrees))))) << degrees;
  }
}

}  // namespace
