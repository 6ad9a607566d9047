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

using Pd = ZmPoint3d;
// a = (1,1,1), b = (3,3,2): direction u = (2,2,1)/3. Each point is a + t u + an offset
// orthogonal to u, built from e1 = (1,-1,0) and e2 = (1,0,-2) (both have u.e = 0):
//   0: t 2.5, +e1 = (11/3, 5/3, 11/6)    1: t -1, +e2/2 = (5/6, 1/3, -1/3)    2: a itself
//   3: t 4 = (11/3, 11/3, 7/3)           4: t 1, -e1 = (2/3, 8/3, 4/3)        5: t -3, +e2 = (0, -1, -2)
// numpy, key = cos(acos(w.u / |w|)) * float32(|w|): 2.5, -1.0, (0 at a), 4.0, 1.0, -3.0 (each
// within 1e-7 relative): points behind a have negative keys and come first.
const std::vector<Pd> kAlong = {Pd(11.0 / 3, 5.0 / 3, 11.0 / 6), Pd(5.0 / 6, 1.0 / 3, -1.0 / 3), Pd(1, 1, 1),
                                Pd(11.0 / 3, 11.0 / 3, 7.0 / 3), Pd(2.0 / 3, 8.0 / 3, 4.0 / 3), Pd(0, -1, -2)};

TYPED_TEST(SortOnSegmentTwins, PointsComeInOrderOfTheirProjection) {
  using P = ZmPoint3T<TypeParam>;
  const struct {
    Pd a, b;
    std::vector<Pd> points;
    std::vector<int> idx, expected;
    int result;
  } rows[] = {
      {Pd(1, 1, 1), Pd(3, 3, 2), kAlong, {0, 1, 2, 3, 4, 5}, {5, 1, 2, 4, 0, 3}, 0},
      // Swapping the ends reverses the direction: keys from (3,3,2) towards (1,1,1) are 3 - t.
      {Pd(3, 3, 2), Pd(1, 1, 1), kAlong, {0, 1, 2, 3, 4, 5}, {3, 0, 4, 2, 1, 5}, 0},
      // a == b: the angle is the invalid marker and every key is cos(-1.0e32f) |w|; cos of that
      // argument is -0.18649658702462218 (math.cos, and numpy float32 -0.18649659), so the
      // farthest point comes first. Distances from a: 2, 5, 1, 3.
      {Pd(1, 2, 3), Pd(1, 2, 3), {Pd(3, 2, 3), Pd(1, 2, -2), Pd(1, 1, 3), Pd(1, 5, 3)}, {0, 1, 2, 3}, {1, 3, 0, 2}, 0},
      // Nothing to sort: result 1, idx untouched.
      {Pd(0, 0, 0), Pd(1, 0, 0), {}, {-7, -8}, {-7, -8}, 1},
      {Pd(0, 0, 0), Pd(1, 0, 0), {Pd(5, 0, 0)}, {-7, -8}, {-7, -8}, 1},
      // Keys ascending in storage order: sorted (result 0) without touching idx, as any call of
      // sort_fast whose keys pass the storage check.
      {Pd(0, 0, 0), Pd(1, 0, 0), {Pd(5, 0, 0), Pd(6, 1, 0)}, {1, 0}, {1, 0}, 0},
      // Along the direction the key is the distance. 1 + 1e-12 and 1 are distinct doubles but the
      // same float: the keys tie, pass the storage check and idx is kept; with the distance in full
      // double precision the two would be exchanged.
      {Pd(0, 0, 0), Pd(1, 0, 0), {Pd(1 + 1e-12, 0, 0), Pd(1, 0, 0)}, {0, 1}, {0, 1}, 0},
  };
  for (const auto& r : rows) {
    P a(r.a.x, r.a.y, r.a.z), b(r.b.x, r.b.y, r.b.z);
    WbArrayTempl<P> points;
    for (const Pd& p : r.points) points.Add(P(p.x, p.y, p.z));
    std::vector<int> idx = r.idx;
    EXPECT_EQ(ZmSort().SortArrayPoint3DOnSegment(a, b, points, idx.data()), r.result) << r.points.size();
    EXPECT_EQ(idx, r.expected) << r.points.size();
  }
}

}  // namespace
