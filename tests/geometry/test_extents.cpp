// Axis-aligned extents: the empty state, growth by points and boxes, ignored samples, closed
// containment with a tolerance, centre and size, in 2D and 3D and both precisions.
#include <gtest/gtest.h>

#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class ExtentsTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(ExtentsTwins, Scalars);

TYPED_TEST(ExtentsTwins, EmptyBoxHasNoCornersAndContainsNothing) {
  using T = TypeParam;
  const ZmExtents3T<T> box;
  EXPECT_EQ(box.IsEmpty(), 1);
  EXPECT_EQ(box.GetMinimum().IsValid(), 0);
  EXPECT_EQ(box.GetMaximum().IsValid(), 0);
  EXPECT_EQ(box.GetCenter().IsValid(), 0);
  EXPECT_TRUE(box.GetSize() == ZmVector3T<T>(0, 0, 0));
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(0, 0, 0), T(1e30)), 0);
  EXPECT_TRUE(box == ZmExtents3T<T>());
}

TYPED_TEST(ExtentsTwins, PointsGrowTheBoxAndBadSamplesAreIgnored) {
  using T = TypeParam;
  ZmExtents3T<T> box;
  ASSERT_EQ(box.Add(ZmPoint3T<T>(1, -2, 3)), 1);
  // A single point: not empty, no size, centre on it.
  EXPECT_EQ(box.IsEmpty(), 0);
  EXPECT_TRUE(box.GetSize() == ZmVector3T<T>(0, 0, 0));
  EXPECT_TRUE(box.GetCenter() == ZmPoint3T<T>(1, -2, 3));
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(1, -2, 3)), 1);

  WbArrayTempl<ZmPoint3T<T>> points;
  points.Add(ZmPoint3T<T>(-3, 4, 3));
  points.Add(ZmPoint3T<T>(WbCoord3DT<T>::INVALID));
  points.Add(ZmPoint3T<T>(0, 0, std::numeric_limits<T>::quiet_NaN()));
  points.Add(ZmPoint3T<T>(std::numeric_limits<T>::infinity(), 0, 0));
  // A point with only one marker component is invalid too.
  points.Add(ZmPoint3T<T>(T(zm::kInvalid), 100, 100));
  points.Add(ZmPoint3T<T>(2, 0, -5));
  EXPECT_EQ(box.Add(points), 2u);
  EXPECT_TRUE(box.GetMinimum() == ZmPoint3T<T>(-3, -2, -5));
  EXPECT_TRUE(box.GetMaximum() == ZmPoint3T<T>(2, 4, 3));
  EXPECT_TRUE(box.GetCenter() == ZmPoint3T<T>(-0.5, 1, -1));
  EXPECT_TRUE(box.GetSize() == ZmVector3T<T>(5, 6, 8));
  EXPECT_TRUE(ZmExtents3T<T>(points).GetMinimum() == ZmPoint3T<T>(-3, 0, -5));

  // Two corners in any order span the same box.
  EXPECT_TRUE(ZmExtents3T<T>(ZmPoint3T<T>(2, 4, 3), ZmPoint3T<T>(-3, -2, -5)) == box);
  box.SetEmpty();
  EXPECT_EQ(box.IsEmpty(), 1);
}

TYPED_TEST(ExtentsTwins, ContainmentIsClosedWithAnOptionalTolerance) {
  using T = TypeParam;
  const ZmExtents3T<T> box(ZmPoint3T<T>(0, 0, 0), ZmPoint3T<T>(1, 2, 4));
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(1, 2, 4)), 1);  // a corner
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(0, 1, 2)), 1);  // a face
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(0.5, 2.25, 2)), 0);
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(0.5, 2.25, 2), T(0.25)), 1);  // the margin is inclusive
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(0.5, 2.25, 2), T(-0.25)), 1);
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(-0.5, 1, 2), T(0.25)), 0);
  EXPECT_EQ(box.Contains(ZmPoint3T<T>(0.5, 1, std::numeric_limits<T>::quiet_NaN()), T(10)), 0);
}

TYPED_TEST(ExtentsTwins, MergeAndTheTwoDimensionalBox) {
  using T = TypeParam;
  ZmExtents3T<T> a(ZmPoint3T<T>(0, 0, 0), ZmPoint3T<T>(1, 1, 1));
  const ZmExtents3T<T> b(ZmPoint3T<T>(-1, 0.5, 2), ZmPoint3T<T>(0.5, 3, 2.5));
  ZmExtents3T<T> merged = a;
  merged.Merge(ZmExtents3T<T>());  // an empty box changes nothing
  EXPECT_TRUE(merged == a);
  merged.Merge(b);
  EXPECT_TRUE(merged.GetMinimum() == ZmPoint3T<T>(-1, 0, 0));
  EXPECT_TRUE(merged.GetMaximum() == ZmPoint3T<T>(1, 3, 2.5));
  ZmExtents3T<T> empty;
  empty.Merge(b);
  EXPECT_TRUE(empty == b);

  ZmExtents2T<T> flat;
  flat.Add(ZmPoint2T<T>(3, -1));
  flat.Add(ZmPoint2T<T>(-1, 5));
  flat.Add(ZmPoint2T<T>(std::numeric_limits<T>::quiet_NaN(), 100));
  EXPECT_TRUE(flat.GetCenter() == ZmPoint2T<T>(1, 2));
  EXPECT_TRUE(flat.GetSize() == ZmVector2T<T>(4, 6));
  EXPECT_EQ(flat.Contains(ZmPoint2T<T>(-1, -1)), 1);
  EXPECT_EQ(flat.Contains(ZmPoint2T<T>(-1.5, 0)), 0);
}

}  // namespace
