// ZmUnitManager: the built-in catalogue of units and derived units, and the lookups on it.
#include <exception>
#include <iterator>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitManager.h"

ZM_BUILD_INFO(unit_manager)

using zm::units::kTypeCount;
using zm::units::TypeAt;

namespace {

struct UnitRow {
  const wchar_t* shortName;
  const wchar_t* csmKeyword;  // null: the solver has no keyword for the unit
  const wchar_t* longName;
  float factor;
};

// Units in one base unit of the type, as float constants (3.281 ft and 39.37 in per metre,
// 1/9.80665 = 0.10197162 for the masses of 9.80665 kg and 9.80665 t). The pixel has no
// factor: it cannot be converted.
constexpr UnitRow kLengthUnits[] = {{L"m", L"M", L"Meter", 1.0f},           {L"cm", L"CM", L"Centimeter", 100.0f},
                                    {L"mm", L"MM", L"Millimeter", 1000.0f}, {L"ft", L"FOOT", L"Foot", 3.281f},
                                    {L"in", L"INCH", L"Inch", 39.37f},      {L"px", nullptr, L"Pixel", zm::kInvalid}};
constexpr UnitRow kMassUnits[] = {{L"Kg", L"KG", L"Kilogram", 1.0f},
                                  {L"HKg", L"HKG", L"Hundred kilogram", 0.01f},
                                  {L"Kg*9.81", L"KG/G", L"Kilogram*9.81", 0.10197162f},
                                  {L"g", L"GRAM", L"Gram", 1000.0f},
                                  {L"T", L"TON", L"Ton", 0.001f},
                                  {L"T*9.81", L"DTON", L"Ton*9.81", 0.00010197162f},
                                  {L"slug", L"SLUG", L"Slug", 0.068522f},
                                  {L"lbm", L"POUND", L"Pound", 2.2046f},
                                  {L"mKg", nullptr, L"mercure Kg", 0.0075006154f}};  // only for the mmHg pressure unit
constexpr UnitRow kTimeUnits[] = {
    {L"s", L"S", L"Second", 1.0f}, {L"ms", L"MS", L"Millisecond", 1000.0f}, {L"us", L"US", L"Microsecond", 1e6f}};
// Temperatures are never scaled nor shifted: every factor is 1.
constexpr UnitRow kTempUnits[] = {{L"K", L"KELVIN", L"Kelvin", 1.0f},
                                  {L"C", L"CELSIUS", L"Celsius", 1.0f},
                                  {L"F", L"FAHR", L"Fahrenheit", 1.0f},
                                  {L"Ra", L"RANK", L"Rankine", 1.0f}};
constexpr UnitRow kAngleUnits[] = {{L"deg", nullptr, L"Degree", 1.0f}, {L"rad", nullptr, L"Radian", 0.017453292f}};

struct UnitTable {
  const UnitRow* rows;
  int count;
};
constexpr UnitTable kTables[kTypeCount] = {{kLengthUnits, static_cast<int>(std::size(kLengthUnits))},
                                           {kMassUnits, static_cast<int>(std::size(kMassUnits))},
                                           {kTimeUnits, static_cast<int>(std::size(kTimeUnits))},
                                           {kTempUnits, static_cast<int>(std::size(kTempUnits))},
                                           {kAngleUnits, static_cast<int>(std::size(kAngleUnits))}};

// The fixed sizes against which systems are validated are the sizes of these tables.
constexpr bool TablesHaveCatalogueSizes() {
  for (int t = 0; t < kTypeCount; ++t) {
    if (kTables[t].count != zm::units::kCatalogueSize[t]) return false;
  }
  return true;
}
static_assert(TablesHaveCatalogueSizes(), "unit tables and catalogue sizes differ");

// A named derived unit and the system in which one of it is one unit of its dimension;
// temperature and angle are 0.
struct DerivedRow {
  const wchar_t* name;
  const ZmUnitDim& dim;
  _ZmUnitLength length;
  _ZmUnitMass mass;
  _ZmUnitTime time;
};

}  // namespace

ZmUnitManager::ZmUnitManager() {
  for (int t = 0; t < kTypeCount; ++t) {
    for (int i = 0; i < kTables[t].count; ++i) {
      const UnitRow& row = kTables[t].rows[i];
      m_units[t].Add(new UnitStruct{row.shortName, row.csmKeyword, row.longName, row.factor});
    }
  }
  // Every base unit is also a derived unit of its type's dimension, named by its symbol, in a
  // system where only its own type is set (temperature and angle 0 when not its type).
  const ZmUnitDim* typeDims[kTypeCount] = {&ZmUnitDimLength, &ZmUnitDimMass, &ZmUnitDimTime, &ZmUnitDimTemp,
                                           &ZmUnitDimAngle};
  for (int t = 0; t < kTypeCount; ++t) {
    for (int i = 0; i < kTables[t].count; ++i) {
      int system[kTypeCount] = {-1, -1, -1, 0, 0};
      system[t] = i;
      AddEquivalentUnit(kTables[t].rows[i].shortName, static_cast<_ZmUnitLength>(system[0]),
                        static_cast<_ZmUnitMass>(system[1]), static_cast<_ZmUnitTime>(system[2]), *typeDims[t],
                        static_cast<_ZmUnitTemp>(system[3]), static_cast<_ZmUnitAngle>(system[4]));
    }
  }
  const DerivedRow derived[] = {{L"Hz", ZmUnitDimFreq, ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitSecond},
                                {L"KHz", ZmUnitDimFreq, ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitMillisecond},
                                {L"MHz", ZmUnitDimFreq, ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitMicrosecond},
                                {L"N", ZmUnitDimForce, ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond},
                                {L"kN", ZmUnitDimForce, ZmUnitMillimeter, ZmUnitKilogram, ZmUnitMillisecond},
                                {L"Nmm", ZmUnitDimMoment, ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond},
                                {L"Nm", ZmUnitDimMoment, ZmUnitMillimeter, ZmUnitKilogram, ZmUnitMillisecond},
                                {L"Pa", ZmUnitDimPressure, ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond},
                                {L"KPa", ZmUnitDimPressure, ZmUnitMillimeter, ZmUnitKilogram, ZmUnitSecond},
                                {L"MPa", ZmUnitDimPressure, ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond},
                                {L"GPa", ZmUnitDimPressure, ZmUnitMillimeter, ZmUnitKilogram, ZmUnitMillisecond},
                                {L"dyn/cm2", ZmUnitDimPressure, ZmUnitCentimeter, ZmUnitGram, ZmUnitSecond},
                                {L"mmHg", ZmUnitDimPressure, ZmUnitMeter, ZmUnitMercureKg, ZmUnitSecond},
                                {L"Kg/m3", ZmUnitDimDensity, ZmUnitMeter, ZmUnitKilogram, ZmUnitTimeUnset},
                                {L"T/mm3", ZmUnitDimDensity, ZmUnitMillimeter, ZmUnitTon, ZmUnitTimeUnset},
                                {L"Kg/mm3", ZmUnitDimDensity, ZmUnitMillimeter, ZmUnitKilogram, ZmUnitTimeUnset}};
  for (const DerivedRow& row : derived) {
    AddEquivalentUnit(row.name, row.length, row.mass, row.time, row.dim, ZmUnitKelvin, ZmUnitDegree);
  }
}

int ZmUnitManager::AddEquivalentUnit(const wchar_t* name, _ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time,
                                     const ZmUnitDim& dim, _ZmUnitTemp temp, _ZmUnitAngle angle) try {
  const zm::BoundaryCall boundary;
  return static_cast<int>(
      m_equivalents.Add(new UnitEquivName{ZmUnitSystem(length, mass, time, temp, angle), dim, WbString(name)}));
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return -1;
}

const ZmUnitManager::UnitEquivName* ZmUnitManager::GetEquivalentUnit(std::uint64_t i) const {
  return i < m_equivalents.GetSize() ? m_equivalents[i] : nullptr;
}

unsigned char ZmUnitManager::FindEquivalentUnit(const ZmUnitDim& dim, const ZmUnitSystem& system, WbString& name,
                                                float factor) const try {
  const zm::BoundaryCall boundary;
  // A derived unit fits when the value converted from its system into system is 1 within
  // 0.001. A unit whose system leaves out a type of dim never converts, so never fits.
  const auto fits = [&](const UnitEquivName& unit, float value) {
    return std::fabs(system.ConvertValueFrom(value, unit.system, dim, nullptr) - 1.0f) < 0.001f;
  };
  for (std::uint64_t i = 0; i < m_equivalents.GetSize(); ++i) {
    const UnitEquivName& unit = *m_equivalents[i];
    if ((unit.dim == dim) && fits(unit, factor)) {
      name = unit.name;
      return 1;
    }
  }
  if (factor == 1.0f) return 0;
  for (std::uint64_t i = 0; i < m_equivalents.GetSize(); ++i) {
    const UnitEquivName& unit = *m_equivalents[i];
    if ((unit.dim == dim) && fits(unit, 1.0f)) {
      name = WbString::Formatted(L"%s * %g", unit.name.GetString(), static_cast<double>(factor));
      return 1;
    }
  }
  return 0;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return 0;
}

unsigned char ZmUnitManager::FindEquivalentUnitByName(const wchar_t* name, ZmUnitDim& dim, ZmUnitSystem& system,
                                                      const ZmUnitDim* filter) const try {
  const zm::BoundaryCall boundary;
  for (std::uint64_t i = 0; i < m_equivalents.GetSize(); ++i) {
    const UnitEquivName& unit = *m_equivalents[i];
    if (unit.name.CompareNoCase(name) != 0) continue;
    if (filter && !(unit.dim == *filter)) continue;
    dim = unit.dim;
    system = unit.system;
    return 1;
  }
  return 0;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return 0;
}

std::uint64_t ZmUnitManager::GetEquivalentUnitNames(const ZmUnitDim& dim, WbObjectArrayTempl<WbString>& names,
                                                    WbObjectArrayTempl<ZmUnitSystem>& systems) const try {
  const zm::BoundaryCall boundary;
  names.RemoveAll();
  systems.RemoveAll();
  for (std::uint64_t i = 0; i < m_equivalents.GetSize(); ++i) {
    const UnitEquivName& unit = *m_equivalents[i];
    if (!(unit.dim == dim)) continue;
    names.Add(new WbString(unit.name));
    systems.Add(new ZmUnitSystem(unit.system));
  }
  return names.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  names.RemoveAll();
  systems.RemoveAll();
  return 0;
}

const ZmUnitManager::UnitStruct* ZmUnitManager::Unit(_ZmUnitType type, int index) const {
  if (!zm::units::IsTypeInRange(type) || index < 0 || static_cast<std::uint64_t>(index) >= m_units[type].GetSize()) {
    return nullptr;
  }
  return m_units[type][static_cast<std::uint64_t>(index)];
}

int ZmUnitManager::GetUnitCount(_ZmUnitType type) const {
  return zm::units::IsTypeInRange(type) ? static_cast<int>(m_units[type].GetSize()) : 0;
}

int ZmUnitManager::ShortName2UnitIndex(_ZmUnitType type, const WbString& name, unsigned char caseSensitive) const {
  for (int i = 0; i < GetUnitCount(type); ++i) {
    const WbString& symbol = Unit(type, i)->shortName;
    if (symbol == name || (!caseSensitive && symbol.CompareNoCase(name) == 0)) return i;
  }
  return -1;
}

WbString ZmUnitManager::UnitIndex2ShortName(_ZmUnitType type, int index) const try {
  const zm::BoundaryCall boundary;
  const UnitStruct* unit = Unit(type, index);
  return unit ? unit->shortName : WbString();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

WbString ZmUnitManager::UnitIndex2LongName(_ZmUnitType type, int index) const try {
  const zm::BoundaryCall boundary;
  const UnitStruct* unit = Unit(type, index);
  return unit ? unit->longName : WbString();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

float ZmUnitManager::UnitIndex2Factor(_ZmUnitType type, int index) const {
  const UnitStruct* unit = Unit(type, index);
  return unit ? unit->factor : zm::kInvalid;
}

const wchar_t* ZmUnitManager::UnitIndex2CSMKeyword(_ZmUnitType type, int index) const {
  const UnitStruct* unit = Unit(type, index);
  return unit ? unit->csmKeyword.GetString() : L"";
}

void ZmUnitManager::SetUnitIndexFactor(_ZmUnitType type, int index, float factor) {
  if (Unit(type, index)) m_units[type][static_cast<std::uint64_t>(index)]->factor = factor;
}

WbString ZmUnitManager::GetAllShortNames(_ZmUnitType type, const wchar_t* separator) const try {
  const zm::BoundaryCall boundary;
  WbString names;
  for (int i = 0; i < GetUnitCount(type); ++i) {
    if (i > 0) names += separator;
    names += Unit(type, i)->shortName;
  }
  return names;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

unsigned char ZmUnitManager::IsSupportedByCSM(_ZmUnitType type, int index) const {
  const UnitStruct* unit = Unit(type, index);
  return unit && !unit->csmKeyword.IsEmpty() ? 1 : 0;
}

int ZmUnitManager::CSMKeyword2UnitIndex(_ZmUnitType type, const WbString& keyword) const {
  for (int i = 0; i < GetUnitCount(type); ++i) {
    if (!keyword.IsEmpty() && Unit(type, i)->csmKeyword == keyword) return i;
  }
  return -1;
}
