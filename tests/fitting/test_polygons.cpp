// Polygon properties and frames: area, centroid, Newell normal far from the origin, flatness,
// convexity, orientation, the two first-axis choices and the degenerate polygons.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
class PolygonTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(PolygonTwins, Scalars);

TYPED_TEST(PolygonTwins, Properties) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  using V = ZmVector3T<T>;
  const T nan = std::numeric_limits<T>::quiet_NaN();
  const double big = std::is_same<T, double>::value ? 1e6 : 1e3;
  const double h = 0.125;
  struct Row {
    WbArrayTempl<P> vertices;
    ZmPolygonStatus status;
    double area, rms;
    P centroid;
    V normal;
    unsigned char convex;
  };
  const Row rows[] = {
      // A unit square far away (closed by a repeat of its first vertex).
      {{P(big, big, 5), P(big + 1, big, 5), P(big + 1, big + 1, 5), P(big, big + 1, 5), P(big, big, 5)}, ZmPolygonOk, 1, 0,
       P(big + 0.5, big + 0.5, 5), V(0, 0, 1), 1},
      // An L: squares of area 2 at (1, 0.5) and 1 at (0.5, 1.5) -> (2.5 / 3, 2.5 / 3); its
      // vertex average is (1, 1).
      {{P(0, 0, 0), P(2, 0, 0), P(2, 1, 0), P(1, 1, 0), P(1, 2, 0), P(0, 2, 0)}, ZmPolygonOk, 3, 0,
       P(2.5 / 3, 2.5 / 3, 0), V(0, 0, 1), 0},
      {{P(0, 0, 0), P(0, 3, 0), P(4, 0, 0)}, ZmPolygonOk, 6, 0, P(4.0 / 3, 1, 0), V(0, 0, -1), 1},
      // Alternating heights +-h: every edge's z sum is 0, so N is along Z; rms h.
      {{P(0, 0, h), P(1, 0, -h), P(1, 1, h), P(0, 1, -h)}, ZmPolygonOk, 1, h, P(0.5, 0.5, 0), V(0, 0, 1), 1},
      // A pentagram turns the same way at every vertex but twice around: not convex.
      {{P(0, 1, 0), P(-0.588, -0.809, 0), P(0.951, 0.309, 0), P(-0.951, 0.309, 0), P(0.588, -0.809, 0)}, ZmPolygonOk,
       -1, -1, P(0, 0, 0), V(0, 0, 0), 0},
      {{P(0, 0, 0), P(1, 1, 1), P(3, 3, 3)}, ZmPolygonDegenerate, 0, 0, P(4.0 / 3, 4.0 / 3, 4.0 / 3), V(0, 0, 1), 0},
      {{P(0, 0, 0), P(1, 1, 1), P(0, 0, 0)}, ZmPolygonTooFewPoints, -1, -1, P(), V(), 0},
      {{P(0, 0, 0), P(1, nan, 1), P(0, 1, 0)}, ZmPolygonBadInput, -1, -1, P(), V(), 0},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const Row& r = rows[i];
    const auto props = ZmMathT<T>::PolygonProperties(r.vertices);
    ASSERT_EQ(props.status, r.status) << i;
    EXPECT_EQ(props.convex, r.convex) << i;
    if (r.area < 0) continue;
    EXPECT_NEAR(props.area, r.area, 1e-6) << i;
    EXPECT_NEAR(props.outOfPlaneRms, r.rms, 1e-6) << i;
    EXPECT_NEAR((props.centroid - r.centroid).length(), 0.0, 1e-6 * big) << i;
    EXPECT_NEAR((props.normal - r.normal).length(), 0.0, 1e-6) << i;
  }
  EXPECT_EQ(ZmMathT<T>::PolygonProperties(rows[6].vertices).area, zm::Invalid<T>());
}

TYPED_TEST(PolygonTwins, SignedAreaAndFrames) {
  using T = TypeParam;
  using P = ZmPoint3T<T>;
  using P2 = ZmPoint2T<T>;
  using V = ZmVector3T<T>;
  using M = ZmMathT<T>;
  const WbArrayTempl<P2> ccw{P2(0, 0), P2(2, 0), P2(2, 3), P2(0, 3)};
  const WbArrayTempl<P2> cw{P2(0, 0), P2(0, 3), P2(2, 3), P2(2, 0)};
  EXPECT_NEAR(M::SignedArea(ccw), 6.0, 1e-6);
  EXPECT_NEAR(M::SignedArea(cw), -6.0, 1e-6);
  EXPECT_EQ(M::SignedArea(WbArrayTempl<P2>{P2(0, 0), P2(1, 1)}), T(0));
  WbArrayTempl<P> lifted;
  for (const P2& p : ccw) lifted.Add(P(p));
  EXPECT_NEAR(M::SignedArea(lifted, V(0, 0, -2)), -6.0, 1e-6);
  EXPECT_EQ(M::SignedArea(lifted, V(0, 0, 0)), zm::Invalid<T>());
  // The parallelogram (0,0) (2,0) (3,1) (1,1): first edge along X; mid-lines a = (2, 0) and
  // b = (1, 1), so X = unit(a/|a| + b x n/|b|) = unit((1, 0) + (1, -1)/sqrt 2): -22.5 degrees.
  const WbArrayTempl<P> quad{P(0, 0, 7), P(2, 0, 7), P(3, 1, 7), P(1, 1, 7)};
  const double c = std::cos(-22.5 * 3.141592653589793 / 180), s = std::sin(-22.5 * 3.141592653589793 / 180);
  const struct {
    ZmPolygonAxis axis;
    V x;
  } choices[] = {{ZmPolygonAxisFirstEdge, V(1, 0, 0)}, {ZmPolygonAxisMidLines, V(c, s, 0)}};
  for (const auto& choice : choices) {
    ZmFrameT<T> frame;
    ASSERT_EQ(M::PolygonFrame(quad, choice.axis, frame), ZmPolygonOk);
    EXPECT_NEAR((frame.GetVector(0) - choice.x).length(), 0.0, 1e-6) << choice.axis;
    EXPECT_NEAR((frame.GetVector(2) - V(0, 0, 1)).length(), 0.0, 1e-6);
    EXPECT_NEAR((frame.GetVector(1) - V(0, 0, 1).cross(choice.x)).length(), 0.0, 1e-6);
    EXPECT_NEAR((frame.GetOrigin() - P(1.5, 0.5, 7)).length(), 0.0, 1e-6);
  }
  ZmFrameT<T> untouched;
  EXPECT_EQ(M::PolygonFrame(WbArrayTempl<P>{P(0, 0, 0), P(1, 0, 0), P(2, 0, 0)}, ZmPolygonAxisFirstEdge, untouched),
            ZmPolygonDegenerate);
  EXPECT_EQ(untouched.GetOrigin(), P(0, 0, 0));
}

}  // namespace
