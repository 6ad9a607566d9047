// Helpers shared by the geometry tests: the twin list, the invalid marker, values that differ by
// twin, and curves written as (x, y) lists.
#pragma once

#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <cstdint>
#include <utility>
#include <vector>

namespace geomtest {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened
using Scalars = ::testing::Types<double, float>;
using Ints = std::vector<int>;
// Short names for the double twin where a test is not typed.
using P2 = ZmPoint2d;
using P3 = ZmPoint3d;
using V3 = ZmVector3d;

template <class T>
constexpr bool kIsFloat = sizeof(T) == sizeof(float);

// An expected value per twin: one number (rounded to float for the float twin), or two where
// the twins compute different bits.
struct Twin {
  double d;
  float f;
  Twin(double v) : d(v), f(float(v)) {}  // NOLINT: a single value stands for both twins
  Twin(double dv, float fv) : d(dv), f(fv) {}
  template <class T>
  T Get() const {
    return kIsFloat<T> ? T(f) : T(d);
  }
};

using XY = std::vector<std::pair<double, double>>;

template <class T>
WbArrayTempl<ZmPoint2T<T>> Curve(const XY& xy) {
  WbArrayTempl<ZmPoint2T<T>> c;
  for (const auto& p : xy) c.Add(ZmPoint2T<T>(T(p.first), T(p.second)));
  return c;
}

// The points as (x, y) pairs, for comparing whole curves in one check, and expected pairs
// rounded to the twin's precision.
template <class T>
XY Pairs(const WbArrayTempl<ZmPoint2T<T>>& c) {
  XY v;
  for (const auto& p : c) v.emplace_back(p.x, p.y);
  return v;
}
template <class T>
XY Rounded(const XY& xy) {
  return Pairs(Curve<T>(xy));
}

template <class T>
std::vector<T> Values(const WbArrayTempl<T>& a) {
  return std::vector<T>(a.begin(), a.end());
}

}  // namespace geomtest

// A typed test suite run once per twin.
#define GEOM_TWIN_SUITE(Name)             \
  template <class T>                      \
  class Name : public ::testing::Test {}; \
  TYPED_TEST_SUITE(Name, ::geomtest::Scalars)
