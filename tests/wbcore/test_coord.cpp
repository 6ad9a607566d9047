// Base coordinates and bit reversal.
#include <gtest/gtest.h>
#include <wbcore/WbBinFile.h>
#include <wbcore/WbCoord.h>

#include "wbcore/wb_print.h"

namespace {

constexpr double kMarker = -1.0000000331813535e+32;  // -1.0e32f widened

TEST(WbCoord, InvalidMarkerIsTheWidenedFloatInEveryComponent) {
  EXPECT_EQ(WbCoord3Dd::INVALID.x, kMarker);
  EXPECT_EQ(WbCoord3Dd::INVALID.z, kMarker);
  EXPECT_EQ(WbCoord2Df::INVALID.y, -1.0e32f);
  EXPECT_EQ(WbCoord3Dd::INVALID.IsValid(), 0);
  EXPECT_EQ(WbCoord3Dd::ZERO.IsValid(), 1);
  EXPECT_EQ(WbCoord2Dd::ZERO.x, 0.0);

  WbCoord3Dd p(1, 2, 3);
  p.Invalidate();
  EXPECT_EQ(p.x, kMarker);
  EXPECT_EQ(p.y, kMarker);
  EXPECT_EQ(p.z, kMarker);
  // One marked component is enough; the exact decimal -1e32 is an ordinary value.
  EXPECT_EQ(WbCoord3Dd(0, 0, kMarker).IsValid(), 0);
  EXPECT_EQ(WbCoord3Dd(-1e32, -1e32, -1e32).IsValid(), 1);
  EXPECT_EQ(WbCoord2Dd(kMarker, 0).IsValid(), 0);
}

TEST(WbCoord, MinimumAndMaximumFoldFromInvalid) {
  WbCoord3Dd low = WbCoord3Dd::INVALID;
  WbCoord3Dd high = WbCoord3Dd::INVALID;
  for (const WbCoord3Dd& p : {WbCoord3Dd(1, 5, -2), WbCoord3Dd(3, -1, 4), WbCoord3Dd(2, 0, 0)}) {
    low.minimum(p);
    high.maximum(p);
  }
  EXPECT_EQ(low.x, 1.0);
  EXPECT_EQ(low.y, -1.0);
  EXPECT_EQ(low.z, -2.0);
  EXPECT_EQ(high.x, 3.0);
  EXPECT_EQ(high.y, 5.0);
  EXPECT_EQ(high.z, 4.0);
  // An invalid operand leaves the running box alone.
  low.minimum(WbCoord3Dd::INVALID);
  EXPECT_EQ(low.y, -1.0);

  WbCoord2Df box = WbCoord2Df::INVALID;
  box.maximum(WbCoord2Df(-7.0f, -8.0f));  // below zero: the marker must not win
  EXPECT_EQ(box.x, -7.0f);
  EXPECT_EQ(box.y, -8.0f);
}

TEST(WbCoord, CompareByOneComponentForSorting) {
  const WbCoord3Dd a(1, 5, 0), b(2, 5, -1);
  EXPECT_EQ(WbCoord3Dd::CompareX(a, b), -1);
  EXPECT_EQ(WbCoord3Dd::CompareX(b, a), 1);
  EXPECT_EQ(WbCoord3Dd::CompareY(a, b), 0);
  EXPECT_EQ(WbCoord3Dd::CompareZ(a, b), 1);
  EXPECT_EQ(WbCoord2Df::CompareY(WbCoord2Df(0, 1), WbCoord2Df(0, 2)), -1);
}

TEST(WbCoord, GetStringFormatsEachComponentAndJoinsThem) {
  EXPECT_EQ(WbCoord3Dd(1, -2.5, 3.14159).GetString(L"%.3f", L","), L"1.000,-2.500,3.142");
  EXPECT_EQ(WbCoord2Dd(10, 20).GetString(L"%g", L" / "), L"10 / 20");
  // Float components are widened exactly before formatting: 0.1f is 0.100000001490116...
  EXPECT_EQ(WbCoord2Df(0.1f, 2).GetString(L"%.9f", L";"), L"0.100000001;2.000000000");
}

TEST(WbBinFile, SwapNBitsReversesTheLowBits) {
  EXPECT_EQ(WbBinFile::SwapNBits(1, 3), 4u);    // 001 -> 100
  EXPECT_EQ(WbBinFile::SwapNBits(6, 3), 3u);    // 110 -> 011
  EXPECT_EQ(WbBinFile::SwapNBits(11, 4), 13u);  // 1011 -> 1101
  // The bit-reversed order of an 8-point FFT.
  const unsigned int expected[8] = {0, 4, 2, 6, 1, 5, 3, 7};
  for (unsigned int i = 0; i < 8; ++i) EXPECT_EQ(WbBinFile::SwapNBits(i, 3), expected[i]) << i;
  EXPECT_EQ(WbBinFile::SwapNBits(0xF1u, 3), 4u);  // bits above the count are dropped
  // Python: int(format(0x12345678, '032b')[::-1], 2) == 0x1E6A2C48
  EXPECT_EQ(WbBinFile::SwapNBits(0x12345678u, 32), 0x1E6A2C48u);
  EXPECT_EQ(WbBinFile::SwapNBits(1u, 32), 0x80000000u);
  EXPECT_EQ(WbBinFile::SwapNBits(1u, 1), 1u);
  // Bit counts outside 1..32.
  EXPECT_EQ(WbBinFile::SwapNBits(5, 0), 0u);
  EXPECT_EQ(WbBinFile::SwapNBits(5, -3), 0u);
  EXPECT_EQ(WbBinFile::SwapNBits(5, 33), 0u);
}

}  // namespace
