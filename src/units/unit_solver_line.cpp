// ZmUnitManager: the solver's unit line "UNIT MM TON S KELVIN" and systems from unit symbols.
#include <wbcore/WbLocalize.h>

#include <exception>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitManager.h"

ZM_BUILD_INFO(unit_solver_line)

const WbErrObj* ZmUnitManager::FormatCSMSolverString(const ZmUnitSystem& system, WbString& text,
                                                     unsigned char withPrefix) const try {
  const zm::BoundaryCall boundary;
  const wchar_t* length = UnitIndex2CSMKeyword(ZmUnitTypeLength, system.GetUnitLength());
  const wchar_t* mass = UnitIndex2CSMKeyword(ZmUnitTypeMass, system.GetUnitMass());
  const wchar_t* time = UnitIndex2CSMKeyword(ZmUnitTypeTime, system.GetUnitTime());
  const wchar_t* temp = UnitIndex2CSMKeyword(ZmUnitTypeTemp, system.GetUnitTemp());
  if (!*length) return WbSetError(WbLocalizeStringExW(L"Unsupported length unit", 0));
  if (!*mass) return WbSetError(WbLocalizeStringExW(L"Unsupported mass unit", 0));
  if (!*time) return WbSetError(WbLocalizeStringExW(L"Unsupported time unit", 0));
  if (!*temp) return WbSetError(WbLocalizeStringExW(L"Unsupported temperature unit", 0));
  text.Format(withPrefix ? L"UNIT %s %s %s %s" : L"%s %s %s %s", length, mass, time, temp);
  return nullptr;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return zm::OutOfMemoryError();
}

const WbErrObj* ZmUnitManager::CSMSolverStringToSystem(const WbString& text, ZmUnitSystem& system,
                                                       unsigned char withPrefix) const try {
  const zm::BoundaryCall boundary;
  const wchar_t* badFormat = L"Internal error : bad UNIT attribute format (%s)";
  if (withPrefix && text.Left(4) != L"UNIT") return WbSetError(WbLocalizeStringExW(badFormat, 0), text.GetString());
  // Runs of blanks and tabs separate words; no empty word is kept.
  WbObjectArrayTempl<WbString> words;
  text.SplitWords(words, L" \t", 0);
  if (withPrefix) words.RemoveAt(0);
  if (words.GetSize() < 4) return WbSetError(WbLocalizeStringExW(badFormat, 0), text.GetString());
  const int length = CSMKeyword2UnitIndex(ZmUnitTypeLength, *words[0]);
  const int mass = CSMKeyword2UnitIndex(ZmUnitTypeMass, *words[1]);
  const int time = CSMKeyword2UnitIndex(ZmUnitTypeTime, *words[2]);
  const int temp = CSMKeyword2UnitIndex(ZmUnitTypeTemp, *words[3]);
  system.Init(static_cast<_ZmUnitLength>(length), static_cast<_ZmUnitMass>(mass), static_cast<_ZmUnitTime>(time),
              static_cast<_ZmUnitTemp>(temp), ZmUnitRadian);
  if (length < 0) {
    return WbSetError(WbLocalizeStringExW(L"Unsupported length unit '%s'", 0), words[0]->GetString());
  }
  if (mass < 0) return WbSetError(WbLocalizeStringExW(L"Unsupported mass unit '%s'", 0), words[1]->GetString());
  if (time < 0) return WbSetError(WbLocalizeStringExW(L"Unsupported time unit '%s'", 0), words[2]->GetString());
  if (temp < 0) {
    return WbSetError(WbLocalizeStringExW(L"Unsupported temperature unit '%s'", 0), words[3]->GetString());
  }
  return nullptr;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return zm::OutOfMemoryError();
}

const WbErrObj* ZmUnitManager::ShortUnitStringsToSystem(const WbString& length, const WbString& mass,
                                                        const WbString& time, const WbString& temperature,
                                                        ZmUnitSystem& system, unsigned char caseSensitive) const try {
  const zm::BoundaryCall boundary;
  const int lengthIndex = ShortName2UnitIndex(ZmUnitTypeLength, length, caseSensitive);
  const int massIndex = ShortName2UnitIndex(ZmUnitTypeMass, mass, caseSensitive);
  const int timeIndex = ShortName2UnitIndex(ZmUnitTypeTime, time, caseSensitive);
  const int tempIndex = ShortName2UnitIndex(ZmUnitTypeTemp, temperature, caseSensitive);
  system.Init(static_cast<_ZmUnitLength>(lengthIndex), static_cast<_ZmUnitMass>(massIndex),
              static_cast<_ZmUnitTime>(timeIndex), static_cast<_ZmUnitTemp>(tempIndex), ZmUnitRadian);
  const auto fail = [this](const wchar_t* message, const WbString& given, _ZmUnitType type) {
    return WbSetError(WbLocalizeStringExW(message, 0), given.GetString(), GetAllShortNames(type, L" - ").GetString());
  };
  if (lengthIndex < 0) {
    return fail(L"Unsupported length unit '%s'. Possible values are : %s", length, ZmUnitTypeLength);
  }
  if (massIndex < 0) return fail(L"Unsupported mass unit '%s'. Possible values are : %s", mass, ZmUnitTypeMass);
  if (timeIndex < 0) return fail(L"Unsupported time unit '%s'. Possible values are : %s", time, ZmUnitTypeTime);
  if (tempIndex < 0) {
    return fail(L"Unsupported temperature unit '%s'. Possible values are : %s", temperature, ZmUnitTypeTemp);
  }
  return nullptr;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return zm::OutOfMemoryError();
}
