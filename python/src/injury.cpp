// Injury criteria of crash-test channels: the resultant of three channels, the head injury
// criterion and the clip level. Curves are (n, 2) arrays (time, acceleration); units is the unit
// system of the curve (seconds and accelerations in g by default).
#include "arrays.h"
#include "families.h"
#include "zemcalc/ZmMathInjury.h"

namespace zmpy {
namespace {

template <class T>
using Injury = ZmMathInjuryT<T>;

const ZmUnitSystem& UnitsOr(const ZmUnitSystem* units) {
  static const ZmUnitSystem unset;
  return units != nullptr ? *units : unset;
}

py::array Resultant(py::handle x, py::handle y, py::handle z) {
  return WithTwin(x, [&](auto tag) -> py::array {
    using T = decltype(tag);
    const Curve<T> cx = ToCurve<T>(x, "x"), cy = ToCurve<T>(y, "y"), cz = ToCurve<T>(z, "z");
    Curve<T> out;
    const WbErrObj* err = nullptr;
    {
      py::gil_scoped_release release;
      err = Injury<T>::ComputeResultant(cx, cy, cz, out);
    }
    Check(err);
    return FromCurve(std::move(out));
  });
}

py::tuple HIC(py::handle curve, double window, const ZmUnitSystem* units, bool inG) {
  return WithTwin(curve, [&](auto tag) {
    using T = decltype(tag);
    const Curve<T> c = ToCurve<T>(curve);
    T hic = 0, t1 = 0, t2 = 0;
    const WbErrObj* err = nullptr;
    {
      py::gil_scoped_release release;
      err = Injury<T>::ComputeHIC(c, window, UnitsOr(units), inG ? 1 : 0, hic, t1, t2);
    }
    Check(err);
    return py::make_tuple(hic, t1, t2);
  });
}

double ClipLevel(py::handle curve, double duration, const ZmUnitSystem* units, bool inG) {
  return WithTwin(curve, [&](auto tag) {
    using T = decltype(tag);
    const Curve<T> c = ToCurve<T>(curve);
    T level = 0;
    const WbErrObj* err = nullptr;
    {
      py::gil_scoped_release release;
      err = Injury<T>::ComputeClipLevel(c, duration, UnitsOr(units), inG ? 1 : 0, level);
    }
    Check(err);
    return static_cast<double>(level);
  });
}

}  // namespace

void BindInjury(py::module_& m) {
  m.def("resultant", &Resultant, py::arg("x"), py::arg("y"), py::arg("z"),
        "The resultant curve (t, sqrt(x^2 + y^2 + z^2)) of three channels with the same abscissae.");
  m.def("hic", &HIC, py::arg("curve"), py::arg("window") = 0.015, py::arg("units") = py::none(),
        py::arg("in_g") = true,
        "The head injury criterion (hic, t1, t2) over windows of at most `window` seconds (0.015 for\n"
        "HIC15, 0.036 for HIC36), exact on the samples. units: the curve's unit system (None: seconds);\n"
        "in_g False reads the values as the system's length / time^2. t1, t2 in the curve's time unit;\n"
        "a curve without a window of positive mean gives (0, t0, t0).");
  m.def("clip_level", &ClipLevel, py::arg("curve"), py::arg("duration") = 0.003, py::arg("units") = py::none(),
        py::arg("in_g") = true,
        "The highest level (g) the broken line stays at or above for a cumulative `duration` seconds\n"
        "(0.003: the 3 ms clip). units and in_g as for hic().");
}

}  // namespace zmpy
