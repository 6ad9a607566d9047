// Curves: interpolation, sampling, clipping, envelopes and the convex hull of 2D points.
#include "arrays.h"
#include "families.h"

namespace zmpy {
namespace {

using Int = std::int64_t;

// InterpolateOnX or InterpolateOnY at each of the values (a scalar gives a scalar); NaN where
// no segment holds the value.
template <bool onX>
py::object Interpolate(py::handle curveObj, py::handle at) {
  return WithTwin(curveObj, [&](auto tag) -> py::object {
    using T = decltype(tag);
    const Curve<T> curve = ToCurve<T>(curveObj);
    Array<T> values = Table<T>(at, 0, "the values");
    Array<T> out(std::vector<py::ssize_t>(values.shape(), values.shape() + values.ndim()));
    const T* in = values.data();
    T* res = out.mutable_data();
    {
      py::gil_scoped_release release;
      for (py::ssize_t i = 0; i < values.size(); ++i) {
        int index = 0;
        const T v = onX ? ZmPoint2T<T>::InterpolateOnX(curve.GetData(), curve.GetSize(), in[i], index, 0)
                        : ZmPoint2T<T>::InterpolateOnY(curve.GetData(), curve.GetSize(), in[i], index, 0);
        res[i] = MarkerToNan(v);
      }
    }
    if (values.ndim() == 0) return py::float_(res[0]);
    return std::move(out);
  });
}

py::array Indices(const WbArrayTempl<int>& indices) {
  py::array_t<Int> out(static_cast<py::ssize_t>(indices.GetSize()));
  for (std::uint64_t i = 0; i < indices.GetSize(); ++i) out.mutable_data()[i] = indices[i];
  return std::move(out);
}

}  // namespace

void BindCurves(py::module_& m) {
  m.def("interpolate_on_x", &Interpolate<true>, py::arg("curve"), py::arg("x"),
        "Value of the curve at abscissa x (a number or an array of them), by linear interpolation on\n"
        "the first segment, in curve order, that holds x. NaN where no segment holds x.");
  m.def("interpolate_on_y", &Interpolate<false>, py::arg("curve"), py::arg("y"),
        "Abscissa at which the curve first reaches the value y (a number or an array of them);\n"
        "NaN where it never does.");
  m.def(
      "interpolate_on_y_all",
      [](py::handle curveObj, double y) {
        return WithTwin(curveObj, [&](auto tag) -> py::array {
          using T = decltype(tag);
          const Curve<T> curve = ToCurve<T>(curveObj);
          WbArrayTempl<T> xs;
          ZmPoint2T<T>::InterpolateOnYn(curve.GetData(), curve.GetSize(), static_cast<T>(y), xs);
          Array<T> out(static_cast<py::ssize_t>(xs.GetSize()));
          if (xs.GetSize()) std::memcpy(out.mutable_data(), xs.GetData(), sizeof(T) * xs.GetSize());
          return std::move(out);
        });
      },
      py::arg("curve"), py::arg("y"),
      "Every abscissa at which the curve reaches y, in curve order. A crossing exactly on a point\n"
      "found through a segment is reported twice, as the library does.");
  m.def(
      "sample_x",
      [](py::handle curveObj, double step, py::object start) {
        return WithTwin(curveObj, [&](auto tag) -> py::array {
          using T = decltype(tag);
          const Curve<T> curve = ToCurve<T>(curveObj);
          Curve<T> out;
          {
            const T first = Optional<T>(start);
            py::gil_scoped_release release;
            ZmPoint2T<T>::SampleX(curve.GetData(), curve.GetSize(), static_cast<T>(step), out, first);
          }
          return FromCurve(std::move(out));
        });
      },
      py::arg("curve"), py::arg("step"), py::arg("start") = py::none(),
      "The curve resampled at a fixed step from its first abscissa (or from start when later),\n"
      "abscissae accumulated sample by sample. Empty for an empty curve, a step that is not > 0,\n"
      "or a sampling that would need more than 2**27 points.");
  m.def(
      "extrapolate_on_x",
      [](py::handle curveObj, double x, bool linear, py::object floor) {
        return WithTwin(curveObj, [&](auto tag) -> py::array {
          using T = decltype(tag);
          Curve<T> curve = ToCurve<T>(curveObj);
          ZmPoint2T<T>::ExtrapolateOnX(curve, static_cast<T>(x), linear ? 1 : 0, Optional<T>(floor));
          return FromCurve(std::move(curve));
        });
      },
      py::arg("curve"), py::arg("x"), py::arg("linear") = false, py::arg("floor") = py::none(),
      "A copy of the curve with one point added at x before its first or after its last point:\n"
      "the end value, or the value along the end segment when linear (raised to floor when given).\n"
      "The copy is unchanged when no point can be added (x inside the curve, NaN, too few points).");
  m.def(
      "extract_x_range",
      [](py::handle curveObj, double xmin, double xmax, double tol) {
        return WithTwin(curveObj, [&](auto tag) -> py::array {
          using T = decltype(tag);
          Curve<T> curve = ToCurve<T>(curveObj);
          ZmPoint2T<T>::ExtractXRange(curve, static_cast<T>(xmin), static_cast<T>(xmax), static_cast<T>(tol));
          return FromCurve(std::move(curve));
        });
      },
      py::arg("curve"), py::arg("xmin"), py::arg("xmax"), py::arg("tol") = 0.0,
      "The part of the curve between xmin and xmax, with points interpolated on the bounds where a\n"
      "segment crosses them.");
  m.def(
      "envelope",
      [](py::handle curveObj, bool upper, py::object width) {
        return WithTwin(curveObj, [&](auto tag) -> py::array {
          using T = decltype(tag);
          const Curve<T> curve = ToCurve<T>(curveObj);
          Curve<T> out;
          ZmPoint2T<T>::EvaluateEnvelop(curve, upper ? 1 : 0, out, Optional<T>(width));
          return FromCurve(std::move(out));
        });
      },
      py::arg("curve"), py::arg("upper") = true, py::arg("width") = py::none(),
      "Upper (or lower) envelope points: the local extremes, or with width one extreme per span\n"
      "of width/2 along increasing abscissae.");
  m.def(
      "sinusoid_envelope",
      [](py::handle curveObj, bool upper) {
        return WithTwin(curveObj, [&](auto tag) -> py::tuple {
          using T = decltype(tag);
          const Curve<T> curve = ToCurve<T>(curveObj);
          Curve<T> out;
          WbArrayTempl<int> indices;
          ZmPoint2T<T>::EvaluateSinusoidEnvelop(curve, upper ? 1 : 0, out, &indices);
          return py::make_tuple(FromCurve(std::move(out)), Indices(indices));
        });
      },
      py::arg("curve"), py::arg("upper") = true,
      "One peak per half-wave of an oscillating curve: (peaks as an (k, 2) array, their indices).");
  m.def(
      "convex_hull",
      [](py::handle pointsObj) {
        return WithTwin(pointsObj, [&](auto tag) -> py::tuple {
          using T = decltype(tag);
          const Curve<T> points = ToCurve<T>(pointsObj, "points");
          Curve<T> out;
          WbArrayTempl<int> indices;
          ZmPoint2T<T>::EvaluateConvexShape(points, out, &indices);
          return py::make_tuple(FromCurve(std::move(out)), Indices(indices));
        });
      },
      py::arg("points"),
      "Convex hull of (n, 2) points, counter-clockwise from the lowest x (then y): (vertices,\n"
      "their indices in the input). Points with a NaN coordinate are ignored.");
}

}  // namespace zmpy
