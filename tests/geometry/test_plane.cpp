// Planes: normalisation with its success flag, projection, intersections, the text form.
#include "geometry_test_support.h"

namespace {

using namespace geomtest;

// float(1e-6) is not above the float threshold 1.0e-6: refused, the normal falls back to Z.
TEST(Plane, ConstructorsNormaliseOrFallBackToZ) {
  const struct {
    P3 a, b, c;  // c invalid: b is the normal
    int ok;
    V3 normal;
  } rows[] = {{P3(1, 2, 3), P3(0, 3, 4), ZmNonValP3d, 1, V3(0, 0.6, 0.8)},
              {P3(), P3(1e-6, 0, 0), ZmNonValP3d, 0, V3(0, 0, 1)},
              {P3(), P3(2e-6, 0, 0), ZmNonValP3d, 1, V3(1, 0, 0)},
              {P3(0, 0, 0), P3(1, 1, 1), P3(2, 2, 2), 0, V3(0, 0, 1)},
              {P3(0, 0, 2), P3(1, 0, 2), P3(0, 1, 2), 1, V3(0, 0, 1)}};
  for (const auto& r : rows) {
    unsigned char ok = 9;
    const ZmPlaned p = r.c.IsValid() ? ZmPlaned(r.a, r.b, r.c, ok) : ZmPlaned(r.a, V3(r.b), ok);
    EXPECT_EQ(ok, r.ok) << r.b.x;
    EXPECT_TRUE(p.GetNormal() == r.normal && p.GetPointOnPlane() == r.a && p.IsValid()) << r.b.x;
  }
}

TEST(Plane, ProjectionDistanceAndIntersections) {
  unsigned char ok = 0;
  const ZmPlaned ground(P3(5, 5, 0), V3(0, 0, 1), ok), plane(P3(0, 0, 1), V3(0, 0, 1), ok);
  EXPECT_TRUE(ground.ProjectPoint(P3(1, 2, 0.1)) == P3(1, 2, 0) && ground.ProjectPoint(ZmNonValP3d) == ZmNonValP3d);
  EXPECT_EQ(P3(1, 2, 0.1).DistanceToPlane(ground), 0.10000000149011612);  // rounded to float
  EXPECT_TRUE(P3(1, 2, -3).DistanceToPlane(ground) == 3.0 && ground.SignedDistance(P3(1, 2, -3)) == -3.0);

  // |normal . dir| = 0.5 equal to tol still intersects; a larger tol refuses.
  P3 hit, grazing, miss;
  EXPECT_EQ((Ints{plane.IntersectWithLine(P3(1, 1, 5), V3(0, 1, -2), hit, 1e-6),
                  plane.IntersectWithLine(P3(0, 0, 0), V3(0, 1, 0.5), grazing, 0.5),
                  plane.IntersectWithLine(P3(0, 0, 0), V3(0, 1, 0.5), miss, 0.6)}),
            (Ints{1, 1, 0}));
  EXPECT_TRUE(hit == P3(1, 3, 1) && grazing == P3(0, 2, 1) && miss == ZmNonValP3d);

  // The floor z = 0 meets the wall x = 1 along Y, through (1, 0, 0), the point nearest the origin.
  const ZmPlaned wall(P3(1, 9, 4), V3(1, 0, 0), ok), parallel(P3(0, 0, 5), V3(0, 0, -1), ok);
  P3 point;
  V3 direction;
  ASSERT_EQ(ground.IntersectWithPlane(wall, point, direction), 1);
  EXPECT_TRUE(point == P3(1, 0, 0) && direction == V3(0, 1, 0));
  EXPECT_EQ(ground.IntersectWithPlane(parallel, point, direction), 0);
  EXPECT_TRUE(point == ZmNonValP3d && direction == ZmNonValV3d);
}

// The default plane is z = 0 through the origin, without band (every point in it) or X point.
TEST(Plane, DefaultPlaneLimitBandAndAxisPoint) {
  ZmPlanef plane;
  float low = 0, high = 0;
  EXPECT_TRUE(plane.GetPointOnPlane() == ZmPoint3f(0, 0, 0) && plane.GetXAxisPoint() == ZmNonValP3f);
  EXPECT_EQ(plane.GetLimitBand(low, high), 0);
  EXPECT_EQ(plane.IsInLimitBand(ZmPoint3f(0, 0, 100)), 1);
  plane.SetLimitBand(-1.0f, 2.0f);
  EXPECT_EQ(plane.IsInLimitBand(ZmPoint3f(0, 0, 2)) * 2 + plane.IsInLimitBand(ZmPoint3f(0, 0, -1.5f)), 2);
  EXPECT_EQ(plane.SetNormal(ZmVector3f(0, 0, 0)), 0);  // refused: the normal stays
  EXPECT_EQ(plane.GetNormal(), ZmVector3f(0, 0, 1));
}

const wchar_t* Translate(const wchar_t* message, int) {
  return WbString(message) == L"Origin: %s / Normal: %s" ? L"O=%s N=%s" : nullptr;
}

TEST(Plane, TextFormUsesTheLocalisedTemplate) {
  unsigned char ok = 0;
  const ZmPlaned plane(P3(1, 2, 3), V3(0, 0, 2), ok);
  EXPECT_EQ(plane.GetString(L"%.2f", L","), WbString(L"Origin: 1.00,2.00,3.00 / Normal: 0.000,0.000,1.000"));
  const WbLocalizeHook previous = WbSetLocalizeHook(&Translate);
  EXPECT_EQ(plane.GetString(L"%g", L" "), WbString(L"O=1 2 3 N=0.000 0.000 1.000"));
  WbSetLocalizeHook(previous);
}

}  // namespace
