// A short tour of zemcalc: points and vectors, tolerances, angles, complex numbers, planes,
// and the crash-test filters on a synthetic 10 kHz pulse.
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <cstdio>

namespace {
void Print(const wchar_t* label, const WbString& text) { std::printf("%-34ls %ls\n", label, text.GetString()); }

// A 10 kHz crash pulse: 80 ms of half-sine deceleration (peak -40 g) with a little
// deterministic high-frequency noise, filtered by the three channel frequency classes.
void FilterCrashPulse() {
  WbArrayTempl<ZmPoint2d> pulse;
  for (int i = 0; i < 1200; ++i) {
    const double t = i * 1.0e-4;  // seconds
    const double deceleration = t < 0.08 ? -40.0 * std::sin(3.141592653589793 * t / 0.08) : 0.0;
    pulse.Add(ZmPoint2d(t, deceleration + 3.0 * std::sin(2.0 * 3.141592653589793 * 1730.0 * t)));
  }
  ZmFilterCFC60_10kHzd cfc60(ZmUnitSecond);
  ZmFilterCFC180_10kHzd cfc180(ZmUnitSecond);
  ZmFilterCFC600_10kHzd cfc600(ZmUnitSecond);
  ZmFilterd* filters[] = {&cfc60, &cfc180, &cfc600};
  const wchar_t* names[] = {L"CFC 60", L"CFC 180", L"CFC 600"};
  std::printf("%-34s %10s %10s %10s\n", "crash pulse (g) at t =", "10 ms", "40 ms", "70 ms");
  std::printf("%-34s %10.3f %10.3f %10.3f\n", "raw", pulse[100].y, pulse[400].y, pulse[700].y);
  for (int f = 0; f < 3; ++f) {
    WbArrayTempl<ZmPoint2d> filtered;
    if (const WbErrObj* error = filters[f]->Compute(pulse, filtered)) {
      std::printf("%ls: %ls\n", names[f], error->GetMessage());
      continue;
    }
    std::printf("%-34ls %10.3f %10.3f %10.3f\n", names[f], filtered[100].y, filtered[400].y, filtered[700].y);
  }
  // A curve sampled at 1 kHz is refused: the kernels are designed for 10 kHz.
  WbArrayTempl<ZmPoint2d> slow;
  for (int i = 0; i < 100; ++i) slow.Add(ZmPoint2d(i * 1.0e-3, 0.0));
  WbArrayTempl<ZmPoint2d> out;
  Print(L"CFC 60 on a 1 kHz curve", WbString(cfc60.Compute(slow, out)->GetMessage()));
}
}  // namespace

int main() {
  // Points and vectors: a point minus a point is a vector, a point plus a vector a point.
  const ZmPoint3d a(1.0, 2.0, 2.0);
  const ZmPoint3d b(4.0, 6.0, 2.0);
  const ZmVector3d ab = b - a;
  Print(L"b - a", ab.GetString(L"%.3f", L", "));
  Print(L"|b - a|", WbString::Formatted(L"%g", ab.length()));
  Print(L"(a + b) / 2", ZmPoint3d::ComputeCenter(a, b).GetString(L"%g", L", "));

  // Coordinates: cylindrical (r, theta, z) and spherical (rho, theta, phi), degrees.
  Print(L"cylindrical (-1, 0, 5)", ZmPoint3d(-1.0, 0.0, 5.0).GetCylindricalCoordinates().GetString(L"%g", L", "));
  Print(L"spherical (0, 0, -3)", ZmPoint3d(0.0, 0.0, -3.0).GetSphericalCoordinates().GetString(L"%g", L", "));

  // Predicates with tolerances; the invalid marker for "no value".
  double angle = 0.0;
  const unsigned char parallel = ZmVector3d(1, 0, 0).IsParallelTo(ZmVector3d(-1, 0.01, 0), 1.0, &angle);
  Print(L"(1,0,0) parallel to (-1,0.01,0)?", WbString::Formatted(L"%d (off by %.4f deg)", parallel, angle));
  Print(L"IsEqual(1.0, 1.1, 0.1)", WbString::Formatted(L"%d", ZmMathd::IsEqual(1.0, 1.1, 0.1)));
  Print(L"polyline length of nothing", WbString::Formatted(L"%g", ZmPoint3d::ComputePolylineLength({})));

  // Direction grid: cells of 7 degrees on the unit sphere.
  const int cell = ZmVector3d(1, 1, 1).GetNormalIndex(7.0);
  Print(L"grid cell of (1, 1, 1)", WbString::Formatted(L"%d of %d", cell, ZmVector3d::GetIndexedNormalsCount(7.0)));

  // Angles carry their unit; complex numbers multiply with ^.
  const ZmRadiand halfTurn(ZmDegreed(180.0));
  Print(L"180 deg in rad", WbString::Formatted(L"%.17g", double(halfTurn)));
  const ZmComplexNumberd i(0.0, 1.0);
  const ZmComplexNumberd square = i ^ i;
  Print(L"i ^ i", WbString::Formatted(L"(%g, %g)", square.Real(), square.Imag()));

  // Planes: through three points, projection and distance.
  unsigned char ok = 0;
  const ZmPlaned plane(ZmPoint3d(0, 0, 1), ZmPoint3d(1, 0, 1), ZmPoint3d(0, 1, 1), ok);
  Print(L"plane", plane.GetString(L"%g", L", "));
  Print(L"distance of (3, 4, 6) to it", WbString::Formatted(L"%g", ZmPoint3d(3, 4, 6).DistanceToPlane(plane)));

  FilterCrashPulse();
  return 0;
}
