#pragma once

// Unit systems and conversion. A ZmUnitSystem names one catalogue unit per base type and
// converts values of any dimension into itself from another system; a ZmUnitConverter is one
// prepared source-to-target conversion, built once and applied to many values. Every factor
// comes from the catalogue ZmUnitMgr (ZmUnitManager.h).
//
// Temperatures are never offset: every temperature unit has the catalogue factor 1, so
// converting 100 from Celsius into Kelvin gives 100.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>
#include <wbcore/WbString.h>

#include <cstdint>
#include <type_traits>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmUnitDim.h"

// One catalogue unit per base type, as five int32 indices in _ZmUnitType order (-1 = unset).
//
// Text forms of a value (FormatDimensionalValue(s), String2DimensionalValue(s)):
//   value  := blanks? number (blanks symbol)? blanks?
//   values := blanks? number (blanks? ";" blanks? number)* (blanks symbol)? blanks?
//   number := [+-]? (digits ("." digits?)? | "." digits) ([eE] [+-]? digits)?
//             | [+-]? ("inf" | "infinity" | "nan"), case-insensitive
// The symbol is the rest of the text after the blanks that follow the last number, trailing
// blanks removed; it is one of the dimension's symbols (ZmUnitDim::GetAllShortNames) and gives
// the source system of the conversion. Without a symbol the number is taken as already in
// this system. The decimal point is "." whatever the locale. A number that does not fit the
// value's precision, or that equals the invalid marker -1e32, is refused. A list is written as
// "1; 2.5; 3 MPa": the values joined by "; ", then one blank and the symbol.
class ZMCALC_API ZmUnitSystem {
 public:
  ZmUnitSystem();
  ZmUnitSystem(_ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time, _ZmUnitTemp temp, _ZmUnitAngle angle);
  void Init(_ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time, _ZmUnitTemp temp, _ZmUnitAngle angle);

  _ZmUnitLength GetUnitLength() const { return static_cast<_ZmUnitLength>(m_units[ZmUnitTypeLength]); }
  _ZmUnitMass GetUnitMass() const { return static_cast<_ZmUnitMass>(m_units[ZmUnitTypeMass]); }
  _ZmUnitTime GetUnitTime() const { return static_cast<_ZmUnitTime>(m_units[ZmUnitTypeTime]); }
  _ZmUnitTemp GetUnitTemp() const { return static_cast<_ZmUnitTemp>(m_units[ZmUnitTypeTemp]); }
  _ZmUnitAngle GetUnitAngle() const { return static_cast<_ZmUnitAngle>(m_units[ZmUnitTypeAngle]); }
  void SetUnit(_ZmUnitLength unit) { m_units[ZmUnitTypeLength] = unit; }
  void SetUnit(_ZmUnitMass unit) { m_units[ZmUnitTypeMass] = unit; }
  void SetUnit(_ZmUnitTime unit) { m_units[ZmUnitTypeTime] = unit; }
  void SetUnit(_ZmUnitTemp unit) { m_units[ZmUnitTypeTemp] = unit; }
  void SetUnit(_ZmUnitAngle unit) { m_units[ZmUnitTypeAngle] = unit; }

  // The unit index of a type; -1 for a type outside 0..4.
  int GetUnitIndex(_ZmUnitType type) const;
  // The catalogue's long or short name of this system's unit of a type; empty when unset.
  WbString GetUnitLongName(_ZmUnitType type) const;
  WbString GetUnitShortName(_ZmUnitType type) const;

  // 1 when length, mass, time and temperature are catalogue units and, unless ignoreAngle is
  // set, the angle too.
  unsigned char IsValid(unsigned char ignoreAngle) const;
  unsigned char operator==(const ZmUnitSystem& other) const;

  // value of dimension dim given in the system from, expressed in this system; -1e32 when the
  // conversion cannot be prepared. unitName, when given, receives the unit symbol of dim in
  // this system.
  float ConvertValueFrom(float value, const ZmUnitSystem& from, const ZmUnitDim& dim, WbString* unitName) const;
  // The same with a fixed dimension and a source system made of the given units (the other
  // length, mass and time units -1, temperature and angle 0).
  float ConvertLengthFrom(float value, _ZmUnitLength length) const;
  float ConvertAreaFrom(float value, _ZmUnitLength length) const;
  float ConvertVolumeFrom(float value, _ZmUnitLength length) const;
  float ConvertTimeFrom(float value, _ZmUnitTime time) const;
  float ConvertFreqFrom(float value, _ZmUnitTime time) const;
  float ConvertVelocityFrom(float value, _ZmUnitLength length, _ZmUnitTime time) const;
  float ConvertPressureFrom(float value, _ZmUnitLength length, _ZmUnitMass mass, _ZmUnitTime time) const;
  float ConvertAngleFrom(float value, _ZmUnitAngle angle) const;
  float ConvertVelocityFrom(float value, const ZmUnitSystem& from) const;
  float ConvertAccelerationFrom(float value, const ZmUnitSystem& from) const;

  // 1 when value of dim in this system converts into other as 1 (within 0.001): with value 1,
  // both systems measure dim in the same unit.
  unsigned char IsCompatibleWith(const ZmUnitSystem& other, const ZmUnitDim& dim, float value) const;

  // The text of a value with its unit symbol in this system ("200000 MPa"); the symbol is left
  // out for a dimensionless quantity. The invalid marker gives an empty text and 0; an empty
  // list too. Returns 1 when text is not empty.
  unsigned char FormatDimensionalValue(float value, const ZmUnitDim& dim, WbString& text) const;
  unsigned char FormatDimensionalValues(const WbArrayTempl<float>& values, const ZmUnitDim& dim, WbString& text) const;
  // Reads a value written in any system and converts it into this one (grammar above). On
  // failure value is -1e32 (values is emptied) and 0 is returned.
  unsigned char String2DimensionalValue(const WbString& text, const ZmUnitDim& dim, float& value) const;
  unsigned char String2DimensionalValue(const WbString& text, const ZmUnitDim& dim, double& value) const;
  unsigned char String2DimensionalValues(const WbString& text, const ZmUnitDim& dim, WbArrayTempl<float>& values) const;

  // The catalogue's derived units of dim (ZmUnitManager::GetEquivalentUnitNames) into which a
  // value of dim in this system converts, in catalogue order, each with value converted into
  // it; units into which the value cannot be converted are left out. *index (when index is not
  // null) receives the position of the first unit whose factor is 1 within 0.001, or -1.
  // names and factors are emptied first; returns their count.
  std::uint64_t GetCompatibleEquivUnits(const ZmUnitDim& dim, WbObjectArrayTempl<WbString>& names,
                                        WbArrayTempl<float>& factors, float value, int* index) const;

 private:
  std::int32_t m_units[5];  // length, mass, time, temperature, angle
};
// Exactly five int32: the system part of the catalogue's derived units has this layout.
static_assert(sizeof(ZmUnitSystem) == 5 * sizeof(std::int32_t) && std::is_standard_layout<ZmUnitSystem>::value,
              "ZmUnitSystem is five int32 unit indices");

// A prepared conversion: per base type, the factor that turns one source unit into target
// units; 1 when both agree, -1e32 when the type is not needed or cannot be converted.
class ZMCALC_API ZmUnitConverter {
 public:
  ZmUnitConverter();

  // Prepares the conversion from one system into another, for the types that dim involves
  // (every type when dim is null). needed is set when some factor differs from 1. Fails with
  // "Inconsistent target unit system", "Inconsistent source unit system" or "Internal error :
  // can't process unit system conversion" at the first type that cannot be converted. A source
  // unit without a catalogue factor (the pixel) is treated as the base unit of its type.
  const WbErrObj* InitFromTo(const ZmUnitSystem& from, const ZmUnitSystem& to, unsigned char& needed,
                             const ZmUnitDim* dim);

  // Scales value of dimension dim (repeated multiplications or divisions per type, pow for a
  // fractional exponent). The invalid marker is left alone. Returns 1 when the value changed;
  // 0 when it did not, when a type that dim involves has no factor (the value then keeps the
  // scaling of the types before it) or when the result is the invalid marker.
  unsigned char ConvertScalar(const ZmUnitDim& dim, float& value) const;
  unsigned char ConvertScalar(const ZmUnitDim& dim, double& value) const;

  // 0 when some type has no factor and dim is null or involves that type.
  unsigned char IsValid(const ZmUnitDim* dim) const;
  // 1 when a type that dim involves has a factor other than 1 (NaN included).
  unsigned char IsDimensionToBeConverted(const ZmUnitDim& dim) const;
  // 1 when the factor of type is not 1 (0 for a type outside 0..4).
  unsigned char IsUnitTypeToBeConverted(_ZmUnitType type) const;
  // The factor of a type (-1e32 for a type outside 0..4).
  float GetFactor(_ZmUnitType type) const;

 private:
  template <class T>
  unsigned char ConvertScalarT(const ZmUnitDim& dim, T& value) const;

  float factor[5];
};
