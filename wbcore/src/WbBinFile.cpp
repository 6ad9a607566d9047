#include "wbcore/WbBinFile.h"

unsigned int WbBinFile::SwapNBits(unsigned int value, int bits) {
  if (bits < 1 || bits > 32) return 0;
  unsigned int reversed = 0;
  for (int i = 0; i < bits; ++i) {
    reversed = (reversed << 1) | (value & 1u);
    value >>= 1;
  }
  return reversed;
}
