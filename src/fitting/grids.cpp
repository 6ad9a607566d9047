#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "fitting/polygon_kernels.h"
#include "foundation/build_info.h"
#include "zemcalc/ZmMathGrid.h"

ZM_BUILD_INFO(grids)

using zm::fit::P3;
using zm::fit::V3;

namespace {

constexpr double kMaxPoints = double(1L << 24);

bool IsPositive(double v) { return v > 0 && std::isfinite(v); }

// Even-odd count of the crossings of the ray from (x, y) along +X with the closed loop.
bool CrossesOddly(const std::vector<ZmPoint2T<double>>& loop, double x, double y) {
  bool odd = false;
  for (std::size_t i = 0, j = loop.size() - 1; i < loop.size(); j = i++) {
    const ZmPoint2T<double>& a = loop[i];
    const ZmPoint2T<double>& b = loop[j];
    if ((a.y > y) != (b.y > y) && x < a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y)) odd = !odd;
  }
  return odd;
}

}  // namespace

template <class T>
std::int64_t ZmMathGridT<T>::RectangleGrid(const ZmFrameT<T>& frame, T lengthX, T lengthY, T spacingX, T spacingY,
                                           WbArrayTempl<Point3>& points) {
  points.RemoveAll();
  const double lx = double(lengthX), ly = double(lengthY), sx = double(spacingX), sy = double(spacingY);
  const P3 o(frame.GetOrigin());
  if (!(lx >= 0) || !(ly >= 0) || !IsPositive(sx) || !IsPositive(sy) || !std::isfinite(lx + ly) ||
      !zm::fit::IsFinite(o) || !zm::metric::IsUsable(frame.GetOrigin())) {
    return -1;
  }
  // A quotient within 16 eps of a whole number is that number: the spacings were meant to fit.
  const double slack = 1 + 16.0 * double(std::numeric_limits<T>::epsilon());
  const double nx = std::floor(lx / sx * slack) + 1, ny = std::floor(ly / sy * slack) + 1;
  if (nx * ny > kMaxPoints) return -1;
  const V3 x(frame.GetVector(0)), y(frame.GetVector(1));
  points.Reserve(std::uint64_t(nx * ny));
  for (long j = 0; j < long(ny); ++j) {
    for (long i = 0; i < long(nx); ++i) points.Add(Point3(o + x * (sx * double(i)) + y * (sy * double(j))));
  }
  return std::int64_t(points.GetSize());
}

template <class T>
std::int64_t ZmMathGridT<T>::PolygonGrid(const WbArrayTempl<Point3>& polygon,
                                         const WbArrayTempl<WbArrayTempl<Point3>>* holes, const Point3& origin,
                                         T spacing, WbArrayTempl<Point3>& points) {
  points.RemoveAll();
  const double s = double(spacing);
  std::vector<P3> outer;
  if (!IsPositive(s) || !zm::metric::IsUsable(origin) || !zm::fit::IsFinite(P3(origin)) ||
      zm::polygon::Collect(polygon, outer) != ZmPolygonOk) {
    return -1;
  }
  const zm::polygon::Shape shape = zm::polygon::Analyse<T>(outer);
  V3 x;
  if (shape.status != ZmPolygonOk || !zm::polygon::FirstAxis(outer, shape.normal, ZmPolygonAxisFirstEdge, x)) {
    return -1;
  }
  const V3 y = shape.normal.cross(x);
  const P3 o = P3(origin) - shape.normal * (P3(origin) - shape.average).dot(shape.normal);
  // Every loop in lattice coordinates about o.
  std::vector<std::vector<ZmPoint2T<double>>> loops(1);
  const auto flatten = [&](const std::vector<P3>& loop, std::vector<ZmPoint2T<double>>& out) {
    for (const P3& p : loop) out.emplace_back((p - o).dot(x), (p - o).dot(y));
  };
  flatten(outer, loops[0]);
  if (holes) {
    for (const WbArrayTempl<Point3>& hole : *holes) {
      std::vector<P3> h;
      const ZmPolygonStatus status = zm::polygon::Collect(hole, h);
      if (status == ZmPolygonBadInput) return -1;
      if (status != ZmPolygonOk) continue;  // fewer than 3 vertices: no hole
      loops.emplace_back();
      flatten(h, loops.back());
    }
  }
  double lo[2] = {loops[0][0].x, loops[0][0].y}, hi[2] = {lo[0], lo[1]};
  for (const ZmPoint2T<double>& p : loops[0]) {
    lo[0] = std::min(lo[0], p.x), hi[0] = std::max(hi[0], p.x);
    lo[1] = std::min(lo[1], p.y), hi[1] = std::max(hi[1], p.y);
  }
  const double i0 = std::ceil(lo[0] / s), i1 = std::floor(hi[0] / s), j0 = std::ceil(lo[1] / s),
               j1 = std::floor(hi[1] / s);
  if ((i1 - i0 + 1) * (j1 - j0 + 1) > kMaxPoints) return -1;
  for (double j = j0; j <= j1; ++j) {
    for (double i = i0; i <= i1; ++i) {
      bool inside = false;
      for (const auto& loop : loops) inside = inside != CrossesOddly(loop, i * s, j * s);
      if (inside) points.Add(Point3(o + x * (i * s) + y * (j * s)));
    }
  }
  return std::int64_t(points.GetSize());
}

template <class T>
std::int64_t ZmMathGridT<T>::RangeGrid(T from, T to, T maxSpacing, WbArrayTempl<T>& abscissae) {
  abscissae.RemoveAll();
  const double a = double(from), b = double(to), m = double(maxSpacing);
  if (!std::isfinite(a) || !std::isfinite(b) || !IsPositive(m) || a == zm::Invalid<double>() ||
      b == zm::Invalid<double>()) {
    return -1;
  }
  const double n = std::max(1.0, std::ceil(std::fabs(b - a) / m));
  if (n + 1 > kMaxPoints) return -1;
  if (a == b) {
    abscissae.Add(from);
    return 1;
  }
  for (long i = 0; i < long(n); ++i) abscissae.Add(T(a + (b - a) * (double(i) / n)));
  abscissae.Add(to);
  return std::int64_t(abscissae.GetSize());
}

template class ZmMathGridT<double>;
template class ZmMathGridT<float>;
