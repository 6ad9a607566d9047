// 2D points and vectors: layout, polar angle, scaling about a centre, comparators, the axis
// tests and the rotation with float-rounded sine and cosine.
#include <cmath>
#include <type_traits>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(Point2Twins);

static_assert(sizeof(P2) == 2 * sizeof(double) && sizeof(ZmVector2f) == 2 * sizeof(float) &&
                  std::is_standard_layout<P2>::value && std::is_standard_layout<ZmVector2f>::value &&
                  !std::is_polymorphic<P2>::value && std::is_trivially_copyable<ZmPoint2f>::value &&
                  std::is_base_of<WbCoord2Dd, P2>::value && std::is_base_of<WbCoord2Df, ZmVector2f>::value &&
                  std::is_same<decltype(P2() - P2()), ZmVector2d>::value,
              "a 2D point or vector is exactly its two scalars on the base coordinate");

// Quadrant by quadrant with the exact double factor 180/pi; atan(1/sqrt(3)) = 30 degrees gives
// 120 in the second quadrant (atan(-x/y) + 90) and 330 in the fourth (atan(sqrt 3) + 270).
TYPED_TEST(Point2Twins, PolarAngleScalingAndAxes) {
  using P = ZmPoint2T<TypeParam>;
  using V = ZmVector2T<TypeParam>;
  const TypeParam root3 = TypeParam(std::sqrt(3.0));
  const struct {
    P p;
    double degrees, tolerance;
  } rows[] = {{P(1, 0), 0, 0},    {P(0, 0), 0, 0},           {P(0, 2), 90, 0},         {P(-3, 0), 180, 0},
              {P(0, -1), 270, 0}, {P(1, 1), 45, 0},          {P(-1, 1), 135, 0},       {P(-1, -1), 225, 0},
              {P(1, -1), 315, 0}, {P(-1, root3), 120, 1e-4}, {P(root3, -1), 330, 1e-4}};
  for (const auto& r : rows) EXPECT_NEAR(r.p.ComputePolarAngleDeg(), r.degrees, r.tolerance) << r.p.x << " " << r.p.y;

  P p(3, 5);
  p.scale(P(1, 1), 2);  // (1 + 2*2, 1 + 4*2)
  EXPECT_EQ(p, P(5, 9));
  p.scaleX(1, 3);                // 1 + 4*3
  p.scaleY(-1, TypeParam(0.5));  // -1 + 10*0.5
  EXPECT_EQ(p, P(13, 4));

  // Aligned axis: each component within |tol| strictly, signed or not; 0 for none.
  const TypeParam t = TypeParam(0.01);
  EXPECT_EQ((Ints{V(1, -1).GetMainDirection(), V(-2, 1).GetMainDirection(), V(1, -2).GetMainDirection()}),
            (Ints{-1, 0, 1}));
  EXPECT_EQ((Ints{V(0, 1).GetAlignedAxis(1, t), V(0, 1).GetAlignedAxis(0, t), V(0, -1).GetAlignedAxis(1, t),
                  V(0, -1).GetAlignedAxis(0, t), V(-1, 0).GetAlignedAxis(1, t), V(-1, 0).GetAlignedAxis(0, -t),
                  V(TypeParam(0.7), TypeParam(0.7)).GetAlignedAxis(0, t),
                  V(TypeParam(0.995), TypeParam(0.005)).GetAlignedAxis(1, t), V(1, t).GetAlignedAxis(0, t),
                  V(t, 1).GetAlignedAxis(0, t), V(0, 0).GetAlignedAxis(0, t)}),
            (Ints{2, 2, 0, 2, 0, 1, 0, 1, 0, 0, 0}));
}

// 1.0e-5 as a double is above the float 1.0e-5 (9.999999747378752e-06); 6e-6, 8e-6 is 1.0e-5 by
// Pythagoras. The float point is compared in double: 0.1f is 0.10000000149011612, above 0.1.
TEST(Point2, PredicatesAndComparators) {
  const P2 o, p(1, 2);
  const ZmPoint2f f(0.1f, 2.0f);
  EXPECT_EQ((Ints{o.IsDistinctFrom(P2(0, 1.0e-5)), o.IsDistinctFrom(P2(0, 9.999999747378752e-06)),
                  o.IsDistinctFrom(P2(6e-6, 8e-6)), ZmPoint2f().IsDistinctFrom(ZmPoint2f(1.0e-5f, 0)),
                  ZmPoint2f().IsDistinctFrom(ZmPoint2f(std::nextafter(1.0e-5f, 1.0f), 0)), p.IsInside(1, 1, 2, 2),
                  p.IsInside(1.0000001, 3, 0, 3), P2(NAN, 0).IsInside(-1, 1, -1, 1)}),
            (Ints{1, 0, 1, 0, 1, 1, 0, 0}));
  EXPECT_EQ((Ints{ZmPoint2f::CompareX(f, P2(0.1, 2.0)), ZmPoint2f::CompareY(f, P2(0.1, 2.0)),
                  ZmPoint2f::CompareY(f, P2(0.1, 2.5)), P2::ComparePoints(P2(1, 5), P2(2, 0)),
                  P2::ComparePoints(P2(1, 5), P2(1, 0)), P2::ComparePoints(P2(1, 5), P2(1, 5))}),
            (Ints{1, 0, -1, -1, 1, 0}));
  EXPECT_EQ(P2::ComputeCenter(P2(1, 5), P2(2, -1)), P2(1.5, 2));
  EXPECT_EQ(P2(P3(1, 2, 3)), P2(1, 2));  // z dropped
}

// Sine and cosine are rounded to float in both twins. Expected values from Python/numpy:
//   double: r = 90 * 0.01745329238474369 = 1.5707963146269321,
//           float32(cos r) = 1.2167964413833943e-08, float32(sin r) = 1.0
//   float:  r = float32(90 * float32(pi/180)) = 1.5707963705062866,
//           float32(cos r) = -4.371138828673793e-08
//   30 degrees on (2, 1), double: c = 0.8660253882408142, s = 0.5,
//           x' = 2c - s = 1.2320507764816284, y' = 2s + c = 1.8660253882408142
//   -90 degrees on (0, 1) (clockwise): x' = -sin(-r) = 1, y' = cos(-r)
TEST(Point2, RotationRoundsSineAndCosineToFloat) {
  ZmVector2d v(1, 0), u(2, 1), back(0, 1);
  ZmVector2f w(1, 0);
  EXPECT_EQ(v.Rotate(90) + w.Rotate(90) + u.Rotate(30) + back.Rotate(-90), 4);
  EXPECT_EQ(v, ZmVector2d(1.2167964413833943e-08, 1.0));
  EXPECT_EQ(w, ZmVector2f(-4.371138828673793e-08f, 1.0f));
  EXPECT_EQ(u, ZmVector2d(1.2320507764816284, 1.8660253882408142));
  EXPECT_EQ(back, ZmVector2d(1.0, 1.2167964413833943e-08));
}

}  // namespace
