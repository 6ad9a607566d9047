#include <cstdint>
#include <cstring>
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

// Outputs filtered per block: the work buffer holds a block and the n - 1 values that its last
// windows reach beyond it, so it stays in the processor's caches while the curve streams through.
constexpr std::uint64_t kBlock = 2048;

// The widest kernel kept: 2^20 taps. A wider one needs a curve of over half a million points
// and costs half its width in multiply-adds per point, some 10^11 at least; refusing it also
// keeps a constructor given INT_MAX from taking gigabytes before any curve is seen.
constexpr int kMaxKernelSize = 1 << 20;

// The h padded values before the curve (left[i] = b[i]) and after it (right[i] = b[h+N+i]);
// N >= h, N >= 1.
template <class T>
void PadEnds(const ZmPoint2T<T>* in, std::uint64_t count, int h, Extrapolation extrapolation, T* left, T* right) {
  const T first = in[0].y;
  const T last = in[count - 1].y;
  switch (extrapolation) {
    case ZmExtrapolationZeros:
      for (int i = 0; i < h; ++i) left[i] = right[i] = T(0);
      break;
    case ZmExtrapolationConstant:
      for (int i = 0; i < h; ++i) {
        left[i] = first;
        right[i] = last;
      }
      break;
    case ZmExtrapolationLinear: {
      // A one-point curve has no second point: its lines are flat.
      const T second = count > 1 ? in[1].y : first;
      const T beforeLast = count > 1 ? in[count - 2].y : last;
      const std::uint64_t hn = static_cast<std::uint64_t>(h) + count;
      const T h0 = T(h), h1 = T(h + 1), hn1 = T(hn - 1), hn2 = T(hn - 2);
      for (int i = 0; i < h; ++i) {
        const T ti = T(i);
        left[i] = (second - first) * ti + h1 * first - h0 * second;
        // The right line is evaluated at i, not at h + N + i: kept as the filter always did.
        right[i] = (last - beforeLast) * ti + hn1 * beforeLast - hn2 * last;
      }
      break;
    }
    case ZmExtrapolationReflection:
      for (int k = 0; k < h; ++k) {
        left[h - 1 - k] = T(2) * first - in[k].y;
        right[k] = T(2) * last - in[count - 1 - static_cast<std::uint64_t>(k)].y;
      }
      break;
  }
}

// Copies the padded values b[from .. to-1] (b = left padding, values, right padding) to w.
template <class T>
void LoadPadded(const ZmPoint2T<T>* in, std::uint64_t count, std::uint64_t h, const T* left, const T* right,
                std::uint64_t from, std::uint64_t to, T* w) {
  for (; from < to && from < h; ++from) *w++ = left[from];
  for (; from < to && from < h + count; ++from) *w++ = in[from - h].y;
  for (; from < to; ++from) *w++ = right[from - h - count];
}

}  // namespace

template <class T>
ZmFilterT<T>::~ZmFilterT() = default;

template <class T>
unsigned char ZmFilterT<T>::OnDynamicDeletion() {
  return 1;
}

// Through a curve: filters that read the abscissae in their own way work on curves only.
template <class T>
const WbErrObj* ZmFilterT<T>::ComputeSpan(const Point* in, std::uint64_t count, Point* out) {
  const WbErrObj* error = nullptr;
  try {
    Curve curve;
    curve.SetSize(count);
    if (count > 0) std::memcpy(static_cast<void*>(curve.GetData()), in, count * sizeof(Point));
    error = Compute(curve, curve);
    if (count > 0) std::memcpy(static_cast<void*>(out), curve.GetData(), count * sizeof(Point));
  } catch (const std::bad_alloc&) {
    error = Fail(zm::filter::kNotEnoughMemory);
    if (in != out && count > 0) std::memmove(static_cast<void*>(out), in, count * sizeof(Point));
  }
  return error;
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
  if (n < 1 || n > kMaxKernelSize) return;
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
  const WbErrObj* error = CheckKernel();
  const bool inPlace = &in == &out;
  if (!error) error = Compute1D(in.GetData(), in.GetSize(), inPlace ? out.GetData() : nullptr, inPlace ? nullptr : &out);
  // A failure leaves out the copy of in (a curve filtered into itself is refused before any
  // value of it is written).
  return zm::filter::KeepInputOnFailure(error, in, out);
}

template <class Base>
const WbErrObj* ZmFilterMAT<Base>::ComputeSpan(const Point* in, std::uint64_t count, Point* out) {
  const WbErrObj* error = CheckKernel();
  if (!error) error = Compute1D(in, count, out, nullptr);
  if (error && in != out && count > 0) std::memmove(static_cast<void*>(out), in, count * sizeof(Point));
  return error;
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
bool ZmFilterMAT<Base>::HasTimeStepLimits() const {
  return m_minStep != zm::Invalid<T>() || m_maxStep != zm::Invalid<T>();
}

template <class Base>
const WbErrObj* ZmFilterMAT<Base>::CheckTimeSteps(const Point* p, std::uint64_t from, std::uint64_t to) const {
  const bool hasMin = m_minStep != zm::Invalid<T>();
  const bool hasMax = m_maxStep != zm::Invalid<T>();
  for (std::uint64_t i = from > 0 ? from : 1; i < to; ++i) {
    const T dt = p[i].x - p[i - 1].x;
    if (hasMin && dt < m_minStep) return Fail(zm::filter::kLowerStep, static_cast<unsigned long long>(i), m_minStep);
    if (hasMax && dt > m_maxStep) return Fail(zm::filter::kHigherStep, static_cast<unsigned long long>(i), m_maxStep);
  }
  return nullptr;
}

template <class Base>
void ZmFilterMAT<Base>::Normalise(T* c) const {
  const int n = m_size;
  const int h = n / 2;
  const T* stored = m_coefficients.GetData();
  T half = 0;
  for (int k = 0; k < h; ++k) half += stored[k];
  T sum = T(2) * half;
  if (n & 1) sum += stored[h];
  for (std::uint64_t k = 0; k < m_coefficients.GetSize(); ++k) c[k] = sum != T(0) ? stored[k] / sum : stored[k];
}

// The curve streams once through one work buffer: per block of outputs, its time steps are
// tested, the padded values that its windows read are loaded (those shared with the previous
// block are kept), the kernel replaces them by the outputs, and the outputs go to out with the
// abscissae of in. Normalised coefficients are kept in the buffer and stored only once the
// time steps have all passed. A curve filtered into itself, or shorter than half the kernel,
// has its time steps tested first: no value of it is written before they have passed.
template <class Base>
const WbErrObj* ZmFilterMAT<Base>::Compute1D(const Point* source, std::uint64_t count, Point* target, Curve* resized) {
  const int n = m_size;
  const std::uint64_t h = static_cast<std::uint64_t>(n / 2);
  bool testSteps = HasTimeStepLimits();
  if (testSteps && (source == target || count < h)) {
    if (const WbErrObj* error = CheckTimeSteps(source, 1, count)) return error;
    testSteps = false;
  }
  const std::uint64_t reach = static_cast<std::uint64_t>(n) - 1;  // values a window reads past its output
  const std::uint64_t halfKernel = m_coefficients.GetSize();
  T* w = static_cast<T*>(WbMemAlloc((kBlock + reach + 2 * h + halfKernel) * sizeof(T)));
  if (!w) return Fail(zm::filter::kNotEnoughMemory);
  T* left = w + kBlock + reach;
  T* right = left + h;
  T* c = m_normalise ? right + h : m_coefficients.GetData();
  if (m_normalise) Normalise(c);

  const WbErrObj* error = nullptr;
  bool stepsPassed = true;  // the normalised coefficients are stored only then
  if (count < h) {
    error = Fail(zm::filter::kNotEnoughPoints);
  } else if (resized) {
    try {
      resized->SetSize(count);
      target = resized->GetData();
    } catch (const std::bad_alloc&) {
      error = Fail(zm::filter::kNotEnoughMemory);
      stepsPassed = false;
    }
  }
  if (!error && count > 0) {
    PadEnds(source, count, n / 2, m_extrapolation, left, right);
    std::uint64_t loaded = 0;  // padded values of the block already in w
    for (std::uint64_t j0 = 0; j0 < count; j0 += kBlock) {
      const std::uint64_t m = count - j0 < kBlock ? count - j0 : kBlock;
      if (testSteps && (error = CheckTimeSteps(source, j0, j0 + m)) != nullptr) {
        stepsPassed = false;
        break;
      }
      LoadPadded(source, count, h, left, right, j0 + loaded, j0 + m + reach, w + loaded);
      zm::filter::ApplySymmetricKernel(w, m, c, n);
      for (std::uint64_t i = 0; i < m; ++i) {
        target[j0 + i].x = source[j0 + i].x;
        target[j0 + i].y = w[i];
      }
      std::memmove(w, w + m, reach * sizeof(T));
      loaded = reach;
    }
  }
  if (m_normalise && stepsPassed) {
    for (std::uint64_t k = 0; k < halfKernel; ++k) m_coefficients[k] = c[k];
    m_normalise = 0;
  }
  WbMemFree(w);
  return error;
}

template class ZmFilterMAT<ZmFilterd>;
template class ZmFilterMAT<ZmFilterf>;

WB_IMPLEMENT_DYNAMIC(ZmFilterd, WbObject, nullptr)
WB_IMPLEMENT_DYNAMIC(ZmFilterf, WbObject, nullptr)
WB_IMPLEMENT_DYNAMIC(ZmFilterMAd, ZmFilterd, nullptr)
WB_IMPLEMENT_DYNAMIC(ZmFilterMAf, ZmFilterf, nullptr)
