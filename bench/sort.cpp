// Index sorting: ZmSort::sort_fast next to std::sort of the same index array by the same keys,
// on 10^6 keys in random, ascending (caught by the storage pre-check), descending and
// organ-pipe order, and ascending keys reached through a reversed idx (which the storage
// pre-check cannot see). Organ-pipe keys and the reversed idx defeat the smallest-of-three
// pivot; a second series grows n on them to show that the time stays O(n log n).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include <zemcalc/ZmSort.h>

namespace {

enum Order { kRandom, kAscending, kDescending, kOrganPipe, kAscendingThroughReversedIdx };

struct Input {
  std::vector<double> key;
  std::vector<int> idx;  // what the caller passes in
};

Input MakeInput(Order order, int n) {
  Input in;
  in.key.resize(static_cast<std::size_t>(n));
  in.idx.resize(static_cast<std::size_t>(n));
  std::iota(in.idx.begin(), in.idx.end(), 0);
  std::mt19937_64 rng(42);
  std::uniform_real_distribution<double> uniform(0.0, 1.0);
  for (int i = 0; i < n; ++i) {
    switch (order) {
      case kRandom:
        in.key[i] = uniform(rng);
        break;
      case kAscending:
        in.key[i] = i;
        break;
      case kDescending:
        in.key[i] = n - i;
        break;
      case kOrganPipe:
        in.key[i] = std::min(i, n - 1 - i);
        break;
      case kAscendingThroughReversedIdx:
        in.key[i] = n - i;
        break;
    }
  }
  if (order == kAscendingThroughReversedIdx) std::reverse(in.idx.begin(), in.idx.end());
  return in;
}

template <class SortFn>
void RunSort(benchmark::State& state, SortFn sortFn) {
  const int n = static_cast<int>(state.range(1));
  Input in = MakeInput(static_cast<Order>(state.range(0)), n);
  std::vector<int> idx(in.idx.size());
  for (auto _ : state) {
    state.PauseTiming();
    idx = in.idx;
    state.ResumeTiming();
    sortFn(n, idx.data(), in.key.data());
    benchmark::DoNotOptimize(idx.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
  state.SetComplexityN(n);
}

void BM_ZmSort(benchmark::State& state) {
  ZmSort sorter;
  RunSort(state, [&sorter](int n, int* idx, double* key) { sorter.sort_fast(n, idx, key); });
}

void BM_StdSort(benchmark::State& state) {
  RunSort(state, [](int n, int* idx, double* key) {
    std::sort(idx, idx + n, [key](int a, int b) { return key[a] < key[b]; });
  });
}

constexpr int kMillion = 1000000;

// 10^6 keys in each order, each sort on the same inputs.
void MillionKeysInEachOrder(benchmark::internal::Benchmark* b) {
  b->ArgNames({"order", "n"})->Unit(benchmark::kMillisecond);
  for (Order order : {kRandom, kAscending, kDescending, kOrganPipe, kAscendingThroughReversedIdx})
    b->Args({order, kMillion});
}
BENCHMARK(BM_ZmSort)->Apply(MillionKeysInEachOrder);
BENCHMARK(BM_StdSort)->Apply(MillionKeysInEachOrder);

// Growth with n: random keys against the two orders that defeat the pivot rule. Past the
// partition budget those finish in O(n log n) as well.
BENCHMARK(BM_ZmSort)
    ->ArgNames({"order", "n"})
    ->ArgsProduct({{kRandom, kOrganPipe, kAscendingThroughReversedIdx}, {1 << 14, 1 << 16, 1 << 18, 1 << 20}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
