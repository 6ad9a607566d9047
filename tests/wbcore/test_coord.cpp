// Base coordinates and bit reversal.
#include <gtest/gtest.h>
#include <wbcore/WbBinFile.h>
#include <wbcore/WbCoord.h>

#include "wbcore/wb_test_support.h"

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened
using Values = std::vector<double>;
using Ints = std::vector<int>;

Values Of(const WbCoord3Dd& c) { return {c.x, c.y, c.z}; }

// The marker is the widened float in every component; one marked component is enough to make a
// coordinate invalid, and the exact decimal -1e32 is an ordinary value. The running minimum and
// maximum skip an invalid operand, and the marker never wins against negative values.
TEST(WbCoord, InvalidMarkerAndTheFoldsThatSkipIt) {
  WbCoord3Dd p(1, 2, 3);
  p.Invalidate();
  EXPECT_EQ(Of(p), Values(3, kMarker));
  EXPECT_EQ(Of(WbCoord3Dd::INVALID), Values(3, kMarker));
  EXPECT_TRUE(WbCoord2Df::INVALID.x == -1.0e32f && WbCoord2Df::INVALID.y == -1.0e32f);
  EXPECT_EQ((Ints{WbCoord3Dd::INVALID.IsValid(), WbCoord3Dd::ZERO.IsValid(), WbCoord3Dd(0, 0, kMarker).IsValid(),
                  WbCoord3Dd(-1e32, -1e32, -1e32).IsValid(), WbCoord2Dd(kMarker, 0).IsValid()}),
            (Ints{0, 1, 0, 1, 0}));
  WbCoord3Dd low = WbCoord3Dd::INVALID, high = WbCoord3Dd::INVALID;
  for (const WbCoord3Dd& q : {WbCoord3Dd(1, 5, -2), WbCoord3Dd(3, -1, 4), WbCoord3Dd(2, 0, 0), WbCoord3Dd::INVALID}) {
    low.minimum(q);
    high.maximum(q);
  }
  EXPECT_EQ(Of(low), (Values{1, -1, -2}));
  EXPECT_EQ(Of(high), (Values{3, 5, 4}));
  WbCoord2Df box = WbCoord2Df::INVALID;
  box.maximum(WbCoord2Df(-7.0f, -8.0f));
  EXPECT_TRUE(box.x == -7.0f && box.y == -8.0f);
}

TEST(WbCoord, ComparisonByOneComponentAndText) {
  const WbCoord3Dd a(1, 5, 0), b(2, 5, -1);
  EXPECT_EQ((Ints{WbCoord3Dd::CompareX(a, b), WbCoord3Dd::CompareX(b, a), WbCoord3Dd::CompareY(a, b),
                  WbCoord3Dd::CompareZ(a, b), WbCoord2Df::CompareY(WbCoord2Df(0, 1), WbCoord2Df(0, 2))}),
            (Ints{-1, 1, 0, 1, -1}));
  EXPECT_EQ(WbCoord3Dd(1, -2.5, 3.14159).GetString(L"%.3f", L","), L"1.000,-2.500,3.142");
  EXPECT_EQ(WbCoord2Dd(10, 20).GetString(L"%g", L" / "), L"10 / 20");
  // Float components are widened exactly before formatting: 0.1f is 0.100000001490116...
  EXPECT_EQ(WbCoord2Df(0.1f, 2).GetString(L"%.9f", L";"), L"0.100000001;2.000000000");
}

TEST(WbBinFile, SwapNBitsReversesTheLowBits) {
  // The bit-reversed order of an 8-point FFT, then: bits above the count are dropped; counts
  // outside 1..32 give 0. Python: int(format(0x12345678, '032b')[::-1], 2) == 0x1E6A2C48
  const unsigned int fft8[8] = {0, 4, 2, 6, 1, 5, 3, 7};
  for (unsigned int i = 0; i < 8; ++i) EXPECT_EQ(WbBinFile::SwapNBits(i, 3), fft8[i]) << i;
  const struct {
    unsigned int value;
    int bits;
    unsigned int expected;
  } rows[] = {{11, 4, 13}, {0xF1u, 3, 4}, {0x12345678u, 32, 0x1E6A2C48u}, {1u, 32, 0x80000000u}, {1u, 1, 1}, {5, 0, 0},
              {5, -3, 0},  {5, 33, 0}};
  for (const auto& r : rows) EXPECT_EQ(WbBinFile::SwapNBits(r.value, r.bits), r.expected) << r.value << " " << r.bits;
}

}  // namespace
