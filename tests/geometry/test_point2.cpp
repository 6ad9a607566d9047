// 2D points and vectors: layout, polar angle, scaling about a centre, comparators, the axis
// tests and the rotation with float-rounded sine and cosine.
#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class Point2Twins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Point2Twins, Scalars);

TEST(Point2, LayoutIsTwoScalarsOnTheBaseCoordinate) {
  static_assert(sizeof(ZmPoint2d) == 2 * sizeof(double) && sizeof(ZmVector2f) == 2 * sizeof(float), "");
  static_assert(std::is_standard_layout<ZmPoint2d>::value && std::is_standard_layout<ZmVector2f>::value, "");
  static_assert(!std::is_polymorphic<ZmPoint2d>::value && std::is_trivially_copyable<ZmPoint2f>::value, "");
  static_assert(std::is_base_of<WbCoord2Dd, ZmPoint2d>::value && std::is_base_of<WbCoord2Df, ZmVector2f>::value, "");
  static_assert(std::is_same<decltype(ZmPoint2d() - ZmPoint2d()), ZmVector2d>::value, "");
  EXPECT_EQ(ZmPoint2d(), ZmPoint2d(0, 0));
  EXPECT_EQ(ZmPoint2d(ZmPoint3d(1, 2, 3)), ZmPoint2d(1, 2));  // z dropped
  EXPECT_EQ(ZmPoint2d(3, 4) - ZmPoint2d(1, 1), ZmVector2d(2, 3));
}

// Quadrant by quadrant with the exact double factor 180/pi; the values are
// atan(y/x)*57.29577951308232 (+ 90, 180, 270) evaluated in Python.
TYPED_TEST(Point2Twins, PolarAngleCoversZeroTo360ByQuadrant) {
  using P = ZmPoint2T<TypeParam>;
  EXPECT_EQ(P(1, 0).ComputePolarAngleDeg(), TypeParam(0));
  EXPECT_EQ(P(0, 0).ComputePolarAngleDeg(), TypeParam(0));
  EXPECT_EQ(P(0, 2).ComputePolarAngleDeg(), TypeParam(90));
  EXPECT_EQ(P(-3, 0).ComputePolarAngleDeg(), TypeParam(180));
  EXPECT_EQ(P(0, -1).ComputePolarAngleDeg(), TypeParam(270));
  EXPECT_EQ(P(1, 1).ComputePolarAngleDeg(), TypeParam(45));
  EXPECT_EQ(P(-1, 1).ComputePolarAngleDeg(), TypeParam(135));
  EXPECT_EQ(P(-1, -1).ComputePolarAngleDeg(), TypeParam(225));
  EXPECT_EQ(P(1, -1).ComputePolarAngleDeg(), TypeParam(315));
  // atan(1/sqrt(3)) = 30 degrees: 120 in the second quadrant, where the angle is atan(-x/y) + 90.
  const TypeParam root3 = TypeParam(std::sqrt(3.0));
  EXPECT_NEAR(P(-1, root3).ComputePolarAngleDeg(), 120.0, 1e-4);
  EXPECT_NEAR(P(root3, -1).ComputePolarAngleDeg(), 330.0, 1e-4);  // atan(-x/y) = atan(sqrt 3) = 60, + 270
}

TYPED_TEST(Point2Twins, ScalingIsAboutTheGivenCentre) {
  using P = ZmPoint2T<TypeParam>;
  P p(3, 5);
  p.scale(P(1, 1), 2);  // (1 + 2*2, 1 + 4*2)
  EXPECT_EQ(p, P(5, 9));
  p.scaleX(1, 3);  // 1 + 4*3
  EXPECT_EQ(p, P(13, 9));
  p.scaleY(-1, TypeParam(0.5));  // -1 + 10*0.5
  EXPECT_EQ(p, P(13, 4));
  p.scale(P(0, 0), 0);
  EXPECT_EQ(p, P(0, 0));
}

TEST(Point2, DistinctnessUsesTheWidenedFloatThreshold) {
  const ZmPoint2d origin;
  // 1.0e-5 as a double is above the float 1.0e-5 (9.999999747378752e-06).
  EXPECT_EQ(origin.IsDistinctFrom(ZmPoint2d(0, 1.0e-5)), 1);
  EXPECT_EQ(origin.IsDistinctFrom(ZmPoint2d(0, 9.999999747378752e-06)), 0);  // strictly greater
  EXPECT_EQ(origin.IsDistinctFrom(ZmPoint2d(6e-6, 8e-6)), 1);                // 1.0e-5 by Pythagoras
  EXPECT_EQ(ZmPoint2f().IsDistinctFrom(ZmPoint2f(1.0e-5f, 0)), 0);
  EXPECT_EQ(ZmPoint2f().IsDistinctFrom(ZmPoint2f(std::nextafter(1.0e-5f, 1.0f), 0)), 1);
}

TEST(Point2, InsideComparatorsAndCentre) {
  const ZmPoint2d p(1, 2);
  EXPECT_EQ(p.IsInside(1, 1, 2, 2), 1);  // closed bounds
  EXPECT_EQ(p.IsInside(1.0000001, 3, 0, 3), 0);
  EXPECT_EQ(ZmPoint2d(NAN, 0).IsInside(-1, 1, -1, 1), 0);
  // The float point is compared in double: 0.1f is 0.10000000149011612, above 0.1.
  EXPECT_EQ(ZmPoint2f::CompareX(ZmPoint2f(0.1f, 2.0f), ZmPoint2d(0.1, 2.0)), 1);
  EXPECT_EQ(ZmPoint2f::CompareY(ZmPoint2f(0.1f, 2.0f), ZmPoint2d(0.1, 2.0)), 0);
  EXPECT_EQ(ZmPoint2f::CompareY(ZmPoint2f(0.1f, 2.0f), ZmPoint2d(0.1, 2.5)), -1);
  EXPECT_EQ(ZmPoint2d::ComparePoints(ZmPoint2d(1, 5), ZmPoint2d(2, 0)), -1);
  EXPECT_EQ(ZmPoint2d::ComparePoints(ZmPoint2d(1, 5), ZmPoint2d(1, 0)), 1);
  EXPECT_EQ(ZmPoint2d::ComparePoints(ZmPoint2d(1, 5), ZmPoint2d(1, 5)), 0);
  EXPECT_EQ(ZmPoint2d::ComputeCenter(ZmPoint2d(1, 5), ZmPoint2d(2, -1)), ZmPoint2d(1.5, 2));
  EXPECT_EQ(ZmPoint2d::GetX(p), 1.0);
  EXPECT_EQ(ZmPoint2d::GetY(p), 2.0);
}

TYPED_TEST(Point2Twins, MainDirectionAndAlignedAxis) {
  using V = ZmVector2T<TypeParam>;
  EXPECT_EQ(V(1, -1).GetMainDirection(), -1);
  EXPECT_EQ(V(-2, 1).GetMainDirection(), 0);
  EXPECT_EQ(V(1, -2).GetMainDirection(), 1);
  const TypeParam tol = TypeParam(0.01);
  EXPECT_EQ(V(0, 1).GetAlignedAxis(1, tol), 2);
  EXPECT_EQ(V(0, 1).GetAlignedAxis(0, tol), 2);
  EXPECT_EQ(V(0, -1).GetAlignedAxis(1, tol), 0);
  EXPECT_EQ(V(0, -1).GetAlignedAxis(0, tol), 2);
  EXPECT_EQ(V(-1, 0).GetAlignedAxis(1, tol), 0);
  EXPECT_EQ(V(-1, 0).GetAlignedAxis(0, -tol), 1);  // the tolerance is taken as |tol|
  EXPECT_EQ(V(TypeParam(0.7), TypeParam(0.7)).GetAlignedAxis(0, tol), 0);
  EXPECT_EQ(V(TypeParam(0.995), TypeParam(0.005)).GetAlignedAxis(1, tol), 1);
  // Strict tests: an off-axis component equal to the tolerance fails both axes.
  EXPECT_EQ(V(1, tol).GetAlignedAxis(0, tol), 0);
  EXPECT_EQ(V(tol, 1).GetAlignedAxis(0, tol), 0);
  EXPECT_EQ(V(0, 0).GetAlignedAxis(0, tol), 0);
}

// Sine and cosine are rounded to float in both twins. Expected values from Python/numpy:
//   double: r = 90 * 0.01745329238474369 = 1.5707963146269321,
//           float32(cos r) = 1.2167964413833943e-08, float32(sin r) = 1.0
//   float:  r = float32(90 * float32(pi/180)) = 1.5707963705062866,
//           float32(cos r) = -4.371138828673793e-08
//   30 degrees on (2, 1), double: c = 0.8660253882408142, s = 0.5,
//           x' = 2c - s = 1.2320507764816284, y' = 2s + c = 1.8660253882408142
TEST(Point2, RotationRoundsSineAndCosineToFloat) {
  ZmVector2d v(1, 0);
  EXPECT_EQ(v.Rotate(90), 1);
  EXPECT_EQ(v.x, 1.2167964413833943e-08);
  EXPECT_EQ(v.y, 1.0);
  ZmVector2f w(1, 0);
  EXPECT_EQ(w.Rotate(90), 1);
  EXPECT_EQ(w.x, -4.371138828673793e-08f);
  EXPECT_EQ(w.y, 1.0f);
  ZmVector2d u(2, 1);
  u.Rotate(30);
  EXPECT_EQ(u.x, 1.2320507764816284);
  EXPECT_EQ(u.y, 1.8660253882408142);
  ZmVector2d back(0, 1);
  back.Rotate(-90);  // clockwise: x' = -sin(-r) = 1, y' = cos(-r)
  EXPECT_EQ(back.x, 1.0);
  EXPECT_EQ(back.y, 1.2167964413833943e-08);
}

}  // namespace
