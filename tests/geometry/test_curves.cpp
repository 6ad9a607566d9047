// The curve statics of the 2D point: interpolation in both directions, crossings, resampling,
// extrapolation, range extraction, envelopes, sinusoid peaks and the convex hull.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

template <class T>
class CurveTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(CurveTwins, Scalars);

template <class T>
WbArrayTempl<ZmPoint2T<T>> Curve(std::initializer_list<std::pair<double, double>> xy) {
  WbArrayTempl<ZmPoint2T<T>> c;
  for (const auto& p : xy) c.Add(ZmPoint2T<T>(T(p.first), T(p.second)));
  return c;
}

template <class T>
std::vector<std::pair<T, T>> Pairs(const WbArrayTempl<ZmPoint2T<T>>& c) {
  std::vector<std::pair<T, T>> v;
  for (const auto& p : c) v.emplace_back(p.x, p.y);
  return v;
}

template <class T>
std::vector<std::pair<T, T>> Expect(std::initializer_list<std::pair<double, double>> xy) {
  std::vector<std::pair<T, T>> v;
  for (const auto& p : xy) v.emplace_back(T(p.first), T(p.second));
  return v;
}

// ---------------------------------------------------------------- interpolation

TYPED_TEST(CurveTwins, InterpolateOnXReportsTheFirstPointOfTheSegmentUsed) {
  using P = ZmPoint2T<TypeParam>;
  const auto c = Curve<TypeParam>({{0, 0}, {1, 10}, {2, 20}});
  const P* p = c.GetData();
  int index = 99;
  EXPECT_EQ(P::InterpolateOnX(p, 3, 1, index, 0), TypeParam(10));
  EXPECT_EQ(index, 0);  // exact hit on point 1 reached from point 0: segment 0
  EXPECT_EQ(P::InterpolateOnX(p, 3, TypeParam(1.5), index, 0), TypeParam(15));
  EXPECT_EQ(index, 1);
  EXPECT_EQ(P::InterpolateOnX(p, 3, 0, index, 0), TypeParam(0));
  EXPECT_EQ(index, 0);  // exact hit on the start point itself
  EXPECT_EQ(P::InterpolateOnX(p, 3, 1, index, 1), TypeParam(10));
  EXPECT_EQ(index, 1);
  EXPECT_EQ(P::InterpolateOnX(p, 3, 2, index, 0), TypeParam(20));
  EXPECT_EQ(index, 1);
  EXPECT_EQ(P::InterpolateOnX(p, 3, 3, index, 0), TypeParam(kMarker));
  EXPECT_EQ(index, -1);
  EXPECT_EQ(P::InterpolateOnX(p, 3, TypeParam(0.5), index, 1), TypeParam(kMarker));  // behind the start
  EXPECT_EQ(index, -1);
  EXPECT_EQ(P::InterpolateOnX(p, 3, 5, index, 2), TypeParam(kMarker));  // last point, no segment
  EXPECT_EQ(index, -1);
  // Nothing to search: the marker and index untouched.
  index = 99;
  EXPECT_EQ(P::InterpolateOnX(p, 3, 1, index, 3), TypeParam(kMarker));
  EXPECT_EQ(P::InterpolateOnX(p, 3, 1, index, -1), TypeParam(kMarker));
  EXPECT_EQ(P::InterpolateOnX(p, 0, 1, index, 0), TypeParam(kMarker));
  EXPECT_EQ(P::InterpolateOnX(nullptr, 0, 1, index, 0), TypeParam(kMarker));
  EXPECT_EQ(index, 99);
  // NaN: neither the abscissa nor a NaN point holds anything.
  EXPECT_EQ(P::InterpolateOnX(p, 3, TypeParam(NAN), index, 0), TypeParam(kMarker));
  EXPECT_EQ(index, -1);
  const auto holed = Curve<TypeParam>({{0, 0}, {NAN, 5}, {2, 2}});
  EXPECT_EQ(P::InterpolateOnX(holed.GetData(), 3, 1, index, 0), TypeParam(kMarker));
  EXPECT_EQ(P::InterpolateOnX(holed.GetData(), 3, 2, index, 0), TypeParam(2));  // exact hit still found
  EXPECT_EQ(index, 1);
}

TYPED_TEST(CurveTwins, InterpolationTakesDecreasingRunsAndTheFirstMatchingSegment) {
  using P = ZmPoint2T<TypeParam>;
  int index = -5;
  const auto down = Curve<TypeParam>({{2, 0}, {0, 10}});
  EXPECT_EQ(P::InterpolateOnX(down.GetData(), 2, 1, index, 0), TypeParam(5));
  EXPECT_EQ(index, 0);
  // Out and back: x = 1 lies in both segments; the first wins unless the search starts later.
  // Second segment: 2 + (1 - 2)/(0 - 2)*(4 - 2) = 3.
  const auto back = Curve<TypeParam>({{0, 0}, {2, 2}, {0, 4}});
  EXPECT_EQ(P::InterpolateOnX(back.GetData(), 3, 1, index, 0), TypeParam(1));
  EXPECT_EQ(index, 0);
  EXPECT_EQ(P::InterpolateOnX(back.GetData(), 3, 1, index, 1), TypeParam(3));
  EXPECT_EQ(index, 1);
  // Along y: the abscissa where the curve reaches 3.
  EXPECT_EQ(P::InterpolateOnY(back.GetData(), 3, 3, index, 0), TypeParam(1));
  EXPECT_EQ(index, 1);
  EXPECT_EQ(P::InterpolateOnY(back.GetData(), 3, 2, index, 0), TypeParam(2));  // exact hit on point 1
  EXPECT_EQ(index, 0);
  EXPECT_EQ(P::InterpolateOnY(back.GetData(), 3, 5, index, 0), TypeParam(kMarker));
  EXPECT_EQ(index, -1);
}

// y0 + (x - x0)/(x1 - x0)*(y1 - y0) in this order. Python with numpy.float32 for the float
// twin, on (0.1, 0.3), (0.7, 1.1) at x = 0.48:
//   double 0.8066666666666666 (multiplying before dividing would give 0.8066666666666669)
//   float  0.8066667318344116 (the other order: 0.8066666722297668)
TEST(Curves, InterpolationEvaluatesTheSegmentFormulaInItsOrder) {
  const ZmPoint2d d[2] = {ZmPoint2d(0.1, 0.3), ZmPoint2d(0.7, 1.1)};
  const ZmPoint2f f[2] = {ZmPoint2f(0.1f, 0.3f), ZmPoint2f(0.7f, 1.1f)};
  int index = 0;
  EXPECT_EQ(ZmPoint2d::InterpolateOnX(d, 2, 0.48, index, 0), 0.8066666666666666);
  EXPECT_EQ(ZmPoint2f::InterpolateOnX(f, 2, 0.48f, index, 0), 0.8066667318344116f);
  const ZmPoint2d dy[2] = {ZmPoint2d(0.3, 0.1), ZmPoint2d(1.1, 0.7)};
  const ZmPoint2f fy[2] = {ZmPoint2f(0.3f, 0.1f), ZmPoint2f(1.1f, 0.7f)};
  EXPECT_EQ(ZmPoint2d::InterpolateOnY(dy, 2, 0.48, index, 0), 0.8066666666666666);
  EXPECT_EQ(ZmPoint2f::InterpolateOnY(fy, 2, 0.48f, index, 0), 0.8066667318344116f);
}

TYPED_TEST(CurveTwins, AllCrossingsOfALevel) {
  using P = ZmPoint2T<TypeParam>;
  WbArrayTempl<TypeParam> xs{TypeParam(42)};
  const auto wave = Curve<TypeParam>({{0, 0}, {1, 2}, {2, 0}, {3, 2}});
  ASSERT_EQ(P::InterpolateOnYn(wave.GetData(), 4, 1, xs), 3u);
  EXPECT_EQ(xs[0], TypeParam(0.5));
  EXPECT_EQ(xs[1], TypeParam(1.5));
  EXPECT_EQ(xs[2], TypeParam(2.5));
  // A crossing on a point is found as the end of one segment and again as the next start.
  const auto peak = Curve<TypeParam>({{0, 0}, {1, 1}, {2, 0}});
  ASSERT_EQ(P::InterpolateOnYn(peak.GetData(), 3, 1, xs), 2u);
  EXPECT_EQ(xs[0], TypeParam(1));
  EXPECT_EQ(xs[1], TypeParam(1));
  EXPECT_EQ(P::InterpolateOnYn(peak.GetData(), 3, 5, xs), 0u);
  EXPECT_EQ(xs.GetSize(), 0u);
  xs.Add(1);
  EXPECT_EQ(P::InterpolateOnYn(nullptr, 0, 1, xs), 0u);
  EXPECT_EQ(xs.GetSize(), 0u);
  // On a level run every point is an exact hit on its own start: each is reported once.
  const auto flat = Curve<TypeParam>({{0, 1}, {1, 1}, {2, 1}});
  EXPECT_EQ(P::InterpolateOnYn(flat.GetData(), 3, 1, xs), 3u);
}

// ---------------------------------------------------------------- resampling

TYPED_TEST(CurveTwins, SampleXAccumulatesTheStep) {
  using P = ZmPoint2T<TypeParam>;
  WbArrayTempl<P> out;
  const auto line = Curve<TypeParam>({{0, 0}, {1, 10}, {2, 20}});
  ASSERT_EQ(P::SampleX(line.GetData(), 3, TypeParam(0.5), out), 5u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0, 0}, {0.5, 5}, {1, 10}, {1.5, 15}, {2, 20}}));
  // From max(startX, first abscissa).
  ASSERT_EQ(P::SampleX(line.GetData(), 3, TypeParam(0.5), out, TypeParam(0.25)), 4u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0.25, 2.5}, {0.75, 7.5}, {1.25, 12.5}, {1.75, 17.5}}));
  EXPECT_EQ(P::SampleX(line.GetData(), 3, TypeParam(0.5), out, TypeParam(-4)), 5u);
  EXPECT_EQ(P::SampleX(line.GetData(), 3, TypeParam(0.5), out, TypeParam(kMarker)), 5u);
  EXPECT_EQ(P::SampleX(line.GetData(), 3, TypeParam(0.5), out, TypeParam(NAN)), 5u);  // NaN: not given
  EXPECT_EQ(P::SampleX(line.GetData(), 3, TypeParam(0.5), out, TypeParam(5)), 0u);
}

// The abscissa is x + step + step ..., not x + k*step. Python: accumulating 0.1 from 0 gives
// 0.7999999999999999 as the 9th double sample (8*0.1 is 0.8), and 11 samples up to 1; in float
// the 11th sum is 1.0000001 > 1, so only 10 samples (10*0.1f would be exactly 1).
TEST(Curves, SampleXCountsAndPlacesByTheAccumulatedStep) {
  const ZmPoint2d d[2] = {ZmPoint2d(0, 0), ZmPoint2d(1, 1)};
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(ZmPoint2d::SampleX(d, 2, 0.1, out), 11u);
  EXPECT_EQ(out[8].x, 0.7999999999999999);
  EXPECT_EQ(out[8].y, 0.7999999999999999);
  EXPECT_EQ(out[10].x, 0.9999999999999999);
  const ZmPoint2f f[2] = {ZmPoint2f(0, 0), ZmPoint2f(1, 1)};
  WbArrayTempl<ZmPoint2f> outf;
  ASSERT_EQ(ZmPoint2f::SampleX(f, 2, 0.1f, outf), 10u);
  EXPECT_EQ(outf[9].x, 0.9000000953674316f);
}

TYPED_TEST(CurveTwins, SampleXRefusesBadStepsAndEmptyCurvesWithAnEmptyResult) {
  using P = ZmPoint2T<TypeParam>;
  const auto line = Curve<TypeParam>({{0, 0}, {1, 10}});
  WbArrayTempl<P> out{P(7, 7)};
  EXPECT_EQ(P::SampleX(line.GetData(), 2, 0, out), 0u);
  EXPECT_TRUE(out.IsEmpty());
  out.Add(P(7, 7));
  EXPECT_EQ(P::SampleX(line.GetData(), 2, -1, out), 0u);
  EXPECT_TRUE(out.IsEmpty());
  out.Add(P(7, 7));
  EXPECT_EQ(P::SampleX(line.GetData(), 2, TypeParam(NAN), out), 0u);
  EXPECT_TRUE(out.IsEmpty());
  out.Add(P(7, 7));
  EXPECT_EQ(P::SampleX(nullptr, 0, 1, out), 0u);
  EXPECT_TRUE(out.IsEmpty());
  // One point: its own sample, then the next abscissa finds nothing.
  const P single(3, 7);
  ASSERT_EQ(P::SampleX(&single, 1, 1, out), 1u);
  EXPECT_EQ(out[0], single);
  // A decreasing run: the first abscissa is its largest, so it is the only sample.
  const auto down = Curve<TypeParam>({{2, 0}, {0, 10}});
  EXPECT_EQ(P::SampleX(down.GetData(), 2, TypeParam(0.5), out), 1u);
  // A NaN first abscissa has no sample.
  const auto nanFirst = Curve<TypeParam>({{NAN, 0}, {1, 10}});
  EXPECT_EQ(P::SampleX(nanFirst.GetData(), 2, TypeParam(0.5), out), 0u);
}

TEST(Curves, SampleXBoundsItsOutput) {
  WbArrayTempl<ZmPoint2d> out;
  // 1e9 steps across the range: more than the 2^27 samples allowed.
  const ZmPoint2d unit[2] = {ZmPoint2d(0, 0), ZmPoint2d(1, 1)};
  EXPECT_EQ(ZmPoint2d::SampleX(unit, 2, 1e-9, out), 0u);
  EXPECT_TRUE(out.IsEmpty());
  EXPECT_EQ(ZmPoint2d::SampleX(unit, 2, std::numeric_limits<double>::denorm_min(), out), 0u);
  // The spacing of doubles at 1e20 is 16384: adding 1 never moves the abscissa, and the same
  // sample would repeat forever.
  const ZmPoint2d far[2] = {ZmPoint2d(1e20, 0), ZmPoint2d(1e20 + 1e6, 1)};
  EXPECT_EQ(ZmPoint2d::SampleX(far, 2, 1.0, out), 0u);
  EXPECT_EQ(ZmPoint2d::SampleX(far, 2, 65536.0, out), 16u);  // 1e6/65536 = 15.26: 16 samples
  const ZmPoint2d open[2] = {ZmPoint2d(0, 0), ZmPoint2d(INFINITY, 1)};
  EXPECT_EQ(ZmPoint2d::SampleX(open, 2, 1.0, out), 0u);
}

TYPED_TEST(CurveTwins, SampleXReadsACurveHeldInItsOwnOutput) {
  using P = ZmPoint2T<TypeParam>;
  WbArrayTempl<P> curve = Curve<TypeParam>({{0, 0}, {1, 10}, {2, 20}});
  ASSERT_EQ(P::SampleX(curve.GetData(), curve.GetSize(), TypeParam(0.5), curve), 5u);
  EXPECT_EQ(Pairs(curve), Expect<TypeParam>({{0, 0}, {0.5, 5}, {1, 10}, {1.5, 15}, {2, 20}}));
}

// Out, back and out again (by hand): 2 is an exact hit on point 1; 2.5 is beyond the first
// segment, not on the way back (2 -> 1), but on (1 -> 3): 3 + (2.5 - 1)/(3 - 1)*(5 - 3) = 4.5.
// 3.5 is beyond every point: the sampling stops.
TEST(Curves, SampleXOnABackAndForthRunUsesTheFirstHoldingSegment) {
  const auto c = Curve<double>({{0, 0}, {2, 2}, {1, 3}, {3, 5}});
  WbArrayTempl<ZmPoint2d> out;
  ASSERT_EQ(ZmPoint2d::SampleX(c.GetData(), 4, 0.5, out), 7u);
  EXPECT_EQ(Pairs(out), Expect<double>({{0, 0}, {0.5, 0.5}, {1, 1}, {1.5, 1.5}, {2, 2}, {2.5, 4.5}, {3, 5}}));
}

// The stated algorithm, searching from the first point for every sample.
template <class T>
WbArrayTempl<ZmPoint2T<T>> ReferenceSamples(const WbArrayTempl<ZmPoint2T<T>>& c, T step, T startX) {
  WbArrayTempl<ZmPoint2T<T>> out;
  const std::uint64_t n = c.GetSize();
  if (n == 0 || !(step > 0)) return out;
  T x = c[0].x;
  if (startX != T(kMarker) && startX > x) x = startX;
  for (;;) {
    int index = -1;
    const T y = ZmPoint2T<T>::InterpolateOnX(c.GetData(), n, x, index, 0);
    if (index < 0 || y == T(kMarker)) break;
    out.Add(ZmPoint2T<T>(x, y));
    x = x + step;
  }
  return out;
}

// Deterministic pseudo-random numbers in [0, 1).
struct Lcg {
  std::uint64_t state;
  double Next() {
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return double(state >> 11) * (1.0 / 9007199254740992.0);
  }
};

// Increasing, decreasing, wandering (back and forth, with repeated abscissas) and holed
// (NaN abscissas) curves, several steps and starts: the fast sampler must match the stated
// algorithm sample for sample, bit for bit.
TYPED_TEST(CurveTwins, SampleXMatchesTheRestartingSearchOnEveryKindOfCurve) {
  using T = TypeParam;
  using P = ZmPoint2T<T>;
  Lcg random{12345};
  for (int kind = 0; kind < 4; ++kind) {
    for (int trial = 0; trial < 25; ++trial) {
      WbArrayTempl<P> c;
      const int n = 1 + int(random.Next() * 300);
      T x = T(random.Next() * 10 - 5);
      for (int i = 0; i < n; ++i) {
        c.Add(P(x, T(random.Next() * 100 - 50)));
        const double r = random.Next();
        if (kind == 0) x += T(r);
        if (kind == 1) x -= T(r);
        if (kind >= 2) x += T(r < 0.1 ? 0.0 : (r - 0.45) * 2);  // wandering, sometimes repeated
        if (kind == 3 && r < 0.03) x = T(NAN);
        if (kind == 3 && x != x && r > 0.5) x = T(random.Next() * 50);
      }
      const T step = T(0.01 + random.Next() * (trial % 3 == 0 ? 0.1 : 2.0));
      const T startX = trial % 4 == 0 ? T(kMarker) : T(random.Next() * 20 - 5);
      WbArrayTempl<P> fast;
      const std::uint64_t count = P::SampleX(c.GetData(), c.GetSize(), step, fast, startX);
      const auto reference = ReferenceSamples(c, step, startX);
      ASSERT_EQ(count, reference.GetSize()) << "kind " << kind << " trial " << trial;
      for (std::uint64_t k = 0; k < count; ++k) {
        ASSERT_EQ(fast[k].x, reference[k].x) << "kind " << kind << " trial " << trial << " sample " << k;
        // NaN values compare unequal: compare the bits.
        ASSERT_EQ(std::memcmp(&fast[k].y, &reference[k].y, sizeof(T)), 0) << "kind " << kind << " sample " << k;
      }
    }
  }
}

// ---------------------------------------------------------------- range

TYPED_TEST(CurveTwins, ExtrapolateOnXAddsOnePointBeyondAnEnd) {
  using P = ZmPoint2T<TypeParam>;
  WbArrayTempl<P> single{P(1, 4)};
  EXPECT_EQ(P::ExtrapolateOnX(single, 0, 1), 0);  // linear needs two points
  EXPECT_EQ(P::ExtrapolateOnX(single, 0, 0), 1);
  EXPECT_EQ(P::ExtrapolateOnX(single, 3, 0, 100), 1);  // floor only for the linear case
  EXPECT_EQ(Pairs(single), Expect<TypeParam>({{0, 4}, {1, 4}, {3, 4}}));

  // Linear on (0, 0), (1, 2): before, 0 - 2/1*(0 - (-1)) = -2; after, 2 + 2/1*(3 - 1) = 6.
  WbArrayTempl<P> line{P(0, 0), P(1, 2)};
  EXPECT_EQ(P::ExtrapolateOnX(line, -1, 1), 1);
  EXPECT_EQ(P::ExtrapolateOnX(line, 3, 1), 1);
  EXPECT_EQ(Pairs(line), Expect<TypeParam>({{-1, -2}, {0, 0}, {1, 2}, {3, 6}}));
  WbArrayTempl<P> floored{P(0, 0), P(1, 2)};
  EXPECT_EQ(P::ExtrapolateOnX(floored, -1, 1, TypeParam(-1.5)), 1);  // -2 raised to -1.5
  EXPECT_EQ(P::ExtrapolateOnX(floored, 3, 1, TypeParam(5)), 1);      // 6 stays above 5
  EXPECT_EQ(Pairs(floored), Expect<TypeParam>({{-1, -1.5}, {0, 0}, {1, 2}, {3, 6}}));

  WbArrayTempl<P> vertical{P(1, 0), P(1, 5)};
  EXPECT_EQ(P::ExtrapolateOnX(vertical, 0, 1), 0);
  EXPECT_EQ(P::ExtrapolateOnX(vertical, 2, 1), 0);
  EXPECT_EQ(P::ExtrapolateOnX(line, TypeParam(0.5), 0), 0);  // inside: nothing
  EXPECT_EQ(P::ExtrapolateOnX(line, 3, 0), 0);               // on the last point: nothing
  EXPECT_EQ(P::ExtrapolateOnX(line, TypeParam(NAN), 0), 0);
  WbArrayTempl<P> empty;
  EXPECT_EQ(P::ExtrapolateOnX(empty, 0, 0), 0);
  EXPECT_EQ(line.GetSize(), 4u);
  EXPECT_EQ(vertical.GetSize(), 2u);
}

TYPED_TEST(CurveTwins, ExtractXRangeClipsAndInterpolatesAtTheBounds) {
  using P = ZmPoint2T<TypeParam>;
  auto c = Curve<TypeParam>({{0, 0}, {1, 10}, {2, 20}, {3, 30}});
  EXPECT_EQ(P::ExtractXRange(c, TypeParam(0.5), TypeParam(2.5), 0), 4u);
  EXPECT_EQ(Pairs(c), Expect<TypeParam>({{0.5, 5}, {1, 10}, {2, 20}, {2.5, 25}}));
  // Bounds in either order; a decreasing run stays decreasing.
  auto down = Curve<TypeParam>({{3, 30}, {2, 20}, {1, 10}, {0, 0}});
  EXPECT_EQ(P::ExtractXRange(down, TypeParam(2.5), TypeParam(0.5), 0), 4u);
  EXPECT_EQ(Pairs(down), Expect<TypeParam>({{2.5, 25}, {2, 20}, {1, 10}, {0.5, 5}}));
  // Points within tol outside the bounds are kept as they are, and a kept point within tol of
  // a bound stands for it: no new point beside it.
  auto wide = Curve<TypeParam>({{0, 0}, {1, 10}, {2, 20}, {3, 30}});
  EXPECT_EQ(P::ExtractXRange(wide, TypeParam(0.5), TypeParam(2.5), TypeParam(0.6)), 4u);
  EXPECT_EQ(Pairs(wide), Expect<TypeParam>({{0, 0}, {1, 10}, {2, 20}, {3, 30}}));
  auto near = Curve<TypeParam>({{0, 0}, {1, 10}, {2, 20}, {3, 30}});
  EXPECT_EQ(P::ExtractXRange(near, TypeParam(0.95), 2, TypeParam(-0.1)), 2u);  // tol taken as |tol|
  EXPECT_EQ(Pairs(near), Expect<TypeParam>({{1, 10}, {2, 20}}));
  // One segment across the whole range gives both bound points; a one-abscissa range one.
  auto across = Curve<TypeParam>({{0, 0}, {10, 100}});
  EXPECT_EQ(P::ExtractXRange(across, TypeParam(2.5), 5, 0), 2u);
  EXPECT_EQ(Pairs(across), Expect<TypeParam>({{2.5, 25}, {5, 50}}));
  across = Curve<TypeParam>({{0, 0}, {10, 100}});
  EXPECT_EQ(P::ExtractXRange(across, 5, 5, 0), 1u);
  EXPECT_EQ(Pairs(across), Expect<TypeParam>({{5, 50}}));
  // Out and back: each pass through the range is kept, with its own bound points.
  // Segment (4, 4) -> (0, 8): at 3, 4 + (3 - 4)/(0 - 4)*4 = 5; at 1, 4 + 0.75*4 = 7.
  auto zigzag = Curve<TypeParam>({{0, 0}, {4, 4}, {0, 8}});
  EXPECT_EQ(P::ExtractXRange(zigzag, 1, 3, 0), 4u);
  EXPECT_EQ(Pairs(zigzag), Expect<TypeParam>({{1, 1}, {3, 3}, {3, 5}, {1, 7}}));
}

TYPED_TEST(CurveTwins, ExtractXRangeOnDegenerateInput) {
  using P = ZmPoint2T<TypeParam>;
  auto c = Curve<TypeParam>({{0, 0}, {1, 10}});
  EXPECT_EQ(P::ExtractXRange(c, 5, 6, 0), 0u);
  EXPECT_TRUE(c.IsEmpty());
  EXPECT_EQ(P::ExtractXRange(c, 0, 1, 0), 0u);
  c = Curve<TypeParam>({{0, 0}, {1, 10}});
  EXPECT_EQ(P::ExtractXRange(c, TypeParam(NAN), 1, 0), 0u);
  EXPECT_TRUE(c.IsEmpty());
  // A NaN point is dropped, and no bound point is made from a segment that touches it.
  c = Curve<TypeParam>({{0, 0}, {NAN, 5}, {3, 30}, {4, 40}});
  EXPECT_EQ(P::ExtractXRange(c, 1, TypeParam(3.5), TypeParam(NAN)), 2u);
  EXPECT_EQ(Pairs(c), Expect<TypeParam>({{3, 30}, {3.5, 35}}));
  // The value at a bound is the one InterpolateOnX gives there.
  c = Curve<TypeParam>({{0.1, 0.3}, {0.7, 1.1}});
  int index = 0;
  const TypeParam expected = P::InterpolateOnX(c.GetData(), 2, TypeParam(0.48), index, 0);
  EXPECT_EQ(P::ExtractXRange(c, 0, TypeParam(0.48), 0), 2u);
  EXPECT_EQ(c[1].y, expected);
}

// ---------------------------------------------------------------- envelopes

TYPED_TEST(CurveTwins, LocalExtremeEnvelopeKeepsItsDeliberateAsymmetry) {
  using P = ZmPoint2T<TypeParam>;
  const auto c = Curve<TypeParam>({{0, 1}, {1, 3}, {2, 2}, {3, 4}});
  WbArrayTempl<P> out{P(9, 9)};
  EXPECT_EQ(P::EvaluateEnvelop(c, 1, out), 2u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{1, 3}, {3, 4}}));
  EXPECT_EQ(P::EvaluateEnvelop(c, 0, out), 2u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0, 1}, {2, 2}}));
  // A falling first point is an upper extreme (reached from below), a rising one a lower.
  const auto falling = Curve<TypeParam>({{0, 5}, {1, 1}, {2, 3}});
  EXPECT_EQ(P::EvaluateEnvelop(falling, 1, out), 2u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0, 5}, {2, 3}}));
  EXPECT_EQ(P::EvaluateEnvelop(falling, 0, out), 1u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{1, 1}}));
  // One point: upper keeps it, lower never keeps the last point.
  const auto one = Curve<TypeParam>({{0, 1}});
  EXPECT_EQ(P::EvaluateEnvelop(one, 1, out), 1u);
  EXPECT_EQ(P::EvaluateEnvelop(one, 0, out), 0u);
  EXPECT_EQ(P::EvaluateEnvelop(WbArrayTempl<P>(), 1, out), 0u);
  EXPECT_TRUE(out.IsEmpty());
  // A plateau is not a fall: only its last point is a peak.
  const auto plateau = Curve<TypeParam>({{0, 0}, {1, 2}, {2, 2}, {3, 0}});
  EXPECT_EQ(P::EvaluateEnvelop(plateau, 1, out), 1u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{2, 2}}));
  // The curve may be its own output.
  WbArrayTempl<P> self = c;
  EXPECT_EQ(P::EvaluateEnvelop(self, 1, self), 2u);
  EXPECT_EQ(Pairs(self), Expect<TypeParam>({{1, 3}, {3, 4}}));
}

// Width 2 (spans of 1) over y = 1, 5, 2, 4, 3, 6 at x = 0..5, by hand:
//   upper: candidate 0 -> 1 (higher); x3 - x1 = 2 > 1 keeps (1, 5); x5 - x3 = 2 keeps (3, 4);
//          the last candidate (5, 6) closes.
//   lower: x2 - x0 = 2 keeps (0, 1); x4 - x2 = 2 keeps (2, 2); the last candidate is (4, 3).
TYPED_TEST(CurveTwins, WindowedEnvelopeKeepsOneExtremePerHalfWidth) {
  using P = ZmPoint2T<TypeParam>;
  const auto c = Curve<TypeParam>({{0, 1}, {1, 5}, {2, 2}, {3, 4}, {4, 3}, {5, 6}});
  WbArrayTempl<P> out;
  EXPECT_EQ(P::EvaluateEnvelop(c, 1, out, 2), 3u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{1, 5}, {3, 4}, {5, 6}}));
  EXPECT_EQ(P::EvaluateEnvelop(c, 0, out, 2), 3u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0, 1}, {2, 2}, {4, 3}}));
  // Ties do not replace the candidate; a span never closes on equality.
  const auto tie = Curve<TypeParam>({{0, 1}, {0.5, 1}, {1, 0}});
  EXPECT_EQ(P::EvaluateEnvelop(tie, 1, out, 2), 1u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0, 1}}));
  EXPECT_EQ(P::EvaluateEnvelop(Curve<TypeParam>({{3, 3}}), 0, out, 2), 1u);
}

// y = 0.5, 3, 1, -1, -3, -0.5, 2.5, 2.5, 1.2, -2, -1 at x = 0..10: min -3, max 3, mid 0, and
// half amplitude 1.5 either way. The crossings of 0 close segments 2 (1 -> -1), 5 (-0.5 -> 2.5)
// and 8 (1.2 -> -2). Pieces 0..2, 3..5, 6..8:
//   upper: 3 at 1 (kept), -0.5 at 5 (no), 2.5 at 6 (kept: earliest of the tie 6, 7)
//   lower: 0.5 at 0 (no), -3 at 4 (kept), 1.2 at 8 (no)
// The trough -2 at 9 lies after the last crossing and is not examined.
TYPED_TEST(CurveTwins, SinusoidEnvelopeTakesOnePeakPerHalfWave) {
  using P = ZmPoint2T<TypeParam>;
  const auto c = Curve<TypeParam>(
      {{0, 0.5}, {1, 3}, {2, 1}, {3, -1}, {4, -3}, {5, -0.5}, {6, 2.5}, {7, 2.5}, {8, 1.2}, {9, -2}, {10, -1}});
  WbArrayTempl<P> out;
  WbArrayTempl<int> indices{42};
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(c, 1, out, &indices), 2u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{1, 3}, {6, 2.5}}));
  ASSERT_EQ(indices.GetSize(), 2u);
  EXPECT_EQ(indices[0], 1);
  EXPECT_EQ(indices[1], 6);
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(c, 0, out, &indices), 1u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{4, -3}}));
  ASSERT_EQ(indices.GetSize(), 1u);
  EXPECT_EQ(indices[0], 4);
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(c, 1, out, nullptr), 2u);

  // No crossing worth a peak: a constant curve (every point on the mid level, amplitude 0),
  // a monotone one, an empty one, an all-NaN one.
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(Curve<TypeParam>({{0, 1}, {1, 1}}), 1, out, &indices), 0u);
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(Curve<TypeParam>({{0, 0}, {1, 1}, {2, 2}}), 1, out, &indices), 0u);
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(WbArrayTempl<P>(), 1, out, &indices), 0u);
  EXPECT_TRUE(indices.IsEmpty());
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(Curve<TypeParam>({{0, NAN}, {1, NAN}}), 1, out, &indices), 0u);
  // NaN values are left out of the extremes and of the pieces.
  const auto holed = Curve<TypeParam>({{0, NAN}, {1, 3}, {2, -3}, {3, NAN}, {4, 3}});
  EXPECT_EQ(P::EvaluateSinusoidEnvelop(holed, 1, out, &indices), 1u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{1, 3}}));
}

// ---------------------------------------------------------------- convex hull

TYPED_TEST(CurveTwins, ConvexShapeIsCounterClockwiseWithoutCollinearPoints) {
  using P = ZmPoint2T<TypeParam>;
  // A square with a point on an edge, one inside, a duplicate corner and a NaN point.
  const auto c = Curve<TypeParam>({{2, 2}, {1, 0}, {0, 0}, {1, 1}, {2, 0}, {0, 2}, {2, 0}, {NAN, 5}, {1, 2}});
  WbArrayTempl<P> out;
  WbArrayTempl<int> indices;
  ASSERT_EQ(P::EvaluateConvexShape(c, out, &indices), 4u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0, 0}, {2, 0}, {2, 2}, {0, 2}}));
  ASSERT_EQ(indices.GetSize(), 4u);
  EXPECT_EQ(indices[0], 2);
  EXPECT_EQ(indices[1], 4);  // the first of the two equal corners
  EXPECT_EQ(indices[2], 0);
  EXPECT_EQ(indices[3], 5);

  // Degenerate sets: collinear points give their two ends, equal points one, no point none.
  EXPECT_EQ(P::EvaluateConvexShape(Curve<TypeParam>({{2, 2}, {0, 0}, {1, 1}, {3, 3}}), out, &indices), 2u);
  EXPECT_EQ(Pairs(out), Expect<TypeParam>({{0, 0}, {3, 3}}));
  EXPECT_EQ(indices[0], 1);
  EXPECT_EQ(indices[1], 3);
  EXPECT_EQ(P::EvaluateConvexShape(Curve<TypeParam>({{4, 5}, {4, 5}}), out, nullptr), 1u);
  EXPECT_EQ(P::EvaluateConvexShape(WbArrayTempl<P>(), out, &indices), 0u);
  EXPECT_TRUE(indices.IsEmpty());
  WbArrayTempl<P> self = Curve<TypeParam>({{0, 0}, {1, 0}, {0, 1}});
  EXPECT_EQ(P::EvaluateConvexShape(self, self, nullptr), 3u);
  EXPECT_EQ(Pairs(self), Expect<TypeParam>({{0, 0}, {1, 0}, {0, 1}}));
}

// On random clouds: every hull turn is strictly to the left, every input point lies on the left
// of (or on) every hull edge, and the indices name the hull points.
TEST(Curves, ConvexShapeEnclosesRandomClouds) {
  Lcg random{777};
  for (int trial = 0; trial < 20; ++trial) {
    WbArrayTempl<ZmPoint2d> cloud;
    const int n = 20 + trial * 15;
    for (int i = 0; i < n; ++i) cloud.Add(ZmPoint2d(std::floor(random.Next() * 20), std::floor(random.Next() * 20)));
    WbArrayTempl<ZmPoint2d> hull;
    WbArrayTempl<int> indices;
    const std::uint64_t m = ZmPoint2d::EvaluateConvexShape(cloud, hull, &indices);
    ASSERT_GE(m, 3u);
    for (std::uint64_t k = 0; k < m; ++k) {
      const ZmPoint2d& a = hull[k];
      const ZmPoint2d& b = hull[(k + 1) % m];
      const ZmPoint2d& next = hull[(k + 2) % m];
      EXPECT_EQ(cloud[std::uint64_t(indices[k])], a);
      EXPECT_GT(ZmVector2d(b - a).cross(ZmVector2d(next - b)), 0.0);
      for (const ZmPoint2d& p : cloud) EXPECT_GE(ZmVector2d(b - a).cross(ZmVector2d(p - a)), 0.0);
    }
  }
}

}  // namespace
