// Tensors over arrays: principal values and directions, strain modes and strain measures. A 3D
// symmetric tensor is a row xx, yy, zz, xy, yz, xz of an (n, 6) array, a 2D one xx, yy, xy of an
// (n, 3) array. The loops run in C++ with the interpreter released.
#include "arrays.h"
#include "families.h"
#include "zemcalc/ZmFrame.h"
#include "zemcalc/ZmMath.h"

namespace zmpy {
namespace {

// Applies row(in_row, out_row) to each row of an (n, columnsIn) array into a new (n, shape...)
// array whose rows hold columnsOut values.
template <class T, class Row>
Array<T> Rows(const Array<T>& in, std::vector<py::ssize_t> outShape, Row row) {
  outShape.insert(outShape.begin(), in.shape(0));
  Array<T> out(outShape);
  const py::ssize_t n = in.shape(0), inStride = in.shape(1), outStride = n ? out.size() / n : 0;
  const T* src = in.data();
  T* dst = out.mutable_data();
  py::gil_scoped_release release;
  for (py::ssize_t i = 0; i < n; ++i) row(src + i * inStride, dst + i * outStride);
  return out;
}

template <class Fn>
py::array OverTensors(py::handle obj, py::ssize_t columns, std::vector<py::ssize_t> outShape, Fn fn) {
  return WithTwin(obj, [&](auto tag) -> py::array {
    using T = decltype(tag);
    const Array<T> in = Table<T>(obj, columns, columns == 6 ? "tensors" : "2D tensors");
    return Rows<T>(in, outShape, [&](const T* t, T* o) { fn(tag, t, o); });
  });
}

template <class T>
void Store(const ZmVector3T<T>& v, T* o) {
  o[0] = v.x;
  o[1] = v.y;
  o[2] = v.z;
}

// An elementwise strain measure over an array of any shape.
template <class Fn>
py::array Elementwise(py::handle obj, Fn fn) {
  return WithTwin(obj, [&](auto tag) -> py::array {
    using T = decltype(tag);
    const Array<T> in = Table<T>(obj, 0, "strains");
    Array<T> out(std::vector<py::ssize_t>(in.shape(), in.shape() + in.ndim()));
    const T* src = in.data();
    T* dst = out.mutable_data();
    py::gil_scoped_release release;
    for (py::ssize_t i = 0; i < in.size(); ++i) dst[i] = fn(tag, src[i]);
    return std::move(out);
  });
}

}  // namespace

void BindTensors(py::module_& m) {
  m.def(
      "principal_values",
      [](py::handle t) {
        return OverTensors(t, 6, {3}, [](auto tag, const auto* v, auto* o) {
          ZmMathT<decltype(tag)>::Tensor3DToMainValues(v[0], v[1], v[2], v[3], v[4], v[5], o, o + 1, o + 2);
        });
      },
      py::arg("tensors"),
      "Principal values (n, 3), s1 >= s2 >= s3, of (n, 6) symmetric tensors xx, yy, zz, xy, yz, xz\n"
      "(closed-form solution of the characteristic cubic).");
  m.def(
      "principal_directions",
      [](py::handle t) {
        return WithTwin(t, [&](auto tag) -> py::tuple {
          using T = decltype(tag);
          const Array<T> in = Table<T>(t, 6, "tensors");
          const py::ssize_t n = in.shape(0);
          Array<T> values({n, py::ssize_t(3)}), directions({n, py::ssize_t(3), py::ssize_t(3)});
          const T* v = in.data();
          T* s = values.mutable_data();
          T* d = directions.mutable_data();
          {
            py::gil_scoped_release release;
            for (py::ssize_t i = 0; i < n; ++i, v += 6, s += 3, d += 9) {
              ZmVector3T<T> d1, d2, d3;
              ZmMathT<T>::Tensor3DToVectors3D(v[0], v[1], v[2], v[3], v[4], v[5], s, s + 1, s + 2, &d1, &d2, &d3);
              Store(d1, d);
              Store(d2, d + 3);
              Store(d3, d + 6);
            }
          }
          return py::make_tuple(values, directions);
        });
      },
      py::arg("tensors"),
      "(values (n, 3), directions (n, 3, 3)): directions[i, k] is the unit direction of values[i, k];\n"
      "d2 = d1 x d3. Multiple eigenvalues get the library's fixed fallback directions.");
  m.def(
      "principal_values_2d",
      [](py::handle t) {
        return OverTensors(t, 3, {2}, [](auto tag, const auto* v, auto* o) {
          ZmMathT<decltype(tag)>::Tensor2DToMainValues(v[0], v[1], v[2], o, o + 1);
        });
      },
      py::arg("tensors"), "Principal values (n, 2), s1 >= s2, of (n, 3) in-plane tensors xx, yy, xy.");
  m.def(
      "strain_mode",
      [](py::handle t) {
        return OverTensors(t, 3, {}, [](auto tag, const auto* v, auto* o) {
          *o = ZmMathT<decltype(tag)>::StrainTensor2DToMode(v[0], v[1], v[2], nullptr);
        });
      },
      py::arg("tensors"),
      "Mode angle in degrees of (n, 3) in-plane strain tensors: 45 equibiaxial, 0 plane strain,\n"
      "-45 pure shear; -90 for the zero tensor; NaN for a NaN component.");
  m.def(
      "plane_strain_mode",
      [](py::handle t) {
        return OverTensors(t, 6, {}, [](auto tag, const auto* v, auto* o) {
          *o = ZmMathT<decltype(tag)>::PlaneTensor3DToMode(v[0], v[1], v[2], v[3], v[4], v[5]);
        });
      },
      py::arg("tensors"), "Mode angle in degrees of plane strain states given as (n, 6) tensors.");
  m.def(
      "true_strain_tensors",
      [](py::handle t) {
        return OverTensors(t, 3, {3}, [](auto tag, const auto* v, auto* o) {
          using T = decltype(tag);
          ZmVector3T<T> tensor(v[0], v[1], v[2]);
          ZmMathT<T>::PureStrainTensor2TrueStrainTensor(tensor);
          Store(tensor, o);
        });
      },
      py::arg("tensors"),
      "Green-Lagrange (n, 3) in-plane strain tensors converted to logarithmic strain on the same\n"
      "principal axes (each principal value e becomes 0.5 ln(2e + 1), 0 below -0.5).");
  m.def(
      "engineering_to_true_strain",
      [](py::handle e) {
        return Elementwise(e, [](auto tag, auto v) { return ZmMathT<decltype(tag)>::EngineerStrain2TrueStrain(v); });
      },
      py::arg("strains"), "-ln(1 - e) elementwise.");
  m.def(
      "true_to_engineering_strain",
      [](py::handle e, bool compressive) {
        return Elementwise(e, [compressive](auto tag, auto v) {
          return ZmMathT<decltype(tag)>::TrueStrain2EngineerStrain(v, compressive ? 1 : 0);
        });
      },
      py::arg("strains"), py::arg("compressive") = false,
      "exp(e) - 1 elementwise, or 1 - exp(-e) when compressive.");
  m.def(
      "directional_value",
      [](py::handle t, py::handle dirObj) {
        return WithTwin(t, [&](auto tag) -> py::array {
          using T = decltype(tag);
          const auto dir = ToPoint3<ZmVector3T<T>>(dirObj, "direction");
          const Array<T> in = Table<T>(t, 6, "tensors");
          return Rows<T>(in, {}, [&](const T* v, T* o) {
            *o = ZmMathT<T>::ComputeDirectionalTensorValue(v[0], v[1], v[2], v[3], v[4], v[5], dir);
          });
        });
      },
      py::arg("tensors"), py::arg("direction"),
      "dir . (M dir) for each (n, 6) tensor M (the direction is not normalised).");
}

}  // namespace zmpy
