// ZmSort in both key precisions: exact permutations of the pivot, scan and insertion rules, the storage
// pre-check, the budget against defeating orders, long inputs, NaN keys, and points along a segment.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

const double kNan = NAN;

std::vector<int> Identity(int n) {
  std::vector<int> idx(static_cast<std::size_t>(n));
  std::iota(idx.begin(), idx.end(), 0);
  return idx;
}

std::vector<int> Reversed(int n) {
  const std::vector<int> idx = Identity(n);
  return {idx.rbegin(), idx.rend()};
}

template <class K>
std::vector<int> Sorted(std::vector<K> key, std::vector<int> idx) {
  EXPECT_EQ(ZmSort().sort_fast(static_cast<int>(idx.size()), idx.data(), key.data()), 0);
  return idx;
}

// The plain recursive reading of the algorithm, the oracle for the library's loop form: both
// sides are nested calls, in the same order (right side first when p > n - p), and the storage
// pre-check runs only on the outer call. With bounded set, a slice of more than 15 keys found
// after d > 16 partitions is over budget when it is longer than n * (861/1024)^(d - 16) (rounded
// down at each step); it is then ordered by key, then by index value, NaN last.
template <class K>
struct LiteralSort {
  const K* key;
  bool bounded = false;
  K At(const int* idx, int k) const { return key[idx[k]]; }
  int Partition(int n, int* idx) const {
    const int last = n - 1, mid = n / 2;
    if (At(idx, mid) > At(idx, last)) std::swap(idx[mid], idx[last]);
    if (At(idx, 0) > At(idx, last)) std::swap(idx[0], idx[last]);
    if (At(idx, 0) > At(idx, mid)) std::swap(idx[0], idx[mid]);
    const K pivot = At(idx, 0);
    int i = 0, j = last;
    do {
      while (pivot > At(idx, ++i)) continue;
      while (At(idx, --j) > pivot) continue;
      std::swap(idx[i], idx[j]);
    } while (i < j);
    if (i > j) std::swap(idx[i], idx[j]);
    std::swap(idx[0], idx[std::min(i, j)]);
    return std::min(i, j);
  }
  void Slice(int n, int* idx, int depth, long long limit) const {
    if (n < 16) {
      for (int i = 1; i < n; ++i)
        for (int j = i - 1; j >= 0 && At(idx, j) > At(idx, j + 1); --j) std::swap(idx[j], idx[j + 1]);
    } else if (bounded && n > limit) {
      std::sort(idx, idx + n, [this](int a, int b) {
        const bool nanA = std::isnan(key[a]), nanB = std::isnan(key[b]);
        if (nanA != nanB) return nanB;
        return nanA || key[a] == key[b] ? a < b : key[a] < key[b];
      });
    } else {
      if (depth >= 16) limit = limit * 861 / 1024;
      const int p = Partition(n, idx);
      if (p > n - p) Slice(n - p - 1, idx + p + 1, depth + 1, limit);
      Slice(p, idx, depth + 1, limit);
      if (p <= n - p) Slice(n - p - 1, idx + p + 1, depth + 1, limit);
    }
  }
  std::vector<int> Run(std::vector<int> idx) const {
    const int n = static_cast<int>(idx.size());
    if (std::adjacent_find(key, key + n, [](K a, K b) { return !(b >= a); }) != key + n) Slice(n, idx.data(), 0, n);
    return idx;
  }
};

template <class K>
class SortTwins : public ::testing::Test {};
using KeyTypes = ::testing::Types<double, float>;
TYPED_TEST_SUITE(SortTwins, KeyTypes);

TYPED_TEST(SortTwins, WorkedPermutations) {
  using K = TypeParam;
  const struct {
    std::vector<double> key;
    std::vector<int> idx, expected;  // idx empty: the identity
  } rows[] = {
      {{7}, {0}, {0}},
      // Keys non-decreasing in storage order (with a tie): idx comes back as it went in, even though
      // key[idx[k]] is not ordered (above sixteen keys, the ascending keys through a shuffled idx below).
      {{0, 1, 1, 2, 5}, {4, 2, 0, 3, 1}, {4, 2, 0, 3, 1}},
      // One descent anywhere makes it sort: the last pair here.
      {{0, 1, 2, 3, 2.5}, {}, {0, 1, 2, 4, 3}},
      // Insertion sort below sixteen keeps equal keys in their idx order: through idx 4 3 2 1 0 5
      // the keys read 3 1 2 1 3 0, ties 3,1 and 4,0 keep that order.
      {{3, 1, 2, 1, 3, 0}, {}, {5, 1, 3, 2, 0, 4}},
      {{3, 1, 2, 1, 3, 0}, {4, 3, 2, 1, 0, 5}, {5, 3, 1, 2, 4, 0}},
      // Fifteen equal keys but one: only the smaller one moves, to the front.
      {{2, 2, 2, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2}, {}, {9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13, 14}},
      // Keys 15..0: the pivot (key 0 at position 15) goes to position 0, the rest insertion-sorted.
      {{15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}, {}, Reversed(16)},
      // Worked by hand (n = 16, last = 15, mid = 8): samples key 5 (pos 0), 2 (pos 8), 4 (pos 15):
      //  5 > 4 swaps 0/15; 4 > 2 swaps 0/8: pivot 2 (index 8), idx = 8 1 2 3 4 5 6 7 15 9 10 11 12 13 14 0.
      //  passes (i, j): (1, 14) (2, 12) (4, 10) (5, 6) (6, 5) -> crossed, the last exchange undone,
      //  p = 5, idx[0] <-> idx[5]: left 6 14 12 3 10, pivot 8, right 5 7 15 9 4 11 2 13 1 0.
      //  p = 5 <= n - p: left then right, both insertion-sorted (stable).
      // The four keys 1 come out as 6 14 3 10, not in index order: the partition is not stable.
      {{5, 3, 5, 1, 3, 5, 1, 3, 2, 3, 1, 5, 2, 3, 1, 4}, {}, {6, 14, 3, 10, 12, 8, 7, 9, 4, 13, 1, 15, 5, 11, 2, 0}},
      // Below sixteen a NaN is never passed by the insertion sort: it keeps its place and the runs
      // on either side are sorted on their own. keys 3 1 NaN 2 0 5 4 -> 1 0 | 2 | 4 3 6 5.
      {{3, 1, kNan, 2, 0, 5, 4}, {}, {1, 0, 2, 4, 3, 6, 5}},
      // A NaN fails the storage pre-check even where the other keys are ordered: keys 0 NaN 2 3
      // through idx 3 2 1 0 read 3 2 NaN 0; only the first pair can move.
      {{0, kNan, 2, 3}, {3, 2, 1, 0}, {2, 3, 1, 0}},
  };
  for (const auto& r : rows) {
    const std::vector<K> key(r.key.begin(), r.key.end());
    const std::vector<int> idx = r.idx.empty() ? Identity(static_cast<int>(key.size())) : r.idx;
    EXPECT_EQ(Sorted(key, idx), r.expected) << "keys " << key.size() << " first " << key[0];
  }
  for (int n : {0, -3}) EXPECT_EQ(ZmSort().sort_fast(n, nullptr, static_cast<K*>(nullptr)), 0);
}

TYPED_TEST(SortTwins, OrdinaryKeysFollowThePlainAlgorithmExactly) {
  using K = TypeParam;
  // Random, few distinct, ascending reached through a shuffled idx, and descending keys, over
  // many seeds: never over budget, so the permutation is exactly the plain algorithm's, ties
  // included. Then NaN at the three sample positions, scattered and everywhere: the order is
  // unspecified, idx stays a permutation (AddressSanitizer checks the bounds).
  for (unsigned seed = 0; seed < 60; ++seed) {
    std::mt19937 rng(seed);
    for (int n : {16, 17, 33, 100, 257, 1000, 4099, seed < 3 ? 100000 : 0}) {
      for (int kind = 0; kind < 8; ++kind) {
        std::vector<K> key(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) {
          const int drawn[] = {1 << 30, 2, 7, i, n - i, 50, 50, 50};
          key[i] = kind == 3 || kind == 4 ? K(drawn[kind]) : K(static_cast<int>(rng() % unsigned(drawn[kind])));
          if (kind == 7 || (kind == 6 && rng() % 10u == 0)) key[i] = K(kNan);
        }
        if (kind == 5 && n > 0) key[0] = key[n / 2] = key[n - 1] = K(kNan);
        std::vector<int> idx = Identity(n);
        if (kind == 3) std::shuffle(idx.begin(), idx.end(), rng);
        std::vector<int> got = Sorted(key, idx);
        if (kind >= 5) std::sort(got.begin(), got.end());
        ASSERT_EQ(got, kind < 5 ? LiteralSort<K>{key.data()}.Run(idx) : idx) << seed << " " << n << " " << kind;
      }
    }
  }
}

TYPED_TEST(SortTwins, OrdersThatDefeatThePivotFinishByKeyThenIndexInTime) {
  using K = TypeParam;
  // Organ-pipe keys (every value twice), ascending keys but the first (the storage check fails),
  // descending keys with every 97th a NaN through a reversed idx, and ascending keys through a
  // reversed idx leave one long side per partition and run over budget; the rest is ordered by
  // key, then by index value (NaN last), which puts some ties of the pipe in another order than the
  // quicksort. The last order, one partition per key without the budget, must finish in seconds.
  for (int n : {40, 3000, 1 << 18}) {
    std::vector<K> pipe(n), almostAscending(n), withNan(n), descending(n);
    for (int i = 0; i < n; ++i) {
      pipe[i] = K(std::min(i, n - 1 - i));
      almostAscending[i] = K(i == 0 ? n / 2 : i);
      withNan[i] = i % 97 == 0 ? K(kNan) : K(n - i);
      descending[i] = K(n - i);
    }
    std::vector<int> got[3];
    for (int k = 0; k < 3; ++k) {
      const std::vector<K>& key = k == 0 ? pipe : k == 1 ? almostAscending : withNan;
      const std::vector<int> idx = k == 2 ? Reversed(n) : Identity(n);
      got[k] = Sorted(key, idx);
      EXPECT_EQ(got[k], (LiteralSort<K>{key.data(), true}.Run(idx))) << n << " " << k;
    }
    EXPECT_TRUE(n != 3000 || got[0] != LiteralSort<K>{pipe.data()}.Run(Identity(n))) << "budget never ran out";
    EXPECT_TRUE(n == 40 || std::isnan(withNan[got[2].back()]));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Sorted(descending, Reversed(n)), Reversed(n));
    EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 5.0);
  }
}

using Pd = ZmPoint3d;
// a = (1,1,1), b = (3,3,2): direction u = (2,2,1)/3. Each point is a + t u + an offset
// orthogonal to u, built from e1 = (1,-1,0) and e2 = (1,0,-2) (both have u.e = 0):
//   0: t 2.5, +e1 = (11/3, 5/3, 11/6)    1: t -1, +e2/2 = (5/6, 1/3, -1/3)    2: a itself
//   3: t 4 = (11/3, 11/3, 7/3)           4: t 1, -e1 = (2/3, 8/3, 4/3)        5: t -3, +e2 = (0, -1, -2)
// numpy, key = cos(acos(w.u / |w|)) * float32(|w|): 2.5, -1.0, (0 at a), 4.0, 1.0, -3.0 (each
// within 1e-7 relative): points behind a have negative keys and come first.
const std::vector<Pd> kAlong = {Pd(11.0 / 3, 5.0 / 3, 11.0 / 6), Pd(5.0 / 6, 1.0 / 3, -1.0 / 3), Pd(1, 1, 1),
                                Pd(11.0 / 3, 11.0 / 3, 7.0 / 3), Pd(2.0 / 3, 8.0 / 3, 4.0 / 3), Pd(0, -1, -2)};

TYPED_TEST(SortTwins, PointsOnASegmentComeInOrderOfTheirProjection) {
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
      // a == b: the angle is the invalid marker, every key cos(-1.0e32f) |w| = -0.18649658702462218 |w|
      // (math.cos; numpy float32 -0.18649659): the farthest first. Distances from a: 2, 5, 1, 3.
      {Pd(1, 2, 3), Pd(1, 2, 3), {Pd(3, 2, 3), Pd(1, 2, -2), Pd(1, 1, 3), Pd(1, 5, 3)}, {0, 1, 2, 3}, {1, 3, 0, 2}, 0},
      // Nothing to sort: result 1, idx untouched.
      {Pd(0, 0, 0), Pd(1, 0, 0), {}, {-7, -8}, {-7, -8}, 1},
      {Pd(0, 0, 0), Pd(1, 0, 0), {Pd(5, 0, 0)}, {-7, -8}, {-7, -8}, 1},
      // Keys ascending in storage order pass the storage check of sort_fast: result 0, idx kept.
      {Pd(0, 0, 0), Pd(1, 0, 0), {Pd(5, 0, 0), Pd(6, 1, 0)}, {1, 0}, {1, 0}, 0},
      // Along the direction the key is the distance, 1 + 1e-12 and 1 as doubles but the same float:
      // the keys tie and idx is kept; with the distance in full double precision they would swap.
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

TEST(SortObject, RuntimeRecord) {
  const WbRuntimeClass* record = WbRuntimeClass::FromName(L"ZmSort");
  ASSERT_EQ(record, &ZmSort::WbClassZmSort);
  EXPECT_EQ(ZmSort::GetBaseRuntimeClass(), &WbObject::WbClassWbObject);
  WbObject* made = WbRuntimeClass::CreateObject(L"ZmSort");
  ASSERT_TRUE(made && made->IsKindOf(record));
  EXPECT_EQ(WbObject::DeleteDynamicObject(made), 1);
}

}  // namespace
