// The symmetric-kernel filters: moving averages and the cosine kernel (coefficient layouts, the
// window of odd and even kernels, the four paddings, the refusals and what out holds then, the
// float twins), and the vectorised kernel sum against the plain loop. run() and mva() are the
// numpy replay in filter_curves.h.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <random>

#include "filters/filter_curves.h"
#include "kernel_version_check.h"  // the kernel version this run tests

namespace {

using namespace filter_test;

template <class Filter>
std::vector<double> Coefficients(const Filter& f) {
  return {f.GetCoefficients().begin(), f.GetCoefficients().end()};
}

TEST(MovingAverage, CoefficientsAreOneOverNInSinglePrecisionOrTheWeights) {
  const double third = 0.3333333432674408, fifth = 0.20000000298023224;  // the float 1/3, 1/5
  const struct {
    std::vector<double> got, expected;
  } rows[] = {
      {Coefficients(ZmFilterMVAd(3, ZmExtrapolationConstant)), {third, third}},
      {Coefficients(ZmFilterMVAf(3)), {third, third}},
      {Coefficients(ZmFilterMVAd(4, ZmExtrapolationZeros)), {0.25, 0.25}},
      // The weights as given and the last one repeated; none: the plain average; extra ones unused.
      {Coefficients(ZmFilterMVAWeightedd(5, WbArrayTempl<double>{1, 2}, ZmExtrapolationZeros)), {1, 2, 2}},
      {Coefficients(ZmFilterMVAWeightedd(5, WbArrayTempl<double>(), ZmExtrapolationZeros)), {fifth, fifth, fifth}},
      {Coefficients(ZmFilterMVAWeightedf(4, WbArrayTempl<float>{3, 4, 5, 6, 7}, ZmExtrapolationZeros)), {3, 4}},
      // Sizes below 1 and above 2^20 taps store nothing (INT_MAX once meant 4 GiB).
      {Coefficients(ZmFilterMVAd(0)), {}},
      {Coefficients(ZmFilterMVAd(-4)), {}},
      {Coefficients(ZmFilterMVAf(INT_MAX)), {}},
  };
  for (const auto& r : rows) EXPECT_EQ(r.got, r.expected);
  EXPECT_EQ(ZmFilterMVAf(1 << 20).GetCoefficients().GetSize(), 1u << 19);
}

struct Row {
  int n, mode;                  // the extrapolation by its number
  std::vector<double> weights;  // the weighted form when given
  std::vector<double> in, expected;
  std::vector<std::uint64_t> at = {};  // the outputs expected, all when empty
};

// r.in sampled at x = -2 + 0.37 i (any step: no limits), filtered.
template <class T>
std::vector<T> Average(const Row& r) {
  const auto in = Curve<T>(r.in, 0.37, -2.0);
  WbArrayTempl<T> weights;
  for (const double w : r.weights) weights.Add(static_cast<T>(w));
  using MVA = Twin<T, ZmFilterMVAd, ZmFilterMVAf>;
  using Weighted = Twin<T, ZmFilterMVAWeightedd, ZmFilterMVAWeightedf>;
  return Values(r.weights.empty() ? Filtered(MVA(r.n, r.mode), in) : Filtered(Weighted(r.n, weights, r.mode), in),
                r.at);
}

TEST(MovingAverage, OutputsOfEachWindowAndPadding) {
  const double nan = NAN, inf = INFINITY;
  const double one = 1.0000000298023224;  // (1 + 1) c + 1 c, c the float 1/3
  // run([0]*5 + [1]*5, mva(5, float64), 5, 1, float64): a step ramps over five samples, each
  // output k c for the k ones in its window (c the float 1/5: k c is exact).
  const double c = 0.20000000298023224;
  const std::vector<double> ramp = {0, 0, 0, c, 2 * c, 3 * c, 4 * c, 5 * c, 5 * c, 5 * c};
  const Row rows[] = {
      {5, 1, {}, {0, 0, 0, 0, 0, 1, 1, 1, 1, 1}, ramp},
      // 4 taps: out[j] averages in[j-2] .. in[j+1], half a sample early; zeros beyond the ends.
      {4, 0, {}, {1, 2, 3, 4, 5, 6, 7}, {0.75, 1.5, 2.5, 3.5, 4.5, 5.5, 4.5}},
      // y = x: the left padding -2, -1 continues the line; the right one (9-8)*i + 11*8 - 10*9
      // = -2 + i does not: out[8] = (6 + 7 + 8 + 9 - 2) / 5, out[9] = (7 + 8 + 9 - 2 - 1) / 5.
      {5, 2, {}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {0.0, 1.0000000149011612, 7.000000104308128}, {0, 1, 7}},
      {5, 2, {}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, {5.600000083446503, 4.200000062584877}, {8, 9}},
      // Two points: b = -1 | 1, 3 | -1 (2*1 - 3 on the left; 2*1 - 1*3 at position 0 on the right),
      // so both outputs are 2c + c = 3c, c the float 1/3.
      {3, 2, {}, {1, 3}, {one, one}},
      // 7 taps on three points (h = N is enough) reflect every point once; run([1, 2, 4], mva(7), 7, 3).
      {7, 3, {}, {1, 2, 4}, {1.428571492433548, 2.5714286863803864, 3.57142873108387}},
      // Kernel 1, 2, 2, 2, 1: a constant 1 becomes 8; run([1..6], [1, 2, 2], 5, 1, float64).
      {5, 1, {1, 2}, {1, 1, 1, 1}, {8, 8, 8, 8}},
      {5, 1, {1, 2}, {1, 2, 3, 4, 5, 6}, {12, 17, 24, 32, 39, 44}},
      // A constant stays constant up to the float 1/5: (3+3)c + (3+3)c + 3c.
      {5, 1, {}, {3, 3, 3, 3, 3, 3}, std::vector<double>(6, 3.0000000447034836)},
      // One point: every padding but zeros repeats it (the linear lines are flat): (6+6)c + 6c.
      {3, 1, {}, {6}, {6.000000178813934}},
      {3, 2, {}, {6}, {6.000000178813934}},
      {3, 3, {}, {6}, {6.000000178813934}},
      {1, 0, {}, {3, -1, 2}, {3, -1, 2}},  // one tap copies the curve, an empty one too
      {1, 0, {}, {}, {}},
      // NaN and inf reach the outputs whose window holds them; the constant padding repeats the
      // infinity, the reflection through it gives inf - inf.
      {3, 1, {}, {1, 1, 1, nan, 1, 1, 1, 1}, {one, one, nan, nan, nan, one, one, one}},
      {3, 1, {}, {1, 1, 1, 1, 1, inf}, {one, inf, inf}, {3, 4, 5}},
      {3, 3, {}, {1, 1, 1, 1, 1, inf}, {one, nan}, {3, 5}},
  };
  for (const Row& r : rows) {
    SCOPED_TRACE(::testing::Message() << r.n << " taps, extrapolation " << r.mode << ", " << r.in.size() << " points");
    const std::vector<double> got = Average<double>(r);
    ASSERT_EQ(got.size(), r.expected.size());
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_TRUE(SameValue(got[i], r.expected[i])) << i;
  }
  // Each padding at both ends, both twins: outputs 0, 1, 5 of run(squares, mva(5, dt), 5, mode, dt).
  // The right-hand linear padding is the last line at buffer positions 0 and 1:
  // 11*i + 7*25 - 6*36 = -41, -30, far below the curve, hence the low last value.
  const struct {
    std::vector<double> expected;
    std::vector<float> expectedF;
  } paddings[] = {
      {{2.8000000417232513, 6.000000089406967, 15.400000229477882}, {2.8000002f, 6.0f, 15.4f}},
      {{3.200000047683716, 6.200000092387199, 29.800000444054604}, {3.2f, 6.2000003f, 29.800001f}},
      {{1.4000000208616257, 5.600000083446503, 1.2000000178813934}, {1.4000001f, 5.6000004f, 1.2000003f}},
      {{2.600000038743019, 6.200000092387199, 32.00000047683716}, {2.6000001f, 6.2000003f, 32.0f}},
  };
  for (int mode = 0; mode < 4; ++mode) {
    const Row r = {5, mode, {}, {1, 4, 9, 16, 25, 36}, {}, {0, 1, 5}};
    EXPECT_EQ(Average<double>(r), paddings[mode].expected) << mode;
    EXPECT_EQ(Average<float>(r), paddings[mode].expectedF) << mode;
  }
}

TEST(MovingAverage, RefusalsLeaveTheCopyAndCopiesFilterAlike) {
  const auto in = Curve<double>({3, -1, 2});
  const WbArrayTempl<ZmPoint2d> empty;
  const auto size = [](int n) { return L"Invalid filter kernel size " + std::to_wstring(n); };
  const auto mva = [](int n, int mode) { return std::make_shared<ZmFilterMVAd>(n, mode); };
  const struct {
    std::shared_ptr<ZmFilterd> filter;
    const WbArrayTempl<ZmPoint2d>& in;
    std::wstring message;
  } rows[] = {
      {mva(0, 3), in, size(0)},
      {mva((1 << 20) + 1, 3), in, size((1 << 20) + 1)},
      {mva(INT_MAX, 3), in, size(INT_MAX)},
      {std::make_shared<ZmFilterMAd>(1, ZmExtrapolationReflection), in, size(0)},  // the frame has no kernel
      {mva(9, 3), in, L"Not enough points to filter"},                             // h = 4 > N = 3
      {mva(3, 2), empty, L"Not enough points to filter"},
      {std::make_shared<ZmFilterMVAd>(3, static_cast<Extrapolation>(7)), in, L"Unknown extrapolation type 7"},
  };
  for (const auto& r : rows) EXPECT_EQ(Refusal(*r.filter, r.in), r.message);
  EXPECT_EQ(Refusal(ZmFilterMVAf(3, 7), Curve<float>({1, 2, 3})), L"Unknown extrapolation type 7");
  // A copy of a filter filters as the filter does.
  ZmFilterMVAd filter(3, ZmExtrapolationReflection);
  const auto curve = Curve<double>({5, 1, 4, 1, 5, 9, 2, 6});
  EXPECT_TRUE(SameCurve(Filtered(ZmFilterMVAd(filter), curve), Filtered(filter, curve)));
}

// The cosine filter of n taps on Signal(30): its normalised coefficients (index, value) and its
// outputs 0, 15 and 29. numpy: c[k] = dt(math.cos(math.pi * (n - 1 - 2*k) / (2.0 * n))),
// normalised by its kernel sum.
template <class T>
void ExpectCosine(int n, const std::vector<std::pair<int, T>>& coefficients, const std::vector<T>& outputs) {
  SCOPED_TRACE(n);
  Twin<T, ZmFilterCosd, ZmFilterCosf> filter(n);
  EXPECT_EQ(Values(Filtered(filter, Curve<T>(Signal(30), 0.5)), {0, 15, 29}), outputs);  // any step
  for (const auto& c : coefficients) EXPECT_EQ(filter.GetCoefficients()[c.first], c.second);
}

TEST(CosineFilter, KernelAndOutputs) {
  ZmFilterCosd three(3);
  EXPECT_EQ(three.GetNormalise(), 1);
  EXPECT_EQ(three.GetExtrapolationType(), ZmExtrapolationReflection);
  EXPECT_EQ(three.GetCoefficients()[0], 0.5000000000000001);  // cos(pi/3), normalised at Compute
  ExpectCosine<double>(3, {{0, 0.25000000000000006}, {1, 0.5}}, {1.1562500000000002, 6.250000000000001, 6.71875});
  ExpectCosine<double>(4, {{0, 0.14644660940672627}, {1, 0.35355339059327373}},
                       {0.0, 5.786388443759919, 6.73407287525381});
  ExpectCosine<float>(5, {{0, 0.095491506f}, {2, 0.309017f}}, {1.5978982f, 6.25f, 7.482682f});
  // One tap copies; no tap is refused.
  const auto in = Curve<double>(Signal(5));
  EXPECT_TRUE(SameCurve(Filtered(ZmFilterCosd(1), in), in));
  EXPECT_EQ(Refusal(ZmFilterCosd(0), in), L"Invalid filter kernel size 0");
}

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

// Random values and weights, odd and even kernels, curve lengths around and between multiples
// of every vector width, each curve filtered into itself: bit for bit the plain loop.
template <class T>
void CheckBitIdentical(std::mt19937_64& rng) {
  std::uniform_real_distribution<double> value(-1.0e3, 1.0e3), weight(-1.0, 1.0);
  std::vector<std::size_t> lengths = {255, 256, 257, 1000, 1003, 4099};
  for (std::size_t N = 1; N <= 140; ++N) lengths.push_back(N);
  for (int n : {1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 31, 32, 33, 50, 63, 64, 65, 81}) {
    WbArrayTempl<T> weights;
    for (int k = 0; k < n / 2 + (n & 1); ++k) weights.Add(static_cast<T>(weight(rng)));
    Twin<T, ZmFilterMVAWeightedd, ZmFilterMVAWeightedf> filter(n, weights, ZmExtrapolationReflection);
    for (std::size_t N : lengths) {
      if (N < static_cast<std::size_t>(n / 2)) continue;
      WbArrayTempl<ZmPoint2T<T>> curve;
      for (std::size_t i = 0; i < N; ++i) curve.Add(ZmPoint2T<T>(T(i), static_cast<T>(value(rng))));
      const std::vector<T> expected = PlainFilter(Values(curve), {weights.begin(), weights.end()}, n);
      ASSERT_EQ(filter.Compute(curve, curve), nullptr);
      ASSERT_EQ(std::memcmp(Values(curve).data(), expected.data(), N * sizeof(T)), 0) << "n " << n << " N " << N;
    }
  }
}

TEST(VectorKernel, BitIdenticalToThePlainLoop) {
  std::mt19937_64 rng(20240611);
  CheckBitIdentical<double>(rng);
  CheckBitIdentical<float>(rng);
}

}  // namespace
