#pragma once

// Physical dimensions: a dimension is a rational exponent over each of five base unit types
// (length, mass, time, temperature, angle). ZmUnitDim has no float/double twin; where it
// scales values it has a float and a double overload.
//
// Also here: the unit-type enumerations shared by the unit system (ZmUnitSystem.h) and the
// catalogue (ZmUnitManager.h), the exported global dimensions and the guard object that
// builds them, together with the catalogue ZmUnitMgr, before anything can use them.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>
#include <wbcore/WbString.h>

#include <cstdint>

#include "zemcalc/ZmExport.h"

// The base unit types; every per-type array of the unit classes is indexed by this value.
enum _ZmUnitType : int {
  ZmUnitTypeLength = 0,
  ZmUnitTypeMass = 1,
  ZmUnitTypeTime = 2,
  ZmUnitTypeTemp = 3,
  ZmUnitTypeAngle = 4
};

// The units of each type, as indices into the catalogue (ZmUnitManager). -1 means "not set".
enum _ZmUnitLength : int {
  ZmUnitLengthUnset = -1,
  ZmUnitMeter = 0,
  ZmUnitCentimeter = 1,
  ZmUnitMillimeter = 2,
  ZmUnitFoot = 3,
  ZmUnitInch = 4,
  ZmUnitPixel = 5
};
enum _ZmUnitMass : int {
  ZmUnitMassUnset = -1,
  ZmUnitKilogram = 0,
  ZmUnitHundredKilogram = 1,
  ZmUnitKilogram981 = 2,  // 9.80665 kg, "Kg*9.81"
  ZmUnitGram = 3,
  ZmUnitTon = 4,
  ZmUnitTon981 = 5,  // 9.80665 t, "T*9.81"
  ZmUnitSlug = 6,
  ZmUnitPound = 7,
  ZmUnitMercureKg = 8  // auxiliary mass of the mmHg pressure unit
};
enum _ZmUnitTime : int { ZmUnitTimeUnset = -1, ZmUnitSecond = 0, ZmUnitMillisecond = 1, ZmUnitMicrosecond = 2 };
enum _ZmUnitTemp : int {
  ZmUnitTempUnset = -1,
  ZmUnitKelvin = 0,
  ZmUnitCelsius = 1,
  ZmUnitFahrenheit = 2,
  ZmUnitRankine = 3
};
enum _ZmUnitAngle : int { ZmUnitAngleUnset = -1, ZmUnitDegree = 0, ZmUnitRadian = 1 };

class ZmUnitSystem;

// A dimension: numerator/denominator exponents per base type, a display name, and for a
// quotient dimension ("Force per Length") the two dimensions it was built from.
//
// Ownership of the components: a quotient owns its two components. The copy constructor
// copies exponents and name only (a copy of a quotient is a plain dimension with the same
// exponents); assignment copies exponents and name and gives the target its own copies of the
// source's components, so that every component is owned by exactly one dimension and is
// released once. Components are always plain dimensions.
//
// Denominators are positive; the sign of an exponent is the sign of its numerator.
// Exponent arithmetic (the quotient constructor, + and -) saturates: a numerator or denominator
// that would leave the int range is stored as INT_MAX or INT_MIN instead of wrapping around.
class ZMCALC_API ZmUnitDim {
 public:
  ZmUnitDim();
  ZmUnitDim(const wchar_t* name, int length, int mass, int time, int temp, int angle);
  // The quotient a per b. Integer exponents subtract; when either denominator is not 1 the
  // exponent is (a.num * b.den + a.den * b.num) / (a.den * b.den) -- the second exponent is
  // added, not subtracted. That asymmetry is the established behaviour and is kept.
  ZmUnitDim(const ZmUnitDim& a, const ZmUnitDim& b);
  ZmUnitDim(const ZmUnitDim& other);
  ZmUnitDim& operator=(const ZmUnitDim& other);
  virtual ~ZmUnitDim();

  // The sum of the exponents: a copy of this dimension (components included) with an empty
  // name, whose numerators -- or, for a quotient, the numerators of its first component --
  // receive the other operand's numerators (for a quotient operand, those of its first
  // component). Denominators are unchanged. operator- is the same operation: it adds.
  ZmUnitDim operator+(const ZmUnitDim& other) const;
  ZmUnitDim operator-(const ZmUnitDim& other) const;

  // 1 when all numerators and denominators are equal; names and components are ignored.
  unsigned char operator==(const ZmUnitDim& other) const;
  // 1 when every numerator is 0 (denominators are not looked at).
  unsigned char IsNeutral() const;

  // Sets one type's exponent. A type outside 0..4 is ignored.
  void SetTypeDimension(_ZmUnitType type, int numerator, int denominator);
  // Exponent parts of one type (0 and 1 for a type outside 0..4).
  int GetNumerator(_ZmUnitType type) const { return static_cast<unsigned>(type) < 5 ? numerators[type] : 0; }
  int GetDenominator(_ZmUnitType type) const { return static_cast<unsigned>(type) < 5 ? denominators[type] : 1; }

  void SetTemplDimName(const wchar_t* name);
  WbString GetTemplDimName() const;

  // The components of a quotient (both null for a plain dimension).
  unsigned char IsQuotient() const { return perNumerator != nullptr && perDenominator != nullptr ? 1 : 0; }
  const ZmUnitDim* GetPerNumerator() const { return perNumerator; }
  const ZmUnitDim* GetPerDenominator() const { return perDenominator; }

  // The display name. With a system whose length, mass, time and temperature are catalogue
  // units, the unit follows in brackets (" [%s]", the short name of GetShortName with the
  // catalogue equivalents allowed): "Pressure [MPa]". A quotient joins the display names of
  // its components with " per ": "Force [N] per Length [mm]".
  WbString GetDimName(const ZmUnitSystem* system) const;

  // The unit symbol of this dimension in system: a catalogue equivalent ("MPa") when
  // useEquivalent is set and one fits, the symbols of a quotient's components joined by "/",
  // or the symbol composed from the system's units: "T/mm.s2", "m/s", "1/s". A fractional
  // exponent is written "%d/%d", a negative fractional one "(%d/%d)" with the denominator
  // first ("(2/-1)" for -1/2). A factor other than 1 is written before "/" when nothing else
  // is ("2/s"), or appended as "* %g" when no exponent is negative.
  WbString GetShortName(const ZmUnitSystem& system, float factor, unsigned char useEquivalent) const;

  // Every symbol under which this dimension can be written, without repetition: first the
  // catalogue equivalents whose dimension equals this one (catalogue order), then the symbols
  // composed from each combination of catalogue units over the types that this dimension or
  // its components involve (indices in lexicographic order, length slowest). Empty symbols
  // are left out. names is emptied first; returns the number of names.
  std::uint64_t GetAllShortNames(WbObjectArrayTempl<WbString>& names) const;
  // The unit system in which this dimension's symbol is name, searched in the order of
  // GetAllShortNames; the match is exact (case matters: "mPa" is not "MPa"). Types that the
  // dimension does not involve are -1 for length, mass and time and 0 for temperature and
  // angle. Fails with "'%s' is not a supported %s unit name".
  const WbErrObj* GetSystemFromShortName(const WbString& name, ZmUnitSystem& system) const;

  // value scaled by factor raised to this dimension's exponent for type: repeated
  // multiplications or divisions for an integer exponent (up to 64 in magnitude; pow beyond,
  // for a saturated exponent say), pow for a fractional one. A value
  // is returned unchanged when the exponent is not 0 and factor is the invalid factor -1e32
  // (a unit that cannot be converted), and for a type outside 0..4.
  float ScaleValue(float value, float factor, _ZmUnitType type) const;
  double ScaleValue(double value, double factor, _ZmUnitType type) const;

 private:
  std::int32_t numerators[5];
  std::int32_t denominators[5];
  WbString templDimName;
  ZmUnitDim* perNumerator;
  ZmUnitDim* perDenominator;
};

// The global dimensions. Each name is a reference bound at compile time to storage of the
// library; the objects themselves are built by ZmUnitGlobalsInit (below) before any code of
// a translation unit that includes this header runs its own static initialisation, in this
// order: Ratio, Time, Mass, Frequency, Length, Area, Volume, Pressure, Velocity, Velocity
// Square (library-internal), Acceleration, Force, Force per Length, Moment, Density, Inertia,
// Angle, Inv. Length, Temperature; then the catalogue ZmUnitMgr. They are destroyed in the
// reverse order after the last such translation unit has finished its static destruction.
extern ZMCALC_API const ZmUnitDim& ZmUnitDimNone;            // "Ratio" (0, 0, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimTime;            // (0, 0, 1, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimMass;            // (0, 1, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimFreq;            // "Frequency" (0, 0, -1, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimLength;          // (1, 0, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimArea;            // (2, 0, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimVolume;          // (3, 0, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimPressure;        // (-1, 1, -2, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimVelocity;        // (1, 0, -1, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimAcceleration;    // (1, 0, -2, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimForce;           // (1, 1, -2, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimForcePerLength;  // Force per Length, a quotient
extern ZMCALC_API const ZmUnitDim& ZmUnitDimMoment;          // (2, 1, -2, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimDensity;         // (-3, 1, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimInertia;         // (2, 1, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimAngle;           // (0, 0, 0, 0, 1)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimInvLength;       // "Inv. Length" (-1, 0, 0, 0, 0)
extern ZMCALC_API const ZmUnitDim& ZmUnitDimTemp;            // "Temperature" (0, 0, 0, 1, 0)

// Builds the global dimensions and the catalogue on first construction and destroys them on
// the last destruction (a counted guard, as for the standard streams). One instance lives
// in every translation unit that includes this header, ahead of that unit's own globals, so
// the unit globals are usable from any global constructor or destructor of user code or of
// the library, whatever the link order. Construction happens during static initialisation,
// which the loader runs on one thread.
class ZMCALC_API ZmUnitGlobalsInit {
 public:
  ZmUnitGlobalsInit();
  ~ZmUnitGlobalsInit();
  ZmUnitGlobalsInit(const ZmUnitGlobalsInit&) = delete;
  ZmUnitGlobalsInit& operator=(const ZmUnitGlobalsInit&) = delete;
};

namespace {
const ZmUnitGlobalsInit zmUnitGlobalsInit;
}  // namespace
