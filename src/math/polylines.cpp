#include "zemcalc/ZmMathPolyline.h"

#include <cmath>

#include "foundation/build_info.h"
#include "math/metric_kernels.h"

ZM_BUILD_INFO(polylines)

using zm::metric::IsUsable;
using zm::metric::RoundedDistance;

namespace {

template <class T>
bool AllUsable(const ZmPoint3T<T>* points, std::uint64_t n) {
  for (std::uint64_t i = 0; i < n; ++i) {
    if (!IsUsable(points[i])) return false;
  }
  return true;
}

// The vertex nearest to p (the earlier on ties) and its arc length from the first point:
// the foot on a polyline whose every segment is too short to project on.
template <class T>
void NearestVertex(const ZmPoint3T<T>* points, std::uint64_t n, const ZmPoint3T<T>& p, ZmPoint3T<T>& vertex,
                   T& arcLength) {
  std::uint64_t best = 0;
  T bestDistance = RoundedDistance(points[0], p);
  T bestArc = 0, arc = 0;
  for (std::uint64_t i = 1; i < n; ++i) {
    arc += RoundedDistance(points[i - 1], points[i]);
    const T distance = RoundedDistance(points[i], p);
    if (distance < bestDistance) {
      best = i;
      bestDistance = distance;
      bestArc = arc;
    }
  }
  vertex = points[best];
  arcLength = bestArc;
}

}  // namespace

template <class T>
T ZmMathPolylineT<T>::GetLength(const Polyline& polyline) {
  const std::uint64_t n = polyline.GetSize();
  if (n < 2) return T(0);
  const Point3* points = polyline.GetData();
  if (!AllUsable(points, n)) return zm::Invalid<T>();
  T length = 0;
  for (std::uint64_t i = 1; i < n; ++i) length += RoundedDistance(points[i - 1], points[i]);
  return length;
}

template <class T>
void ZmMathPolylineT<T>::GetCoordinatesAt(const Polyline& polyline, T t, Point3& out) {
  const std::uint64_t n = polyline.GetSize();
  const Point3* points = polyline.GetData();
  if (n == 0 || !std::isfinite(t)) {
    out.Invalidate();
    return;
  }
  if (t == T(0)) {
    out = points[0];
    return;
  }
  if (t == T(1)) {
    out = points[n - 1];
    return;
  }
  const T length = GetLength(polyline);
  if (length == zm::Invalid<T>() || !IsUsable(points[0])) {
    out.Invalidate();
    return;
  }
  if (n == 1) {
    out = points[0];
    return;
  }
  const T target = length * t;
  T covered = 0;
  // The walk stops at the first segment whose end reaches the target, and at the last segment
  // in any case, so a target beyond the end extrapolates along it.
  for (std::uint64_t i = 0; i + 1 < n; ++i) {
    const T segment = RoundedDistance(points[i], points[i + 1]);
    if (covered + segment >= target || i + 2 == n) {
      if (segment == T(0)) {
        out = points[i];
      } else {
        const T f = (target - covered) / segment;
        out = Point3(points[i] * (T(1) - f) + points[i + 1] * f);
      }
      return;
    }
    covered += segment;
  }
}

template <class T>
unsigned char ZmMathPolylineT<T>::GetProjectedPoint(const Polyline& polyline, const Point3& p, T& param, Point3& foot) {
  const std::uint64_t n = polyline.GetSize();
  const Point3* points = polyline.GetData();
  if (!IsUsable(p) || !AllUsable(points, n)) {
    foot.Invalidate();
    param = 0;
    return 0;
  }
  // One walk gives both the total length L and the nearest foot: the arc length before the
  // best segment is kept, and its normalised value is formed once L is known. These are the
  // same sums in the same order as a table of cumulative lengths, without the table.
  T best = T(zm::metric::kFloatMax);
  bool found = false;
  Point3 bestFoot;
  std::uint64_t bestStart = 0;
  T bestArc = 0, arc = 0;
  for (std::uint64_t i = 1; i < n; ++i) {
    Point3 f;
    T unused;
    if (zm::metric::ProjectOnSegment(p, points[i - 1], points[i], f, unused)) {
      const T distance = RoundedDistance(f, p);
      if (distance < best) {
        best = distance;
        bestFoot = f;
        bestStart = i - 1;
        bestArc = arc;
        found = true;
      }
    }
    arc += RoundedDistance(points[i - 1], points[i]);
  }
  const T length = arc;
  if (length < T(zm::kTolerance6)) {
    foot = p;
    param = 0;
    return 1;
  }
  T t;
  if (found) {
    foot = bestFoot;
    t = bestArc / length + RoundedDistance(bestFoot, points[bestStart]) / length;
  } else {
    NearestVertex(points, n, p, foot, bestArc);
    t = bestArc / length;
  }
  param = t < T(0) ? T(0) : (t > T(1) ? T(1) : t);
  return 1;
}

template <class T>
T ZmMathPolylineT<T>::DistanceTo(const Polyline& polyline, const Point3& p) {
  Point3 foot(0, 0, 0);
  T param = 0;
  if (!GetProjectedPoint(polyline, p, param, foot)) return zm::Invalid<T>();
  return RoundedDistance(foot, p);
}

template <class T>
ZmPoint3T<T> ZmMathPolylineT<T>::ProjOnPolyline(const Point3& p, const Polyline& polyline, int* segIndex) {
  Point3 result = zm::metric::InvalidPoint<T>();
  if (segIndex) *segIndex = -1;
  const std::uint64_t n = polyline.GetSize();
  if (n < 2 || !IsUsable(p)) return result;
  const Point3* points = polyline.GetData();
  T best = zm::Invalid<T>();
  bool startUsable = IsUsable(points[0]);
  for (std::uint64_t i = 0; i + 1 < n; ++i) {
    const bool endUsable = IsUsable(points[i + 1]);
    if (startUsable && endUsable) {
      ZmVector3T<T> toFoot;
      const T distance = zm::metric::DistanceToSegment(p, points[i], points[i + 1], toFoot);
      if (best == zm::Invalid<T>() || distance < best) {
        best = distance;
        result = p + toFoot;
        if (segIndex) *segIndex = static_cast<int>(i);
      }
    }
    startUsable = endUsable;
  }
  return result;
}

template <class T>
ZmPoint3T<T> ZmMathPolylineT<T>::ProjOnSegments(const Point3& p, const Polyline& pairs) {
  Point3 result = zm::metric::InvalidPoint<T>();
  const std::uint64_t pairCount = pairs.GetSize() / 2;
  if (pairCount == 0 || !IsUsable(p)) return result;
  const Point3* points = pairs.GetData();
  T best = T(zm::metric::kFloatMax);
  for (std::uint64_t k = 0; k < pairCount; ++k) {
    const Point3& a = points[2 * k];
    const Point3& b = points[2 * k + 1];
    if (!IsUsable(a) || !IsUsable(b)) continue;
    ZmVector3T<T> toFoot;
    const T distance = zm::metric::DistanceToSegment(p, a, b, toFoot);
    if (distance < best) {
      result = p + toFoot;
      best = distance;
    }
  }
  return result;
}

template class ZmMathPolylineT<double>;
template class ZmMathPolylineT<float>;
