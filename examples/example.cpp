// A short tour of zemcalc: points and vectors, tolerances, angles, complex numbers, planes.
#include <zemcalc/zemcalc.h>

#include <cstdio>

namespace {
void Print(const wchar_t* label, const WbString& text) { std::printf("%-34ls %ls\n", label, text.GetString()); }
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
  return 0;
}
