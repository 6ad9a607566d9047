#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

#include "fitting/fit_kernels.h"
#include "foundation/build_info.h"
#include "zemcalc/ZmMathArc.h"

ZM_BUILD_INFO(arcs)

using zm::fit::P3;
using zm::fit::V3;

namespace {

constexpr double kTwoPi = 6.283185307179586;
constexpr double kPi = 3.141592653589793;
// The most chords a tessellation gives.
constexpr long kMaxChords = 1L << 24;

template <class T>
double Tiny() {
  return 16.0 * double(std::numeric_limits<T>::epsilon());
}

bool AllUsable(std::initializer_list<P3> points) {
  for (const P3& p : points) {
    if (!zm::fit::IsFinite(p) || p.x == zm::Invalid<double>() || p.y == zm::Invalid<double>() ||
        p.z == zm::Invalid<double>()) {
      return false;
    }
  }
  return true;
}

// The largest coordinate magnitude of the points, and 1.
double Size(std::initializer_list<P3> points) {
  double size = 1;
  for (const P3& p : points) size = std::max({size, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
  return size;
}

V3 Unit(const V3& v) { return v * (1.0 / v.length()); }

// The angle from x to d counter-clockwise about the normal whose y = normal x x, in [0, 2 pi).
double CounterClockwiseAngle(const V3& x, const V3& y, const V3& d) {
  const double a = std::atan2(d.dot(y), d.dot(x));
  return a < 0 ? a + kTwoPi : a;
}

template <class T>
ZmArcT<T> Failed(ZmArcStatus status) {
  ZmArcT<T> arc;
  arc.status = status;
  return arc;
}

template <class T>
ZmArcT<T> MakeArc(const P3& center, const V3& normal, const V3& x, double radius, double sweep) {
  ZmArcT<T> arc;
  arc.center = ZmPoint3T<T>(center);
  arc.normal = ZmVector3T<T>(normal);
  arc.startDirection = ZmVector3T<T>(x);
  arc.radius = T(radius);
  arc.sweep = T(sweep);
  arc.status = ZmArcOk;
  return arc;
}

template <class T>
bool IsUsableArc(const ZmArcT<T>& arc) {
  return arc.status == ZmArcOk && AllUsable({P3(arc.center), P3(arc.normal), P3(arc.startDirection)}) &&
         std::isfinite(double(arc.radius)) && std::isfinite(double(arc.sweep));
}

// The smallest chord count in [1, kMaxChords] that passes, assuming that more chords never
// fail when fewer pass: doubling from guess until one passes, then bisection below it. -1 when
// even kMaxChords fail.
template <class Passes>
long FewestChords(long guess, Passes passes) {
  long hi = std::max(1L, std::min(guess, kMaxChords));
  while (!passes(hi)) {
    if (hi == kMaxChords) return -1;
    hi = std::min(2 * hi, kMaxChords);
  }
  long lo = 0;  // 0 chords never pass
  while (hi - lo > 1) {
    const long mid = lo + (hi - lo) / 2;
    (passes(mid) ? hi : lo) = mid;
  }
  return hi;
}

// A limit that is not positive (or NaN) is none.
bool HasLimit(double limit) { return limit > 0; }

}  // namespace

template <class T>
ZmArcT<T> ZmMathArcT<T>::ArcThroughPoints(const Point3& p0, const Point3& p1, const Point3& p2) {
  const P3 p[3] = {P3(p0), P3(p1), P3(p2)};
  if (!AllUsable({p[0], p[1], p[2]})) return Failed<T>(ZmArcBadInput);
  // opposite[k] is the side facing p[k].
  const double opposite[3] = {(p[2] - p[1]).length(), (p[0] - p[2]).length(), (p[1] - p[0]).length()};
  const double tiny = Tiny<T>();
  if (*std::min_element(opposite, opposite + 3) <= tiny * Size({p[0], p[1], p[2]})) return Failed<T>(ZmArcCoincident);
  // The cyclic order keeps w = u x v the same whichever vertex comes first.
  const int k = int(std::max_element(opposite, opposite + 3) - opposite);
  const P3& a = p[k];
  const V3 u = p[(k + 1) % 3] - a, v = p[(k + 2) % 3] - a, w = u.cross(v);
  const double w2 = w.lengthSquared();
  if (!(w.length() > tiny * u.length() * v.length())) return Failed<T>(ZmArcCollinear);
  const P3 center = a + (v.cross(w) * u.lengthSquared() + w.cross(u) * v.lengthSquared()) * (1.0 / (2.0 * w2));
  const V3 n = Unit(w), x = Unit(p[0] - center);
  const double radius = ((p[0] - center).length() + (p[1] - center).length() + (p[2] - center).length()) / 3.0;
  return MakeArc<T>(center, n, x, radius, CounterClockwiseAngle(x, n.cross(x), p[2] - center));
}

template <class T>
ZmArcT<T> ZmMathArcT<T>::ArcThroughPoints(const Point2& p0, const Point2& p1, const Point2& p2) {
  return ArcThroughPoints(Point3(p0), Point3(p1), Point3(p2));
}

template <class T>
ZmArcT<T> ZmMathArcT<T>::ArcFromCenter(const Point3& start, const Point3& end, const Point3& center,
                                       const Vector3& normal) {
  const P3 s(start), e(end), c(center);
  const V3 nRaw(normal);
  if (!AllUsable({s, e, c, P3(nRaw)}) || !(nRaw.length() > 0)) return Failed<T>(ZmArcBadInput);
  const V3 n = Unit(nRaw);
  const V3 xs = (s - c) - n * (s - c).dot(n), xe = (e - c) - n * (e - c).dot(n);
  const double tiny = Tiny<T>(), size = Size({s, e, c});
  if (!(xs.length() > tiny * size) || !(xe.length() > tiny * size)) return Failed<T>(ZmArcCoincident);
  const V3 x = Unit(xs);
  double sweep = CounterClockwiseAngle(x, n.cross(x), xe);
  if (sweep <= tiny * kTwoPi || kTwoPi - sweep <= tiny * kTwoPi) sweep = kTwoPi;
  return MakeArc<T>(c, n, x, xs.length(), sweep);
}

template <class T>
ZmArcT<T> ZmMathArcT<T>::ArcFromTangent(const Point3& start, const Vector3& tangent, const Point3& end) {
  const P3 s(start), e(end);
  const V3 tRaw(tangent);
  if (!AllUsable({s, e, P3(tRaw)}) || !(tRaw.length() > 0)) return Failed<T>(ZmArcBadInput);
  const V3 chord = e - s, t = Unit(tRaw);
  const double tiny = Tiny<T>();
  if (!(chord.length() > tiny * Size({s, e}))) return Failed<T>(ZmArcCoincident);
  const V3 across = chord - t * chord.dot(t);
  const double h = across.length();
  if (!(h > tiny * chord.length())) return Failed<T>(ZmArcCollinear);
  const V3 toCenter = across * (1.0 / h);
  const double radius = chord.lengthSquared() / (2.0 * h);
  const P3 center = s + toCenter * radius;
  // n = t x toCenter makes n x (start - centre) point along t: the arc leaves along the tangent.
  const V3 n = t.cross(toCenter), x = -toCenter;
  return MakeArc<T>(center, n, x, radius, CounterClockwiseAngle(x, n.cross(x), e - center));
}

template <class T>
ZmArcT<T> ZmMathArcT<T>::Fillet(const Point3& point1, const Vector3& direction1, const Point3& point2,
                                const Vector3& direction2, T radius) {
  const P3 p1(point1), p2(point2);
  const V3 d1(direction1), d2(direction2);
  const double r = double(radius);
  if (!AllUsable({p1, p2, P3(d1), P3(d2)}) || !(d1.length() > 0) || !(d2.length() > 0) || !(r > 0) ||
      !std::isfinite(r)) {
    return Failed<T>(ZmArcBadInput);
  }
  const V3 e1 = Unit(d1), e2 = Unit(d2);
  const double sine = e1.cross(e2).length(), cosine = e1.dot(e2);
  if (!(sine > Tiny<T>())) return Failed<T>(ZmArcCollinear);
  // Closest points of the two lines: p1 + s1 e1 and p2 + s2 e2.
  const V3 w0 = p1 - p2;
  const double d = e1.dot(w0), f = e2.dot(w0), denom = sine * sine;
  const P3 c1 = p1 + e1 * ((cosine * f - d) / denom), c2 = p2 + e2 * ((f - cosine * d) / denom);
  if ((c1 - c2).length() > 1e-6 * Size({c1, c2})) return Failed<T>(ZmArcBadInput);
  const P3 corner = c1 + (c2 - c1) * 0.5;
  const double phi = 0.5 * std::atan2(sine, cosine);
  const P3 center = corner + Unit(e1 + e2) * (r / std::sin(phi));
  const P3 t1 = corner + e1 * (r / std::tan(phi)), t2 = corner + e2 * (r / std::tan(phi));
  const V3 x = Unit(t1 - center);
  return MakeArc<T>(center, Unit((t1 - center).cross(t2 - center)), x, r, kPi - 2 * phi);
}

template <class T>
ZmPoint3T<T> ZmMathArcT<T>::PointAtParameter(const Arc& arc, T t) {
  if (!IsUsableArc(arc) || !std::isfinite(double(t))) return Point3(WbCoord3DT<T>::INVALID);
  const V3 x(arc.startDirection), y = V3(arc.normal).cross(x);
  const double angle = double(t) * double(arc.sweep), r = double(arc.radius);
  return Point3(P3(arc.center) + x * (r * std::cos(angle)) + y * (r * std::sin(angle)));
}

template <class T>
ZmVector3T<T> ZmMathArcT<T>::TangentAtParameter(const Arc& arc, T t) {
  if (!IsUsableArc(arc) || !std::isfinite(double(t))) return Vector3(WbCoord3DT<T>::INVALID);
  const V3 x(arc.startDirection), y = V3(arc.normal).cross(x);
  const double angle = double(t) * double(arc.sweep);
  return Vector3(y * std::cos(angle) - x * std::sin(angle));
}

template <class T>
T ZmMathArcT<T>::ArcLength(const Arc& arc) {
  return IsUsableArc(arc) ? T(double(arc.radius) * double(arc.sweep)) : zm::Invalid<T>();
}

template <class T>
ZmArcStatus ZmMathArcT<T>::TessellateArc(const Arc& arc, T chordTolerance, T maxAngle, WbArrayTempl<Point3>& points) {
  points.RemoveAll();
  if (!IsUsableArc(arc)) return ZmArcBadInput;
  const double r = double(arc.radius), sweep = double(arc.sweep), tol = double(chordTolerance),
               most = double(maxAngle);
  double step = kPi;
  if (HasLimit(tol)) step = std::min(step, 2 * std::acos(std::max(-1.0, 1 - tol / r)));
  if (HasLimit(most)) step = std::min(step, most);
  const auto passes = [&](long n) {
    const double d = sweep / double(n);
    return d <= kPi && (!HasLimit(tol) || r * (1 - std::cos(d / 2)) <= tol) && (!HasLimit(most) || d <= most);
  };
  const double guess = std::ceil(sweep / step);
  const long n = FewestChords(guess < double(kMaxChords) ? long(guess) : kMaxChords, passes);
  if (n < 0) return ZmArcBadInput;
  points.SetSize(std::uint64_t(n) + 1);
  for (long i = 0; i <= n; ++i) points[std::uint64_t(i)] = PointAtParameter(arc, T(double(i) / double(n)));
  return ZmArcOk;
}

template <class T>
ZmArcStatus ZmMathArcT<T>::TessellateEllipse(const ZmEllipseT<T>& ellipse, T t0, T t1, T chordTolerance, T maxAngle,
                                             WbArrayTempl<Point3>& points) {
  points.RemoveAll();
  const P3 c(ellipse.center);
  const V3 u(ellipse.majorAxis), n(ellipse.normal);
  const double a = double(ellipse.a), b = double(ellipse.b), from = double(t0), to = double(t1);
  const double axisTol = 1e-6;
  if (!AllUsable({c, P3(u), P3(n)}) || !(b > 0) || !(a >= b) || !std::isfinite(a) || !std::isfinite(from) ||
      !std::isfinite(to) || std::fabs(u.length() - 1) > axisTol || std::fabs(n.length() - 1) > axisTol ||
      std::fabs(u.dot(n)) > axisTol || from == to) {
    return ZmArcBadInput;
  }
  const V3 v = n.cross(u);
  const auto at = [&](double t) { return c + u * (a * std::cos(t)) + v * (b * std::sin(t)); };
  const auto tangent = [&](double t) { return u * (-a * std::sin(t)) + v * (b * std::cos(t)); };
  const double tol = double(chordTolerance), most = double(maxAngle);
  const auto passes = [&](long count) {
    const double dt = (to - from) / double(count);
    if (std::fabs(dt) > kPi) return false;
    for (long i = 0; i < count; ++i) {
      const double ta = from + dt * double(i), tb = ta + dt;
      const V3 chord = at(tb) - at(ta);
      const double deviation = chord.cross(at(ta + dt / 2) - at(ta)).length() / chord.length();
      if (HasLimit(tol) && !(deviation <= tol)) return false;
      const V3 ga = tangent(ta), gb = tangent(tb);
      if (HasLimit(most) && !(std::atan2(ga.cross(gb).length(), ga.dot(gb)) <= most)) return false;
    }
    return true;
  };
  const long count = FewestChords(1, passes);
  if (count < 0) return ZmArcBadInput;
  points.SetSize(std::uint64_t(count) + 1);
  for (long i = 0; i <= count; ++i) {
    points[std::uint64_t(i)] = Point3(at(from + (to - from) * (double(i) / double(count))));
  }
  return ZmArcOk;
}

template class ZmMathArcT<double>;
template class ZmMathArcT<float>;
