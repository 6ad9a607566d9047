#include <cmath>
#include <cstdint>

#include "foundation/build_info.h"
#include "zemcalc/ZmFilter.h"

ZM_BUILD_INFO(kernels)

template <class Base>
ZmFilterMVAT<Base>::ZmFilterMVAT(int n, Extrapolation extrapolation) : Base(0, extrapolation) {
  this->SetKernelSize(n);
  if (n < 1) return;
  // 1/n in single precision in both twins: the moving averages of both precisions agree.
  const float weight = 1.0f / static_cast<float>(n);
  for (auto& coefficient : this->m_coefficients) coefficient = weight;
}

template <class Base>
ZmFilterMVAWeightedT<Base>::ZmFilterMVAWeightedT(int n, const WbArrayTempl<T>& weights, Extrapolation extrapolation)
    : Base(n, extrapolation) {
  if (weights.IsEmpty()) return;
  WbArrayTempl<T>& c = this->m_coefficients;
  const std::uint64_t lastWeight = weights.GetSize() - 1;
  for (std::uint64_t k = 0; k < c.GetSize(); ++k) c[k] = weights[k < lastWeight ? k : lastWeight];
}

template <class Base>
ZmFilterCosT<Base>::ZmFilterCosT(int n) : Base(1, ZmExtrapolationReflection) {
  this->SetKernelSize(n);
  const double pi = 3.14159265358979323846;
  WbArrayTempl<typename Base::T>& c = this->m_coefficients;
  for (std::uint64_t k = 0; k < c.GetSize(); ++k) {
    const double tap = static_cast<double>(n - 1) - 2.0 * static_cast<double>(k);
    c[k] = static_cast<typename Base::T>(std::cos(pi * tap / (2.0 * static_cast<double>(n))));
  }
}

template class ZmFilterMVAT<ZmFilterMAd>;
template class ZmFilterMVAT<ZmFilterMAf>;
template class ZmFilterMVAWeightedT<ZmFilterMVAd>;
template class ZmFilterMVAWeightedT<ZmFilterMVAf>;
template class ZmFilterCosT<ZmFilterMAd>;
template class ZmFilterCosT<ZmFilterMAf>;

WB_IMPLEMENT_DYNAMIC(ZmFilterMVAd, ZmFilterMAd, new ZmFilterMVAd)
WB_IMPLEMENT_DYNAMIC(ZmFilterMVAf, ZmFilterMAf, new ZmFilterMVAf)
WB_IMPLEMENT_DYNAMIC(ZmFilterMVAWeightedd, ZmFilterMVAd, new ZmFilterMVAWeightedd)
WB_IMPLEMENT_DYNAMIC(ZmFilterMVAWeightedf, ZmFilterMVAf, new ZmFilterMVAWeightedf)
WB_IMPLEMENT_DYNAMIC(ZmFilterCosd, ZmFilterMAd, new ZmFilterCosd)
WB_IMPLEMENT_DYNAMIC(ZmFilterCosf, ZmFilterMAf, new ZmFilterCosf)
