// Solver unit lines ("UNIT MM TON S KELVIN"): whatever the text, reading gives a system or a
// message; a line the library writes reads back as the same system.
#include <zemcalc/ZmUnitManager.h>

#include <cstdlib>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const unsigned char withPrefix = in.ConsumeBool();
  const WbString line = fuzz::Text(in, 256);
  ZmUnitSystem system;
  if (ZmUnitMgr.CSMSolverStringToSystem(line, system, withPrefix) != nullptr) return 0;
  WbString written;
  if (ZmUnitMgr.FormatCSMSolverString(system, written, withPrefix) != nullptr) return 0;
  ZmUnitSystem again;
  if (ZmUnitMgr.CSMSolverStringToSystem(written, again, withPrefix) != nullptr || !(again == system)) std::abort();
  return 0;
}
