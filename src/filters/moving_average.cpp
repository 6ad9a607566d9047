#include <cstdint>
#include <new>

#include <wbcore/WbMem.h>

#include "filters/filter_errors.h"
#include "filters/symmetric_kernel.h"
#include "foundation/build_info.h"
#include "zemcalc/ZmConstants.h"
#include "zemcalc/ZmFilter.h"
#include "zemcalc/ZmUnitSystem.h"

ZM_BUILD_INFO(moving_average)

using zm::filter::Fail;

namespace {

// The admissible time steps of a 10 kHz sampling, in seconds: 1e-4 s +/- 50 %.
constexpr float kMinStepSeconds = 5.0e-05f;
constexpr float kMaxStepSeconds = 1.5e-04f;

// Fills the h positions on each side of the values b[h .. h+N-1] (N >= h, N >= 1 when h >= 1).
template <class T>
void Pad(T* b, std::uint64_t count, int h, Extrapolation extrapolation) {
  const T* in = b + h;
  T* right = b + h + count;
  const T first = in[0];
  const T last = in[count - 1];
  switch (extrapolation) {
    case ZmExtrapolationZeros:
      for (int i = 0; i < h; ++i) b[i] = right[i] = T(0);
      break;
    case ZmExtrapolationConstant:
      for (int i = 0; i < h; ++i) {
        b[i] = first;
        right[i] = last;
      }
      break;
    case ZmExtrapolationLinear: {
      // A one-point curve has no second point: its lines are flat.
      const T second = count > 1 ? in[1] : first;
      const T beforeLast = count > 1 ? in[count - 2] : last;
      const std::uint64_t hn = static_cast<std::uint64_t>(h) + count;
      const T h0 = T(h), h1 = T(h + 1), hn1 = T(hn - 1), hn2 = T(hn - 2);
      for (int i = 0; i < h; ++i) {
        const T ti = T(i);
        b[i] = (second - first) * ti + h1 * first - h0 * second;
        // The right line is evaluated at i, not at h + N + i: kept as the filter always did.
        right[i] = (last - beforeLast) * ti + hn1 * beforeLast - hn2 * last;
      }
      break;
    }
    case ZmExtrapolationReflection:
      for (int k = 0; k < h; ++k) {
        b[h - 1 - k] = T(2) * first - in[k];
        right[k] = T(2) * last - in[count - 1 - static_cast<std::uint64_t>(k)];
      }
      break;
  }
}

}  // namespace

template <class T>
ZmFilterT<T>::~ZmFilterT() = default;

template <class T>
unsigned char ZmFilterT<T>::OnDynamicDeletion() {
  return 1;
}

template class ZmFilterT<double>;
template class ZmFilterT<float>;

template <class Base>
ZmFilterMAT<Base>::ZmFilterMAT(unsigned char normalise, Extrapolation extrapolation)
    : m_size(0),
      m_normalise(normalise),
      m_minStep(zm::Invalid<T>()),
      m_maxStep(zm::Invalid<T>()),
      m_extrapolation(extrapolation) {}

template <class Base>
void ZmFilterMAT<Base>::SetKernelSize(int n) {
  m_size = n;
  m_coefficients.RemoveAll();
  if (n < 1) return;
  try {
    m_coefficients.SetSize(static_cast<std::uint64_t>(n / 2 + (n & 1)));
  } catch (const std::bad_alloc&) {
    m_coefficients = WbArrayTempl<T>();
  }
}

template <class Base>
void ZmFilterMAT<Base>::SetKernelTable(int n, const float* table) {
  SetKernelSize(n);
  for (std::uint64_t k = 0; k < m_coefficients.GetSize(); ++k) m_coefficients[k] = T(table[k]);
}

template <class Base>
void ZmFilterMAT<Base>::SetLimitDT(_ZmUnitTime unit) {
  m_minStep = T(kMinStepSeconds);
  m_maxStep = T(kMaxStepSeconds);
  if (unit == ZmUnitSecond) return;
  const ZmUnitSystem seconds(ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitSecond, ZmUnitTempUnset, ZmUnitAngleUnset);
  const ZmUnitSystem target(ZmUnitLengthUnset, ZmUnitMassUnset, unit, ZmUnitTempUnset, ZmUnitAngleUnset);
  ZmUnitConverter converter;
  unsigned char needed = 0;
  if (converter.InitFromTo(seconds, target, needed, &ZmUnitDimTime) != nullptr || !needed) return;
  converter.ConvertScalar(ZmUnitDimTime, m_minStep);
  converter.ConvertScalar(ZmUnitDimTime, m_maxStep);
}

template <class Base>
const WbErrObj* ZmFilterMAT<Base>::Compute(const Curve& in, Curve& out) {
  try {
    out = in;
  } catch (const std::bad_alloc&) {
    return Fail(zm::filter::kNotEnoughMemory);
  }
  if (const WbErrObj* error = CheckKernel()) return error;
  if (const WbErrObj* error = CheckTimeSteps(in)) return error;
  return Compute1D(out);
}

template <class Base>
const WbErrObj* ZmFilterMAT<Base>::CheckKernel() const {
  if (m_size < 1 || m_coefficients.GetSize() != static_cast<std::uint64_t>(m_size / 2 + (m_size & 1))) {
    return Fail(zm::filter::kInvalidKernelSize, m_size);
  }
  if (!zm::filter::IsKnownExtrapolation(m_extrapolation)) {
    return Fail(zm::filter::kUnknownExtrapolation, static_cast<int>(m_extrapolation));
  }
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterMAT<Base>::CheckTimeSteps(const Curve& in) const {
  const bool hasMin = m_minStep != zm::Invalid<T>();
  const bool hasMax = m_maxStep != zm::Invalid<T>();
  if (!hasMin && !hasMax) return nullptr;
  for (std::uint64_t i = 1; i < in.GetSize(); ++i) {
    const T dt = in[i].x - in[i - 1].x;
    if (hasMin && dt < m_minStep) return Fail(zm::filter::kLowerStep, static_cast<int>(i), m_minStep);
    if (hasMax && dt > m_maxStep) return Fail(zm::filter::kHigherStep, static_cast<int>(i), m_maxStep);
  }
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterMAT<Base>::Compute1D(Curve& curve) {
  const int n = m_size;
  const int h = n / 2;
  T* c = m_coefficients.GetData();
  if (m_normalise) {
    T half = 0;
    for (int k = 0; k < h; ++k) half += c[k];
    T sum = T(2) * half;
    if (n & 1) sum += c[h];
    if (sum != T(0)) {
      for (T& coefficient : m_coefficients) coefficient /= sum;
    }
    m_normalise = 0;
  }
  const std::uint64_t count = curve.GetSize();
  if (count < static_cast<std::uint64_t>(h)) return Fail(zm::filter::kNotEnoughPoints);
  if (count == 0) return nullptr;

  // Output j reads b[j .. j+n-1]: the values and h padded values on each side are all it needs.
  T* b = static_cast<T*>(WbMemAlloc((count + 2 * static_cast<std::uint64_t>(h)) * sizeof(T)));
  if (!b) return Fail(zm::filter::kNotEnoughMemory);
  for (std::uint64_t j = 0; j < count; ++j) b[static_cast<std::uint64_t>(h) + j] = curve[j].y;
  Pad(b, count, h, m_extrapolation);
  zm::filter::ApplySymmetricKernel(b, count, c, n);
  for (std::uint64_t j = 0; j < count; ++j) curve[j].y = b[j];
  WbMemFree(b);
  return nullptr;
}

template class ZmFilterMAT<ZmFilterd>;
template class ZmFilterMAT<ZmFilterf>;

WB_IMPLEMENT_DYNAMIC(ZmFilterd, WbObject, nullptr)
WB_IMPLEMENT_DYNAMIC(ZmFilterf, WbObject, nullptr)
WB_IMPLEMENT_DYNAMIC(ZmFilterMAd, ZmFilterd, nullptr)
WB_IMPLEMENT_DYNAMIC(ZmFilterMAf, ZmFilterf, nullptr)
