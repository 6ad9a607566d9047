// Values with their unit ("200000 MPa", "1; 2.5; 3 mm"), read in both precisions and written
// back: a read either succeeds with a value or fails with the invalid marker.
#include <zemcalc/ZmUnitDim.h>
#include <zemcalc/ZmUnitSystem.h>

#include <cstdlib>

#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  const ZmUnitDim* dims[] = {&ZmUnitDimNone, &ZmUnitDimTime, &ZmUnitDimMass, &ZmUnitDimFreq, &ZmUnitDimLength,
                             &ZmUnitDimArea, &ZmUnitDimVolume};
  const ZmUnitDim& dim = *dims[in.ConsumeIntegral<std::uint8_t>() % 7];
  ZmUnitSystem system(static_cast<_ZmUnitLength>(in.ConsumeIntegralInRange<int>(-2, 12)),
                      static_cast<_ZmUnitMass>(in.ConsumeIntegralInRange<int>(-2, 12)),
                      static_cast<_ZmUnitTime>(in.ConsumeIntegralInRange<int>(-2, 12)),
                      static_cast<_ZmUnitTemp>(in.ConsumeIntegralInRange<int>(-2, 6)),
                      static_cast<_ZmUnitAngle>(in.ConsumeIntegralInRange<int>(-2, 6)));
  const WbString text = fuzz::Text(in, 128);

  float single = 0;
  double wide = 0;
  if (!system.String2DimensionalValue(text, dim, single) && single != -1.0e32f) std::abort();
  if (!system.String2DimensionalValue(text, dim, wide) && wide != double(-1.0e32f)) std::abort();
  WbArrayTempl<float> values;
  if (!system.String2DimensionalValues(text, dim, values) && values.GetSize() != 0) std::abort();

  WbString written;
  system.FormatDimensionalValue(fuzz::Number<float>(in), dim, written);
  system.FormatDimensionalValues(values, dim, written);
  WbObjectArrayTempl<WbString> names;
  WbArrayTempl<float> factors;
  int index = 0;
  system.GetCompatibleEquivUnits(dim, names, factors, fuzz::Number<float>(in), &index);
  if (names.GetSize() != factors.GetSize()) std::abort();
  return 0;
}
