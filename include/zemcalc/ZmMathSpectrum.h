#pragma once

// Spectral analysis of sampled signals in ZmMathd / ZmMathf: the amplitude (and phase)
// spectrum of a window of a curve by a radix-2 FFT, and the auto- or cross-correlation of two
// curves. Curves are x = abscissa (time), y = value. The transform itself runs on
// single-precision complex numbers (ZmComplexNumberf) in both twins, so both twins transform
// the same float values alike; the scalings around it are in the class's precision.
#include <wbcore/WbArray.h>
#include <wbcore/WbError.h>

#include <cstdint>

#include "zemcalc/ZmExport.h"
#include "zemcalc/ZmPoint2.h"

template <class T>
class ZMCALC_API ZmMathSpectrumT {
 public:
  using Curve = WbArrayTempl<ZmPoint2T<T>>;

  // Window weightings of ComputeFFT; any other value applies none.
  static constexpr int FFT_WINDOW_HAMMING = 1;
  static constexpr int FFT_WINDOW_HANN = 2;
  // Longest transform: the bit reversal works on 32-bit indices.
  static constexpr std::uint64_t MAX_FFT_LENGTH = std::uint64_t(1) << 32;

  // Amplitude spectrum of signal[window[0] .. window[1]] (both inclusive), m = window[1] -
  // window[0] + 1 samples, by a radix-2 decimation-in-time FFT of length nfft:
  // 1. The window is read with its abscissas shifted to start at 0: x_i = x[w0+i] - x[w0];
  //    T = the largest x_i.
  // 2. windowType FFT_WINDOW_HAMMING weighs y_i by 0.54 + 0.46*cos((x_i - T/2)*2pi/T),
  //    FFT_WINDOW_HANN by 0.5 + 0.5*cos(...); 0.54, 0.46 and 2pi are float values
  //    (0.5400000214576721, 0.46000000834465027, 6.2831854820251465), widened in ZmMathd.
  // 3. dt = the mean over the m samples of each sample's step: forward difference at the
  //    first, (x_{k+1} - x_{k-1})/2 inside, backward difference at the last, summed in that
  //    order and divided by m. Tn = (nfft - 1)*dt, Tx = x_{m-1} - x_0, df = 1/Tn.
  // 4. Sample i < min(m, nfft) is placed as the float (y_i, 0) at the reversal of i's log2(nfft)
  //    bits (WbBinFile::SwapNBits); the rest is zero padding, samples beyond nfft are ignored.
  // 5. Stages len = 2, 4, ..., nfft: twiddles w_k = 2cos(phi)*w_{k-1} - w_{k-2} in float,
  //    from w_{-2} = e^{2i phi} and w_{-1} = e^{i phi}, phi = 2pi/len in double, each sine and
  //    cosine rounded to float (so w_k ~ e^{-ik phi}, the forward sign; w_0 is 1 only up to
  //    rounding). Butterflies t = w_k*X[s+k+len/2], X[s+k+len/2] = X[s+k] - t,
  //    X[s+k] = X[s+k] + t, in float.
  // 6. With divideByCount every X_i is divided by nfft (in float).
  // 7. spectrum[i] = (i*df, |X_i|*dt/Tx, times 2 for every i > 0, then /0.54 for Hamming or
  //    *2 for Hann), the modulus in float; phase[i] = (i*df, arg(X_i) in degrees): the float
  //    argument in (-pi, pi] times the angle classes' factor 57.2957763671875, so that the
  //    negative real axis is +180 (up to that factor's rounding), never -180.
  // Both arrays get nfft points. The twiddles of a stage are computed once per call, with the
  // very values the recurrence gives for every block, and the butterflies are vectorised: the
  // result is bit for bit that of the plain loop.
  //
  // Errors (the arrays are then left unchanged, except that running out of memory empties
  // them), checked in this order:
  // - "No window given. Can't compute FFT" for a null window;
  // - "Less than 3 points in the window. Can't compute FFT" when m < 3, a reversed window
  //   (window[1] < window[0]) included;
  // - "Window [%d, %d] is outside the signal of %llu points. Can't compute FFT" when
  //   window[0] < 0 or window[1] >= the point count;
  // - "FFT length %llu is not a power of two between 1 and 4294967296. Can't compute FFT"
  //   (0 included);
  // - "Non increasing abscissa values" unless Tn > 0 and Tx > 0 (NaN abscissas included, and
  //   nfft = 1: 1 is the power of two 2^0, but a one-point transform spans Tn = 0);
  // - "Not enough memory to compute an FFT of %llu points" when the work arrays or the results
  //   cannot be allocated.
  // signal may be the spectrum or phase array itself (it is read in full first); spectrum and
  // phase must be distinct arrays.
  static const WbErrObj* ComputeFFT(const Curve& signal, const int* window, int windowType, std::uint64_t nfft,
                                    Curve& spectrum, unsigned char divideByCount, Curve* phase);

  // Correlation of a with b, n = the point count of a; out is resized and overwritten (it may
  // be a or b). Both estimates divide by n (biased), as (1/n)*sum, the sum in increasing i.
  // - Circular (linear = 0): n points; out[k] = (a[k].x, (1/n)*sum_{i<n} a[i].y*b[(k+i) mod n].y).
  // - Linear (linear != 0): 2n - 1 points, lag L = j - n for out[j-1], j = 1 .. 2n-1:
  //   x = 2*a[0].x - a[n-j].x for the negative lags (mirrored about a[0].x), a[j-n].x for the
  //   others; y = (1/n)*sum_{i=0}^{n-L-1} b[i].y*a[i+L].y for L >= 0 and
  //   (1/n)*sum_{i=0}^{nb-|L|-1} a[i].y*b[i+|L|].y for L < 0, nb = the point count of b: the
  //   negative lags run to b's end, the others to a's.
  // Samples outside a record count as 0: a b shorter than a is read as if padded with zeros
  // to n points (in the circular sum too: b[(k+i) mod n] beyond b's end is 0), and the
  // negative lags of a b longer than a stop at a's end. Nothing is read out of bounds. An
  // empty a gives an empty out; out is also emptied when memory runs out.
  // Cost n^2 multiply-adds; each lag's sum stays sequential in i, the lags are vectorised.
  static void ComputeCorrelation(const Curve& a, const Curve& b, unsigned char linear, Curve& out);
};

extern template class ZmMathSpectrumT<double>;
extern template class ZmMathSpectrumT<float>;
