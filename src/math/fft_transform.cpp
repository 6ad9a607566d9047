#include "math/fft_transform.h"

#include <wbcore/WbBinFile.h>
#include <wbcore/WbMem.h>

#include <algorithm>
#include <cmath>

#include "foundation/build_info.h"
#include "foundation/kernel_version.h"
#include "zemcalc/ZmComplex.h"

ZM_BUILD_INFO(fft_transform)

// How the plain algorithm is made fast without changing a bit of its result:
// - every block of a stage restarts the twiddle recurrence and finds the same values, so each
//   stage's twiddles are made once per call;
// - each butterfly takes the same operands in the same order, so the butterflies may run in
//   any order that respects their data flow: along a block (long stages) or across blocks
//   (short stages) in vector registers, and two stages per pass over the data;
// - the butterfly passes and the bit-reversal gather are also built for AVX2
//   (foundation/kernel_version.h).

namespace zm {
namespace fft {

namespace {

constexpr double kTwoPi = 6.28318530717958647692;
// Gap between the rows of the bit-reversal scratch, in floats.
constexpr std::uint64_t kRowGap = 16;

// log2 of a power of two up to 2^32.
int Log2(std::uint64_t nfft) {
  int bits = 0;
  while (bits < 32 && ((nfft >> bits) & 1) == 0) ++bits;
  return bits;
}

// The twiddle recurrence of the stage of length 2*half.
class TwiddleRecurrence {
 public:
  explicit TwiddleRecurrence(std::uint64_t half) {
    const double phi = kTwoPi / static_cast<double>(2 * half);
    m_beforeLast = ZmComplexNumberf(static_cast<float>(std::cos(2 * phi)), static_cast<float>(std::sin(2 * phi)));
    m_last = ZmComplexNumberf(static_cast<float>(std::cos(phi)), static_cast<float>(std::sin(phi)));
    m_twoCos = 2.0f * m_last.Real();
  }
  ZmComplexNumberf Next() {
    const ZmComplexNumberf w = m_last * m_twoCos - m_beforeLast;
    m_beforeLast = m_last;
    m_last = w;
    return w;
  }

 private:
  ZmComplexNumberf m_beforeLast, m_last;
  float m_twoCos = 0;
};

// The recurrence is a chain of dependent steps; the largest stage's run is made alongside the
// smaller stages' runs, which halves the length of the chain.
void MakeTwiddles(std::uint64_t nfft, float* re, float* im) {
  const std::uint64_t largest = nfft / 2;
  const auto store = [re, im](std::uint64_t at, const ZmComplexNumberf& w) {
    re[at] = w.Real();
    im[at] = w.Imag();
  };
  TwiddleRecurrence big(largest);
  std::uint64_t k = 0;
  for (std::uint64_t half = 1; half < largest; half *= 2) {
    TwiddleRecurrence small(half);
    for (std::uint64_t j = 0; j < half; ++j, ++k) {
      store(half - 1 + j, small.Next());
      store(largest - 1 + k, big.Next());
    }
  }
  for (; k < largest; ++k) store(largest - 1 + k, big.Next());
}

// t = w*hi, hi = lo - t, lo = lo + t.
inline void Butterfly(float& loRe, float& loIm, float& hiRe, float& hiIm, float wRe, float wIm) {
  const ZmComplexNumberf t = ZmComplexNumberf(wRe, wIm) ^ ZmComplexNumberf(hiRe, hiIm);
  const ZmComplexNumberf lo(loRe, loIm);
  const ZmComplexNumberf difference = lo - t;
  const ZmComplexNumberf sum = lo + t;
  hiRe = difference.Real();
  hiIm = difference.Imag();
  loRe = sum.Real();
  loIm = sum.Imag();
}

// Butterflies k < count between the runs lo and hi, with twiddles w.
inline void RunButterflies(float* __restrict loRe, float* __restrict loIm, float* __restrict hiRe,
                           float* __restrict hiIm, const float* __restrict wRe, const float* __restrict wIm,
                           std::uint64_t count) {
  for (std::uint64_t k = 0; k < count; ++k) Butterfly(loRe[k], loIm[k], hiRe[k], hiIm[k], wRe[k], wIm[k]);
}

// One stage, block after block, vectorised along each block.
struct Stage {
  ZM_KERNEL_BODY void Run(const Workspace& work, std::uint64_t nfft, std::uint64_t half) {
    for (std::uint64_t s = 0; s < nfft; s += 2 * half)
      RunButterflies(work.re + s, work.im + s, work.re + s + half, work.im + s + half, work.twiddleRe + half - 1,
                     work.twiddleIm + half - 1, half);
  }
};

// A stage of blocks shorter than a vector, vectorised across the blocks.
template <std::uint64_t Half>
inline void ShortStageOn(float* __restrict re, float* __restrict im, std::uint64_t nfft,
                         const float* __restrict twiddleRe, const float* __restrict twiddleIm) {
  float wRe[Half], wIm[Half];
  std::copy(twiddleRe, twiddleRe + Half, wRe);
  std::copy(twiddleIm, twiddleIm + Half, wIm);
  for (std::uint64_t s = 0; s < nfft; s += 2 * Half) {
    for (std::uint64_t k = 0; k < Half; ++k)
      Butterfly(re[s + k], im[s + k], re[s + k + Half], im[s + k + Half], wRe[k], wIm[k]);
  }
}

template <std::uint64_t Half>
struct ShortStage {
  ZM_KERNEL_BODY void Run(const Workspace& work, std::uint64_t nfft) {
    ShortStageOn<Half>(work.re, work.im, nfft, work.twiddleRe + Half - 1, work.twiddleIm + Half - 1);
  }
};

// One block of a pair of stages: with the block's quarters 0 to 3 (runs of half points), the
// pairs (0, 1) and (2, 3) with twiddle k of the first stage (a), then (0, 2) with twiddle k
// and (1, 3) with twiddle k + half of the second (b).
inline void PairButterflies(float* __restrict r0, float* __restrict i0, float* __restrict r1, float* __restrict i1,
                            float* __restrict r2, float* __restrict i2, float* __restrict r3, float* __restrict i3,
                            const float* __restrict aRe, const float* __restrict aIm, const float* __restrict bRe,
                            const float* __restrict bIm, std::uint64_t half) {
  for (std::uint64_t k = 0; k < half; ++k) {
    float x0r = r0[k], x0i = i0[k], x1r = r1[k], x1i = i1[k];
    float x2r = r2[k], x2i = i2[k], x3r = r3[k], x3i = i3[k];
    Butterfly(x0r, x0i, x1r, x1i, aRe[k], aIm[k]);
    Butterfly(x2r, x2i, x3r, x3i, aRe[k], aIm[k]);
    Butterfly(x0r, x0i, x2r, x2i, bRe[k], bIm[k]);
    Butterfly(x1r, x1i, x3r, x3i, bRe[k + half], bIm[k + half]);
    r0[k] = x0r, i0[k] = x0i, r1[k] = x1r, i1[k] = x1i;
    r2[k] = x2r, i2[k] = x2i, r3[k] = x3r, i3[k] = x3i;
  }
}

// The stages half and 2*half in one pass over the data.
struct StagePair {
  ZM_KERNEL_BODY void Run(const Workspace& work, std::uint64_t nfft, std::uint64_t half) {
    for (std::uint64_t s = 0; s < nfft; s += 4 * half) {
      float* re = work.re + s;
      float* im = work.im + s;
      PairButterflies(re, im, re + half, im + half, re + 2 * half, im + 2 * half, re + 3 * half, im + 3 * half,
                      work.twiddleRe + half - 1, work.twiddleIm + half - 1, work.twiddleRe + 2 * half - 1,
                      work.twiddleIm + 2 * half - 1, half);
    }
  }
};

// out[l] = in[low[l] + column], l < count.
struct GatherRow {
  ZM_KERNEL_BODY void Run(const float* __restrict in, float* __restrict out, const std::uint64_t* __restrict low,
                          std::uint64_t column, std::uint64_t count) {
    for (std::uint64_t l = 0; l < count; ++l) out[l] = in[low[l] + column];
  }
};

}  // namespace

Workspace::Workspace(std::uint64_t nfft) {
  // From the twiddle runs on, the block also holds the scratch of LoadBitReversed: nfft points
  // and a gap after each of its rows.
  const std::uint64_t run = nfft + kRunGap;
  const std::uint64_t scratch = nfft + kRowGap * (std::uint64_t(1) << (Log2(nfft) / 2));
  const std::uint64_t size = 2 * run + std::max(2 * run, scratch);
  if (size > SIZE_MAX / sizeof(float)) return;
  float* block = static_cast<float*>(WbMemAlloc(static_cast<std::size_t>(size) * sizeof(float)));
  if (!block) return;
  re = block;
  im = re + run;
  twiddleRe = im + run;
  twiddleIm = twiddleRe + run;
  std::fill(im, im + nfft, 0.0f);
}

Workspace::~Workspace() { WbMemFree(re); }

void LoadBitReversed(const Workspace& work, const float* in, std::uint64_t nfft, WbArrayTempl<std::uint64_t>& tables) {
  const int bits = Log2(nfft);
  const int lowBits = bits / 2, highBits = bits - lowBits;
  const std::uint64_t rows = std::uint64_t(1) << lowBits, columns = std::uint64_t(1) << highBits;
  // in is seen as rows of 2^highBits points: index i is row i >> highBits, column
  // i & (columns - 1), and rev(i) = rev(column)*rows + rev(row). Row j >> lowBits of the
  // result therefore reads column rev(j >> lowBits) of every row of in. The rows are copied
  // kRowGap floats apart into the scratch, so that a column does not crowd into a few cache
  // sets, and the result's rows are made in the order of the columns they read, so that
  // successive rows read the cache lines that the previous ones loaded.
  const std::uint64_t stride = columns + kRowGap;
  float* scratch = work.twiddleRe;
  for (std::uint64_t r = 0; r < rows; ++r) std::copy(in + r * columns, in + (r + 1) * columns, scratch + r * stride);
  tables.SetSize(rows + columns);
  std::uint64_t* rowStart = tables.GetData();
  std::uint64_t* reversedColumn = rowStart + rows;
  // SwapNBits of 0 bits is 0, the reversal of the only index of a 0-bit half.
  for (std::uint64_t r = 0; r < rows; ++r)
    rowStart[r] = WbBinFile::SwapNBits(static_cast<unsigned int>(r), lowBits) * stride;
  for (std::uint64_t c = 0; c < columns; ++c)
    reversedColumn[c] = WbBinFile::SwapNBits(static_cast<unsigned int>(c), highBits);
  for (std::uint64_t column = 0; column < columns; ++column)
    RunKernel<GatherRow>(scratch, work.re + (reversedColumn[column] << lowBits), rowStart, column, rows);
}

void Transform(const Workspace& work, std::uint64_t nfft) {
  MakeTwiddles(nfft, work.twiddleRe, work.twiddleIm);
  std::uint64_t half = 1;
  if (nfft >= 8) {
    RunKernel<ShortStage<1>>(work, nfft);
    RunKernel<ShortStage<2>>(work, nfft);
    RunKernel<ShortStage<4>>(work, nfft);
    half = 8;
  }
  for (; 4 * half <= nfft; half *= 4) RunKernel<StagePair>(work, nfft, half);
  for (; half < nfft; half *= 2) RunKernel<Stage>(work, nfft, half);
}

}  // namespace fft
}  // namespace zm
