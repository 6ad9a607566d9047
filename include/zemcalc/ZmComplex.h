#pragma once

// ZmComplexNumberd / ZmComplexNumberf: a real and an imaginary part. The complex product is
// spelled `^`; `*` only scales by a real, and there is no complex division.
#include <cmath>
#include <type_traits>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"

template <class T>
class ZMCALC_API ZmComplexNumberT {
public:
  static_assert(std::is_floating_point<T>::value, "complex numbers are float or double");
  using Scalar = T;

  constexpr ZmComplexNumberT() = default;
  template <class A, class B, std::enable_if_t<std::is_arithmetic<A>::value && std::is_arithmetic<B>::value, int> = 0>
  constexpr ZmComplexNumberT(A real, B imag) : m_real(zm::ConvertScalar<T>(real)), m_imag(zm::ConvertScalar<T>(imag)) {}
  template <class U>
  constexpr ZmComplexNumberT(const ZmComplexNumberT<U>& other)
      : m_real(zm::ConvertScalar<T>(other.Real())), m_imag(zm::ConvertScalar<T>(other.Imag())) {}

  constexpr T Real() const { return m_real; }
  constexpr T Imag() const { return m_imag; }
  // sqrt(imag^2 + real^2), the squares formed with pow(x, 2.0).
  T Module() const {
    return zm::Sqrt(T(zm::ConvertScalar<T>(std::pow(m_imag, 2.0)) + zm::ConvertScalar<T>(std::pow(m_real, 2.0))));
  }
  // atan2(imag, real) in radians, in (-pi, pi]. Adding +0 turns a negative-zero imaginary
  // part (a negated real number) into +0, so that the negative real axis gives +pi, never -pi.
  T Arg() const { return std::atan2(m_imag + T(0), m_real); }
  // (r cos theta, r sin theta), theta in radians.
  template <class S, class A, std::enable_if_t<std::is_arithmetic<S>::value && std::is_arithmetic<A>::value, int> = 0>
  static ZmComplexNumberT Polar(S r, A theta) {
    const T radius = zm::ConvertScalar<T>(r);
    const T angle = zm::ConvertScalar<T>(theta);
    return ZmComplexNumberT(radius * std::cos(angle), radius * std::sin(angle));
  }

  constexpr ZmComplexNumberT operator+(const ZmComplexNumberT& o) const {
    return ZmComplexNumberT(m_real + o.m_real, m_imag + o.m_imag);
  }
  constexpr ZmComplexNumberT operator-(const ZmComplexNumberT& o) const {
    return ZmComplexNumberT(m_real - o.m_real, m_imag - o.m_imag);
  }
  constexpr ZmComplexNumberT operator-() const { return ZmComplexNumberT(-m_real, -m_imag); }
  template <class S, zm::EnableIfScalar<S> = 0>
  constexpr ZmComplexNumberT operator*(S s) const {
    return ZmComplexNumberT(m_real * s, m_imag * s);
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  ZmComplexNumberT& operator*=(S s) {
    return *this = *this * s;
  }
  // The complex product: (a, b) ^ (c, d) = (ac - bd, ad + bc).
  constexpr ZmComplexNumberT operator^(const ZmComplexNumberT& o) const {
    return ZmComplexNumberT(m_real * o.m_real - m_imag * o.m_imag, m_real * o.m_imag + m_imag * o.m_real);
  }
  constexpr unsigned char operator==(const ZmComplexNumberT& o) const {
    return (m_real == o.m_real && m_imag == o.m_imag) ? 1 : 0;
  }
  constexpr unsigned char operator!=(const ZmComplexNumberT& o) const { return (*this == o) ? 0 : 1; }

private:
  T m_real = 0;
  T m_imag = 0;
};

using ZmComplexNumberd = ZmComplexNumberT<double>;
using ZmComplexNumberf = ZmComplexNumberT<float>;

static_assert(sizeof(ZmComplexNumberd) == 2 * sizeof(double) && std::is_standard_layout<ZmComplexNumberd>::value, "");
static_assert(sizeof(ZmComplexNumberf) == 2 * sizeof(float) && std::is_standard_layout<ZmComplexNumberf>::value, "");
