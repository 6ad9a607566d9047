#include <cmath>
#include <limits>
#include <vector>

#include "fitting/fit_kernels.h"
#include "fitting/polygon_kernels.h"
#include "foundation/build_info.h"
#include "zemcalc/ZmMathPolygon.h"

ZM_BUILD_INFO(polygons)

namespace zm {
namespace polygon {

using fit::P3;
using fit::V3;

template <class P>
ZmPolygonStatus Collect(const WbArrayTempl<P>& vertices, std::vector<P3>& out) {
  out.clear();
  for (const P& v : vertices) {
    const P3 p = fit::Widen(v);
    if (!metric::IsUsable(v) || !fit::IsFinite(p)) return ZmPolygonBadInput;
    out.push_back(p);
  }
  if (out.size() > 1 && out.front() == out.back()) out.pop_back();
  return out.size() < 3 ? ZmPolygonTooFewPoints : ZmPolygonOk;
}

template <class T>
Shape Analyse(const std::vector<P3>& p) {
  Shape s;
  const std::size_t n = p.size();
  V3 sum(0, 0, 0);
  for (const P3& q : p) sum += q;
  s.average = P3(sum * (1.0 / double(n)));
  V3 newell(0, 0, 0);
  double size = 0;
  for (std::size_t i = 0; i < n; ++i) {
    newell += (p[i] - s.average).cross(p[(i + 1) % n] - s.average);
    size = std::fmax(size, (p[i] - s.average).length());
  }
  const double tiny = 16.0 * double(std::numeric_limits<T>::epsilon());
  s.area = 0.5 * newell.length();
  s.centroid = s.average;
  if (!(s.area > tiny * size * size)) {
    s.area = 0;
    s.normal = V3(0, 0, 1);
    return s;
  }
  s.status = ZmPolygonOk;
  s.normal = newell * (1.0 / newell.length());
  V3 moment(0, 0, 0);
  double total = 0, squares = 0, turning = 0;
  bool left = false, right = false;
  for (std::size_t i = 0; i < n; ++i) {
    const V3 a = p[i] - s.average, b = p[(i + 1) % n] - s.average;
    const double fan = 0.5 * a.cross(b).dot(s.normal);
    moment += (a + b) * (fan / 3.0);
    total += fan;
    const double h = a.dot(s.normal);
    squares += h * h;
    // The turn of the edges as seen along the normal.
    const auto flat = [&s](const V3& v) { return v - s.normal * v.dot(s.normal); };
    const V3 in = flat(p[i] - p[(i + n - 1) % n]), out = flat(b - a);
    const double turn = in.cross(out).dot(s.normal);
    if (std::fabs(turn) > tiny * in.length() * out.length()) (turn > 0 ? left : right) = true;
    turning += std::atan2(turn, in.dot(out));
  }
  s.centroid = s.average + moment * (1.0 / total);
  s.outOfPlaneRms = std::sqrt(squares / double(n));
  s.convex = !(left && right) && std::fabs(std::fabs(turning) - 6.283185307179586) < 1e-6;
  return s;
}

template <class P>
double SignedAreaAlong(const WbArrayTempl<P>& vertices, const V3& reference) {
  std::vector<P3> p;
  const ZmPolygonStatus status = Collect(vertices, p);
  if (status == ZmPolygonBadInput || !fit::IsFinite(P3(reference)) || !(reference.length() > 0)) {
    return double(Invalid<float>());
  }
  if (status == ZmPolygonTooFewPoints) return 0;
  V3 sum(0, 0, 0);
  for (const P3& q : p) sum += q;
  const P3 c(sum * (1.0 / double(p.size())));
  V3 newell(0, 0, 0);
  for (std::size_t i = 0; i < p.size(); ++i) newell += (p[i] - c).cross(p[(i + 1) % p.size()] - c);
  return 0.5 * newell.dot(reference) / reference.length();
}

bool FirstAxis(const std::vector<P3>& p, const V3& normal, ZmPolygonAxis axis, V3& x) {
  const auto inPlane = [&normal](const V3& v) { return v - normal * v.dot(normal); };
  if (axis == ZmPolygonAxisMidLines && p.size() == 4) {
    const V3 a = inPlane((p[1] + p[2]) * 0.5 - (p[3] + p[0]) * 0.5), b = inPlane((p[2] + p[3]) * 0.5 - (p[0] + p[1]) * 0.5);
    if (a.length() > 0 && b.length() > 0) {
      const V3 sum = a * (1.0 / a.length()) + b.cross(normal) * (1.0 / b.length());
      if (sum.length() > 0) {
        x = sum * (1.0 / sum.length());
        return true;
      }
    }
  }
  for (std::size_t i = 0; i < p.size(); ++i) {
    const V3 edge = inPlane(p[(i + 1) % p.size()] - p[i]);
    if (edge.length() > 0) {
      x = edge * (1.0 / edge.length());
      return true;
    }
  }
  return false;
}

template double SignedAreaAlong(const WbArrayTempl<ZmPoint3T<double>>&, const V3&);
template double SignedAreaAlong(const WbArrayTempl<ZmPoint3T<float>>&, const V3&);
template double SignedAreaAlong(const WbArrayTempl<ZmPoint2T<double>>&, const V3&);
template double SignedAreaAlong(const WbArrayTempl<ZmPoint2T<float>>&, const V3&);
template ZmPolygonStatus Collect(const WbArrayTempl<ZmPoint3T<double>>&, std::vector<P3>&);
template ZmPolygonStatus Collect(const WbArrayTempl<ZmPoint3T<float>>&, std::vector<P3>&);
template ZmPolygonStatus Collect(const WbArrayTempl<ZmPoint2T<double>>&, std::vector<P3>&);
template ZmPolygonStatus Collect(const WbArrayTempl<ZmPoint2T<float>>&, std::vector<P3>&);
template Shape Analyse<double>(const std::vector<P3>&);
template Shape Analyse<float>(const std::vector<P3>&);

}  // namespace polygon
}  // namespace zm

using zm::fit::P3;
using zm::fit::V3;

template <class T>
ZmPolygonPropertiesT<T> ZmMathPolygonT<T>::PolygonProperties(const WbArrayTempl<Point3>& vertices) {
  ZmPolygonPropertiesT<T> props;
  std::vector<P3> p;
  props.status = zm::polygon::Collect(vertices, p);
  if (props.status != ZmPolygonOk) return props;
  const zm::polygon::Shape s = zm::polygon::Analyse<T>(p);
  props.status = s.status;
  props.centroid = Point3(s.centroid);
  props.vertexAverage = Point3(s.average);
  props.normal = Vector3(s.normal);
  props.area = T(s.area);
  props.outOfPlaneRms = T(s.outOfPlaneRms);
  props.convex = s.convex ? 1 : 0;
  return props;
}

template <class T>
T ZmMathPolygonT<T>::SignedArea(const WbArrayTempl<Point2>& vertices) {
  return T(zm::polygon::SignedAreaAlong(vertices, V3(0, 0, 1)));
}

template <class T>
T ZmMathPolygonT<T>::SignedArea(const WbArrayTempl<Point3>& vertices, const Vector3& reference) {
  return T(zm::polygon::SignedAreaAlong(vertices, V3(reference)));
}

template <class T>
ZmPolygonStatus ZmMathPolygonT<T>::PolygonFrame(const WbArrayTempl<Point3>& vertices, ZmPolygonAxis axis,
                                                ZmFrameT<T>& frame) {
  std::vector<P3> p;
  ZmPolygonStatus status = zm::polygon::Collect(vertices, p);
  if (status != ZmPolygonOk) return status;
  const zm::polygon::Shape s = zm::polygon::Analyse<T>(p);
  if (s.status != ZmPolygonOk) return s.status;
  V3 x;
  if (!zm::polygon::FirstAxis(p, s.normal, axis, x)) return ZmPolygonDegenerate;
  frame = ZmFrameT<T>(Vector3(x), Vector3(s.normal.cross(x)), Vector3(s.normal), Point3(s.centroid),
                      ZmFrameCartesian);
  return ZmPolygonOk;
}

template class ZmMathPolygonT<double>;
template class ZmMathPolygonT<float>;
