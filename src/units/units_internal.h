#pragma once

// Shared by the sources of the unit classes; not part of the public interface.
#include <cmath>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmUnitDim.h"

namespace zm {
namespace units {

constexpr int kTypeCount = 5;

// Units per type in the built-in catalogue. Validity of a system is tested against these
// fixed sizes, not against the current catalogue.
constexpr int kCatalogueSize[kTypeCount] = {6, 9, 3, 4, 2};

inline bool IsTypeInRange(_ZmUnitType type) { return static_cast<unsigned>(type) < kTypeCount; }
inline _ZmUnitType TypeAt(int t) { return static_cast<_ZmUnitType>(t); }

constexpr int kMaxRepeatedExponent = 64;
// value scaled by factor raised to num/den: pow with the exponent quotient in T when den is
// 2 or more, otherwise repeated multiplications (num > 0) or divisions (num < 0), so that
// integer powers carry no error from pow.
template <class T>
T ApplyExponent(T value, T factor, int num, int den) {
  if (den >= 2) return std::pow(factor, T(num) / T(den)) * value;
  // No physical dimension has an exponent near 64: beyond it (a saturated exponent, say) the
  // power is taken by pow, so that the cost stays that of an ordinary exponent.
  if (num > kMaxRepeatedExponent || num < -kMaxRepeatedExponent) return std::pow(factor, T(num)) * value;
  for (int i = 0; i < num; ++i) value *= factor;
  for (int i = 0; i > num; --i) value /= factor;
  return value;
}

}  // namespace units
}  // namespace zm

// "Velocity Square" (2, 0, -2, 0, 0): a global of the library that is not exported.
extern const ZmUnitDim& ZmUnitDimVelocitySquare;
