// Every filter class, created by name or with fuzzed parameters (kernel sizes, weights, window
// widths, extrapolations), over curves with any values and abscissas, in both precisions. The
// output is either a curve of the input's length or an error.
#include <zemcalc/ZmFilter.h>
#include <zemcalc/ZmFilterFixed.h>

#include <cstdlib>
#include <memory>

#include "fuzz_input.h"

namespace {

template <class T, class Filter>
void Run(FuzzedDataProvider& in, Filter& filter) {
  const WbArrayTempl<ZmPoint2T<T>> curve = fuzz::Curve<T>(in, 1024);
  WbArrayTempl<ZmPoint2T<T>> out;
  if (filter.Compute(curve, out) == nullptr && out.GetSize() != curve.GetSize()) std::abort();
  WbArrayTempl<ZmPoint2T<T>> inPlace = curve;
  filter.Compute(inPlace, inPlace);
}

template <class T, class FilterBase, class MVA, class Weighted, class Cos, class SWA>
void Fuzz(FuzzedDataProvider& in, const wchar_t* const* names, int nameCount) {
  const int n = in.ConsumeIntegralInRange<int>(-2, 300);
  const int extrapolation = in.ConsumeIntegralInRange<int>(-1, 4);
  switch (in.ConsumeIntegralInRange<int>(0, 4)) {
    case 0: {
      std::unique_ptr<WbObject> object(WbRuntimeClass::CreateObject(names[in.ConsumeIntegralInRange<int>(0, nameCount - 1)]));
      if (auto* filter = dynamic_cast<FilterBase*>(object.get())) Run<T>(in, *filter);
      break;
    }
    case 1: {
      MVA filter(n, extrapolation);
      Run<T>(in, filter);
      break;
    }
    case 2: {
      WbArrayTempl<T> weights;
      for (int k = in.ConsumeIntegralInRange<int>(0, 160); k > 0; --k) weights.Add(fuzz::Number<T>(in));
      Weighted filter(n, weights, extrapolation);
      Run<T>(in, filter);
      break;
    }
    case 3: {
      Cos filter(n);
      Run<T>(in, filter);
      break;
    }
    default: {
      const double width = fuzz::Number<double>(in);
      SWA filter(width, fuzz::Number<double>(in));
      filter.SetExtrapolationType(static_cast<Extrapolation>(extrapolation));
      Run<T>(in, filter);
      break;
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider in(data, size);
  static const wchar_t* const doubles[] = {L"ZmFilterMVAd", L"ZmFilterMVAWeightedd", L"ZmFilterCosd", L"ZmFilterSWAd",
                                           L"ZmFilterCFC600_10kHzd", L"ZmFilterCFC180_10kHzd",
                                           L"ZmFilterCFC60_10kHzd", L"ZmFilterFIRF16d", L"ZmFilterMAd", L"ZmFilterd"};
  static const wchar_t* const floats[] = {L"ZmFilterMVAf", L"ZmFilterMVAWeightedf", L"ZmFilterCosf", L"ZmFilterSWAf",
                                          L"ZmFilterCFC600_10kHzf", L"ZmFilterCFC180_10kHzf",
                                          L"ZmFilterCFC60_10kHzf", L"ZmFilterFIRF16f", L"ZmFilterMAf", L"ZmFilterf"};
  if (in.ConsumeBool())
    Fuzz<double, ZmFilterd, ZmFilterMVAd, ZmFilterMVAWeightedd, ZmFilterCosd, ZmFilterSWAd>(in, doubles, 10);
  else
    Fuzz<float, ZmFilterf, ZmFilterMVAf, ZmFilterMVAWeightedf, ZmFilterCosf, ZmFilterSWAf>(in, floats, 10);
  return 0;
}
