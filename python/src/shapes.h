#pragma once

// What the geometric families share: the frame object of the module, the conversion of a
// library point or vector into a small numpy vector, and the choice of the twin for calls that
// take single points rather than arrays.
#include "arrays.h"
#include "zemcalc/ZmFrame.h"

namespace zmpy {

// A scalar of twin T as a Python float, the invalid marker as nan.
template <class T>
py::float_ Value(T v) {
  return py::float_(static_cast<double>(MarkerToNan(v)));
}

// A point or vector of k scalars as a new array of T, the marker as nan.
template <class T, class P>
py::array Vector(const P& p) {
  constexpr int k = sizeof(P) / sizeof(T);
  Array<T> a(k);
  const T* v = &p.x;
  for (int i = 0; i < k; ++i) a.mutable_data()[i] = MarkerToNan(v[i]);
  return std::move(a);
}

// The points that run(points) writes, run with the interpreter lock released, as an (m, 3)
// array; None when run reports that the library refused its input (returns false).
template <class T, class Run>
py::object PointsOrNone(Run run) {
  Points<T> points;
  bool ok = false;
  {
    py::gil_scoped_release release;
    ok = run(points);
  }
  if (!ok) return py::none();
  return FromPoints(std::move(points));
}

// Calls taking single points (sequences of numbers) run the twin that dtype names, or, when
// dtype is None, that of the first point (float32 when it is a float32 array, double else).
template <class F>
auto WithPrecision(py::handle dtype, py::handle first, F&& f) {
  if (dtype.is_none()) return WithTwin(first, std::forward<F>(f));
  return WithDtype(dtype, std::forward<F>(f));
}

// A frame kept in double precision; float32 arrays are converted through its float copy.
struct Frame {
  ZmFrameT<double> frame;

  template <class T>
  py::array Convert(py::handle pointsObj, bool toGlobal, bool vectors) const {
    const ZmFrameT<T> f(frame);
    Points<T> points = ToPoints<T>(pointsObj);
    {
      py::gil_scoped_release release;
      for (auto& p : points) {
        if (vectors) {
          const ZmVector3T<T> v(p.x, p.y, p.z);
          p = ZmPoint3T<T>(toGlobal ? f.LocalToGlobal(v) : f.GlobalToLocal(v));
        } else {
          p = toGlobal ? f.LocalToGlobal(p) : f.GlobalToLocal(p);
        }
      }
    }
    return FromPoints(std::move(points));
  }
  py::array Apply(py::handle points, bool toGlobal, bool vectors) const {
    return WithTwin(points, [&](auto tag) { return Convert<decltype(tag)>(points, toGlobal, vectors); });
  }
};

}  // namespace zmpy
