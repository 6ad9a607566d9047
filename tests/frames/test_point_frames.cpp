// The frames of planes and point clouds, and the 2D coordinates of a point in a plane.
#include "frames/frame_test_support.h"

namespace {

using namespace frame_test;

FRAME_TWIN_SUITE(PointFrameTwins);

FRAME_TWIN_TEST(PointFrameTwins, PlaneFrameAndTwoDimensionalCoordinates) {
  unsigned char ok = 0;
  ZmPlaneT<T> plane(P(1, 2, 3), V(0, 0, 2), ok);
  F frame(P(9, 9, 9), V(1, 1, 1), ZmFrameSpherical);
  // No X-axis point: the completion of Z = (0, 0, 1) is X = (1, 0, 0), Y = (0, 1, 0).
  ASSERT_EQ(plane.GetFrame(frame), 1);
  EXPECT_EQ(frame, F(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), P(1, 2, 3), ZmFrameCartesian));
  // Offset (3, 3, 7) loses its normal part: X = (s, s, 0), Y = Z x X = (-s, s, 0).
  plane.SetXAxisPoint(P(4, 5, 10));
  ASSERT_EQ(plane.GetFrame(frame), 1);
  const double s = std::sqrt(0.5);
  EXPECT_TRUE(HasAxes(frame, V(s, s, 0), V(-s, s, 0), V(0, 0, 1), 1e-7));
  EXPECT_EQ(frame.GetVector(2), V(0, 0, 1));
  // A point on the normal through the origin leaves no direction: the completion again.
  plane.SetXAxisPoint(P(1, 2, 10));
  ASSERT_EQ(plane.GetFrame(frame), 1);
  EXPECT_EQ(frame.GetMatrix(), M::IDENTITY);
  // An unusable plane writes nothing.
  const F before(frame);
  plane.SetPointOnPlane(P(nan, 0, 0));
  EXPECT_EQ(plane.GetFrame(frame), 0);
  EXPECT_EQ(frame, before);
  // Plane coordinates: normal (0, 0.6, 0.8) and X = (1, 0, 0): Y = Z x X = (0, 0.8, -0.6). The
  // point 2 X + 3 Y + 10 Z = (2, 8.4, 6.2) has the plane coordinates (2, 3).
  ZmPlaneT<T> tilted(P(0, 0, 0), V(0, 3, 4), ok);
  tilted.SetXAxisPoint(P(5, 0, 0));
  const ZmPoint2f flat = P(2, T(8.4), T(6.2)).GetPlane2DCoords(tilted);
  EXPECT_TRUE(Near(flat, ZmPoint2f(2, 3), 1e-5));
  static_assert(std::is_same<decltype(flat), const ZmPoint2f>::value, "float in both twins");
  EXPECT_FALSE(invalid.GetPlane2DCoords(tilted).IsValid());
  tilted.SetPointOnPlane(invalid);
  EXPECT_FALSE(P(1, 1, 1).GetPlane2DCoords(tilted).IsValid());
}

FRAME_TWIN_TEST(PointFrameTwins, CloudFrameOfDistinctSpreads) {
  // The box corners (+-3, +-1, +-0.5), variances 9 > 1 > 0.25, turned by a about Z, tilted by t
  // about X and moved to (10, -5, 2): the long side lies along +-Rx(t) (cos a, sin a, 0) and the
  // short one along +-Rx(t) (-sin a, cos a, 0); each axis is the sign whose largest component is
  // positive, Z = X x Y, and the extents are the box. At a = 60 and t = 60 degrees, say, the
  // short side is +-(-0.866, 0.25, 0.433), so Y = (0.866, -0.25, -0.433). Unusable points take
  // no part; the frame is the same without extents.
  const auto oriented = [](double x, double y, double z) {
    const double ax = std::fabs(x), ay = std::fabs(y), az = std::fabs(z);
    const double largest = ax >= ay && ax >= az ? x : (ay >= az ? y : z);
    return largest < 0 ? V(-x, -y, -z) : V(x, y, z);
  };
  for (int tilt : {0, 60}) {
    const double t = tilt * M_PI / 180;
    for (int degrees = 0; degrees < 360; degrees += 20) {
      SCOPED_TRACE(::testing::Message() << degrees << " " << tilt);
      const double a = degrees * M_PI / 180;
      WbArrayTempl<P> cloud = {invalid, P(nan, 0, 0)};
      for (int i = 0; i < 8; ++i) {
        const double u = i & 4 ? 3 : -3, w = i & 2 ? 1 : -1, h = i & 1 ? 0.5 : -0.5;
        const double px = u * std::cos(a) - w * std::sin(a), py = u * std::sin(a) + w * std::cos(a);
        cloud.Add(P(10 + px, -5 + py * std::cos(t) - h * std::sin(t), 2 + py * std::sin(t) + h * std::cos(t)));
      }
      F frame, again;
      ZmExtents3T<T> box;
      ASSERT_EQ(P::ComputePointsCloudLocalFrame(cloud, frame, &box), 1);
      ASSERT_EQ(P::ComputePointsCloudLocalFrame(cloud, again, nullptr), 1);
      const V x = oriented(std::cos(a), std::sin(a) * std::cos(t), std::sin(a) * std::sin(t));
      const V y = oriented(-std::sin(a), std::cos(a) * std::cos(t), std::cos(a) * std::sin(t));
      EXPECT_TRUE(HasAxes(frame, x, y, x.cross(y), 1e-6));
      EXPECT_TRUE(Near(frame.GetOrigin(), P(10, -5, 2), 1e-5));
      EXPECT_TRUE(Near(box.GetMinimum(), P(-3, -1, -0.5), 1e-5) && Near(box.GetMaximum(), P(3, 1, 0.5), 1e-5));
      EXPECT_EQ(again, frame);
    }
  }
}

FRAME_TWIN_TEST(PointFrameTwins, CloudFramesOfEqualSpreadsAndUnusableClouds) {
  const double s = std::sqrt(0.5), d = 2 * std::sqrt(2.0);
  const T huge = std::numeric_limits<T>::max();
  // A straight cloud along (1, 1, 0): X = (s, s, 0) and its completion Y = (-s, s, 0), Z = (0,
  // 0, 1); extents +-2 sqrt(2) along X. A square in the plane y = 0: Z = (0, 1, 0) (the normal,
  // oriented) and its completion X = (-1, 0, 0), Y = (0, 0, 1). The corners of a cube, and a
  // single point: the global axes. No usable point, an infinite coordinate, or finite ones
  // whose sums overflow leave no finite frame: nothing is written. (+-3, 0, 0) with (0, +-1,
  // +-0.5) couples only y and z, by exactly 1 in the scatter sums: the block [[2, 1], [1, 0.5]]
  // has the eigenvalues 2.5 and 0, so Y = (0, 2, 1) / r5, Z = X x Y = (0, -1, 2) / r5 and the
  // extents are +-r5 / 2 along Y.
  const double r5 = std::sqrt(5.0);
  WbArrayTempl<P> line, cube, coupled = {P(3, 0, 0), P(-3, 0, 0), P(0, 1, 0.5), P(0, -1, -0.5)};
  for (int t = -2; t <= 2; ++t) line.Add(P(5 + t, 5 + t, 5));
  for (int i = 0; i < 8; ++i) cube.Add(P(i & 1 ? 3 : 1, i & 2 ? 3 : 1, i & 4 ? 3 : 1));
  const V x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
  const struct {
    WbArrayTempl<P> cloud;
    unsigned char fitted;
    P origin = {}, min = {}, max = {};
    V x = {}, y = {}, z = {};
    double tol = 0;
  } rows[] = {
      {line, 1, P(5, 5, 5), P(-d, 0, 0), P(d, 0, 0), V(s, s, 0), V(-s, s, 0), z, 1e-5},
      {{P(1, 0, 1), P(-1, 0, 1), P(-1, 0, -1), P(1, 0, -1)}, 1, P(0, 0, 0), P(-1, -1, 0), P(1, 1, 0), -x, z, y, 1e-6},
      {cube, 1, P(2, 2, 2), P(-1, -1, -1), P(1, 1, 1), x, y, z},
      {coupled, 1, P(0, 0, 0), P(-3, -r5 / 2, 0), P(3, r5 / 2, 0), x, V(0, 2, 1) / r5, V(0, -1, 2) / r5, 1e-6},
      {{P(4, 5, 6)}, 1, P(4, 5, 6), P(0, 0, 0), P(0, 0, 0), x, y, z},
      {{}, 0},
      {{invalid, P(nan, 1, 1)}, 0},
      {{P(1, 1, 1), P(2, 2, 2), P(0, inf, 0)}, 0},
      {{P(huge, 0, 0), P(huge, 0, 0)}, 0},
      {{P(huge / 2, 0, 0), P(-huge / 2, 0, 0), P(0, 1, 0)}, 0},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(&r - rows);
    const F before(P(1, 2, 3), V(0, 1, 0), ZmFrameCylindrical);
    const ZmExtents3T<T> boxBefore(P(1, 1, 1), P(2, 2, 2));
    F frame(before);
    ZmExtents3T<T> box(boxBefore);
    ASSERT_EQ(P::ComputePointsCloudLocalFrame(r.cloud, frame, &box), r.fitted);
    if (!r.fitted) {
      EXPECT_TRUE(frame == before && box == boxBefore);
      continue;
    }
    EXPECT_TRUE(HasAxes(frame, r.x, r.y, r.z, r.tol));
    EXPECT_TRUE(Near(frame.GetOrigin(), r.origin, r.tol));
    EXPECT_TRUE(Near(box.GetMinimum(), r.min, r.tol) && Near(box.GetMaximum(), r.max, r.tol));
  }
}

}  // namespace
