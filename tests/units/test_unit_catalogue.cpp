// The unit catalogue: the tables pinned entry by entry, lookups, derived units, the solver
// UNIT line both ways and systems from typed symbols, with every message.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <string>

namespace {

std::wstring Text(const WbString& s) { return s.Std(); }
std::wstring Message(const WbErrObj* error) { return error ? error->GetMessage() : L"<no error>"; }

struct Unit {
  const wchar_t* shortName;
  const wchar_t* keyword;
  const wchar_t* longName;
  float factor;
};

void ExpectTable(_ZmUnitType type, const Unit* units, int count) {
  ASSERT_EQ(ZmUnitMgr.GetUnitCount(type), count);
  for (int i = 0; i < count; ++i) {
    SCOPED_TRACE(testing::Message() << "type " << type << " index " << i);
    EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2ShortName(type, i)), units[i].shortName);
    EXPECT_EQ(std::wstring(ZmUnitMgr.UnitIndex2CSMKeyword(type, i)), units[i].keyword);
    EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2LongName(type, i)), units[i].longName);
    EXPECT_EQ(ZmUnitMgr.UnitIndex2Factor(type, i), units[i].factor);
    EXPECT_EQ(ZmUnitMgr.IsSupportedByCSM(type, i), units[i].keyword[0] ? 1 : 0);
  }
}

TEST(UnitCatalogue, BaseUnitTables) {
  const Unit lengths[] = {{L"m", L"M", L"Meter", 1.0f},           {L"cm", L"CM", L"Centimeter", 100.0f},
                          {L"mm", L"MM", L"Millimeter", 1000.0f}, {L"ft", L"FOOT", L"Foot", 3.281f},
                          {L"in", L"INCH", L"Inch", 39.37f},      {L"px", L"", L"Pixel", -1e32f}};
  const Unit masses[] = {{L"Kg", L"KG", L"Kilogram", 1.0f},
                         {L"HKg", L"HKG", L"Hundred kilogram", 0.01f},
                         {L"Kg*9.81", L"KG/G", L"Kilogram*9.81", 0.10197162f},
                         {L"g", L"GRAM", L"Gram", 1000.0f},
                         {L"T", L"TON", L"Ton", 0.001f},
                         {L"T*9.81", L"DTON", L"Ton*9.81", 0.00010197162f},
                         {L"slug", L"SLUG", L"Slug", 0.068522f},
                         {L"lbm", L"POUND", L"Pound", 2.2046f},
                         {L"mKg", L"", L"mercure Kg", 0.0075006154f}};
  const Unit times[] = {
      {L"s", L"S", L"Second", 1.0f}, {L"ms", L"MS", L"Millisecond", 1000.0f}, {L"us", L"US", L"Microsecond", 1e6f}};
  const Unit temps[] = {{L"K", L"KELVIN", L"Kelvin", 1.0f},
                        {L"C", L"CELSIUS", L"Celsius", 1.0f},
                        {L"F", L"FAHR", L"Fahrenheit", 1.0f},
                        {L"Ra", L"RANK", L"Rankine", 1.0f}};
  const Unit angles[] = {{L"deg", L"", L"Degree", 1.0f}, {L"rad", L"", L"Radian", 0.017453292f}};
  ExpectTable(ZmUnitTypeLength, lengths, 6);
  ExpectTable(ZmUnitTypeMass, masses, 9);
  ExpectTable(ZmUnitTypeTime, times, 3);
  ExpectTable(ZmUnitTypeTemp, temps, 4);
  ExpectTable(ZmUnitTypeAngle, angles, 2);
  // The enumerations are the catalogue positions.
  EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2ShortName(ZmUnitTypeMass, ZmUnitMercureKg)), L"mKg");
  EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2ShortName(ZmUnitTypeLength, ZmUnitPixel)), L"px");
  EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2LongName(ZmUnitTypeTemp, ZmUnitRankine)), L"Rankine");
}

TEST(UnitCatalogue, DerivedUnitsFollowTheBaseUnits) {
  ASSERT_EQ(ZmUnitMgr.GetEquivalentUnitCount(), 40u);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnit(40), nullptr);
  struct Derived {
    const wchar_t* name;
    const ZmUnitDim& dim;
    int length, mass, time, temp, angle;
  };
  const Derived expected[] = {
      {L"m", ZmUnitDimLength, 0, -1, -1, 0, 0},     {L"cm", ZmUnitDimLength, 1, -1, -1, 0, 0},
      {L"mm", ZmUnitDimLength, 2, -1, -1, 0, 0},    {L"ft", ZmUnitDimLength, 3, -1, -1, 0, 0},
      {L"in", ZmUnitDimLength, 4, -1, -1, 0, 0},    {L"px", ZmUnitDimLength, 5, -1, -1, 0, 0},
      {L"Kg", ZmUnitDimMass, -1, 0, -1, 0, 0},      {L"HKg", ZmUnitDimMass, -1, 1, -1, 0, 0},
      {L"Kg*9.81", ZmUnitDimMass, -1, 2, -1, 0, 0}, {L"g", ZmUnitDimMass, -1, 3, -1, 0, 0},
      {L"T", ZmUnitDimMass, -1, 4, -1, 0, 0},       {L"T*9.81", ZmUnitDimMass, -1, 5, -1, 0, 0},
      {L"slug", ZmUnitDimMass, -1, 6, -1, 0, 0},    {L"lbm", ZmUnitDimMass, -1, 7, -1, 0, 0},
      {L"mKg", ZmUnitDimMass, -1, 8, -1, 0, 0},     {L"s", ZmUnitDimTime, -1, -1, 0, 0, 0},
      {L"ms", ZmUnitDimTime, -1, -1, 1, 0, 0},      {L"us", ZmUnitDimTime, -1, -1, 2, 0, 0},
      {L"K", ZmUnitDimTemp, -1, -1, -1, 0, 0},      {L"C", ZmUnitDimTemp, -1, -1, -1, 1, 0},
      {L"F", ZmUnitDimTemp, -1, -1, -1, 2, 0},      {L"Ra", ZmUnitDimTemp, -1, -1, -1, 3, 0},
      {L"deg", ZmUnitDimAngle, -1, -1, -1, 0, 0},   {L"rad", ZmUnitDimAngle, -1, -1, -1, 0, 1},
      {L"Hz", ZmUnitDimFreq, -1, -1, 0, 0, 0},      {L"KHz", ZmUnitDimFreq, -1, -1, 1, 0, 0},
      {L"MHz", ZmUnitDimFreq, -1, -1, 2, 0, 0},     {L"N", ZmUnitDimForce, 2, 4, 0, 0, 0},
      {L"kN", ZmUnitDimForce, 2, 0, 1, 0, 0},       {L"Nmm", ZmUnitDimMoment, 2, 4, 0, 0, 0},
      {L"Nm", ZmUnitDimMoment, 2, 0, 1, 0, 0},      {L"Pa", ZmUnitDimPressure, 0, 0, 0, 0, 0},
      {L"KPa", ZmUnitDimPressure, 2, 0, 0, 0, 0},   {L"MPa", ZmUnitDimPressure, 2, 4, 0, 0, 0},
      {L"GPa", ZmUnitDimPressure, 2, 0, 1, 0, 0},   {L"dyn/cm2", ZmUnitDimPressure, 1, 3, 0, 0, 0},
      {L"mmHg", ZmUnitDimPressure, 0, 8, 0, 0, 0},  {L"Kg/m3", ZmUnitDimDensity, 0, 0, -1, 0, 0},
      {L"T/mm3", ZmUnitDimDensity, 2, 4, -1, 0, 0}, {L"Kg/mm3", ZmUnitDimDensity, 2, 0, -1, 0, 0}};
  for (std::uint64_t i = 0; i < 40; ++i) {
    const Derived& e = expected[i];
    const ZmUnitManager::UnitEquivName* unit = ZmUnitMgr.GetEquivalentUnit(i);
    SCOPED_TRACE(testing::Message() << "derived unit " << i);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(Text(unit->name), e.name);
    EXPECT_EQ(unit->dim, e.dim);
    EXPECT_EQ(unit->system.GetUnitLength(), e.length);
    EXPECT_EQ(unit->system.GetUnitMass(), e.mass);
    EXPECT_EQ(unit->system.GetUnitTime(), e.time);
    EXPECT_EQ(unit->system.GetUnitTemp(), e.temp);
    EXPECT_EQ(unit->system.GetUnitAngle(), e.angle);
  }
}

TEST(UnitCatalogue, IndexLookupsOutOfRange) {
  EXPECT_EQ(ZmUnitMgr.UnitIndex2Factor(ZmUnitTypeLength, 5), -1e32f);  // the pixel
  EXPECT_EQ(ZmUnitMgr.UnitIndex2Factor(ZmUnitTypeLength, 6), -1e32f);
  EXPECT_EQ(ZmUnitMgr.UnitIndex2Factor(ZmUnitTypeTime, -1), -1e32f);
  EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2ShortName(ZmUnitTypeTime, 3)), L"");
  EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2LongName(ZmUnitTypeMass, -1)), L"");
  EXPECT_EQ(std::wstring(ZmUnitMgr.UnitIndex2CSMKeyword(ZmUnitTypeAngle, 2)), L"");
  EXPECT_EQ(ZmUnitMgr.UnitIndex2CSMKeyword(ZmUnitTypeAngle, 2), ZmUnitMgr.UnitIndex2CSMKeyword(ZmUnitTypeTime, -7));
  EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2ShortName(static_cast<_ZmUnitType>(5), 0)), L"");
  EXPECT_EQ(ZmUnitMgr.IsSupportedByCSM(ZmUnitTypeLength, 9), 0);
}

TEST(UnitCatalogue, NameAndKeywordLookups) {
  EXPECT_EQ(ZmUnitMgr.ShortName2UnitIndex(ZmUnitTypeLength, L"MM", 0), 2);
  EXPECT_EQ(ZmUnitMgr.ShortName2UnitIndex(ZmUnitTypeLength, L"MM", 1), -1);
  EXPECT_EQ(ZmUnitMgr.ShortName2UnitIndex(ZmUnitTypeMass, L"T*9.81", 1), 5);
  EXPECT_EQ(ZmUnitMgr.ShortName2UnitIndex(ZmUnitTypeMass, L"mkg", 0), 8);
  EXPECT_EQ(ZmUnitMgr.ShortName2UnitIndex(ZmUnitTypeMass, L"", 0), -1);
  EXPECT_EQ(ZmUnitMgr.ShortName2UnitIndex(ZmUnitTypeTemp, L"Kelvin", 0), -1);  // symbols, not long names
  // Keywords are always case-sensitive: "mm" is not a solver keyword.
  EXPECT_EQ(ZmUnitMgr.CSMKeyword2UnitIndex(ZmUnitTypeLength, L"MM"), 2);
  EXPECT_EQ(ZmUnitMgr.CSMKeyword2UnitIndex(ZmUnitTypeLength, L"mm"), -1);
  EXPECT_EQ(ZmUnitMgr.CSMKeyword2UnitIndex(ZmUnitTypeMass, L"KG/G"), 2);
  // Units unknown to the solver have no keyword: the empty word finds nothing.
  EXPECT_EQ(ZmUnitMgr.CSMKeyword2UnitIndex(ZmUnitTypeLength, L""), -1);
  EXPECT_EQ(Text(ZmUnitMgr.GetAllShortNames(ZmUnitTypeTime, L" - ")), L"s - ms - us");
  EXPECT_EQ(Text(ZmUnitMgr.GetAllShortNames(ZmUnitTypeAngle, L",")), L"deg,rad");
}

TEST(UnitCatalogue, EquivalentUnitOfADimensionInASystem) {
  const auto equivalent = [](const ZmUnitDim& dim, ZmUnitSystem system, float factor) {
    WbString name(L"unchanged");
    const unsigned char found = ZmUnitMgr.FindEquivalentUnit(dim, system, name, factor);
    return found ? Text(name) : L"<none: " + Text(name) + L">";
  };
  using S = ZmUnitSystem;
  EXPECT_EQ(equivalent(ZmUnitDimPressure, S(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"MPa");
  EXPECT_EQ(equivalent(ZmUnitDimPressure, S(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"Pa");
  EXPECT_EQ(equivalent(ZmUnitDimPressure, S(ZmUnitCentimeter, ZmUnitGram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"dyn/cm2");
  EXPECT_EQ(equivalent(ZmUnitDimPressure, S(ZmUnitFoot, ZmUnitPound, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"<none: unchanged>");
  EXPECT_EQ(
      equivalent(ZmUnitDimForce, S(ZmUnitMillimeter, ZmUnitKilogram, ZmUnitMillisecond, ZmUnitKelvin, ZmUnitRadian), 1),
      L"kN");
  // 1 kg/(m s^2) is 1 N/m^2: in (m, Kg, s) a force is the newton of the (mm, T, s) table.
  EXPECT_EQ(equivalent(ZmUnitDimForce, S(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"N");
  EXPECT_EQ(equivalent(ZmUnitDimFreq, S(ZmUnitMeter, ZmUnitKilogram, ZmUnitMillisecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"KHz");
  EXPECT_EQ(
      equivalent(ZmUnitDimDensity, S(ZmUnitMillimeter, ZmUnitTon, ZmUnitTimeUnset, ZmUnitKelvin, ZmUnitRadian), 1),
      L"T/mm3");
  // 133.32 Pa: the mercury pressure unit through its auxiliary mass (m, mKg, s).
  EXPECT_EQ(equivalent(ZmUnitDimPressure, S(ZmUnitMeter, ZmUnitMercureKg, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"mmHg");
  // A factor: 1e-6 of the display unit (Pa) is one MPa ...
  EXPECT_EQ(
      equivalent(ZmUnitDimPressure, S(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1e-6f),
      L"MPa");
  // ... and a factor that matches nothing is written after the unit that matches 1.
  EXPECT_EQ(
      equivalent(ZmUnitDimPressure, S(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 2.5f),
      L"Pa * 2.5");
  // A system that cannot express the dimension has no equivalent; the pixel converts into no
  // other unit, so only its own entry fits a length in pixels.
  EXPECT_EQ(equivalent(ZmUnitDimPressure, S(ZmUnitLengthUnset, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"<none: unchanged>");
  EXPECT_EQ(equivalent(ZmUnitDimPressure, S(ZmUnitPixel, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1),
            L"<none: unchanged>");
  EXPECT_EQ(equivalent(ZmUnitDimLength, S(ZmUnitPixel, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1), L"px");
}

TEST(UnitCatalogue, DerivedUnitsByNameAndByDimension) {
  ZmUnitDim dim;
  ZmUnitSystem system;
  ASSERT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"mpa", dim, system, nullptr), 1);  // case ignored
  EXPECT_EQ(dim, ZmUnitDimPressure);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitDegree), 1);
  EXPECT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"MPa", dim, system, &ZmUnitDimForce), 0);
  EXPECT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"kN", dim, system, &ZmUnitDimForce), 1);
  EXPECT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"furlong", dim, system, nullptr), 0);

  WbObjectArrayTempl<WbString> names;
  WbObjectArrayTempl<ZmUnitSystem> systems;
  names.Add(new WbString(L"stale"));
  ASSERT_EQ(ZmUnitMgr.GetEquivalentUnitNames(ZmUnitDimDensity, names, systems), 3u);
  EXPECT_EQ(Text(*names[0]), L"Kg/m3");
  EXPECT_EQ(Text(*names[2]), L"Kg/mm3");
  EXPECT_EQ(systems[2]->GetUnitMass(), ZmUnitKilogram);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnitNames(ZmUnitDimPressure, names, systems), 6u);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnitNames(ZmUnitDimInertia, names, systems), 0u);
  EXPECT_EQ(systems.GetSize(), 0u);
}

TEST(UnitCatalogue, CopiesAreIndependentOfTheGlobalCatalogue) {
  ZmUnitManager copy(ZmUnitMgr);
  EXPECT_EQ(copy.AddEquivalentUnit(L"J/m3", ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitDimPressure, ZmUnitKelvin,
                                   ZmUnitDegree),
            40);
  copy.SetUnitIndexFactor(ZmUnitTypeLength, ZmUnitFoot, 3.28084f);
  copy.SetUnitIndexFactor(ZmUnitTypeLength, 6, 1.0f);   // ignored
  copy.SetUnitIndexFactor(ZmUnitTypeLength, -1, 1.0f);  // ignored
  EXPECT_EQ(copy.UnitIndex2Factor(ZmUnitTypeLength, ZmUnitFoot), 3.28084f);
  EXPECT_EQ(copy.GetUnitCount(ZmUnitTypeLength), 6);
  EXPECT_EQ(ZmUnitMgr.UnitIndex2Factor(ZmUnitTypeLength, ZmUnitFoot), 3.281f);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnitCount(), 40u);
  ZmUnitManager assigned;
  assigned = copy;
  EXPECT_EQ(assigned.GetEquivalentUnitCount(), 41u);
  EXPECT_EQ(Text(assigned.GetEquivalentUnit(40)->name), L"J/m3");
}

TEST(UnitCatalogue, WritesTheSolverUnitLine) {
  WbString text(L"before");
  const ZmUnitSystem mmTS(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
  ASSERT_EQ(ZmUnitMgr.FormatCSMSolverString(mmTS, text, 1), nullptr);
  EXPECT_EQ(Text(text), L"UNIT MM TON S KELVIN");
  ASSERT_EQ(ZmUnitMgr.FormatCSMSolverString(mmTS, text, 0), nullptr);
  EXPECT_EQ(Text(text), L"MM TON S KELVIN");
  // The angle is not written, so an unset angle does not matter.
  const ZmUnitSystem imperial(ZmUnitInch, ZmUnitPound, ZmUnitMillisecond, ZmUnitRankine, ZmUnitAngleUnset);
  ASSERT_EQ(ZmUnitMgr.FormatCSMSolverString(imperial, text, 1), nullptr);
  EXPECT_EQ(Text(text), L"UNIT INCH POUND MS RANK");

  text = L"kept";
  const auto fails = [&](ZmUnitSystem system) { return Message(ZmUnitMgr.FormatCSMSolverString(system, text, 1)); };
  EXPECT_EQ(fails(ZmUnitSystem(ZmUnitPixel, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian)),
            L"Unsupported length unit");
  EXPECT_EQ(fails(ZmUnitSystem(ZmUnitMillimeter, ZmUnitMercureKg, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian)),
            L"Unsupported mass unit");
  EXPECT_EQ(fails(ZmUnitSystem(ZmUnitMillimeter, ZmUnitTon, ZmUnitTimeUnset, ZmUnitKelvin, ZmUnitRadian)),
            L"Unsupported time unit");
  EXPECT_EQ(fails(ZmUnitSystem(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, static_cast<_ZmUnitTemp>(4), ZmUnitRadian)),
            L"Unsupported temperature unit");
  // The first unsupported unit in the order length, mass, time, temperature is reported.
  EXPECT_EQ(fails(ZmUnitSystem()), L"Unsupported length unit");
  EXPECT_EQ(Text(text), L"kept");
}

TEST(UnitCatalogue, ReadsTheSolverUnitLine) {
  ZmUnitSystem system;
  ASSERT_EQ(ZmUnitMgr.CSMSolverStringToSystem(L"UNIT MM TON S KELVIN", system, 1), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1);
  // Tabs, runs of blanks and words after the fourth.
  ASSERT_EQ(ZmUnitMgr.CSMSolverStringToSystem(L"UNIT\tM  \t KG S   CELSIUS extra words", system, 1), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitCelsius, ZmUnitRadian), 1);
  ASSERT_EQ(ZmUnitMgr.CSMSolverStringToSystem(L"FOOT SLUG US FAHR", system, 0), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitFoot, ZmUnitSlug, ZmUnitMicrosecond, ZmUnitFahrenheit, ZmUnitRadian), 1);

  const auto fails = [&](const wchar_t* text, unsigned char withPrefix) {
    return Message(ZmUnitMgr.CSMSolverStringToSystem(text, system, withPrefix));
  };
  EXPECT_EQ(fails(L"UNIT MM TON S", 1), L"Internal error : bad UNIT attribute format (UNIT MM TON S)");
  EXPECT_EQ(fails(L"MM TON S KELVIN", 1), L"Internal error : bad UNIT attribute format (MM TON S KELVIN)");
  EXPECT_EQ(fails(L"unit MM TON S KELVIN", 1), L"Internal error : bad UNIT attribute format (unit MM TON S KELVIN)");
  EXPECT_EQ(fails(L"", 1), L"Internal error : bad UNIT attribute format ()");
  EXPECT_EQ(fails(L"", 0), L"Internal error : bad UNIT attribute format ()");
  EXPECT_EQ(fails(L"UNIT", 1), L"Internal error : bad UNIT attribute format (UNIT)");
  EXPECT_EQ(fails(L"UNIT MM\t\t  TON   S", 1), L"Internal error : bad UNIT attribute format (UNIT MM\t\t  TON   S)");
  EXPECT_EQ(fails(L"UNIT MM TONNE S K", 1), L"Unsupported mass unit 'TONNE'");
  // The indices are stored before they are checked.
  EXPECT_EQ(system.GetUnitLength(), ZmUnitMillimeter);
  EXPECT_EQ(system.GetUnitMass(), ZmUnitMassUnset);
  EXPECT_EQ(system.GetUnitTemp(), ZmUnitTempUnset);
  EXPECT_EQ(system.GetUnitAngle(), ZmUnitRadian);
  EXPECT_EQ(fails(L"UNIT mm TON S KELVIN", 1), L"Unsupported length unit 'mm'");
  EXPECT_EQ(fails(L"UNIT MM TON SEC KELVIN", 1), L"Unsupported time unit 'SEC'");
  EXPECT_EQ(fails(L"UNIT MM TON S K", 1), L"Unsupported temperature unit 'K'");
  // Without the prefix flag the word UNIT is a (bad) length keyword.
  EXPECT_EQ(fails(L"UNIT MM TON S KELVIN", 0), L"Unsupported length unit 'UNIT'");
}

TEST(UnitCatalogue, SolverLineRoundTripsForEverySupportedSystem) {
  int checked = 0;
  for (int l = 0; l < 6; ++l) {
    for (int m = 0; m < 9; ++m) {
      for (int t = 0; t < 3; ++t) {
        for (int k = 0; k < 4; ++k) {
          const ZmUnitSystem system(static_cast<_ZmUnitLength>(l), static_cast<_ZmUnitMass>(m),
                                    static_cast<_ZmUnitTime>(t), static_cast<_ZmUnitTemp>(k), ZmUnitRadian);
          WbString line;
          const WbErrObj* error = ZmUnitMgr.FormatCSMSolverString(system, line, 1);
          // Only the pixel and the mercury mass have no keyword.
          ASSERT_EQ(error == nullptr, l != ZmUnitPixel && m != ZmUnitMercureKg);
          if (error) continue;
          ZmUnitSystem back;
          ASSERT_EQ(ZmUnitMgr.CSMSolverStringToSystem(line, back, 1), nullptr);
          EXPECT_EQ(back == system, 1) << Text(line).c_str();
          ++checked;
        }
      }
    }
  }
  EXPECT_EQ(checked, 5 * 8 * 3 * 4);
}

TEST(UnitCatalogue, SystemFromTypedSymbols) {
  ZmUnitSystem system;
  ASSERT_EQ(ZmUnitMgr.ShortUnitStringsToSystem(L"mm", L"T", L"s", L"K", system, 1), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian), 1);
  ASSERT_EQ(ZmUnitMgr.ShortUnitStringsToSystem(L"IN", L"LBM", L"MS", L"ra", system, 0), nullptr);
  EXPECT_EQ(system == ZmUnitSystem(ZmUnitInch, ZmUnitPound, ZmUnitMillisecond, ZmUnitRankine, ZmUnitRadian), 1);

  const auto fails = [&](const wchar_t* l, const wchar_t* m, const wchar_t* t, const wchar_t* k) {
    return Message(ZmUnitMgr.ShortUnitStringsToSystem(l, m, t, k, system, 1));
  };
  EXPECT_EQ(fails(L"MM", L"T", L"s", L"K"),
            L"Unsupported length unit 'MM'. Possible values are : m - cm - mm - ft - in - px");
  EXPECT_EQ(
      fails(L"mm", L"kg", L"s", L"K"),
      L"Unsupported mass unit 'kg'. Possible values are : Kg - HKg - Kg*9.81 - g - T - T*9.81 - slug - lbm - mKg");
  EXPECT_EQ(fails(L"mm", L"T", L"", L"K"), L"Unsupported time unit ''. Possible values are : s - ms - us");
  EXPECT_EQ(fails(L"mm", L"T", L"s", L"Kelvin"),
            L"Unsupported temperature unit 'Kelvin'. Possible values are : K - C - F - Ra");
  EXPECT_EQ(fails(L"x", L"y", L"z", L"w"),
            L"Unsupported length unit 'x'. Possible values are : m - cm - mm - ft - in - px");
}

TEST(UnitCatalogue, MessagesGoThroughTheLocalisationHook) {
  const WbLocalizeHook previous = WbSetLocalizeHook([](const wchar_t* message, int) -> const wchar_t* {
    if (std::wstring(message) == L"Unsupported mass unit '%s'") return L"Masse inconnue : %s";
    if (std::wstring(message) == L"Unsupported length unit") return L"Longueur inconnue";
    return nullptr;
  });
  ZmUnitSystem system;
  WbString text;
  const std::wstring parsed = Message(ZmUnitMgr.CSMSolverStringToSystem(L"UNIT MM TONNE S KELVIN", system, 1));
  const std::wstring written = Message(ZmUnitMgr.FormatCSMSolverString(ZmUnitSystem(), text, 1));
  WbSetLocalizeHook(previous);
  EXPECT_EQ(parsed, L"Masse inconnue : TONNE");
  EXPECT_EQ(written, L"Longueur inconnue");
}

}  // namespace
