// The global dimensions and the catalogue are usable from the constructor and the destructor
// of a user's global object, and extra guards do not end their lifetime.
#include <cstdio>
#include <cstdlib>

#include "units_test_support.h"

namespace {

// The unit classes look their messages up with the context 0 of the library's messages. This
// hook, installed for the whole program, marks any other context, so that every message check
// of the unit tests also checks the lookup.
[[maybe_unused]] const WbLocalizeHook g_contextCheck = WbSetLocalizeHook(
    [](const wchar_t*, int context) -> const wchar_t* { return context == 0 ? nullptr : L"<wrong context>"; });

// A user global whose constructor runs during static initialisation of this program and reads
// the unit globals: dimensions, quotient components, the catalogue and the solver line.
struct UserSettings {
  UserSettings() {
    const ZmUnitSystem mmTS(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
    WbString line;
    const bool written = ZmUnitMgr.FormatCSMSolverString(mmTS, line, 1) == nullptr;
    read = Text(ZmUnitDimPressure.GetDimName(&mmTS)) + L"|" + Text(ZmUnitDimForcePerLength.GetShortName(mmTS, 1, 1)) +
           L"|" + std::to_wstring(ZmUnitMgr.GetEquivalentUnitCount()) + L"|" + (written ? Text(line) : L"-");
    youngModulus = mmTS.ConvertPressureFrom(2.1e11f, ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond);
  }
  // At exit the globals must still be alive: a failure here aborts the test program.
  ~UserSettings() {
    WbString name;
    const ZmUnitSystem mKgS(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
    if (ZmUnitMgr.GetEquivalentUnitCount() != 40 || !ZmUnitMgr.FindEquivalentUnit(ZmUnitDimPressure, mKgS, name, 1) ||
        name != L"Pa" || ZmUnitDimForcePerLength.IsQuotient() != 1) {
      std::fputs("unit globals destroyed before a user global\n", stderr);
      std::abort();
    }
  }
  std::wstring read;
  float youngModulus = 0.0f;
};

UserSettings g_settings;

TEST(UnitGlobals, UsableFromAUserGlobalConstructor) {
  EXPECT_EQ(g_settings.read, L"Pressure [MPa]|N/mm|40|UNIT MM TON S KELVIN");
  EXPECT_EQ(g_settings.youngModulus, 210000.015625f);  // float(2.1e11) / 1000 * 0.001 (numpy float32)
}

TEST(UnitGlobals, ExtraGuardsKeepTheGlobalsAlive) {
  const ZmUnitDim* const length = &ZmUnitDimLength;
  {
    const ZmUnitGlobalsInit first;
    const ZmUnitGlobalsInit second;
  }
  EXPECT_EQ(&ZmUnitDimLength, length);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnitCount(), 40u);
  EXPECT_EQ(Describe(ZmUnitDimForcePerLength), L"Force per Length: 0 1 -2 0 0 [Force: 1 1 -2 0 0 / Length: 1 0 0 0 0]");
}

}  // namespace
