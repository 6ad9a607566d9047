#pragma once

// Angles that carry their unit: ZmDegreed / ZmRadiand and their float twins ZmDegreef /
// ZmRadianf, one scalar each.
//
// Converting between the units multiplies by the float values of pi/180
// (0.01745329238474369) and 180/pi (57.2957763671875), widened in the double classes, so that
// both precisions convert alike. A round trip is therefore not exact in the last bits:
// 180 degrees become 3.1415926292538643 radians, not pi.
//
// The value converts implicitly to its scalar, but a scalar becomes an angle only explicitly,
// and angles of different units never compare with each other (convert first).
#include <type_traits>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"

namespace zm {
enum class AngleUnit { Degree, Radian };
}

template <class T, zm::AngleUnit Unit>
class ZMCALC_API ZmAngleT {
public:
  static_assert(std::is_floating_point<T>::value, "angles are float or double");
  using Scalar = T;
  using Other = ZmAngleT<T, Unit == zm::AngleUnit::Degree ? zm::AngleUnit::Radian : zm::AngleUnit::Degree>;

  constexpr ZmAngleT() = default;
  template <class S, zm::EnableIfScalar<S> = 0>
  constexpr explicit ZmAngleT(S value) : m_value(zm::ConvertScalar<T>(value)) {}
  // The other precision of the same unit: the value as it is (rounded to nearest for float).
  template <class U>
  constexpr ZmAngleT(const ZmAngleT<U, Unit>& other) : m_value(zm::ConvertScalar<T>(U(other))) {}
  // The other unit: converted.
  template <class U>
  constexpr explicit ZmAngleT(
      const ZmAngleT<U, Unit == zm::AngleUnit::Degree ? zm::AngleUnit::Radian : zm::AngleUnit::Degree>& other)
      : m_value(FromOther(zm::ConvertScalar<T>(U(other)))) {}

  template <class S, zm::EnableIfScalar<S> = 0>
  ZmAngleT& operator=(S value) {
    m_value = zm::ConvertScalar<T>(value);
    return *this;
  }
  ZmAngleT& operator=(const Other& other) {
    m_value = FromOther(T(other));
    return *this;
  }

  constexpr operator T() const { return m_value; }
  constexpr T AngleInDegrees() const { return Unit == zm::AngleUnit::Degree ? m_value : m_value * RadToDeg(); }
  constexpr T AngleInRadians() const { return Unit == zm::AngleUnit::Radian ? m_value : m_value * DegToRad(); }

  constexpr ZmAngleT operator+(const ZmAngleT& o) const { return ZmAngleT(m_value + o.m_value); }
  constexpr ZmAngleT operator-(const ZmAngleT& o) const { return ZmAngleT(m_value - o.m_value); }
  constexpr ZmAngleT operator+(const Other& o) const { return ZmAngleT(m_value + FromOther(T(o))); }
  constexpr ZmAngleT operator-(const Other& o) const { return ZmAngleT(m_value - FromOther(T(o))); }
  ZmAngleT& operator+=(const ZmAngleT& o) { return *this = *this + o; }
  ZmAngleT& operator-=(const ZmAngleT& o) { return *this = *this - o; }
  ZmAngleT& operator+=(const Other& o) { return *this = *this + o; }
  ZmAngleT& operator-=(const Other& o) { return *this = *this - o; }
  // The product of the two stored values (an angle times an angle), as the unit algebra of
  // callers expects it.
  constexpr ZmAngleT operator*(const ZmAngleT& o) const { return ZmAngleT(m_value * o.m_value); }
  constexpr ZmAngleT operator*(double s) const { return ZmAngleT(m_value * s); }
  constexpr ZmAngleT operator/(double s) const { return ZmAngleT(m_value / s); }
  ZmAngleT& operator*=(double s) { return *this = *this * s; }
  ZmAngleT& operator/=(double s) { return *this = *this / s; }
  constexpr ZmAngleT operator-() const { return ZmAngleT(-m_value); }
  // s times the angle, and s divided by the angle.
  friend constexpr ZmAngleT operator*(double s, const ZmAngleT& a) { return ZmAngleT(s * a.m_value); }
  friend constexpr ZmAngleT operator/(double s, const ZmAngleT& a) { return ZmAngleT(s / a.m_value); }

  constexpr unsigned char operator==(const ZmAngleT& o) const { return m_value == o.m_value ? 1 : 0; }
  constexpr unsigned char operator!=(const ZmAngleT& o) const { return m_value != o.m_value ? 1 : 0; }
  constexpr unsigned char operator<(const ZmAngleT& o) const { return m_value < o.m_value ? 1 : 0; }
  constexpr unsigned char operator<=(const ZmAngleT& o) const { return m_value <= o.m_value ? 1 : 0; }
  constexpr unsigned char operator>(const ZmAngleT& o) const { return m_value > o.m_value ? 1 : 0; }
  constexpr unsigned char operator>=(const ZmAngleT& o) const { return m_value >= o.m_value ? 1 : 0; }
  unsigned char operator==(const Other&) const = delete;
  unsigned char operator!=(const Other&) const = delete;
  unsigned char operator<(const Other&) const = delete;
  unsigned char operator<=(const Other&) const = delete;
  unsigned char operator>(const Other&) const = delete;
  unsigned char operator>=(const Other&) const = delete;

private:
  static constexpr T DegToRad() { return T(zm::kDegToRadF); }
  static constexpr T RadToDeg() { return T(zm::kRadToDegF); }
  // A value of the other unit expressed in this one.
  static constexpr T FromOther(T value) {
    return Unit == zm::AngleUnit::Degree ? value * RadToDeg() : value * DegToRad();
  }

  T m_value = 0;
};

using ZmDegreed = ZmAngleT<double, zm::AngleUnit::Degree>;
using ZmDegreef = ZmAngleT<float, zm::AngleUnit::Degree>;
using ZmRadiand = ZmAngleT<double, zm::AngleUnit::Radian>;
using ZmRadianf = ZmAngleT<float, zm::AngleUnit::Radian>;

static_assert(sizeof(ZmDegreed) == sizeof(double) && std::is_standard_layout<ZmDegreed>::value, "");
static_assert(sizeof(ZmRadianf) == sizeof(float) && std::is_standard_layout<ZmRadianf>::value, "");
