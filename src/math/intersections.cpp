#include <cmath>
#include <exception>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "math/metric_kernels.h"
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmMathDistance.h"
#include "zemcalc/ZmMathIntersect.h"
#include "zemcalc/ZmMathSolve.h"
#include "zemcalc/ZmPlane.h"

ZM_BUILD_INFO(intersections)

using zm::metric::IsUsable;

namespace {

constexpr float kFloatEpsilon = zm::metric::kFloatEpsilon;  // 2^-23
constexpr float kTriangleTolerance = 1.0e-3f;               // projection into a triangle
constexpr float kPlaneDistanceFactor = 10.0f;               // distance to the plane, in tolerances

template <class T>
void Store(T* out, T value) {
  if (out) *out = value;
}

// Half the magnitude of a doubled area.
template <class T>
T HalfMagnitude(T doubled) {
  return (doubled < 0 ? -doubled : doubled) / T(2);
}

// 1 when the three sub-triangles that p makes with the edges add up to less than (tol + 1)
// times the triangle's own area.
template <class T, class Point>
unsigned char AreasEnclose(const Point& p, const Point& a, const Point& b, const Point& c, T tol) {
  using Math = ZmMathIntersectT<T>;
  const T whole = Math::TriangleSurface(a, b, c);
  const T parts = Math::TriangleSurface(p, a, b) + Math::TriangleSurface(p, b, c) + Math::TriangleSurface(p, c, a);
  return (tol + T(1)) * whole > parts ? 1 : 0;
}

// The parameters along [p0, p1] and [q0, q1] of the crossing of the two lines through them,
// from their x and y; false (s and t invalid) when the system is singular.
template <class T>
bool SolveCrossing(T p0x, T p0y, T p1x, T p1y, T q0x, T q0y, T q1x, T q1y, T& s, T& t) {
  T m[2][2] = {{p1x - p0x, q0x - q1x}, {p1y - p0y, q0y - q1y}};
  T b[2] = {q0x - p0x, q0y - p0y};
  if (!ZmMathSolveT<T>::SolveSystem2x2(m, b, 0)) {
    s = t = zm::Invalid<T>();
    return false;
  }
  s = b[0];
  t = b[1];
  return true;
}

template <class T>
unsigned char InRangeOrInfinite(T s, T t, unsigned char infinite) {
  if (infinite) return 1;
  const T low = s < t ? s : t, high = s < t ? t : s;
  return (low >= 0 && high <= 1) ? 1 : 0;
}

}  // namespace

template <class T>
T ZmMathIntersectT<T>::TriangleSurface(const Point3& a, const Point3& b, const Point3& c) {
  const Vector3 ab = b - a, ac = c - a;
  return ab.cross(ac).length() / T(2);
}

template <class T>
T ZmMathIntersectT<T>::TriangleSurface(const Point2& a, const Point2& b, const Point2& c) {
  const ZmVector2T<T> ab = b - a, ac = c - a;
  return HalfMagnitude(ab.cross(ac));
}

template <class T>
unsigned char ZmMathIntersectT<T>::IntersectSegments(const Point2& p0, const Point2& p1, const Point2& q0,
                                                     const Point2& q1, T* s, T* t, unsigned char infinite) {
  T sv, tv;
  const bool solved = SolveCrossing(p0.x, p0.y, p1.x, p1.y, q0.x, q0.y, q1.x, q1.y, sv, tv);
  Store(s, sv);
  Store(t, tv);
  return solved ? InRangeOrInfinite(sv, tv, infinite) : 0;
}

template <class T>
unsigned char ZmMathIntersectT<T>::IntersectSegments(const Point3& p0, const Point3& p1, const Point3& q0,
                                                     const Point3& q1, const Vector3& normal, Point3& onP, Point3& onQ,
                                                     T* s, T* t, unsigned char infinite) {
  const ZmFrameT<T> frame(p0, normal, ZmFrameCartesian, nullptr);
  const Point3 a0 = frame.GlobalToLocal(p0), a1 = frame.GlobalToLocal(p1);
  const Point3 b0 = frame.GlobalToLocal(q0), b1 = frame.GlobalToLocal(q1);
  T sv, tv;
  const bool solved = SolveCrossing(a0.x, a0.y, a1.x, a1.y, b0.x, b0.y, b1.x, b1.y, sv, tv);
  Store(s, sv);
  Store(t, tv);
  if (!solved) return 0;
  onP = p0 + (p1 - p0) * sv;
  onQ = q0 + (q1 - q0) * tv;
  return InRangeOrInfinite(sv, tv, infinite);
}

template <class T>
unsigned char ZmMathIntersectT<T>::IntersectHalfLineSegment(const Point3& start, const Vector3& dir, const Point3& a,
                                                            const Point3& b) {
  const T tol = T(zm::kTolerance6);
  Vector3 u = dir, e = b - a;
  if (!u.unitize(tol) || !e.unitize(tol)) return 0;
  Vector3 n = u.cross(e);
  if (!n.unitize(tol)) return 0;
  Point3 onP, onQ;
  T s, t;
  if (!IntersectSegments(start, start + u, a, b, n, onP, onQ, &s, &t, 1)) return 0;
  return (s >= 0 && t >= 0 && t <= 1) ? 1 : 0;
}

template <class T>
unsigned char ZmMathIntersectT<T>::IntersectSphereLine(const Point3& p0, const Point3& p1, const Point3& center,
                                                       T radius, Point3& hit1, Point3& hit2, T* const params) {
  const Vector3 d = p1 - p0, m = p0 - center;
  const T a = d.dot(d);
  const T b = T(2) * d.dot(m);
  const T c = m.dot(m) - radius * radius;
  const T disc = b * b - T(4) * a * c;
  // The negated tests also turn NaN away.
  if (!((a < 0 ? -a : a) >= T(kFloatEpsilon)) || !(disc >= 0)) return 0;
  const T root = zm::Sqrt(disc);
  const T t1 = (root - b) / (T(2) * a);
  const T t2 = (-b - root) / (T(2) * a);
  hit1 = p0 + d * t1;
  hit2 = p0 + d * t2;
  if (params) {
    params[0] = t1;
    params[1] = t2;
  }
  return 1;
}

template <class T>
int ZmMathIntersectT<T>::IntersectSpherePolyline(const Point3& center, T radius, const WbArrayTempl<Point3>& polyline,
                                                 Point3& hit) {
  const std::uint64_t n = polyline.GetSize();
  if (n < 2) return -1;
  for (std::uint64_t i = 0; i + 1 < n; ++i) {
    Point3 hit1, hit2;
    T params[2];
    if (!IntersectSphereLine(polyline[i], polyline[i + 1], center, radius, hit1, hit2, params)) continue;
    const bool firstInside = params[0] >= 0 && params[0] <= 1;
    const bool secondInside = params[1] >= 0 && params[1] <= 1;
    if (firstInside) {
      hit = (secondInside && params[1] < params[0]) ? hit2 : hit1;
    } else if (secondInside) {
      hit = hit2;
    } else {
      continue;
    }
    return static_cast<int>(i);
  }
  return -1;
}

template <class T>
unsigned char ZmMathIntersectT<T>::PointIsInTriangle(const Point2& p, const Point2& a, const Point2& b, const Point2& c,
                                                     T tol) {
  return AreasEnclose(p, a, b, c, tol);
}

template <class T>
unsigned char ZmMathIntersectT<T>::PointIsInTriangle(const Point3& p, const Point3& a, const Point3& b, const Point3& c,
                                                     T tol) {
  unsigned char ok = 0;
  const ZmPlaneT<T> plane(a, b, c, ok);
  if (!ok) return 0;
  if (!(ZmMathDistanceT<T>::DistToPlane(p, plane) <= T(kPlaneDistanceFactor) * tol)) return 0;
  return AreasEnclose(p, a, b, c, tol);
}

template <class T>
unsigned char ZmMathIntersectT<T>::IsPointInsidePolygon(const Point3& p, const WbArrayTempl<Point3>& polygon,
                                                        const Vector3& normal) {
  const std::uint64_t n = polygon.GetSize();
  if (n < 3) return 0;
  unsigned char ok = 0;
  const ZmPlaneT<T> plane(p, normal, ok);
  if (!ok) return 0;
  ZmFrameT<T> frame;
  if (!plane.GetFrame(frame)) return 0;
  const Vector3 ray = frame.GetVector(0);
  std::uint64_t hits = 0;
  for (std::uint64_t i = 0; i < n; ++i) hits += IntersectHalfLineSegment(p, ray, polygon[i], polygon[(i + 1) % n]);
  return (hits % 2 == 1) ? 1 : 0;
}

template <class T>
unsigned char ZmMathIntersectT<T>::ProjectInTriangle(const Point3& p, const Point3& a, const Point3& b, const Point3& c,
                                                     const Vector3& dir, Point3& hit) {
  hit.Invalidate();
  unsigned char ok = 0;
  const ZmPlaneT<T> plane(a, b, c, ok);
  if (!ok) return 0;
  if (!plane.IntersectWithLine(p, dir, hit, T(kFloatEpsilon))) return 0;
  return PointIsInTriangle(hit, a, b, c, T(kTriangleTolerance));
}

template <class T>
int ZmMathIntersectT<T>::ComputeIntersectionCurveToPlan(const WbArrayTempl<Point3>& curve, const Point3& planePoint,
                                                        const Vector3& planeNormal, const Point3& limitPoint,
                                                        const Vector3& limitDirection,
                                                        WbArrayTempl<Point3>& result) try {
  const zm::BoundaryCall boundary;
  result.RemoveAll();
  Vector3 normal = planeNormal;
  if (!IsUsable(planePoint) || !normal.unitize(T(zm::kTolerance6))) return -1;
  // A limit direction that cannot be normalised sets no bound.
  Vector3 limit = limitDirection;
  const bool bounded = IsUsable(limitPoint) && limit.unitize(T(zm::kTolerance6));
  const auto keep = [&](const Point3& x) {
    if (bounded && !(Vector3(x - limitPoint).dot(limit) >= 0)) return;
    result.Add(x);
  };

  const std::uint64_t n = curve.GetSize();
  T previous = 0;
  for (std::uint64_t i = 0; i < n; ++i) {
    const T distance = Vector3(curve[i] - planePoint).dot(normal);
    if (distance == 0) {
      keep(curve[i]);
    } else if (i > 0 && ((previous < 0 && distance > 0) || (previous > 0 && distance < 0))) {
      const T f = previous / (previous - distance);
      keep(curve[i - 1] + (curve[i] - curve[i - 1]) * f);
    }
    previous = distance;
  }
  return static_cast<int>(result.GetSize());
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  result.RemoveAll();
  return -1;
}

template class ZmMathIntersectT<double>;
template class ZmMathIntersectT<float>;
