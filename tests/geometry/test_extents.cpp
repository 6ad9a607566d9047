// Axis-aligned extents: the empty state, growth by points and boxes, ignored samples, closed
// containment with a tolerance, centre and size, in 2D and 3D and both precisions.
#include <limits>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(ExtentsTwins);

TYPED_TEST(ExtentsTwins, GrowthIgnoresBadSamples) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  const T nan = std::numeric_limits<T>::quiet_NaN(), inf = std::numeric_limits<T>::infinity();
  ZmExtents3T<T> box;
  // Empty: no corners, no centre, no size, contains nothing.
  EXPECT_TRUE(box.IsEmpty() && !box.GetMinimum().IsValid() && !box.GetMaximum().IsValid() &&
              !box.GetCenter().IsValid());
  EXPECT_TRUE(box.GetSize() == ZmVector3T<T>(0, 0, 0) && box == ZmExtents3T<T>());
  EXPECT_EQ(box.Contains(P(0, 0, 0), T(1e30)), 0);
  // A single point: not empty, no size, centre on it.
  ASSERT_EQ(box.Add(P(1, -2, 3)), 1);
  EXPECT_TRUE(!box.IsEmpty() && box.GetSize() == ZmVector3T<T>(0, 0, 0) && box.GetCenter() == P(1, -2, 3));
  EXPECT_EQ(box.Contains(P(1, -2, 3)), 1);
  // Invalid, NaN, infinite points and a point with a single marker component are skipped.
  const WbArrayTempl<P> points{P(-3, 4, 3),  P(WbCoord3DT<T>::INVALID),    P(0, 0, nan),
                               P(inf, 0, 0), P(T(zm::kInvalid), 100, 100), P(2, 0, -5)};
  EXPECT_EQ(box.Add(points), 2u);
  EXPECT_TRUE(box.GetMinimum() == P(-3, -2, -5) && box.GetMaximum() == P(2, 4, 3));
  EXPECT_TRUE(box.GetCenter() == P(-0.5, 1, -1) && box.GetSize() == ZmVector3T<T>(5, 6, 8));
  EXPECT_TRUE(ZmExtents3T<T>(points).GetMinimum() == P(-3, 0, -5));
  EXPECT_TRUE(ZmExtents3T<T>(P(2, 4, 3), P(-3, -2, -5)) == box);  // two corners in any order
  box.SetEmpty();
  EXPECT_EQ(box.IsEmpty(), 1);

  // Merging an empty box changes nothing; merging into an empty box copies.
  ZmExtents3T<T> merged(P(0, 0, 0), P(1, 1, 1)), empty;
  const ZmExtents3T<T> b(P(-1, 0.5, 2), P(0.5, 3, 2.5));
  merged.Merge(ZmExtents3T<T>());
  EXPECT_TRUE(merged == ZmExtents3T<T>(P(0, 0, 0), P(1, 1, 1)));
  merged.Merge(b);
  empty.Merge(b);
  EXPECT_TRUE(merged == ZmExtents3T<T>(P(-1, 0, 0), P(1, 3, 2.5)) && empty == b);

  ZmExtents2T<T> flat;
  flat.Add(ZmPoint2T<T>(3, -1));
  flat.Add(ZmPoint2T<T>(-1, 5));
  flat.Add(ZmPoint2T<T>(nan, 100));
  EXPECT_TRUE(flat.GetCenter() == ZmPoint2T<T>(1, 2) && flat.GetSize() == ZmVector2T<T>(4, 6));
  EXPECT_EQ(flat.Contains(ZmPoint2T<T>(-1, -1)) * 2 + flat.Contains(ZmPoint2T<T>(-1.5, 0)), 2);
}

// Corners and faces belong to the box; the margin is inclusive and its sign ignored.
TYPED_TEST(ExtentsTwins, ContainmentIsClosedWithAnOptionalTolerance) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  const ZmExtents3T<T> box(P(0, 0, 0), P(1, 2, 4));
  const struct {
    P p;
    T tol;
    int inside;
  } rows[] = {{P(1, 2, 4), 0, 1},
              {P(0, 1, 2), 0, 1},
              {P(0.5, 2.25, 2), 0, 0},
              {P(0.5, 2.25, 2), 0.25, 1},
              {P(0.5, 2.25, 2), -0.25, 1},
              {P(-0.5, 1, 2), 0.25, 0},
              {P(0.5, 1, std::numeric_limits<T>::quiet_NaN()), 10, 0}};
  for (const auto& r : rows) EXPECT_EQ(box.Contains(r.p, r.tol), r.inside) << r.p.x << " " << r.p.y << " " << r.tol;
}

}  // namespace
