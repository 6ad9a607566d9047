// Unit symbols typed by a user: the four base symbols of a system, one symbol per type, the
// catalogue's derived unit names and a dimension's composed symbols ("T/mm.s2").
#include <zemcalc/ZmUnitDim.h>
#include <zemcalc/ZmUnitManager.h>

#include <cstdlib>

#include "fuzz_input.h"

namespace {

const ZmUnitDim* Dimension(int pick) {
  const ZmUnitDim* dims[] = {&ZmUnitDimNone, &ZmUnitDimTime,  &ZmUnitDimMass,   &ZmUnitDimFreq,
                             &ZmUnitDimLength, &ZmUnitDimArea, &ZmUnitDimVolume};
  return dims[pick % 7];
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const unsigned char caseSensitive = in.ConsumeBool();
  const int type = in.ConsumeIntegralInRange<int>(-1, 5);
  const ZmUnitDim* dim = Dimension(in.ConsumeIntegral<std::uint8_t>());
  WbString words[4];
  for (WbString& word : words) word = fuzz::Text(in, 24);
  const WbString name = fuzz::Text(in, 64);

  ZmUnitSystem system;
  if (ZmUnitMgr.ShortUnitStringsToSystem(words[0], words[1], words[2], words[3], system, caseSensitive) == nullptr &&
      !system.IsValid(1))
    std::abort();
  const int index = ZmUnitMgr.ShortName2UnitIndex(static_cast<_ZmUnitType>(type), name, caseSensitive);
  if (index >= 0 && caseSensitive &&
      !(ZmUnitMgr.UnitIndex2ShortName(static_cast<_ZmUnitType>(type), index) == name.GetString()))
    std::abort();
  ZmUnitDim found;
  ZmUnitSystem foundSystem;
  ZmUnitMgr.FindEquivalentUnitByName(name.GetString(), found, foundSystem, in.ConsumeBool() ? dim : nullptr);
  ZmUnitSystem fromSymbol;
  if (dim->GetSystemFromShortName(name, fromSymbol) == nullptr) {
    // The symbol names a system in which the dimension converts into itself as 1.
    ZmUnitSystem probe = fromSymbol;
    (void)probe.ConvertValueFrom(1.0f, fromSymbol, *dim, nullptr);
  }
  return 0;
}
