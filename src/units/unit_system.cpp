// ZmUnitSystem: the five unit indices, conversion of values into the system, compatibility
// and the derived units that a system can express.
#include <cmath>
#include <exception>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitManager.h"

ZM_BUILD_INFO(unit_system)

using zm::units::kTypeCount;

namespace {
// A source system made of the given units: length, mass and time unset unless given,
// temperature and angle at their first unit.
ZmUnitSystem SourceOf(_ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time) {
  return ZmUnitSystem(length, mass, time, ZmUnitKelvin, ZmUnitDegree);
}
// |value - 1| < 0.001: the tolerance with which a converted unit counts as the same unit.
bool IsUnitFactor(float value) { return std::fabs(value - 1.0f) < 0.001f; }
}  // namespace

ZmUnitSystem::ZmUnitSystem() : m_units{-1, -1, -1, -1, -1} {}

ZmUnitSystem::ZmUnitSystem(_ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time, _ZmUnitTemp temp,
                           _ZmUnitAngle angle)
    : m_units{length, mass, time, temp, angle} {}

void ZmUnitSystem::Init(_ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time, _ZmUnitTemp temp,
                        _ZmUnitAngle angle) {
  *this = ZmUnitSystem(length, mass, time, temp, angle);
}

int ZmUnitSystem::GetUnitIndex(_ZmUnitType type) const { return zm::units::IsTypeInRange(type) ? m_units[type] : -1; }

WbString ZmUnitSystem::GetUnitLongName(_ZmUnitType type) const try {
  const zm::BoundaryCall boundary;
  return ZmUnitMgr.UnitIndex2LongName(type, GetUnitIndex(type));
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

WbString ZmUnitSystem::GetUnitShortName(_ZmUnitType type) const try {
  const zm::BoundaryCall boundary;
  return ZmUnitMgr.UnitIndex2ShortName(type, GetUnitIndex(type));
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

unsigned char ZmUnitSystem::IsValid(unsigned char ignoreAngle) const {
  const int checked = ignoreAngle ? ZmUnitTypeAngle : kTypeCount;
  for (int t = 0; t < checked; ++t) {
    if (static_cast<unsigned>(m_units[t]) >= static_cast<unsigned>(zm::units::kCatalogueSize[t])) return 0;
  }
  return 1;
}

unsigned char ZmUnitSystem::operator==(const ZmUnitSystem& other) const {
  for (int t = 0; t < kTypeCount; ++t) {
    if (m_units[t] != other.m_units[t]) return 0;
  }
  return 1;
}

float ZmUnitSystem::ConvertValueFrom(float value, const ZmUnitSystem& from, const ZmUnitDim& dim,
                                     WbString* unitName) const try {
  const zm::BoundaryCall boundary;
  ZmUnitConverter converter;
  unsigned char needed = 0;
  if (converter.InitFromTo(from, *this, needed, &dim)) return zm::kInvalid;
  if (unitName) *unitName = dim.GetShortName(*this, 1.0f, 1);
  converter.ConvertScalar(dim, value);
  return value;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  if (unitName) unitName->Empty();
  return zm::kInvalid;
}

float ZmUnitSystem::ConvertLengthFrom(float value, _ZmUnitLength length) const {
  return ConvertValueFrom(value, SourceOf(length, ZmUnitMassUnset, ZmUnitTimeUnset), ZmUnitDimLength, nullptr);
}

float ZmUnitSystem::ConvertAreaFrom(float value, _ZmUnitLength length) const {
  return ConvertValueFrom(value, SourceOf(length, ZmUnitMassUnset, ZmUnitTimeUnset), ZmUnitDimArea, nullptr);
}

float ZmUnitSystem::ConvertVolumeFrom(float value, _ZmUnitLength length) const {
  return ConvertValueFrom(value, SourceOf(length, ZmUnitMassUnset, ZmUnitTimeUnset), ZmUnitDimVolume, nullptr);
}

float ZmUnitSystem::ConvertTimeFrom(float value, _ZmUnitTime time) const {
  return ConvertValueFrom(value, SourceOf(ZmUnitLengthUnset, ZmUnitMassUnset, time), ZmUnitDimTime, nullptr);
}

float ZmUnitSystem::ConvertFreqFrom(float value, _ZmUnitTime time) const {
  return ConvertValueFrom(value, SourceOf(ZmUnitLengthUnset, ZmUnitMassUnset, time), ZmUnitDimFreq, nullptr);
}

float ZmUnitSystem::ConvertVelocityFrom(float value, _ZmUnitLength length, _ZmUnitTime time) const {
  return ConvertValueFrom(value, SourceOf(length, ZmUnitMassUnset, time), ZmUnitDimVelocity, nullptr);
}

float ZmUnitSystem::ConvertPressureFrom(float value, _ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time) const {
  return ConvertValueFrom(value, SourceOf(length, mass, time), ZmUnitDimPressure, nullptr);
}

float ZmUnitSystem::ConvertAngleFrom(float value, _ZmUnitAngle angle) const {
  const ZmUnitSystem source(ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitTimeUnset, ZmUnitKelvin, angle);
  return ConvertValueFrom(value, source, ZmUnitDimAngle, nullptr);
}

float ZmUnitSystem::ConvertVelocityFrom(float value, const ZmUnitSystem& from) const {
  return ConvertValueFrom(value, from, ZmUnitDimVelocity, nullptr);
}

float ZmUnitSystem::ConvertAccelerationFrom(float value, const ZmUnitSystem& from) const {
  return ConvertValueFrom(value, from, ZmUnitDimAcceleration, nullptr);
}

unsigned char ZmUnitSystem::IsCompatibleWith(const ZmUnitSystem& other, const ZmUnitDim& dim, float value) const {
  return IsUnitFactor(other.ConvertValueFrom(value, *this, dim, nullptr)) ? 1 : 0;
}

std::uint64_t ZmUnitSystem::GetCompatibleEquivUnits(const ZmUnitDim& dim, WbObjectArrayTempl<WbString>& names,
                                                    WbArrayTempl<float>& factors, float value, int* index) const try {
  const zm::BoundaryCall boundary;
  names.RemoveAll();
  factors.RemoveAll();
  if (index) *index = -1;
  WbObjectArrayTempl<WbString> unitNames;
  WbObjectArrayTempl<ZmUnitSystem> unitSystems;
  const std::uint64_t count = ZmUnitMgr.GetEquivalentUnitNames(dim, unitNames, unitSystems);
  for (std::uint64_t i = 0; i < count; ++i) {
    const float factor = unitSystems[i]->ConvertValueFrom(value, *this, dim, nullptr);
    if (factor == zm::kInvalid) continue;
    if (index && *index < 0 && IsUnitFactor(factor)) *index = static_cast<int>(factors.GetSize());
    names.Add(new WbString(*unitNames[i]));
    factors.Add(factor);
  }
  return names.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  names.RemoveAll();
  factors.RemoveAll();
  if (index) *index = -1;
  return 0;
}
