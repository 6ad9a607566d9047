// A user's program built with the user's flags (g++ or clang, -O2 or -O3): every conversion
// that the headers inline and that rounds to float must give the float nearest to its input,
// also when the result is widened back to double and stored next to another one, the pattern
// that an optimiser's vectoriser may fold into no rounding at all. Inputs come through volatile
// variables so that nothing is computed at compile time, and every expected value is rounded
// through a volatile float.
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

namespace {

using Values = std::vector<double>;

volatile double g_inputs[] = {0.1, 0.2, 0.7, -1.0 / 3.0, 12345.678901234567, 2.0 / 3.0};
double In(int i) { return g_inputs[i % 6]; }

double Rounded(double v) {
  volatile float f = static_cast<float>(v);
  return f;
}
Values Rounded(Values v) {
  for (double& x : v) x = Rounded(x);
  return v;
}

template <class T>
Values Of(const WbCoord3DT<T>& c) {
  return {c.x, c.y, c.z};
}
template <class T>
Values Of(const WbCoord2DT<T>& c) {
  return {c.x, c.y};
}
template <class D, class T, int N>
Values Of(const ZmMatrixOps<D, T, N>& m) {
  Values out;
  for (int i = 0; i < N; ++i) {
    for (int j = 0; j < N; ++j) out.push_back(m[i][j]);
  }
  return out;
}
Values Join(Values a, const Values& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

struct Check {
  const char* what;
  std::function<Values()> got;
  std::function<Values()> want;
};

}  // namespace

int main() {
  const ZmPoint3d p(In(0), In(1), In(2));
  const ZmVector3d v(In(3), In(4), In(5));
  const ZmMatrix3d m(In(0), In(1), In(2), In(3), In(4), In(5), In(2), In(0), In(1));
  const ZmFramed frame(p, ZmPoint3d(In(4), In(3), In(1)), ZmPoint3d(In(5), In(0), In(3)), 2, ZmFrameCartesian);
  unsigned char ok = 0;
  const ZmPlaned plane(p, v, ok);

  const Check checks[] = {
      {"ZmPoint3d(ZmPoint3f)", [&] { return Of(ZmPoint3d(ZmPoint3f(p))); }, [&] { return Rounded(Of(p)); }},
      {"ZmVector3d(ZmVector3f)", [&] { return Of(ZmVector3d(ZmVector3f(v))); }, [&] { return Rounded(Of(v)); }},
      {"ZmPoint2d(ZmPoint2f)", [&] { return Of(ZmPoint2d(ZmPoint2f(ZmPoint2d(p)))); },
       [&] { return Rounded(Values{p.x, p.y}); }},
      {"ZmPoint3f = ZmPoint3d",
       [&] {
         ZmPoint3f pf;
         pf = p;
         return Of(ZmPoint3d(pf));
       },
       [&] { return Rounded(Of(p)); }},
      {"ZmVector3f = ZmPoint3d",
       [&] {
         ZmVector3f vf;
         vf = p;
         return Of(ZmVector3d(vf));
       },
       [&] { return Rounded(Of(p)); }},
      {"ZmPoint3f(double*)", [&] { return Of(ZmPoint3d(ZmPoint3f(&v.x))); }, [&] { return Rounded(Of(v)); }},
      {"ZmPoint3f + ZmVector3d", [&] { return Of(ZmPoint3d(ZmPoint3f(p) + v)); },
       [&] {
         const ZmPoint3f pf(p);
         return Rounded(Values{pf.x + v.x, pf.y + v.y, pf.z + v.z});
       }},
      {"ZmMatrix3d(ZmMatrix3f)", [&] { return Of(ZmMatrix3d(ZmMatrix3f(m))); }, [&] { return Rounded(Of(m)); }},
      {"ZmFramed(ZmFramef)",
       [&] {
         const ZmFramed back(ZmFramef{frame});
         return Join(Of(back.GetOrigin()), Of(back.GetMatrix()));
       },
       [&] { return Rounded(Join(Of(frame.GetOrigin()), Of(frame.GetMatrix()))); }},
      {"ZmPlaned(ZmPlanef)",
       [&] {
         const ZmPlaned back(ZmPlanef{plane});
         return Join(Of(back.GetPointOnPlane()), Of(back.GetNormal()));
       },
       [&] { return Rounded(Join(Of(plane.GetPointOnPlane()), Of(plane.GetNormal()))); }},
      {"ZmQuaterniond(ZmQuaternionf)",
       [&] {
         const ZmQuaterniond q(ZmQuaternionf(ZmQuaterniond(In(0), In(1), In(2), In(3))));
         return Values{q.w, q.x, q.y, q.z};
       },
       [&] { return Rounded(Values{In(0), In(1), In(2), In(3)}); }},
      {"ZmComplexNumberd(ZmComplexNumberf)",
       [&] {
         const ZmComplexNumberd c(ZmComplexNumberf(ZmComplexNumberd(In(4), In(5))));
         return Values{c.Real(), c.Imag()};
       },
       [&] { return Rounded(Values{In(4), In(5)}); }},
      {"ZmDegreed(ZmDegreef), ZmRadiand(ZmRadianf)",
       [&] {
         return Values{double(ZmDegreed(ZmDegreef(ZmDegreed(In(0))))), double(ZmRadiand(ZmRadianf(ZmRadiand(In(1)))))};
       },
       [&] { return Rounded(Values{In(0), In(1)}); }},
      {"ZmExtents3d(ZmExtents3f)",
       [&] {
         const ZmExtents3d back(ZmExtents3f(ZmExtents3d(p, ZmPoint3d(v))));
         return Join(Of(back.GetMinimum()), Of(back.GetMaximum()));
       },
       [&] {
         return Rounded(Values{std::fmin(p.x, v.x), std::fmin(p.y, v.y), std::fmin(p.z, v.z), std::fmax(p.x, v.x),
                               std::fmax(p.y, v.y), std::fmax(p.z, v.z)});
       }},
      {"ZmVector3f::length, two side by side",
       [&] {
         const ZmVector3f a(v), b(p);
         return Values{a.length(), b.length()};
       },
       [&] {
         const ZmVector3f a(v), b(p);
         return Rounded(Values{std::sqrt(double(a.x * a.x + a.y * a.y + a.z * a.z)),
                               std::sqrt(double(b.x * b.x + b.y * b.y + b.z * b.z))});
       }},
  };

  int failures = 0;
  for (const Check& c : checks) {
    const Values got = c.got(), want = c.want();
    if (got.size() != want.size() || std::memcmp(got.data(), want.data(), got.size() * sizeof(double)) != 0) {
      ++failures;
      std::printf("consumer_bits: %s FAILED:", c.what);
      for (std::size_t i = 0; i < got.size() && i < want.size(); ++i) std::printf(" %.17g/%.17g", got[i], want[i]);
      std::printf("\n");
    }
  }
  std::printf("consumer_bits: %s (%zu checks)\n", failures ? "FAILED" : "ok", sizeof(checks) / sizeof(checks[0]));
  return failures ? 1 : 0;
}
