// Geometry over arrays of points: distances and projections onto polylines and planes, and
// frames. Undefined results (the library's invalid marker) come back as NaN.
#include "families.h"
#include "shapes.h"
#include "zemcalc/ZmMath.h"
#include "zemcalc/ZmPlane.h"

namespace zmpy {
namespace {

template <class T>
void Store(const WbCoord3DT<T>& p, T* o) {
  o[0] = MarkerToNan(p.x);
  o[1] = MarkerToNan(p.y);
  o[2] = MarkerToNan(p.z);
}

// Calls fn(T(), points, out...) for each (n, 3) point, in the precision of the points array;
// the result has per-point shape outShape.
template <class Fn>
py::array OverPoints(py::handle pointsObj, std::vector<py::ssize_t> outShape, Fn fn) {
  return WithTwin(pointsObj, [&](auto tag) -> py::array {
    using T = decltype(tag);
    const Points<T> points = ToPoints<T>(pointsObj);
    const auto n = static_cast<py::ssize_t>(points.GetSize());
    outShape.insert(outShape.begin(), n);
    Array<T> out(outShape);
    const py::ssize_t stride = n ? out.size() / n : 0;
    T* o = out.mutable_data();
    fn(tag, points, [&](py::ssize_t i) { return o + i * stride; });
    return std::move(out);
  });
}

template <class T>
ZmPlaneT<T> MakePlane(py::handle normalObj, py::handle pointObj) {
  unsigned char ok = 0;
  ZmPlaneT<T> plane(ToPoint3<ZmPoint3T<T>>(pointObj, "point"), ToPoint3<ZmVector3T<T>>(normalObj, "normal"), ok);
  if (!ok) throw py::value_error("the plane normal is too short to be normalised");
  return plane;
}

ZmFrameType FrameType(int type) {
  if (type < 0 || type > 2) throw py::value_error("frame type must be 0 (Cartesian), 1 (cylindrical) or 2 (spherical)");
  return static_cast<ZmFrameType>(type);
}

using P3 = ZmPoint3T<double>;
using V3 = ZmVector3T<double>;

}  // namespace

void BindGeometry(py::module_& m) {
  m.def(
      "polyline_length",
      [](py::handle polylineObj) {
        return WithTwin(polylineObj, [&](auto tag) -> double {
          using T = decltype(tag);
          return MarkerToNan(ZmMathT<T>::GetLength(ToPoints<T>(polylineObj, "polyline")));
        });
      },
      py::arg("polyline"), "Length of an (m, 3) polyline (segment lengths rounded to float); NaN for bad points.");
  m.def(
      "polyline_points_at",
      [](py::handle polylineObj, py::handle tObj) {
        return WithTwin(polylineObj, [&](auto tag) -> py::array {
          using T = decltype(tag);
          const Points<T> polyline = ToPoints<T>(polylineObj, "polyline");
          const Array<T> t = Table<T>(tObj, 0, "parameters");
          Array<T> out({t.size(), py::ssize_t(3)});
          for (py::ssize_t i = 0; i < t.size(); ++i) {
            ZmPoint3T<T> p;
            ZmMathT<T>::GetCoordinatesAt(polyline, t.data()[i], p);
            Store(p, out.mutable_data() + 3 * i);
          }
          return std::move(out);
        });
      },
      py::arg("polyline"), py::arg("t"),
      "Points (k, 3) at normalised arc lengths t (0 first point, 1 last; beyond extrapolates).");
  m.def(
      "project_on_polyline",
      [](py::handle pointsObj, py::handle polylineObj) {
        py::array params;
        py::array feet = OverPoints(pointsObj, {3}, [&](auto tag, const auto& points, auto row) {
          using T = decltype(tag);
          const Points<T> polyline = ToPoints<T>(polylineObj, "polyline");
          Array<T> t(static_cast<py::ssize_t>(points.GetSize()));
          {
            py::gil_scoped_release release;
            for (std::uint64_t i = 0; i < points.GetSize(); ++i) {
              ZmPoint3T<T> foot;
              T param = 0;
              const bool ok = ZmMathT<T>::GetProjectedPoint(polyline, points[i], param, foot) != 0;
              Store(foot, row(static_cast<py::ssize_t>(i)));
              t.mutable_data()[i] = ok ? param : std::numeric_limits<T>::quiet_NaN();
            }
          }
          params = std::move(t);
        });
        return py::make_tuple(feet, params);
      },
      py::arg("points"), py::arg("polyline"),
      "(feet (n, 3), params (n,)): the nearest point of the (m, 3) polyline to each point and its\n"
      "normalised arc length in [0, 1]; NaN for unusable points.");
  m.def(
      "distance_to_polyline",
      [](py::handle pointsObj, py::handle polylineObj) {
        return OverPoints(pointsObj, {}, [&](auto tag, const auto& points, auto row) {
          using T = decltype(tag);
          const Points<T> polyline = ToPoints<T>(polylineObj, "polyline");
          py::gil_scoped_release release;
          for (std::uint64_t i = 0; i < points.GetSize(); ++i)
            *row(static_cast<py::ssize_t>(i)) = MarkerToNan(ZmMathT<T>::DistanceTo(polyline, points[i]));
        });
      },
      py::arg("points"), py::arg("polyline"), "Distance (n,) of each point to the polyline, rounded to float.");
  m.def(
      "project_on_plane",
      [](py::handle pointsObj, py::handle normal, py::handle point) {
        return OverPoints(pointsObj, {3}, [&](auto tag, const auto& points, auto row) {
          using T = decltype(tag);
          const auto n = ToPoint3<ZmVector3T<T>>(normal, "normal");
          const auto q = ToPoint3<ZmPoint3T<T>>(point, "point");
          py::gil_scoped_release release;
          for (std::uint64_t i = 0; i < points.GetSize(); ++i)
            Store(ZmMathT<T>::ProjOnPlane(points[i], n, q), row(static_cast<py::ssize_t>(i)));
        });
      },
      py::arg("points"), py::arg("normal"), py::arg("point"),
      "Orthogonal projections (n, 3) onto the plane through point with the unit normal (used as\n"
      "given, not normalised).");
  m.def(
      "distance_to_plane",
      [](py::handle pointsObj, py::handle normal, py::handle point) {
        return OverPoints(pointsObj, {}, [&](auto tag, const auto& points, auto row) {
          using T = decltype(tag);
          const ZmPlaneT<T> plane = MakePlane<T>(normal, point);
          py::gil_scoped_release release;
          for (std::uint64_t i = 0; i < points.GetSize(); ++i)
            *row(static_cast<py::ssize_t>(i)) = MarkerToNan(ZmMathT<T>::DistToPlane(points[i], plane));
        });
      },
      py::arg("points"), py::arg("normal"), py::arg("point"),
      "Unsigned distance (n,) of each point to the plane through point with the given normal\n"
      "(normalised first; a normal too short raises ValueError).");

  py::class_<Frame>(m, "Frame",
                    "A local frame: origin, three axes and a type (0 Cartesian, 1 cylindrical (r, theta, z),\n"
                    "2 spherical (rho, theta, phi)), angles in degrees. Kept in double precision;\n"
                    "float32 arrays are converted through its float copy.")
      .def(py::init([](py::object x, py::object y, py::object z, py::object origin, int type) {
             if (x.is_none()) return Frame{ZmFrameT<double>()};
             return Frame{ZmFrameT<double>(ToPoint3<V3>(x, "x"), ToPoint3<V3>(y, "y"), ToPoint3<V3>(z, "z"),
                                           ToPoint3<P3>(origin, "origin"), FrameType(type))};
           }),
           py::arg("x") = py::none(), py::arg("y") = py::none(), py::arg("z") = py::none(),
           py::arg("origin") = py::make_tuple(0, 0, 0), py::arg("type") = 0,
           "The frame of the given axes (stored as passed) and origin; the global frame without axes.")
      .def_static(
          "from_points",
          [](py::handle p0, py::handle p1, py::handle p2, int mode, int type) {
            return Frame{ZmFrameT<double>(ToPoint3<P3>(p0, "p0"), ToPoint3<P3>(p1, "p1"), ToPoint3<P3>(p2, "p2"), mode,
                                          FrameType(type))};
          },
          py::arg("p0"), py::arg("p1"), py::arg("p2"), py::arg("mode") = 1, py::arg("type") = 0,
          "The frame of three points, origin p0: mode 0 Z along p0->p1, mode 1 X along p0->p1 and Z in\n"
          "the plane, mode 2 X along p0->p1 and Y in the plane towards p2.")
      .def_static(
          "from_direction",
          [](py::handle origin, py::handle dir, int type, py::object reference) {
            if (reference.is_none())
              return Frame{ZmFrameT<double>(ToPoint3<P3>(origin, "origin"), ToPoint3<V3>(dir, "direction"), FrameType(type))};
            const V3 ref = ToPoint3<V3>(reference, "reference");
            return Frame{ZmFrameT<double>(ToPoint3<P3>(origin, "origin"), ToPoint3<V3>(dir, "direction"), FrameType(type), &ref)};
          },
          py::arg("origin"), py::arg("direction"), py::arg("type") = 0, py::arg("reference") = py::none(),
          "The frame at origin whose Z axis is the direction; X towards the reference when given.")
      .def_property_readonly("origin",
                             [](const Frame& f) {
                               Array<double> o(3);
                               Store(f.frame.GetOrigin(), o.mutable_data());
                               return o;
                             })
      .def_property_readonly(
          "axes",
          [](const Frame& f) {
            Array<double> a({3, 3});
            for (int i = 0; i < 3; ++i) Store(f.frame.GetVector(i), a.mutable_data() + 3 * i);
            return a;
          },
          "(3, 3) array whose rows are the X, Y and Z axes.")
      .def_property_readonly("type", [](const Frame& f) { return static_cast<int>(f.frame.GetType()); })
      .def(
          "to_local", [](const Frame& f, py::handle p, bool v) { return f.Apply(p, false, v); }, py::arg("points"),
          py::arg("vectors") = false,
          "(n, 3) global points (or vectors, not moved by the origin) in local coordinates of the type.")
      .def(
          "to_global", [](const Frame& f, py::handle p, bool v) { return f.Apply(p, true, v); }, py::arg("points"),
          py::arg("vectors") = false, "(n, 3) local coordinates of the frame's type as global points (or vectors).")
      .def(
          "rotate",
          [](Frame& f, py::handle axis, double angleDeg) {
            return f.frame.Rotate(ToPoint3<V3>(axis, "axis"), angleDeg) != 0;
          },
          py::arg("axis"), py::arg("angle_deg"), "Turns the axes about axis by the angle; False when axis is unusable.")
      .def("__eq__", [](const Frame& a, const Frame& b) { return a.frame == b.frame ? true : false; })
      .def("__repr__", [](const Frame& f) { return "<zemcalc.Frame " + ToUtf8(f.frame.DumpOneLine()) + ">"; });
}

}  // namespace zmpy
