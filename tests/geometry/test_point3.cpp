// 3D points: layout, conversions, the operator table, coordinate conversions and the statics.
#include <cmath>
#include <type_traits>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(Point3Twins);

static_assert(sizeof(ZmPoint3d) == 3 * sizeof(double) && sizeof(ZmPoint3f) == 3 * sizeof(float) &&
                  sizeof(ZmVector3d) == 3 * sizeof(double) && std::is_trivially_copyable<ZmPoint3d>::value &&
                  std::is_standard_layout<ZmPoint3d>::value && std::is_standard_layout<ZmVector3f>::value &&
                  !std::is_polymorphic<ZmPoint3d>::value && !std::is_polymorphic<ZmVector3f>::value &&
                  std::is_base_of<WbCoord3Dd, ZmPoint3d>::value && std::is_base_of<WbCoord3Df, ZmVector3f>::value,
              "a point or vector is exactly its three scalars on the base coordinate");
// A location minus or plus a location is a displacement; a location moved by a displacement
// stays a location; with a bare coordinate the result is a displacement; the left operand
// decides the class.
const ZmPoint3d a(1, 2, 3), b(4, 6, 3);
static_assert(std::is_same<decltype(b - a), ZmVector3d>::value && std::is_same<decltype(a + b), ZmVector3d>::value, "");
static_assert(std::is_same<decltype(a + ZmVector3f()), ZmPoint3d>::value, "");
static_assert(std::is_same<decltype(a - ZmVector2d()), ZmPoint3d>::value, "");
static_assert(std::is_same<decltype(a + WbCoord3Dd()), ZmVector3d>::value, "");
static_assert(std::is_same<decltype(ZmVector3f() + a), ZmVector3f>::value, "");

TEST(Point3, ConversionsAndOperators) {
  const double* none = nullptr;
  EXPECT_EQ(ZmPoint3d(none), ZmNonValP3d);
  EXPECT_EQ(ZmPoint3d(ZmPoint2f(1.5f, 2.5f)), ZmPoint3d(1.5, 2.5, 0.0));  // a 2D source gets z = 0
  const ZmPoint3f narrowed = ZmPoint3d(0.1, 0.2, 0.3);                    // rounded to nearest
  EXPECT_EQ(narrowed, ZmPoint3f(0.1f, 0.2f, 0.3f));
  ZmPoint3d assigned;
  assigned = 7;
  EXPECT_EQ(assigned, ZmPoint3d(7, 7, 7));
  EXPECT_EQ(b - a, ZmVector3d(3, 4, 0));
  EXPECT_EQ(a + ZmVector3f(0.5f, 0.25f, -1.0f), ZmPoint3d(1.5, 2.25, 2.0));
  EXPECT_EQ(a - ZmVector2d(1, 1), ZmPoint3d(0, 1, 3));
  EXPECT_EQ(a * ZmVector3d(2, 3, 4), ZmPoint3d(2, 6, 12));  // component-wise, not a dot product
  EXPECT_EQ(10 - a, ZmPoint3d(9, 8, 7));                    // the scalar on the left acts on each component
  EXPECT_EQ(12.0 / a, ZmPoint3d(12, 6, 4));
  // Ordering compares the distances from the origin: |(3, 4, 0)| = |(0, 0, 5)| < |(0, 0, 6)|.
  const ZmPoint3d p(3, 4, 0), q(0, 0, 5), r(0, 0, 6);
  EXPECT_EQ((Ints{(p < q), (p > q), (p <= q), (p >= q), (p == q), (p != q), (p < r), (r > p)}),
            (Ints{0, 0, 1, 1, 0, 1, 1, 1}));
  EXPECT_EQ(ZmPoint3d(1, 2.5, -3).GetString(L"%.2f", L";"), WbString(L"1.00;2.50;-3.00"));
}

// Angles in degrees; atan(-0) is -0, so the negative x axis gives -180. A tolerance of 0 asks
// for the exact value.
TYPED_TEST(Point3Twins, CylindricalAndSphericalCoordinates) {
  using P = ZmPoint3T<TypeParam>;
  const double root2 = std::sqrt(2.0);
  const struct {
    bool spherical;
    P in;
    double r, angle, third, tolerance;
  } rows[] = {{false, P(-1, 0, 5), 1, -180, 5, 0},
              {false, P(0, -2, 0), 2, -90, 0, 0},
              {false, P(0, 0, 7), 0, 0, 7, 0},
              {false, P(-1, 1, 2), root2, 135, 2, 1e-4},
              {false, P(-1, -1, 0), root2, -135, 0, 1e-4},
              {true, P(0, 0, -3), 3, 0, -90, 0},
              {true, P(0, 0, 2), 2, 0, 90, 0},
              {true, P(0, 0, 0), 0, 0, 0, 0},
              {true, P(1, 0, 1), root2, 0, 45, 1e-4}};
  for (const auto& r : rows) {
    const P out = r.spherical ? r.in.GetSphericalCoordinates() : r.in.GetCylindricalCoordinates();
    EXPECT_EQ(out.x, TypeParam(r.r)) << r.in.x << " " << r.in.y << " " << r.in.z;
    EXPECT_NEAR(out.y, r.angle, r.tolerance);
    EXPECT_NEAR(out.z, r.third, r.tolerance);
  }
}

// 1.0e-5 as a double exceeds the float 1.0e-5 (9.999999747378752e-06): distinct, strictly.
TEST(Point3, PredicatesOnBoundaries) {
  const ZmPoint3d origin, p(1, 2, 3);
  EXPECT_EQ((Ints{origin.IsDistinctFrom(ZmPoint3d(1.0e-5, 0, 0)), origin.IsDistinctFrom(ZmPoint3d(0.99e-5, 0, 0)),
                  origin.IsDistinctFrom(ZmPoint3d(9.999999747378752e-06, 0, 0)),
                  ZmPoint3f().IsDistinctFrom(ZmPoint3f(1.0e-5f, 0, 0))}),
            (Ints{1, 0, 0, 0}));
  // Closed intervals; NaN is inside nothing.
  EXPECT_EQ((Ints{p.IsInside(1, 2, 2, 3, 3, 4), p.IsInside(1.0000001, 2, 0, 3, 0, 4), p.IsInside(0, 2, 0, 3, 0, 2.9999),
                  ZmPoint3d(NAN, 0, 0).IsInside(-1, 1, -1, 1, -1, 1)}),
            (Ints{1, 0, 0, 0}));
  EXPECT_EQ(ZmPoint3d::ComparePoints(ZmPoint3d(1, 2, 3), ZmPoint3d(1, 2, 4)), -1);
  EXPECT_EQ(ZmPoint3d::ComparePoints(ZmPoint3d(1, 3, 0), ZmPoint3d(1, 2, 4)), 1);
  EXPECT_EQ(ZmPoint3d::ComparePoints(ZmPoint3d(1, 2, 3), ZmPoint3d(1, 2, 3)), 0);
  EXPECT_EQ(ZmPoint3d::CompareY(ZmPoint3d(9, 1, 0), ZmPoint3d(0, 2, 0)), -1);
}

TYPED_TEST(Point3Twins, AlignmentAndLineDistance) {
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  const P o(0, 0, 0), x(1, 0, 0);
  // The distance 0.01 is rounded to float (0.009999999776482582) before the comparison.
  EXPECT_EQ(P::AreAligned(o, x, P(2, 0.01, 0), TypeParam(0.01)), 1);
  EXPECT_EQ(P::AreAligned(o, x, P(2, 0.01, 0), TypeParam(0.0099)), 0);
  EXPECT_EQ(P::AreAligned(o, o, P(5, 5, 5), TypeParam(0)), 1);  // coincident first points
  EXPECT_EQ(P(0, 5, 0).DistanceToLine(o, V(2, 0, 0)), TypeParam(5));
  EXPECT_EQ(P(3, 4, 0).DistanceToLine(o, V(0, 0, 0)), TypeParam(5));  // degenerate line: the point
  P nearest;
  EXPECT_EQ(o.DistanceToPointEx(P(0, 3, 4), &nearest), TypeParam(5));
  EXPECT_EQ(nearest, P(0, 3, 4));
}

TEST(Point3, CentreLengthAndPointAtLength) {
  // The middle of the bounding box, not the mean 11/3.
  EXPECT_EQ(ZmPoint3d::ComputeCenter({ZmPoint3d(0, 0, 0), ZmPoint3d(1, 0, 0), ZmPoint3d(10, 0, 0)}),
            ZmPoint3d(5, 0, 0));
  EXPECT_EQ(ZmPoint3d::ComputeCenter({ZmPoint3d(-2, -4, 1), ZmPoint3d(2, 0, 3), ZmPoint3d(-1, -1, 2)}),
            ZmPoint3d(0, -2, 2));
  EXPECT_EQ(ZmPoint3d::ComputeCenter(WbArrayTempl<ZmPoint3d>()), ZmNonValP3d);
  EXPECT_EQ(ZmPoint3f::ComputeCenter(ZmPoint3f(1, 2, 3), ZmPoint3f(3, 2, 1)), ZmPoint3f(2, 2, 2));
  EXPECT_EQ(ZmPoint3d::ComputePolylineLength(WbArrayTempl<ZmPoint3d>()), kMarker);
  EXPECT_EQ(ZmPoint3f::ComputePolylineLength(WbArrayTempl<ZmPoint3f>()), -1.0e32f);
  EXPECT_EQ(ZmPoint3d::ComputePolylineLength({ZmPoint3d(4, 5, 6)}), 0.0);
  // Each segment is rounded to float: 2 * float(0.1) = 0.20000000298023224, not 0.2.
  EXPECT_EQ(ZmPoint3d::ComputePolylineLength({ZmPoint3d(0, 0, 0), ZmPoint3d(0.1, 0, 0), ZmPoint3d(0.2, 0, 0)}),
            0.20000000298023224);

  // Along (0,0,0) -> (2,0,0) -> (2,2,0); beyond the ends only when clamped; a zero-length
  // segment is passed over without dividing by zero.
  const WbArrayTempl<ZmPoint3d> path{ZmPoint3d(0, 0, 0), ZmPoint3d(2, 0, 0), ZmPoint3d(2, 2, 0)};
  const WbArrayTempl<ZmPoint3d> stutter{ZmPoint3d(0, 0, 0), ZmPoint3d(0, 0, 0), ZmPoint3d(0, 4, 0)}, none;
  const struct {
    const WbArrayTempl<ZmPoint3d>* points;
    double length;
    unsigned char clamp;
    ZmPoint3d expected;
  } rows[] = {{&path, 3, 0, ZmPoint3d(2, 1, 0)}, {&path, 0.5, 0, ZmPoint3d(0.5, 0, 0)}, {&path, 0, 0, ZmPoint3d()},
              {&path, 4, 0, ZmPoint3d(2, 2, 0)}, {&path, 5, 1, ZmPoint3d(2, 2, 0)},     {&path, 5, 0, ZmNonValP3d},
              {&path, -1, 1, ZmPoint3d()},       {&path, -1, 0, ZmNonValP3d},           {&path, NAN, 1, ZmNonValP3d},
              {&none, 0, 1, ZmNonValP3d},        {&stutter, 1, 0, ZmPoint3d(0, 1, 0)}};
  for (const auto& r : rows) {
    EXPECT_EQ(ZmPoint3d::GetPolylinePointAtLength(*r.points, r.length, r.clamp), r.expected) << r.length;
  }
}

TEST(Point3, RotationAboutAnAxisThroughACentre) {
  ZmPoint3d p(2, 1, 5);
  ASSERT_EQ(p.Rotate(ZmPoint3d(1, 1, 0), ZmVector3d(0, 0, 2), 180.0), 1);
  EXPECT_NEAR(p.x, 0.0, 1e-15);
  EXPECT_NEAR(p.y, 1.0, 1e-15);
  EXPECT_EQ(p.z, 5.0);
  ZmPoint3d q(1, 2, 3), invalid = ZmNonValP3d;
  EXPECT_EQ(q.Rotate(ZmPoint3d(), ZmVector3d(0, 0, 0), 90.0), 0);
  EXPECT_EQ(q, ZmPoint3d(1, 2, 3));
  EXPECT_EQ(invalid.Rotate(ZmPoint3d(), ZmVector3d(0, 0, 1), 90.0), 0);
}

}  // namespace
