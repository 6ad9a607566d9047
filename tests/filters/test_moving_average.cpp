// The symmetric-kernel machinery through the moving averages: coefficient layouts, the window
// of odd and even kernels, the four paddings (the right-hand linear padding included), the
// refused inputs and what out holds then, and the float twins.
//
// Expected values replay the rules in numpy, one operation at a time in the filter's precision
// (dt = numpy.float64 or numpy.float32), with the work buffer b padded as the header says:
//   def run(y, c, n, mode, dt):
//       h = n // 2; b = pad(y, h, mode, dt); out = []
//       for j in range(len(y)):
//           s = dt(0)
//           for k in range(h): s = dt(s + dt(dt(b[j+k] + b[j+n-1-k]) * c[k]))
//           if n % 2: s = dt(s + dt(b[j+h] * c[h]))
//           out.append(s)
//   mva(n, dt) = [dt(numpy.float32(1) / numpy.float32(n))] * ((n + 1) // 2)
//   linear padding: b[i] = ((y1-y0)*i + (h+1)*y0) - h*y1,
//                   b[h+N+i] = ((B-A)*i + (h+N-1)*A) - (h+N-2)*B
#include <gtest/gtest.h>

#include <climits>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <limits>

#include "filters/filter_curves.h"

using filter_test::Curve;
using filter_test::Message;
using filter_test::SameCurve;
using filter_test::Values;

namespace {

TEST(MovingAverage, CoefficientsAreOneOverNInSinglePrecision) {
  const ZmFilterMVAd three(3, ZmExtrapolationConstant);
  ASSERT_EQ(three.GetKernelSize(), 3);
  ASSERT_EQ(three.GetCoefficients().GetSize(), 2u);
  EXPECT_EQ(three.GetCoefficients()[0], 0.3333333432674408);  // not the double 1/3
  EXPECT_EQ(three.GetCoefficients()[1], 0.3333333432674408);
  const ZmFilterMVAd four(4, ZmExtrapolationZeros);
  ASSERT_EQ(four.GetCoefficients().GetSize(), 2u);
  EXPECT_EQ(four.GetCoefficients()[1], 0.25);
  const ZmFilterMVAf threef(3, ZmExtrapolationConstant);
  EXPECT_EQ(threef.GetCoefficients()[0], 1.0f / 3.0f);
  EXPECT_EQ(three.GetNormalise(), 0);
  EXPECT_EQ(three.GetMinTimeStep(), -1.0000000331813535e+32);  // no limits
  EXPECT_EQ(three.GetMaxTimeStep(), -1.0000000331813535e+32);
}

TEST(MovingAverage, StepRampsOverFiveSamplesAndAbscissaeAreKept) {
  // run([0]*5 + [1]*5, mva(5, float64), 5, 1, float64)
  ZmFilterMVAd filter(5, ZmExtrapolationConstant);
  const auto in = Curve<double>({0, 0, 0, 0, 0, 1, 1, 1, 1, 1}, 0.37, -2.0);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(filter.Compute(in, out), nullptr);
  const std::vector<double> expected = {0.0,
                                        0.0,
                                        0.0,
                                        0.20000000298023224,
                                        0.4000000059604645,
                                        0.6000000089406967,
                                        0.800000011920929,
                                        1.0000000149011612,
                                        1.0000000149011612,
                                        1.0000000149011612};
  EXPECT_EQ(Values(out), expected);
  for (std::uint64_t i = 0; i < in.GetSize(); ++i) EXPECT_EQ(out[i].x, in[i].x);
}

TEST(MovingAverage, EvenKernelWindowStartsHalfASampleEarly) {
  // 4 taps: out[j] averages in[j-2] .. in[j+1]; zeros beyond the ends.
  // run([1..7], mva(4, float64), 4, 0, float64) = 0.75, 1.5, 2.5, 3.5, 4.5, 5.5, 4.5
  ZmFilterMVAd filter(4, ZmExtrapolationZeros);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(filter.Compute(Curve<double>({1, 2, 3, 4, 5, 6, 7}), out), nullptr);
  EXPECT_EQ(Values(out), (std::vector<double>{0.75, 1.5, 2.5, 3.5, 4.5, 5.5, 4.5}));
}

TEST(MovingAverage, EachPaddingModeAtBothEnds) {
  // y = 1, 4, 9, 16, 25, 36 through a 5-point average: out[0], out[1] and out[5] per mode,
  // run(y, mva(5, dt), 5, mode, dt) for dt = float64 and float32.
  const std::vector<double> squares = {1, 4, 9, 16, 25, 36};
  struct Case {
    Extrapolation mode;
    double first, second, last;
    float firstF, secondF, lastF;
  };
  const Case cases[] = {
      {ZmExtrapolationZeros, 2.8000000417232513, 6.000000089406967, 15.400000229477882, 2.8000002f, 6.0f, 15.4f},
      {ZmExtrapolationConstant, 3.200000047683716, 6.200000092387199, 29.800000444054604, 3.2f, 6.2000003f, 29.800001f},
      // The right-hand linear padding is the last line evaluated at buffer positions 0 and 1:
      // 11*i + 7*25 - 6*36 = -41, -30, far below the curve, hence the low last value.
      {ZmExtrapolationLinear, 1.4000000208616257, 5.600000083446503, 1.2000000178813934, 1.4000001f, 5.6000004f,
       1.2000003f},
      {ZmExtrapolationReflection, 2.600000038743019, 6.200000092387199, 32.00000047683716, 2.6000001f, 6.2000003f,
       32.0f},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.mode));
    ZmFilterMVAd filter(5, c.mode);
    WbArrayTempl<ZmPoint2d> out;
    ASSERT_EQ(filter.Compute(Curve<double>(squares), out), nullptr);
    EXPECT_EQ(out[0].y, c.first);
    EXPECT_EQ(out[1].y, c.second);
    EXPECT_EQ(out[5].y, c.last);
    ZmFilterMVAf filterF(5, c.mode);
    WbArrayTempl<ZmPoint2f> outF;
    ASSERT_EQ(filterF.Compute(Curve<float>(squares), outF), nullptr);
    EXPECT_EQ(outF[0].y, c.firstF);
    EXPECT_EQ(outF[1].y, c.secondF);
    EXPECT_EQ(outF[5].y, c.lastF);
  }
}

TEST(MovingAverage, LinearPaddingKeepsTheLeftEndOfALineStraightButNotTheRight) {
  // y = x, i = 0..9, h = 2: the left padding is -2, -1; the right one is
  // (9-8)*i + 11*8 - 10*9 = -2 + i, i.e. -2, -1 instead of 10, 11.
  // run(range(10), mva(5, float64), 5, 2, float64)
  ZmFilterMVAd filter(5, ZmExtrapolationLinear);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(filter.Compute(Curve<double>({0, 1, 2, 3, 4, 5, 6, 7, 8, 9}), out), nullptr);
  EXPECT_EQ(out[0].y, 0.0);
  EXPECT_EQ(out[1].y, 1.0000000149011612);
  EXPECT_EQ(out[7].y, 7.000000104308128);
  EXPECT_EQ(out[8].y, 5.600000083446503);  // (6 + 7 + 8 + 9 - 2) / 5: the line breaks
  EXPECT_EQ(out[9].y, 4.200000062584877);  // (7 + 8 + 9 - 2 - 1) / 5
}

TEST(MovingAverage, CurveMustHoldHalfTheKernel) {
  // Three points: h = 4 (9 taps) is too much; h = 3 (7 taps) reflects every point once.
  // run([1, 2, 4], mva(7, float64), 7, 3, float64)
  const auto in = Curve<double>({1, 2, 4});
  WbArrayTempl<ZmPoint2d> out = Curve<double>({7, 7});
  ZmFilterMVAd nine(9, ZmExtrapolationReflection);
  EXPECT_EQ(Message(nine.Compute(in, out)), L"Not enough points to filter");
  EXPECT_TRUE(SameCurve(out, in));
  ZmFilterMVAd seven(7, ZmExtrapolationReflection);
  ASSERT_EQ(seven.Compute(in, out), nullptr);
  EXPECT_EQ(Values(out), (std::vector<double>{1.428571492433548, 2.5714286863803864, 3.57142873108387}));
}

TEST(MovingAverage, WeightsAreUsedAsGivenAndTheLastOneRepeats) {
  // Kernel 1, 2, 2, 2, 1: a constant 1 becomes 8; run([1..6], [1, 2, 2], 5, 1, float64).
  WbArrayTempl<double> weights;
  weights.Add(1.0);
  weights.Add(2.0);
  ZmFilterMVAWeightedd filter(5, weights, ZmExtrapolationConstant);
  ASSERT_EQ(filter.GetCoefficients().GetSize(), 3u);
  EXPECT_EQ(filter.GetCoefficients()[2], 2.0);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(filter.Compute(Curve<double>({1, 1, 1, 1}), out), nullptr);
  EXPECT_EQ(Values(out), (std::vector<double>{8, 8, 8, 8}));
  ASSERT_EQ(filter.Compute(Curve<double>({1, 2, 3, 4, 5, 6}), out), nullptr);
  EXPECT_EQ(Values(out), (std::vector<double>{12, 17, 24, 32, 39, 44}));
  // No weights: the plain average; more weights than coefficients: the extra ones unused.
  EXPECT_EQ(ZmFilterMVAWeightedd(5, WbArrayTempl<double>(), ZmExtrapolationZeros).GetCoefficients()[2],
            0.20000000298023224);
  WbArrayTempl<float> many = {3, 4, 5, 6, 7};
  const ZmFilterMVAWeightedf manyF(4, many, ZmExtrapolationZeros);
  ASSERT_EQ(manyF.GetCoefficients().GetSize(), 2u);
  EXPECT_EQ(manyF.GetCoefficients()[1], 4.0f);
}

TEST(MovingAverage, ExtrapolationByItsNumber) {
  // The enumeration's values are accepted as plain numbers: (5, 1) is five points with constant
  // ends, so a constant curve stays constant up to the float 1/5: (3+3)c + (3+3)c + 3c with
  // c = 0.20000000298023224 is 3.0000000447034836 everywhere; (4, 0) pads with zeros: the first output of the
  // constant 2 is (0 + 0 + 2 + 2) / 4 = 1. The weighted form takes the number last.
  const ZmFilterMVAd constantEnds(5, 1);
  EXPECT_EQ(constantEnds.GetExtrapolationType(), ZmExtrapolationConstant);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(ZmFilterMVAd(5, 1).Compute(Curve<double>({3, 3, 3, 3, 3, 3}), out), nullptr);
  EXPECT_EQ(Values(out), std::vector<double>(6, 3.0000000447034836));
  ASSERT_EQ(ZmFilterMVAd(4, 0).Compute(Curve<double>({2, 2, 2, 2}), out), nullptr);
  EXPECT_EQ(out[0].y, 1.0);
  WbArrayTempl<double> weights = {1.0, 2.0};
  EXPECT_EQ(ZmFilterMVAWeightedd(5, weights, 0).GetExtrapolationType(), ZmExtrapolationZeros);
  EXPECT_EQ(ZmFilterd::Extrapolation(2), ZmExtrapolationLinear);
  // A number outside 0..3 is refused when filtering, out holding the input.
  WbArrayTempl<ZmPoint2f> outF;
  const WbErrObj* error = ZmFilterMVAf(3, 7).Compute(Curve<float>({1, 2, 3}), outF);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(outF.GetSize(), 3u);
  EXPECT_STREQ(error->GetMessage(), L"Unknown extrapolation type 7");
}

TEST(MovingAverage, DegenerateKernelsAndCurves) {
  WbArrayTempl<ZmPoint2d> out;
  const auto in = Curve<double>({3, -1, 2});
  // Sizes below 1 and above 2^20 taps are refused, out holding the copy; the wide ones take no
  // memory before a curve is seen (INT_MAX once meant 4 GiB of coefficients).
  for (int n : {0, -1, -4, (1 << 20) + 1, INT_MAX}) {
    ZmFilterMVAd filter(n, ZmExtrapolationReflection);
    EXPECT_EQ(filter.GetCoefficients().GetSize(), 0u);
    EXPECT_EQ(Message(filter.Compute(in, out)), L"Invalid filter kernel size " + std::to_wstring(n));
    EXPECT_TRUE(SameCurve(out, in));
  }
  EXPECT_EQ(ZmFilterMVAf(INT_MAX).GetCoefficients().GetSize(), 0u);
  EXPECT_EQ(ZmFilterMVAf(1 << 20).GetCoefficients().GetSize(), 1u << 19);
  ZmFilterMAd bare(1, ZmExtrapolationReflection);
  EXPECT_EQ(Message(bare.Compute(in, out)), L"Invalid filter kernel size 0");
  // One tap copies the curve, and accepts an empty one.
  ZmFilterMVAd one(1, ZmExtrapolationZeros);
  ASSERT_EQ(one.Compute(in, out), nullptr);
  EXPECT_TRUE(SameCurve(out, in));
  ASSERT_EQ(one.Compute(WbArrayTempl<ZmPoint2d>(), out), nullptr);
  EXPECT_EQ(out.GetSize(), 0u);
  // An empty curve has fewer points than any half kernel.
  ZmFilterMVAd three(3, ZmExtrapolationLinear);
  EXPECT_EQ(Message(three.Compute(WbArrayTempl<ZmPoint2d>(), out)), L"Not enough points to filter");
  // A single point: every padding but zeros repeats it (the linear lines are flat), and
  // (6 + 6) * c + 6 * c with c = 1/3 in single precision is just above 6.
  for (Extrapolation mode : {ZmExtrapolationConstant, ZmExtrapolationLinear, ZmExtrapolationReflection}) {
    ZmFilterMVAd filter(3, mode);
    ASSERT_EQ(filter.Compute(Curve<double>({6}), out), nullptr);
    EXPECT_EQ(out[0].y, 6.000000178813934) << static_cast<int>(mode);  // run([6], mva(3), 3, mode)
  }
  // An unknown extrapolation is refused rather than guessed.
  ZmFilterMVAd unknown(3, static_cast<Extrapolation>(7));
  EXPECT_EQ(Message(unknown.Compute(in, out)), L"Unknown extrapolation type 7");
  EXPECT_TRUE(SameCurve(out, in));
}

TEST(MovingAverage, NonFiniteValuesStayInTheirWindows) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  ZmFilterMVAd filter(3, ZmExtrapolationConstant);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(filter.Compute(Curve<double>({1, 1, 1, nan, 1, 1, 1, 1}), out), nullptr);
  for (std::uint64_t j = 0; j < out.GetSize(); ++j) EXPECT_EQ(std::isnan(out[j].y), j >= 2 && j <= 4) << j;
  ASSERT_EQ(filter.Compute(Curve<double>({1, 1, 1, 1, 1, inf}), out), nullptr);
  EXPECT_EQ(out[3].y, 1.0000000298023224);  // run([1]*5 + [inf], mva(3), 3, 1)[3]
  EXPECT_EQ(out[4].y, inf);
  EXPECT_EQ(out[5].y, inf);  // the constant padding repeats the infinity
  // Reflection through an infinite end gives inf - inf: NaN.
  ZmFilterMVAd reflect(3, ZmExtrapolationReflection);
  ASSERT_EQ(reflect.Compute(Curve<double>({1, 1, 1, 1, 1, inf}), out), nullptr);
  EXPECT_TRUE(std::isnan(out[5].y));
  EXPECT_EQ(out[3].y, 1.0000000298023224);
}

TEST(MovingAverage, FilteringIntoTheInputAndCopies) {
  // in and out may be one array; a copy of a filter filters alike.
  const auto in = Curve<double>({5, 1, 4, 1, 5, 9, 2, 6});
  ZmFilterMVAd filter(3, ZmExtrapolationReflection);
  WbArrayTempl<ZmPoint2d> expected;
  ASSERT_EQ(filter.Compute(in, expected), nullptr);
  WbArrayTempl<ZmPoint2d> same = in;
  ASSERT_EQ(filter.Compute(same, same), nullptr);
  EXPECT_TRUE(SameCurve(same, expected));
  ZmFilterMVAd copy(filter);
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(copy.Compute(in, out), nullptr);
  EXPECT_TRUE(SameCurve(out, expected));
  copy.SetExtrapolationType(ZmExtrapolationZeros);
  EXPECT_EQ(copy.GetExtrapolationType(), ZmExtrapolationZeros);
  EXPECT_EQ(filter.GetExtrapolationType(), ZmExtrapolationReflection);
}

}  // namespace
