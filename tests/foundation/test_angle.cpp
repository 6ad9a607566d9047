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

#include <cmath>
#include <type_traits>

namespace {

constexpr double kPi = 3.141592653589793;

TEST(Angle, ConversionUsesTheFloatFactorsWidened) {
  EXPECT_EQ(ZmDegreed(1.0).AngleInRadians(), 0.01745329238474369);
  EXPECT_EQ(ZmRadiand(1.0).AngleInDegrees(), 57.2957763671875);
  EXPECT_EQ(ZmDegreed(1.0).AngleInDegrees(), 1.0);
  EXPECT_EQ(ZmRadiand(1.0).AngleInRadians(), 1.0);

  EXPECT_EQ(double(ZmRadiand(ZmDegreed(180.0))), 3.1415926292538643);
  EXPECT_EQ(double(ZmDegreed(ZmRadiand(kPi))), 179.99999011687993);
  ZmRadiand assigned(7.0);
  assigned = ZmDegreed(180.0);
  EXPECT_EQ(double(assigned), 3.1415926292538643);
  ZmDegreed fromRadians;
  fromRadians = ZmRadiand(1.0);
  EXPECT_EQ(double(fromRadians), 57.2957763671875);
  // A scalar is stored as it is, in the class's own unit.
  assigned = 2.5;
  EXPECT_EQ(double(assigned), 2.5);
  EXPECT_EQ(double(ZmRadiand(0.1f)), 0.10000000149011612);  // the float widened
  EXPECT_EQ(double(ZmDegreed()), 0.0);
}

TEST(Angle, MixedUnitSumsConvertTheRightOperand) {
  const ZmRadiand quarter(kPi / 2);
  EXPECT_EQ(double(ZmDegreed(90) + quarter), 179.99999505843996);
  EXPECT_EQ(double(ZmDegreed(90) - quarter), 4.9415600358315714e-06);
  EXPECT_EQ(double(ZmRadiand(1) + ZmDegreed(90)), 2.570796314626932);
  static_assert(std::is_same<decltype(ZmRadiand(1) + ZmDegreed(90)), ZmRadiand>::value, "");
  ZmDegreed sum(90);
  sum += quarter;
  EXPECT_EQ(double(sum), 179.99999505843996);
  sum -= quarter;
  sum -= ZmDegreed(90);  // back near zero, not exactly: 90 + x - x in doubles
  EXPECT_NEAR(double(sum), 0.0, 1e-13);
}

TEST(Angle, ArithmeticAndComparisonOnTheStoredValues) {
  EXPECT_EQ(double(ZmDegreed(90) * ZmDegreed(2)), 180.0);  // the plain product
  const auto inverse = 1.0 / ZmDegreed(4);
  static_assert(std::is_same<decltype(inverse), const ZmDegreed>::value, "");
  EXPECT_EQ(double(inverse), 0.25);
  EXPECT_EQ(double(2.0 * ZmDegreed(45)), 90.0);
  EXPECT_EQ(double(ZmDegreed(45) * 2.0), 90.0);
  EXPECT_EQ(double(ZmDegreed(45) / 2.0), 22.5);
  EXPECT_EQ(double(-ZmRadiand(1.5)), -1.5);
  EXPECT_EQ(double(ZmDegreed(30) + ZmDegreed(15) - ZmDegreed(50)), -5.0);
  ZmDegreed scaled(10);
  scaled *= 3.0;
  scaled /= 4.0;
  EXPECT_EQ(double(scaled), 7.5);

  EXPECT_EQ(ZmDegreed(10) < ZmDegreed(20), 1);
  EXPECT_EQ(ZmDegreed(20) <= ZmDegreed(20), 1);
  EXPECT_EQ(ZmDegreed(20) > ZmDegreed(20), 0);
  EXPECT_EQ(ZmRadiand(1) >= ZmRadiand(0.5), 1);
  EXPECT_EQ(ZmRadiand(1) == ZmRadiand(1.0), 1);
  EXPECT_EQ(ZmRadiand(1) != ZmRadiand(1.0), 0);
  // Converted angles compare exactly: 180 degrees is not pi radians.
  EXPECT_EQ(ZmRadiand(ZmDegreed(180)) == ZmRadiand(kPi), 0);
}

TEST(Angle, FloatTwinsConvertAlikeAndAgreeWithTheDoubleClasses) {
  EXPECT_EQ(float(ZmRadianf(ZmDegreef(180.0f))), 3.1415927410125732f);
  EXPECT_EQ(ZmDegreef(90.0f).AngleInRadians(), 1.5707963705062866f);
  EXPECT_EQ(ZmRadianf(1.0f).AngleInDegrees(), 57.2957763671875f);
  // The double result rounded to float is the float result.
  for (double degrees : {1.0, 45.0, 90.0, 180.0, -270.0}) {
    EXPECT_EQ(float(double(ZmRadiand(ZmDegreed(degrees)))), float(ZmRadianf(ZmDegreef(float(degrees))))) << degrees;
  }
  // Between precisions of one unit the value is converted as it is.
  const ZmDegreef narrowed = ZmDegreed(0.1);
  EXPECT_EQ(float(narrowed), 0.1f);
  const ZmRadiand widened = ZmRadianf(0.1f);
  EXPECT_EQ(double(widened), 0.10000000149011612);
  EXPECT_EQ(float(ZmRadianf(ZmDegreed(180.0))), 3.1415927410125732f);
}

}  // namespace
