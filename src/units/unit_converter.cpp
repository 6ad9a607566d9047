// ZmUnitConverter: one prepared conversion between two unit systems.
#include <wbcore/WbLocalize.h>

#include "foundation/build_info.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitManager.h"

ZM_BUILD_INFO(unit_converter)

using zm::units::kTypeCount;
using zm::units::TypeAt;

ZmUnitConverter::ZmUnitConverter() : factor{zm::kInvalid, zm::kInvalid, zm::kInvalid, zm::kInvalid, zm::kInvalid} {}

const WbErrObj* ZmUnitConverter::InitFromTo(const ZmUnitSystem& from, const ZmUnitSystem& to, unsigned char& needed,
                                            const ZmUnitDim* dim) {
  needed = 0;
  for (int t = 0; t < kTypeCount; ++t) {
    if (dim && dim->GetNumerator(TypeAt(t)) == 0) {
      factor[t] = zm::kInvalid;  // not needed
      continue;
    }
    const int source = from.GetUnitIndex(TypeAt(t));
    const int target = to.GetUnitIndex(TypeAt(t));
    if (source == target) {
      factor[t] = 1.0f;
      continue;
    }
    factor[t] = zm::kInvalid;
    if (target < 0) return WbSetError(WbLocalizeStringExW(L"Inconsistent target unit system", 0));
    if (source < 0) return WbSetError(WbLocalizeStringExW(L"Inconsistent source unit system", 0));
    float scale = ZmUnitMgr.UnitIndex2Factor(TypeAt(t), target);
    if (scale == zm::kInvalid) {
      return WbSetError(WbLocalizeStringExW(L"Internal error : can't process unit system conversion", 0));
    }
    // A source unit without a factor (the pixel) counts as the base unit of its type.
    const float sourceFactor = ZmUnitMgr.UnitIndex2Factor(TypeAt(t), source);
    if (sourceFactor != zm::kInvalid) scale /= sourceFactor;
    factor[t] = scale;
    needed = 1;
  }
  return nullptr;
}

template <class T>
unsigned char ZmUnitConverter::ConvertScalarT(const ZmUnitDim& dim, T& value) const {
  const T invalid = zm::Invalid<T>();
  if (value == invalid) return 0;
  const T input = value;
  for (int t = 0; t < kTypeCount; ++t) {
    const int num = dim.GetNumerator(TypeAt(t));
    if (num != 0 && factor[t] == zm::kInvalid) return 0;
    // Scaling by a factor of exactly 1 is the identity in every branch: skipped.
    if (factor[t] == 1.0f) continue;
    value = zm::units::ApplyExponent(value, static_cast<T>(factor[t]), num, dim.GetDenominator(TypeAt(t)));
    if (value == invalid) return 0;
  }
  return value != input ? 1 : 0;
}

unsigned char ZmUnitConverter::ConvertScalar(const ZmUnitDim& dim, float& value) const {
  return ConvertScalarT(dim, value);
}

unsigned char ZmUnitConverter::ConvertScalar(const ZmUnitDim& dim, double& value) const {
  return ConvertScalarT(dim, value);
}

unsigned char ZmUnitConverter::IsValid(const ZmUnitDim* dim) const {
  for (int t = 0; t < kTypeCount; ++t) {
    if (factor[t] == zm::kInvalid && (!dim || dim->GetNumerator(TypeAt(t)) != 0)) return 0;
  }
  return 1;
}

unsigned char ZmUnitConverter::IsDimensionToBeConverted(const ZmUnitDim& dim) const {
  for (int t = 0; t < kTypeCount; ++t) {
    if (dim.GetNumerator(TypeAt(t)) != 0 && factor[t] != 1.0f) return 1;
  }
  return 0;
}

unsigned char ZmUnitConverter::IsUnitTypeToBeConverted(_ZmUnitType type) const {
  return zm::units::IsTypeInRange(type) && factor[type] != 1.0f ? 1 : 0;
}

float ZmUnitConverter::GetFactor(_ZmUnitType type) const {
  return zm::units::IsTypeInRange(type) ? factor[type] : zm::kInvalid;
}
