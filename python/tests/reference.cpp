// Feeds the inputs that the Python suite writes on standard input through the library and writes
// its results, which the suite compares bit for bit with the module's on the same inputs. Both ways
// one record per array, "<name> <rows> <cols>" then a line of C99 hexadecimal floats; results are
// named "<name>/<d|f>" by twin, and a string is one line "text <name>/<d|f> <text>".
#include <zemcalc/zemcalc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

namespace {

std::map<std::string, std::vector<double>> inputs;

template <class T>
std::string Named(const std::string& name) {
  return name + (sizeof(T) == 4 ? "/f" : "/d");
}
template <class T>
void Put(const std::string& name, const T* v, std::size_t rows, std::size_t cols) {
  std::printf("%s %zu %zu\n", Named<T>(name).c_str(), rows, cols);
  for (std::size_t i = 0; i < rows * cols; ++i) std::printf("%a ", static_cast<double>(v[i]));
  std::printf("\n");
}
template <class P>
void PutCurve(const std::string& name, const WbArrayTempl<P>& c) {
  using T = decltype(P::x);  // a point is its coordinates in a row: its address is its x's
  Put(name, reinterpret_cast<const T*>(c.GetData()), c.GetSize(), sizeof(P) / sizeof(T));
}

// Puts the scalars and the coordinates of points and vectors given as one row.
template <class T, class... F>
void Row(const std::string& name, const F&... fields) {
  std::vector<T> row;
  const auto add = [&](const auto& f) {
    if constexpr (std::is_arithmetic_v<std::decay_t<decltype(f)>>)
      row.push_back(T(f));
    else
      for (const T* v = &f.x; v < &f.x + sizeof(f) / sizeof(T); ++v) row.push_back(*v);
  };
  (add(fields), ...);
  Put(name, row.data(), 1, row.size());
}

// The input of that name rounded to the twin: its values, or the points or vectors P they make.
template <class T>
std::vector<T> Values(const std::string& name) {
  const auto found = inputs.find(name);
  if (found == inputs.end()) {
    std::fprintf(stderr, "No input named %s on standard input (python/tests/conftest.py writes them).\n", name.c_str());
    std::exit(2);
  }
  return std::vector<T>(found->second.begin(), found->second.end());
}
template <class P>
WbArrayTempl<P> In(const std::string& name) {
  const auto v = Values<std::decay_t<decltype(P::x)>>(name);
  WbArrayTempl<P> out;
  out.SetSize(v.size() * sizeof(v[0]) / sizeof(P));
  std::copy(v.begin(), v.end(), &out.GetData()->x);  // the coordinates of each one in a row, as Put reads them
  return out;
}

// The named class of twin T of a family.
#define TWIN(family) std::conditional_t<sizeof(T) == 4, family##f, family##d>

template <class T>
void Run() {
  using P2 = ZmPoint2T<T>;
  using Curve = WbArrayTempl<P2>;
  using M = ZmMathT<T>;
  using P3 = ZmPoint3T<T>;
  using V3 = ZmVector3T<T>;
  const Curve pulse = In<P2>("pulse");
  const auto filter = [&](const char* name, ZmFilterT<T>&& f) {
    Curve out;
    f.Compute(pulse, out);
    PutCurve(name, out);
  };
  filter("ZmFilterCFC60_10kHz", TWIN(ZmFilterCFC60_10kHz)());
  filter("ZmFilterCFC180_10kHz", TWIN(ZmFilterCFC180_10kHz)());
  filter("ZmFilterCFC600_10kHz", TWIN(ZmFilterCFC600_10kHz)());
  filter("ZmFilterFIRF16", TWIN(ZmFilterFIRF16)());
  filter("mva7", TWIN(ZmFilterMVA)(7, 2));
  filter("weighted5", TWIN(ZmFilterMVAWeighted)(5, WbArrayTempl<T>{1, 2}, 1));
  filter("cos9", TWIN(ZmFilterCos)(9));
  filter("swa", TWIN(ZmFilterSWA)(2.5e-4, 0.75));
  // The CFC filter at any rate: the pulse in ms, every end treatment, the ISO constant, a set pad.
  for (int ends = 0; ends < 4; ++ends) {
    Curve out;
    TWIN(ZmFilterCFC) cfc(180.0, ZmUnitMillisecond, static_cast<ZmFilterEnds>(ends), ZmCFCDesignISO6487);
    if (ends == 1) cfc.SetPadLength(40);
    cfc.Compute(In<P2>("pulse_ms"), out);
    PutCurve("cfc180_" + std::to_string(ends), out);
  }
  ZmCFCCoefficients c{};
  TWIN(ZmFilterCFC)(1000.0).ComputeCoefficients(5e-5, c);
  if (sizeof(T) == 8) Row<double>("cfc1000_coefficients", c.a0, c.a1, c.a2, c.b1, c.b2);  // double in both twins

  // Injury criteria of the pulse read in g (HIC36 and the 3 ms clip), and of its resultant.
  Curve res, spectrum, phase, corr, sampled, env;
  M::ComputeResultant(pulse, In<P2>("lateral"), pulse, res);
  PutCurve("resultant", res);
  T injury[4] = {};
  M::ComputeHIC(res, 0.036, ZmUnitSystem(), 1, injury[0], injury[1], injury[2]);
  M::ComputeClipLevel(res, 0.003, ZmUnitSystem(), 1, injury[3]);
  Put("injury", injury, 1, 4);

  const int window[2] = {100, 1800};
  M::ComputeFFT(pulse, window, M::FFT_WINDOW_HANN, 2048, spectrum, 0, &phase);
  PutCurve("fft", spectrum);
  PutCurve("phase", phase);
  M::ComputeCorrelation(In<P2>("head"), In<P2>("shifted"), 1, corr);
  PutCurve("correlation", corr);
  ZmPoint2T<T>::SampleX(pulse.GetData(), pulse.GetSize(), T(3.3e-4), sampled, T(0.01));
  PutCurve("sampled", sampled);
  ZmPoint2T<T>::EvaluateEnvelop(pulse, 1, env, T(5e-3));
  PutCurve("envelope", env);

  // Transmissibility of the pulse through a delayed, damped copy of itself.
  Curve result, phaseDiff;
  WbObjectArrayTempl<Curve> curves;
  WbObjectArrayTempl<WbString> titles;
  M::ComputeTransmissibility(pulse, In<P2>("trans_output"), T(0.01), zm::Invalid<T>(), T(2e-4), T(10), 1, T(2000),
                             zm::Invalid<T>(), T(5), 0, result, &curves, &titles, &phaseDiff);
  PutCurve("transmissibility", result);
  PutCurve("transmissibility_phase", phaseDiff);
  for (std::uint64_t i = 0; i < titles.GetSize(); ++i) {
    std::string text;
    for (wchar_t ch : titles[i]->Std()) text += static_cast<char>(ch < 128 ? ch : '?');
    std::printf("text %s %s\n", Named<T>("title" + std::to_string(i)).c_str(), text.c_str());
    PutCurve("step" + std::to_string(i), *curves[i]);
  }

  // Principal values and directions of tensors, and the mode of their in-plane strains.
  const std::vector<T> tensors = Values<T>("tensors");
  const std::size_t n = tensors.size() / 6;
  std::vector<T> values(3 * n), mode(n);
  std::vector<ZmVector3T<T>> directions(3 * n);
  for (std::size_t i = 0; i < n; ++i) {
    const T* t = &tensors[6 * i];
    T* v = &values[3 * i];
    M::Tensor3DToVectors3D(t[0], t[1], t[2], t[3], t[4], t[5], v, v + 1, v + 2, &directions[3 * i],
                           &directions[3 * i + 1], &directions[3 * i + 2]);
    mode[i] = M::StrainTensor2DToMode(t[0] / 200, t[1] / 200, t[3] / 200, nullptr);
  }
  Put("values", values.data(), n, 3);
  Put("directions", &directions[0].x, n, 9);
  Put("mode", mode.data(), n, 1);

  // Units: pressures from Pa (m, Kg, s) into MPa (mm, T, s).
  const ZmUnitSystem si(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree);
  const ZmUnitSystem mm(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree);
  ZmUnitConverter converter;
  unsigned char needed = 0;
  converter.InitFromTo(si, mm, needed, &ZmUnitDimPressure);
  std::vector<T> pressures = Values<T>("pressures");
  for (T& p : pressures) converter.ConvertScalar(ZmUnitDimPressure, p);
  Put("pressures_mpa", pressures.data(), pressures.size(), 1);
  T parsed = 0;
  mm.String2DimensionalValue(L" 2.1e5 Pa", ZmUnitDimPressure, parsed);
  Put("parsed", &parsed, 1, 1);

  // Material laws: the Hollomon fit of a measured hardening curve, and two law curves.
  const Curve measured = In<P2>("measured");
  Curve keeler, kinematic;
  T K = 0, nh = 0;
  M::ComputeHollomonCoeff(measured.GetData(), measured.GetSize(), K, nh);
  Row<T>("hollomon", K, nh);
  M::ComputeKeelerCurvePoints(keeler, T(1.2), T(0.18));
  PutCurve("keeler", keeler);
  M::ComputeKinematicCurvePoints(kinematic, T(210), T(12.5), T(180), T(350));
  PutCurve("kinematic", kinematic);

  // Geometry: points projected onto a polyline, and into a cylindrical frame of three points.
  const auto points = In<P3>("points"), polyline = In<P3>("polyline");
  WbArrayTempl<P3> feet, local;
  std::vector<T> params(points.GetSize());
  const auto frame = [](auto type) {  // of the same three points, made in double
    return ZmFrameT<T>(
        ZmFrameT<double>(ZmPoint3T<double>(1, 2, 3), ZmPoint3T<double>(4, 6, 3), ZmPoint3T<double>(0, 5, 9), 1, type));
  };
  for (std::uint64_t i = 0; i < points.GetSize(); ++i) {
    P3 foot;
    M::GetProjectedPoint(polyline, points[i], params[i], foot);
    feet.Add(foot);
    local.Add(frame(ZmFrameCylindrical).GlobalToLocal(points[i]));
  }
  PutCurve("feet", feet);
  Put("params", params.data(), params.size(), 1);
  PutCurve("local", local);

  // Element metrics and time steps over a small mixed mesh made of the first points.
  const ZmElementType types[] = {ZmElementTri3, ZmElementQuad4, ZmElementTet4, ZmElementHex8, ZmElementWedge6};
  std::int64_t connectivity[26];
  for (int i = 0; i < 26; ++i) connectivity[i] = i;
  T metrics[2][5];
  ZmMeshT<T>::ComputeMeshMetric(ZmMetricScaledJacobian, points.GetData(), 30, types, connectivity, 5, metrics[0]);
  ZmMeshT<T>::ComputeMeshTimeStep(ZmMetricCharacteristicLength, points.GetData(), 30, types, connectivity, 5, T(210000),
                                  T(0.3), T(7.85e-9), metrics[1]);
  Put("scaled_jacobian", metrics[0], 5, 1);
  Put("time_step", metrics[1], 5, 1);

  // Fits: the plane of the points, a noisy arc of a circle (geometric), a noisy quarter turn;
  // lines, spheres, cylinders and ellipses.
  const auto arc = In<P2>("arc");
  const auto plane = ZmMathFitT<T>::FitPlane(points);
  const auto circle = ZmMathFitT<T>::FitCircle(arc);
  const auto rigid = ZmMathFitT<T>::FitRigid(points, In<P3>("turned"));
  Row<T>("fit_plane", plane.point, plane.normal, plane.fitQuality, plane.quality.rms, plane.quality.maxResidual);
  Row<T>("fit_circle", circle.center, circle.radius, circle.quality.rms, circle.quality.maxResidual);
  Row<T>("fit_rigid", rigid.rotation.GetRow(0), rigid.rotation.GetRow(1), rigid.rotation.GetRow(2), rigid.translation);
  const auto l3 = M::FitLine(points);
  const auto l2 = M::FitLine(arc);
  const auto sp = M::FitSphere(In<P3>("sphere"));
  const auto cy = M::FitCylinder(In<P3>("cylinder"));
  const auto el = M::FitEllipse(In<P2>("oval"));
  Row<T>("fit_line3", l3.point, l3.direction, l3.fitQuality, l3.quality.rms, l3.quality.maxResidual);
  Row<T>("fit_line2", l2.point, l2.direction, l2.fitQuality, l2.quality.rms, l2.quality.maxResidual);
  Row<T>("fit_sphere", sp.center, sp.radius, sp.quality.rms, sp.quality.maxResidual);
  Row<T>("fit_cylinder", cy.point, cy.direction, cy.radius, cy.quality.rms, cy.quality.maxResidual);
  Row<T>("fit_ellipse", el.center, el.majorAxis, el.a, el.b, el.quality.rms, el.quality.maxResidual);

  // Arcs: each with a point and a tangent at t = 0.3; the first tessellated, and an ellipse.
  const ZmArcT<T> arcs[] = {M::ArcThroughPoints(points[0], points[1], points[2]),
                            M::ArcThroughPoints(arc[0], arc[20], arc[39]),
                            M::ArcFromCenter(points[3], points[4], points[5], V3(1, 2, 3)),
                            M::ArcFromTangent(points[6], V3(points[7]), points[8]),
                            M::Fillet(P3(1, 2, 3), V3(4, 1, 0), P3(1, 2, 3), V3(-1, 3, 0.5), T(0.7))};
  for (int i = 0; i < 5; ++i)
    Row<T>("arc" + std::to_string(i), arcs[i].center, arcs[i].normal, arcs[i].startDirection, arcs[i].radius,
           arcs[i].sweep, M::ArcLength(arcs[i]), M::PointAtParameter(arcs[i], T(0.3)),
           M::TangentAtParameter(arcs[i], T(0.3)));
  WbArrayTempl<P3> tessellated, grid;
  M::TessellateArc(arcs[0], T(2.5), T(0.2), tessellated);
  PutCurve("arc_tessellated", tessellated);
  ZmEllipseT<T> ellipse;
  ellipse = {P3(1, 2, 3), V3(0.6, 0.8, 0), V3(0, 0, 1), T(5), T(2)};
  M::TessellateEllipse(ellipse, T(-1), T(4), T(0.01), T(0.3), tessellated);
  PutCurve("ellipse_tessellated", tessellated);

  // Grids over a rectangle of a frame, a tilted square with a hole, a range; polygon frames.
  const auto square = In<P3>("square"), penNodes = In<P3>("pen_nodes");
  M::RectangleGrid(frame(ZmFrameCartesian), T(10), T(7), T(1), T(0.7), grid);
  PutCurve("rectangle_grid", grid);
  WbArrayTempl<WbArrayTempl<P3>> holes;
  holes.Add(In<P3>("hole"));
  M::PolygonGrid(square, &holes, P3(0.3, 0.2, 0), T(0.9), grid);
  PutCurve("polygon_grid", grid);
  WbArrayTempl<T> range;
  M::RangeGrid(T(0), T(1), T(0.3), range);
  Put("range_grid", range.GetData(), 1, range.GetSize());
  const auto props = M::PolygonProperties(square);
  ZmFrameT<T> polygonFrame;
  M::PolygonFrame(square, ZmPolygonAxisMidLines, polygonFrame);
  Row<T>("polygon", props.centroid, props.vertexAverage, props.normal, props.area, props.outOfPlaneRms, props.convex,
         M::SignedArea(arc), M::SignedArea(square, V3(1, 1, -3)), polygonFrame.GetOrigin(), polygonFrame.GetVector(0),
         polygonFrame.GetVector(1), polygonFrame.GetVector(2));

  // Penetrations of noisy nodes into a quad and a triangle (thicknesses 0.5 and 0.6).
  const ZmElementType segments[] = {ZmElementQuad4, ZmElementTri3};
  const std::vector<T> nodeThickness(penNodes.GetSize(), T(0.5)), segmentThickness(2, T(0.6));
  WbArrayTempl<ZmPenetrationT<T>> found;
  ZmMeshT<T>::FindPenetrations(penNodes.GetData(), penNodes.GetSize(), nullptr, 0, nodeThickness.data(), segments,
                               connectivity, 2, segmentThickness.data(), found);
  std::vector<T> rows;
  for (const auto& p : found)
    for (T v : {T(p.node), T(p.segment), p.depth, p.distance, p.closest.x, p.closest.y, p.closest.z, p.natural.x,
                p.natural.y, p.natural.z, p.normal.x, p.normal.y, p.normal.z})
      rows.push_back(v);
  Put("penetrations", rows.data(), found.GetSize(), 13);
}

}  // namespace

int main() {
  char name[64];
  std::size_t rows = 0, cols = 0;
  while (std::scanf("%63s %zu %zu", name, &rows, &cols) == 3) {
    std::vector<double>& v = inputs[name];
    v.resize(rows * cols);
    for (double& x : v)
      if (std::scanf("%la", &x) != 1) return 1;
  }
  Run<double>();
  Run<float>();
  return 0;
}
