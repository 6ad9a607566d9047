// A user's program built with the user's flags (g++ or clang, -O2 or -O3) that converts between
// the precision twins of every family, both ways, by construction, copy-initialisation,
// assignment and a round trip. Each must compile unambiguously and give every component
// converted on its own, double -> float the nearest float, also when widened back and stored
// next to another one (the pattern a vectoriser may fold into no rounding at all). Inputs are
// volatile, so nothing is computed at compile time; expected values round through a volatile.
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace {

using Values = std::vector<double>;
volatile double g_in[] = {0.1, -1.0 / 3.0, 12345.678901234567, 0.7};
const double a = g_in[0], b = g_in[1], c = g_in[2], d = g_in[3];
int g_failures = 0, g_conversions = 0;

Values Join(Values x, const Values& y) { return x.insert(x.end(), y.begin(), y.end()), x; }
// The components of a value type that is exactly its scalars (points, vectors, base
// coordinates, quaternions, angles, complex numbers, extents), in memory order.
template <
    class C,
    std::enable_if_t<!std::is_polymorphic<C>::value && !std::is_same<C, ZmFrameT<typename C::Scalar>>::value, int> = 0>
Values Of(const C& o) {
  using T = typename C::Scalar;
  T parts[sizeof(C) / sizeof(T)];
  std::memcpy(parts, &o, sizeof(C));
  return Values(parts, parts + sizeof(C) / sizeof(T));
}
template <class D, class T, int N>
Values Of(const ZmMatrixOps<D, T, N>& m) {
  Values out;
  for (int i = 0; i < N * N; ++i) out.push_back(m[i / N][i % N]);
  return out;
}
template <class T>
Values Of(const ZmFrameT<T>& f) {
  return Join(Of(f.GetOrigin()), Of(f.GetMatrix()));
}
template <class T>
Values Of(const ZmPlaneT<T>& p) {
  T band[2] = {0, 0};
  p.GetLimitBand(band[0], band[1]);
  return Join(Join(Join(Of(p.GetPointOnPlane()), Of(p.GetNormal())), Of(p.GetXAxisPoint())), {band[0], band[1]});
}

template <class T>
Values Rounded(Values v) {
  for (double& x : v) {
    volatile T rounded = T(x);
    x = rounded;
  }
  return v;
}

// Dst from src: each component rounded to Dst's precision; 3D from 2D adds z = 0, 2D from 3D
// drops z. The round trip back to Src is the pattern an optimiser may fold.
template <class Dst, class Src>
void Check(const Src& src) {
  Values want = Of(src);
  want.resize(Of(Dst()).size(), 0.0);
  want = Rounded<typename Dst::Scalar>(want);
  Values wantBack = want;
  wantBack.resize(Of(src).size(), 0.0);
  const Dst built(src), copied = src;
  Dst assigned;
  assigned = src;
  bool ok = Of(built) == want && Of(copied) == want && Of(assigned) == want;
  if constexpr (std::is_constructible<Src, Dst>::value) ok = ok && Of(Src(Dst(src))) == wantBack;
  ++g_conversions;
  if (!ok) std::printf("consumer_bits: %s from %s FAILED\n", typeid(Dst).name(), typeid(Src).name());
  g_failures += ok ? 0 : 1;
}
template <class... Dst, class Src>
void CheckInto(const Src& src) {
  (Check<Dst>(src), ...);
}
template <class D, class F>
void CheckBothWays(const D& dbl, const F& flt) {
  Check<F>(dbl), Check<D>(flt);
}

}  // namespace

int main() {
  const auto coordinates =
      std::make_tuple(ZmPoint3d(a, b, c), ZmPoint3f(b, c, a), ZmVector3d(c, a, d), ZmVector3f(d, c, b),
                      WbCoord3Dd(b, d, c), WbCoord3Df(float(c), float(b), float(a)), ZmPoint2d(a, b), ZmPoint2f(b, c),
                      ZmVector2d(c, d), ZmVector2f(d, c), WbCoord2Dd(b, c), WbCoord2Df(float(c), float(a)));
  std::apply(
      [](const auto&... src) {
        (CheckInto<ZmPoint3d, ZmPoint3f, ZmVector3d, ZmVector3f, ZmPoint2d, ZmPoint2f, ZmVector2d, ZmVector2f>(src),
         ...);
      },
      coordinates);

  unsigned char ok = 0;
  ZmPlaned plane(ZmPoint3d(a, b, c), ZmVector3d(1, 2, 3), ok);
  plane.SetXAxisPoint(ZmPoint3d(c, b, a));
  plane.SetLimitBand(b, a);
  const ZmMatrix3d m3(a, b, c, d, -a, -b, -c, -d, a);
  CheckBothWays(m3, ZmMatrix3f(m3));
  CheckBothWays(ZmMatrix4d(m3, ZmVector3d(a, b, c)), ZmMatrix4f(ZmMatrix3f(m3), ZmVector3f(c, b, a)));
  CheckBothWays(ZmQuaterniond(a, b, c, d), ZmQuaternionf(d, c, b, a));
  CheckBothWays(ZmComplexNumberd(c, b), ZmComplexNumberf(a, d));
  CheckBothWays(ZmDegreed(a), ZmDegreef(c));
  CheckBothWays(ZmRadiand(c), ZmRadianf(b));
  CheckBothWays(plane, ZmPlanef(ZmPoint3f(b, a, c), ZmVector3f(0, 0, 1), ok));  // no X point, no band
  CheckBothWays(ZmExtents3d(ZmPoint3d(a, b, c), ZmPoint3d(c, a, d)), ZmExtents3f());
  CheckBothWays(ZmExtents2d(ZmPoint2d(a, b), ZmPoint2d(c, d)), ZmExtents2f(ZmPoint2f(b, c), ZmPoint2f(a, a)));
  CheckBothWays(ZmFramed(ZmPoint3d(a, b, c), ZmPoint3d(c, a, b), ZmPoint3d(b, c, d), 1, ZmFrameSpherical),
                ZmFramef(ZmPoint3f(b, a, c), ZmVector3f(1, 1, 1), ZmFrameCylindrical));

  // Mixed arithmetic: the left operand's class, computed in the wider type, rounded once; and
  // the lengths of two float vectors side by side: the float sum's root, rounded.
  const ZmPoint3f p(a, b, c);
  const ZmVector3d v(c, d, b);
  const ZmVector3f u(v);
  const Values got = Join(Join(Of(ZmPoint3d(p + v)), Of(ZmPoint3d(c / p))), {u.length(), ZmVector3f(p).length()});
  const Values want = Rounded<float>({p.x + v.x, p.y + v.y, p.z + v.z, c / p.x, c / p.y, c / p.z,
                                      std::sqrt(double(u.x * u.x + u.y * u.y + u.z * u.z)),
                                      std::sqrt(double(p.x * p.x + p.y * p.y + p.z * p.z))});
  if (got != want) std::printf("consumer_bits: mixed arithmetic or lengths FAILED\n");
  g_failures += got == want ? 0 : 1;
  std::printf("consumer_bits: %s (%d conversions)\n", g_failures ? "FAILED" : "ok", g_conversions);
  return g_failures ? 1 : 0;
}
