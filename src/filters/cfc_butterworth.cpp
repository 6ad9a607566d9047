#include <cmath>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

#include <wbcore/WbMem.h>

#include "filters/filter_errors.h"
#include "foundation/build_info.h"
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

#if defined(__GNUC__) && !defined(__clang__)
#define ZM_KEEP_LOOP_WHOLE __attribute__((optimize("no-tree-loop-distribution", "fp-contract=off")))
#else
#define ZM_KEEP_LOOP_WHOLE
#endif

// Two values worked on by one instruction of the processor where the compiler offers a vector
// type; otherwise by two. Each lane is rounded as a double on its own, so both give the same bits.
#if defined(__GNUC__)
typedef double Lanes __attribute__((vector_size(2 * sizeof(double))));
#else
struct Lanes {
  double v[2];
  double operator[](int k) const { return v[k]; }
  friend Lanes operator+(Lanes a, Lanes b) { return {{a.v[0] + b.v[0], a.v[1] + b.v[1]}}; }
  friend Lanes operator*(double a, Lanes b) { return {{a * b.v[0], a * b.v[1]}}; }
};
#endif

// The recursion of one pass, started in the steady state of `start` (0 for a start at rest),
// over doubles or over two lanes (two stretches of a pass at once, Lanes).
// Run over a stretch of values two at a time: the second output of a pair comes from the
// recursion with the first one substituted, so that both wait only for the two outputs before
// the pair and the processor works on them side by side. The pass waits on that chain of
// multiplications and additions; a test of each sample (`check`, true when it passes) run in
// the same loop costs next to nothing, where a pass of its own would cost a fifth of the filter.
template <class V>
class Recursion {
 public:
  Recursion(const ZmCFCCoefficients& c, V start)
      : m_c(c), m_c2(c.b1 * c.b1 + c.b2), m_c3(c.b1 * c.b2), m_x1(start), m_x2(start), m_y1(start), m_y2(start) {}
  // The two lanes carry the states of `a` and `b`.
  Recursion(const Recursion<double>& a, const Recursion<double>& b)
      : m_c(a.m_c), m_c2(a.m_c2), m_c3(a.m_c3), m_x1(Join(a.m_x1, b.m_x1)), m_x2(Join(a.m_x2, b.m_x2)),
        m_y1(Join(a.m_y1, b.m_y1)), m_y2(Join(a.m_y2, b.m_y2)) {}
  // The state of lane k.
  Recursion<double> Lane(int k) const {
    Recursion<double> r(m_c, 0.0);
    r.m_x1 = m_x1[k], r.m_x2 = m_x2[k], r.m_y1 = m_y1[k], r.m_y2 = m_y2[k];
    return r;
  }
  const ZmCFCCoefficients& Coefficients() const { return m_c; }

  // Replaces v[0 .. n-1] (read through `read`, written through `write`) by the outputs; true
  // when check(i) held for every i.
  // GCC would split a write of two values (the abscissa copied next to the output) into a
  // loop of its own, one more pass over both curves: the loop is kept whole.
  template <class Read, class Write, class Check>
  ZM_KEEP_LOOP_WHOLE bool Run(std::uint64_t n, Read read, Write write, Check check) {
    const ZmCFCCoefficients& c = m_c;
    int passed = 1;  // and-ed without a branch
    std::uint64_t i = 0;
    for (; i + 1 < n; i += 2) {
      const V x = read(i), xn = read(i + 1);
      passed &= static_cast<int>(check(i)) & static_cast<int>(check(i + 1));
      const V u = (c.a0 * x + c.a1 * m_x1) + c.a2 * m_x2;
      const V un = (c.a0 * xn + c.a1 * x) + c.a2 * m_x1;
      const V y = (u + c.b2 * m_y2) + c.b1 * m_y1;
      const V yn = ((un + c.b1 * u) + m_c3 * m_y2) + m_c2 * m_y1;
      write(i, y);
      write(i + 1, yn);
      m_x2 = x;
      m_x1 = xn;
      m_y2 = y;
      m_y1 = yn;
    }
    if (i < n) {
      const V x = read(i);
      passed &= static_cast<int>(check(i));
      const V y = (((c.a0 * x + c.a1 * m_x1) + c.a2 * m_x2) + c.b2 * m_y2) + c.b1 * m_y1;
      write(i, y);
      m_x2 = m_x1;
      m_x1 = x;
      m_y2 = m_y1;
      m_y1 = y;
    }
    return passed != 0;
  }
  template <class Read, class Write>
  void Run(std::uint64_t n, Read read, Write write) {
    Run(n, read, write, [](std::uint64_t) { return true; });
  }

 private:
  template <class>
  friend class Recursion;
  static Lanes Join(double a, double b) { return Lanes{a, b}; }

  ZmCFCCoefficients m_c;
  double m_c2, m_c3;  // b1^2 + b2 and b1 b2: the weights of y[t-1], y[t-2] in y[t+1]
  V m_x1, m_x2, m_y1, m_y2;
};

// The samples after which the recursion has forgotten how it started: a difference in its
// state dies out as |d| r^k / sin(theta) at most, with r e^(+-i theta) the poles (the roots
// of z^2 = b1 z + b2, complex for every class and rate: b1^2 + 4 b2 = -8 wa^2 / D^2); k is
// taken where that is 2^-70 of the difference. 0 when it cannot be told (poles on the circle).
std::uint64_t MemoryLength(const ZmCFCCoefficients& c) {
  const double r2 = -c.b2;
  const double im = std::sqrt(-(c.b1 * c.b1 + 4.0 * c.b2));  // 2 r sin(theta)
  const double logR = 0.5 * std::log1p(r2 - 1.0);
  if (!(r2 > 0.0 && logR < 0.0 && im > 0.0)) return 0;
  const double samples = (70.0 * std::log(2.0) + std::log(2.0 * std::sqrt(r2) / im)) / -logR;
  return samples < 1.0e15 ? static_cast<std::uint64_t>(samples) + 1 : 0;
}

// One pass over n values, continuing `r`. A record longer than 4 memory lengths (and than 4096
// samples) is cut at h = n / 2 and its halves run side by side in the two lanes: the second
// half's lane starts `memory` samples before h, in the steady state of the value there, and
// runs up to h without writing, by when its state is the one the first half's lane reaches at
// h to within 2^-70 of the values' scale. The outputs differ from those of one pass over the
// whole record only by rounding (the second half's are rounded along another path). `r` ends in
// the state after value n-1.
template <class Read, class Write, class Check>
bool Pass(Recursion<double>& r, std::uint64_t n, std::uint64_t memory, Read read, Write write, Check check) {
  if (memory == 0 || n < 4096 || n / 4 < memory) return r.Run(n, read, write, check);
  const std::uint64_t h = n / 2;
  Recursion<double> second(r.Coefficients(), read(h - memory));
  second.Run(memory, [read, h, memory](std::uint64_t i) { return read(h - memory + i); }, [](std::uint64_t, double) {});
  Recursion<Lanes> both(r, second);
  const bool passed = both.Run(
      h, [read, h](std::uint64_t i) { return Lanes{read(i), read(h + i)}; },
      [write, h](std::uint64_t i, Lanes y) {
        write(i, y[0]);
        write(h + i, y[1]);
      },
      [check, h](std::uint64_t i) { return (static_cast<int>(check(i)) & static_cast<int>(check(h + i))) != 0; });
  r = both.Lane(1);
  const std::uint64_t done = 2 * h;
  return r.Run(
             n - done, [read, done](std::uint64_t i) { return read(done + i); },
             [write, done](std::uint64_t i, double y) { write(done + i, y); },
             [check, done](std::uint64_t i) { return check(done + i); }) &&
         passed;
}

// The rule of one interval: NaN and infinite steps fail it.
inline bool StepFits(double dt, double step, double allowed) { return std::fabs(dt - step) <= allowed; }

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
const WbErrObj* ZmFilterCFCButterworthT<Base>::CheckSteps(const Point* p, std::uint64_t count, double step) const {
  const double allowed = m_tolerance * step;
  for (std::uint64_t i = 1; i < count; ++i) {
    const double dt = static_cast<double>(p[i].x) - static_cast<double>(p[i - 1].x);
    if (!StepFits(dt, step, allowed)) {
      return Fail(kUneven, dt, static_cast<int>(i < 0x7fffffffu ? i : 0x7fffffffu), step, 100.0 * m_tolerance);
    }
  }
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::Prepare(const Point* in, std::uint64_t count,
                                                       ZmCFCCoefficients& c, std::uint64_t& pad, double& step) const {
  if (count < 2) return Fail(zm::filter::kNotEnoughPoints);
  step = (static_cast<double>(in[count - 1].x) - static_cast<double>(in[0].x)) / static_cast<double>(count - 1);
  if (!(step > 0.0) || !std::isfinite(step)) return Fail(kNotIncreasing, step);
  if (const WbErrObj* error = ComputeCoefficients(step, c)) return error;
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
// The steps are tested before any result is kept when filtering in place; filtering into
// another array, in the loop of the forward pass, and the precise test only runs to name the
// interval once a step has failed there (the callers then overwrite target with the input, so
// the results already kept never show).
template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::Run(const ZmCFCCoefficients& c, std::uint64_t pad, double step,
                                                   const Point* source, std::uint64_t count, Point* target) const {
  static_assert(sizeof(Point) == 2 * sizeof(T) && sizeof(ZmPoint2T<float>) == sizeof(double), "points are (x, y)");
  constexpr bool kDouble = std::is_same<T, double>::value;
  const bool inPlace = source == target;
  if (inPlace) {
    if (const WbErrObj* error = CheckSteps(source, count, step)) return error;
  }
  const bool inWork = !kDouble && inPlace;
  double* w = static_cast<double*>(WbMemAlloc((2 * pad + (inWork ? count : 0) + 1) * sizeof(double)));
  if (!w) {
    const WbErrObj* error = inPlace ? nullptr : CheckSteps(source, count, step);
    return error ? error : Fail(zm::filter::kNotEnoughMemory);
  }
  double* left = w;
  double* right = w + pad;
  double* held = w + 2 * pad;
  PadEnds(source, count, pad, m_ends, left, right);
  const bool atRest = m_ends == ZmFilterEndsNone;
  const auto keep = [=](std::uint64_t i, double y) {
    if constexpr (kDouble) {
      target[i].x = source[i].x;  // read on the way already: the backward pass writes y only
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
  // Interval i joins points i-1 and i; point 0 has none and tests interval 1 (count >= 2)
  // instead. Filtering in place, the steps were tested already.
  const double allowed = m_tolerance * step;
  const auto fits = [source, step, allowed](std::uint64_t i) {
    const std::uint64_t j = i + (i == 0);
    return StepFits(static_cast<double>(source[j].x) - static_cast<double>(source[j - 1].x), step, allowed);
  };

  // Forward over the left padding, the samples and the right padding; a sample is read before
  // its slot in target (which may be source) is written.
  const std::uint64_t memory = MemoryLength(c);
  Recursion<double> forward(c, atRest ? 0.0 : (pad > 0 ? left[0] : static_cast<double>(source[0].y)));
  forward.Run(pad, [left](std::uint64_t i) { return left[i]; }, [](std::uint64_t, double) {});
  const auto samples = [source](std::uint64_t i) { return static_cast<double>(source[i].y); };
  const bool passed = inPlace ? Pass(forward, count, memory, samples, keep, [](std::uint64_t) { return true; })
                              : Pass(forward, count, memory, samples, keep, fits);
  if (!passed) {
    if (const WbErrObj* error = CheckSteps(source, count, step)) {
      WbMemFree(w);
      return error;
    }
  }
  forward.Run(pad, [right](std::uint64_t i) { return right[i]; }, [right](std::uint64_t i, double y) { right[i] = y; });

  // Backward from the end of the right padding; the left padding's results are never needed.
  // In the float class each point is written whole (abscissa, result) after its forward result
  // has been read; the double class has its abscissae from the forward pass.
  Recursion<double> backward(c, atRest ? 0.0 : (pad > 0 ? right[pad - 1] : kept(count - 1)));
  backward.Run(pad, [right, pad](std::uint64_t i) { return right[pad - 1 - i]; }, [](std::uint64_t, double) {});
  Pass(
      backward, count, memory, [kept, count](std::uint64_t i) { return kept(count - 1 - i); },
      [=](std::uint64_t i, double y) {
        const std::uint64_t j = count - 1 - i;
        if constexpr (!kDouble) target[j].x = source[j].x;
        target[j].y = static_cast<T>(y);
      },
      [](std::uint64_t) { return true; });
  WbMemFree(w);
  return nullptr;
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::Compute(const Curve& in, Curve& out) {
  const std::uint64_t count = in.GetSize();
  ZmCFCCoefficients c{};
  std::uint64_t pad = 0;
  double step = 0.0;
  const WbErrObj* error = Prepare(in.GetData(), count, c, pad, step);
  if (!error && &in != &out) {
    try {
      out.SetSize(count);
    } catch (const std::bad_alloc&) {
      error = Fail(zm::filter::kNotEnoughMemory);
    }
  }
  if (!error) error = Run(c, pad, step, in.GetData(), count, out.GetData());
  // On failure out becomes the copy of in, whatever the forward pass had written into it.
  return zm::filter::KeepInputOnFailure(error, in, out);
}

template <class Base>
const WbErrObj* ZmFilterCFCButterworthT<Base>::ComputeSpan(const Point* in, std::uint64_t count, Point* out) {
  ZmCFCCoefficients c{};
  std::uint64_t pad = 0;
  double step = 0.0;
  const WbErrObj* error = Prepare(in, count, c, pad, step);
  if (!error) error = Run(c, pad, step, in, count, out);
  if (error && in != out && count > 0) std::memmove(static_cast<void*>(out), in, count * sizeof(Point));
  return error;
}

template class ZmFilterCFCButterworthT<ZmFilterd>;
template class ZmFilterCFCButterworthT<ZmFilterf>;

WB_IMPLEMENT_DYNAMIC(ZmFilterCFCd, ZmFilterd, new ZmFilterCFCd)
WB_IMPLEMENT_DYNAMIC(ZmFilterCFCf, ZmFilterf, new ZmFilterCFCf)
