#pragma once

// What the math suites share: the twin list, the invalid marker, bit comparison, messages.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace math_test {

using Scalars = ::testing::Types<double, float>;

template <class T>
using Math = ZmMathT<T>;

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

template <class T>
constexpr bool kIsDouble = std::is_same<T, double>::value;

// The value a row gives for each twin.
template <class T>
T ByTwin(double inDouble, double inFloat) {
  return kIsDouble<T> ? T(inDouble) : T(inFloat);
}

template <class T>
const T kNan = std::numeric_limits<T>::quiet_NaN();

template <class T>
using Curve = WbArrayTempl<ZmPoint2T<T>>;
template <class T>
using Line = WbArrayTempl<ZmPoint3T<T>>;

// The curve of points (x[i], y[i]).
template <class T>
Curve<T> Sampled(const std::vector<double>& x, const std::vector<double>& y) {
  Curve<T> c;
  for (std::size_t i = 0; i < x.size(); ++i) c.Add(ZmPoint2T<T>(T(x[i]), T(y[i])));
  return c;
}

// n samples of f at i * step.
template <class T, class F>
Curve<T> Regular(int n, double step, F f) {
  Curve<T> c;
  for (int i = 0; i < n; ++i) c.Add(ZmPoint2T<T>(T(i * step), T(f(i * step))));
  return c;
}

template <class T>
ZmPoint3T<T> InvalidPoint() {
  return ZmPoint3T<T>(WbCoord3DT<T>::INVALID);
}

template <class T>
bool SameBits(T a, T b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

// The message of an error, or a text that no expected message equals.
inline std::wstring Message(const WbErrObj* error) { return error ? error->GetMessage() : L"(no error)"; }

// Rows of (computed, expected) compared exactly; the row number names a failure.
template <class T>
void ExpectRows(std::initializer_list<std::pair<T, T>> rows) {
  int row = 0;
  for (const auto& r : rows) EXPECT_EQ(r.first, r.second) << "row " << row++;
}

// Rows of (computed, expected) within tol.
template <class T>
void ExpectNearRows(double tol, std::initializer_list<std::pair<T, double>> rows) {
  int row = 0;
  for (const auto& r : rows) EXPECT_NEAR(double(r.first), r.second, tol) << "row " << row++;
}

// Every computed value equals the one expected value (a sentinel, most often).
template <class T, class U>
void ExpectAll(std::initializer_list<T> values, const U& expected) {
  int row = 0;
  for (const T& v : values) EXPECT_EQ(v, expected) << "row " << row++;
}

}  // namespace math_test

// A typed suite over both twins.
#define MATH_TWIN_SUITE(Name)             \
  template <class T>                      \
  class Name : public ::testing::Test {}; \
  TYPED_TEST_SUITE(Name, ::math_test::Scalars)

// The twin's types, opening a typed test: T, its statics M, points P, vectors V and V2, matrices R.
#define MATH_TWIN_TYPES                      \
  using T = TypeParam;                       \
  using M [[maybe_unused]] = ZmMathT<T>;     \
  using P [[maybe_unused]] = ZmPoint3T<T>;   \
  using V [[maybe_unused]] = ZmVector3T<T>;  \
  using V2 [[maybe_unused]] = ZmVector2T<T>; \
  using R [[maybe_unused]] = ZmMatrix3T<T>
