// Ordering 3D points along a segment: the signed abscissa from a, points behind a first, the
// single-precision distance, the nothing-to-sort result and the degenerate segment.
#include <gtest/gtest.h>

#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class SortOnSegmentTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(SortOnSegmentTwins, Scalars);

TYPED_TEST(SortOnSegmentTwins, PointsComeInOrderOfTheirProjection) {
  using P = ZmPoint3T<TypeParam>;
  // a = (1,1,1), b = (3,3,2): direction u = (2,2,1)/3. Each point is a + t u + an offset
  // orthogonal to u, built from e1 = (1,-1,0) and e2 = (1,0,-2) (both have u.e = 0):
  //   0: t 2.5, +e1 = (11/3, 5/3, 11/6)    1: t -1, +e2/2 = (5/6, 1/3, -1/3)    2: a itself
  //   3: t 4 = (11/3, 11/3, 7/3)           4: t 1, -e1 = (2/3, 8/3, 4/3)        5: t -3, +e2 = (0, -1, -2)
  // numpy, key = cos(acos(w.u / |w|)) * float32(|w|): 2.5, -1.0, (0 at a), 4.0, 1.0, -3.0 (each
  // within 1e-7 relative): points behind a have negative keys and come first.
  P a(1.0, 1.0, 1.0), b(3.0, 3.0, 2.0);
  WbArrayTempl<P> pts;
  pts.Add(P(11.0 / 3, 5.0 / 3, 11.0 / 6));
  pts.Add(P(5.0 / 6, 1.0 / 3, -1.0 / 3));
  pts.Add(P(1.0, 1.0, 1.0));
  pts.Add(P(11.0 / 3, 11.0 / 3, 7.0 / 3));
  pts.Add(P(2.0 / 3, 8.0 / 3, 4.0 / 3));
  pts.Add(P(0.0, -1.0, -2.0));
  std::vector<int> idx{0, 1, 2, 3, 4, 5};
  ZmSort sorter;
  EXPECT_EQ(sorter.SortArrayPoint3DOnSegment(a, b, pts, idx.data()), 0);
  EXPECT_EQ(idx, (std::vector<int>{5, 1, 2, 4, 0, 3}));
  // Swapping the ends reverses the direction: keys measured from (3,3,2) towards (1,1,1) are
  // 3 - t, so the order reverses.
  std::vector<int> back{0, 1, 2, 3, 4, 5};
  EXPECT_EQ(sorter.SortArrayPoint3DOnSegment(b, a, pts, back.data()), 0);
  EXPECT_EQ(back, (std::vector<int>{3, 0, 4, 2, 1, 5}));
}

TYPED_TEST(SortOnSegmentTwins, NothingToSortLeavesIdxAlone) {
  using P = ZmPoint3T<TypeParam>;
  P a(0.0, 0.0, 0.0), b(1.0, 0.0, 0.0);
  WbArrayTempl<P> pts;
  int idx[2] = {-7, -8};
  ZmSort sorter;
  EXPECT_EQ(sorter.SortArrayPoint3DOnSegment(a, b, pts, idx), 1);
  pts.Add(P(5.0, 0.0, 0.0));
  EXPECT_EQ(sorter.SortArrayPoint3DOnSegment(a, b, pts, idx), 1);
  EXPECT_EQ(idx[0], -7);
  EXPECT_EQ(idx[1], -8);
  // Keys already ascending in storage order: sorted (result 0) without touching idx, as any
  // call of sort_fast whose keys pass the storage check.
  pts.Add(P(6.0, 1.0, 0.0));
  int given[2] = {1, 0};
  EXPECT_EQ(sorter.SortArrayPoint3DOnSegment(a, b, pts, given), 0);
  EXPECT_EQ(given[0], 1);
  EXPECT_EQ(given[1], 0);
}

TYPED_TEST(SortOnSegmentTwins, DegenerateSegmentOrdersByDecreasingDistance) {
  using P = ZmPoint3T<TypeParam>;
  // a == b: the angle is the invalid marker and every key is cos(-1.0e32f) |w|; cos of that
  // argument is -0.18649658702462218 (math.cos, and numpy float32 -0.18649659), so the
  // farthest point comes first. Distances from a: 2, 5, 1, 3.
  P a(1.0, 2.0, 3.0), b(1.0, 2.0, 3.0);
  WbArrayTempl<P> pts;
  pts.Add(P(3.0, 2.0, 3.0));
  pts.Add(P(1.0, 2.0, -2.0));
  pts.Add(P(1.0, 1.0, 3.0));
  pts.Add(P(1.0, 5.0, 3.0));
  std::vector<int> idx{0, 1, 2, 3};
  ZmSort sorter;
  EXPECT_EQ(sorter.SortArrayPoint3DOnSegment(a, b, pts, idx.data()), 0);
  EXPECT_EQ(idx, (std::vector<int>{1, 3, 0, 2}));
}

TEST(SortOnSegment, DistanceIsRoundedToFloatBeforeTheProduct) {
  // Along the segment direction the angle is 0 and the key is the distance. 1 + 1e-12 and 1
  // are distinct doubles but the same float: the keys tie, pass the storage check and idx is
  // kept; with the distance in full double precision the two would be exchanged.
  ZmPoint3d a(0.0, 0.0, 0.0), b(1.0, 0.0, 0.0);
  WbArrayTempl<ZmPoint3d> pts;
  pts.Add(ZmPoint3d(1.0 + 1.0e-12, 0.0, 0.0));
  pts.Add(ZmPoint3d(1.0, 0.0, 0.0));
  int idx[2] = {0, 1};
  ZmSort sorter;
  EXPECT_EQ(sorter.SortArrayPoint3DOnSegment(a, b, pts, idx), 0);
  EXPECT_EQ(idx[0], 0);
  EXPECT_EQ(idx[1], 1);
}

}  // namespace
