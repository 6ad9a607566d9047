#pragma once

// The arithmetic shared by the point and vector classes of both dimensions and precisions.
//
// ZmCoordOps<Derived, Base> sits between a base coordinate (WbCoord2DT / WbCoord3DT) and
// the point or vector class, adds no field and no virtual function, and implements every
// operator once for all eight classes. Operands may be of either precision; a 3D class also
// accepts 2D operands, whose missing z counts as 0. A mixed operation is computed as the
// language computes `c op= s` (in the wider type) and rounded back to the class's scalar
// through zm::ConvertScalar, so the float classes round alike in every caller's build.
#include <type_traits>

#include <wbcore/WbCoord.h>

#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmExport.h"

template <class T>
class ZMCALC_API_FORWARD ZmPoint2T;
template <class T>
class ZMCALC_API_FORWARD ZmVector2T;
template <class T>
class ZMCALC_API_FORWARD ZmPoint3T;
template <class T>
class ZMCALC_API_FORWARD ZmVector3T;

namespace zm {

template <class C>
using Decay = std::remove_cv_t<std::remove_reference_t<C>>;

template <class C>
constexpr bool IsCoord2D = std::is_base_of<WbCoord2DT<double>, Decay<C>>::value ||
                           std::is_base_of<WbCoord2DT<float>, Decay<C>>::value;
template <class C>
constexpr bool IsCoord3D = std::is_base_of<WbCoord3DT<double>, Decay<C>>::value ||
                           std::is_base_of<WbCoord3DT<float>, Decay<C>>::value;

template <class C>
struct IsVectorClass : std::false_type {};
template <class T>
struct IsVectorClass<ZmVector2T<T>> : std::true_type {};
template <class T>
struct IsVectorClass<ZmVector3T<T>> : std::true_type {};

// Component i of any coordinate; a 2D coordinate has z = 0.
template <class U>
constexpr U Component(const WbCoord2DT<U>& c, int i) {
  return i == 0 ? c.x : (i == 1 ? c.y : U(0));
}
template <class U>
constexpr U Component(const WbCoord3DT<U>& c, int i) {
  return i == 0 ? c.x : (i == 1 ? c.y : c.z);
}
template <class U>
constexpr U& Component(WbCoord2DT<U>& c, int i) {
  return i == 0 ? c.x : c.y;
}
template <class U>
constexpr U& Component(WbCoord3DT<U>& c, int i) {
  return i == 0 ? c.x : (i == 1 ? c.y : c.z);
}

// What `a + b` and `a - b` give: a point plus or minus a vector is a point, a point combined
// with any other location is a vector (difference or component-wise sum), and a vector with
// anything stays a vector.
template <class Left, class Right>
struct SumResult {
  using type = Left;
};
template <class T, class Right>
struct SumResult<ZmPoint3T<T>, Right> {
  using type = std::conditional_t<IsVectorClass<Decay<Right>>::value, ZmPoint3T<T>, ZmVector3T<T>>;
};
template <class T, class Right>
struct SumResult<ZmPoint2T<T>, Right> {
  using type = std::conditional_t<IsVectorClass<Decay<Right>>::value, ZmPoint2T<T>, ZmVector2T<T>>;
};

}  // namespace zm

template <class Derived, class Base>
class ZMCALC_API ZmCoordOps : public Base {
public:
  using Scalar = typename Base::Scalar;
  using T = Scalar;
  static constexpr int kDimension = Base::kDimension;

  // Operands accepted where the class takes "any point, vector or coordinate".
  template <class C>
  static constexpr bool kAcceptsOperand = zm::IsCoord2D<C> || (kDimension == 3 && zm::IsCoord3D<C>);
  template <class C>
  using EnableIfOperand = std::enable_if_t<kAcceptsOperand<C>, int>;

  constexpr ZmCoordOps() = default;
  constexpr explicit ZmCoordOps(const Base& b) : Base(b) {}

  // --- compound assignment
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived& operator+=(S s) {
    return Apply([s](T& c, int) { c = zm::ConvertScalar<T>(c + s); });
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived& operator-=(S s) {
    return Apply([s](T& c, int) { c = zm::ConvertScalar<T>(c - s); });
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived& operator*=(S s) {
    return Apply([s](T& c, int) { c = zm::ConvertScalar<T>(c * s); });
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived& operator/=(S s) {
    return Apply([s](T& c, int) { c = zm::ConvertScalar<T>(c / s); });
  }
  template <class C, EnableIfOperand<C> = 0>
  Derived& operator+=(const C& o) {
    return Apply([&o](T& c, int i) { c = zm::ConvertScalar<T>(c + zm::Component(o, i)); });
  }
  template <class C, EnableIfOperand<C> = 0>
  Derived& operator-=(const C& o) {
    return Apply([&o](T& c, int i) { c = zm::ConvertScalar<T>(c - zm::Component(o, i)); });
  }
  template <class C, EnableIfOperand<C> = 0>
  Derived& operator*=(const C& o) {
    return Apply([&o](T& c, int i) { c = zm::ConvertScalar<T>(c * zm::Component(o, i)); });
  }

  // --- two operands; the result has the left operand's class (see zm::SumResult for + and -)
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived operator+(S s) const {
    return Derived(Self()) += s;
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived operator-(S s) const {
    return Derived(Self()) -= s;
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived operator*(S s) const {
    return Derived(Self()) *= s;
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  Derived operator/(S s) const {
    return Derived(Self()) /= s;
  }
  template <class C, EnableIfOperand<C> = 0>
  typename zm::SumResult<Derived, C>::type operator+(const C& o) const {
    typename zm::SumResult<Derived, C>::type r(Self());
    return r += o;
  }
  template <class C, EnableIfOperand<C> = 0>
  typename zm::SumResult<Derived, C>::type operator-(const C& o) const {
    typename zm::SumResult<Derived, C>::type r(Self());
    return r -= o;
  }
  // Component-wise product, never a dot product.
  template <class C, EnableIfOperand<C> = 0>
  Derived operator*(const C& o) const {
    return Derived(Self()) *= o;
  }
  Derived operator-() const {
    Derived r(Self());
    return r.Apply([](T& c, int) { c = -c; });
  }

  // --- comparisons: == and != are exact; the ordering compares squared distances from the
  // origin, so two different points at the same distance are neither < nor > each other.
  unsigned char operator==(const Derived& o) const {
    for (int i = 0; i < kDimension; ++i) {
      if (!(zm::Component(*this, i) == zm::Component(o, i))) return 0;
    }
    return 1;
  }
  unsigned char operator!=(const Derived& o) const { return (*this == o) ? 0 : 1; }
  unsigned char operator<(const Derived& o) const { return SquaredNorm() < o.SquaredNorm() ? 1 : 0; }
  unsigned char operator<=(const Derived& o) const { return SquaredNorm() <= o.SquaredNorm() ? 1 : 0; }
  unsigned char operator>(const Derived& o) const { return SquaredNorm() > o.SquaredNorm() ? 1 : 0; }
  unsigned char operator>=(const Derived& o) const { return SquaredNorm() >= o.SquaredNorm() ? 1 : 0; }

  // --- scalar on the left: s + p, s - p (s minus each component), s * p, s / p (s divided
  // by each component)
  template <class S, zm::EnableIfScalar<S> = 0>
  friend Derived operator+(S s, const Derived& p) {
    return p + s;
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  friend Derived operator-(S s, const Derived& p) {
    Derived r(p);
    return r.Apply([s](T& c, int) { c = zm::ConvertScalar<T>(s - c); });
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  friend Derived operator*(S s, const Derived& p) {
    Derived r(p);
    return r.Apply([s](T& c, int) { c = zm::ConvertScalar<T>(s * c); });
  }
  template <class S, zm::EnableIfScalar<S> = 0>
  friend Derived operator/(S s, const Derived& p) {
    Derived r(p);
    return r.Apply([s](T& c, int) { c = zm::ConvertScalar<T>(s / c); });
  }

  // x*x + y*y (+ z*z) in the class's precision.
  T SquaredNorm() const {
    T sum = 0;
    for (int i = 0; i < kDimension; ++i) sum += zm::Component(*this, i) * zm::Component(*this, i);
    return sum;
  }

protected:
  const Derived& Self() const { return static_cast<const Derived&>(*this); }
  template <class F>
  Derived& Apply(F f) {
    for (int i = 0; i < kDimension; ++i) f(zm::Component(static_cast<Base&>(*this), i), i);
    return static_cast<Derived&>(*this);
  }
};

// The members shared by the 2D and 3D vectors of both precisions.
template <class Derived, class Base>
class ZMCALC_API ZmVectorOps : public ZmCoordOps<Derived, Base> {
  using Ops = ZmCoordOps<Derived, Base>;

public:
  using T = typename Base::Scalar;
  using Ops::Ops;

  T lengthSquared() const { return this->SquaredNorm(); }
  T length() const { return zm::Sqrt(lengthSquared()); }
  T dot(const Derived& o) const {
    T sum = 0;
    for (int i = 0; i < Ops::kDimension; ++i) sum += zm::Component(*this, i) * zm::Component(o, i);
    return sum;
  }
  void negate() { this->Apply([](T& c, int) { c = -c; }); }
  void scale(T f) { *this *= f; }
  void scaleX(T f) { this->x *= f; }
  void scaleY(T f) { this->y *= f; }

  // Divides by the length when the vector is valid and longer than |tol| (strictly); returns
  // 1, or 0 with the vector unchanged. The float twin multiplies by the reciprocal length.
  unsigned char unitize(T tol);
  // Rescales to the given length; fails (0, unchanged) like unitize with a tolerance of 0,
  // that is for an invalid or zero vector.
  unsigned char setLength(T newLength);
  // 1 when tol >= the length rounded to float: a tolerance of 0 accepts only the zero vector.
  unsigned char isNull(T tol) const;
  // The unit vector of this vector, or the invalid vector when it has none (invalid or zero).
  Derived GetDirection() const;
  // Opposite vectors are parallel. Either vector no longer than 1.0e-6 (its length rounded to
  // float) is parallel to nothing. tolDeg equal to the invalid marker selects the tolerance-free
  // test (|cross| rounded to float <= 1.0e-6); angleOut is then left unwritten. Otherwise
  // angleOut receives min(a, 180 - a) and the test is a < tolDeg or a > 180 - tolDeg.
  unsigned char IsParallelTo(const Derived& other, T tolDeg = zm::Invalid<T>(), T* angleOut = nullptr) const;
  // Same scheme: with the invalid marker |dot| < 1.0e-6; otherwise angleOut receives |90 - a|
  // and the test is 90 - tolDeg < a < 90 + tolDeg.
  unsigned char IsOrthogonalTo(const Derived& other, T tolDeg = zm::Invalid<T>(), T* angleOut = nullptr) const;
  // Angle between this and other in degrees (0 to 180), from the cosine clamped to [-1, 1];
  // the invalid marker when either vector is invalid or of zero length.
  T AngleDegTo(const Derived& other) const;
};
