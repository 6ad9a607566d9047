#pragma once

#include "wbcore/WbExport.h"

class WBCORE_API WbBinFile {
public:
  // Reverses the order of the lowest `bits` bits of value (bits beyond them are dropped):
  // SwapNBits(1, 3) is 4, SwapNBits(6, 3) is 3. bits outside 1..32 gives 0.
  static unsigned int SwapNBits(unsigned int value, int bits);
};
