// Index sorting: the exact permutations of the pivot, scan and insertion rules, the storage
// pre-check, both key precisions, long inputs and NaN keys.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

std::vector<int> Identity(int n) {
  std::vector<int> idx(static_cast<std::size_t>(n));
  std::iota(idx.begin(), idx.end(), 0);
  return idx;
}

template <class K>
std::vector<int> Sorted(std::vector<K> key, std::vector<int> idx) {
  ZmSort sorter;
  EXPECT_EQ(sorter.sort_fast(static_cast<int>(idx.size()), idx.data(), key.data()), 0);
  return idx;
}

template <class K>
std::vector<K> Keys(std::initializer_list<double> values) {
  std::vector<K> keys;
  for (double v : values) keys.push_back(static_cast<K>(v));
  return keys;
}

template <class K>
void ExpectSortedPermutation(const std::vector<K>& key, const std::vector<int>& before, const std::vector<int>& after) {
  std::vector<int> a = before, b = after;
  std::sort(a.begin(), a.end());
  std::sort(b.begin(), b.end());
  ASSERT_EQ(a, b) << "idx is no longer a permutation of its input";
  std::size_t unordered = 0;
  for (std::size_t k = 0; k + 1 < after.size(); ++k) unordered += key[after[k]] > key[after[k + 1]] ? 1 : 0;
  EXPECT_EQ(unordered, 0u);
}

// The plain recursive reading of the algorithm, used as the oracle for the library's loop
// form: both sides are nested calls, in the same order (right side first when p > n - p),
// and the storage pre-check runs only on the outer call. With bounded set, a slice of more
// than 15 keys found after d > 16 partitions is over budget when it is longer than
// n * (861/1024)^(d - 16) (rounded down at each step); it is then ordered by key, then by
// index value, NaN last.
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
      for (++i; pivot > At(idx, i); ++i) {
      }
      for (--j; At(idx, j) > pivot; --j) {
      }
      std::swap(idx[i], idx[j]);
    } while (i < j);
    if (i > j) std::swap(idx[i], idx[j]);
    const int p = i <= j ? i : j;
    std::swap(idx[0], idx[p]);
    return p;
  }
  void Slice(int n, int* idx, int depth, long long limit) const {
    if (n < 16) {
      for (int i = 1; i < n; ++i)
        for (int j = i - 1; j >= 0 && At(idx, j) > At(idx, j + 1); --j) std::swap(idx[j], idx[j + 1]);
      return;
    }
    if (bounded && n > limit) {
      std::sort(idx, idx + n, [this](int a, int b) {
        const bool nanA = std::isnan(key[a]), nanB = std::isnan(key[b]);
        if (nanA != nanB) return nanB;
        return nanA || key[a] == key[b] ? a < b : key[a] < key[b];
      });
      return;
    }
    if (depth >= 16) limit = limit * 861 / 1024;
    const int p = Partition(n, idx);
    if (p > n - p) {
      Slice(n - p - 1, idx + p + 1, depth + 1, limit);
      Slice(p, idx, depth + 1, limit);
    } else {
      Slice(p, idx, depth + 1, limit);
      Slice(n - p - 1, idx + p + 1, depth + 1, limit);
    }
  }
  std::vector<int> Run(std::vector<int> idx) const {
    const int n = static_cast<int>(idx.size());
    bool ordered = true;
    for (int i = 0; i + 1 < n; ++i) ordered = ordered && key[i + 1] >= key[i];
    if (!ordered) Slice(n, idx.data(), 0, n);
    return idx;
  }
};

template <class K>
class SortTwins : public ::testing::Test {};
using KeyTypes = ::testing::Types<double, float>;
TYPED_TEST_SUITE(SortTwins, KeyTypes);

TYPED_TEST(SortTwins, EmptyAndSingleInputsAreLeftAlone) {
  using K = TypeParam;
  ZmSort sorter;
  EXPECT_EQ(sorter.sort_fast(0, nullptr, static_cast<K*>(nullptr)), 0);
  EXPECT_EQ(sorter.sort_fast(-3, nullptr, static_cast<K*>(nullptr)), 0);
  K one[1] = {K(7)};
  int idx[1] = {0};
  EXPECT_EQ(sorter.sort_fast(1, idx, one), 0);
  EXPECT_EQ(idx[0], 0);
}

TYPED_TEST(SortTwins, StoragePreCheckReturnsIdxUntouched) {
  using K = TypeParam;
  // Keys non-decreasing in storage order (with a tie): idx comes back as it went in, even
  // though key[idx[k]] is not ordered, below and above the insertion-sort size.
  EXPECT_EQ(Sorted(Keys<K>({0, 1, 1, 2, 5}), std::vector<int>{4, 2, 0, 3, 1}), (std::vector<int>{4, 2, 0, 3, 1}));
  std::vector<K> ascending(40);
  for (int i = 0; i < 40; ++i) ascending[i] = K(i / 3);
  std::vector<int> reversed = Identity(40);
  std::reverse(reversed.begin(), reversed.end());
  EXPECT_EQ(Sorted(ascending, reversed), reversed);
  // One descent anywhere makes it sort: the last pair here.
  EXPECT_EQ(Sorted(Keys<K>({0, 1, 2, 3, 2.5}), Identity(5)), (std::vector<int>{0, 1, 2, 4, 3}));
}

TYPED_TEST(SortTwins, InsertionSortBelowSixteenIsStable) {
  using K = TypeParam;
  // keys by index: 0:3 1:1 2:2 3:1 4:3 5:0; equal keys keep their order in idx.
  const std::vector<K> key = Keys<K>({3, 1, 2, 1, 3, 0});
  EXPECT_EQ(Sorted(key, Identity(6)), (std::vector<int>{5, 1, 3, 2, 0, 4}));
  // Through idx = 4 3 2 1 0 5 the keys read 3 1 2 1 3 0: ties 3,1 and 4,0 keep that order.
  EXPECT_EQ(Sorted(key, std::vector<int>{4, 3, 2, 1, 0, 5}), (std::vector<int>{5, 3, 1, 2, 4, 0}));
  // Fifteen equal keys but one: only the smaller one moves, to the front.
  std::vector<K> flat(15, K(2));
  flat[9] = K(1);
  std::vector<int> expected{9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 11, 12, 13, 14};
  EXPECT_EQ(Sorted(flat, Identity(15)), expected);
}

TYPED_TEST(SortTwins, SixteenDescendingKeysReverseIdx) {
  using K = TypeParam;
  // Keys 15..0: the pivot (smallest sample, key 0 at position 15) goes to position 0, and
  // the remaining fifteen are insertion-sorted.
  std::vector<K> key(16);
  for (int i = 0; i < 16; ++i) key[i] = K(15 - i);
  std::vector<int> expected = Identity(16);
  std::reverse(expected.begin(), expected.end());
  EXPECT_EQ(Sorted(key, Identity(16)), expected);
}

TYPED_TEST(SortTwins, PartitionWithTiesGivesTheWorkedPermutation) {
  using K = TypeParam;
  // Worked by hand through the stated steps (n = 16, last = 15, mid = 8):
  //  samples key 5 (pos 0), 2 (pos 8), 4 (pos 15): no swap; 5 > 4 swaps 0/15; 4 > 2 swaps
  //  0/8: pivot 2 (index 8), idx = 8 1 2 3 4 5 6 7 15 9 10 11 12 13 14 0.
  //  passes (i, j): (1, 14) (2, 12) (4, 10) (5, 6) (6, 5) -> crossed, the last exchange
  //  undone, p = 5, idx[0] <-> idx[5]: left 6 14 12 3 10, pivot 8, right 5 7 15 9 4 11 2 13 1 0.
  //  p = 5 <= n - p: left then right, both insertion-sorted (stable).
  // The four keys 1 come out as 6 14 3 10, not in index order: the partition is not stable.
  const std::vector<K> key = Keys<K>({5, 3, 5, 1, 3, 5, 1, 3, 2, 3, 1, 5, 2, 3, 1, 4});
  EXPECT_EQ(Sorted(key, Identity(16)),
            (std::vector<int>{6, 14, 3, 10, 12, 8, 7, 9, 4, 13, 1, 15, 5, 11, 2, 0}));
}

TYPED_TEST(SortTwins, OrdinaryKeysFollowThePlainAlgorithmExactly) {
  using K = TypeParam;
  // Random, few distinct, ascending reached through a shuffled idx, and descending keys, over
  // many seeds: never over budget, so the permutation is exactly the plain algorithm's, ties
  // included.
  for (unsigned seed = 0; seed < 60; ++seed) {
    std::mt19937 rng(seed);
    for (int n : {16, 17, 33, 100, 257, 1000, 4099, seed < 3 ? 100000 : 0}) {
      for (int kind = 0; kind < 5; ++kind) {
        std::vector<K> key(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i) {
          const int drawn[] = {1 << 30, 2, 7, i, n - i};
          key[i] = kind < 3 ? K(static_cast<int>(rng() % static_cast<unsigned>(drawn[kind]))) : K(drawn[kind]);
        }
        std::vector<int> idx = Identity(n);
        if (kind == 3) std::shuffle(idx.begin(), idx.end(), rng);
        ASSERT_EQ(Sorted(key, idx), LiteralSort<K>{key.data()}.Run(idx)) << seed << " " << n << " " << kind;
      }
    }
  }
}

TYPED_TEST(SortTwins, OrdersThatDefeatThePivotFinishByKeyThenIndex) {
  using K = TypeParam;
  // Organ-pipe keys (every value twice), ascending keys through a reversed idx, and ascending
  // keys but the first (so the storage check fails) leave one long side per partition and run
  // over budget; the rest is ordered by key, then by index value, which puts some ties of the
  // pipe in another order than the quicksort would.
  for (int n : {40, 3000, 100001}) {
    std::vector<K> pipe(n), descending(n), almostAscending(n);
    for (int i = 0; i < n; ++i) {
      pipe[i] = K(std::min(i, n - 1 - i));
      descending[i] = K(n - i);
      almostAscending[i] = K(i == 0 ? n / 2 : i);
    }
    std::vector<int> backwards = Identity(n);
    std::reverse(backwards.begin(), backwards.end());
    const std::vector<int> gotPipe = Sorted(pipe, Identity(n));
    EXPECT_EQ(gotPipe, (LiteralSort<K>{pipe.data(), true}.Run(Identity(n))));
    if (n > 40) {
      EXPECT_NE(gotPipe, LiteralSort<K>{pipe.data()}.Run(Identity(n))) << "budget never ran out";
    }
    EXPECT_EQ(Sorted(descending, backwards), backwards);
    EXPECT_EQ(Sorted(almostAscending, Identity(n)), (LiteralSort<K>{almostAscending.data(), true}.Run(Identity(n))));
  }
  // NaN keys over budget: idx stays a permutation and the NaN come last.
  const int n = 5000;
  std::vector<K> key(n);
  for (int i = 0; i < n; ++i) key[i] = i % 97 == 0 ? std::numeric_limits<K>::quiet_NaN() : K(n - i);
  std::vector<int> backwards = Identity(n);
  std::reverse(backwards.begin(), backwards.end());
  const std::vector<int> got = Sorted(key, backwards);
  EXPECT_EQ(got, (LiteralSort<K>{key.data(), true}.Run(backwards)));
  EXPECT_TRUE(std::isnan(key[got.back()]));
}

TYPED_TEST(SortTwins, DefeatingOrdersStayFastAtAQuarterMillion) {
  using K = TypeParam;
  // Before the budget, ascending keys through a reversed idx cost one partition per key:
  // minutes at this size. Now a fraction of a second, even under the sanitizers.
  const int n = 1 << 18;
  std::vector<K> key(n);
  for (int i = 0; i < n; ++i) key[i] = K(n - i);
  std::vector<int> idx = Identity(n);
  std::reverse(idx.begin(), idx.end());
  const auto start = std::chrono::steady_clock::now();
  ExpectSortedPermutation(key, idx, Sorted(key, idx));
  EXPECT_LT(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), 5.0);
}

TYPED_TEST(SortTwins, MillionRandomKeysComeOutSorted) {
  using K = TypeParam;
  const int n = 1000000;
  std::mt19937_64 rng(2024);
  std::uniform_real_distribution<double> uniform(-1.0e3, 1.0e3);
  std::vector<K> key(n);
  for (K& v : key) v = static_cast<K>(uniform(rng));
  const std::vector<int> idx = Identity(n);
  ExpectSortedPermutation(key, idx, Sorted(key, idx));
}

TYPED_TEST(SortTwins, NanKeysStayInBoundsAndKeepIdxAPermutation) {
  using K = TypeParam;
  const K nan = std::numeric_limits<K>::quiet_NaN();
  // Below sixteen a NaN is never passed by the insertion sort: it keeps its place and the runs
  // on either side are sorted on their own. keys 3 1 NaN 2 0 5 4 -> 1 0 | 2 | 4 3 6 5.
  std::vector<K> key = Keys<K>({3, 1, 0, 2, 0, 5, 4});
  key[2] = nan;
  EXPECT_EQ(Sorted(key, Identity(7)), (std::vector<int>{1, 0, 2, 4, 3, 6, 5}));
  // A NaN fails the storage pre-check even where the other keys are ordered: keys 0 NaN 2 3
  // through idx 3 2 1 0 read 3 2 NaN 0; only the first pair can move.
  std::vector<K> ordered = Keys<K>({0, 0, 2, 3});
  ordered[1] = nan;
  EXPECT_EQ(Sorted(ordered, std::vector<int>{3, 2, 1, 0}), (std::vector<int>{2, 3, 1, 0}));

  // Long inputs: NaN at the three sample positions, scattered NaN, all NaN. Only the
  // permutation is promised (AddressSanitizer checks the bounds).
  std::mt19937 rng(7);
  for (int n : {16, 17, 100, 5000}) {
    for (int pattern = 0; pattern < 3; ++pattern) {
      std::vector<K> keys(static_cast<std::size_t>(n));
      for (K& v : keys) v = K(static_cast<int>(rng() % 50u));
      if (pattern == 0) keys[0] = keys[n / 2] = keys[n - 1] = nan;
      if (pattern == 1)
        for (K& v : keys) v = rng() % 10u == 0 ? nan : v;
      if (pattern == 2) std::fill(keys.begin(), keys.end(), nan);
      const std::vector<int> idx = Identity(n);
      std::vector<int> got = Sorted(keys, idx);
      std::sort(got.begin(), got.end());
      EXPECT_EQ(got, idx) << "n " << n << " pattern " << pattern;
    }
  }
}

TEST(SortObject, RuntimeRecordAndCopies) {
  const WbRuntimeClass* record = WbRuntimeClass::FromName(L"ZmSort");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record, &ZmSort::WbClassZmSort);
  EXPECT_EQ(ZmSort::GetBaseRuntimeClass(), &WbObject::WbClassWbObject);
  WbObject* made = WbRuntimeClass::CreateObject(L"ZmSort");
  ASSERT_NE(made, nullptr);
  EXPECT_TRUE(made->IsKindOf(&ZmSort::WbClassZmSort));
  ZmSort copy;
  copy = *static_cast<ZmSort*>(made);
  EXPECT_EQ(copy.GetRuntimeClass(), record);
  EXPECT_EQ(WbObject::DeleteDynamicObject(made), 1);
}

}  // namespace
