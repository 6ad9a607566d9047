// 3D points: layout, conversions, the operator table, coordinate conversions and the statics.
#include <cmath>
#include <type_traits>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(Point3Twins);

static_assert(sizeof(P3) == 3 * sizeof(double) && sizeof(ZmPoint3f) == 3 * sizeof(float) &&
                  sizeof(V3) == 3 * sizeof(double) && std::is_trivially_copyable<P3>::value &&
                  std::is_standard_layout<P3>::value && std::is_standard_layout<ZmVector3f>::value &&
                  !std::is_polymorphic<P3>::value && !std::is_polymorphic<ZmVector3f>::value &&
                  std::is_base_of<WbCoord3Dd, P3>::value && std::is_base_of<WbCoord3Df, ZmVector3f>::value,
              "a point or vector is exactly its three scalars on the base coordinate");
// A location minus or plus a location is a displacement; a location moved by a displacement
// stays a location; with a bare coordinate the result is a displacement; the left operand
// decides the class.
const P3 a(1, 2, 3), b(4, 6, 3);
static_assert(std::is_same<decltype(b - a), V3>::value && std::is_same<decltype(a + b), V3>::value &&
                  std::is_same<decltype(a + ZmVector3f()), P3>::value &&
                  std::is_same<decltype(a - ZmVector2d()), P3>::value &&
                  std::is_same<decltype(a + WbCoord3Dd()), V3>::value &&
                  std::is_same<decltype(ZmVector3f() + a), ZmVector3f>::value,
              "");

TEST(Point3, ConversionsAndOperators) {
  const double* none = nullptr;
  EXPECT_EQ(P3(none), ZmNonValP3d);
  EXPECT_EQ(P3(ZmPoint2f(1.5f, 2.5f)), P3(1.5, 2.5, 0.0));  // a 2D source gets z = 0
  const ZmPoint3f narrowed = P3(0.1, 0.2, 0.3);             // rounded to nearest
  EXPECT_EQ(narrowed, ZmPoint3f(0.1f, 0.2f, 0.3f));
  P3 assigned;
  assigned = 7;
  EXPECT_EQ(assigned, P3(7, 7, 7));
  EXPECT_TRUE(b - a == V3(3, 4, 0) && a + ZmVector3f(0.5f, 0.25f, -1.0f) == P3(1.5, 2.25, 2.0) &&
              a - ZmVector2d(1, 1) == P3(0, 1, 3));
  // Component-wise, not a dot product; a scalar on the left acts on each component.
  EXPECT_TRUE(a * V3(2, 3, 4) == P3(2, 6, 12) && 10 - a == P3(9, 8, 7) && 12.0 / a == P3(12, 6, 4));
  // Ordering compares the distances from the origin: |(3, 4, 0)| = |(0, 0, 5)| < |(0, 0, 6)|.
  const P3 p(3, 4, 0), q(0, 0, 5), r(0, 0, 6);
  EXPECT_EQ((Ints{(p < q), (p > q), (p <= q), (p >= q), (p == q), (p != q), (p < r), (r > p)}),
            (Ints{0, 0, 1, 1, 0, 1, 1, 1}));
  EXPECT_EQ(P3(1, 2.5, -3).GetString(L"%.2f", L";"), WbString(L"1.00;2.50;-3.00"));
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
  const P3 origin, p(1, 2, 3);
  EXPECT_EQ((Ints{origin.IsDistinctFrom(P3(1.0e-5, 0, 0)), origin.IsDistinctFrom(P3(0.99e-5, 0, 0)),
                  origin.IsDistinctFrom(P3(9.999999747378752e-06, 0, 0)),
                  ZmPoint3f().IsDistinctFrom(ZmPoint3f(1.0e-5f, 0, 0))}),
            (Ints{1, 0, 0, 0}));
  // Closed intervals; NaN is inside nothing.
  EXPECT_EQ((Ints{p.IsInside(1, 2, 2, 3, 3, 4), p.IsInside(1.0000001, 2, 0, 3, 0, 4), p.IsInside(0, 2, 0, 3, 0, 2.9999),
                  P3(NAN, 0, 0).IsInside(-1, 1, -1, 1, -1, 1)}),
            (Ints{1, 0, 0, 0}));
  EXPECT_EQ((Ints{P3::ComparePoints(P3(1, 2, 3), P3(1, 2, 4)), P3::ComparePoints(P3(1, 3, 0), P3(1, 2, 4)),
                  P3::ComparePoints(P3(1, 2, 3), P3(1, 2, 3)), P3::CompareY(P3(9, 1, 0), P3(0, 2, 0))}),
            (Ints{-1, 1, 0, -1}));
}

TYPED_TEST(Point3Twins, AlignmentAndLineDistance) {
  using P = ZmPoint3T<TypeParam>;
  using V = ZmVector3T<TypeParam>;
  const P o(0, 0, 0), x(1, 0, 0);
  // The distance 0.01 is rounded to float (0.009999999776482582) before the comparison;
  // coincident first points are aligned with anything.
  EXPECT_EQ(
      (Ints{P::AreAligned(o, x, P(2, 0.01, 0), TypeParam(0.01)), P::AreAligned(o, x, P(2, 0.01, 0), TypeParam(0.0099)),
            P::AreAligned(o, o, P(5, 5, 5), TypeParam(0))}),
      (Ints{1, 0, 1}));
  EXPECT_EQ(P(0, 5, 0).DistanceToLine(o, V(2, 0, 0)), TypeParam(5));
  EXPECT_EQ(P(3, 4, 0).DistanceToLine(o, V(0, 0, 0)), TypeParam(5));  // degenerate line: the point
  P nearest;
  EXPECT_EQ(o.DistanceToPointEx(P(0, 3, 4), &nearest), TypeParam(5));
  EXPECT_EQ(nearest, P(0, 3, 4));
}

TEST(Point3, CentreLengthAndPointAtLength) {
  // The middle of the bounding box, not the mean 11/3.
  EXPECT_TRUE(P3::ComputeCenter({P3(0, 0, 0), P3(1, 0, 0), P3(10, 0, 0)}) == P3(5, 0, 0) &&
              P3::ComputeCenter({P3(-2, -4, 1), P3(2, 0, 3), P3(-1, -1, 2)}) == P3(0, -2, 2) &&
              P3::ComputeCenter(WbArrayTempl<P3>()) == ZmNonValP3d &&
              ZmPoint3f::ComputeCenter(ZmPoint3f(1, 2, 3), ZmPoint3f(3, 2, 1)) == ZmPoint3f(2, 2, 2));
  EXPECT_TRUE(P3::ComputePolylineLength(WbArrayTempl<P3>()) == kMarker &&
              P3::ComputePolylineLength({P3(4, 5, 6)}) == 0 &&
              ZmPoint3f::ComputePolylineLength(WbArrayTempl<ZmPoint3f>()) == -1.0e32f);
  // Each segment is rounded to float: 2 * float(0.1) = 0.20000000298023224, not 0.2.
  EXPECT_EQ(P3::ComputePolylineLength({P3(0, 0, 0), P3(0.1, 0, 0), P3(0.2, 0, 0)}), 0.20000000298023224);

  // Along (0,0,0) -> (2,0,0) -> (2,2,0); beyond the ends only when clamped; a zero-length
  // segment is passed over without dividing by zero.
  const WbArrayTempl<P3> path{P3(0, 0, 0), P3(2, 0, 0), P3(2, 2, 0)}, stutter{P3(), P3(), P3(0, 4, 0)}, none;
  const struct {
    const WbArrayTempl<P3>* points;
    double length;
    unsigned char clamp;
    P3 expected;
  } rows[] = {{&path, 3, 0, P3(2, 1, 0)}, {&path, 0.5, 0, P3(0.5, 0, 0)}, {&path, 0, 0, P3()},
              {&path, 4, 0, P3(2, 2, 0)}, {&path, 5, 1, P3(2, 2, 0)},     {&path, 5, 0, ZmNonValP3d},
              {&path, -1, 1, P3()},       {&path, -1, 0, ZmNonValP3d},    {&path, NAN, 1, ZmNonValP3d},
              {&none, 0, 1, ZmNonValP3d}, {&stutter, 1, 0, P3(0, 1, 0)}};
  for (const auto& r : rows)
    EXPECT_EQ(P3::GetPolylinePointAtLength(*r.points, r.length, r.clamp), r.expected) << r.length;
}

TEST(Point3, RotationAboutAnAxisThroughACentre) {
  P3 p(2, 1, 5);
  ASSERT_EQ(p.Rotate(P3(1, 1, 0), V3(0, 0, 2), 180.0), 1);
  EXPECT_TRUE(std::fabs(p.x) <= 1e-15 && std::fabs(p.y - 1) <= 1e-15 && p.z == 5.0);
  // A zero axis or an invalid point is refused, the point left alone.
  P3 q(1, 2, 3), invalid = ZmNonValP3d;
  EXPECT_EQ(q.Rotate(P3(), V3(0, 0, 0), 90.0) + invalid.Rotate(P3(), V3(0, 0, 1), 90.0), 0);
  EXPECT_EQ(q, P3(1, 2, 3));
}

}  // namespace
