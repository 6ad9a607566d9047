#pragma once

// The unit catalogue: per base type its units (symbol, structural-solver keyword, long name,
// factor), and the named derived units ("MPa", "kN", "Hz") tied to a dimension and a system.
// It translates between unit systems and the two text forms the applications exchange: the
// symbols users type ("mm", "T", "s", "K") and the solver's input-deck line
// "UNIT MM TON S KELVIN" ("CSM" in member names is that solver).
//
// Catalogue (index: symbol / keyword / long name / factor = units in one base unit):
//   length  0 m / M / Meter / 1            1 cm / CM / Centimeter / 100
//           2 mm / MM / Millimeter / 1000  3 ft / FOOT / Foot / 3.281
//           4 in / INCH / Inch / 39.37     5 px / - / Pixel / -1e32 (not convertible)
//   mass    0 Kg / KG / Kilogram / 1       1 HKg / HKG / Hundred kilogram / 0.01
//           2 Kg*9.81 / KG/G / Kilogram*9.81 / 0.10197162
//           3 g / GRAM / Gram / 1000       4 T / TON / Ton / 0.001
//           5 T*9.81 / DTON / Ton*9.81 / 0.00010197162
//           6 slug / SLUG / Slug / 0.068522  7 lbm / POUND / Pound / 2.2046
//           8 mKg / - / mercure Kg / 0.0075006154
//   time    0 s / S / Second / 1           1 ms / MS / Millisecond / 1000
//           2 us / US / Microsecond / 1e6
//   temp.   0 K / KELVIN / Kelvin          1 C / CELSIUS / Celsius
//           2 F / FAHR / Fahrenheit        3 Ra / RANK / Rankine      (all factor 1)
//   angle   0 deg / - / Degree / 1         1 rad / - / Radian / 0.017453292
// The factors are these float constants, not values derived from exact definitions.
//
// Derived units: first one per base unit (named by its symbol, with its type's global
// dimension), then Hz, KHz, MHz, N, kN, Nmm, Nm, Pa, KPa, MPa, GPa, dyn/cm2, mmHg, Kg/m3,
// T/mm3, Kg/mm3, each in the system where one unit of it is one unit of its dimension.
//
// Thread-safety: every const member only reads the catalogue. SetUnitIndexFactor and
// AddEquivalentUnit modify it without locking; do not call them while other threads convert.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>
#include <wbcore/WbString.h>

#include <cstdint>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmUnitDim.h"
#include "zemcalc/ZmUnitSystem.h"

class ZMCALC_API ZmUnitManager {
 public:
  // One catalogue unit.
  struct UnitStruct {
    WbString shortName;   // the symbol, as displayed and typed
    WbString csmKeyword;  // the solver keyword; empty when the solver has none
    WbString longName;
    float factor;  // units in one base unit of the type; -1e32: not convertible
  };
  // One named derived unit: the system in which the name stands (first, so that the record's
  // system is handed to conversions as the source system), its dimension and its name.
  struct UnitEquivName {
    ZmUnitSystem system;
    ZmUnitDim dim;
    WbString name;
  };

  ZmUnitManager();

  // Appends a derived unit and returns its position.
  int AddEquivalentUnit(const wchar_t* name, _ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time,
                        const ZmUnitDim& dim, _ZmUnitTemp temp, _ZmUnitAngle angle);
  // The derived unit that writes dim in system: the first (catalogue order) into whose
  // system the value factor converts as 1 within 0.001 gives its name; failing that, when
  // factor is not 1, the first into which 1 converts as 1 gives "%s * %g" with factor.
  unsigned char FindEquivalentUnit(const ZmUnitDim& dim, const ZmUnitSystem& system, WbString& name,
                                   float factor) const;
  // The first derived unit named name (case ignored) and, when filter is given, of dimension
  // *filter: its dimension and system are copied out.
  unsigned char FindEquivalentUnitByName(const wchar_t* name, ZmUnitDim& dim, ZmUnitSystem& system,
                                         const ZmUnitDim* filter) const;
  // Every derived unit of dimension dim, in catalogue order; both arrays are emptied first.
  std::uint64_t GetEquivalentUnitNames(const ZmUnitDim& dim, WbObjectArrayTempl<WbString>& names,
                                       WbObjectArrayTempl<ZmUnitSystem>& systems) const;
  // The number of derived units, and one of them (null when i is out of range).
  std::uint64_t GetEquivalentUnitCount() const { return m_equivalents.GetSize(); }
  const UnitEquivName* GetEquivalentUnit(std::uint64_t i) const;

  // Lookups by index return the empty string, or -1e32 for the factor, when the index (or
  // the type) is out of range; the keyword lookup then returns a shared empty string.
  int GetUnitCount(_ZmUnitType type) const;
  int ShortName2UnitIndex(_ZmUnitType type, const WbString& name, unsigned char caseSensitive) const;
  WbString UnitIndex2ShortName(_ZmUnitType type, int index) const;
  WbString UnitIndex2LongName(_ZmUnitType type, int index) const;
  float UnitIndex2Factor(_ZmUnitType type, int index) const;
  const wchar_t* UnitIndex2CSMKeyword(_ZmUnitType type, int index) const;
  // Changes one unit's factor; an out-of-range index is ignored.
  void SetUnitIndexFactor(_ZmUnitType type, int index, float factor);

  // The type's symbols in catalogue order joined by separator.
  WbString GetAllShortNames(_ZmUnitType type, const wchar_t* separator) const;

  // 1 when the unit has a solver keyword (0 for an out-of-range type or index).
  unsigned char IsSupportedByCSM(_ZmUnitType type, int index) const;
  // The unit whose solver keyword is keyword (case matters), or -1; the empty keyword of a
  // unit unknown to the solver matches nothing.
  int CSMKeyword2UnitIndex(_ZmUnitType type, const WbString& keyword) const;

  // Reads a solver unit line ("UNIT MM TON S KELVIN" with withPrefix set, "MM TON S KELVIN"
  // without). Words are separated by any run of blanks and tabs; words after the fourth are
  // ignored. The angle is set to radian. system may be partly written on failure.
  const WbErrObj* CSMSolverStringToSystem(const WbString& text, ZmUnitSystem& system, unsigned char withPrefix) const;
  // Writes the solver unit line of system (the angle is not written).
  const WbErrObj* FormatCSMSolverString(const ZmUnitSystem& system, WbString& text, unsigned char withPrefix) const;
  // A system from the symbols of its length, mass, time and temperature units; the angle is
  // set to radian.
  const WbErrObj* ShortUnitStringsToSystem(const WbString& length, const WbString& mass, const WbString& time,
                                           const WbString& temperature, ZmUnitSystem& system,
                                           unsigned char caseSensitive) const;

 private:
  const UnitStruct* Unit(_ZmUnitType type, int index) const;

  WbObjectArrayTempl<UnitStruct> m_units[5];
  WbObjectArrayTempl<UnitEquivName> m_equivalents;
};

// The catalogue of the library, built at load right after the global dimensions (see
// ZmUnitDim.h). It is the only adjustable state of the library.
extern ZMCALC_API ZmUnitManager& ZmUnitMgr;
