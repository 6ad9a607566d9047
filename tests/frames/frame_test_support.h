#pragma once

// Shared helpers of the frame tests: component-wise closeness and random orthonormal frames.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <random>
#include <utility>

namespace frame_test {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

using Scalars = ::testing::Types<double, float>;

// Rows of (computed, expected) compared exactly; the row number names a failure.
template <class T>
void ExpectRows(std::initializer_list<std::pair<T, T>> rows) {
  int row = 0;
  for (const auto& r : rows) EXPECT_EQ(r.first, r.second) << "row " << row++;
}

// Every computed value equals the one expected value.
template <class T, class U>
void ExpectAll(std::initializer_list<T> values, const U& expected) {
  int row = 0;
  for (const T& v : values) EXPECT_EQ(v, expected) << "row " << row++;
}

// |a_i - b_i| <= tol for each component.
template <class A, class B>
::testing::AssertionResult Near(const A& a, const B& b, double tol) {
  for (int i = 0; i < A::kDimension; ++i) {
    const double d = std::fabs(double(zm::Component(a, i)) - double(zm::Component(b, i)));
    if (!(d <= tol)) {
      return ::testing::AssertionFailure() << "component " << i << ": " << double(zm::Component(a, i)) << " vs "
                                           << double(zm::Component(b, i)) << " (tolerance " << tol << ")";
    }
  }
  return ::testing::AssertionSuccess();
}

// Column by column.
template <class A, class B>
::testing::AssertionResult NearMatrix(const A& a, const B& b, double tol) {
  for (int j = 0; j < 3; ++j) {
    const auto result = Near(a.GetColumn(j), b.GetColumn(j), tol);
    if (!result) return ::testing::AssertionFailure() << "column " << j << ", " << result.message();
  }
  return ::testing::AssertionSuccess();
}

// The axes (columns) of a frame are x, y and z within tol (0: exactly).
template <class F, class V>
::testing::AssertionResult HasAxes(const F& frame, const V& x, const V& y, const V& z, double tol) {
  const V expected[3] = {x, y, z};
  for (int j = 0; j < 3; ++j) {
    const auto result = Near(frame.GetVector(j), expected[j], tol);
    if (!result) return ::testing::AssertionFailure() << "axis " << j << ", " << result.message();
  }
  return ::testing::AssertionSuccess();
}

// Relative closeness used by the round trips: 1e-12 in double, 1e-5 in float.
template <class T>
constexpr double kRoundTrip = sizeof(T) == sizeof(double) ? 1e-12 : 1e-5;

// A uniformly drawn rotation (a normalised Gaussian quaternion) and an origin in [-50, 50]^3.
template <class T>
ZmFrameT<T> RandomFrame(std::mt19937& rng, ZmFrameType type) {
  std::normal_distribution<double> gauss;
  std::uniform_real_distribution<double> place(-50, 50);
  ZmQuaterniond q(gauss(rng), gauss(rng), gauss(rng), gauss(rng));
  q.Normalise();
  const ZmMatrix3d r = q.ToRotationMatrix();
  const ZmPoint3d origin(place(rng), place(rng), place(rng));
  return ZmFrameT<T>(ZmVector3T<T>(r.GetColumn(0)), ZmVector3T<T>(r.GetColumn(1)), ZmVector3T<T>(r.GetColumn(2)),
                     ZmPoint3T<T>(origin), type);
}

template <class T>
ZmPoint3T<T> RandomPoint(std::mt19937& rng, double range) {
  std::uniform_real_distribution<double> place(-range, range);
  return ZmPoint3T<T>(place(rng), place(rng), place(rng));
}

// The largest magnitude among the components of the points, and 1.
template <class... P>
double Scale(const P&... points) {
  double s = 1;
  for (const auto& p : {ZmPoint3d(points)...}) s = std::max({s, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
  return s;
}

}  // namespace frame_test

// A typed suite over both twins.
#define FRAME_TWIN_SUITE(Name)            \
  template <class T>                      \
  class Name : public ::testing::Test {}; \
  TYPED_TEST_SUITE(Name, ::frame_test::Scalars)

// FRAME_TWIN_TEST(Suite, Name) { body } runs the body for each twin of the suite, with T its
// scalar, P, V, M and F its point, vector, matrix and frame, nan, inf and the invalid point.
#define FRAME_TWIN_TEST(Suite, Name)                                   \
  template <class T>                                                   \
  struct Suite##_##Name##_Twin {                                       \
    using P = ZmPoint3T<T>;                                            \
    using V = ZmVector3T<T>;                                           \
    using M = ZmMatrix3T<T>;                                           \
    using F = ZmFrameT<T>;                                             \
    static constexpr T nan = std::numeric_limits<T>::quiet_NaN();      \
    static constexpr T inf = std::numeric_limits<T>::infinity();       \
    static inline const P invalid = P(WbCoord3DT<T>::INVALID);         \
    static void Run();                                                 \
  };                                                                   \
  TYPED_TEST(Suite, Name) { Suite##_##Name##_Twin<TypeParam>::Run(); } \
  template <class T>                                                   \
  void Suite##_##Name##_Twin<T>::Run()
