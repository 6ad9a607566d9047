// Material laws: fits of measured stress-strain curves and the sampled law curves. Fits that
// cannot be made return None (the library reports them in-band, without a message); the
// Mooney-Rivlin fit, which has messages, raises zemcalc.Error.
#include "arrays.h"
#include "families.h"
#include "zemcalc/ZmMath.h"

namespace zmpy {
namespace {

template <class T>
using Law = ZmMathT<T>;

// A law curve built in the precision chosen by dtype; None when the law refuses its arguments.
template <class Fn>
py::object LawCurve(py::object dtype, Fn fn) {
  return WithDtype(dtype, [&](auto tag) -> py::object {
    using T = decltype(tag);
    Curve<T> curve;
    if (!fn(tag, curve)) return py::none();
    return FromCurve(std::move(curve));
  });
}

template <class T>
T D(double v) {
  return static_cast<T>(v);
}

}  // namespace

void BindMaterials(py::module_& m) {
  m.def(
      "hollomon_fit",
      [](py::handle curveObj) {
        return WithTwin(curveObj, [&](auto tag) -> py::object {
          using T = decltype(tag);
          const Curve<T> pts = ToCurve<T>(curveObj);
          T K = 0, n = 0;
          const int count = pts.GetSize() > INT32_MAX ? INT32_MAX : static_cast<int>(pts.GetSize());
          if (!Law<T>::ComputeHollomonCoeff(pts.GetData(), count, K, n)) return py::none();
          return py::make_tuple(K, n);
        });
      },
      py::arg("curve"),
      "(K, n) of sigma = K eps^n fitted to (strain, stress) points from the third point on; None when\n"
      "fewer than three usable points.");
  m.def(
      "krupkowsky_fit",
      [](py::handle curveObj) {
        return WithTwin(curveObj, [&](auto tag) -> py::object {
          using T = decltype(tag);
          const Curve<T> pts = ToCurve<T>(curveObj);
          T K = 0, n = 0, eps0 = 0, last = 0;
          const int count = pts.GetSize() > INT32_MAX ? INT32_MAX : static_cast<int>(pts.GetSize());
          if (!Law<T>::ComputeKrupkowskyCoeff(pts.GetData(), count, K, n, eps0, last)) return py::none();
          return py::make_tuple(K, n, eps0, last);
        });
      },
      py::arg("curve"), "(K, n, eps0, last stress) of sigma = K (eps0 + eps)^n; None when the fit fails.");
  m.def(
      "mooney_rivlin_fit",
      [](py::handle curveObj) {
        return WithTwin(curveObj, [&](auto tag) -> py::tuple {
          using T = decltype(tag);
          const Curve<T> pts = ToCurve<T>(curveObj);
          T c10 = 0, c01 = 0;
          Check(Law<T>::ComputeMoonleyRivlinCoefficientsFromPoints(pts, c10, c01));
          return py::make_tuple(c10, c01);
        });
      },
      py::arg("curve"), "(c10, c01) of the uniaxial Mooney-Rivlin law fitted to (strain %, stress) points.");
  m.def(
      "hollomon_curve",
      [](double K, double n, double yield, double maxStress, double step, double young, py::object dtype) {
        return LawCurve(dtype, [&](auto tag, auto& c) {
          using T = decltype(tag);
          return Law<T>::ComputeHollomonCurvePoints(c, D<T>(K), D<T>(n), D<T>(yield), D<T>(maxStress), D<T>(step),
                                                    D<T>(young));
        });
      },
      py::arg("K"), py::arg("n"), py::arg("yield_stress"), py::arg("max_stress"), py::arg("step"), py::arg("young"),
      py::arg("dtype") = py::none(),
      "(plastic strain, stress) of a Hollomon law with yield plateau and cap; None when refused\n"
      "(step or Young's modulus not > 0, more than 10**6 points).");
  m.def(
      "krupkowsky_curve",
      [](double K, double n, double maxStress, double eps0, py::object dtype) {
        return LawCurve(dtype, [&](auto tag, auto& c) {
          using T = decltype(tag);
          return Law<T>::ComputeKrupkowskyCurvePoints(c, D<T>(K), D<T>(n), D<T>(maxStress), D<T>(eps0));
        });
      },
      py::arg("K"), py::arg("n"), py::arg("max_stress"), py::arg("eps0"), py::arg("dtype") = py::none(),
      "21 points (eps, K (eps + eps0)^n), eps = 0, 0.05 .. 1, capped at max_stress when > 0.");
  m.def(
      "power_curve",
      [](double a, double b, double n, double maxStress, py::object dtype) {
        return LawCurve(dtype, [&](auto tag, auto& c) {
          using T = decltype(tag);
          return Law<T>::ComputePowerCurvePoints(c, D<T>(a), D<T>(b), D<T>(n), D<T>(maxStress));
        });
      },
      py::arg("a"), py::arg("b"), py::arg("n"), py::arg("max_stress"), py::arg("dtype") = py::none(),
      "21 points (eps, b eps^n + a), capped at max_stress when > 0.");
  m.def(
      "kinematic_curve",
      [](double y0, double rate, double amplitude, double maxStress, py::object dtype) {
        return LawCurve(dtype, [&](auto tag, auto& c) {
          using T = decltype(tag);
          return Law<T>::ComputeKinematicCurvePoints(c, D<T>(y0), D<T>(rate), D<T>(amplitude), D<T>(maxStress));
        });
      },
      py::arg("y0"), py::arg("rate"), py::arg("amplitude"), py::arg("max_stress"), py::arg("dtype") = py::none(),
      "21 points (eps, (1 - exp(-rate eps)) amplitude + y0), capped at max_stress when > 0.");
  m.def(
      "keeler_curve",
      [](double thickness, double n, py::object dtype) {
        return LawCurve(dtype, [&](auto tag, auto& c) {
          using T = decltype(tag);
          return Law<T>::ComputeKeelerCurvePoints(c, D<T>(thickness), D<T>(n));
        });
      },
      py::arg("thickness"), py::arg("n"), py::arg("dtype") = py::none(),
      "Keeler forming-limit curve, 180 points (minor, major) in true strains.");
  m.def(
      "hill_coefficients",
      [](double r0, double r45, double r90, py::object dtype) {
        return WithDtype(dtype, [&](auto tag) -> py::object {
          using T = decltype(tag);
          T F = 0, G = 0, N = 0;
          if (!Law<T>::ComputeHill3DCoeff(D<T>(r0), D<T>(r45), D<T>(r90), F, G, N)) return py::none();
          return py::make_tuple(F, G, N);
        });
      },
      py::arg("r0"), py::arg("r45"), py::arg("r90"), py::arg("dtype") = py::none(),
      "Hill 1948 (F, G, N) from Lankford ratios; None when r0 + 1 or (r0 + 1) r90 is 0.");
  m.def(
      "lankford_coefficients",
      [](double F, double G, double N, py::object dtype) {
        return WithDtype(dtype, [&](auto tag) -> py::object {
          using T = decltype(tag);
          T r0 = 0, r45 = 0, r90 = 0;
          if (!Law<T>::ComputeLankfordCoeff(D<T>(F), D<T>(G), D<T>(N), r0, r45, r90)) return py::none();
          return py::make_tuple(r0, r45, r90);
        });
      },
      py::arg("F"), py::arg("G"), py::arg("N"), py::arg("dtype") = py::none(),
      "Lankford (r0, r45, r90) from Hill's F, G, N; None when they admit none.");
}

}  // namespace zmpy
