// The curve statics of the 2D point: interpolation in both directions, crossings, resampling,
// extrapolation, range extraction, envelopes, sinusoid peaks and the convex hull.
#include <cmath>
#include <limits>

#include "geometry_test_support.h"

namespace {

using namespace geomtest;

GEOM_TWIN_SUITE(CurveTwins);

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const XY kLine = {{0, 0}, {1, 10}, {2, 20}};
const XY kBack = {{0, 0}, {2, 2}, {0, 4}};  // out and back
const XY kHoled = {{0, 0}, {kNaN, 5}, {2, 2}};
const XY kOrderX = {{0.1, 0.3}, {0.7, 1.1}};
const XY kOrderY = {{0.3, 0.1}, {1.1, 0.7}};

// y0 + (x - x0)/(x1 - x0)*(y1 - y0) in this order. Python with numpy.float32 for the float
// twin, on (0.1, 0.3), (0.7, 1.1) at x = 0.48: double 0.8066666666666666 (multiplying before
// dividing gives ...669), float 0.8066667318344116 (the other order: 0.8066666722297668).
const Twin kAt048(0.8066666666666666, 0.8066667318344116f);

// index 99 stands for "left unwritten". An exact hit on a point reached from the previous one
// names the previous segment; an exact hit on the start point names it. Behind the start, from
// the last point, beyond the curve or at NaN: the marker and -1. Nothing to search (start out of
// range, no points): the marker, index unwritten. A NaN point holds nothing, but the exact hit
// after it is found. Out and back: x = 1 lies in both segments; the first wins unless the
// search starts later; second segment: 2 + (1 - 2)/(0 - 2)*(4 - 2) = 3.
struct InterpolationRow {
  const XY* curve;
  std::uint64_t n;
  double at;
  int start;
  Twin expected;
  int index;
};
const std::vector<InterpolationRow> kOnX = {
    {&kLine, 3, 1, 0, 10, 0},          {&kLine, 3, 1.5, 0, 15, 1},      {&kLine, 3, 0, 0, 0, 0},
    {&kLine, 3, 1, 1, 10, 1},          {&kLine, 3, 2, 0, 20, 1},        {&kLine, 3, 3, 0, kMarker, -1},
    {&kLine, 3, 0.5, 1, kMarker, -1},  {&kLine, 3, 5, 2, kMarker, -1},  {&kLine, 3, 1, 3, kMarker, 99},
    {&kLine, 3, 1, -1, kMarker, 99},   {&kLine, 0, 1, 0, kMarker, 99},  {nullptr, 0, 1, 0, kMarker, 99},
    {&kLine, 3, kNaN, 0, kMarker, -1}, {&kHoled, 3, 1, 0, kMarker, -1}, {&kHoled, 3, 2, 0, 2, 1},
    {&kBack, 3, 1, 0, 1, 0},           {&kBack, 3, 1, 1, 3, 1},         {&kOrderX, 2, 0.48, 0, kAt048, 0},
};
const std::vector<InterpolationRow> kOnY = {{&kBack, 3, 3, 0, 1, 1},
                                            {&kBack, 3, 2, 0, 2, 0},
                                            {&kBack, 3, 5, 0, kMarker, -1},
                                            {&kOrderY, 2, 0.48, 0, kAt048, 0}};

TYPED_TEST(CurveTwins, InterpolationTable) {
  using P = ZmPoint2T<TypeParam>;
  for (const bool onY : {false, true}) {
    int row = 0;
    for (const InterpolationRow& r : onY ? kOnY : kOnX) {
      const auto c = r.curve ? Curve<TypeParam>(*r.curve) : WbArrayTempl<P>();
      const P* data = r.curve ? c.GetData() : nullptr;
      int index = 99;
      const TypeParam at = TypeParam(r.at);
      const TypeParam y =
          onY ? P::InterpolateOnY(data, r.n, at, index, r.start) : P::InterpolateOnX(data, r.n, at, index, r.start);
      EXPECT_EQ(y, r.expected.Get<TypeParam>()) << onY << " row " << row;
      EXPECT_EQ(index, r.index) << onY << " row " << row++;
    }
  }
}

// The statics that turn a curve into a curve (or a point set into its hull), one row each: the
// input, the arguments a, b, c, the points given and, for the sinusoid envelope and the hull,
// their indices. Every row but the sinusoid's also runs in place.
// InterpolateOnYn (a level; crossings as points (x, level)): a crossing on a point ends one
// segment and starts the next; on a level run each point is an exact hit, reported once.
// SampleX (a step, b startX): from max(startX, x0); a NaN startX counts as not given; one point
// is its own sample; on a decreasing run x0 is the largest abscissa. Out, back and out again (by
// hand): 2 hits point 1; 2.5 is beyond the first segment, not on the way back (2 -> 1), but on
// (1 -> 3): 3 + (2.5 - 1)/(3 - 1)*(5 - 3) = 4.5; 3.5 is beyond every point.
// ExtrapolateOnX (a x, b floor, c linear): linear on (0, 0), (1, 2) gives before 0 - 2*(0 + 1)
// = -2 (raised to a floor of -1.5), after 2 + 2*(3 - 1) = 6 (above a floor of 5); the floor
// counts only when linear; linear needs two points and a non-vertical end segment.
// ExtractXRange (a xmin, b xmax, c tol): points within |tol| outside the bounds are kept as they
// are; a kept point within tol of a bound stands for it. Out and back, each pass keeps its own
// bound points: (4, 4) -> (0, 8) at 3 gives 4 + (3 - 4)/(0 - 4)*4 = 5, at 1 gives 7. A NaN point
// is dropped and makes no bound point.
// EvaluateEnvelop (a upper, b width): without width a falling first point is an upper extreme
// (reached from below), a rising one a lower; the last point is never a lower extreme; a plateau
// is not a fall. Width 2 (spans of 1) over y = 1, 5, 2, 4, 3, 6 at x = 0..5, by hand: upper:
// candidate 0 -> 1 (higher); x3 - x1 = 2 > 1 keeps (1, 5); x5 - x3 = 2 keeps (3, 4); the last
// candidate (5, 6) closes. Lower: (0, 1), (2, 2) by the same spans, then the last candidate
// (4, 3). Ties do not replace the candidate; a span never closes on equality.
// EvaluateSinusoidEnvelop (a upper) on kWave: min -3, max 3, mid 0, half amplitude 1.5. The
// crossings of 0 close segments 2 (1 -> -1), 5 (-0.5 -> 2.5) and 8 (1.2 -> -2); pieces 0..2,
// 3..5, 6..8 give upper 3 at 1 (kept), -0.5 at 5 (no), 2.5 at 6 (kept: earliest of the tie 6, 7);
// lower 0.5 at 0 (no), -3 at 4 (kept), 1.2 at 8 (no). The trough -2 at 9 is after the last
// crossing. No peak on a constant (amplitude 0), monotone, empty or all-NaN curve; NaN values
// take no part in the extremes or the pieces.
// EvaluateConvexShape: a square with a point on an edge, one inside, a duplicate corner (the
// first is named) and a NaN point; collinear points give their two ends, equal points one; the
// hull starts at the lowest of the leftmost points, whatever their input order.
enum Op { kCrossings, kSample, kExtrapolate, kRange, kEnvelope, kSinusoid, kHull };
struct CurveRow {
  Op op;
  XY curve;
  double a, b, c;
  XY result;
  std::vector<int> indices = {42};  // 42: the operation takes no index list
};
const XY kZig = {{0, 0}, {2, 2}, {1, 3}, {3, 5}}, kLineSamples = {{0, 0}, {0.5, 5}, {1, 10}, {1.5, 15}, {2, 20}};
const XY kRamp = {{0, 0}, {1, 10}, {2, 20}, {3, 30}}, kEdge = {{0, 0}, {1, 2}}, kUp = {{1, 0}, {1, 5}};
const XY kBumps = {{0, 1}, {1, 3}, {2, 2}, {3, 4}}, kSix = {{0, 1}, {1, 5}, {2, 2}, {3, 4}, {4, 3}, {5, 6}};
const XY kWave = {{0, 0.5}, {1, 3},   {2, 1},   {3, -1}, {4, -3}, {5, -0.5},
                  {6, 2.5}, {7, 2.5}, {8, 1.2}, {9, -2}, {10, -1}};
const XY kCloud = {{2, 2}, {1, 0}, {0, 0}, {1, 1}, {2, 0}, {0, 2}, {2, 0}, {kNaN, 5}, {1, 2}};
const CurveRow kCurveRows[] = {
    {kCrossings, {{0, 0}, {1, 2}, {2, 0}, {3, 2}}, 1, 0, 0, {{0.5, 1}, {1.5, 1}, {2.5, 1}}},
    {kCrossings, {{0, 0}, {1, 1}, {2, 0}}, 1, 0, 0, {{1, 1}, {1, 1}}},
    {kCrossings, {{0, 0}, {1, 1}, {2, 0}}, 5, 0, 0, {}},
    {kCrossings, {}, 1, 0, 0, {}},
    {kCrossings, {{0, 1}, {1, 1}, {2, 1}}, 1, 0, 0, {{0, 1}, {1, 1}, {2, 1}}},
    {kSample, kLine, 0.5, kMarker, 0, kLineSamples},
    {kSample, kLine, 0.5, 0.25, 0, {{0.25, 2.5}, {0.75, 7.5}, {1.25, 12.5}, {1.75, 17.5}}},
    {kSample, kLine, 0.5, -4, 0, kLineSamples},
    {kSample, kLine, 0.5, kNaN, 0, kLineSamples},
    {kSample, kLine, 0.5, 5, 0, {}},
    {kSample, kLine, 0, kMarker, 0, {}},
    {kSample, kLine, -1, kMarker, 0, {}},
    {kSample, kLine, kNaN, kMarker, 0, {}},
    {kSample, {}, 1, kMarker, 0, {}},
    {kSample, {{3, 7}}, 1, kMarker, 0, {{3, 7}}},
    {kSample, {{2, 0}, {0, 10}}, 0.5, kMarker, 0, {{2, 0}}},
    {kSample, {{kNaN, 0}, {1, 10}}, 0.5, kMarker, 0, {}},
    {kSample, kZig, 0.5, kMarker, 0, {{0, 0}, {0.5, 0.5}, {1, 1}, {1.5, 1.5}, {2, 2}, {2.5, 4.5}, {3, 5}}},
    {kExtrapolate, {{1, 4}}, 0, kMarker, 1, {{1, 4}}},
    {kExtrapolate, {{1, 4}}, 0, kMarker, 0, {{0, 4}, {1, 4}}},
    {kExtrapolate, {{1, 4}}, 3, 100, 0, {{1, 4}, {3, 4}}},
    {kExtrapolate, kEdge, -1, kMarker, 1, {{-1, -2}, {0, 0}, {1, 2}}},
    {kExtrapolate, kEdge, 3, kMarker, 1, {{0, 0}, {1, 2}, {3, 6}}},
    {kExtrapolate, kEdge, -1, -1.5, 1, {{-1, -1.5}, {0, 0}, {1, 2}}},
    {kExtrapolate, kEdge, 3, 5, 1, {{0, 0}, {1, 2}, {3, 6}}},
    {kExtrapolate, kUp, 0, kMarker, 1, kUp},
    {kExtrapolate, kUp, 2, kMarker, 1, kUp},
    {kExtrapolate, kEdge, 0.5, kMarker, 0, kEdge},
    {kExtrapolate, kEdge, 1, kMarker, 0, kEdge},
    {kExtrapolate, kEdge, kNaN, kMarker, 0, kEdge},
    {kExtrapolate, {}, 0, kMarker, 0, {}},
    {kRange, kRamp, 0.5, 2.5, 0, {{0.5, 5}, {1, 10}, {2, 20}, {2.5, 25}}},
    {kRange, {{3, 30}, {2, 20}, {1, 10}, {0, 0}}, 2.5, 0.5, 0, {{2.5, 25}, {2, 20}, {1, 10}, {0.5, 5}}},
    {kRange, kRamp, 0.5, 2.5, 0.6, kRamp},
    {kRange, kRamp, 0.95, 2, -0.1, {{1, 10}, {2, 20}}},
    {kRange, {{0, 0}, {10, 100}}, 2.5, 5, 0, {{2.5, 25}, {5, 50}}},
    {kRange, {{0, 0}, {10, 100}}, 5, 5, 0, {{5, 50}}},
    {kRange, {{0, 0}, {4, 4}, {0, 8}}, 1, 3, 0, {{1, 1}, {3, 3}, {3, 5}, {1, 7}}},
    {kRange, {{0, 0}, {1, 10}}, 5, 6, 0, {}},
    {kRange, {}, 0, 1, 0, {}},
    {kRange, {{0, 0}, {1, 10}}, kNaN, 1, 0, {}},
    {kRange, {{0, 0}, {kNaN, 5}, {3, 30}, {4, 40}}, 1, 3.5, kNaN, {{3, 30}, {3.5, 35}}},
    {kEnvelope, kBumps, 1, kMarker, 0, {{1, 3}, {3, 4}}},
    {kEnvelope, kBumps, 0, kMarker, 0, {{0, 1}, {2, 2}}},
    {kEnvelope, {{0, 5}, {1, 1}, {2, 3}}, 1, kMarker, 0, {{0, 5}, {2, 3}}},
    {kEnvelope, {{0, 5}, {1, 1}, {2, 3}}, 0, kMarker, 0, {{1, 1}}},
    {kEnvelope, {{0, 1}}, 1, kMarker, 0, {{0, 1}}},
    {kEnvelope, {{0, 1}}, 0, kMarker, 0, {}},
    {kEnvelope, {}, 1, kMarker, 0, {}},
    {kEnvelope, {{0, 0}, {1, 2}, {2, 2}, {3, 0}}, 1, kMarker, 0, {{2, 2}}},
    {kEnvelope, kSix, 1, 2, 0, {{1, 5}, {3, 4}, {5, 6}}},
    {kEnvelope, kSix, 0, 2, 0, {{0, 1}, {2, 2}, {4, 3}}},
    {kEnvelope, {{0, 1}, {0.5, 1}, {1, 0}}, 1, 2, 0, {{0, 1}}},
    {kEnvelope, {{0, 1}, {0.5, 1}, {1, 2}}, 0, 2, 0, {{0, 1}}},
    {kEnvelope, {{3, 3}}, 0, 2, 0, {{3, 3}}},
    {kSinusoid, kWave, 1, 0, 0, {{1, 3}, {6, 2.5}}, {1, 6}},
    {kSinusoid, kWave, 0, 0, 0, {{4, -3}}, {4}},
    {kSinusoid, {{0, 1}, {1, 1}}, 1, 0, 0, {}, {}},
    {kSinusoid, {{0, 0}, {1, 1}, {2, 2}}, 1, 0, 0, {}, {}},
    {kSinusoid, {}, 1, 0, 0, {}, {}},
    {kSinusoid, {{0, kNaN}, {1, kNaN}}, 1, 0, 0, {}, {}},
    {kSinusoid, {{0, kNaN}, {1, 3}, {2, -3}, {3, kNaN}, {4, 3}}, 1, 0, 0, {{1, 3}}, {1}},
    {kHull, kCloud, 0, 0, 0, {{0, 0}, {2, 0}, {2, 2}, {0, 2}}, {2, 4, 0, 5}},
    {kHull, {{2, 2}, {0, 0}, {1, 1}, {3, 3}}, 0, 0, 0, {{0, 0}, {3, 3}}, {1, 3}},
    {kHull, {{4, 5}, {4, 5}}, 0, 0, 0, {{4, 5}}, {0}},
    {kHull, {}, 0, 0, 0, {}, {}},
    {kHull, {{0, 0}, {1, 0}, {0, 1}}, 0, 0, 0, {{0, 0}, {1, 0}, {0, 1}}, {0, 1, 2}},
    {kHull, {{0, 1}, {0, 0}, {1, 0}}, 0, 0, 0, {{0, 0}, {1, 0}, {0, 1}}, {1, 2, 0}}};

// The row's operation on in; returns the count of points it leaves in out.
template <class T>
std::uint64_t Apply(const CurveRow& r, const WbArrayTempl<ZmPoint2T<T>>& in, WbArrayTempl<ZmPoint2T<T>>& out,
                    WbArrayTempl<int>* indices) {
  using P = ZmPoint2T<T>;
  const T a = T(r.a), b = T(r.b), c = T(r.c);
  switch (r.op) {
    case kCrossings: {
      WbArrayTempl<T> xs{T(42)};
      P::InterpolateOnYn(in.GetSize() ? in.GetData() : nullptr, in.GetSize(), a, xs);
      out.RemoveAll();
      for (const T x : xs) out.Add(P(x, a));
      return xs.GetSize();
    }
    case kSample:
      return P::SampleX(in.GetSize() ? in.GetData() : nullptr, in.GetSize(), a, out, b);
    case kExtrapolate:
      out = in;
      return in.GetSize() + P::ExtrapolateOnX(out, a, r.c != 0, b);
    case kRange:
      out = in;
      return P::ExtractXRange(out, a, b, c);
    case kEnvelope:
      return P::EvaluateEnvelop(in, r.a != 0, out, b);
    case kSinusoid:
      return P::EvaluateSinusoidEnvelop(in, r.a != 0, out, indices);
    case kHull:
      return P::EvaluateConvexShape(in, out, indices);
  }
  return 0;
}

TYPED_TEST(CurveTwins, CurveToCurveTable) {
  using P = ZmPoint2T<TypeParam>;
  int row = 0;
  for (const CurveRow& r : kCurveRows) {
    const auto in = Curve<TypeParam>(r.curve);
    WbArrayTempl<P> out{P(9, 9)}, self = in, spare;
    WbArrayTempl<int> indices{42};
    EXPECT_EQ(Apply(r, in, out, &indices), r.result.size()) << "row " << ++row;
    EXPECT_EQ(Pairs(out), Rounded<TypeParam>(r.result)) << "row " << row;
    EXPECT_EQ(Values(indices), r.indices) << "row " << row;
    EXPECT_EQ(Apply(r, self, r.op == kSinusoid ? spare : self, nullptr), r.result.size()) << "row " << row;
    EXPECT_EQ(Pairs(r.op == kSinusoid ? spare : self), Pairs(out)) << "row " << row;
  }
  // The value at a cut bound is the segment formula in its order, as InterpolateOnX gives it.
  auto c = Curve<TypeParam>(kOrderX);
  ASSERT_EQ(P::ExtractXRange(c, 0, TypeParam(0.48), 0), 2u);
  EXPECT_EQ(c[1].y, kAt048.Get<TypeParam>());
}

// The output is bounded. A step of 1e-9 across [0, 1] needs more than the 2^27 samples allowed.
// The spacing of doubles at 1e20 is 16384: a step of 1 never moves the abscissa (the same sample
// would repeat forever); 1e6/65536 = 15.26 gives 16 samples.
TEST(Curves, SampleXBoundsItsOutput) {
  const struct {
    XY curve;
    double step;
    std::uint64_t count;
  } rows[] = {{{{0, 0}, {1, 1}}, 1e-9, 0},
              {{{0, 0}, {1, 1}}, std::numeric_limits<double>::denorm_min(), 0},
              {{{1e20, 0}, {1e20 + 1e6, 1}}, 1.0, 0},
              {{{1e20, 0}, {1e20 + 1e6, 1}}, 65536.0, 16},
              {{{0, 0}, {INFINITY, 1}}, 1.0, 0}};
  for (const auto& r : rows) {
    WbArrayTempl<P2> out{P2(7, 7)};
    EXPECT_EQ(P2::SampleX(Curve<double>(r.curve).GetData(), r.curve.size(), r.step, out), r.count) << r.step;
    EXPECT_EQ(out.GetSize(), r.count);
  }
}

// The abscissa is x + step + step ..., not x + k*step. Python: accumulating 0.1 from 0 gives
// 0.7999999999999999 as the 9th double sample (8*0.1 is 0.8), and 11 samples up to 1; in float
// the 11th sum is 1.0000001 > 1, so only 10 samples (10*0.1f would be exactly 1).
TEST(Curves, SampleXCountsAndPlacesByTheAccumulatedStep) {
  const P2 d[2] = {P2(0, 0), P2(1, 1)};
  WbArrayTempl<P2> out;
  ASSERT_EQ(P2::SampleX(d, 2, 0.1, out), 11u);
  EXPECT_EQ(out[8], P2(0.7999999999999999, 0.7999999999999999));
  EXPECT_EQ(out[10].x, 0.9999999999999999);
  const ZmPoint2f f[2] = {ZmPoint2f(0, 0), ZmPoint2f(1, 1)};
  WbArrayTempl<ZmPoint2f> outf;
  ASSERT_EQ(ZmPoint2f::SampleX(f, 2, 0.1f, outf), 10u);
  EXPECT_EQ(outf[9].x, 0.9000000953674316f);
}

}  // namespace
