// The unit catalogue: the tables pinned entry by entry, lookups, derived units, the solver
// UNIT line both ways and systems from typed symbols, with every message.
#include "units_test_support.h"

// Each unit as "symbol|solver keyword|long name" and its factor; out of range (index or type)
// there is no name, no keyword and the invalid factor. The pixel has no factor either.
TEST(UnitCatalogue, BaseUnitTables) {
  const int l = ZmUnitTypeLength, m = ZmUnitTypeMass, t = ZmUnitTypeTime, k = ZmUnitTypeTemp, a = ZmUnitTypeAngle;
  // clang-format off
  const std::tuple<int, int, const wchar_t*, float> units[] = {
      {l, 0, L"m|M|Meter", 1.0f}, {l, 1, L"cm|CM|Centimeter", 100.0f}, {l, 2, L"mm|MM|Millimeter", 1000.0f},
      {l, 3, L"ft|FOOT|Foot", 3.281f}, {l, 4, L"in|INCH|Inch", 39.37f}, {l, ZmUnitPixel, L"px||Pixel", kInvalid},
      {m, 0, L"Kg|KG|Kilogram", 1.0f}, {m, 1, L"HKg|HKG|Hundred kilogram", 0.01f},
      {m, 2, L"Kg*9.81|KG/G|Kilogram*9.81", 0.10197162f}, {m, 3, L"g|GRAM|Gram", 1000.0f}, {m, 4, L"T|TON|Ton", 0.001f},
      {m, 5, L"T*9.81|DTON|Ton*9.81", 0.00010197162f}, {m, 6, L"slug|SLUG|Slug", 0.068522f},
      {m, 7, L"lbm|POUND|Pound", 2.2046f}, {m, ZmUnitMercureKg, L"mKg||mercure Kg", 0.0075006154f},
      {t, 0, L"s|S|Second", 1.0f}, {t, 1, L"ms|MS|Millisecond", 1000.0f}, {t, 2, L"us|US|Microsecond", 1e6f},
      {k, 0, L"K|KELVIN|Kelvin", 1.0f}, {k, 1, L"C|CELSIUS|Celsius", 1.0f}, {k, 2, L"F|FAHR|Fahrenheit", 1.0f},
      {k, ZmUnitRankine, L"Ra|RANK|Rankine", 1.0f}, {a, 0, L"deg||Degree", 1.0f}, {a, 1, L"rad||Radian", 0.017453292f},
      {l, -1, L"||", kInvalid}, {l, 6, L"||", kInvalid}, {m, 9, L"||", kInvalid}, {t, 3, L"||", kInvalid},
      {k, 4, L"||", kInvalid}, {a, 2, L"||", kInvalid}, {5, 0, L"||", kInvalid}, {-1, 0, L"||", kInvalid}};
  // clang-format on
  for (const auto& [type, i, names, factor] : units) {
    const auto ty = static_cast<_ZmUnitType>(type);
    const std::wstring keyword = ZmUnitMgr.UnitIndex2CSMKeyword(ty, i);
    EXPECT_EQ(
        Text(ZmUnitMgr.UnitIndex2ShortName(ty, i)) + L"|" + keyword + L"|" + Text(ZmUnitMgr.UnitIndex2LongName(ty, i)),
        names);
    EXPECT_EQ(ZmUnitMgr.UnitIndex2Factor(ty, i), factor) << names;
    EXPECT_EQ(ZmUnitMgr.IsSupportedByCSM(ty, i), keyword.empty() ? 0 : 1) << names;
  }
  std::wstring counts;
  for (int type = 0; type < 5; ++type)
    counts += std::to_wstring(ZmUnitMgr.GetUnitCount(static_cast<_ZmUnitType>(type)));
  EXPECT_EQ(counts, L"69342");
}

TEST(UnitCatalogue, DerivedUnitsFollowTheBaseUnits) {
  ASSERT_EQ(ZmUnitMgr.GetEquivalentUnitCount(), 40u);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnit(40), nullptr);
  // name, dimension, system indices "l m t k a"
  const ZmUnitDim &len = ZmUnitDimLength, &mass = ZmUnitDimMass, &time = ZmUnitDimTime, &temp = ZmUnitDimTemp;
  const ZmUnitDim &freq = ZmUnitDimFreq, &force = ZmUnitDimForce, &pres = ZmUnitDimPressure, &dens = ZmUnitDimDensity;
  // clang-format off
  const std::tuple<const wchar_t*, const ZmUnitDim&, const wchar_t*> expected[] = {
      {L"m", len, L"0 -1 -1 0 0"}, {L"cm", len, L"1 -1 -1 0 0"}, {L"mm", len, L"2 -1 -1 0 0"},
      {L"ft", len, L"3 -1 -1 0 0"}, {L"in", len, L"4 -1 -1 0 0"}, {L"px", len, L"5 -1 -1 0 0"},
      {L"Kg", mass, L"-1 0 -1 0 0"}, {L"HKg", mass, L"-1 1 -1 0 0"}, {L"Kg*9.81", mass, L"-1 2 -1 0 0"},
      {L"g", mass, L"-1 3 -1 0 0"}, {L"T", mass, L"-1 4 -1 0 0"}, {L"T*9.81", mass, L"-1 5 -1 0 0"},
      {L"slug", mass, L"-1 6 -1 0 0"}, {L"lbm", mass, L"-1 7 -1 0 0"}, {L"mKg", mass, L"-1 8 -1 0 0"},
      {L"s", time, L"-1 -1 0 0 0"}, {L"ms", time, L"-1 -1 1 0 0"}, {L"us", time, L"-1 -1 2 0 0"},
      {L"K", temp, L"-1 -1 -1 0 0"}, {L"C", temp, L"-1 -1 -1 1 0"}, {L"F", temp, L"-1 -1 -1 2 0"},
      {L"Ra", temp, L"-1 -1 -1 3 0"}, {L"deg", ZmUnitDimAngle, L"-1 -1 -1 0 0"},
      {L"rad", ZmUnitDimAngle, L"-1 -1 -1 0 1"}, {L"Hz", freq, L"-1 -1 0 0 0"}, {L"KHz", freq, L"-1 -1 1 0 0"},
      {L"MHz", freq, L"-1 -1 2 0 0"}, {L"N", force, L"2 4 0 0 0"}, {L"kN", force, L"2 0 1 0 0"},
      {L"Nmm", ZmUnitDimMoment, L"2 4 0 0 0"}, {L"Nm", ZmUnitDimMoment, L"2 0 1 0 0"}, {L"Pa", pres, L"0 0 0 0 0"},
      {L"KPa", pres, L"2 0 0 0 0"}, {L"MPa", pres, L"2 4 0 0 0"}, {L"GPa", pres, L"2 0 1 0 0"},
      {L"dyn/cm2", pres, L"1 3 0 0 0"}, {L"mmHg", pres, L"0 8 0 0 0"}, {L"Kg/m3", dens, L"0 0 -1 0 0"},
      {L"T/mm3", dens, L"2 4 -1 0 0"}, {L"Kg/mm3", dens, L"2 0 -1 0 0"}};
  // clang-format on
  for (std::uint64_t i = 0; i < 40; ++i) {
    const ZmUnitManager::UnitEquivName* unit = ZmUnitMgr.GetEquivalentUnit(i);
    ASSERT_NE(unit, nullptr);
    EXPECT_EQ(Text(unit->name), std::get<0>(expected[i]));
    EXPECT_EQ(unit->dim, std::get<1>(expected[i])) << i;
    EXPECT_EQ(Units(unit->system), std::get<2>(expected[i])) << i;
  }
}

// Symbols match exactly or ignoring case (0), never as long names; solver keywords always match
// exactly, and a unit unknown to the solver has no keyword, so the empty word finds nothing.
TEST(UnitCatalogue, NameAndKeywordLookups) {
  const ZmUnitManager& u = ZmUnitMgr;
  const _ZmUnitType l = ZmUnitTypeLength, m = ZmUnitTypeMass;
  const std::pair<int, int> rows[] = {
      {u.ShortName2UnitIndex(l, L"MM", 0), 2},     {u.ShortName2UnitIndex(l, L"MM", 1), -1},
      {u.ShortName2UnitIndex(m, L"T*9.81", 1), 5}, {u.ShortName2UnitIndex(m, L"mkg", 0), 8},
      {u.ShortName2UnitIndex(m, L"", 0), -1},      {u.ShortName2UnitIndex(ZmUnitTypeTemp, L"Kelvin", 0), -1},
      {u.CSMKeyword2UnitIndex(l, L"MM"), 2},       {u.CSMKeyword2UnitIndex(l, L"mm"), -1},
      {u.CSMKeyword2UnitIndex(m, L"KG/G"), 2},     {u.CSMKeyword2UnitIndex(l, L""), -1}};
  for (const auto& row : rows) EXPECT_EQ(row.first, row.second) << &row - rows;
  EXPECT_EQ(Text(u.GetAllShortNames(ZmUnitTypeTime, L" - ")) + Text(u.GetAllShortNames(ZmUnitTypeAngle, L",")),
            L"s - ms - usdeg,rad");
}

// 1 kg/(m s^2) is 1 N/m^2: in (m, Kg, s) a force is the newton of the (mm, T, s) table; 133.32 Pa,
// the mercury pressure unit, comes through its auxiliary mass (m, mKg, s).
TEST(UnitCatalogue, EquivalentUnitOfADimensionInASystem) {
  const ZmUnitDim &pressure = ZmUnitDimPressure, &force = ZmUnitDimForce;
  // clang-format off
  const std::tuple<const ZmUnitDim&, ZmUnitSystem, float, const wchar_t*> rows[] = {
      {pressure, kMmTS, 1, L"MPa"}, {pressure, kMKgS, 1, L"Pa"}, {pressure, SysAt(1, 3, 0), 1, L"dyn/cm2"},
      {pressure, SysAt(3, 7, 0), 1, L"-"}, {force, kMmKgMs, 1, L"kN"}, {ZmUnitDimFreq, SysAt(0, 0, 1), 1, L"KHz"},
      {force, kMKgS, 1, L"N"}, {ZmUnitDimDensity, SysAt(2, 4, -1), 1, L"T/mm3"}, {pressure, SysAt(0, 8, 0), 1, L"mmHg"},
      // A factor: 1e-6 of the display unit (Pa) is one MPa, and a factor that matches nothing is
      // written after the unit that matches 1.
      {pressure, kMKgS, 1e-6f, L"MPa"}, {pressure, kMKgS, 2.5f, L"Pa * 2.5"}, {pressure, kMmTS, 2.5f, L"MPa * 2.5"},
      // A system that cannot express the dimension has no equivalent; the pixel converts into no
      // other unit, so only its own entry fits a length in pixels.
      {pressure, kNoLength, 1, L"-"}, {pressure, kPixels, 1, L"-"}, {ZmUnitDimLength, kPixels, 1, L"px"}};
  // clang-format on
  for (const auto& [dim, system, factor, expected] : rows) {
    WbString name(L"-");  // left as it is when nothing fits
    EXPECT_EQ(ZmUnitMgr.FindEquivalentUnit(dim, system, name, factor), expected[0] == L'-' ? 0 : 1) << Units(system);
    EXPECT_EQ(Text(name), expected);
  }
}

TEST(UnitCatalogue, DerivedUnitsByNameAndByDimension) {
  ZmUnitDim dim;
  ZmUnitSystem system;
  ASSERT_EQ(ZmUnitMgr.FindEquivalentUnitByName(L"mpa", dim, system, nullptr), 1);  // case ignored
  EXPECT_EQ(Describe(dim) + L" in " + Units(system), L"Pressure: -1 1 -2 0 0 in 2 4 0 0 0");
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

// A copy (or an assigned catalogue) takes its own units and factors; factors out of range are ignored.
TEST(UnitCatalogue, CopiesAreIndependentOfTheGlobalCatalogue) {
  ZmUnitManager copy(ZmUnitMgr), assigned;
  EXPECT_EQ(copy.AddEquivalentUnit(L"J/m3", ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitDimPressure, ZmUnitKelvin,
                                   ZmUnitDegree),
            40);
  for (const int index : {static_cast<int>(ZmUnitFoot), 6, -1})
    copy.SetUnitIndexFactor(ZmUnitTypeLength, index, 3.28084f);
  assigned = copy;
  const auto foot = [](const ZmUnitManager& m) { return m.UnitIndex2Factor(ZmUnitTypeLength, ZmUnitFoot); };
  EXPECT_EQ(std::make_tuple(foot(copy), copy.GetUnitCount(ZmUnitTypeLength), foot(ZmUnitMgr)),
            std::make_tuple(3.28084f, 6, 3.281f));
  EXPECT_EQ(std::make_tuple(ZmUnitMgr.GetEquivalentUnitCount(), assigned.GetEquivalentUnitCount()),
            std::make_tuple(40u, 41u));
  EXPECT_EQ(Text(assigned.GetEquivalentUnit(40)->name), L"J/m3");
}

// The angle is not written, so an unset angle does not matter; on failure the first unsupported
// unit in the order length, mass, time, temperature is reported and the text is kept. Reading:
// words after the fourth are ignored, the angle becomes radian and the indices are stored before
// they are checked.
TEST(UnitCatalogue, SolverUnitLineBothWays) {
  // clang-format off
  const std::tuple<ZmUnitSystem, int, const wchar_t*> written[] = {
      {kMmTS, 1, L"UNIT MM TON S KELVIN"}, {kMmTS, 0, L"MM TON S KELVIN"}, {SysAt(4, 7, 1, 3, -1), 1, L"UNIT INCH POUND MS RANK"},
      {kPixels, 1, L"Unsupported length unit: kept"}, {SysAt(2, 8, 0), 1, L"Unsupported mass unit: kept"},
      {SysAt(2, 4, -1), 1, L"Unsupported time unit: kept"}, {SysAt(2, 4, 0, 4), 1, L"Unsupported temperature unit: kept"},
      {ZmUnitSystem(), 1, L"Unsupported length unit: kept"}};
  // clang-format on
  for (const auto& [system, prefix, expected] : written) {
    WbString text(L"kept");
    const WbErrObj* error = ZmUnitMgr.FormatCSMSolverString(system, text, static_cast<unsigned char>(prefix));
    EXPECT_EQ((error ? Message(error) + L": " : L"") + Text(text), expected);
  }
  const auto read = [](const wchar_t* text, unsigned char prefix) {
    ZmUnitSystem system;
    const WbErrObj* error = ZmUnitMgr.CSMSolverStringToSystem(text, system, prefix);
    return (error ? Message(error) + L": " : L"") + Units(system);
  };
  // A null expectation: the format is refused with the text and the system is untouched.
  // clang-format off
  const std::tuple<const wchar_t*, int, const wchar_t*> rows[] = {
      {L"UNIT MM TON S KELVIN", 1, L"2 4 0 0 1"}, {L"UNIT\tM  \t KG S   CELSIUS extra words", 1, L"0 0 0 1 1"},
      {L"FOOT SLUG US FAHR", 0, L"3 6 2 2 1"}, {L"INCH DTON MS RANK", 0, L"4 5 1 3 1"}, {L"UNIT MM TON S", 1, nullptr},
      {L"MM TON S KELVIN", 1, nullptr}, {L"unit MM TON S KELVIN", 1, nullptr}, {L"", 1, nullptr}, {L"", 0, nullptr},
      {L"UNIT", 1, nullptr}, {L"UNIT MM\t\t  TON   S", 1, nullptr},
      {L"UNIT MM TONNE S K", 1, L"Unsupported mass unit 'TONNE': 2 -1 0 -1 1"},
      {L"UNIT mm TON S KELVIN", 1, L"Unsupported length unit 'mm': -1 4 0 0 1"},
      {L"UNIT MM TON SEC KELVIN", 1, L"Unsupported time unit 'SEC': 2 4 -1 0 1"},
      {L"UNIT MM TON S K", 1, L"Unsupported temperature unit 'K': 2 4 0 -1 1"},
      // Without the prefix flag the word UNIT is a (bad) length keyword.
      {L"UNIT MM TON S KELVIN", 0, L"Unsupported length unit 'UNIT': -1 -1 -1 -1 1"}};
  // clang-format on
  for (const auto& [text, prefix, expected] : rows) {
    const std::wstring refused =
        L"Internal error : bad UNIT attribute format (" + std::wstring(text) + L"): -1 -1 -1 -1 -1";
    EXPECT_EQ(read(text, static_cast<unsigned char>(prefix)), expected ? expected : refused);
  }
}

TEST(UnitCatalogue, SystemFromTypedSymbols) {
  // clang-format off
  const std::tuple<const wchar_t*, const wchar_t*, const wchar_t*, const wchar_t*, int, const wchar_t*> rows[] = {
      {L"mm", L"T", L"s", L"K", 1, L"ok 2 4 0 0 1"}, {L"IN", L"LBM", L"MS", L"ra", 0, L"ok 4 7 1 3 1"},
      {L"M", L"KG", L"S", L"C", 0, L"ok 0 0 0 1 1"},
      {L"MM", L"T", L"s", L"K", 1, L"Unsupported length unit 'MM'. Possible values are : m - cm - mm - ft - in - px"},
      {L"mm", L"kg", L"s", L"K", 1,
       L"Unsupported mass unit 'kg'. Possible values are : Kg - HKg - Kg*9.81 - g - T - T*9.81 - slug - lbm - mKg"},
      {L"mm", L"T", L"", L"K", 1, L"Unsupported time unit ''. Possible values are : s - ms - us"},
      {L"mm", L"T", L"s", L"Kelvin", 1, L"Unsupported temperature unit 'Kelvin'. Possible values are : K - C - F - Ra"},
      {L"x", L"y", L"z", L"w", 1, L"Unsupported length unit 'x'. Possible values are : m - cm - mm - ft - in - px"}};
  // clang-format on
  for (const auto& [l, m, t, k, exact, expected] : rows) {
    ZmUnitSystem system;
    const WbErrObj* error = ZmUnitMgr.ShortUnitStringsToSystem(l, m, t, k, system, static_cast<unsigned char>(exact));
    EXPECT_EQ(error ? Message(error) : L"ok " + Units(system), expected) << l << m << t << k;
  }
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
