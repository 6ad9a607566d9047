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
#include "zemcalc/ZmFilterCFC.h"
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

  // The filter reads the numpy buffer itself when it is C-contiguous and of the twin's dtype
  // (any other array is converted once) and writes into the fresh result array: the points of
  // a curve are laid out as an (n, 2) array. No copy of the curve is made on the way.
  py::array Compute(py::handle curveObj) {
    return WithTwin(curveObj, [&](auto tag) -> py::array {
      using T = decltype(tag);
      const Array<T> in = Table<T>(curveObj, 2, "curve");
      Array<T> out({in.shape(0), py::ssize_t{2}});
      const auto* source = reinterpret_cast<const ZmPoint2T<T>*>(in.data());
      auto* target = reinterpret_cast<ZmPoint2T<T>*>(out.mutable_data());
      const auto count = static_cast<std::uint64_t>(in.shape(0));
      const WbErrObj* err = nullptr;
      {
        // Never wait for the object while holding the interpreter: release it first.
        py::gil_scoped_release release;
        std::lock_guard<std::mutex> lock(*busy);
        err = Twin<T>().ComputeSpan(source, count, target);
      }
      Check(err);
      return std::move(out);
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

// The CFC filter at any rate: both twins hold the same settings, changed through both at once.
struct CFCAny;
using CFCTwins = std::pair<ZmFilterCFCd*, ZmFilterCFCf*>;
CFCTwins CFCOf(Filter& filter) {
  return {dynamic_cast<ZmFilterCFCd*>(filter.d.get()), dynamic_cast<ZmFilterCFCf*>(filter.f.get())};
}
template <class Set>
void SetBoth(Filter& filter, Set set) {
  // A running compute() holds the object and takes the interpreter back before letting go of
  // it: wait for the object with the interpreter released (set touches no Python object).
  py::gil_scoped_release release;
  std::lock_guard<std::mutex> lock(*filter.busy);
  const CFCTwins twins = CFCOf(filter);
  set(*twins.first);
  set(*twins.second);
}

// A choice given by its number or by its lower-case name (names[i] is number i).
template <std::size_t N>
int Choice(py::handle value, const char* const (&names)[N], const char* what) {
  if (!py::isinstance<py::str>(value)) return value.cast<int>();
  const std::string name = value.cast<std::string>();
  for (std::size_t i = 0; i < N; ++i)
    if (name == names[i]) return static_cast<int>(i);
  std::string known;
  for (const char* n : names) known += std::string(known.empty() ? "" : ", ") + "'" + n + "'";
  throw py::value_error(std::string("unknown ") + what + " '" + name + "' (one of " + known + ")");
}
const char* const kEnds[] = {"reflection", "mirror", "constant", "none"};
const char* const kDesigns[] = {"j211", "iso6487"};

py::tuple CFCCoefficients(Filter& filter, double step) {
  ZmCFCCoefficients c{};
  Check(CFCOf(filter).first->ComputeCoefficients(step, c));
  return py::make_tuple(c.a0, c.a1, c.a2, c.b1, c.b2);
}

void BindCFCAny(py::module_& m) {
  // Each property reads the double twin and writes both.
#define ZMPY_CFC_PROPERTY(pyName, Get, Set, Type, doc)                                                      \
  .def_property(                                                                                           \
      pyName, [](Filter& f) { return CFCOf(f).first->Get(); },                                             \
      [](Filter& f, Type v) { SetBoth(f, [&](auto& c) { c.Set(v); }); }, doc)
  BindKind<CFCAny>(
      m, "CFCFilter",
      "The channel-frequency-class low-pass filter at any sampling rate: a 2-pole Butterworth\n"
      "recursion run forward then backward (4 poles, no phase shift), its coefficients derived from\n"
      "the class (Hz) and the curve's mean time step in time_unit (catalogue index or symbol).\n"
      "ends: how the curve is continued beyond its ends, 'reflection' (point reflection, like\n"
      "scipy's sosfiltfilt padtype 'odd'), 'mirror', 'constant' or 'none' (0 to 3). design: the\n"
      "constant between class and design frequency, 'j211' (2.0775) or 'iso6487' (25/12).\n"
      "Refused curves (uneven steps beyond step_tolerance, rate below 10 x class unless\n"
      "allow_low_rate, ...) raise zemcalc.Error with the library's message.",
      [](double cfc, py::object unit, py::object ends, py::object design) {
        const auto u = static_cast<_ZmUnitTime>(UnitIndex(ZmUnitTypeTime, unit));
        const auto e = static_cast<ZmFilterEnds>(Choice(ends, kEnds, "end treatment"));
        const auto d = static_cast<ZmCFCDesign>(Choice(design, kDesigns, "design"));
        return Make<CFCAny, ZmFilterCFCd, ZmFilterCFCf>("ZmFilterCFC", cfc, u, e, d);
      },
      py::arg("cfc") = 60.0, py::arg("time_unit") = 0, py::arg("ends") = "reflection", py::arg("design") = "j211")
      ZMPY_CFC_PROPERTY("cfc", GetClass, SetClass, double, "The channel frequency class (Hz).")
      ZMPY_CFC_PROPERTY("pad_length", GetPadLength, SetPadLength, std::int64_t,
                        "Samples added at each end; -1 (default): ceil(3 / (cfc * step)), at most n - 1.")
      ZMPY_CFC_PROPERTY("step_tolerance", GetStepTolerance, SetStepTolerance, double,
                        "Largest relative deviation of a time step from the mean step (default 0.01).")
      .def_property(
          "allow_low_rate", [](Filter& f) { return CFCOf(f).first->GetAllowLowRate() != 0; },
          [](Filter& f, bool v) { SetBoth(f, [&](auto& c) { c.SetAllowLowRate(v ? 1 : 0); }); },
          "Accept a sampling rate below 10 x the class (the design frequency must still be below half the rate).")
      .def_property(
          "time_unit", [](Filter& f) { return static_cast<int>(CFCOf(f).first->GetTimeUnit()); },
          [](Filter& f, py::object u) {
            const auto unit = static_cast<_ZmUnitTime>(UnitIndex(ZmUnitTypeTime, u));
            SetBoth(f, [&](auto& c) { c.SetTimeUnit(unit); });
          },
          "Time unit of the abscissae: catalogue index (read back as such) or symbol.")
      .def_property(
          "ends", [](Filter& f) { return static_cast<int>(CFCOf(f).first->GetEnds()); },
          [](Filter& f, py::object v) {
            const auto e = static_cast<ZmFilterEnds>(Choice(v, kEnds, "end treatment"));
            SetBoth(f, [&](auto& c) { c.SetEnds(e); });
          },
          "End treatment: 0 reflection, 1 mirror, 2 constant, 3 none (names accepted when set).")
      .def_property(
          "design", [](Filter& f) { return static_cast<int>(CFCOf(f).first->GetDesign()); },
          [](Filter& f, py::object v) {
            const auto d = static_cast<ZmCFCDesign>(Choice(v, kDesigns, "design"));
            SetBoth(f, [&](auto& c) { c.SetDesign(d); });
          },
          "Design constant: 0 j211 (2.0775), 1 iso6487 (25/12) (names accepted when set).")
      .def("coefficients_at", &CFCCoefficients, py::arg("step"),
           "The coefficients (a0, a1, a2, b1, b2) of one pass, Y = a0 X + a1 X[-1] + a2 X[-2] + b1 Y[-1]\n"
           "+ b2 Y[-2], for a time step in time_unit, with the checks of compute().");
#undef ZMPY_CFC_PROPERTY
}

}  // namespace

void BindFilters(py::module_& m) {
  py::class_<Filter>(m, "Filter",
                     "A filter of sampled curves. compute() returns the filtered copy of an (n, 2) curve;\n"
                     "float32 curves run the single-precision twin. A refused curve raises zemcalc.Error.\n"
                     "Calls on one object are serialised.")
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
  BindCFCAny(m);
}

}  // namespace zmpy
