// The extension module: the error type, the shared conversions and the families' bindings.
#include "arrays.h"
#include "families.h"

namespace zmpy {

py::object& ErrorType() {
  // Leaked on purpose: it must outlive every binding that raises it, interpreter shutdown too.
  static py::object* type = nullptr;
  if (type == nullptr) type = new py::object();
  return *type;
}

void Check(const WbErrObj* err) {
  if (err == nullptr) return;
  PyErr_SetString(ErrorType().ptr(), ToUtf8(WbString(err->GetMessage())).c_str());
  throw py::error_already_set();
}

std::string ToUtf8(const WbString& text) {
  std::string out;
  for (wchar_t c : text.Std()) {
    auto u = static_cast<std::uint32_t>(c);
    if (u > 0x10FFFF || (u >= 0xD800 && u <= 0xDFFF)) u = 0xFFFD;
    if (u < 0x80) {
      out += static_cast<char>(u);
    } else if (u < 0x800) {
      out += static_cast<char>(0xC0 | (u >> 6));
      out += static_cast<char>(0x80 | (u & 0x3F));
    } else if (u < 0x10000) {
      out += static_cast<char>(0xE0 | (u >> 12));
      out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (u & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (u >> 18));
      out += static_cast<char>(0x80 | ((u >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (u & 0x3F));
    }
  }
  return out;
}

WbString FromUtf8(const std::string& text) {
  // Python hands over valid UTF-8 (str is encoded by pybind11), so decoding needs no recovery.
  std::wstring out;
  for (std::size_t i = 0; i < text.size();) {
    const auto b = static_cast<unsigned char>(text[i]);
    const int extra = b < 0x80 ? 0 : b < 0xE0 ? 1 : b < 0xF0 ? 2 : 3;
    std::uint32_t u = extra == 0 ? b : b & (0x3F >> extra);
    for (int k = 1; k <= extra && i + k < text.size(); ++k) u = (u << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
    out += static_cast<wchar_t>(u);
    i += static_cast<std::size_t>(extra) + 1;
  }
  return WbString(out);
}

bool IsFloat32Dtype(py::handle dtype) {
  if (dtype.is_none()) return false;
  return py::dtype::from_args(py::reinterpret_borrow<py::object>(dtype)).equal(py::dtype::of<float>());
}

bool IsFloat32(py::handle obj) {
  return py::isinstance<py::array>(obj) && py::reinterpret_borrow<py::array>(obj).dtype().equal(py::dtype::of<float>());
}

}  // namespace zmpy

PYBIND11_MODULE(_zemcalc, m) {
  using namespace zmpy;
  m.doc() = "Mathematics, signals, units and geometry of the zemcalc library over numpy arrays.";
  ErrorType() = py::reinterpret_steal<py::object>(
      PyErr_NewExceptionWithDoc("zemcalc.Error", "A failure that the library reports with a message.", PyExc_ValueError, nullptr));
  m.attr("Error") = ErrorType();
  m.attr("INVALID") = static_cast<double>(zm::kInvalid);
  BindCurves(m);
  BindFilters(m);
  BindSpectra(m);
  BindUnits(m);
  BindTensors(m);
  BindMaterials(m);
  BindGeometry(m);
  BindInjury(m);
  BindMesh(m);
  BindFitting(m);
  BindArcs(m);
  BindPolygons(m);
}
