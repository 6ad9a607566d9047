// Filters: one Python class per filter family, each object holding the double and the float
// twin built from the same arguments, so that a float32 curve runs the float class and any other
// curve the double class. Filters made by name come from the library's runtime classes.
//
// A new filter family is one BindKind line: its Python name, its twins and its constructor.
#include <memory>
#include <mutex>

#include "arrays.h"
#include "families.h"
#include "zemcalc/ZmFilter.h"
#include "zemcalc/ZmFilterFixed.h"
#include "zemcalc/ZmUnitDim.h"

namespace zmpy {
namespace {

struct Filter {
  std::unique_ptr<ZmFilterd> d;
  std::unique_ptr<ZmFilterf> f;
  std::string name;  // the runtime-class name of the family, without the precision letter
  // Filtering normalises a kernel once, at the first call: one call at a time per object.
  std::unique_ptr<std::mutex> busy = std::make_unique<std::mutex>();

  py::array Compute(py::handle curveObj) {
    return WithTwin(curveObj, [&](auto tag) -> py::array {
      using T = decltype(tag);
      const Curve<T> curve = ToCurve<T>(curveObj);
      Curve<T> out;
      ReserveLarge(out, curve.GetSize());
      const WbErrObj* err = nullptr;
      {
        py::gil_scoped_release release;
        std::lock_guard<std::mutex> lock(*busy);
        err = Twin<T>().Compute(curve, out);
      }
      Check(err);
      return FromCurve(std::move(out));
    });
  }
  template <class T>
  ZmFilterT<T>& Twin() {
    if constexpr (std::is_same<T, float>::value) {
      return *f;
    } else {
      return *d;
    }
  }
  template <class Kind>
  Kind* As() {
    return dynamic_cast<Kind*>(d.get());
  }
};

template <class Tag>
struct FilterOf : Filter {};

template <class T>
std::unique_ptr<T> FromName(const std::string& name) {
  WbObject* object = WbRuntimeClass::CreateObject(FromUtf8(name));
  auto* filter = dynamic_cast<T*>(object);
  if (filter == nullptr) delete object;
  return std::unique_ptr<T>(filter);
}

Filter MakeFromName(std::string name) {
  const char last = name.empty() ? '\0' : name.back();
  if ((last == 'd' || last == 'f') && (FromName<ZmFilterd>(name) || FromName<ZmFilterf>(name))) name.pop_back();
  Filter filter;
  filter.d = FromName<ZmFilterd>(name + "d");
  filter.f = FromName<ZmFilterf>(name + "f");
  filter.name = name;
  if (!filter.d || !filter.f) {
    PyErr_SetString(ErrorType().ptr(), ("'" + name + "' names no filter that can be created by name").c_str());
    throw py::error_already_set();
  }
  return filter;
}

template <class Tag, class D, class F, class... A>
FilterOf<Tag> Make(const char* name, const A&... args) {
  FilterOf<Tag> filter;
  filter.d = std::make_unique<D>(args...);
  filter.f = std::make_unique<F>(args...);
  filter.name = name;
  return filter;
}

template <class Tag, class Factory, class... Extra>
py::class_<FilterOf<Tag>, Filter> BindKind(py::module_& m, const char* pyName, const char* doc, Factory factory,
                                           const Extra&... extra) {
  py::class_<FilterOf<Tag>, Filter> cls(m, pyName, doc);
  cls.def(py::init(factory), extra...);
  return cls;
}

// Members of the symmetric-kernel family (every filter but the sliding-window average).
py::object KernelCoefficients(Filter& filter) {
  auto* kernel = filter.As<ZmFilterMAd>();
  if (kernel == nullptr) return py::none();
  const WbArrayTempl<double>& c = kernel->GetCoefficients();
  Array<double> out(static_cast<py::ssize_t>(c.GetSize()));
  if (c.GetSize()) std::memcpy(out.mutable_data(), c.GetData(), sizeof(double) * c.GetSize());
  return std::move(out);
}

int GetExtrapolation(Filter& filter) {
  if (auto* k = filter.As<ZmFilterMAd>()) return k->GetExtrapolationType();
  if (auto* s = filter.As<ZmFilterSWAd>()) return s->GetExtrapolationType();
  return -1;
}

void SetExtrapolation(Filter& filter, int e) {
  const auto value = static_cast<Extrapolation>(e);
  if (auto* k = filter.As<ZmFilterMAd>()) {
    k->SetExtrapolationType(value);
    dynamic_cast<ZmFilterMAf&>(*filter.f).SetExtrapolationType(value);
  } else if (auto* s = filter.As<ZmFilterSWAd>()) {
    s->SetExtrapolationType(value);
    dynamic_cast<ZmFilterSWAf&>(*filter.f).SetExtrapolationType(value);
  }
}

struct MVA;
struct Weighted;
struct Cosine;
struct SWA;
struct CFC600;
struct CFC180;
struct CFC60;
struct FIRF16;

template <class T>
WbArrayTempl<T> Weights(py::handle obj) {
  Array<T> a = Table<T>(obj, 0, "weights");
  if (a.ndim() > 1) throw py::value_error("weights must be a sequence of numbers");
  WbArrayTempl<T> w;
  for (py::ssize_t i = 0; i < a.size(); ++i) w.Add(a.data()[i]);
  return w;
}

template <class Tag, class D, class F>
void BindCFC(py::module_& m, const char* pyName, const char* name) {
  BindKind<Tag>(m, pyName,
                "Channel-frequency-class filter for curves sampled at 10 kHz: it accepts time steps from\n"
                "5e-5 s to 1.5e-4 s, expressed in time_unit (catalogue index or symbol: 's', 'ms', 'us').",
                [name](py::object unit) {
                  return Make<Tag, D, F>(name, static_cast<_ZmUnitTime>(UnitIndex(ZmUnitTypeTime, unit)));
                },
                py::arg("time_unit") = 0);
}

}  // namespace

void BindFilters(py::module_& m) {
  py::class_<Filter>(m, "Filter",
                     "A filter of sampled curves. compute() returns the filtered copy of an (n, 2) curve;\n"
                     "float32 curves run the single-precision twin. A refused curve raises zemcalc.Error.")
      .def_static("from_name", &MakeFromName, py::arg("name"),
                  "A filter from its library class name, with or without the precision letter\n"
                  "('ZmFilterCFC60_10kHzd', 'ZmFilterMVA'), with the defaults of that class.")
      .def("compute", &Filter::Compute, py::arg("curve"), "The filtered copy of the curve (same abscissae).")
      .def("__call__", &Filter::Compute, py::arg("curve"), "Same as compute().")
      .def_readonly("name", &Filter::name, "The library class name, without the precision letter.")
      .def_property("extrapolation", &GetExtrapolation, &SetExtrapolation,
                    "How the curve is continued beyond its ends: 0 zeros, 1 constant, 2 linear, 3 point\n"
                    "reflection (other values are refused when filtering).")
      .def_property_readonly(
          "kernel_size", [](Filter& f) { return f.As<ZmFilterMAd>() ? f.As<ZmFilterMAd>()->GetKernelSize() : 0; },
          "Taps of the kernel (0 for the sliding-window average).")
      .def_property_readonly("coefficients", &KernelCoefficients,
                             "The half kernel of the double twin, outermost pair first (None without a kernel).")
      .def("__repr__", [](const Filter& f) { return "<zemcalc filter " + f.name + ">"; });

  using IntE = int;
  BindKind<MVA>(m, "MovingAverage", "Moving average of n samples (weights 1/n, rounded to float).",
                [](int n, IntE e) { return Make<MVA, ZmFilterMVAd, ZmFilterMVAf>("ZmFilterMVA", n, e); },
                py::arg("n") = 3, py::arg("extrapolation") = 3);
  BindKind<Weighted>(
      m, "WeightedMovingAverage",
      "Moving average of n samples whose half kernel, outermost pair first, takes the weights (the\n"
      "last one repeated); the weights are not normalised.",
      [](int n, py::object weights, IntE e) {
        FilterOf<Weighted> filter;
        filter.d = std::make_unique<ZmFilterMVAWeightedd>(n, Weights<double>(weights), e);
        filter.f = std::make_unique<ZmFilterMVAWeightedf>(n, Weights<float>(weights), e);
        filter.name = "ZmFilterMVAWeighted";
        return filter;
      },
      py::arg("n") = 3, py::arg("weights") = py::tuple(), py::arg("extrapolation") = 3);
  BindKind<Cosine>(m, "CosineFilter", "The cosine-window filter of n taps, normalised to a unit sum.",
                   [](int n) { return Make<Cosine, ZmFilterCosd, ZmFilterCosf>("ZmFilterCos", n); }, py::arg("n") = 5);
  BindKind<SWA>(
      m, "SlidingWindowAverage",
      "Mean of the broken line over a window of the given width around each sample (before = the\n"
      "share of the window before it: 0.5 centred, 1 causal). Works at any sampling.",
      [](double width, double before, IntE e) {
        auto filter = Make<SWA, ZmFilterSWAd, ZmFilterSWAf>("ZmFilterSWA", width, before);
        SetExtrapolation(filter, e);
        return filter;
      },
      py::arg("width") = 1.0e-3, py::arg("before") = 0.5, py::arg("extrapolation") = 3);
  BindCFC<CFC600, ZmFilterCFC600_10kHzd, ZmFilterCFC600_10kHzf>(m, "CFC600", "ZmFilterCFC600_10kHz");
  BindCFC<CFC180, ZmFilterCFC180_10kHzd, ZmFilterCFC180_10kHzf>(m, "CFC180", "ZmFilterCFC180_10kHz");
  BindCFC<CFC60, ZmFilterCFC60_10kHzd, ZmFilterCFC60_10kHzf>(m, "CFC60", "ZmFilterCFC60_10kHz");
  BindKind<FIRF16>(m, "FIRF16", "The fixed 50-tap low-pass FIRF16 (kernel sum 0.9974511, any time step).",
                   [] { return Make<FIRF16, ZmFilterFIRF16d, ZmFilterFIRF16f>("ZmFilterFIRF16"); });
}

}  // namespace zmpy
