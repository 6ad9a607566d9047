// Unit systems and converters: validity, the conversion rules (factors, order of operations,
// no temperature offset, the pixel asymmetry, failures), values as text and back, and
// conversions from several threads on the shared catalogue.
//
// Expected float values replay the documented operations in numpy float32, for instance
// (1 Pa into (mm, T, s)): v = float32(1) / float32(1000); v = v * float32(0.001) -> 1.0000001111620804e-06.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <string>
#include <thread>
#include <vector>

namespace {

std::wstring Text(const WbString& s) { return s.Std(); }
std::wstring LastMessage() {
  const WbErrObj* error = WbGetLastError();
  return error ? error->GetMessage() : L"<no error>";
}

const ZmUnitSystem kMmTS(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
const ZmUnitSystem kMKgS(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
const ZmUnitSystem kMmKgMs(ZmUnitMillimeter, ZmUnitKilogram, ZmUnitMillisecond, ZmUnitKelvin, ZmUnitRadian);

TEST(UnitSystem, FieldsValidityAndNames) {
  const ZmUnitSystem unset;
  EXPECT_EQ(unset.GetUnitLength(), ZmUnitLengthUnset);
  EXPECT_EQ(unset.GetUnitAngle(), ZmUnitAngleUnset);
  ZmUnitSystem system;
  system.SetUnit(ZmUnitInch);
  system.SetUnit(ZmUnitSlug);
  system.SetUnit(ZmUnitMicrosecond);
  system.SetUnit(ZmUnitRankine);
  EXPECT_EQ(system.IsValid(1), 1);
  EXPECT_EQ(system.IsValid(0), 0);  // the angle is still unset
  system.SetUnit(ZmUnitDegree);
  EXPECT_EQ(system.IsValid(0), 1);
  EXPECT_EQ(system.GetUnitIndex(ZmUnitTypeMass), ZmUnitSlug);
  EXPECT_EQ(system.GetUnitIndex(static_cast<_ZmUnitType>(5)), -1);
  EXPECT_EQ(system.GetUnitIndex(static_cast<_ZmUnitType>(-1)), -1);
  EXPECT_EQ(Text(system.GetUnitLongName(ZmUnitTypeTime)), L"Microsecond");
  EXPECT_EQ(Text(system.GetUnitShortName(ZmUnitTypeTemp)), L"Ra");
  EXPECT_EQ(Text(unset.GetUnitShortName(ZmUnitTypeLength)), L"");
  // Each index is tested against its type's catalogue size: 6, 9, 3, 4 and 2 units.
  EXPECT_EQ(ZmUnitSystem(ZmUnitPixel, ZmUnitMercureKg, ZmUnitMicrosecond, ZmUnitRankine, ZmUnitRadian).IsValid(0), 1);
  EXPECT_EQ(ZmUnitSystem(static_cast<_ZmUnitLength>(6), ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian).IsValid(1),
            0);
  EXPECT_EQ(ZmUnitSystem(ZmUnitMeter, static_cast<_ZmUnitMass>(9), ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian).IsValid(1),
            0);
  EXPECT_EQ(ZmUnitSystem(ZmUnitMeter, ZmUnitTon, static_cast<_ZmUnitTime>(3), ZmUnitKelvin, ZmUnitRadian).IsValid(1),
            0);
  EXPECT_EQ(ZmUnitSystem(ZmUnitMeter, ZmUnitTon, ZmUnitSecond, static_cast<_ZmUnitTemp>(4), ZmUnitRadian).IsValid(1),
            0);
  EXPECT_EQ(ZmUnitSystem(ZmUnitMeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, static_cast<_ZmUnitAngle>(2)).IsValid(0),
            0);
  EXPECT_EQ(kMmTS == kMKgS, 0);
  ZmUnitSystem copy;
  copy.Init(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(copy == kMmTS, 1);
}

TEST(UnitSystem, ConversionExamples) {
  // Pressure: 1 Pa is 1e-6 MPa, within the float steps 1/1000 then * 0.001.
  EXPECT_EQ(kMmTS.ConvertValueFrom(1.0f, kMKgS, ZmUnitDimPressure, nullptr), 1.0000001111620804e-06f);
  EXPECT_EQ(kMmTS.ConvertPressureFrom(1.0f, ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond), 1.0000001111620804e-06f);
  // 200000 MPa: / float(1/1000), then * float(1/0.001) = 999.99994 -> 199999979520 (2e11 within float steps).
  EXPECT_EQ(kMKgS.ConvertValueFrom(200000.0f, kMmTS, ZmUnitDimPressure, nullptr), 199999979520.0f);
  // Velocity: 1 m/s = 1000 mm / 1000 ms.
  EXPECT_EQ(kMmKgMs.ConvertVelocityFrom(1.0f, ZmUnitMeter, ZmUnitSecond), 1.0f);
  EXPECT_EQ(kMmKgMs.ConvertVelocityFrom(1.0f, kMKgS), 1.0f);
  // Density 7.85e-9 T/mm3 of steel: three divisions by float(1/1000), one multiplication by 999.99994.
  EXPECT_EQ(kMKgS.ConvertValueFrom(7.85e-9f, kMmTS, ZmUnitDimDensity, nullptr), 7849.9990234375f);
  // Frequency: 100 Hz = 0.1 per ms.
  EXPECT_EQ(kMmKgMs.ConvertFreqFrom(100.0f, ZmUnitSecond), 0.10000000149011612f);
  EXPECT_EQ(kMmKgMs.ConvertTimeFrom(2.0f, ZmUnitSecond), 2000.0f);
  // Lengths: 10 ft = 10 * float(1000 / 3.281) mm; 2 cm2 = 2 * 0.01 * 0.01 m2; 1 m3 = 3.281^3 ft3 by
  // repeated multiplication (35.31983184814453, while pow gives 35.3198356628418).
  EXPECT_EQ(kMmTS.ConvertLengthFrom(10.0f, ZmUnitFoot), 3047.851318359375f);
  EXPECT_EQ(kMKgS.ConvertAreaFrom(2.0f, ZmUnitCentimeter), 0.00019999999494757503f);
  const ZmUnitSystem ftLbmS(ZmUnitFoot, ZmUnitPound, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree);
  EXPECT_EQ(ftLbmS.ConvertVolumeFrom(1.0f, ZmUnitMeter), 35.31983184814453f);
  // g = 9.80665 m/s2 in mm/ms2: * 1000, / 1000, / 1000.
  const ZmUnitSystem mmTMs(ZmUnitMillimeter, ZmUnitTon, ZmUnitMillisecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(mmTMs.ConvertAccelerationFrom(9.80665f, kMKgS), 0.009806649759411812f);
  // Angles: 180 deg = 180 * 0.017453292 rad = float(pi); 1 rad = float(1 / 0.017453292) deg.
  EXPECT_EQ(kMmTS.ConvertAngleFrom(180.0f, ZmUnitDegree), 3.1415927410125732f);
  EXPECT_EQ(ftLbmS.ConvertAngleFrom(1.0f, ZmUnitRadian), 57.295780181884766f);
  // The unit name of the result, with its catalogue equivalent.
  WbString name;
  kMmTS.ConvertValueFrom(1.0f, kMKgS, ZmUnitDimPressure, &name);
  EXPECT_EQ(Text(name), L"MPa");
  kMKgS.ConvertValueFrom(1.0f, kMmTS, ZmUnitDimVelocity, &name);
  EXPECT_EQ(Text(name), L"m/s");
}

TEST(UnitSystem, TemperaturesAreNeverOffset) {
  const ZmUnitSystem celsius(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitCelsius, ZmUnitRadian);
  const ZmUnitSystem fahrenheit(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitFahrenheit, ZmUnitRadian);
  EXPECT_EQ(kMmTS.ConvertValueFrom(100.0f, celsius, ZmUnitDimTemp, nullptr), 100.0f);
  EXPECT_EQ(fahrenheit.ConvertValueFrom(-40.0f, celsius, ZmUnitDimTemp, nullptr), -40.0f);
  // ... yet the converter reports the change of unit.
  ZmUnitConverter converter;
  unsigned char needed = 0;
  ASSERT_EQ(converter.InitFromTo(celsius, kMmTS, needed, &ZmUnitDimTemp), nullptr);
  EXPECT_EQ(needed, 1);
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeTemp), 1.0f);
  float value = 100.0f;
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimTemp, value), 0);  // unchanged
  EXPECT_EQ(value, 100.0f);
}

TEST(UnitSystem, FailedConversionsGiveTheInvalidMarker) {
  const ZmUnitSystem noLength(ZmUnitLengthUnset, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(kMmTS.ConvertValueFrom(5.0f, noLength, ZmUnitDimLength, nullptr), -1e32f);
  EXPECT_EQ(LastMessage(), L"Inconsistent source unit system");
  // A dimension that does not involve the missing type converts normally: 5 s in ms.
  EXPECT_EQ(kMmKgMs.ConvertValueFrom(5.0f, noLength, ZmUnitDimTime, nullptr), 5000.0f);
  WbString name(L"untouched");
  EXPECT_EQ(noLength.ConvertValueFrom(5.0f, kMmTS, ZmUnitDimPressure, &name), -1e32f);
  EXPECT_EQ(LastMessage(), L"Inconsistent target unit system");
  EXPECT_EQ(Text(name), L"untouched");
  // The pixel: into pixels fails, out of pixels the pixel counts as the metre (factor 1000 to mm).
  const ZmUnitSystem pixels(ZmUnitPixel, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(pixels.ConvertLengthFrom(3.0f, ZmUnitMillimeter), -1e32f);
  EXPECT_EQ(LastMessage(), L"Internal error : can't process unit system conversion");
  EXPECT_EQ(kMmTS.ConvertLengthFrom(3.0f, ZmUnitPixel), 3000.0f);
  // The marker itself is never converted.
  EXPECT_EQ(kMmTS.ConvertLengthFrom(-1e32f, ZmUnitMeter), -1e32f);
}

TEST(UnitSystem, CompatibilityOfTwoSystems) {
  // A force is the newton in both (mm, T, s) and (m, Kg, s); a pressure is not the same unit.
  EXPECT_EQ(kMmTS.IsCompatibleWith(kMKgS, ZmUnitDimForce, 1.0f), 1);
  EXPECT_EQ(kMmTS.IsCompatibleWith(kMKgS, ZmUnitDimPressure, 1.0f), 0);
  EXPECT_EQ(kMmTS.IsCompatibleWith(kMKgS, ZmUnitDimPressure, 1e-6f), 1);   // 1e-6 MPa is 1 Pa
  EXPECT_EQ(kMKgS.IsCompatibleWith(kMmKgMs, ZmUnitDimVelocity, 1.0f), 1);  // m/s = mm/ms
  EXPECT_EQ(kMmTS.IsCompatibleWith(kMmKgMs, ZmUnitDimVelocity, 1.0f), 0);
  EXPECT_EQ(kMmTS.IsCompatibleWith(ZmUnitSystem(), ZmUnitDimLength, 1.0f), 0);
}

TEST(UnitConverter, PreparationFactorsAndFailures) {
  ZmUnitConverter converter;
  for (int t = 0; t < 5; ++t) EXPECT_EQ(converter.GetFactor(static_cast<_ZmUnitType>(t)), -1e32f);
  EXPECT_EQ(converter.IsValid(nullptr), 0);
  unsigned char needed = 9;
  const ZmUnitSystem mKgSCDeg(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitCelsius, ZmUnitDegree);
  ASSERT_EQ(converter.InitFromTo(kMmTS, mKgSCDeg, needed, nullptr), nullptr);
  EXPECT_EQ(needed, 1);
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeLength), 0.0010000000474974513f);  // float(1 / 1000)
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeMass), 999.9999389648438f);        // float(1 / float(0.001))
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeTime), 1.0f);
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeTemp), 1.0f);
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeAngle), 57.295780181884766f);  // float(1 / float(0.017453292))
  EXPECT_EQ(converter.IsValid(nullptr), 1);
  EXPECT_EQ(converter.IsUnitTypeToBeConverted(ZmUnitTypeLength), 1);
  EXPECT_EQ(converter.IsUnitTypeToBeConverted(ZmUnitTypeTime), 0);
  EXPECT_EQ(converter.IsUnitTypeToBeConverted(static_cast<_ZmUnitType>(7)), 0);
  EXPECT_EQ(converter.IsDimensionToBeConverted(ZmUnitDimTime), 0);
  EXPECT_EQ(converter.IsDimensionToBeConverted(ZmUnitDimPressure), 1);

  // With a dimension, the types it does not involve are marked "not needed".
  ASSERT_EQ(converter.InitFromTo(kMmTS, kMKgS, needed, &ZmUnitDimLength), nullptr);
  EXPECT_EQ(needed, 1);
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeMass), -1e32f);
  EXPECT_EQ(converter.IsValid(&ZmUnitDimLength), 1);
  EXPECT_EQ(converter.IsValid(&ZmUnitDimVelocity), 0);
  EXPECT_EQ(converter.IsValid(nullptr), 0);
  EXPECT_EQ(converter.IsDimensionToBeConverted(ZmUnitDimTime), 1);  // its factor is the marker, not 1
  ASSERT_EQ(converter.InitFromTo(kMmTS, kMmTS, needed, &ZmUnitDimPressure), nullptr);
  EXPECT_EQ(needed, 0);
  EXPECT_EQ(converter.IsDimensionToBeConverted(ZmUnitDimPressure), 0);

  // Failures, in the order of the tests on each type, at the first failing type.
  const ZmUnitSystem noMass(ZmUnitMeter, ZmUnitMassUnset, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  const auto message = [](const WbErrObj* error) { return std::wstring(error ? error->GetMessage() : L"<none>"); };
  EXPECT_EQ(message(converter.InitFromTo(kMmTS, noMass, needed, nullptr)), L"Inconsistent target unit system");
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeLength), 0.0010000000474974513f);  // types before it are prepared
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeMass), -1e32f);
  EXPECT_EQ(message(converter.InitFromTo(noMass, kMmTS, needed, nullptr)), L"Inconsistent source unit system");
  EXPECT_EQ(message(converter.InitFromTo(noMass, noMass, needed, nullptr)), L"<none>");  // equal: factor 1
  const ZmUnitSystem pixels(ZmUnitPixel, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(message(converter.InitFromTo(kMmTS, pixels, needed, &ZmUnitDimLength)),
            L"Internal error : can't process unit system conversion");
  ASSERT_EQ(converter.InitFromTo(pixels, kMmTS, needed, &ZmUnitDimLength), nullptr);
  EXPECT_EQ(converter.GetFactor(ZmUnitTypeLength), 1000.0f);
  // A unit index beyond the table has no factor either.
  const ZmUnitSystem beyond(static_cast<_ZmUnitLength>(17), ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(message(converter.InitFromTo(kMmTS, beyond, needed, &ZmUnitDimLength)),
            L"Internal error : can't process unit system conversion");
}

TEST(UnitConverter, ScalarConversionInBothPrecisions) {
  ZmUnitConverter converter;
  unsigned char needed = 0;
  ASSERT_EQ(converter.InitFromTo(kMKgS, kMmTS, needed, nullptr), nullptr);
  float f = 1.0f;
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimPressure, f), 1);
  EXPECT_EQ(f, 1.0000001111620804e-06f);
  // The double value is scaled by the widened float factors: 1 / 1000 * 0.0010000000474974513.
  double d = 1.0;
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimPressure, d), 1);
  EXPECT_EQ(d, 1.0000000474974512e-06);
  double inch = 1.0;
  ASSERT_EQ(converter.InitFromTo(ZmUnitSystem(ZmUnitInch, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), kMmTS,
                                 needed, &ZmUnitDimLength),
            nullptr);
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimLength, inch), 1);
  EXPECT_EQ(inch, 25.40005111694336);  // float(1000 / float(39.37)), widened
  // The marker is left alone; an unchanged value reports 0.
  float marker = -1e32f;
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimLength, marker), 0);
  EXPECT_EQ(marker, -1e32f);
  double markerD = double(-1e32f);
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimLength, markerD), 0);
  EXPECT_EQ(markerD, double(-1e32f));
  float ratio = 0.25f;
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimNone, ratio), 0);
  EXPECT_EQ(ratio, 0.25f);
  // A type the converter was not prepared for stops the conversion; the types before it stay
  // converted: the length part of a velocity is scaled, the time part is missing.
  float velocity = 2.0f;
  EXPECT_EQ(converter.ConvertScalar(ZmUnitDimVelocity, velocity), 0);
  EXPECT_EQ(velocity, 2.0f * 25.40005111694336f);
  // A fractional exponent goes through pow: sqrt(float(1000/39.37)) * 4 for a length^(1/2).
  ZmUnitDim root;
  root.SetTypeDimension(ZmUnitTypeLength, 1, 2);
  float rooted = 4.0f;
  EXPECT_EQ(converter.ConvertScalar(root, rooted), 1);
  EXPECT_FLOAT_EQ(rooted, 4.0f * std::sqrt(25.40005111694336f));
}

TEST(UnitSystem, WritesValuesWithTheirUnit) {
  WbString text(L"old");
  EXPECT_EQ(kMmTS.FormatDimensionalValue(210000.0f, ZmUnitDimPressure, text), 1);
  EXPECT_EQ(Text(text), L"210000 MPa");
  EXPECT_EQ(kMmTS.FormatDimensionalValue(0.1f, ZmUnitDimLength, text), 1);
  EXPECT_EQ(Text(text), L"0.1000000014901161 mm");  // float(0.1) with 16 significant digits
  EXPECT_EQ(kMmTS.FormatDimensionalValue(0.5f, ZmUnitDimNone, text), 1);
  EXPECT_EQ(Text(text), L"0.5");
  EXPECT_EQ(kMKgS.FormatDimensionalValue(-3.0f, ZmUnitDimVelocity, text), 1);
  EXPECT_EQ(Text(text), L"-3 m/s");
  EXPECT_EQ(kMmTS.FormatDimensionalValue(-1e32f, ZmUnitDimLength, text), 0);
  EXPECT_EQ(Text(text), L"");

  WbArrayTempl<float> values{1.0f, 2.5f, 3.0f};
  EXPECT_EQ(kMmTS.FormatDimensionalValues(values, ZmUnitDimPressure, text), 1);
  EXPECT_EQ(Text(text), L"1; 2.5; 3 MPa");
  EXPECT_EQ(kMmTS.FormatDimensionalValues(values, ZmUnitDimNone, text), 1);
  EXPECT_EQ(Text(text), L"1; 2.5; 3");
  values.Add(-1e32f);
  EXPECT_EQ(kMmTS.FormatDimensionalValues(values, ZmUnitDimPressure, text), 0);
  EXPECT_EQ(Text(text), L"");
  EXPECT_EQ(kMmTS.FormatDimensionalValues(WbArrayTempl<float>(), ZmUnitDimPressure, text), 0);
}

TEST(UnitSystem, ReadsValuesWrittenInAnySystem) {
  float value = 0.0f;
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"  210000 MPa \t", ZmUnitDimPressure, value), 1);
  EXPECT_EQ(value, 210000.0f);
  // 2.1e11 Pa in MPa: float(2.1e11) / 1000 * 0.001 = 210000.015625.
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"2.1e11 Pa", ZmUnitDimPressure, value), 1);
  EXPECT_EQ(value, 210000.015625f);
  ASSERT_EQ(kMKgS.String2DimensionalValue(L"1 T/mm.s2", ZmUnitDimPressure, value), 1);
  EXPECT_EQ(value, 999999.875f);
  ASSERT_EQ(kMKgS.String2DimensionalValue(L"7.85e-9 T/mm3", ZmUnitDimDensity, value), 1);
  EXPECT_EQ(value, 7849.9990234375f);
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"+2.5e+2 N/mm", ZmUnitDimForcePerLength, value), 1);
  EXPECT_EQ(value, 250.0f);
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"42", ZmUnitDimLength, value), 1);  // no symbol: already in mm
  EXPECT_EQ(value, 42.0f);
  ASSERT_EQ(kMmKgMs.String2DimensionalValue(L"100 1/s", ZmUnitDimFreq, value), 1);
  EXPECT_EQ(value, 0.10000000149011612f);
  double precise = 0.0;
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"1 in", ZmUnitDimLength, precise), 1);
  EXPECT_EQ(precise, 25.40005111694336);
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"1e39 m", ZmUnitDimLength, precise), 1);  // beyond float, not double
  EXPECT_EQ(precise, 9.999999999999999e+41);  // double(1e39) * 1000, rounded once

  // Everything else is refused with 0 and the marker.
  const wchar_t* refused[] = {L"",          L"   ",      L"MPa",    L"1MPa",    L"1 mPa",    L"1 MPa x",
                              L"1..2 MPa",  L"0x10 MPa", L"1e MPa", L". MPa",   L"1; 2 MPa", L"1 Kg/m3",
                              L"-1e32 MPa", L"1e39 MPa", L"5 mm",   L"- 5 MPa", L"1,5 MPa",  L"1 MPa MPa"};
  for (const wchar_t* text : refused) {
    value = 7.0f;
    EXPECT_EQ(kMmTS.String2DimensionalValue(text, ZmUnitDimPressure, value), 0) << std::wstring(text).size();
    EXPECT_EQ(value, -1e32f);
  }
  precise = 7.0;
  EXPECT_EQ(kMmTS.String2DimensionalValue(L"1 furlong", ZmUnitDimLength, precise), 0);
  EXPECT_EQ(precise, double(-1e32f));
  // Into a system that cannot hold the value.
  const ZmUnitSystem pixels(ZmUnitPixel, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(pixels.String2DimensionalValue(L"1 mm", ZmUnitDimLength, value), 0);
  EXPECT_EQ(LastMessage(), L"Internal error : can't process unit system conversion");
}

TEST(UnitSystem, ValueListsAndRoundTrips) {
  WbArrayTempl<float> values;
  ASSERT_EQ(kMmTS.String2DimensionalValues(L" 1;2.5 ;  3 MPa ", ZmUnitDimPressure, values), 1);
  ASSERT_EQ(values.GetSize(), 3u);
  EXPECT_EQ(values[1], 2.5f);
  ASSERT_EQ(kMKgS.String2DimensionalValues(L"1; 2 MPa", ZmUnitDimPressure, values), 1);
  ASSERT_EQ(values.GetSize(), 2u);
  EXPECT_EQ(values[0], 999999.875f);
  EXPECT_EQ(values[1], 1999999.75f);
  ASSERT_EQ(kMmTS.String2DimensionalValues(L"4", ZmUnitDimLength, values), 1);
  EXPECT_EQ(values.GetSize(), 1u);
  for (const wchar_t* text : {L"", L"1; ; 2 MPa", L"1; 2;", L"1 MPa; 2", L"; 1", L"1 2 MPa"}) {
    EXPECT_EQ(kMmTS.String2DimensionalValues(text, ZmUnitDimPressure, values), 0);
    EXPECT_EQ(values.GetSize(), 0u);
  }

  // Whatever a system writes, it reads back to the same value: every pressure system, a
  // quotient, awkward floats.
  const float samples[] = {123.456f, -7.0e-12f, 3.4028235e38f, 1.4e-45f, 0.0f};
  for (int l = 0; l < 6; ++l) {
    for (int m = 0; m < 9; ++m) {
      for (int t = 0; t < 3; ++t) {
        const ZmUnitSystem system(static_cast<_ZmUnitLength>(l), static_cast<_ZmUnitMass>(m),
                                  static_cast<_ZmUnitTime>(t), ZmUnitKelvin, ZmUnitRadian);
        for (const ZmUnitDim* dim : {&ZmUnitDimPressure, &ZmUnitDimForcePerLength}) {
          for (const float sample : samples) {
            WbString text;
            ASSERT_EQ(system.FormatDimensionalValue(sample, *dim, text), 1);
            float back = 0.0f;
            ASSERT_EQ(system.String2DimensionalValue(text, *dim, back), 1) << Text(text).size();
            EXPECT_EQ(back, sample);
          }
        }
      }
    }
  }
  WbArrayTempl<float> list{1.5f, -2.0f, 1e-7f};
  WbString text;
  ASSERT_EQ(kMmKgMs.FormatDimensionalValues(list, ZmUnitDimFreq, text), 1);
  EXPECT_EQ(Text(text), L"1.5; -2; 1.000000011686097e-07 KHz");
  ASSERT_EQ(kMmKgMs.String2DimensionalValues(text, ZmUnitDimFreq, values), 1);
  ASSERT_EQ(values.GetSize(), 3u);
  EXPECT_EQ(values[2], 1e-7f);
}

TEST(UnitSystem, CompatibleDerivedUnits) {
  WbObjectArrayTempl<WbString> names;
  WbArrayTempl<float> factors;
  int index = 99;
  ASSERT_EQ(kMmTS.GetCompatibleEquivUnits(ZmUnitDimPressure, names, factors, 1.0f, &index), 6u);
  // 1 MPa in Pa, KPa, MPa, GPa, dyn/cm2, mmHg (float steps of the conversion, numpy float32).
  const wchar_t* expectedNames[] = {L"Pa", L"KPa", L"MPa", L"GPa", L"dyn/cm2", L"mmHg"};
  const float expectedFactors[] = {999999.875f, 999.9999389648438f, 1.0f, 0.0009999999310821295f,
                                   9999999.0f,  7500.61474609375f};
  for (int i = 0; i < 6; ++i) {
    EXPECT_EQ(Text(*names[i]), expectedNames[i]);
    EXPECT_EQ(factors[i], expectedFactors[i]);
  }
  EXPECT_EQ(index, 2);
  // Without a length nothing converts.
  const ZmUnitSystem noLength(ZmUnitLengthUnset, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(noLength.GetCompatibleEquivUnits(ZmUnitDimPressure, names, factors, 1.0f, &index), 0u);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(factors.GetSize(), 0u);
  // Nothing converts into the pixel: lengths offer m, cm, mm, ft and in. The index pointer is
  // optional.
  ASSERT_EQ(kMmTS.GetCompatibleEquivUnits(ZmUnitDimLength, names, factors, 1.0f, nullptr), 5u);
  EXPECT_EQ(Text(*names[4]), L"in");
  EXPECT_EQ(factors[4], 0.03937000036239624f);  // float(39.37 / 1000)
  EXPECT_EQ(kMmTS.GetCompatibleEquivUnits(ZmUnitDimLength, names, factors, 1.0f, &index), 5u);
  EXPECT_EQ(index, 2);
}

TEST(UnitSystem, ConcurrentConversionsOnTheSharedCatalogue) {
  // Each worker converts, names and parses on the shared catalogue and compares with the
  // results computed here first, on one thread.
  struct Case {
    ZmUnitSystem from, to;
    const ZmUnitDim* dim;
    float value;
  };
  const std::vector<Case> cases = {{kMKgS, kMmTS, &ZmUnitDimPressure, 1.0f},
                                   {kMmTS, kMKgS, &ZmUnitDimDensity, 7.85e-9f},
                                   {kMKgS, kMmKgMs, &ZmUnitDimVelocity, 3.0f},
                                   {kMmTS, kMmKgMs, &ZmUnitDimForce, 12.5f},
                                   {kMmKgMs, kMKgS, &ZmUnitDimFreq, 0.25f}};
  std::vector<float> converted;
  std::vector<std::wstring> symbols;
  std::vector<float> parsed;
  for (const Case& c : cases) {
    WbString symbol, text;
    converted.push_back(c.to.ConvertValueFrom(c.value, c.from, *c.dim, &symbol));
    symbols.push_back(Text(symbol));
    c.from.FormatDimensionalValue(c.value, *c.dim, text);
    float value = 0.0f;
    c.to.String2DimensionalValue(text, *c.dim, value);
    parsed.push_back(value);
  }
  constexpr int kThreads = 4;
  constexpr int kRounds = 300;
  std::vector<int> mismatches(kThreads, 0);
  std::vector<std::thread> workers;
  for (int w = 0; w < kThreads; ++w) {
    workers.emplace_back([&, w] {
      for (int round = 0; round < kRounds; ++round) {
        const std::size_t i = static_cast<std::size_t>(round + w) % cases.size();
        const Case& c = cases[i];
        WbString symbol, text;
        if (c.to.ConvertValueFrom(c.value, c.from, *c.dim, &symbol) != converted[i]) ++mismatches[w];
        if (Text(symbol) != symbols[i]) ++mismatches[w];
        c.from.FormatDimensionalValue(c.value, *c.dim, text);
        float value = 0.0f;
        if (!c.to.String2DimensionalValue(text, *c.dim, value) || value != parsed[i]) ++mismatches[w];
        // A failing conversion records its error on this thread only.
        if (c.to.ConvertLengthFrom(1.0f, ZmUnitLengthUnset) != -1e32f) ++mismatches[w];
        if (LastMessage() != L"Inconsistent source unit system") ++mismatches[w];
      }
    });
  }
  for (std::thread& worker : workers) worker.join();
  for (int w = 0; w < kThreads; ++w) EXPECT_EQ(mismatches[w], 0) << "thread " << w;
  EXPECT_EQ(symbols[0], L"MPa");
  EXPECT_EQ(symbols[3], L"kN");
}

}  // namespace
