// Least-squares fits of point arrays: lines and circles (2D and 3D), planes, spheres, cylinders,
// ellipses and the rigid move between two matched point sets. Each fit returns a dict of its shape
// (numpy vectors, floats) and its quality: 'status' ('ok', 'too_few_points', 'degenerate',
// 'bad_input', 'no_convergence'), 'count', 'rms', 'max_residual'. A field the fit could not give
// (the invalid marker) is nan: a failed fit is reported by its status, never raised, as the library
// reports it.
#include <iterator>
#include <type_traits>

#include "families.h"
#include "shapes.h"
#include "zemcalc/ZmMathFit.h"

namespace zmpy {
namespace {

const char* const kStatus[] = {"ok", "too_few_points", "degenerate", "bad_input", "no_convergence"};
const char* const kCircleMethods[] = {"kasa", "pratt", "taubin", "hyper", "geometric"};

template <class T>
py::dict Quality(const ZmFitQualityT<T>& q) {
  py::dict d;
  const auto s = static_cast<std::size_t>(q.status);
  d["status"] = s < std::size(kStatus) ? kStatus[s] : "unknown";
  d["count"] = q.count;
  d["rms"] = Value(q.rms);
  d["max_residual"] = Value(q.maxResidual);
  return d;
}

int CircleMethod(py::handle method) {
  if (!py::isinstance<py::str>(method)) return method.cast<int>();
  const std::string name = method.cast<std::string>();
  for (std::size_t i = 0; i < std::size(kCircleMethods); ++i)
    if (name == kCircleMethods[i]) return static_cast<int>(i);
  throw py::value_error("unknown circle fit method '" + name + "' (kasa, pratt, taubin, hyper or geometric)");
}

// Runs fit(points) of twin T on the (n, k) points and returns the quality dict that fill(fit, d)
// completes with the shape.
template <class T, int k, class Fit, class Fill>
py::dict FitPoints(py::handle pointsObj, Fit fit, Fill fill) {
  using Item = std::conditional_t<k == 2, ZmPoint2T<T>, ZmPoint3T<T>>;
  const WbArrayTempl<Item> points = ToItems<Item, T, k>(pointsObj, "points");
  decltype(fit(points)) result;
  {
    py::gil_scoped_release release;
    result = fit(points);
  }
  py::dict d = Quality(result.quality);
  fill(result, d);
  return d;
}

// (n, 2) points: the line in the plane; (n, 3): the line in space.
py::dict FitLine(py::handle pointsObj) {
  return WithTwin(pointsObj, [&](auto tag) {
    using T = decltype(tag);
    const auto fill = [](const auto& fit, py::dict& d) {
      d["point"] = Vector<T>(fit.point);
      d["direction"] = Vector<T>(fit.direction);
      d["fit_quality"] = Value(fit.fitQuality);
    };
    const auto fit = [](const auto& points) { return ZmMathFitT<T>::FitLine(points); };
    const Array<T> table = Table<T>(pointsObj, 0, "points");
    if (table.ndim() == 2 && table.shape(1) == 2) return FitPoints<T, 2>(table, fit, fill);
    return FitPoints<T, 3>(table, fit, fill);
  });
}

py::dict FitSphere(py::handle pointsObj, bool geometric) {
  return WithTwin(pointsObj, [&](auto tag) {
    using T = decltype(tag);
    return FitPoints<T, 3>(
        pointsObj, [&](const Points<T>& p) { return ZmMathFitT<T>::FitSphere(p, geometric ? 1 : 0); },
        [](const ZmSphereFitT<T>& fit, py::dict& d) {
          d["center"] = Vector<T>(fit.center);
          d["radius"] = Value(fit.radius);
        });
  });
}

py::dict FitCylinder(py::handle pointsObj) {
  return WithTwin(pointsObj, [&](auto tag) {
    using T = decltype(tag);
    return FitPoints<T, 3>(
        pointsObj, [](const Points<T>& p) { return ZmMathFitT<T>::FitCylinder(p); },
        [](const ZmCylinderFitT<T>& fit, py::dict& d) {
          d["point"] = Vector<T>(fit.point);
          d["direction"] = Vector<T>(fit.direction);
          d["radius"] = Value(fit.radius);
        });
  });
}

py::dict FitEllipse(py::handle pointsObj) {
  return WithTwin(pointsObj, [&](auto tag) {
    using T = decltype(tag);
    return FitPoints<T, 2>(
        pointsObj, [](const Curve<T>& p) { return ZmMathFitT<T>::FitEllipse(p); },
        [](const ZmEllipse2FitT<T>& fit, py::dict& d) {
          d["center"] = Vector<T>(fit.center);
          d["major_axis"] = Vector<T>(fit.majorAxis);
          d["a"] = Value(fit.a);
          d["b"] = Value(fit.b);
        });
  });
}

py::dict FitPlane(py::handle pointsObj) {
  return WithTwin(pointsObj, [&](auto tag) {
    using T = decltype(tag);
    const Points<T> points = ToPoints<T>(pointsObj);
    ZmPlaneFitT<T> fit;
    {
      py::gil_scoped_release release;
      fit = ZmMathFitT<T>::FitPlane(points);
    }
    py::dict d = Quality(fit.quality);
    d["point"] = Vector<T>(fit.point);
    d["normal"] = Vector<T>(fit.normal);
    d["fit_quality"] = Value(fit.fitQuality);
    return d;
  });
}

// (n, 2) points: the circle in the plane; (n, 3): the circle in space with its axis.
py::dict FitCircle(py::handle pointsObj, py::handle methodObj) {
  const auto method = static_cast<ZmCircleFitMethod>(CircleMethod(methodObj));
  return WithTwin(pointsObj, [&](auto tag) {
    using T = decltype(tag);
    py::dict d;
    const Array<T> table = Table<T>(pointsObj, 0, "points");
    if (table.ndim() == 2 && table.shape(1) == 2) {
      const Curve<T> points = ToCurve<T>(table, "points");
      ZmCircle2FitT<T> fit;
      {
        py::gil_scoped_release release;
        fit = ZmMathFitT<T>::FitCircle(points, method);
      }
      d = Quality(fit.quality);
      d["center"] = Vector<T>(fit.center);
      d["radius"] = Value(fit.radius);
    } else {
      const Points<T> points = ToPoints<T>(table);
      ZmCircle3FitT<T> fit;
      {
        py::gil_scoped_release release;
        fit = ZmMathFitT<T>::FitCircle(points, method);
      }
      d = Quality(fit.quality);
      d["center"] = Vector<T>(fit.center);
      d["normal"] = Vector<T>(fit.normal);
      d["radius"] = Value(fit.radius);
    }
    return d;
  });
}

py::dict FitRigid(py::handle movingObj, py::handle fixedObj, py::handle weightsObj) {
  return WithTwin(movingObj, [&](auto tag) {
    using T = decltype(tag);
    const Points<T> moving = ToPoints<T>(movingObj, "moving"), fixed = ToPoints<T>(fixedObj, "fixed");
    WbArrayTempl<T> weights;
    if (!weightsObj.is_none()) {
      const Array<T> w = Table<T>(weightsObj, 0, "weights");
      if (w.ndim() != 1) throw py::value_error("weights must be a one-dimensional array");
      weights.SetSize(static_cast<std::uint64_t>(w.shape(0)));
      for (py::ssize_t i = 0; i < w.shape(0); ++i) weights[static_cast<std::uint64_t>(i)] = w.data()[i];
    }
    ZmRigidFitT<T> fit;
    {
      py::gil_scoped_release release;
      fit = ZmMathFitT<T>::FitRigid(moving, fixed, weightsObj.is_none() ? nullptr : &weights);
    }
    py::dict d = Quality(fit.quality);
    Array<T> rotation({3, 3});
    for (int i = 0; i < 3; ++i) {
      const ZmVector3T<T> row = fit.rotation.GetRow(i);
      for (int j = 0; j < 3; ++j) rotation.mutable_data()[3 * i + j] = MarkerToNan((&row.x)[j]);
    }
    d["rotation"] = rotation;
    d["translation"] = Vector<T>(fit.translation);
    return d;
  });
}

}  // namespace

void BindFitting(py::module_& m) {
  m.def("fit_line", &FitLine, py::arg("points"),
        "The orthogonal-regression line of (n, 2) or (n, 3) points: dict of 'point' (the centroid),\n"
        "'direction' (unit, of largest spread), 'fit_quality' (1 - l1 / l2 of the two largest\n"
        "covariance eigenvalues) and the quality. Coincident points: 'degenerate', direction X.");
  m.def("fit_sphere", &FitSphere, py::arg("points"), py::arg("geometric") = true,
        "The least-squares sphere of (n, 3) points ('center', 'radius') and the quality: the algebraic\n"
        "fit, refined on the orthogonal distances unless geometric is False. Coplanar: 'degenerate'.");
  m.def("fit_cylinder", &FitCylinder, py::arg("points"),
        "The least-squares cylinder of (n, 3) points (at least 5, covering a fair part of the mantle):\n"
        "'point' (foot of the centroid on the axis), 'direction' (unit axis), 'radius' and the quality.");
  m.def("fit_ellipse", &FitEllipse, py::arg("points"),
        "The direct least-squares ellipse of (n, 2) points (at least 5): 'center', 'major_axis' (unit),\n"
        "semi-axes 'a' >= 'b' and the quality (distances to the ellipse). Collinear: 'degenerate'.");
  m.def("fit_plane", &FitPlane, py::arg("points"),
        "The least-squares plane of (n, 3) points: dict of 'point' (the centroid), 'normal' (unit, of\n"
        "least spread), 'fit_quality' (1 - l0 / l1 of the covariance eigenvalues) and the quality\n"
        "('status', 'count', 'rms', 'max_residual'). Points holding nan are skipped.");
  m.def("fit_circle", &FitCircle, py::arg("points"), py::arg("method") = "geometric",
        "The least-squares circle of (n, 2) points ('center', 'radius') or of (n, 3) points (plane\n"
        "fitted first: 'center', 'normal', 'radius'), with the quality. method: 'kasa', 'pratt',\n"
        "'taubin', 'hyper' or 'geometric' (Levenberg-Marquardt from Taubin, the default).");
  m.def("fit_rigid", &FitRigid, py::arg("moving"), py::arg("fixed"), py::arg("weights") = py::none(),
        "The rigid move fixed ~ rotation @ moving + translation of matched (n, 3) point sets (weighted\n"
        "least squares, always a proper rotation): dict of 'rotation' (3, 3), 'translation' (3,) and\n"
        "the quality (residuals |R m + t - f|).");
}

}  // namespace zmpy
