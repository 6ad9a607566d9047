// 3-2-1 relocation onto the nominal locators: a part moved rigidly comes back onto its nominal points.
#include <random>

#include "math_test_support.h"

namespace {

using P = ZmPoint3d;
using V = ZmVector3d;
using Points = WbArrayTempl<P>;

Points RandomPart(int count, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> coordinate(-50.0, 50.0);
  Points points;
  for (int i = 0; i < count; ++i) points.Add(P(coordinate(engine), coordinate(engine), coordinate(engine)));
  return points;
}

// The part turned by angleDeg about axis through the origin, then shifted.
Points Moved(const Points& part, const V& axis, double angleDeg, const V& shift) {
  const ZmMatrix3d rotation = ZmMathd::RotationMatrix(axis, angleDeg);
  Points moved;
  for (const P& p : part) moved.Add(rotation * p + shift);
  return moved;
}

double LargestGap(const Points& a, const Points& b) {
  double worst = 0;
  for (std::uint64_t i = 0; i < a.GetSize(); ++i) worst = std::fmax(worst, a[i].DistanceToPoint(b[i]));
  return worst;
}

ZmPlaned Plane(const P& point, const V& normal) {
  unsigned char ok = 0;
  return ZmPlaned(point, normal, ok);
}

const WbArrayTempl<ZmPlaned> kNoPlanes;

// The message of the relocation of positions (the text of no error on success).
std::wstring Lock(const Points& nominal, int i1, int i2, int i3, Points& positions,
                  const WbArrayTempl<ZmPlaned>& planes = kNoPlanes, const V& weights = V(1, 1, 1)) {
  return math_test::Message(P::ComputeIsoStaticLocking(nominal, i1, i2, i3, planes, weights, positions));
}

const std::wstring kDone = math_test::Message(nullptr);

}  // namespace

TEST(IsoStaticLocking, OneLocatorTranslatesAndWeightsBlend) {
  const Points nominal = {P(0, 0, 0), P(10, 0, 0), P(0, 10, 5)};
  const Points measured = {P(1, 2, 3), P(11.5, 2, 3), P(1, 12, 9)};
  // i1 = 1 alone: every point moves by nominal[1] - measured[1] = (-1.5, -2, -3). Weight 0 snaps a
  // coordinate to its nominal value: (0, 1, 0) keeps only y.
  Points positions = measured, weighted = measured;
  ASSERT_EQ(Lock(nominal, 1, -1, -1, positions), kDone);
  ASSERT_EQ(Lock(nominal, 1, -1, -1, weighted, kNoPlanes, V(0, 1, 0)), kDone);
  math_test::ExpectNearRows<double>(1e-14, {{positions[0].DistanceToPoint(P(-0.5, 0, 0)), 0},
                                            {positions[2].DistanceToPoint(P(-0.5, 10, 6)), 0},
                                            {positions[1].x, 10},
                                            {weighted[0].y, 0},
                                            {weighted[2].y, 10}});
  math_test::ExpectRows<double>({{weighted[0].x, 0}, {weighted[2].z, 5}});
  positions = measured;
  ASSERT_EQ(Lock(nominal, 0, -1, -1, positions, kNoPlanes, V(0, 0, 0)), kDone);
  for (std::uint64_t i = 0; i < nominal.GetSize(); ++i) EXPECT_EQ(positions[i], nominal[i]);
}

TEST(IsoStaticLocking, RigidMotionsComeBackOntoTheNominalPart) {
  const Points nominal = RandomPart(200, 3);
  // Three locators: any rigid motion.
  Points positions = Moved(nominal, V(1, 2, 3), 30.0, V(5, -2, 1));
  ASSERT_GT(LargestGap(positions, nominal), 10.0);
  ASSERT_EQ(Lock(nominal, 4, 17, 99, positions), kDone);
  EXPECT_LT(LargestGap(positions, nominal), 1e-12);
  // Two locators along x: the third is one unit along y from the first, a turn about z is undone.
  Points part = nominal;
  part[1] = part[0] + V(20, 0, 0);
  positions = Moved(part, V(0, 0, 1), -40.0, V(-3, 7, 2));
  ASSERT_EQ(Lock(part, 0, 1, -1, positions), kDone);
  EXPECT_LT(LargestGap(positions, part), 1e-12);
  // Locating planes, carried with the locators; the primary one through locator 99, the other not.
  const WbArrayTempl<ZmPlaned> planes{Plane(nominal[99], V(0, 0, 1)), Plane(P(3, 4, 5), V(1, 1, 0))};
  positions = Moved(nominal, V(-2, 1, 0.5), 75.0, V(0, 30, -10));
  ASSERT_EQ(Lock(nominal, 4, 17, 99, positions, planes), kDone);
  EXPECT_LT(LargestGap(positions, nominal), 1e-11);
  // The float twin, a translation with one locator.
  WbArrayTempl<ZmPoint3f> nominalF, positionsF;
  for (const P& p : nominal) nominalF.Add(ZmPoint3f(p)), positionsF.Add(ZmPoint3f(p) + ZmVector3f(0.5f, -1, 2));
  ASSERT_EQ(ZmPoint3f::ComputeIsoStaticLocking(nominalF, 7, -1, -1, WbArrayTempl<ZmPlanef>(), ZmVector3f(1, 1, 1),
                                               positionsF),
            nullptr);
  math_test::ExpectNearRows<float>(1e-4, {{positionsF[150].x, nominalF[150].x}, {positionsF[150].z, nominalF[150].z}});
}

TEST(IsoStaticLocking, PlanesOrientADeformedPart) {
  // Locators moved by different amounts: with the planes, i3 lands on its nominal point all the same.
  const Points nominal = RandomPart(20, 11);
  Points positions = Moved(nominal, V(0, 1, 0), 10.0, V(1, 1, 1));
  positions[2] += V(0.3, -0.1, 0.2);
  positions[5] += V(-0.2, 0.4, 0.0);
  const WbArrayTempl<ZmPlaned> planes{Plane(P(0, 0, -60), V(0, 0, 1)), Plane(P(-60, 0, 0), V(1, 0, 0))};
  ASSERT_EQ(Lock(nominal, 2, 5, 9, positions, planes), kDone);
  EXPECT_LT(positions[9].DistanceToPoint(nominal[9]), 1e-12);
  // Parallel planes meet in no line: the three locators decide, as without planes.
  Points withParallel = Moved(nominal, V(0, 1, 0), 10.0, V(1, 1, 1)), withNone = withParallel;
  const WbArrayTempl<ZmPlaned> parallel{Plane(P(0, 0, 0), V(0, 0, 1)), Plane(P(0, 0, 5), V(0, 0, -1))};
  ASSERT_EQ(Lock(nominal, 2, 5, 9, withParallel, parallel), kDone);
  ASSERT_EQ(Lock(nominal, 2, 5, 9, withNone), kDone);
  for (std::uint64_t i = 0; i < nominal.GetSize(); ++i) EXPECT_EQ(withParallel[i], withNone[i]);
}

TEST(IsoStaticLocking, FailuresLeaveThePositionsAlone) {
  const Points nominal = RandomPart(5, 5);
  Points positions = RandomPart(5, 6), shorter = RandomPart(4, 7), none;
  positions[3] = positions[1];
  const Points before = positions;
  // Coincident locators, a reference index outside the lists, lists of different sizes.
  EXPECT_EQ(Lock(nominal, 1, 3, 4, positions),
            L"Two reference points are too close from each other to compute the isostatic locking");
  EXPECT_EQ(Lock(nominal, 0, 5, -1, positions),
            L"Reference point 5 is not a point of the isostatic locking (5 points)");
  EXPECT_EQ(Lock(nominal, 0, -1, -1, shorter),
            L"The isostatic locking needs one nominal point per current point (5 nominal, 4 current)");
  EXPECT_NE(Lock(nominal, -1, -1, -1, positions), kDone);
  EXPECT_NE(Lock(nominal, 0, -2, -1, positions), kDone);
  for (std::uint64_t i = 0; i < before.GetSize(); ++i) EXPECT_EQ(positions[i], before[i]);
  // Empty lists have no reference point.
  EXPECT_NE(Lock(Points(), 0, -1, -1, none), kDone);
}
