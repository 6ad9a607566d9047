#pragma once

// The twin list, aliases, and the reader of the committed tables (tests/reference/fitting).
#include <gtest/gtest.h>
#include <zemcalc/zemcalc.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

// Every fitting test runs once per twin.
template <class T>
class FittingTwins : public ::testing::Test {};
using Scalars = ::testing::Types<double, float>;
TYPED_TEST_SUITE(FittingTwins, Scalars);
constexpr double kPi = 3.141592653589793;

// `TWIN_NAMES;` opens a twin test: T is its TypeParam, the rest its point, list and math types.
#define TWIN_NAMES                            \
  using T = TypeParam;                        \
  using P [[maybe_unused]] = ZmPoint3T<T>;    \
  using P2 [[maybe_unused]] = ZmPoint2T<T>;   \
  using V [[maybe_unused]] = ZmVector3T<T>;   \
  using M [[maybe_unused]] = ZmMathT<T>;      \
  using L [[maybe_unused]] = WbArrayTempl<P>; \
  using L2 [[maybe_unused]] = WbArrayTempl<P2>

template <class T>
constexpr bool kIsDouble = std::is_same<T, double>::value;

// The distance between two points or vectors of one twin.
template <class P>
double Gap(const P& a, const P& b) {
  return double((a - b).length());
}

// Each computed value within tol of the expected one beside it; `where` and index name a failure.
template <class Where>
void ExpectNear(const std::vector<double>& got, const std::vector<double>& want, double tol, const Where& where) {
  ASSERT_EQ(got.size(), want.size()) << where;
  for (std::size_t k = 0; k < got.size(); ++k) EXPECT_NEAR(got[k], want[k], tol) << where << " #" << k;
}

// A record opens with "<kind> <n>" and its n numeric rows, followed by named result lines
// "<name> <numbers...>"; '#' starts a comment.
struct Record {
  std::string kind;
  std::vector<std::vector<double>> rows;
  std::map<std::string, std::vector<double>> results;

  // The rows' columns from `first` on as points (a 2D point takes two of them).
  template <class P>
  WbArrayTempl<P> Points(std::size_t first = 0) const {
    WbArrayTempl<P> points;
    for (const auto& r : rows)
      points.Add(P(ZmPoint3T<double>(r[first], r[first + 1], r.size() > first + 2 ? r[first + 2] : 0)));
    return points;
  }
};

inline std::vector<double> Numbers(std::istringstream& in) {
  std::vector<double> values;
  for (std::string token; in >> token;) values.push_back(std::strtod(token.c_str(), nullptr));
  return values;
}

inline std::vector<Record> ReadTable(const std::string& name, const std::vector<std::string>& kinds) {
  std::vector<Record> records;
  std::ifstream file(std::string(ZEMCALC_FITTING_REFERENCE_DIR) + "/" + name);
  std::size_t pending = 0;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    std::istringstream in(line);
    std::string word;
    if (pending > 0) {
      records.back().rows.push_back(Numbers(in)), --pending;
    } else if (in >> word && std::find(kinds.begin(), kinds.end(), word) != kinds.end()) {
      records.push_back(Record{word, {}, {}});
      in >> pending;
    } else if (!records.empty()) {
      records.back().results[word] = Numbers(in);
    }
  }
  return records;
}
