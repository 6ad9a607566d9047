// ZmUnitDim: display names, unit symbols and the search of a system from a symbol.
#include <wbcore/WbLocalize.h>

#include <exception>
#include <set>
#include <string>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitManager.h"

ZM_BUILD_INFO(unit_dim_names)

using zm::units::kTypeCount;
using zm::units::TypeAt;

namespace {

WbString UnitSymbol(const ZmUnitSystem& system, int t) {
  return ZmUnitMgr.UnitIndex2ShortName(TypeAt(t), system.GetUnitIndex(TypeAt(t)));
}

// The symbol composed from the system's unit symbols: positive exponents joined by ".", then
// "/" and the negative ones. Exponents of 1 (-1 after the "/") are not written.
WbString ComposeSymbol(const ZmUnitDim& dim, const ZmUnitSystem& system, float factor) {
  WbString text;
  int positives = 0;
  bool anyNegative = false;
  for (int t = 0; t < kTypeCount; ++t) {
    const long long num = dim.GetNumerator(TypeAt(t));
    const long long den = dim.GetDenominator(TypeAt(t));
    if (num < 0) anyNegative = true;
    if (num <= 0) continue;
    if (positives++ > 0) text += L'.';
    text += UnitSymbol(system, t);
    if (num != den) text += den == 1 ? WbString::Formatted(L"%lld", num) : WbString::Formatted(L"%lld/%lld", num, den);
  }
  if (!anyNegative) {
    if (factor != 1.0f) text += WbString::Formatted(L"* %g", static_cast<double>(factor));
    return text;
  }
  if (positives == 0) text += WbString::Formatted(L"%g", static_cast<double>(factor));
  text += L'/';
  int negatives = 0;
  for (int t = 0; t < kTypeCount; ++t) {
    const long long num = dim.GetNumerator(TypeAt(t));
    const long long den = dim.GetDenominator(TypeAt(t));
    if (num >= 0) continue;
    if (negatives++ > 0) text += L'.';
    text += UnitSymbol(system, t);
    if (num == -den) continue;
    // A fractional exponent reads denominator first: -1/2 is written (2/-1).
    text += den == 1 ? WbString::Formatted(L"%lld", -num) : WbString::Formatted(L"(%lld/%lld)", den, num);
  }
  return text;
}

// Bit t is set when the dimension or one of its components has an exponent for type t: the
// types whose units appear in the dimension's symbols.
unsigned InvolvedTypes(const ZmUnitDim& dim) {
  unsigned mask = 0;
  for (int t = 0; t < kTypeCount; ++t) {
    if (dim.GetNumerator(TypeAt(t)) != 0) mask |= 1u << t;
  }
  if (dim.IsQuotient()) mask |= InvolvedTypes(*dim.GetPerNumerator()) | InvolvedTypes(*dim.GetPerDenominator());
  return mask;
}

// Calls visit(symbol, system) for every symbol of the dimension until visit returns true:
// first the catalogue equivalents of the same dimension, in catalogue order, then the
// symbols composed in every combination of catalogue units over the involved types (the
// other types -1 for length, mass and time, 0 for temperature and angle), the last involved
// type varying fastest. Returns whether visit stopped the search.
template <class Visit>
bool VisitSymbols(const ZmUnitDim& dim, Visit&& visit) {
  for (std::uint64_t i = 0; i < ZmUnitMgr.GetEquivalentUnitCount(); ++i) {
    const ZmUnitManager::UnitEquivName* unit = ZmUnitMgr.GetEquivalentUnit(i);
    if ((unit->dim == dim) && visit(unit->name, unit->system)) return true;
  }
  const unsigned involved = InvolvedTypes(dim);
  int index[kTypeCount] = {-1, -1, -1, 0, 0};
  for (int t = 0; t < kTypeCount; ++t) {
    if (involved & (1u << t)) index[t] = 0;
  }
  for (;;) {
    const ZmUnitSystem system(static_cast<_ZmUnitLength>(index[0]), static_cast<_ZmUnitMass>(index[1]),
                              static_cast<_ZmUnitTime>(index[2]), static_cast<_ZmUnitTemp>(index[3]),
                              static_cast<_ZmUnitAngle>(index[4]));
    const WbString symbol = dim.GetShortName(system, 1.0f, 0);
    if (!symbol.IsEmpty() && visit(symbol, system)) return true;
    int t = kTypeCount - 1;
    for (; t >= 0; --t) {
      if (!(involved & (1u << t))) continue;
      if (++index[t] < ZmUnitMgr.GetUnitCount(TypeAt(t))) break;
      index[t] = 0;
    }
    if (t < 0) return false;
  }
}

}  // namespace

WbString ZmUnitDim::GetDimName(const ZmUnitSystem* system) const try {
  const zm::BoundaryCall boundary;
  if (IsQuotient()) {
    return WbLocalizeStringVW(L"%s per %s", perNumerator->GetDimName(system).GetString(),
                              perDenominator->GetDimName(system).GetString());
  }
  if (!system || !system->IsValid(1)) return templDimName;
  return templDimName + WbString::Formatted(L" [%s]", GetShortName(*system, 1.0f, 1).GetString());
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

WbString ZmUnitDim::GetShortName(const ZmUnitSystem& system, float factor, unsigned char useEquivalent) const try {
  const zm::BoundaryCall boundary;
  WbString name;
  if (useEquivalent && ZmUnitMgr.FindEquivalentUnit(*this, system, name, factor)) return name;
  if (IsQuotient()) {
    return perNumerator->GetShortName(system, 1.0f, 1) + WbString(L"/") + perDenominator->GetShortName(system, 1.0f, 1);
  }
  return ComposeSymbol(*this, system, factor);
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

std::uint64_t ZmUnitDim::GetAllShortNames(WbObjectArrayTempl<WbString>& names) const try {
  const zm::BoundaryCall boundary;
  names.RemoveAll();
  std::set<std::wstring> seen;
  VisitSymbols(*this, [&](const WbString& symbol, const ZmUnitSystem&) {
    if (seen.insert(symbol.Std()).second) names.Add(new WbString(symbol));
    return false;
  });
  return names.GetSize();
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  names.RemoveAll();
  return 0;
}

const WbErrObj* ZmUnitDim::GetSystemFromShortName(const WbString& name, ZmUnitSystem& system) const try {
  const zm::BoundaryCall boundary;
  const bool found = VisitSymbols(*this, [&](const WbString& symbol, const ZmUnitSystem& candidate) {
    if (symbol != name) return false;
    system = candidate;
    return true;
  });
  if (found) return nullptr;
  return WbSetError(WbLocalizeStringExW(L"'%s' is not a supported %s unit name", 0), name.GetString(),
                    GetDimName(nullptr).GetString());
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return zm::OutOfMemoryError();
}
