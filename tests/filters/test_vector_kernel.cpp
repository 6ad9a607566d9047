// The vectorised kernel gives, bit for bit, what the plain loop of the kernel sum gives: random
// values and weights, odd and even kernels, curve lengths around and between multiples of every
// vector width, both precisions, and a curve filtered into itself.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cstring>
#include <random>
#include <vector>

#include "filters/filter_curves.h"

namespace {

// The plain loop: reflection padding, then for each j the pair sum from the outermost pair
// inwards, the centre last.
template <class T>
std::vector<T> PlainFilter(const std::vector<T>& y, const std::vector<T>& c, int n) {
  const int h = n / 2;
  const std::size_t count = y.size();
  std::vector<T> b(count + 2 * static_cast<std::size_t>(h));
  for (std::size_t j = 0; j < count; ++j) b[h + j] = y[j];
  for (int k = 0; k < h; ++k) {
    b[h - 1 - k] = T(2) * y[0] - y[k];
    b[h + count + k] = T(2) * y[count - 1] - y[count - 1 - k];
  }
  std::vector<T> out(count);
  for (std::size_t j = 0; j < count; ++j) {
    T sum = 0;
    for (int k = 0; k < h; ++k) sum += (b[j + k] + b[j + n - 1 - k]) * c[k];
    if (n & 1) sum += b[j + h] * c[h];
    out[j] = sum;
  }
  return out;
}

template <class T, class Filter>
void CheckBitIdentical(std::mt19937_64& rng) {
  std::uniform_real_distribution<double> value(-1.0e3, 1.0e3);
  std::uniform_real_distribution<double> weight(-1.0, 1.0);
  const int sizes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 32, 33, 50, 63, 64, 65, 81};
  std::vector<std::size_t> lengths;
  for (std::size_t N = 1; N <= 140; ++N) lengths.push_back(N);
  for (std::size_t N : {255u, 256u, 257u, 1000u, 1003u, 4099u}) lengths.push_back(N);
  for (int n : sizes) {
    WbArrayTempl<T> weights;
    std::vector<T> c;
    for (int k = 0; k < n / 2 + (n & 1); ++k) {
      c.push_back(static_cast<T>(weight(rng)));
      weights.Add(c.back());
    }
    Filter filter(n, weights, ZmExtrapolationReflection);
    for (std::size_t N : lengths) {
      if (N < static_cast<std::size_t>(n / 2)) continue;
      std::vector<T> y(N);
      for (T& v : y) v = static_cast<T>(value(rng));
      WbArrayTempl<ZmPoint2T<T>> curve;
      for (std::size_t i = 0; i < N; ++i) curve.Add(ZmPoint2T<T>(T(i), y[i]));
      ASSERT_EQ(filter.Compute(curve, curve), nullptr);
      const std::vector<T> expected = PlainFilter(y, c, n);
      const std::vector<T> actual = filter_test::Values(curve);
      ASSERT_EQ(std::memcmp(actual.data(), expected.data(), N * sizeof(T)), 0) << "n " << n << " N " << N;
    }
  }
}

TEST(VectorKernel, BitIdenticalToThePlainLoop) {
  std::mt19937_64 rng(20240611);
  CheckBitIdentical<double, ZmFilterMVAWeightedd>(rng);
  CheckBitIdentical<float, ZmFilterMVAWeightedf>(rng);
}

}  // namespace
