#include "zemcalc/ZmSort.h"

#include <type_traits>

#include "foundation/build_info.h"

ZM_BUILD_INFO(sort)

WB_IMPLEMENT_DYNAMIC(ZmSort, WbObject, new ZmSort)

int ZmSort::sort_fast(int n, int* idx, double* key) { return SortWithPreCheck(n, idx, key); }
int ZmSort::sort_fast(int n, int* idx, float* key) { return SortWithPreCheck(n, idx, key); }

int ZmSort::partition(int n, int* idx, double* key) { return PartitionSlice(n, idx, key); }
int ZmSort::partition(int n, int* idx, float* key) { return PartitionSlice(n, idx, key); }

void ZmSort::tri_ins(int n, int* const idx, double* const key) { InsertionSort(n, idx, key); }
void ZmSort::tri_ins(int n, int* const idx, float* const key) { InsertionSort(n, idx, key); }

int ZmSort::comp_double_key(double a, double b) {
  if (a < b) return -1;
  return a > b ? 1 : 0;
}

int ZmSort::comp_float_key(float a, float b) {
  if (a < b) return -1;
  return a > b ? 1 : 0;
}

void ZmSort::echang_int(int* const arr, int i, int j) {
  const int held = arr[i];
  arr[i] = arr[j];
  arr[j] = held;
}

template <class K>
bool ZmSort::IsGreater(K a, K b) {
  if constexpr (std::is_same<K, double>::value) {
    return comp_double_key(a, b) > 0;
  } else {
    return comp_float_key(a, b) > 0;
  }
}

// The storage-order check belongs to the caller's call alone: it reads key[0..n-1] in their
// own order, which says nothing about a sub-range of idx.
template <class K>
int ZmSort::SortWithPreCheck(int n, int* idx, K* key) {
  int i = 0;
  while (i < n - 1 && key[i + 1] >= key[i]) ++i;
  if (i >= n - 1) return 0;
  SortSlice(n, idx, key);
  return 0;
}

// Each partition leaves two disjoint sides, and how one side ends up ordered never depends on
// the other, so the side sorted second can be handled by the next turn of the loop instead of
// a nested call. The side sorted first is never more than half of the slice (p <= n/2 when it
// is the left side, n - p - 1 < p when it is the right side): the nesting stays below log2(n).
template <class K>
void ZmSort::SortSlice(int n, int* idx, K* key) {
  while (n - 1 >= 15) {
    const int p = partition(n, idx, key);
    if (p > n - p) {
      SortSlice(n - p - 1, idx + p + 1, key);
      n = p;
    } else {
      SortSlice(p, idx, key);
      idx += p + 1;
      n -= p + 1;
    }
  }
  tri_ins(n, idx, key);
}

// The pivot is the smallest of three samples, and the largest one, left at the end, stops the
// forward scan. Both scans stop at keys equal to the pivot, so each pass moves at least one
// index; the last exchange, made after the scans have crossed, is taken back before the pivot
// is put in place.
template <class K>
int ZmSort::PartitionSlice(int n, int* idx, K* key) {
  const int last = n - 1;
  const int mid = n / 2;
  if (IsGreater(key[idx[mid]], key[idx[last]])) echang_int(idx, mid, last);
  if (IsGreater(key[idx[0]], key[idx[last]])) echang_int(idx, 0, last);
  if (IsGreater(key[idx[0]], key[idx[mid]])) echang_int(idx, 0, mid);
  const K pivot = key[idx[0]];

  int i = 0;
  int j = last;
  if (last >= 1) {
    do {
      do ++i;
      while (IsGreater(pivot, key[idx[i]]));
      do --j;
      while (IsGreater(key[idx[j]], pivot));
      echang_int(idx, i, j);
    } while (i < j);
  }
  if (i > j) echang_int(idx, i, j);
  const int p = i <= j ? i : j;
  echang_int(idx, 0, p);
  return p;
}

// Equal keys stop the move, which keeps them in the order of idx.
template <class K>
void ZmSort::InsertionSort(int n, int* idx, K* key) {
  for (int i = 1; i < n; ++i) {
    for (int j = i - 1; j >= 0 && IsGreater(key[idx[j]], key[idx[j + 1]]); --j) echang_int(idx, j, j + 1);
  }
}
