#pragma once

// The radix-2 decimation-in-time transform behind ZmMathd::ComputeFFT, on single-precision
// complex values held as separate real and imaginary runs.
#include <wbcore/WbArray.h>

#include <cstddef>
#include <cstdint>

namespace zm {
namespace fft {

// The arrays of one transform of nfft points, parts of one block taken with WbMemAlloc: real
// parts, imaginary parts (zero), and the twiddles of every stage (stage half at offset
// half - 1). The runs start kRunGap floats apart beyond their length, so that the same index
// in two runs does not fall in the same cache set. When memory runs out, re is null.
class Workspace {
 public:
  explicit Workspace(std::uint64_t nfft);
  ~Workspace();
  Workspace(const Workspace&) = delete;
  Workspace& operator=(const Workspace&) = delete;

  float* re = nullptr;
  float* im = nullptr;
  float* twiddleRe = nullptr;
  float* twiddleIm = nullptr;

 private:
  static constexpr std::uint64_t kRunGap = 16;
};

// work.re[j] = in[rev(j)] for j < nfft (a power of two up to 2^32), rev(j) the reversal of
// j's log2(nfft) bits. rev is joined from the reversals of the low and high halves of the
// bits, rev(high*2^h + low) = rev_h(low)*2^(bits-h) + rev_(bits-h)(high), each half reversed
// once by WbBinFile::SwapNBits into tables. The twiddle runs serve as scratch: call it before
// Transform.
void LoadBitReversed(const Workspace& work, const float* in, std::uint64_t nfft, WbArrayTempl<std::uint64_t>& tables);

// Transforms work.re / work.im in place (input in bit-reversed order), nfft a power of two
// >= 2. Stage len = 2, 4, ... nfft uses the twiddles w_k = 2cos(phi) w_{k-1} - w_{k-2} from
// w_{-2} = e^{2i phi}, w_{-1} = e^{i phi}, phi = 2pi/len in double, each sine and cosine
// rounded to float, and the butterflies t = w_k X[s+k+len/2], X[s+k+len/2] = X[s+k] - t,
// X[s+k] = X[s+k] + t, all in float: the result is bit for bit that of the plain loops.
void Transform(const Workspace& work, std::uint64_t nfft);

}  // namespace fft
}  // namespace zm
