#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>

#include <wbcore/WbMem.h>

#include "filters/filter_errors.h"
#include "foundation/build_info.h"
#include "foundation/kernel_version.h"
#include "zemcalc/ZmFilterCFC.h"
#include "zemcalc/ZmUnitSystem.h"

ZM_BUILD_INFO(cfc_butterworth)

using zm::filter::Fail;

namespace {

constexpr const wchar_t* kBadClass = L"Can't process filtering. The channel frequency class %g is not a positive number";
constexpr const wchar_t* kBadEnds = L"Unknown end treatment %d";
constexpr const wchar_t* kBadDesign = L"Unknown design constant %d";
constexpr const wchar_t* kBadUnit = L"Unknown time unit %d";
constexpr const wchar_t* kBadTolerance = L"Can't process filtering. The step tolerance %g is not a non-negative number";
constexpr const wchar_t* kNotIncreasing = L"Can't process filtering. The abscissae do not increase (mean step %g)";
constexpr const wchar_t* kUneven =
    L"Can't process filtering. The time step %g of interval %d differs from the mean step %g by more than %g %%";
constexpr const wchar_t* kLowRate =
    L"Can't process filtering. The sampling rate %g Hz is lower than 10 times the channel frequency class %g";
constexpr const wchar_t* kAboveNyquist =
    L"Can't process filtering. The design frequency %g Hz is not below half the sampling rate %g Hz";

double DesignConstant(ZmCFCDesign design) { return design == ZmCFCDesignISO6487 ? 25.0 / 12.0 : 2.0775; }

// Seconds in one unit of time (1 / the catalogue's units per second, in double); NaN for a
// unit the catalogue cannot convert.
double SecondsPerUnit(_ZmUnitTime unit) {
  if (unit == ZmUnitSecond) return 1.0;
  const ZmUnitSystem seconds(ZmUnitLengthUnset, ZmUnitMassUnset, ZmUnitSecond, ZmUnitTempUnset, ZmUnitAngleUnset);
  const ZmUnitSystem to(ZmUnitLengthUnset, ZmUnitMassUnset, unit, ZmUnitTempUnset, ZmUnitAngleUnset);
  ZmUnitConverter converter;
  unsigned char needed = 0;
  if (converter.InitFromTo(seconds, to, needed, &ZmUnitDimTime) != nullptr) return std::nan("");
  const double perSecond = converter.GetFactor(ZmUnitTypeTime);
  return perSecond > 0.0 && std::isfinite(perSecond) ? 1.0 / perSecond : std::nan("");
}

// A pass computes y[t] = a0 x[t] + a1 x[t-1] + a2 x[t-2] + b1 y[t-1] + b2 y[t-2] over blocks of
// kBlock outputs. With h the impulse response of its all-pole part (h0 = 1, h1 = b1,
// hm = b1 h(m-1) + b2 h(m-2), 0 for m < 0), output j of the block that starts at t is
//     y[t+j] = (P_j + K_j s) + G_j y[t-1],   s = y[t-1] - y[t-2],
//     P_j = sum over i = -2 .. kBlock-1 of W_ij x[t+i] (in that order),
//     W_ij = sum over k = 0 .. 2 with 0 <= i+k <= j of a_k h(j-i-k) (in that order),
//     G_j = h(j+1) + b2 h(j),   K_j = -b2 h(j):
// every output of a block depends only on the inputs and on the last output and step before the
// block, so the outputs of a block are the lanes of one vector, and the chain from block to
// block is one multiplication and one addition long. The recursion carries the last output and
// its step from the output before (s) rather than the last two outputs: with poles close to 1
// (a low class at a high rate) G_j is close to 1 and K_j s small, where the weights of the last
// two outputs would be large and of opposite signs, so a block rounds no worse than the plain
// recursion. The step to carry is computed as ((P_7 - P_6) + (K_7 - K_6) s) + (G_7 - G_6) y[t-1],
// its weights from the steps of h.
constexpr int kBlock = 8;

// The weights of a block (above), derived in double from the coefficients.
struct alignas(64) BlockWeights {
  double input[kBlock + 2][kBlock];  // input[i + 2][j] = W_ij, i = -2 .. kBlock-1
  double level[kBlock];              // G_j
  double slope[kBlock];              // K_j
  double levelStep, slopeStep;       // G_7 - G_6, K_7 - K_6

  explicit BlockWeights(const ZmCFCCoefficients& c) {
    double h[kBlock + 3] = {0.0, 0.0, 1.0};  // h[m + 2] = h(m)
    for (int m = 1; m <= kBlock; ++m) h[m + 2] = c.b1 * h[m + 1] + c.b2 * h[m];
    // x[t+i] enters y[t+j] through a_k x[t+i] in the FIR part at t+i+k, for i+k in 0 .. j (the
    // FIR parts before the block are in y[t-1] and y[t-2]), weighed by h(j-i-k).
    const double a[3] = {c.a0, c.a1, c.a2};
    for (int i = -2; i < kBlock; ++i) {
      for (int j = 0; j < kBlock; ++j) {
        double sum = 0.0;
        for (int k = 0; k < 3; ++k) {
          if (i + k >= 0 && i + k <= j) sum += a[k] * h[j - i - k + 2];
        }
        input[i + 2][j] = sum;
      }
    }
    // The steps dh(m) = h(m+1) - h(m) follow the same recursion from dh(-1) = 1, dh(0) = b1 - 1;
    // G and its steps summed from them stay exact where G is close to 1 and h large.
    double dh[kBlock + 1] = {1.0, c.b1 - 1.0};  // dh[m + 1] = dh(m)
    for (int m = 1; m < kBlock; ++m) dh[m + 1] = c.b1 * dh[m] + c.b2 * dh[m - 1];
    level[0] = c.b1 + c.b2;
    for (int j = 1; j < kBlock; ++j) level[j] = level[j - 1] + (dh[j + 1] + c.b2 * dh[j]);
    for (int j = 0; j < kBlock; ++j) slope[j] = -c.b2 * h[j + 2];
    levelStep = dh[kBlock] + c.b2 * dh[kBlock - 1];
    slopeStep = -c.b2 * dh[kBlock - 1];
  }
};

// The state between two outputs: the last two inputs, the last output and its step.
struct PassState {
  double x1, x2, y1, step;
};

// The loops over the lanes and inputs of a block are unrolled whole, so that the block lives in
// registers.
#define ZM_UNROLL _Pragma("GCC unroll 16")

// A block is computed as groups of kGroup lanes; group g sums the inputs i = -2 .. kGroup (g+1) - 1
// (the weights of the later inputs are 0 for all its lanes, and the earlier lanes of a group add
// their zero-weighted terms last). Every version performs exactly these operations on each
// lane, whatever its register width, so every processor gets the same bits.
constexpr int kGroup = 4;

// Bytes / sizeof(double) doubles, one register of the instruction set that a version targets,
// readable at any address of a double.
template <int Bytes>
struct Vector {
  typedef double type __attribute__((vector_size(Bytes), aligned(sizeof(double)), may_alias));
};

// n values read through `read` (a function of the index) are replaced through `write` by the
// outputs; the last block of a stretch is completed with zero inputs, its extra lanes dropped.
template <int Bytes>
struct BlockRecursion {
  typedef typename Vector<Bytes>::type V;
  static constexpr int kLanes = Bytes / static_cast<int>(sizeof(double));
  static constexpr int kVectors = kBlock / kLanes;

  // Vectors are only made inside the versions' functions (no function of this header returns
  // one): a broadcast is x - (+0), which is x for every x, -0 and NaN included.
#define ZM_AT(p, k) (*reinterpret_cast<const V*>((p) + (k)*kLanes))

  // The outputs y[0 .. kBlock-1] of the block of inputs x(0) .. x(kBlock-1) after the state
  // s; p gets P_(kBlock-2) and P_(kBlock-1). Each input is broadcast straight from where x reads.
  template <class Input>
  static inline __attribute__((always_inline)) void Block(const BlockWeights& w, const PassState& s, const Input& x,
                                                          double* y, double* p) {
    V sum[kVectors];
    const V x2 = s.x2 - V{}, x1 = s.x1 - V{};
    ZM_UNROLL
    for (int k = 0; k < kVectors; ++k) sum[k] = ZM_AT(w.input[0], k) * x2;
    ZM_UNROLL
    for (int k = 0; k < kVectors; ++k) sum[k] += ZM_AT(w.input[1], k) * x1;
    ZM_UNROLL
    for (int i = 0; i < kBlock; ++i) {
      const V xi = x(i) - V{};
      ZM_UNROLL
      for (int k = (i / kGroup) * kGroup / kLanes; k < kVectors; ++k) sum[k] += ZM_AT(w.input[i + 2], k) * xi;
    }
    p[0] = sum[kVectors - 1][kLanes - 2 >= 0 ? kLanes - 2 : 0];
    p[1] = sum[kVectors - 1][kLanes - 1];
    const V step = s.step - V{}, y1 = s.y1 - V{};
    ZM_UNROLL
    for (int k = 0; k < kVectors; ++k) {
      const V out = (sum[k] + ZM_AT(w.slope, k) * step) + ZM_AT(w.level, k) * y1;
      ZM_UNROLL
      for (int l = 0; l < kLanes; ++l) y[k * kLanes + l] = out[l];
    }
  }

  template <class Read, class Write>
  static inline __attribute__((always_inline)) void Run(const BlockWeights& w, std::uint64_t n, const Read& read,
                                                        const Write& write, PassState& s) {
    double y[kBlock], p[2];
    std::uint64_t t = 0;
    for (; t + kBlock <= n; t += kBlock) {
      Block(w, s, [&](int i) { return read(t + static_cast<std::uint64_t>(i)); }, y, p);
      // The next block needs only these two values: y[kBlock-1] again and its step, on their
      // own, so that the chain does not wait for the vectors.
      const double last = (p[1] + w.slope[kBlock - 1] * s.step) + w.level[kBlock - 1] * s.y1;
      s.step = ((p[1] - p[0]) + w.slopeStep * s.step) + w.levelStep * s.y1;
      s.y1 = last;
      s.x2 = read(t + kBlock - 2);
      s.x1 = read(t + kBlock - 1);  // read before the block is written: they may share memory
      ZM_UNROLL
      for (int j = 0; j < kBlock; ++j) write(t + j, y[j]);
    }
    if (t < n) {
      const int m = static_cast<int>(n - t);
      double x[kBlock];
      for (int i = 0; i < kBlock; ++i) x[i] = i < m ? read(t + static_cast<std::uint64_t>(i)) : 0.0;
      Block(w, s, [&x](int i) { return x[i]; }, y, p);
      s.step = y[m - 1] - (m >= 2 ? y[m - 2] : s.y1);
      s.y1 = y[m - 1];
      s.x2 = m >= 2 ? x[m - 2] : s.x1;
      s.x1 = x[m - 1];
      for (int j = 0; j < m; ++j) write(t + static_cast<std::uint64_t>(j), y[j]);
    }
  }
};

template <class... Args>
void RunBlocksDefault(Args&&... args) {
  BlockRecursion<16>::Run(std::forward<Args>(args)...);
}

#if ZM_HAS_KERNEL_VERSIONS
template <class... Args>
ZM_TARGET_AVX2 void RunBlocksAvx2(Args&&... args) {
  BlockRecursion<32>::Run(std::forward<Args>(args)...);
}
#endif

// One stretch of a pass in the widest kernel version allowed (the library's one choice); the
// AVX-512 processors run the AVX2 version (a group is four lanes).
template <class Read, class Write>
void RunBlocks(const BlockWeights& w, std::uint64_t n, const Read& read, const Write& write, PassState& s) {
#if ZM_HAS_KERNEL_VERSIONS
  if (zm::ChosenKernelVersion() >= zm::KernelVersion::kAvx2) return RunBlocksAvx2(w, n, read, write, s);
#endif
  RunBlocksDefault(w, n, read, write, s);
}

// The recursion of one pass, started in the steady state of `start` (0 for a start at rest),
// run over stretches of values (left padding, samples, right padding) in blocks counted from
// the start of each stretch.
class Recursion {
 public:
  Recursion(const ZmCFCCoefficients& c, double start) : m_w(c), m_state{start, start, start, 0.0} {}

  // Replaces v[0 .. n-1] (read through `read`, written through `write`) by the outputs.
  template <class Read, class Write>
  void Run(std::uint64_t n, Read read, Write write) {
    RunBlocks(m_w, n, read, write, m_state);
  }

 private:
  const BlockWeights m_w;
  PassState m_state;
};

// Continues the values v[0 .. count-1] (count >= 2, pad <= count - 1) by pad samples on each
// side: left[0 .. pad-1] ends next to v[0], right[0 .. pad-1] starts next to v[count-1].
template <class P>
void PadEnds(const P* in, std::uint64_t count, std::uint64_t pad, ZmFilterEnds ends, double* left, double* right) {
  const double first = in[0].y;
  const double last = in[count - 1].y;
  for (std::uint64_t k = 1; k <= pad; ++k) {
    const double before = in[k].y;              // k samples in from the start
    const double after = in[count - 1 - k].y;   // k samples in from the end
    double l = first, r = last;                 // constant
    if (ends == ZmFilterEndsReflection) {
      l = 2.0 * first - before;
      r = 2.0 * last - after;
    } else if (ends == ZmFilterEndsMirror) {
      l = before;
      r = after;
    }
    left[pad - k] = l;
    right[k - 1] = r;
  }
}

}  // namespace

template <class Base>
ZmFilterCFCButterworthT<Base>::ZmFilterCFCButterworthT(double cfc, _ZmUnitTime unit, ZmFilterEnds ends,
                                                       ZmCFCDesign design)
    : m_cfc(cfc),
      m_unit(unit),
      m_ends(ends),
      m_design(design),
      m_padLength(-1),
      m_tolerance(1.0e-2),
      m_allowLowRate(0) {}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::CheckSettings(double& secondsPerUnit) const {
  if (!(m_cfc > 0.0) || !std::isfinite(m_cfc)) return Fail(kBadClass, m_cfc);
  if (m_ends < ZmFilterEndsReflection || m_ends > ZmFilterEndsNone) return Fail(kBadEnds, static_cast<int>(m_ends));
  if (m_design != ZmCFCDesignJ211 && m_design != ZmCFCDesignISO6487) {
    return Fail(kBadDesign, static_cast<int>(m_design));
  }
  if (!(m_tolerance >= 0.0) || !std::isfinite(m_tolerance)) return Fail(kBadTolerance, m_tolerance);
  secondsPerUnit = SecondsPerUnit(m_unit);
  if (std::isnan(secondsPerUnit)) return Fail(kBadUnit, static_cast<int>(m_unit));
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::ComputeCoefficients(double step, ZmCFCCoefficients& c) const {
  double secondsPerUnit = 0.0;
  if (const WbErrObj* error = CheckSettings(secondsPerUnit)) return error;
  if (!(step > 0.0) || !std::isfinite(step)) return Fail(kNotIncreasing, step);
  const double period = step * secondsPerUnit;
  const double rate = 1.0 / period;
  const double design = DesignConstant(m_design) * m_cfc;
  if (!(design * period < 0.5)) return Fail(kAboveNyquist, design, rate);
  if (!m_allowLowRate && rate < 10.0 * m_cfc) return Fail(kLowRate, rate, m_cfc);
  const double pi = 3.14159265358979323846;
  const double sqrt2 = 1.41421356237309504880;
  const double wd = 2.0 * pi * design;
  const double wa = std::tan(wd * period / 2.0);
  const double wa2 = wa * wa;
  const double d = 1.0 + sqrt2 * wa + wa2;
  c.a0 = wa2 / d;
  c.a1 = 2.0 * c.a0;
  c.a2 = c.a0;
  c.b1 = -2.0 * (wa2 - 1.0) / d;
  c.b2 = (-1.0 + sqrt2 * wa - wa2) / d;
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::CheckSteps(const Point* p, std::uint64_t from, std::uint64_t to,
                                                          double step) const {
  // Every interval is tested (no early exit, so that the loop runs at full speed); the first
  // one out of tolerance is searched only when there is one.
  const double allowed = m_tolerance * step;
  bool even = true;
  for (std::uint64_t i = from; i < to; ++i) {
    even &= std::fabs((static_cast<double>(p[i].x) - static_cast<double>(p[i - 1].x)) - step) <= allowed;
  }
  if (even) return nullptr;
  for (std::uint64_t i = from;; ++i) {
    const double dt = static_cast<double>(p[i].x) - static_cast<double>(p[i - 1].x);
    if (!(std::fabs(dt - step) <= allowed)) {
      return Fail(kUneven, dt, static_cast<int>(i < 0x7fffffffu ? i : 0x7fffffffu), step, 100.0 * m_tolerance);
    }
  }
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::Prepare(const Point* in, std::uint64_t count, const Point* out,
                                                       ZmCFCCoefficients& c, std::uint64_t& pad, double& step) const {
  if (count < 2) return Fail(zm::filter::kNotEnoughPoints);
  step = (static_cast<double>(in[count - 1].x) - static_cast<double>(in[0].x)) / static_cast<double>(count - 1);
  if (!(step > 0.0) || !std::isfinite(step)) return Fail(kNotIncreasing, step);
  if (const WbErrObj* error = ComputeCoefficients(step, c)) return error;
  // Filtering into another array, Run tests the steps stretch by stretch just before the
  // forward pass reads them (one pass over the curve less); in place, nothing may be written
  // before all have passed.
  if (in == out) {
    if (const WbErrObj* error = CheckSteps(in, 1, count, step)) return error;
  }
  pad = 0;
  if (m_ends != ZmFilterEndsNone) {
    double automatic = std::ceil(3.0 / (m_cfc * step * SecondsPerUnit(m_unit)));
    std::uint64_t wanted = m_padLength >= 0 ? static_cast<std::uint64_t>(m_padLength)
                                            : (automatic < 1.0e18 ? static_cast<std::uint64_t>(automatic) : count);
    pad = wanted < count - 1 ? wanted : count - 1;
  }
  return nullptr;
}

// The forward results wait for the backward pass in double: in the double class in target's
// own values; in the float class, filtering into another array, in the eight bytes of each
// target point (a float point is as large as a double; its abscissa is written by the backward
// pass), and filtering in place, in a work array.
template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::Run(const ZmCFCCoefficients& c, std::uint64_t pad, double step,
                                                   const Point* source, std::uint64_t count, Point* target) const {
  static_assert(sizeof(Point) == 2 * sizeof(T) && sizeof(ZmPoint2T<float>) == sizeof(double), "points are (x, y)");
  constexpr bool kDouble = std::is_same<T, double>::value;
  const bool inWork = !kDouble && source == target;
  double* w = static_cast<double*>(WbMemAlloc((2 * pad + (inWork ? count : 0) + 1) * sizeof(double)));
  if (!w) return Fail(zm::filter::kNotEnoughMemory);
  double* left = w;
  double* right = w + pad;
  double* held = w + 2 * pad;
  PadEnds(source, count, pad, m_ends, left, right);
  const bool atRest = m_ends == ZmFilterEndsNone;
  const auto keep = [=](std::uint64_t i, double y) {
    if constexpr (kDouble) {
      target[i].y = y;
    } else if (inWork) {
      held[i] = y;
    } else {
      std::memcpy(static_cast<void*>(target + i), &y, sizeof y);
    }
  };
  const auto kept = [=](std::uint64_t i) -> double {
    double y = 0.0;
    if constexpr (kDouble) {
      y = target[i].y;
    } else if (inWork) {
      y = held[i];
    } else {
      std::memcpy(&y, static_cast<const void*>(target + i), sizeof y);
    }
    return y;
  };

  // Forward over the left padding, the samples and the right padding; a sample is read before
  // its slot in target (which may be source) is written. The samples go in stretches of
  // kStepsAhead (a multiple of the block), each tested first when source is not target.
  Recursion forward(c, atRest ? 0.0 : (pad > 0 ? left[0] : static_cast<double>(source[0].y)));
  forward.Run(pad, [left](std::uint64_t i) { return left[i]; }, [](std::uint64_t, double) {});
  constexpr std::uint64_t kStepsAhead = 4096;
  for (std::uint64_t from = 0; from < count; from += kStepsAhead) {
    const std::uint64_t n = count - from < kStepsAhead ? count - from : kStepsAhead;
    if (source != target) {
      if (const WbErrObj* error = CheckSteps(source, from > 0 ? from : 1, from + n, step)) {
        WbMemFree(w);
        return error;
      }
    }
    forward.Run(n, [source, from](std::uint64_t i) { return static_cast<double>(source[from + i].y); },
                [&keep, from](std::uint64_t i, double y) { keep(from + i, y); });
  }
  forward.Run(pad, [right](std::uint64_t i) { return right[i]; }, [right](std::uint64_t i, double y) { right[i] = y; });

  // Backward from the end of the right padding; the left padding's results are never needed.
  // Each point is written whole (abscissa, result) after its forward result has been read.
  Recursion backward(c, atRest ? 0.0 : (pad > 0 ? right[pad - 1] : kept(count - 1)));
  backward.Run(pad, [right, pad](std::uint64_t i) { return right[pad - 1 - i]; }, [](std::uint64_t, double) {});
  backward.Run(count, [&kept, count](std::uint64_t i) { return kept(count - 1 - i); },
               [source, target, count](std::uint64_t i, double y) {
                 const std::uint64_t j = count - 1 - i;
                 const T x = source[j].x;
                 target[j].x = x;
                 target[j].y = static_cast<T>(y);
               });
  WbMemFree(w);
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::Compute(const Curve& in, Curve& out) {
  const std::uint64_t count = in.GetSize();
  ZmCFCCoefficients c{};
  std::uint64_t pad = 0;
  double step = 0.0;
  const WbErrObj* error = Prepare(in.GetData(), count, &in == &out ? in.GetData() : nullptr, c, pad, step);
  if (!error && &in != &out) {
    try {
      out.SetSize(count);
    } catch (const std::bad_alloc&) {
      error = Fail(zm::filter::kNotEnoughMemory);
    }
  }
  if (!error) error = Run(c, pad, step, in.GetData(), count, out.GetData());
  // In place nothing is written before every check has passed; otherwise out becomes the copy.
  return zm::filter::KeepInputOnFailure(error, in, out);
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::ComputeSpan(const Point* in, std::uint64_t count, Point* out) {
  ZmCFCCoefficients c{};
  std::uint64_t pad = 0;
  double step = 0.0;
  const WbErrObj* error = Prepare(in, count, out, c, pad, step);
  if (!error) error = Run(c, pad, step, in, count, out);
  if (error && in != out && count > 0) std::memmove(static_cast<void*>(out), in, count * sizeof(Point));
  return error;
}

template class ZmFilterCFCButterworthT<ZmFilterd>;
template class ZmFilterCFCButterworthT<ZmFilterf>;

WB_IMPLEMENT_DYNAMIC(ZmFilterCFCd, ZmFilterd, new ZmFilterCFCd)
WB_IMPLEMENT_DYNAMIC(ZmFilterCFCf, ZmFilterf, new ZmFilterCFCf)
