// Conversions between the precision twins, for every pair of classes that converts: direct
// construction, copy-initialisation and assignment must all compile (unambiguously) and give
// each component converted on its own, double -> float rounding to nearest, float -> double
// exact. Expected components are rounded through a volatile float, which no optimiser folds.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <string>
#include <tuple>
#include <typeinfo>
#include <vector>

namespace {

using Parts = std::vector<double>;

template <class T>
Parts PartsOf(const WbCoord2DT<T>& c) {
  return {c.x, c.y};
}
template <class T>
Parts PartsOf(const WbCoord3DT<T>& c) {
  return {c.x, c.y, c.z};
}
template <class D, class T, int N>
Parts PartsOf(const ZmMatrixOps<D, T, N>& m) {
  Parts out;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) out.push_back(m[i][j]);
  }
  return out;
}
template <class T>
Parts PartsOf(const ZmQuaternionT<T>& q) {
  return {q.w, q.x, q.y, q.z};
}
template <class T, zm::AngleUnit U>
Parts PartsOf(const ZmAngleT<T, U>& a) {
  return {double(T(a))};
}
template <class T>
Parts PartsOf(const ZmComplexNumberT<T>& c) {
  return {c.Real(), c.Imag()};
}
template <class P>
Parts PartsOf(const ZmExtentsOps<P>& e) {
  Parts out = PartsOf(e.GetMinimum());
  for (double v : PartsOf(e.GetMaximum())) out.push_back(v);
  return out;
}
template <class T>
Parts PartsOf(const ZmPlaneT<T>& p) {
  T low = 0, high = 0;
  p.GetLimitBand(low, high);
  Parts out;
  for (const Parts& part : {PartsOf(p.GetPointOnPlane()), PartsOf(p.GetNormal()), PartsOf(p.GetXAxisPoint())}) {
    out.insert(out.end(), part.begin(), part.end());
  }
  out.push_back(low);
  out.push_back(high);
  return out;
}
template <class T>
Parts PartsOf(const ZmFrameT<T>& f) {
  Parts out = PartsOf(f.GetOrigin());
  for (double v : PartsOf(f.GetMatrix())) out.push_back(v);
  out.push_back(f.GetType());
  return out;
}

template <class C>
struct ScalarOf {
  using type = typename C::Scalar;
};
template <class T, zm::AngleUnit U>
struct ScalarOf<ZmAngleT<T, U>> {
  using type = T;
};
template <class T>
struct ScalarOf<ZmComplexNumberT<T>> {
  using type = T;
};

double Rounded(double v, float) {
  volatile float f = static_cast<float>(v);
  return f;
}
double Rounded(double v, double) { return v; }

// What Dst must hold when built from src: every component converted on its own; a 3D class
// built from a 2D one gets z = 0, a 2D class built from a 3D one drops z.
template <class Dst, class Src>
Parts Expected(const Src& src) {
  Parts want = PartsOf(src);
  want.resize(PartsOf(Dst()).size(), 0.0);
  for (double& v : want) v = Rounded(v, typename ScalarOf<Dst>::type());
  return want;
}

template <class Dst, class Src>
void CheckPair(const Src& src) {
  const std::string pair = std::string(typeid(Src).name()) + " -> " + typeid(Dst).name();
  const Parts want = Expected<Dst>(src);
  const Dst constructed(src);
  const Dst copied = src;
  Dst assigned;
  assigned = src;
  EXPECT_EQ(PartsOf(constructed), want) << pair;
  EXPECT_EQ(PartsOf(copied), want) << pair;
  EXPECT_EQ(PartsOf(assigned), want) << pair;
}

// Components that no float holds exactly (0.1, 1/3 ...), with the sign and exponent varied.
constexpr double kA = 0.1, kB = -1.0 / 3.0, kC = 12345.678901234567;

TEST(TwinConversions, EveryPointVectorAndBaseCoordinatePair) {
  const auto sources = std::make_tuple(
      ZmPoint3d(kA, kB, kC), ZmPoint3f(kB, kC, kA), ZmVector3d(kC, kA, kB), ZmVector3f(kA, kC, kB),
      WbCoord3Dd(kB, kA, kC), WbCoord3Df(float(kC), float(kB), float(kA)), ZmPoint2d(kA, kB), ZmPoint2f(kB, kC),
      ZmVector2d(kC, kA), ZmVector2f(kA, kC), WbCoord2Dd(kB, kC), WbCoord2Df(float(kC), float(kA)));
  std::apply(
      [](const auto&... src) {
        ((CheckPair<ZmPoint3d>(src), CheckPair<ZmPoint3f>(src), CheckPair<ZmVector3d>(src),
          CheckPair<ZmVector3f>(src), CheckPair<ZmPoint2d>(src), CheckPair<ZmPoint2f>(src),
          CheckPair<ZmVector2d>(src), CheckPair<ZmVector2f>(src)),
         ...);
      },
      sources);
}

template <class D, class F>
void CheckBothWays(const D& d, const F& f) {
  CheckPair<F>(d);
  CheckPair<D>(f);
  CheckPair<D>(d);
  CheckPair<F>(f);
}

TEST(TwinConversions, EveryOtherFamily) {
  const ZmMatrix3d m3(kA, kB, kC, -kA, -kB, -kC, 2 * kA, 2 * kB, 2 * kC);
  CheckBothWays(m3, ZmMatrix3f(m3));
  const double c4[4][4] = {{kA, kB, kC, 1}, {kB, kC, kA, 2}, {kC, kA, kB, 3}, {0, 0, 0, 1}};
  CheckBothWays(ZmMatrix4d(c4), ZmMatrix4f(ZmMatrix4d(c4)));
  CheckBothWays(ZmQuaterniond(kA, kB, kC, -kA), ZmQuaternionf(kC, kA, kB, 1));
  CheckBothWays(ZmComplexNumberd(kA, kB), ZmComplexNumberf(kC, kA));
  CheckBothWays(ZmDegreed(kA), ZmDegreef(kC));
  CheckBothWays(ZmRadiand(kB), ZmRadianf(kA));
  CheckBothWays(ZmExtents3d(ZmPoint3d(kA, kB, kC), ZmPoint3d(kC, kA, kB)), ZmExtents3f());
  CheckBothWays(ZmExtents2d(ZmPoint2d(kA, kB), ZmPoint2d(kC, kA)), ZmExtents2f(ZmPoint2f(kB, kC), ZmPoint2f(kA, kA)));

  unsigned char ok = 0;
  ZmPlaned plane(ZmPoint3d(kA, kB, kC), ZmVector3d(1, 2, 3), ok);  // normal 1/sqrt(14) (1, 2, 3)
  plane.SetXAxisPoint(ZmPoint3d(kC, kB, kA));
  plane.SetLimitBand(kB, kA);
  CheckBothWays(plane, ZmPlanef(ZmPoint3f(kB, kA, kC), ZmVector3f(0, 0, 1), ok));  // no X point, no band

  const ZmFramed frame(ZmPoint3d(kA, kB, kC), ZmPoint3d(kC, kA, kB), ZmPoint3d(kB, kC, kA), 1, ZmFrameSpherical);
  CheckBothWays(frame, ZmFramef(ZmPoint3f(kB, kA, kC), ZmVector3f(1, 1, 1), ZmFrameCylindrical));
}

// Mixed-precision arithmetic: the left operand's class, each component computed in the wider
// type and rounded once.
TEST(TwinConversions, MixedArithmeticRoundsOnceToTheLeftClass) {
  const ZmPoint3f pf(kA, kB, kC);
  const ZmVector3d vd(kB, kC, kA);
  struct Row {
    const char* what;
    ZmPoint3f got;
    double wx, wy, wz;
  } rows[] = {
      {"pf + vd", pf + vd, double(pf.x) + vd.x, double(pf.y) + vd.y, double(pf.z) + vd.z},
      {"pf - vd", pf - vd, double(pf.x) - vd.x, double(pf.y) - vd.y, double(pf.z) - vd.z},
      {"pf * kA", pf * kA, pf.x * kA, pf.y * kA, pf.z * kA},
      {"kC / pf", kC / pf, kC / pf.x, kC / pf.y, kC / pf.z},
      {"pf += 2D", ZmPoint3f(pf) += ZmVector2d(kB, kC), double(pf.x) + kB, double(pf.y) + kC, pf.z},
  };
  for (const Row& r : rows) {
    EXPECT_EQ(PartsOf(r.got), (Parts{Rounded(r.wx, 0.f), Rounded(r.wy, 0.f), Rounded(r.wz, 0.f)})) << r.what;
  }
}

}  // namespace
