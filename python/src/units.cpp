// Units: the catalogue (one object shared with the library's C++ users), dimensions, unit
// systems, conversion of arrays, the solver UNIT line and dimensional values in text.
#include "arrays.h"
#include "families.h"
#include "zemcalc/ZmUnitDim.h"
#include "zemcalc/ZmUnitManager.h"
#include "zemcalc/ZmUnitSystem.h"

namespace zmpy {

namespace {
const char* const kTypeNames[5] = {"length", "mass", "time", "temperature", "angle"};

_ZmUnitType UnitType(py::handle type) {
  if (py::isinstance<py::str>(type)) {
    const auto name = type.cast<std::string>();
    for (int t = 0; t < 5; ++t)
      if (name == kTypeNames[t]) return static_cast<_ZmUnitType>(t);
    throw py::value_error("unit type must be one of length, mass, time, temperature, angle; got '" + name + "'");
  }
  const int t = type.cast<int>();
  if (t < 0 || t > 4) throw py::value_error("unit type must be 0 to 4, got " + std::to_string(t));
  return static_cast<_ZmUnitType>(t);
}
}  // namespace

int UnitIndex(int type, py::handle unit) {
  if (!py::isinstance<py::str>(unit)) return unit.cast<int>();
  const auto name = unit.cast<std::string>();
  const auto t = static_cast<_ZmUnitType>(type);
  const int index = ZmUnitMgr.ShortName2UnitIndex(t, FromUtf8(name), 1);
  if (index < 0) {
    const std::string known = ToUtf8(ZmUnitMgr.GetAllShortNames(t, L", "));
    PyErr_SetString(ErrorType().ptr(),
                    ("Unknown " + std::string(kTypeNames[type]) + " unit '" + name + "'. Possible values are : " + known).c_str());
    throw py::error_already_set();
  }
  return index;
}

namespace {

ZmUnitSystem MakeSystem(py::handle length, py::handle mass, py::handle time, py::handle temp, py::handle angle) {
  return ZmUnitSystem(static_cast<_ZmUnitLength>(UnitIndex(ZmUnitTypeLength, length)),
                      static_cast<_ZmUnitMass>(UnitIndex(ZmUnitTypeMass, mass)),
                      static_cast<_ZmUnitTime>(UnitIndex(ZmUnitTypeTime, time)),
                      static_cast<_ZmUnitTemp>(UnitIndex(ZmUnitTypeTemp, temp)),
                      static_cast<_ZmUnitAngle>(UnitIndex(ZmUnitTypeAngle, angle)));
}

// values of dimension dim converted from one system into another, element by element, in the
// precision of the array; units that cannot be converted raise.
py::array Convert(py::handle valuesObj, const ZmUnitDim& dim, const ZmUnitSystem& from, const ZmUnitSystem& to) {
  ZmUnitConverter converter;
  unsigned char needed = 0;
  Check(converter.InitFromTo(from, to, needed, &dim));
  return WithTwin(valuesObj, [&](auto tag) -> py::array {
    using T = decltype(tag);
    Array<T> in = Table<T>(valuesObj, 0, "values");
    Array<T> out(std::vector<py::ssize_t>(in.shape(), in.shape() + in.ndim()));
    std::memcpy(out.mutable_data(), in.data(), sizeof(T) * static_cast<std::size_t>(in.size()));
    if (needed) {
      T* v = out.mutable_data();
      py::gil_scoped_release release;
      for (py::ssize_t i = 0; i < out.size(); ++i) converter.ConvertScalar(dim, v[i]);
    }
    return std::move(out);
  });
}

py::object Parse(const ZmUnitSystem& system, const std::string& text, const ZmUnitDim& dim, py::object dtype) {
  return WithDtype(dtype, [&](auto tag) -> py::object {
    using T = decltype(tag);
    T value = 0;
    if (!system.String2DimensionalValue(FromUtf8(text), dim, value)) return py::none();
    return py::float_(value);
  });
}

py::list Names(const WbObjectArrayTempl<WbString>& names) {
  py::list out;
  for (std::uint64_t i = 0; i < names.GetSize(); ++i) out.append(ToUtf8(*names[i]));
  return out;
}

py::dict Catalogue() {
  py::dict out;
  for (int t = 0; t < 5; ++t) {
    const auto type = static_cast<_ZmUnitType>(t);
    py::list units;
    for (int i = 0; i < ZmUnitMgr.GetUnitCount(type); ++i) {
      const WbString keyword(ZmUnitMgr.UnitIndex2CSMKeyword(type, i));
      const float factor = ZmUnitMgr.UnitIndex2Factor(type, i);
      units.append(py::make_tuple(ToUtf8(ZmUnitMgr.UnitIndex2ShortName(type, i)),
                                  keyword.IsEmpty() ? py::object(py::none()) : py::str(ToUtf8(keyword)),
                                  ToUtf8(ZmUnitMgr.UnitIndex2LongName(type, i)),
                                  factor == zm::kInvalid ? py::object(py::none()) : py::float_(factor)));
    }
    out[kTypeNames[t]] = units;
  }
  return out;
}

const std::pair<const char*, const ZmUnitDim*>* GlobalDimensions() {
  static const std::pair<const char*, const ZmUnitDim*> table[] = {
      {"ratio", &ZmUnitDimNone},       {"time", &ZmUnitDimTime},
      {"mass", &ZmUnitDimMass},        {"frequency", &ZmUnitDimFreq},
      {"length", &ZmUnitDimLength},    {"area", &ZmUnitDimArea},
      {"volume", &ZmUnitDimVolume},    {"pressure", &ZmUnitDimPressure},
      {"velocity", &ZmUnitDimVelocity}, {"acceleration", &ZmUnitDimAcceleration},
      {"force", &ZmUnitDimForce},      {"force_per_length", &ZmUnitDimForcePerLength},
      {"moment", &ZmUnitDimMoment},    {"density", &ZmUnitDimDensity},
      {"inertia", &ZmUnitDimInertia},  {"angle", &ZmUnitDimAngle},
      {"inv_length", &ZmUnitDimInvLength}, {"temperature", &ZmUnitDimTemp},
      {nullptr, nullptr}};
  return table;
}

}  // namespace

void BindUnits(py::module_& m) {
  py::class_<ZmUnitSystem> system(m, "UnitSystem",
                                  "One catalogue unit per base type: length, mass, time, temperature, angle.\n"
                                  "Each unit is given by its catalogue index or its symbol ('mm', 'T', 's', 'K').");
  py::class_<ZmUnitDim> dim(m, "Dimension",
                            "A physical dimension: rational exponents of length, mass, time, temperature, angle.");

  dim.def(py::init([](const std::string& name, int length, int mass, int time, int temp, int angle) {
            return ZmUnitDim(FromUtf8(name), length, mass, time, temp, angle);
          }),
          py::arg("name"), py::arg("length") = 0, py::arg("mass") = 0, py::arg("time") = 0,
          py::arg("temperature") = 0, py::arg("angle") = 0)
      .def_property_readonly("name", [](const ZmUnitDim& d) { return ToUtf8(d.GetTemplDimName()); })
      .def_property_readonly(
          "exponents",
          [](const ZmUnitDim& d) {
            py::list out;
            for (int t = 0; t < 5; ++t)
              out.append(py::make_tuple(d.GetNumerator(static_cast<_ZmUnitType>(t)),
                                        d.GetDenominator(static_cast<_ZmUnitType>(t))));
            return py::tuple(out);
          },
          "(numerator, denominator) per base type, in the order length, mass, time, temperature, angle.")
      .def(
          "display_name", [](const ZmUnitDim& d, const ZmUnitSystem* s) { return ToUtf8(d.GetDimName(s)); },
          py::arg("system") = py::none(), "The name, with the unit in system in brackets: 'Pressure [MPa]'.")
      .def(
          "symbol",
          [](const ZmUnitDim& d, const ZmUnitSystem& s, float factor, bool equivalent) {
            return ToUtf8(d.GetShortName(s, factor, equivalent ? 1 : 0));
          },
          py::arg("system"), py::arg("factor") = 1.0f, py::arg("use_equivalent") = true,
          "The unit symbol of this dimension in system ('MPa', 'T/mm.s2').")
      .def(
          "symbols",
          [](const ZmUnitDim& d) {
            WbObjectArrayTempl<WbString> names;
            d.GetAllShortNames(names);
            return Names(names);
          },
          "Every symbol under which this dimension can be written.")
      .def(
          "system_from_symbol",
          [](const ZmUnitDim& d, const std::string& name) {
            ZmUnitSystem s;
            Check(d.GetSystemFromShortName(FromUtf8(name), s));
            return s;
          },
          py::arg("symbol"), "The unit system in which this dimension's symbol is the given one.")
      .def("__eq__", [](const ZmUnitDim& a, const ZmUnitDim& b) { return a == b ? true : false; })
      .def("__repr__", [](const ZmUnitDim& d) { return "<zemcalc.Dimension " + ToUtf8(d.GetDimName(nullptr)) + ">"; });

  system
      .def(py::init(&MakeSystem), py::arg("length"), py::arg("mass"), py::arg("time"), py::arg("temperature") = 0,
           py::arg("angle") = 0)
      .def_static(
          "from_solver_line",
          [](const std::string& text, bool withPrefix) {
            ZmUnitSystem s;
            Check(ZmUnitMgr.CSMSolverStringToSystem(FromUtf8(text), s, withPrefix ? 1 : 0));
            return s;
          },
          py::arg("text"), py::arg("with_prefix") = true,
          "The system of a solver unit line 'UNIT MM TON S KELVIN' (without 'UNIT' when with_prefix is\n"
          "False); the angle is the radian.")
      .def_static(
          "from_symbols",
          [](const std::string& l, const std::string& ms, const std::string& t, const std::string& temp, bool cs) {
            ZmUnitSystem s;
            Check(ZmUnitMgr.ShortUnitStringsToSystem(FromUtf8(l), FromUtf8(ms), FromUtf8(t), FromUtf8(temp), s,
                                                     cs ? 1 : 0));
            return s;
          },
          py::arg("length"), py::arg("mass"), py::arg("time"), py::arg("temperature"), py::arg("case_sensitive") = true,
          "The system of four unit symbols; the angle is the radian.")
      .def(
          "solver_line",
          [](const ZmUnitSystem& s, bool withPrefix) {
            WbString text;
            Check(ZmUnitMgr.FormatCSMSolverString(s, text, withPrefix ? 1 : 0));
            return ToUtf8(text);
          },
          py::arg("with_prefix") = true, "The solver unit line of this system (the angle is not written).")
      .def_property_readonly(
          "units",
          [](const ZmUnitSystem& s) {
            py::list out;
            for (int t = 0; t < 5; ++t) out.append(s.GetUnitIndex(static_cast<_ZmUnitType>(t)));
            return py::tuple(out);
          },
          "Catalogue indices of length, mass, time, temperature and angle (-1: unset).")
      .def(
          "unit_symbol", [](const ZmUnitSystem& s, py::handle type) { return ToUtf8(s.GetUnitShortName(UnitType(type))); },
          py::arg("type"), "The symbol of this system's unit of a base type ('length' or 0 ...).")
      .def(
          "is_valid", [](const ZmUnitSystem& s, bool ignoreAngle) { return s.IsValid(ignoreAngle ? 1 : 0) != 0; },
          py::arg("ignore_angle") = false)
      .def(
          "convert", [](const ZmUnitSystem& to, py::handle v, const ZmUnitDim& d, const ZmUnitSystem& from) {
            return Convert(v, d, from, to);
          },
          py::arg("values"), py::arg("dimension"), py::arg("from_system"),
          "values (an array of any shape) of the dimension, given in from_system, expressed in this\n"
          "system; float32 arrays convert in single precision. Raises zemcalc.Error when a unit cannot\n"
          "be converted.")
      .def("parse", &Parse, py::arg("text"), py::arg("dimension"), py::arg("dtype") = py::none(),
           "The value of a text such as '200 GPa' converted into this system ('200' is taken as already\n"
           "in it); None when the text cannot be read.")
      .def(
          "parse_values",
          [](const ZmUnitSystem& s, const std::string& text, const ZmUnitDim& d) -> py::object {
            WbArrayTempl<float> values;
            if (!s.String2DimensionalValues(FromUtf8(text), d, values)) return py::none();
            Array<float> out(static_cast<py::ssize_t>(values.GetSize()));
            if (values.GetSize()) std::memcpy(out.mutable_data(), values.GetData(), sizeof(float) * values.GetSize());
            return std::move(out);
          },
          py::arg("text"), py::arg("dimension"),
          "The float32 values of a list such as '1; 2.5; 3 MPa' converted into this system; None when\n"
          "the text cannot be read.")
      .def(
          "format",
          [](const ZmUnitSystem& s, float value, const ZmUnitDim& d) {
            WbString text;
            s.FormatDimensionalValue(value, d, text);
            return ToUtf8(text);
          },
          py::arg("value"), py::arg("dimension"), "The text of a value with its unit symbol: '200000 MPa'.")
      .def("__eq__", [](const ZmUnitSystem& a, const ZmUnitSystem& b) { return a == b ? true : false; })
      .def("__repr__", [](const ZmUnitSystem& s) {
        std::string text = "<zemcalc.UnitSystem";
        for (int t = 0; t < 5; ++t) text += " " + ToUtf8(s.GetUnitShortName(static_cast<_ZmUnitType>(t)));
        return text + ">";
      });

  m.def(
      "dimension",
      [](const std::string& name) -> const ZmUnitDim& {
        for (auto* d = GlobalDimensions(); d->first; ++d)
          if (name == d->first) return *d->second;
        throw py::value_error("no dimension named '" + name + "'");
      },
      py::arg("name"), py::return_value_policy::reference,
      "One of the library's dimensions: ratio, time, mass, frequency, length, area, volume, pressure,\n"
      "velocity, acceleration, force, force_per_length, moment, density, inertia, angle, inv_length,\n"
      "temperature.");
  m.def("unit_catalogue", &Catalogue,
        "The catalogue: per base type the list of (symbol, solver keyword or None, long name, factor or\n"
        "None) in index order; the factor is the number of units in one base unit.");
  m.def(
      "derived_units",
      []() {
        py::list out;
        for (std::uint64_t i = 0; i < ZmUnitMgr.GetEquivalentUnitCount(); ++i) {
          const auto* u = ZmUnitMgr.GetEquivalentUnit(i);
          out.append(py::make_tuple(ToUtf8(u->name), ToUtf8(u->dim.GetTemplDimName()), u->system));
        }
        return out;
      },
      "The catalogue's named derived units as (name, dimension name, unit system).");
  m.def(
      "set_unit_factor",
      [](py::handle type, int index, float factor) { ZmUnitMgr.SetUnitIndexFactor(UnitType(type), index, factor); },
      py::arg("type"), py::arg("index"), py::arg("factor"),
      "Changes a unit's factor in the catalogue shared with every C++ user of the library in this\n"
      "process. Not thread-safe: do not call it while other threads convert.");
}

}  // namespace zmpy
