#pragma once

// ZmSort: sorts an array of indices by the keys that they designate, without moving the keys.
// One class serves both key precisions through double and float overloads of every member;
// the two overloads share one implementation.
//
// Order produced by sort_fast(n, idx, key), keys read as key[idx[k]]:
//  - First, on the caller's call only, the keys are read in their own storage order key[0],
//    key[1], ..., key[n-1] (not through idx). When every key[i+1] >= key[i], idx is returned
//    untouched, whatever it holds: the check is meant for callers that pass the identity.
//  - Slices of at most 15 indices are insertion-sorted with adjacent exchanges while the
//    earlier key is strictly greater, so equal keys keep their relative order there.
//  - Longer slices are split by one quicksort partition: the pivot is the smallest of the keys
//    at positions 0, n/2 and n-1 (after ordering those three samples), the scan is Hoare's
//    with the largest sample as sentinel, and the pivot lands at its final position p. The
//    two sides idx[0..p-1] and idx[p+1..n-1] are then sorted the same way, without the storage
//    pre-check (it reads keys unrelated to a sub-range, so applying it there would leave
//    sub-ranges unsorted). The right side is sorted first when p > n - p, else the left side:
//    the side sorted first never holds more than half of the slice.
//  - A slice is over budget when it still holds m > 15 indices after more partitions than
//    16 + 4 log2(n/m), n being the caller's count: the first 16 partitions on the way to a
//    slice are free, and every later one must have shrunk it by 2^(-1/4) on average. Exactly:
//    a size limit starts at n and, from the 17th partition of a path on, each partition
//    multiplies it by 861/1024 with the product rounded down; a slice longer than the limit is
//    over budget. Such a slice is sorted at once by key, equal keys in increasing order of the
//    index values themselves (float keys compared in float, NaN keys after all others, equal
//    index values side by side), by an O(m log m) sort without memory of its own.
// After sorting, key[idx[0]] <= key[idx[1]] <= ... <= key[idx[n-1]] for keys without NaN.
// The quicksort part is not stable: equal keys in slices longer than 15 may be reordered.
//
// Cost. The pivot is the smallest of three samples, not their median. It splits random keys
// about 1:3, and ties evenly, and sorts of random, few-distinct, descending keys or of
// ascending keys reached through a shuffled idx never come near the budget (measured: at most
// 7 partitions beyond 4 per halving over thousands of inputs; the asymptotic depth of random
// keys is 3.5 partitions per halving): they produce exactly the order of the rules above
// without the budget. Orders that defeat the pivot rule, for example organ-pipe keys (rising,
// then falling), ascending keys with one key out of place, or ascending keys reached through
// an idx other than the identity, would cost quadratic time: each partition peels off a few
// indices. They run over budget after about 17 partitions, so every sort costs O(n log n):
// at 10^6 keys those orders take at most about twice as long as std::sort. Their ties
// may then come out in the index order stated above rather than the quicksort's. The
// recursion never is a problem: only the side sorted first (at most half of its slice) is a
// nested call, the other side continues in a loop, so the nesting depth stays below log2(n)
// whatever the keys. The order produced does not depend on this, as the two sides are
// disjoint and each is sorted on its own.
//
// Edge cases. n <= 1 (also a negative n) returns at once without reading anything. Float keys
// are compared in float. NaN keys never cause an out-of-range access and idx always stays a
// permutation of what the caller passed, but the order is then unspecified: a NaN compares
// neither greater nor smaller than anything, so no key moves past it in the insertion sort
// and the partition treats it as equal to the pivot; a key array holding a NaN never passes
// the storage pre-check. Every value in idx[0..n-1] must be a valid index of key.
//
// Every member returns 0 except SortArrayPoint3DOnSegment (see there). No member allocates
// except SortArrayPoint3DOnSegment, which takes one key buffer per call. The class holds no
// data beyond its runtime record and is re-entrant.
#include <wbcore/WbArray.h>
#include <wbcore/WbObject.h>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint3.h"

class ZMCALC_API ZmSort : public WbObject {
  WB_DECLARE_DYNAMIC(ZmSort)

public:
  ZmSort() = default;
  ~ZmSort() override = default;
  ZmSort(const ZmSort&) = default;
  ZmSort& operator=(const ZmSort&) = default;

  // Sorts idx[0..n-1] by key[idx[k]] in non-decreasing order; returns 0.
  int sort_fast(int n, int* idx, double* key);
  int sort_fast(int n, int* idx, float* key);

  // Orders the points by the abscissa of their projection on the line a -> b, measured from a:
  // key[k] = cos(angle(pts[k] - a, b - a)) * |pts[k] - a|, with the length rounded to single
  // precision before the product (the angle from ZmMathd::AngleRad, or ZmMathf::AngleRad for
  // float points, and the cosine in the points' precision). Points behind a get negative keys
  // and come first. The keys are sorted with sort_fast(n, idx, keys), so idx must hold the
  // caller's indices (as a rule 0..n-1) on entry. A point at a has the key 0. When a == b the
  // angle is the invalid marker and every key is cos(-1.0e32f) * |pts[k] - a|, a fixed multiple
  // of the distance from a; the call still succeeds.
  // Returns 0 when the points were sorted, 1 when there was nothing to sort (fewer than two
  // points) or the key buffer could not be allocated; idx is untouched in both cases.
  int SortArrayPoint3DOnSegment(ZmPoint3d& a, ZmPoint3d& b, WbArrayTempl<ZmPoint3d>& pts, int* idx);
  int SortArrayPoint3DOnSegment(ZmPoint3f& a, ZmPoint3f& b, WbArrayTempl<ZmPoint3f>& pts, int* idx);

private:
  // One quicksort partition of idx[0..n-1] (n >= 2); returns the pivot's final position.
  int partition(int n, int* idx, double* key);
  int partition(int n, int* idx, float* key);
  // Stable insertion sort of idx[0..n-1].
  void tri_ins(int n, int* const idx, double* const key);
  void tri_ins(int n, int* const idx, float* const key);
  // -1 when a < b, 1 when a > b, else 0 (also when either is NaN).
  int comp_double_key(double a, double b);
  int comp_float_key(float a, float b);
  // Exchanges arr[i] and arr[j].
  void echang_int(int* const arr, int i, int j);

  // The shared implementation of the overloads above, one template over the key type.
  template <class K>
  int SortWithPreCheck(int n, int* idx, K* key);
  struct Budget;
  template <class K>
  void SortSlice(int n, int* idx, K* key, Budget budget);
  template <class K>
  static void SortByKeyThenIndex(int n, int* idx, K* key);
  template <class K>
  int PartitionSlice(int n, int* idx, K* key);
  template <class K>
  void InsertionSort(int n, int* idx, K* key);
  template <class K>
  bool IsGreater(K a, K b);
  template <class T>
  int SortOnSegment(ZmPoint3T<T>& a, ZmPoint3T<T>& b, WbArrayTempl<ZmPoint3T<T>>& pts, int* idx);
};
