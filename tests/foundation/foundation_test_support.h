#pragma once

// What the foundation suites share: pi, the invalid marker and rows of exact comparisons.
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <initializer_list>
#include <utility>

namespace foundation_test {

constexpr double kPi = 3.141592653589793;
constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

// Rows of (computed, expected) compared exactly; the row number names a failure.
template <class T>
void ExpectRows(std::initializer_list<std::pair<T, T>> rows) {
  int row = 0;
  for (const auto& r : rows) EXPECT_EQ(r.first, r.second) << "row " << row++;
}

}  // namespace foundation_test
