// Writes inputs and the library's own results for the Python suite, which feeds the same inputs
// through the module and compares the bits. One record per array:
//   <name>/<d|f> <rows> <cols>
//   <values as C99 hexadecimal floats>
// and one line "text <name> <utf-8 text>" per string.
#include <cstdio>
#include <cmath>
#include <string>
#include <type_traits>
#include <vector>

#include <zemcalc/zemcalc.h>

namespace {

template <class T>
void Put(const std::string& name, const T* v, std::size_t rows, std::size_t cols) {
  std::printf("%s/%c %zu %zu\n", name.c_str(), sizeof(T) == 4 ? 'f' : 'd', rows, cols);
  for (std::size_t i = 0; i < rows * cols; ++i) std::printf("%a ", static_cast<double>(v[i]));
  std::printf("\n");
}
template <class P>
void PutCurve(const std::string& name, const WbArrayTempl<P>& c) {
  Put(name, &c.GetData()->x, c.GetSize(), sizeof(P) / sizeof(c.GetData()->x));
}
void Text(const std::string& name, const WbString& text) {
  std::string s;
  for (wchar_t c : text.Std()) s += static_cast<char>(c < 128 ? c : '?');
  std::printf("text %s %s\n", name.c_str(), s.c_str());
}

// A deterministic pseudo-random number in [-1, 1).
double Noise(unsigned& state) {
  state = state * 1664525u + 1013904223u;
  return (state >> 8) / double(1 << 23) - 1.0;
}

// The named class of twin T of a family.
#define TWIN(family) std::conditional_t<sizeof(T) == 4, family##f, family##d>

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

// Fits of lines, spheres, cylinders and ellipses, arcs, grids, polygons and penetrations.
template <class T>
void Shapes(const WbArrayTempl<ZmPoint3T<T>>& points, const WbArrayTempl<ZmPoint2T<T>>& arc, unsigned& seed) {
  using M = ZmMathT<T>;
  using P3 = ZmPoint3T<T>;
  using V3 = ZmVector3T<T>;
  WbArrayTempl<P3> sphere, cylinder, tessellated, grid, penNodes;
  WbArrayTempl<ZmPoint2T<T>> oval;
  for (int i = 0; i < 60; ++i) {
    const double a = 0.37 * i, b = 0.05 * i - 1.5, r = 4 + 0.01 * Noise(seed);
    sphere.Add(P3(1 + r * std::cos(a) * std::cos(b), -2 + r * std::sin(a) * std::cos(b), 3 + r * std::sin(b)));
    cylinder.Add(P3(2 + r * std::cos(a), 0.2 * i, -1 + r * std::sin(a)));
    oval.Add(ZmPoint2T<T>(1 + 4 * std::cos(a) - 1.2 * std::sin(a),
                          2 + 3 * std::cos(a) + 1.6 * std::sin(a) + 0.01 * Noise(seed)));
  }
  PutCurve("sphere", sphere);
  PutCurve("cylinder", cylinder);
  PutCurve("oval", oval);
  const auto l3 = M::FitLine(points);
  const auto l2 = M::FitLine(arc);
  const auto sp = M::FitSphere(sphere);
  const auto cy = M::FitCylinder(cylinder);
  const auto el = M::FitEllipse(oval);
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
  M::TessellateArc(arcs[0], T(2.5), T(0.2), tessellated);
  PutCurve("arc_tessellated", tessellated);
  ZmEllipseT<T> ellipse;
  ellipse = {P3(1, 2, 3), V3(0.6, 0.8, 0), V3(0, 0, 1), T(5), T(2)};
  M::TessellateEllipse(ellipse, T(-1), T(4), T(0.01), T(0.3), tessellated);
  PutCurve("ellipse_tessellated", tessellated);

  // Grids over a rectangle of a frame, a tilted square with a hole, a range; polygon frames.
  const ZmFrameT<T> frame(ZmFrameT<double>(ZmPoint3T<double>(1, 2, 3), ZmPoint3T<double>(4, 6, 3),
                                           ZmPoint3T<double>(0, 5, 9), 1, ZmFrameCartesian));
  M::RectangleGrid(frame, T(10), T(7), T(1), T(0.7), grid);
  PutCurve("rectangle_grid", grid);
  WbArrayTempl<P3> square, hole;
  for (int i = 0; i < 4; ++i) {
    square.Add(P3(10 * ((i + 1) / 2 % 2), 10 * (i / 2), 0.1 * i));
    hole.Add(P3(4 + 2 * ((i + 1) / 2 % 2), 4 + 2 * (i / 2), 0));
  }
  WbArrayTempl<WbArrayTempl<P3>> holes;
  holes.Add(hole);
  M::PolygonGrid(square, &holes, P3(0.3, 0.2, 0), T(0.9), grid);
  PutCurve("square", square);
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
  const P3 corners[] = {P3(0, 0, 0), P3(2, 0, 0), P3(2, 2, 0.1), P3(0, 2, 0), P3(3, 0, 0), P3(5, 0, 0), P3(4, 2, 0.2)};
  for (const P3& c : corners) penNodes.Add(c);
  for (int i = 0; i < 40; ++i) penNodes.Add(P3(2.5 + 3 * Noise(seed), 1 + 1.5 * Noise(seed), 0.4 * Noise(seed)));
  const ZmElementType types[] = {ZmElementQuad4, ZmElementTri3};
  const std::int64_t connectivity[] = {0, 1, 2, 3, 4, 5, 6};
  const std::vector<T> nodeThickness(penNodes.GetSize(), T(0.5)), segmentThickness(2, T(0.6));
  WbArrayTempl<ZmPenetrationT<T>> found;
  ZmMeshT<T>::FindPenetrations(penNodes.GetData(), penNodes.GetSize(), nullptr, 0, nodeThickness.data(), types,
                               connectivity, 2, segmentThickness.data(), found);
  PutCurve("pen_nodes", penNodes);
  std::vector<T> rows;
  for (const auto& p : found)
    for (T v : {T(p.node), T(p.segment), p.depth, p.distance, p.closest.x, p.closest.y, p.closest.z, p.natural.x,
                p.natural.y, p.natural.z, p.normal.x, p.normal.y, p.normal.z})
      rows.push_back(v);
  Put("penetrations", rows.data(), found.GetSize(), 13);
}

template <class T>
void Run() {
  using Curve = WbArrayTempl<ZmPoint2T<T>>;
  using M = ZmMathT<T>;
  unsigned seed = 12345;
  // A crash pulse sampled at 10 kHz: a half sine of 80 ms with ringing and noise.
  Curve pulse;
  for (int i = 0; i < 2000; ++i) {
    const double t = i * 1.0e-4;
    const double y = (t < 0.08 ? 400.0 * std::sin(M_PI * t / 0.08) : 0.0) + 30.0 * std::sin(2 * M_PI * 900 * t) + 5.0 * Noise(seed);
    pulse.Add(ZmPoint2T<T>(t, y));
  }
  PutCurve("pulse", pulse);
  const std::pair<const char*, ZmFilterT<T>*> filters[] = {
      {"ZmFilterCFC60_10kHz", new TWIN(ZmFilterCFC60_10kHz)()},
      {"ZmFilterCFC180_10kHz", new TWIN(ZmFilterCFC180_10kHz)()},
      {"ZmFilterCFC600_10kHz", new TWIN(ZmFilterCFC600_10kHz)()},
      {"ZmFilterFIRF16", new TWIN(ZmFilterFIRF16)()},
      {"mva7", new TWIN(ZmFilterMVA)(7, 2)},
      {"weighted5", new TWIN(ZmFilterMVAWeighted)(5, WbArrayTempl<T>{1, 2}, 1)},
      {"cos9", new TWIN(ZmFilterCos)(9)},
      {"swa", new TWIN(ZmFilterSWA)(2.5e-4, 0.75)},
  };
  for (const auto& f : filters) {
    Curve out;
    f.second->Compute(pulse, out);
    PutCurve(f.first, out);
    delete f.second;
  }
  // The CFC filter at any rate: the pulse in ms, every end treatment, the ISO constant, a set pad.
  for (int ends = 0; ends < 4; ++ends) {
    Curve ms(pulse), out;
    for (std::uint64_t i = 0; i < ms.GetSize(); ++i) ms[i].x = T(i * 0.1);
    TWIN(ZmFilterCFC) cfc(180.0, ZmUnitMillisecond, static_cast<ZmFilterEnds>(ends), ZmCFCDesignISO6487);
    if (ends == 1) cfc.SetPadLength(40);
    cfc.Compute(ms, out);
    if (ends == 0) PutCurve("pulse_ms", ms);
    PutCurve("cfc180_" + std::to_string(ends), out);
  }
  ZmCFCCoefficients c{};
  TWIN(ZmFilterCFC)(1000.0).ComputeCoefficients(5e-5, c);
  const double coefficients[5] = {c.a0, c.a1, c.a2, c.b1, c.b2};
  if (sizeof(T) == 8) Put("cfc1000_coefficients", coefficients, 1, 5);  // double in both twins

  // Injury criteria of the pulse read in g (HIC36 and the 3 ms clip), and of its resultant.
  Curve lateral, res;
  for (std::uint64_t i = 0; i < pulse.GetSize(); ++i) lateral.Add(ZmPoint2T<T>(pulse[i].x, T(0.5) * pulse[i].y));
  M::ComputeResultant(pulse, lateral, pulse, res);
  PutCurve("lateral", lateral);
  PutCurve("resultant", res);
  T injury[4] = {};
  M::ComputeHIC(res, 0.036, ZmUnitSystem(), 1, injury[0], injury[1], injury[2]);
  M::ComputeClipLevel(res, 0.003, ZmUnitSystem(), 1, injury[3]);
  Put("injury", injury, 1, 4);

  Curve spectrum, phase, corr, sampled, env;
  const int window[2] = {100, 1800};
  M::ComputeFFT(pulse, window, M::FFT_WINDOW_HANN, 2048, spectrum, 0, &phase);
  PutCurve("fft", spectrum);
  PutCurve("phase", phase);
  Curve head(pulse), shifted;
  head.SetSize(300);
  for (int i = 0; i < 300; ++i) shifted.Add(ZmPoint2T<T>(head[i].x, head[(i + 7) % 300].y));
  M::ComputeCorrelation(head, shifted, 1, corr);
  PutCurve("correlation", corr);
  ZmPoint2T<T>::SampleX(pulse.GetData(), pulse.GetSize(), T(3.3e-4), sampled, T(0.01));
  PutCurve("sampled", sampled);
  ZmPoint2T<T>::EvaluateEnvelop(pulse, 1, env, T(5e-3));
  PutCurve("envelope", env);

  // Transmissibility of the pulse through a delayed, damped copy of itself.
  Curve output, result, phaseDiff;
  for (std::uint64_t i = 0; i < pulse.GetSize(); ++i)
    output.Add(ZmPoint2T<T>(pulse[i].x, 0.6 * pulse[i >= 3 ? i - 3 : 0].y + 2.0));
  WbObjectArrayTempl<Curve> curves;
  WbObjectArrayTempl<WbString> titles;
  PutCurve("trans_output", output);
  M::ComputeTransmissibility(pulse, output, T(0.01), zm::Invalid<T>(), T(2e-4), T(10), 1, T(2000), zm::Invalid<T>(),
                             T(5), 0, result, &curves, &titles, &phaseDiff);
  PutCurve("transmissibility", result);
  PutCurve("transmissibility_phase", phaseDiff);
  for (std::uint64_t i = 0; i < titles.GetSize(); ++i) {
    Text("title" + std::to_string(i) + (sizeof(T) == 4 ? "/f" : "/d"), *titles[i]);
    PutCurve("step" + std::to_string(i), *curves[i]);
  }

  // Tensors, with a repeated eigenvalue and a zero tensor among them.
  const int n = 1000;
  std::vector<T> tensors(6 * n), values(3 * n), dirs(9 * n), mode(n);
  for (int i = 0; i < 6 * n; ++i) tensors[i] = T(100 * Noise(seed));
  for (int k = 0; k < 6; ++k) tensors[k] = k < 3 ? T(5) : T(0);
  for (int k = 6; k < 12; ++k) tensors[k] = T(0);
  for (int i = 0; i < n; ++i) {
    const T* t = &tensors[6 * i];
    ZmVector3T<T> d[3];
    M::Tensor3DToVectors3D(t[0], t[1], t[2], t[3], t[4], t[5], &values[3 * i], &values[3 * i + 1], &values[3 * i + 2],
                           &d[0], &d[1], &d[2]);
    for (int k = 0; k < 3; ++k) {
      dirs[9 * i + 3 * k] = d[k].x;
      dirs[9 * i + 3 * k + 1] = d[k].y;
      dirs[9 * i + 3 * k + 2] = d[k].z;
    }
    mode[i] = M::StrainTensor2DToMode(t[0] / 200, t[1] / 200, t[3] / 200, nullptr);
  }
  Put("tensors", tensors.data(), n, 6);
  Put("values", values.data(), n, 3);
  Put("directions", dirs.data(), n, 9);
  Put("mode", mode.data(), n, 1);

  // Units: pressures from Pa (m, Kg, s) into MPa (mm, T, s).
  const ZmUnitSystem si(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree);
  const ZmUnitSystem mm(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree);
  ZmUnitConverter converter;
  unsigned char needed = 0;
  converter.InitFromTo(si, mm, needed, &ZmUnitDimPressure);
  std::vector<T> pressures(100);
  for (int i = 0; i < 100; ++i) pressures[i] = T(1.0e6 * (1 + Noise(seed)));
  Put("pressures", pressures.data(), 100, 1);
  for (T& p : pressures) converter.ConvertScalar(ZmUnitDimPressure, p);
  Put("pressures_mpa", pressures.data(), 100, 1);
  T parsed = 0;
  mm.String2DimensionalValue(L" 2.1e5 Pa", ZmUnitDimPressure, parsed);
  Put("parsed", &parsed, 1, 1);

  // Material laws: a measured hardening curve, and two law curves.
  Curve measured, keeler, kinematic;
  for (int i = 0; i < 12; ++i) {
    const double e = 0.02 + 0.03 * i;
    measured.Add(ZmPoint2T<T>(e, 530 * std::pow(e, 0.21) * (1 + 0.01 * Noise(seed))));
  }
  T K = 0, nh = 0;
  M::ComputeHollomonCoeff(measured.GetData(), 12, K, nh);
  const T fit[2] = {K, nh};
  PutCurve("measured", measured);
  Put("hollomon", fit, 1, 2);
  M::ComputeKeelerCurvePoints(keeler, T(1.2), T(0.18));
  PutCurve("keeler", keeler);
  M::ComputeKinematicCurvePoints(kinematic, T(210), T(12.5), T(180), T(350));
  PutCurve("kinematic", kinematic);

  // Geometry: points projected onto a polyline, and into a frame of three points.
  WbArrayTempl<ZmPoint3T<T>> polyline, points, feet, local;
  for (int i = 0; i < 50; ++i) polyline.Add(ZmPoint3T<T>(i, 3 * std::sin(i * 0.3), 0.1 * i * i));
  std::vector<T> params(500);
  for (int i = 0; i < 500; ++i) points.Add(ZmPoint3T<T>(60 * Noise(seed), 10 * Noise(seed), 250 * Noise(seed)));
  const ZmFrameT<T> frame(ZmFrameT<double>(ZmPoint3T<double>(1, 2, 3), ZmPoint3T<double>(4, 6, 3),
                                           ZmPoint3T<double>(0, 5, 9), 1, ZmFrameCylindrical));
  for (int i = 0; i < 500; ++i) {
    ZmPoint3T<T> foot;
    M::GetProjectedPoint(polyline, points[i], params[i], foot);
    feet.Add(foot);
    local.Add(frame.GlobalToLocal(points[i]));
  }
  PutCurve("polyline", polyline);
  PutCurve("points", points);
  PutCurve("feet", feet);
  Put("params", params.data(), 500, 1);
  PutCurve("local", local);

  // Element metrics and time steps over a small mixed mesh made of the points above.
  const ZmElementType types[] = {ZmElementTri3, ZmElementQuad4, ZmElementTet4, ZmElementHex8, ZmElementWedge6};
  const std::int64_t connectivity[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25};
  T metrics[2][5];
  ZmMeshT<T>::ComputeMeshMetric(ZmMetricScaledJacobian, points.GetData(), 30, types, connectivity, 5, metrics[0]);
  ZmMeshT<T>::ComputeMeshTimeStep(ZmMetricCharacteristicLength, points.GetData(), 30, types, connectivity, 5, T(210000),
                                  T(0.3), T(7.85e-9), metrics[1]);
  Put("scaled_jacobian", metrics[0], 5, 1);
  Put("time_step", metrics[1], 5, 1);

  // Fits: the plane of the points, a noisy arc of a circle (geometric), a noisy quarter turn.
  WbArrayTempl<ZmPoint2T<T>> arc;
  WbArrayTempl<ZmPoint3T<T>> turned;
  for (int i = 0; i < 40; ++i)
    arc.Add(ZmPoint2T<T>(3 + 7 * std::cos(0.05 * i), -2 + 7 * std::sin(0.05 * i) + 0.01 * Noise(seed)));
  for (int i = 0; i < 500; ++i) turned.Add(ZmPoint3T<T>(1 - points[i].y, 2 + points[i].x, 3 + points[i].z + T(0.1 * Noise(seed))));
  const auto plane = ZmMathFitT<T>::FitPlane(points);
  const auto circle = ZmMathFitT<T>::FitCircle(arc);
  const auto rigid = ZmMathFitT<T>::FitRigid(points, turned);
  const T fits[3][12] = {
      {plane.point.x, plane.point.y, plane.point.z, plane.normal.x, plane.normal.y, plane.normal.z, plane.fitQuality,
       plane.quality.rms, plane.quality.maxResidual},
      {circle.center.x, circle.center.y, circle.radius, circle.quality.rms, circle.quality.maxResidual},
      {rigid.rotation.GetRow(0).x, rigid.rotation.GetRow(0).y, rigid.rotation.GetRow(0).z, rigid.rotation.GetRow(1).x,
       rigid.rotation.GetRow(1).y, rigid.rotation.GetRow(1).z, rigid.rotation.GetRow(2).x, rigid.rotation.GetRow(2).y,
       rigid.rotation.GetRow(2).z, rigid.translation.x, rigid.translation.y, rigid.translation.z}};
  PutCurve("arc", arc);
  PutCurve("turned", turned);
  Put("fit_plane", fits[0], 1, 9);
  Put("fit_circle", fits[1], 1, 5);
  Put("fit_rigid", fits[2], 1, 12);
  Shapes<T>(points, arc, seed);
}

}  // namespace

int main() {
  Run<double>();
  Run<float>();
  return 0;
}
