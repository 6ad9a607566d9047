// Dimensions: the global dimensions, exponent arithmetic with its kept asymmetries, ownership
// of quotient components, value scaling, names and symbols, and a system from a symbol.
#include <climits>
#include <limits>

#include "units_test_support.h"

TEST(UnitDim, GlobalDimensionsHaveTheirNamesAndExponents) {
  // clang-format off
  const std::pair<const ZmUnitDim&, const wchar_t*> rows[] = {
      {ZmUnitDimNone, L"Ratio: 0 0 0 0 0"}, {ZmUnitDimTime, L"Time: 0 0 1 0 0"}, {ZmUnitDimMass, L"Mass: 0 1 0 0 0"},
      {ZmUnitDimFreq, L"Frequency: 0 0 -1 0 0"}, {ZmUnitDimLength, L"Length: 1 0 0 0 0"},
      {ZmUnitDimArea, L"Area: 2 0 0 0 0"}, {ZmUnitDimVolume, L"Volume: 3 0 0 0 0"},
      {ZmUnitDimPressure, L"Pressure: -1 1 -2 0 0"}, {ZmUnitDimVelocity, L"Velocity: 1 0 -1 0 0"},
      {ZmUnitDimAcceleration, L"Acceleration: 1 0 -2 0 0"}, {ZmUnitDimForce, L"Force: 1 1 -2 0 0"},
      {ZmUnitDimMoment, L"Moment: 2 1 -2 0 0"}, {ZmUnitDimDensity, L"Density: -3 1 0 0 0"},
      {ZmUnitDimInertia, L"Inertia: 2 1 0 0 0"}, {ZmUnitDimAngle, L"Angle: 0 0 0 0 1"},
      {ZmUnitDimInvLength, L"Inv. Length: -1 0 0 0 0"}, {ZmUnitDimTemp, L"Temperature: 0 0 0 1 0"},
      // The only quotient, made of copies of Force and Length.
      {ZmUnitDimForcePerLength, L"Force per Length: 0 1 -2 0 0 [Force: 1 1 -2 0 0 / Length: 1 0 0 0 0]"}};
  // clang-format on
  for (const auto& row : rows) EXPECT_EQ(Describe(row.first), row.second);
  EXPECT_NE(ZmUnitDimForcePerLength.GetPerNumerator(), &ZmUnitDimForce);
}

// Sum and difference both add exponents (the result has no name); the quotient constructor
// subtracts integer exponents but adds fractional ones (kept as established).
TEST(UnitDim, SumDifferenceAndQuotient) {
  const ZmUnitDim root = Dim(L"1/2 0 0 0 0"), a = Dim(L"1/2 1 3 0 0", L"A"), b = Dim(L"1/2 2 1 0 0", L"B");
  const ZmUnitDim quotientSum = ZmUnitDimForcePerLength + ZmUnitDimTime;
  const std::pair<std::wstring, const wchar_t*> rows[] = {
      {Describe(ZmUnitDimForce - ZmUnitDimLength), L": 2 1 -2 0 0"},
      {Describe(ZmUnitDimTime + ZmUnitDimFreq), L": 0 0 0 0 0"},
      {Describe(root + ZmUnitDimArea), L": 3/2 0 0 0 0"},  // denominators are untouched
      // A quotient operand contributes its numerator component: Length + Force.
      {Describe(ZmUnitDimLength + ZmUnitDimForcePerLength), L": 2 1 -2 0 0"},
      // A quotient result adds into its own numerator component and keeps its exponents ...
      {Describe(quotientSum), L": 0 1 -2 0 0 [Force: 1 1 -1 0 0 / Length: 1 0 0 0 0]"},
      // ... and the operand it came from is not modified through shared components.
      {Describe(ZmUnitDimForcePerLength), L"Force per Length: 0 1 -2 0 0 [Force: 1 1 -2 0 0 / Length: 1 0 0 0 0]"},
      // Length (1*2 + 2*1) / (2*2) = 4/4, the sum, not 1/2 - 1/2 = 0; mass 1 - 2, time 3 - 1.
      {Describe(ZmUnitDim(a, b)), L"A per B: 4/4 -1 2 0 0 [A: 1/2 1 3 0 0 / B: 1/2 2 1 0 0]"}};
  for (const auto& row : rows) EXPECT_EQ(row.first, row.second);
}

// Exponents that would leave the int range saturate instead of wrapping (a wrapped INT_MAX + 1
// would read as a huge negative exponent). Columns: a (num, den), b (num, den), then the
// quotient's num and den and the sum's num; num a.num * b.den + a.den * b.num, den a.den * b.den.
TEST(UnitDim, ExponentArithmeticSaturates) {
  // clang-format off
  const int rows[][7] = {
      {INT_MAX, 1, -1, 1, INT_MAX, 1, INT_MAX - 1}, {INT_MIN, 1, 1, 1, INT_MIN, 1, INT_MIN + 1},
      {INT_MAX, 1, INT_MAX, 1, 0, 1, INT_MAX}, {INT_MIN, 1, INT_MIN, 1, 0, 1, INT_MIN},
      {INT_MAX, 2, 1, 2, INT_MAX, 4, INT_MAX}, {1, INT_MAX, 1, 3, INT_MAX, INT_MAX, 2},
      {-3, 2, INT_MAX, 2, INT_MAX, 4, INT_MAX - 3},                     // -6 + 2 INT_MAX saturates, -3 + INT_MAX fits
      {INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MAX, INT_MAX, INT_MIN}};  // 2^62 + 2^62 passes even 64 bits
  // clang-format on
  const _ZmUnitType t = ZmUnitTypeTime;
  for (const auto& r : rows) {
    ZmUnitDim a, b;
    a.SetTypeDimension(t, r[0], r[1]);
    b.SetTypeDimension(t, r[2], r[3]);
    const ZmUnitDim q(a, b), sum = a + b;
    EXPECT_EQ(std::make_tuple(q.GetNumerator(t), q.GetDenominator(t), sum.GetNumerator(t)),
              std::make_tuple(r[4], r[5], r[6]))
        << r[0] << "/" << r[1] << " with " << r[2] << "/" << r[3];
  }
}

// A copy has no quotient components; an assignment gives the target components of its own, which
// each destructor releases (the sanitizers catch a double free or a leak).
TEST(UnitDim, CopyDropsComponentsAssignmentDuplicatesThem) {
  const std::wstring forcePerLength = Describe(ZmUnitDimForcePerLength);
  EXPECT_EQ(Describe(ZmUnitDim(ZmUnitDimForcePerLength)), L"Force per Length: 0 1 -2 0 0");
  {
    ZmUnitDim assigned(L"old", 1, 1, 1, 1, 1), chain;
    chain = assigned = ZmUnitDimForcePerLength;
    EXPECT_EQ(Describe(assigned) + Describe(chain), forcePerLength + forcePerLength);
    EXPECT_NE(assigned.GetPerNumerator(), ZmUnitDimForcePerLength.GetPerNumerator());
    const ZmUnitDim& self = assigned;
    assigned = self;  // self-assignment keeps the components alive
    EXPECT_EQ(Describe(assigned), forcePerLength);
    assigned = ZmUnitDimLength;  // a plain source releases the old components
    EXPECT_EQ(Describe(assigned), L"Length: 1 0 0 0 0");
  }
  EXPECT_EQ(Describe(ZmUnitDimForcePerLength), forcePerLength);
}

// Names are not compared, denominators are (0/2 is neutral but not Ratio's 0/1); the angle is not
// neutral; an out-of-range type is refused rather than written past the exponents.
TEST(UnitDim, ComparisonAndNeutrality) {
  ZmUnitDim outOfRange;
  outOfRange.SetTypeDimension(static_cast<_ZmUnitType>(5), 7, 7);
  // clang-format off
  const std::tuple<ZmUnitDim, const ZmUnitDim&, int, int> rows[] = {  // a, b, a == b, a neutral
      {Dim(L"-1 1 -2 0 0", L"Stress"), ZmUnitDimPressure, 1, 0}, {Dim(L"-1/2 1 -2 0 0"), ZmUnitDimPressure, 0, 0},
      {Dim(L"0 0/2 0 0 0"), ZmUnitDimNone, 0, 1}, {ZmUnitDimAngle, ZmUnitDimAngle, 1, 0}, {outOfRange, ZmUnitDimNone, 1, 1}};
  // clang-format on
  for (const auto& [a, b, equal, neutral] : rows) {
    EXPECT_EQ((a == b) * 10 + a.IsNeutral(), equal * 10 + neutral) << Describe(a);
  }
}

// Integer powers are repeated multiplications or divisions, not pow; fractional ones use pow;
// a factor that is the invalid marker, a neutral dimension or a type out of range keep the value.
TEST(UnitDim, ScaleValueInBothPrecisions) {
  const ZmUnitDim halfTime = Dim(L"0 0 1/2 0 0"), minusThreeQuarters = Dim(L"0 0 -3/4 0 0");
  // Saturated exponents: 3 * 2^(2^31 - 1) overflows, 3 * 2^(-2^31) underflows, (-1)^(-2^31) = 1.
  const ZmUnitDim up = Dim(L"2147483647 0 0 0 0"), down = Dim(L"-2147483648 0 0 0 0");
  const ZmUnitDim* area = &ZmUnitDimArea;
  const int length = ZmUnitTypeLength;
  const float inf = std::numeric_limits<float>::infinity();
  // clang-format off
  const std::tuple<const ZmUnitDim*, float, double, int, float, double> rows[] = {
      {area, 5.0f, 1000.0, length, 5.0e6f, 5.0e6}, {area, 5.0f, double(kInvalid), length, 5.0f, 5.0},
      {&ZmUnitDimInvLength, 5.0f, 1000.0, length, 0.004999999888241291f, 0.005},  // float(5 / 1000)
      {&ZmUnitDimNone, 5.0f, 123.0, length, 5.0f, 5.0},
      {&ZmUnitDimNone, 5.0f, double(kInvalid), ZmUnitTypeMass, 5.0f, 5.0}, {area, 5.0f, 1000.0, 9, 5.0f, 5.0},
      // float: (3.281 * 3.281) * 3.281 = 35.31983184814453, the rounded cube 35.3198356628418 (numpy
      // float32); double: 3.281 * 3.281 * 3.281 = 35.31983704100001 (Python).
      {&ZmUnitDimVolume, 1.0f, 3.281, length, 35.31983184814453f, 35.31983704100001},
      // ((1 / 10) / 10) / 10 = 0.0009999999310821295 in float, not float(0.001); 0.001 in double.
      {&ZmUnitDimDensity, 1.0f, 10.0, length, 0.0009999999310821295f, 0.001},
      {&halfTime, 4.0f, 9.0, ZmUnitTypeTime, 12.0f, 12.0},
      {&minusThreeQuarters, 8.0f, 16.0, ZmUnitTypeTime, 1.0f, 1.0}, {&up, 3.0f, 1.0, length, 3.0f, 3.0},
      {&up, 3.0f, 2.0, length, inf, inf}, {&down, 3.0f, 2.0, length, 0.0f, 0.0}, {&down, 3.0f, -1.0, length, 3.0f, 3.0}};
  // clang-format on
  for (const auto& [dim, value, factor, t, expectedF, expectedD] : rows) {
    const auto type = static_cast<_ZmUnitType>(t);
    EXPECT_EQ(dim->ScaleValue(value, static_cast<float>(factor), type), expectedF) << factor;
    EXPECT_EQ(dim->ScaleValue(double(value), factor, type), expectedD) << factor;
  }
}

// Symbols (how 0) and symbols with their catalogue equivalent (how 1) are composed from the base
// units, fractional exponents as "%d/%d" above the bar and "(den/num)" below it; display names (how
// 2) add the unit in brackets when the system is complete (the angle is not needed).
TEST(UnitDim, SymbolsAndDisplayNames) {
  const ZmUnitSystem mmKgS = SysAt(2, 0, 0), ftLbmUs = SysAt(3, 7, 2);
  const ZmUnitSystem noAngle = SysAt(2, 4, 0, 0, -1), noTemp = SysAt(2, 4, 0, -1), none;
  const ZmUnitDim halves = Dim(L"1/2 0 -1/2 0 0"), massHalves = Dim(L"0 -3/2 -1/2 0 0"), unnamed = Dim(L"1 0 0 0 0");
  const ZmUnitDim &pressure = ZmUnitDimPressure, &freq = ZmUnitDimFreq, &forcePerLength = ZmUnitDimForcePerLength;
  // clang-format off
  const std::tuple<const ZmUnitDim&, const ZmUnitSystem&, float, int, const wchar_t*> rows[] = {
      {pressure, kMmTS, 1.0f, 0, L"T/mm.s2"}, {pressure, kMmTS, 1.0f, 1, L"MPa"}, {ZmUnitDimVelocity, kMKgS, 1.0f, 1, L"m/s"},
      {freq, kMKgS, 1.0f, 0, L"1/s"}, {freq, kMKgS, 2.0f, 0, L"2/s"}, {freq, kMKgS, 1.0f, 1, L"Hz"},
      {ZmUnitDimMoment, mmKgS, 1.0f, 1, L"mm2.Kg/s2"},  // no catalogue moment fits
      {ZmUnitDimArea, mmKgS, 2.5f, 0, L"mm2* 2.5"}, {ZmUnitDimNone, mmKgS, 1.0f, 1, L""},
      {ZmUnitDimDensity, ftLbmUs, 1.0f, 1, L"lbm/ft3"}, {halves, kMKgS, 1.0f, 0, L"m1/2/s(2/-1)"},
      {massHalves, kMKgS, 1.0f, 0, L"1/Kg(2/-3).s(2/-1)"},
      // A quotient writes its components, each with its catalogue equivalent.
      {forcePerLength, kMmTS, 1.0f, 1, L"N/mm"}, {forcePerLength, kMKgS, 1.0f, 0, L"N/m"},
      {pressure, none, 1.0f, 2, L"Pressure"}, {pressure, kMmTS, 1.0f, 2, L"Pressure [MPa]"},
      {forcePerLength, kMmTS, 1.0f, 2, L"Force [N] per Length [mm]"}, {forcePerLength, none, 1.0f, 2, L"Force per Length"},
      {ZmUnitDimLength, noAngle, 1.0f, 2, L"Length [mm]"}, {ZmUnitDimLength, noTemp, 1.0f, 2, L"Length"},
      {unnamed, kMmTS, 1.0f, 2, L" [mm]"}};
  // clang-format on
  for (const auto& [dim, system, factor, how, expected] : rows) {
    const WbString name = how == 2 ? dim.GetDimName(&system == &none ? nullptr : &system)
                                   : dim.GetShortName(system, factor, static_cast<unsigned char>(how));
    EXPECT_EQ(Text(name), expected);
  }
}

TEST(UnitDim, AllSymbolsOfADimension) {
  WbObjectArrayTempl<WbString> names;
  const auto all = [&](const ZmUnitDim& dim) {
    std::wstring joined = std::to_wstring(dim.GetAllShortNames(names)) + L":";
    for (std::uint64_t i = 0; i < names.GetSize(); ++i) joined += L" " + Text(*names[i]);
    return joined;
  };
  EXPECT_EQ(all(ZmUnitDimFreq) + all(ZmUnitDimNone), L"6: Hz KHz MHz 1/s 1/ms 1/us0:");
  EXPECT_EQ(all(ZmUnitDimLength), L"6: m cm mm ft in px");  // the composed ones repeat the catalogue
  // Pressure: 6 catalogue units, then 6 lengths x 9 masses x 3 times composed symbols.
  ASSERT_EQ(ZmUnitDimPressure.GetAllShortNames(names), 6u + 162u);
  EXPECT_EQ(Text(*names[0]) + Text(*names[5]) + Text(*names[6]) + Text(*names[167]), L"PammHgKg/m.s2mKg/px.us2");
}

// Types not involved: -1 for length, mass and time, 0 for the others (the angle in degrees).
TEST(UnitDim, SystemFromSymbol) {
  // clang-format off
  const std::tuple<const ZmUnitDim&, const wchar_t*, const wchar_t*> rows[] = {
      {ZmUnitDimPressure, L"MPa", L"2 4 0 0 0"}, {ZmUnitDimPressure, L"lbm/ft.s2", L"3 7 0 0 0"},
      {ZmUnitDimVelocity, L"mm/ms", L"2 -1 1 0 0"}, {ZmUnitDimFreq, L"1/us", L"-1 -1 2 0 0"},
      {ZmUnitDimForcePerLength, L"kN/mm", L"2 0 1 0 0"}, {ZmUnitDimTemp, L"F", L"-1 -1 -1 2 0"},
      // Case matters: a milli-pascal is not a mega-pascal.
      {ZmUnitDimPressure, L"mPa", L"'mPa' is not a supported Pressure unit name"},
      {ZmUnitDimLength, L"", L"'' is not a supported Length unit name"},
      {ZmUnitDimForcePerLength, L"MPa", L"'MPa' is not a supported Force per Length unit name"}};
  // clang-format on
  for (const auto& [dim, symbol, expected] : rows) {
    ZmUnitSystem system;
    const WbErrObj* error = dim.GetSystemFromShortName(symbol, system);
    EXPECT_EQ(error ? Message(error) : Units(system), expected);
  }
}
