// 3D points: construction, the operator table, coordinate conversions and the array statics.
#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

#include <zemcalc/zemcalc.h>

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

template <class T>
class Point3Twins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(Point3Twins, Scalars);

TEST(Point3, LayoutIsThreeScalarsWithoutVirtualTable) {
  static_assert(sizeof(ZmPoint3d) == 3 * sizeof(double), "");
  static_assert(sizeof(ZmPoint3f) == 3 * sizeof(float), "");
  static_assert(sizeof(ZmVector3d) == 3 * sizeof(double), "");
  static_assert(std::is_standard_layout<ZmPoint3d>::value && std::is_standard_layout<ZmVector3f>::value, "");
  static_assert(!std::is_polymorphic<ZmPoint3d>::value && !std::is_polymorphic<ZmVector3f>::value, "");
  static_assert(std::is_base_of<WbCoord3Dd, ZmPoint3d>::value && std::is_base_of<WbCoord3Df, ZmVector3f>::value, "");
  static_assert(std::is_trivially_copyable<ZmPoint3d>::value, "");
}

TEST(Point3, ConstructionFromEverySource) {
  const ZmPoint3d origin;
  EXPECT_EQ(origin, ZmPoint3d(0.0, 0.0, 0.0));
  EXPECT_EQ(ZmPoint3d(2.5), ZmPoint3d(2.5, 2.5, 2.5));
  EXPECT_EQ(ZmPoint3d(1, 2, 3.5), ZmPoint3d(1.0, 2.0, 3.5));    // (int, int, double)
  EXPECT_EQ(ZmPoint3d(1L, 2L, 3.5), ZmPoint3d(1.0, 2.0, 3.5));  // (long, long, double)
  const float floats[3] = {1.5f, -2.0f, 4.0f};
  EXPECT_EQ(ZmPoint3d(floats), ZmPoint3d(1.5, -2.0, 4.0));
  const double* none = nullptr;
  EXPECT_EQ(ZmPoint3d(none), ZmNonValP3d);
  // A 2D source gets z = 0; the other precision is converted component by component.
  EXPECT_EQ(ZmPoint3d(ZmPoint2f(1.5f, 2.5f)), ZmPoint3d(1.5, 2.5, 0.0));
  const ZmPoint3f narrowed = ZmPoint3d(0.1, 0.2, 0.3);
  EXPECT_EQ(narrowed.x, 0.1f);
  EXPECT_EQ(narrowed.z, 0.3f);
  ZmVector3d fromPoint = ZmPoint3d(1, 2, 3);
  EXPECT_EQ(fromPoint, ZmVector3d(1, 2, 3));
  ZmPoint3d assigned;
  assigned = 7;
  EXPECT_EQ(assigned, ZmPoint3d(7, 7, 7));
  assigned = WbCoord2Dd(3.0, 4.0);
  EXPECT_EQ(assigned, ZmPoint3d(3, 4, 0));
}

TEST(Point3, ConvertsToPointerToItsComponents) {
  ZmPoint3d p(1, 2, 3);
  double* raw = p;
  EXPECT_EQ(raw[2], 3.0);
  raw[1] = 9.0;
  EXPECT_EQ(p.y, 9.0);
}

TEST(Point3, OperatorResultsFollowLocationAndDisplacement) {
  const ZmPoint3d a(1, 2, 3), b(4, 6, 3);
  static_assert(std::is_same<decltype(b - a), ZmVector3d>::value, "point - point is a vector");
  static_assert(std::is_same<decltype(a + b), ZmVector3d>::value, "point + point is a vector");
  static_assert(std::is_same<decltype(a + ZmVector3f()), ZmPoint3d>::value, "point + vector is a point");
  static_assert(std::is_same<decltype(a - ZmVector2d()), ZmPoint3d>::value, "point - vector is a point");
  static_assert(std::is_same<decltype(a + WbCoord3Dd()), ZmVector3d>::value, "point + coordinate is a vector");
  static_assert(std::is_same<decltype(ZmVector3f() + a), ZmVector3f>::value, "the left operand decides");
  static_assert(std::is_same<decltype(a * 2), ZmPoint3d>::value, "");
  EXPECT_EQ(b - a, ZmVector3d(3, 4, 0));
  EXPECT_EQ(a + b, ZmVector3d(5, 8, 6));
  EXPECT_EQ(a + ZmVector3f(0.5f, 0.25f, -1.0f), ZmPoint3d(1.5, 2.25, 2.0));
  EXPECT_EQ(a - ZmVector2d(1, 1), ZmPoint3d(0, 1, 3));  // a 2D operand has z = 0
  EXPECT_EQ(a * ZmVector3d(2, 3, 4), ZmPoint3d(2, 6, 12));  // component-wise, not a dot product
  EXPECT_EQ(a * ZmPoint2d(2, 3), ZmPoint3d(2, 6, 0));
  EXPECT_EQ(a + 1, ZmPoint3d(2, 3, 4));
  EXPECT_EQ(a - 0.5f, ZmPoint3d(0.5, 1.5, 2.5));
  EXPECT_EQ(a / 2, ZmPoint3d(0.5, 1, 1.5));
  EXPECT_EQ(-a, ZmPoint3d(-1, -2, -3));
  // The scalar on the left: s - p and s / p act on each component.
  EXPECT_EQ(10 - a, ZmPoint3d(9, 8, 7));
  EXPECT_EQ(12.0 / a, ZmPoint3d(12, 6, 4));
  EXPECT_EQ(2.0f * a, ZmPoint3d(2, 4, 6));
  EXPECT_EQ(1 + a, ZmPoint3d(2, 3, 4));
  EXPECT_EQ(abs(ZmVector3d(-1, 2, -3)), ZmVector3d(1, 2, 3));

  ZmPoint3d c(1, 1, 1);
  c += ZmVector3f(1, 2, 3);
  c -= 1;
  c *= ZmPoint2d(2, 3);
  c /= 2;
  EXPECT_EQ(c, ZmPoint3d(1, 3, 0));
}

TEST(Point3, OrderingComparesDistanceFromOrigin) {
  const ZmPoint3d a(3, 4, 0), b(0, 0, 5), c(0, 0, 6);
  EXPECT_EQ(a < b, 0);
  EXPECT_EQ(a > b, 0);
  EXPECT_EQ(a <= b, 1);
  EXPECT_EQ(a >= b, 1);
  EXPECT_EQ(a == b, 0);
  EXPECT_EQ(a != b, 1);
  EXPECT_EQ(a < c, 1);
  EXPECT_EQ(c > a, 1);
}

TYPED_TEST(Point3Twins, CylindricalAndSphericalCoordinates) {
  using P = ZmPoint3T<TypeParam>;
  const TypeParam t = TypeParam(std::sqrt(2.0));
  EXPECT_EQ(P(-1, 0, 5).GetCylindricalCoordinates(), P(1, -180, 5));  // atan(-0) is -0: -180
  EXPECT_EQ(P(0, -2, 0).GetCylindricalCoordinates(), P(2, -90, 0));
  EXPECT_EQ(P(0, 0, 7).GetCylindricalCoordinates(), P(0, 0, 7));
  const P q2 = P(-1, 1, 2).GetCylindricalCoordinates();
  EXPECT_EQ(q2.x, t);
  EXPECT_NEAR(q2.y, 135.0, 1e-4);
  EXPECT_NEAR(P(-1, -1, 0).GetCylindricalCoordinates().y, -135.0, 1e-4);
  EXPECT_EQ(P(0, 0, -3).GetSphericalCoordinates(), P(3, 0, -90));
  EXPECT_EQ(P(0, 0, 2).GetSphericalCoordinates(), P(2, 0, 90));
  EXPECT_EQ(P(0, 0, 0).GetSphericalCoordinates(), P(0, 0, 0));
  const P s = P(1, 0, 1).GetSphericalCoordinates();
  EXPECT_EQ(s.x, t);
  EXPECT_EQ(s.y, 0);
  EXPECT_NEAR(s.z, 45.0, 1e-4);
}

TEST(Point3, DistinctnessUsesTheWidenedFloatThreshold) {
  const ZmPoint3d origin;
  // 1.0e-5 as a double exceeds the float 1.0e-5 (9.999999747378752e-06): distinct.
  EXPECT_EQ(origin.IsDistinctFrom(ZmPoint3d(1.0e-5, 0, 0)), 1);
  EXPECT_EQ(origin.IsDistinctFrom(ZmPoint3d(0.99e-5, 0, 0)), 0);
  EXPECT_EQ(origin.IsDistinctFrom(ZmPoint3d(9.999999747378752e-06, 0, 0)), 0);  // strictly greater
  EXPECT_EQ(ZmPoint3f().IsDistinctFrom(ZmPoint3f(1.0e-5f, 0, 0)), 0);
}

TEST(Point3, IsInsideUsesClosedIntervals) {
  const ZmPoint3d p(1, 2, 3);
  EXPECT_EQ(p.IsInside(1, 2, 2, 3, 3, 4), 1);
  EXPECT_EQ(p.IsInside(1.0000001, 2, 0, 3, 0, 4), 0);
  EXPECT_EQ(p.IsInside(0, 2, 0, 3, 0, 2.9999), 0);
  EXPECT_EQ(ZmPoint3d(NAN, 0, 0).IsInside(-1, 1, -1, 1, -1, 1), 0);
}

TYPED_TEST(Point3Twins, AlignmentAndLineDistance) {
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  const P a(0, 0, 0), b(1, 0, 0);
  // The distance 0.01 is rounded to float (0.009999999776482582) before the comparison.
  EXPECT_EQ(P::AreAligned(a, b, P(2, 0.01, 0), TypeParam(0.01)), 1);
  EXPECT_EQ(P::AreAligned(a, b, P(2, 0.01, 0), TypeParam(0.0099)), 0);
  EXPECT_EQ(P::AreAligned(a, a, P(5, 5, 5), TypeParam(0)), 1);  // coincident first points
  EXPECT_EQ(P(0, 5, 0).DistanceToLine(a, V(2, 0, 0)), TypeParam(5));
  EXPECT_EQ(P(3, 4, 0).DistanceToLine(a, V(0, 0, 0)), TypeParam(5));  // degenerate line: the point
  P nearest;
  EXPECT_EQ(a.DistanceToPointEx(P(0, 3, 4), &nearest), TypeParam(5));
  EXPECT_EQ(nearest, P(0, 3, 4));
}

TEST(Point3, CentreIsTheMiddleOfTheBoundingBox) {
  WbArrayTempl<ZmPoint3d> points{ZmPoint3d(0, 0, 0), ZmPoint3d(1, 0, 0), ZmPoint3d(10, 0, 0)};
  EXPECT_EQ(ZmPoint3d::ComputeCenter(points), ZmPoint3d(5, 0, 0));  // not the mean 11/3
  WbArrayTempl<ZmPoint3d> negative{ZmPoint3d(-2, -4, 1), ZmPoint3d(2, 0, 3), ZmPoint3d(-1, -1, 2)};
  EXPECT_EQ(ZmPoint3d::ComputeCenter(negative), ZmPoint3d(0, -2, 2));
  EXPECT_EQ(ZmPoint3d::ComputeCenter(WbArrayTempl<ZmPoint3d>()), ZmNonValP3d);
  EXPECT_EQ(ZmPoint3f::ComputeCenter(ZmPoint3f(1, 2, 3), ZmPoint3f(3, 2, 1)), ZmPoint3f(2, 2, 2));
}

TEST(Point3, PolylineLengthRoundsEachSegmentToFloat) {
  EXPECT_EQ(ZmPoint3d::ComputePolylineLength(WbArrayTempl<ZmPoint3d>()), kMarker);
  EXPECT_EQ(ZmPoint3f::ComputePolylineLength(WbArrayTempl<ZmPoint3f>()), -1.0e32f);
  EXPECT_EQ(ZmPoint3d::ComputePolylineLength({ZmPoint3d(4, 5, 6)}), 0.0);
  // Two segments of 0.1: 2 * float(0.1) = 0.20000000298023224, not 0.2.
  EXPECT_EQ(ZmPoint3d::ComputePolylineLength({ZmPoint3d(0, 0, 0), ZmPoint3d(0.1, 0, 0), ZmPoint3d(0.2, 0, 0)}),
            0.20000000298023224);
}

TEST(Point3, PointAtArcLength) {
  const WbArrayTempl<ZmPoint3d> path{ZmPoint3d(0, 0, 0), ZmPoint3d(2, 0, 0), ZmPoint3d(2, 2, 0)};
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, 3.0, 0), ZmPoint3d(2, 1, 0));
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, 0.5, 0), ZmPoint3d(0.5, 0, 0));
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, 0.0, 0), ZmPoint3d(0, 0, 0));
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, 4.0, 0), ZmPoint3d(2, 2, 0));
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, 5.0, 1), ZmPoint3d(2, 2, 0));
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, 5.0, 0), ZmNonValP3d);
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, -1.0, 1), ZmPoint3d(0, 0, 0));
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, -1.0, 0), ZmNonValP3d);
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(path, NAN, 1), ZmNonValP3d);
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(WbArrayTempl<ZmPoint3d>(), 0.0, 1), ZmNonValP3d);
  // A zero-length segment is passed over without dividing by zero.
  const WbArrayTempl<ZmPoint3d> stutter{ZmPoint3d(0, 0, 0), ZmPoint3d(0, 0, 0), ZmPoint3d(0, 4, 0)};
  EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(stutter, 1.0, 0), ZmPoint3d(0, 1, 0));
}

TEST(Point3, RotationAboutAnAxisThroughACentre) {
  ZmPoint3d p(2, 1, 5);
  ASSERT_EQ(p.Rotate(ZmPoint3d(1, 1, 0), ZmVector3d(0, 0, 2), 180.0), 1);
  EXPECT_NEAR(p.x, 0.0, 1e-15);
  EXPECT_NEAR(p.y, 1.0, 1e-15);
  EXPECT_EQ(p.z, 5.0);
  ZmPoint3d q(1, 2, 3);
  EXPECT_EQ(q.Rotate(ZmPoint3d(), ZmVector3d(0, 0, 0), 90.0), 0);
  EXPECT_EQ(q, ZmPoint3d(1, 2, 3));
  ZmPoint3d invalid = ZmNonValP3d;
  EXPECT_EQ(invalid.Rotate(ZmPoint3d(), ZmVector3d(0, 0, 1), 90.0), 0);
}

TEST(Point3, ComparatorsForSorting) {
  EXPECT_EQ(ZmPoint3d::ComparePoints(ZmPoint3d(1, 2, 3), ZmPoint3d(1, 2, 4)), -1);
  EXPECT_EQ(ZmPoint3d::ComparePoints(ZmPoint3d(1, 3, 0), ZmPoint3d(1, 2, 4)), 1);
  EXPECT_EQ(ZmPoint3d::ComparePoints(ZmPoint3d(1, 2, 3), ZmPoint3d(1, 2, 3)), 0);
  EXPECT_EQ(ZmPoint3d::CompareY(ZmPoint3d(9, 1, 0), ZmPoint3d(0, 2, 0)), -1);
  EXPECT_EQ(ZmPoint3d::GetZ(ZmPoint3d(1, 2, 3)), 3.0);
}

TEST(Point3, TextForm) {
  EXPECT_EQ(ZmPoint3d(1, 2.5, -3).GetString(L"%.2f", L";"), WbString(L"1.00;2.50;-3.00"));
}

}  // namespace
