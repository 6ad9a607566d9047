// The global dimensions and the catalogue are usable from the constructor and the destructor
// of a user's global object, and extra guards do not end their lifetime.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// A user global whose constructor runs during static initialisation of this program and
// reads the unit globals: dimensions, quotient components and the catalogue.
struct UserSettings {
  UserSettings() {
    const ZmUnitSystem mmTS(ZmUnitMillimeter, ZmUnitTon, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
    pressureName = ZmUnitDimPressure.GetDimName(&mmTS).Std();
    forcePerLength = ZmUnitDimForcePerLength.GetShortName(mmTS, 1.0f, 1).Std();
    youngModulus = mmTS.ConvertPressureFrom(2.1e11f, ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond);
    derivedUnits = ZmUnitMgr.GetEquivalentUnitCount();
    WbString line;
    lineWritten = ZmUnitMgr.FormatCSMSolverString(mmTS, line, 1) == nullptr;
    solverLine = line.Std();
  }
  // At exit the globals must still be alive: a failure here aborts the test program.
  ~UserSettings() {
    WbString name;
    const ZmUnitSystem mKgS(ZmUnitMeter, ZmUnitKilogram, ZmUnitSecond, ZmUnitKelvin, ZmUnitRadian);
    if (ZmUnitMgr.GetEquivalentUnitCount() != 40 ||
        !ZmUnitMgr.FindEquivalentUnit(ZmUnitDimPressure, mKgS, name, 1.0f) || name != L"Pa" ||
        ZmUnitDimForcePerLength.IsQuotient() != 1) {
      std::fputs("unit globals destroyed before a user global\n", stderr);
      std::abort();
    }
  }

  std::wstring pressureName;
  std::wstring forcePerLength;
  float youngModulus = 0.0f;
  std::uint64_t derivedUnits = 0;
  bool lineWritten = false;
  std::wstring solverLine;
};

UserSettings g_settings;

TEST(UnitGlobals, UsableFromAUserGlobalConstructor) {
  EXPECT_EQ(g_settings.pressureName, L"Pressure [MPa]");
  EXPECT_EQ(g_settings.forcePerLength, L"N/mm");
  // float(2.1e11) / 1000 * 0.001 (numpy float32) = 210000.015625
  EXPECT_EQ(g_settings.youngModulus, 210000.015625f);
  EXPECT_EQ(g_settings.derivedUnits, 40u);
  EXPECT_TRUE(g_settings.lineWritten);
  EXPECT_EQ(g_settings.solverLine, L"UNIT MM TON S KELVIN");
}

TEST(UnitGlobals, ExtraGuardsKeepTheGlobalsAlive) {
  const ZmUnitDim* const length = &ZmUnitDimLength;
  {
    const ZmUnitGlobalsInit first;
    const ZmUnitGlobalsInit second;
  }
  EXPECT_EQ(&ZmUnitDimLength, length);
  EXPECT_EQ(ZmUnitMgr.GetEquivalentUnitCount(), 40u);
  EXPECT_EQ(ZmUnitDimLength.GetTemplDimName().Std(), L"Length");
  EXPECT_EQ(ZmUnitDimForcePerLength.IsQuotient(), 1);
}

}  // namespace
