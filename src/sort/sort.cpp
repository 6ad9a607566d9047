#include "zemcalc/ZmSort.h"

#include <algorithm>
#include <cstdint>

#include "foundation/build_info.h"

ZM_BUILD_INFO(sort)

WB_IMPLEMENT_DYNAMIC(ZmSort, WbObject, new ZmSort)

int ZmSort::sort_fast(int n, int* idx, double* key) { return SortWithPreCheck(n, idx, key); }
int ZmSort::sort_fast(int n, int* idx, float* key) { return SortWithPreCheck(n, idx, key); }

int ZmSort::partition(int n, int* idx, double* key) { return PartitionSlice(n, idx, key); }
int ZmSort::partition(int n, int* idx, float* key) { return PartitionSlice(n, idx, key); }

void ZmSort::tri_ins(int n, int* const idx, double* const key) { InsertionSort(n, idx, key); }
void ZmSort::tri_ins(int n, int* const idx, float* const key) { InsertionSort(n, idx, key); }

// The exported members can be interposed, so the compiler may not inline them into the scans:
// the rules live here and both the members and the scans call them.
namespace {

template <class K>
int CompareKeys(K a, K b) {
  if (a < b) return -1;
  return a > b ? 1 : 0;
}

void Exchange(int* const arr, int i, int j) {
  const int held = arr[i];
  arr[i] = arr[j];
  arr[j] = held;
}

}  // namespace

int ZmSort::comp_double_key(double a, double b) { return CompareKeys(a, b); }
int ZmSort::comp_float_key(float a, float b) { return CompareKeys(a, b); }
void ZmSort::echang_int(int* const arr, int i, int j) { Exchange(arr, i, j); }

template <class K>
bool ZmSort::IsGreater(K a, K b) {
  return CompareKeys(a, b) > 0;
}

// Each partition spends one unit of a budget of 16 + 4 log2(n / m) partitions for a slice of m
// of the caller's n keys: the first 16 partitions of a path are free, and from then on each
// partition must shrink the slice by 2^(-1/4) on average. The smallest of three samples splits
// random keys about 1:3, and the deepest slice of such a sort stays within 3.5 partitions per
// halving (the excess over 4 per halving measured at most 7 over thousands of random inputs);
// ties split evenly. In integers: past the free partitions, each partition multiplies a size
// limit, which starts at n, by 861/1024 (just under 2^(-1/4)); a slice longer than the limit is
// over budget. Orders that defeat the pivot rule peel off a few keys per partition: they reach
// the limit after about 16 partitions, which caps the partitioning at O(n log n) key reads.
struct ZmSort::Budget {
  int freePartitions;
  std::int64_t sizeLimit;

  static Budget For(int n) { return {16, n}; }
  Budget Spent() const {
    if (freePartitions > 0) return {freePartitions - 1, sizeLimit};
    return {0, sizeLimit * 861 / 1024};
  }
  bool Exceeded(int m) const { return m > sizeLimit; }
};

// The storage-order check belongs to the caller's call alone: it reads key[0..n-1] in their
// own order, which says nothing about a sub-range of idx.
template <class K>
int ZmSort::SortWithPreCheck(int n, int* idx, K* key) {
  int i = 0;
  while (i < n - 1 && key[i + 1] >= key[i]) ++i;
  if (i >= n - 1) return 0;
  SortSlice(n, idx, key, Budget::For(n));
  return 0;
}

// Each partition leaves two disjoint sides, and how one side ends up ordered never depends on
// the other, so the side sorted second can be handled by the next turn of the loop instead of
// a nested call. The side sorted first is never more than half of the slice (p <= n/2 when it
// is the left side, n - p - 1 < p when it is the right side): the nesting stays below log2(n).
// Both sides, nested or looped, have spent the budget of one more partition.
template <class K>
void ZmSort::SortSlice(int n, int* idx, K* key, Budget budget) {
  while (n - 1 >= 15) {
    if (budget.Exceeded(n)) {
      SortByKeyThenIndex(n, idx, key);
      return;
    }
    budget = budget.Spent();
    const int p = partition(n, idx, key);
    if (p > n - p) {
      SortSlice(n - p - 1, idx + p + 1, key, budget);
      n = p;
    } else {
      SortSlice(p, idx, key, budget);
      idx += p + 1;
      n -= p + 1;
    }
  }
  tri_ins(n, idx, key);
}

// A total order, so that the result does not depend on the method: by key, NaN keys after all
// others, then by the index value itself. Any O(n log n) sort then gives the same permutation;
// std::sort is one (introsort) and takes no memory.
template <class K>
void ZmSort::SortByKeyThenIndex(int n, int* idx, K* key) {
  std::sort(idx, idx + n, [key](int a, int b) {
    const K ka = key[a], kb = key[b];
    if (ka < kb) return true;
    if (kb < ka) return false;
    const bool aIsNan = ka != ka, bIsNan = kb != kb;
    if (aIsNan != bIsNan) return bIsNan;
    return a < b;
  });
}

// The pivot is the smallest of three samples, and the largest one, left at the end, stops the
// forward scan. Both scans stop at keys equal to the pivot, so each pass moves at least one
// index; the last exchange, made after the scans have crossed, is taken back before the pivot
// is put in place.
template <class K>
int ZmSort::PartitionSlice(int n, int* idx, K* key) {
  const int last = n - 1;
  const int mid = n / 2;
  if (IsGreater(key[idx[mid]], key[idx[last]])) Exchange(idx, mid, last);
  if (IsGreater(key[idx[0]], key[idx[last]])) Exchange(idx, 0, last);
  if (IsGreater(key[idx[0]], key[idx[mid]])) Exchange(idx, 0, mid);
  const K pivot = key[idx[0]];

  int i = 0;
  int j = last;
  if (last >= 1) {
    do {
      do ++i;
      while (IsGreater(pivot, key[idx[i]]));
      do --j;
      while (IsGreater(key[idx[j]], pivot));
      Exchange(idx, i, j);
    } while (i < j);
  }
  if (i > j) Exchange(idx, i, j);
  const int p = i <= j ? i : j;
  Exchange(idx, 0, p);
  return p;
}

// Equal keys stop the move, which keeps them in the order of idx.
template <class K>
void ZmSort::InsertionSort(int n, int* idx, K* key) {
  for (int i = 1; i < n; ++i) {
    for (int j = i - 1; j >= 0 && IsGreater(key[idx[j]], key[idx[j + 1]]); --j) Exchange(idx, j, j + 1);
  }
}
