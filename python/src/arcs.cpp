// Circular arcs and ellipses: the arc through three points, about a centre, from a start tangent,
// the fillet of two lines, its points, tangents and length, and the tessellation of arcs and
// ellipses. An arc keeps the twin it was built in (float32 points, or dtype=np.float32, give the
// float twin) and hands out arrays of that dtype. A construction that fails is reported by the
// arc's status ('coincident', 'collinear', 'bad_input'), never raised, as the library reports
// it: its fields, points and tangents are nan and its tessellation None.
#include <iterator>
#include <string>
#include <type_traits>
#include <variant>

#include "families.h"
#include "shapes.h"
#include "zemcalc/ZmMathArc.h"

namespace zmpy {
namespace {

const char* const kArcStatus[] = {"ok", "coincident", "collinear", "bad_input"};

std::string StatusName(ZmArcStatus status) {
  const auto s = static_cast<std::size_t>(status);
  return s < std::size(kArcStatus) ? kArcStatus[s] : "unknown";
}

struct Arc {
  std::variant<ZmArcT<double>, ZmArcT<float>> arc;

  // f(arc) with the arc of its twin.
  template <class F>
  auto Visit(F&& f) const {
    return std::visit(std::forward<F>(f), arc);
  }
};

template <class T>
using Math = ZmMathArcT<T>;
// The scalar type of an arc (a reference to one too).
template <class A>
using Scalar = decltype(std::decay_t<A>().radius);

// The property get(arc) of the arc, in its twin.
template <class Get>
auto Property(Get get) {
  return [get](const Arc& a) { return a.Visit(get); };
}

// The points (or tangents) of the arc at the parameters t, as a (k, 3) array.
py::array AlongArc(const Arc& a, py::handle tObj, bool tangents) {
  return a.Visit([&](const auto& arc) -> py::array {
    using T = Scalar<decltype(arc)>;
    const Array<T> t = Table<T>(tObj, 0, "t");
    Points<T> out;
    out.SetSize(static_cast<std::uint64_t>(t.size()));
    for (py::ssize_t i = 0; i < t.size(); ++i) {
      const T ti = t.data()[i];
      out[static_cast<std::uint64_t>(i)] =
          tangents ? ZmPoint3T<T>(Math<T>::TangentAtParameter(arc, ti)) : Math<T>::PointAtParameter(arc, ti);
    }
    for (auto& p : out) p = ZmPoint3T<T>(MarkerToNan(p.x), MarkerToNan(p.y), MarkerToNan(p.z));
    return FromPoints(std::move(out));
  });
}

// The arc built by make(tag) in the twin of dtype (or of the first point when dtype is None).
template <class Make>
Arc Build(py::handle dtype, py::handle first, Make make) {
  return WithPrecision(dtype, first, [&](auto tag) { return Arc{make(tag)}; });
}

template <class T>
ZmPoint3T<T> P(py::handle obj, const char* what) {
  return ToPoint3<ZmPoint3T<T>>(obj, what);
}
template <class T>
ZmVector3T<T> V(py::handle obj, const char* what) {
  return ToPoint3<ZmVector3T<T>>(obj, what);
}

// Two or three points of two numbers each give the arc in the plane; three numbers, in space.
Arc ThroughPoints(py::handle p0, py::handle p1, py::handle p2, py::handle dtype) {
  return Build(dtype, p0, [&](auto tag) {
    using T = decltype(tag);
    const Array<T> first = Array<T>::ensure(p0);
    const bool planar = first && first.size() == 2;
    if (!planar) return Math<T>::ArcThroughPoints(P<T>(p0, "p0"), P<T>(p1, "p1"), P<T>(p2, "p2"));
    ZmPoint2T<T> q[3];
    const py::handle given[3] = {p0, p1, p2};
    for (int i = 0; i < 3; ++i) {
      const Array<T> a = Array<T>::ensure(given[i]);
      if (!a || a.size() != 2) throw py::value_error("the three points must hold two numbers each, or three each");
      q[i] = ZmPoint2T<T>(a.data()[0], a.data()[1]);
    }
    return Math<T>::ArcThroughPoints(q[0], q[1], q[2]);
  });
}

}  // namespace

void BindArcs(py::module_& m) {
  py::class_<Arc>(m, "Arc",
                  "A circular arc in space: centre, radius, unit normal, unit start direction (centre to\n"
                  "start) and sweep in (0, 2 pi] counter-clockwise about the normal. The point at t in\n"
                  "[0, 1] is center + radius (cos(t sweep) x + sin(t sweep) normal x x). Built by the static\n"
                  "methods; a failed construction has a status other than 'ok' and nan fields.")
      .def_static("through_points", &ThroughPoints, py::arg("p0"), py::arg("p1"), py::arg("p2"),
                  py::arg("dtype") = py::none(),
                  "The arc from p0 through p1 to p2 (each of 3 numbers, or of 2 for an arc in the plane\n"
                  "with normal +Z or -Z); its full circle is the same arc with sweep 2 pi.")
      .def_static(
          "from_center",
          [](py::handle start, py::handle end, py::handle center, py::handle normal, py::handle dtype) {
            return Build(dtype, start, [&](auto tag) {
              using T = decltype(tag);
              return Math<T>::ArcFromCenter(P<T>(start, "start"), P<T>(end, "end"), P<T>(center, "center"),
                                            V<T>(normal, "normal"));
            });
          },
          py::arg("start"), py::arg("end"), py::arg("center"), py::arg("normal"), py::arg("dtype") = py::none(),
          "The arc about center from start to the direction of end, counter-clockwise about normal;\n"
          "the radius is the start's distance, an end in the start's direction gives the full circle.")
      .def_static(
          "from_tangent",
          [](py::handle start, py::handle tangent, py::handle end, py::handle dtype) {
            return Build(dtype, start, [&](auto tag) {
              using T = decltype(tag);
              return Math<T>::ArcFromTangent(P<T>(start, "start"), V<T>(tangent, "tangent"), P<T>(end, "end"));
            });
          },
          py::arg("start"), py::arg("tangent"), py::arg("end"), py::arg("dtype") = py::none(),
          "The arc that leaves start along tangent and ends at end ('collinear' when end lies on the\n"
          "tangent line).")
      .def_static(
          "fillet",
          [](py::handle point1, py::handle direction1, py::handle point2, py::handle direction2, double radius,
             py::handle dtype) {
            return Build(dtype, point1, [&](auto tag) {
              using T = decltype(tag);
              return Math<T>::Fillet(P<T>(point1, "point1"), V<T>(direction1, "direction1"), P<T>(point2, "point2"),
                                     V<T>(direction2, "direction2"), T(radius));
            });
          },
          py::arg("point1"), py::arg("direction1"), py::arg("point2"), py::arg("direction2"), py::arg("radius"),
          py::arg("dtype") = py::none(),
          "The fillet of the given radius between two lines that meet, each through its point along its\n"
          "direction (pointing from the corner along the part kept): the short arc from the tangent\n"
          "point on line 1 to that on line 2. Lines that do not meet: 'bad_input'; parallel: 'collinear'.")
      .def_property_readonly(
          "status", Property([](const auto& arc) { return StatusName(arc.status); }),
          "'ok', 'coincident' (two defining points coincide, or a zero radius), 'collinear' (no circle)\n"
          "or 'bad_input' (nan, infinity, a radius that is not positive, lines that do not meet).")
      .def_property_readonly(
          "center", Property([](const auto& arc) { return Vector<Scalar<decltype(arc)>>(arc.center); }), "Centre (3,).")
      .def_property_readonly("normal",
                             Property([](const auto& arc) { return Vector<Scalar<decltype(arc)>>(arc.normal); }),
                             "Unit normal (3,) of the arc's plane.")
      .def_property_readonly("start_direction", Property([](const auto& arc) {
                               return Vector<Scalar<decltype(arc)>>(arc.startDirection);
                             }),
                             "Unit direction (3,) from the centre to the start.")
      .def_property_readonly("radius", Property([](const auto& arc) { return Value(arc.radius); }), "Radius.")
      .def_property_readonly("sweep", Property([](const auto& arc) { return Value(arc.sweep); }),
                             "Sweep in radians, in (0, 2 pi].")
      .def_property_readonly(
          "length", Property([](const auto& arc) { return Value(Math<Scalar<decltype(arc)>>::ArcLength(arc)); }),
          "radius * sweep.")
      .def(
          "points_at", [](const Arc& a, py::handle t) { return AlongArc(a, t, false); }, py::arg("t"),
          "Points (k, 3) at the parameters t (0 start, 1 end, not clamped); nan for a non-finite t.")
      .def(
          "tangents_at", [](const Arc& a, py::handle t) { return AlongArc(a, t, true); }, py::arg("t"),
          "Unit tangents (k, 3), the direction of travel, at the parameters t.")
      .def(
          "tessellate",
          [](const Arc& a, double chordTolerance, double maxAngle) {
            return a.Visit([&](const auto& arc) {
              using T = Scalar<decltype(arc)>;
              return PointsOrNone<T>([&](Points<T>& points) {
                return Math<T>::TessellateArc(arc, T(chordTolerance), T(maxAngle), points) == ZmArcOk;
              });
            });
          },
          py::arg("chord_tolerance"), py::arg("max_angle") = 0.0,
          "Points (m, 3) along the arc, evenly spaced in angle, ends included, with the fewest chords\n"
          "whose sagitta is within chord_tolerance and whose angle is within max_angle (radians; a\n"
          "limit <= 0 is dropped; a chord never spans more than pi). None for an arc that is not 'ok'\n"
          "or more than 2^24 chords.")
      .def("__repr__", Property([](const auto& arc) {
             return "<zemcalc.Arc " + StatusName(arc.status) + " center (" + std::to_string(double(arc.center.x)) +
                    ", " + std::to_string(double(arc.center.y)) + ", " + std::to_string(double(arc.center.z)) +
                    ") radius " + std::to_string(double(arc.radius)) + " sweep " + std::to_string(double(arc.sweep)) +
                    ">";
           }));

  m.def(
      "tessellate_ellipse",
      [](py::handle center, py::handle majorAxis, py::handle normal, double a, double b, double t0, double t1,
         double chordTolerance, double maxAngle, py::handle dtype) {
        return WithPrecision(dtype, center, [&](auto tag) {
          using T = decltype(tag);
          ZmEllipseT<T> e;
          e.center = P<T>(center, "center");
          e.majorAxis = V<T>(majorAxis, "major_axis");
          e.normal = V<T>(normal, "normal");
          e.a = T(a);
          e.b = T(b);
          return PointsOrNone<T>([&](Points<T>& points) {
            return Math<T>::TessellateEllipse(e, T(t0), T(t1), T(chordTolerance), T(maxAngle), points) == ZmArcOk;
          });
        });
      },
      py::arg("center"), py::arg("major_axis"), py::arg("normal"), py::arg("a"), py::arg("b"), py::arg("t0"),
      py::arg("t1"), py::arg("chord_tolerance"), py::arg("max_angle") = 0.0, py::arg("dtype") = py::none(),
      "Points (m, 3) of the ellipse center + a cos(t) u + b sin(t) (normal x u) (u the unit major axis,\n"
      "a >= b > 0) from parameter t0 to t1, evenly spaced in t, with the fewest chords whose deviation\n"
      "is within chord_tolerance and whose tangent turn is within max_angle. None for a bad ellipse.");
}

}  // namespace zmpy
