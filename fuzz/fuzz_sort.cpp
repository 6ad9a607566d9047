// Index sorting: fuzzed keys (NaN, infinities, ties) and runs read through a reversed index; the
// result is a permutation of the indices, in the order the sort promises. Also the ordering of
// points along a segment.
#include <zemcalc/ZmSort.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "fuzz_input.h"

namespace {

template <class T>
void Fuzz(FuzzedDataProvider& in) {
  const int n = in.ConsumeIntegralInRange<int>(0, 2048);
  std::vector<T> key;
  const int pattern = in.ConsumeIntegralInRange<int>(0, 3);
  for (int i = 0; i < n && in.remaining_bytes() > 0; ++i) {
    // Fuzzed values, or ascending, descending or organ-pipe runs with the odd fuzzed value.
    const T value = pattern == 0 ? fuzz::Number<T>(in) : pattern == 1 ? T(i) : pattern == 2 ? T(-i) : T(std::min(i, n - i));
    key.push_back(value);
    if (pattern != 0 && in.ConsumeIntegralInRange<int>(0, 15) == 0) key.back() = fuzz::Number<T>(in);
  }
  const int count = static_cast<int>(key.size());
  // The runs are read through a reversed index array.
  std::vector<int> idx(count);
  for (int i = 0; i < count; ++i) idx[i] = pattern == 0 ? i : count - 1 - i;
  std::vector<int> before = idx;
  ZmSort sorter;
  sorter.sort_fast(count, idx.data(), key.data());
  std::vector<int> sortedIdx = idx, sortedBefore = before;
  std::sort(sortedIdx.begin(), sortedIdx.end());
  std::sort(sortedBefore.begin(), sortedBefore.end());
  if (sortedIdx != sortedBefore) std::abort();
  // Keys already non-decreasing in storage order leave idx as it was (the algorithm's first
  // check reads the keys in their own order); otherwise the keys read through idx do not
  // decrease (NaN keys aside).
  bool storageSorted = true, anyNaN = false;
  for (int i = 0; i < count; ++i) {
    storageSorted = storageSorted && (i == 0 || key[i] >= key[i - 1]);
    anyNaN = anyNaN || std::isnan(key[i]);
  }
  if (storageSorted && idx != before) std::abort();
  for (int i = 1; i < count && !storageSorted && !anyNaN; ++i)
    if (key[idx[i - 1]] > key[idx[i]]) std::abort();

  WbArrayTempl<ZmPoint3T<T>> points = fuzz::Points3<T>(in, 64);
  std::vector<int> order(points.GetSize());
  for (std::size_t i = 0; i < order.size(); ++i) order[i] = static_cast<int>(i);
  ZmPoint3T<T> a = fuzz::Point3<T>(in), b = fuzz::Point3<T>(in);
  sorter.SortArrayPoint3DOnSegment(a, b, points, order.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeBool())
    Fuzz<double>(in);
  else
    Fuzz<float>(in);
  return 0;
}
