#include <wbcore/WbLocalize.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <exception>
#include <new>

#include "foundation/build_info.h"
#include "foundation/out_of_memory.h"
#include "foundation/kernel_version.h"
#include "math/fft_transform.h"
#include "zemcalc/ZmAngle.h"
#include "zemcalc/ZmComplex.h"
#include "zemcalc/ZmMathSpectrum.h"

ZM_BUILD_INFO(spectra)

namespace {

// Window weights: float values, widened in the double twin.
constexpr float kHammingBase = 0.54f;
constexpr float kHammingSlope = 0.46f;
constexpr float kHannBase = 0.5f;
constexpr float kHannSlope = 0.5f;
constexpr float kTwoPiF = 6.28318530717958647692f;

// Lags correlated together: their partial sums stay in the first-level cache.
constexpr std::uint64_t kLagBlock = 512;

template <class... Args>
const WbErrObj* Fail(const wchar_t* message, const Args&... args) {
  return WbSetError(WbLocalizeStringExW(message, 0), args...);
}

const WbErrObj* OutOfMemory(std::uint64_t nfft) {
  return Fail(L"Not enough memory to compute an FFT of %llu points", static_cast<unsigned long long>(nfft));
}

bool IsTransformLength(std::uint64_t nfft) {
  return nfft >= 1 && nfft <= ZmMathSpectrumT<double>::MAX_FFT_LENGTH && (nfft & (nfft - 1)) == 0;
}

// The analysed window of a signal: its samples with the abscissa shifted to start at 0.
template <class T>
struct Window {
  const ZmPoint2T<T>* points;
  std::uint64_t count;

  T X(std::uint64_t i) const { return points[i].x - points[0].x; }
  T Y(std::uint64_t i) const { return points[i].y; }
};

// What the transform needs of the window's abscissas, in one pass: the mean of the per-sample
// steps (forward difference first, central differences inside, backward difference last,
// summed in that order; window.count >= 3) and the largest abscissa (NaNs passed over).
template <class T>
struct WindowAbscissas {
  T meanStep;
  T largest;
};

template <class T>
WindowAbscissas<T> MeasureAbscissas(const Window<T>& window) {
  const std::uint64_t m = window.count;
  T sum = window.X(1) - window.X(0);
  T largest = window.X(0);
  largest = window.X(1) > largest ? window.X(1) : largest;
  for (std::uint64_t k = 0; k + 2 < m; ++k) {
    const T next = window.X(k + 2);
    sum = sum + (next - window.X(k)) / T(2);
    largest = next > largest ? next : largest;
  }
  sum = sum + (window.X(m - 1) - window.X(m - 2));
  return {sum / T(m), largest};
}

template <class T>
T Weighted(int windowType, T x, T span, T y) {
  if (windowType != ZmMathSpectrumT<T>::FFT_WINDOW_HAMMING && windowType != ZmMathSpectrumT<T>::FFT_WINDOW_HANN)
    return y;
  const T cosine = std::cos((x - span / T(2)) * T(kTwoPiF) / span);
  if (windowType == ZmMathSpectrumT<T>::FFT_WINDOW_HAMMING) return y * (T(kHammingBase) + T(kHammingSlope) * cosine);
  return y * (T(kHannBase) + T(kHannSlope) * cosine);
}

// Puts the first min(m, nfft) samples, weighted and rounded to float, at their bit-reversed
// positions in work.re, the rest of work.re to 0. The values are made in order in work.im
// (zero beyond them), which is zero again afterwards.
template <class T>
void LoadSamples(const Window<T>& window, int windowType, T span, std::uint64_t nfft, const zm::fft::Workspace& work,
                 WbArrayTempl<std::uint64_t>& tables) {
  const std::uint64_t loaded = std::min(window.count, nfft);
  float* staging = work.im;
  if (windowType == ZmMathSpectrumT<T>::FFT_WINDOW_HAMMING || windowType == ZmMathSpectrumT<T>::FFT_WINDOW_HANN) {
    for (std::uint64_t i = 0; i < loaded; ++i)
      staging[i] = static_cast<float>(Weighted(windowType, window.X(i), span, window.Y(i)));
  } else {
    for (std::uint64_t i = 0; i < loaded; ++i) staging[i] = static_cast<float>(window.Y(i));
  }
  zm::fft::LoadBitReversed(work, staging, nfft, tables);
  std::fill(staging, staging + loaded, 0.0f);
}

// The moduli of the bins, after the division by nfft when asked (scale is then 1/nfft, else
// 1: exact either way); they replace the real parts.
struct Moduli {
  ZM_KERNEL_BODY void Run(float* __restrict re, const float* __restrict im, float scale, std::uint64_t count) {
    for (std::uint64_t i = 0; i < count; ++i) re[i] = (ZmComplexNumberf(re[i], im[i]) * scale).Module();
  }
};

// How an amplitude is corrected for the weighting window's loss of level.
enum class WindowLoss { kNone, kHann, kHamming };

// Bin i: (i*df, modulus*dt/Tx, doubled above bin 0, then corrected for the window). Bin 0 is
// multiplied by 1 (exact) rather than branched around, and Index is the narrowest integer that
// holds every bin, so that the loop vectorises.
template <WindowLoss Loss>
struct ScaleAmplitudesOf {
  template <class T, class Index>
  ZM_KERNEL_BODY void Run(const float* __restrict moduli, Index count, T df, T dt, T tx,
                          ZmPoint2T<T>* __restrict spectrum) {
    for (Index i = 0; i < count; ++i) {
      const T doubling = i > 0 ? T(2) : T(1);
      T amplitude = T(moduli[i]) * dt / tx * doubling;
      if (Loss == WindowLoss::kHamming) amplitude = amplitude / T(kHammingBase);
      if (Loss == WindowLoss::kHann) amplitude = amplitude * T(2);
      spectrum[i].x = T(i) * df;
      spectrum[i].y = amplitude;
    }
  }
};

template <WindowLoss Loss, class T>
void ScaleAmplitudes(const float* moduli, std::uint64_t nfft, T df, T dt, T tx, ZmPoint2T<T>* spectrum) {
  if (nfft <= std::uint64_t(INT32_MAX))
    zm::RunKernel<ScaleAmplitudesOf<Loss>>(moduli, static_cast<std::int32_t>(nfft), df, dt, tx, spectrum);
  else
    zm::RunKernel<ScaleAmplitudesOf<Loss>>(moduli, static_cast<std::int64_t>(nfft), df, dt, tx, spectrum);
}

// The amplitude (and phase) spectrum of the transform.
template <class T>
void WriteSpectra(const zm::fft::Workspace& work, std::uint64_t nfft, unsigned char divideByCount, int windowType, T dt,
                  T tx, T df, ZmPoint2T<T>* spectrum, ZmPoint2T<T>* phase) {
  const float scale = divideByCount ? 1.0f / static_cast<float>(nfft) : 1.0f;  // exact: nfft is a power of two
  if (phase) {
    for (std::uint64_t i = 0; i < nfft; ++i) {
      const ZmComplexNumberf x = ZmComplexNumberf(work.re[i], work.im[i]) * scale;
      phase[i].y = ZmAngleT<T, zm::AngleUnit::Radian>(x.Arg()).AngleInDegrees();
    }
  }
  zm::RunKernel<Moduli>(work.re, work.im, scale, nfft);
  if (windowType == ZmMathSpectrumT<T>::FFT_WINDOW_HAMMING)
    ScaleAmplitudes<WindowLoss::kHamming>(work.re, nfft, df, dt, tx, spectrum);
  else if (windowType == ZmMathSpectrumT<T>::FFT_WINDOW_HANN)
    ScaleAmplitudes<WindowLoss::kHann>(work.re, nfft, df, dt, tx, spectrum);
  else
    ScaleAmplitudes<WindowLoss::kNone>(work.re, nfft, df, dt, tx, spectrum);
  if (phase) {
    for (std::uint64_t i = 0; i < nfft; ++i) phase[i].x = spectrum[i].x;
  }
}

// --- correlation

// The sums of lanes consecutive lags: acc[l] = sum over i < min(terms, limit - l) of
// x[i]*y[i + l], each sum sequential in i, so that it equals the plain loop bit for bit.
// Lane l runs out of terms at limit - l, so the lanes still summing are always a prefix
// (limit >= lanes).
struct SumLagBlock {
  template <class T>
  ZM_KERNEL_BODY void Run(const T* __restrict x, const T* __restrict y, std::uint64_t terms, std::uint64_t limit,
                          std::uint64_t lanes, T* __restrict acc) {
    std::fill(acc, acc + lanes, T(0));
    const std::uint64_t end = std::min(terms, limit);
    // Four terms at a time while every lane takes all four (i + 3 < limit - lanes + 1).
    const std::uint64_t full = std::min(end, limit - lanes + 1);
    std::uint64_t i = 0;
    for (; i + 4 <= full; i += 4) {
      const T x0 = x[i], x1 = x[i + 1], x2 = x[i + 2], x3 = x[i + 3];
      const T* yi = y + i;
      for (std::uint64_t l = 0; l < lanes; ++l)
        acc[l] = (((acc[l] + x0 * yi[l]) + x1 * yi[l + 1]) + x2 * yi[l + 2]) + x3 * yi[l + 3];
    }
    for (; i < end; ++i) {
      const std::uint64_t active = std::min(lanes, limit - i);
      const T xi = x[i];
      const T* yi = y + i;
      for (std::uint64_t l = 0; l < active; ++l) acc[l] = acc[l] + xi * yi[l];
    }
  }
};

template <class T>
void CircularCorrelation(const WbArrayTempl<T>& ay, const WbArrayTempl<T>& ax, const WbArrayTempl<T>& bWrapped,
                         ZmPoint2T<T>* out) {
  const std::uint64_t n = ay.GetSize();
  const T scale = T(1) / T(n);
  T acc[kLagBlock];
  for (std::uint64_t k0 = 0; k0 < n; k0 += kLagBlock) {
    const std::uint64_t lanes = std::min(kLagBlock, n - k0);
    zm::RunKernel<SumLagBlock>(ay.GetData(), bWrapped.GetData() + k0, n, UINT64_MAX, lanes, acc);
    for (std::uint64_t l = 0; l < lanes; ++l) out[k0 + l] = ZmPoint2T<T>(ax[k0 + l], scale * acc[l]);
  }
}

// Lag L = j - n goes to out[j - 1]: the negative lags 1 - n .. -1 first, then 0 .. n - 1.
template <class T>
void LinearCorrelation(const WbArrayTempl<T>& ay, const WbArrayTempl<T>& ax, const WbArrayTempl<T>& by,
                       ZmPoint2T<T>* out) {
  const std::uint64_t n = ay.GetSize(), nb = by.GetSize();  // nb >= n: b is padded
  const T scale = T(1) / T(n);
  T acc[kLagBlock];
  // Lags -q, q = 1 .. n-1: sum over i < min(n, nb - q) of a[i]*b[i + q].
  for (std::uint64_t q0 = 1; q0 < n; q0 += kLagBlock) {
    const std::uint64_t lanes = std::min(kLagBlock, n - q0);
    zm::RunKernel<SumLagBlock>(ay.GetData(), by.GetData() + q0, n, nb - q0, lanes, acc);
    for (std::uint64_t l = 0; l < lanes; ++l) {
      const std::uint64_t q = q0 + l;
      out[n - 1 - q] = ZmPoint2T<T>(T(2) * ax[0] - ax[q], scale * acc[l]);
    }
  }
  // Lags L = 0 .. n-1: sum over i < n - L of b[i]*a[i + L].
  for (std::uint64_t l0 = 0; l0 < n; l0 += kLagBlock) {
    const std::uint64_t lanes = std::min(kLagBlock, n - l0);
    zm::RunKernel<SumLagBlock>(by.GetData(), ay.GetData() + l0, n, n - l0, lanes, acc);
    for (std::uint64_t l = 0; l < lanes; ++l) out[n - 1 + l0 + l] = ZmPoint2T<T>(ax[l0 + l], scale * acc[l]);
  }
}

}  // namespace

template <class T>
const WbErrObj* ZmMathSpectrumT<T>::ComputeFFT(const Curve& signal, const int* window, int windowType,
                                               std::uint64_t nfft, Curve& spectrum, unsigned char divideByCount,
                                               Curve* phase) {
  if (!window) return Fail(L"No window given. Can't compute FFT");
  const std::int64_t first = window[0], last = window[1];
  const std::int64_t m = last - first + 1;
  if (m < 3) return Fail(L"Less than 3 points in the window. Can't compute FFT");
  const std::uint64_t size = signal.GetSize();
  if (first < 0 || static_cast<std::uint64_t>(last) >= size)
    return Fail(L"Window [%d, %d] is outside the signal of %llu points. Can't compute FFT", window[0], window[1],
                static_cast<unsigned long long>(size));
  if (!IsTransformLength(nfft))
    return Fail(L"FFT length %llu is not a power of two between 1 and 4294967296. Can't compute FFT",
                static_cast<unsigned long long>(nfft));

  const Window<T> samples{signal.GetData() + first, static_cast<std::uint64_t>(m)};
  const WindowAbscissas<T> abscissas = MeasureAbscissas(samples);
  const T dt = abscissas.meanStep;
  const T tn = T(nfft - 1) * dt;
  const T tx = samples.X(samples.count - 1) - samples.X(0);
  if (!(tn > 0 && tx > 0)) return Fail(L"Non increasing abscissa values");
  const T df = T(1) / tn;

  const zm::fft::Workspace work(nfft);
  try {
    if (!work.re) throw std::bad_alloc();
    WbArrayTempl<std::uint64_t> reversalTables;
    LoadSamples(samples, windowType, abscissas.largest, nfft, work, reversalTables);
    zm::fft::Transform(work, nfft);
    // The signal has been read in full: it may be one of the results.
    spectrum.SetSize(nfft);
    if (phase) phase->SetSize(nfft);
    WriteSpectra(work, nfft, divideByCount, windowType, dt, tx, df, spectrum.GetData(),
                 phase ? phase->GetData() : nullptr);
  } catch (const std::exception&) {
    spectrum = Curve();
    if (phase) *phase = Curve();
    return OutOfMemory(nfft);
  }
  return nullptr;
}

template <class T>
void ZmMathSpectrumT<T>::ComputeCorrelation(const Curve& a, const Curve& b, unsigned char linear, Curve& out) {
  const std::uint64_t n = a.GetSize(), nb = b.GetSize();
  if (n == 0) {
    out.RemoveAll();
    return;
  }
  try {
    const zm::BoundaryCall boundary;
    // Contiguous copies, so that out may be a or b and the sums read unit-stride runs.
    WbArrayTempl<T> ay, ax, by;
    ay.SetSize(n);
    ax.SetSize(n);
    for (std::uint64_t i = 0; i < n; ++i) {
      ay[i] = a[i].y;
      ax[i] = a[i].x;
    }
    if (linear) {
      // b padded with zeros to n points; a longer b is kept whole for the negative lags.
      by.SetSize(std::max(n, nb));
      for (std::uint64_t i = 0; i < nb; ++i) by[i] = b[i].y;
      out.SetSize(2 * n - 1);
      LinearCorrelation(ay, ax, by, out.GetData());
    } else {
      // b over its first n points (padded with zeros), twice over so that (k + i) mod n needs
      // no modulo.
      by.SetSize(2 * n - 1);
      for (std::uint64_t i = 0; i < std::min(n, nb); ++i) by[i] = b[i].y;
      for (std::uint64_t i = n; i < 2 * n - 1; ++i) by[i] = by[i - n];
      out.SetSize(n);
      CircularCorrelation(ay, ax, by, out.GetData());
    }
  } catch (const std::exception&) {
    if (zm::BoundaryCall::Nested()) throw;
    out = Curve();
  }
}

template class ZmMathSpectrumT<double>;
template class ZmMathSpectrumT<float>;
