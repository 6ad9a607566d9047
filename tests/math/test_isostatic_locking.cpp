// 3-2-1 relocation of measured points onto their nominal locators. A part moved rigidly must
// come back onto its nominal position: the expected values are the nominal points themselves.
#include <random>

#include "math_test_support.h"

namespace {

WbArrayTempl<ZmPoint3d> RandomPart(int count, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> coordinate(-50.0, 50.0);
  WbArrayTempl<ZmPoint3d> points;
  for (int i = 0; i < count; ++i) points.Add(ZmPoint3d(coordinate(engine), coordinate(engine), coordinate(engine)));
  return points;
}

// The part turned by angleDeg about axis through the origin, then shifted.
WbArrayTempl<ZmPoint3d> Moved(const WbArrayTempl<ZmPoint3d>& part, const ZmVector3d& axis, double angleDeg,
                              const ZmVector3d& shift) {
  const ZmMatrix3d rotation = ZmMathd::RotationMatrix(axis, angleDeg);
  WbArrayTempl<ZmPoint3d> moved;
  for (const ZmPoint3d& p : part) moved.Add(rotation * p + shift);
  return moved;
}

double LargestGap(const WbArrayTempl<ZmPoint3d>& a, const WbArrayTempl<ZmPoint3d>& b) {
  double worst = 0;
  for (std::uint64_t i = 0; i < a.GetSize(); ++i) worst = std::fmax(worst, a[i].DistanceToPoint(b[i]));
  return worst;
}

ZmPlaned Plane(const ZmPoint3d& point, const ZmVector3d& normal) {
  unsigned char ok = 0;
  return ZmPlaned(point, normal, ok);
}

const WbArrayTempl<ZmPlaned> kNoPlanes;
const ZmVector3d kKeep(1, 1, 1);

}  // namespace

using math_test::Message;

TEST(IsoStaticLocking, OneLocatorTranslatesAndWeightsBlend) {
  const WbArrayTempl<ZmPoint3d> nominal = {ZmPoint3d(0, 0, 0), ZmPoint3d(10, 0, 0), ZmPoint3d(0, 10, 5)};
  const WbArrayTempl<ZmPoint3d> measured = {ZmPoint3d(1, 2, 3), ZmPoint3d(11.5, 2, 3), ZmPoint3d(1, 12, 9)};
  // i1 = 1 alone: every point moves by nominal[1] - measured[1] = (-1.5, -2, -3).
  WbArrayTempl<ZmPoint3d> positions = measured;
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 1, -1, -1, kNoPlanes, kKeep, positions), nullptr);
  EXPECT_LT(positions[0].DistanceToPoint(ZmPoint3d(-0.5, 0, 0)), 1e-14);
  EXPECT_LT(positions[2].DistanceToPoint(ZmPoint3d(-0.5, 10, 6)), 1e-14);
  EXPECT_NEAR(positions[1].x, 10.0, 1e-14);
  // Weight 0 snaps a coordinate to its nominal value: (0, 1, 0) keeps only y.
  positions = measured;
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 1, -1, -1, kNoPlanes, ZmVector3d(0, 1, 0), positions), nullptr);
  EXPECT_EQ(positions[0].x, 0.0);
  EXPECT_NEAR(positions[0].y, 0.0, 1e-14);
  EXPECT_EQ(positions[2].z, 5.0);
  EXPECT_NEAR(positions[2].y, 10.0, 1e-14);
  positions = measured;
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 0, -1, -1, kNoPlanes, ZmVector3d(0, 0, 0), positions), nullptr);
  for (std::uint64_t i = 0; i < nominal.GetSize(); ++i) EXPECT_EQ(positions[i], nominal[i]);
}

TEST(IsoStaticLocking, RigidMotionsComeBackOntoTheNominalPart) {
  const WbArrayTempl<ZmPoint3d> nominal = RandomPart(200, 3);
  // Three locators: any rigid motion.
  WbArrayTempl<ZmPoint3d> positions = Moved(nominal, ZmVector3d(1, 2, 3), 30.0, ZmVector3d(5, -2, 1));
  ASSERT_GT(LargestGap(positions, nominal), 10.0);
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 4, 17, 99, kNoPlanes, kKeep, positions), nullptr);
  EXPECT_LT(LargestGap(positions, nominal), 1e-12);
  // Two locators on a line along x: the missing third is taken one unit along y from the first
  // in both sets, so a turn about z (the missing direction) with a shift is undone too.
  WbArrayTempl<ZmPoint3d> part = nominal;
  part[1] = part[0] + ZmVector3d(20, 0, 0);
  positions = Moved(part, ZmVector3d(0, 0, 1), -40.0, ZmVector3d(-3, 7, 2));
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(part, 0, 1, -1, kNoPlanes, kKeep, positions), nullptr);
  EXPECT_LT(LargestGap(positions, part), 1e-12);
  // Locating planes: the part is carried back as well, the planes being carried with its
  // locators. The primary plane passes through locator 99, the secondary one does not.
  const WbArrayTempl<ZmPlaned> planes{Plane(nominal[99], ZmVector3d(0, 0, 1)),
                                      Plane(ZmPoint3d(3, 4, 5), ZmVector3d(1, 1, 0))};
  positions = Moved(nominal, ZmVector3d(-2, 1, 0.5), 75.0, ZmVector3d(0, 30, -10));
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 4, 17, 99, planes, kKeep, positions), nullptr);
  EXPECT_LT(LargestGap(positions, nominal), 1e-11);
  // The float twin, a translation with one locator.
  WbArrayTempl<ZmPoint3f> nominalF, positionsF;
  for (const ZmPoint3d& p : nominal) {
    nominalF.Add(ZmPoint3f(p));
    positionsF.Add(ZmPoint3f(p) + ZmVector3f(0.5f, -1, 2));
  }
  ASSERT_EQ(ZmPoint3f::ComputeIsoStaticLocking(nominalF, 7, -1, -1, WbArrayTempl<ZmPlanef>(), ZmVector3f(1, 1, 1),
                                               positionsF),
            nullptr);
  EXPECT_NEAR(positionsF[150].x, nominalF[150].x, 1e-4f);
  EXPECT_NEAR(positionsF[150].z, nominalF[150].z, 1e-4f);
}

TEST(IsoStaticLocking, PlanesOrientADeformedPart) {
  // A deformed part: the locators moved by different amounts. With the planes, the point of
  // i3 lands exactly on its nominal location whatever the deformation.
  const WbArrayTempl<ZmPoint3d> nominal = RandomPart(20, 11);
  WbArrayTempl<ZmPoint3d> positions = Moved(nominal, ZmVector3d(0, 1, 0), 10.0, ZmVector3d(1, 1, 1));
  positions[2] += ZmVector3d(0.3, -0.1, 0.2);
  positions[5] += ZmVector3d(-0.2, 0.4, 0.0);
  const WbArrayTempl<ZmPlaned> planes{Plane(ZmPoint3d(0, 0, -60), ZmVector3d(0, 0, 1)),
                                      Plane(ZmPoint3d(-60, 0, 0), ZmVector3d(1, 0, 0))};
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 2, 5, 9, planes, kKeep, positions), nullptr);
  EXPECT_LT(positions[9].DistanceToPoint(nominal[9]), 1e-12);
  // Parallel planes meet in no line: the three locators decide, as without planes.
  WbArrayTempl<ZmPoint3d> withParallel = Moved(nominal, ZmVector3d(0, 1, 0), 10.0, ZmVector3d(1, 1, 1));
  WbArrayTempl<ZmPoint3d> withNone = withParallel;
  const WbArrayTempl<ZmPlaned> parallel{Plane(ZmPoint3d(0, 0, 0), ZmVector3d(0, 0, 1)),
                                        Plane(ZmPoint3d(0, 0, 5), ZmVector3d(0, 0, -1))};
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 2, 5, 9, parallel, kKeep, withParallel), nullptr);
  ASSERT_EQ(ZmPoint3d::ComputeIsoStaticLocking(nominal, 2, 5, 9, kNoPlanes, kKeep, withNone), nullptr);
  for (std::uint64_t i = 0; i < nominal.GetSize(); ++i) EXPECT_EQ(withParallel[i], withNone[i]);
}

TEST(IsoStaticLocking, FailuresLeaveThePositionsAlone) {
  const WbArrayTempl<ZmPoint3d> nominal = RandomPart(5, 5);
  WbArrayTempl<ZmPoint3d> positions = RandomPart(5, 6);
  positions[3] = positions[1];
  const WbArrayTempl<ZmPoint3d> before = positions;
  WbArrayTempl<ZmPoint3d> shorter = RandomPart(4, 7);
  const auto lock = [&](int i1, int i2, int i3, WbArrayTempl<ZmPoint3d>& current) {
    return Message(ZmPoint3d::ComputeIsoStaticLocking(nominal, i1, i2, i3, kNoPlanes, kKeep, current));
  };
  // Coincident locators, a reference index outside the lists, lists of different sizes.
  EXPECT_EQ(lock(1, 3, 4, positions),
            L"Two reference points are too close from each other to compute the isostatic locking");
  EXPECT_EQ(lock(0, 5, -1, positions), L"Reference point 5 is not a point of the isostatic locking (5 points)");
  EXPECT_EQ(lock(0, -1, -1, shorter),
            L"The isostatic locking needs one nominal point per current point (5 nominal, 4 current)");
  EXPECT_NE(lock(-1, -1, -1, positions), Message(nullptr));
  EXPECT_NE(lock(0, -2, -1, positions), Message(nullptr));
  for (std::uint64_t i = 0; i < before.GetSize(); ++i) EXPECT_EQ(positions[i], before[i]);
  // Empty lists have no reference point.
  WbArrayTempl<ZmPoint3d> none;
  EXPECT_NE(ZmPoint3d::ComputeIsoStaticLocking(WbArrayTempl<ZmPoint3d>(), 0, -1, -1, kNoPlanes, kKeep, none), nullptr);
}
