#pragma once

// The conversions between numpy arrays and the library's value types shared by every family of
// the module. A curve is an (n, 2) array, points are (n, 3), symmetric tensors (n, 6) in the order
// xx, yy, zz, xy, yz, xz. The precision of the call follows the array: float32 runs the float
// twin, every other real dtype is converted once to float64 and runs the double twin. Each
// conversion is one copy (the library's arrays own their storage), never a Python loop.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>
#include <wbcore/WbString.h>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmPoint2.h"
#include "zemcalc/ZmPoint3.h"

namespace zmpy {

namespace py = pybind11;

template <class T>
using Array = py::array_t<T, py::array::c_style | py::array::forcecast>;
template <class T>
using Curve = WbArrayTempl<ZmPoint2T<T>>;
template <class T>
using Points = WbArrayTempl<ZmPoint3T<T>>;

static_assert(sizeof(ZmPoint2T<double>) == 2 * sizeof(double) && sizeof(ZmPoint2T<float>) == 2 * sizeof(float),
              "a 2D point is two scalars, so a curve is copied as an (n, 2) block");
static_assert(sizeof(ZmPoint3T<double>) == 3 * sizeof(double) && sizeof(ZmPoint3T<float>) == 3 * sizeof(float),
              "a 3D point is three scalars, so points are copied as an (n, 3) block");

// Raised for every failure the library reports with a message (a subclass of ValueError).
py::object& ErrorType();
// Raises zemcalc.Error with the library's message when err is not null.
void Check(const WbErrObj* err);

std::string ToUtf8(const WbString& text);
WbString FromUtf8(const std::string& text);

// True when obj is a numpy array (or anything numpy converts) of dtype float32.
bool IsFloat32(py::handle obj);

// Calls f(double()) or f(float()) after the dtype of the array that decides the precision.
template <class F>
auto WithTwin(py::handle decider, F&& f) {
  if (IsFloat32(decider)) return f(float());
  return f(double());
}
// The same from a numpy dtype given by name or type (np.float64 when None).
bool IsFloat32Dtype(py::handle dtype);
template <class F>
auto WithDtype(py::handle dtype, F&& f) {
  if (IsFloat32Dtype(dtype)) return f(float());
  return f(double());
}

// obj as a C-contiguous array of T, shape (n, columns) (columns 0: any shape). Anything else
// raises ValueError naming what and the shape received.
template <class T>
Array<T> Table(py::handle obj, py::ssize_t columns, const char* what) {
  Array<T> a = Array<T>::ensure(obj);
  if (!a) throw py::value_error(std::string(what) + " must be a real numeric array");
  if (columns > 0 && (a.ndim() != 2 || a.shape(1) != columns)) {
    std::string shape = "(";
    for (py::ssize_t i = 0; i < a.ndim(); ++i) shape += (i ? ", " : "") + std::to_string(a.shape(i));
    if (a.ndim() == 1) shape += ",";
    throw py::value_error(std::string(what) + " must be an (n, " + std::to_string(columns) + ") array, got shape " +
                          shape + ")");
  }
  return a;
}

// Reserves room for n items. A large buffer is first offered transparent huge pages where the
// system grants them on request, as numpy does for its own arrays: touching a fresh 16 MB buffer
// page by page in 4 KB pages otherwise costs more than filtering it.
template <class Item>
void ReserveLarge(WbArrayTempl<Item>& items, std::uint64_t n) {
  if (n <= items.GetSize()) return;
  items.Reserve(n);
#if defined(__linux__) && defined(MADV_HUGEPAGE)
  constexpr std::uintptr_t kPage = 4096;
  const auto begin = reinterpret_cast<std::uintptr_t>(items.GetData());
  const std::uintptr_t end = begin + n * sizeof(Item), first = (begin + kPage - 1) & ~(kPage - 1);
  if (n * sizeof(Item) >= (std::uint64_t(4) << 20) && end > first)
    madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);  // advice only: failure is harmless
#endif
}

// The rows of an (n, k) array copied into items, an array of points of k scalars, whose storage
// is reused when it is large enough. Needs no interpreter lock.
template <class Item, class T>
void Fill(WbArrayTempl<Item>& items, const Array<T>& a) {
  static_assert(std::is_trivially_copyable<Item>::value, "points are copied as blocks of scalars");
  const auto n = static_cast<std::uint64_t>(a.shape(0));
  ReserveLarge(items, n);
  items.SetSize(n);
  if (n > 0) std::memcpy(static_cast<void*>(items.GetData()), a.data(), sizeof(Item) * n);
}

// A coordinate array (n, k) copied into the library's array of points of k scalars.
template <class Item, class T, int k>
WbArrayTempl<Item> ToItems(py::handle obj, const char* what) {
  WbArrayTempl<Item> items;
  Fill(items, Table<T>(obj, k, what));
  return items;
}
template <class Item, class T, int k>
Array<T> FromItems(const WbArrayTempl<Item>& items) {
  Array<T> a({static_cast<py::ssize_t>(items.GetSize()), static_cast<py::ssize_t>(k)});
  if (items.GetSize() > 0) std::memcpy(a.mutable_data(), items.GetData(), sizeof(Item) * items.GetSize());
  return a;
}

// The library's array handed over to numpy without a copy: the array owns it from then on.
template <class Item, class T, int k>
Array<T> FromItems(WbArrayTempl<Item>&& items) {
  auto* owner = new WbArrayTempl<Item>(std::move(items));
  py::capsule release(owner, [](void* p) { delete static_cast<WbArrayTempl<Item>*>(p); });
  return Array<T>({static_cast<py::ssize_t>(owner->GetSize()), static_cast<py::ssize_t>(k)},
                  reinterpret_cast<const T*>(owner->GetData()), release);
}

template <class T>
Curve<T> ToCurve(py::handle obj, const char* what = "curve") {
  return ToItems<ZmPoint2T<T>, T, 2>(obj, what);
}
template <class T>
Array<T> FromCurve(const Curve<T>& curve) {
  return FromItems<ZmPoint2T<T>, T, 2>(curve);
}
template <class T>
Array<T> FromCurve(Curve<T>&& curve) {
  return FromItems<ZmPoint2T<T>, T, 2>(std::move(curve));
}
template <class T>
Points<T> ToPoints(py::handle obj, const char* what = "points") {
  return ToItems<ZmPoint3T<T>, T, 3>(obj, what);
}
template <class T>
Array<T> FromPoints(Points<T>&& points) {
  return FromItems<ZmPoint3T<T>, T, 3>(std::move(points));
}

// A unit of one base type given by its catalogue index or its symbol ("ms"); a symbol outside
// the catalogue raises zemcalc.Error.
int UnitIndex(int type, py::handle unit);

// One 3D point or vector from a sequence of three numbers.
template <class P>
P ToPoint3(py::handle obj, const char* what) {
  using T = std::remove_cv_t<decltype(P().x)>;
  Array<T> a = Array<T>::ensure(obj);
  if (!a || a.size() != 3) throw py::value_error(std::string(what) + " must hold three numbers");
  const T* v = a.data();
  return P(v[0], v[1], v[2]);
}

// The invalid marker becomes NaN on the way out; an optional argument given as None becomes the
// marker on the way in.
template <class T>
T MarkerToNan(T v) {
  return v == zm::Invalid<T>() ? std::numeric_limits<T>::quiet_NaN() : v;
}
template <class T>
T Optional(const py::object& v) {
  return v.is_none() ? zm::Invalid<T>() : v.cast<T>();
}
template <class T>
py::object ScalarOrNone(unsigned char ok, T v) {
  return ok ? py::object(py::float_(v)) : py::object(py::none());
}

}  // namespace zmpy
