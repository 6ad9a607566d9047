// Dimensions: the global dimensions, exponent arithmetic with its kept asymmetries, ownership
// of quotient components, value scaling, symbols and the search of a system from a symbol.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <climits>
#include <limits>
#include <string>

namespace {

struct Exponents {
  int length, mass, time, temp, angle;
};

Exponents ExponentsOf(const ZmUnitDim& d) {
  return {d.GetNumerator(ZmUnitTypeLength), d.GetNumerator(ZmUnitTypeMass), d.GetNumerator(ZmUnitTypeTime),
          d.GetNumerator(ZmUnitTypeTemp), d.GetNumerator(ZmUnitTypeAngle)};
}

void ExpectExponents(const ZmUnitDim& d, Exponents e, const char* what) {
  SCOPED_TRACE(what);
  const Exponents got = ExponentsOf(d);
  EXPECT_EQ(got.length, e.length);
  EXPECT_EQ(got.mass, e.mass);
  EXPECT_EQ(got.time, e.time);
  EXPECT_EQ(got.temp, e.temp);
  EXPECT_EQ(got.angle, e.angle);
  for (int t = 0; t < 5; ++t) EXPECT_EQ(d.GetDenominator(static_cast<_ZmUnitType>(t)), 1);
}

std::wstring Text(const WbString& s) { return s.Std(); }
std::wstring Message(const WbErrObj* error) { return error ? error->GetMessage() : L"<no error>"; }

const ZmUnitSystem kMmTS(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
const ZmUnitSystem kMKgS(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);

TEST(UnitDim, GlobalDimensionsHaveTheirNamesAndExponents) {
  struct Row {
    const ZmUnitDim& dim;
    const wchar_t* name;
    Exponents exponents;
  };
  const Row rows[] = {{ZmUnitDimNone, L"Ratio", {0, 0, 0, 0, 0}},
                      {ZmUnitDimTime, L"Time", {0, 0, 1, 0, 0}},
                      {ZmUnitDimMass, L"Mass", {0, 1, 0, 0, 0}},
                      {ZmUnitDimFreq, L"Frequency", {0, 0, -1, 0, 0}},
                      {ZmUnitDimLength, L"Length", {1, 0, 0, 0, 0}},
                      {ZmUnitDimArea, L"Area", {2, 0, 0, 0, 0}},
                      {ZmUnitDimVolume, L"Volume", {3, 0, 0, 0, 0}},
                      {ZmUnitDimPressure, L"Pressure", {-1, 1, -2, 0, 0}},
                      {ZmUnitDimVelocity, L"Velocity", {1, 0, -1, 0, 0}},
                      {ZmUnitDimAcceleration, L"Acceleration", {1, 0, -2, 0, 0}},
                      {ZmUnitDimForce, L"Force", {1, 1, -2, 0, 0}},
                      {ZmUnitDimForcePerLength, L"Force per Length", {0, 1, -2, 0, 0}},
                      {ZmUnitDimMoment, L"Moment", {2, 1, -2, 0, 0}},
                      {ZmUnitDimDensity, L"Density", {-3, 1, 0, 0, 0}},
                      {ZmUnitDimInertia, L"Inertia", {2, 1, 0, 0, 0}},
                      {ZmUnitDimAngle, L"Angle", {0, 0, 0, 0, 1}},
                      {ZmUnitDimInvLength, L"Inv. Length", {-1, 0, 0, 0, 0}},
                      {ZmUnitDimTemp, L"Temperature", {0, 0, 0, 1, 0}}};
  for (const Row& row : rows) {
    EXPECT_EQ(Text(row.dim.GetTemplDimName()), row.name);
    ExpectExponents(row.dim, row.exponents, "global");
    EXPECT_EQ(row.dim.IsQuotient(), &row.dim == &ZmUnitDimForcePerLength ? 1 : 0);
  }
  // Force per Length is the quotient of copies of Force and Length.
  ASSERT_EQ(ZmUnitDimForcePerLength.IsQuotient(), 1);
  EXPECT_EQ(Text(ZmUnitDimForcePerLength.GetPerNumerator()->GetTemplDimName()), L"Force");
  ExpectExponents(*ZmUnitDimForcePerLength.GetPerNumerator(), {1, 1, -2, 0, 0}, "numerator");
  EXPECT_EQ(Text(ZmUnitDimForcePerLength.GetPerDenominator()->GetTemplDimName()), L"Length");
  EXPECT_NE(ZmUnitDimForcePerLength.GetPerNumerator(), &ZmUnitDimForce);
}

TEST(UnitDim, SumAndDifferenceBothAddExponents) {
  const ZmUnitDim difference = ZmUnitDimForce - ZmUnitDimLength;
  ExpectExponents(difference, {2, 1, -2, 0, 0}, "Force - Length adds");
  EXPECT_EQ(difference.GetTemplDimName().IsEmpty(), 1);
  EXPECT_EQ(ZmUnitDimForce + ZmUnitDimLength, difference);
  ExpectExponents(ZmUnitDimTime + ZmUnitDimFreq, {0, 0, 0, 0, 0}, "Time + Frequency");
  // Denominators are untouched by the sum.
  ZmUnitDim root;
  root.SetTypeDimension(ZmUnitTypeLength, 1, 2);
  const ZmUnitDim sum = root + ZmUnitDimArea;
  EXPECT_EQ(sum.GetNumerator(ZmUnitTypeLength), 3);
  EXPECT_EQ(sum.GetDenominator(ZmUnitTypeLength), 2);

  // A quotient operand contributes its numerator component: Length + Force.
  ExpectExponents(ZmUnitDimLength + ZmUnitDimForcePerLength, {2, 1, -2, 0, 0}, "plus a quotient");
  // A quotient result adds into its own numerator component and keeps its exponents.
  const ZmUnitDim quotientSum = ZmUnitDimForcePerLength + ZmUnitDimTime;
  ExpectExponents(quotientSum, {0, 1, -2, 0, 0}, "quotient sum itself");
  ASSERT_EQ(quotientSum.IsQuotient(), 1);
  ExpectExponents(*quotientSum.GetPerNumerator(), {1, 1, -1, 0, 0}, "quotient sum numerator");
  ExpectExponents(*quotientSum.GetPerDenominator(), {1, 0, 0, 0, 0}, "quotient sum denominator");
  EXPECT_EQ(quotientSum.GetTemplDimName().IsEmpty(), 1);
  // ... and the operand it was computed from is not modified through shared components.
  ExpectExponents(*ZmUnitDimForcePerLength.GetPerNumerator(), {1, 1, -2, 0, 0}, "source untouched");
}

TEST(UnitDim, QuotientConstructorSubtractsIntegersAndAddsFractions) {
  ZmUnitDim a(L"A", 0, 1, 3, 0, 0);
  ZmUnitDim b(L"B", 0, 2, 1, 0, 0);
  a.SetTypeDimension(ZmUnitTypeLength, 1, 2);
  b.SetTypeDimension(ZmUnitTypeLength, 1, 2);
  const ZmUnitDim q(a, b);
  EXPECT_EQ(Text(q.GetTemplDimName()), L"A per B");
  // Length: (1*2 + 2*1) / (2*2) = 4/4 -- the sum, kept as established, not 1/2 - 1/2 = 0.
  EXPECT_EQ(q.GetNumerator(ZmUnitTypeLength), 4);
  EXPECT_EQ(q.GetDenominator(ZmUnitTypeLength), 4);
  // Integer exponents subtract: mass 1 - 2, time 3 - 1.
  EXPECT_EQ(q.GetNumerator(ZmUnitTypeMass), -1);
  EXPECT_EQ(q.GetNumerator(ZmUnitTypeTime), 2);
  EXPECT_EQ(q.GetDenominator(ZmUnitTypeTime), 1);
  ASSERT_EQ(q.IsQuotient(), 1);
  EXPECT_EQ(q.GetPerNumerator()->GetDenominator(ZmUnitTypeLength), 2);
}

// Exponents that would leave the int range saturate instead of wrapping (a wrapped INT_MAX + 1
// would read as a huge negative exponent), and scaling by a saturated exponent stays cheap.
// Columns: a (num, den), b (num, den), then the quotient's num and den and the sum's num.
// Fractions: num a.num * b.den + a.den * b.num, den a.den * b.den.
TEST(UnitDim, ExponentArithmeticSaturates) {
  const int rows[][7] = {
      {INT_MAX, 1, -1, 1, INT_MAX, 1, INT_MAX - 1},        {INT_MIN, 1, 1, 1, INT_MIN, 1, INT_MIN + 1},
      {INT_MAX, 1, INT_MAX, 1, 0, 1, INT_MAX},             {INT_MIN, 1, INT_MIN, 1, 0, 1, INT_MIN},
      {INT_MAX, 2, 1, 2, INT_MAX, 4, INT_MAX},             {1, INT_MAX, 1, 3, INT_MAX, INT_MAX, 2},
      {-3, 2, INT_MAX, 2, INT_MAX, 4, INT_MAX - 3},        // -6 + 2 INT_MAX saturates, -3 + INT_MAX fits
      {INT_MIN, INT_MIN, INT_MIN, INT_MIN, INT_MAX, INT_MAX, INT_MIN},  // 2^62 + 2^62 passes even 64 bits
  };
  for (const auto& r : rows) {
    ZmUnitDim a, b;
    a.SetTypeDimension(ZmUnitTypeTime, r[0], r[1]);
    b.SetTypeDimension(ZmUnitTypeTime, r[2], r[3]);
    const ZmUnitDim q(a, b), sum = a + b;
    EXPECT_EQ(q.GetNumerator(ZmUnitTypeTime), r[4]) << r[0] << "/" << r[1] << " with " << r[2] << "/" << r[3];
    EXPECT_EQ(q.GetDenominator(ZmUnitTypeTime), r[5]) << r[0] << "/" << r[1] << " with " << r[2] << "/" << r[3];
    EXPECT_EQ(sum.GetNumerator(ZmUnitTypeTime), r[6]) << r[0] << "/" << r[1] << " with " << r[2] << "/" << r[3];
  }
  ZmUnitDim huge;
  huge.SetTypeDimension(ZmUnitTypeLength, INT_MAX, 1);
  EXPECT_EQ(huge.ScaleValue(3.0, 1.0, ZmUnitTypeLength), 3.0);
  EXPECT_EQ(huge.ScaleValue(3.0f, 2.0f, ZmUnitTypeLength), std::numeric_limits<float>::infinity());
  huge.SetTypeDimension(ZmUnitTypeLength, INT_MIN, 1);
  EXPECT_EQ(huge.ScaleValue(3.0, 2.0, ZmUnitTypeLength), 0.0);
  EXPECT_EQ(huge.ScaleValue(3.0, -1.0, ZmUnitTypeLength), 3.0);  // (-1)^(-2^31) = 1
}

TEST(UnitDim, CopyDropsComponentsAssignmentDuplicatesThem) {
  const ZmUnitDim copy(ZmUnitDimForcePerLength);
  EXPECT_EQ(copy.IsQuotient(), 0);
  EXPECT_EQ(copy, ZmUnitDimForcePerLength);
  EXPECT_EQ(Text(copy.GetTemplDimName()), L"Force per Length");

  {
    ZmUnitDim assigned(L"old", 1, 1, 1, 1, 1);
    assigned = ZmUnitDimForcePerLength;
    ASSERT_EQ(assigned.IsQuotient(), 1);
    // Own components, equal to the source's: each destructor releases its own.
    EXPECT_NE(assigned.GetPerNumerator(), ZmUnitDimForcePerLength.GetPerNumerator());
    EXPECT_EQ(*assigned.GetPerNumerator(), ZmUnitDimForce);
    EXPECT_EQ(*assigned.GetPerDenominator(), ZmUnitDimLength);
    const ZmUnitDim& self = assigned;
    assigned = self;  // self-assignment keeps the components alive
    ASSERT_EQ(assigned.IsQuotient(), 1);
    EXPECT_EQ(Text(assigned.GetPerNumerator()->GetTemplDimName()), L"Force");
    assigned = ZmUnitDimLength;  // a plain source releases the old components
    EXPECT_EQ(assigned.IsQuotient(), 0);
    ZmUnitDim chain;
    chain = assigned = ZmUnitDimForcePerLength;
    EXPECT_EQ(chain.IsQuotient(), 1);
  }
  // The global's components survive the copies above (the sanitizers catch a double free).
  EXPECT_EQ(*ZmUnitDimForcePerLength.GetPerNumerator(), ZmUnitDimForce);
}

TEST(UnitDim, ComparisonAndNeutrality) {
  const ZmUnitDim named(L"Stress", -1, 1, -2, 0, 0);
  EXPECT_EQ(named == ZmUnitDimPressure, 1);  // names are not compared
  ZmUnitDim half(ZmUnitDimPressure);
  half.SetTypeDimension(ZmUnitTypeLength, -1, 2);
  EXPECT_EQ(half == ZmUnitDimPressure, 0);  // denominators are
  ZmUnitDim zeroOverTwo;
  zeroOverTwo.SetTypeDimension(ZmUnitTypeMass, 0, 2);
  EXPECT_EQ(zeroOverTwo.IsNeutral(), 1);
  EXPECT_EQ(zeroOverTwo == ZmUnitDimNone, 0);
  EXPECT_EQ(ZmUnitDimAngle.IsNeutral(), 0);
  // Out-of-range types are refused rather than written past the exponents.
  ZmUnitDim d;
  d.SetTypeDimension(static_cast<_ZmUnitType>(5), 7, 7);
  EXPECT_EQ(d, ZmUnitDimNone);
}

TEST(UnitDim, ScaleValueRepeatsIntegerPowersAndKeepsUnconvertibleValues) {
  EXPECT_EQ(ZmUnitDimArea.ScaleValue(5.0f, 1000.0f, ZmUnitTypeLength), 5.0e6f);
  EXPECT_EQ(ZmUnitDimArea.ScaleValue(5.0, 1000.0, ZmUnitTypeLength), 5.0e6);
  // float(5 / 1000) = 0.004999999888241291
  EXPECT_EQ(ZmUnitDimInvLength.ScaleValue(5.0f, 1000.0f, ZmUnitTypeLength), 0.004999999888241291f);
  EXPECT_EQ(ZmUnitDimInvLength.ScaleValue(5.0, 1000.0, ZmUnitTypeLength), 0.005);
  EXPECT_EQ(ZmUnitDimArea.ScaleValue(5.0f, -1e32f, ZmUnitTypeLength), 5.0f);
  EXPECT_EQ(ZmUnitDimArea.ScaleValue(5.0, double(-1e32f), ZmUnitTypeLength), 5.0);
  EXPECT_EQ(ZmUnitDimNone.ScaleValue(5.0f, 123.0f, ZmUnitTypeLength), 5.0f);
  EXPECT_EQ(ZmUnitDimNone.ScaleValue(5.0f, -1e32f, ZmUnitTypeMass), 5.0f);
  // Repeated multiplication, not pow: in float, (3.281 * 3.281) * 3.281 = 35.31983184814453
  // while the correctly rounded cube is 35.3198356628418 (numpy float32).
  EXPECT_EQ(ZmUnitDimVolume.ScaleValue(1.0f, 3.281f, ZmUnitTypeLength), 35.31983184814453f);
  // Repeated division: ((1 / 10) / 10) / 10 = 0.0009999999310821295 in float, not float(0.001).
  EXPECT_EQ(ZmUnitDimDensity.ScaleValue(1.0f, 10.0f, ZmUnitTypeLength), 0.0009999999310821295f);
  // A fractional exponent uses pow: 4 * 9^(1/2) = 12, 8 * 16^(-3/4) = 1.
  ZmUnitDim root;
  root.SetTypeDimension(ZmUnitTypeTime, 1, 2);
  EXPECT_EQ(root.ScaleValue(4.0f, 9.0f, ZmUnitTypeTime), 12.0f);
  root.SetTypeDimension(ZmUnitTypeTime, -3, 4);
  EXPECT_EQ(root.ScaleValue(8.0, 16.0, ZmUnitTypeTime), 1.0);
  EXPECT_EQ(ZmUnitDimArea.ScaleValue(5.0f, 1000.0f, static_cast<_ZmUnitType>(9)), 5.0f);
}

TEST(UnitDim, ComposedSymbols) {
  EXPECT_EQ(Text(ZmUnitDimPressure.GetShortName(kMmTS, 1.0f, 0)), L"T/mm.s2");
  EXPECT_EQ(Text(ZmUnitDimPressure.GetShortName(kMmTS, 1.0f, 1)), L"MPa");
  EXPECT_EQ(Text(ZmUnitDimVelocity.GetShortName(kMKgS, 1.0f, 1)), L"m/s");
  EXPECT_EQ(Text(ZmUnitDimFreq.GetShortName(kMKgS, 1.0f, 0)), L"1/s");
  EXPECT_EQ(Text(ZmUnitDimFreq.GetShortName(kMKgS, 2.0f, 0)), L"2/s");
  EXPECT_EQ(Text(ZmUnitDimFreq.GetShortName(kMKgS, 1.0f, 1)), L"Hz");
  const ZmUnitSystem mmKgS(ZmUnitMillimeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(Text(ZmUnitDimMoment.GetShortName(mmKgS, 1.0f, 1)), L"mm2.Kg/s2");  // no catalogue moment fits
  EXPECT_EQ(Text(ZmUnitDimArea.GetShortName(mmKgS, 2.5f, 0)), L"mm2* 2.5");
  EXPECT_EQ(Text(ZmUnitDimNone.GetShortName(mmKgS, 1.0f, 1)), L"");
  const ZmUnitSystem ftLbmUs(ZmUnitFoot, ZmUnitPound, ZmUnitMicrosecond, ZmUnitKelvin, ZmUnitRadian);
  EXPECT_EQ(Text(ZmUnitDimDensity.GetShortName(ftLbmUs, 1.0f, 1)), L"lbm/ft3");
  // Fractional exponents: "%d/%d" above the bar, "(den/num)" below it.
  ZmUnitDim fractional;
  fractional.SetTypeDimension(ZmUnitTypeLength, 1, 2);
  fractional.SetTypeDimension(ZmUnitTypeTime, -1, 2);
  EXPECT_EQ(Text(fractional.GetShortName(kMKgS, 1.0f, 0)), L"m1/2/s(2/-1)");
  fractional.SetTypeDimension(ZmUnitTypeLength, 0, 1);
  fractional.SetTypeDimension(ZmUnitTypeMass, -3, 2);
  EXPECT_EQ(Text(fractional.GetShortName(kMKgS, 1.0f, 0)), L"1/Kg(2/-3).s(2/-1)");
  // A quotient writes its components, each with its catalogue equivalent.
  EXPECT_EQ(Text(ZmUnitDimForcePerLength.GetShortName(kMmTS, 1.0f, 1)), L"N/mm");
  EXPECT_EQ(Text(ZmUnitDimForcePerLength.GetShortName(kMKgS, 1.0f, 0)), L"N/m");
}

TEST(UnitDim, DisplayNames) {
  EXPECT_EQ(Text(ZmUnitDimPressure.GetDimName(nullptr)), L"Pressure");
  EXPECT_EQ(Text(ZmUnitDimPressure.GetDimName(&kMmTS)), L"Pressure [MPa]");
  EXPECT_EQ(Text(ZmUnitDimForcePerLength.GetDimName(&kMmTS)), L"Force [N] per Length [mm]");
  EXPECT_EQ(Text(ZmUnitDimForcePerLength.GetDimName(nullptr)), L"Force per Length");
  // The angle is not tested; an incomplete system gives no unit.
  const ZmUnitSystem noAngle(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitAngleUnset);
  EXPECT_EQ(Text(ZmUnitDimLength.GetDimName(&noAngle)), L"Length [mm]");
  const ZmUnitSystem noTemp(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitTempUnset, ZmUnitRadian);
  EXPECT_EQ(Text(ZmUnitDimLength.GetDimName(&noTemp)), L"Length");
  const ZmUnitDim unnamed(nullptr, 1, 0, 0, 0, 0);
  EXPECT_EQ(Text(unnamed.GetDimName(&kMmTS)), L" [mm]");
}

TEST(UnitDim, AllSymbolsOfADimension) {
  WbObjectArrayTempl<WbString> names;
  ASSERT_EQ(ZmUnitDimFreq.GetAllShortNames(names), 6u);
  const wchar_t* frequencies[] = {L"Hz", L"KHz", L"MHz", L"1/s", L"1/ms", L"1/us"};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(Text(*names[i]), frequencies[i]);
  ASSERT_EQ(ZmUnitDimLength.GetAllShortNames(names), 6u);  // the composed ones repeat the catalogue
  EXPECT_EQ(Text(*names[5]), L"px");
  EXPECT_EQ(ZmUnitDimNone.GetAllShortNames(names), 0u);
  // Pressure: 6 catalogue units, then 6 lengths x 9 masses x 3 times composed symbols.
  ASSERT_EQ(ZmUnitDimPressure.GetAllShortNames(names), 6u + 162u);
  EXPECT_EQ(Text(*names[0]), L"Pa");
  EXPECT_EQ(Text(*names[5]), L"mmHg");
  EXPECT_EQ(Text(*names[6]), L"Kg/m.s2");
  EXPECT_EQ(Text(*names[167]), L"mKg/px.us2");
}

TEST(UnitDim, SystemFromSymbol) {
  ZmUnitSystem system;
  ASSERT_EQ(ZmUnitDimPressure.GetSystemFromShortName(L"MPa", system), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree), 1);
  ASSERT_EQ(ZmUnitDimPressure.GetSystemFromShortName(L"lbm/ft.s2", system), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitFoot, ZmUnitPound, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree), 1);
  ASSERT_EQ(ZmUnitDimVelocity.GetSystemFromShortName(L"mm/ms", system), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitMillimeter, ZmUnitMassUnset, ZmUnitMillisecond, ZmUnitKelvin, ZmUnitDegree),
            1);
  ASSERT_EQ(ZmUnitDimFreq.GetSystemFromShortName(L"1/us", system), nullptr);
  EXPECT_EQ(system.GetUnitTime(), ZmUnitMicrosecond);
  ASSERT_EQ(ZmUnitDimForcePerLength.GetSystemFromShortName(L"kN/mm", system), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitMillimeter, ZmUnitKilogram, ZmUnitMillisecond, ZmUnitKelvin, ZmUnitDegree), 1);
  ASSERT_EQ(ZmUnitDimTemp.GetSystemFromShortName(L"F", system), nullptr);
  EXPECT_EQ(system.GetUnitTemp(), ZmUnitFahrenheit);

  // Case matters: a milli-pascal is not a mega-pascal.
  EXPECT_EQ(Message(ZmUnitDimPressure.GetSystemFromShortName(L"mPa", system)),
            L"'mPa' is not a supported Pressure unit name");
  EXPECT_EQ(Message(ZmUnitDimLength.GetSystemFromShortName(L"", system)), L"'' is not a supported Length unit name");
  EXPECT_EQ(Message(ZmUnitDimForcePerLength.GetSystemFromShortName(L"MPa", system)),
            L"'MPa' is not a supported Force per Length unit name");
}

}  // namespace
