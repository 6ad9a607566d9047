// Unit systems and converters: validity, the conversion rules, values as text and back, and
// conversions from several threads on the shared catalogue. Expected floats replay the documented
// operations in numpy float32: 1 Pa into (mm, T, s) is float32(1) / float32(1000) * float32(0.001).
#include <cmath>
#include <cstdio>
#include <thread>

#include "units_test_support.h"

constexpr float kInch = 25.40005111694336f;  // float(1000 / float(39.37)) mm
const wchar_t* const kNoError = L"<no error>";
const wchar_t* const kInternal = L"Internal error : can't process unit system conversion";

TEST(UnitSystem, IndicesValidityAndNames) {
  const ZmUnitSystem system = SysAt(4, 6, 2, 3, -1);  // in, slug, us, Ra, no angle
  EXPECT_EQ(Units(ZmUnitSystem()) + Text(ZmUnitSystem().GetUnitShortName(ZmUnitTypeLength)), L"-1 -1 -1 -1 -1");
  EXPECT_EQ(system.GetUnitIndex(static_cast<_ZmUnitType>(5)) + system.GetUnitIndex(static_cast<_ZmUnitType>(-1)), -2);
  EXPECT_EQ(Text(system.GetUnitLongName(ZmUnitTypeTime)) + Text(system.GetUnitShortName(ZmUnitTypeTemp)),
            L"MicrosecondRa");
  // Each index is tested against its type's catalogue size: 6, 9, 3, 4 and 2 units.
  // clang-format off
  const std::tuple<ZmUnitSystem, int, int> validity[] = {
      {system, 1, 1}, {system, 0, 0}, {SysAt(5, 8, 2, 3, 0), 0, 1}, {SysAt(6, 4, 0), 1, 0}, {SysAt(0, 9, 0), 1, 0},
      {SysAt(0, 4, 3), 1, 0}, {SysAt(0, 4, 0, 4), 1, 0}, {SysAt(0, 4, 0, 0, 2), 0, 0}, {SysAt(0, 4, 0, 0, 2), 1, 1}};
  // clang-format on
  for (const auto& [s, ignoreAngle, valid] : validity) EXPECT_EQ(s.IsValid(ignoreAngle), valid) << Units(s);
  ZmUnitSystem metres = kMmTS;
  metres.Init(ZmUnitMeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ((metres == kMmTS) + 2 * (metres == SysAt(0, 4, 0)), 2);  // the length too
}

TEST(UnitSystem, ConversionExamples) {
  const ZmUnitSystem ftLbmSDeg = SysAt(3, 7, 0, 0, 0), mmTMs = SysAt(2, 4, 1), celsius = SysAt(2, 4, 0, 1);
  // 200000 MPa: / float(1/1000) * float(1/0.001) = 999.99994 -> 199999979520. Steel 7.85e-9 T/mm3: three
  // divisions by float(1/1000), one product by 999.99994. 10 ft = 10 * float(1000 / 3.281) mm; 1 m3 = 3.281^3
  // ft3 by repeated products (pow gives 35.3198356628418); g into mm/ms2: * 1000 / 1000 / 1000; 180 deg = 180 *
  // 0.017453292 rad. Temperatures are never offset; a missing type the dimension does not involve does not
  // matter; out of pixels the pixel counts as the metre; the marker is never converted.
  // clang-format off
  const std::pair<float, float> rows[] = {
      {kMmTS.ConvertValueFrom(1.0f, kMKgS, ZmUnitDimPressure, nullptr), 1.0000001111620804e-06f},
      {kMmTS.ConvertPressureFrom(1.0f, ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond), 1.0000001111620804e-06f},
      {kMKgS.ConvertValueFrom(200000.0f, kMmTS, ZmUnitDimPressure, nullptr), 199999979520.0f},
      {kMmKgMs.ConvertVelocityFrom(1.0f, ZmUnitMeter, ZmUnitSecond), 1.0f},
      {kMmKgMs.ConvertVelocityFrom(1.0f, kMKgS), 1.0f},
      {kMKgS.ConvertValueFrom(7.85e-9f, kMmTS, ZmUnitDimDensity, nullptr), 7849.9990234375f},
      {kMmKgMs.ConvertFreqFrom(100.0f, ZmUnitSecond), 0.10000000149011612f},
      {kMmKgMs.ConvertTimeFrom(2.0f, ZmUnitSecond), 2000.0f},
      {kMmTS.ConvertLengthFrom(10.0f, ZmUnitFoot), 3047.851318359375f},
      {kMKgS.ConvertAreaFrom(2.0f, ZmUnitCentimeter), 0.00019999999494757503f},
      {ftLbmSDeg.ConvertVolumeFrom(1.0f, ZmUnitMeter), 35.31983184814453f},
      {mmTMs.ConvertAccelerationFrom(9.80665f, kMKgS), 0.009806649759411812f},
      {kMmTS.ConvertAngleFrom(180.0f, ZmUnitDegree), 3.1415927410125732f},
      {ftLbmSDeg.ConvertAngleFrom(1.0f, ZmUnitRadian), 57.295780181884766f},
      {kMmTS.ConvertValueFrom(100.0f, celsius, ZmUnitDimTemp, nullptr), 100.0f},
      {SysAt(2, 4, 0, 2).ConvertValueFrom(-40.0f, celsius, ZmUnitDimTemp, nullptr), -40.0f},
      {kMmKgMs.ConvertValueFrom(5.0f, kNoLength, ZmUnitDimTime, nullptr), 5000.0f},
      {kMmTS.ConvertLengthFrom(3.0f, ZmUnitPixel), 3000.0f},
      {kMmTS.ConvertLengthFrom(kInvalid, ZmUnitMeter), kInvalid}};
  // clang-format on
  for (const auto& r : rows) EXPECT_EQ(r.first, r.second) << &r - rows;
}

TEST(UnitSystem, FailedConversionsGiveTheInvalidMarker) {
  EXPECT_EQ(kMmTS.ConvertValueFrom(5.0f, kNoLength, ZmUnitDimLength, nullptr), kInvalid);
  EXPECT_EQ(LastMessage(), L"Inconsistent source unit system");
  WbString name(L"untouched");
  EXPECT_EQ(kNoLength.ConvertValueFrom(5.0f, kMmTS, ZmUnitDimPressure, &name), kInvalid);
  EXPECT_EQ(LastMessage() + L" " + Text(name), L"Inconsistent target unit system untouched");
  EXPECT_EQ(kPixels.ConvertLengthFrom(3.0f, ZmUnitMillimeter), kInvalid);  // nothing converts into pixels
  EXPECT_EQ(LastMessage(), kInternal);
}

// A force is the newton in (mm, T, s) and (m, Kg, s); a pressure is not the same unit, but 1e-6 MPa is 1 Pa.
TEST(UnitSystem, CompatibilityOfTwoSystems) {
  const ZmUnitSystem none;
  const std::tuple<const ZmUnitSystem&, const ZmUnitSystem&, const ZmUnitDim&, float, int> rows[] = {
      {kMmTS, kMKgS, ZmUnitDimForce, 1.0f, 1},      {kMmTS, kMKgS, ZmUnitDimPressure, 1.0f, 0},
      {kMmTS, kMKgS, ZmUnitDimPressure, 1e-6f, 1},  {kMKgS, kMmKgMs, ZmUnitDimVelocity, 1.0f, 1},
      {kMmTS, kMmKgMs, ZmUnitDimVelocity, 1.0f, 0}, {kMmTS, none, ZmUnitDimLength, 1.0f, 0}};
  for (const auto& [a, b, dim, value, same] : rows) EXPECT_EQ(a.IsCompatibleWith(b, dim, value), same) << value;
}

// Each row prepares a new converter. A type the dimension does not involve gets the marker ("not
// needed"); a change of temperature unit is reported but has the factor 1. Failures come at the
// first failing type, with the types before it prepared. The state reads: needed, IsValid for
// (all, length, velocity), IsUnitTypeToBeConverted for (length, time, type 7),
// IsDimensionToBeConverted for (time, pressure).
TEST(UnitConverter, PreparationFactorsAndFailures) {
  const ZmUnitSystem mKgSCDeg = SysAt(0, 0, 0, 1, 0), noMass = SysAt(0, -1, 0), beyond = SysAt(17, 4, 0);
  const float x = kInvalid, mm = 0.0010000000474974513f;  // float(1 / 1000)
  const ZmUnitDim *length = &ZmUnitDimLength, *none = nullptr;
  using Factors = std::vector<float>;
  const std::tuple<ZmUnitSystem, ZmUnitSystem, const ZmUnitDim*, const wchar_t*, Factors, const char*> rows[] = {
      // float(1 / float(0.001)) per tonne, float(1 / float(0.017453292)) degrees per radian.
      {kMmTS, mKgSCDeg, none, kNoError, {mm, 999.9999389648438f, 1, 1, 57.295780181884766f}, "1 111 100 01"},
      {kMmTS, kMKgS, length, kNoError, {mm, x, x, x, x}, "1 010 110 11"},
      {kMmTS, kMmTS, &ZmUnitDimPressure, kNoError, {1, 1, 1, x, x}, "0 011 000 00"},
      {mKgSCDeg, kMmTS, &ZmUnitDimTemp, kNoError, {x, x, x, 1, x}, "1 000 110 11"},
      {noMass, noMass, none, kNoError, {1, 1, 1, 1, 1}, "0 111 000 00"},
      {kPixels, kMmTS, length, kNoError, {1000, x, x, x, x}, "1 010 110 11"},
      {kMmTS, noMass, none, L"Inconsistent target unit system", {mm, x, x, x, x}, nullptr},
      {noMass, kMmTS, none, L"Inconsistent source unit system", {1000, x, x, x, x}, nullptr},
      {kMmTS, kPixels, length, kInternal, {x, x, x, x, x}, nullptr},
      {kMmTS, beyond, length, kInternal, {x, x, x, x, x}, nullptr}};  // an index beyond the table
  for (const auto& [from, to, dim, message, factors, state] : rows) {
    ZmUnitConverter c;
    unsigned char needed = 9;
    EXPECT_EQ(Message(c.InitFromTo(from, to, needed, dim)), message) << Units(from) << " to " << Units(to);
    Factors got;
    for (int t = -1; t < 6; ++t) got.push_back(c.GetFactor(static_cast<_ZmUnitType>(t)));
    EXPECT_EQ(got, (Factors{x, factors[0], factors[1], factors[2], factors[3], factors[4], x})) << message;
    if (!state) continue;
    char flags[64];
    std::snprintf(flags, sizeof flags, "%d %d%d%d %d%d%d %d%d", needed, c.IsValid(nullptr), c.IsValid(length),
                  c.IsValid(&ZmUnitDimVelocity), c.IsUnitTypeToBeConverted(ZmUnitTypeLength),
                  c.IsUnitTypeToBeConverted(ZmUnitTypeTime), c.IsUnitTypeToBeConverted(static_cast<_ZmUnitType>(7)),
                  c.IsDimensionToBeConverted(ZmUnitDimTime), c.IsDimensionToBeConverted(ZmUnitDimPressure));
    EXPECT_EQ(std::string(flags), state) << Units(from) << " to " << Units(to);
  }
}

// The double twin is scaled by the widened float factors ("changed" is 2 for the float twin plus 1
// for the double twin). The marker and a neutral value are left alone. A type the converter was not
// prepared for stops the conversion with the types before it converted: the length part of a
// velocity is scaled, the time part is missing. A float result that rounds to the marker counts as
// not converted: float(-1e29) * 1000 is -1e32f (Python struct); the double twin is an ordinary value.
TEST(UnitConverter, ScalarConversionInBothPrecisions) {
  const ZmUnitSystem inches = SysAt(4, 4, 0), celsius = SysAt(2, 4, 0, 1);
  const ZmUnitDim* length = &ZmUnitDimLength;
  const float nearMarker = -1.0000000150474662e+29f;
  // clang-format off
  const std::tuple<ZmUnitSystem, const ZmUnitDim*, const ZmUnitDim&, float, int, float, double> rows[] = {
      // 1 / 1000 * 0.0010000000474974513 in double.
      {kMKgS, nullptr, ZmUnitDimPressure, 1.0f, 3, 1.0000001111620804e-06f, 1.0000000474974512e-06},
      {inches, length, ZmUnitDimLength, 1.0f, 3, kInch, kInch}, {inches, length, ZmUnitDimNone, 0.25f, 0, 0.25f, 0.25},
      {inches, length, ZmUnitDimLength, kInvalid, 0, kInvalid, kInvalid},
      {inches, length, ZmUnitDimVelocity, 2.0f, 0, 2.0f * kInch, 2.0f * kInch},
      {celsius, &ZmUnitDimTemp, ZmUnitDimTemp, 100.0f, 0, 100.0f, 100.0},
      {kMKgS, length, ZmUnitDimLength, nearMarker, 1, kInvalid, -1.0000000150474662e+32}};
  // clang-format on
  for (const auto& [from, prepared, dim, value, changed, expectedF, expectedD] : rows) {
    ZmUnitConverter converter;
    unsigned char needed = 0;
    ASSERT_EQ(converter.InitFromTo(from, kMmTS, needed, prepared), nullptr);
    float f = value;
    double d = value;
    EXPECT_EQ(2 * converter.ConvertScalar(dim, f) + converter.ConvertScalar(dim, d), changed) << value;
    EXPECT_EQ(f, expectedF);
    EXPECT_EQ(d, expectedD);
  }
  // A fractional exponent goes through pow: sqrt(kInch) * 4 for a length^(1/2).
  ZmUnitConverter converter;
  unsigned char needed = 0;
  ASSERT_EQ(converter.InitFromTo(inches, kMmTS, needed, length), nullptr);
  float rooted = 4.0f;
  EXPECT_EQ(converter.ConvertScalar(Dim(L"1/2 0 0 0 0"), rooted), 1);
  EXPECT_FLOAT_EQ(rooted, 4.0f * std::sqrt(kInch));
}

// One value, or a list with "; " between the values, in 16 significant digits and then the unit
// symbol; the marker anywhere, or no value at all, writes nothing and gives 0.
TEST(UnitSystem, WritesValuesWithTheirUnit) {
  const ZmUnitDim &pressure = ZmUnitDimPressure, &length = ZmUnitDimLength;
  // clang-format off
  const std::tuple<const ZmUnitSystem&, std::vector<float>, const ZmUnitDim&, const wchar_t*> rows[] = {
      {kMmTS, {210000.0f}, pressure, L"1 210000 MPa"}, {kMmTS, {0.1f}, length, L"1 0.1000000014901161 mm"},
      {kMmTS, {0.5f}, ZmUnitDimNone, L"1 0.5"}, {kMKgS, {-3.0f}, ZmUnitDimVelocity, L"1 -3 m/s"},
      {kMmTS, {kInvalid}, length, L"0 "}, {kMmTS, {1.0f, 2.5f, 3.0f}, pressure, L"1 1; 2.5; 3 MPa"},
      {kMmTS, {1.0f, 2.5f, 3.0f}, ZmUnitDimNone, L"1 1; 2.5; 3"}, {kMmTS, {1.0f, 2.5f, kInvalid}, pressure, L"0 "},
      {kMmTS, {}, pressure, L"0 "}, {kMmKgMs, {1.5f, -2.0f, 1e-7f}, ZmUnitDimFreq, L"1 1.5; -2; 1.000000011686097e-07 KHz"}};
  // clang-format on
  for (const auto& [system, values, dim, expected] : rows) {
    WbString text(L"old");
    WbArrayTempl<float> list;
    for (const float v : values) list.Add(v);
    const int written = values.size() == 1 ? system.FormatDimensionalValue(values[0], dim, text)
                                           : system.FormatDimensionalValues(list, dim, text);
    EXPECT_EQ(std::to_wstring(written) + L" " + Text(text), expected);
  }
}

TEST(UnitSystem, ReadsValuesWrittenInAnySystem) {
  const std::tuple<const ZmUnitSystem&, const wchar_t*, const ZmUnitDim&, float> rows[] = {
      {kMmTS, L"  210000 MPa \t", ZmUnitDimPressure, 210000.0f},
      {kMmTS, L"2.1e11 Pa", ZmUnitDimPressure, 210000.015625f},  // float(2.1e11) / 1000 * 0.001
      {kMKgS, L"1 T/mm.s2", ZmUnitDimPressure, 999999.875f},
      {kMKgS, L"7.85e-9 T/mm3", ZmUnitDimDensity, 7849.9990234375f},
      {kMmTS, L"+2.5e+2 N/mm", ZmUnitDimForcePerLength, 250.0f},
      {kMmTS, L"42", ZmUnitDimLength, 42.0f},  // no symbol: already in mm
      // More digits than any value needs are still read, wherever the number starts.
      {kMmTS, L"  1.000000000000000000000000000000000000000000000000000000000000000000001 mm", ZmUnitDimLength, 1.0f},
      {kMmKgMs, L"100 1/s", ZmUnitDimFreq, 0.10000000149011612f}};
  for (const auto& [system, text, dim, expected] : rows) {
    float value = 0.0f;
    EXPECT_EQ(system.String2DimensionalValue(text, dim, value), 1) << std::wstring(text).size();
    EXPECT_EQ(value, expected);
  }
  double precise = 0.0;
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"1 in", ZmUnitDimLength, precise), 1);
  EXPECT_EQ(precise, 25.40005111694336);
  ASSERT_EQ(kMmTS.String2DimensionalValue(L"1e39 m", ZmUnitDimLength, precise), 1);  // beyond float, not double
  EXPECT_EQ(precise, 9.999999999999999e+41);  // double(1e39) * 1000, rounded once

  // Everything else is refused with 0 and the marker.
  for (const wchar_t* text :
       {L"", L"   ", L"MPa", L"1MPa", L"1 mPa", L"1 MPa x", L"1..2 MPa", L"0x10 MPa", L"1e MPa", L". MPa", L"1; 2 MPa",
        L"1 Kg/m3", L"-1e32 MPa", L"1e39 MPa", L"5 mm", L"- 5 MPa", L"1,5 MPa", L"1 MPa MPa"}) {
    float value = 7.0f;
    EXPECT_EQ(kMmTS.String2DimensionalValue(text, ZmUnitDimPressure, value), 0) << std::wstring(text).size();
    EXPECT_EQ(value, kInvalid);
  }
  precise = 7.0;
  EXPECT_EQ(kMmTS.String2DimensionalValue(L"1 furlong", ZmUnitDimLength, precise), 0);
  EXPECT_EQ(precise, double(kInvalid));
  float value = 0.0f;  // into a system that cannot hold the value
  EXPECT_EQ(kPixels.String2DimensionalValue(L"1 mm", ZmUnitDimLength, value), 0);
  EXPECT_EQ(LastMessage(), kInternal);
}

TEST(UnitSystem, ValueListsAndRoundTrips) {
  WbArrayTempl<float> values;
  const auto read = [&](const ZmUnitSystem& system, const wchar_t* text, const ZmUnitDim& dim) {
    std::wstring out = std::to_wstring(system.String2DimensionalValues(text, dim, values)) + L":";
    for (const float v : values) out += L" " + std::to_wstring(v);  // six decimals
    return out;
  };
  EXPECT_EQ(read(kMmTS, L" 1;2.5 ;  3 MPa ", ZmUnitDimPressure), L"1: 1.000000 2.500000 3.000000");
  EXPECT_EQ(read(kMKgS, L"1; 2 MPa", ZmUnitDimPressure), L"1: 999999.875000 1999999.750000");
  EXPECT_EQ(read(kMmTS, L"4", ZmUnitDimLength), L"1: 4.000000");
  for (const wchar_t* text : {L"", L"1; ; 2 MPa", L"1; 2;", L"1 MPa; 2", L"; 1", L"1 2 MPa"}) {
    EXPECT_EQ(read(kMmTS, text, ZmUnitDimPressure), L"0:") << std::wstring(text).size();
  }
  // Whatever a system writes, it reads back to the same value: every pressure system, a
  // quotient, awkward floats.
  for (int i = 0; i < 6 * 9 * 3; ++i) {
    const ZmUnitSystem system = SysAt(i / 27, i / 3 % 9, i % 3);
    for (const ZmUnitDim* dim : {&ZmUnitDimPressure, &ZmUnitDimForcePerLength}) {
      for (const float sample : {123.456f, -7.0e-12f, 3.4028235e38f, 1.4e-45f, 0.0f}) {
        WbString text;
        ASSERT_EQ(system.FormatDimensionalValue(sample, *dim, text), 1);
        float back = 0.0f;
        ASSERT_EQ(system.String2DimensionalValue(text, *dim, back), 1) << Text(text).size();
        EXPECT_EQ(back, sample);
      }
    }
  }
}

// The catalogue units of a dimension that a system converts into, with the factor of 1 (float steps
// of the conversion, numpy float32) and the index of the system's own unit (-1 without).
TEST(UnitSystem, CompatibleDerivedUnits) {
  WbObjectArrayTempl<WbString> names;
  WbArrayTempl<float> factors;
  const auto units = [&](const ZmUnitSystem& system, const ZmUnitDim& dim, bool withIndex) {
    int index = 99;
    const std::uint64_t count = system.GetCompatibleEquivUnits(dim, names, factors, 1.0f, withIndex ? &index : nullptr);
    std::wstring out = std::to_wstring(count) + L":";
    for (std::uint64_t i = 0; i < names.GetSize(); ++i) out += L" " + Text(*names[i]);
    return out + (withIndex ? L" @" + std::to_wstring(index) : L"");
  };
  EXPECT_EQ(units(kMmTS, ZmUnitDimPressure, true), L"6: Pa KPa MPa GPa dyn/cm2 mmHg @2");
  EXPECT_EQ(std::vector<float>(factors.begin(), factors.end()),
            (std::vector<float>{999999.875f, 999.9999389648438f, 1.0f, 0.0009999999310821295f, 9999999.0f,
                                7500.61474609375f}));
  // Without a length nothing converts; nothing converts into the pixel.
  EXPECT_EQ(units(kNoLength, ZmUnitDimPressure, true), L"0: @-1");
  EXPECT_EQ(factors.GetSize(), 0u);
  EXPECT_EQ(units(kMmTS, ZmUnitDimLength, false), L"5: m cm mm ft in");
  EXPECT_EQ(factors[4], 0.03937000036239624f);  // float(39.37 / 1000)
}

// Workers convert, name and parse on the shared catalogue; a failing conversion records its
// error on its own thread only.
TEST(UnitSystem, ConcurrentConversionsOnTheSharedCatalogue) {
  std::vector<int> mismatches(4, 0);
  std::vector<std::thread> workers;
  for (int w = 0; w < 4; ++w) {
    workers.emplace_back([&mismatches, w] {
      for (int round = 0; round < 300; ++round) {
        WbString symbol;
        float density = 0.0f;
        const float pressure = kMmTS.ConvertValueFrom(1.0f, kMKgS, ZmUnitDimPressure, &symbol);
        kMKgS.String2DimensionalValue(L"7.85e-9 T/mm3", ZmUnitDimDensity, density);
        const bool failed = kMmTS.ConvertLengthFrom(1.0f, ZmUnitLengthUnset) == kInvalid;
        mismatches[w] += pressure != 1.0000001111620804e-06f || symbol != L"MPa" || density != 7849.9990234375f ||
                         !failed || LastMessage() != L"Inconsistent source unit system";
      }
    });
  }
  for (std::thread& worker : workers) worker.join();
  EXPECT_EQ(mismatches, std::vector<int>(4, 0));
}
