// Planes: normalisation with its success flag, projection, intersections, the text form.
#include <gtest/gtest.h>

#include <zemcalc/zemcalc.h>

namespace {

TEST(Plane, ConstructorsNormaliseOrFallBackToZ) {
  unsigned char ok = 9;
  const ZmPlaned p(ZmPoint3d(1, 2, 3), ZmVector3d(0, 3, 4), ok);
  EXPECT_EQ(ok, 1);
  EXPECT_EQ(p.GetNormal(), ZmVector3d(0, 0.6, 0.8));
  EXPECT_EQ(p.GetPointOnPlane(), ZmPoint3d(1, 2, 3));
  // float(1e-6) is not above the float threshold: refused.
  const ZmPlaned tiny(ZmPoint3d(), ZmVector3d(1e-6, 0, 0), ok);
  EXPECT_EQ(ok, 0);
  EXPECT_EQ(tiny.GetNormal(), ZmVector3d(0, 0, 1));
  const ZmPlaned small(ZmPoint3d(), ZmVector3d(2e-6, 0, 0), ok);
  EXPECT_EQ(ok, 1);
  EXPECT_EQ(small.GetNormal(), ZmVector3d(1, 0, 0));
  const ZmPlaned collinear(ZmPoint3d(0, 0, 0), ZmPoint3d(1, 1, 1), ZmPoint3d(2, 2, 2), ok);
  EXPECT_EQ(ok, 0);
  const ZmPlaned three(ZmPoint3d(0, 0, 2), ZmPoint3d(1, 0, 2), ZmPoint3d(0, 1, 2), ok);
  EXPECT_EQ(ok, 1);
  EXPECT_EQ(three.GetNormal(), ZmVector3d(0, 0, 1));
  EXPECT_EQ(three.IsValid(), 1);
}

TEST(Plane, ProjectionAndDistanceRoundedToFloat) {
  unsigned char ok = 0;
  const ZmPlaned ground(ZmPoint3d(5, 5, 0), ZmVector3d(0, 0, 1), ok);
  EXPECT_EQ(ground.ProjectPoint(ZmPoint3d(1, 2, 0.1)), ZmPoint3d(1, 2, 0));
  EXPECT_EQ(ZmPoint3d(1, 2, 0.1).DistanceToPlane(ground), 0.10000000149011612);  // float(0.1)
  EXPECT_EQ(ZmPoint3d(1, 2, -3).DistanceToPlane(ground), 3.0);
  EXPECT_EQ(ground.SignedDistance(ZmPoint3d(1, 2, -3)), -3.0);
  EXPECT_EQ(ground.ProjectPoint(ZmNonValP3d), ZmNonValP3d);
}

TEST(Plane, IntersectionWithALine) {
  unsigned char ok = 0;
  const ZmPlaned plane(ZmPoint3d(0, 0, 1), ZmVector3d(0, 0, 1), ok);
  ZmPoint3d hit;
  ASSERT_EQ(plane.IntersectWithLine(ZmPoint3d(1, 1, 5), ZmVector3d(0, 1, -2), hit, 1e-6), 1);
  EXPECT_EQ(hit, ZmPoint3d(1, 3, 1));
  // |normal . dir| = 0.5 equal to tol still intersects; a larger tol refuses.
  ASSERT_EQ(plane.IntersectWithLine(ZmPoint3d(0, 0, 0), ZmVector3d(0, 1, 0.5), hit, 0.5), 1);
  EXPECT_EQ(hit, ZmPoint3d(0, 2, 1));
  EXPECT_EQ(plane.IntersectWithLine(ZmPoint3d(0, 0, 0), ZmVector3d(0, 1, 0.5), hit, 0.6), 0);
  EXPECT_EQ(hit, ZmNonValP3d);
}

TEST(Plane, IntersectionWithAPlane) {
  unsigned char ok = 0;
  const ZmPlaned floor(ZmPoint3d(7, 3, 0), ZmVector3d(0, 0, 1), ok);
  const ZmPlaned wall(ZmPoint3d(1, 9, 4), ZmVector3d(1, 0, 0), ok);
  ZmPoint3d point;
  ZmVector3d direction;
  ASSERT_EQ(floor.IntersectWithPlane(wall, point, direction), 1);
  EXPECT_EQ(point, ZmPoint3d(1, 0, 0));  // the point of the line x = 1, z = 0 nearest the origin
  EXPECT_EQ(direction, ZmVector3d(0, 1, 0));
  const ZmPlaned parallel(ZmPoint3d(0, 0, 5), ZmVector3d(0, 0, -1), ok);
  EXPECT_EQ(floor.IntersectWithPlane(parallel, point, direction), 0);
  EXPECT_EQ(point, ZmNonValP3d);
  EXPECT_EQ(direction, ZmNonValV3d);
}

TEST(Plane, LimitBandAndAxisPoint) {
  ZmPlanef plane;
  float low = 0, high = 0;
  EXPECT_EQ(plane.GetLimitBand(low, high), 0);
  EXPECT_EQ(plane.IsInLimitBand(ZmPoint3f(0, 0, 100)), 1);
  plane.SetLimitBand(-1.0f, 2.0f);
  EXPECT_EQ(plane.IsInLimitBand(ZmPoint3f(0, 0, 2)), 1);
  EXPECT_EQ(plane.IsInLimitBand(ZmPoint3f(0, 0, -1.5f)), 0);
  EXPECT_EQ(plane.GetXAxisPoint(), ZmNonValP3f);
  EXPECT_EQ(plane.SetNormal(ZmVector3f(0, 0, 0)), 0);
  EXPECT_EQ(plane.GetNormal(), ZmVector3f(0, 0, 1));
}

const wchar_t* Translate(const wchar_t* message, int) {
  return WbString(message) == L"Origin: %s / Normal: %s" ? L"O=%s N=%s" : nullptr;
}

TEST(Plane, TextFormUsesTheLocalisedTemplate) {
  unsigned char ok = 0;
  const ZmPlaned plane(ZmPoint3d(1, 2, 3), ZmVector3d(0, 0, 2), ok);
  EXPECT_EQ(plane.GetString(L"%.2f", L","), WbString(L"Origin: 1.00,2.00,3.00 / Normal: 0.000,0.000,1.000"));
  const WbLocalizeHook previous = WbSetLocalizeHook(&Translate);
  EXPECT_EQ(plane.GetString(L"%g", L" "), WbString(L"O=1 2 3 N=0.000 0.000 1.000"));
  WbSetLocalizeHook(previous);
}

}  // namespace
