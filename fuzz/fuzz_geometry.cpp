// Distances, projections, intersections, polylines, point-cloud frames and normal cells over
// points with any coordinates (NaN, infinities, the invalid marker, extremes), both precisions.
#include <zemcalc/ZmExtents.h>
#include <zemcalc/ZmFrame.h>
#include <zemcalc/ZmMath.h>
#include <zemcalc/ZmPlane.h>
#include <zemcalc/ZmPoint3.h>

#include <cstdlib>

#include "fuzz_input.h"

namespace {

template <class T>
void Fuzz(FuzzedDataProvider& in) {
  using Math = ZmMathT<T>;
  using Point3 = ZmPoint3T<T>;
  using Vector3 = ZmVector3T<T>;
  const Point3 p = fuzz::Point3<T>(in), a = fuzz::Point3<T>(in), b = fuzz::Point3<T>(in), c = fuzz::Point3<T>(in);
  const Vector3 dir(c.x, c.y, c.z);
  const T tol = fuzz::Number<T>(in);
  const WbArrayTempl<Point3> polyline = fuzz::Points3<T>(in, 64);
  Point3 foot;
  Vector3 toFoot;
  T param = 0;
  switch (in.ConsumeIntegralInRange<int>(0, 4)) {
    case 0:
      Math::DistToLine(p, dir, a);
      Math::DistToSegment(p, a, b, toFoot);
      Math::DistBetweenSegments(p, a, b, c);
      Math::DistLineToLine(dir, a, Vector3(b.x, b.y, b.z), p);
      Math::ProjOnSegment(p, a, b, foot, &param);
      break;
    case 1: {
      unsigned char ok = 0;
      const ZmPlaneT<T> plane(a, b, c, ok);
      Math::DistToPlane(p, plane);
      Math::PointIsInPlane(p, plane, tol);
      Math::ProjOnPlane(p, plane);
      Math::ProjVectOnPlane(dir, plane);
      WbArrayTempl<Point3> cut;
      Math::ComputeIntersectionCurveToPlan(polyline, a, dir, b, Vector3(p.x, p.y, p.z), cut);
      break;
    }
    case 2: {
      T s = 0, t = 0;
      const ZmPoint2T<T> p2(p.x, p.y), a2(a.x, a.y), b2(b.x, b.y), c2(c.x, c.y);
      Math::IntersectSegments(p2, a2, b2, c2, &s, &t, in.ConsumeBool());
      Math::PointIsInTriangle(p, a, b, c, tol);
      Math::PointIsInTriangle(p2, a2, b2, c2, tol);
      Point3 hit;
      Math::IntersectSpherePolyline(a, tol, polyline, hit);
      Math::IsPointInsidePolygon(p, polyline, dir);
      break;
    }
    case 3:
      Math::GetLength(polyline);
      Math::GetCoordinatesAt(polyline, tol, foot);
      Math::GetProjectedPoint(polyline, p, param, foot);
      Math::DistanceTo(polyline, p);
      Math::ProjOnPolyline(p, polyline);
      Math::ProjOnSegments(p, polyline);
      break;
    default: {
      ZmFrameT<T> frame;
      ZmExtents3T<T> extents;
      Point3::ComputePointsCloudLocalFrame(polyline, frame, in.ConsumeBool() ? &extents : nullptr);
      const int cell = dir.GetNormalIndex(tol);
      if (cell < -1) std::abort();
      break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  if (in.ConsumeBool())
    Fuzz<double>(in);
  else
    Fuzz<float>(in);
  return 0;
}
