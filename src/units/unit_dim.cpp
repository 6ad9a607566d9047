// ZmUnitDim: construction, ownership of the quotient components, exponent arithmetic and
// value scaling.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <exception>
#include <memory>
#include <utility>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "units/units_internal.h"
#include "zemcalc/ZmUnitDim.h"

ZM_BUILD_INFO(unit_dim)

using zm::units::kTypeCount;

namespace {
// Exponent arithmetic saturates: a part that would leave the int range becomes INT_MAX or
// INT_MIN instead of wrapping (no real dimension comes near; a wrapped exponent would flip sign).
int Saturated(std::int64_t value) {
  return static_cast<int>(std::min<std::int64_t>(std::max<std::int64_t>(value, INT_MIN), INT_MAX));
}
// a * b + c * d with every part an int: the products fit in 64 bits; their sum is saturated
// before it could overflow.
int SaturatedSumOfProducts(int a, int b, int c, int d) {
  const std::int64_t p = std::int64_t(a) * b, q = std::int64_t(c) * d;
  if (p > 0 && q > INT64_MAX - p) return INT_MAX;
  if (p < 0 && q < INT64_MIN - p) return INT_MIN;
  return Saturated(p + q);
}
}  // namespace

ZmUnitDim::ZmUnitDim()
    : numerators{0, 0, 0, 0, 0}, denominators{1, 1, 1, 1, 1}, perNumerator(nullptr), perDenominator(nullptr) {}

ZmUnitDim::ZmUnitDim(const wchar_t* name, int length, int mass, int time, int temp, int angle)
    : numerators{length, mass, time, temp, angle},
      denominators{1, 1, 1, 1, 1},
      templDimName(name),
      perNumerator(nullptr),
      perDenominator(nullptr) {}

ZmUnitDim::ZmUnitDim(const ZmUnitDim& a, const ZmUnitDim& b)
    : templDimName(WbString::Formatted(L"%s per %s", a.templDimName.GetString(), b.templDimName.GetString())),
      perNumerator(nullptr),
      perDenominator(nullptr) {
  // Both parts are made before either is kept: a failure to allocate leaks neither.
  std::unique_ptr<ZmUnitDim> numerator(new ZmUnitDim(a)), denominator(new ZmUnitDim(b));
  perNumerator = numerator.release();
  perDenominator = denominator.release();
  for (int t = 0; t < kTypeCount; ++t) {
    if (a.denominators[t] == 1 && b.denominators[t] == 1) {
      numerators[t] = Saturated(std::int64_t(a.numerators[t]) - b.numerators[t]);
      denominators[t] = 1;
    } else {
      // The fractional branch adds the second exponent: kept as established.
      numerators[t] = SaturatedSumOfProducts(a.numerators[t], b.denominators[t], a.denominators[t], b.numerators[t]);
      denominators[t] = SaturatedSumOfProducts(a.denominators[t], b.denominators[t], 0, 0);
    }
  }
}

ZmUnitDim::ZmUnitDim(const ZmUnitDim& other)
    : templDimName(other.templDimName), perNumerator(nullptr), perDenominator(nullptr) {
  for (int t = 0; t < kTypeCount; ++t) {
    numerators[t] = other.numerators[t];
    denominators[t] = other.denominators[t];
  }
}

ZmUnitDim& ZmUnitDim::operator=(const ZmUnitDim& other) {
  // Components are plain dimensions, so the copy constructor copies them completely. Every
  // copy is made before anything of this dimension changes: self-assignment is harmless, and a
  // failure to allocate leaves this dimension as it was and leaks nothing.
  std::unique_ptr<ZmUnitDim> numerator(other.perNumerator ? new ZmUnitDim(*other.perNumerator) : nullptr);
  std::unique_ptr<ZmUnitDim> denominator(other.perDenominator ? new ZmUnitDim(*other.perDenominator) : nullptr);
  WbString name = other.templDimName;
  delete perNumerator;
  delete perDenominator;
  perNumerator = numerator.release();
  perDenominator = denominator.release();
  for (int t = 0; t < kTypeCount; ++t) {
    numerators[t] = other.numerators[t];
    denominators[t] = other.denominators[t];
  }
  templDimName = std::move(name);
  return *this;
}

ZmUnitDim::~ZmUnitDim() {
  delete perNumerator;
  delete perDenominator;
}

ZmUnitDim ZmUnitDim::operator+(const ZmUnitDim& other) const {
  ZmUnitDim result;
  result = *this;
  result.templDimName.Empty();
  const ZmUnitDim& addend = other.perNumerator ? *other.perNumerator : other;
  ZmUnitDim& target = result.perNumerator ? *result.perNumerator : result;
  for (int t = 0; t < kTypeCount; ++t) {
    target.numerators[t] = Saturated(std::int64_t(target.numerators[t]) + addend.numerators[t]);
  }
  return result;
}

// Deliberately the same operation as operator+: dimensions are combined by adding exponents.
ZmUnitDim ZmUnitDim::operator-(const ZmUnitDim& other) const { return *this + other; }

unsigned char ZmUnitDim::operator==(const ZmUnitDim& other) const {
  for (int t = 0; t < kTypeCount; ++t) {
    if (numerators[t] != other.numerators[t] || denominators[t] != other.denominators[t]) return 0;
  }
  return 1;
}

unsigned char ZmUnitDim::IsNeutral() const {
  for (int t = 0; t < kTypeCount; ++t) {
    if (numerators[t] != 0) return 0;
  }
  return 1;
}

void ZmUnitDim::SetTypeDimension(_ZmUnitType type, int numerator, int denominator) {
  if (!zm::units::IsTypeInRange(type)) return;
  numerators[type] = numerator;
  denominators[type] = denominator;
}

void ZmUnitDim::SetTemplDimName(const wchar_t* name) { templDimName = name; }

WbString ZmUnitDim::GetTemplDimName() const try {
  const zm::BoundaryCall boundary;
  return templDimName;
} catch (const std::exception&) {
  if (zm::BoundaryCall::Nested()) throw;
  return WbString();
}

namespace {
template <class T>
T Scale(T value, T factor, int num, int den) {
  // A unit without a factor cannot be converted: the value stays as it is.
  if (num != 0 && factor == zm::Invalid<T>()) return value;
  return zm::units::ApplyExponent(value, factor, num, den);
}
}  // namespace

float ZmUnitDim::ScaleValue(float value, float factor, _ZmUnitType type) const {
  if (!zm::units::IsTypeInRange(type)) return value;
  return Scale(value, factor, numerators[type], denominators[type]);
}

double ZmUnitDim::ScaleValue(double value, double factor, _ZmUnitType type) const {
  if (!zm::units::IsTypeInRange(type)) return value;
  return Scale(value, factor, numerators[type], denominators[type]);
}
