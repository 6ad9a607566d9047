// Polygons and grids: the properties and frame of a 3D polygon, signed areas, regular points
// over a rectangle or inside a polygon with holes, and evenly spaced abscissae. A polygon is an
// (n, 3) array of its vertices in order ((n, 2) for the planar signed area). Input the library
// refuses without a message gives None (a grid, a frame) or nan (an area), as documented.
#include <iterator>

#include "families.h"
#include "shapes.h"
#include "zemcalc/ZmMathGrid.h"
#include "zemcalc/ZmMathPolygon.h"

namespace zmpy {
namespace {

const char* const kPolygonStatus[] = {"ok", "too_few_points", "degenerate", "bad_input"};
const char* const kAxes[] = {"first_edge", "mid_lines"};

ZmPolygonAxis Axis(const std::string& name) {
  for (std::size_t i = 0; i < std::size(kAxes); ++i)
    if (name == kAxes[i]) return static_cast<ZmPolygonAxis>(i);
  throw py::value_error("unknown polygon axis '" + name + "' (first_edge or mid_lines)");
}

py::dict Properties(py::handle verticesObj) {
  return WithTwin(verticesObj, [&](auto tag) {
    using T = decltype(tag);
    const ZmPolygonPropertiesT<T> p = ZmMathPolygonT<T>::PolygonProperties(ToPoints<T>(verticesObj, "vertices"));
    py::dict d;
    const auto s = static_cast<std::size_t>(p.status);
    d["status"] = s < std::size(kPolygonStatus) ? kPolygonStatus[s] : "unknown";
    d["centroid"] = Vector<T>(p.centroid);
    d["vertex_average"] = Vector<T>(p.vertexAverage);
    d["normal"] = Vector<T>(p.normal);
    d["area"] = Value(p.area);
    d["out_of_plane_rms"] = Value(p.outOfPlaneRms);
    d["convex"] = p.convex != 0;
    return d;
  });
}

// (n, 2) vertices: the shoelace area; (n, 3): the area seen along reference.
py::float_ SignedArea(py::handle verticesObj, py::handle reference) {
  return WithTwin(verticesObj, [&](auto tag) {
    using T = decltype(tag);
    const Array<T> table = Table<T>(verticesObj, 0, "vertices");
    if (table.ndim() == 2 && table.shape(1) == 2)
      return Value(ZmMathPolygonT<T>::SignedArea(ToCurve<T>(table, "vertices")));
    if (reference.is_none()) throw py::value_error("the signed area of (n, 3) vertices needs a reference direction");
    return Value(
        ZmMathPolygonT<T>::SignedArea(ToPoints<T>(table, "vertices"), ToPoint3<ZmVector3T<T>>(reference, "reference")));
  });
}

py::object PolygonFrame(py::handle verticesObj, const std::string& axis) {
  const ZmPolygonAxis which = Axis(axis);
  return WithTwin(verticesObj, [&](auto tag) -> py::object {
    using T = decltype(tag);
    ZmFrameT<T> frame;
    if (ZmMathPolygonT<T>::PolygonFrame(ToPoints<T>(verticesObj, "vertices"), which, frame) != ZmPolygonOk)
      return py::none();
    return py::cast(Frame{ZmFrameT<double>(frame)});
  });
}

py::object PolygonGrid(py::handle polygonObj, py::handle origin, double spacing, py::handle holesObj) {
  return WithTwin(polygonObj, [&](auto tag) {
    using T = decltype(tag);
    const Points<T> polygon = ToPoints<T>(polygonObj, "polygon");
    WbArrayTempl<Points<T>> holes;
    if (!holesObj.is_none())
      for (py::handle hole : holesObj) holes.Add(ToPoints<T>(hole, "hole"));
    const auto o = ToPoint3<ZmPoint3T<T>>(origin, "origin");
    return PointsOrNone<T>([&](Points<T>& points) {
      return ZmMathGridT<T>::PolygonGrid(polygon, holesObj.is_none() ? nullptr : &holes, o, T(spacing), points) >= 0;
    });
  });
}

}  // namespace

void BindPolygons(py::module_& m) {
  m.def("polygon_properties", &Properties, py::arg("vertices"),
        "Properties of the (n, 3) polygon (a last vertex equal to the first is dropped): dict of 'status'\n"
        "('ok', 'too_few_points', 'degenerate', 'bad_input'), 'centroid' (of the area), 'vertex_average',\n"
        "'normal' (unit Newell normal), 'area', 'out_of_plane_rms' and 'convex'. Fields a failed polygon\n"
        "cannot give are nan; a degenerate one keeps its vertex average and area 0.");
  m.def("signed_area", &SignedArea, py::arg("vertices"), py::arg("reference") = py::none(),
        "Signed area of an (n, 2) polygon (positive counter-clockwise; reference is not used), or of an\n"
        "(n, 3) polygon seen along reference (positive counter-clockwise about it); nan for unusable\n"
        "vertices or reference.");
  m.def("polygon_frame", &PolygonFrame, py::arg("vertices"), py::arg("axis") = "first_edge",
        "The Cartesian Frame of the (n, 3) polygon at its area centroid, Z the Newell normal, X along the\n"
        "first edge ('first_edge') or, for a quadrilateral, the bisector of its mid-lines ('mid_lines');\n"
        "None when polygon_properties' status is not 'ok'.");
  m.def(
      "rectangle_grid",
      [](const Frame& frame, double lengthX, double lengthY, double spacingX, double spacingY, py::handle dtype) {
        return WithDtype(dtype, [&](auto tag) {
          using T = decltype(tag);
          const ZmFrameT<T> f(frame.frame);
          return PointsOrNone<T>([&](Points<T>& points) {
            return ZmMathGridT<T>::RectangleGrid(f, T(lengthX), T(lengthY), T(spacingX), T(spacingY), points) >= 0;
          });
        });
      },
      py::arg("frame"), py::arg("length_x"), py::arg("length_y"), py::arg("spacing_x"), py::arg("spacing_y"),
      py::arg("dtype") = py::none(),
      "Points (n, 3) origin + i spacing_x X + j spacing_y Y of the frame, i fastest, for i up to\n"
      "length_x / spacing_x (the far side included when the length is a whole number of spacings);\n"
      "None for bad input (non-finite, spacing <= 0, negative length, more than 2^24 points).");
  m.def("polygon_grid", &PolygonGrid, py::arg("polygon"), py::arg("origin"), py::arg("spacing"),
        py::arg("holes") = py::none(),
        "Points (n, 3) of the square lattice of the spacing through origin, along the axes of the\n"
        "polygon's 'first_edge' frame, inside the (m, 3) polygon and outside the holes (a list of\n"
        "(k, 3) arrays), rows of increasing Y; a point on an edge may fall either side. None for bad input.");
  m.def(
      "range_grid",
      [](double start, double stop, double maxSpacing, py::handle dtype) {
        return WithDtype(dtype, [&](auto tag) -> py::object {
          using T = decltype(tag);
          WbArrayTempl<T> abscissae;
          if (ZmMathGridT<T>::RangeGrid(T(start), T(stop), T(maxSpacing), abscissae) < 0) return py::none();
          Array<T> out(static_cast<py::ssize_t>(abscissae.GetSize()));
          std::copy(abscissae.begin(), abscissae.end(), out.mutable_data());
          return std::move(out);
        });
      },
      py::arg("start"), py::arg("stop"), py::arg("max_spacing"), py::arg("dtype") = py::none(),
      "The fewest evenly spaced abscissae (n,) from start to stop (both included, the last exactly\n"
      "stop) no farther apart than max_spacing; None for bad input.");
}

}  // namespace zmpy
