// Polygon properties, signed areas and frames, far from the origin and degenerate.
#include "fitting/fitting_test_support.h"

TYPED_TEST(FittingTwins, PolygonProperties) {
  TWIN_NAMES;
  const double big = kIsDouble<T> ? 1e6 : 1e3, h = 0.125, bad = zm::Invalid<T>();
  const P badP(WbCoord3DT<T>::INVALID);
  struct Row {
    L vertices;
    ZmPolygonStatus status;
    double area, rms;  // area -1: not checked; too few or bad vertices leave every field invalid
    P centroid;
    V normal;
    unsigned char convex;
  };
  const Row rows[] = {
      // A unit square far away (closed by a repeat of its first vertex).
      {L{P(big, big, 5), P(big + 1, big, 5), P(big + 1, big + 1, 5), P(big, big + 1, 5), P(big, big, 5)}, ZmPolygonOk,
       1, 0, P(big + 0.5, big + 0.5, 5), V(0, 0, 1), 1},
      // An L: area 2 at (1, 0.5) + 1 at (0.5, 1.5) -> 2.5 / 3 each (vertex average: 1).
      {L{P(0, 0, 0), P(2, 0, 0), P(2, 1, 0), P(1, 1, 0), P(1, 2, 0), P(0, 2, 0)}, ZmPolygonOk, 3, 0,
       P(2.5 / 3, 2.5 / 3, 0), V(0, 0, 1), 0},
      {L{P(0, 0, 0), P(0, 3, 0), P(4, 0, 0)}, ZmPolygonOk, 6, 0, P(4.0 / 3, 1, 0), V(0, 0, -1), 1},
      // Alternating heights +-h: every edge's z sum is 0, so N is along Z; rms h.
      {L{P(0, 0, h), P(1, 0, -h), P(1, 1, h), P(0, 1, -h)}, ZmPolygonOk, 1, h, P(0.5, 0.5, 0), V(0, 0, 1), 1},
      // A pentagram turns the same way at every vertex but twice around: not convex.
      {L{P(0, 1, 0), P(-0.588, -0.809, 0), P(0.951, 0.309, 0), P(-0.951, 0.309, 0), P(0.588, -0.809, 0)}, ZmPolygonOk,
       -1, 0, P(), V(), 0},
      {L{P(0, 0, 0), P(1, 1, 1), P(3, 3, 3)}, ZmPolygonDegenerate, 0, 0, P(4.0 / 3, 4.0 / 3, 4.0 / 3), V(0, 0, 1), 0},
      {L{P(0, 0, 0), P(1, 1, 1), P(0, 0, 0)}, ZmPolygonTooFewPoints, bad, bad, badP, V(badP), 0},
      {L{P(0, 0, 0), P(1, NAN, 1), P(0, 1, 0)}, ZmPolygonBadInput, bad, bad, badP, V(badP), 0},
  };
  for (std::size_t i = 0; i < sizeof(rows) / sizeof(rows[0]); ++i) {
    const Row& r = rows[i];
    const auto props = ZmMathT<T>::PolygonProperties(r.vertices);
    ASSERT_EQ(props.status, r.status) << i;
    EXPECT_EQ(props.convex, r.convex) << i;
    if (r.area == -1) continue;
    ExpectNear({props.area, props.outOfPlaneRms, Gap(props.normal, r.normal), Gap(props.centroid, r.centroid) / big},
               {r.area, r.rms, 0, 0}, 1e-6, i);
  }
}

TYPED_TEST(FittingTwins, PolygonSignedAreaAndFrames) {
  TWIN_NAMES;
  const L2 ccw{P2(0, 0), P2(2, 0), P2(2, 3), P2(0, 3)}, cw{P2(0, 0), P2(0, 3), P2(2, 3), P2(2, 0)};
  L lifted;
  for (const P2& p : ccw) lifted.Add(P(p));
  ExpectNear({M::SignedArea(ccw), M::SignedArea(cw), M::SignedArea(lifted, V(0, 0, -2))}, {6, -6, -6}, 1e-6, "area");
  ExpectNear({M::SignedArea(L2{P2(0, 0), P2(1, 1)}), M::SignedArea(lifted, V(0, 0, 0))}, {0, zm::Invalid<T>()}, 0,
             "area");
  // The parallelogram (0,0) (2,0) (3,1) (1,1): first edge along X; mid-lines a = (2, 0) and
  // b = (1, 1), so X = unit(a/|a| + b x n/|b|) = unit((1, 0) + (1, -1)/sqrt 2): -22.5 degrees.
  const L quad{P(0, 0, 7), P(2, 0, 7), P(3, 1, 7), P(1, 1, 7)};
  const V x[] = {V(1, 0, 0), V(std::cos(-kPi / 8), std::sin(-kPi / 8), 0)};
  for (ZmPolygonAxis axis : {ZmPolygonAxisFirstEdge, ZmPolygonAxisMidLines}) {
    ZmFrameT<T> frame;
    ASSERT_EQ(M::PolygonFrame(quad, axis, frame), ZmPolygonOk);
    ExpectNear({Gap(frame.GetVector(0), x[axis]), Gap(frame.GetVector(1), V(0, 0, 1).cross(x[axis])),
                Gap(frame.GetVector(2), V(0, 0, 1)), Gap(frame.GetOrigin(), P(1.5, 0.5, 7))},
               {0, 0, 0, 0}, 1e-6, axis);
  }
  ZmFrameT<T> untouched;
  EXPECT_EQ(M::PolygonFrame(L{P(0, 0, 0), P(1, 0, 0), P(2, 0, 0)}, ZmPolygonAxisFirstEdge, untouched),
            ZmPolygonDegenerate);
  EXPECT_EQ(untouched.GetOrigin(), P(0, 0, 0));
}
