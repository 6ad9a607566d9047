// The unit catalogue: the tables pinned entry by entry, lookups, derived units, the solver
// UNIT line both ways and systems from typed symbols, with every message.
#include "units_test_support.h"

namespace {
using namespace units_test;

TEST(UnitCatalogue, BaseUnitTables) {
  const struct {
    _ZmUnitType type;
    int index;
    const wchar_t *shortName, *keyword, *longName;
    float factor;
  } units[] = {{ZmUnitTypeLength, 0, L"m", L"M", L"Meter", 1.0f},
               {ZmUnitTypeLength, 1, L"cm", L"CM", L"Centimeter", 100.0f},
               {ZmUnitTypeLength, 2, L"mm", L"MM", L"Millimeter", 1000.0f},
               {ZmUnitTypeLength, 3, L"ft", L"FOOT", L"Foot", 3.281f},
               {ZmUnitTypeLength, 4, L"in", L"INCH", L"Inch", 39.37f},
               {ZmUnitTypeLength, ZmUnitPixel, L"px", L"", L"Pixel", kInvalid},
               {ZmUnitTypeMass, 0, L"Kg", L"KG", L"Kilogram", 1.0f},
               {ZmUnitTypeMass, 1, L"HKg", L"HKG", L"Hundred kilogram", 0.01f},
               {ZmUnitTypeMass, 2, L"Kg*9.81", L"KG/G", L"Kilogram*9.81", 0.10197162f},
               {ZmUnitTypeMass, 3, L"g", L"GRAM", L"Gram", 1000.0f},
               {ZmUnitTypeMass, 4, L"T", L"TON", L"Ton", 0.001f},
               {ZmUnitTypeMass, 5, L"T*9.81", L"DTON", L"Ton*9.81", 0.00010197162f},
               {ZmUnitTypeMass, 6, L"slug", L"SLUG", L"Slug", 0.068522f},
               {ZmUnitTypeMass, 7, L"lbm", L"POUND", L"Pound", 2.2046f},
               {ZmUnitTypeMass, ZmUnitMercureKg, L"mKg", L"", L"mercure Kg", 0.0075006154f},
               {ZmUnitTypeTime, 0, L"s", L"S", L"Second", 1.0f},
               {ZmUnitTypeTime, 1, L"ms", L"MS", L"Millisecond", 1000.0f},
               {ZmUnitTypeTime, 2, L"us", L"US", L"Microsecond", 1e6f},
               {ZmUnitTypeTemp, 0, L"K", L"KELVIN", L"Kelvin", 1.0f},
               {ZmUnitTypeTemp, 1, L"C", L"CELSIUS", L"Celsius", 1.0f},
               {ZmUnitTypeTemp, 2, L"F", L"FAHR", L"Fahrenheit", 1.0f},
               {ZmUnitTypeTemp, ZmUnitRankine, L"Ra", L"RANK", L"Rankine", 1.0f},
               {ZmUnitTypeAngle, 0, L"deg", L"", L"Degree", 1.0f},
               {ZmUnitTypeAngle, 1, L"rad", L"", L"Radian", 0.017453292f},
               // Out of range: no names, no keyword, the invalid factor.
               {ZmUnitTypeLength, 6, L"", L"", L"", kInvalid},
               {ZmUnitTypeTime, -1, L"", L"", L"", kInvalid},
               {ZmUnitTypeTime, 3, L"", L"", L"", kInvalid},
               {ZmUnitTypeMass, -1, L"", L"", L"", kInvalid},
               {ZmUnitTypeAngle, 2, L"", L"", L"", kInvalid},
               {static_cast<_ZmUnitType>(5), 0, L"", L"", L"", kInvalid}};
  for (const auto& u : units) {
    SCOPED_TRACE(testing::Message() << "type " << u.type << " index " << u.index);
    EXPECT_EQ(Text(ZmUnitMgr.UnitIndex2ShortName(u.type, u.index)) + L"|" +
                  ZmUnitMgr.UnitIndex2CSMKeyword(u.type, u.index) + L"|" +
                  Text(ZmUnitMgr.UnitIndex2LongName(u.type, u.index)),
              std::wstring(u.shortName) + L"|" + u.keyword + L"|" + u.longName);
    EXPECT_EQ(ZmUnitMgr.UnitIndex2Factor(u.type, u.index), u.factor);
    EXPECT_EQ(ZmUnitMgr.IsSupportedByCSM(u.type, u.index), u.keyword[0] ? 1 : 0);
  }
  const int counts[] = {6, 9, 3, 4, 2};
  for (int t = 0; t < 5; ++t) EXPECT_EQ(ZmUnitMgr.GetUnitCount(static_cast<_ZmUnitType>(t)), counts[t]);
  EXPECT_EQ(ZmUnitMgr.UnitIndex2CSMKeyword(ZmUnitTypeAngle, 2), ZmUnitMgr.UnitIndex2CSMKeyword(ZmUnitTypeTime, -7));
}

TEST(UnitCatalogue, DerivedUnitsFollowTheBaseUnits) {
  ASSERT_EQ(ZmUnitMgr.GetEquivalentUnitCount(), 40u);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnit(40), nullptr);
  // name, dimension, system indices "l m t k a"
  const std::tuple<const wchar_t*, const ZmUnitDim&, const char*> expected[] = {
      {L"m", ZmUnitDimLength, "0 -1 -1 0 0"},     {L"cm", ZmUnitDimLength, "1 -1 -1 0 0"},
      {L"mm", ZmUnitDimLength, "2 -1 -1 0 0"},    {L"ft", ZmUnitDimLength, "3 -1 -1 0 0"},
      {L"in", ZmUnitDimLength, "4 -1 -1 0 0"},    {L"px", ZmUnitDimLength, "5 -1 -1 0 0"},
      {L"Kg", ZmUnitDimMass, "-1 0 -1 0 0"},      {L"HKg", ZmUnitDimMass, "-1 1 -1 0 0"},
      {L"Kg*9.81", ZmUnitDimMass, "-1 2 -1 0 0"}, {L"g", ZmUnitDimMass, "-1 3 -1 0 0"},
      {L"T", ZmUnitDimMass, "-1 4 -1 0 0"},       {L"T*9.81", ZmUnitDimMass, "-1 5 -1 0 0"},
      {L"slug", ZmUnitDimMass, "-1 6 -1 0 0"},    {L"lbm", ZmUnitDimMass, "-1 7 -1 0 0"},
      {L"mKg", ZmUnitDimMass, "-1 8 -1 0 0"},     {L"s", ZmUnitDimTime, "-1 -1 0 0 0"},
      {L"ms", ZmUnitDimTime, "-1 -1 1 0 0"},      {L"us", ZmUnitDimTime, "-1 -1 2 0 0"},
      {L"K", ZmUnitDimTemp, "-1 -1 -1 0 0"},      {L"C", ZmUnitDimTemp, "-1 -1 -1 1 0"},
      {L"F", ZmUnitDimTemp, "-1 -1 -1 2 0"},      {L"Ra", ZmUnitDimTemp, "-1 -1 -1 3 0"},
      {L"deg", ZmUnitDimAngle, "-1 -1 -1 0 0"},   {L"rad", ZmUnitDimAngle, "-1 -1 -1 0 1"},
      {L"Hz", ZmUnitDimFreq, "-1 -1 0 0 0"},      {L"KHz", ZmUnitDimFreq, "-1 -1 1 0 0"},
      {L"MHz", ZmUnitDimFreq, "-1 -1 2 0 0"},     {L"N", ZmUnitDimForce, "2 4 0 0 0"},
      {L"kN", ZmUnitDimForce, "2 0 1 0 0"},       {L"Nmm", ZmUnitDimMoment, "2 4 0 0 0"},
      {L"Nm", ZmUnitDimMoment, "2 0 1 0 0"},      {L"Pa", ZmUnitDimPressure, "0 0 0 0 0"},
      {L"KPa", ZmUnitDimPressure, "2 0 0 0 0"},   {L"MPa", ZmUnitDimPressure, "2 4 0 0 0"},
      {L"GPa", ZmUnitDimPressure, "2 0 1 0 0"},   {L"dyn/cm2", ZmUnitDimPressure, "1 3 0 0 0"},
      {L"mmHg", ZmUnitDimPressure, "0 8 0 0 0"},  {L"Kg/m3", ZmUnitDimDensity, "0 0 -1 0 0"},
      {L"T/mm3", ZmUnitDimDensity, "2 4 -1 0 0"}, {L"Kg/mm3", ZmUnitDimDensity, "2 0 -1 0 0"}};
  for (std::uint64_t i = 0; i < 40; ++i) {
    const ZmUnitManager::UnitEquivName* unit = ZmUnitMgr.GetEquivalentUnit(i);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(Text(unit->name), std::get<0>(expected[i]));
    EXPECT_EQ(unit->dim, std::get<1>(expected[i])) << i;
    EXPECT_EQ(Units(unit->system), std::get<2>(expected[i])) << i;
  }
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
  const struct {
    const ZmUnitDim& dim;
    ZmUnitSystem system;
    float factor;
    const wchar_t* expected;
  } rows[] = {{ZmUnitDimPressure, kMmTS, 1, L"MPa"},
              {ZmUnitDimPressure, kMKgS, 1, L"Pa"},
              {ZmUnitDimPressure, Sys(ZmUnitCentimeter, ZmUnitGram, ZmUnitSecond), 1, L"dyn/cm2"},
              {ZmUnitDimPressure, Sys(ZmUnitFoot, ZmUnitPound, ZmUnitSecond), 1, L"<none: unchanged>"},
              {ZmUnitDimForce, kMmKgMs, 1, L"kN"},
              // 1 kg/(m s^2) is 1 N/m^2: in (m, Kg, s) a force is the newton of the (mm, T, s) table.
              {ZmUnitDimForce, kMKgS, 1, L"N"},
              {ZmUnitDimFreq, Sys(ZmUnitMeter, ZmUnitKilogram, ZmUnitMillisecond), 1, L"KHz"},
              {ZmUnitDimDensity, Sys(ZmUnitMillimeter, ZmUnitTon, ZmUnitTimeUnset), 1, L"T/mm3"},
              // 133.32 Pa: the mercury pressure unit through its auxiliary mass (m, mKg, s).
              {ZmUnitDimPressure, Sys(ZmUnitMeter, ZmUnitMercureKg, ZmUnitSecond), 1, L"mmHg"},
              // A factor: 1e-6 of the display unit (Pa) is one MPa, and a factor that matches nothing is
              // written after the unit that matches 1.
              {ZmUnitDimPressure, kMKgS, 1e-6f, L"MPa"},
              {ZmUnitDimPressure, kMKgS, 2.5f, L"Pa * 2.5"},
              // A system that cannot express the dimension has no equivalent; the pixel converts into no
              // other unit, so only its own entry fits a length in pixels.
              {ZmUnitDimPressure, kNoLength, 1, L"<none: unchanged>"},
              {ZmUnitDimPressure, kPixels, 1, L"<none: unchanged>"},
              {ZmUnitDimLength, kPixels, 1, L"px"}};
  for (const auto& r : rows) {
    WbString name(L"unchanged");
    const unsigned char found = ZmUnitMgr.FindEquivalentUnit(r.dim, r.system, name, r.factor);
    EXPECT_EQ(found ? Text(name) : L"<none: " + Text(name) + L">", r.expected) << Units(r.system);
  }
}

TEST(UnitCatalogue, DerivedUnitsByNameAndByDimension) {
  ZmUnitDim dim;
  ZmUnitSystem system;
  ASSERT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"mpa", dim, system, nullptr), 1);  // case ignored
  EXPECT_EQ(dim, ZmUnitDimPressure);
  EXPECT_EQ(Units(system), "2 4 0 0 0");
  EXPECT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"MPa", dim, system, &ZmUnitDimForce), 0);
  EXPECT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"kN", dim, system, &ZmUnitDimForce), 1);
  EXPECT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"furlong", dim, system, nullptr), 0);

  WbObjectArrayTempl<WbString> names;
  WbObjectArrayTempl<ZmUnitSystem> systems;
  names.Add(new WbString(L"stale"));
  ASSERT_EQ(ZmUnitMgr.GetEquivalentUnitNames(ZmUnitDimDensity, names, systems), 3u);
  EXPECT_EQ(Text(*names[0]) + L" " + Text(*names[2]), L"Kg/m3 Kg/mm3");
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
  // The angle is not written, so an unset angle does not matter; the first unsupported unit in
  // the order length, mass, time, temperature is reported and the text is kept.
  const struct {
    ZmUnitSystem system;
    unsigned char prefix;
    const wchar_t* expected;
  } rows[] = {
      {kMmTS, 1, L"UNIT MM TON S KELVIN"},
      {kMmTS, 0, L"MM TON S KELVIN"},
      {Sys(ZmUnitInch, ZmUnitPound, ZmUnitMillisecond, ZmUnitRankine, ZmUnitAngleUnset), 1, L"UNIT INCH POUND MS RANK"},
      {kPixels, 1, L"Unsupported length unit"},
      {Sys(ZmUnitMillimeter, ZmUnitMercureKg, ZmUnitSecond), 1, L"Unsupported mass unit"},
      {Sys(ZmUnitMillimeter, ZmUnitTon, ZmUnitTimeUnset), 1, L"Unsupported time unit"},
      {SysAt(2, 4, 0, 4), 1, L"Unsupported temperature unit"},
      {ZmUnitSystem(), 1, L"Unsupported length unit"}};
  for (const auto& r : rows) {
    WbString text(L"kept");
    const WbErrObj* error = ZmUnitMgr.FormatCSMSolverString(r.system, text, r.prefix);
    EXPECT_EQ(error ? Message(error) + L" " + Text(text) : Text(text),
              error ? r.expected + std::wstring(L" kept") : r.expected);
  }
}

TEST(UnitCatalogue, ReadsTheSolverUnitLine) {
  const auto read = [](const wchar_t* text, unsigned char prefix) {
    ZmUnitSystem system;
    const WbErrObj* error = ZmUnitMgr.CSMSolverStringToSystem(text, system, prefix);
    return error ? Message(error) : L"ok " + WideUnits(system);
  };
  const std::tuple<const wchar_t*, int, const wchar_t*> rows[] = {
      {L"UNIT MM TON S KELVIN", 1, L"ok 2 4 0 0 1"},
      {L"UNIT\tM  \t KG S   CELSIUS extra words", 1, L"ok 0 0 0 1 1"},  // tabs, runs of blanks, more words
      {L"FOOT SLUG US FAHR", 0, L"ok 3 6 2 2 1"},
      {L"UNIT MM TON S", 1, L"Internal error : bad UNIT attribute format (UNIT MM TON S)"},
      {L"MM TON S KELVIN", 1, L"Internal error : bad UNIT attribute format (MM TON S KELVIN)"},
      {L"unit MM TON S KELVIN", 1, L"Internal error : bad UNIT attribute format (unit MM TON S KELVIN)"},
      {L"", 1, L"Internal error : bad UNIT attribute format ()"},
      {L"", 0, L"Internal error : bad UNIT attribute format ()"},
      {L"UNIT", 1, L"Internal error : bad UNIT attribute format (UNIT)"},
      {L"UNIT MM\t\t  TON   S", 1, L"Internal error : bad UNIT attribute format (UNIT MM\t\t  TON   S)"},
      {L"UNIT MM TONNE S K", 1, L"Unsupported mass unit 'TONNE'"},
      {L"UNIT mm TON S KELVIN", 1, L"Unsupported length unit 'mm'"},
      {L"UNIT MM TON SEC KELVIN", 1, L"Unsupported time unit 'SEC'"},
      {L"UNIT MM TON S K", 1, L"Unsupported temperature unit 'K'"},
      // Without the prefix flag the word UNIT is a (bad) length keyword.
      {L"UNIT MM TON S KELVIN", 0, L"Unsupported length unit 'UNIT'"}};
  for (const auto& r : rows) {
    EXPECT_EQ(read(std::get<0>(r), static_cast<unsigned char>(std::get<1>(r))), std::get<2>(r));
  }
  // The indices are stored before they are checked.
  ZmUnitSystem system;
  ASSERT_NE(ZmUnitMgr.CSMSolverStringToSystem(L"UNIT MM TONNE S K", system, 1), nullptr);
  EXPECT_EQ(Units(system), "2 -1 0 -1 1");
}

TEST(UnitCatalogue, SolverLineRoundTripsForEverySupportedSystem) {
  int checked = 0;
  for (int i = 0; i < 6 * 9 * 3 * 4; ++i) {
    const ZmUnitSystem system = SysAt(i / 108, i / 12 % 9, i / 4 % 3, i % 4);
    WbString line;
    const WbErrObj* error = ZmUnitMgr.FormatCSMSolverString(system, line, 1);
    // Only the pixel and the mercury mass have no keyword.
    ASSERT_EQ(error == nullptr, i / 108 != ZmUnitPixel && i / 12 % 9 != ZmUnitMercureKg) << i;
    if (error) continue;
    ZmUnitSystem back;
    ASSERT_EQ(ZmUnitMgr.CSMSolverStringToSystem(line, back, 1), nullptr);
    EXPECT_EQ(back == system, 1) << Text(line).c_str();
    ++checked;
  }
  EXPECT_EQ(checked, 5 * 8 * 3 * 4);
}

TEST(UnitCatalogue, SystemFromTypedSymbols) {
  const auto read = [](const wchar_t* l, const wchar_t* m, const wchar_t* t, const wchar_t* k, unsigned char exact) {
    ZmUnitSystem system;
    const WbErrObj* error = ZmUnitMgr.ShortUnitStringsToSystem(l, m, t, k, system, exact);
    return error ? Message(error) : L"ok " + WideUnits(system);
  };
  EXPECT_EQ(read(L"mm", L"T", L"s", L"K", 1), L"ok 2 4 0 0 1");
  EXPECT_EQ(read(L"IN", L"LBM", L"MS", L"ra", 0), L"ok 4 7 1 3 1");
  EXPECT_EQ(read(L"MM", L"T", L"s", L"K", 1),
            L"Unsupported length unit 'MM'. Possible values are : m - cm - mm - ft - in - px");
  EXPECT_EQ(
      read(L"mm", L"kg", L"s", L"K", 1),
      L"Unsupported mass unit 'kg'. Possible values are : Kg - HKg - Kg*9.81 - g - T - T*9.81 - slug - lbm - mKg");
  EXPECT_EQ(read(L"mm", L"T", L"", L"K", 1), L"Unsupported time unit ''. Possible values are : s - ms - us");
  EXPECT_EQ(read(L"mm", L"T", L"s", L"Kelvin", 1),
            L"Unsupported temperature unit 'Kelvin'. Possible values are : K - C - F - Ra");
  EXPECT_EQ(read(L"x", L"y", L"z", L"w", 1),
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
  EXPECT_EQ(parsed + L" | " + written, L"Masse inconnue : TONNE | Longueur inconnue");
}

}  // namespace
